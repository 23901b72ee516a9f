# Sourced by ./run: KWin lets a program press keys and see what is in front only if a desktop entry
# with its absolute path says so. The installed one does; a program in a build folder needs its own.

# grant_on_kwin PROGRAM: writes such an entry, in a Plasma session on Wayland, and says so.
grant_on_kwin() {
    local program entry content
    case ":${XDG_CURRENT_DESKTOP-}:" in *:KDE:*) ;; *) return 0 ;; esac
    [ -n "${WAYLAND_DISPLAY-}" ] || return 0
    program=$(readlink -f "$1")
    entry=${XDG_DATA_HOME:-$HOME/.local/share}/applications/org.ostrowind.brindle.build.desktop
    content="[Desktop Entry]
Type=Application
Name=Brindle (build folder)
Exec=$program
NoDisplay=true
X-KDE-Wayland-Interfaces=org_kde_kwin_fake_input,org_kde_kwin_keystate,org_kde_plasma_window_management"
    [ "$(cat "$entry" 2>/dev/null)" != "$content" ] || return 0
    mkdir -p "$(dirname "$entry")"
    printf '%s\n' "$content" >"$entry"
    sleep 2 # KWin looks for new entries at a program's start, but not again within 1.5 s
    echo "Wrote $entry, by which KWin lets this build press the paste keys."
}

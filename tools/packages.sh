# Sourced by ./run and ./test: installs the Debian packages a task needs, once, and says so.

BUILD_PACKAGES="g++ cmake ninja-build pkg-config qt6-base-dev libxcb1-dev libxcb-xfixes0-dev
    libxcb-xkb-dev libxcb-xtest0-dev libxkbcommon-x11-dev libwayland-dev plasma-wayland-protocols
    qt6-wayland libsecret-1-dev libglib2.0-dev libicu-dev"
DEMO_PACKAGES="xvfb openbox dbus-daemon openssl fonts-dejavu-core fonts-noto-color-emoji"
TEST_PACKAGES="$DEMO_PACKAGES clang-format xserver-xephyr xdotool dunst gnome-keyring gcr at-spi2-core
    dbus x11-xserver-utils x11-xkb-utils python3 libsecret-tools trayer sway kwin-wayland
    xwayland foot wl-clipboard python3-gi gir1.2-gtk-3.0 gnome-shell gnome-settings-daemon
    dconf-gsettings-backend xdg-desktop-portal-gnome"
# Plasma's shortcuts as a program of their own: Debian 12's KWin brings it along.
[ "$(. /etc/os-release && echo "${VERSION_ID-}")" = 12 ] || TEST_PACKAGES="$TEST_PACKAGES kglobalacceld"
FUZZ_PACKAGES="clang libclang-rt-dev"

# ensure_packages NAME...: installs those that are missing, as root or through sudo.
ensure_packages() {
    local missing=() package as_root=()
    for package in "$@"; do
        dpkg-query -W -f '${Status}\n' "$package" 2>/dev/null | grep -q 'ok installed' ||
            missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing ${missing[*]}"
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "Need root or sudo to install them." >&2; return 1; }
        as_root=(sudo)
    fi
    local log
    log=$(mktemp)
    if "${as_root[@]}" apt-get update -qq >"$log" 2>&1 &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends "${missing[@]}" >>"$log" 2>&1 </dev/null; then
        rm -f "$log"
    else
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
}

"""Pastes with Brindle's hotkey into real applications and compares what they hold afterwards with
what is expected of each. Arguments choose rows by a part of their name."""

import re
import sys
import time
from dataclasses import dataclass

import desk
from applications import (
    AbiWord,
    Application,
    Chromium,
    Editor,
    Firefox,
    GnomeTerminal,
    Terminal,
    Thunderbird,
    Writer,
    version,
)

# What a user of xterm sets to have it paste the clipboard on Ctrl+V.
XTERM_PASTES = "XTerm*VT100.translations: #override Ctrl <Key>v: insert-selection(CLIPBOARD)"

SETTINGS = {
    "jiraBaseURL": "https://h.example",
    "jiraEmail": "ann@h.example",
    "accountBaseURL": "https://h.example/records/",
    "displayTemplate": "<b>{key}</b> - <i>{TYPE}</i> - {summary}",
}

# A tag in a title is a style like any other: the first title ends in bold, the second does not.
ENDS_BOLD = "https://h.example/browse/ABC-1"
ENDS_PLAIN = "https://h.example/browse/ABC-2"
TITLES = {ENDS_BOLD: "ABC-1 - BUG - é — 🐞 &", ENDS_PLAIN: "ABC-2 - BUG - Crash"}
RECORD = "507f1f77bcf86cd799439011"


@dataclass
class Row:
    """What is copied, in which format it is pasted, and what the application holds then."""

    application: Application
    format: str
    copied: str
    expected: dict
    only: str = ""  # paste this flavour alone, as an application would that knows no other


def rich(application, copied=ENDS_BOLD, after="plain", only=""):
    """A row with everything of a rich link kept; `after` is how the next letter looks."""
    expected = {"link": copied, "text": TITLES[copied], "italic": "BUG", "typed after": after}
    expected["bold"] = "ABC-1&" if copied == ENDS_BOLD else "ABC-2"
    return Row(application, "richLink", copied, expected, only)


def plain(application, format, text=None):
    """A row with plain text only."""
    texts = {
        "richLink": f"{TITLES[ENDS_BOLD]} ({ENDS_BOLD})",
        "plainText": f"{TITLES[ENDS_BOLD]} ({ENDS_BOLD})",
        "markdown": f"[**ABC-1** - *BUG* - é — 🐞 ** &]({ENDS_BOLD})",
        "urlOnly": SETTINGS["accountBaseURL"] + RECORD,
    }
    expected = {"link": "-", "text": text or texts[format], "typed after": "plain"}
    expected.update(bold="-", italic="-")
    return Row(application, format, RECORD if format == "urlOnly" else ENDS_BOLD, expected)


def rows():
    writer = Writer("Writer", "libreoffice-writer", SAL_USE_VCLPLUGIN="gtk3")
    bare_writer = Writer("Writer without GTK", "libreoffice-writer", SAL_USE_VCLPLUGIN="gen")
    abiword = AbiWord("AbiWord", "abiword")
    firefox = Firefox("Firefox", "firefox-esr")
    chromium = Chromium("Chromium", "chromium")
    thunderbird = Thunderbird("Thunderbird", "thunderbird")
    lxterminal = Terminal("LXTerminal", "lxterminal", "lxterminal --no-remote -e SCRIPT")
    xfce = Terminal("Xfce Terminal", "xfce4-terminal", "xfce4-terminal --disable-server -e SCRIPT")
    gnome = GnomeTerminal("GNOME Terminal", "gnome-terminal", "SCRIPT")
    konsole = Terminal("Konsole", "konsole", "konsole --nofork -e SCRIPT")
    xterm = Terminal("xterm", "xterm", "xterm -e SCRIPT")
    told = Terminal("xterm with Ctrl+V", "xterm", "xterm -e SCRIPT")
    told.words[1:1] = ["-xrm", XTERM_PASTES]
    return [
        *(rich(writer, only=only, after="bold") for only in ("", "text/rtf", "text/html")),
        rich(writer, ENDS_PLAIN),
        rich(bare_writer, after="bold"),
        *(
            row
            for application in (abiword, chromium)
            for row in (rich(application), rich(application, ENDS_PLAIN))
        ),
        *(
            row
            for application in (firefox, thunderbird)
            for row in (
                rich(application, after="link bold"),
                rich(application, ENDS_PLAIN, after="link"),
            )
        ),
        plain(Editor("gedit", "gedit", "gedit --standalone"), "richLink"),
        plain(Editor("Mousepad", "mousepad", "mousepad --disable-server"), "richLink"),
        plain(Editor("Kate", "kate", "kate --block"), "richLink"),
        *(
            plain(terminal, format)
            for terminal in (gnome, xfce, lxterminal, konsole, told)
            for format in ("richLink", "plainText", "markdown", "urlOnly")
        ),
        plain(xterm, "plainText", text="-"),
    ]


def folded(text):
    """HTML folds spaces, editors keep them with spaces that do not fold."""
    return re.sub(r"\s+", " ", text).strip()


def unspaced(text):
    """Which of two neighbouring spaces is the styled one is nobody's business."""
    return re.sub(r"\s+", "", text)


def typed_like(run):
    return " ".join(name for name in ("link", "bold", "italic") if getattr(run, name)) or "plain"


def judged(runs):
    """The columns of a row. The runs are what was pasted, after the probes "q" and before "z"."""
    whole = "".join(run.text for run in runs)
    start = re.match(r"[q\s]*", whole).end()
    end = re.search(r"z*\s*$", whole).start()
    pasted, after, place = [], "-", 0
    for run in runs:
        text = run.text[max(0, start - place) : max(0, end - place)]
        if place <= end < place + len(run.text):
            after = typed_like(run)
        place += len(run.text)
        pasted.append((text, run))
    links = sorted({run.link for text, run in pasted if text.strip()})
    return {
        "link": " / ".join(link or "-" for link in links) or "-",
        "text": folded("".join(text for text, _ in pasted)) or "-",
        "bold": unspaced("".join(text for text, run in pasted if run.bold)) or "-",
        "italic": unspaced("".join(text for text, run in pasted if run.italic)) or "-",
        "typed after": after,
    }


def holds(application, letter):
    return any(letter in run.text for run in application.content())


def type_and_save(application, letter, seconds):
    """Types a letter until the application holds it."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if application.is_in_front():
            desk.press(letter)
            application.save()
            if desk.wait_for(lambda: holds(application, letter), 3):
                return
        else:
            time.sleep(0.1)
    raise desk.Failure(f"{letter} is not held; in front is {desk.front_title()!r}")


def paste_by_hotkey(row):
    """Presses the hotkey; whether clipboard and keyboard are afterwards as they were before."""
    copied = desk.Copied(row.copied)
    settings = {**SETTINGS, "pasteFormat": row.format, "accountPasteFormat": row.format}
    with copied.copy(), desk.Brindle(settings):
        desk.press(desk.HOTKEY)
        desk.require(lambda: not copied.is_on_clipboard(), "no link came onto the clipboard")
        restored = desk.wait_for(copied.is_on_clipboard)
        held = desk.Keymap().held()
    type_and_save(row.application, "z", 20)
    return "yes" if restored and not held else f"clipboard {restored}, held keys {held}"


def paste_alone(row):
    """Has Brindle make the link, copies one flavour of it alone and pastes that."""
    settings = {**SETTINGS, "pasteFormat": row.format}
    with desk.Copied(row.copied).copy(), desk.Brindle(settings) as brindle:
        brindle.call("enrich-only")
        desk.require(lambda: desk.flavour("text/rtf"), "no link came onto the clipboard")
        data = desk.flavour(row.only)
    with desk.Copied.alone(row.only, data).copy():
        desk.press("ctrl+v")
        type_and_save(row.application, "z", 20)
    return "-"


def run(row, folder):
    """Drives one row: the columns as they are."""
    with row.application.start(folder):
        type_and_save(row.application, "q", 90)
        restored = paste_alone(row) if row.only else paste_by_hotkey(row)
        return {**judged(row.application.content()), "restored": restored}


COLUMNS = ("link", "text", "bold", "italic", "typed after", "restored")
WIDTHS = (20, 16, 10, 5, 5, 5, 7, 12, 8)


def show(*cells):
    padded = (cell.ljust(width) for cell, width in zip(cells, WIDTHS, strict=True))
    print("| " + " | ".join(padded) + " |", flush=True)


def cell(name, value, expected):
    if value != expected:
        return "no"
    return "ok" if name in ("link", "text", "bold", "italic") and expected != "-" else expected


def report(row, folder):
    """Drives a row and prints it; whether it is as expected."""
    expected = {**row.expected, "restored": "-" if row.only else "yes"}
    head = [row.application.name, version(row.application.package), row.only or row.format]
    try:
        values = run(row, folder)
    except (desk.Failure, ValueError) as failure:
        show(*head, *("?" for _ in COLUMNS))
        print(f"    {failure}", flush=True)
        said = (desk.HOME / "log/application.log").read_text(errors="replace")
        print("    " + "\n    ".join(said.splitlines()[-5:]), flush=True)
        return False
    show(*head, *(cell(name, values[name], expected[name]) for name in COLUMNS))
    differing = [name for name in COLUMNS if values[name] != expected[name]]
    for name in differing:
        print(f"    {name}: {values[name]!r} instead of {expected[name]!r}", flush=True)
    return not differing


def main():
    for account in ("jira-api-token", "confluence-api-token"):
        desk.store_token(account)
    names = [name.lower() for name in sys.argv[1:]]
    chosen = [
        row
        for row in rows()
        if not names or any(name in row.application.name.lower() for name in names)
    ]
    show("application", "version", "format", *COLUMNS)
    show(*("-" * width for width in WIDTHS))
    as_expected = [
        report(row, desk.HOME / f"application{number}") for number, row in enumerate(chosen)
    ]
    print(f"{sum(as_expected)} of {len(as_expected)} as expected")
    return 0 if chosen and all(as_expected) else 1


sys.exit(main())

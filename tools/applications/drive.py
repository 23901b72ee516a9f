"""Pastes with Brindle's hotkey into real applications and compares what they hold afterwards with
what is expected of each. Arguments choose rows by a part of their name."""

import re
import sys
import time
from dataclasses import dataclass, field

import desk
from applications import Application, Chromium, Editor, Firefox, Terminal, Thunderbird, Writer, version

ISSUE = "https://h.example/browse/ABC-1"
RECORD = "507f1f77bcf86cd799439011"
RECORD_LINK = "https://h.example/records/" + RECORD
TITLE = "ABC-1 - BUG - é — 🐞 &"

SETTINGS = {
    "jiraBaseURL": "https://h.example",
    "jiraEmail": "ann@h.example",
    "accountBaseURL": "https://h.example/records/",
    "displayTemplate": "<b>{key}</b> - <i>{TYPE}</i> - {summary}",
}

# What is copied and what its plain text becomes. The title is "é — 🐞 <b> &": a tag in a title is
# a style like any other, so its end is bold.
FORMATS = {
    "richLink": (ISSUE, f"{TITLE} ({ISSUE})"),
    "plainText": (ISSUE, f"{TITLE} ({ISSUE})"),
    "markdown": (ISSUE, f"[**ABC-1** - *BUG* - é — 🐞 ** &]({ISSUE})"),
    "urlOnly": (RECORD, RECORD_LINK),
}

RICH = {"link": ISSUE, "text": TITLE, "bold": "ABC-1 &", "italic": "BUG", "typed after": "plain"}


@dataclass
class Row:
    application: Application
    format: str = "richLink"
    expected: dict = field(default_factory=dict)


def plain(format):
    """What an application holds that takes the plain text."""
    return {"link": "-", "text": FORMATS[format][1], "bold": "-", "italic": "-", "typed after": "plain"}


NOTHING = {"link": "-", "text": "-", "bold": "-", "italic": "-", "typed after": "plain"}


def rows():
    gen, gtk = {"SAL_USE_VCLPLUGIN": "gen"}, {"SAL_USE_VCLPLUGIN": "gtk3"}
    xterm_pastes = "XTerm*VT100.translations: #override Ctrl <Key>v: insert-selection(CLIPBOARD)"
    lx = Terminal("LXTerminal", "lxterminal", ["lxterminal", "--no-remote", "-e", "SCRIPT"])
    konsole = Terminal("Konsole", "konsole", ["konsole", "--nofork", "-e", "SCRIPT"])
    xterm = Terminal("xterm", "xterm", ["xterm", "-e", "SCRIPT"])
    told = Terminal("xterm, told", "xterm", ["xterm", "-xrm", xterm_pastes, "-e", "SCRIPT"])
    return [
        Row(Writer("Writer (X11)", "libreoffice-writer", **gen), expected=RICH),
        Row(Writer("Writer (GTK)", "libreoffice-writer", **gtk), expected=RICH),
        Row(Firefox("Firefox", "firefox-esr"), expected=RICH),
        Row(Chromium("Chromium", "chromium"), expected=RICH),
        Row(Thunderbird("Thunderbird", "thunderbird"), expected=RICH),
        Row(Editor("gedit", "gedit", "gedit --standalone"), expected=plain("richLink")),
        Row(Editor("Mousepad", "mousepad", "mousepad --disable-server"), expected=plain("richLink")),
        Row(Editor("Kate", "kate", "kate --block"), expected=plain("richLink")),
        *(
            Row(terminal, format, plain(format))
            for terminal in (lx, konsole, told)
            for format in ("plainText", "markdown", "urlOnly")
        ),
        Row(xterm, "plainText", NOTHING),
    ]


def folded(text):
    """HTML folds spaces, editors keep them with spaces that do not fold."""
    return re.sub(r"\s+", " ", text).strip()


def typed_like(run):
    return " ".join(name for name in ("link", "bold", "italic") if getattr(run, name)) or "plain"


def judged(runs):
    """The columns of a row. The runs are what was pasted, after the probes "q" and before "z"."""
    whole = "".join(run.text for run in runs)
    start = len(whole) - len(whole.lstrip("q\n "))
    end = whole.rindex("z") if "z" in whole else len(whole)
    pasted, after, place = [], "-", 0
    for run in runs:
        text = run.text[max(0, start - place) : max(0, end - place)]
        if place <= end < place + len(run.text):
            after = typed_like(run)
        place += len(run.text)
        if text.strip():
            pasted.append((text, run))
    links = sorted({run.link for _, run in pasted})
    return {
        "link": " / ".join(link or "-" for link in links) or "-",
        "text": folded("".join(text for text, _ in pasted)) or "-",
        "bold": folded("".join(text for text, run in pasted if run.bold)) or "-",
        "italic": folded("".join(text for text, run in pasted if run.italic)) or "-",
        "typed after": after,
    }


class Failure(Exception):
    """A row that could not be driven to its end."""


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
    raise Failure(f"{letter} is not held; in front is {desk.front_title()!r}")


def run(row, number):
    """Drives one row: the columns as they are."""
    application = row.application
    copied = desk.Copied(FORMATS[row.format][0])
    with application.start(desk.HOME / f"application{number}"):
        type_and_save(application, "q", 90)
        settings = {**SETTINGS, "pasteFormat": row.format, "accountPasteFormat": row.format}
        with copied.copy(), desk.Brindle(settings):
            desk.wait_for(copied.is_on_clipboard)
            desk.press(desk.HOTKEY)
            if not desk.wait_for(lambda: not copied.is_on_clipboard()):
                raise Failure("no link came onto the clipboard")
            restored = desk.wait_for(copied.is_on_clipboard)
            held = desk.Keymap().held()
        type_and_save(application, "z", 20)
        columns = judged(application.content())
    columns["restored"] = "yes" if restored and not held else f"no {held or ''}"
    return columns


def shown(row, columns):
    cells = [row.application.name, version(row.application.package), row.format]
    differences = []
    for name, expected in {**row.expected, "restored": "yes"}.items():
        same = columns.get(name) == expected
        cells.append("ok" if same and expected not in ("-", "yes", "plain") else columns.get(name, "?"))
        if not same:
            differences.append(f"{name}: {columns.get(name, '?')!r} instead of {expected!r}")
    return cells, differences


def main():
    for account in ("jira-api-token", "confluence-api-token"):
        desk.store_token(account)
    chosen = [
        row for row in rows()
        if not sys.argv[1:] or any(name.lower() in row.application.name.lower() for name in sys.argv[1:])
    ]
    failed = False
    for number, row in enumerate(chosen):
        try:
            columns = run(row, number)
            cells, differences = shown(row, columns)
        except Failure as failure:
            cells, differences = [row.application.name, "", row.format], [str(failure)]
        failed = failed or bool(differences)
        print(" | ".join(cells), flush=True)
        for difference in differences:
            print("    " + difference, flush=True)
    return 1 if failed or not chosen else 0


sys.exit(main())

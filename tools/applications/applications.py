"""The applications that are pasted into: how each is started, told to save, and read."""

import json
import re
from pathlib import Path
from xml.etree import ElementTree

import desk
import reading

HERE = Path(__file__).parent


def version(package):
    """The upstream version of an installed package."""
    text = desk.output("dpkg-query", "-W", "-f", "${Version}", package).decode()
    return re.sub(r"^\d+:|[-+~].*$", "", text)


class Application:
    """A window to paste into. `content` tells what it holds since the last `save`."""

    def __init__(self, name, package, **environment):
        self.name = name
        self.package = package
        self.environment = environment

    def start(self, folder):
        """Starts it with everything of its own in `folder`."""
        folder.mkdir()
        self.folder = folder
        return desk.Running(self.command(), "application.log", **self.environment)

    def file(self, name, content=""):
        """A new file in the folder."""
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(content, encoding="utf-8")
        return path

    def is_in_front(self):
        return desk.has_front_window()

    def save(self):
        desk.press("ctrl+s")

    def content(self):
        raise NotImplementedError

    def command(self):
        raise NotImplementedError


class Editor(Application):
    """A text editor that opens the file named last on its command line."""

    def __init__(self, name, package, command, **environment):
        super().__init__(name, package, **environment)
        self.words = command.split()

    def command(self):
        self.path = self.file("note.txt", "\n")
        return [*self.words, str(self.path)]

    def is_in_front(self):
        return "note.txt" in desk.front_title()

    def content(self):
        return reading.plain(self.path.read_text(encoding="utf-8"))


class Terminal(Application):
    """A terminal in which `cat` writes what is typed into a file, a line at a time."""

    def __init__(self, name, package, command, **environment):
        super().__init__(name, package, **environment)
        self.words = command.split()

    def command(self):
        self.path = self.file("typed.txt")
        script = self.file("cat.sh", f'#!/bin/sh\nexec cat >"{self.path}"\n')
        script.chmod(0o755)
        return [word.replace("SCRIPT", str(script)) for word in self.words]

    def save(self):
        desk.press("Return")

    def content(self):
        return reading.plain(self.path.read_text(encoding="utf-8", errors="replace"))


class GnomeTerminal(Terminal):
    """It is a service and a program that asks the service for a window."""

    SCRIPT = """#!/bin/sh
/usr/libexec/gnome-terminal-server &
gdbus wait --session --timeout 60 org.gnome.Terminal
exec gnome-terminal --wait -- %s
"""

    def command(self):
        (script,) = super().command()
        start = self.file("start.sh", self.SCRIPT % script)
        return ["sh", str(start)]


class Writer(Application):
    """A word processor; the document is a flat one, which it can save over."""

    SETTINGS = """<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry">
%s</oor:items>
"""
    ITEM = (
        '<item oor:path="/org.openoffice.%s"><prop oor:name="%s" oor:op="fuse">'
        "<value>false</value></prop></item>\n"
    )
    DOCUMENT = (
        '<?xml version="1.0" encoding="UTF-8"?>\n<office:document'
        ' xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"'
        ' xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0" office:version="1.2"'
        ' office:mimetype="application/vnd.oasis.opendocument.text">'
        "<office:body><office:text><text:p/></office:text></office:body></office:document>"
    )

    def command(self):
        self.path = self.file("letter.fodt", self.DOCUMENT)
        items = [self.ITEM % ("Office.Common/Misc", "ShowTipOfTheDay")]
        items.append(self.ITEM % ("Office.Common/Save/Document", "WarnAlienFormat"))
        self.file("profile/user/registrymodifications.xcu", self.SETTINGS % "".join(items))
        profile = f"-env:UserInstallation=file://{self.folder}/profile"
        return ["soffice", "--norestore", "--nologo", profile, "--writer", str(self.path)]

    def is_in_front(self):
        return "letter" in desk.front_title()

    def content(self):
        try:
            return reading.odf(self.path.read_bytes())
        except ElementTree.ParseError:
            return []  # being written


class AbiWord(Application):
    """Another word processor."""

    def command(self):
        document = "<abiword><section><p></p></section></abiword>\n"
        self.path = self.file("letter.abw", '<?xml version="1.0"?>\n' + document)
        return ["abiword", str(self.path)]

    def is_in_front(self):
        return "letter" in desk.front_title()

    def content(self):
        try:
            return reading.abiword(self.path.read_bytes())
        except ElementTree.ParseError:
            return []  # being written


class Browser(Application):
    """An editable page that tells in its title what it holds."""

    def page(self):
        return (HERE / "page.html").as_uri()

    def save(self):
        pass

    def is_in_front(self):
        return "runs:" in desk.front_title()

    def content(self):
        _, mark, told = desk.front_title().partition("runs:")
        if not mark:
            return []
        (links, runs), _ = json.JSONDecoder().raw_decode(told)
        return [reading.Run(text, links[link], *map(bool, style)) for text, link, *style in runs]


class Chromium(Browser):
    def command(self):
        switches = "--no-sandbox --no-first-run --no-default-browser-check --disable-gpu"
        switches += " --disable-background-networking --disable-component-update --disable-sync"
        switches += " --disable-dev-shm-usage --password-store=basic --ozone-platform=x11"
        switches += " --proxy-server=127.0.0.1:9"
        switches += f" --user-data-dir={self.folder}/profile"
        return ["chromium", *switches.split(), self.page()]


def _preferences(values):
    lines = (f'user_pref("{name}", {json.dumps(value)});\n' for name, value in values.items())
    return "".join(lines)


# No page of welcome, no notice, and no way to the network.
QUIET = {
    "app.normandy.enabled": False,
    "app.update.enabled": False,
    "browser.aboutwelcome.enabled": False,
    "browser.shell.checkDefaultBrowser": False,
    "browser.startup.homepage_override.mstone": "ignore",
    "datareporting.policy.dataSubmissionEnabled": False,
    "datareporting.policy.dataSubmissionPolicyBypassNotification": True,
    "network.proxy.type": 1,
    "network.proxy.http": "127.0.0.1",
    "network.proxy.http_port": 9,
    "network.proxy.ssl": "127.0.0.1",
    "network.proxy.ssl_port": 9,
    "toolkit.telemetry.reportingpolicy.firstRun": False,
    "trailhead.firstrun.didSeeAboutWelcome": True,
}


class Firefox(Browser):
    def command(self):
        self.file("profile/user.js", _preferences(QUIET))
        return ["firefox-esr", "--new-instance", "--profile", f"{self.folder}/profile", self.page()]


class Thunderbird(Application):
    """The window of a new message, saved as a draft."""

    ACCOUNT = {
        "mail.accountmanager.accounts": "account1,account2",
        "mail.accountmanager.localfoldersserver": "server2",
        "mail.accountmanager.defaultaccount": "account1",
        "mail.account.account1.server": "server1",
        "mail.account.account1.identities": "id1",
        "mail.account.account2.server": "server2",
        "mail.server.server1.type": "pop3",
        "mail.server.server1.hostname": "h.example",
        "mail.server.server1.userName": "ann",
        "mail.server.server1.check_new_mail": False,
        "mail.server.server1.login_at_startup": False,
        "mail.server.server2.type": "none",
        "mail.server.server2.hostname": "Local Folders",
        "mail.server.server2.userName": "nobody",
        "mail.identity.id1.fullName": "Ann",
        "mail.identity.id1.useremail": "ann@h.example",
        "mail.identity.id1.valid": True,
        "mail.identity.id1.compose_html": True,
        "mail.identity.id1.draft_folder": "mailbox://nobody@Local%20Folders/Drafts",
        "mail.provider.suppress_dialog_on_startup": True,
        "mail.spotlight.firstRunDone": True,
        "mail.rights.version": 1,
        "mail.shell.checkDefaultClient": False,
        "mail.compose.autosave": False,
        "mailnews.start_page.enabled": False,
        "mailnews.start_page_override.mstone": "ignore",
    }

    def command(self):
        self.file("profile/user.js", _preferences({**QUIET, **self.ACCOUNT}))
        message = "to='bob@h.example',subject='letter',format='html'"
        profile = f"{self.folder}/profile"
        return ["thunderbird", "--new-instance", "--profile", profile, "-compose", message]

    def is_in_front(self):
        return desk.front_title().startswith("Write: letter")

    def content(self):
        drafts = self.folder / "profile/Mail/Local Folders/Drafts"
        return reading.mail_folder(drafts.read_bytes()) if drafts.exists() else []

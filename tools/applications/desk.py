"""What a user does at the desktop: copy, press keys, look at the window in front; and Brindle."""

import ctypes
import os
import signal
import subprocess
import time
from pathlib import Path

HOME = Path(os.environ["HOME"])
HOTKEY = "ctrl+alt+super+v"


def wait_for(condition, seconds=30.0):
    """The first true value of `condition`, or its last false one when the time is over."""
    end = time.monotonic() + seconds
    while not (value := condition()) and time.monotonic() < end:
        time.sleep(0.05)
    return value


class Failure(Exception):
    """Something that had to happen and did not."""


def require(condition, otherwise):
    """Waits until `condition` holds; a failure with that text when it does not."""
    if not wait_for(condition):
        raise Failure(otherwise)


def output(*command):
    """What a command prints; empty when it fails."""
    return subprocess.run(
        command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=120, check=False
    ).stdout


def press(*keys):
    """Presses keys or combinations of keys in turn."""
    subprocess.run(["xdotool", "key", *keys], check=True)


def has_front_window():
    """Whether there is a window in front, with a title or without."""
    return output("xdotool", "getactivewindow") != b""


def front_title():
    """The title of the window in front; empty when there is none."""
    return output("xdotool", "getactivewindow", "getwindowname").decode(errors="replace").strip()


class Keymap:
    """The keys that are down."""

    def __init__(self):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(None))
        if not self.display:
            raise RuntimeError("no display")

    def held(self):
        keys = ctypes.create_string_buffer(32)
        self.x11.XQueryKeymap(self.display, keys)
        return [code for code in range(256) if keys.raw[code // 8] & (1 << code % 8)]


class Running:
    """A program that is ended with the block, and what it has started."""

    def __init__(self, command, log, **environment):
        self.log = open(HOME / "log" / log, "wb")
        self.process = subprocess.Popen(
            command,
            stdin=subprocess.DEVNULL,
            stdout=self.log,
            stderr=self.log,
            cwd=HOME,
            env={**os.environ, **environment},
            start_new_session=True,
        )

    def __enter__(self):
        return self

    def __exit__(self, *_):
        # Wrapper scripts leave their application behind, so the whole group goes.
        for number in (signal.SIGTERM, signal.SIGKILL):
            if wait_for(lambda number=number: self._is_gone(number), 10):
                break
        self.log.close()

    def _is_gone(self, number):
        self.process.poll()
        try:
            os.killpg(self.process.pid, number)
        except ProcessLookupError:
            return True
        return False


def flavour(name):
    """One flavour of the clipboard, in bytes."""
    return output("timeout", "5", "xclip", "-o", "-selection", "clipboard", "-t", name)


class Copied:
    """Something that another program has copied, plain and as HTML."""

    def __init__(self, text):
        self.flavours = {
            "UTF8_STRING": text.encode(),
            "text/html": f"<p>{text}</p>".encode(),
        }

    @classmethod
    def alone(cls, name, data):
        """The same with one flavour of that name."""
        copied = cls("")
        copied.flavours = {name: data}
        return copied

    def copy(self):
        """The program that has copied it, once it is on the clipboard."""
        options = []
        for name, data in self.flavours.items():
            file = HOME / "tmp" / name.replace("/", "-")
            file.write_bytes(data)
            options.append(f"--flavour={name}=@{file}")
        owner = Running([os.environ["CLIPBOARD_OWNER"], *options], "copied.log")
        require(self.is_on_clipboard, "nothing can be copied")
        return owner

    def is_on_clipboard(self):
        return all(flavour(name) == data for name, data in self.flavours.items())


class Brindle(Running):
    """The product with the given settings; up when made."""

    def __init__(self, settings):
        lines = [f'{name}="{value}"' for name, value in settings.items()]
        file = Path(os.environ["XDG_CONFIG_HOME"]) / "org.ostrowind.brindle.conf"
        file.write_text("\n".join(["[General]", *lines, ""]), encoding="utf-8")
        gateway = [os.environ["GATEWAY_PORT"], os.environ["GATEWAY_CERTIFICATE"]]
        super().__init__([os.environ["BRINDLE"], *gateway], "brindle.log")
        require(lambda: self.call("none"), "Brindle does not come up")

    def call(self, action):
        """Calls an action over the bus; whether there was an answer."""
        command = "gdbus call --session --dest org.ostrowind.brindle --object-path"
        command += " /org/ostrowind/brindle --method org.freedesktop.Application.ActivateAction"
        return output(*command.split(), action, "[]", "{}") != b""


def store_token(account):
    """Puts a token into the keyring as Brindle keeps it."""
    schema = ["service", "org.ostrowind.brindle", "account", account]
    schema += ["xdg:schema", "org.ostrowind.brindle"]
    subprocess.run(
        ["secret-tool", "store", "--label=token", *schema], input=b"secret", check=True
    )

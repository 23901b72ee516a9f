#!/usr/bin/python3
"""A GTK 3 window to paste into. Events as of paste_target; commands: clear, busy MILLISECONDS, quit."""
import base64
import json
import sys
import time

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402


def say(event, **line):
    print(json.dumps({"event": event, **line}, separators=(",", ":")), flush=True)


class Target:
    def __init__(self):
        self.via = "other"
        self.view = Gtk.TextView()
        self.view.connect("paste-clipboard", self.paste)
        self.view.connect("key-press-event", self.press)
        self.view.get_buffer().connect("insert-text", self.inserted)
        window = Gtk.Window(title="Paste target")
        window.set_default_size(480, 240)
        window.add(self.view)
        window.connect("destroy", Gtk.main_quit)
        # The seat's focus, not only GTK's own idea of it.
        self.view.connect("focus-in-event", lambda *_: say("focused"))
        self.view.connect("focus-out-event", lambda *_: say("unfocused"))
        window.show_all()
        GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IOCondition.IN | GLib.IOCondition.HUP,
                          self.read_command)

    def press(self, _view, event):
        control = bool(event.state & Gdk.ModifierType.CONTROL_MASK)
        self.via = "Ctrl+V" if control and event.hardware_keycode == 55 else "other"
        say("key", type="press", code=event.hardware_keycode, text=event.string)
        return False

    def inserted(self, _buffer, _place, text, _length):
        say("typed", text=text)

    def paste(self, view):
        """Fetches each flavour once, as a program does that wants it."""
        view.stop_emission_by_name("paste-clipboard")
        clipboard = Gtk.Clipboard.get(Gdk.SELECTION_CLIPBOARD)
        known, targets = clipboard.wait_for_targets()
        formats = [target.name() for target in targets] if known else []

        def fetch(name):
            if name not in formats:
                return b""
            return bytes(clipboard.wait_for_contents(Gdk.Atom.intern(name, False)).get_data() or b"")

        say("paste", via=self.via, formats=formats, text=clipboard.wait_for_text() or "",
            html=fetch("text/html").decode(), rtf=base64.b64encode(fetch("text/rtf")).decode())
        self.via = "other"

    def read_command(self, source, _condition):
        command, _, argument = source.readline().rstrip("\n").partition(" ")
        if command == "clear":
            self.view.get_buffer().set_text("")
        elif command == "busy":
            say("busy")
            time.sleep(int(argument) / 1000)
        elif command in ("quit", ""):
            Gtk.main_quit()
        say("done", command=command, ok=command in ("clear", "busy", "quit"))
        return command not in ("quit", "")


GLib.set_prgname("gtk_paste_target")
Target()
Gtk.main()

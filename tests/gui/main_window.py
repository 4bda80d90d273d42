"""What several files of tests look at in the main window, and what stands around it: the program that opens pages,
files that are held back, pictures of windows."""

import fcntl
import os
import pathlib
import signal

from Xlib import X, display
from Xlib.ext import xtest

from controls import ACTIVE, SHOWING
from facts import Facts
from waiting import NotNow
from window import TITLE, WindowTest
from world import wait_for

OWN = "00:0c:29:4f:8e:35"
OWN_TEXT = "00-0C-29-4F-8E-35"
OPENED = pathlib.Path("/run/opened")
OPENER_FOLDER = pathlib.Path("/run/opener")


def system_description():
    """What the program says of the system."""
    lines = pathlib.Path("/etc/os-release").read_text(encoding="utf-8").splitlines()
    names = [line.partition("=")[2].strip('"') for line in lines if line.startswith("PRETTY_NAME=")]
    return f"{names[0]}  ({os.uname().sysname} {os.uname().release})"


class HeldFile:
    """Keeps whoever opens a file waiting, until it is let go (a lease, fcntl(2)): a program can be looked at while it
    loads."""

    def __init__(self, path):
        self.asked_for = False
        signal.signal(signal.SIGIO, self._on_signal)
        # Not buffered and not read: a lease is given only while nobody else has the file open.
        self.descriptor = os.open(path, os.O_RDWR)
        fcntl.fcntl(self.descriptor, fcntl.F_SETLEASE, fcntl.F_WRLCK)

    def _on_signal(self, *_):
        self.asked_for = True

    def wait(self):
        wait_for(lambda: self.asked_for, "somebody opens the file")

    def let_go(self):
        fcntl.fcntl(self.descriptor, fcntl.F_SETLEASE, fcntl.F_UNLCK)
        os.close(self.descriptor)


class WindowDiary:
    """Notes every window that is put on the screen from now on, however short it is there."""

    def __init__(self):
        self.display = display.Display()
        self.display.screen().root.change_attributes(event_mask=X.SubstructureNotifyMask)
        self.display.sync()

    def shown(self):
        """How many windows have been put on the screen since the last call."""
        self.display.sync()
        events = [self.display.next_event() for _ in range(self.display.pending_events())]
        return sum(event.type == X.MapNotify for event in events)


def picture(window, x=0, y=0, width=None, height=None):
    """The pixels of a part of an X window, as a list of (red, green, blue)."""
    size = window.get_geometry()
    image = window.get_image(x, y, width or size.width - x, height or size.height - y, X.ZPixmap, 0xFFFFFFFF)
    data = image.data
    return [(data[i + 2], data[i + 1], data[i]) for i in range(0, len(data), 4)]


class MainWindowTest(Facts, WindowTest):
    """Base of the test cases on the main window."""

    # --- what it shows -------------------------------------------------------------------------------------------

    def _facts(self):
        # Caption and text have the same name, the text comes behind.
        return {node.name: node.text for node, role in self.window.root().walk()
                if role == "label" and node.has(SHOWING)}

    def expect_names(self, *names):
        """Waits until the list has the connections of these names, in this order."""
        self.connections.expect(names=list(names))

    def headers(self, name):
        """Titles of a list's columns, as they are now."""
        table = self.window.table(name)
        return self.window.patiently(lambda: self._headers(table._find()), table.what)

    @staticmethod
    def _headers(node):
        return [node.node(node.ask("Table", "GetColumnHeader", "(i)", column)[0]).name
                for column in range(node.get("Table", "NColumns"))]

    def selected(self):
        """Name of the selected connection, which is the one of the details."""
        choice = self.connections.choice
        self.expect_fact("Connection Name:", choice)
        return choice

    def expect_box(self, title, text, press, by_key=False, kind=None):
        """Waits for a box of exactly this text and presses one of its buttons. Without `kind`, its icon is that of a
        question, or of an information when there is only OK."""
        box = self.window.expect_box(title)
        self.assertEqual(box.text, text)
        self.assertEqual(box.buttons, ["OK"] if press == "OK" else ["No", "Cancel", "Yes"])
        self.assertEqual(self.kind(box), kind or ("Information" if press == "OK" else "Question"))
        box.press(press, by_key)

    def kind(self, box):
        """What a box is to a screen reader: "Question", "Error" ... after its icon."""
        return self.window.patiently(lambda: box.root().name, box.what)

    def expect_message(self):
        """Waits for a message box with the program's name as its title, which is the main window's title too."""
        def look():
            nodes = self.window.node.children
            if not any(node.role == "alert" and node.has(ACTIVE) for node in nodes):
                raise NotNow(f"there are {[node.role for node in nodes]}")
        self.window.patiently(look, "a message box")
        return self.window.expect_box(TITLE)

    def expect_last_box(self, title, text, code, kind="Error"):
        """Waits for the box that is the program's last; it ends with this code when OK is pressed."""
        box = self.window.expect_box(title)
        self.assertEqual((box.text, box.buttons, self.kind(box)), (text, ["OK"], kind))
        box.button("OK").click()
        self.assertEqual(self.window.wait_exit(), code, self.window.err)

    def x_window(self, title=TITLE):
        """The X window of a shown window of the program."""
        screen = self.desktop.screen
        found = [window for window in screen.windows()
                 if screen.title(window) == title and screen.pid(window) == self.window.pid]
        self.assertEqual(len(found), 1, f"windows '{title}'")
        return found[0]

    def drag(self, start, end):
        """Moves the pointer from one place to the other with its button held down."""
        screen = self.desktop.screen
        self.desktop.move(*start)
        xtest.fake_input(screen.display, X.ButtonPress, 1)
        self.desktop.move(*end)
        xtest.fake_input(screen.display, X.ButtonRelease, 1)
        screen.display.sync()
        self.desktop.settle()

    # --- pages ---------------------------------------------------------------------------------------------------

    @staticmethod
    def opener(script='printf "%s\\n" "$@" >>/run/opened'):
        """Environment of a program that opens pages with this script."""
        OPENER_FOLDER.mkdir(exist_ok=True)
        program = OPENER_FOLDER / "xdg-open"
        program.write_text(f"#!/bin/sh\n{script}\n")
        program.chmod(0o755)
        return {"PATH": f"{OPENER_FOLDER}:{os.environ['PATH']}"}

    def expect_opened(self, *pages):
        """Waits until exactly these pages have been opened, one after the other, and forgets them."""
        def look():
            return OPENED.exists() and OPENED.read_text().splitlines() == list(pages)
        wait_for(look, f"the pages {pages} are opened")
        OPENED.unlink()

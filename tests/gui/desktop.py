"""The window program as a user meets it: keys and clicks come from the X server, what is on the screen is read as a
screen reader reads it. For use inside tests/gui/display.

    desktop = Desktop(self)                             # self: the test case
    window = desktop.start(BIN / "nicx-window", title="...")
    window.entry("Metric").enter("10")                  # a control: role, and accessible name or label
    window.menu("File", "Exit").choose()
    window.expect_box("Question").press("Yes")
    window.table("Connections").expect(selected=[1])    # waits for it

After a key or click the program is given the time to handle it (Application.settle), so that what it does at once can
be asserted at once; `expect` waits for what takes longer.
"""

import ctypes
import os
import pathlib
import signal
import struct
import subprocess
import sys
import tempfile
import time

from gi.repository import Gio, GLib
from Xlib import X, XK, display, error
from Xlib.ext import xtest
from Xlib.protocol.event import ClientMessage

SECONDS = 20


class NotNow(Exception):
    """What was asked for is not there, or not yet."""


# A program that is busy does not answer in time, and objects and windows go away while they are looked at.
PASSING = (NotNow, GLib.Error, error.XError)


def patiently(read, what, seconds=SECONDS):
    """What `read` gives; it is asked again as long as it fails in a way that may pass."""
    end = time.monotonic() + seconds
    while True:
        try:
            return read()
        except PASSING as problem:
            if time.monotonic() > end:
                raise AssertionError(f"{what}: not within {seconds} seconds: {problem}") from None
        time.sleep(0.01)


def end_with_parent():
    """For a child before its exec: it is killed when the test ends (PR_SET_PDEATHSIG, linux/prctl.h)."""
    ctypes.CDLL(None).prctl(1, signal.SIGKILL)


class Screen:
    """Windows as the X server and the window manager know them, and real input (XTEST)."""

    MODIFIERS = {"ctrl": "Control_L", "alt": "Alt_L", "shift": "Shift_L"}
    TO_MANAGER = X.SubstructureNotifyMask | X.SubstructureRedirectMask

    def __init__(self):
        self.display = display.Display()
        self.display.set_error_handler(lambda *_: None)
        self.root = self.display.screen().root
        # Answers to pings are sent to the root window.
        self.root.change_attributes(event_mask=X.SubstructureNotifyMask)
        # Never shown; the window manager is asked about it.
        self.own = self.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent, event_mask=X.PropertyChangeMask)
        self.atom = self.display.get_atom
        self.pings = 0x5E000000
        self.keys = self.display.get_keyboard_mapping(8, 248)

    def property(self, window, name):
        found = window.get_full_property(self.atom(name), X.AnyPropertyType)
        return found.value if found else []

    def windows(self):
        """The shown windows that the window manager knows."""
        return [self.display.create_resource_object("window", number)
                for number in self.property(self.root, "_NET_CLIENT_LIST")]

    def active(self):
        """The window that gets the keys, in a list of one or none. (The window manager's _NET_ACTIVE_WINDOW goes on
        naming a window that has been hidden.)"""
        focus, windows = self.display.get_input_focus().focus, self.windows()
        while focus not in (X.NONE, X.PointerRoot):
            if focus in windows:
                return [focus]
            focus = focus.query_tree().parent
        return []

    def title(self, window):
        return bytes(self.property(window, "_NET_WM_NAME")).decode()

    def pid(self, window):
        return next(iter(self.property(window, "_NET_WM_PID")), 0)

    def docked(self, window):
        """Shown windows inside of other programs' windows, as tray icons are."""
        for child in window.query_tree().children:
            if self.property(child, "_XEMBED_INFO") and child.get_attributes().map_state == X.IsViewable:
                yield child
            yield from self.docked(child)

    def end(self):
        try:
            self.display.close()
        except error.ConnectionClosedError:
            # A test may have taken the display away.
            pass

    def extents(self, window):
        size = window.get_geometry()
        place = self.root.translate_coords(window, 0, 0)
        return place.x, place.y, size.width, size.height

    def has_tray(self):
        return self.display.get_selection_owner(self.atom("_NET_SYSTEM_TRAY_S0")) != X.NONE

    # --- input -----------------------------------------------------------------------------------------------------

    def _input(self, *events):
        """Sends input in one piece: however busy the machine is, no time passes between the parts of it."""
        for kind, detail in events:
            xtest.fake_input(self.display, kind, detail)
        self.display.sync()

    def move(self, x, y):
        xtest.fake_input(self.display, X.MotionNotify, x=x, y=y)
        self.display.sync()

    def click(self, button, times):
        self._input(*[(X.ButtonPress, button), (X.ButtonRelease, button)] * times)

    def press(self, chord):
        """A character, or a key by its X name, after modifiers: "a", "Tab", "alt+y", "ctrl+shift+F5"."""
        *modifiers, name = chord.split("+") if len(chord) > 1 else [chord]
        code, shifted = self._key(name)
        codes = [self._key(self.MODIFIERS[modifier])[0] for modifier in [*modifiers, *["shift"] * shifted]] + [code]
        self._input(*[(X.KeyPress, code) for code in codes], *[(X.KeyRelease, code) for code in reversed(codes)])

    def _key(self, name):
        """The key, and whether it takes Shift. A character that no key has gets a spare one, for good: programs look at
        the map of the keys whenever they like."""
        symbol = XK.string_to_keysym(name)
        if len(name) == 1:
            symbol = ord(name) + (0x01000000 if ord(name) > 0xFF else 0)
        for shifted in (0, 1):
            for code, symbols in enumerate(self.keys, 8):
                if symbol and symbols[shifted] == symbol:
                    return code, shifted
        if len(name) > 1:
            raise AssertionError(f"there is no key '{name}'")
        spare = next(code for code, symbols in enumerate(self.keys, 8) if not any(symbols))
        self.display.change_keyboard_mapping(spare, [(symbol, symbol)])
        self.keys = self.display.get_keyboard_mapping(8, 248)
        return spare, 0

    # --- messages --------------------------------------------------------------------------------------------------

    def _send(self, target, mask, window, kind, *data):
        data = (32, [*data, *[0] * (5 - len(data))])
        target.send_event(ClientMessage(window=window, client_type=self.atom(kind), data=data), mask)
        self.display.flush()

    def close(self, window):
        """As a click on the window's close button does."""
        self._send(self.root, self.TO_MANAGER, window, "_NET_CLOSE_WINDOW")

    def settle(self, window, seconds):
        """Waits until the window manager, and then the window's program, have handled all input so far. A click goes to
        the window manager first, and toolkits answer pings in the order of events."""
        extents = self.atom("_NET_FRAME_EXTENTS")
        self._send(self.root, self.TO_MANAGER, self.own, "_NET_REQUEST_FRAME_EXTENTS")
        self._wait(self.own, SECONDS, lambda event: event.type == X.PropertyNotify and event.atom == extents)
        self.pings += 1
        self._send(window, X.NoEventMask, window, "WM_PROTOCOLS", self.atom("_NET_WM_PING"), self.pings, window.id)
        self._wait(window, seconds, lambda event: event.type == X.ClientMessage and event.data[1][1] == self.pings)

    def _wait(self, window, seconds, wanted):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            # A window that is gone makes this fail.
            window.get_attributes()
            while self.display.pending_events():
                if wanted(self.display.next_event()):
                    return
            time.sleep(0.002)
        raise NotNow("it is busy")


# States of an accessible object and the relation to its label, by number (at-spi2-core, atspi-constants.h).
ACTIVE, CHECKED, EDITABLE, FOCUSED, MODAL, SENSITIVE, SHOWING, VISIBLE = 1, 4, 7, 12, 16, 24, 25, 30
LABELLED_BY = 2

ENTRIES, TABLES, BUTTONS = ("text", "password text"), ("table", "tree table"), ("push button", "toggle button")
# What is in them is reached through them only.
CLOSED = (*TABLES, "menu bar", "combo box")
# Nothing is in them; not to look saves half of the time.
LEAVES = (*BUTTONS, *ENTRIES, "check box", "icon", "label", "radio button", "scroll bar", "separator")

# The longest that a program may take to answer a question before it is asked again.
ANSWER_MILLISECONDS = 2000


class Node:
    """An accessible object of a program."""

    def __init__(self, bus, reference):
        self.bus = bus
        self.owner, self.path = reference

    def _call(self, interface, method, signature, arguments):
        return self.bus.call_sync(self.owner, self.path, interface, method, GLib.Variant(signature, arguments), None, 0,
                                  ANSWER_MILLISECONDS, None).unpack()

    def ask(self, interface, method, signature="()", *arguments):
        return self._call(f"org.a11y.atspi.{interface}", method, signature, arguments)

    def get(self, interface, name):
        return self._call("org.freedesktop.DBus.Properties", "Get", "(ss)", (f"org.a11y.atspi.{interface}", name))[0]

    def node(self, reference):
        return Node(self.bus, reference)

    def has(self, state):
        states = self.ask("Accessible", "GetState")[0]
        return bool(states[state // 32] >> state % 32 & 1)

    @property
    def pid(self):
        bus = Node(self.bus, ("org.freedesktop.DBus", "/org/freedesktop/DBus"))
        return bus._call("org.freedesktop.DBus", "GetConnectionUnixProcessID", "(s)", (self.owner,))[0]

    @property
    def role(self):
        return self.ask("Accessible", "GetRoleName")[0]

    @property
    def name(self):
        """What a screen reader calls it: its name, or else that of its label."""
        name = self.get("Accessible", "Name")
        if not name:
            for relation, targets in self.ask("Accessible", "GetRelationSet")[0]:
                if relation == LABELLED_BY:
                    name = " ".join(self.node(target).get("Accessible", "Name") for target in targets)
        return name

    @property
    def children(self):
        return [self.node(reference) for reference in self.ask("Accessible", "GetChildren")[0]]

    @property
    def text(self):
        if "org.a11y.atspi.Text" in self.ask("Accessible", "GetInterfaces")[0]:
            return self.ask("Text", "GetText", "(ii)", 0, -1)[0]
        return self.name

    @property
    def extents(self):
        """x, y, width and height on the screen."""
        if not self.has(SHOWING):
            raise NotNow(f"the {self.role} '{self.name}' is not in sight")
        return self.ask("Component", "GetExtents", "(u)", 0)[0]

    @property
    def target(self):
        """The extents of something that can be worked."""
        if not self.has(SENSITIVE):
            raise NotNow(f"the {self.role} '{self.name}' is disabled")
        return self.extents

    def walk(self):
        """Everything below, from top to bottom, with roles. What is in hidden parts is left out."""
        for child in self.children:
            role = child.role
            yield child, role
            if role not in LEAVES and role not in CLOSED and child.has(VISIBLE):
                yield from child.walk()


class Control:
    """A control, looked for anew at every use. `find` gives its node."""

    def __init__(self, application, what, find):
        self.application, self.what, self._find = application, what, find

    def _read(self, read):
        return self.application.patiently(lambda: read(self._find()), self.what)

    text = property(lambda self: self._read(lambda node: node.text))
    name = property(lambda self: self._read(lambda node: node.name))
    role = property(lambda self: self._read(lambda node: node.role))
    description = property(lambda self: self._read(lambda node: node.get("Accessible", "Description")))
    enabled = property(lambda self: self._read(lambda node: node.has(SENSITIVE)))
    editable = property(lambda self: self._read(lambda node: node.has(EDITABLE)))
    checked = property(lambda self: self._read(lambda node: node.has(CHECKED)))
    focused = property(lambda self: self._read(lambda node: node.has(FOCUSED)))
    caret = property(lambda self: self._read(lambda node: node.get("Text", "CaretOffset")))
    extents = property(lambda self: self._read(lambda node: node.extents))

    @property
    def selection(self):
        """Start and end of the selected part of the text; both are the same when nothing is selected."""
        return self._read(lambda node: node.ask("Text", "GetSelection", "(i)", 0))

    @property
    def mnemonic(self):
        """The chord that works the control, such as "alt+p", empty when there is none."""
        binding = self._read(lambda node: node.ask("Action", "GetKeyBinding", "(i)", 0)[0])
        return binding.partition(";")[0].replace("<Alt>", "alt+")

    @property
    def showing(self):
        """True when it is there and in sight."""
        def look():
            try:
                return self._find().has(SHOWING)
            except NotNow:
                return False
        return self.application.patiently(look, self.what)

    def expect(self, **wanted):
        """Waits until the properties have these values."""
        def look():
            found = {name: getattr(self, name) for name in wanted}
            if found != wanted:
                raise NotNow(f"it is {found}")
        self.application.patiently(look, f"{self.what} is {wanted}")

    def point_at(self):
        """Moves the pointer to it as soon as it is enabled."""
        self.application.point_at(lambda: self._read(lambda node: node.target))

    def click(self, button=1, times=1):
        self.point_at()
        self.application.desktop.click(button, times)

    def enter(self, text):
        """Replaces the text of an entry by typing."""
        self.click()
        self.application.desktop.press("ctrl+a")
        self.application.desktop.type(text)


class Table(Control):
    """A list with columns."""

    @staticmethod
    def _cells(node, row):
        return [node.node(node.ask("Table", "GetAccessibleAt", "(ii)", row, column)[0])
                for column in range(node.get("Table", "NColumns"))]

    @classmethod
    def texts(cls, node, rows):
        # A cell with a picture holds its text in a part of it.
        return [tuple(cell.name or "".join(part.name for part in cell.children) for cell in cls._cells(node, row))
                for row in rows]

    size = property(lambda self: self._read(lambda node: node.get("Table", "NRows")))
    rows = property(lambda self: self._read(lambda node: self.texts(node, range(node.get("Table", "NRows")))))
    selected = property(lambda self: self._read(lambda node: node.ask("Table", "GetSelectedRows")[0]))
    selected_rows = property(
        lambda self: self._read(lambda node: self.texts(node, node.ask("Table", "GetSelectedRows")[0])))

    @property
    def headers(self):
        return self._read(lambda node: [node.ask("Table", "GetColumnDescription", "(i)", column)[0]
                                        for column in range(node.get("Table", "NColumns"))])

    def click_row(self, row, button=1, times=1, column=0):
        """Clicks on the row with this number, or with this text in its first cell."""
        self.application.point_at(lambda: self._read(lambda node: self._cell_target(node, row, column)))
        self.application.desktop.click(button, times)

    def _cell_target(self, node, row, column):
        if isinstance(row, str):
            firsts = [texts[0] for texts in self.texts(node, range(node.get("Table", "NRows")))]
            if row not in firsts:
                raise NotNow(f"its rows are {firsts}")
            row = firsts.index(row)
        x, y, width, height = self._cells(node, row)[column].extents
        left, top, full_width, full_height = node.target
        if not (left <= x < left + full_width and top <= y <= top + full_height - height):
            raise NotNow(f"row {row} is scrolled out of sight")
        return x, y, min(width, left + full_width - x), height


class MenuItem(Control):
    """A menu or an item of it, named by the path to it from the node that `start` gives."""

    def __init__(self, application, start, path):
        self.start, self.path = start, path
        super().__init__(application, f"menu {' > '.join(path)}", self._follow)

    def _follow(self):
        node = self.start()
        for name in self.path:
            children = {child.name: child for child in node.children}
            if name not in children:
                raise NotNow(f"there is no '{name}' among {list(children)}")
            node = children[name]
        return node

    @property
    def items(self):
        """Captions and whether they are enabled, without separators."""
        return self._read(lambda node: [(child.name, child.has(SENSITIVE)) for child in node.children
                                        if child.role != "separator"])

    def choose(self):
        """Goes to the item with the mouse. Menus open with a click, submenus when the pointer is on them."""
        way = [MenuItem(self.application, self.start, self.path[:depth]) for depth in range(1, len(self.path) + 1)]
        in_bar = self._read(lambda _: self.start().role) == "menu bar"
        for parent, child in zip(way, way[1:]):
            if not child.showing:
                parent.point_at()
                if in_bar and parent is way[0]:
                    self.application.desktop.click()
        self.click()


class Part:
    """Something with controls: a window with this title, or what overrides `root`."""

    def __init__(self, application, title, what=None):
        self.application, self.title, self.what = application, title, what or f"the window '{title}'"
        self._known = {}

    def root(self):
        """The node that everything is in."""
        for node in self.application.node.children:
            if node.get("Accessible", "Name") == self.title and node.has(SHOWING):
                return node
        raise NotNow(f"the windows are {self.application.windows}")

    def _read(self, read):
        return self.application.patiently(read, self.what)

    def control(self, roles, name=None):
        """The control of one of the roles (a text or several), with this name unless there is only one."""
        roles = (roles,) if isinstance(roles, str) else roles
        kind = Table if roles == TABLES else Control
        return kind(self.application, f"{roles[0]} '{name or ''}' of {self.what}", lambda: self.search(roles, name))

    def entry(self, name=None):
        return self.control(ENTRIES, name)

    def button(self, name=None):
        return self.control(BUTTONS, name)

    def check(self, name=None):
        return self.control("check box", name)

    def label(self, name=None):
        return self.control("label", name)

    def table(self, name=None):
        return self.control(TABLES, name)

    def menu(self, *path):
        """An item of the menu bar, such as menu("File", "Exit")."""
        return MenuItem(self.application, lambda: self.search(("menu bar",), None), path)

    def search(self, roles, name):
        """The node of a control."""
        # To look at everything takes a tenth of a second, so what was found last is looked at first.
        known = self._known.pop((roles, name), None)
        if not known or not known.has(SHOWING) or name not in (None, known.name):
            there = [(node, node.name) for node, role in self.root().walk() if role in roles and node.has(VISIBLE)]
            matches = [node for node, found in there if name in (None, found)]
            # The same name may stand on pages of which one is in sight.
            matches = [node for node in matches if node.has(SHOWING)] or matches
            if len(matches) != 1:
                raise NotNow(f"{len(matches)} match among {[found for _, found in there]}")
            known = matches[0]
        self._known[roles, name] = known
        return known

    @property
    def focus(self):
        """Role and name of what has the keyboard focus, or None."""
        found = self._read(lambda: [(role, node.name) for node, role in self.root().walk() if node.has(FOCUSED)])
        return found[-1] if found else None

    @property
    def buttons(self):
        """Names of the buttons in sight."""
        return self._read(lambda: [node.name for node, role in self.root().walk()
                                   if role in BUTTONS and node.has(SHOWING)])

    def describe(self):
        """What is to be seen, for the message of a failed test."""
        for node, role in self.root().walk():
            text = Table.texts(node, range(min(node.get("Table", "NRows"), 20))) if role in TABLES else node.text
            if node.has(SHOWING) and (node.name or text):
                yield f"  {role} '{node.name}': {text!r}{'' if node.has(SENSITIVE) else ', disabled'}"


# The system call poll(2), which programs wait in for events (asm/unistd.h, x86_64).
POLL = "7"
# A program rests when nothing is due for this long: the next frame, with a new layout, comes within 17 ms.
REST_MILLISECONDS = 40
# Clicks after this time are no double click: tests/gui/display sets a tenth of a second.
DOUBLE_CLICK_SECONDS = 0.15


class Box(Part):
    """A dialog that is on top."""

    def __init__(self, application, title):
        super().__init__(application, title, f"the box '{title}'")
        self.screen = application.desktop.screen
        self.window = self._read(self._active)
        self._read(self.root)
        application.settle()

    def _active(self):
        for window in self.screen.active():
            if self.screen.title(window) == self.title and self.screen.pid(window) == self.application.pid:
                return window
        raise NotNow(f"the windows are {self.application.windows}")

    def root(self):
        # The accessible name of a message box is its kind ("Question"), not its title.
        for node in self.application.node.children:
            if node.has(MODAL) and node.has(ACTIVE):
                return node
        raise NotNow("no modal window is active")

    @property
    def text(self):
        """Its texts, one after the other."""
        return self._read(lambda: "\n".join(node.text for node, role in self.root().walk()
                                            if role == "label" and node.has(SHOWING)))

    def press(self, name, by_key=False):
        """Presses a button with the mouse or with its mnemonic, and waits until the box is gone."""
        button = self.button(name)
        if by_key:
            self.application.desktop.press(button.mnemonic)
        else:
            button.click()
        self.expect_gone()

    def expect_gone(self):
        def look():
            if self.window in self.screen.windows():
                raise NotNow("it is still there")
        self.application.patiently(look, f"the end of {self.what}")
        self.application.settle()

    def leave(self, name, path=None):
        """In a file dialog: types a path, if any, and presses a button. What is asked next may be on top of it then."""
        if path:
            self.entry("Name:").enter(str(path))
            self.entry("Name:").expect(text=str(path))
        self.application.patiently(lambda: self._click_until_left(name), f"button '{name}' of {self.what}")

    def _click_until_left(self, name):
        def look():
            if self.window in self.screen.active():
                raise NotNow("it is still on top")
        x, y, width, height = self.search(BUTTONS, name).target
        self.application.desktop.move(x + width // 2, y + height // 2)
        self.application.desktop.click()
        try:
            patiently(look, self.what, 1)
        except AssertionError:
            # The list of proposals opens whenever a folder has been read, and takes the click.
            look()


class Popup(Part):
    """The pop-up window that is open: a menu, or the list of a combo box."""

    def root(self):
        for node in self.application.node.children:
            if node.role == "window" and node.has(SHOWING):
                return node
        raise NotNow("no pop-up is open")

    def item(self, *path):
        return MenuItem(self.application, lambda: self.search(("menu",), None), path)

    @property
    def items(self):
        return self.item().items


class Application(Part):
    """A running program; as a Part it is its main window."""

    def __init__(self, desktop, arguments, title, environment, options):
        super().__init__(self, title)
        self.desktop = desktop
        self._output, self._errors = tempfile.TemporaryFile(), tempfile.TemporaryFile()
        self.process = subprocess.Popen(
            [str(argument) for argument in arguments], env={**os.environ, **environment},
            stdin=subprocess.DEVNULL, stdout=self._output, stderr=self._errors, preexec_fn=end_with_parent,
            **{"cwd": os.environ["HOME"], **options})
        self.pid = self.process.pid
        self.code_was_read = False
        self._node = None
        self._pinged = None

    out = property(lambda self: self._written(self._output))
    err = property(lambda self: self._written(self._errors))

    @staticmethod
    def _written(file):
        return os.pread(file.fileno(), os.fstat(file.fileno()).st_size, 0).decode(errors="replace")

    @property
    def node(self):
        """The program's own node, the parent of its windows."""
        if not self._node:
            registry = Node(self.desktop.bus, ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"))
            own = [node for node in registry.children if node.pid == self.pid]
            if not own:
                raise NotNow("the program is not registered")
            self._node = own[0]
        return self._node

    # --- windows -------------------------------------------------------------------------------------------------

    def _windows(self):
        screen = self.desktop.screen
        return [window for window in screen.windows() if screen.pid(window) == self.pid]

    @property
    def windows(self):
        """Titles of the program's windows that are shown."""
        return patiently(lambda: [self.desktop.screen.title(window) for window in self._windows()], "list of windows")

    def expect_windows(self, *titles):
        """Waits until these windows are shown, and no others."""
        def look():
            if sorted(self.windows) != sorted(titles):
                raise NotNow(f"the windows are {self.windows}")
        self.patiently(look, f"the windows {titles}")

    def expect_active(self):
        """Waits until the main window is shown and gets the keys."""
        def look():
            if not self.root().has(ACTIVE):
                raise NotNow("it is not active")
        self.patiently(look, self.what)
        self.settle()

    def window(self, title):
        """Another window, one that is not modal."""
        return Part(self, title)

    def expect_box(self, title):
        return Box(self, title)

    def popup(self):
        popup = Popup(self, None, "the pop-up")
        self.patiently(popup.root, popup.what)
        return popup

    def close(self):
        """Closes the main window by its frame's button."""
        for window in self._windows():
            if self.desktop.screen.title(window) == self.title:
                self.desktop.screen.close(window)
        self.settle()

    # --- waiting -------------------------------------------------------------------------------------------------

    def patiently(self, read, what):
        def look():
            try:
                return read()
            except PASSING as problem:
                if self.process.poll() is not None:
                    raise AssertionError(f"{what}: the program has ended with {self.process.returncode}: {problem}\n"
                                         f"{self.err}") from None
                raise
        return patiently(look, what)

    def settle(self, seconds=SECONDS):
        """Waits until the program has handled every key and click so far and rests, or has ended."""
        def look():
            if self.process.poll() is not None:
                return
            # A hidden window answers too.
            self._pinged = next(iter(self._windows()), self._pinged)
            if self._pinged:
                self.desktop.screen.settle(self._pinged, 1)
            self._expect_rest()
        patiently(look, f"{self.what} rests", seconds)

    def _expect_rest(self):
        """The program's first thread waits for events, and nothing is due soon."""
        process = pathlib.Path(f"/proc/{self.pid}")
        try:
            number, *arguments = (process / "syscall").read_text().split()
            if number != POLL:
                raise NotNow("it is busy")
            place, count, milliseconds = [int(argument, 16) for argument in arguments[:3]]
            with open(process / "mem", "rb", buffering=0) as memory:
                memory.seek(place)
                waited_for = [os.readlink(process / f"fd/{descriptor}")
                              for descriptor, _, _ in struct.iter_unpack("<ihh", memory.read(8 * count))]
        except (OSError, struct.error) as problem:
            raise NotNow(problem) from problem
        # An event loop can be woken up; a wait for the kernel or for another program can not.
        if "anon_inode:[eventfd]" not in waited_for or 0 <= ctypes.c_int(milliseconds).value < REST_MILLISECONDS:
            raise NotNow("it is busy")

    def wait_exit(self, seconds=SECONDS):
        """The program's exit code; it is the test's to judge then."""
        try:
            code = self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"the program has not ended within {seconds} seconds: {self.windows}") from None
        self.code_was_read = True
        return code

    def end(self):
        """Kills the program, if need be. Gives what is wrong: an exit code that the test did not ask for."""
        code = self.process.poll()
        self.process.kill()
        self.process.wait()
        wrong = f"{self.process.args} ended with {code}:\n{self.err}" if code and not self.code_was_read else ""
        self._output.close()
        self._errors.close()
        return wrong

    # --- the mouse -----------------------------------------------------------------------------------------------

    def point_at(self, find):
        """Moves the pointer to the middle of a place as soon as that stays where it is."""
        place, former = None, find()
        while place != former:
            self.settle()
            place, former = find(), place
        x, y, width, height = place
        self.desktop.move(x + width // 2, y + height // 2)

    def click_tray(self, button=1):
        """Clicks on the program's icon in the tray."""
        def find():
            screen = self.desktop.screen
            for tray in screen.root.query_tree().children:
                for icon in screen.docked(tray):
                    if screen.pid(icon) == self.pid:
                        return screen.extents(icon)
            raise NotNow("no tray holds it")
        self.point_at(lambda: self.patiently(find, "the tray icon"))
        self.desktop.click(button)


class Desktop:
    """The screen, keyboard and mouse of a test case, and the programs that it starts."""

    def __init__(self, test):
        self.test = test
        self.screen = Screen()
        flags = Gio.DBusConnectionFlags
        self.bus = Gio.DBusConnection.new_for_address_sync(
            os.environ["AT_SPI_BUS_ADDRESS"], flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)
        self.programs = []
        self._tray = None
        self._clicked = 0
        test.addCleanup(self._end)

    def start(self, program, *arguments, title, wait=True, environment=None, **options):
        """Starts a program and waits for its main window, which has this title. Options are subprocess.Popen's."""
        application = Application(self, [program, *arguments], title, environment or {}, options)
        self.programs.append(application)
        if wait:
            application.expect_active()
        return application

    def start_tray(self):
        """Starts what shows tray icons; without it there is none, as on many desktops."""
        self._tray = subprocess.Popen(
            ["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request", "--height", "32"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, preexec_fn=end_with_parent)

        def look():
            if not self.screen.has_tray():
                raise NotNow("nobody shows icons")
        patiently(look, "the tray")

    def settle(self):
        for application in self.programs:
            application.settle()

    def _expect_keys(self):
        """Waits until one of the programs gets the keys: between two windows nobody does."""
        pids = [application.pid for application in self.programs]

        def look():
            if not any(self.screen.pid(window) in pids for window in self.screen.active()):
                raise NotNow("no window of the test's programs gets the keys")
        patiently(look, "a window to type to")

    def press(self, *chords):
        """Presses keys by their X names, such as "Tab", "alt+y" or "shift+F10", one chord after the other."""
        for chord in chords:
            self._expect_keys()
            self.screen.press(chord)
            self.settle()

    def type(self, text):
        """Types a text faster than any program follows; each key goes to what then has the focus."""
        self._expect_keys()
        for character in text:
            self.screen.press(character)
        self.settle()

    def move(self, x, y):
        self.screen.move(x, y)
        self.settle()

    def click(self, button=1, times=1):
        """Clicks where the pointer is."""
        time.sleep(max(0, self._clicked + DOUBLE_CLICK_SECONDS - time.monotonic()))
        self.screen.click(button, times)
        self._clicked = time.monotonic()
        self.settle()

    def screenshot(self, path, window="root"):
        """Keeps a picture of the screen, or of the window with this title."""
        subprocess.run(["import", "-silent", "-window", window, str(path)], check=True, timeout=SECONDS)

    def _end(self):
        result = self.test._outcome.result
        if any(case is self.test for case, _ in result.failures + result.errors):
            self._keep_picture()
        wrong = "".join([application.end() for application in self.programs])
        if self._tray:
            self._tray.kill()
            self._tray.wait()
        self.bus.close_sync()
        self.screen.end()
        if wrong:
            self.test.fail(wrong)

    def _keep_picture(self):
        build = pathlib.Path(os.environ.get("CORVANE_BUILD", "."))
        folder = pathlib.Path(os.environ.get("CORVANE_GUI_SHOTS", build / "gui-shots"))
        try:
            folder.mkdir(parents=True, exist_ok=True)
            self.screenshot(folder / f"{self.test.id()}.png")
            print(f"screenshot: {folder}/{self.test.id()}.png", file=sys.stderr)
            for application in self.programs:
                print(f"{application.windows}, standard error: {application.err}", file=sys.stderr)
                print("\n".join(application.describe()), file=sys.stderr)
        except (OSError, subprocess.SubprocessError, AssertionError, *PASSING) as problem:
            print(f"no screenshot or description: {problem}", file=sys.stderr)

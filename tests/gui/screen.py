"""The X server of the desktop: its windows, keyboard and mouse."""

import select
import time

from Xlib import X, XK, display, error
from Xlib.ext import xtest
from Xlib.protocol.event import ClientMessage

from waiting import SECONDS, NotNow

# How long it takes at most to see that a window which was to answer is gone.
GONE_SECONDS = 0.02


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
            select.select([self.display.fileno()], [], [], GONE_SECONDS)
        raise NotNow("it is busy")

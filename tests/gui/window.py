"""The main window on links of the test's own: how a case opens it, and what it looks at and works in it.

    class Cases(WindowTest):
        def test_something(self):
            self.veth("eth0", mac=OWN)
            window = self.open_window()
            self.open_panel("eth0")
            self.desktop.type("000c294f8e35")
            self.assertEqual(self.octets, ["00", "0C", "29", "4F", "8E", "35"])
            window.button("Close").click()
            self.expect_fact("Link Status:", "Up, Operational")
"""

import shutil

from controls import ACTIVE, MODAL, SHOWING, VISIBLE, Control, Table
from desktop import Desktop
from waiting import NotNow
from world import World

TITLE = "Orvella Corvane"
LIST = "Network Connections"
RESTART = "Automatically Restart Network Connection To Apply Changes"
OCTETS = 6
EMPTY = [""] * OCTETS


def octet_name(number):
    """What a screen reader calls the box of an octet; the first is number 0."""
    return f"MAC address, octet {number + 1} of {OCTETS}"


class Connections(Table):
    """The list of connections."""

    names = property(lambda self: [texts[0] for texts in self.rows])

    @property
    def choice(self):
        """Name of the selected connection, or None."""
        return next((texts[0] for texts in self.selected_rows), None)

    def row(self, name):
        """The texts of the row of this name."""
        rows = {texts[0]: texts for texts in self.rows}
        if name not in rows:
            raise AssertionError(f"there is no row '{name}' among {list(rows)}")
        return rows[name]

    def expect_row(self, name, *texts):
        """Waits until the row of this name has these texts behind it; None stands for any."""
        def look(node):
            rows = {found[0]: found[1:] for found in self.texts(node, range(node.get("Table", "NRows")))}
            if name not in rows or any(text not in (None, found) for text, found in zip(texts, rows[name])):
                raise NotNow(f"its rows are {rows}")
        self._read(look)


class WindowTest(World):
    """Base of the test cases."""

    desktop = None
    window = None

    def copy_programs(self, folder="/run/programs"):
        original, copy = self.programs, super().copy_programs(folder)
        for name in ("nicx-window", "help.html"):
            shutil.copy(original / name, copy / name)
        return copy

    def open_window(self, *arguments, title=TITLE, user=None, **options):
        """Starts the window program and waits until its main window has the keys. Gives the application, which is a
        Part: the main window. With wait=False nothing is waited for."""
        if user is not None:
            options.update(user=user, group=user, extra_groups=[])
        self.desktop = self.desktop or Desktop(self)
        self.window = self.desktop.start(self.programs / "nicx-window", *arguments, title=title, **options)
        return self.window

    def expect_box(self, title, text=None):
        """Waits for a box and, when a text is given, asserts that it has it. Unlike Application.expect_box it also
        finds one that has the main window's title."""
        def look():
            if not any(node.has(MODAL) and node.has(ACTIVE) for node in self.window.node.children):
                raise NotNow(f"no box is open; the windows are {self.window.windows}")
        self.window.patiently(look, f"the box '{title}'")
        box = self.window.expect_box(title)
        if text is not None:
            self.assertEqual(box.text, text)
        return box

    # --- the list and the facts ----------------------------------------------------------------------------------

    @property
    def connections(self):
        """The list of connections."""
        return Connections(self.window, f"the list '{LIST}'", self.window.table(LIST)._find)

    def choose(self, name):
        """Selects a connection with the mouse; the facts are its then."""
        self.connections.click_row(name)
        self.expect_fact("Connection Name:", name)

    def fact(self, name):
        """The text behind the caption `name`, which is its accessible name too: "MAC Address:", "Done last" ..."""
        def find():
            for node, role in self.window.root().walk():
                # Caption and text have the same name, the text comes behind.
                if role == "label" and node.name == name and node.has(VISIBLE):
                    found.append(node)
            if not found or not found[-1].has(SHOWING):
                found.clear()
                raise NotNow(f"there is no fact '{name}'")
            return found[-1]
        found = []
        return Control(self.window, f"the fact '{name}'", lambda: found[-1] if found else find())

    def expect_fact(self, name, text):
        """Waits until the fact has this text."""
        self.fact(name).expect(text=text)

    # --- the panel -----------------------------------------------------------------------------------------------

    def open_panel(self, name=None):
        """Opens the panel for another MAC address with Ctrl+M, for the connection of this name or the selected one."""
        if name:
            self.choose(name)
        self.desktop.press("ctrl+m")
        self.octet(0).expect(showing=True, focused=True)

    @property
    def panel_is_open(self):
        return self.octet(0).showing

    def octet(self, number):
        """The box of an octet; the first is number 0."""
        return self.window.entry(octet_name(number))

    @property
    def octets(self):
        """The texts of the six boxes."""
        return [self.octet(number).text for number in range(OCTETS)]

    @property
    def vendor(self):
        """The vendor box."""
        return self.window.entry("Vendor:")

    def assert_focus(self, name):
        """The control of this name, or the box of the octet of this number, has the keyboard focus."""
        focus = self.window.focus
        self.assertEqual(focus and focus[1], octet_name(name) if isinstance(name, int) else name)


class PanelTest(WindowTest):
    """Base of the test cases that begin in the open panel of a connection."""

    def setUp(self):
        super().setUp()
        self.veth("eth0", "10.1.0.2/24", mac="02:00:00:00:10:01")
        self.prepare()
        self.open_window()
        self.open_panel("eth0")

    def prepare(self):
        """What comes before the start of the window."""

    def press(self, *chords):
        self.desktop.press(*chords)

    def type(self, text):
        self.desktop.type(text)

    @property
    def change_now(self):
        return self.window.button("Change Now !")

    def assert_octets(self, octets, focus):
        self.assertEqual(self.octets, octets)
        self.assert_focus(focus)

    def assert_caret(self, number, position):
        """The box has the focus, the caret is here and nothing is selected."""
        self.assert_focus(number)
        box = self.octet(number)
        self.assertEqual((box.caret, box.selection), (position, (position, position)))

    def assert_selected(self, number):
        """The box has the focus and its whole text is selected."""
        self.assert_focus(number)
        box = self.octet(number)
        self.assertEqual(box.selection, (0, len(box.text)))

"""The main window of nicx.exe under Wine: how a case opens it, and what it looks at and works in it."""

from machine import WineTest
from facts import Facts
from parts import ENTRIES, TEXTS
from programs import Program
from waiting import NotNow
from world import ip

TITLE = "Orvella Corvane"
LIST = "Network Connections"
OCTETS = 6
OWN, OWN_TEXT = "02:00:00:00:10:01", "02-00-00-00-10-01"
SECOND, SECOND_TEXT = "02:00:00:00:10:02", "02-00-00-00-10-02"
NEW, NEW_TEXT, TYPED = "00:0c:29:4f:8e:35", "00-0C-29-4F-8E-35", "000c294f8e35"
OFFICE = ("Office", 2 | 8 | 16 | 32, NEW_TEXT, ["10.1.0.5", "10.2.0.5"], ["255.255.255.0", "255.255.0.0"],
          ["10.1.0.1"], ["20"], ["10.1.0.53", "9.9.9.9"])


class WindowTest(Facts, WineTest):
    """Base of the test cases on the main window."""

    window = None
    tray_runs = False

    def open_window(self, *arguments, **options):
        """Starts the program and waits until its main window has the keys. There is a tray, as Windows always has one;
        Wine would open a window for the icon otherwise."""
        if not self.tray_runs:
            Program.start_tray(self.wine)
            self.tray_runs = True
        self.window = self.nicx(*arguments, title=TITLE, **options)
        self.window.expect_window(TITLE)
        # Wine's desktop takes the foreground from the program when it shows the icon; a click brings it back.
        self.window.patiently(self.window.tray_place, "the icon in the tray")
        self.window.label("Network Connection Details").click()
        self.window.expect_window(TITLE)
        return self.window

    def end_window(self):
        """Closes the main window; the program has nothing to complain of."""
        self.window.close()
        self.assertEqual(self.window.wait_exit(), 0)

    def expect_box(self, title, text, icon, press="OK", by_key=False):
        """Waits for a message box of exactly this text and icon and presses one of its buttons."""
        buttons = ["OK"] if press == "OK" else ["Yes", "No", "Cancel"]
        self.window.expect_box(title, text, icon, buttons).press(press, by_key)

    # --- the list and the facts ----------------------------------------------------------------------------------

    @property
    def connections(self):
        """The list of connections."""
        return self.window.table(LIST)

    def expect_row(self, name, *texts):
        """Waits until the row of this name has these texts behind it; None stands for any."""
        def look():
            rows = {row[0]: row[1:] for row in self.connections.rows}
            if name not in rows or any(text not in (None, found) for text, found in zip(texts, rows[name])):
                raise NotNow(f"its rows are {rows}")
        self.window.patiently(look, f"the row {(name, *texts)}")

    def choose(self, name):
        """Selects a connection with the mouse; the facts are its then."""
        self.connections.click_row(name)
        self.expect_facts({"Connection Name:": name})

    def _facts(self):
        # Caption and text have the same name, the text comes behind.
        return {node.facts["name"]: node.text for node in self.window._root().walk() if node.kind in (*ENTRIES, *TEXTS)}

    def expect_list(self, name, *rows):
        """Waits until one of the lists of addresses has these rows; its header counts them."""
        table = self.window.table(name)
        table.expect(rows=list(rows))
        self.assertEqual(table.headers[0], f"{name} ({len(rows)})")
        return table

    # --- the panel for another MAC address -----------------------------------------------------------------------

    def open_panel(self, name):
        self.choose(name)
        self.window.press("ctrl+m")
        self.octet(0).expect(showing=True, focused=True)

    def octet(self, number):
        """The box of an octet; the first is number 0."""
        return self.window.entry(f"MAC address, octet {number + 1} of {OCTETS}")

    @property
    def octets(self):
        facts = self.facts
        return [facts[f"MAC address, octet {number + 1} of {OCTETS}"] for number in range(OCTETS)]


class TwoConnectionsTest(WindowTest):
    """Base of the test cases on a machine with two connections, lan0 and lan1."""

    def setUp(self):
        super().setUp()
        self.veth("lan0", "10.1.0.2/24", mac=OWN)
        self.veth("lan1", "10.2.0.2/16", mac=SECOND)
        ip("route", "add", "default", "via", "10.1.0.1", "metric", "5")
        self.describe_links()
        self.describe_shell()

    def choose_item(self, menu, name):
        self.window.press({"Connection": "alt+c", "TCP/IP": "alt+t", "Presets": "alt+s"}[menu])
        self.window.popup().click(name)

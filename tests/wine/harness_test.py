"""The means of the tests under Wine, on a program of which everything is known: what they say of it must be so."""

import subprocess
import sys

from machine import WineTest
from parts import BUTTONS
from programs import Program
from wine import TOOLS, number, processes_in, text, texts
from wine_limits import DEAD_INTERFACES_STAY
from world import ip, wait_for

TITLE = "Sample é —"


class Harness(WineTest):
    def start(self, *arguments, **options):
        return Program(self.wine, TOOLS / "sample.exe", *arguments, **options)

    def test_a_message_box(self):
        program = self.start("box")
        box = program.expect_box("A title", "First line\n\nThird é \"line\"", "error", ["OK"])
        box.press("OK")
        self.assertEqual(program.wait_exit(), 7)

    def test_controls_by_keys_and_clicks(self):
        program = self.start(title=TITLE)
        window = program.expect_window(TITLE)
        table = window.table(None)
        self.assertEqual((table.headers, table.rows), (["Name", "Address"], [("eth0", "10.1.0.2"),
                                                                            ("café", "10.1.0.3")]))
        table.click_row("café")
        self.assertEqual(table.selected_rows, [("café", "10.1.0.3")])
        edit = window.entry(None)
        edit.enter("Grün & 20 €")
        self.assertEqual((edit.text, edit.focused), ("Grün & 20 €", True))
        tick = window.control(BUTTONS, "Tick")
        program.press("Tab", "space")
        self.assertEqual((tick.checked, tick.focused), (True, True))
        tick.click()
        self.assertFalse(tick.checked)

    def test_menus(self):
        program = self.start(title=TITLE)
        window = program.expect_window(TITLE)
        self.assertEqual(window.menu("File").items, [("Print", False), ("Exit", True)])
        program.press("alt+f")
        self.assertEqual(program.popup().items, [("Print", False), ("Exit", True)])
        program.popup().click("Exit")
        self.assertEqual(program.wait_exit(), 5)

    def test_the_registry_keeps_bytes(self):
        key = r"SOFTWARE\Harness\Sub"
        self.assertIsNone(self.registry.read(key))
        values = {"A": text("né"), "B": texts("one", "two"), "C": number(258), "D": (3, b"\0\xff\x80"), "": text("d")}
        for name, value in values.items():
            self.registry.write(key, name, value)
        self.assertEqual(self.registry.read(key), values)
        self.assertEqual(self.registry.keys(r"SOFTWARE\Harness"), ["Sub"])
        self.registry.delete(key, "A")
        self.assertNotIn("A", self.registry.read(key))
        self.registry.delete(r"SOFTWARE\Harness")
        self.assertIsNone(self.registry.read(key))

    def test_every_test_has_a_prefix_and_links_of_its_own(self):
        self.assertEqual(self.registry.keys(r"SOFTWARE\Harness"), None)
        self.veth("eth0", "10.1.0.2/24")
        self.bridge("br0")
        self.describe_links()
        self.assertEqual(sorted(self.links), ["br0", "eth0"])
        self.assertEqual(self.driver("br0")["ComponentId"], text("ms_bridgemp"))
        self.assertEqual(self.tcpip("eth0"), {"EnableDHCP": number(0)})
        ip("link", "delete", "br0")
        self.assertEqual(list(self.interface_ids()), ["eth0"])

    def test_nothing_outlives_a_test_that_is_killed(self):
        script = ("import time, unittest\n"
                  "import wine\n"
                  "wine.ROOM = wine.pathlib.Path('/run/other')\n"
                  "prefix = wine.Wine(unittest.TestCase())\n"
                  "print('ready', flush=True)\n"
                  "time.sleep(600)\n")
        test = subprocess.Popen([sys.executable, "-c", script], stdout=subprocess.PIPE)
        self.assertEqual(test.stdout.readline(), b"ready\n")
        self.assertTrue(processes_in("/run/other/prefix"))
        test.kill()
        test.wait()
        test.stdout.close()
        wait_for(lambda: not processes_in("/run/other/prefix"), "all processes of the prefix have ended")
        self.assertTrue(processes_in(self.wine.prefix))


class Limits(WineTest):
    """What Wine does otherwise than Windows (wine_limits.py)."""

    def test_interfaces_that_are_down_or_gone_stay(self):
        for name in ("eth0", "down0", "gone0"):
            self.veth(name)
        interfaces = self.wine.observer.ask("interfaces")
        self.assertEqual(len(interfaces), 3)
        ip("link", "set", "down0", "down")
        ip("link", "delete", "gone0")
        self.assertEqual(self.wine.observer.ask("interfaces") == interfaces, DEAD_INTERFACES_STAY)

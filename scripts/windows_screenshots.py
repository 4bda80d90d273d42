"""Takes the pictures of the Windows program under Wine for scripts/screenshots: windows_screenshots.py FOLDER, inside
tests/netns/sandbox and tests/gui/display, with the environment of the tests in tests/wine."""

import pathlib
import sys
import unittest

from pictures import DESKTOP_COLOUR, MARGIN, NOWHERE, keep
from programs import Program
from wine import REG_SZ
from wine_window import WindowTest
from world import ip, preset_bytes

HOME = ("Home", 1 | 2 | 4, "", ["0.0.0.0"], ["0.0.0.0"], [""], [""], [""])
OFFICE = ("Office", 2 | 8 | 16 | 32, "8C-56-C5-FB-82-03", ["192.168.40.17"], ["255.255.255.0"], ["192.168.40.1"], ["10"],
          ["192.168.40.53", "192.168.40.54"])


class Pictures(WindowTest):
    pictures = pathlib.Path(sys.argv[1]).resolve()

    def runTest(self):
        self.pictures.mkdir(parents=True, exist_ok=True)
        self.make_machine()
        Program.start_tray(self.wine)
        window = self.open_window()
        self.screen = window.screen
        self.screen.root.change_attributes(background_pixel=DESKTOP_COLOUR)
        self.screen.root.clear_area()
        self.choose("Local Area Connection")
        self.keep("windows-main")
        self.open_panel("Local Area Connection")
        window.type("8c56c5fb8203")
        self.keep("windows-change-mac")
        window.press("Escape", "ctrl+t")
        self.keep("windows-preset")
        window.press("Escape")
        self.end_window()
        self.take_box()

    def make_machine(self):
        self.veth("lan0", "192.168.40.20/24", mac="00:0c:29:4f:8e:35")
        self.veth("lan1", "10.20.0.7/16", mac="00:1b:21:7a:44:90")
        ip("route", "add", "default", "via", "192.168.40.1", "metric", "5")
        self.describe_links(lan0="Local Area Connection", lan1="Local Area Connection 2")
        self.describe_shell()
        self.registry.write(self.tcpip_key("lan0"), "NameServer", (REG_SZ, b"192.168.40.53,192.168.40.54\0"))
        (self.folder / "presets.npf").write_bytes(preset_bytes(HOME, OFFICE))

    def take_box(self):
        """What the command line reports."""
        title = "Done - Orvella Corvane v4"
        self.window = self.nicx("-n", "connection", "2", "-m", "8c56c5fb8203", title=title)
        box = self.window.expect_box(title)
        self.keep("windows-box")
        box.press("OK")
        self.assertEqual(self.window.wait_exit(), 0)

    def keep(self, name):
        """A picture of the window that gets the keys, with its frame."""
        self.window.screen.move(*NOWHERE)
        self.window.settle()
        window = self.window.screen.active()[0]
        while (parent := window.query_tree().parent) != self.window.screen.root:
            window = parent
        x, y, width, height = self.window.screen.extents(window)
        x, y = max(0, x - MARGIN), max(0, y - MARGIN)
        keep(self.pictures / f"{name}.png", (x, y, width + 2 * MARGIN, height + 2 * MARGIN))


if __name__ == "__main__":
    outcome = unittest.TextTestRunner(verbosity=0).run(Pictures())
    sys.exit(0 if outcome.wasSuccessful() else 1)

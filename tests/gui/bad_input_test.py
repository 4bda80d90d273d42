"""What may go wrong around the main window: connections that vanish, addresses that cannot be had, no rights, no
display, damaged files. The user is told in words and nothing breaks."""

import os
import signal
import struct

from window import TITLE, WindowTest
from world import NOBODY, REG_SZ, ip, preset_bytes, vendor_bytes, wait_for

OWN = "02:00:00:00:10:01"
SECOND = "02:00:00:00:10:02"
TYPED = "000c294f8e35"
LIVE = ("Up, Operational", "10 Gbps")
QUESTION = "Change MAC Address ?"
DONE = "MAC Address Changed Successfully"
RUN_TIME_ERROR = 4

ERROR_START = ("ERROR! This may be caused due to invalid command line parameters. Please check command line paramaters "
               "if passed.\n\nDescription: ")
SHELL_ERROR = "Error! There was an error while accessing shell32.dll\n\nDescription: "
GOOD_VENDORS = vendor_bytes(("000C29", "First"), ("00A0C9", "Second"))
TWO_DIMENSIONS = preset_bytes(("office", 8, "", None, None, None, None, None)).replace(
    b"office\x08\0\0\0\0", b"office\x08\0\0\x02\0")

# File, what is written over it (None: it is taken away), and the error number that is shown for it.
BAD_FILES = {
    "missing vendors": ("VendorNumbers.log", None, 53),
    "vendors cut within a record": ("VendorNumbers.log", GOOD_VENDORS[:-3], 62),
    "vendors without records": ("VendorNumbers.log", struct.pack("<i", 0), 9),
    "a single vendor": ("VendorNumbers.log", vendor_bytes(("000C29", "Only")), 6),
    "missing presets": ("presets.npf", None, 53),
    "presets with a negative count": ("presets.npf", struct.pack("<i", -1), 9),
    "presets with a list of two dimensions": ("presets.npf", TWO_DIMENSIONS, 321),
}


class Connections(WindowTest):
    """Connections that change while they are shown."""

    def setUp(self):
        super().setUp()
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.veth("lan1", "10.2.0.2/24", mac=SECOND)

    def change(self, digits):
        """Types an address into the open panel and confirms the change."""
        self.desktop.type(digits)
        self.desktop.press("Return")
        self.expect_box(QUESTION).press("Yes")

    def test_a_connection_that_vanishes_while_its_panel_is_open(self):
        self.open_window()
        self.open_panel("lan1")
        ip("link", "delete", "lan1")
        self.change(TYPED)
        box = self.expect_box("Error! Cannot Write Registry")
        self.assertTrue(box.text.startswith("Error while writing in windows registry.\n\nRegistry Path: HKEY_LOCAL_"
                                            "MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Class\\"), box.text)
        self.assertIn("Error: (2) Bad Key Name", box.text)
        box.press("OK")
        # The panel keeps what was typed; the list follows as soon as the panel is closed.
        self.assertTrue(self.panel_is_open)
        self.desktop.press("Escape")
        self.expect_fact("Connection Name:", "eth0")
        self.assertEqual(self.connections.rows, [("eth0", "No", "02-00-00-00-10-01", *LIVE)])
        self.assertEqual(self.connections.choice, "eth0")
        self.expect_fact("Number of connections", "1 connection")
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])

    def test_a_connection_that_vanishes_during_its_restart(self):
        self.open_window()
        self.open_panel("lan1")
        self.change(TYPED)
        wait_for(lambda: not self.is_up("lan1"), "the connection is disabled")
        ip("link", "delete", "lan1")
        box = self.expect_box("Unable To Locate Network Connection",
                              "Error! Could not locate network connection 'lan1' to be enabled/disabled. Please, "
                              "enable/disable your network connection manually. This may happen if the 'Network "
                              "Connections' or 'Network and dial-up connections' folder is not found by Orvella "
                              "Corvane.\n\nDo you want to manually browse and set the network connection folder in "
                              "control pannel ?")
        box.press("No")
        # Only the number of attempts counts.
        self.expect_box(DONE).press("OK")
        self.expect_fact("Connection Name:", "eth0")
        self.assertEqual(self.connections.names, ["eth0"])
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])

    def test_connections_that_come_and_go_and_are_renamed(self):
        self.open_window()
        self.choose("lan1")
        ip("link", "set", "lan1", "down")
        ip("link", "set", "lan1", "name", "office")
        ip("link", "set", "office", "up")
        self.connections.expect_row("office", "No", "02-00-00-00-10-02", *LIVE)
        self.expect_fact("Connection Name:", "office")
        self.assertEqual(self.connections.names, ["eth0", "office"])
        self.assertEqual(self.connections.choice, "office")
        self.assert_focus("Network Connections")

        ip("link", "delete", "office")
        self.expect_fact("Connection Name:", "eth0")
        self.assertEqual(self.connections.choice, "eth0")
        ip("link", "delete", "eth0")
        self.expect_fact("Number of connections", "0 connections")
        self.assertEqual(self.connections.rows, [("NIC Not Found", "", "", " ", " ")])
        # There is nothing to work on.
        self.desktop.press("ctrl+m", "ctrl+e", "ctrl+d", "Return")
        self.window.expect_windows(TITLE)
        self.assertFalse(self.panel_is_open)
        for name in ("Change MAC", "Enable", "Enable DHCP"):
            self.assertFalse(self.window.button(name).enabled, name)

        self.veth("lan2", "10.3.0.2/24", mac="02:00:00:00:10:03")
        self.expect_fact("Connection Name:", "lan2")
        self.connections.expect_row("lan2", "No", "02-00-00-00-10-03", *LIVE)
        self.assertTrue(self.window.button("Change MAC").enabled)

    def test_an_address_that_the_kernel_refuses(self):
        self.open_window()
        self.open_panel("lan1")
        self.change("01005e000001")
        self.expect_box(TITLE, f"{SHELL_ERROR}'lan1': MAC address '01005E000001' cannot be used: it is a multicast "
                               "address (the first octet is odd); the original address was given back").press("OK")
        self.expect_box(DONE).press("OK")
        self.expect_fact("MAC Address:", "02-00-00-00-10-02 (Inactive, 01-00-5E-00-00-01)")
        self.connections.expect_row("lan1", "No", "02-00-00-00-10-02", *LIVE)
        self.assert_up("lan1", SECOND, ["10.2.0.2/24"])
        self.assertEqual(self.driver("lan1")["NetworkAddress"], (REG_SZ, b"01005E000001\0"))

    def test_without_rights_nothing_changes(self):
        self.copy_programs()
        self.report()
        before = self.stored()
        self.open_window(user=NOBODY)
        self.open_panel("lan1")
        self.change(TYPED)
        path = f"Class\\{{4D36E972-E325-11CE-BFC1-08002bE10318}}\\{self.link_row('lan1')['driver']}\\NetworkAddress"
        self.expect_box("Error! Cannot Write Registry",
                        "Error while writing in windows registry.\n\nRegistry Path: HKEY_LOCAL_MACHINE\\SYSTEM\\"
                        f"CurrentControlSet\\Control\\{path}\n\nError: (5) Access to this key is denied\n\nClick OK to "
                        "continue").press("OK")
        self.assertTrue(self.panel_is_open)
        self.desktop.press("Escape", "ctrl+e")
        box = self.expect_box(TITLE)
        self.assertTrue(box.text.startswith(f"{SHELL_ERROR}'lan1'"), box.text)
        self.assertIn("Access is denied", box.text)
        box.press("OK")
        self.expect_box("Connection Cound Not Be Disabled", "Network connection could not be disabled or probably is "
                        "taking some time. Please try again.").press("OK")
        self.connections.expect_row("lan1", "", "", "Disabling Attempt Failed", " ")
        self.desktop.press("F5")
        self.connections.expect_row("lan1", "No", "02-00-00-00-10-02", *LIVE)
        self.assertEqual(self.stored(), before)
        self.assert_up("lan1", SECOND, ["10.2.0.2/24"])

    def test_a_name_with_signs_that_mean_something_elsewhere(self):
        name = "r&d<b>'1\"2"
        ip("link", "set", "lan1", "down")
        ip("link", "set", "lan1", "name", name)
        ip("link", "set", name, "up")
        self.open_window()
        self.choose(name)
        self.open_panel()
        self.assertTrue(self.window.label(f"Change MAC Address Of '{name}'").showing)
        self.desktop.type(TYPED)
        self.desktop.press("Return")
        box = self.expect_box(QUESTION)
        self.assertIn(f"of network connection '{name}' to '00-0C-29-4F-8E-35' ?", box.text)
        box.press("Cancel")

    def test_two_hundred_connections(self):
        for number in range(100):
            ip("link", "add", f"many{number}", "type", "veth", "peer", "name", f"other{number}")
        self.open_window()
        self.expect_fact("Number of connections", "202 connections")
        names = self.connections.names
        self.assertEqual(sorted(names), sorted(["eth0", "lan1", *[f"{kind}{number}" for number in range(100)
                                                                 for kind in ("many", "other")]]))
        self.connections.click_row(3)
        self.expect_fact("Connection Name:", names[3])
        self.desktop.press("End")
        self.expect_fact("Connection Name:", names[-1])
        self.assertEqual(self.connections.selected, [201])
        self.desktop.press("Up", "Page_Up")
        row = self.connections.selected[0]
        self.assertIn(row, range(150, 200))
        self.expect_fact("Connection Name:", names[row])
        # Others come and go: the selected one stays selected and in sight.
        ip("link", "delete", names[2])
        self.expect_fact("Number of connections", "200 connections")
        self.expect_fact("Connection Name:", names[row])
        self.assertEqual(self.connections.choice, names[row])
        self.connections.click_row(self.connections.selected[0])
        self.expect_fact("Connection Name:", names[row])
        self.open_panel()


class Surroundings(WindowTest):
    """No display, and damaged files beside the program."""

    def setUp(self):
        super().setUp()
        self.veth("eth0", "10.1.0.2/24", mac=OWN)

    def assert_no_display(self, *environment):
        result = self.run_program("/usr/bin/env", *environment, str(self.programs / "nicx-window"))
        self.assertEqual((result.code, result.out), (RUN_TIME_ERROR, ""))
        self.assertEqual(len(result.err.splitlines()), 1, result.err)
        self.assertIn("Start it from a desktop session, or use the command line: nicx -help, nicx-report.", result.err)
        return result.err

    def test_without_a_display(self):
        self.assertIn("there is no display to open a window on (DISPLAY and WAYLAND_DISPLAY are not set)",
                      self.assert_no_display("-u", "DISPLAY", "-u", "WAYLAND_DISPLAY"))
        self.assertIn("the display ':99999' cannot be opened", self.assert_no_display("DISPLAY=:99999"))
        self.assertIn("the display 'nowhere' cannot be opened", self.assert_no_display("DISPLAY=nowhere"))

    def test_a_display_that_goes_away(self):
        window = self.open_window()
        self.open_panel("eth0")
        self.desktop.type(TYPED)
        os.kill(int(os.environ["CORVANE_X_SERVER"]), signal.SIGKILL)
        self.assertEqual(window.wait_exit(), RUN_TIME_ERROR)
        self.assertIn("nicx-window: the display has gone away; the program ends.", window.err)
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])

    def test_damaged_files(self):
        folder = self.copy_programs()
        good = {name: (folder / name).read_bytes() for name in ("VendorNumbers.log", "presets.npf")}
        for case, (name, contents, number) in BAD_FILES.items():
            with self.subTest(case):
                for each, original in good.items():
                    (folder / each).write_bytes(original)
                if contents is None:
                    (folder / name).unlink()
                else:
                    (folder / name).write_bytes(contents)
                window = self.open_window(wait=False)
                box = self.expect_box("ERROR")
                self.assertTrue(box.text.startswith(ERROR_START), box.text)
                self.assertIn(name, box.text)
                self.assertTrue(box.text.endswith(f" ({number})\n\nClick OK to Quit"), box.text)
                self.assertNotIn(TITLE, window.windows)
                box.press("OK")
                self.assertEqual(window.wait_exit(), RUN_TIME_ERROR)
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])

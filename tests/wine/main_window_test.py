"""The main window of nicx.exe: what it shows of the machine, the report, the icon in the tray, how it ends."""

from parts import Box
from wine import REG_SZ
from wine_limits import SPEED
from wine_window import LIST, NEW, NEW_TEXT, OWN_TEXT, SECOND_TEXT, TITLE, TwoConnectionsTest
from world import ADAPTERS_KEY, ip

# An adapter that Wine has no interface for.
GONE = "{00000063-0000-0000-0000-4E6574446576}"
ABOUT = "About Orvella Corvane"


def speed(mac):
    """A speed below 1000 bit/s has the first octets of the address as its unit."""
    return f"{SPEED}{mac[:8].replace('-', '')}"


class Contents(TwoConnectionsTest):
    def test_the_list_shows_every_connection(self):
        self.describe("off0", GONE, "0099", "Büro 2")
        self.registry.write(self.driver_key("off0"), "NetworkAddress", (REG_SZ, b"000c294f8e35\0"))
        self.open_window()
        self.assertEqual(self.connections.headers, [LIST, "Changed", "MAC Address", "Link Status", "Speed"])
        self.assertEqual(self.connections.rows, [
            ("lan0", "No", OWN_TEXT, "Up, Operational", speed(OWN_TEXT)),
            ("lan1", "No", SECOND_TEXT, "Up, Operational", speed(OWN_TEXT)),
            ("Büro 2", "Yes", NEW_TEXT, "Disabled", "Disabled")])
        self.assertEqual(self.connections.selected, [0])
        self.expect_facts({"Number of connections": "3 connections"})

    def test_the_details_of_a_connection(self):
        self.registry.write(self.tcpip_key("lan0"), "NameServer", (REG_SZ, b"10.1.0.53,10.1.0.54\0"))
        self.open_window()
        self.choose("lan0")
        self.expect_facts({
            "Connection Name:": "lan0", "Device Name:": "Corvane Test Adapter",
            "Hardware ID:": "pci\\ven_1af4&dev_1000", "Configuration ID:": self.links["lan0"][0],
            "MAC Address:": f"{OWN_TEXT} (Original)", "Link Status:": "Up, Operational", "TCP/IP:": "Enabled",
            "DHCP:": "Disabled", "Lease Obtained:": "DHCP Disabled", "Lease Expires:": "DHCP Disabled"})
        self.expect_list("IP Address", ("10.1.0.2", "255.255.255.0"))
        self.expect_list("Gateway", ("10.1.0.1", "5"))
        self.expect_list("DNS Server", ("10.1.0.53",), ("10.1.0.54",))
        self.choose("lan1")
        self.expect_facts({"Configuration ID:": self.links["lan1"][0]})

    def test_without_connections(self):
        for link in ("lan0", "lan1"):
            ip("link", "delete", link)
        self.registry.delete(ADAPTERS_KEY)
        self.registry.write(ADAPTERS_KEY, "Keep", (REG_SZ, b"\0"))
        self.open_window()
        self.assertEqual(self.connections.rows, [("NIC Not Found", "", "", " ", " ")])
        self.assertEqual(self.window.menu("Connection").items,
                         [("Change MAC Address", False), ("Enable Network Connection", False)])

    def test_a_change_from_outside_is_shown(self):
        self.open_window()
        self.choose("lan0")
        ip("address", "add", "10.1.0.77/24", "dev", "lan0")
        self.expect_list("IP Address", ("10.1.0.2", "255.255.255.0"), ("10.1.0.77", "255.255.255.0"))

    def test_the_window_ends_by_its_frame_and_by_its_menu(self):
        self.open_window()
        self.end_window()
        self.open_window()
        self.window.press("alt+f")
        self.window.popup().click("Exit")
        self.assertEqual(self.window.wait_exit(), 0)


class Report(TwoConnectionsTest):
    EXPORT = "Export Text Report As ..."

    def export_to(self, path):
        self.window.press("ctrl+s")
        dialog = self.window.expect_window(self.EXPORT, Box)
        dialog.entry(None).enter(path)
        self.window.press("Return")
        return dialog

    def report_of(self, name, mac, address, mask, behind):
        guid = self.links[name][0]
        facts = [("Connection Name", name), ("Device Name", "Corvane Test Adapter"),
                 ("Hardware ID", "pci\\ven_1af4&dev_1000"), ("Configuration ID", guid), ("MAC Address", mac),
                 ("Manufacturer", self.facts_before["Manufacturer:"]), ("Speed", speed(mac)),
                 ("Link Status", "Up, Operational"), ("TCP/IP", "Enabled"), ("DHCP", "Disabled"),
                 ("IP Address", address), ("Subnet Mask", mask), *behind]
        return [label.ljust(25, ".") + value for label, value in facts]

    def test_the_report_is_written_by_the_systems_dialog(self):
        self.open_window()
        self.choose("lan0")
        self.facts_before = self.facts
        self.export_to("C:\\report")
        path = self.wine.drive / "report.txt"
        self.expect_facts({"Done last": "The report was written to 'C:\\report.txt'."})
        lines = path.read_bytes().decode("cp1252").split("\r\n")
        self.assertRegex(lines[3], r"^Date: [A-Z][a-z]+day, [A-Z][a-z]+ \d\d, \d{4}   \d\d:\d\d:\d\d$")
        lines[3] = "Date:"
        self.assertEqual(lines, [
            "Orvella Corvane v4.5 By Ollory", "=" * 49, "", "Date:", "", "Text Report-", "=" * 12, "",
            "Interface #1", "=" * 13, "",
            *self.report_of("lan0", OWN_TEXT, "10.1.0.2", "255.255.255.0",
                            [("Gateway", "10.1.0.1"), ("Metric", "5"), ("DNS Server", "")]), "", "",
            "Interface #2", "=" * 13, "", *self.report_of("lan1", SECOND_TEXT, "10.2.0.2", "255.255.0.0",
                                                              [("Gateway", ""), ("Metric", ""), ("DNS Server", "")]),
            "", "", "", "EOF", ""])

    def test_an_existing_file_is_asked_about(self):
        path = self.wine.drive / "old.txt"
        path.write_bytes(b"old")
        self.open_window()
        dialog = self.export_to("C:\\old.txt")
        question = self.window.expect_window(self.EXPORT, Box)
        question.press("No")
        self.assertEqual(path.read_bytes(), b"old")
        self.window.press("Escape")
        self.window.expect_windows(TITLE)
        self.assertEqual(path.read_bytes(), b"old")
        self.assertTrue(dialog)

    def test_a_refused_dialog_writes_nothing(self):
        self.open_window()
        self.window.press("ctrl+s")
        self.window.expect_window(self.EXPORT, Box)
        self.window.press("Escape")
        self.window.expect_windows(TITLE)
        self.assertEqual(list(self.wine.drive.glob("*.txt")), [])

    def test_a_folder_that_is_not_there(self):
        self.open_window()
        self.window.press("ctrl+s")
        dialog = self.window.expect_window(self.EXPORT, Box)
        dialog.entry(None).enter("C:\\nowhere\\report.txt")
        self.window.press("Return")
        # Windows' dialog does not let go of such a name; Wine's does.
        box = self.window.expect_box(TITLE, icon="error", buttons=["OK"])
        self.assertTrue(box.text.startswith(
            "Error! The text report could not be written to 'C:\\nowhere\\report.txt'.\n\n"
            "Description: No such file or directory\n\n"), box.text)
        box.press("OK")
        self.assertFalse((self.wine.drive / "nowhere").exists())


class Tray(TwoConnectionsTest):
    def open_with_tray(self):
        self.open_window()
        self.window.patiently(self.window.tray_place, "the icon in the tray")

    def test_a_click_hides_and_shows_the_window(self):
        self.open_with_tray()
        self.window.click_tray()
        self.window.expect_windows()
        self.window.click_tray()
        self.window.expect_window(TITLE)

    def test_its_menu(self):
        self.open_with_tray()
        self.window.click_tray(button=3)
        menu = self.window.popup()
        self.assertEqual(menu.items, [("Show/Hide", True), ("Help", True), ("Check For Updates", True),
                                      ("Donate", True), ("About Us", True), ("Exit", True)])
        menu.click("Show/Hide")
        self.window.expect_windows()
        self.window.click_tray(button=3)
        self.window.popup().click("Exit")
        self.assertEqual(self.window.wait_exit(), 0)
        self.window.expect_no_tray_icon()


class About(TwoConnectionsTest):
    DISCLAIMER = ("Disclaimer-", "Orvella Corvane v4.5 is a FREEWARE, and provided 'as is' with no ",
                  "warranty what-so-ever. Orvella is not responsible in any way for damage to users ",
                  "computer hardware/software or any data loss while/by using this software. This ",
                  "software must not be used for any illegal or unethical purposes. User of this ",
                  "software is responsible for any deed done using the software and hence must use ",
                  "it at his/her own risk. By downloading/copying/using this software, you agrees upon ",
                  "this disclaimer. Software distribution by anyone is unlimited.")

    def test_the_about_box(self):
        self.open_window()
        self.window.press("alt+h")
        self.window.popup().click("About Us")
        box = self.window.expect_window(ABOUT, Box)
        self.assertEqual(box.entry("Disclaimer").text, "\n".join(self.DISCLAIMER))
        self.assertRegex(box.text, r"^System: Windows NT .*\(v\d+\.\d+, Build \d+\)")
        self.window.press("Escape")
        self.window.expect_windows(TITLE)

    def test_the_short_vendor_list_and_discarded_originals(self):
        """-sv and -ro open the main window, whatever else is given."""
        self.registry.write(self.driver_key("lan0"), "OriginalNetworkAddress", (REG_SZ, b"AA-BB-CC-DD-EE-FF\0"))
        self.open_window("-n", "lan0", "-m", NEW, "-sv")
        self.expect_row("lan0", "Yes", OWN_TEXT)
        self.end_window()
        self.open_window("-ro")
        self.expect_row("lan0", "No", OWN_TEXT)
        self.end_window()
        self.assertEqual(self.driver("lan0")["OriginalNetworkAddress"], (REG_SZ, b"02-00-00-00-10-01\0"))
        self.assertNotIn("NetworkAddress", self.driver("lan0"))


class MissingFiles(TwoConnectionsTest):
    def test_without_a_data_file_the_window_does_not_open(self):
        for name, words in (("presets.npf", "The presets file"), ("VendorNumbers.log", "The vendor list")):
            with self.subTest(name=name):
                (self.folder / name).rename(self.folder / "away")
                program = self.nicx()
                box = program.expect_box("ERROR", icon="error", buttons=["OK"])
                self.assertIn(f"Description: {words} C:\\Corvane\\{name} cannot be read: No such file", box.text)
                self.assertTrue(box.text.endswith("Click OK to Quit"))
                box.press("OK")
                self.assertEqual(program.wait_exit(), 4)
                (self.folder / "away").rename(self.folder / name)

"""The main window of nicx.exe: what it shows of the machine, another MAC address, disabling and enabling, presets, lists of
addresses, the report, and the ways out."""

from parts import BUTTONS, Box
from waiting import NotNow
from wine import REG_DWORD, REG_MULTI_SZ, REG_SZ
from wine_limits import NOT_SUPPORTED, SPEED
from wine_window import LIST, TITLE, WindowTest
from world import ip, multi, preset_bytes, wait_for

OWN, OWN_TEXT = "02:00:00:00:10:01", "02-00-00-00-10-01"
NEW, NEW_TEXT, TYPED = "00:0c:29:4f:8e:35", "00-0C-29-4F-8E-35", "000c294f8e35"
GONE = "{00000063-0000-0000-0000-4E6574446576}"
ABOUT = "About Orvella Corvane"
SELECTED_NOTE = ("NOTE: You have SELECTED option to automatically restart network connection to apply changes. In the "
                 "process of enabling and disabling network connection, you will lose connectivity for few seconds. If "
                 "network connection is disabled, it will be enabled automatically.")
OFFICE = ("Office", 2 | 8 | 16 | 32, NEW_TEXT, ["10.1.0.5", "10.2.0.5"], ["255.255.255.0", "255.255.0.0"],
          ["10.1.0.1"], ["20"], ["10.1.0.53", "9.9.9.9"])


def speed(mac):
    """A speed below 1000 bit/s has the first octets of the address as its unit."""
    return f"{SPEED}{mac[:8].replace('-', '')}"


class Window(WindowTest):
    """On a machine with two connections."""

    def setUp(self):
        super().setUp()
        self.veth("lan0", "10.1.0.2/24", mac=OWN)
        self.veth("lan1", "10.2.0.2/16", mac="02:00:00:00:10:02")
        ip("route", "add", "default", "via", "10.1.0.1", "metric", "5")
        self.describe_links()
        self.describe_shell()

    def choose_item(self, menu, name):
        self.window.press({"Connection": "alt+c", "TCP/IP": "alt+t", "Presets": "alt+s"}[menu])
        self.window.popup().click(name)


class Contents(Window):
    def test_the_list_shows_every_connection(self):
        self.describe("off0", GONE, "0099", "Büro 2")
        self.registry.write(self.driver_key("off0"), "NetworkAddress", (REG_SZ, b"000c294f8e35\0"))
        self.open_window()
        self.assertEqual(self.connections.headers, [LIST, "Changed", "MAC Address", "Link Status", "Speed"])
        self.assertEqual(self.connections.rows, [
            ("lan0", "No", OWN_TEXT, "Up, Operational", speed(OWN_TEXT)),
            ("lan1", "No", "02-00-00-00-10-02", "Up, Operational", speed(OWN_TEXT)),
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
        self.registry.delete(r"SYSTEM\CurrentControlSet\Services\Tcpip\Parameters\Adapters")
        self.registry.write(r"SYSTEM\CurrentControlSet\Services\Tcpip\Parameters\Adapters", "Keep", (REG_SZ, b"\0"))
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


class ChangeMac(Window):
    def question(self, name, address):
        return (f"Are you sure to change MAC address of network connection '{name}' to '{address}' ?"
                f"\n\n{SELECTED_NOTE}")

    def test_a_change_by_keys_and_back_to_the_original(self):
        self.open_window()
        self.open_panel("lan0")
        self.window.type(TYPED)
        self.assertEqual(self.octets, ["00", "0C", "29", "4F", "8E", "35"])
        self.window.press("Return")
        self.expect_box("Change MAC Address ?", self.question("lan0", NEW_TEXT), "question", "Yes", by_key=True)
        self.expect_row("lan0", "", "", "Disabling ...", " ")
        wait_for(lambda: self.diary == ["disable lan0"], "the connection is disabled")
        self.expect_row("lan0", "", "", "Enabling (Attempt 1) ...", " ")
        self.expect_box("MAC Address Changed Successfully", "MAC Address was changed successfully.", "information")
        self.expect_row("lan0", "Yes", NEW_TEXT)
        self.expect_facts({"MAC Address:": f"{NEW_TEXT} (Changed)"})
        self.assertEqual(self.driver("lan0")["NetworkAddress"], (REG_SZ, b"000C294F8E35\0"))
        self.assertEqual(self.mac("lan0"), NEW)
        self.assertFalse(self.octet(0).showing)

        self.open_panel("lan0")
        self.window.press("alt+o")
        self.expect_box("Change MAC Address ?", self.question("lan0", "ORIGINAL MAC ADDRESS ASSIGNED BY MANUFACTURER"),
                        "question", "Yes")
        self.expect_box("MAC Address Changed Successfully", "MAC Address was changed successfully.", "information")
        self.expect_row("lan0", "No", OWN_TEXT)
        self.assertNotIn("NetworkAddress", self.driver("lan0"))
        self.assertEqual(self.mac("lan0"), OWN)

    def test_a_change_without_restart(self):
        self.open_window()
        self.open_panel("lan1")
        self.window.type(TYPED)
        self.window.control(BUTTONS, "Automatically Restart Network Connection To Apply Changes").click()
        self.window.button("Change Now !").click()
        self.window.expect_box("Change MAC Address ?").press("Yes")
        self.expect_box("MAC Address Changes Saved Successfully",
                        "MAC Address changes were saved successfully. You must manually disable and enable the network "
                        "adapter 'lan1', or reboot your system to apply the changes.", "information")
        self.expect_facts({"MAC Address:": f"02-00-00-00-10-02 (Inactive, {NEW_TEXT})"})
        self.assertEqual(self.diary, [])
        self.assertEqual(self.driver("lan1")["NetworkAddress"], (REG_SZ, b"000C294F8E35\0"))

    def test_no_is_no(self):
        self.open_window()
        self.open_panel("lan0")
        self.window.type(TYPED)
        self.window.button("Change Now !").click()
        self.window.expect_box("Change MAC Address ?").press("No", by_key=True)
        self.window.press("Escape")
        self.octet(0).expect(showing=False)
        self.assertNotIn("NetworkAddress", self.driver("lan0"))

    def test_only_hexadecimal_digits_are_entered(self):
        self.open_window()
        self.open_panel("lan0")
        self.window.type("0xg1ü2é-f")
        self.assertEqual(self.octets, ["01", "02", "F", "", "", ""])
        self.assertFalse(self.window.button("Change Now !").enabled)


class EnableAndDisable(Window):
    def test_disabling_by_the_menu(self):
        self.open_window()
        self.choose("lan1")
        self.choose_item("Connection", "Disable Network Connection")
        self.expect_row("lan1", "", "", "Disabling ...", " ")
        self.expect_box("Connection Disabled", "Network connection disabled successfully.", "information")
        self.assertEqual(self.diary, ["disable lan1"])
        self.assertFalse(self.is_up("lan1"))

    def test_the_shell_refuses(self):
        self.order_failure("FolderItemVerb.DoIt", 0x80070005)
        self.open_window()
        self.choose("lan0")
        self.window.press("ctrl+e")
        box = self.window.expect_box(TITLE, icon="error", buttons=["OK"])
        self.assertTrue(box.text.startswith("Error! There was an error while accessing shell32.dll\n\nDescription: "))
        box.press("OK")
        self.expect_box("Connection Cound Not Be Disabled", "Network connection could not be disabled or probably is "
                        "taking some time. Please try again.", "error")

    def test_keys_during_the_wait_do_nothing(self):
        self.open_window()
        self.choose("lan0")
        self.window.press("ctrl+e")
        self.expect_row("lan0", "", "", "Disabling ...", " ")
        self.window.press("ctrl+m", "alt+f", "ctrl+q")
        self.expect_box("Connection Disabled", "Network connection disabled successfully.", "information")
        self.window.expect_windows(TITLE)
        self.assertFalse(self.octet(0).showing)
        self.assertEqual(self.diary, ["disable lan0"])


class Lists(Window):
    """The lists of addresses of the running connection."""

    def test_dns_servers_are_written_in_their_order(self):
        self.open_window()
        self.choose("lan0")
        for server in ("10.1.0.53", "9.9.9.9"):
            self.choose_item("TCP/IP", "Add DNS Server")
            self.window.entry("DNS server, octet 1 of 4").expect(showing=True, focused=True)
            self.window.type(server)
            self.window.press("Return")
            self.window.patiently(lambda server=server: self.assert_last_server(server), f"the server {server}")
        self.assertEqual(self.tcpip("lan0")["NameServer"][1].rstrip(b"\0"), b"10.1.0.53,9.9.9.9")
        self.expect_list("DNS Server", ("10.1.0.53",), ("9.9.9.9",)).click_row("9.9.9.9")
        self.choose_item("TCP/IP", "DNS Server Up")
        wait_for(lambda: self.tcpip("lan0")["NameServer"][1].rstrip(b"\0") == b"9.9.9.9,10.1.0.53", "the new order")
        self.expect_list("DNS Server", ("9.9.9.9",), ("10.1.0.53",))

    def assert_last_server(self, server):
        kind, data = self.tcpip("lan0").get("NameServer", (REG_SZ, b""))
        if not data.rstrip(b"\0").endswith(server.encode()):
            raise NotNow(f"the servers are {data}")

    def test_an_ip_address_that_wine_cannot_add(self):
        self.open_window()
        self.choose("lan0")
        self.choose_item("TCP/IP", "Add IP Address")
        self.window.entry("IP address, octet 1 of 4").expect(showing=True, focused=True)
        self.window.type("10.1.0.9")
        self.window.entry("Subnet mask, octet 1 of 4").click()
        self.window.type("255.255.255.0")
        self.assertEqual(self.window.entry("Prefix length").text, "24")
        self.window.press("Return")
        code, words = NOT_SUPPORTED["AddIPAddress"]
        box = self.window.expect_box(TITLE, icon="error", buttons=["OK"])
        self.assertEqual(box.text, f"DLL : IphlpApi.dll\n\nError Code : {code}\nAPI: AddIPAddress\n"
                         f"Error Description : {words}\n\n\nClick OK To Continue")
        box.press("OK")
        self.expect_list("IP Address", ("10.1.0.2", "255.255.255.0"))
        self.assertNotIn("IPAddress", self.tcpip("lan0"))


class Presets(Window):
    APPLY = ("Are you sure to apply the preset 'Office' to network connection 'lan1' now ?\n\nNOTE: The selected network "
             "connection must be restarted later on to apply settings. This operation may result in loss of "
             "connectivity.")
    RESTART = ("Preset 'Office' was applied to network connection 'lan1' successfully.\n\nDo you want to restart/enable "
               "the selected network connection now to apply changes ?")

    @property
    def presets(self):
        return self.window.table("Presets")

    def test_a_preset_is_applied_with_a_restart(self):
        (self.folder / "presets.npf").write_bytes(preset_bytes(OFFICE))
        self.open_window()
        self.choose("lan1")
        self.presets.click_row("Office")
        self.choose_item("Presets", "Apply Preset")
        self.expect_box("Apply Selected Preset ?", self.APPLY, "question", "Yes")
        self.expect_box("Preset Applied Successfully, Restart Connection ?", self.RESTART, "question", "Yes")
        self.expect_box("Network Connection Restarted", "Network connection restarted successfully.", "information")
        self.assertEqual(self.diary, ["disable lan1", "enable lan1"])
        self.assertEqual(self.driver("lan1")["NetworkAddress"], (REG_SZ, b"000C294F8E35\0"))
        values = self.tcpip("lan1")
        self.assertEqual(values["EnableDHCP"], (REG_DWORD, b"\0\0\0\0"))
        self.assertEqual(values["IPAddress"], (REG_MULTI_SZ, multi("10.1.0.5", "10.2.0.5")))
        self.assertEqual(values["SubnetMask"], (REG_MULTI_SZ, multi("255.255.255.0", "255.255.0.0")))
        self.assertEqual(values["DefaultGateway"], (REG_MULTI_SZ, multi("10.1.0.1")))
        self.assertEqual(values["DefaultGatewayMetric"], (REG_MULTI_SZ, multi("20")))
        self.assertEqual(values["NameServer"], (REG_SZ, b"10.1.0.53,9.9.9.9\0"))
        self.expect_row("lan1", "Yes", NEW_TEXT)

    def test_a_preset_is_made_and_saved(self):
        """Its lists are edited in the editor's form; the file has it, byte for byte, and it is there at the next start."""
        self.open_window()
        self.window.press("ctrl+t")
        self.window.entry("Preset name").expect(showing=True, focused=True)
        self.window.type("Büro 2")
        self.window.control(BUTTONS, "IP Addresses").click()
        self.window.button("Add IP Address").click()
        first = self.window.entry("IP address, octet 1 of 4")
        first.expect(showing=True, focused=True)
        for address, prefix in (("10.1.0.5", "24"), ("172.16.0.5", "20")):
            self.window.type(address)
            self.window.entry("Prefix length").enter(prefix)
            self.window.press("Return")
            first.expect(text="", focused=True)
        self.window.press("Escape")
        table = self.expect_list("IP Address", ("10.1.0.5", "255.255.255.0"), ("172.16.0.5", "255.255.240.0"))
        table.click_row("10.1.0.5")
        self.window.button("Remove IP Address").click()
        self.expect_box("Remove Selected IP Address ?", "Are you sure to remove '10.1.0.5' IP address ?", "question", "Yes")
        self.window.button("Save Preset").click()
        self.expect_box("Preset Saved Successfully", "Preset 'Büro 2' was saved successfully.", "information")
        self.assertEqual((self.folder / "presets.npf").read_bytes(), preset_bytes(
            ("Büro 2", 8, "", ["172.16.0.5"], ["255.255.240.0"], [""], [""], [""])))
        self.assertEqual(self.presets.rows, [("Büro 2",)])
        self.end_window()
        self.open_window()
        self.assertEqual(self.presets.rows, [("Büro 2",)])

    def test_a_preset_is_deleted(self):
        (self.folder / "presets.npf").write_bytes(preset_bytes(OFFICE))
        self.open_window()
        self.presets.click_row("Office")
        self.choose_item("Presets", "Delete Preset")
        self.expect_box("Delete Selected Preset ?", "Are you sure to delete 'Office' preset forever ?", "question", "Yes")
        self.presets.expect(rows=[])
        data = (self.folder / "presets.npf").read_bytes()
        self.assertEqual(data[:19], preset_bytes(("", 0, "", None, None, None, None, None)))


class Report(Window):
    EXPORT = "Export Text Report As ..."

    def export_to(self, path):
        self.window.press("ctrl+s")
        dialog = self.window.expect_window(self.EXPORT, Box)
        dialog.entry(None).enter(path)
        self.window.press("Return")
        return dialog

    def report_of(self, name, mac, address, mask, gateways=()):
        guid = self.links[name][0]
        facts = [("Connection Name", name), ("Device Name", "Corvane Test Adapter"),
                 ("Hardware ID", "pci\\ven_1af4&dev_1000"), ("Configuration ID", guid), ("MAC Address", mac),
                 ("Manufacturer", self.facts_before["Manufacturer:"]), ("Speed", speed(mac)),
                 ("Link Status", "Up, Operational"), ("TCP/IP", "Enabled"), ("DHCP", "Disabled"),
                 ("IP Address", address), ("Subnet Mask", mask), *gateways]
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
                            [("Gateway", "10.1.0.1"), ("Metric", "5")]), "", "",
            "Interface #2", "=" * 13, "", *self.report_of("lan1", "02-00-00-00-10-02", "10.2.0.2", "255.255.0.0"),
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
        box = self.window.expect_box(self.EXPORT)
        self.assertIn("nowhere", box.text)
        box.press("OK")


class Tray(Window):
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


class About(Window):
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


class MissingFiles(Window):
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

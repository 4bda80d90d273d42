"""What the main window of nicx.exe changes: the MAC address, the state of a connection, its addresses, presets."""

from parts import BUTTONS
from waiting import NotNow
from wine import REG_DWORD, REG_MULTI_SZ, REG_SZ
from wine_limits import MAC_IN_EFFECT, NOT_SUPPORTED
from wine_window import NEW, NEW_TEXT, OFFICE, OWN, OWN_TEXT, SECOND_TEXT, TITLE, TYPED, TwoConnectionsTest
from world import multi, preset_bytes, wait_for

NOTE = ("NOTE: You have SELECTED option to automatically restart network connection to apply changes. In the process "
        "of enabling and disabling network connection, you will lose connectivity for few seconds. If network "
        "connection is disabled, it will be enabled automatically.")


class ChangeMac(TwoConnectionsTest):
    def question(self, name, address):
        return (f"Are you sure to change MAC address of network connection '{name}' to '{address}' ?"
                f"\n\n{NOTE}")

    def type_address(self):
        """Types the new address. The vendor of its first half is looked up when that is complete."""
        self.window.type(TYPED[:6])
        self.window.patiently(self.assert_vendor, "the vendor")
        self.window.type(TYPED[6:])
        self.assertEqual(self.octets, ["00", "0C", "29", "4F", "8E", "35"])

    def assert_vendor(self):
        text = self.window.entry("Vendor:").text
        if not text.startswith("VMware"):
            raise NotNow(f"it is '{text}'")

    def test_what_is_typed_during_the_search_for_the_vendor_counts(self):
        self.open_window()
        self.open_panel("lan1")
        self.window.type(TYPED)
        self.window.patiently(self.assert_vendor, "the vendor")
        self.window.settle()
        self.assertEqual(self.octets, ["00", "0C", "29", "4F", "8E", "35"])

    def test_a_change_by_keys_and_back_to_the_original(self):
        self.open_window()
        self.open_panel("lan0")
        self.type_address()
        self.window.press("Return")
        self.expect_box("Change MAC Address ?", self.question("lan0", NEW_TEXT), "question", "Yes", by_key=True)
        self.expect_row("lan0", "", "", "Disabling ...", " ")
        wait_for(lambda: self.diary == ["disable lan0"], "the connection is disabled")
        self.expect_row("lan0", "", "", "Enabling (Attempt 1) ...", " ")
        self.expect_box("MAC Address Changed Successfully", "MAC Address was changed successfully.", "information")
        self.expect_facts({"MAC Address:": MAC_IN_EFFECT.format(old=OWN_TEXT, new=NEW_TEXT)})
        self.assertEqual(self.driver("lan0")["NetworkAddress"], (REG_SZ, b"000C294F8E35\0"))
        self.assertEqual(self.mac("lan0"), NEW)
        self.assertFalse(self.octet(0).showing)

        self.open_panel("lan0")
        self.window.press("alt+o")
        self.expect_box("Change MAC Address ?", self.question("lan0", "ORIGINAL MAC ADDRESS ASSIGNED BY MANUFACTURER"),
                        "question", "Yes")
        self.expect_box("MAC Address Changed Successfully", "MAC Address was changed successfully.", "information")
        self.expect_row("lan0", "No", OWN_TEXT)
        self.expect_facts({"MAC Address:": f"{OWN_TEXT} (Original)"})
        self.assertNotIn("NetworkAddress", self.driver("lan0"))
        self.assertEqual(self.mac("lan0"), OWN)

    def test_a_change_without_restart(self):
        self.open_window()
        self.open_panel("lan1")
        self.type_address()
        self.window.control(BUTTONS, "Automatically Restart Network Connection To Apply Changes").click()
        self.window.button("Change Now !").click()
        self.window.expect_box("Change MAC Address ?").press("Yes")
        self.expect_box("MAC Address Changes Saved Successfully",
                        "MAC Address changes were saved successfully. You must manually disable and enable the network "
                        "adapter 'lan1', or reboot your system to apply the changes.", "information")
        self.expect_facts({"MAC Address:": f"{SECOND_TEXT} (Inactive, {NEW_TEXT})"})
        self.assertEqual(self.diary, [])
        self.assertEqual(self.driver("lan1")["NetworkAddress"], (REG_SZ, b"000C294F8E35\0"))

    def test_no_is_no(self):
        self.open_window()
        self.open_panel("lan0")
        self.type_address()
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


class EnableAndDisable(TwoConnectionsTest):
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


class Lists(TwoConnectionsTest):
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

    def open_ip_panel(self):
        self.open_window()
        self.choose("lan0")
        self.choose_item("TCP/IP", "Add IP Address")
        self.window.entry("IP address, octet 1 of 4").expect(showing=True, focused=True)

    def expect_octets(self, *texts):
        self.assertEqual(tuple(self.window.entry(f"IP address, octet {number} of 4").text for number in range(1, 5)),
                         texts)

    def test_only_digits_and_dots_are_entered(self):
        self.open_ip_panel()
        self.window.type("1a0é-7")
        self.expect_octets("107", "", "", "")
        # A full box hands the next digit on; from an empty one backspace goes back to the one before and empties it.
        self.window.type("45.x6")
        self.expect_octets("107", "45", "6", "")
        self.window.press("BackSpace", "BackSpace", "BackSpace")
        self.expect_octets("107", "", "", "")
        self.window.type("300")
        self.expect_octets("107", "", "", "")
        self.window.type("20.30.4")
        self.expect_octets("107", "20", "30", "4")
        self.window.press("ctrl+a", "ctrl+x")
        self.expect_octets("107", "20", "30", "")
        self.window.press("ctrl+v")
        self.expect_octets("107", "20", "30", "4")

    def test_an_ip_address_that_wine_cannot_add(self):
        self.open_ip_panel()
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


class Presets(TwoConnectionsTest):
    APPLY = ("Are you sure to apply the preset 'Office' to network connection 'lan1' now ?\n\nNOTE: The selected "
             "network connection must be restarted later on to apply settings. This operation may result in loss of "
             "connectivity.")
    RESTART = ("Preset 'Office' was applied to network connection 'lan1' successfully.\n\nDo you want to "
               "restart/enable the selected network connection now to apply changes ?")

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
        self.expect_facts({"MAC Address:": MAC_IN_EFFECT.format(old=SECOND_TEXT, new=NEW_TEXT)})

    def test_a_preset_is_made_and_saved(self):
        """Its lists are edited in the editor's form; the file has it byte for byte, and so has the next start."""
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
        self.expect_box("Remove Selected IP Address ?", "Are you sure to remove '10.1.0.5' IP address ?", "question",
                        "Yes")
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
        self.expect_box("Delete Selected Preset ?", "Are you sure to delete 'Office' preset forever ?", "question",
                        "Yes")
        self.presets.expect(rows=[])
        data = (self.folder / "presets.npf").read_bytes()
        self.assertEqual(data[:19], preset_bytes(("", 0, "", None, None, None, None, None)))

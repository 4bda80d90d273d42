"""Presets of the main window: deleting them, and applying them to links; the kernel tells what came of it."""

from preset_window import OFFICE, UNUSED, PresetTest, preset
from waiting import NotNow
from world import REG_DWORD, REG_MULTI_SZ, REG_SZ, ip, multi, preset_bytes, vendor_bytes

APPLY = "Apply Selected Preset ?"
DELETE = "Delete Selected Preset ?"
RESTART = "Preset Applied Successfully, Restart Connection ?"
RESTARTED = ("Network Connection Restarted", "Network connection restarted successfully.")
OWN_MAC, OFFICE_MAC = "00:0c:29:4f:8e:35", "02:00:00:00:40:01"
OFFICE_ADDRESSES = ["10.1.0.5/24", "10.2.0.5/16"]
OFFICE_GATEWAYS = [("10.1.0.1", 20), ("10.2.0.1", 0)]


def apply_question(name, connection="lan0"):
    return (f"Are you sure to apply the preset '{name}' to network connection '{connection}' now ?\n\nNOTE: The "
            "selected network connection must be restarted later on to apply settings. This operation may result in "
            "loss of connectivity.")


def restart_question(name, connection="lan0"):
    return (f"Preset '{name}' was applied to network connection '{connection}' successfully.\n\nDo you want to "
            "restart/enable the selected network connection now to apply changes ?")


class Delete(PresetTest):
    def delete(self, name, answer):
        self.answer(DELETE, f"Are you sure to delete '{name}' preset forever ?", answer)

    def test_presets_are_deleted_down_to_the_last(self):
        home, third = preset("Home", 1), preset("Third", 32, servers=["10.1.0.53"])
        self.open_with(OFFICE, home, third)
        old = self.file.read_bytes()
        self.assertEqual(self.preset_buttons(), [False] * 3)
        self.select_preset("Home")
        self.assertEqual(self.preset_buttons(), [True] * 3)
        for answer in ("No", "Cancel"):
            self.window.button("Delete").click()
            self.delete("Home", answer)
            self.expect_presets("Office", "Home", "Third")
        self.assertEqual(self.file.read_bytes(), old)
        self.window.button("Delete").click()
        self.delete("Home", "Yes")
        self.expect_left(old, OFFICE, third)

        self.select_preset("Third")
        self.desktop.press("Delete")
        self.delete("Third", "Yes")
        self.expect_left(old, OFFICE)
        self.select_preset("Office")
        self.window.menu("Presets", "Delete Preset").choose()
        self.delete("Office", "Yes")
        self.expect_left(old, UNUSED)
        self.assertEqual(self.preset_buttons(), [False] * 3)
        self.presets.click()
        self.desktop.press("Delete", "Return")
        self.expect_no_box()
        # Its slot is used again.
        self.open_editor("New")
        self.save("New")
        self.expect_left(old, preset("New"))

    def expect_left(self, old, *records):
        self.expect_presets(*[record[0] for record in records if record[0]])
        data = preset_bytes(*records)
        written, kept = self.file.read_bytes()[:len(data)], self.file.read_bytes()[len(data):]
        self.assertEqual((written, len(kept)), (data, len(old) - len(data)))

    def test_unused_slots_are_not_shown_and_stay(self):
        home, third = preset("Home", 1), preset("Third", 1)
        self.open_with(UNUSED, OFFICE, UNUSED, home, third)
        self.select_preset("Home")
        self.desktop.press("Delete")
        self.delete("Home", "Yes")
        self.expect_left(preset_bytes(UNUSED, OFFICE, UNUSED, home, third), UNUSED, OFFICE, UNUSED, third)
        self.open_again()
        self.expect_presets("Office", "Third")


class Apply(PresetTest):
    def apply(self, name, restart, way=None):
        """Selects a preset and applies it by the button; `restart` answers the question at the end."""
        self.select_preset(name)
        (way or self.window.button("Apply").click)()
        self.answer(APPLY, apply_question(name, self.connections.choice), "Yes")
        self.window.expect_box(RESTART)
        self.expect_fact("Done last", "Preset Applied")
        self.answer(RESTART, restart_question(name, self.connections.choice), restart)

    def assert_office_stored(self, link="lan0"):
        self.assertEqual(self.driver(link)["NetworkAddress"], (REG_SZ, b"020000004001\0"))
        values = self.tcpip(link)
        self.assertEqual({name: values[name] for name in ("EnableDHCP", "IPAddress", "SubnetMask", "DefaultGateway",
                                                          "DefaultGatewayMetric", "NameServer")},
                         {"EnableDHCP": (REG_DWORD, b"\0\0\0\0"),
                          "IPAddress": (REG_MULTI_SZ, multi("10.1.0.5", "10.2.0.5")),
                          "SubnetMask": (REG_MULTI_SZ, multi("255.255.255.0", "255.255.0.0")),
                          "DefaultGateway": (REG_MULTI_SZ, multi("10.1.0.1", "10.2.0.1")),
                          "DefaultGatewayMetric": (REG_MULTI_SZ, multi("20", "Automatic")),
                          "NameServer": (REG_SZ, b"10.1.0.53,9.9.9.9\0")})

    def assert_office_runs(self, link="lan0"):
        self.assert_up(link, OFFICE_MAC, OFFICE_ADDRESSES)
        self.assertCountEqual(self.default_routes(link), OFFICE_GATEWAYS)
        self.assertEqual(self.name_servers(), ["10.1.0.53", "9.9.9.9", "192.0.2.53"])

    def test_with_a_restart(self):
        # The connection of the preset's name is not the one that is selected.
        self.bridge("br0")
        self.open_with(UNUSED, OFFICE)
        self.choose("lan0")
        before = self.stored()
        self.select_preset("Office")
        for answer in ("No", "Cancel"):
            self.desktop.press("alt+y")
            self.answer(APPLY, apply_question("Office"), answer)
            self.expect_no_box()
        self.assertEqual(self.stored(), before)
        self.apply("Office", "Yes", lambda: self.desktop.press("alt+y"))
        self.connections.expect_row("lan0", None, None, "Disabling ...")
        self.connections.expect_row("lan0", None, None, "Enabling (Attempt 1) ...")
        self.expect_box(*RESTARTED, press="OK")
        self.assert_office_stored()
        self.assert_office_runs()
        self.connections.expect_row("lan0", "Yes", "02-00-00-00-40-01")
        self.window.table("IP Address").expect(rows=[("10.1.0.5", "255.255.255.0"), ("10.2.0.5", "255.255.0.0")])
        self.expect_fact("Done last", RESTARTED[1])
        self.assert_file(UNUSED, OFFICE)
        self.assertEqual(self.connections.row("br0")[1], "No")

    def test_without_a_restart_it_takes_effect_with_the_next(self):
        self.open_with(OFFICE)
        self.apply("Office", "No", self.window.menu("Presets", "Apply Preset").choose)
        self.assert_office_stored()
        self.assert_up("lan0", OWN_MAC, ["10.9.0.2/24"], [])
        self.expect_fact("MAC Address:", "00-0C-29-4F-8E-35 (Inactive, 02-00-00-00-40-01)")
        self.desktop.press("ctrl+e")
        self.expect_box("Connection Disabled", "Network connection disabled successfully.", press="OK")
        self.desktop.press("ctrl+e")
        self.expect_box("Connection Enabled", "Network connection enabled successfully.", press="OK")
        self.assert_office_runs()
        self.expect_fact("MAC Address:", "02-00-00-00-40-01 (Changed)")

    def test_a_preset_that_the_window_saved_is_applied_by_the_command_line(self):
        self.open_with(OFFICE)
        self.select_preset("Office")
        self.window.button("Edit").click()
        # Under another name: another octet, another address more, a gateway less.
        self.name.enter("Office 2")
        self.octet(5).enter("7f")
        self.add_addresses(("10.3.0.5", "255.0.0.0"))
        self.window.table("Gateway").click_row("10.2.0.1")
        self.window.button("Remove Gateway").click()
        self.answer("Remove Selected Gateway ?", "Are you sure to remove '10.2.0.1' gateway address ?", "Yes")
        self.window.table("Gateway").expect(rows=[("10.1.0.1", "20")])
        self.save("Office 2")
        self.veth("lan1", mac="02:00:00:00:10:02")
        self.nicx("-n", "lan1", "-p", "fice 2", "-re")
        self.assert_up("lan1", "02:00:00:00:40:7f", [*OFFICE_ADDRESSES, "10.3.0.5/8"], [("10.1.0.1", 20)])
        self.assertEqual(self.name_servers()[:2], ["10.1.0.53", "9.9.9.9"])
        # And so does the window, on the connection that is selected.
        self.expect_names_in_any_order("lan0", "lan1")
        self.choose("lan1")
        self.apply("Office", "No")
        self.assert_office_stored("lan1")
        self.assertNotIn("NetworkAddress", self.driver("lan0"))
        self.choose("lan0")
        self.apply("Office 2", "No")
        self.assertEqual(self.driver("lan0")["NetworkAddress"], (REG_SZ, b"02000000407F\0"))
        self.assertEqual(self.tcpip("lan0")["IPAddress"], (REG_MULTI_SZ, multi("10.1.0.5", "10.2.0.5", "10.3.0.5")))

    def expect_names_in_any_order(self, *names):
        def look():
            found = self.connections.names
            if sorted(found) != sorted(names):
                raise NotNow(f"the names are {found}")
        self.window.patiently(look, f"the connections {names}")

    def test_each_kind_of_mac_address(self):
        (self.programs / "VendorNumbers.log").write_bytes(vendor_bytes(("00A0C9", "First"), ("00E04C", "Second")))
        self.open_with(preset("Given", 2, "02-00-00-00-40-01"), preset("Dice", 2 | 4), preset("Own", 2),
                       preset("Its own", 2, "00-0C-29-4F-8E-35"), preset("none", 32))
        self.apply("Given", "No")
        self.assertEqual(self.driver("lan0")["NetworkAddress"], (REG_SZ, b"020000004001\0"))
        before = self.driver("lan0")
        for name in ("Given", "none"):
            self.apply(name, "Cancel")
            self.assertEqual(self.driver("lan0"), before)
        self.apply("Own", "No")
        self.assertNotIn("NetworkAddress", self.driver("lan0"))
        self.apply("Dice", "No")
        kind, data = self.driver("lan0")["NetworkAddress"]
        self.assertEqual(kind, REG_SZ)
        self.assertRegex(data, rb"^(00A0C9|00E04C)[0-9A-F]{6}\0$")
        self.apply("Its own", "No")
        self.assertNotIn("NetworkAddress", self.driver("lan0"))
        self.assert_up("lan0", OWN_MAC)

    def test_dhcp_is_turned_off_by_a_preset_without_it_with_a_warning(self):
        self.nicx("-n", "lan0", "-h")
        self.open_with(preset("Home", 1), preset("Fixed", 8, addresses=[("10.1.0.5", "255.255.255.0")]))
        self.expect_fact("DHCP:", "Enabled")
        warning = ("DHCP is turned off on 'lan0' because the preset does not turn it on; tick DHCP in the preset to "
                   "keep it")
        self.apply("Home", "No")
        self.assertNotIn(warning, "\n".join(self.window.describe()))
        self.assertEqual(self.tcpip("lan0")["EnableDHCP"], (REG_DWORD, b"\1\0\0\0"))
        self.apply("Fixed", "No")
        self.expect_warning(warning)
        self.assertEqual(self.tcpip("lan0")["EnableDHCP"], (REG_DWORD, b"\0\0\0\0"))
        self.expect_fact("DHCP:", "Disabled")
        self.apply("Home", "No")
        self.assertEqual(self.tcpip("lan0")["EnableDHCP"], (REG_DWORD, b"\1\0\0\0"))
        self.assertEqual(self.tcpip("lan0")["IPAddress"], (REG_MULTI_SZ, multi("0.0.0.0")))
        self.expect_fact("DHCP:", "Enabled")

    def test_a_connection_that_cannot_be_restarted(self):
        self.open_with(OFFICE)
        self.select_preset("Office")
        self.window.button("Apply").click()
        self.answer(APPLY, apply_question("Office"), "Yes")
        self.window.expect_box(RESTART)
        ip("link", "delete", "lan0")
        self.answer(RESTART, restart_question("Office"), "Yes")
        self.window.expect_box("Unable To Locate Network Connection").press("No")
        self.answer("Could Not Restart Network Connection",
                    "Network Connection 'lan0' you selected is taking too much time to restart and probably the "
                    "restart operation has failed.\n\nYou must manually disable and enable the network adapter "
                    "'lan0', or reboot your system to apply the changes.", "OK", kind="Warning")
        # What was applied stays, for when the link comes back.
        self.assert_office_stored()
        self.expect_names("NIC Not Found")
        self.assertFalse(self.window.button("Apply").enabled)

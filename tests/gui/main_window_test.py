"""The list of connections, the details of the selected one, and the ways to the commands: menus, buttons and keys."""

import os
import signal

from main_window import OWN, OWN_TEXT, MainWindowTest
from world import ip

CONNECTIONS = "Network Connections"
LISTS = ("IP Address", "Gateway", "DNS Server")
BUTTONS = ["Refresh", "Change MAC", "Disable", "Enable DHCP", "Release IP", "Renew IP", "Export"]
PRESET_BUTTONS = ["Apply", "Edit", "Delete"]
LIST_BUTTONS = ["Add IP Address", "Remove IP Address", "Add Gateway", "Remove Gateway", "Add DNS Server",
                "One up DNS Server priority", "Remove DNS Server", "One down DNS Server priority"]
READ_ANEW = "The connections were read anew."
EXPORT = "Export Text Report As ..."


def row_of(connection):
    """The row of a connection of nicx-report."""
    mac, override, original = (connection[name] for name in ("mac", "override", "originalMac"))
    changed = mac != original and bool(mac or override) if original else bool(override) and mac in ("", override)
    return (connection["name"], "Yes" if changed else "No", mac or override or original, connection["status"],
            connection["speed"] or "Disabled")


def mac_fact_of(connection):
    mac, override, original = (connection[name] for name in ("mac", "override", "originalMac"))
    if mac and override not in ("", mac):
        return f"{mac} (Inactive, {override})"
    if mac:
        return f"{mac} ({'Changed' if override or mac != original else 'Original'})"
    if override:
        return f"{override} (Changed)"
    return f"{original} (Original)" if original else "(Network Connection Not Active)"


def facts_of(connection):
    """The details of a connection of nicx-report, one without DHCP."""
    return {"Connection Name:": connection["name"], "Device Name:": connection["device"],
            "Hardware ID:": connection["hardwareId"], "Configuration ID:": connection["configurationId"],
            "MAC Address:": mac_fact_of(connection), "Manufacturer:": connection["manufacturer"],
            "Link Status:": connection["status"], "Speed:": connection["speed"] or "Disabled",
            "TCP/IP:": "Enabled", "DHCP:": "Disabled", "Lease Obtained:": "DHCP Disabled",
            "Lease Expires:": "DHCP Disabled"}


class Contents(MainWindowTest):
    def lists(self):
        """Rows of the three lists of the details."""
        return [self.window.table(name).rows for name in LISTS]

    def make_links(self):
        self.veth("lan0", "10.1.0.9/24", "10.1.0.5/24", "172.16.0.5/20", mac=OWN)
        for gateway, metric in (("10.1.0.1", "7"), ("172.16.0.1", "5")):
            ip("route", "add", "default", "via", gateway, "metric", metric)
        self.bridge("br0")
        self.tap("tap0")
        self.veth("off0", "10.2.0.5/24", mac="02:00:00:00:10:02")
        self.veth("odd0", mac="02:00:00:00:10:03")
        self.veth("new0", up=False)
        self.nicx("-n", "lan0", "-d", "10.1.0.53,10.1.0.54")
        self.nicx("-n", "off0", "-m", "00:0c:29:00:00:02", "-i", "10.2.0.6:255.255.0.0", "-g", "10.2.0.1", "-di")
        self.nicx("-n", "odd0", "-m", "00:0c:29:00:00:03")

    def test_every_connection_shows_what_the_report_says(self):
        self.make_links()
        report = self.report()
        self.assertEqual(len(report), 6)
        self.open_window()
        self.assertEqual(self.headers(CONNECTIONS), [CONNECTIONS, "Changed", "MAC Address", "Link Status", "Speed"])
        self.assertEqual(self.connections.rows, [row_of(connection) for connection in report.values()])
        self.expect_fact("Number of connections", "6 connections")
        for name, connection in report.items():
            with self.subTest(name=name):
                self.choose(name)
                wanted = facts_of(connection)
                facts = self.facts
                self.assertEqual({fact: facts.get(fact) for fact in wanted}, wanted)
                lists = [[(entry["address"], entry["mask"]) for entry in connection["addresses"]],
                         [(entry["gateway"], entry["metric"]) for entry in connection["gateways"]],
                         [(server,) for server in connection["dnsServers"]]]
                self.assertEqual(self.lists(), lists)
                self.assertEqual([self.headers(list_name)[0] for list_name in LISTS],
                                 [f"{list_name} ({len(rows)})" for list_name, rows in zip(LISTS, lists)])

    def test_what_is_shown_is_the_kernels_and_the_stores_state(self):
        self.make_links()
        self.open_window()
        self.choose("lan0")
        self.expect_facts({"MAC Address:": f"{OWN_TEXT} (Original)", "Link Status:": "Up, Operational",
                           "Hardware ID:": "veth", "Device Name:": "Virtual Ethernet"})
        self.assertEqual(self.lists(), [
            [("10.1.0.5", "255.255.255.0"), ("10.1.0.9", "255.255.255.0"), ("172.16.0.5", "255.255.240.0")],
            [("172.16.0.1", "5"), ("10.1.0.1", "7")], [("10.1.0.53",), ("10.1.0.54",)]])
        self.assertCountEqual(self.addresses("lan0"), ["10.1.0.5/24", "10.1.0.9/24", "172.16.0.5/20"])
        self.assertEqual(self.default_routes("lan0"), [("172.16.0.1", 5), ("10.1.0.1", 7)])

        self.choose("br0")
        self.expect_facts({"Hardware ID:": "ms_bridgemp", "Manufacturer:": "MICROSOFT NETWORK BRIDGE"})
        self.choose("tap0")
        self.expect_fact("Link Status:", "Up, Disconnected")
        self.choose("off0")
        self.expect_facts({"MAC Address:": "00-0C-29-00-00-02 (Changed)", "Link Status:": "Disabled",
                           "Speed:": "Disabled"})
        self.assertFalse(self.is_up("off0"))
        self.assertEqual(self.lists(), [[("10.2.0.6", "255.255.0.0")], [("10.2.0.1", "Automatic")], []])
        self.choose("odd0")
        self.expect_fact("MAC Address:", "02-00-00-00-10-03 (Inactive, 00-0C-29-00-00-03)")
        self.choose("new0")
        self.expect_facts({"MAC Address:": "(Network Connection Not Active)", "Manufacturer:": ""})

    def test_without_connections_there_is_nothing_to_command(self):
        self.open_window()
        self.assertEqual(self.connections.rows, [("NIC Not Found", "", "", " ", " ")])
        self.expect_facts({"Network Connection Details": "Network Connection Details", "Connection Name:": "",
                           "Received:": "0 Bytes", "Receiving Rate:": "0 Bytes/s",
                           "Number of connections": "0 connections"})
        self.assertEqual([self.headers(name) for name in LISTS],
                         [["IP Address (0)", "Subnet Mask"], ["Gateway (0)", "Metric"], ["DNS Server (0)"]])
        self.assertEqual([name for name in self.window.buttons if self.window.button(name).enabled],
                         ["Refresh", "Export"])
        self.assertEqual(self.window.menu("Connection").items,
                         [("Change MAC Address", False), ("Enable Network Connection", False)])
        self.assertEqual({enabled for _, enabled in self.window.menu("TCP/IP").items}, {False})
        self.assertEqual(self.window.menu("Presets").items,
                         [("Create / Edit Configuration Preset", True), ("Apply Preset", False),
                          ("Edit Preset", False), ("Delete Preset", False)])
        self.connections.click_row(0, button=3)
        self.desktop.press("ctrl+m", "ctrl+e", "ctrl+d", "ctrl+l", "ctrl+r")
        self.assertEqual([node.role for node in self.window.node.children], ["frame"])
        self.assertFalse(self.panel_is_open)


class Selection(MainWindowTest):
    def open_with_links(self, count=4):
        names = [f"lan{number}" for number in range(count)]
        for name in names:
            self.veth(name)
        self.open_window()
        self.assertCountEqual(self.connections.names, names)
        return self.connections.names

    def test_the_details_follow_clicks_and_keys(self):
        names = self.open_with_links()
        self.assertEqual(self.selected(), names[0])
        self.assertEqual(self.window.focus, ("table", CONNECTIONS))
        self.choose(names[2])
        for key, expected in (("Up", 1), ("Up", 0), ("Up", 0), ("Down", 1), ("End", 3), ("Down", 3), ("Home", 0)):
            self.desktop.press(key)
            self.assertEqual(self.selected(), names[expected], key)

    def test_a_refresh_keeps_the_selection(self):
        names = self.open_with_links()
        self.choose(names[2])
        for refresh in (lambda: self.desktop.press("F5"), self.window.button("Refresh").click,
                        self.window.menu("File", "Refresh").choose, lambda: self.desktop.press("alt+r")):
            # What was done last changes in between, so that it can be seen that it is set again.
            self.desktop.press("F1")
            self.expect_message().press("OK")
            self.assertNotEqual(self.facts["Done last"], READ_ANEW)
            refresh()
            self.expect_fact("Done last", READ_ANEW)
            self.assertEqual(self.selected(), names[2])

    def open_window(self, *arguments, **options):
        return super().open_window(*arguments, environment=self.opener("exit 1"), **options)


class Commands(MainWindowTest):
    """Each command by each way to it. What they do is told elsewhere."""

    MENUS = {"File": [("Refresh", True), (EXPORT, True), ("Exit", True)],
             "Connection": [("Change MAC Address", True), ("Disable Network Connection", True)],
             "TCP/IP": [("Enable DHCP", True), ("Release IP", False), ("Renew IP", False),
                        ("Add IP Address", True), ("Remove IP Address", False),
                        ("Add Gateway", True), ("Remove Gateway", False),
                        ("Add DNS Server", True), ("Remove DNS Server", False), ("DNS Server Up", False),
                        ("DNS Server Down", False), ("Interface Metric", True)],
             "Presets": [("Create / Edit Configuration Preset", True), ("Apply Preset", False), ("Edit Preset", False),
                         ("Delete Preset", False)],
             "Help": [("Help", True), ("Orvella Website", True), ("About Us", True)]}

    def setUp(self):
        super().setUp()
        self.veth("lan0", "10.1.0.2/24", mac=OWN)
        self.veth("lan1", up=False)

    def test_menus_and_buttons(self):
        self.open_window()
        self.choose("lan0")
        for menu, items in self.MENUS.items():
            self.assertEqual(self.window.menu(menu).items, items)
        self.assertEqual(self.window.buttons, [*BUTTONS, *PRESET_BUTTONS, *LIST_BUTTONS])
        self.choose("lan1")
        self.assertEqual(self.window.buttons[2], "Enable")
        self.assertEqual(self.window.menu("Connection").items[1], ("Enable Network Connection", True))

    def test_every_control_is_reached_with_the_tab_key(self):
        self.open_window()
        self.choose("lan0")
        ring = []
        while not ring or self.window.focus != ring[0]:
            ring.append(self.window.focus)
            self.desktop.press("Tab")
            self.assertLess(len(ring), 30, ring)
        buttons = [("push button", name) for name in BUTTONS if name not in ("Release IP", "Renew IP")]
        lists = [(role, name) for kind in LISTS for role, name in (("table", kind), ("push button", f"Add {kind}"))]
        # A list that gets the focus selects its first row.
        lists.insert(2, ("push button", "Remove IP Address"))
        self.assertEqual(ring, [("table", CONNECTIONS), ("table", "Presets"), *lists, *buttons])
        # And the other way round.
        for control in reversed(ring):
            self.desktop.press("shift+Tab")
            if self.window.focus is None:
                # The column headers of a list, where the toolkit stops on the way back.
                self.desktop.press("shift+Tab")
            self.assertEqual(self.window.focus, control)

    def test_buttons_have_mnemonics_of_their_own(self):
        self.open_window()
        # The others are reached by their lists' keys.
        named = self.window.buttons[:len(BUTTONS)] + ["Apply", "Edit"]
        mnemonics = [self.window.button(name).mnemonic for name in named]
        self.assertEqual(len(set(mnemonics)), len(named))
        for mnemonic in mnemonics:
            self.assertRegex(mnemonic, r"^alt\+[a-z]$")
        self.assertFalse({"alt+f", "alt+c", "alt+t", "alt+s", "alt+h"} & set(mnemonics))

    def test_the_panel_for_another_address_opens_and_closes(self):
        self.open_window()
        ways = (self.window.button("Change MAC").click, self.window.menu("Connection", "Change MAC Address").choose,
                lambda: self.desktop.press("ctrl+m"), lambda: self.desktop.press("alt+g"),
                lambda: self.connections.click_row("lan0", times=2), lambda: self.desktop.press("Return"))
        for number, way in enumerate(ways):
            with self.subTest(way=number):
                self.choose("lan0")
                way()
                self.octet(0).expect(showing=True, focused=True)
                self.window.label("Change MAC Address Of 'lan0'").expect(showing=True)
                self.desktop.press("Escape")
                self.window.entry("MAC address, octet 1 of 6").expect(showing=False)
                self.assertEqual(self.window.focus, ("table", CONNECTIONS))

    def test_the_lists_own_menu(self):
        self.open_window()
        self.choose("lan0")
        ways = (lambda: self.connections.click_row("lan0", button=3), lambda: self.desktop.press("Menu"),
                lambda: self.desktop.press("shift+F10"))
        for number, way in enumerate(ways):
            with self.subTest(way=number):
                way()
                popup = self.window.popup()
                self.assertEqual(popup.items, self.MENUS["Connection"])
                popup.item("Change MAC Address").choose()
                self.octet(0).expect(showing=True, focused=True)
                self.desktop.press("Escape")
        # A click with the right button selects.
        self.connections.click_row("lan1", button=3)
        self.assertEqual(self.window.popup().items,
                         [("Change MAC Address", True), ("Enable Network Connection", True)])
        self.desktop.press("Escape")
        self.assertEqual(self.selected(), "lan1")

    def test_disabling_and_enabling(self):
        self.open_window()
        self.choose("lan0")
        steps = (("disabled", self.window.button("Disable").click), ("enabled", lambda: self.desktop.press("ctrl+e")),
                 ("disabled", self.window.menu("Connection", "Disable Network Connection").choose),
                 ("enabled", self.window.button("Enable").click))
        for state, command in steps:
            command()
            self.connections.expect_row("lan0", None, None, f"{state.title().removesuffix('ed')}ing ...")
            self.expect_box(f"Connection {state.title()}", f"Network connection {state} successfully.", press="OK")
            self.assertEqual(self.is_up("lan0"), state == "enabled")
            self.expect_fact("Link Status:", "Up, Operational" if state == "enabled" else "Disabled")
            self.expect_fact("Done last", f"Network connection {state} successfully.")
        self.assert_up("lan0", OWN, ["10.1.0.2/24"])

    def test_enabling_from_the_lists_own_menu_and_by_mnemonic(self):
        self.open_window()
        self.connections.click_row("lan1", button=3)
        self.window.popup().item("Enable Network Connection").choose()
        self.expect_box("Connection Enabled", "Network connection enabled successfully.", press="OK")
        self.assertTrue(self.is_up("lan1"))
        self.desktop.press("alt+d")
        self.expect_box("Connection Disabled", "Network connection disabled successfully.", press="OK", by_key=True)
        self.assertFalse(self.is_up("lan1"))

    def test_a_connection_that_cannot_be_enabled(self):
        self.open_window()
        self.choose("lan1")
        # Taken up from outside at the same moment: there is no such command for it any more.
        os.kill(self.window.pid, signal.SIGSTOP)
        ip("link", "set", "lan1", "up")
        self.desktop.screen.press("ctrl+e")
        os.kill(self.window.pid, signal.SIGCONT)
        self.expect_box("Connection Cound Not Be Enabled", "Network connection could not be enabled or probably is "
                        "taking some time. Please try again.", press="OK", kind="Error")

    def test_menus_by_keys(self):
        self.open_window(environment=self.opener())
        for key, page in (("w", "https://orvella.example/"), ("h", f"{self.programs}/help.html")):
            self.desktop.press("alt+h", key)
            self.expect_opened(page)
        self.desktop.press("alt+f", "r")
        self.expect_fact("Done last", READ_ANEW)
        self.desktop.press("alt+f", "Right", "Return")
        self.octet(0).expect(showing=True)
        self.desktop.press("Escape", "alt+t", "i")
        self.window.expect_box("Enter Interface Metric").press("Cancel")

    def test_every_way_out(self):
        ways = (self.exit_by_menu, lambda: self.desktop.press("ctrl+q"), lambda: self.window.close())
        for number, way in enumerate(ways):
            with self.subTest(way=number):
                self.open_window()
                way()
                self.assertEqual(self.window.wait_exit(), 0)
                self.assertEqual(self.window.err.strip(), "")

    def exit_by_menu(self):
        self.window.menu("File", "Exit").choose()

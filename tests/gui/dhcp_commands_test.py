"""DHCP and the interface metric from the main window, with a real DHCP server at the far end of the link."""

from main_window import OWN, MainWindowTest
from world import FAR, INTERFACES_KEY, NOBODY, REG_DWORD, REG_MULTI_SZ, REG_SZ, DhcpServer, ip, multi, wait_for

RESTART = ("Restart Network Connection ?", "You must restart network connection to apply changes. Do you want to "
           "enable and disable network connection now ?")
RESTARTED = ("Network Connection Restarted", "Network connection restarted successfully.")
NOTE = ("NOTE: Orvella Corvane will not respond till the operation is complete or a time out has occured during this "
        "operation.")
RELEASE = ("Release IP ?", f"Are you sure to RELEASE IP address obtained from DHCP server ?\n\n{NOTE}")
RELEASED = ("IP Released Successfully", "DHCP IP Release operation was successfully performed.")
RENEW = ("Renew IP ?", f"Are you sure to RENEW IP address obtained from DHCP server ?\n\n{NOTE}")
RENEWED = ("IP Renewed Successfully", "DHCP IP Renew operation was successfully performed.")
METRIC = ("Enter Interface Metric", "Enter New Interface Metric For Network Connection 'lan0' Below:\n"
          "NOTE: For Automatic Metric, Enter Value 0 (Zero)")
METRIC_RESTART = ("Restart Network Connection Now ?",
                  "You must restart the selected network connection in order to apply Interface Metric changes\n\n"
                  "Are you sure to restart network connection 'lan0' now ?\n\n"
                  "WARNING : There will be loss of network connectivity while the network connection restarts.")


def write_error(key, value):
    """Title and text of the box for a value that may not be written."""
    return ("Error! Cannot Write Registry", "Error while writing in windows registry.\n\nRegistry Path: HKEY_LOCAL_"
            f"MACHINE\\{key}\\{value}\n\nError: (5) Access to this key is denied\n\nClick OK to continue")


class Dhcp(MainWindowTest):
    def setUp(self):
        super().setUp()
        self.veth("lan0", mac=OWN)
        ip("-n", FAR, "address", "replace", "10.77.0.1/24", "dev", "lan0")
        self.server = DhcpServer("lan0")
        self.addCleanup(self.server.stop)

    def open_with_lease(self, **options):
        """The window of a link that has a lease; the link was down before, so that there is one wait only."""
        self.nicx("-n", "lan0", "-h", "-di", "-re")
        self.await_lease()
        self.open_window(**options)
        self.expect_fact("DHCP:", "Enabled")

    def await_lease(self):
        wait_for(lambda: self.addresses("lan0") and self.default_routes("lan0"), "lan0 has a lease")

    def expect_shown_lease(self):
        address = self.server.leases()[OWN]
        self.window.table("IP Address").expect(rows=[(address, "255.255.255.0")])
        self.assertEqual(self.addresses("lan0"), [f"{address}/24"])
        self.window.table("Gateway").expect(size=1)
        self.assertEqual(self.window.table("Gateway").rows[0][0], "10.77.0.1")
        self.assertEqual(self.window.table("DNS Server").rows, [("10.77.0.53",), ("10.77.0.54",)])
        facts = self.facts
        for name in ("Lease Obtained:", "Lease Expires:"):
            self.assertRegex(facts[name], r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d GMT$")
        self.assertLess(facts["Lease Obtained:"], facts["Lease Expires:"])

    def assert_commands(self, caption, leased):
        self.assertEqual(self.window.buttons[3:6], [caption, "Release IP", "Renew IP"])
        items = self.window.menu("TCP/IP").items
        # The commands of the lists are between these.
        self.assertEqual([*items[:3], items[-1]], [(caption, True), ("Release IP", leased), ("Renew IP", leased),
                                                   ("Interface Metric", True)])
        self.assertEqual([self.window.button(name).enabled for name in ("Release IP", "Renew IP")], [leased, leased])

    def assert_reset(self, dhcp):
        """The registry has the switch, lists without a static set-up, and the DNS servers that it had."""
        nothing = REG_MULTI_SZ, b"\0"
        wanted = {"EnableDHCP": (REG_DWORD, bytes([dhcp, 0, 0, 0])), "IPAddress": (REG_MULTI_SZ, multi("0.0.0.0")),
                  "SubnetMask": (REG_MULTI_SZ, multi("0.0.0.0")), "DefaultGateway": nothing,
                  "DefaultGatewayMetric": nothing, "NameServer": (REG_SZ, b"10.77.0.99\0")}
        values = self.tcpip("lan0")
        self.assertEqual({name: values.get(name) for name in wanted}, wanted)

    def test_both_ways_empty_the_lists_and_leave_the_dns_servers(self):
        self.nicx("-n", "lan0", "-i", "10.1.0.2:255.255.255.0", "-g", "10.1.0.1:5", "-d", "10.77.0.99")
        self.open_window()
        for dhcp, answer in ((1, "No"), (0, "Cancel")):
            self.desktop.press("ctrl+d")
            self.expect_box(*RESTART, press=answer)
            self.assert_reset(dhcp)
            self.expect_fact("DHCP:", "Enabled" if dhcp else "Disabled")

    def test_without_rights_nothing_is_switched_or_given_back(self):
        self.copy_programs()
        self.open_with_lease(user=NOBODY)
        before = self.stored(), self.server.leases()
        self.desktop.press("ctrl+d")
        key = INTERFACES_KEY + "\\" + self.link_row("lan0")["id"]
        self.expect_box(*write_error(key, "EnableDHCP"), press="OK", kind="Error")
        # No restart is offered; the commands are there again.
        self.window.expect_windows(self.window.title)
        self.assert_commands("Disable DHCP", leased=True)
        for chord, question, api in (("ctrl+l", RELEASE, "IPReleaseAddress"), ("ctrl+r", RENEW, "IPRenewAddress")):
            self.desktop.press(chord)
            self.expect_box(*question, press="Yes")
            box = self.expect_message()
            self.assertEqual(box.text.rstrip(), f"DLL : IphlpApi.dll\n\nError Code : 5\nAPI: {api}\n"
                             "Error Description : Access is denied.\n\n\nClick OK To Continue")
            box.press("OK")
        self.assertEqual((self.stored(), self.server.leases()), before)
        self.assertEqual(self.addresses("lan0"), [f"{self.server.leases()[OWN]}/24"])

    def test_it_is_turned_on_with_a_restart(self):
        self.open_window()
        self.assert_commands("Enable DHCP", leased=False)
        self.window.button("Enable DHCP").click()
        box = self.window.expect_box(RESTART[0])
        self.assertEqual((box.text, box.buttons), (RESTART[1], ["No", "Cancel", "Yes"]))
        # What stands behind the question is not to be used meanwhile.
        self.assertFalse(self.window.button("Enable DHCP").enabled)
        box.press("Yes", by_key=True)
        self.connections.expect_row("lan0", None, None, "Disabling ...")
        self.connections.expect_row("lan0", None, None, "Enabling (Attempt 1) ...")
        self.expect_box(*RESTARTED, press="OK")
        self.await_lease()
        self.expect_fact("DHCP:", "Enabled")
        self.expect_shown_lease()
        self.assert_commands("Disable DHCP", leased=True)
        self.assertEqual(self.tcpip("lan0")["EnableDHCP"], (REG_DWORD, b"\1\0\0\0"))

    def test_a_lease_is_given_back_and_taken_again(self):
        self.open_with_lease()
        self.expect_shown_lease()
        self.window.button("Release IP").click()
        self.expect_box(*RELEASE, press="No")
        self.expect_shown_lease()
        self.window.menu("TCP/IP", "Release IP").choose()
        self.expect_box(*RELEASE, press="Cancel")
        self.desktop.press("ctrl+l")
        self.expect_box(*RELEASE, press="Yes")
        self.expect_box(*RELEASED, press="OK")
        self.assertEqual((self.server.leases(), self.addresses("lan0")), ({}, []))
        self.window.table("IP Address").expect(rows=[])

        self.window.menu("TCP/IP", "Renew IP").choose()
        self.expect_box(*RENEW, press="No")
        self.desktop.press("ctrl+r")
        self.expect_box(*RENEW, press="Cancel")
        self.assertEqual(self.server.leases(), {})
        self.window.button("Renew IP").click()
        self.expect_box(*RENEW, press="Yes")
        self.expect_box(*RENEWED, press="OK")
        self.await_lease()
        self.expect_shown_lease()
        self.expect_fact("Done last", RENEWED[1])

    def test_it_is_turned_off_without_a_restart(self):
        self.open_with_lease()
        self.desktop.press("ctrl+d")
        self.expect_box(*RESTART, press="No")
        self.expect_facts({"DHCP:": "Disabled", "Lease Obtained:": "DHCP Disabled", "Lease Expires:": "DHCP Disabled"})
        self.assert_commands("Enable DHCP", leased=False)
        values = self.tcpip("lan0")
        self.assertEqual((values["EnableDHCP"], values["IPAddress"]),
                         ((REG_DWORD, b"\0\0\0\0"), (REG_MULTI_SZ, multi("0.0.0.0"))))
        # And on again, by the other ways.
        self.window.menu("TCP/IP", "Enable DHCP").choose()
        self.expect_box(*RESTART, press="Cancel")
        self.expect_fact("DHCP:", "Enabled")
        self.desktop.press("alt+p")
        self.expect_box(*RESTART, press="No", by_key=True)
        self.expect_fact("DHCP:", "Disabled")

    def test_a_renewal_without_a_server_fails_in_words(self):
        self.open_with_lease()
        self.server.stop()
        self.desktop.press("alt+l")
        self.expect_box(*RELEASE, press="Yes", by_key=True)
        self.expect_box(*RELEASED, press="OK")
        self.desktop.press("alt+n")
        self.expect_box(*RENEW, press="Yes")
        box = self.expect_message()
        self.assertRegex(box.text, r"^DLL : IphlpApi\.dll\n\nError Code : \d+\nAPI: IPRenewAddress\n")
        box.press("OK")
        self.assert_commands("Disable DHCP", leased=True)


class Metric(MainWindowTest):
    def setUp(self):
        super().setUp()
        self.veth("lan0", mac=OWN)

    def metric(self):
        """The stored metric, or None."""
        kind, data = self.tcpip("lan0").get("InterfaceMetric", (REG_DWORD, None))
        self.assertEqual(kind, REG_DWORD)
        return data and int.from_bytes(data, "little")

    def enter(self, text, press="OK"):
        self.window.menu("TCP/IP", "Interface Metric").choose()
        box = self.window.expect_box(METRIC[0])
        self.assertEqual(box.text.replace("\n\n", "\n"), METRIC[1])
        box.entry().expect(text="", focused=True)
        self.desktop.type(text)
        box.press(press)

    def test_a_metric_is_stored_and_applied_by_a_restart(self):
        self.nicx("-n", "lan0", "-i", "10.1.0.2:255.255.255.0", "-g", "10.1.0.1", "-di")
        self.open_window()
        self.window.table("Gateway").expect(rows=[("10.1.0.1", "Automatic")])
        self.enter("0025")
        self.expect_box(*METRIC_RESTART, press="Yes")
        self.expect_box(*RESTARTED, press="OK")
        self.assertEqual(self.metric(), 25)
        self.assert_up("lan0", OWN, ["10.1.0.2/24"], [("10.1.0.1", 25)])
        self.window.table("Gateway").expect(rows=[("10.1.0.1", "25")])

    def test_nothing_else_is_asked_when_the_restart_is_refused(self):
        self.open_window()
        for text, stored, answer in (("0010", 10, "No"), ("12.7", 13, "Cancel"), ("0", None, "Cancel"),
                                     ("abc", 0, "No")):
            self.enter(text)
            self.expect_box(*METRIC_RESTART, press=answer)
            self.assertEqual(self.metric(), stored)
            self.window.expect_windows(self.window.title)

    def test_without_rights_no_restart_is_offered(self):
        self.copy_programs()
        self.report()
        before = self.stored()
        self.open_window(user=NOBODY)
        for text in ("25", "abc"):
            self.enter(text)
            key = INTERFACES_KEY + "\\" + self.link_row("lan0")["id"]
            self.expect_box(*write_error(key, "InterfaceMetric"), press="OK", kind="Error")
            self.window.expect_windows(self.window.title)
        self.assertEqual(self.stored(), before)

    def test_no_answer_changes_nothing(self):
        self.open_window()
        before = self.stored()
        self.enter("", press="OK")
        self.enter("25", press="Cancel")
        self.assertEqual(self.stored(), before)
        self.window.expect_windows(self.window.title)

    def test_a_metric_that_is_automatic_already_cannot_be_removed(self):
        self.open_window()
        self.enter("0")
        box = self.window.expect_box("Error! Cannot Write Registry")
        self.assertIn("InterfaceMetric", box.text)
        box.press("OK")
        self.window.expect_windows(self.window.title)

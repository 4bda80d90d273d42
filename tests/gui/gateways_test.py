"""Gateways added and removed in the main window: the kernel's routes at once, the registry when they are to stay."""

import errno
import socket

from address_lists import AddressListTest
from main_window import OWN
from world import FAR, NOBODY, REG_MULTI_SZ, ip, multi

OWN_ADDRESS = "10.1.0.2/24"
FIRST, SECOND = "10.1.0.1", "10.1.0.254"
# An address that only a gateway leads to.
BEHIND = "10.99.0.1"
NO_ENTRY = b"\0"
METRIC, AUTO, PERSISTENT = "Metric . . . .", "Auto Metric", "Persistant Gateway"
QUESTION = "Remove Selected Gateway ?"
UNREACHABLE = "The network location cannot be reached."


def reaches_behind():
    """True when the way leads to the far host, which answers that nobody listens; False when there is no way."""
    try:
        with socket.create_connection((BEHIND, 9), timeout=10):
            raise AssertionError("somebody listens")
    except OSError as problem:
        if problem.errno not in (errno.ECONNREFUSED, errno.ENETUNREACH):
            raise
        return problem.errno == errno.ECONNREFUSED


class GatewayTest(AddressListTest):
    list_name, box_name, add_name = "Gateway", "Gateway", "Add Gateway"

    def setUp(self):
        super().setUp()
        self.veth("lan0", OWN_ADDRESS, mac=OWN)
        for address in (FIRST, SECOND):
            ip("-n", FAR, "address", "add", f"{address}/24", "dev", "lan0")
        ip("-n", FAR, "address", "add", f"{BEHIND}/32", "dev", "lo")

    def open_list_panel(self):
        """Opens the window and the panel, by a digit in the list, which is only the key for it."""
        self.open_window()
        self.list.click()
        self.desktop.press("5")
        self.assert_empty()

    metric_box = property(lambda self: self.window.entry(METRIC))

    def add_with_metric(self, gateway, metric):
        self.metric_box.enter(metric)
        self.add(gateway)

    def assert_stored(self, gateways, metrics):
        """The registry has exactly these entries."""
        def value(entries):
            return REG_MULTI_SZ, multi(*entries) if entries else NO_ENTRY
        values = self.tcpip("lan0")
        self.assertEqual((values["DefaultGateway"], values["DefaultGatewayMetric"]), (value(gateways), value(metrics)))

    def store_both(self):
        """Both gateways are in the registry and in force before the window opens."""
        self.nicx("-n", "lan0", "-g", f"{FIRST},{SECOND}:10,20", "-di", "-re")
        self.assertEqual(self.default_routes("lan0"), [(FIRST, 10), (SECOND, 20)])

    def switch(self, done):
        """Disables or enables the connection with Ctrl+E; `done` is what is to come of it."""
        self.desktop.press("ctrl+e")
        self.expect_box(f"Connection {done}", f"Network connection {done.lower()} successfully.", press="OK")

    def answer(self, gateway, answer, by_key=False):
        self.expect_box(QUESTION, f"Are you sure to remove '{gateway}' gateway address ?", press=answer, by_key=by_key)


class Add(GatewayTest):
    def test_one_with_a_metric_is_in_force_at_once(self):
        self.open_list_panel()
        self.assertFalse(reaches_behind())
        self.add_with_metric(FIRST, "10")
        self.assertEqual(self.default_routes("lan0"), [(FIRST, 10)])
        self.assertTrue(reaches_behind())
        self.expect_list((FIRST, "10"))
        self.assert_empty()
        self.assertEqual((self.metric_box.text, self.metric_box.enabled), ("", True))
        self.assert_stored([], [])

        # By the key, with a text that is no number.
        self.desktop.type(SECOND)
        self.metric_box.enter("abc")
        self.desktop.press("Return")
        self.expect_list((SECOND, "0"), (FIRST, "10"))
        self.assertEqual(self.default_routes("lan0"), [(SECOND, 0), (FIRST, 10)])
        self.assert_empty()
        self.desktop.press("Escape")
        self.assertFalse(self.octet_box(1).showing)
        self.assert_focus("Gateway")
        self.assert_stored([], [])

    def test_automatic_metric_is_that_of_the_interface(self):
        self.report()
        self.run_program("nicx-registry", "add", f"HKLM\\{self.interface_key('lan0')}", "/v", "InterfaceMetric",
                         "/t", "REG_DWORD", "/d", "25", "/f")
        self.open_list_panel()
        self.metric_box.enter("7")
        auto = self.window.check(AUTO)
        auto.click()
        self.assertEqual((auto.checked, self.metric_box.text, self.metric_box.enabled), (True, "25", False))
        auto.click()
        self.assertEqual((auto.checked, self.metric_box.text, self.metric_box.enabled), (False, "", True))
        self.assert_focus(METRIC)
        auto.click()
        self.add(FIRST)
        self.assertEqual(self.default_routes("lan0"), [(FIRST, 25)])
        # The next one is added in the same way.
        self.assert_empty()
        self.assertEqual((auto.checked, self.metric_box.text, self.metric_box.enabled), (True, "25", False))
        # A panel that opens anew begins anew.
        self.window.button("Close").click()
        self.window.menu("TCP/IP", "Add Gateway").choose()
        self.assert_empty()
        self.assertEqual((auto.checked, self.metric_box.text, self.metric_box.enabled), (False, "", True))

    def test_a_persistent_one_comes_back_and_the_same_without_that_does_not(self):
        self.open_list_panel()
        self.window.check(PERSISTENT).click()
        self.add_with_metric(FIRST, "10")
        self.add_with_metric(SECOND, "20")
        self.assert_stored([FIRST, SECOND], ["10", "20"])
        self.window.check(PERSISTENT).click()
        self.add_with_metric(FIRST, "30")
        self.assertEqual(self.default_routes("lan0"), [(FIRST, 10), (SECOND, 20), (FIRST, 30)])
        self.assert_stored([SECOND], ["20"])
        self.list.click()
        self.switch("Disabled")
        self.assertEqual((self.default_routes("lan0"), reaches_behind()), ([], False))
        self.switch("Enabled")
        self.expect_list((SECOND, "20"))
        self.assert_up("lan0", OWN, [OWN_ADDRESS], [(SECOND, 20)])
        self.assertTrue(reaches_behind())

    def test_what_is_refused_is_told_and_changes_nothing(self):
        self.open_list_panel()
        self.window.check(PERSISTENT).click()
        before = self.stored()
        self.add_with_metric("10.98.0.1", "10")
        self.expect_refusal("CreateIpForwardEntry", 1231, UNREACHABLE)
        self.assertEqual((self.quad, self.metric_box.text), (["10", "98", "0", "1"], "10"))
        self.assertEqual((self.stored(), self.default_routes("lan0")), (before, []))
        self.assert_focus("Gateway, octet 1 of 4")
        # Corrected by a single box.
        self.desktop.press("Right", "Right")
        self.desktop.type("1")
        self.desktop.press("Return")
        self.expect_list((FIRST, "10"))
        self.assert_stored([FIRST], ["10"])

        # The same once more.
        before = self.stored()
        self.add_with_metric(FIRST, "10")
        self.expect_refusal("CreateIpForwardEntry", 5010, "The object already exists.")
        self.assertEqual(self.quad, FIRST.split("."))
        self.assertEqual((self.stored(), self.default_routes("lan0")), (before, [(FIRST, 10)]))

    def test_what_no_host_can_have_is_refused_with_the_reason(self):
        self.assert_refused_with_reason("224.0.0.1", "224.0.0.1", 1231, UNREACHABLE,
                                        "addresses from 224.0.0.0 to 239.255.255.255 are multicast groups")

    def test_an_empty_box_counts_as_an_address_that_no_gateway_has(self):
        self.assert_refused_with_reason("", "0.0.0.0", 87, "The parameter is incorrect.",
                                        "addresses that begin with 0 mean 'this network'")

    def assert_refused_with_reason(self, typed, text, code, description, reason):
        self.open_list_panel()
        self.window.check(PERSISTENT).click()
        before = self.stored()
        self.add(typed)
        self.expect_refusal("CreateIpForwardEntry", code, description)
        self.expect_bar(f"Gateway '{text}' cannot be used: {reason}")
        self.assertEqual(self.quad, text.split("."))
        self.assertEqual((self.stored(), ip("route", "show", "default")), (before, ""))
        self.expect_list()

    def test_without_rights_nothing_changes(self):
        self.store_both()
        self.copy_programs()
        self.report()
        before = self.stored()
        self.open_window(user=NOBODY)
        self.window.button("Add Gateway").click()
        self.add("10.1.0.77")
        self.expect_refusal("CreateIpForwardEntry", 5, "Access is denied.")
        self.assertEqual(self.quad, ["10", "1", "0", "77"])
        self.list.click_row(SECOND)
        self.desktop.press("Delete")
        self.answer(SECOND, "Yes")
        self.expect_box("Error! Cannot Read/Write Registry",
                        "Error while reading/writing in windows registry.\n\nRegistry Path: HKEY_LOCAL_MACHINE\\"
                        f"{self.interface_key('lan0')}\\DefaultGateway\n\nError: (5) Access to this key is denied\n\n"
                        "Click OK to continue", press="OK", kind="Error")
        self.expect_refusal("DeleteIpForwardEntry", 5, "Access is denied.")
        self.expect_list((FIRST, "10"), (SECOND, "20"))
        self.assertEqual((self.stored(), self.default_routes("lan0")), (before, [(FIRST, 10), (SECOND, 20)]))


class Remove(GatewayTest):
    def test_the_selected_one_goes_by_key_menu_and_button(self):
        self.store_both()
        self.open_window()
        remove = self.window.button("Remove Gateway")
        self.assertFalse(remove.enabled)
        before = self.stored()
        # The one with the higher metric, which the kernel would name last.
        self.list.click_row(SECOND)
        self.desktop.press("Delete")
        self.answer(SECOND, "No")
        self.window.menu("TCP/IP", "Remove Gateway").choose()
        self.answer(SECOND, "Cancel")
        remove.click()
        self.answer(SECOND, "No", by_key=True)
        self.expect_list((FIRST, "10"), (SECOND, "20"))
        self.assertEqual((self.stored(), self.default_routes("lan0")), (before, [(FIRST, 10), (SECOND, 20)]))

        self.list.click_row(SECOND, button=3)
        self.window.popup().item("Remove Gateway").choose()
        self.answer(SECOND, "Yes")
        self.assertEqual(self.default_routes("lan0"), [(FIRST, 10)])
        self.assert_stored([FIRST], ["10"])
        self.expect_list((FIRST, "10"))
        self.list.click_row(FIRST)
        remove.click()
        self.answer(FIRST, "Yes", by_key=True)
        self.assertEqual((self.default_routes("lan0"), reaches_behind()), ([], False))
        self.assert_stored([], [])
        self.expect_list()
        # Nothing is left to remove.
        self.assertFalse(remove.enabled)
        self.list.click()
        self.desktop.press("Delete")
        self.window.expect_windows(self.window.title)

    def test_one_whose_route_has_gone_meanwhile_leaves_the_registry_all_the_same(self):
        self.store_both()
        self.open_window()
        self.list.click_row(FIRST)
        self.desktop.press("Delete")
        # The list waits for the answer.
        box = self.window.expect_box(QUESTION)
        ip("route", "delete", "default", "via", FIRST)
        box.press("Yes")
        self.expect_refusal("DeleteIpForwardEntry", 1168, "Element not found.")
        self.assert_stored([SECOND], ["20"])
        self.expect_list((SECOND, "20"))
        self.assertEqual(self.default_routes("lan0"), [(SECOND, 20)])


class Disabled(GatewayTest):
    def test_only_the_registry_is_written_until_the_connection_starts(self):
        self.nicx("-n", "lan0", "-g", f"{FIRST}:10", "-di")
        self.open_list_panel()
        self.expect_fact("Link Status:", "Disabled")
        self.expect_list((FIRST, "10"))
        persistent = self.window.check(PERSISTENT)
        persistent.click()
        self.add_with_metric(SECOND, "20")
        self.assert_stored([FIRST, SECOND], ["10", "20"])
        self.expect_list((FIRST, "10"), (SECOND, "20"))
        # Known already: it gets another metric.
        self.add_with_metric(FIRST, "30")
        self.assert_stored([FIRST, SECOND], ["30", "20"])
        self.list.click_row(FIRST)
        self.desktop.press("Delete")
        self.answer(FIRST, "Yes")
        self.assert_stored([SECOND], ["20"])
        self.expect_list((SECOND, "20"))
        self.assertFalse(self.is_up("lan0"))
        self.assertEqual(self.default_routes("lan0"), [])
        self.switch("Enabled")
        self.assert_up("lan0", OWN, [OWN_ADDRESS], [(SECOND, 20)])
        self.expect_list((SECOND, "20"))

        self.switch("Disabled")
        # Nobody says no; what it will come to is told.
        self.add_with_metric("", "5")
        self.expect_bar("Gateway '0.0.0.0' is stored as typed but cannot take effect: addresses that begin with 0 mean "
                        "'this network'")
        self.assert_stored([SECOND, "0.0.0.0"], ["20", "5"])
        persistent.click()
        self.add_by_key(SECOND)
        self.expect_list(("0.0.0.0", "5"))
        self.assert_stored(["0.0.0.0"], ["5"])
        self.window.expect_windows(self.window.title)

"""DNS servers added, removed and put in order in the main window: the registry and the resolver's file at once."""

from address_lists import AddressListTest
from main_window import OWN, TITLE
from world import NOBODY, REG_SZ, RESOLV_CONF

BEFORE = b"# kept by hand\nnameserver 192.0.2.53\n"
OTHER = "192.0.2.53"
FIRST, SECOND, THIRD = "10.0.0.1", "10.0.0.2", "10.0.0.3"
UP, DOWN = "One up DNS Server priority", "One down DNS Server priority"
UP_ITEM, DOWN_ITEM = ("TCP/IP", "DNS Server Up"), ("TCP/IP", "DNS Server Down")
QUESTION = "Remove Selected DNS Server?"


def name_server(*servers):
    """The registry value; a text that is not empty is stored with its end."""
    return REG_SZ, ",".join(servers).encode() + b"\0" * bool(servers)


class DnsTest(AddressListTest):
    list_name, box_name, add_name = "DNS Server", "DNS server", "Add DNS"

    def setUp(self):
        super().setUp()
        self.veth("lan0", "10.1.0.2/24", mac=OWN)
        RESOLV_CONF.write_bytes(BEFORE)

    def store(self, *servers):
        """The connection has these servers before the window opens."""
        self.nicx("-n", "lan0", "-d", ",".join(servers))

    def open_list_panel(self):
        """Opens the panel, by a digit in the list, which is only the key for it."""
        self.list.click()
        self.desktop.press("7")
        self.assert_empty()

    def assert_servers(self, *servers, in_force=None):
        """The list, the registry and the resolver's file have these servers in this order, the last one those that are
        addresses."""
        self.expect_list(*[(server,) for server in servers])
        self.assertEqual(self.tcpip("lan0")["NameServer"], name_server(*servers))
        self.assertEqual(self.name_servers(), [*(servers if in_force is None else in_force), OTHER])

    def written(self):
        """Everything that a change would leave a trace in."""
        return self.stored(), RESOLV_CONF.read_bytes(), RESOLV_CONF.stat().st_mtime_ns

    def answer(self, server, answer, by_key=False):
        self.expect_box(QUESTION, f"Are you sure to remove '{server}' DNS server address ?", press=answer,
                        by_key=by_key)

    def expect_duplicate(self, server):
        self.expect_box("DNS Server IP Already Exists",
                        f"DNS Server IP '{server}' already exists in the list for selected NIC.", press="OK",
                        kind="Warning")


class Add(DnsTest):
    def test_they_are_added_in_order_and_none_of_them_twice(self):
        self.open_window()
        self.expect_list()
        self.open_list_panel()
        self.add_button.click()
        self.assert_empty()
        self.assertNotIn("NameServer", self.tcpip("lan0"))
        self.add(FIRST)
        self.assert_servers(FIRST)
        self.assert_empty()
        self.desktop.type(SECOND)
        self.desktop.press("Return")
        self.assert_servers(FIRST, SECOND)
        self.assert_empty()
        self.add(THIRD)
        self.assert_servers(FIRST, SECOND, THIRD)

        before = self.written()
        self.add(SECOND)
        self.expect_duplicate(SECOND)
        self.assertEqual(self.quad, SECOND.split("."))
        self.assert_focus("DNS server, octet 1 of 4")
        self.add("010.000.000.001")
        self.expect_duplicate(FIRST)
        self.assertEqual(self.quad, FIRST.split("."))
        self.assert_servers(FIRST, SECOND, THIRD)
        self.assertEqual(self.written(), before)
        self.desktop.press("Escape")
        self.assertFalse(self.octet_box(1).showing)
        self.assert_focus("DNS Server")

    def test_what_is_no_address_is_stored_as_typed_and_told(self):
        self.store(FIRST)
        self.open_window()
        self.window.menu("TCP/IP", "Add DNS Server").choose()
        self.assert_empty()
        self.add("8.8.")
        self.expect_bar("DNS server '8.8..' is stored as typed but cannot take effect: it is not four numbers 0 to 255 "
                        "joined by '.'")
        self.assert_servers(FIRST, "8.8..", in_force=[FIRST])
        self.window.expect_windows(TITLE)
        # It goes like any other.
        self.list.click_row("8.8..")
        self.desktop.press("Delete")
        self.answer("8.8..", "Yes")
        self.assert_servers(FIRST)

    def test_a_button_at_the_edge_of_the_sight_takes_the_click(self):
        self.open_window()
        self.open_list_panel()
        self.desktop.type("8.8.")
        self.add_button.click()
        # The bar takes room from the rest of the window, whose lower edge goes through the button now.
        self.expect_bar("DNS server '8.8..' is stored as typed but cannot take effect: it is not four numbers 0 to 255 "
                        "joined by '.'")
        self.add(FIRST)
        self.assert_servers("8.8..", FIRST, in_force=[FIRST])

    def leave_the_preset_editor_again(self):
        self.desktop.press("ctrl+t")
        self.window.entry("Preset name").expect(focused=True)
        self.expect_list()
        self.desktop.press("alt+l")

    def test_another_connection_and_back_shows_the_new_order(self):
        self.veth("lan1", "10.2.0.2/24", mac="02:00:00:00:20:01")
        self.nicx("-n", "lan1", "-d", "10.2.0.53")
        self.store(FIRST, SECOND)
        self.open_window()
        self.choose("lan0")
        self.list.click_row(SECOND)
        self.window.button(UP).click()
        self.expect_list((SECOND,), (FIRST,))
        self.leave_the_preset_editor_again()
        self.expect_list((SECOND,), (FIRST,))
        self.choose("lan1")
        self.expect_list(("10.2.0.53",))
        self.choose("lan0")
        self.expect_list((SECOND,), (FIRST,))
        self.desktop.press("F5")
        self.expect_fact("Done last", "The connections were read anew.")
        self.expect_list((SECOND,), (FIRST,))
        # Each connection keeps its own.
        self.assertEqual((self.tcpip("lan0")["NameServer"], self.tcpip("lan1")["NameServer"]),
                         (name_server(SECOND, FIRST), name_server("10.2.0.53")))
        self.assertCountEqual(self.name_servers(), [SECOND, FIRST, "10.2.0.53", OTHER])
        self.assertLess(self.name_servers().index(SECOND), self.name_servers().index(FIRST))


class Order(DnsTest):
    def setUp(self):
        super().setUp()
        self.store(FIRST, SECOND, THIRD)
        self.open_window()

    def assert_order(self, *servers, selected):
        self.assert_servers(*servers)
        self.assertEqual(self.list.selected_rows, [(selected,)])

    def test_one_moves_by_the_buttons(self):
        up, down = self.window.button(UP), self.window.button(DOWN)
        self.assertEqual((up.enabled, down.enabled), (False, False))
        self.list.click_row(THIRD)
        self.assertEqual((up.enabled, down.enabled), (True, False))
        up.click()
        self.assert_order(FIRST, THIRD, SECOND, selected=THIRD)
        self.assertEqual((up.enabled, down.enabled), (True, True))
        up.click()
        self.assert_order(THIRD, FIRST, SECOND, selected=THIRD)
        self.assertEqual((up.enabled, down.enabled), (False, True))
        down.click()
        self.assert_order(FIRST, THIRD, SECOND, selected=THIRD)
        self.window.menu(*DOWN_ITEM).choose()
        self.assert_order(FIRST, SECOND, THIRD, selected=THIRD)
        self.window.menu(*UP_ITEM).choose()
        self.assert_order(FIRST, THIRD, SECOND, selected=THIRD)
        self.list.click_row(FIRST, button=3)
        self.window.popup().item(DOWN).choose()
        self.assert_order(THIRD, FIRST, SECOND, selected=FIRST)

    def test_one_moves_by_keys_and_not_beyond_the_ends(self):
        self.list.click_row(SECOND)
        self.desktop.press("alt+Up")
        self.assert_order(SECOND, FIRST, THIRD, selected=SECOND)
        before = self.written()
        self.desktop.press("alt+Up")
        self.assert_order(SECOND, FIRST, THIRD, selected=SECOND)
        self.assertEqual(self.written(), before)
        self.desktop.press("alt+Down", "alt+Down")
        self.assert_order(FIRST, THIRD, SECOND, selected=SECOND)
        before = self.written()
        self.desktop.press("alt+Down")
        self.assert_order(FIRST, THIRD, SECOND, selected=SECOND)
        self.assertEqual(self.written(), before)
        self.assert_focus("DNS Server")

    def test_the_arrow_keys_go_on_from_the_moved_one(self):
        self.list.click_row(SECOND)
        self.desktop.press("alt+Down")
        self.assert_order(FIRST, THIRD, SECOND, selected=SECOND)
        before = self.written()
        self.desktop.press("Up")
        self.assert_order(FIRST, THIRD, SECOND, selected=THIRD)
        self.desktop.press("Up")
        self.assert_order(FIRST, THIRD, SECOND, selected=FIRST)
        self.assertEqual(self.written(), before)


class Remove(DnsTest):
    def test_the_selected_one_goes_after_a_question_and_so_does_the_last(self):
        self.store(FIRST, SECOND)
        self.open_window()
        remove = self.window.button("Remove DNS Server")
        self.assertFalse(remove.enabled)
        before = self.written()
        self.list.click_row(FIRST)
        remove.click()
        self.answer(FIRST, "No")
        self.window.menu("TCP/IP", "Remove DNS Server").choose()
        self.answer(FIRST, "Cancel")
        self.expect_list((FIRST,), (SECOND,))
        self.assertEqual(self.written(), before)
        self.list.click_row(FIRST)
        self.desktop.press("Delete")
        self.answer(FIRST, "Yes", by_key=True)
        self.assert_servers(SECOND)
        self.list.click_row(SECOND, button=3)
        self.window.popup().item("Remove DNS Server").choose()
        self.answer(SECOND, "Yes")
        self.assert_servers()
        self.assertEqual(RESOLV_CONF.read_bytes(), BEFORE)
        self.assertFalse(remove.enabled)
        self.list.click()
        self.desktop.press("Delete", "alt+Up", "alt+Down")
        self.window.expect_windows(TITLE)


class Refused(DnsTest):
    def test_without_rights_the_list_changes_and_nothing_else(self):
        self.store(FIRST, SECOND)
        self.copy_programs()
        self.report()
        before = self.written()
        self.open_window(user=NOBODY)
        self.open_list_panel()
        self.add(THIRD)
        self.expect_no_rights()
        self.list.click_row(FIRST)
        self.desktop.press("alt+Down")
        self.expect_no_rights()
        # The list keeps its new state until it is read anew.
        self.expect_list((SECOND,), (FIRST,))
        self.assertEqual(self.written(), before)
        self.desktop.press("Escape", "F5")
        self.expect_fact("Done last", "The connections were read anew.")
        self.expect_list((FIRST,), (SECOND,))

    def expect_no_rights(self):
        self.expect_box("Error! Cannot Write Into Registry",
                        "Error while writing into windows registry.\n\nKey: HKEY_LOCAL_MACHINE\\"
                        f"{self.interface_key('lan0')}\nValue: NameServer\n\nError: (5) Access to this key is denied\n"
                        "Click OK to continue", press="OK", kind="Error")

    def test_a_resolver_file_that_cannot_be_written_is_told(self):
        self.store(FIRST, SECOND)
        before = RESOLV_CONF.read_bytes()
        self.mount_read_only(RESOLV_CONF)
        self.open_window()
        self.list.click_row(SECOND)
        self.desktop.press("alt+Up")
        self.expect_bar("/etc/resolv.conf was left as it is: Read-only file system; make it writable or set the DNS "
                        "servers in it by hand")
        self.window.expect_windows(TITLE)
        self.expect_list((SECOND,), (FIRST,))
        self.assertEqual(self.tcpip("lan0")["NameServer"], name_server(SECOND, FIRST))
        self.assertEqual(RESOLV_CONF.read_bytes(), before)

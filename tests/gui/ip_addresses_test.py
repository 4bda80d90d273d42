"""Adding and removing IP addresses of real links by the main window: what the kernel and the registry say of it."""

import socket
import subprocess

from ip_panel import ADDRESS, CAPTION, EMPTY, IP_LIST, MASK, PERSISTENT, IpPanelTest
from waiting import NotNow
from window import TITLE
from world import NOBODY, REG_MULTI_SZ, ip

OWN = "02:00:00:00:10:01"
FIRST = "10.1.0.2"
ADD, REMOVE = "Add IP Address", "Remove IP Address"
QUESTION = "Remove Selected IP Address ?"
DISABLED = ("Connection Disabled", "Network connection disabled successfully.")
ENABLED = ("Connection Enabled", "Network connection enabled successfully.")


def refusal(code, description, api="AddIPAddress"):
    return (f"DLL : IphlpApi.dll\n\nError Code : {code}\nAPI: {api}\nError Description : {description}\n\n\n"
            "Click OK To Continue")


class AddressesTest(IpPanelTest):
    """Base of the cases: one link, with these addresses."""

    addresses_before = (f"{FIRST}/24",)

    def setUp(self):
        super().setUp()
        self.veth("eth0", *self.addresses_before, mac=OWN)
        self.prepare()

    def prepare(self):
        """What comes before the start of the window."""

    def registry(self):
        """The stored addresses and masks."""
        values = self.tcpip("eth0")
        lists = []
        for name in ("IPAddress", "SubnetMask"):
            kind, data = values[name]
            self.assertEqual(kind, REG_MULTI_SZ)
            self.assertTrue(data.endswith(b"\0\0"), data)
            lists.append(data[:-2].decode().split("\0"))
        return list(zip(*lists, strict=True))

    def add(self, address, prefix):
        """Types an address and the length of its mask and presses Enter."""
        self.type_address(address, prefix=prefix)
        self.press("Return")

    def expect_ready(self):
        """Waits until the panel is empty and takes the next address."""
        # The Enter key shows the button pressed for a moment before it does what the button does.
        self.box(ADDRESS, 0).expect(text="", focused=True)
        self.assert_boxes(EMPTY, EMPTY, "")
        self.window.expect_windows(TITLE)

    def expect_refused(self, text, sentence=None):
        """Waits for the box of a refused address; the boxes keep their texts then and the focus is in the first."""
        box = self.expect_message()
        self.assertEqual((box.text, self.kind(box), box.buttons), (text, "Error", ["OK"]))
        box.press("OK")
        self.assert_focus(ADDRESS, 0)
        if sentence:
            self.expect_sentence(sentence)

    def expect_sentence(self, text):
        """Waits until the bar at the window's top has this text."""
        self.window.label(text).expect(showing=True)

    def select(self, address):
        self.ip_list.click_row(address)
        self.ip_list.expect(selected_rows=[next(row for row in self.ip_list.rows if row[0] == address)])

    def expect_question(self, address, answer, by_key=False):
        super().expect_box(QUESTION, f"Are you sure to remove '{address}' IP address ?", press=answer, by_key=by_key)

    def toggle(self, box):
        """Disables or enables the connection; waits for the box that says so."""
        self.press("ctrl+e")
        self.expect_box(*box, press="OK")


class Opening(AddressesTest):
    def test_the_panel_opens_in_every_way_and_closes(self):
        def by_context_menu():
            self.ip_list.click_row(FIRST, button=3)
            self.assertEqual(self.window.popup().items, [(ADD, True), (REMOVE, True)])
            self.window.popup().item(ADD).choose()

        def by_menu_key():
            self.press("shift+F10")
            self.window.popup()
            self.press("Down", "Return")

        def by_number_pad():
            self.press("Num_Lock", "KP_End", "Num_Lock")

        self.open_window()
        self.assertEqual(self.headers(IP_LIST)[0], IP_LIST + " (1)")
        self.ip_list.click_row(FIRST)
        ways = {
            "digit": lambda: self.press("0"),
            "number pad": by_number_pad,
            "button": self.window.button(ADD).click,
            "menu": self.window.menu("TCP/IP", ADD).choose,
            "context menu": by_context_menu,
            "menu key": by_menu_key,
        }
        closers = [lambda: self.press("Escape"), self.window.button("Close").click]
        for number, (name, way) in enumerate(ways.items()):
            with self.subTest(name):
                way()
                self.assertTrue(self.window.label(CAPTION).showing)
                self.expect_ready()
                self.assertFalse(self.window.check(PERSISTENT).checked)
                self.type_address("10.2.3.4", prefix="8")
                closers[number % 2]()
                self.assertFalse(self.ip_panel_is_open)
                self.assert_focus(IP_LIST)
        # Other keys do not open it.
        self.press("a", "ctrl+1", "period")
        self.assertFalse(self.ip_panel_is_open)
        self.assertEqual(self.addresses("eth0"), [f"{FIRST}/24"])

    def test_only_one_of_the_three_panels_is_open(self):
        self.open_window()
        captions = {"Gateway": "Enter Gateway IP Address Below", "DNS Server": "Enter DNS Server IP Below"}
        for name, caption in captions.items():
            with self.subTest(name):
                self.window.menu("TCP/IP", f"Add {name}").choose()
                self.window.label(caption).expect(showing=True)
                self.window.menu("TCP/IP", ADD).choose()
                self.box(ADDRESS, 0).expect(showing=True, focused=True)
                self.assertFalse(self.window.label(caption).showing)
                self.type("10")
                self.window.menu("TCP/IP", f"Add {name}").choose()
                self.window.label(caption).expect(showing=True)
                self.assertFalse(self.ip_panel_is_open)
                self.assertFalse(self.window.label(CAPTION).showing)
        self.press("Escape")
        self.assertFalse(self.window.label(captions["DNS Server"]).showing)
        # Opened again while it is open, it begins anew.
        self.open_ip_panel()
        self.type_address("10.2.3.4", prefix="8")
        self.window.button(ADD).click()
        self.expect_ready()


class Adding(AddressesTest):
    def test_an_address_is_there_at_once_and_only_a_persistent_one_after_a_restart(self):
        self.open_window()
        self.open_ip_panel()
        self.add("10.5.0.7", "20")
        self.expect_ready()
        self.assertEqual(self.addresses("eth0"), [f"{FIRST}/24", "10.5.0.7/20"])
        self.ip_list.expect(rows=[(FIRST, "255.255.255.0"), ("10.5.0.7", "255.255.240.0")])
        self.assertEqual(self.headers(IP_LIST)[0], IP_LIST + " (2)")
        self.assertEqual(self.registry(), [(FIRST, "255.255.255.0")])
        # The next one right away, with the mask instead of its length and the button instead of the Enter key.
        self.window.check(PERSISTENT).click()
        self.type_address("10.6.0.1", mask="255.255.0.0")
        self.window.button("Add IP").click()
        self.assertEqual(self.addresses("eth0"), [f"{FIRST}/24", "10.5.0.7/20", "10.6.0.1/16"])
        self.expect_ready()
        self.assertTrue(self.window.check(PERSISTENT).checked)
        self.assertEqual(self.registry(), [(FIRST, "255.255.255.0"), ("10.6.0.1", "255.255.0.0")])
        self.press("Escape")
        self.assert_focus(IP_LIST)

        self.toggle(DISABLED)
        self.assertFalse(self.is_up("eth0"))
        self.toggle(ENABLED)
        self.assert_up("eth0", OWN, [f"{FIRST}/24", "10.6.0.1/16"])
        self.ip_list.expect(rows=[(FIRST, "255.255.255.0"), ("10.6.0.1", "255.255.0.0")])
        self.assertEqual(self.registry(), [(FIRST, "255.255.255.0"), ("10.6.0.1", "255.255.0.0")])

    def test_a_refused_address_is_told_in_words_and_stays_in_the_boxes(self):
        self.open_window()
        self.open_ip_panel()
        invalid = refusal(87, "The parameter is incorrect.")
        self.window.check(PERSISTENT).click()
        self.press("alt+k")
        self.assert_focus(MASK, 0)
        self.press("Return")
        self.expect_refused(invalid, "IP address '0.0.0.0' cannot be used: addresses that begin with 0 mean "
                                     "'this network'")
        self.assert_boxes(["0"] * 4, EMPTY, "")
        self.assert_selected(ADDRESS, 0)

        # A mask with a hole in it, and none at all.
        self.type_address("10.7.0.1", mask="255.0.255.0")
        self.press("Return")
        self.expect_refused(invalid, "Subnet mask '255.0.255.0' cannot be used: a mask is one bits followed by zero "
                                     "bits, such as 255.255.255.0")
        self.assert_boxes(["10", "7", "0", "1"], ["255", "0", "255", "0"], "8")
        # An address that the connection has.
        self.add(FIRST, "24")
        box = self.expect_message()
        self.assertRegex(box.text, r"^DLL : IphlpApi\.dll\n\nError Code : 5010\nAPI: AddIPAddress\n"
                                   r"Error Description : \S.*already exists.*\n\n\nClick OK To Continue$")
        box.press("OK")
        self.assert_focus(ADDRESS, 0)
        self.assert_boxes(FIRST.split("."), ["255", "255", "255", "0"], "24")
        for address in ("127.0.0.1", "224.0.0.1", "255.255.255.255"):
            with self.subTest(address):
                self.add(address, "8")
                self.expect_refused(invalid)
                self.assert_boxes(address.split("."))
        self.assertEqual(self.addresses("eth0"), [f"{FIRST}/24"])
        self.assertEqual(self.registry(), [(FIRST, "255.255.255.0")])
        self.assertEqual(self.ip_list.rows, [(FIRST, "255.255.255.0")])
        # The next one that is none of it is taken.
        self.add("10.7.0.1", "32")
        self.expect_ready()
        self.assertEqual(self.addresses("eth0"), [f"{FIRST}/24", "10.7.0.1/32"])
        self.assertEqual(self.registry(), [(FIRST, "255.255.255.0"), ("10.7.0.1", "255.255.255.255")])

    def test_a_partly_filled_address_is_stored_as_it_was_typed(self):
        self.open_window()
        self.open_ip_panel()
        self.window.check(PERSISTENT).click()
        self.add("10.7", "24")
        self.expect_ready()
        self.expect_sentence("IP address '10.7..' is stored as typed but cannot take effect: it is not four numbers 0 "
                             "to 255 joined by '.'")
        # An empty box counts as 0 while the connection runs.
        self.assertEqual(self.addresses("eth0"), [f"{FIRST}/24", "10.7.0.0/24"])
        self.assertEqual(self.registry(), [(FIRST, "255.255.255.0"), ("10.7..", "255.255.255.0")])

    def await_tick(self):
        """Sends something over the connection and waits until its traffic has been read."""
        before = self.fact("Sent:").text
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
            sender.sendto(b"tick", ("10.8.0.9", 9))

        def look():
            if self.fact("Sent:").text == before:
                raise NotNow("it has not been read yet")
        self.window.patiently(look, "a tick")

    def test_changes_from_outside_are_shown_when_the_panel_is_closed(self):
        self.open_window()
        self.open_ip_panel()
        self.type("10.9.0")
        ip("address", "add", "10.8.0.1/24", "dev", "eth0")
        ip("address", "delete", f"{FIRST}/24", "dev", "eth0")
        # The clock goes on ticking once a second; a refresh would have come in that time.
        for _ in range(2):
            self.await_tick()
        self.assertEqual(self.ip_list.rows, [(FIRST, "255.255.255.0")])
        self.assert_boxes(["10", "9", "0", ""])
        self.press("Escape")
        self.ip_list.expect(rows=[("10.8.0.1", "255.255.255.0")])
        self.assert_focus(IP_LIST)


class Removing(AddressesTest):
    addresses_before = (f"{FIRST}/24", "10.1.0.3/24", "10.2.0.1/16", "10.3.0.1/8")

    def test_the_selected_one_goes(self):
        self.open_window()
        everything = [tuple(address.split("/")) for address in self.addresses_before]
        texts = [address for address, _ in everything]
        self.ip_list.expect(size=4)
        self.assertEqual([row[0] for row in self.ip_list.rows], texts)
        self.assertEqual(sorted(address for address, _ in self.registry()), texts)
        before = self.stored()
        self.select("10.2.0.1")
        for answer in ("No", "Cancel"):
            self.press("Delete")
            self.expect_question("10.2.0.1", answer, by_key=answer == "No")
        self.window.button(REMOVE).click()
        box = self.window.expect_box(QUESTION)
        self.press("Escape")
        box.expect_gone()
        self.assertEqual(sorted(self.addresses("eth0")), list(self.addresses_before))
        self.assertEqual(self.stored(), before)

        self.ip_list.click_row("10.2.0.1")
        self.press("Delete")
        self.expect_question("10.2.0.1", "Yes", by_key=True)
        self.expect_left(FIRST, "10.1.0.3", "10.3.0.1")
        # The one that has taken its place is selected, and the focus is still in the list.
        self.assertEqual(self.ip_list.selected, [2])
        self.assert_focus(IP_LIST)
        # The kernel takes the others of a network away with its first address; here they stay.
        self.select(FIRST)
        self.window.menu("TCP/IP", REMOVE).choose()
        self.expect_question(FIRST, "Yes")
        self.expect_left("10.1.0.3", "10.3.0.1")
        self.assertEqual(self.ip_list.selected, [0])
        self.select("10.3.0.1")
        self.window.button(REMOVE).click()
        self.expect_question("10.3.0.1", "Yes")
        self.expect_left("10.1.0.3")
        # The last one was the selected one; the one before it is now.
        self.assertEqual(self.ip_list.selected, [0])
        self.ip_list.click_row("10.1.0.3", button=3)
        self.window.popup().item(REMOVE).choose()
        self.expect_question("10.1.0.3", "Yes")
        self.ip_list.expect(rows=[])
        self.assertEqual((self.addresses("eth0"), self.registry()), ([], [("0.0.0.0", "0.0.0.0")]))
        self.assertEqual(self.headers(IP_LIST)[0], IP_LIST + " (0)")
        # There is nothing left to remove.
        self.assertFalse(self.window.button(REMOVE).enabled)
        self.ip_list.click()
        self.press("Delete")
        self.window.expect_windows(TITLE)

    def expect_left(self, *addresses):
        """The list, the kernel and the registry have these addresses left."""
        def texts(pairs):
            return [pair[0] for pair in pairs]
        self.ip_list.expect(size=len(addresses))
        self.assertEqual(texts(self.ip_list.rows), list(addresses))
        self.assertEqual(sorted(address.split("/")[0] for address in self.addresses("eth0")), sorted(addresses))
        self.assertEqual(sorted(texts(self.registry())), sorted(addresses))
        self.assertEqual(self.headers(IP_LIST)[0], f"{IP_LIST} ({len(addresses)})")


class Surroundings(AddressesTest):
    def test_of_a_disabled_connection_only_the_registry_changes(self):
        self.open_window()
        self.toggle(DISABLED)
        rows = self.ip_list.rows
        self.open_ip_panel()
        # An address for the time of running has nothing to run on; that is no error.
        self.add("10.5.0.7", "20")
        self.expect_ready()
        self.assertEqual(self.registry(), [(FIRST, "255.255.255.0")])
        self.window.check(PERSISTENT).click()
        self.add("10.6.0.1", "16")
        self.expect_ready()
        self.assertEqual(self.registry(), [(FIRST, "255.255.255.0"), ("10.6.0.1", "255.255.0.0")])
        self.assertFalse(self.is_up("eth0"))
        self.press("Escape")
        self.ip_list.expect(rows=[*rows, ("10.6.0.1", "255.255.0.0")])
        self.select(FIRST)
        self.press("Delete")
        self.expect_question(FIRST, "Yes")
        self.ip_list.expect(rows=[("10.6.0.1", "255.255.0.0")])
        self.assertEqual(self.registry(), [("10.6.0.1", "255.255.0.0")])
        self.toggle(ENABLED)
        self.assert_up("eth0", OWN, ["10.6.0.1/16"])

    def test_without_rights_nothing_changes(self):
        self.copy_programs()
        self.report()
        before = self.stored()
        self.open_window(user=NOBODY)
        self.open_ip_panel()
        self.window.check(PERSISTENT).click()
        self.add("10.6.0.1", "16")
        self.expect_refused(refusal(5, "Access is denied."))
        self.assert_boxes(["10", "6", "0", "1"], ["255", "255", "0", "0"], "16")
        self.press("Escape")
        self.select(FIRST)
        self.press("Delete")
        self.expect_question(FIRST, "Yes")
        box = self.window.expect_box("Error! Cannot Read/Write Registry")
        self.assertIn("\n\nError: (5) Access to this key is denied\n", box.text)
        box.press("OK")
        box = self.expect_message()
        self.assertEqual(box.text, refusal(5, "Access is denied.", "DeleteIPAddress"))
        box.press("OK")
        self.assertEqual(self.ip_list.rows, [(FIRST, "255.255.255.0")])
        self.assertEqual(self.addresses("eth0"), [f"{FIRST}/24"])
        self.assertEqual(self.stored(), before)


class Many(AddressesTest):
    many = [f"10.{50 + number // 100}.{number % 100}.1" for number in range(300)]

    def prepare(self):
        batch = "".join(f"address add {address}/24 dev eth0\n" for address in self.many)
        subprocess.run(["ip", "-batch", "-"], input=batch, text=True, check=True)

    def test_three_hundred_addresses(self):
        self.open_window()
        everything = [(FIRST, "255.255.255.0"), *((address, "255.255.255.0") for address in self.many)]
        self.ip_list.expect(size=301)
        self.assertEqual(self.ip_list.rows, everything)
        self.assertEqual(self.headers(IP_LIST)[0], IP_LIST + " (301)")
        self.open_ip_panel()
        self.window.check(PERSISTENT).click()
        self.add("10.60.0.1", "24")
        self.expect_ready()
        self.assertIn("10.60.0.1/24", self.addresses("eth0"))
        self.assertEqual(self.registry(), [*everything, ("10.60.0.1", "255.255.255.0")])
        self.press("Escape")
        self.ip_list.expect(size=302)
        self.press("End")
        self.ip_list.expect(selected=[301])
        self.press("Up")
        self.press("Delete")
        self.expect_question(self.many[-1], "Yes")
        self.ip_list.expect(size=301, selected=[300])
        self.assertEqual(self.ip_list.selected_rows, [("10.60.0.1", "255.255.255.0")])
        self.assertNotIn(f"{self.many[-1]}/24", self.addresses("eth0"))
        self.assertEqual(self.registry(), [*everything[:-1], ("10.60.0.1", "255.255.255.0")])
        # The window answers.
        self.press("F5")
        self.expect_fact("Done last", "The connections were read anew.")
        self.assertEqual(self.ip_list.selected, [300])

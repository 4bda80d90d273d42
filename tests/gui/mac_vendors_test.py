"""The vendor box of the panel for another MAC address, with a vendor list of the test's own: typed prefixes, the list,
random addresses."""

from desktop import SHOWING
from window import RESTART, PanelTest
from world import vendor_bytes

RANDOM_OCTET = r"^[0-9]{2}$"


class Vendors(PanelTest):
    NAMES = ["Acme Networks", "Beta Works", "Gamma Networks", "Delta Networks", "Acme Radio"]
    PREFIXES = ["00AA01", "00BB02", "00CC03", "00DD04", "00AA01"]

    def prepare(self):
        folder = self.copy_programs()
        (folder / "VendorNumbers.log").write_bytes(vendor_bytes(*zip(self.PREFIXES, self.NAMES)))

    def assert_vendor(self, index):
        """This vendor is shown, with its prefix and random octets, and can be applied."""
        self.assertEqual(self.vendor.text, self.NAMES[index] + "   Address: ")
        octets = self.octets
        self.assertEqual("".join(octets[:3]), self.PREFIXES[index])
        for octet in octets[3:]:
            self.assertRegex(octet, RANDOM_OCTET)
        self.assertTrue(self.change_now.enabled)

    def click_entry(self, row):
        """Clicks on a row of the list, which shows twelve of them, and a margin."""
        x, y, width, height = self.window.popup().root().extents
        entry = (height - 4) // 12
        self.desktop.move(x + width // 3, y + 2 + row * entry + entry // 2)
        self.desktop.click()

    def assert_list_shown(self, shown):
        windows = [node for node in self.window.node.children if node.role == "window" and node.has(SHOWING)]
        self.assertEqual(len(windows), int(shown))

    def test_a_typed_prefix_shows_its_vendor(self):
        self.type("00cc03")
        self.assert_focus(3)
        self.assert_vendor(2)
        # The first record of a prefix counts.
        self.octet(0).click()
        self.type("00aa01")
        self.assert_vendor(0)
        # The rest of the address is the user's to change; nothing is searched again.
        self.type("778899")
        self.assert_octets(["00", "AA", "01", "77", "88", "99"], RESTART)
        self.octet(4).click()
        self.octet(3).click()
        self.assert_octets(["00", "AA", "01", "77", "88", "99"], 3)
        # Another prefix: the vendor goes away at once, and an unknown one leaves the rest.
        self.octet(2).click()
        self.type("7")
        self.assertEqual(self.vendor.text, "")
        self.press("Tab")
        self.assertEqual(self.vendor.text, "Unknown Vendor (00-AA-07)")
        self.assert_octets(["00", "AA", "07", "77", "88", "99"], 3)
        # Entering the vendor box searches too.
        self.octet(1).click()
        self.type("bb")
        self.assertEqual(self.vendor.text, "")
        self.vendor.click()
        self.assertEqual(self.vendor.text, "Unknown Vendor (00-BB-07)")
        self.octet(2).click()
        self.type("0")
        self.octet(2).click()
        self.type("02")
        self.assert_vendor(1)

    def test_typing_narrows_the_list_and_enter_chooses(self):
        self.vendor.click()
        self.type("NETW")
        self.assert_list_shown(True)
        self.press("Down", "Return")
        self.assert_vendor(2)
        self.assert_list_shown(False)
        self.assert_focus("Vendor:")
        self.assertEqual(self.vendor.selection, (0, len(self.vendor.text)))
        # Typing replaces the selected text and opens the list again. Words in any order.
        self.type("works beta")
        self.press("Return")
        self.assert_vendor(1)
        # A search that finds nothing chooses nothing, and does not press Change Now either.
        self.type("nobody")
        self.press("Return")
        self.window.expect_windows(self.window.title)
        self.assertEqual(self.vendor.text, "nobody")
        self.assertEqual("".join(self.octets[:3]), self.PREFIXES[1])
        # Up and down stop at the ends.
        self.vendor.enter("networks")
        self.press("Up", "Down", "Down", "Down", "Down", "Return")
        self.assert_vendor(3)
        # A prefix is found too.
        self.type("00-cc-03")
        self.press("Return")
        self.assert_vendor(2)

    def test_the_mouse_chooses_from_the_list(self):
        self.window.button("Show the list of vendors").click()
        self.assert_list_shown(True)
        self.assert_focus("Vendor:")
        self.click_entry(4)
        self.assert_list_shown(False)
        self.assert_vendor(4)
        self.vendor.enter("networks")
        self.click_entry(1)
        self.assert_vendor(2)
        # Room below the last match: nothing is there to be chosen.
        self.vendor.enter("works beta")
        self.click_entry(6)
        self.assertEqual("".join(self.octets[:3]), self.PREFIXES[2])
        # The button closes it as well, and so does a click elsewhere.
        self.window.button("Show the list of vendors").click()
        self.assert_list_shown(False)
        self.window.button("Show the list of vendors").click()
        self.assert_list_shown(True)
        self.octet(0).click()
        self.assert_list_shown(False)

    def test_escape_closes_the_list_and_then_the_panel(self):
        for opener in ("Down", "F4", "a"):
            with self.subTest(opener):
                self.vendor.click()
                self.press(opener)
                self.assert_list_shown(True)
                self.press("Escape")
                self.assert_list_shown(False)
                self.assertTrue(self.panel_is_open)
                self.press("Escape")
                self.assertFalse(self.panel_is_open)
                self.assert_focus("Network Connections")
                self.open_panel()

    def test_a_random_address_has_the_prefix_of_a_vendor(self):
        for _ in range(5):
            self.window.button("Random MAC Address").click()
            prefix = "".join(self.octets[:3])
            self.assertIn(prefix, self.PREFIXES)
            shown = [index for index, name in enumerate(self.NAMES) if self.vendor.text == f"{name}   Address: "]
            self.assertEqual([self.PREFIXES[index] for index in shown], [prefix])
            self.assert_vendor(shown[0])

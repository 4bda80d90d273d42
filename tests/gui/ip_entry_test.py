"""Typing an IP address, a mask or a prefix length into the panel of the main window: keys, clicks, the clipboard."""

from ip_panel import ADDRESS, BOXES, EMPTY, IP_LIST, MASK, PERSISTENT, PREFIX, IpPanelTest, octet_name
from waiting import NotNow

FULL = ["192", "168", "100", "200"]


class EntryTest(IpPanelTest):
    def setUp(self):
        super().setUp()
        self.veth("eth0", "10.1.0.2/24", mac="02:00:00:00:10:01")
        self.open_window()
        self.open_ip_panel()

    def fill(self):
        """Fills the boxes of the address with FULL."""
        self.type_address(".".join(FULL))
        self.assert_boxes(FULL)

    def enter(self, number, text):
        """Types over what is in a box of the address."""
        self.mark(number)
        self.type(text)


class Typing(EntryTest):
    def test_digits_go_on_to_the_next_box(self):
        self.assert_boxes(EMPTY, EMPTY, "")
        self.type("1921681")
        self.assert_boxes(["192", "168", "1", ""])
        self.assert_caret(ADDRESS, 2, 1)
        self.type(".234")
        self.assert_boxes(["192", "168", "1", "234"])
        # A full box stays where it is until the next digit comes; the last one has no next.
        self.assert_caret(ADDRESS, 3, 3)
        self.type("56.7")
        self.assert_boxes(["192", "168", "1", "234"], EMPTY)
        self.assert_caret(ADDRESS, 3, 3)
        # The digit that goes on takes the place of what is in the next box, wherever the caret was.
        self.box(ADDRESS, 0).click()
        self.press("Home")
        self.type("7")
        self.assert_boxes(["192", "7", "1", "234"])
        self.assert_caret(ADDRESS, 1, 1)
        # Faster than anybody types, through all boxes.
        self.mark(0)
        self.type("101102103104105")
        self.assert_boxes(["101", "102", "103", "104"], EMPTY)
        # The number pad: with Num Lock these are 1, the point and 2.
        self.mark(0)
        self.press("Num_Lock", "KP_End", "KP_Delete", "KP_Down", "Num_Lock")
        self.assert_boxes(["1", "2", "103", "104"])
        self.assert_caret(ADDRESS, 1, 1)

    def test_dots_go_to_the_next_box_and_are_not_entered(self):
        self.type("10.20.30.40")
        self.assert_boxes(["10", "20", "30", "40"])
        self.assert_caret(ADDRESS, 3, 2)
        self.type(".")
        self.assert_caret(ADDRESS, 3, 2)
        # Onto a selected text, too; it stays.
        self.mark(0)
        self.type("..")
        self.assert_boxes(["10", "20", "30", "40"])
        self.assert_selected(ADDRESS, 2)
        self.press("Escape")
        self.open_ip_panel()
        self.type("10...5")
        self.assert_boxes(["10", "", "", "5"])

    def test_backspace(self):
        self.fill()
        self.box(ADDRESS, 2).click()
        self.press("Home", "BackSpace")
        self.assert_boxes(FULL)
        self.assert_selected(ADDRESS, 1)
        self.press("BackSpace")
        self.assert_boxes(["192", "", "100", "200"])
        self.assert_caret(ADDRESS, 1, 0)
        self.press("BackSpace", "End", "BackSpace")
        self.assert_boxes(["19", "", "100", "200"])
        self.assert_caret(ADDRESS, 0, 2)
        # Over a selection only that goes.
        self.box(ADDRESS, 3).click()
        self.press("Home", "Right", "shift+Right", "BackSpace")
        self.assert_boxes(["19", "", "100", "20"])
        self.assert_caret(ADDRESS, 3, 1)
        self.press("BackSpace")
        self.assert_boxes(["19", "", "100", "0"])
        self.assert_caret(ADDRESS, 3, 0)
        # There is nothing before the first box.
        self.box(ADDRESS, 0).click()
        self.press("Home", "BackSpace")
        self.assert_boxes(["19", "", "100", "0"])
        self.assert_caret(ADDRESS, 0, 0)

    def test_other_characters_and_numbers_out_of_range(self):
        self.type("a g+-,:é!")
        self.assert_boxes(EMPTY)
        self.assert_focus(ADDRESS, 0)
        self.type("1x2")
        self.assertEqual(self.box(ADDRESS, 0).text, "12")
        self.press("BackSpace", "BackSpace")
        self.fill()
        self.mark(1)
        for text in ("g", " ", "é", "xyz"):
            self.type(text)
            self.assert_boxes(FULL)
            self.assert_selected(ADDRESS, 1)
        for text, left in (("300", ""), ("256", ""), ("255", "255"), ("999", ""), ("3007", "7"), ("0", "0")):
            with self.subTest(text):
                self.enter(1, text)
                self.assert_boxes(["192", left, "100", "200"])
                self.assert_caret(ADDRESS, 1, len(left))
        # What is added to a number makes it too large.
        self.enter(1, "30")
        self.press("Home")
        self.type("9")
        self.assert_boxes(["192", "", "100", "200"])

    def test_leading_zeros_go_when_the_box_is_left(self):
        for text, left in (("007", "7"), ("00", "0"), ("000", "0"), ("0", "0"), ("010", "10"), ("09", "9")):
            with self.subTest(text):
                self.enter(0, text)
                self.assertEqual(self.box(ADDRESS, 0).text, text)
                self.press("Tab")
                self.assertEqual(self.box(ADDRESS, 0).text, left)
        # However it is left.
        self.enter(0, "001.")
        self.type("002")
        self.press("Right")
        self.type("0034")
        self.box(MASK, 0).click()
        self.assert_boxes(["1", "2", "3", "4"])

    def test_arrow_keys(self):
        self.fill()
        self.box(ADDRESS, 1).click()
        self.press("Home", "Right")
        self.assert_caret(ADDRESS, 1, 1)
        self.press("Right", "Right")
        self.assert_caret(ADDRESS, 1, 3)
        self.press("Right")
        self.assert_selected(ADDRESS, 2)
        self.press("ctrl+Right")
        self.assert_selected(ADDRESS, 3)
        self.press("ctrl+Right")
        self.assert_focus(ADDRESS, 3)
        self.press("End", "Right")
        self.assert_caret(ADDRESS, 3, 3)
        self.press("Left", "Left", "Left")
        self.assert_caret(ADDRESS, 3, 0)
        self.press("Left")
        self.assert_selected(ADDRESS, 2)
        self.press("Home", "Left", "Home", "Left", "Home", "Left")
        self.assert_caret(ADDRESS, 0, 0)
        # Shift marks within the box.
        self.press("shift+Right", "shift+Right")
        self.assertEqual(self.box(ADDRESS, 0).selection, (0, 2))
        self.press("End", "shift+Right", "ctrl+shift+Right")
        self.assert_caret(ADDRESS, 0, 3)
        self.press("shift+Left")
        self.assertEqual(self.box(ADDRESS, 0).selection, (2, 3))
        self.type("5")
        self.assert_boxes(["195", *FULL[1:]])
        self.press("Home", "shift+Left")
        self.assert_caret(ADDRESS, 0, 0)
        self.box(ADDRESS, 1).click()
        self.press("Home", "shift+Left")
        self.assert_caret(ADDRESS, 1, 0)

    def test_a_click_selects_what_is_in_the_box(self):
        self.fill()
        for number in range(BOXES):
            self.box(MASK, number).click()
            self.assert_selected(MASK, number)
            self.box(ADDRESS, number).click()
            self.assert_selected(ADDRESS, number)
        self.box(ADDRESS, 1).click()
        self.type("7")
        self.assert_boxes(["192", "7", *FULL[2:]])
        # Where the focus is already, it puts the caret.
        self.box(ADDRESS, 2).click()
        self.box(ADDRESS, 2).click()
        self.assertEqual(self.box(ADDRESS, 2).selection[0], self.box(ADDRESS, 2).selection[1])
        self.prefix.click()
        self.type("24")
        self.box(ADDRESS, 0).click()
        self.prefix.click()
        self.assertEqual(self.prefix.selection, (0, 2))

    def test_names_and_sizes(self):
        # The names are all there are, in the order in which they stand.
        names = self.window.patiently(
            lambda: [node.name for node, role in self.window.root().walk() if role == "text"], "the boxes")
        own = [octet_name(row, number) for row in (ADDRESS, MASK) for number in range(BOXES)] + [PREFIX]
        self.assertEqual([name for name in names if name in own], own)
        # However large the window is made, the boxes stay as they are.
        sizes = [self.box(ADDRESS, number).extents[2:] for number in range(BOXES)]
        self.assertEqual(len(set(sizes)), 1, sizes)
        window = self.x_window()
        for size in ((1260, 980), (1000, 800)):
            window.configure(width=size[0], height=size[1])
            self.desktop.screen.display.sync()
            self.expect_size(size)
            self.assertEqual([self.box(row, number).extents[2:] for row in (ADDRESS, MASK) for number in range(BOXES)],
                             sizes * 2)

    def expect_size(self, size):
        """Waits until what fills the window has this size."""
        def look():
            found = self.window.root().children[0].extents[2:]
            if found != size:
                raise NotNow(f"its size is {found}")
        self.window.patiently(look, f"the size {size}")
        self.desktop.settle()


class Keyboard(EntryTest):
    def test_tab_goes_through_the_panel_and_back(self):
        self.fill()
        self.box(ADDRESS, 0).click()
        panel = [*[octet_name(row, number) for row in (ADDRESS, MASK) for number in range(BOXES)], PREFIX, PERSISTENT,
                 "Add IP", "Close"]
        for name in panel[1:]:
            self.press("Tab")
            self.assert_focus(name)
        for name in reversed(panel[:-1]):
            self.press("shift+Tab")
            self.assert_focus(name)
        self.assert_selected(ADDRESS, 0)
        # Behind the buttons of its list, of which the one has something to remove, and in front of the next list.
        self.press("shift+Tab")
        self.assert_focus("Remove IP Address")
        self.window.button("Close").click()
        self.open_ip_panel()
        self.fill()
        self.press("Tab", "Tab", "Tab", "Tab", "Tab", "Tab", "Tab", "Tab", "Tab")
        self.assert_focus("Gateway")
        self.box(ADDRESS, 1).click()
        self.press("Tab")
        self.assert_selected(ADDRESS, 2)
        self.press("alt+k")
        self.assert_focus(MASK, 0)
        self.type("255.255.0.0")
        self.press("Tab")
        self.assert_focus(PREFIX)
        self.assertEqual((self.prefix.text, self.prefix.selection), ("16", (0, 2)))
        self.press("Tab", "space")
        self.assertTrue(self.window.check(PERSISTENT).checked)
        self.press("Tab", "Tab", "space")
        self.assertFalse(self.ip_panel_is_open)
        self.assert_focus(IP_LIST)

    def test_the_commands_of_the_menus_work_in_the_boxes(self):
        self.type("10")
        self.press("ctrl+m")
        self.octet(0).expect(showing=True, focused=True)
        self.box(ADDRESS, 0).click()
        self.press("F5")
        self.expect_fact("Done last", "The connections were read anew.")
        self.press("ctrl+d")
        self.window.expect_box("Restart Network Connection ?").press("No")
        self.assertEqual(self.box(ADDRESS, 0).text, "10")


class Clipboard(EntryTest):
    def setUp(self):
        super().setUp()
        # Its vendor box takes any text.
        self.window.button("Change MAC").click()
        self.octet(0).expect(showing=True)

    def copy(self, text):
        """Puts a text on the clipboard; the vendor box is empty then and its list closed."""
        self.vendor.enter(text)
        self.press("ctrl+a", "ctrl+x", "Escape")
        self.assertEqual(self.vendor.text, "")
        self.assertTrue(self.ip_panel_is_open)

    def test_a_whole_address_fills_all_boxes_from_any(self):
        ways = ((0, "ctrl+v", "10.20.30.40", ["10", "20", "30", "40"]),
                (1, "shift+Insert", " 255.255.255.255 ", ["255"] * BOXES),
                (2, "ctrl+v", "001.002.003.000", ["1", "2", "3", "0"]),
                (3, "ctrl+v", "192.168.7.9", ["192", "168", "7", "9"]))
        for number, chord, text, filled in ways:
            with self.subTest(text):
                self.copy(text)
                self.box(ADDRESS, number).click()
                self.press(chord)
                self.assert_boxes(filled, EMPTY)
                self.assert_selected(ADDRESS, 3)
        self.copy("255.255.224.0")
        self.box(MASK, 2).click(button=3)
        self.window.popup().item("Paste").choose()
        self.assert_boxes(["192", "168", "7", "9"], ["255", "255", "224", "0"], "19")

    def test_digits_and_rubbish(self):
        self.fill()
        rubbish = ("hello", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1..3.4", "1234", "-1", "1a", "10.1.0.2/24", "...")
        for text in rubbish:
            with self.subTest(text):
                self.copy(text)
                self.mark(1)
                self.press("ctrl+v", "shift+Insert")
                self.assert_boxes(FULL)
                self.assert_selected(ADDRESS, 1)
        self.copy("77")
        self.mark(1)
        self.press("ctrl+v")
        self.assert_boxes(["192", "77", *FULL[2:]])
        self.assert_caret(ADDRESS, 1, 2)
        # Without a selection it goes to the caret's place, as long as there is room.
        self.press("Home", "ctrl+v")
        self.assert_boxes(["192", "77", *FULL[2:]])
        self.enter(1, "1")
        self.press("ctrl+v")
        self.assert_boxes(["192", "177", *FULL[2:]])
        self.copy("300")
        self.mark(1)
        self.press("ctrl+v")
        self.assert_boxes(["192", "", *FULL[2:]])

    def test_an_octet_can_be_copied_and_cut(self):
        self.fill()
        self.mark(1)
        self.press("ctrl+c")
        self.assert_boxes(FULL)
        self.mark(3)
        self.press("ctrl+v")
        self.assert_boxes(["192", "168", "100", "168"])
        self.mark(2)
        self.press("ctrl+x")
        self.assert_boxes(["192", "168", "", "168"])
        self.assert_caret(ADDRESS, 2, 0)
        self.mark(0)
        self.press("ctrl+v")
        self.assert_boxes(["100", "168", "", "168"])
        # The X way: what is selected is pasted by the middle button, and is checked all the same.
        self.vendor.enter("zy")
        self.press("ctrl+a")
        self.box(ADDRESS, 1).click(button=2)
        self.assert_boxes(["100", "168", "", "168"])


class MaskAndPrefix(EntryTest):
    def enter_prefix(self, text):
        """Enters the box by Tab, which selects its whole text, and types over it."""
        self.box(MASK, 3).click()
        self.press("Tab")
        self.assertEqual(self.prefix.selection, (0, len(self.prefix.text)))
        self.type(text)

    def enter_mask(self, text):
        """Types over the whole mask."""
        for number, octet in enumerate(text.split(".")):
            self.mark(number, MASK)
            self.type(octet)

    def test_the_mask_follows_the_prefix_length(self):
        for text, mask in (("20", "255.255.240.0"), ("0", "0.0.0.0"), ("32", "255.255.255.255"), ("1", "128.0.0.0"),
                           ("25", "255.255.255.128"), ("8", "255.0.0.0"), ("abc", "0.0.0.0")):
            with self.subTest(text):
                self.enter_prefix(text)
                self.assert_boxes(EMPTY, mask.split("."), text)
        # Out of range: emptied, and an empty box counts as 0.
        for text in ("33", "99", "-1"):
            with self.subTest(text):
                self.enter_prefix(text)
                self.assert_boxes(EMPTY, ["0"] * BOXES, "")
                self.assert_focus(PREFIX)

    def test_the_prefix_length_follows_the_mask(self):
        for mask, prefix in (("255.255.255.128", "25"), ("255.255.255.255", "32"), ("0.0.0.0", "0"),
                             ("255.255.240.0", "20"), ("254.0.0.0", "7"), ("255.0.255.0", "8")):
            with self.subTest(mask):
                self.enter_mask(mask)
                self.assert_boxes(EMPTY, mask.split("."), prefix)
        # What is no octet of a mask leaves the prefix length: it is that of the digits before.
        self.enter_prefix("24")
        self.mark(3, MASK)
        self.type("100")
        self.assert_boxes(EMPTY, ["255", "255", "255", "100"], "24")
        self.press("Home", "Delete")
        self.assert_boxes(EMPTY, ["255", "255", "255", "00"], "24")
        # The mask is the leader until the prefix length is entered, and again when it is entered itself.
        self.enter_mask("255.0.255.0")
        self.type_address("10.1.2.3")
        self.assert_boxes(["10", "1", "2", "3"], ["255", "0", "255", "0"], "8")
        self.prefix.click()
        self.assertEqual(self.texts(MASK), ["255", "0", "255", "0"])
        self.press("End")
        self.type("0")
        self.assert_boxes(["10", "1", "2", "3"], ["0"] * BOXES, "")
        self.type("9")
        self.assert_boxes(["10", "1", "2", "3"], ["255", "128", "0", "0"], "9")
        self.mark(1, MASK)
        self.assert_boxes(["10", "1", "2", "3"], ["255", "128", "0", "0"], "9")
        self.type("192")
        self.assert_boxes(["10", "1", "2", "3"], ["255", "192", "0", "0"], "10")
        # Opened anew, nothing is left.
        self.press("Escape")
        self.open_ip_panel()
        self.assert_boxes(EMPTY, EMPTY, "")

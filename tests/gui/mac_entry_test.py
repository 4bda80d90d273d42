"""Typing another MAC address into the panel of the main window: keys, clicks, the clipboard."""

from window import EMPTY, LIST, OCTETS, RESTART, PanelTest, octet_name

FULL = ["A1", "B2", "C3", "D4", "E5", "F6"]


class EntryTest(PanelTest):
    def fill(self):
        """Fills the boxes with FULL."""
        self.octet(0).click()
        self.type("a1b2c3d4e5f6")
        self.assert_octets(FULL, RESTART)


class Typing(EntryTest):
    def test_twelve_digits_fill_the_boxes_and_go_on_to_the_check_box(self):
        self.assert_octets(EMPTY, 0)
        self.type("a1b2c3d4e5f6")
        self.assert_octets(FULL, RESTART)
        self.assertEqual(self.vendor.text, "Unknown Vendor (A1-B2-C3)")
        # More digits have no box to go to.
        self.type("77")
        self.assertEqual(self.octets, FULL)
        self.assertTrue(self.window.check(RESTART).checked)
        self.octet(1).click()
        # The number pad: with Num Lock these are 1 and 2.
        self.press("Num_Lock", "KP_End", "KP_Down", "Num_Lock")
        self.assert_octets(["A1", "12", *FULL[2:]], 2)
        self.fill()
        # A full box without a selection hands the digit on; the last one has no next.
        self.octet(4).click()
        self.press("End")
        self.type("7")
        self.assertEqual(self.octets, [*FULL[:5], "7"])
        self.assert_caret(5, 1)
        self.type("89")
        self.assert_octets([*FULL[:5], "78"], RESTART)

    def test_separators_go_to_the_next_box_and_are_not_entered(self):
        self.type("00:0c:29")
        self.assert_octets(["00", "0C", "29", *self.octets[3:]], 3)
        for separator in "-.:":
            with self.subTest(separator):
                self.octet(0).click()
                self.type(separator.join(["7", "8", "9", "a", "b", "c"]) + separator)
                self.assert_octets(["07", "08", "09", "0A", "0B", "0C"], RESTART)
        # One that comes after a digit that filled the box has moved already.
        self.octet(0).click()
        self.type("10:20:30:40:50:60")
        self.assert_octets(["10", "20", "30", "40", "50", "60"], RESTART)

    def test_a_separator_typed_onto_a_selected_octet_leaves_it(self):
        self.fill()
        self.octet(1).click()
        self.type(":-")
        self.assertEqual(self.octets, FULL)
        self.assert_focus(3)

    def test_other_characters_do_nothing(self):
        self.type("g z!Gx_")
        self.assert_octets(EMPTY, 0)
        self.type("a g")
        self.assertEqual(self.octets, ["A", *EMPTY[1:]])
        self.assert_caret(0, 1)
        self.press("Escape", "ctrl+m")
        self.fill()
        self.octet(2).click()
        for text in ("g", " ", "é", "xyz"):
            self.type(text)
            self.assertEqual(self.octets, FULL, f"after '{text}'")
            self.assert_selected(2)
        self.assertEqual(self.vendor.text, "Unknown Vendor (A1-B2-C3)")

    def test_backspace(self):
        self.fill()
        self.octet(3).click()
        self.press("Home", "BackSpace")
        self.assertEqual(self.octets, FULL)
        self.assert_caret(2, 2)
        self.press("BackSpace")
        self.assertEqual(self.octets, [*FULL[:2], "C", *FULL[3:]])
        self.assert_caret(2, 1)
        # On a selection it also erases the character in front of the caret.
        self.octet(4).click()
        self.press("End", "shift+Left", "BackSpace")
        self.assertEqual(self.octet(4).text, "")
        self.octet(5).click()
        self.press("BackSpace")
        self.assertEqual(self.octet(5).text, "")
        self.assert_caret(5, 0)
        self.octet(0).click()
        self.press("Home", "BackSpace")
        self.assertEqual(self.octet(0).text, "A1")
        self.assert_caret(0, 0)

    def test_arrow_keys(self):
        self.fill()
        self.octet(2).click()
        self.press("Home", "Left")
        self.assert_caret(1, 2)
        self.press("Left")
        self.assert_caret(1, 1)
        self.press("Right", "Right")
        self.assert_caret(2, 0)
        self.press("ctrl+Right")
        self.assert_selected(3)
        self.press("ctrl+Left", "ctrl+Left")
        self.assert_selected(1)
        # Shift marks within the box.
        self.press("End", "shift+Left", "shift+Left", "shift+Left")
        self.assert_selected(1)
        # The ends of the row.
        self.octet(0).click()
        self.press("Home", "Left", "ctrl+Left")
        self.assert_focus(0)
        self.octet(5).click()
        self.press("End", "Right", "ctrl+Right")
        self.assert_focus(5)
        self.assertEqual(self.octets, FULL)

    def test_a_single_digit_is_padded_when_its_box_is_left(self):
        self.type("7")
        self.assertEqual(self.octet(0).text, "7")
        self.press("Tab")
        self.assertEqual(self.octet(0).text, "07")
        self.type("8")
        self.octet(3).click()
        self.assertEqual(self.octets[:3], ["07", "08", "00"])
        self.type("9")
        self.press("Right")
        self.assertEqual(self.octet(3).text, "09")
        self.assert_caret(4, 0)

    def test_change_now_needs_six_full_boxes(self):
        self.assertFalse(self.change_now.enabled)
        self.type("a1b2c3d4e5f")
        self.assertFalse(self.change_now.enabled)
        self.press("Return")
        self.window.expect_windows(self.window.title)
        self.type("6")
        self.assertTrue(self.change_now.enabled)
        self.octet(3).click()
        self.press("End", "BackSpace")
        self.assertFalse(self.change_now.enabled)
        self.press("Tab")
        self.assertEqual(self.octet(3).text, "0D")
        self.assertTrue(self.change_now.enabled)
        # The Enter key presses it from wherever one types.
        for number in (0, 5):
            self.octet(number).click()
            self.press("Return")
            self.window.expect_box("Change MAC Address ?").press("Cancel")
            self.assert_focus(number)
        # Opened again it is empty, and back to the restart.
        self.window.check(RESTART).click()
        self.assertFalse(self.window.check(RESTART).checked)
        self.press("Escape", "ctrl+m")
        self.assert_octets(EMPTY, 0)
        self.assertFalse(self.change_now.enabled)
        self.assertEqual(self.vendor.text, "")
        self.assertTrue(self.window.check(RESTART).checked)

    def test_a_click_selects_the_octet_and_a_digit_replaces_what_is_selected(self):
        self.fill()
        self.octet(1).click()
        self.assert_selected(1)
        self.type("7")
        self.assertEqual(self.octet(1).text, "7")
        self.assert_caret(1, 1)
        self.type("8")
        self.assertEqual(self.octet(1).text, "78")
        self.assert_selected(2)
        # Half of an octet: the focus stays.
        self.octet(4).click()
        self.press("End", "shift+Left")
        self.type("9")
        self.assertEqual(self.octet(4).text, "E9")
        self.assert_caret(4, 2)


class Clipboard(EntryTest):
    def copy(self, text):
        """Puts a text on the clipboard; the vendor box is empty then and its list closed."""
        self.vendor.enter(text)
        self.press("ctrl+a", "ctrl+x", "Escape")
        self.assertEqual(self.vendor.text, "")

    def test_a_whole_address_fills_the_row_from_any_box(self):
        forms = {
            "ctrl+v": "00-0c-29-4f-8e-35",
            "shift+Insert": " 00:0C:29:4F:8E:35 ",
        }
        for chord, text in forms.items():
            with self.subTest(chord):
                self.press("Escape", "ctrl+m")
                self.copy(text)
                self.octet(2).click()
                self.press(chord)
                self.assertEqual(self.octets, ["00", "0C", "29", "4F", "8E", "35"])
                self.assert_caret(5, 2)
                self.assertTrue(self.change_now.enabled)
                self.assertIn("VMware", self.vendor.text)
        self.copy("a1b2.c3d4.e5f6")
        self.octet(5).click(button=3)
        self.window.popup().item("Paste").choose()
        self.assertEqual(self.octets, FULL)

    def test_one_octet_goes_into_its_box(self):
        self.fill()
        self.copy("7e")
        self.octet(4).click()
        self.press("ctrl+v")
        self.assertEqual(self.octets, [*FULL[:4], "7E", "F6"])
        self.assert_caret(4, 2)

    def test_rubbish_changes_nothing(self):
        self.fill()
        for text in ("hello", "zz", "00-0c-29-4f-8e", "00:0c:29:4f:8e:3g", "02-00-00-00-10-01 (Original)", "abc"):
            with self.subTest(text):
                self.copy(text)
                # A search begins when a later box is entered and no vendor is shown.
                self.octet(1).click()
                self.press("ctrl+v", "shift+Insert")
                self.assertEqual(self.octets, FULL)
        # The X way: what is selected is pasted by the middle button.
        self.vendor.enter("zy")
        self.press("ctrl+a")
        self.octet(1).click(button=2)
        self.assertEqual(self.octets, FULL)

    def test_an_octet_can_be_copied_and_cut(self):
        self.fill()
        self.octet(1).click()
        self.press("ctrl+c")
        self.octet(4).click()
        self.press("ctrl+v")
        self.assertEqual(self.octets, ["A1", "B2", "C3", "D4", "B2", "F6"])
        self.octet(5).click()
        self.press("ctrl+x")
        self.assertEqual(self.octet(5).text, "")
        self.assertFalse(self.change_now.enabled)


class Keyboard(EntryTest):
    def test_the_mnemonics_of_the_panel(self):
        self.press("alt+v")
        self.assert_focus("Vendor:")
        self.press("alt+a")
        self.assert_focus(0)
        self.press("alt+m")
        self.change_now.expect(enabled=True)
        self.assertNotEqual(self.vendor.text, "")
        self.press("alt+o")
        self.window.expect_box("Change MAC Address ?").press("No", by_key=True)
        self.assertEqual(self.octets, EMPTY)
        self.assertTrue(self.panel_is_open)

    def test_tab_goes_through_the_panel_and_the_window_and_back(self):
        self.fill()
        self.octet(0).click()
        panel = [*[octet_name(number) for number in range(OCTETS)], "Vendor:", "Show the list of vendors", RESTART,
                 "Change Now !", "Original MAC", "Random MAC Address", "Close"]
        for name in panel[1:]:
            self.press("Tab")
            self.assert_focus(name)
        others = []
        while panel[0] not in others and len(others) < 30:
            self.press("Tab")
            others.append(self.window.focus[1])
        self.assertEqual(others[-1], panel[0])
        self.assertEqual(len(set(others)), len(others), others)
        self.assertLessEqual({"Refresh", "Change MAC", "Disable", "Enable DHCP", "Export", LIST, "IP Address",
                              "Gateway", "DNS Server"}, set(others))
        self.press("Tab", "shift+Tab", "shift+Tab")
        self.assert_focus(others[-2])

    def test_space_and_enter_work_what_has_the_focus(self):
        self.press("alt+v", "Tab", "Tab")
        self.assert_focus(RESTART)
        self.press("space")
        self.assertFalse(self.window.check(RESTART).checked)
        self.press("space")
        self.assertTrue(self.window.check(RESTART).checked)
        # Change Now is disabled and left out.
        self.press("Tab", "Tab")
        self.assert_focus("Random MAC Address")
        self.press("Return")
        self.change_now.expect(enabled=True)
        self.window.expect_windows(self.window.title)
        # Enter is for Change Now wherever nothing else takes it.
        self.press("shift+Tab", "shift+Tab", "shift+Tab")
        self.assert_focus(RESTART)
        self.press("Return")
        self.window.expect_box("Change MAC Address ?").press("Cancel")
        self.press("alt+v", "Return")
        self.window.expect_box("Change MAC Address ?").press("Cancel")
        self.window.button("Random MAC Address").click()
        self.press("Tab")
        self.assert_focus("Close")
        self.press("space")
        self.assertFalse(self.panel_is_open)

"""The panel for another IP address of the main window, as a case finds it and works in it."""

from main_window import MainWindowTest

IP_LIST = "IP Address"
CAPTION = "Enter IP Address Below"
BOXES = 4
EMPTY = [""] * BOXES
ADDRESS, MASK, PREFIX = "IP address", "Subnet mask", "Prefix length"
PERSISTENT = "Persistant IP Address"


def octet_name(row, number):
    """What a screen reader calls the box of an octet; the first is number 0."""
    return f"{row}, octet {number + 1} of {BOXES}"


class IpPanelTest(MainWindowTest):
    """Base of the test cases that work in the panel. Boxes are named by row and number: (ADDRESS, 0)."""

    def tearDown(self):
        """With the panel open or not, the program closes quietly. A failed case leaves it as it is, for the picture."""
        if self._outcome.success:
            self.window.close()
            self.assertEqual((self.window.wait_exit(), self.window.err), (0, ""))
        super().tearDown()

    def press(self, *chords):
        self.desktop.press(*chords)

    def type(self, text):
        self.desktop.type(text)

    def open_ip_panel(self):
        """Opens the panel with a digit key in the list; the digit is not entered."""
        self.ip_list.click()
        self.press("5")
        self.box(ADDRESS, 0).expect(showing=True, focused=True)

    @property
    def ip_list(self):
        return self.window.table(IP_LIST)

    @property
    def ip_panel_is_open(self):
        return self.box(ADDRESS, 0).showing

    @property
    def prefix(self):
        """The box of the prefix length."""
        return self.window.entry(PREFIX)

    def box(self, row, number):
        return self.window.entry(octet_name(row, number))

    def texts(self, row):
        """The texts of the four boxes of a row."""
        return [self.box(row, number).text for number in range(BOXES)]

    def assert_boxes(self, address, mask=None, prefix=None):
        """The boxes have these texts."""
        self.assertEqual(self.texts(ADDRESS), address)
        if mask is not None:
            self.assertEqual(self.texts(MASK), mask)
        if prefix is not None:
            self.assertEqual(self.prefix.text, prefix)

    def assert_focus(self, *name):
        """The control of this name, or the box of this row and number, has the keyboard focus."""
        super().assert_focus(octet_name(*name) if len(name) == 2 else name[0])

    def assert_caret(self, row, number, position):
        """The box has the focus, the caret is here and nothing is selected."""
        self.assert_focus(row, number)
        box = self.box(row, number)
        self.assertEqual((box.caret, box.selection), (position, (position, position)))

    def assert_selected(self, row, number):
        """The box has the focus and its whole text is selected."""
        self.assert_focus(row, number)
        box = self.box(row, number)
        self.assertEqual(box.selection, (0, len(box.text)))

    def mark(self, number, row=ADDRESS):
        """Clicks in a box and selects its whole text."""
        self.box(row, number).click()
        self.press("Home", "shift+End")

    def type_address(self, address, mask=None, prefix=None):
        """Types over what is in the boxes; the first boxes are clicked in."""
        self.mark(0)
        self.type(address)
        if mask is not None:
            self.mark(0, MASK)
            self.type(mask)
        if prefix is not None:
            self.prefix.enter(prefix)

"""What the tests of the lists of gateways and DNS servers have in common: panels, rows, the bar with sentences."""

from controls import BUTTONS, SHOWING, Control
from main_window import MainWindowTest
from waiting import NotNow
from world import INTERFACES_KEY


class AddressListTest(MainWindowTest):
    """Base of the test cases. `list_name` is the name of the list, `box_name` that of its entry boxes, `add_name` the
    caption of the panel's button."""

    list_name = box_name = add_name = None

    @property
    def list(self):
        return self.window.table(self.list_name)

    def expect_list(self, *rows):
        """Waits until the list has these rows; its header counts them."""
        self.list.expect(rows=list(rows))
        self.assertEqual(self.headers(self.list_name)[0], f"{self.list_name} ({len(rows)})")

    # --- the panel -----------------------------------------------------------------------------------------------

    def octet_box(self, number):
        """A box of the panel; the first is number 1."""
        return self.window.entry(f"{self.box_name}, octet {number} of 4")

    @property
    def quad(self):
        """The texts of the four boxes."""
        return [self.octet_box(number).text for number in (1, 2, 3, 4)]

    def assert_empty(self):
        """The four boxes are empty and the first of them has the focus."""
        self.assertEqual(self.quad, ["", "", "", ""])
        self.assert_focus(f"{self.box_name}, octet 1 of 4")

    def enter_quad(self, text):
        """Types into the four boxes from the first one on, in the place of what is in them."""
        self.octet_box(1).click()
        self.desktop.press("Home", "shift+End")
        self.desktop.type(text)

    @property
    def add_button(self):
        """The panel's button. A button beside the list may have the same name; it comes first."""
        def find():
            found = [node for node, role in self.window.root().walk()
                     if role in BUTTONS and node.name == self.add_name and node.has(SHOWING)]
            if not found:
                raise NotNow(f"there is no button '{self.add_name}'")
            return found[-1]
        return Control(self.window, f"the panel's button '{self.add_name}'", find)

    def add(self, text):
        """Adds by the panel's button. It has been done, or a box is open, when this is over."""
        self.enter_quad(text)
        self.add_button.click()

    def add_by_key(self, text):
        """Adds by the Return key, which takes a moment longer: the button is shown pressed first."""
        self.enter_quad(text)
        self.desktop.press("Return")

    # --- what is told --------------------------------------------------------------------------------------------

    def expect_bar(self, sentence):
        """Waits until the bar above everything shows this sentence."""
        def look():
            texts = [node.text for node, role in self.window.root().walk() if role == "label" and node.has(SHOWING)]
            if sentence not in texts:
                raise NotNow(f"there are {texts}")
        self.window.patiently(look, f"the sentence '{sentence}'")

    def expect_refusal(self, api, code, description):
        """Waits for the box that says what the network refused, and closes it."""
        box = self.expect_message()
        self.assertEqual((box.text.rstrip(), box.buttons, self.kind(box)),
                         (f"DLL : IphlpApi.dll\n\nError Code : {code}\nAPI: {api}\nError Description : {description}"
                          "\n\n\nClick OK To Continue", ["OK"], "Error"))
        box.press("OK")

    # --- the registry --------------------------------------------------------------------------------------------

    def interface_key(self, name):
        """Path of the key of a connection's set-up."""
        return f"{INTERFACES_KEY}\\{self.link_row(name)['id']}"

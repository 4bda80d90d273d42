"""Another MAC address by the main window, from the click on a connection to what the kernel says; and disabling and
enabling a connection."""

from Xlib import X

from desktop import NotNow, patiently
from window import RESTART, TITLE, WindowTest
from world import REG_SZ, ip, wait_for

NEW = "00:0c:29:4f:8e:35"
TYPED = "000c294f8e35"
SHOWN = "00-0C-29-4F-8E-35"
STORED = (REG_SZ, b"000C294F8E35\0")
OWN = "02:00:00:00:10:01"
SECOND = "02:00:00:00:10:02"

QUESTION = "Change MAC Address ?"
DONE = "MAC Address Changed Successfully"
NOTES = {
    True: "NOTE: You have SELECTED option to automatically restart network connection to apply changes. In the process "
          "of enabling and disabling network connection, you will lose connectivity for few seconds. If network "
          "connection is disabled, it will be enabled automatically.",
    False: "NOTE: You have NOT SELECTED option to automatically restart network connection to apply changes. You will "
           "have to manually apply changes by enabling and disabling the network connection once, or by restarting "
           "your computer.",
}
LIVE = ("Up, Operational", "10 Gbps")
COVER = 0x00FE01FD


def question(name, address, restart=True):
    return f"Are you sure to change MAC address of network connection '{name}' to '{address}' ?\n\n{NOTES[restart]}"


def saved(name):
    """Title and text of the box after a change without a restart."""
    return ("MAC Address Changes Saved Successfully",
            "MAC Address changes were saved successfully. You must manually disable and enable the network adapter "
            f"'{name}', or reboot your system to apply the changes.")


class ChangeTest(WindowTest):
    def setUp(self):
        super().setUp()
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.veth("lan1", "10.2.0.2/24", mac=SECOND)
        self.prepare()
        self.open_window()

    def prepare(self):
        """What comes before the start of the window."""

    def ask(self, title, text, answer):
        self.expect_box(title, text).press(answer)


class Restart(ChangeTest):
    def test_a_change_with_restart_and_back_to_the_original(self):
        self.open_panel("lan1")
        self.desktop.type(TYPED)
        self.window.button("Change Now !").click()
        self.ask(QUESTION, question("lan1", SHOWN), "Yes")
        self.connections.expect_row("lan1", "", "", "Disabling ...", " ")
        wait_for(lambda: not self.is_up("lan1"), "the connection is disabled")
        self.assertFalse(self.panel_is_open)
        others = self.tcpip("eth0")
        self.disturb()
        self.connections.expect_row("lan1", "", "", "Enabling (Attempt 1) ...", " ")
        self.ask(DONE, "MAC Address was changed successfully.", "OK")
        # None of the keys and clicks did anything.
        self.window.expect_windows(TITLE)
        self.assertFalse(self.panel_is_open)
        self.assertEqual(self.tcpip("eth0"), others)
        self.assert_up("lan1", NEW, ["10.2.0.2/24"])
        self.assert_changed("lan1", "Yes", SHOWN, f"{SHOWN} (Changed)")
        self.assertEqual(self.driver("lan1")["NetworkAddress"], STORED)
        self.expect_fact("Done last", "MAC Address was changed successfully.")
        # Now it takes commands again.
        self.desktop.press("F5")
        self.expect_fact("Done last", "The connections were read anew.")
        self.assertEqual(self.connections.choice, "lan1")

        self.open_panel()
        self.desktop.type("12")
        self.desktop.press("alt+o")
        self.ask(QUESTION, question("lan1", "ORIGINAL MAC ADDRESS ASSIGNED BY MANUFACTURER"), "Yes")
        self.ask(DONE, "MAC Address was changed successfully.", "OK")
        self.assert_changed("lan1", "No", "02-00-00-00-10-02", "02-00-00-00-10-02 (Original)")
        self.assert_up("lan1", SECOND, ["10.2.0.2/24"])
        self.assertNotIn("NetworkAddress", self.driver("lan1"))
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])

    def assert_changed(self, name, changed, address, fact):
        self.connections.expect_row(name, changed, address, *LIVE)
        self.assertEqual(self.connections.choice, name)
        self.expect_fact("Connection Name:", name)
        self.expect_fact("MAC Address:", fact)
        self.assertEqual(self.connections.row("eth0"), ("eth0", "No", "02-00-00-00-10-01", *LIVE))

    def disturb(self):
        """Keys and clicks while the program waits, none of which may do anything, then or later. The window paints
        itself anew all the same."""
        self.connections.click_row("eth0", times=2)
        self.assertEqual(self.connections.choice, "lan1")
        self.desktop.press("F5", "ctrl+m", "ctrl+e", "ctrl+d", "ctrl+q", "alt+f")
        self.assertFalse(self.window.menu("File", "Refresh").showing)
        self.desktop.press("Down")
        self.desktop.type("123")
        self.window.button("Disable").click()
        self.window.close()
        self.assert_repainted()
        # On a slow machine the wait may be over by now.
        self.assertIn(self.window.windows, ([TITLE], [TITLE, DONE]))

    def assert_repainted(self):
        """A window that covered the main window is taken away; nothing of it stays to be seen."""
        screen = self.desktop.screen
        main = next(window for window in screen.windows() if screen.title(window) == TITLE)
        x, y, width, height = screen.extents(main)
        cover = screen.root.create_window(x, y, width, height, 0, X.CopyFromParent, background_pixel=COVER,
                                          override_redirect=True)

        def covered():
            picture = screen.root.get_image(x, y, width, height, X.ZPixmap, 0xFFFFFF).data
            return picture.count(COVER.to_bytes(4, "little")) > 0

        cover.map()
        screen.display.sync()
        self.assertTrue(covered())
        cover.destroy()

        def look():
            if covered():
                raise NotNow("what covered it is still to be seen")
        patiently(look, "the window paints itself anew")


class WithoutRestart(ChangeTest):
    def test_the_change_is_saved_and_takes_effect_after_disable_and_enable(self):
        self.open_panel("lan1")
        self.window.check(RESTART).click()
        self.octet(0).click()
        self.desktop.type(TYPED)
        self.desktop.press("Return")
        self.ask(QUESTION, question("lan1", SHOWN, restart=False), "Yes")
        self.ask(*saved("lan1"), "OK")
        self.assertFalse(self.panel_is_open)
        self.assert_focus("Network Connections")
        self.assert_up("lan1", SECOND, ["10.2.0.2/24"])
        self.assertEqual(self.driver("lan1")["NetworkAddress"], STORED)
        self.expect_fact("MAC Address:", f"02-00-00-00-10-02 (Inactive, {SHOWN})")
        self.connections.expect_row("lan1", "No", "02-00-00-00-10-02", *LIVE)

        self.window.menu("Connection", "Disable Network Connection").choose()
        self.connections.expect_row("lan1", "", "", "Disabling ...", " ")
        self.ask("Connection Disabled", "Network connection disabled successfully.", "OK")
        self.assertFalse(self.is_up("lan1"))
        self.connections.expect_row("lan1", None, None, "Disabled", "Disabled")
        self.expect_fact("MAC Address:", f"{SHOWN} (Changed)")
        self.assertEqual(self.connections.choice, "lan1")
        self.assertIn(("Enable Network Connection", True), self.window.menu("Connection").items)
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])

        self.window.button("Enable").click()
        self.connections.expect_row("lan1", "", "", "Enabling ...", " ")
        self.ask("Connection Enabled", "Network connection enabled successfully.", "OK")
        self.connections.expect_row("lan1", "Yes", SHOWN, *LIVE)
        self.expect_fact("MAC Address:", f"{SHOWN} (Changed)")
        self.assert_up("lan1", NEW, ["10.2.0.2/24"])
        self.window.button("Disable").expect(enabled=True)

    def test_ctrl_e_disables_and_a_change_enables(self):
        self.choose("lan1")
        self.desktop.press("ctrl+e")
        self.ask("Connection Disabled", "Network connection disabled successfully.", "OK")
        self.assertFalse(self.is_up("lan1"))
        self.open_panel()
        self.desktop.type(TYPED)
        self.desktop.press("Return")
        self.ask(QUESTION, question("lan1", SHOWN), "Yes")
        self.ask(DONE, "MAC Address was changed successfully.", "OK")
        self.assert_up("lan1", NEW, ["10.2.0.2/24"])
        self.expect_fact("MAC Address:", f"{SHOWN} (Changed)")


class NotChanged(ChangeTest):
    def prepare(self):
        self.bridge("br0", mac="02:00:00:00:10:03")

    def test_no_cancel_and_escape_change_nothing_and_leave_the_panel_open(self):
        self.report()
        before = self.stored()
        self.open_panel("lan1")
        self.desktop.type(TYPED)
        octets = self.octets
        for answer in ("No", "Cancel", "Escape"):
            with self.subTest(answer):
                self.window.button("Change Now !").click()
                box = self.expect_box(QUESTION, question("lan1", SHOWN))
                if answer == "Escape":
                    self.desktop.press(answer)
                    box.expect_gone()
                else:
                    box.press(answer)
                self.window.expect_windows(TITLE)
                self.assertTrue(self.panel_is_open)
                self.assertEqual(self.octets, octets)
                self.assertTrue(self.window.button("Change Now !").enabled)
        self.assertEqual(self.stored(), before)
        self.assert_up("lan1", SECOND, ["10.2.0.2/24"])
        self.window.button("Close").click()
        self.assertFalse(self.panel_is_open)
        self.assert_focus("Network Connections")

    def test_a_bridge_is_refused(self):
        self.report()
        before = self.stored()
        self.open_panel("br0")
        self.desktop.type(TYPED)
        refusal = ("Cannot Change MAC Address Of Network Bridge",
                   "MAC Address of windows Network Bridge cannot be changed. Network Bridge will use original MAC "
                   "address (assigned by the manufacturer) of the first network adapter added in the bridge, with the "
                   "first octet of MAC address as value 0x02")
        self.window.button("Change Now !").click()
        self.ask(*refusal, "OK")
        self.assertTrue(self.panel_is_open)
        self.window.button("Original MAC").click()
        self.ask(*refusal, "OK")
        self.window.expect_windows(TITLE)
        self.assertEqual(self.stored(), before)
        self.assert_up("br0", "02:00:00:00:10:03")

    def test_original_mac_of_a_connection_that_was_never_changed(self):
        self.open_panel("eth0")
        self.window.check(RESTART).click()
        self.window.button("Original MAC").click()
        self.ask(QUESTION, question("eth0", "ORIGINAL MAC ADDRESS ASSIGNED BY MANUFACTURER", restart=False), "Yes")
        self.ask(*saved("eth0"), "OK")
        self.expect_fact("MAC Address:", "02-00-00-00-10-01 (Original)")
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])
        self.assertNotIn("NetworkAddress", self.driver("eth0"))

    def test_the_panel_names_the_connection_that_would_be_changed(self):
        self.open_panel("lan1")
        self.assertTrue(self.window.label("Change MAC Address Of 'lan1'").showing)
        self.desktop.type(TYPED)
        self.choose("eth0")
        self.assertTrue(self.window.label("Change MAC Address Of 'eth0'").showing)
        self.window.button("Change Now !").click()
        self.ask(QUESTION, question("eth0", SHOWN), "No")
        # The selected one goes away, and another is selected.
        ip("link", "delete", "eth0")
        self.desktop.press("F5")
        self.expect_fact("Connection Name:", "lan1")
        self.assertTrue(self.window.label("Change MAC Address Of 'lan1'").showing)
        self.assertEqual("".join(self.octets), TYPED.upper())

    def test_the_panel_opens_by_menu_button_double_click_and_context_menu(self):
        def by_context_menu():
            self.connections.click_row("eth0", button=3)
            self.window.popup().item("Change MAC Address").choose()

        def by_menu_key():
            self.desktop.press("shift+F10")
            self.window.popup()
            self.desktop.press("Down", "Return")

        ways = {
            "menu": self.window.menu("Connection", "Change MAC Address").choose,
            "button": self.window.button("Change MAC").click,
            "double click": lambda: self.connections.click_row("eth0", times=2),
            "Enter": lambda: self.desktop.press("Return"),
            "context menu": by_context_menu,
            "menu key": by_menu_key,
        }
        self.choose("eth0")
        for name, way in ways.items():
            with self.subTest(name):
                way()
                self.octet(0).expect(showing=True, focused=True)
                self.desktop.press("Escape")
                self.assertFalse(self.panel_is_open)
                self.assert_focus("Network Connections")

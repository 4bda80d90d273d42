"""The icon in the tray: its tip, its lamps, its menu, and the main window that it shows and hides."""

import subprocess
import time

from gi.repository import GLib
from Xlib import X
from Xlib.protocol.event import ClientMessage

from controls import Node
from desktop import Desktop
from main_window import OWN, OWN_TEXT, MainWindowTest, picture
from waiting import NotNow, end_with_parent, patiently
from window import TITLE
from world import FAR, ip

ABOUT = "About Orvella Corvane"
ICONIC_STATE = 3
# Four times what the toolkit waits before it shows a tip.
TIP_SECONDS = 2
# Three blinks of the lamps.
QUIET_SECONDS = 1.5


class Tips:
    """What the tips of icons say. They are no part of a window, so their coming is listened to."""

    def __init__(self, bus):
        self.bus, self.shown = bus, []
        bus.signal_subscribe(None, "org.a11y.atspi.Event.Object", "StateChanged", None, None, 0, self._on_signal)
        registry = Node(bus, ("org.a11y.atspi.Registry", "/org/a11y/atspi/registry"))
        registry.ask("Registry", "RegisterEvent", "(sass)", "object:state-changed:visible", [], "")

    def _on_signal(self, _bus, sender, path, _interface, _signal, parameters):
        if parameters.unpack()[:2] == ("visible", 1):
            self.shown.append(Node(self.bus, (sender, path)))

    def forget(self):
        self._listen()
        self.shown.clear()

    @staticmethod
    def _listen():
        while GLib.MainContext.default().iteration(False):
            pass

    def latest(self):
        """The text of the tip that has come since the last call."""
        self._listen()
        while self.shown:
            node = self.shown.pop()
            if node.role == "tool tip":
                self.shown.clear()
                return node.name
        raise NotNow("no tip has come")


class TrayTest(MainWindowTest):
    def open_with_tray(self, script=""):
        self.desktop = Desktop(self)
        self.desktop.start_tray()
        self.tips = Tips(self.desktop.bus)
        opener = self.opener(script) if script else self.opener()
        self.window = self.desktop.start(self.programs / "nicx-window", title=TITLE, environment=opener)
        self.main_window = self.x_window()
        self.icon()

    def icon(self):
        """The X window of the icon."""
        screen = self.desktop.screen

        def look():
            found = [icon for tray in screen.root.query_tree().children for icon in screen.docked(tray)
                     if screen.pid(icon) == self.window.pid]
            if len(found) != 1:
                raise NotNow(f"{len(found)} icons")
            return found[0]
        return self.window.patiently(look, "the icon")

    def choose_from_menu(self, name):
        self.window.click_tray(button=3)
        self.window.popup().item(name).choose()

    def settle_hidden(self):
        """What was closed last is no window to wait for any more; the hidden one is."""
        self.window._pinged = self.main_window


class Icon(TrayTest):
    def setUp(self):
        super().setUp()
        self.veth("lan0", "10.1.0.2/24", mac=OWN)

    def tip(self):
        """The tip that comes when the pointer rests on the icon. A tray that still moves its icons takes the
        icon from under the pointer, so the pointer goes there again until a tip comes."""
        def look():
            x, y, width, height = self.desktop.screen.extents(self.icon())
            self.desktop.move(0, 0)
            self.tips.forget()
            self.desktop.move(x + width // 2, y + height // 2)
            self.desktop.move(x + width // 2 + 1, y + height // 2)
            return patiently(self.tips.latest, "a tip", seconds=TIP_SECONDS)

        def again():
            try:
                return look()
            except AssertionError as none:
                raise NotNow(str(none)) from none
        return self.window.patiently(again, "a tip")

    def test_the_tip_names_the_selected_connection(self):
        self.open_with_tray()
        self.assertEqual(self.tip(), f"Orvella Corvane v4.5 - lan0, {OWN_TEXT}")
        self.veth("lan1", up=False)
        self.expect_fact("Number of connections", "2 connections")
        # By keys: after a click in the list the toolkit can hold tips back until the next one.
        self.desktop.press("Home")
        self.expect_fact("Connection Name:", "lan1")
        self.assertEqual(self.tip(), "Orvella Corvane v4.5 - lan1")
        self.desktop.press("End")
        self.expect_fact("Connection Name:", "lan0")
        ip("link", "set", "lan0", "address", "02:00:00:00:40:01")
        self.connections.expect_row("lan0", "Yes", "02-00-00-00-40-01")
        self.assertEqual(self.tip(), "Orvella Corvane v4.5 - lan0, 02-00-00-00-40-01")

    def test_the_tip_says_when_there_is_no_connection(self):
        self.open_with_tray()
        self.assertEqual(self.tip(), f"Orvella Corvane v4.5 - lan0, {OWN_TEXT}")
        ip("link", "delete", "lan0")
        self.expect_fact("Number of connections", "0 connections")
        self.assertEqual(self.tip(), "Orvella Corvane v4.5 - NIC Not Found")

    def test_its_lamps_light_up_with_traffic(self):
        ip("-n", FAR, "address", "add", "10.1.0.1/24", "dev", "lan0")
        self.open_with_tray()

        def expect_picture(wanted):
            def look():
                found = picture(self.icon())
                if not wanted(found):
                    raise NotNow("it is another picture")
                return found
            return self.window.patiently(look, "the icon's picture")
        dark = expect_picture(lambda found: len(set(found)) > 10)
        ping = subprocess.Popen(["ip", "netns", "exec", FAR, "ping", "-q", "-i", "0.1", "10.1.0.2"],
                                stdout=subprocess.DEVNULL, preexec_fn=end_with_parent)
        self.addCleanup(ping.wait)
        self.addCleanup(ping.kill)
        expect_picture(lambda found: found != dark)
        # They blink.
        expect_picture(lambda found: found == dark)
        expect_picture(lambda found: found != dark)
        # They do not go on when the counters can no longer be read.
        ip("link", "set", "lan0", "down")
        lit = time.monotonic()

        def rest():
            nonlocal lit
            if picture(self.icon()) != dark:
                lit = time.monotonic()
            if time.monotonic() < lit + QUIET_SECONDS:
                raise NotNow("they blink")
        self.window.patiently(rest, "dark lamps")

    def test_without_a_tray_there_is_no_icon(self):
        self.open_window()
        self.desktop.press("F5")
        self.expect_fact("Done last", "The connections were read anew.")
        self.assertEqual(self.icon_windows(), [])

    def test_with_a_tray_there_is_one(self):
        self.open_with_tray()
        self.assertEqual([window.id for window in self.icon_windows()], [self.icon().id])
        self.desktop.press("ctrl+q")
        self.assertEqual(self.window.wait_exit(), 0)

    def icon_windows(self):
        """Windows made for a tray, shown or not."""
        screen = self.desktop.screen

        def walk(window):
            for child in window.query_tree().children:
                if screen.pid(child) == self.window.pid and screen.property(child, "_XEMBED_INFO"):
                    yield child
                yield from walk(child)
        return self.window.patiently(lambda: list(walk(screen.root)), "the windows")


class ShowAndHide(TrayTest):
    def setUp(self):
        super().setUp()
        self.veth("lan0", mac=OWN)

    def test_a_click_hides_and_shows_the_window(self):
        self.open_with_tray()
        self.window.click_tray()
        self.window.expect_windows()
        # What happens meanwhile is shown then.
        self.veth("lan1")
        self.window.click_tray()
        self.window.expect_active()
        self.connections.expect(size=2)
        self.choose_from_menu("Show/Hide")
        self.window.expect_windows()
        self.choose_from_menu("Show/Hide")
        self.window.expect_active()

    def test_a_click_shows_a_minimized_window(self):
        self.open_with_tray()
        screen = self.desktop.screen
        screen.root.send_event(
            ClientMessage(window=self.main_window, client_type=screen.atom("WM_CHANGE_STATE"),
                          data=(32, [ICONIC_STATE, 0, 0, 0, 0])), event_mask=screen.TO_MANAGER)
        self.expect_shown(False)
        self.window.click_tray()
        self.expect_shown(True)
        self.window.expect_active()

    def expect_shown(self, shown):
        def look():
            if (self.main_window.get_attributes().map_state == X.IsViewable) != shown:
                raise NotNow("it is not")
        self.window.patiently(look, f"the window is {'shown' if shown else 'minimized'}")

    def test_a_window_behind_another_is_hidden_and_comes_to_the_front(self):
        self.open_with_tray()
        screen = self.desktop.screen
        other = screen.root.create_window(100, 100, 300, 300, 0, X.CopyFromParent)
        other.map()
        screen.display.sync()

        def expect_active(window):
            def look():
                if [active.id for active in screen.active()] != [window.id]:
                    raise NotNow("it is not active")
            self.window.patiently(look, "the active window")
        expect_active(other)
        self.window.click_tray()
        self.window.expect_windows()
        self.window.click_tray()
        expect_active(self.main_window)
        self.window.expect_windows(TITLE)


class Menu(TrayTest):
    def test_its_items(self):
        self.open_with_tray()
        self.window.click_tray(button=3)
        self.assertEqual(self.window.popup().items, [(name, True) for name in (
            "Show/Hide", "Help", "Check For Updates", "Donate", "About Us", "Exit")])
        self.desktop.press("Escape")
        for name, page in (("Help", f"{self.programs}/help.html"),
                           ("Check For Updates", "https://orvella.example/corvane/updates"),
                           ("Donate", "https://orvella.example/corvane/donate")):
            self.choose_from_menu(name)
            self.expect_opened(page)
        self.choose_from_menu("About Us")
        self.window.expect_box(ABOUT).press("Close")
        self.choose_from_menu("Exit")
        self.assertEqual(self.window.wait_exit(), 0)

    def test_while_the_window_is_hidden(self):
        self.open_with_tray(script="exit 1")
        self.window.click_tray()
        self.window.expect_windows()
        self.choose_from_menu("About Us")
        self.window.expect_box(ABOUT)
        self.window.expect_windows(ABOUT)
        # The box has the user's attention first.
        for button in (1, 3):
            self.window.click_tray(button=button)
            self.settle_hidden()
            self.window.expect_windows(ABOUT)
        self.desktop.screen.press("Escape")
        self.window.expect_windows()
        self.settle_hidden()
        self.choose_from_menu("Help")
        box = self.expect_message()
        self.assertIn("help.html", box.text)
        self.desktop.screen.press("Return")
        self.window.expect_windows()
        self.settle_hidden()
        self.choose_from_menu("Exit")
        self.assertEqual(self.window.wait_exit(), 0)

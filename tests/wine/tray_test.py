"""The tray icon of nicx.exe as a taskbar sees it: tip, picture, lamps, the codes of its messages, a new taskbar, its
end. What clicks of the mouse come to is in main_window_test.py."""

import pathlib
import subprocess
import time

from Xlib import X
from Xlib.protocol.event import ClientMessage

from parts import Box
from taskbar import ACTIVATE, BOTH, DARK, LEFT_UP, RECEIVING, RIGHT_UP, SENDING, Taskbar, TrayTest
from waiting import NotNow, end_with_parent, patiently
from wine import REG_SZ
from wine_window import OWN_TEXT, SECOND_TEXT, TITLE, TwoConnectionsTest
from world import ADAPTERS_KEY, FAR, ip

ABOUT = "About Orvella Corvane"
PREFIX = "Orvella Corvane v4.5 - "
# An adapter that Wine has no interface for.
GONE = "{00000063-0000-0000-0000-4E6574446576}"
TIP_LENGTH = 63
ICONIC_STATE = 3
ITEMS = [(name, True) for name in ("Show/Hide", "Help", "Check For Updates", "Donate", "About Us", "Exit")]
# All else that the mouse does (winuser.h), what newer shells send besides (NIN_SELECT, NIN_KEYSELECT and the balloons';
# WM_CONTEXTMENU), and neighbours of the codes that count.
OTHER_CODES = (0x200, 0x201, 0x203, 0x204, 0x206, 0x207, 0x208, 0x209, 0x20a, 0x400, 0x401, 0x402, 0x403, 0x404, 0x405,
               0x7b, 0, 1, 2, 5, 7, 0x10202, 0x10006, -1)


class Icon(TrayTest):
    def test_wines_own_taskbar_is_not_called(self):
        self.open_window()

        def look():
            place = self.taskbar.place
            if place["others"] < 1:
                raise NotNow("there is no other")
            return place
        self.assertTrue(patiently(look, "Wine's own taskbar")["first"])

    def test_it_has_a_tip_and_a_picture(self):
        self.open_window()
        self.taskbar.expect_tip(f"{PREFIX}lan0, {OWN_TEXT}")
        icon = self.taskbar.icon()
        self.assertEqual(icon.message, 2025)
        self.assertEqual((icon.picture.width, icon.picture.height), (16, 16))
        self.assertGreater(icon.picture.drawn, 50)
        self.assertEqual(self.taskbar.diary()[0][0], "add")
        self.assertEqual({what for what, _ in self.taskbar.diary()[1:]}, {"modify"})

    def test_the_tip_names_the_selected_connection(self):
        self.describe("off0", GONE, "0099", "Büro 2")
        self.open_window()
        self.choose("lan1")
        self.taskbar.expect_tip(f"{PREFIX}lan1, {SECOND_TEXT}")
        self.choose("Büro 2")
        self.taskbar.expect_tip(f"{PREFIX}Büro 2")
        self.choose("lan0")
        self.taskbar.expect_tip(f"{PREFIX}lan0, {OWN_TEXT}")
        self.rename("lan0", "Küche")
        self.window.press("F5")
        self.taskbar.expect_tip(f"{PREFIX}Küche, {OWN_TEXT}")

    def remove_connections(self):
        self.registry.delete(ADAPTERS_KEY)
        self.registry.write(ADAPTERS_KEY, "Keep", (REG_SZ, b"\0"))

    def test_without_connections_the_tip_says_so(self):
        self.remove_connections()
        self.open_window()
        self.taskbar.expect_tip(f"{PREFIX}NIC Not Found")

    def test_the_tip_does_not_name_a_connection_that_is_gone(self):
        self.open_window()
        self.taskbar.expect_tip(f"{PREFIX}lan0, {OWN_TEXT}")
        self.remove_connections()
        self.window.press("F5")
        self.taskbar.expect_tip(f"{PREFIX}NIC Not Found")

    def expect_cut(self, *names):
        self.open_window()
        for name in names:
            self.rename("lan0", name)
            self.window.press("F5")
            self.taskbar.expect_tip(f"{PREFIX}{name}, {OWN_TEXT}"[:TIP_LENGTH])

    def test_a_long_tip_is_cut(self):
        room = TIP_LENGTH - len(f"{PREFIX}, {OWN_TEXT}")
        self.expect_cut("a" * room, "b" * (room + 1), "c" * (TIP_LENGTH - len(PREFIX)), "d" * 200)

    def test_a_long_tip_of_other_letters_is_cut_as_late(self):
        room = TIP_LENGTH - len(f"{PREFIX}, {OWN_TEXT}")
        self.expect_cut("ä" * room, "€" * (room + 1), "aö€" * 14, "€" * 200)

    def test_a_new_taskbar_gets_it(self):
        self.open_window()
        self.choose("lan1")
        tip = f"{PREFIX}lan1, {SECOND_TEXT}"
        self.taskbar.expect_tip(tip)
        former = self.taskbar.icon()
        for _ in range(2):
            begin = self.taskbar.length
            self.taskbar.restart()
            icon = self.taskbar.icon()
            self.assertEqual((icon.window, icon.id, icon.message, icon.tip),
                             (former.window, former.id, former.message, tip))
            self.assertEqual(icon.picture.drawn, former.picture.drawn)
            self.assertEqual([what for what, _ in self.taskbar.diary(begin)
                              if what not in ("modify", "refused modify")], ["restart", "add"])
        self.choose("lan0")
        self.taskbar.expect_tip(f"{PREFIX}lan0, {OWN_TEXT}")
        self.taskbar.send(LEFT_UP)
        self.expect_hidden()

    def test_a_taskbar_that_comes_after_the_program_gets_it(self):
        # Until then the icon is Wine's own taskbar's.
        TwoConnectionsTest.open_window(self)
        self.choose("lan1")
        self.taskbar = Taskbar(self.wine)
        self.assertEqual(self.taskbar.icons, [])
        self.taskbar.restart()
        self.taskbar.expect_tip(f"{PREFIX}lan1, {SECOND_TEXT}")
        self.assertGreater(self.taskbar.icon().picture.drawn, 50)

    def expect_removed(self):
        """The program has taken its icon away as the last thing, once."""
        self.assertEqual(self.window.wait_exit(), 0)
        self.assertEqual(self.taskbar.icons, [])
        done = [what for what, _ in self.taskbar.diary()]
        self.assertEqual(([what for what in done if what != "modify"], done[-1]), (["add", "delete"], "delete"))

    def test_it_goes_with_the_window(self):
        self.open_window()
        self.window.close()
        self.expect_removed()

    def test_it_goes_when_its_menu_ends_the_program(self):
        self.open_window()
        self.taskbar.send(RIGHT_UP)
        self.window.popup().click("Exit")
        self.expect_removed()


class Lamps(TrayTest):
    # Five blinks.
    QUIET_SECONDS = 2.5
    INWARD = ["ip", "netns", "exec", FAR, "ping", "-q", "-b", "-i", "0.1", "10.1.0.255"]
    OUTWARD = ["ping", "-q", "-b", "-i", "0.1", "-I", "lan0", "10.1.0.255"]
    BOTH_WAYS = ["ip", "netns", "exec", FAR, "ping", "-q", "-i", "0.1", "10.1.0.2"]

    def setUp(self):
        super().setUp()
        # Nothing but what a case sends is on the links; a ping of everybody gets no answer.
        setting = "/proc/sys/net/ipv6/conf/all/disable_ipv6"
        pathlib.Path(setting).write_text("1", encoding="ascii")
        ip("netns", "exec", FAR, "sh", "-c", f"echo 1 > {setting}")
        ip("-n", FAR, "address", "add", "10.1.0.1/24", "dev", "lan0")

    def start_traffic(self, command):
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   preexec_fn=end_with_parent)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def stop_traffic(self, process):
        """Ends it; it had not failed before."""
        self.assertIsNone(process.poll())
        process.kill()
        process.wait()

    def expect_lamps(self, since, *wanted):
        """Waits until the lamps have shown these states one after the other since that line of the diary."""
        def look():
            found = self.taskbar.lamps(since)
            rest = iter(found)
            if not all(state in rest for state in wanted):
                raise NotNow(f"they have shown {[sorted(state) for state in found]}")
            return found
        return self.window.patiently(look, f"the lamps {[sorted(state) for state in wanted]}")

    def start_blinking(self):
        begin = self.taskbar.length
        self.start_traffic(self.BOTH_WAYS)
        self.expect_lamps(begin, BOTH, DARK, BOTH)

    def expect_quiet(self):
        """Waits until the lamps are out for good."""
        since = {"line": self.taskbar.length, "time": time.monotonic()}

        def look():
            length = self.taskbar.length
            if length != since["line"] or self.taskbar.icon().lamps:
                since.update(line=length, time=time.monotonic())
            if time.monotonic() - since["time"] < self.QUIET_SECONDS:
                raise NotNow(f"they are {sorted(self.taskbar.icon().lamps)}")
        self.window.patiently(look, "the lamps are out")

    def test_they_blink_with_traffic_both_ways(self):
        self.open_window()
        self.expect_quiet()
        self.assertEqual(self.taskbar.lamps(0), [DARK])
        traffic = self.start_traffic(self.BOTH_WAYS)
        begin = self.taskbar.length
        self.expect_lamps(begin, BOTH, DARK, BOTH, DARK, BOTH)
        self.assertEqual({icon.tip for _, icon in self.taskbar.diary(begin)}, {f"{PREFIX}lan0, {OWN_TEXT}"})
        self.stop_traffic(traffic)
        self.expect_quiet()

    def expect_only(self, lamp, command):
        self.open_window()
        begin = self.taskbar.length
        traffic = self.start_traffic(command)
        found = self.expect_lamps(begin, {lamp}, DARK, {lamp}, DARK)
        self.stop_traffic(traffic)
        self.assertEqual(set(found), {DARK, frozenset({lamp})})
        self.expect_quiet()

    def test_the_upper_one_is_for_what_is_sent(self):
        self.expect_only(SENDING, self.OUTWARD)

    def test_the_lower_one_is_for_what_is_received(self):
        self.expect_only(RECEIVING, self.INWARD)

    def test_they_blink_while_the_window_is_hidden(self):
        self.open_window()
        self.taskbar.send(LEFT_UP)
        self.expect_hidden()
        self.start_blinking()

    def test_they_are_the_selected_connections(self):
        self.open_window()
        self.start_blinking()
        self.choose("lan1")
        self.expect_quiet()
        begin = self.taskbar.length
        self.choose("lan0")
        self.expect_lamps(begin, BOTH)

    def test_they_go_out_with_a_connection_that_cannot_be_read(self):
        self.describe("off0", GONE, "0099", "Disabled")
        self.open_window()
        self.start_blinking()
        self.choose("Disabled")
        self.expect_quiet()

    def test_a_new_taskbar_gets_the_picture_of_the_moment(self):
        self.open_window()
        self.start_blinking()

        def look():
            begin = self.taskbar.length
            before = self.taskbar.icon().lamps
            self.taskbar.restart()
            self.taskbar.icon()
            done = [(what, icon.lamps) for what, icon in self.taskbar.diary(begin) if icon]
            # Lamps that change meanwhile are another picture than that of the moment.
            if done[0][0] != "add" or before != BOTH:
                raise NotNow(f"{done} after {sorted(before)}")
            self.assertEqual(done[0], ("add", BOTH))
        self.window.patiently(look, "a new taskbar while the lamps are lit")


class Codes(TrayTest):
    def expect_menu(self):
        menu = self.window.popup()
        menu.expect_items(*ITEMS)
        return menu

    def test_a_click_hides_and_shows_the_window(self):
        self.open_window()
        self.taskbar.send(LEFT_UP)
        self.expect_hidden()
        self.taskbar.send(LEFT_UP)
        self.expect_shown()

    def test_a_click_shows_a_minimized_window(self):
        self.open_window()
        screen = self.window.screen
        window, = screen.active()
        screen.root.send_event(
            ClientMessage(window=window, client_type=screen.atom("WM_CHANGE_STATE"),
                          data=(32, [ICONIC_STATE, 0, 0, 0, 0])), event_mask=screen.TO_MANAGER)

        def look():
            if window.get_attributes().map_state == X.IsViewable:
                raise NotNow("it is not")
            if self.window.root().active:
                raise NotNow("the program does not know")
        self.window.patiently(look, "the window is minimized")
        self.taskbar.send(LEFT_UP)
        self.expect_shown()
        self.assertEqual(window.get_attributes().map_state, X.IsViewable)

    def test_the_right_button_brings_the_menu(self):
        self.open_window()
        self.taskbar.send(RIGHT_UP)
        self.expect_menu().click("Show/Hide")
        self.expect_hidden()
        self.taskbar.send(RIGHT_UP)
        self.expect_menu().click("Show/Hide")
        self.expect_shown()

    def test_the_call_shows_the_window_and_never_hides_it(self):
        self.open_window()
        self.taskbar.send(ACTIVATE)
        self.expect_handled()
        self.expect_shown()
        self.taskbar.send(LEFT_UP)
        self.expect_hidden()
        self.taskbar.send(ACTIVATE)
        self.expect_shown()
        self.taskbar.send(ACTIVATE, ACTIVATE, LEFT_UP)
        self.expect_hidden()

    def test_other_codes_do_nothing(self):
        """Each comes before a click, once while the window is shown and once while it is hidden: had it shown or hidden
        the window, the click would do the opposite; had it brought the menu, the click would find that open."""
        self.open_window()
        for code in OTHER_CODES:
            with self.subTest(code=code):
                self.taskbar.send(code, LEFT_UP)
                self.expect_hidden()
                self.taskbar.send(code, LEFT_UP)
                self.expect_shown()


class HeldInput(TrayTest):
    def expect_dropped(self, *titles):
        """What the taskbar sends leaves the program with the windows of these titles."""
        for code in (LEFT_UP, RIGHT_UP, ACTIVATE):
            with self.subTest(code=code):
                self.taskbar.send(code)
                self.expect_handled()
                self.window.expect_windows(*titles)

    def test_while_a_dialog_is_open_nothing_is_done(self):
        self.open_window()
        self.window.press("alt+h")
        self.window.popup().click("About Us")
        self.window.expect_window(ABOUT, Box)
        self.expect_dropped(TITLE, ABOUT)
        self.window.press("Escape")
        self.expect_shown()

    def test_while_a_box_is_open_nothing_is_done(self):
        self.order_failure("FolderItemVerb.DoIt", 0x80070005)
        self.open_window()
        self.window.press("ctrl+e")
        box = self.window.expect_box(TITLE, icon="error", buttons=["OK"])
        self.expect_dropped(TITLE, TITLE)
        box.press("OK")
        self.window.expect_box("Connection Cound Not Be Disabled").press("OK")
        self.expect_shown()
        # What came is not done later either.
        self.taskbar.send(LEFT_UP)
        self.expect_hidden()

    def test_while_a_box_of_the_hidden_window_is_open_nothing_is_done(self):
        (self.folder / "help.html").unlink()
        self.open_window()
        self.taskbar.send(LEFT_UP)
        self.expect_hidden()
        self.taskbar.send(RIGHT_UP)
        self.window.popup().click("Help")
        box = self.window.expect_box(TITLE, icon="error", buttons=["OK"])
        self.expect_dropped(TITLE)
        box.press("OK")
        self.expect_hidden()
        self.taskbar.send(ACTIVATE)
        self.expect_shown()

    def test_while_a_dialog_of_the_hidden_window_is_open_nothing_is_done(self):
        self.open_window()
        self.taskbar.send(LEFT_UP)
        self.expect_hidden()
        self.taskbar.send(RIGHT_UP)
        self.window.popup().click("About Us")
        self.window.expect_window(ABOUT, Box)
        self.expect_dropped(ABOUT)
        self.window.press("Escape")
        self.expect_hidden()
        self.taskbar.send(ACTIVATE)
        self.expect_shown()

    def test_while_a_command_waits_nothing_is_done(self):
        self.open_window()
        self.choose("lan0")
        self.window.press("ctrl+e")
        self.expect_row("lan0", "", "", "Disabling ...", " ")
        self.taskbar.send(LEFT_UP, RIGHT_UP, ACTIVATE, LEFT_UP, LEFT_UP)
        self.expect_box("Connection Disabled", "Network connection disabled successfully.", "information")
        self.expect_shown()
        self.taskbar.send(LEFT_UP)
        self.expect_hidden()

"""From the start of the program to its window: the splash window, the options, and what ends it before."""

import os
import pty

from desktop import Desktop
from main_window import OWN, OWN_TEXT, HeldFile, MainWindowTest, WindowDiary, picture, system_description
from window import TITLE
from world import REG_SZ, ip

SPLASH = "Orvella Corvane - Loading"
HELP = "Command Line Help - Orvella Corvane v4"
INVALID = "Invalid Parameter - Orvella Corvane v4"
OTHER = "02:00:00:00:40:01"
WHITE = (255, 255, 255)


class Splash(MainWindowTest):
    def start_held(self):
        """Starts the program and stops it while it loads its data."""
        folder = self.copy_programs()
        held = HeldFile(folder / "presets.npf")
        self.open_window(wait=False, environment=self.opener())
        held.wait()
        self.window.expect_windows(SPLASH)
        return held

    def test_it_is_there_until_the_main_window_is(self):
        held = self.start_held()
        self.assertGreater(len(set(picture(self.x_window(SPLASH)))), 100)
        held.let_go()
        self.window.expect_active()
        self.window.expect_windows(TITLE)

    def test_it_shows_the_system_and_what_is_done(self):
        held = self.start_held()
        splash = self.x_window(SPLASH)
        size = splash.get_geometry()
        # Two lines of white text at its lower edge: the system, and "Loading Data ..." below it.
        for line, top in (("the system", size.height - 46), ("the status", size.height - 26)):
            self.assertIn(WHITE, picture(splash, 0, top, size.width // 4, 16), line)
        held.let_go()
        self.window.expect_active()

    def test_a_screen_reader_is_told_the_system_and_what_is_done(self):
        (self.copy_programs() / "presets.npf").unlink()
        self.open_window(wait=False)
        box = self.window.expect_box("ERROR")
        names = [node.name for node, role in self.window.window(SPLASH).root().walk() if role == "panel"]
        self.assertEqual(names, [f" System: {system_description()}\nLoading Data ...\n"])
        box.button("OK").click()
        self.assertEqual(self.window.wait_exit(), 4)

    def test_a_click_on_it_opens_the_makers_page(self):
        held = self.start_held()
        x, y, width, height = self.desktop.screen.extents(self.x_window(SPLASH))
        self.desktop.screen.move(x + width // 2, y + height // 2)
        self.desktop.screen.click(1, 1)
        held.let_go()
        self.expect_opened("https://orvella.example/")
        self.window.expect_active()


class Options(MainWindowTest):
    def original(self, name="lan0"):
        return self.driver(name)["OriginalNetworkAddress"]

    def test_without_options_vendors_have_addresses(self):
        self.veth("lan0", mac=OWN)
        self.open_window()
        self.assertRegex(self.facts["Manufacturer:"], r"^VMware, Inc\.   Address: .+")
        self.open_panel()
        self.desktop.type("000c29")
        self.assertRegex(self.vendor.text, r"^VMware, Inc\.   Address: .+")

    def test_sv_leaves_the_addresses_of_vendors_out(self):
        self.veth("lan0", mac=OWN)
        self.open_window("-sv")
        self.assertEqual(self.facts["Manufacturer:"], "VMware, Inc.")
        self.open_panel()
        self.desktop.type("000c29")
        self.assertEqual(self.vendor.text, "VMware, Inc.")

    def test_sv_opens_the_window_whatever_else_is_asked_for(self):
        self.veth("lan0", mac=OWN)
        self.open_window("-n", "lan0", "-di", "-s", "-sv")
        self.connections.expect_row("lan0", "No", OWN_TEXT, "Up, Operational")
        self.assertTrue(self.is_up("lan0"))
        self.window.expect_windows(TITLE)

    def test_ro_takes_the_present_address_for_the_original_one(self):
        self.veth("lan0", mac=OWN)
        self.report()
        ip("link", "set", "lan0", "address", OTHER)
        self.open_window()
        self.connections.expect_row("lan0", "Yes", "02-00-00-00-40-01")
        self.assertEqual(self.original(), (REG_SZ, OWN_TEXT.encode() + b"\0"))
        self.desktop.press("ctrl+q")
        self.assertEqual(self.window.wait_exit(), 0)

        self.open_window("-ro", "-n", "lan0", "-m", "02:00:00:00:77:77", "-di")
        self.connections.expect_row("lan0", "No", "02-00-00-00-40-01")
        self.expect_fact("MAC Address:", "02-00-00-00-40-01 (Original)")
        self.assertEqual(self.original(), (REG_SZ, b"02-00-00-00-40-01\0"))
        self.assert_up("lan0", OTHER)

    def test_an_invalid_option_ends_it_with_a_box(self):
        for arguments in (["-bogus"], ["-sv", "-bogus"], ["-s", "-bogus"]):
            with self.subTest(arguments=arguments):
                self.open_window(*arguments, wait=False)
                self.expect_last_box(INVALID, "ERROR! Invalid paramater : bogus", code=2)

    def test_a_missing_data_file_ends_it_with_a_box(self):
        for name, what in (("presets.npf", "presets file"), ("VendorNumbers.log", "vendor list")):
            with self.subTest(name=name):
                folder = self.copy_programs(f"/run/without-{name}")
                (folder / name).unlink()
                self.open_window(wait=False)
                box = self.window.expect_box("ERROR")
                first, _, description, _, last = box.text.split("\n")
                self.assertEqual(first, "ERROR! This may be caused due to invalid command line parameters. Please "
                                        "check command line paramaters if passed.")
                self.assertIn(f"The {what} {folder}/{name} cannot be read", description)
                self.assertRegex(description, r"^Description: .* \(53\)$")
                self.assertEqual(last, "Click OK to Quit")
                self.window.expect_windows(SPLASH, "ERROR")
                box.button("OK").click()
                self.assertEqual(self.window.wait_exit(), 4)


class Actions(MainWindowTest):
    """Actions given to the window program: boxes, but no window."""

    def expect_done(self, code):
        self.expect_last_box("Done - Orvella Corvane v4", "Done! Command line parameter(s) were applied to 'lan0' "
                             "network connection successfully.", code, kind="Information")

    def test_an_action_is_carried_out_with_boxes_only(self):
        self.veth("lan0", mac=OWN)
        self.open_window("-n", "lan0", "-di", wait=False)
        box = self.window.expect_box("Disabled - Orvella Corvane v4")
        self.assertEqual(box.text, "Network connection 'lan0' was disabled successfully.")
        self.window.expect_windows(box.title)
        self.assertFalse(self.is_up("lan0"))
        box.press("OK")
        self.expect_done(code=0)

    def test_a_silent_action_shows_nothing(self):
        self.veth("lan0", mac=OWN)
        diary = WindowDiary()
        self.open_window("-n", "lan0", "-di", "-s", wait=False)
        self.assertEqual(self.window.wait_exit(), 0)
        self.assertFalse(self.is_up("lan0"))
        self.assertEqual(diary.shown(), 0)
        self.open_window("-n", "none", "-di", wait=False)
        self.expect_last_box("NIC Not Found- Orvella Corvane v4", "ERROR! Network connection 'none' was not found.",
                             code=3)
        self.assertEqual(diary.shown(), 1)

    def test_a_failed_action_says_so(self):
        self.veth("lan0", mac=OWN)
        self.open_window("-n", "lan0", "-rl", wait=False)
        box = self.expect_message()
        self.assertRegex(box.text, r"^DLL : IphlpApi\.dll\n\nError Code : \d+\nAPI: IPReleaseAddress\n")
        box.press("OK")
        self.expect_box("IP Release Attempt Failed - Orvella Corvane v4",
                        "ERROR ! IP Release operation on network connection 'lan0' failed.", press="OK", kind="Error")
        self.expect_done(code=1)


class Nicx(MainWindowTest):
    """The command-line program opens windows too."""

    def start_nicx(self, *arguments, **options):
        self.desktop = Desktop(self)
        self.window = self.desktop.start(self.programs / "nicx", *arguments, title=TITLE, **options)

    def printed_help(self):
        """What nicx -help prints where there is no display."""
        result = self.nicx("-help", environment={"DISPLAY": ""})
        self.assertIn("Click OK to Continue", result.out)
        return result.out.removesuffix("\n")

    def on_terminal(self, *arguments):
        """Runs nicx on a terminal of its own. Exit code and what the terminal shows."""
        pid, terminal = pty.fork()
        if pid == 0:
            os.execv(self.programs / "nicx", ["nicx", *arguments])
        shown = b""
        with open(terminal, "rb", buffering=0) as stream:
            try:
                while part := stream.read(4096):
                    shown += part
            except OSError:
                # That is how the end of a terminal is told.
                pass
        return os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]), shown.decode().replace("\r\n", "\n")

    def test_without_arguments_it_opens_the_window(self):
        self.veth("lan0", mac=OWN)
        self.start_nicx()
        self.expect_names("lan0")
        self.assertEqual(os.readlink(f"/proc/{self.window.pid}/exe"), str(self.programs / "nicx-window"))

    def test_options_of_the_window_are_passed_on(self):
        self.veth("lan0", mac=OWN)
        self.start_nicx("-sv")
        self.expect_fact("Manufacturer:", "VMware, Inc.")

    def test_help_without_a_terminal_is_a_window(self):
        self.start_nicx("-help", wait=False, start_new_session=True)
        self.expect_help()
        self.assertEqual(self.window.out, "")

    def test_help_on_a_terminal_is_printed(self):
        diary = WindowDiary()
        self.assertEqual(self.on_terminal("-help"), (0, self.printed_help() + "\n"))
        self.assertEqual(diary.shown(), 0)

    def test_help_of_the_window_program(self):
        self.open_window("-help", wait=False)
        self.expect_help()

    def expect_help(self):
        box = self.window.expect_box(HELP)
        self.assertEqual(box.entry("Command line options").text, self.printed_help())
        self.assertFalse(box.entry("Command line options").editable)
        self.window.expect_windows(HELP)
        box.button("OK").expect(focused=True)
        self.desktop.press("Return")
        self.assertEqual(self.window.wait_exit(), 0)

"""The command line of nicx.exe and the system around it: disabling and restarting by the shell, its data files, where
the program lies and how it is called."""

import pathlib
import time

from command_line import NEW, OFFICE, OWN, TITLE, VERSION, CommandLine, done
from machine import PROGRAM_KEY, SHELL_KEY, WineTest
from parts import Box
from wine import REG_SZ, number
from wine_limits import NOT_SUPPORTED
from world import ADAPTERS_KEY, preset_bytes, wait_for


class Connections(CommandLine):
    DISABLED = ("Disabled" + VERSION, "Network connection 'eth0' was disabled successfully.", "information")
    NOT_DISABLED = ("Disable Attempt Failed" + VERSION,
                    "ERROR ! Network connection 'eth0' was not disabled successfully.", "error")
    RESTARTED = ("Restarted" + VERSION, "Network connection 'eth0' was restarted successfully.", "information")
    NOT_RESTARTED = ("Restarted Attempt Failed" + VERSION,
                     "ERROR ! Network connection 'eth0' was not restarted successfully.", "error")

    def test_disabling(self):
        self.describe_shell()
        self.run_with(["-n", "eth0", "-di"], self.DISABLED, done("eth0"))
        self.assertEqual(self.diary, ["disable eth0"])
        self.assertFalse(self.is_up("eth0"))
        # It is disabled already: that is what was asked for.
        self.run_with(["-n", "eth0", "-di"], self.DISABLED, done("eth0"))
        self.assertEqual(self.diary, ["disable eth0"])

    def test_a_restart_takes_the_new_address(self):
        self.describe_shell()
        begin = time.monotonic()
        self.run_with(["-n", "eth0", "-m", NEW, "-re"], self.RESTARTED, done("eth0"))
        # Five seconds behind the disabling, and as many behind the enabling.
        self.assertGreater(time.monotonic() - begin, 10)
        self.assertEqual(self.diary, ["disable eth0", "enable eth0"])
        self.assertEqual((self.mac("eth0"), self.is_up("eth0")), (NEW, True))

    def test_a_restart_after_disabling_has_one_wait(self):
        self.describe_shell()
        self.run_with(["-n", "eth0", "-m", NEW, "-di", "-re"], self.DISABLED, self.RESTARTED, done("eth0"))
        self.assertEqual(self.diary, ["disable eth0", "enable eth0"])
        self.run_silent("-m", "", "-di", "-re")
        self.assertEqual(self.diary, ["disable eth0", "enable eth0"] * 2)
        self.assertEqual(self.mac("eth0"), OWN)

    def test_an_adapter_that_takes_its_time_counts_as_failed(self):
        self.describe_shell(slow=5)
        self.run_with(["-n", "eth0", "-re"], self.NOT_RESTARTED, done("eth0"), code=1)
        self.assertEqual(self.diary, ["disable eth0"])

    def test_the_connections_folder_of_todays_windows(self):
        """The Control Panel does not list it; the shell's own connections name space stands for it."""
        self.describe_shell(folder="Network and Sharing")
        self.run_with(["-n", "eth0", "-di"], self.DISABLED, done("eth0"))
        self.assertEqual(self.diary, ["disable eth0"])

    def test_the_shell_fails(self):
        self.describe_shell()
        self.order_failure("FolderItemVerb.DoIt", 0x80070005)
        program = self.nicx("-n", "eth0", "-di")
        box = program.expect_box(TITLE, icon="error", buttons=["OK"])
        self.assertRegex(box.text, "^Error! There was an error while accessing shell32.dll\n\nDescription: .*denied")
        box.press("OK")
        self.expect_boxes(program, self.NOT_DISABLED, done("eth0"))
        self.assertEqual(program.wait_exit(), 1)
        self.assertEqual(self.diary, [])
        self.run_silent("-di", code=1)

    def question(self, program):
        return program.expect_box(
            "Unable To Locate Network Connection",
            "Error! Could not locate network connection 'eth0' to be enabled/disabled. Please, enable/disable your "
            "network connection manually. This may happen if the 'Network Connections' or 'Network and dial-up "
            "connections' folder is not found by Orvella Corvane.\n\nDo you want to manually browse and set the "
            "network connection folder in control pannel ?", "warning", ["Yes", "No", "Cancel"])

    def test_a_connection_that_the_folder_has_not(self):
        self.describe_shell(connections=["other"])
        for answer in ("No", "Cancel"):
            with self.subTest(answer=answer):
                program = self.nicx("-n", "eth0", "-di")
                self.question(program).press(answer)
                self.expect_boxes(program, self.NOT_DISABLED, done("eth0"))
                self.assertEqual(program.wait_exit(), 1)
        self.run_silent("-di", code=1)
        self.assertEqual(self.diary, [])

    def test_the_folder_is_picked_and_remembered(self):
        self.describe_shell(folder="Netzwerk&verbindungen")
        self.registry.write(SHELL_KEY, "HasSpace", number(0))
        program = self.nicx("-n", "eth0", "-di")
        dialog = program.expect_window("Browse Network Folder", Box)
        folders = dialog.control(("listbox",), None)
        self.assertEqual(folders.choices, ["Fonts", "Netzwerkverbindungen"])
        self.assertEqual(dialog.text.replace("\n", " "), "Please Manually Select 'Network Connections' or 'Network and "
                         "dial-up connections' Folder From The List Below. Orvella Corvane Will Remember The Folder "
                         "You Selected. Control Pannel Folders")
        folders.click()
        program.press("Home", "Down")
        folders.expect(choice=1)
        program.press("alt+s")
        wait_for(lambda: self.diary, "the connection is disabled")
        self.expect_boxes(program, ("Network Connection Restarted", "Network connection restarted successfully.",
                                    "information"), self.NOT_DISABLED, done("eth0"))
        self.assertEqual(program.wait_exit(), 1)
        self.assertEqual(self.diary, ["disable eth0", "enable eth0"])
        self.assertEqual(self.key(PROGRAM_KEY)["NetworkFolderName"], (REG_SZ, b"netzwerkverbindungen\0"))
        self.run_with(["-n", "eth0", "-di"], self.DISABLED, done("eth0"))

    def test_a_refused_dialog(self):
        self.describe_shell(folder="Netzwerkverbindungen")
        self.registry.write(SHELL_KEY, "HasSpace", number(0))
        program = self.nicx("-n", "eth0", "-di")
        program.expect_window("Browse Network Folder", Box).press("Cancel")
        self.expect_boxes(program, self.NOT_DISABLED, done("eth0"))
        self.assertEqual(program.wait_exit(), 1)
        self.assertNotIn("NetworkFolderName", self.key(PROGRAM_KEY))

    def test_releasing_and_renewing(self):
        text = ("DLL : IphlpApi.dll\n\nError Code : {}\nAPI: IP{}Address\nError Description : {}\n\n\n"
                "Click OK To Continue")
        boxes = []
        for word in ("Release", "Renew"):
            code, words = NOT_SUPPORTED[f"Ip{word}Address"]
            boxes.append((TITLE, text.format(code, word, words), "error"))
            boxes.append((f"IP {word} Attempt Failed" + VERSION,
                          f"ERROR ! IP {word} operation on network connection 'eth0' failed.", "error"))
        self.run_with(["-n", "eth0", "-rl", "-rn"], *boxes, done("eth0"), code=1)
        self.run_silent("-rl", "-rn", code=1)

class Files(CommandLine):
    def error(self, description):
        return ("ERROR", "ERROR! This may be caused due to invalid command line parameters. Please check command line "
                f"paramaters if passed.\n\nDescription: {description}\n\nClick OK to Quit", "error")

    def test_without_the_vendor_list(self):
        (self.folder / "VendorNumbers.log").unlink()
        before = self.stored()
        box = self.error(r"The vendor list C:\Corvane\VendorNumbers.log cannot be read: No such file or directory. Put "
                         "back the file that came with the program. (53)")
        for arguments in ([], ["-s"]):
            self.run_with(["-n", "eth0", "-r", *arguments], box, code=4)
        self.assertEqual(self.driver("eth0").get("NetworkAddress"), before["eth0"][0].get("NetworkAddress"))
        self.run_silent("-m", NEW)

    def test_without_presets(self):
        (self.folder / "presets.npf").unlink()
        box = self.error(r"The presets file C:\Corvane\presets.npf cannot be read: No such file or directory. Put back "
                         "a good copy of the file, or one of four zero bytes for an empty list. (53)")
        self.run_with(["-n", "eth0", "-p", "office", "-s"], box, code=4)

    def test_damaged_files(self):
        (self.folder / "VendorNumbers.log").write_bytes(b"\0\0\0\0")
        (self.folder / "presets.npf").write_bytes(b"\xff\xff\xff\xff")
        self.run_with(["-n", "eth0", "-r"], self.error(
            r"The vendor list C:\Corvane\VendorNumbers.log has the record count 0. Put back the file that came with "
            "the program. (9)"), code=4)
        self.run_with(["-n", "eth0", "-p", "office"], self.error(
            r"The presets file C:\Corvane\presets.npf has the record count -1. Put back a good copy of the file, or "
            "one of four zero bytes for an empty list. (9)"), code=4)

class Surroundings(WineTest):
    """Where the program lies, what it is called with, and what connections are called."""

    def run_done(self, connection, *arguments, **options):
        program = self.nicx(*arguments, **options)
        program.expect_box(done(connection)[0], done(connection)[1]).press("OK")
        self.assertEqual(program.wait_exit(), 0)

    def make_link(self, connection):
        self.veth("eth0", mac=OWN)
        self.describe_links(eth0=connection)

    def assert_address(self):
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000c294f8e35\0"))

    def test_a_connection_with_blanks_in_quotes(self):
        self.make_link("Local Area Connection 2")
        self.run_done("Local Area Connection 2", "-n", "local area connection", "-m", NEW)
        self.assert_address()

    def test_a_connection_with_blanks_without_quotes(self):
        self.make_link("Local Area Connection 2")
        self.run_done("Local Area Connection 2", "-n", "area", "connection", "-m", NEW)
        self.assert_address()

    def test_a_connection_with_letters_of_the_code_page(self):
        self.make_link("Büro Straße")
        self.run_done("Büro Straße", "-n", "büro", "-m", NEW)
        self.assert_address()

    def test_options_with_slashes(self):
        self.make_link("eth0")
        self.run_done("eth0", "/N", "eth0", "/M", NEW)
        self.assert_address()

    def test_another_current_folder(self):
        self.make_link("eth0")
        (self.folder / "presets.npf").write_bytes(preset_bytes(OFFICE))
        for folder in (self.wine.drive / "windows", pathlib.Path("/run"), self.folder):
            with self.subTest(folder=folder):
                self.run_done("eth0", "-n", "eth0", "-p", "office", cwd=folder)
                self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000C294F8E35\0"))
                self.registry.delete(self.driver_key("eth0"), "NetworkAddress")

    def test_another_program_folder(self):
        """One whose name has blanks and letters that are not in the code page."""
        self.make_link("eth0")
        (self.folder / "presets.npf").write_bytes(preset_bytes(OFFICE))
        other = self.wine.drive / "Program Files/Corvane ąβ"
        self.folder = self.folder.rename(other)
        self.run_done("eth0", "-n", "eth0", "-p", "office", "-r")
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000C294F8E35\0"))

    def test_of_two_connections_the_first_that_matches_is_taken(self):
        for name in ("lan0", "lan1"):
            self.veth(name)
        self.describe_links()
        first = min(self.links, key=lambda name: self.links[name][0])
        self.run_done(first, "-n", "lan", "-m", NEW)
        self.assertEqual([name for name in self.links if "NetworkAddress" in self.driver(name)], [first])

    def test_without_connections(self):
        program = self.nicx("-n", "eth0")
        program.expect_box("NIC Not Found- Orvella Corvane v4").press("OK")
        self.assertEqual(program.wait_exit(), 3)

    def test_a_registry_without_adapters(self):
        self.registry.delete(ADAPTERS_KEY)
        program = self.nicx("-n", "eth0")
        program.expect_box(
            "Error! Cannot Read Registry", f"Error while reading windows registry.\n\nRegistry Path: "
            f"HKEY_LOCAL_MACHINE\\{ADAPTERS_KEY}\n\nError: (2) Bad Key Name\n\nClick OK to continue", "error",
            ["OK"]).press("OK")
        program.expect_box("NIC Not Found- Orvella Corvane v4").press("OK")
        self.assertEqual(program.wait_exit(), 3)

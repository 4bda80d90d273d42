"""The installer: what it makes, what it keeps, what it takes away again, and what it says."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest
import zipfile

from packages import BIN, EMPTY_PRESETS, FILES, FOLDER, SCRIPT, SETUP, VERSION, ZIP, run
from wine import TOOLS, Wine, number, processes_in, text
from programs import Program
from waiting import NotNow, patiently

UNINSTALL = r"Software\Microsoft\Windows\CurrentVersion\Uninstall"
PRODUCT_KEY = f"{UNINSTALL}\\OrvellaCorvane"
SETTINGS = r"SOFTWARE\Orvella\Corvane_v4"
DRIVER = r"SYSTEM\CurrentControlSet\Control\Class\{4D36E972-E325-11CE-BFC1-08002bE10318}\0007"


def command_line(process):
    """What a process was started with; empty when it has ended."""
    try:
        return pathlib.Path(f"/proc/{process}/cmdline").read_bytes().decode(errors="replace")
    except OSError:
        return ""


class InstallerTest(unittest.TestCase):
    """Base of the cases: a Wine prefix to install the program in."""

    def setUp(self):
        self.wine = Wine(self)
        self.registry = self.wine.registry
        self.drive = self.wine.drive
        self.folder = self.drive / "Program Files/Orvella Corvane"
        self.menu_entry = self.drive / "ProgramData/Microsoft/Windows/Start Menu/Programs/Orvella Corvane.lnk"
        self.desktop_entry = self.drive / "users/Public/Desktop/Orvella Corvane.lnk"

    def setup_program(self, *options, program=SETUP):
        """Runs the installer without questions and gives its exit code. A folder's name is not quoted."""
        return self.wine.run(program, "/S", *(part for option in options for part in option.split(" ")))[0]

    def install(self, *options, program=SETUP):
        self.assertEqual(self.setup_program(*options, program=program), 0)

    def uninstall(self, folder=None, left=()):
        """Runs what Windows would run, and waits for the end: the uninstaller goes on as a copy of itself. `left` are
        the files that stay in the folder; the folder itself goes when there are none."""
        folder = folder or self.folder
        command = self.registry.read(PRODUCT_KEY)["QuietUninstallString"][1].rstrip(b"\0").decode()
        program, option = re.fullmatch('"(.*)" (/S)', command).groups()
        self.assertEqual(program, self.wine.path(folder / "uninstall.exe"))
        self.assertEqual(self.wine.run(program, option)[0], 0)

        def expect_end():
            # The copy has its folder's name in its own.
            if any("~nsu" in command_line(process) for process in processes_in(self.wine.prefix)):
                raise NotNow("the uninstaller is at work")
            if (folder / "uninstall.exe").exists() or (folder.exists() and not left):
                raise NotNow(f"there is {sorted(path.name for path in folder.iterdir())}")

        patiently(expect_end, "uninstalling")
        self.assertEqual(self.names(folder), set(left))

    def uninstall_in_place(self):
        """Runs the uninstaller itself instead of a copy of it, and gives the exit code of the work."""
        place = f"_?={self.wine.path(self.folder)}"
        return self.wine.run(self.folder / "uninstall.exe", "/S", *place.split(" "))[0]

    def keep_busy(self, name):
        """A program under the name of an installed file, which so cannot be changed. It ends with its input."""
        shutil.copy(TOOLS / "observer.exe", self.folder / name)
        program = self.wine.start(self.folder / name, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        program.stdin.write(b"keys\tSOFTWARE\n")
        program.stdin.flush()
        self.assertIn(b"Microsoft", program.stdout.readline())
        return program

    def names(self, folder):
        return {path.name for path in folder.iterdir()} if folder.exists() else set()

    def expect_files(self, folder, **others):
        """The folder has the zip's files, but for the content of `others`, and the uninstaller."""
        with zipfile.ZipFile(ZIP) as archive:
            files = {name: archive.read(f"{FOLDER}/{name}") for name in FILES}
        files.update({name.replace("_", "."): content for name, content in others.items()})
        self.assertEqual(self.names(folder), {*files, "uninstall.exe"})
        for name, content in files.items():
            self.assertEqual((folder / name).read_bytes(), content, name)

    def expect_shortcut(self, path, folder):
        content = path.read_bytes()
        target = self.wine.path(folder / "nicx.exe")
        self.assertTrue(target.encode("cp1252") in content or target.encode("utf-16-le") in content, content)

    def everything(self):
        """All files of the drive and all of the machine's software settings."""
        registry = self.drive / "everything.reg"
        self.assertEqual(self.wine.run("regedit", "/E", r"C:\everything.reg", r"HKEY_LOCAL_MACHINE\Software")[0], 0)
        settings = registry.read_text(encoding="utf-16")
        registry.unlink()
        return {str(path.relative_to(self.drive)) for path in self.drive.rglob("*")}, settings.splitlines()


class Installing(InstallerTest):
    def test_what_an_installation_makes(self):
        self.install()
        self.expect_files(self.folder)
        self.expect_shortcut(self.menu_entry, self.folder)
        self.assertFalse(self.desktop_entry.exists())
        values = self.registry.read(PRODUCT_KEY)
        size = int.from_bytes(values.pop("EstimatedSize")[1], "little")
        total = sum((self.folder / name).stat().st_size for name in FILES) / 1024
        self.assertLess(abs(size - total), 100)
        place = self.wine.path(self.folder)
        self.assertEqual(values, {
            "DisplayName": text("Orvella Corvane"), "DisplayVersion": text(VERSION), "Publisher": text("Orvella"),
            "DisplayIcon": text(f"{place}\\nicx.exe"), "InstallLocation": text(place),
            "UninstallString": text(f'"{place}\\uninstall.exe"'),
            "QuietUninstallString": text(f'"{place}\\uninstall.exe" /S'),
            "NoModify": number(1), "NoRepair": number(1)})
        self.assertIsNone(self.registry.read(PRODUCT_KEY.replace("Software", r"Software\Wow6432Node")))

    def test_a_folder_with_blanks(self):
        folder = self.drive / "My Tools/Net Programs"
        self.install(f"/D={self.wine.path(folder)}")
        self.expect_files(folder)
        self.expect_shortcut(self.menu_entry, folder)
        self.assertFalse(self.folder.exists())
        self.uninstall(folder)

    def test_desktop_entry(self):
        self.install("/DESKTOP")
        self.expect_shortcut(self.desktop_entry, self.folder)
        # A newer version keeps it.
        self.install()
        self.expect_shortcut(self.desktop_entry, self.folder)
        self.uninstall()
        self.assertFalse(self.desktop_entry.exists())

    def test_a_folder_that_cannot_be_made(self):
        (self.drive / "a file").write_bytes(b"mine")
        for name in (r"C:\a file\Corvane", r"C:\a file", r"Q:\Corvane", "Corvane", r"C:\Cor|vane", '"C:\\My Tools"'):
            with self.subTest(name=name):
                self.assertEqual(self.setup_program(f"/D={name}"), 2)
                self.assertIsNone(self.registry.read(PRODUCT_KEY))
                self.assertFalse(self.menu_entry.exists())
                self.assertFalse(self.folder.exists())
        self.assertEqual((self.drive / "a file").read_bytes(), b"mine")

    def test_a_folder_that_cannot_be_written_to(self):
        (self.folder / "uninstall.exe").mkdir(parents=True)
        self.assertEqual(self.setup_program(), 2)
        self.assertEqual(self.names(self.folder), {"uninstall.exe"})
        self.assertIsNone(self.registry.read(PRODUCT_KEY))

    def test_a_file_in_use(self):
        self.install()
        program = self.keep_busy("help.html")
        self.assertEqual(self.setup_program(), 2)
        self.assertEqual(self.uninstall_in_place(), 2)
        # What is left can be removed or repaired once the file is free.
        self.assertEqual(self.names(self.folder), {"help.html", "presets.npf", "uninstall.exe"})
        self.assertIsNotNone(self.registry.read(PRODUCT_KEY))
        program.communicate()
        self.install()
        self.expect_files(self.folder)
        self.uninstall()

    def test_files_of_something_else_are_not_written_over(self):
        folder = self.drive / "Stuff"
        folder.mkdir()
        (folder / "README.txt").write_bytes(b"mine")
        self.assertEqual(self.setup_program(r"/D=C:\Stuff"), 2)
        self.assertEqual(self.names(folder), {"README.txt"})
        self.assertEqual((folder / "README.txt").read_bytes(), b"mine")
        self.assertIsNone(self.registry.read(PRODUCT_KEY))

    def test_over_a_portable_program(self):
        folder = self.drive / "Corvane"
        with zipfile.ZipFile(ZIP) as archive:
            archive.extractall(self.drive)
        (self.drive / FOLDER).rename(folder)
        (folder / "presets.npf").write_bytes(b"\1\0\0\0mine")
        self.install(r"/D=C:\Corvane")
        self.expect_files(folder, presets_npf=b"\1\0\0\0mine")


class InstallingAgain(InstallerTest):
    def newer(self):
        """An installer of another version, with another help page."""
        room = self.drive / "newer"
        shutil.copytree(BIN, room / "bin")
        (room / "bin/help.html").write_bytes(b"<html>newer</html>")
        done = run(sys.executable, SCRIPT, room / "bin", room / "out", "94.6",
                   env={**os.environ, "SOURCE_DATE_EPOCH": "1800000000"})
        self.assertEqual(done.returncode, 0, done.stderr)
        return room / "out/nicx-94.6-windows-x86_64-setup.exe"

    def test_a_newer_version_keeps_the_presets(self):
        folder = self.drive / "Some Folder"
        self.install(r"/D=C:\Some Folder")
        presets = b"\1\0\0\0the user's"
        (folder / "presets.npf").write_bytes(presets)
        (folder / "VendorNumbers.log").unlink()
        (folder / "notes.txt").write_bytes(b"mine")
        # It goes to the folder where the program is.
        self.install(program=self.newer())
        self.assertEqual((folder / "notes.txt").read_bytes(), b"mine")
        (folder / "notes.txt").unlink()
        self.expect_files(folder, presets_npf=presets, help_html=b"<html>newer</html>")
        self.assertEqual(self.registry.read(PRODUCT_KEY)["DisplayVersion"], text("94.6"))
        self.assertFalse(self.folder.exists())

    def test_missing_presets_come_back(self):
        self.install()
        (self.folder / "presets.npf").unlink()
        self.install()
        self.expect_files(self.folder)

    def test_there_is_one_installation(self):
        self.install()
        self.assertEqual(self.setup_program(r"/D=C:\Other"), 2)
        self.assertFalse((self.drive / "Other").exists())
        self.expect_files(self.folder)
        # Its own folder may be named.
        self.install(f"/D={self.wine.path(self.folder).lower()}")
        # An installation whose folder was deleted by hand stands in nobody's way.
        shutil.rmtree(self.folder)
        self.install(r"/D=C:\Other")
        self.expect_files(self.drive / "Other")

    def test_a_running_program_is_not_replaced_or_removed(self):
        self.install()
        program = self.keep_busy("nicx.exe")
        before = {path: path.stat().st_mtime_ns for path in self.folder.iterdir()}
        self.assertEqual(self.setup_program(program=self.newer()), 2)
        self.assertEqual(self.uninstall_in_place(), 2)
        self.assertEqual({path: path.stat().st_mtime_ns for path in self.folder.iterdir()}, before)
        self.assertEqual(self.registry.read(PRODUCT_KEY)["DisplayVersion"], text(VERSION))
        self.assertTrue(self.menu_entry.exists())

        program.communicate()
        self.install()
        self.expect_files(self.folder)


class Uninstalling(InstallerTest):
    def test_nothing_is_left(self):
        before = self.everything()
        self.install("/DESKTOP")
        self.registry.write(SETTINGS, "NetworkFolderName", text("netzwerkverbindungen"))
        self.assertNotEqual(self.everything(), before)
        self.uninstall()
        files, settings = self.everything()
        self.assertEqual(settings, before[1])
        # But for the uninstaller's running copy, which Windows deletes when it starts again.
        session = self.registry.read(r"SYSTEM\CurrentControlSet\Control\Session Manager")
        pending = session["PendingFileRenameOperations"][1].decode().split("\0")
        deleted = [name.removeprefix("\\??\\") for name in pending]
        left = {self.wine.path(self.drive / name) for name in files ^ before[0]}
        self.assertEqual(left - set(deleted), set())
        self.assertTrue(all("\\Temp\\" in name for name in left), left)

    def test_changed_presets_stay(self):
        for content in (b"\1\0\0\0" + bytes(15), EMPTY_PRESETS + b"\0", EMPTY_PRESETS[:3], b"\0\0\0\1"):
            with self.subTest(content=content):
                self.install()
                (self.folder / "presets.npf").write_bytes(content)
                self.uninstall(left={"presets.npf"})
                self.assertEqual((self.folder / "presets.npf").read_bytes(), content)
                self.assertIsNone(self.registry.read(PRODUCT_KEY))
                # They are there again for the next installation.
                self.install()
                self.expect_files(self.folder, presets_npf=content)
                (self.folder / "presets.npf").write_bytes(EMPTY_PRESETS)
                self.uninstall()

    def test_what_belongs_to_others_stays(self):
        self.install()
        (self.folder / "notes.txt").write_bytes(b"mine")
        (self.folder / "backup").mkdir()
        (self.folder / "backup/help.html").write_bytes(b"mine")
        self.registry.write(DRIVER, "NetworkAddress", text("000C294F8E35"))
        self.registry.write(DRIVER, "OriginalNetworkAddress", text("00155D010203"))
        self.uninstall(left={"notes.txt", "backup"})
        self.assertEqual((self.folder / "notes.txt").read_bytes(), b"mine")
        self.assertEqual((self.folder / "backup/help.html").read_bytes(), b"mine")
        adapter = self.registry.read(DRIVER)
        self.assertEqual(adapter["NetworkAddress"], text("000C294F8E35"))
        self.assertEqual(adapter["OriginalNetworkAddress"], text("00155D010203"))

    def test_the_makers_key_stays_while_it_is_used(self):
        for write in (lambda: self.registry.write(r"SOFTWARE\Orvella", "Of another program", text("x")),
                      lambda: self.registry.write(r"SOFTWARE\Orvella\Other", "Value", text("x"))):
            self.install()
            self.registry.write(SETTINGS, "NetworkFolderName", text("netzwerkverbindungen"))
            write()
            self.uninstall()
            self.assertIsNone(self.registry.read(SETTINGS))
            self.assertIsNotNone(self.registry.read(r"SOFTWARE\Orvella"))
            self.registry.delete(r"SOFTWARE\Orvella")


class Pages(InstallerTest):
    def open_setup(self):
        setup = Program(self.wine, SETUP)
        return setup, setup.expect_window("Orvella Corvane Setup ")

    def go_on(self, pages, *names):
        """Presses the buttons one after the other, as soon as each is there."""
        for name in names:
            pages.button(name).expect(enabled=True)
            pages.button(name).click()

    def test_the_pages_of_the_installer(self):
        setup, pages = self.open_setup()
        self.go_on(pages, "I Agree")
        pages.control(("systreeview32",), None).expect(focused=True)
        setup.press("Down", "space")
        self.go_on(pages, "Next >")
        pages.entry(None).expect(text=r"C:\Program Files\Orvella Corvane")
        pages.entry(None).enter(r"C:\My Tools")
        self.go_on(pages, "Install", "Run Orvella Corvane", "Finish")
        self.assertEqual(setup.wait_exit(), 0)
        self.expect_files(self.drive / "My Tools")
        self.expect_shortcut(self.desktop_entry, self.drive / "My Tools")

    def test_a_folder_of_something_else_can_be_changed(self):
        (self.drive / "Stuff").mkdir()
        (self.drive / "Stuff/LICENSE.txt").write_bytes(b"mine")
        setup, pages = self.open_setup()
        self.go_on(pages, "I Agree", "Next >")
        pages.entry(None).enter(r"C:\Stuff")
        self.go_on(pages, "Install")
        setup.expect_box("Orvella Corvane Setup", r"C:\Stuff has a file LICENSE.txt of something else. Choose another "
                         "folder.", "error", ["OK"]).press("OK")
        pages.entry(None).enter(r"C:\My Tools")
        self.go_on(pages, "Install", "Run Orvella Corvane", "Finish")
        self.assertEqual(setup.wait_exit(), 0)
        self.expect_files(self.drive / "My Tools")
        self.assertEqual((self.drive / "Stuff/LICENSE.txt").read_bytes(), b"mine")

    def test_who_ends_the_running_program_can_go_on(self):
        self.install()
        program = self.keep_busy("nicx.exe")
        setup, pages = self.open_setup()
        # The program stays where it is, so no folder is asked for.
        self.go_on(pages, "I Agree", "Install")
        box = setup.expect_box("Orvella Corvane Setup", icon="warning", buttons=["Retry", "Cancel"])
        self.assertRegex(box.text, r"nicx\.exe cannot be changed: Orvella Corvane is running, or the file is ")
        program.communicate()
        box.press("Retry")
        self.go_on(pages, "Run Orvella Corvane", "Finish")
        self.assertEqual(setup.wait_exit(), 0)
        self.expect_files(self.folder)

    def test_the_uninstaller_says_what_stays(self):
        self.install()
        (self.folder / "presets.npf").write_bytes(b"\1\0\0\0mine")
        place = self.wine.path(self.folder)
        uninstaller = Program(self.wine, self.folder / "uninstall.exe", *f"_?={place}\\".split(" "))
        pages = uninstaller.expect_window("Orvella Corvane Uninstall ")
        self.go_on(pages, "Uninstall")
        pages.button("Close").expect(enabled=True)
        rows = [row[0] for row in pages.table(None).rows]
        self.assertIn(f"Your presets stay in {place}\\presets.npf.", rows)
        self.go_on(pages, "Close")
        self.assertEqual(uninstaller.wait_exit(), 0)
        # A program that runs in its own place cannot take itself away.
        self.assertEqual(self.names(self.folder), {"presets.npf", "uninstall.exe"})

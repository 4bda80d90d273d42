"""The export of the text report to a file."""

import pathlib
import re
import subprocess

from controls import SHOWING
from main_window import OWN, MainWindowTest
from waiting import NotNow
from world import ip

EXPORT = "Export Text Report As ..."
FOLDER = pathlib.Path("/run/reports")
OLD = b"what was there before\n"


# The list of the window fills the speed of what has none in; what the window writes is what it shows.
NO_SPEED, SPEED_SHOWN = b"\r\nSpeed....................\r\n", b"\r\nSpeed....................Disabled\r\n"


def without_date(report):
    """The bytes of a report with its date taken out."""
    changed, count = re.subn(rb"\r\nDate: \w+, \w+ \d\d, \d{4}   \d\d:\d\d:\d\d\r\n", b"\r\nDate: \r\n", report)
    if count != 1:
        raise AssertionError(f"{count} dates in {report!r}")
    return changed


class Report(MainWindowTest):
    def setUp(self):
        super().setUp()
        FOLDER.mkdir()
        self.veth("lan0", "10.1.0.2/24", "10.1.0.9/24", mac=OWN)
        ip("route", "add", "default", "via", "10.1.0.1", "metric", "5")
        self.bridge("br0")
        self.veth("off0", up=False)

    def export_to(self, path, press="Save"):
        """Opens the dialog with Ctrl+S, enters the path and presses the button."""
        self.desktop.press("ctrl+s")
        dialog = self.window.expect_box(EXPORT)
        dialog.leave(press, path)
        return dialog

    def expect_report(self, path):
        """Waits until the window has done it; the file is nicx-report's."""
        self.expect_fact("Done last", f"The report was written to '{path}'.")
        self.assertEqual(without_date(path.read_bytes()), self.printed_report())

    def printed_report(self):
        """What nicx-report prints."""
        return without_date(self.start("nicx-report").communicate()[0]).replace(NO_SPEED, SPEED_SHOWN)

    def expect_refusal(self, path, reason):
        """Waits for the box that says why nothing was written; there is nothing new in the folder."""
        box = self.expect_message()
        first, _, second, _, third = box.text.split("\n")
        self.assertEqual(first, f"Error! The text report could not be written to '{path}'.")
        self.assertEqual(second, f"Description: {reason}")
        self.assertTrue(third.endswith("A file that was there before is as it was."), third)
        self.assertEqual(box.buttons, ["OK"])
        box.press("OK")
        self.assertEqual(self.window.focus, ("table", "Network Connections"))

    def question(self):
        """The node of the file dialog's own question."""
        def look():
            found = [node for node in self.window.node.children if node.role == "alert" and node.has(SHOWING)]
            if not found:
                raise NotNow("nothing is asked")
            return found[0]
        return self.window.patiently(look, "a question")

    def answer(self, name):
        self.question()
        self.desktop.press({"Replace": "alt+r", "Cancel": "Escape"}[name])

    def test_it_is_what_nicx_report_prints(self):
        self.open_window()
        path = FOLDER / "report.txt"
        self.export_to(path).expect_gone()
        self.expect_report(path)
        self.assertEqual([entry.name for entry in FOLDER.iterdir()], ["report.txt"])

    def test_each_way_to_the_dialog_and_out_of_it(self):
        self.open_window()
        ways = (self.window.button("Export").click, self.window.menu("File", EXPORT).choose,
                lambda: self.desktop.press("ctrl+s"), lambda: self.desktop.press("alt+x"))
        for number, way in enumerate(ways):
            with self.subTest(way=number):
                way()
                dialog = self.window.expect_box(EXPORT)
                self.assertEqual(dialog.control("combo box").name, "Text File (*.txt)")
                if number % 2:
                    self.desktop.press("Escape")
                    dialog.expect_gone()
                else:
                    dialog.entry("Name:").enter(str(FOLDER / "report.txt"))
                    dialog.press("Cancel")
        self.assertEqual(list(FOLDER.iterdir()), [])
        self.assertEqual(self.facts["Done last"], "")

    def test_a_file_that_is_there_is_replaced_only_when_the_user_says_so(self):
        path = FOLDER / "report.txt"
        path.write_bytes(OLD * 10000)
        self.open_window()
        dialog = self.export_to(path)
        self.answer("Cancel")
        dialog.leave("Cancel")
        dialog.expect_gone()
        self.assertEqual(path.read_bytes(), OLD * 10000)
        dialog = self.export_to(path)
        self.answer("Replace")
        dialog.expect_gone()
        self.expect_report(path)

    def test_what_is_shown_is_what_is_written(self):
        """Also when the connections have changed meanwhile: nothing is asked anew."""
        self.open_window()
        self.expect_names(*self.connections.names)
        before = self.printed_report()
        path = FOLDER / "report.txt"
        self.desktop.press("ctrl+s")
        dialog = self.window.expect_box(EXPORT)
        self.bridge("br1")
        dialog.leave("Save", path)
        dialog.expect_gone()
        self.expect_fact("Number of connections", "4 connections")
        self.assertEqual(without_date(path.read_bytes()), before)

    def test_a_folder_that_cannot_be_written_to(self):
        path = FOLDER / "report.txt"
        path.write_bytes(OLD)
        self.mount_read_only(FOLDER)
        self.open_window()
        for name in ("report.txt", "new.txt"):
            self.export_to(FOLDER / name)
            if name == "report.txt":
                self.answer("Replace")
            self.expect_refusal(FOLDER / name, "Read-only file system")
            self.assertEqual([(entry.name, entry.read_bytes()) for entry in FOLDER.iterdir()], [("report.txt", OLD)])

    def test_a_full_disk(self):
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=16k", "tmpfs", str(FOLDER)], check=True)
        path = FOLDER / "report.txt"
        path.write_bytes(OLD)
        with open(FOLDER / "filler", "wb", buffering=0) as filler:
            try:
                while filler.write(b"x" * 4096):
                    pass
            except OSError:
                # It is full.
                pass
        self.open_window()
        self.export_to(path)
        self.answer("Replace")
        self.expect_refusal(path, "No space left on device")
        self.assertEqual(path.read_bytes(), OLD)
        self.assertCountEqual([entry.name for entry in FOLDER.iterdir()], ["report.txt", "filler"])
        (FOLDER / "filler").unlink()
        self.export_to(path)
        self.answer("Replace")
        self.expect_report(path)

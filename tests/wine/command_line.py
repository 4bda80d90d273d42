"""The command line of nicx.exe, as several files of tests run it."""

from machine import WineTest

OWN = "02:00:00:00:10:01"
NEW = "00:0c:29:4f:8e:35"
VERSION = " - Orvella Corvane v4"
TITLE = "Orvella Corvane"
OFFICE = ("The Office", 2 | 8 | 16 | 32, "00-0C-29-4F-8E-35", ["10.1.0.5", "10.2.0.5"],
          ["255.255.255.0", "255.255.0.0"], ["10.1.0.1"], ["15"], ["10.1.0.53"])


def done(name):
    """The last box of a run."""
    return ("Done" + VERSION,
            f"Done! Command line parameter(s) were applied to '{name}' network connection successfully.", "information")


class CommandLine(WineTest):
    """A machine with one connection."""

    def setUp(self):
        super().setUp()
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.describe_links()

    def expect_boxes(self, program, *boxes):
        """Waits for boxes with nothing but an OK button, given by title, text and icon, and presses it in each."""
        for title, text, icon in boxes:
            program.expect_box(title, text, icon, ["OK"]).press("OK")

    def run_with(self, arguments, *boxes, code=0, **options):
        """Runs the program; exactly these boxes are shown, and it ends with this code."""
        program = self.nicx(*arguments, **options)
        self.expect_boxes(program, *boxes)
        self.assertEqual(program.wait_exit(), code)

    def run_done(self, *arguments, **options):
        self.run_with(("-n", "eth0", *arguments), done("eth0"), **options)

    def run_silent(self, *arguments, code=0, **options):
        """No box is shown: the program would wait for it."""
        program = self.nicx("-n", "eth0", "-s", *arguments, **options)
        self.assertEqual(program.wait_exit(), code)

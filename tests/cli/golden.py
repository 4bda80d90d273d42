"""Golden texts of whole program runs: what was typed, exit code, standard output and standard error apart.

scripts/golden writes the golden files anew instead of comparing (CORVANE_REGENERATE=1); what changed shows in the difference
of the checkout, to be read before it is kept. A case that ctest runs compares, and fails when it is told to write.
"""

import os
import pathlib
import re

GOLDEN = pathlib.Path(__file__).parent / "golden"


class Transcript:
    """The runs of one test case, as they are compared."""

    def __init__(self, programs):
        self.programs = str(programs)
        self.text = ""

    def scrub(self, text):
        """Takes out what differs from run to run: the program folder and configuration ids."""
        text = text.replace(self.programs, "PROGRAMS")
        return re.sub(r"\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}", "{ID}", text)

    def add(self, typed, result):
        parts = [f"$ {typed}\n[exit code] {result.code}\n"]
        for name, text in (("standard output", result.out), ("standard error", result.err)):
            if text:
                end = "" if text.endswith("\n") else "\n[no line end]\n"
                parts.append(f"[{name}]\n{self.scrub(text)}{end}")
        self.text += "".join(parts)

    def check(self, case, name):
        """Compares with golden/NAME.txt."""
        path = GOLDEN / f"{name}.txt"
        if os.environ.get("CORVANE_REGENERATE"):
            case.assertNotIn("CORVANE_COMPARE_ONLY", os.environ, "CORVANE_REGENERATE is set: nothing would be compared")
            path.write_bytes(self.text.encode())
        case.assertEqual(self.text, path.read_bytes().decode() if path.exists() else f"there is no {path}")

"""The test programs that were built for Windows: the rules above the seams, and the contracts of the seams on Windows'
own registry, IP Helper and shell."""

import os
import subprocess
import tempfile

from machine import WineTest
from wine import HERE, TOOLS

LINKS = HERE / "contract/links"


class WindowsPrograms(WineTest):
    def run_cases(self, name):
        """Runs a test program on the links that it expects. It must have run cases, and none may have failed or
        been left out."""
        # Not to a pipe: what of Wine is started meanwhile would hold its other end.
        with tempfile.TemporaryFile() as output:
            done = subprocess.run(
                [str(LINKS), "wine", str(TOOLS / name), "--gtest_brief=1"], check=False, stdin=subprocess.DEVNULL,
                stdout=output, stderr=output, env={**os.environ, **self.wine.environment}, cwd=self.wine.drive,
                timeout=280)
            output.seek(0)
            out = output.read().decode(errors="replace")
        self.assertEqual(done.returncode, 0, out)
        self.assertRegex(out, r"\[  PASSED  \] [1-9]\d+ tests", out)
        self.assertNotIn("SKIPPED", out)

    def test_contracts(self):
        self.describe_shell(plug_and_play=False)
        self.run_cases("contract_tests.exe")

    def test_units(self):
        self.run_cases("unit_tests.exe")

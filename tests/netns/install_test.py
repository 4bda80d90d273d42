"""An installation below a prefix of its own: its programs find their data, and the user's presets outlive another one."""

import os
import pathlib
import subprocess

from world import BIN, World

PREFIX = pathlib.Path("/run/prefix")
DATA = PREFIX / "share/nicx"


class Installation(World):
    def setUp(self):
        super().setUp()
        self.install()
        self.programs = PREFIX / "bin"

    def install(self, prefix=PREFIX, **environment):
        subprocess.run(["cmake", "--install", os.environ["CORVANE_BUILD"], "--prefix", str(prefix)], check=True,
                       stdout=subprocess.DEVNULL, env={**os.environ, **environment})

    def test_everything_is_where_the_system_expects_it(self):
        files = {str(path.relative_to(PREFIX)) for path in PREFIX.rglob("*") if path.is_file()}
        self.assertEqual(files, {
            "bin/nicx", "bin/nicx-dhcp", "bin/nicx-registry", "bin/nicx-report", "bin/nicx-window",
            "share/man/man1/nicx.1", "share/man/man1/nicx-report.1", "share/man/man1/nicx-window.1",
            "share/man/man8/nicx-dhcp.8", "share/man/man8/nicx-registry.8",
            "share/nicx/VendorNumbers.log", "share/nicx/help.html", "share/nicx/presets.npf"})
        self.assertEqual((DATA / "help.html").read_bytes(), (BIN / "help.html").read_bytes())

    def test_a_package_is_put_together_elsewhere(self):
        self.install("/usr", DESTDIR="/run/package")
        self.assertEqual((pathlib.Path("/run/package") / "usr/share/nicx/presets.npf").read_bytes(),
                         (DATA / "presets.npf").read_bytes())
        self.assertTrue(os.access("/run/package/usr/bin/nicx", os.X_OK))

    def test_the_programs_find_their_data(self):
        self.veth("eth0", "10.1.0.2/24", mac="00:0c:29:4f:8e:35")
        report = self.run_program("nicx-report")
        self.assertEqual((report.code, report.err), (0, ""))
        self.assertIn("VMware", report.out)
        (DATA / "VendorNumbers.log").unlink()
        self.assertEqual(self.run_program("nicx-report").code, 4)

    def test_help_needs_no_data(self):
        result = self.run_program("nicx", "-help")
        self.assertEqual(result.code, 0)
        self.assertIn("-help", result.out)

    def test_the_window_is_found_beside_the_program(self):
        window = PREFIX / "bin/nicx-window"
        window.write_text("#!/bin/sh\necho the window\n", encoding="ascii")
        self.assertEqual(self.run_program("nicx").out, "the window\n")
        window.unlink()
        self.assertIn(f"there is no '{window}'", self.run_program("nicx").err)

    def test_saved_presets_outlive_another_installation(self):
        presets = DATA / "presets.npf"
        saved = presets.read_bytes() + b"more"
        presets.write_bytes(saved)
        (DATA / "help.html").unlink()
        self.install()
        self.assertEqual(presets.read_bytes(), saved)
        self.assertTrue((DATA / "help.html").exists())

    def test_presets_are_read_from_the_data_folder(self):
        self.veth("eth0", "10.1.0.2/24", mac="00:0c:29:4f:8e:35")
        (DATA / "presets.npf").unlink()
        self.assertEqual(self.run_program("nicx", "-n", "eth0", "-p", "office").code, 4)

"""nicx-report: the report as text and as JSON, in a file and on standard output, and what it refuses."""

import json
import os
import pathlib
import re
import subprocess

from golden import Transcript
from world import FAR, NOBODY, DhcpServer, World, ip, vendor_bytes, wait_for

DATE = r"\d{4}-\d{2}-\d{2}[T ]\d{2}:\d{2}:\d{2}"
WEEKDAYS = "Monday|Tuesday|Wednesday|Thursday|Friday|Saturday|Sunday"
MONTHS = "January|February|March|April|May|June|July|August|September|October|November|December"
LONG_DATE = rf"(?:{WEEKDAYS}), (?:{MONTHS}) \d{{2}}, \d{{4}}   \d{{2}}:\d{{2}}:\d{{2}}"


class Report(World):
    def setUp(self):
        super().setUp()
        (self.copy_programs() / "VendorNumbers.log").write_bytes(
            vendor_bytes(("000C29", "VMware, Inc."), ("00A0C9", "Caf\u00e9 Zürich GmbH")))
        self.transcript = Transcript(self.programs)

    def make_links(self):
        """One link of each kind: live with much in it, changed, changed but not in force, disabled, a bridge."""
        self.veth("eth0", "10.1.0.2/24", "10.1.0.3/24", "172.16.0.2/20", mac="00:0c:29:4f:8e:35")
        ip("route", "add", "default", "via", "10.1.0.1", "metric", "10")
        ip("route", "add", "default", "via", "172.16.0.1", "metric", "20")
        self.veth("lan1", mac="02:00:00:00:10:02")
        self.nicx("-n", "lan1", "-m", "00:a0:c9:00:00:01", "-i", "10.2.0.2:255.255.255.0", "-d", "10.2.0.53,10.2.0.54",
                  "-di", "-re")
        self.veth("lan2", mac="02:00:00:00:10:03")
        self.nicx("-n", "lan2", "-m", "00:a0:c9:00:00:02", "-s")
        self.veth("lan3", mac="02:00:00:00:10:04")
        self.nicx("-n", "lan3", "-i", "10.3.0.2", "-g", "10.3.0.1", "-di", "-s")
        self.bridge("br0", mac="00:0c:29:00:00:05")
        self.tap("tap0", mac="02:00:00:00:10:06", up=False)

    def record(self, *arguments, **options):
        result = self.run_program("nicx-report", *arguments, **options)
        self.assertNotRegex(result.out.replace("\r\n", "\n"), "\r")
        shown = result._replace(out=re.sub(DATE, "DATE", re.sub(LONG_DATE, "LONG DATE", result.out)))
        self.transcript.add(f"nicx-report {' '.join(arguments)}", shown._replace(out=shown.out.replace("\r\n", "\n")))
        return result

    def test_text(self):
        self.make_links()
        shown = self.record().out
        self.assertEqual(shown.count("\n"), shown.count("\r\n"), "every line ends in CR LF")
        self.assertTrue(shown.endswith("\r\n\r\nEOF\r\n"))
        self.transcript.check(self, "report_text")

    def test_json(self):
        self.make_links()
        shown = self.record("--json").out
        self.assertNotIn("\r", shown)
        report = json.loads(shown)
        self.assertEqual([connection["number"] for connection in report["connections"]], [1, 2, 3, 4, 5, 6])
        self.transcript.check(self, "report_json")

    def test_without_links(self):
        self.record()
        self.record("--json")
        self.transcript.check(self, "report_without_links")

    def test_a_lease(self):
        self.veth("eth0", mac="00:0c:29:4f:8e:35")
        ip("-n", FAR, "address", "add", "10.77.0.1/24", "dev", "eth0")
        server = DhcpServer("eth0")
        self.addCleanup(server.stop)
        self.nicx("-n", "eth0", "-h", "-di", "-re")
        address = wait_for(lambda: self.addresses("eth0"), "the link has a lease")[0].split("/")[0]
        self.transcript.scrub = lambda text, scrub=self.transcript.scrub: scrub(text).replace(address, "ADDRESS")
        self.record()
        self.record("--json")
        self.transcript.check(self, "report_lease")

    def test_a_file_is_in_code_page_1252_and_standard_output_in_utf_8(self):
        self.veth("größe0", mac="00:a0:c9:00:00:01")
        file = pathlib.Path("/run/report.txt")
        file.write_text("old")
        result = self.run_program("nicx-report", str(file))
        self.assertEqual(result, (0, "", ""))
        self.assertIn(b"Connection Name..........gr\xf6\xdfe0\r\n", file.read_bytes())
        self.assertIn(b"Manufacturer.............Caf\xe9 Z\xfcrich GmbH   Address: \r\n", file.read_bytes())
        for arguments in ([], ["-"]):
            shown = self.run_program("nicx-report", *arguments).out
            self.assertIn("Connection Name..........größe0\r\n", shown)
            self.assertEqual(re.sub(LONG_DATE, "", shown), re.sub(LONG_DATE, "", file.read_bytes().decode("cp1252")))

    def test_json_in_a_file_is_in_utf_8(self):
        self.veth("größe0", mac="00:a0:c9:00:00:01")
        file = pathlib.Path("/run/report.json")
        self.assertEqual(self.run_program("nicx-report", "--json", str(file)), (0, "", ""))
        [connection] = json.loads(file.read_text(encoding="utf-8"))["connections"]
        self.assertEqual(connection["name"], "größe0")
        self.assertEqual(connection["manufacturer"], "Caf\u00e9 Zürich GmbH   Address: ")

    def test_the_date_is_the_local_one(self):
        shown = self.run_program("nicx-report", environment={"TZ": "UTC-14"}).out
        ahead = re.search(f"Date: ({LONG_DATE})", shown).group(1)
        behind = re.search(f"Date: ({LONG_DATE})",
                           self.run_program("nicx-report", environment={"TZ": "UTC+12"}).out).group(1)
        self.assertNotEqual(ahead.split("   ")[0], behind.split("   ")[0], "26 hours apart")

    def test_a_file_that_cannot_be_written_stays_as_it_was(self):
        folder = pathlib.Path("/run/reports")
        folder.mkdir()
        file = folder / "report.txt"
        file.write_text("old")
        self.mount_read_only(folder)
        self.record(str(file))
        self.record("--json", str(file))
        self.assertEqual(file.read_text(), "old")
        self.assertEqual([entry.name for entry in folder.iterdir()], ["report.txt"])
        self.record(str(folder))
        self.record("/run/no/such/folder/report.txt")
        self.transcript.check(self, "report_cannot_be_written")

    def test_a_file_of_another_user_stays_as_it_was(self):
        folder = pathlib.Path("/run/reports")
        folder.mkdir()
        file = folder / "report.txt"
        file.write_text("old")
        result = self.run_program("nicx-report", str(file), user=NOBODY)
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertIn("Permission denied", result.err)
        self.assertEqual(file.read_text(), "old")

    def test_a_full_disk_leaves_the_old_file(self):
        folder = pathlib.Path("/run/small")
        folder.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=4k", "tmpfs", str(folder)], check=True)
        file = folder / "report.txt"
        file.write_text("old")
        result = self.run_program("nicx-report", str(file))
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertIn("No space left on device", result.err)
        self.assertEqual(file.read_text(), "old")
        self.assertEqual([entry.name for entry in folder.iterdir()], ["report.txt"])

    def test_standard_output_that_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            result = self.run_program("nicx-report", stdout=full)
        self.assertEqual(result.code, 1)
        self.assertEqual(result.err, "nicx-report: standard output could not be written\n")

    def test_a_reader_that_went_away(self):
        reading, writing = os.pipe()
        os.close(reading)
        result = self.run_program("nicx-report", stdout=writing)
        os.close(writing)
        self.assertNotEqual(result.code, 0)

    def test_arguments(self):
        self.record("--help")
        self.record("--version")
        self.record("--text")
        self.record("-j")
        self.record("-ü")
        self.record("--json=yes")
        self.record("--json", "--help", "--text")
        self.record("one", "--text")
        self.record("--", "one", "--json")
        self.record("one", "two")
        self.record("")
        self.transcript.check(self, "report_arguments")
        self.assertEqual(sorted(os.listdir("/")), sorted(set(os.listdir("/")) - {"one", "two", "yes", "--json", "--text", "-j"}))

    def test_a_file_whose_name_begins_with_a_hyphen(self):
        folder = pathlib.Path("/run/reports")
        folder.mkdir()
        process = subprocess.run([self.programs / "nicx-report", "--", "-report"], cwd=folder, capture_output=True,
                                 check=False)
        self.assertEqual((process.returncode, process.stderr), (0, b""))
        self.assertTrue((folder / "-report").read_bytes().startswith(b"Orvella Corvane v4.5 By Ollory\r\n"))

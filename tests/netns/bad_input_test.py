"""Damaged and missing files beside the programs, and command lines that are refused. Nothing in the store changes."""

import struct

from world import NOBODY, REG_MULTI_SZ, REG_SZ, World, multi, preset_bytes, vendor_bytes

OWN = "02:00:00:00:10:01"
ERROR_START = """ERROR
ERROR! This may be caused due to invalid command line parameters. Please check command line paramaters if passed.

Description: """
GOOD_VENDORS = vendor_bytes(("000C29", "First"), ("00A0C9", "Second"))
GOOD_PRESETS = preset_bytes(("office", 8, "", ["10.1.0.5"], ["255.0.0.0"], None, None, None))

# What is written over the vendor list, and the error number that is shown for it.
BAD_VENDORS = {
    "empty": (b"", 62),
    "shorter than its count": (b"\x01\0", 62),
    "count of zero": (struct.pack("<i", 0), 9),
    "negative count": (struct.pack("<i", -1), 9),
    "huge count": (struct.pack("<i", 0x7FFFFFFF) + GOOD_VENDORS[4:], 62),
    "cut within a record": (GOOD_VENDORS[:-3], 62),
    "a name longer than the file": (struct.pack("<i", 1) + b"000C29\xff\xff", 62),
}


class BadFiles(World):
    def setUp(self):
        super().setUp()
        self.copy_programs()
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.report()

    def assert_error_box(self, number, *arguments):
        """The box of a run-time error, in silent mode too, and nothing else; the store stays as it was."""
        before = self.stored()
        for more in ([], ["-s"]):
            result = self.nicx("-n", "eth0", *arguments, *more, code=4)
            self.assertEqual(result.out, "")
            self.assertTrue(result.err.startswith(ERROR_START), result.err)
            self.assertTrue(result.err.endswith(f" ({number})\n\nClick OK to Quit\n\n"), result.err)
            self.assertEqual(self.stored(), before)
        return result

    def test_damaged_vendor_lists(self):
        for name, (contents, number) in BAD_VENDORS.items():
            with self.subTest(name):
                (self.programs / "VendorNumbers.log").write_bytes(contents)
                box = self.assert_error_box(number, "-r", "-i", "10.9.9.9", "-di")
                self.assertIn("VendorNumbers.log", box.err)
                self.assertTrue(self.is_up("eth0"))
                shown = self.run_program("nicx-report")
                self.assertEqual((shown.code, shown.out), (4, ""))
                self.assertIn("VendorNumbers.log", shown.err)

    def test_a_missing_vendor_list(self):
        (self.programs / "VendorNumbers.log").unlink()
        box = self.assert_error_box(53, "-r")
        self.assertIn(str(self.programs / "VendorNumbers.log"), box.err)
        self.assertEqual(self.run_program("nicx-report").code, 4)
        # Nothing else needs it.
        self.nicx("-n", "eth0", "-m", "00:0c:29:4f:8e:35")
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000c294f8e35\0"))

    def test_a_vendor_list_that_is_a_folder(self):
        (self.programs / "VendorNumbers.log").unlink()
        (self.programs / "VendorNumbers.log").mkdir()
        self.assert_error_box(75, "-r")

    def test_a_vendor_list_that_may_not_be_read(self):
        (self.programs / "VendorNumbers.log").chmod(0o600)
        result = self.run_program("nicx-report", user=NOBODY)
        self.assertEqual((result.code, result.out), (4, ""))
        self.assertIn("VendorNumbers.log", result.err)

    def test_bytes_behind_the_last_vendor_belong_to_nothing(self):
        (self.programs / "VendorNumbers.log").write_bytes(GOOD_VENDORS + b"more")
        self.nicx("-n", "eth0", "-r")
        self.assertIn(self.driver("eth0")["NetworkAddress"][1][:6], (b"000C29", b"00A0C9"))

    def test_damaged_presets(self):
        two_dimensions = preset_bytes(("office", 8, "", None, None, None, None, None)).replace(
            b"office\x08\0\0\0\0", b"office\x08\0\0\x02\0")
        for name, contents, number in (("negative count", struct.pack("<i", -1), 9),
                                       ("list of two dimensions", two_dimensions, 321)):
            with self.subTest(name):
                (self.programs / "presets.npf").write_bytes(contents)
                box = self.assert_error_box(number, "-p", "office")
                self.assertIn("presets.npf", box.err)

    def test_presets_that_end_too_early_are_unused_slots(self):
        for name, contents in (("empty", b""), ("count of zero", struct.pack("<i", 0)),
                               ("huge count", struct.pack("<i", 0x7FFFFFFF)),
                               ("cut within a record", GOOD_PRESETS[:-12]),
                               ("cut within the count", GOOD_PRESETS[:3])):
            with self.subTest(name):
                (self.programs / "presets.npf").write_bytes(contents)
                before = self.stored()
                # No preset matches: the options stand, and there are none.
                self.nicx("-n", "eth0", "-p", "office")
                self.assertEqual(self.stored(), before)

    def test_good_presets_before_damaged_ones_are_used(self):
        (self.programs / "presets.npf").write_bytes(struct.pack("<i", 5) + GOOD_PRESETS[4:] + b"\xff\xff")
        self.nicx("-n", "eth0", "-p", "office")
        self.assertEqual(self.tcpip("eth0")["IPAddress"], (REG_MULTI_SZ, multi("10.1.0.5")))

    def test_missing_presets(self):
        (self.programs / "presets.npf").unlink()
        box = self.assert_error_box(53, "-p", "office")
        self.assertIn(str(self.programs / "presets.npf"), box.err)

    def test_the_programs_alone_in_a_folder(self):
        for name in ("VendorNumbers.log", "presets.npf"):
            (self.programs / name).unlink()
        self.assert_error_box(53, "-p", "office")
        self.assert_error_box(53, "-r")
        self.nicx("-n", "eth0", "-i", "10.9.9.9", "-di")
        self.assertFalse(self.is_up("eth0"))

    def test_a_missing_dhcp_program_is_told(self):
        (self.programs / "nicx-dhcp").unlink()
        result = self.nicx("-n", "eth0", "-h", "-di", "-re", code=1)
        self.assertIn("nicx-dhcp is not installed beside this program", result.err)
        self.assertTrue(self.is_up("eth0"))


class BadCommandLines(World):
    """Refused as a whole: exit code 2, and nothing is changed."""

    def setUp(self):
        super().setUp()
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.report()
        self.before = self.stored()

    def assert_untouched(self):
        self.assertEqual(self.stored(), self.before)
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])

    def assert_refused(self, name, *arguments):
        for more in ([], ["-s"]):
            result = self.nicx(*arguments, *more, code=2)
            self.assertEqual(result.out, "")
            self.assertEqual(result.err, "Invalid Parameter - Orvella Corvane v4\n"
                                         f"ERROR! Invalid paramater : {name}\n\n")
        self.assert_untouched()

    def test_an_unknown_option(self):
        self.assert_refused("x", "-n", "eth0", "-m", "00:0c:29:4f:8e:35", "-di", "-x")

    def test_an_option_as_typed(self):
        self.assert_refused("Restart", "-n", "eth0", "-di", "-Restart")

    def test_help_in_capitals_or_among_others(self):
        self.assert_refused("HELP", "-HELP")
        self.assert_refused("help", "-n", "eth0", "-di", "-help")

    def test_an_address_with_hyphens(self):
        self.assert_refused("0c", "-n", "eth0", "-m", "00-0c-29-4f-8e-35", "-di")

    def test_a_name_with_a_hyphen_or_slash(self):
        self.assert_refused("1", "-n", "eth0-1", "-di")
        self.assert_refused("home", "-n", "eth0/home", "-di")

    def test_two_hyphens(self):
        self.assert_refused("", "--n", "eth0", "-di")

    def test_letters_beyond_ascii(self):
        self.assert_refused("gr\u00f6\u00dfe", "-n", "eth0", "-gr\u00f6\u00dfe", "-di")

    def test_bytes_that_are_no_text(self):
        result = self.finish(self.start("nicx", "-n", b"eth0\xff\xfe", "-di"))
        self.assertEqual(result.code, 3)
        self.assertIn("was not found", result.err)
        self.assert_untouched()

    def test_without_a_connection_nothing_happens(self):
        for arguments in (["-s"], ["-m", "00:0c:29:4f:8e:35"], ["-n", "-di"], ["-re"], ["eth0"], [" "]):
            with self.subTest(arguments):
                self.assertEqual(self.nicx(*arguments, code=2).out, "")
        self.assert_untouched()

    def test_a_very_long_command_line(self):
        addresses = ",".join(f"10.{i}.{j}.5" for i in range(40) for j in range(250))
        self.nicx("-n", "eth0", "-i", addresses)
        self.assertEqual(len(self.tcpip("eth0")["IPAddress"][1].rstrip(b"\0").split(b"\0")), 10000)
        self.nicx("-n", "x" * 100000, code=3)

    def test_options_in_capitals_and_with_slashes(self):
        self.nicx("/N", "eth0", "/M", "00:0c:29:4f:8e:35")
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000c294f8e35\0"))

    def test_a_later_option_takes_the_place_of_an_earlier_one(self):
        self.nicx("-n", "wlan", "-i", "10.9.9.9", "-n", "eth0", "-i", "10.1.0.5")
        self.assertEqual(self.tcpip("eth0")["IPAddress"], (REG_MULTI_SZ, multi("10.1.0.5")))

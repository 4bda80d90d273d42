"""Tests of data/make_vendor_list.py. Run with the script's path and the vendor list that the build made."""

import csv
import os
import struct
import subprocess
import sys
import tempfile
import unittest

SCRIPT = ""
BUILT_LIST = ""
OUI_CSV = ""
HEADING = "Registry,Assignment,Organization Name,Organization Address\r\n"


def parse(data):
    """The records of a vendor file; fails when it is not exactly count and records."""
    (count,) = struct.unpack_from("<i", data)
    offset = 4
    records = []
    for _ in range(count):
        record = [data[offset:offset + 6].decode("ascii")]
        offset += 6
        for _ in range(2):
            (length,) = struct.unpack_from("<H", data, offset)
            offset += 2
            assert offset + length <= len(data)
            record.append(data[offset:offset + length])
            offset += length
        records.append(tuple(record))
    assert offset == len(data), "bytes after the last record"
    return records


class Converter(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.input = os.path.join(self.folder.name, "oui.csv")
        self.output = os.path.join(self.folder.name, "VendorNumbers.log")

    def run_script(self, content, *options):
        with open(self.input, "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode("utf-8"))
        return subprocess.run([sys.executable, SCRIPT, *options, self.input, self.output], capture_output=True,
                              text=True, check=False)

    def records(self, rows):
        result = self.run_script(HEADING + "".join(row + "\r\n" for row in rows))
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        with open(self.output, "rb") as file:
            return parse(file.read())

    def texts(self, text):
        """What becomes of `text` as a name and as an address."""
        record = self.records([f'MA-L,00000C,"{text}","{text}"'])[0]
        self.assertEqual(record[1], record[2])
        return record[1]

    def assert_fails(self, content, *words, options=()):
        result = self.run_script(content, *options)
        self.assertEqual(result.returncode, 1)
        for word in words:
            self.assertIn(word, result.stderr)
        self.assertNotIn("Traceback", result.stderr)
        self.assertEqual(os.listdir(self.folder.name), ["oui.csv"])

    def test_bytes_are_exactly_those_of_the_format(self):
        self.records(['MA-L,00000C,"Cisco Systems, Inc",170 W. TASMAN DRIVE', "MA-L,000000,,"])
        with open(self.output, "rb") as file:
            self.assertEqual(file.read(), b"\x02\x00\x00\x00" b"000000\x00\x00\x00\x00"
                             b"00000C\x12\x00Cisco Systems, Inc\x13\x00170 W. TASMAN DRIVE")

    def test_records_are_sorted_by_prefix_and_equal_ones_keep_their_order(self):
        rows = ["MA-L,080030,second in order,", "MA-L,FEFFFF,last,", "MA-L,080030,a later one,", "MA-L,000001,first,"]
        self.assertEqual([record[1] for record in self.records(rows)],
                         [b"first", b"second in order", b"a later one", b"last"])

    def test_prefixes_with_the_group_bit_are_left_out(self):
        self.assertEqual([record[0] for record in self.records(["MA-L,1100AA,group,", "MA-L,02608C,local,"])], ["02608C"])

    def test_code_page_holds_western_letters_and_typographic_signs(self):
        self.assertEqual(self.texts("Müller Ø ß € – — “a” ‘b’ … Žš"),
                         "Müller Ø ß € – — “a” ‘b’ … Žš".encode("cp1252"))

    def test_letters_with_a_plain_form_get_it(self):
        self.assertEqual(self.texts("Łódź İstanbul ışğŞ Đđ Dvořák őű ě ā"),
                         "Lódz Istanbul isgS Dd Dvorák ou e a".encode("cp1252"))

    def test_composed_and_decomposed_letters_are_the_same(self):
        self.assertEqual(self.texts("e\u0301"), b"\xe9")

    def test_wide_forms_dashes_and_quotes_get_their_plain_form(self):
        self.assertEqual(self.texts("Ａ１，（ｂ） a‐b‑c−d 5′"), b"A1,(b) a-b-c-d 5'")

    def test_other_scripts_become_question_marks(self):
        self.assertEqual(self.texts("x 深圳 Н y"), b"x ?? ? y")

    def test_invisible_characters_vanish(self):
        self.assertEqual(self.texts("a\u200bb\u200ec\ufeffd"), b"abcd")

    def test_runs_of_blanks_of_any_kind_become_one(self):
        self.assertEqual(self.texts("  a \t b\u00a0\u2002c\n d\u3000e\x01f  "), b"a b c d e f")

    def test_heading_with_byte_order_mark_and_unix_line_ends_is_accepted(self):
        result = self.run_script("\ufeff" + HEADING.replace("\r", "") + "MA-L,00000C,a,b\n")
        self.assertEqual(result.returncode, 0, result.stderr)

    def test_summary_names_file_records_bytes_and_losses(self):
        result = self.run_script(HEADING + "MA-L,00000C,深圳,b\r\n")
        self.assertEqual(result.stdout, f"{self.output}: 1 vendors, 17 bytes, 2 characters without a plain form\n")

    def test_errors_name_the_line(self):
        good = "MA-L,00000C,a,b\r\n"
        self.assert_fails(HEADING + good + "MA-L,00000D,a\r\n", "line 3", "3 columns")
        self.assert_fails(HEADING + good + "MA-L,00000D,a,b,c\r\n", "line 3", "5 columns")
        self.assert_fails(HEADING + "MA-L,00000,a,b\r\n", "line 2", "'00000'")
        self.assert_fails(HEADING + "MA-L,00000c,a,b\r\n", "line 2", "'00000c'")
        self.assert_fails(HEADING + "MA-L,0000ÄÖ,a,b\r\n", "line 2")
        self.assert_fails(HEADING + good + good + "MA-S,00000D,a,b\r\n", "line 4", "MA-S")
        self.assert_fails(HEADING + good + "\r\n", "line 3", "0 columns")
        self.assert_fails(HEADING + 'MA-L,00000C,"a\r\nb",c\r\nMA-L,1,a,b\r\n', "line 4")
        self.assert_fails(HEADING + good + 'MA-L,00000D,"a,b\r\n', "line 3")
        self.assert_fails((HEADING + good).encode() + b"MA-L,00000D,\xff,b\r\n", "line 3", "UTF-8")
        self.assert_fails(HEADING + f"MA-L,00000C,{'n' * 65536},b\r\n", "line 2", "65535")
        self.assert_fails("a,b\r\n" + good, "line 1", "heading")
        self.assert_fails("", "line 1", "heading")

    def test_longest_text_fits(self):
        self.assertEqual(len(self.texts("n" * 65535)), 65535)

    def test_too_few_records_are_an_error(self):
        self.assert_fails(HEADING + "MA-L,00000C,a,b\r\n", "1 records", options=("--minimum", "2"))
        self.assert_fails(HEADING, "0 records")

    def test_missing_input_is_an_error(self):
        result = subprocess.run([sys.executable, SCRIPT, self.input, self.output], capture_output=True, text=True,
                                check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn(self.input, result.stderr)
        self.assertNotIn("Traceback", result.stderr)

    def test_failure_leaves_the_old_list(self):
        self.records(["MA-L,00000C,a,b"])
        with open(self.output, "rb") as file:
            old = file.read()
        self.assertEqual(self.run_script(HEADING + "bad\r\n").returncode, 1)
        with open(self.output, "rb") as file:
            self.assertEqual(file.read(), old)


class BuiltList(unittest.TestCase):
    def setUp(self):
        with open(BUILT_LIST, "rb") as file:
            self.records = parse(file.read())

    @staticmethod
    def registry():
        """The rows that name an adapter's prefix: those with the group bit in the first octet do not."""
        with open(OUI_CSV, encoding="utf-8", newline="") as file:
            return [row for row in csv.DictReader(file) if bytes.fromhex(row["Assignment"])[0] % 2 == 0]

    def test_holds_the_whole_registry(self):
        rows = self.registry()
        self.assertGreaterEqual(len(self.records), 32000)
        self.assertEqual([record[0] for record in self.records], sorted(row["Assignment"] for row in rows))

    def test_holds_no_prefix_of_a_group(self):
        self.assertEqual([prefix for prefix, *_ in self.records if bytes.fromhex(prefix)[0] % 2], [])

    def test_names_of_ascii_letters_are_those_of_the_registry(self):
        rows = sorted(self.registry(), key=lambda row: row["Assignment"])
        compared = 0
        for row, (prefix, name, address) in zip(rows, self.records):
            for text, encoded in ((row["Organization Name"], name), (row["Organization Address"], address)):
                if text.isascii():
                    compared += 1
                    self.assertEqual(" ".join(text.split()).encode("ascii"), encoded, prefix)
        self.assertGreater(compared, 60000)

    def test_texts_are_without_doubled_or_outer_blanks(self):
        for prefix, name, address in self.records:
            for text in (name, address):
                self.assertEqual(text.strip(), text, prefix)
                self.assertNotIn(b"  ", text, prefix)


if __name__ == "__main__":
    SCRIPT, BUILT_LIST, OUI_CSV = sys.argv[1:4]
    unittest.main(argv=sys.argv[:1])

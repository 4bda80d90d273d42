#!/usr/bin/env python3
"""Makes VendorNumbers.log, the vendor list, from the IEEE's list of address blocks (oui.csv).

Input: the CSV file of the MA-L registry as the IEEE publishes it and Debian's ieee-data package ships it, in UTF-8,
with the columns Registry, Assignment, Organization Name, Organization Address.

Output, all numbers little-endian: the number of records (signed, 32 bits), then per record six characters of prefix,
the length of the name (16 bits), the name, the length of the address (16 bits), the address. Text is in code page
1252. Records are in ascending order of prefix; equal prefixes keep their order of the input.
"""

import argparse
import csv
import io
import os
import struct
import sys
import unicodedata

COLUMNS = ["Registry", "Assignment", "Organization Name", "Organization Address"]
HEX_DIGITS = frozenset("0123456789ABCDEF")
LONGEST_TEXT = 0xFFFF

# Letters and signs outside code page 1252 that have a plain form which decomposition does not find.
PLAIN_FORMS = {
    "\u0110": "D", "\u0111": "d", "\u0126": "H", "\u0127": "h", "\u0131": "i", "\u0138": "k", "\u0141": "L",
    "\u0142": "l", "\u014A": "N", "\u014B": "n", "\u0166": "T", "\u0167": "t", "\u0180": "b", "\u0197": "I",
    "\u0268": "i", "\u018F": "E", "\u0259": "e", "\u01E4": "G", "\u01E5": "g", "\u0237": "j", "\u1E9E": "SS",
    "\u2010": "-", "\u2011": "-", "\u2012": "-", "\u2015": "-", "\u2212": "-", "\u201B": "'", "\u2032": "'",
    "\u02BC": "'", "\u02BB": "'", "\u2033": '"', "\u201F": '"', "\u2044": "/", "\u2215": "/", "\u2043": "-",
    "\u3001": ",", "\u3002": ".", "\u300C": '"', "\u300D": '"', "\u3010": "[", "\u3011": "]", "\u30FB": "\u00B7",
}


class InputError(Exception):
    """What is wrong with the input, with the number of the line."""


def plain_form(character):
    """The text that stands for a character outside code page 1252; "?" when there is none."""
    if unicodedata.category(character) == "Cf":  # joiners, direction marks, zero-width blanks: nothing to see
        return ""
    if character in PLAIN_FORMS:
        return PLAIN_FORMS[character]
    parts = [c for c in unicodedata.normalize("NFKD", character) if not unicodedata.combining(c)]
    if not parts or parts == [character]:
        return "?"
    return "".join(PLAIN_FORMS.get(part, part) for part in parts)


def to_code_page(text):
    """`text` in code page 1252, runs of blanks as one blank, and the number of "?" put for characters."""
    text = "".join(" " if unicodedata.category(c) == "Cc" else c for c in unicodedata.normalize("NFC", text))
    encoded = bytearray()
    lost = 0
    for character in " ".join(text.split()):
        try:
            encoded += character.encode("cp1252")
            continue
        except UnicodeEncodeError:
            pass
        try:
            plain = plain_form(character).encode("cp1252")
        except UnicodeEncodeError:
            plain = b"?"
        lost += plain == b"?"
        encoded += plain
    return bytes(encoded), lost


def read_text(path):
    with open(path, "rb") as file:
        data = file.read()
    try:
        return data.decode("utf-8-sig")
    except UnicodeDecodeError as error:
        line = data.count(b"\n", 0, error.start) + 1
        raise InputError(f"{path}, line {line}: not UTF-8 ({error.reason})") from error


def read_records(path):
    """The records (prefix, name, address) of the input as bytes, in its order, and the number of "?" put.

    Prefixes with the group bit (bit 0 of the first octet, IEEE 802) are left out: no adapter may have such an address,
    and a random one must not begin with it.
    """
    reader = csv.reader(io.StringIO(read_text(path), newline=""), strict=True)
    records = []
    lost = 0
    line = 1
    try:
        for row in reader:
            where = f"{path}, line {line}"
            is_heading = line == 1
            line = reader.line_num + 1
            if is_heading:
                if row != COLUMNS:
                    raise InputError(f"{where}: the heading must be {','.join(COLUMNS)}")
                continue
            if len(row) != len(COLUMNS):
                raise InputError(f"{where}: {len(row)} columns instead of {len(COLUMNS)}")
            registry, prefix, name, address = row
            if registry != "MA-L":
                raise InputError(f"{where}: the registry is {registry!r} instead of 'MA-L'")
            if len(prefix) != 6 or not HEX_DIGITS.issuperset(prefix):
                raise InputError(f"{where}: the assignment {prefix!r} is not six upper-case hexadecimal digits")
            if int(prefix[1], 16) & 1:
                continue
            texts = []
            for column, text in (("name", name), ("address", address)):
                encoded, lost_here = to_code_page(text)
                if len(encoded) > LONGEST_TEXT:
                    raise InputError(f"{where}: the {column} is longer than {LONGEST_TEXT} bytes")
                texts.append(encoded)
                lost += lost_here
            records.append((prefix.encode("ascii"), *texts))
    except csv.Error as error:
        raise InputError(f"{path}, line {line}: {error}") from error
    if line == 1:
        raise InputError(f"{path}, line 1: the heading is missing")
    return records, lost


def build_file(records):
    pieces = [struct.pack("<i", len(records))]
    for prefix, name, address in sorted(records, key=lambda record: record[0]):
        pieces += [prefix, struct.pack("<H", len(name)), name, struct.pack("<H", len(address)), address]
    return b"".join(pieces)


def write_whole(path, data):
    """Writes the file under another name first, so that a build that was cut off leaves no half of it."""
    temporary = f"{path}.{os.getpid()}.new"
    try:
        with open(temporary, "wb") as file:
            file.write(data)
        os.replace(temporary, path)
    finally:
        if os.path.exists(temporary):
            os.unlink(temporary)


def main():
    parser = argparse.ArgumentParser(description="Makes the vendor list from the IEEE's oui.csv.")
    parser.add_argument("--minimum", type=int, default=1, help="fewest records that the input must hold")
    parser.add_argument("input", help="the IEEE's oui.csv")
    parser.add_argument("output", help="the vendor list to write, VendorNumbers.log")
    arguments = parser.parse_args()
    try:
        records, lost = read_records(arguments.input)
        if len(records) < arguments.minimum:
            raise InputError(f"{arguments.input}: {len(records)} records; at least {arguments.minimum} are expected")
        data = build_file(records)
        write_whole(arguments.output, data)
    except (InputError, OSError) as error:
        print(f"{parser.prog}: {error}", file=sys.stderr)
        return 1
    print(f"{arguments.output}: {len(records)} vendors, {len(data)} bytes, {lost} characters without a plain form")
    return 0


if __name__ == "__main__":
    sys.exit(main())

"""Writes presets files with nothing but the description of their format, to hold the program's writer against.

    presets_oracle.py write FOLDER    writes the files
    presets_oracle.py check FOLDER    compares the files in FOLDER with what would be written; exit status 1 if different

Integers are little-endian. File: record count (signed, 32 bits), records. Record: name, flags (8 bits), MAC address,
five lists (IP addresses, subnet masks, gateways, gateway metrics, DNS servers). Text: length in bytes (16 bits), bytes
in code page 1252. List: number of dimensions (16 bits), 0 for None; otherwise 1, number of texts (32 bits), lower
bound (32 bits), texts.
"""

import os
import struct
import sys

OPEN_BYTES = "\x81\x8d\x8f\x90\x9d"


def text(value):
    encoded = b"".join(bytes([ord(c)]) if c in OPEN_BYTES else c.encode("cp1252", "replace") for c in value)[:65535]
    return struct.pack("<H", len(encoded)) + encoded


def array(values):
    if values is None:
        return struct.pack("<H", 0)
    return struct.pack("<HIi", 1, len(values), 0) + b"".join(text(value) for value in values)


def record(name="", flags=0, mac="", lists=(None,) * 5):
    return text(name) + struct.pack("<B", flags) + text(mac) + b"".join(array(values) for values in lists)


def presets(*records):
    return struct.pack("<i", len(records)) + b"".join(records)


OFFICE = record("Office", 2 | 8 | 16 | 32, "00-0C-29-12-AB-FF",
                (["192.168.1.10", "10.0.0.7"], ["255.255.255.0", "255.0.0.0"], ["192.168.1.1"], ["20"],
                 ["192.168.1.1", "9.9.9.9"]))
DHCP = record("At home", 1, "", (["0.0.0.0"], ["0.0.0.0"], [""], [""], [""]))

FILES = {
    "empty-slot.npf": presets(record()),
    "office.npf": presets(OFFICE),
    "several.npf": presets(
        OFFICE,
        record(),
        DHCP,
        record("Random", 2 | 4, "", ([], [], None, [], None)),
        record("All bits", 63, "000C2912ABFF", ([""], ["", ""], [], None, ["x" * 300])),
    ),
    "letters.npf": presets(
        record("Büro \u20ac \u201cZ\u00fcrich\u201d " + OPEN_BYTES, 0, "", (["\u00ff"], None, None, None, None)),
        record("\u0141\u00f3d\u017a \u6df1\u5733 \U0001F600"),
    ),
    "long.npf": presets(record("n" * 65535, 2, "m" * 70000, (["\u20ac" * 70000], None, None, None, None)), DHCP),
}


def main():
    if len(sys.argv) != 3 or sys.argv[1] not in ("write", "check"):
        sys.exit(__doc__)
    folder = sys.argv[2]
    if sys.argv[1] == "write":
        for name, data in FILES.items():
            with open(os.path.join(folder, name), "wb") as file:
                file.write(data)
        return 0
    different = sorted(set(os.listdir(folder)) ^ set(FILES))
    for name, data in FILES.items():
        if name in different:
            continue
        with open(os.path.join(folder, name), "rb") as file:
            if file.read() != data:
                different.append(name)
    for name in different:
        print(f"{name}: differs, is missing or is not known")
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main())

"""The packages that scripts/build-windows makes."""

import os
import pathlib
import re
import subprocess

WINDOWS = pathlib.Path(os.environ["CORVANE_WINDOWS"])
SOURCE = pathlib.Path(os.environ["CORVANE_SOURCE"])
SCRIPT = SOURCE / "packaging/windows/package"
BIN, PACKAGES = WINDOWS / "bin", WINDOWS / "packages"
VERSION = re.search(r"project\(\w+ VERSION ([0-9.]+)", (SOURCE / "CMakeLists.txt").read_text())[1]
FOLDER = f"nicx-{VERSION}-windows-x86_64"
ZIP, SETUP, SUMS = PACKAGES / f"{FOLDER}.zip", PACKAGES / f"{FOLDER}-setup.exe", PACKAGES / "SHA256SUMS"
FILES = ("nicx.exe", "VendorNumbers.log", "help.html", "presets.npf", "LICENSE.txt", "NOTICES.txt", "README.txt")
EMPTY_PRESETS = b"\0\0\0\0"


def run(*command, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, check=False, **options)

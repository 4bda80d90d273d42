"""What Windows users download: the portable zip, the installer, their sums, and what Windows shows of nicx.exe."""

import hashlib
import os
import pathlib
import re
import shutil
import struct
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zipfile

from packages import BIN, EMPTY_PRESETS, FILES, FOLDER, PACKAGES, SCRIPT, SETUP, SOURCE, SUMS, VERSION, ZIP, run

NUMBERS = tuple(int(part) for part in (VERSION.split(".") + ["0"] * 3)[:4])
COPYRIGHT = "Copyright (c) 2026 The Orvella Corvane developers"

# wrestool's numbers of resource types.
GROUP_ICON, VERSION_INFO, MANIFEST = 14, 16, 24


def resource_names(program, kind):
    """Names of a program's resources of a type, in the order of its directory."""
    listed = run("wrestool", "-l", f"--type={kind}", program).stdout.decode()
    return re.findall(r"--name='?([^' ]+)", listed)


def resource(program, kind, name):
    return run("wrestool", "-x", "--raw", f"--type={kind}", f"--name={name}", program).stdout


def version_block(data, start=0):
    """Key, value, children and end of a block of a version resource (VS_VERSIONINFO and what is in it)."""
    length, value_length, is_text = struct.unpack_from("<HHH", data, start)
    end = start + length
    key_end = next(at for at in range(start + 6, end, 2) if data[at:at + 2] == b"\0\0")
    key = data[start + 6:key_end].decode("utf-16-le")
    at = (key_end + 2 + 3) // 4 * 4
    value = data[at:at + value_length * (2 if is_text else 1)]
    at = (at + len(value) + 3) // 4 * 4
    children = []
    while at < end:
        child = version_block(data, at)
        children.append(child)
        at = (child[3] + 3) // 4 * 4
    return key, value, children, end


def version_of(program):
    """The four numbers of the file and of the product, and the texts by name."""
    _, fixed, children, _ = version_block(resource(program, VERSION_INFO, 1))
    signature, _, *numbers = struct.unpack_from("<6I", fixed)
    assert signature == 0xFEEF04BD
    numbers = [half for pair in numbers for half in (pair >> 16, pair & 0xFFFF)]
    tables = next(tables for key, _, tables, _ in children if key == "StringFileInfo")
    assert len(tables) == 1
    texts = {key: value.decode("utf-16-le").rstrip("\0") for key, value, _, _ in tables[0][2]}
    return tuple(numbers[:4]), tuple(numbers[4:]), texts


def manifest_of(program):
    return ElementTree.fromstring(resource(program, MANIFEST, 1))


def settings_of(manifest):
    """Text of each element by its name, without the name spaces."""
    return {element.tag.partition("}")[2]: (element.text or "").strip() for element in manifest.iter()}


class Zip(unittest.TestCase):
    def setUp(self):
        with zipfile.ZipFile(ZIP) as archive:
            self.entries = archive.infolist()
            self.files = {entry.filename: archive.read(entry) for entry in self.entries}

    def test_one_folder_with_what_the_program_needs(self):
        self.assertEqual(set(self.files), {f"{FOLDER}/{name}" for name in FILES})
        for name in ("nicx.exe", "VendorNumbers.log", "help.html"):
            self.assertEqual(self.files[f"{FOLDER}/{name}"], (BIN / name).read_bytes(), name)
        self.assertEqual(self.files[f"{FOLDER}/presets.npf"], EMPTY_PRESETS)

    def test_texts_for_windows(self):
        sources = {"LICENSE.txt": SOURCE / "LICENSE", "NOTICES.txt": SOURCE / "packaging/windows/NOTICES.txt",
                   "README.txt": SOURCE / "packaging/windows/README.txt"}
        for name, path in sources.items():
            content = self.files[f"{FOLDER}/{name}"]
            self.assertEqual(content.replace(b"\r\n", b"\n"), path.read_bytes(), name)
            self.assertEqual(content.count(b"\n"), content.count(b"\r\n"), name)
            self.assertEqual(content.count(b"\r"), content.count(b"\r\n"), name)
            content.decode("ascii")

    def test_all_files_have_one_time(self):
        self.assertEqual(len({entry.date_time for entry in self.entries}), 1)

    def test_sums(self):
        expected = [f"{hashlib.sha256(path.read_bytes()).hexdigest()}  {path.name}" for path in (ZIP, SETUP)]
        self.assertEqual(SUMS.read_text().splitlines(), expected)
        self.assertEqual(run("sha256sum", "--check", "--strict", SUMS.name, cwd=PACKAGES).returncode, 0)


class Executable(unittest.TestCase):
    """nicx.exe as Windows sees it before it starts."""

    program = BIN / "nicx.exe"

    def test_version(self):
        file_version, product_version, texts = version_of(self.program)
        self.assertEqual(file_version, NUMBERS)
        self.assertEqual(product_version, NUMBERS)
        self.assertEqual(texts, {
            "CompanyName": "Orvella",
            "FileDescription": "Orvella Corvane: MAC address and IPv4 set-up of network adapters",
            "FileVersion": VERSION, "InternalName": "nicx", "LegalCopyright": COPYRIGHT,
            "OriginalFilename": "nicx.exe", "ProductName": "Orvella Corvane", "ProductVersion": VERSION})
        self.assertIn(COPYRIGHT, (SOURCE / "LICENSE").read_text().splitlines())

    def test_manifest(self):
        self.assertEqual(resource_names(self.program, MANIFEST), ["1"])
        manifest = manifest_of(self.program)
        settings = settings_of(manifest)
        level = manifest.find(".//{urn:schemas-microsoft-com:asm.v3}requestedExecutionLevel")
        self.assertEqual(level.attrib, {"level": "requireAdministrator", "uiAccess": "false"})
        self.assertEqual(settings["dpiAware"], "true/pm")
        self.assertEqual(settings["dpiAwareness"], "PerMonitorV2, PerMonitor")
        self.assertEqual(settings["longPathAware"], "true")
        # The system's own code page holds.
        self.assertNotIn("activeCodePage", settings)
        own, controls = manifest.findall(".//{urn:schemas-microsoft-com:asm.v1}assemblyIdentity")
        self.assertEqual(own.get("version"), ".".join(map(str, NUMBERS)))
        self.assertEqual((controls.get("name"), controls.get("version")),
                         ("Microsoft.Windows.Common-Controls", "6.0.0.0"))
        systems = manifest.findall(".//{urn:schemas-microsoft-com:compatibility.v1}supportedOS")
        self.assertEqual([system.get("Id")[1:9] for system in systems],
                         ["e2011457", "35138b9a", "4a2f28e3", "1f676c76", "8e0f7a12"])

    def test_icon_is_the_first_and_has_all_sizes(self):
        names = resource_names(self.program, GROUP_ICON)
        self.assertEqual(names[0], "CORVANE")
        self.assertEqual(names, sorted(names))
        with tempfile.TemporaryDirectory() as folder:
            icon = pathlib.Path(folder) / "icon.ico"
            run("wrestool", "-x", f"--type={GROUP_ICON}", "--name=CORVANE", "-o", icon, self.program)
            pictures = re.findall(r"--width=(\d+) --height=(\d+) --bit-depth=(\d+)",
                                  run("icotool", "-l", icon).stdout.decode())
        self.assertEqual(pictures, [(size, size, "32") for size in "16 20 24 32 40 48 64 256".split()])

    def test_needs_no_library_but_the_systems(self):
        described = run("x86_64-w64-mingw32-objdump", "-p", self.program).stdout.decode()
        libraries = {name.lower() for name in re.findall(r"DLL Name: (\S+)", described)}
        self.assertIn("kernel32.dll", libraries)
        of_windows = {f"{name}.dll" for name in """advapi32 comctl32 comdlg32 gdi32 gdiplus imm32 iphlpapi kernel32
            msimg32 msvcrt ole32 oleacc oleaut32 rpcrt4 setupapi shell32 shlwapi user32 uxtheme version winmm
            ws2_32""".split()} | {"winspool.drv"}
        self.assertEqual(libraries - of_windows, set())
        self.assertRegex(described, r"Subsystem\s+0+2\s+\(Windows GUI\)")

    def test_the_installer_shows_the_same(self):
        file_version, product_version, texts = version_of(SETUP)
        self.assertEqual((file_version, product_version), (NUMBERS, NUMBERS))
        self.assertEqual(texts, {
            "CompanyName": "Orvella", "FileDescription": "Orvella Corvane installer", "FileVersion": VERSION,
            "LegalCopyright": COPYRIGHT, "ProductName": "Orvella Corvane", "ProductVersion": VERSION})
        manifest = manifest_of(SETUP)
        level = manifest.find(".//{urn:schemas-microsoft-com:asm.v3}requestedExecutionLevel")
        self.assertEqual(level.get("level"), "requireAdministrator")


class PackageScript(unittest.TestCase):
    def setUp(self):
        room = tempfile.TemporaryDirectory()
        self.addCleanup(room.cleanup)
        self.room = pathlib.Path(room.name)
        self.bin, self.out = self.room / "bin", self.room / "out"
        shutil.copytree(BIN, self.bin)

    def package(self, *arguments, **environment):
        return run(sys.executable, SCRIPT, *(arguments or (self.bin, self.out, VERSION)),
                   env={**os.environ, "SOURCE_DATE_EPOCH": "1700000000", **environment})

    def made(self):
        return {path.name: path.read_bytes() for path in self.out.iterdir()} if self.out.exists() else {}

    def test_same_input_same_packages(self):
        self.assertEqual(self.package().returncode, 0)
        first = self.made()
        self.assertEqual(set(first), {ZIP.name, SETUP.name, SUMS.name})
        # Other times and a list of presets that was used do not show.
        for path in self.bin.iterdir():
            os.utime(path, (1, 1))
        (self.bin / "presets.npf").write_bytes(b"used")
        done = self.package()
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(self.made(), first)
        with zipfile.ZipFile(self.out / ZIP.name) as archive:
            self.assertEqual({entry.date_time for entry in archive.infolist()}, {(2023, 11, 14, 22, 13, 20)})

    def expect_refusal(self, words, *arguments, **environment):
        """Nothing that was there is changed, and nothing is left behind."""
        self.out.mkdir(exist_ok=True)
        (self.out / SUMS.name).write_text("as before")
        done = self.package(*arguments, **environment)
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr.decode(), words)
        self.assertEqual(self.made(), {SUMS.name: b"as before"})

    def test_missing_files(self):
        for name in ("nicx.exe", "VendorNumbers.log", "help.html"):
            with self.subTest(name=name):
                (self.bin / name).rename(self.room / name)
                self.expect_refusal(f"{name} cannot be read: No such file or directory; build it with scripts/")
                (self.room / name).rename(self.bin / name)

    def test_missing_tools(self):
        tools = self.room / "tools"
        tools.mkdir()
        wanted = {"makensis": "nsis", "wrestool": "icoutils", "rsvg-convert": "librsvg2-bin", "convert": "imagemagick"}
        for name in wanted:
            (tools / name).symlink_to(shutil.which(name))
        for name, package in wanted.items():
            with self.subTest(name=name):
                (tools / name).rename(self.room / name)
                self.expect_refusal(f"{name} is missing; install the Debian package {package}", PATH=str(tools))
                (self.room / name).rename(tools / name)

    def test_no_windows_program(self):
        for content in (b"", b"MZ", pathlib.Path("/bin/true").read_bytes()):
            (self.bin / "nicx.exe").write_bytes(content)
            self.expect_refusal(r"nicx\.exe is no Windows program for x86-64")

    def test_no_version(self):
        for version in ("", "4", "4.5-1", "v4.5", "1.2.3.4.5"):
            self.expect_refusal(f"'{version}' is no version", self.bin, self.out, version)

    def test_no_time(self):
        self.expect_refusal("SOURCE_DATE_EPOCH is 'today'", SOURCE_DATE_EPOCH="today")

    def test_installer_that_cannot_be_made(self):
        tools = self.room / "tools"
        tools.mkdir()
        (tools / "makensis").write_text("#!/bin/sh\necho out of luck\nexit 3\n")
        (tools / "makensis").chmod(0o755)
        self.expect_refusal(r"making the installer failed \(makensis ended with 3\):\nout of luck",
                            PATH=f"{tools}:{os.environ['PATH']}")

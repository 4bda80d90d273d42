"""The shape of the source tree: who may include whom, headers that stand alone, no forgotten test file."""

import concurrent.futures
import json
import os
import re
import shlex
import subprocess
import tempfile
import unittest

SOURCE = os.environ["CORVANE_SOURCE"]
WINDOWS_BUILD = os.path.join(SOURCE, "build-windows")

# Folder -> the folders whose headers it may include, besides its own. Everything goes one way.
ALLOWED = {
    "base": set(),
    "platform": {"base"},
    "platform/linux/system": {"base", "platform"},
    "platform/linux/registry": {"base", "platform", "platform/linux/system"},
    "platform/linux/kernel": {"base", "platform/linux/system"},
    "platform/linux/links": {"base", "platform", "platform/linux/kernel", "platform/linux/registry", "platform/linux/system"},
    "platform/linux/resolver": {"base", "platform", "platform/linux/kernel", "platform/linux/registry",
                                "platform/linux/system"},
    "platform/linux/dhcp": {"base", "platform", "platform/linux/kernel", "platform/linux/registry",
                            "platform/linux/resolver", "platform/linux/system"},
    "platform/linux/owners": {"base", "platform", "platform/linux/dhcp", "platform/linux/kernel", "platform/linux/links",
                              "platform/linux/registry", "platform/linux/resolver", "platform/linux/system"},
    "platform/linux": {"base", "platform", "platform/linux/dhcp", "platform/linux/kernel", "platform/linux/links",
                       "platform/linux/owners", "platform/linux/registry", "platform/linux/resolver",
                       "platform/linux/system"},
    "platform/windows": {"base", "platform"},
    "vendors": {"base", "platform"},
    "inventory": {"base", "platform", "vendors"},
    "mac": {"base", "platform", "inventory"},
    "tcpip": {"base", "platform", "inventory", "mac"},
    "presets": {"base", "platform", "vendors", "inventory", "mac", "tcpip"},
    "ui/logic": {"base", "platform", "vendors", "inventory", "mac", "tcpip", "presets"},
    "ui": {"base", "platform", "vendors", "inventory", "mac", "tcpip", "presets", "ui/logic"},
    "ui/gtk": {"base", "platform", "ui"},
    "ui/windows": {"base", "platform", "platform/windows", "ui", "ui/logic"},
    "startup": {"base", "platform", "vendors", "inventory", "mac", "tcpip", "presets"},
    "programs": {"base", "platform", "startup", "ui"},
    "programs/registry": {"base", "platform", "platform/linux/links", "platform/linux/registry", "platform/linux/system",
                          "startup"},
    "programs/report": {"base", "platform", "vendors", "inventory", "startup", "ui/logic"},
}
# What belongs to one system alone, and the folders of that system which it may include.
OF_ONE_SYSTEM = {
    "programs/NicxDhcp.cpp": {"platform/linux/dhcp", "platform/linux/kernel", "platform/linux/system"},
    "programs/NicxExe.cpp": {"platform/windows"},
    "programs/NicxWindow.cpp": {"ui/gtk"},
    "ui/gtk/ChangesWatch.cpp": {"platform/linux"},
}
# The seam to the user, which the back-ends must not see: they hand back what went wrong, and the core tells it.
SEAT = "platform/Seat.h"
BACK_ENDS = ("platform/linux", "platform/windows")
# The one header of a back-end that the window's Linux half may see.
CHANGES_DESCRIPTOR = "platform/linux/ChangesDescriptor.h"

# Who sleeps or reads the time besides the clock role's own bodies, and what for (ClockApi in platform/Platform.h).
TIMED = {
    "platform/linux/Host.cpp": "the clock of Linux",
    "platform/linux/dhcp/DhcpControl.cpp": "waits for the supervisor",
    "platform/linux/dhcp/DhcpHook.cpp": "waits for the supervisor",
    "platform/linux/dhcp/DhcpInstall.cpp": "waits for the kernel's neighbours",
    "platform/linux/dhcp/DhcpSocket.cpp": "waits for another supervisor",
    "platform/linux/dhcp/DhcpSupervisor.cpp": "waits for the client",
    "platform/linux/dhcp/HeldLease.cpp": "notes when a lease began",
    "platform/linux/links/TimeZone.cpp": "asks for the offset in force",
    "platform/linux/owners/LinkControl.cpp": "waits for the carrier",
    "platform/linux/system/FileLock.cpp": "waits for a lock",
    "platform/windows/WindowsHost.cpp": "the clock of Windows",
    "ui/WindowSeat.cpp": "lets pictures be painted",
    "ui/WindowSeat.h": "lets pictures be painted",
}
TIME_CALLS = re.compile(r"\b(sleep_for|sleep_until|steady_clock|system_clock|high_resolution_clock|clock_gettime|gettimeofday|"
                        r"u?sleep|nanosleep|time|GetTickCount(64)?|GetLocalTime|GetSystemTime\w*|wxM?i?l?l?i?Sleep)(\b::|\()|"
                        r"(?<!\w)::Sleep\(|std::chrono::\w+_clock\b")

# Unit tests that the Windows build does not run: parts of the Linux back-end and its programs, and what is written in terms
# of POSIX files, rights, processes and mounts.
OF_LINUX_ALONE = (r"(Dhcp(Hook|Lease|State)|Errors|FileLock|Files|FullDisk|HardwareDatabase|Netlink\w*|PresetsDisk|PresetsRights|"
                  r"RegFile|RegistryStore\w*|RegistryTool\w*|ReportExport|ResolvConf|VendorListRights|WholePlatform)Test\.cpp|"
                  r"NetlinkMessages\.cpp")

LINUX = {folder for folder in ALLOWED if folder.startswith("platform/linux")}

# System headers that only these folders may see.
CONFINED = {
    r"sqlite3\.h": {"platform/linux/registry"},
    r"libmnl/.*|linux/(netlink|rtnetlink|neighbour|if_link|if_addr)\.h": {"platform/linux/kernel"},
    r"(linux|net|netinet|arpa)/.*": LINUX,
    r"libudev\.h": {"platform/linux/links"},
    r"(windows|winsock2|ws2.*|iphlpapi|obj.*|ole.*|shellapi|shldisp)\.h|wrl/.*": {"platform/windows"},
    r"wx/.*": {"ui", "ui/gtk", "ui/windows", "programs"},
    r"(gtk|gdk|atk)/.*": {"ui/gtk"},
}


def sources(*suffixes):
    listed = subprocess.run(
        ["find", ".", "-path", "./build*", "-prune", "-o", "-path", "./.git", "-prune", "-o", "-type", "f", "-print"],
        cwd=SOURCE, check=True, capture_output=True, text=True).stdout.split("\n")
    return sorted(path[2:] for path in listed if path.endswith(suffixes))


def folder_of(path):
    folder = os.path.dirname(path)
    return folder if folder in ALLOWED else None


def is_windows_code(path):
    return os.path.dirname(path) in ("platform/windows", "ui/windows")


def windows_toolkit():
    """The compiler's options for the window library, as the Windows program is built with it."""
    with open(os.path.join(WINDOWS_BUILD, "compile_commands.json"), encoding="utf-8") as listing:
        command = next(unit["command"] for unit in json.load(listing) if "/corvane_ui.dir/" in unit["command"])
    words = shlex.split(command)
    flags = [word for word in words if word.startswith("-D")]
    for option, folder in zip(words, words[1:]):
        if option == "-isystem":
            flags += [option, folder]
    return flags


def includes(path):
    with open(os.path.join(SOURCE, path), encoding="utf-8") as source:
        for line in source:
            match = re.match(r'\s*#include\s+(["<])([^">]+)', line)
            if match:
                yield match.group(1), match.group(2)


def listed_files(listings):
    """The files that listings of the build name, each found from where its listing names it."""
    found = set()
    for listing in listings:
        with open(os.path.join(SOURCE, listing), encoding="utf-8") as text:
            words = re.sub(r"#.*", "", text.read())
        here = os.path.dirname(listing)
        # tests/CMakeLists.txt includes the listings of its folders, and corvane_windows_test() names from tests/.
        base = "tests" if re.fullmatch(r"tests/\w+/\w+\.cmake|tests/wine/CMakeLists\.txt", listing) else here
        places = {"CMAKE_SOURCE_DIR": ".", "CMAKE_CURRENT_LIST_DIR": here, "CMAKE_CURRENT_SOURCE_DIR": base}
        places.update((name, value) for name, value in re.findall(r"\bset\((\w+) ([^\s()]+)\)", words))
        for word in re.findall(r"[^\s()\"]+\.(?:cpp|py)\b", words):
            for spelling in [word.replace("${CORVANE_DESKTOP}", desktop) for desktop in ("gtk", "windows")]:
                for name, place in reversed(places.items()):
                    spelling = spelling.replace(f"${{{name}}}", place)
                rooted = spelling.startswith((".", here + "/", base + "/")) and "$" in word
                found.add(os.path.normpath(spelling if rooted else os.path.join(base, spelling)))
    return found


def without_comments(text):
    """C++ source with its comments as blanks; what stands in quotes stays."""
    quoted = r'"(?:\\.|[^"\\\n])*"|\'(?:\\.[^\'\n]*|[^\'\\\n])\''
    return re.sub(quoted + r"|//[^\n]*|/\*.*?\*/", lambda match: " " if match.group().startswith("/") else match.group(), text,
                  flags=re.DOTALL)


def quoted_texts(path):
    with open(os.path.join(SOURCE, path), encoding="utf-8") as source:
        return re.findall(r'"((?:\\.|[^"\\\n])*)"', without_comments(source.read()))


class Structure(unittest.TestCase):
    def test_includes_go_one_way(self):
        wrong = []
        seen = 0
        for path in sources(".cpp", ".h"):
            folder = folder_of(path)
            if folder is None:
                continue
            for kind, name in includes(path):
                if kind != '"':
                    continue
                seen += 1
                target = folder_of(name)
                self.assertIsNotNone(target, f"{path} includes {name} by a path that is not from the root")
                allowed = ALLOWED[folder] | {folder}
                if path in OF_ONE_SYSTEM:
                    allowed = allowed | OF_ONE_SYSTEM[path]
                if target not in allowed:
                    wrong.append(f"{path} includes {name}")
        self.assertGreater(seen, 100)
        self.assertEqual(wrong, [])

    def test_no_back_end_sees_the_user(self):
        seen = [path for path in sources(".cpp", ".h") for _, name in includes(path) if name == SEAT]
        self.assertGreater(len(seen), 20)
        self.assertEqual([path for path in seen if path.startswith(BACK_ENDS)], [])

    def test_only_the_event_loop_sees_the_descriptor_of_changes(self):
        seen = [path for path in sources(".cpp", ".h") if folder_of(path)
                for _, name in includes(path) if name.startswith("platform/linux/") and path.startswith("ui/")]
        self.assertEqual([path for path in seen if path != "ui/gtk/ChangesWatch.cpp"], [])
        self.assertEqual([name for _, name in includes("ui/gtk/ChangesWatch.cpp") if name.startswith("platform/linux/")],
                         [CHANGES_DESCRIPTOR])

    def test_time_belongs_to_the_clock(self):
        """Whoever waits or reads the time is in TIMED with a reason, and nobody stands there without need."""
        timed = set()
        for path in sources(".cpp", ".h"):
            if folder_of(path) is None:
                continue
            with open(os.path.join(SOURCE, path), encoding="utf-8") as source:
                code = re.sub(r"//.*", "", source.read())
            if TIME_CALLS.search(code):
                timed.add(path)
        self.assertEqual(timed, set(TIMED))

    def test_system_headers_stay_in_the_back_ends(self):
        wrong = []
        for path in sources(".cpp", ".h"):
            folder = folder_of(path)
            if folder is None:
                continue
            for kind, name in includes(path):
                for pattern, folders in CONFINED.items():
                    if kind == "<" and re.fullmatch(pattern, name) and folder not in folders:
                        wrong.append(f"{path} includes <{name}>")
        self.assertEqual(wrong, [])

    def test_registry_names_are_spelt_once(self):
        """Values in RegistryValues.h, keys in RegistryKeys.h. Whole texts: a message may hold the same word."""
        values = set(quoted_texts("platform/RegistryValues.h"))
        values -= {name for _, name in includes("platform/RegistryValues.h")}
        self.assertLessEqual({"IPAddress", "EnableDHCP", "Bind", "OriginalNetworkAddress"}, values)
        wrong = []
        for path in sources(".cpp", ".h"):
            if folder_of(path) is None:
                continue
            for text in quoted_texts(path):
                # Two controls of the forms, which see no registry, are called as values are.
                of_forms = folder_of(path) == "ui"
                if path != "platform/RegistryValues.h" and not of_forms and text in values:
                    wrong.append(f'{path} spells the value "{text}"')
                if path != "platform/RegistryKeys.h" and re.match(r"(SYSTEM|SOFTWARE)\\\\", text):
                    wrong.append(f'{path} spells the key "{text}"')
        self.assertEqual(wrong, [])

    def test_every_header_compiles_alone(self):
        headers = [path for path in sources(".h") if folder_of(path)]
        self.assertGreater(len(headers), 30)
        toolkit = subprocess.run(["wx-config", "--cxxflags", "core,base"], check=True, capture_output=True,
                                 text=True).stdout.replace("-I", "-isystem").split()
        windows = windows_toolkit()

        def compile_alone(path):
            with tempfile.NamedTemporaryFile("w", suffix=".cpp") as unit:
                unit.write(f'#include "{path}"\n')
                unit.flush()
                compiler = "x86_64-w64-mingw32-g++-posix" if is_windows_code(path) else "g++"
                flags = []
                if path.startswith(("ui/", "programs/")):
                    flags = windows if is_windows_code(path) else toolkit
                run = subprocess.run([compiler, "-std=c++20", "-Wall", "-Wextra", "-Werror", "-fsyntax-only", "-I", SOURCE,
                                      *flags, unit.name], capture_output=True, text=True)
                return f"{path}\n{run.stderr}" if run.returncode else None

        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            failures = [failure for failure in pool.map(compile_alone, headers) if failure]
        self.assertEqual(failures, [])

    def test_every_test_file_is_listed(self):
        """By path: two folders may have a file of the same name, and the Windows build lists many of the Linux one's."""
        tests = {path for path in sources(".cpp", "_test.py") if path.startswith("tests/")}
        self.assertGreater(len(tests), 100)
        windows_listings = [path for path in sources("CMakeLists.txt", ".cmake")
                            if path.startswith("tests/wine/") and path != "tests/wine/wine.cmake"]
        windows_listings.append("tests/unit/portable.cmake")
        of_windows = {path for path in tests if path.endswith(".cpp")
                      and path.startswith(("tests/wine/", "tests/contract/windows/"))}
        of_wine = [path for path in windows_listings if path.startswith("tests/wine/")]
        on_linux = listed_files(set(sources("CMakeLists.txt", ".cmake")) - set(of_wine))
        on_windows = listed_files(windows_listings)
        self.assertEqual(sorted(tests - of_windows - on_linux), [])
        self.assertEqual(sorted(of_windows - on_windows), [])
        rules = {path for path in tests if re.fullmatch(r"tests/unit/\w+\.cpp", path)
                 and not re.fullmatch(OF_LINUX_ALONE, os.path.basename(path))}
        self.assertGreater(len(rules), 50)
        self.assertEqual(sorted(rules - on_windows), [])

    def test_every_source_file_is_listed(self):
        units = [path for path in sources(".cpp") if folder_of(path)]
        self.assertGreater(len(units), 100)
        self.assertEqual(sorted(set(units) - listed_files(sources("CMakeLists.txt", ".cmake"))), [])


if __name__ == "__main__":
    unittest.main()

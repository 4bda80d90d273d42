"""Runs clang-tidy for scripts/check: tidy.py BUILD_FOLDER [START...]. Findings fail it.

Looks at the project's units in BUILD_FOLDER/compile_commands.json, or at those whose names begin with START among them. Most of the work is
reading the toolkit's and the library's headers, so neighbouring units are looked at together: a generated file includes up
to eight of them. What was clean is remembered in BUILD_FOLDER/tidy by its content and that of all the project's headers it
includes, so that only what changed is looked at again. Units that define
the same name are looked at apart.

For the mingw-w64 cross compiler, clang is told where that one has its headers.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TOGETHER = 8
JOBS = 2
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def cross_flags(compiler):
    """What makes clang a compiler for the system that a cross compiler builds for."""
    machine = re.match(r"(\w+-w64-mingw32)-", os.path.basename(compiler))
    if machine is None:
        return []
    search = subprocess.run([compiler, "-E", "-x", "c++", "-v", "/dev/null"], check=True, capture_output=True,
                            text=True).stderr
    folders = search.split("search starts here:\n")[-1].split("End of search list.")[0].split()
    # GCC's own headers (intrinsics, limits) are written for GCC alone; clang brings its own.
    folders = [folder for folder in folders if not folder.endswith(("/include-fixed", "-posix/include"))]
    return [f"--target={machine[1]}", "-nostdinc++", *(word for folder in folders for word in ("-isystem", folder))]


class Unit:
    def __init__(self, entry, cross):
        words = shlex.split(entry["command"]) if "command" in entry else entry["arguments"]
        self.path = pathlib.Path(entry["directory"], entry["file"]).resolve()
        self.name = str(self.path.relative_to(ROOT))
        while words and not re.search(r"(\+\+|gcc|clang)[^/]*$", words[0]):
            words = words[1:]
        cross_options = cross.setdefault(words[0], None)
        if cross_options is None:
            cross_options = cross[words[0]] = cross_flags(words[0])
        flags, skip = [], False
        for word in words[1:]:
            if skip:
                skip = False
            elif word in ("-o", "-MF", "-MT", "-MQ"):
                skip = True
            elif word not in ("-c", "-MD", "-MMD", entry["file"]):
                flags.append(word)
        # The compilers' warnings are the build's matter.
        self.flags = ("clang++", *cross_options, *(flag for flag in flags if not flag.startswith("-W")), "-w")


def units(build, wanted):
    entries = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    cross = {}
    found = {}
    for entry in entries:
        path = pathlib.Path(entry["directory"], entry["file"]).resolve()
        if path.is_relative_to(ROOT) and not path.is_relative_to(build.resolve()):
            unit = Unit(entry, cross)
            if unit.name.startswith(wanted):
                found.setdefault(unit.name, unit)
    return [found[name] for name in sorted(found)]


def groups(listed):
    """Neighbours with the same flags, up to TOGETHER of them."""
    neighbours = {}
    for unit in listed:
        neighbours.setdefault((unit.path.parent, unit.flags), []).append(unit)
    for members in neighbours.values():
        for first in range(0, len(members), TOGETHER):
            yield members[first:first + TOGETHER]


class Contents:
    """A digest of each file and of the project's headers that it includes, directly or not."""

    def __init__(self):
        self.known = {}

    def headers(self, path, seen):
        if path in seen:
            return
        seen.add(path)
        if path not in self.known:
            text = path.read_bytes()
            names = INCLUDE.findall(text.decode(errors="replace"))
            self.known[path] = hashlib.sha256(text).hexdigest(), [ROOT / name for name in names if (ROOT / name).exists()]
        for header in self.known[path][1]:
            self.headers(header, seen)

    def digest(self, paths):
        seen = set()
        for path in paths:
            self.headers(path, seen)
        return "".join(f"{path.relative_to(ROOT)} {self.known[path][0]}\n" for path in sorted(seen))


class Tidy:
    def __init__(self, build):
        self.folder = build.resolve() / "tidy"
        self.clean = self.folder / "clean"
        self.clean.mkdir(parents=True, exist_ok=True)
        self.contents = Contents()
        self.recipe = "".join([output("clang-tidy", "--version"), (ROOT / ".clang-tidy").read_text(encoding="utf-8"),
                               pathlib.Path(__file__).read_text(encoding="utf-8")])

    def stamp(self, members):
        text = self.recipe + " ".join(members[0].flags) + "\n" + self.contents.digest([unit.path for unit in members])
        return self.clean / hashlib.sha256(text.encode()).hexdigest()

    def run(self, members):
        """What clang-tidy finds, or nothing."""
        first = members[0]
        if len(members) == 1:
            source = first.path
        else:
            name = first.name.replace("/", "_").removesuffix(".cpp")
            source = self.folder / f"{name}_and_{len(members) - 1}_more.cpp"
            source.write_text("".join(f'#include "{unit.path}"  // NOLINT(bugprone-suspicious-include)\n'
                                      for unit in members), encoding="utf-8")
        run = subprocess.run(["clang-tidy", "--quiet", str(source), "--", *first.flags[1:]], cwd=ROOT,
                             capture_output=True, text=True, check=False)
        if run.returncode != 0 and len(members) > 1 and "[clang-diagnostic-error]" in run.stdout:
            half = len(members) // 2
            return self.run(members[:half]) + self.run(members[half:])
        if run.returncode != 0:
            return run.stdout or run.stderr
        return ""

    def look_at(self, members):
        stamp = self.stamp(members)
        if stamp.exists():
            return ""
        found = self.run(members)
        if not found:
            stamp.touch()
        return found


def main():
    build = pathlib.Path(sys.argv[1])
    wanted = tuple(sys.argv[2:]) or ("",)
    listed = [unit for unit in units(build, wanted) if not unit.name.startswith("tests/")]
    for start in wanted:
        if not any(unit.name.startswith(start) for unit in listed):
            sys.exit(f"tidy: {build} builds nothing that begins with '{start}'")
    tidy = Tidy(build)
    work = list(groups(listed))
    clean = sum(tidy.stamp(members).exists() for members in work)
    findings = 0
    with concurrent.futures.ThreadPoolExecutor(JOBS) as pool:
        for done in concurrent.futures.as_completed([pool.submit(tidy.look_at, members) for members in work]):
            if done.result():
                findings += 1
                print(done.result(), end="", flush=True)
    print(f"{len(listed)} units in {len(work)} groups, {clean} of them known to be clean, {findings} with findings")
    sys.exit(1 if findings else 0)


if __name__ == "__main__":
    main()

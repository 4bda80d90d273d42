#!/usr/bin/env python3
"""Runs one case of a unittest file: run_case.py FILE Class.method. A skipped case counts as failed.

The case and the Python programs that it starts find the modules beside its file, and those of the folders whose modules
are shared.
"""

import importlib.util
import os
import pathlib
import sys
import unittest

TESTS = pathlib.Path(__file__).resolve().parent.parent
SHARED = ("netns", "gui", "wine")


def find_modules(path):
    folders = [str(folder) for folder in (pathlib.Path(path).resolve().parent, *(TESTS / name for name in SHARED))]
    sys.path[:0] = folders
    os.environ["PYTHONPATH"] = os.pathsep.join(folders)


def main():
    path, case = sys.argv[1], sys.argv[2]
    find_modules(path)
    spec = importlib.util.spec_from_file_location("cases", path)
    module = importlib.util.module_from_spec(spec)
    sys.modules["cases"] = module
    spec.loader.exec_module(module)
    suite = unittest.defaultTestLoader.loadTestsFromName(case, module)
    result = unittest.TextTestRunner(verbosity=2).run(suite)
    if result.testsRun == 0 or result.skipped:
        print("no case was run", file=sys.stderr)
        return 1
    return 0 if result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Runs one case of a unittest file: run_case.py FILE Class.method. A skipped case counts as failed."""

import importlib.util
import os
import sys
import unittest


def main():
    path, case = sys.argv[1], sys.argv[2]
    sys.path.insert(0, os.path.dirname(os.path.abspath(path)))
    sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
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

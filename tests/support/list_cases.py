#!/usr/bin/env python3
"""Prints the test cases of a unittest file, one "Class.method" a line, without running anything of it."""

import ast
import sys


def cases(path):
    with open(path, encoding="utf-8") as source:
        tree = ast.parse(source.read(), path)
    for node in tree.body:
        if isinstance(node, ast.ClassDef):
            for item in node.body:
                if isinstance(item, ast.FunctionDef) and item.name.startswith("test"):
                    yield f"{node.name}.{item.name}"


if __name__ == "__main__":
    print("\n".join(cases(sys.argv[1])))

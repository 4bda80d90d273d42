#!/usr/bin/env python3
"""Writes the drawings into a C++ source: embed_icons.py SVG... -o OUT.cpp

The source defines IconSource() of ui/Icons.h, a table from the name of a file without its suffix to its text, without
comments and without the blanks between elements. The same drawings give the same source, in whatever order they come.

The program replaces the colour #3b4252 by the text colour of the desktop's theme, as text; so colours are six
hexadecimal digits in lower case. The renderer of wxWidgets passes over what it does not know and draws the rest; such
elements and attributes are refused here, where it is noticed.
"""

import argparse
import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

SVG = "{http://www.w3.org/2000/svg}"
ELEMENTS = {
    "svg", "g", "path", "rect", "circle", "ellipse", "line", "polyline", "polygon", "defs", "linearGradient",
    "radialGradient", "stop",
}
ATTRIBUTES = {
    "width", "height", "viewBox", "id", "transform", "d", "x", "y", "rx", "ry", "cx", "cy", "r", "x1", "y1", "x2", "y2",
    "fx", "fy", "points", "fill", "fill-opacity", "fill-rule", "opacity", "stroke", "stroke-opacity", "stroke-width",
    "stroke-linecap", "stroke-linejoin", "stroke-miterlimit", "stroke-dasharray", "stroke-dashoffset", "gradientUnits",
    "gradientTransform", "spreadMethod", "offset", "stop-color", "stop-opacity",
}
COLOURS = {"fill", "stroke", "stop-color"}
COLOUR = re.compile(r"#[0-9a-f]{6}|none|url\(#\w+\)")
DELIMITER = "svg"
LONGEST_TEXT = 16000  # a string literal of Microsoft's compiler ends at 16380 bytes

HEAD = """\
// Made by embed_icons.py from the drawings beside it.
#include "ui/Icons.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace corvane {

namespace {

struct Drawing {
    std::string_view Name;
    std::string_view Source;
};

"""

FOOT = """\

}  // namespace

std::string_view IconSource(std::string_view name) {
    const auto* const found = std::find_if(kDrawings.data(), kDrawings.data() + kDrawings.size(),
                                           [name](const Drawing& drawing) { return drawing.Name == name; });
    return found == kDrawings.data() + kDrawings.size() ? std::string_view() : found->Source;
}

}  // namespace corvane
"""


class InputError(Exception):
    """What is wrong with a drawing."""


def check(text):
    """Refuses what the renderer would not draw."""
    try:
        root = ElementTree.fromstring(text)
    except ElementTree.ParseError as error:
        raise InputError(f"not XML: {error}") from error
    if root.tag != SVG + "svg":
        raise InputError("the root is not an SVG element")
    for name in ("width", "height", "viewBox"):
        if name not in root.attrib:
            raise InputError(f"the root has no {name}")
    # The renderer takes no presentation attributes from the root.
    for name in set(root.attrib) - {"width", "height", "viewBox"}:
        raise InputError(f"attribute {name} of the root")
    for element in root.iter():
        if element.tag.removeprefix(SVG) not in ELEMENTS or not element.tag.startswith(SVG):
            raise InputError(f"element {element.tag}")
        for name, value in element.attrib.items():
            if name not in ATTRIBUTES:
                raise InputError(f"attribute {name}")
            if name in COLOURS and not COLOUR.fullmatch(value):
                raise InputError(f"colour {value}")


def minified(text):
    """`text` without comments, blanks between elements, and runs of blanks."""
    text = re.sub(r"<!--.*?-->", "", text, flags=re.DOTALL)
    text = re.sub(r"\s+", " ", text)
    return re.sub(r"(?<=>) | (?=<|/?>)", "", text).strip()


def drawing(path):
    """The text of one file as it goes into the program."""
    try:
        text = path.read_text(encoding="ascii")
    except UnicodeDecodeError as error:
        raise InputError("characters outside ASCII") from error
    check(text)
    text = minified(text)
    if len(text) > LONGEST_TEXT:
        raise InputError(f"{len(text)} characters, more than {LONGEST_TEXT}")
    if f'){DELIMITER}"' in text:
        raise InputError(f'has the end of a literal, ){DELIMITER}"')
    return text


def source(paths):
    """The C++ source for the files."""
    drawings = {}
    for path in paths:
        if not re.fullmatch(r"[a-z0-9_]+", path.stem) or path.suffix != ".svg":
            raise InputError(f"{path}: not a name of a drawing")
        if path.stem in drawings:
            raise InputError(f"{path}: a second drawing of this name")
        try:
            drawings[path.stem] = drawing(path)
        except InputError as error:
            raise InputError(f"{path}: {error}") from error
    rows = [f'    Drawing{{"{name}", R"{DELIMITER}({text}){DELIMITER}"}},\n' for name, text in sorted(drawings.items())]
    return "".join([HEAD, "constexpr std::array kDrawings = {\n", *rows, "};\n", FOOT])


def main():
    parser = argparse.ArgumentParser(description="Writes SVG drawings into a C++ source.")
    parser.add_argument("drawings", nargs="+", type=pathlib.Path, metavar="SVG")
    parser.add_argument("-o", "--output", required=True, type=pathlib.Path, metavar="OUT.cpp")
    arguments = parser.parse_args()
    try:
        arguments.output.write_text(source(arguments.drawings), encoding="ascii", newline="\n")
    except (InputError, OSError) as error:
        print(f"embed_icons.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())

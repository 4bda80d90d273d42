#!/usr/bin/env python3
"""Puts the pictures of an HTML page into it: embed_pictures.py PAGE -o OUT

Every src that names a file, relative to the page, becomes a data: URI, so that the page is one file wherever it goes.
"""

import argparse
import base64
import pathlib
import re

TYPES = {".png": "image/png", ".svg": "image/svg+xml"}


def embedded(page):
    def uri(match):
        picture = page.parent / match[1]
        return f'src="data:{TYPES[picture.suffix]};base64,{base64.b64encode(picture.read_bytes()).decode()}"'

    return re.sub(r'src="([^":]+)"', uri, page.read_text(encoding="utf-8"))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("page", type=pathlib.Path)
    parser.add_argument("-o", dest="out", type=pathlib.Path, required=True)
    arguments = parser.parse_args()
    arguments.out.write_text(embedded(arguments.page), encoding="utf-8")


if __name__ == "__main__":
    main()

"""The help page: that it is whole, that it says what the program says, and how a browser shows it."""

import base64
import html
import html.parser
import json
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["CORVANE_SOURCE"])
BIN = pathlib.Path(os.environ["CORVANE_BIN"])
PAGE = SOURCE / "data/help.html"
SHIPPED = BIN / "help.html"
LARGEST_PAGE = 1_500_000

VOID = {"br", "hr", "img", "link", "meta"}
# In C++ texts; what is not here stands for itself.
ESCAPES = {"n": "\n", "r": "\r", "t": "\t"}


class Element:
    def __init__(self, name, attributes):
        self.name, self.attributes, self.parts = name, attributes, []

    def all(self, *names):
        """The elements of these names below, in the order of the page."""
        for part in self.parts:
            if isinstance(part, Element):
                if part.name in names:
                    yield part
                yield from part.all(*names)

    @property
    def text(self):
        text = "".join(part if isinstance(part, str) else part.text for part in self.parts)
        return " ".join(text.replace("\N{NO-BREAK SPACE}", " ").split())


class Reader(html.parser.HTMLParser):
    """Reads a page into elements; notes what is not closed, closed twice, or said twice."""

    def __init__(self, text):
        super().__init__()
        self.root = Element("", {})
        self.open = [self.root]
        self.faults = []
        self.kind = ""
        self.feed(text)
        self.close()
        self.faults += [f"<{element.name}> is never closed" for element in self.open[1:]]

    def fault(self, words):
        self.faults.append(f"line {self.getpos()[0]}: {words}")

    def handle_decl(self, decl):
        self.kind = decl

    def handle_starttag(self, tag, attrs):
        names = [name for name, _ in attrs]
        if len(names) != len(set(names)):
            self.fault(f"<{tag}> has an attribute twice")
        element = Element(tag, dict(attrs))
        self.open[-1].parts.append(element)
        if tag not in VOID:
            self.open.append(element)

    def handle_endtag(self, tag):
        if self.open[-1].name == tag:
            self.open.pop()
        else:
            self.fault(f"</{tag}> where <{self.open[-1].name}> is open")

    def handle_data(self, data):
        if "<" in data or (self.open[-1].name != "style" and re.search(r"&(?!\s)", data)):
            self.fault("a character that has to be written as a reference")
        self.open[-1].parts.append(data)


def read(path):
    return Reader(path.read_text(encoding="utf-8"))


def literals(*patterns):
    """The texts in the program's sources, with what the compiler joins joined."""
    token = re.compile(r'"((?:[^"\\\n]|\\.)*)"|//[^\n]*|/\*.*?\*/|\'(?:[^\'\\]|\\.)\'|(\s+)|.', re.DOTALL)
    for path in sorted(path for pattern in patterns for path in SOURCE.glob(pattern)):
        joined = None
        for match in token.finditer(path.read_text(encoding="utf-8")):
            if match[1] is not None:
                joined = (joined or "") + match[1]
            elif match[2] is None and joined is not None:
                yield re.sub(r"\\(.)", lambda escape: ESCAPES.get(escape[1], escape[1]), joined)
                joined = None


def caption(text):
    """A caption as it is seen: without the mark of its letter and without its key."""
    return text.partition("\t")[0].replace("&", "")


class Structure(unittest.TestCase):
    def setUp(self):
        self.reader = read(PAGE)
        self.page = self.reader.root

    def test_every_element_is_closed_where_it_was_opened(self):
        self.assertEqual(self.reader.kind, "DOCTYPE html")
        self.assertEqual(self.reader.faults, [])
        self.assertEqual([element.name for element in self.page.parts if isinstance(element, Element)], ["html"])
        self.assertEqual([element.attributes.get("lang") for element in self.page.all("html")], ["en"])
        self.assertEqual([element.text for element in self.page.all("title")], ["Orvella Corvane - Help"])
        self.assertIn({"charset": "utf-8"}, [element.attributes for element in self.page.all("meta")])

    def test_headings_go_down_one_step_at_a_time(self):
        levels = [int(heading.name[1]) for heading in self.page.all("h1", "h2", "h3", "h4")]
        self.assertEqual(levels.count(1), 1)
        for former, level in zip([0, *levels], levels):
            self.assertLessEqual(level, former + 1)

    def test_every_link_leads_to_a_place_of_the_page(self):
        ids = [element.attributes["id"] for element in self.page.all("h2", "h3", "dt", "table")
               if "id" in element.attributes]
        self.assertEqual(len(ids), len(set(ids)))
        targets = [link.attributes["href"] for link in self.page.all("a")]
        self.assertGreater(len(targets), 30)
        self.assertEqual([target for target in targets if target.removeprefix("#") not in ids or target[0] != "#"], [])

    def test_the_contents_name_every_part_in_order(self):
        links = [(link.attributes["href"], link.text) for nav in self.page.all("nav") for link in nav.all("a")]
        steps = [heading.attributes.get("id") for heading in self.page.all("h2", "h3")]
        # The headings below "Step by step" are named too, those of tables not.
        begin, end = steps.index("steps"), steps.index("commands")
        wanted = [f"#{heading.attributes['id']}" for number, heading in enumerate(self.page.all("h2", "h3"))
                  if (heading.name == "h2" or begin < number < end) and heading.attributes.get("id") != "contents"]
        self.assertEqual([target for target, _ in links], wanted)
        headings = {heading.attributes.get("id"): heading.text for heading in self.page.all("h2", "h3")}
        self.assertEqual([text for target, text in links], [headings[target[1:]] for target, _ in links])

    def test_every_picture_is_there_and_described(self):
        pictures = list(self.page.all("img"))
        self.assertGreater(len(pictures), 5)
        for picture in pictures:
            self.assertTrue((PAGE.parent / picture.attributes["src"]).is_file(), picture.attributes["src"])
            self.assertIn("alt", picture.attributes)
        for figure in self.page.all("figure"):
            self.assertEqual([element.name for element in figure.parts if isinstance(element, Element)],
                             ["img", "figcaption"])
            self.assertTrue(all(picture.attributes["alt"] for picture in figure.all("img")))


class Shipped(unittest.TestCase):
    """The page that lies beside the programs."""

    def test_it_needs_nothing_beside_it(self):
        self.assertLess(SHIPPED.stat().st_size, LARGEST_PAGE)
        text = SHIPPED.read_text(encoding="utf-8")
        self.assertNotRegex(re.sub(r'"data:[^"]*"', "", text), r"https?:|url\(|@import|<script|<link")
        wanted = [PAGE.parent / picture.attributes["src"] for picture in read(PAGE).root.all("img")]
        pictures = [picture.attributes["src"] for picture in read(SHIPPED).root.all("img")]
        self.assertEqual(len(pictures), len(wanted))
        for picture, file in zip(pictures, wanted):
            kind, _, content = picture.partition(";base64,")
            self.assertEqual(kind, {".png": "data:image/png", ".svg": "data:image/svg+xml"}[file.suffix])
            self.assertEqual(base64.b64decode(content, validate=True), file.read_bytes(), file)

    def test_its_words_are_those_of_the_source(self):
        self.assertEqual(read(SHIPPED).root.text, read(PAGE).root.text)


class Content(unittest.TestCase):
    def setUp(self):
        self.page = read(PAGE).root

    def rows(self, table):
        (found,) = [element for element in self.page.all("table") if element.attributes.get("id") == table]
        return list(found.all("tr"))[1:]

    def test_every_command_of_the_menus_is_explained_with_its_key(self):
        source = (SOURCE / "ui/MainMenu.cpp").read_text(encoding="utf-8")
        switches = [caption(text) for text in literals("ui/logic/Details.*")
                    if re.fullmatch("(Enable|Disable) (Network Connection|DHCP)", caption(text))]
        self.assertEqual(len(set(switches)), 4)
        commands = []
        for call in re.findall(r"(?:->|\.)Append\(mnu\w+,\s*(.*?)\);", source, re.DOTALL):
            first = call.split(",")[0]
            text = re.search(r'"(.*?)"', first)[1]
            if named := re.match(r"Wx\(\w+\.(mnuEnable\w*)\)", first):
                ending = "DHCP" if named[1].endswith("DHCP") else "Network Connection"
                commands += [(name, text.removeprefix(r"\t")) for name in set(switches) if name.endswith(ending)]
            else:
                name, _, key = text.partition(r"\t")
                commands.append((name.replace("&", ""), key))
        self.assertGreater(len(commands), 18)
        explained = {}
        for row in self.rows("command-table"):
            _, names, keys, words = row.all("td")
            self.assertTrue(words.text)
            for name in names.all("b"):
                explained.setdefault(name.text, set()).add(keys.text)
        for name, key in commands:
            # The tray's menu has some of the main window's commands, without their keys.
            self.assertIn(name, explained)
            self.assertTrue(not key or key in explained[name], f"{name} has the key {key}")
        self.assertEqual(set(explained), {name for name, _ in commands})
        self.assertEqual({key for keys in explained.values() for key in keys if key},
                         {key for _, key in commands if key})

    def test_every_option_is_explained(self):
        environment = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
        usage = subprocess.run([BIN / "nicx", "-help"], check=True, stdout=subprocess.PIPE, text=True,
                               env=environment).stdout
        options = [option.lower() for option in re.findall(r"^(-\w+)", usage, re.MULTILINE)]
        self.assertGreater(len(options), 15)
        explained = [next(row.all("code")).text for row in self.rows("option-table")]
        self.assertEqual(sorted(explained), sorted(options))

    def test_captions_are_those_of_the_program(self):
        known = {caption(text) for text in literals("ui/**/*.cpp", "ui/**/*.h")}
        named = {element.text for element in self.page.all("b")}
        self.assertGreater(len(named), 30)
        self.assertEqual(named - known, set())

    def test_quoted_texts_are_those_of_the_program(self):
        folders = ("ui", "programs", "startup", "mac", "tcpip", "presets", "platform", "inventory", "vendors", "base")
        known = {text for folder in folders for text in literals(f"{folder}/**/*.cpp", f"{folder}/**/*.h")}
        quotes = list(self.page.all("q"))
        self.assertGreater(len(quotes), 30)
        for quote in quotes:
            fragments = [" ".join(part.split()) for part in quote.parts if isinstance(part, str)]
            for fragment in fragments:
                self.assertTrue(fragment and any(fragment in text for text in known), f"'{fragment}' of '{quote.text}'")


MEASURE = """<!DOCTYPE html>
<html><body style="margin: 0"><iframe style="border: 0; width: %dpx; height: 900px" srcdoc="%s"></iframe><script>
window.onload = () => {
  const frame = document.querySelector("iframe");
  const page = frame.contentDocument;
  const width = page.documentElement.clientWidth;
  const result = {
    width: frame.clientWidth,
    scrollWidth: page.documentElement.scrollWidth,
    tooWide: [...page.body.querySelectorAll("*")].filter(element => element.getBoundingClientRect().right > width + 0.5)
      .map(element => element.outerHTML.slice(0, 80)),
    clipped: [...page.body.querySelectorAll("*")].filter(element => element.scrollWidth > element.clientWidth + 1 &&
      element.clientWidth > 0 && element.tagName !== "PRE").map(element => element.outerHTML.slice(0, 80)),
    pictures: [...page.images].map(image => image.complete ? image.naturalWidth : 0)
  };
  frame.remove();
  document.body.textContent = "RESULT" + JSON.stringify(result) + "END";
};
</script></body></html>
"""


class Browser(unittest.TestCase):
    def shown(self, width):
        """What a browser makes of the page. The frame gives the width: a browser's own window has a least one."""
        with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
            wrapper = pathlib.Path(folder) / "wrapper.html"
            page = SHIPPED.read_text(encoding="utf-8")
            wrapper.write_text(MEASURE % (width, html.escape(page)), encoding="utf-8")
            done = subprocess.run(
                ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                 f"--user-data-dir={folder}/profile", "--window-size=1400,1000", "--dump-dom", wrapper.as_uri()],
                check=False, capture_output=True, text=True, timeout=120)
        found = re.search("RESULT(.*)END", html.unescape(done.stdout))
        self.assertTrue(found, f"{done.returncode}\n{done.stdout[:2000]}\n{done.stderr[-2000:]}")
        return json.loads(found[1])

    def check(self, width):
        result = self.shown(width)
        self.assertEqual(result["width"], width)
        self.assertEqual(result["tooWide"], [])
        self.assertEqual(result["clipped"], [])
        self.assertLessEqual(result["scrollWidth"], width)
        self.assertEqual(len(result["pictures"]), len(list(read(PAGE).root.all("img"))))
        self.assertNotIn(0, result["pictures"])

    def test_a_wide_window_shows_all_of_it(self):
        self.check(1280)

    def test_a_narrow_window_shows_all_of_it(self):
        self.check(400)


if __name__ == "__main__":
    unittest.main()

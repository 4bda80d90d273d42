"""The main window in small sizes, with large fonts and in dark colours: everything stays within reach."""

from typing import NamedTuple

from controls import LEAVES, SHOWING, TABLES
from main_window import OWN, MainWindowTest, picture
from waiting import NotNow
from window import LIST, octet_name

PARTS = (*LEAVES, *TABLES)
# In the details: their title and their lists.
TITLE = "Network Connection Details"
LISTS = ("IP Address", "Gateway", "DNS Server")
LARGE_FONTS = {"GDK_DPI_SCALE": "2"}
WHEEL_UP, WHEEL_DOWN, WHEEL_LEFT, WHEEL_RIGHT = 4, 5, 6, 7


class Area(NamedTuple):
    x: int
    y: int
    width: int
    height: int

    def clipped(self, other):
        x, y = max(self.x, other.x), max(self.y, other.y)
        return Area(x, y, min(self.x + self.width, other.x + other.width) - x,
                    min(self.y + self.height, other.y + other.height) - y)

    @property
    def empty(self):
        return self.width <= 0 or self.height <= 0


class Part(NamedTuple):
    """A control: which one it is (there are several of a name), where it would be, and what is to be seen of it."""
    name: tuple
    area: Area
    seen: Area


def reach(intervals):
    """How far the intervals, each a start and a length, go on from 0 without a gap."""
    end = 0
    for start, length in sorted(intervals):
        if start <= end:
            end = max(end, start + length)
    return end


class Layout(MainWindowTest):
    def open_with_links(self, environment=None):
        self.veth("lan0", "10.1.0.2/24", mac=OWN)
        self.bridge("br0")
        self.open_window(environment=environment or {})
        self.choose("lan0")

    def resize(self, width, height):
        """Makes the window as small as that, or as small as it lets itself be made."""
        window = self.x_window()
        hints = window.get_wm_normal_hints()
        wanted = (max(width, hints.min_width), max(height, hints.min_height))
        window.configure(width=wanted[0], height=wanted[1])
        self.desktop.screen.display.sync()

        def look():
            # What fills the window follows it.
            size = self.window.root().children[0].extents[2:]
            if size != wanted:
                raise NotNow(f"its size is {size}")
        self.window.patiently(look, f"the size {wanted}")
        self.desktop.settle()
        return wanted

    def parts(self):
        """All controls, menus included, by name."""
        def walk(node, seen):
            for child in node.children:
                role = child.role
                if not child.has(SHOWING):
                    continue
                area = Area(*child.extents)
                if role in PARTS or role == "menu" or not child.children:
                    name = (role, child.name)
                    number = sum(part[:2] == name for part in found)
                    found[(*name, number)] = Part((*name, number), area, area.clipped(seen))
                else:
                    walk(child, area.clipped(seen))
        found = {}

        def look():
            found.clear()
            root = self.window.root()
            walk(root, Area(*root.extents))
            return dict(found)
        return self.window.patiently(look, "the controls")

    def assert_no_overlap(self, parts):
        seen = [part for part in parts.values() if not part.seen.empty]
        for position, part in enumerate(seen):
            for other in seen[:position]:
                self.assertTrue(part.seen.clipped(other.seen).empty, f"{part} and {other} overlap")

    def assert_everything_can_be_seen(self):
        """Turns the wheel on the details from one end to the other; every part of every control comes into sight."""
        pane = Area(*self.details_pane())
        self.assertFalse(pane.empty, "there is no room for the details")
        # On the margin, where nothing takes the wheel for itself.
        self.desktop.move(pane.x + 3, pane.y + pane.height // 2)
        self.turn_to_end(WHEEL_LEFT)
        self.turn_to_end(WHEEL_UP)
        columns, rows = {}, {}
        for _ in self.turn_wheel(WHEEL_RIGHT):
            for _ in self.turn_wheel(WHEEL_DOWN):
                parts = self.parts()
                self.assert_no_overlap(parts)
                for name, part in parts.items():
                    if not part.seen.empty:
                        columns.setdefault(name, []).append((part.seen.x - part.area.x, part.seen.width))
                        rows.setdefault(name, []).append((part.seen.y - part.area.y, part.seen.height))
            self.turn_to_end(WHEEL_UP)
        for name, part in parts.items():
            self.assertEqual(reach(columns.get(name, [])), part.area.width, f"{part} is cut off at its side")
            self.assertEqual(reach(rows.get(name, [])), part.area.height, f"{part} cannot be scrolled into sight")

    def turn_wheel(self, direction):
        """Turns the wheel where the pointer is, step by step, until the details move no more."""
        title, former = self.window.label(TITLE), None
        while (place := title.extents) != former:
            yield
            self.desktop.screen.click(direction, 1)
            self.desktop.settle()
            former = place

    def turn_to_end(self, direction):
        for _ in self.turn_wheel(direction):
            pass

    def details_pane(self):
        """What is to be seen of the details."""
        def find(node):
            children = node.children
            if any(child.name == TITLE and child.role == "label" for child in children):
                return node.extents
            return next((found for found in map(find, children) if found), None)
        return self.window.patiently(lambda: find(self.window.root()), "the details")

    def assert_focus_is_seen(self):
        """Goes round with the Tab key: what has the focus is in sight."""
        window, pane = Area(*self.window.root().extents), Area(*self.details_pane())
        ring = []
        while (focus := self.window.focus) not in ring[:1]:
            ring.append(focus)
            area = Area(*self.window.control(*focus).extents)
            seen = area.clipped(pane if focus[1] in LISTS else window)
            self.assertFalse(seen.empty, f"{focus} has the focus and is out of sight: {area}")
            self.desktop.press("Tab")
        self.assertGreaterEqual(len(ring), 9, ring)

    def assert_usable(self):
        self.assert_focus_is_seen()
        self.desktop.press("Home")
        self.assert_everything_can_be_seen()
        self.choose("br0")

    def test_as_it_opens(self):
        self.open_with_links()
        self.assert_everything_can_be_seen()

    def test_800_by_600(self):
        self.open_with_links()
        self.assertEqual(self.resize(800, 600), (800, 600))
        self.assert_usable()

    def test_560_by_420(self):
        self.open_with_links()
        self.assertEqual(self.resize(560, 420), (560, 420))
        self.assert_usable()

    def test_large_fonts(self):
        self.open_with_links(environment=LARGE_FONTS)
        self.assert_usable()

    def test_large_fonts_800_by_600(self):
        self.open_with_links(environment=LARGE_FONTS)
        self.resize(800, 600)
        self.assert_usable()

    def test_the_panel_for_another_address_in_a_small_window(self):
        self.open_with_links()
        self.resize(560, 420)
        self.open_panel("lan0")
        self.assert_everything_can_be_seen()

    def test_the_panels_of_the_lists_and_the_preset_editor_in_a_small_window(self):
        self.open_with_links()
        self.resize(560, 420)
        for command in ("Add IP Address", "Add Gateway", "Add DNS Server"):
            self.window.menu("TCP/IP", command).choose()
            self.assert_everything_can_be_seen()
        self.desktop.press("ctrl+t")
        self.window.entry("Preset name").expect(focused=True)
        self.assert_everything_can_be_seen()

    def test_large_fonts_fit_into_the_boxes(self):
        self.open_with_links(environment=LARGE_FONTS)
        line = Area(*self.fact("Connection Name:").extents).height
        self.open_panel("lan0")
        boxes = [octet_name(0), "Vendor:"]
        self.assert_heights(boxes, line)
        self.window.menu("TCP/IP", "Add IP Address").choose()
        self.assert_heights(["IP address, octet 1 of 4", "Subnet mask, octet 4 of 4", "Prefix length"], line)
        self.window.menu("TCP/IP", "Add Gateway").choose()
        self.assert_heights(["Gateway, octet 1 of 4", "Metric . . . ."], line)
        self.desktop.press("ctrl+t")
        self.assert_heights(["Preset name", octet_name(0)], line)

    def assert_heights(self, boxes, line):
        for name in boxes:
            box = self.window.entry(name)
            box.expect(showing=True)
            self.assertGreaterEqual(Area(*box.extents).height, line, name)

    def test_dark_colours(self):
        self.open_with_links(environment={"GTK_THEME": "Adwaita:dark"})
        pixels = picture(self.x_window())
        dark = sum(sum(pixel) < 3 * 80 for pixel in pixels)
        self.assertGreater(dark / len(pixels), 0.8)
        self.assertGreater(len(set(pixels)), 50)

    def test_the_list_and_the_details_share_the_height(self):
        """The bar between them is moved with the mouse."""
        self.open_with_links()
        before = Area(*self.window.table(LIST).extents)
        pane = Area(*self.details_pane())
        grip = (before.x + before.width // 2, (before.y + before.height + pane.y) // 2)
        self.drag(grip, (grip[0], grip[1] + 100))
        self.assertEqual(Area(*self.window.table(LIST).extents).height, before.height + 100)

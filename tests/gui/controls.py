"""What is in a program's windows, as a screen reader finds it (AT-SPI over D-Bus). Nothing that was read is kept."""

from gi.repository import GLib

from waiting import NotNow

# States of an accessible object and the relation to its label, by number (at-spi2-core, atspi-constants.h).
ACTIVE, CHECKED, EDITABLE, FOCUSED, MODAL, SENSITIVE, SHOWING, VISIBLE = 1, 4, 7, 12, 16, 24, 25, 30
LABELLED_BY = 2

ENTRIES, TABLES, BUTTONS = ("text", "password text"), ("table", "tree table"), ("push button", "toggle button")
# What is in them is reached through them only.
CLOSED = (*TABLES, "menu bar", "combo box")
# Nothing is in them; not to look saves half of the time.
LEAVES = (*BUTTONS, *ENTRIES, "check box", "icon", "label", "radio button", "scroll bar", "separator")

# The longest that a program may take to answer a question before it is asked again.
ANSWER_MILLISECONDS = 2000


class Node:
    """An accessible object of a program."""

    def __init__(self, bus, reference):
        self.bus = bus
        self.owner, self.path = reference

    def _call(self, interface, method, signature, arguments):
        return self.bus.call_sync(self.owner, self.path, interface, method, GLib.Variant(signature, arguments), None, 0,
                                  ANSWER_MILLISECONDS, None).unpack()

    def ask(self, interface, method, signature="()", *arguments):
        return self._call(f"org.a11y.atspi.{interface}", method, signature, arguments)

    def get(self, interface, name):
        return self._call("org.freedesktop.DBus.Properties", "Get", "(ss)", (f"org.a11y.atspi.{interface}", name))[0]

    def node(self, reference):
        return Node(self.bus, reference)

    def has(self, state):
        states = self.ask("Accessible", "GetState")[0]
        return bool(states[state // 32] >> state % 32 & 1)

    @property
    def pid(self):
        bus = Node(self.bus, ("org.freedesktop.DBus", "/org/freedesktop/DBus"))
        return bus._call("org.freedesktop.DBus", "GetConnectionUnixProcessID", "(s)", (self.owner,))[0]

    @property
    def role(self):
        return self.ask("Accessible", "GetRoleName")[0]

    @property
    def name(self):
        """What a screen reader calls it: its name, or else that of its label."""
        name = self.get("Accessible", "Name")
        if not name:
            for relation, targets in self.ask("Accessible", "GetRelationSet")[0]:
                if relation == LABELLED_BY:
                    name = " ".join(self.node(target).get("Accessible", "Name") for target in targets)
        return name

    @property
    def children(self):
        return [self.node(reference) for reference in self.ask("Accessible", "GetChildren")[0]]

    @property
    def text(self):
        if "org.a11y.atspi.Text" in self.ask("Accessible", "GetInterfaces")[0]:
            return self.ask("Text", "GetText", "(ii)", 0, -1)[0]
        return self.name

    @property
    def extents(self):
        """x, y, width and height on the screen."""
        if not self.has(SHOWING):
            raise NotNow(f"the {self.role} '{self.name}' is not in sight")
        return self.ask("Component", "GetExtents", "(u)", 0)[0]

    @property
    def target(self):
        """The extents of something that can be worked."""
        if not self.has(SENSITIVE):
            raise NotNow(f"the {self.role} '{self.name}' is disabled")
        return self.extents

    def walk(self):
        """Everything below, from top to bottom, with roles. What is in hidden parts is left out."""
        for child in self.children:
            role = child.role
            yield child, role
            if role not in LEAVES and role not in CLOSED and child.has(VISIBLE):
                yield from child.walk()


class Control:
    """A control, looked for anew at every use. `find` gives its node."""

    def __init__(self, application, what, find):
        self.application, self.what, self._find = application, what, find

    def _read(self, read):
        return self.application.patiently(lambda: read(self._find()), self.what)

    text = property(lambda self: self._read(lambda node: node.text))
    name = property(lambda self: self._read(lambda node: node.name))
    role = property(lambda self: self._read(lambda node: node.role))
    description = property(lambda self: self._read(lambda node: node.get("Accessible", "Description")))
    enabled = property(lambda self: self._read(lambda node: node.has(SENSITIVE)))
    editable = property(lambda self: self._read(lambda node: node.has(EDITABLE)))
    checked = property(lambda self: self._read(lambda node: node.has(CHECKED)))
    focused = property(lambda self: self._read(lambda node: node.has(FOCUSED)))
    caret = property(lambda self: self._read(lambda node: node.get("Text", "CaretOffset")))
    extents = property(lambda self: self._read(lambda node: node.extents))

    @property
    def selection(self):
        """Start and end of the selected part of the text; both are the same when nothing is selected."""
        return self._read(lambda node: node.ask("Text", "GetSelection", "(i)", 0))

    @property
    def mnemonic(self):
        """The chord that works the control, such as "alt+p", empty when there is none."""
        binding = self._read(lambda node: node.ask("Action", "GetKeyBinding", "(i)", 0)[0])
        return binding.partition(";")[0].replace("<Alt>", "alt+")

    @property
    def showing(self):
        """True when it is there and in sight."""
        def look():
            try:
                return self._find().has(SHOWING)
            except NotNow:
                return False
        return self.application.patiently(look, self.what)

    def expect(self, **wanted):
        """Waits until the properties have these values."""
        def look():
            found = {name: getattr(self, name) for name in wanted}
            if found != wanted:
                raise NotNow(f"it is {found}")
        self.application.patiently(look, f"{self.what} is {wanted}")

    def point_at(self):
        """Moves the pointer to it as soon as it is enabled."""
        self.application.point_at(lambda: self._read(lambda node: node.target))

    def click(self, button=1, times=1):
        self.point_at()
        self.application.desktop.click(button, times)

    def enter(self, text):
        """Replaces the text of an entry by typing."""
        self.click()
        self.application.desktop.press("ctrl+a")
        self.application.desktop.type(text)


class Table(Control):
    """A list with columns."""

    @staticmethod
    def _cells(node, row):
        return [node.node(node.ask("Table", "GetAccessibleAt", "(ii)", row, column)[0])
                for column in range(node.get("Table", "NColumns"))]

    @classmethod
    def texts(cls, node, rows):
        # A cell with a picture holds its text in a part of it.
        return [tuple(cell.name or "".join(part.name for part in cell.children) for cell in cls._cells(node, row))
                for row in rows]

    size = property(lambda self: self._read(lambda node: node.get("Table", "NRows")))
    rows = property(lambda self: self._read(lambda node: self.texts(node, range(node.get("Table", "NRows")))))
    selected = property(lambda self: self._read(lambda node: node.ask("Table", "GetSelectedRows")[0]))
    selected_rows = property(
        lambda self: self._read(lambda node: self.texts(node, node.ask("Table", "GetSelectedRows")[0])))

    @property
    def headers(self):
        return self._read(lambda node: [node.ask("Table", "GetColumnDescription", "(i)", column)[0]
                                        for column in range(node.get("Table", "NColumns"))])

    def click_row(self, row, button=1, times=1, column=0):
        """Clicks on the row with this number, or with this text in its first cell."""
        self.application.point_at(lambda: self._read(lambda node: self._cell_target(node, row, column)))
        self.application.desktop.click(button, times)

    def _cell_target(self, node, row, column):
        if isinstance(row, str):
            firsts = [texts[0] for texts in self.texts(node, range(node.get("Table", "NRows")))]
            if row not in firsts:
                raise NotNow(f"its rows are {firsts}")
            row = firsts.index(row)
        x, y, width, height = self._cells(node, row)[column].extents
        left, top, full_width, full_height = node.target
        if not (left <= x < left + full_width and top <= y <= top + full_height - height):
            raise NotNow(f"row {row} is scrolled out of sight")
        return x, y, min(width, left + full_width - x), height


class MenuItem(Control):
    """A menu or an item of it, named by the path to it from the node that `start` gives."""

    def __init__(self, application, start, path):
        self.start, self.path = start, path
        super().__init__(application, f"menu {' > '.join(path)}", self._follow)

    def _follow(self):
        node = self.start()
        for name in self.path:
            children = {child.name: child for child in node.children}
            if name not in children:
                raise NotNow(f"there is no '{name}' among {list(children)}")
            node = children[name]
        return node

    @property
    def items(self):
        """Captions and whether they are enabled, without separators."""
        return self._read(lambda node: [(child.name, child.has(SENSITIVE)) for child in node.children
                                        if child.role != "separator"])

    def choose(self):
        """Goes to the item with the mouse. Menus open with a click, submenus when the pointer is on them."""
        way = [MenuItem(self.application, self.start, self.path[:depth]) for depth in range(1, len(self.path) + 1)]
        in_bar = self._read(lambda _: self.start().role) == "menu bar"
        for parent, child in zip(way, way[1:]):
            if not child.showing:
                parent.point_at()
                if in_bar and parent is way[0]:
                    self.application.desktop.click()
        self.click()


class Part:
    """Something with controls: a window with this title, or what overrides `root`."""

    def __init__(self, application, title, what=None):
        self.application, self.title, self.what = application, title, what or f"the window '{title}'"
        self._known = {}

    def root(self):
        """The node that everything is in."""
        for node in self.application.node.children:
            if node.get("Accessible", "Name") == self.title and node.has(SHOWING):
                return node
        raise NotNow(f"the windows are {self.application.windows}")

    def _read(self, read):
        return self.application.patiently(read, self.what)

    def control(self, roles, name=None):
        """The control of one of the roles (a text or several), with this name unless there is only one."""
        roles = (roles,) if isinstance(roles, str) else roles
        kind = Table if roles == TABLES else Control
        return kind(self.application, f"{roles[0]} '{name or ''}' of {self.what}", lambda: self.search(roles, name))

    def entry(self, name=None):
        return self.control(ENTRIES, name)

    def button(self, name=None):
        return self.control(BUTTONS, name)

    def check(self, name=None):
        return self.control("check box", name)

    def label(self, name=None):
        return self.control("label", name)

    def table(self, name=None):
        return self.control(TABLES, name)

    def menu(self, *path):
        """An item of the menu bar, such as menu("File", "Exit")."""
        return MenuItem(self.application, lambda: self.search(("menu bar",), None), path)

    def search(self, roles, name):
        """The node of a control."""
        # To look at everything takes a tenth of a second, so what was found last is looked at first.
        known = self._known.pop((roles, name), None)
        if not known or not known.has(SHOWING) or name not in (None, known.name):
            there = [(node, node.name) for node, role in self.root().walk() if role in roles and node.has(VISIBLE)]
            matches = [node for node, found in there if name in (None, found)]
            # The same name may stand on pages of which one is in sight.
            matches = [node for node in matches if node.has(SHOWING)] or matches
            if len(matches) != 1:
                raise NotNow(f"{len(matches)} match among {[found for _, found in there]}")
            known = matches[0]
        self._known[roles, name] = known
        return known

    @property
    def focus(self):
        """Role and name of what has the keyboard focus, or None."""
        found = self._read(lambda: [(role, node.name) for node, role in self.root().walk() if node.has(FOCUSED)])
        return found[-1] if found else None

    @property
    def buttons(self):
        """Names of the buttons in sight."""
        return self._read(lambda: [node.name for node, role in self.root().walk()
                                   if role in BUTTONS and node.has(SHOWING)])

    def describe(self):
        """What is to be seen, for the message of a failed test."""
        for node, role in self.root().walk():
            text = Table.texts(node, range(min(node.get("Table", "NRows"), 20))) if role in TABLES else node.text
            if node.has(SHOWING) and (node.name or text):
                yield f"  {role} '{node.name}': {text!r}{'' if node.has(SENSITIVE) else ', disabled'}"

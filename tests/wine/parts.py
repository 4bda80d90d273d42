"""What is in the windows of a Windows program, as observer.exe tells it. Nothing that was read is kept."""

from waiting import NotNow

BUTTONS, ENTRIES, TABLES = ("button",), ("edit",), ("syslistview32",)
TEXTS = ("static",)
COMBOS = ("combobox",)
MESSAGE_BOX, POPUP_MENU = "#32770", "#32768"


def without_mnemonic(text):
    return text.replace("&&", "\0").replace("&", "").replace("\0", "&")


class Node:
    """A window with all below it, as it was at one moment."""

    def __init__(self, facts):
        self.facts = facts
        self.children = [Node(child) for child in facts["children"]]

    def __getattr__(self, name):
        try:
            return self.facts[name]
        except KeyError:
            raise AssertionError(f"the {self.kind} '{self.title}' has no {name}") from None

    kind = property(lambda self: self.facts["class"].lower())
    text = property(lambda self: self.facts["text"].replace("\r\n", "\n"))
    # What is written on a button or beside a box; a screen reader calls controls without a text of their own by `name`.
    title = property(lambda self: without_mnemonic(self.facts["text"]))

    def is_called(self, name):
        return name is None or name in (self.title, without_mnemonic(self.facts["name"]))

    def walk(self):
        """Everything below that is in sight, in the order of the Tab key."""
        for child in self.children:
            if child.facts["visible"]:
                yield child
                yield from child.walk()

    def lines(self, depth=0):
        """A description to read."""
        marks = [mark for mark in ("enabled", "focused", "active", "checked") if self.facts.get(mark)]
        held = [f"{name}={self.facts[name]}" for name in ("rows", "choices", "popup", "icon") if name in self.facts]
        yield " ".join(["  " * depth + self.kind, repr(self.facts["text"]), repr(self.facts["name"]),
                        str(self.facts["rect"]), *marks, *held])
        for child in self.children:
            if child.facts["visible"]:
                yield from child.lines(depth + 1)


class Control:
    """A control, looked for anew at every use. `find` gives its node."""

    def __init__(self, program, what, find):
        self.program, self.what, self._find = program, what, find

    def _read(self, read):
        return self.program.patiently(lambda: read(self._find()), self.what)

    text = property(lambda self: self._read(lambda node: node.text))
    enabled = property(lambda self: self._read(lambda node: node.enabled))
    focused = property(lambda self: self._read(lambda node: node.focused))
    checked = property(lambda self: self._read(lambda node: node.checked))
    read_only = property(lambda self: self._read(lambda node: node.readOnly))
    selection = property(lambda self: self._read(lambda node: tuple(node.selection)))
    choices = property(lambda self: self._read(lambda node: node.choices))
    choice = property(lambda self: self._read(lambda node: node.choice))
    rect = property(lambda self: self._read(lambda node: tuple(node.rect)))

    @property
    def showing(self):
        def look():
            try:
                return bool(self._find())
            except NotNow:
                return False
        return self.program.patiently(look, self.what)

    @property
    def mnemonic(self):
        """The chord that works the control, such as "alt+p"."""
        text = self._read(lambda node: node.facts["text"]).replace("&&", "")
        if "&" not in text:
            raise AssertionError(f"{self.what} has no mnemonic: {text}")
        return "alt+" + text[text.index("&") + 1].lower()

    def expect(self, **wanted):
        """Waits until the properties have these values."""
        def look():
            found = {name: getattr(self, name) for name in wanted}
            if found != wanted:
                raise NotNow(f"it is {found}")
        self.program.patiently(look, f"{self.what} is {wanted}")

    def _place(self, node):
        if not node.enabled:
            raise NotNow("it is disabled")
        return node.rect

    def click(self, button=1, times=1):
        self.program.click_at(lambda: self._read(self._place), button, times)

    def enter(self, text):
        """Replaces the text of an entry by typing."""
        self.click()
        self.program.press("Home", "shift+End")
        self.program.type(text)


class ListView(Control):
    """A list with columns."""

    rows = property(lambda self: self._read(lambda node: [tuple(row) for row in node.rows]))
    headers = property(lambda self: self._read(lambda node: node.columns))
    selected = property(lambda self: self._read(lambda node: node.selected))
    selected_rows = property(
        lambda self: self._read(lambda node: [tuple(node.rows[row]) for row in node.selected]))

    def click_row(self, row, button=1, times=1):
        """Clicks on the row with this number, or with this text in its first cell."""
        self.program.click_at(lambda: self._read(lambda node: self._row_place(node, row)), button, times)

    def _row_place(self, node, row):
        if isinstance(row, str):
            firsts = [texts[0] for texts in node.rows]
            if row not in firsts:
                raise NotNow(f"its rows are {node.rows}")
            row = firsts.index(row)
        x, y, width, height = node.rowRects[row]
        left, top, full_width, full_height = self._place(node)
        if not top <= y <= top + full_height - height:
            raise NotNow(f"row {row} is scrolled out of sight")
        right = min(x + width, left + full_width)
        return [max(x, left), y, right - max(x, left), height]


class Menu:
    """A menu of a window's menu bar, or an open pop-up menu. `find` gives the items."""

    def __init__(self, program, what, find):
        self.program, self.what, self._find = program, what, find

    @property
    def items(self):
        """Texts, without the keys behind them, and whether they can be chosen; separators are left out."""
        def read():
            return [(without_mnemonic(item["text"]).partition("\t")[0], item["enabled"])
                    for item in self._find() if not item["separator"]]
        return self.program.patiently(read, self.what)

    def expect_items(self, *wanted):
        def look():
            found = self.items
            if found != list(wanted):
                raise NotNow(f"they are {found}")
        self.program.patiently(look, f"the items {wanted} of {self.what}")

    def click(self, name):
        """Clicks on an item of an open pop-up menu."""
        def find():
            for item in self._find():
                if without_mnemonic(item["text"]).partition("\t")[0] == name and "rect" in item:
                    return item["rect"]
            raise NotNow(f"there is no item '{name}'")
        self.program.click_at(lambda: self.program.patiently(find, f"item '{name}' of {self.what}"))


class Part:
    """A window of a program: what it is made of, by kind and name. `find` gives its node."""

    def __init__(self, program, what, find):
        self.program, self.what, self._root = program, what, find

    def root(self):
        return self.program.patiently(self._root, self.what)

    def search(self, kinds, name, position=0):
        found = [node for node in self._root().walk() if node.kind in kinds and node.is_called(name)]
        if len(found) <= position:
            raise NotNow(f"there is no {kinds[0]} '{name}'")
        return found[position]

    def control(self, kinds, name, position=0, kind=Control):
        what = f"the {kinds[0]} '{name}' of {self.what}"
        return kind(self.program, what, lambda: self.search(kinds, name, position))

    def button(self, name):
        return self.control(BUTTONS, name)

    def entry(self, name, position=0):
        return self.control(ENTRIES, name, position)

    def combo(self, name):
        return self.control(COMBOS, name)

    def table(self, name, position=0):
        return self.control(TABLES, name, position, ListView)

    def label(self, name):
        return self.control(TEXTS, name)

    def menu(self, name):
        """A menu of the menu bar."""
        def find():
            for item in self._root().menu:
                if without_mnemonic(item["text"]) == name:
                    return item["items"]
            raise NotNow(f"there is no menu '{name}'")
        return Menu(self.program, f"the menu '{name}'", find)

    @property
    def buttons(self):
        """Texts of the push buttons that are in sight."""
        return [node.title for node in self.root().walk() if node.kind in BUTTONS and node.facts["pushButton"]]

    def describe(self):
        return list(self.root().lines())


class Box(Part):
    """A dialog or message box."""

    @property
    def text(self):
        """Its texts, one after the other."""
        return "\n".join(node.text for node in self.root().walk() if node.kind in TEXTS and node.text)

    @property
    def icon(self):
        """"error", "warning", "information" or "question"; None without an icon."""
        icons = [node.facts["icon"] for node in self.root().walk() if "icon" in node.facts]
        return icons[0] if icons else None

    def press(self, name, by_key=False):
        """Presses a button with the mouse or with its mnemonic, and waits until the box is gone."""
        handle = self.root().handle
        button = self.button(name)
        if by_key:
            self.program.press(button.mnemonic)
        else:
            button.click()
            # Now and then Wine takes no notice of a click on a window that has just come up.
            if not self.program.is_gone(handle):
                button.click()
        self.program.expect_gone(handle, self.what)

"""The taskbar of a case: taskbar.exe in the place of the one that Wine's desktop has. It shows nothing, but tells what
programs have called it for, picture for picture, and sends an icon's messages.

    class Cases(TrayTest):
        def test_something(self):
            self.open_window()
            icon = self.taskbar.icon()
            self.assertEqual((icon.tip, icon.lamps), ("Orvella Corvane v4.5 - eth0", DARK))
            self.taskbar.send(LEFT_UP)
            self.expect_hidden()
"""

from typing import NamedTuple

from programs import START_SECONDS
from waiting import NotNow, patiently
from wine import Observer, text
from wine_window import TITLE, TwoConnectionsTest
from world import CONNECTIONS_KEY

# Codes of the icon's messages: those of the mouse (winuser.h), and the one by which the program is called for.
LEFT_UP, RIGHT_UP, ACTIVATE = 0x202, 0x205, 6

# Lamps of the icon that are lit.
SENDING, RECEIVING = "sending", "receiving"
DARK, BOTH = frozenset(), frozenset((SENDING, RECEIVING))

# taskbar.exe's exit code without a window.
NO_WINDOW = 3

# A pixel is coloured when a channel is this much above the others; grey ones, however they are mixed with the
# background, are not.
COLOURED = 40


class Picture:
    """What an icon looks like."""

    def __init__(self, facts):
        self.width, self.height = facts["width"], facts["height"]
        pixels = bytes.fromhex(facts["pixels"])
        # Blue, green, red, opacity.
        self.pixels = [tuple(pixels[i:i + 4]) for i in range(0, len(pixels), 4)]

    @property
    def drawn(self):
        """How many pixels are more than half opaque."""
        return sum(opacity > 127 for *_, opacity in self.pixels)

    def rows_where(self, coloured):
        return {position // self.width for position, (blue, green, red, opacity) in enumerate(self.pixels)
                if opacity > 127 and coloured(blue, green, red)}

    @property
    def lamps(self):
        """Those that are lit: the upper one is green when something is sent, the lower one blue when something is
        received. Any other colour anywhere is an error."""
        upper, lower = set(range(self.height // 2)), set(range(self.height // 2, self.height))
        lit = set()
        for name, half, found in (
                (SENDING, upper, self.rows_where(lambda blue, green, red: green > max(blue, red) + COLOURED)),
                (RECEIVING, lower, self.rows_where(lambda blue, green, red: blue > max(green, red) + COLOURED)),
                ("red", set(), self.rows_where(lambda blue, green, red: red > max(blue, green) + COLOURED))):
            if not found <= half:
                raise AssertionError(f"{name} is shown in the rows {sorted(found)} of {self.height}")
            if found:
                lit.add(name)
        return frozenset(lit)


class Icon(NamedTuple):
    """An icon as the taskbar has it. `picture` is None without a picture."""
    window: int
    id: int
    message: int
    tip: str
    picture: Picture | None

    lamps = property(lambda self: self.picture.lamps)


class Taskbar(Observer):
    """taskbar.exe. It runs as long as the test."""

    def __init__(self, wine):
        super().__init__(patiently(lambda: self._start_with_window(wine), "the taskbar", START_SECONDS))
        self._pictures = {}
        patiently(self.expect_first, "the taskbar that programs find")

    @staticmethod
    def _start_with_window(wine):
        """It may be the first that needs Wine's desktop, and gets no window when that is not ready."""
        process = Observer.start(wine, "taskbar.exe")
        if process.stdout.readline():
            return process
        code = process.wait()
        if code != NO_WINDOW:
            raise AssertionError(f"the taskbar has ended with {code}")
        raise NotNow("it gets no window")

    def expect_first(self):
        if not self.place["first"]:
            raise NotNow("another one is above it")

    @property
    def place(self):
        """Whether it is the "first" taskbar, the one that programs call, and how many "others" there are."""
        return self.ask("place")

    def _picture(self, number):
        if number not in self._pictures:
            self._pictures[number] = None if number < 0 else Picture(self.ask("picture", number))
        return self._pictures[number]

    def _icon(self, facts):
        return Icon(facts["window"], facts["id"], facts["message"], facts["tip"], self._picture(facts["picture"]))

    @property
    def icons(self):
        return [self._icon(facts) for facts in self.ask("icons")]

    def icon(self):
        """The one icon that there is, which may take a while to come."""
        def look():
            found = self.icons
            if len(found) != 1:
                raise NotNow(f"{len(found)} icons")
            return found[0]
        return patiently(look, "the icon")

    def expect_tip(self, tip):
        """Waits until the icon has this tip, to the last character."""
        def look():
            found = self.icon().tip
            if found != tip:
                raise NotNow(f"it is '{found}'")
        patiently(look, f"the tip '{tip}'")

    # --- the diary -----------------------------------------------------------------------------------------------

    def diary(self, since=0):
        """The calls from that line on: pairs of what was done and the icon; None for it at a "restart". A call that
        makes no sense, such as a change of an icon that the taskbar does not have, is "refused"."""
        return [(line["what"], None) if line["what"] == "restart" else
                (line["what"] if line["accepted"] else f"refused {line['what']}", self._icon(line))
                for line in self.ask("diary", since)]

    @property
    def length(self):
        """The number of the diary's next line."""
        return len(self.ask("diary", 0))

    def lamps(self, since):
        """What the lamps have shown since that line, one state after the other."""
        states = []
        for _, icon in self.diary(since):
            if icon and states[-1:] != [icon.lamps]:
                states.append(icon.lamps)
        return states

    # --- what a taskbar does -------------------------------------------------------------------------------------

    def send(self, *codes):
        """Posts the icon's message with each of these codes."""
        for code in codes:
            self.ask("send", code)

    def restart(self):
        """Forgets the icons and tells all programs of a new taskbar, as when the desktop has been started anew."""
        self.ask("restart")


class TrayTest(TwoConnectionsTest):
    """Base of the cases: two connections, lan0 and lan1, and a taskbar that is there before the program."""

    taskbar = None

    def open_window(self, *arguments, **options):
        self.taskbar = Taskbar(self.wine)
        self.window = self.nicx(*arguments, title=TITLE, **options)
        self.window.expect_window(TITLE)
        self.taskbar.icon()
        return self.window

    def expect_shown(self):
        self.window.expect_window(TITLE)
        self.window.expect_windows(TITLE)

    def expect_hidden(self):
        self.window.expect_windows()

    def expect_handled(self):
        """Waits until the program has handled what the taskbar has sent. A new taskbar's message comes behind it and is
        answered with the icon; what the program puts off while it handles a message is done before the second."""
        for _ in range(2):
            self.taskbar.restart()
            self.taskbar.icon()

    def rename(self, link, name):
        """Gives the connection of a link another name."""
        self.registry.write(f"{CONNECTIONS_KEY}\\{self.links[link][0]}\\Connection", "Name", text(name))

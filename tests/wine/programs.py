"""Windows programs as a user meets them: keys and clicks come from the X server, what is on the screen is read with
observer.exe. For use inside tests/gui/display.

    program = Program(wine, wine.drive / "Corvane/nicx.exe", "-n", "eth0")
    box = program.expect_box("Done - Orvella Corvane v4")
    box.press("OK")
    program.wait_exit()
"""

import os
import pathlib
import subprocess
import sys
import time

from parts import MESSAGE_BOX, POPUP_MENU, Box, Menu, Node, Part
from keyboard import Keyboard
from screen import Screen
from waiting import PASSING, SECONDS, NotNow, end_with_parent, patiently

# Longer than the time in which two clicks are a double click (Wine's default is half a second).
DOUBLE_CLICK_SECONDS = 0.6
# Wine itself may take its time to begin.
START_SECONDS = 60
# What a window needs to go, on a machine with much else to do.
GOING_SECONDS = 5


class Program(Keyboard, Part):
    """A running program; as a Part it is its main window, the one without an owner whose title is `title`."""

    def __init__(self, wine, path, *arguments, title=None, **options):
        super().__init__(self, f"the window of {pathlib.Path(path).name}", self._main_window)
        self.wine, self.title = wine, title
        self.name = pathlib.Path(path).name.lower()
        self.screen = Screen()
        self.process = wine.start(path, *arguments, **options)
        self.pid = self.process.pid
        self._clicked = 0
        wine.test.addCleanup(self._end)

    # --- windows -------------------------------------------------------------------------------------------------

    def snapshot(self):
        """The program's visible windows, the topmost first."""
        threads = self.wine.observer.ask("windows", self.name)
        return [Node(window) for windows in threads for window in windows]

    @property
    def windows(self):
        """Titles of the program's windows."""
        return [node.facts["text"] for node in self.patiently(self.snapshot, "list of windows")]

    def _window(self, wanted):
        found = self.snapshot()
        for node in found:
            if wanted(node):
                return node
        raise NotNow(f"the windows are {[(node.kind, node.facts['text']) for node in found]}")

    def _main_window(self):
        return self._window(lambda node: node.kind not in (MESSAGE_BOX, POPUP_MENU) and
                            self.title in (None, node.facts["text"]))

    def expect_window(self, title, kind=Part):
        """Waits for a window, of whatever class, with this title that gets the keys."""
        part = kind(self, f"the window '{title}'",
                    lambda: self._window(lambda node: node.facts["text"] == title and node.active))
        patiently(lambda: self._alive(part._root), part.what, START_SECONDS)
        return part

    def expect_box(self, title, text=None, icon=None, buttons=None):
        """Waits for a message box on top; what is given of text, icon and buttons must be so exactly."""
        box = Box(self, f"the box '{title}'", lambda: self._window(
            lambda node: node.kind == MESSAGE_BOX and node.facts["text"] == title and node.active))
        patiently(lambda: self._alive(box._root), box.what, START_SECONDS)
        self.settle()
        test = self.wine.test
        if text is not None:
            test.assertEqual(box.text, text)
        if icon is not None:
            test.assertEqual(box.icon, icon)
        if buttons is not None:
            test.assertEqual(box.buttons, list(buttons))
        return box

    def expect_windows(self, *titles):
        """Waits until these windows are shown, and no others."""
        def look():
            found = self.windows
            if sorted(found) != sorted(titles):
                raise NotNow(f"the windows are {found}")
        self.patiently(look, f"the windows {titles}")

    def expect_gone(self, handle, what, seconds=SECONDS):
        def look():
            if self.process.poll() is None and any(node.handle == handle for node in self.snapshot()):
                raise NotNow("it is still there")
        patiently(look, f"the end of {what}", seconds)
        self.settle()

    def is_gone(self, handle):
        """Whether a window goes soon."""
        try:
            self.expect_gone(handle, "the window", GOING_SECONDS)
            return True
        except AssertionError:
            return False

    def popup(self):
        """The pop-up menu that is open."""
        def find():
            found = [node for node in self.snapshot() if node.kind == POPUP_MENU]
            if not found:
                raise NotNow("no menu is open")
            # A submenu is on top of the menu that it belongs to.
            return found[0].popup
        menu = Menu(self, "the pop-up menu", find)
        self.patiently(find, menu.what)
        return menu

    @property
    def focus(self):
        """The control that has the keyboard, as a node; None when it is no control of this program."""
        def look():
            for window in self.snapshot():
                for node in window.walk():
                    if node.focused:
                        return node
            return None
        return self.patiently(look, "the focus")

    # --- waiting -------------------------------------------------------------------------------------------------

    def _alive(self, read):
        try:
            return read()
        except PASSING as problem:
            if self.process.poll() is not None:
                raise AssertionError(f"the program has ended with {self.process.returncode}: {problem}") from None
            raise

    def patiently(self, read, what, seconds=SECONDS):
        return patiently(lambda: self._alive(read), what, seconds)

    def _x_windows(self):
        return [window for window in self.screen.windows() if self.screen.pid(window) == self.pid]

    def settle(self):
        """Waits until the program has handled every key and click so far, or has ended."""
        def look():
            if self.process.poll() is not None:
                return
            for window in self._x_windows()[:1]:
                self.screen.settle(window, 1)
            if any(self.wine.observer.ask("input", self.name)):
                raise NotNow("it has input to handle")
        patiently(look, f"{self.what} rests")

    def wait_exit(self, seconds=START_SECONDS):
        """The program's exit code."""
        try:
            return self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"it has not ended within {seconds} seconds: {self.windows}") from None

    # --- input ---------------------------------------------------------------------------------------------------

    def _expect_keys(self):
        """Waits until the program gets the keys: between two windows nobody does."""
        def look():
            if not any(self.screen.pid(window) == self.pid for window in self.screen.active()):
                raise NotNow("no window of the program gets the keys")
        self.patiently(look, "a window to type to")

    def click_at(self, find, button=1, times=1):
        """Clicks on the middle of a place as soon as that stays where it is."""
        place, former = None, find()
        while place != former:
            self.settle()
            place, former = find(), place
        x, y, width, height = place
        self.screen.move(x + width // 2, y + height // 2)
        self.settle()
        time.sleep(max(0, self._clicked + DOUBLE_CLICK_SECONDS - time.monotonic()))
        self.screen.click(button, times)
        self._clicked = time.monotonic()
        self.settle()

    def close(self):
        """Closes the topmost window by its frame's button."""
        for window in self.screen.active():
            self.screen.close(window)
        self.settle()

    # --- the tray ------------------------------------------------------------------------------------------------

    @staticmethod
    def start_tray(wine):
        """Starts what shows tray icons; Wine puts those of its programs there when it is there before they are. Its size
        and place are fixed: Wine does not always notice that an icon moves with it, and takes a click on the icon for
        one on the desktop then."""
        tray = subprocess.Popen(
            ["trayer", "--edge", "bottom", "--align", "left", "--widthtype", "pixel", "--width", "120",
             "--heighttype", "pixel", "--height", "32"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, preexec_fn=end_with_parent)
        wine.test.addCleanup(tray.wait)
        wine.test.addCleanup(tray.kill)
        screen = Screen()

        def look():
            if not screen.has_tray():
                raise NotNow("nobody shows icons")
        patiently(look, "the tray")
        screen.end()

    def _tray_icons(self):
        return [self.screen.extents(icon) for tray in self.screen.root.query_tree().children
                for icon in self.screen.docked(tray)]

    def tray_place(self):
        """Where the tray has an icon. It is Wine's desktop that shows it there, whichever program it belongs to."""
        icons = self._tray_icons()
        if not icons:
            raise NotNow("no tray holds it")
        return icons[0]

    def click_tray(self, button=1):
        self.click_at(lambda: self.patiently(self.tray_place, "the tray icon"), button)

    def expect_no_tray_icon(self):
        def look():
            if self._tray_icons():
                raise NotNow("it is still there")
        patiently(look, "the end of the tray icon")

    # --- the end -------------------------------------------------------------------------------------------------

    def _end(self):
        result = self.wine.test._outcome.result
        if any(case is self.wine.test for case, _ in result.failures + result.errors):
            self._keep_picture()
        self.process.kill()
        self.process.wait()
        self.screen.end()

    def _keep_picture(self):
        build = pathlib.Path(os.environ.get("CORVANE_BUILD", "."))
        folder = pathlib.Path(os.environ.get("CORVANE_GUI_SHOTS", build / "wine-shots"))
        try:
            folder.mkdir(parents=True, exist_ok=True)
            path = folder / f"{self.wine.test.id()}.png"
            subprocess.run(["import", "-silent", "-window", "root", str(path)], check=True, timeout=SECONDS)
            print(f"screenshot: {path}", file=sys.stderr)
            for node in self.snapshot():
                print("\n".join(node.lines()), file=sys.stderr)
        except (OSError, subprocess.SubprocessError, AssertionError, *PASSING) as problem:
            print(f"no screenshot or description: {problem}", file=sys.stderr)

"""The window program as a user meets it: keys and clicks come from the X server, what is on the screen is read as a
screen reader reads it. For use inside tests/gui/display.

    desktop = Desktop(self)                             # self: the test case
    window = desktop.start(BIN / "nicx-window", title="...")
    window.entry("Metric").enter("10")                  # a control: role, and accessible name or label
    window.menu("File", "Exit").choose()
    window.expect_box("Question").press("Yes")
    window.table("Connections").expect(selected=[1])    # waits for it

After a key or click the program is given the time to handle it (Application.settle), so that what it does at once can
be asserted at once; `expect` waits for what takes longer.
"""

import ctypes
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import time

from gi.repository import Gio

from controls import ACTIVE, BUTTONS, MODAL, SHOWING, MenuItem, Node, Part
from keyboard import Keyboard
from screen import Screen
from waiting import PASSING, SECONDS, NotNow, end_with_parent, patiently

# The system call poll(2), which programs wait in for events (asm/unistd.h, x86_64).
POLL = "7"
# A program rests when nothing is due for this long: the next frame, with a new layout, comes within 17 ms.
REST_MILLISECONDS = 40
# Clicks after this time are no double click: tests/gui/display sets a tenth of a second.
DOUBLE_CLICK_SECONDS = 0.15


class Box(Part):
    """A dialog that is on top."""

    def __init__(self, application, title):
        super().__init__(application, title, f"the box '{title}'")
        self.screen = application.desktop.screen
        self.window = self._read(self._active)
        self._read(self.root)
        application.settle()

    def _active(self):
        for window in self.screen.active():
            if self.screen.title(window) == self.title and self.screen.pid(window) == self.application.pid:
                return window
        raise NotNow(f"the windows are {self.application.windows}")

    def root(self):
        # The accessible name of a message box is its kind ("Question"), not its title.
        for node in self.application.node.children:
            if node.has(MODAL) and node.has(ACTIVE):
                return node
        raise NotNow("no modal window is active")

    @property
    def text(self):
        """Its texts, one after the other."""
        return self._read(lambda: "\n".join(node.text for node, role in self.root().walk()
                                            if role == "label" and node.has(SHOWING)))

    def press(self, name, by_key=False):
        """Presses a button with the mouse or with its mnemonic, and waits until the box is gone."""
        button = self.button(name)
        if by_key:
            self.application.desktop.press(button.mnemonic)
        else:
            button.click()
        self.expect_gone()

    def expect_gone(self):
        def look():
            if self.window in self.screen.windows():
                raise NotNow("it is still there")
        self.application.patiently(look, f"the end of {self.what}")
        self.application.settle()

    def leave(self, name, path=None):
        """In a file dialog: types a path, if any, and presses a button. What is asked next may be on top of it then."""
        if path:
            self.entry("Name:").enter(str(path))
            self.entry("Name:").expect(text=str(path))
        self.application.patiently(lambda: self._click_until_left(name), f"button '{name}' of {self.what}")

    def _click_until_left(self, name):
        def look():
            if self.window in self.screen.active():
                raise NotNow("it is still on top")
        x, y, width, height = self.search(BUTTONS, name).target
        self.application.desktop.move(x + width // 2, y + height // 2)
        self.application.desktop.click()
        try:
            patiently(look, self.what, 1)
        except AssertionError:
            # The list of proposals opens whenever a folder has been read, and takes the click.
            look()


class Popup(Part):
    """The pop-up window that is open: a menu, or the list of a combo box."""

    def root(self):
        for node in self.application.node.children:
            if node.role == "window" and node.has(SHOWING):
                return node
        raise NotNow("no pop-up is open")

    def item(self, *path):
        return MenuItem(self.application, lambda: self.search(("menu",), None), path)

    @property
    def items(self):
        return self.item().items


class Application(Part):
    """A running program; as a Part it is its main window."""

    def __init__(self, desktop, arguments, title, environment, options):
        super().__init__(self, title)
        self.desktop = desktop
        self._output, self._errors = tempfile.TemporaryFile(), tempfile.TemporaryFile()
        self.process = subprocess.Popen(
            [str(argument) for argument in arguments], env={**os.environ, **environment},
            stdin=subprocess.DEVNULL, stdout=self._output, stderr=self._errors, preexec_fn=end_with_parent,
            **{"cwd": os.environ["HOME"], **options})
        self.pid = self.process.pid
        self.code_was_read = False
        self._node = None
        self._pinged = None

    out = property(lambda self: self._written(self._output))
    err = property(lambda self: self._written(self._errors))

    @staticmethod
    def _written(file):
        return os.pread(file.fileno(), os.fstat(file.fileno()).st_size, 0).decode(errors="replace")

    @property
    def node(self):
        """The program's own node, the parent of its windows."""
        if not self._node:
            registry = Node(self.desktop.bus, ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"))
            own = [node for node in registry.children if node.pid == self.pid]
            if not own:
                raise NotNow("the program is not registered")
            self._node = own[0]
        return self._node

    # --- windows -------------------------------------------------------------------------------------------------

    def _windows(self):
        screen = self.desktop.screen
        return [window for window in screen.windows() if screen.pid(window) == self.pid]

    @property
    def windows(self):
        """Titles of the program's windows that are shown."""
        return patiently(lambda: [self.desktop.screen.title(window) for window in self._windows()], "list of windows")

    def expect_windows(self, *titles):
        """Waits until these windows are shown, and no others."""
        def look():
            if sorted(self.windows) != sorted(titles):
                raise NotNow(f"the windows are {self.windows}")
        self.patiently(look, f"the windows {titles}")

    def expect_active(self):
        """Waits until the main window is shown and gets the keys."""
        def look():
            if not self.root().has(ACTIVE):
                raise NotNow("it is not active")
        self.patiently(look, self.what)
        self.settle()

    def window(self, title):
        """Another window, one that is not modal."""
        return Part(self, title)

    def expect_box(self, title):
        return Box(self, title)

    def popup(self):
        popup = Popup(self, None, "the pop-up")
        self.patiently(popup.root, popup.what)
        return popup

    def close(self):
        """Closes the main window by its frame's button."""
        for window in self._windows():
            if self.desktop.screen.title(window) == self.title:
                self.desktop.screen.close(window)
        self.settle()

    # --- waiting -------------------------------------------------------------------------------------------------

    def patiently(self, read, what):
        def look():
            try:
                return read()
            except PASSING as problem:
                if self.process.poll() is not None:
                    raise AssertionError(f"{what}: the program has ended with {self.process.returncode}: {problem}\n"
                                         f"{self.err}") from None
                raise
        return patiently(look, what)

    def settle(self, seconds=SECONDS):
        """Waits until the program has handled every key and click so far and rests, or has ended."""
        def look():
            if self.process.poll() is not None:
                return
            # A hidden window answers too.
            self._pinged = next(iter(self._windows()), self._pinged)
            if self._pinged:
                self.desktop.screen.settle(self._pinged, 1)
            self._expect_rest()
        patiently(look, f"{self.what} rests", seconds)

    def _expect_rest(self):
        """The program's first thread waits for events, and nothing is due soon."""
        process = pathlib.Path(f"/proc/{self.pid}")
        try:
            number, *arguments = (process / "syscall").read_text().split()
            if number != POLL:
                raise NotNow("it is busy")
            place, count, milliseconds = [int(argument, 16) for argument in arguments[:3]]
            with open(process / "mem", "rb", buffering=0) as memory:
                memory.seek(place)
                waited_for = [os.readlink(process / f"fd/{descriptor}")
                              for descriptor, _, _ in struct.iter_unpack("<ihh", memory.read(8 * count))]
        except (OSError, struct.error) as problem:
            raise NotNow(problem) from problem
        # An event loop can be woken up; a wait for the kernel or for another program can not.
        if "anon_inode:[eventfd]" not in waited_for or 0 <= ctypes.c_int(milliseconds).value < REST_MILLISECONDS:
            raise NotNow("it is busy")

    def wait_exit(self, seconds=SECONDS):
        """The program's exit code; it is the test's to judge then."""
        try:
            code = self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"the program has not ended within {seconds} seconds: {self.windows}") from None
        self.code_was_read = True
        return code

    def end(self):
        """Kills the program, if need be. Gives what is wrong: an exit code that the test did not ask for."""
        code = self.process.poll()
        self.process.kill()
        self.process.wait()
        wrong = f"{self.process.args} ended with {code}:\n{self.err}" if code and not self.code_was_read else ""
        self._output.close()
        self._errors.close()
        return wrong

    # --- the mouse -----------------------------------------------------------------------------------------------

    def point_at(self, find):
        """Moves the pointer to the middle of a place as soon as that stays where it is."""
        place, former = None, find()
        while place != former:
            self.settle()
            place, former = find(), place
        x, y, width, height = place
        self.desktop.move(x + width // 2, y + height // 2)

    def click_tray(self, button=1):
        """Clicks on the program's icon in the tray."""
        def find():
            screen = self.desktop.screen
            for tray in screen.root.query_tree().children:
                for icon in screen.docked(tray):
                    if screen.pid(icon) == self.pid:
                        return screen.extents(icon)
            raise NotNow("no tray holds it")
        self.point_at(lambda: self.patiently(find, "the tray icon"))
        self.desktop.click(button)


class Desktop(Keyboard):
    """The screen, keyboard and mouse of a test case, and the programs that it starts."""

    def __init__(self, test):
        self.test = test
        self.screen = Screen()
        flags = Gio.DBusConnectionFlags
        self.bus = Gio.DBusConnection.new_for_address_sync(
            os.environ["AT_SPI_BUS_ADDRESS"], flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)
        self.programs = []
        self._tray = None
        self._clicked = 0
        test.addCleanup(self._end)

    def start(self, program, *arguments, title, wait=True, environment=None, **options):
        """Starts a program and waits for its main window, which has this title. Options are subprocess.Popen's."""
        application = Application(self, [program, *arguments], title, environment or {}, options)
        self.programs.append(application)
        if wait:
            application.expect_active()
        return application

    def start_tray(self):
        """Starts what shows tray icons; without it there is none, as on many desktops."""
        self._tray = subprocess.Popen(
            ["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request", "--height", "32"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, preexec_fn=end_with_parent)

        def look():
            if not self.screen.has_tray():
                raise NotNow("nobody shows icons")
        patiently(look, "the tray")

    def settle(self):
        for application in self.programs:
            application.settle()

    def _expect_keys(self):
        """Waits until one of the programs gets the keys: between two windows nobody does."""
        pids = [application.pid for application in self.programs]

        def look():
            if not any(self.screen.pid(window) in pids for window in self.screen.active()):
                raise NotNow("no window of the test's programs gets the keys")
        patiently(look, "a window to type to")

    def move(self, x, y):
        self.screen.move(x, y)
        self.settle()

    def click(self, button=1, times=1):
        """Clicks where the pointer is."""
        time.sleep(max(0, self._clicked + DOUBLE_CLICK_SECONDS - time.monotonic()))
        self.screen.click(button, times)
        self._clicked = time.monotonic()
        self.settle()

    def screenshot(self, path, window="root"):
        """Keeps a picture of the screen, or of the window with this title."""
        subprocess.run(["import", "-silent", "-window", window, str(path)], check=True, timeout=SECONDS)

    def _end(self):
        result = self.test._outcome.result
        if any(case is self.test for case, _ in result.failures + result.errors):
            self._keep_picture()
        wrong = "".join([application.end() for application in self.programs])
        if self._tray:
            self._tray.kill()
            self._tray.wait()
        self.bus.close_sync()
        self.screen.end()
        if wrong:
            self.test.fail(wrong)

    def _keep_picture(self):
        build = pathlib.Path(os.environ.get("CORVANE_BUILD", "."))
        folder = pathlib.Path(os.environ.get("CORVANE_GUI_SHOTS", build / "gui-shots"))
        try:
            folder.mkdir(parents=True, exist_ok=True)
            self.screenshot(folder / f"{self.test.id()}.png")
            print(f"screenshot: {folder}/{self.test.id()}.png", file=sys.stderr)
            for application in self.programs:
                print(f"{application.windows}, standard error: {application.err}", file=sys.stderr)
                print("\n".join(application.describe()), file=sys.stderr)
        except (OSError, subprocess.SubprocessError, AssertionError, *PASSING) as problem:
            print(f"no screenshot or description: {problem}", file=sys.stderr)

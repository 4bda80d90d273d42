"""Takes the pictures of the window for scripts/screenshots: screenshots.py FOLDER, inside tests/netns/sandbox and
tests/gui/display, with CORVANE_BIN naming the folder of the programs and PYTHONPATH those two folders.

What can be fixed is: links, addresses, sizes, the course of the traffic. The dates of leases and the system's name are
those of the day and the machine.
"""

import math
import pathlib
import signal
import shutil
import socket
import struct
import subprocess
import sys
import threading
import time
import unittest

from Xlib import X, error

import desktop as gui
import pictures as album
from pictures import DESKTOP_COLOUR, MARGIN, NOWHERE
from world import BIN, FAR, DhcpServer, World, end_with_parent, ip, wait_for

TITLE = "Orvella Corvane"
LOADING = "Orvella Corvane - Loading"
SCREEN = 1280, 1024
# The graph shows two minutes.
GRAPH_SECONDS = 124

TRAFFIC_PORT = 9
PACKET = bytes(1400)
TICK_SECONDS = 0.05


def preset_text(text):
    return struct.pack("<H", len(text)) + text.encode("cp1252")


def preset_record(name, flags, mac="", *lists):
    """A record of presets.npf; lists that are not given have one empty text."""
    lists = [*lists, *[[""]] * (5 - len(lists))]
    return b"".join([preset_text(name), bytes([flags]), preset_text(mac),
                     *(struct.pack("<HIi", 1, len(texts), 0) + b"".join(map(preset_text, texts)) for texts in lists)])


PRESETS = [preset_record("Home", 1 | 2 | 4, "", ["0.0.0.0"], ["0.0.0.0"]),
           preset_record("Office", 2 | 8 | 16 | 32, "8C-56-C5-FB-82-03", ["192.168.40.17"], ["255.255.255.0"],
                         ["192.168.40.1"], ["10"], ["192.168.40.53", "192.168.40.54"]),
           preset_record("Guest network", 1 | 2, "", ["0.0.0.0"], ["0.0.0.0"])]


def wave(name, second):
    """Bytes per second at a time: swells, and a peak every 37 seconds."""
    peak = math.exp(-((second % 37 - 20) / 4) ** 2)
    if name == "received":
        return 210e3 + 90e3 * math.sin(second / 9) + 40e3 * math.sin(second / 2.3) + 520e3 * peak
    return 80e3 + 45e3 * math.sin(second / 7 + 2) + 25e3 * math.sin(second / 1.7) + 150e3 * peak


def send_traffic(name, here, there):
    """Sends datagrams for ever, as many as the wave of this name asks for, and takes what comes."""
    link = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    link.bind((here, TRAFFIC_PORT))
    begin = former = time.monotonic()
    owed = 0.0
    while True:
        time.sleep(TICK_SECONDS)
        now = time.monotonic()
        # What a busy machine was late for is not made up for: that would be a peak that nobody asked for.
        owed = min(owed + wave(name, now - begin) * (now - former), 2 * TICK_SECONDS * wave(name, now - begin))
        former = now
        while owed >= len(PACKET):
            link.sendto(PACKET, (there, TRAFFIC_PORT))
            owed -= len(PACKET)


class Pictures(World):
    """One run: the network, then picture after picture."""

    folder = pathlib.Path(sys.argv[1]).resolve()

    def runTest(self):
        self.folder.mkdir(parents=True, exist_ok=True)
        self.copy_programs_with_presets()
        self.make_network()
        self.desktop = gui.Desktop(self)
        self.screen = self.desktop.screen
        self.screen.root.change_attributes(background_pixel=DESKTOP_COLOUR)
        self.screen.root.clear_area()
        self.splash()
        self.help_options()
        self.desktop.start_tray()
        self.watched_traffic()
        self.vendor_list()
        self.new_address()
        self.preset()
        self.change_of_address()
        self.about()
        self.tray()
        self.small()

    def copy_programs_with_presets(self):
        """The presets lie beside the program, and those of the build are not for pictures."""
        self.copy_programs()
        for name in ("nicx-window", "help.html"):
            shutil.copy(BIN / name, self.programs / name)
        (self.programs / "presets.npf").write_bytes(struct.pack("<i", len(PRESETS)) + b"".join(PRESETS))

    # --- the network -----------------------------------------------------------------------------------------------

    def make_network(self):
        """A machine with several connections, set up with the program itself."""
        self.veth("lan0", mac="3c:fd:fe:a1:4c:07")
        self.veth("lan1", mac="00:1b:21:3d:90:5e")
        self.veth("office0", mac="a0:36:bc:58:e2:19")
        self.veth("guest0", mac="f4:f2:6d:20:7b:41")
        self.bridge("br0", "10.80.0.1/24", mac="f4:f2:6d:20:7b:41")
        ip("link", "set", "guest0", "master", "br0")
        self.tap("vpn0", mac="0a:58:0a:64:00:01")
        self.veth("spare0", mac="f8:e4:3b:07:c6:d0")
        for link, network in (("lan0", "10.77.0"), ("lan1", "10.78.0"), ("office0", "192.168.40")):
            ip("-n", FAR, "address", "add", f"{network}.1/24", "dev", link)
        server = DhcpServer("lan0")
        self.addCleanup(server.stop)
        mask = "255.255.255.0"
        # All at once: each restart takes ten seconds.
        commands = [self.start("nicx", *arguments) for arguments in (
            ("-n", "lan0", "-h", "-re"),
            ("-n", "lan1", "-i", f"10.78.0.10,10.78.0.11,10.78.0.12:{mask},{mask},{mask}",
             "-g", "10.78.0.1,10.78.0.2:10,20", "-d", "10.78.0.53,10.78.0.54", "-re"),
            ("-n", "office0", "-m", "8c:56:c5:fb:82:03", "-i", f"192.168.40.17:{mask}", "-g", "192.168.40.1:30", "-re"),
            ("-n", "spare0", "-di"))]
        for command in commands:
            result = self.finish(command)
            self.assertEqual((result.code, result.err), (0, ""), result)
        self.assertEqual(self.mac("office0"), "8c:56:c5:fb:82:03")
        wait_for(lambda: self.addresses("lan0"), "lan0 has its lease")

    @staticmethod
    def start_traffic(here, there):
        # Before other programs, so that a busy machine draws no gaps into the curves.
        script = ["nice", "-n", "-15", sys.executable, "-B", __file__, "--traffic"]
        for command in ([*script, "sent", here, there],
                        ["ip", "netns", "exec", FAR, *script, "received", there, here]):
            subprocess.Popen(command, stdin=subprocess.DEVNULL, preexec_fn=end_with_parent)

    # --- the pictures ----------------------------------------------------------------------------------------------

    def splash(self):
        """It is gone in a moment, so the program is let run in small steps; what it showed last is kept."""
        program = subprocess.Popen([self.programs / "nicx-window"], stdin=subprocess.DEVNULL, preexec_fn=end_with_parent)
        pictures = []

        def windows():
            return {self.screen.title(window): window for window in self.screen.windows()}

        def loading():
            """Takes a picture; false when the main window is there."""
            before = windows()
            if LOADING in before:
                size = before[LOADING].get_geometry()
                image = before[LOADING].get_image(0, 0, size.width, size.height, X.ZPixmap, 0xFFFFFFFF)
                # The main window comes to lie over it.
                if TITLE not in windows():
                    pictures.append((f"{size.width}x{size.height}", image.data))
            return TITLE not in before

        def step():
            program.send_signal(signal.SIGSTOP)
            # It may have been stopped while it had the X server for itself.
            rescue = threading.Timer(0.2, program.send_signal, [signal.SIGCONT])
            rescue.start()
            try:
                # It paints every 40 milliseconds at most.
                time.sleep(0.05)
                return loading()
            except error.XError:
                return True  # The window went away while it was looked at.
            finally:
                rescue.cancel()
                program.send_signal(signal.SIGCONT)

        while step():
            time.sleep(0.001)
            self.assertIsNone(program.poll(), "the program has ended")
        program.kill()
        program.wait()
        size, pixels = pictures[-1]
        album.write(self.folder / "splash.png", "-size", size, "-depth", "8", "bgra:-", "-alpha", "off", pixels=pixels)

    def help_options(self):
        title = "Command Line Help - Orvella Corvane v4"
        program = self.desktop.start(self.programs / "nicx-window", "-help", title=title)
        self.keep("help-options", self.frame(program))
        program.button("OK").click()
        program.wait_exit()

    def watched_traffic(self):
        """Two windows watch the same traffic: one that stays, and over it one in dark colours."""
        self.start_traffic("10.78.0.10", "10.78.0.1")
        self.window = self.start_window()
        dark = self.start_window({"GTK_THEME": "Adwaita:dark"})
        time.sleep(GRAPH_SECONDS)
        self.keep("dark", self.frame(dark))
        dark.close()
        dark.wait_exit()
        self.window.expect_active()
        self.desktop.press("F5")
        self.keep("main", self.frame(self.window))

    def start_window(self, environment=None):
        window = self.desktop.start(self.programs / "nicx-window", title=TITLE, environment=environment)
        # Chosen as the first one; a click would keep the next window from coming to the front.
        self.assertEqual([row[0] for row in self.connections(window).selected_rows], ["lan1"])
        return window

    @staticmethod
    def connections(window):
        return window.table("Network Connections")

    def vendor_list(self):
        self.connections(self.window).click_row("lan0")
        self.desktop.press("ctrl+m")
        self.window.entry("Vendor:").enter("philips")
        left, top, width, height = self.frame(self.window)
        _, list_top, _, list_height = self.window.popup().root().extents
        self.keep("vendor-list", (left, top, width, max(height, list_top + list_height - top)))
        self.desktop.press("Escape", "Escape")

    def new_address(self):
        self.connections(self.window).click_row("lan1")
        self.window.table("IP Address").click_row("10.78.0.12")
        self.desktop.press("7")
        self.desktop.type("10.78.0.13")
        self.window.entry("Prefix length").enter("24")
        self.window.check("Persistant IP Address").click()
        self.keep("add-ip", self.frame(self.window))
        self.desktop.press("Escape")

    def preset(self):
        self.window.table("Presets").click_row("Office")
        self.window.button("Edit").click()
        self.window.entry("Preset name").expect(text="Office")
        self.keep("preset", self.frame(self.window))
        self.window.button("Leave").click()

    def change_of_address(self):
        self.connections(self.window).click_row("lan0")
        self.desktop.press("ctrl+m")
        self.desktop.type("b827eb5d2041")
        self.keep("change-mac", self.frame(self.window))
        self.window.button("Change Now !").click()
        question = self.window.expect_box("Change MAC Address ?")
        self.keep("question", self.frame(self.window))
        question.press("Yes")
        wait_for(lambda: any("Enabling (Attempt 1) ..." in row for row in self.connections(self.window).rows),
                 "the connection is being enabled")
        self.keep("progress", self.frame(self.window))
        self.window.expect_box("MAC Address Changed Successfully").press("OK")

    def about(self):
        self.window.menu("Help", "About Us").choose()
        box = self.window.expect_box("About Orvella Corvane")
        self.keep("about", self.frame(box))
        box.press("Close")

    def tray(self):
        self.window.click_tray(button=3)
        x, y, _, _ = self.window.popup().root().extents
        right, bottom = SCREEN
        self.keep("tray", (x - MARGIN, y - MARGIN, right - x + MARGIN, bottom - y + MARGIN))
        self.desktop.press("Escape")

    def small(self):
        self.x_window(self.window).configure(width=800, height=600)
        self.desktop.settle()
        self.keep("small", self.frame(self.window))

    # --- keeping them ----------------------------------------------------------------------------------------------

    def x_window(self, part):
        """The window with the title of a part of the program."""
        return next(window for window in self.screen.windows() if self.screen.title(window) == part.title
                    and self.screen.pid(window) == part.application.pid)

    def frame(self, part):
        """Place and size of a window with what the window manager drew around it."""
        window = self.x_window(part)
        while (parent := window.query_tree().parent) != self.screen.root:
            window = parent
        return self.screen.extents(window)

    def keep(self, name, place):
        self.desktop.move(*NOWHERE)
        self.desktop.settle()
        album.keep(self.folder / f"{name}.png", place)


if __name__ == "__main__":
    if sys.argv[1] == "--traffic":
        send_traffic(*sys.argv[2:])
    outcome = unittest.TextTestRunner(verbosity=0).run(Pictures())
    sys.exit(0 if outcome.wasSuccessful() else 1)

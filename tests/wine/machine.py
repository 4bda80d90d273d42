"""The machine as Windows would describe it. What nicx.exe finds in the registry of a test's prefix is what plug and
play writes there on Windows, made from the links of the test's network namespace; the folder of network connections,
which Wine has not, is testshell.dll (tests/wine/shell).

    class Cases(WineTest):
        def test_something(self):
            self.veth("eth0", "10.1.0.2/24", mac=OWN)
            self.describe_links()
            self.describe_shell()
            nicx = self.nicx("-n", "eth0", "-di")
            nicx.expect_box("Disabled - Orvella Corvane v4").press("OK")
            self.assertEqual(self.diary, ["disable eth0"])
"""

import os
import pathlib
import shutil
import threading

from wine import REG_MULTI_SZ, TOOLS, WINDOWS, Wine, number, text, texts
from waiting import patiently

from programs import Program
from world import ADAPTERS_KEY, CLASS_KEY, CONNECTIONS_KEY, INTERFACES_KEY, LINKAGE_KEY, World, ip

PROGRAM_FOLDER = "Corvane"
DEVICE = "\\DEVICE\\TCPIP_"
SHELL_KEY = r"SOFTWARE\CorvaneTest\Shell"
SHELL_SERVER_KEY = r"SOFTWARE\Classes\CLSID\{13709620-C279-11CE-A49E-444553540000}\InprocServer32"
PROGRAM_KEY = r"SOFTWARE\Orvella\Corvane_v4"
FOLDER_NAME = "Network Connections"


class PlugAndPlay(threading.Thread):
    """Does to the links what Windows does when the shell's verbs are done: a disabled link goes down, an enabled one
    comes up with the address that its driver key says, or else with its own."""

    def __init__(self, test):
        super().__init__(daemon=True)
        self.test, self.done, self.end, self.failure = test, 0, threading.Event(), None
        self.own = {name: test.mac(name) for name in test.links}

    def run(self):
        try:
            while not self.end.wait(0.05):
                diary = self.test.diary
                for line in diary[self.done:]:
                    verb, _, name = line.partition(" ")
                    self._do(verb, name)
                    self.done += 1
        except Exception as failure:  # Told by the test itself, in `stop`.
            self.failure = failure

    def _do(self, verb, connection):
        name = next(link for link, described in self.test.connection_names.items() if described == connection)
        ip("link", "set", name, "down")
        if verb == "enable":
            digits = self.test.driver(name).get("NetworkAddress", (1, b"\0"))[1].decode().rstrip("\0")
            pairs = [digits[i:i + 2] for i in range(0, 12, 2)]
            ip("link", "set", name, "address", ":".join(pairs) if digits else self.own[name])
            ip("link", "set", name, "up")

    def stop(self):
        self.end.set()
        self.join()
        if self.failure:
            self.test.fail(f"plug and play: {self.failure}")


class WineTest(World):
    """Base of the test cases: a network namespace of links and a Wine prefix with the program in C:\\Corvane."""

    def setUp(self):
        super().setUp()
        self.wine = Wine(self)
        self.registry = self.wine.registry
        self.folder = self.wine.drive / PROGRAM_FOLDER
        shutil.copytree(WINDOWS / "bin", self.folder)
        # Windows has the key on every machine.
        self.registry.write(f"{ADAPTERS_KEY}\\{{0}}", "LLInterface", text(""))
        self.registry.delete(f"{ADAPTERS_KEY}\\{{0}}")
        # By the link's name: GUID and driver key, and the name of the connection.
        self.links, self.connection_names = {}, {}

    def nicx(self, *arguments, title=None, **options):
        """Starts the program with arguments, or without any."""
        return Program(self.wine, self.folder / "nicx.exe", *arguments, title=title, **options)

    # --- adapters ------------------------------------------------------------------------------------------------

    def interface_ids(self):
        """The GUID that Wine gives the interface of each link that it lists."""
        names = {int((folder / "ifindex").read_text()): folder.name
                 for folder in pathlib.Path("/sys/class/net").iterdir()}
        found = patiently(lambda: self.wine.observer.ask("interfaces"), "the list of interfaces")
        return {names[index]: name.removeprefix(DEVICE) for index, name in found if index in names}

    def describe_links(self, **connections):
        """Writes the keys of all links but loopback. `connections` gives a link's connection another name than the
        link's."""
        for position, (name, guid) in enumerate(sorted(self.interface_ids().items())):
            if name != "lo":
                self.describe(name, guid, f"{position:04}", connections.get(name, name))
        bind = [f"\\Device\\{guid}" for guid, _ in self.links.values()]
        self.registry.write(LINKAGE_KEY, "Bind", texts(*bind))

    def describe(self, name, guid, driver, connection):
        """Writes the keys of one adapter. With a GUID that Wine gives no interface it is one that is disabled."""
        self.links[name], self.connection_names[name] = (guid, driver), connection
        write = self.registry.write
        write(f"{ADAPTERS_KEY}\\{guid}", "LLInterface", text(""))
        write(f"{CONNECTIONS_KEY}\\{guid}\\Connection", "Name", text(connection))
        driver_key = f"{CLASS_KEY}\\{driver}"
        write(driver_key, "NetCfgInstanceId", text(guid))
        bridge = os.path.exists(f"/sys/class/net/{name}/bridge")
        write(driver_key, "DriverDesc", text("MAC Bridge Miniport" if bridge else "Corvane Test Adapter"))
        write(driver_key, "ComponentId", text("ms_bridgemp" if bridge else "pci\\ven_1af4&dev_1000"))
        write(f"{INTERFACES_KEY}\\{guid}", "EnableDHCP", number(0))

    def key(self, path):
        """Values of a registry key below HKEY_LOCAL_MACHINE: name to (type, bytes). Empty when there is no such key."""
        return self.registry.read(path) or {}

    def driver_key(self, name):
        return f"{CLASS_KEY}\\{self.links[name][1]}"

    def driver(self, name):
        return self.key(self.driver_key(name))

    def tcpip_key(self, name):
        return f"{INTERFACES_KEY}\\{self.links[name][0]}"

    def tcpip(self, name):
        return self.key(self.tcpip_key(name))

    def stored(self):
        """Everything of the adapters that the program writes, to see whether anything changed."""
        return {name: (self.driver(name), self.tcpip(name)) for name in self.links}

    # --- the shell -----------------------------------------------------------------------------------------------

    def describe_shell(self, folder=FOLDER_NAME, slow=0, connections=None, plug_and_play=True):
        """Puts the tests' shell in the place of Wine's. Its Control Panel has a folder of the connections by this name,
        which holds the described ones if no others are given; `slow`: how often the verbs are listed without the one
        that changes a connection back."""
        write = self.registry.write
        write(SHELL_SERVER_KEY, "", text(self.wine.path(TOOLS / "testshell.dll")))
        write(SHELL_SERVER_KEY, "ThreadingModel", text("Both"))
        panel = [("Date && Time", 0, 0), ("&Fonts", 1, 0), (folder, 1, 1)]
        for position, (name, is_folder, holds_connections) in enumerate(panel):
            key = f"{SHELL_KEY}\\Panel\\{position:04}"
            write(key, "Name", text(name))
            write(key, "Folder", number(is_folder))
            write(key, "Connections", number(holds_connections))
        names = list(self.connection_names.values()) if connections is None else connections
        for position, name in enumerate(names):
            key = f"{SHELL_KEY}\\Connections\\{position:04}"
            write(key, "Name", text(name))
            write(key, "Enabled", number(1))
            write(key, "Slow", number(slow))
        if plug_and_play:
            thread = PlugAndPlay(self)
            thread.start()
            self.addCleanup(thread.stop)

    @property
    def diary(self):
        """The verbs that the shell has done, such as "disable eth0", in order."""
        kind, data = self.key(SHELL_KEY).get("Diary", (REG_MULTI_SZ, b""))
        self.assertEqual(kind, REG_MULTI_SZ)
        return [line for line in data.decode("cp1252").split("\0") if line]

    def order_failure(self, method, code):
        """The shell's method fails from now on."""
        self.registry.write(f"{SHELL_KEY}\\Failures", method, number(code))

"""A small world for the programs: links in the test's own network namespace, their other ends in the namespace "far",
the programs run as a user would run them, and the kernel's (`ip -j`) and the store's (SQLite) word on what came of it.

Every test method has the sandbox for itself: links, store, /run, /var/lib and /etc/resolv.conf begin empty.
"""

import ctypes
import fcntl
import json
import os
import pathlib
import shutil
import signal
import socket
import sqlite3
import struct
import subprocess
import time
import unittest
from typing import NamedTuple

BIN = pathlib.Path(os.environ["CORVANE_BIN"])
STORE = pathlib.Path("/var/lib/nicx/registry.db")
RESOLV_CONF = pathlib.Path("/etc/resolv.conf")
FAR = "far"
NOBODY = 65534

# Registry types (winnt.h).
REG_SZ, REG_DWORD, REG_MULTI_SZ = 1, 4, 7

CLASS_KEY = r"SYSTEM\CurrentControlSet\Control\Class\{4D36E972-E325-11CE-BFC1-08002bE10318}"
CONNECTIONS_KEY = r"SYSTEM\CurrentControlSet\Control\Network\{4D36E972-E325-11CE-BFC1-08002BE10318}"
INTERFACES_KEY = r"SYSTEM\CurrentControlSet\Services\Tcpip\Parameters\Interfaces"
ADAPTERS_KEY = r"SYSTEM\CurrentControlSet\Services\Tcpip\Parameters\Adapters"
LINKAGE_KEY = r"SYSTEM\CurrentControlSet\Services\Tcpip\Linkage"


class Result(NamedTuple):
    """How a program ended: exit code, standard output, standard error."""
    code: int
    out: str
    err: str


def end_with_parent():
    """For a child before its exec: it is killed when the test ends (PR_SET_PDEATHSIG, linux/prctl.h)."""
    ctypes.CDLL(None).prctl(1, signal.SIGKILL)


def ip(*arguments):
    """Runs ip(8); a failure of it is an error of the test."""
    done = subprocess.run(["ip", *arguments], capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise AssertionError(f"ip {' '.join(arguments)}: {done.stderr}")
    return done.stdout


def ip_json(*arguments):
    text = ip("-j", *arguments)
    return [entry for entry in json.loads(text or "[]") if entry]


def multi(*entries):
    """A REG_MULTI_SZ as the program writes lists."""
    return "\0".join(entries).encode("cp1252") + b"\0\0"


def preset_bytes(*records):
    """A presets file. A record: name, flags, MAC text, then the lists of addresses, masks, gateways, metrics, servers;
    a list is None when it is not allocated."""
    def text(value):
        encoded = value.encode("cp1252")
        return struct.pack("<H", len(encoded)) + encoded

    def texts(values):
        if values is None:
            return struct.pack("<H", 0)
        return struct.pack("<HIi", 1, len(values), 0) + b"".join(map(text, values))

    return struct.pack("<i", len(records)) + b"".join(
        text(name) + struct.pack("<B", flags) + text(mac) + b"".join(map(texts, lists))
        for name, flags, mac, *lists in records)


def vendor_bytes(*records):
    """A vendor file of records without postal address. A record: prefix of six digits, name."""
    return struct.pack("<i", len(records)) + b"".join(
        prefix.encode() + struct.pack("<H", len(name)) + name.encode("cp1252") + struct.pack("<H", 0)
        for prefix, name in records)


class DhcpServer:
    """dnsmasq at the far end of a link. Its leases last 120 seconds, the shortest that it gives."""

    def __init__(self, link, network="10.77.0"):
        self.network = network
        self.lease_file = pathlib.Path(f"/run/leases-{link}")
        log = pathlib.Path(f"/run/dnsmasq-{link}.log")
        self.process = subprocess.Popen(
            ["ip", "netns", "exec", FAR, "dnsmasq", "--keep-in-foreground", "--no-ping", "--port=0",
             "--conf-file=/dev/null", "--user=", "--group=", f"--interface={link}", "--bind-interfaces",
             f"--dhcp-range={network}.50,{network}.99,120", f"--dhcp-option=3,{network}.1",
             f"--dhcp-option=6,{network}.53,{network}.54", f"--dhcp-leasefile={self.lease_file}", "--pid-file=",
             f"--log-facility={log}", "--log-dhcp"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, preexec_fn=end_with_parent)
        wait_for(lambda: log.exists() and "IP range" in log.read_text(), "dnsmasq is ready")

    def leases(self):
        """MAC addresses of those that hold a lease, with their address."""
        if not self.lease_file.exists():
            return {}
        return {line.split()[1]: line.split()[2] for line in self.lease_file.read_text().splitlines()}

    def stop(self):
        self.process.kill()
        self.process.wait()


def look_at_carrier(name):
    """Makes the kernel take note of a link's carrier now. By itself it does so once a second, for all namespaces
    together (net/core/link_watch.c); who asks for the carrier (ETHTOOL_GLINK, linux/ethtool.h) need not wait."""
    siocethtool, ethtool_glink = 0x8946, 0x0A
    question = ctypes.create_string_buffer(struct.pack("II", ethtool_glink, 0))
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as place:
        fcntl.ioctl(place, siocethtool, struct.pack("16sP16x", name.encode(), ctypes.addressof(question)))


def wait_for(condition, what, seconds=20):
    """Polls until the condition holds and returns its value; an error of the test when it does not in time."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"this did not happen within {seconds} seconds: {what}")
        time.sleep(0.02)


class World(unittest.TestCase):
    """Base of the test cases."""

    maxDiff = None

    def setUp(self):
        links = [link["ifname"] for link in ip_json("link")]
        if links != ["lo"] or not pathlib.Path("/run/sandbox/resolv.conf").exists():
            self.fail(f"this is not a fresh sandbox (tests/netns/sandbox), it has the links {links}")
        # As on every machine: only root may make folders there.
        os.chmod("/var/lib", 0o755)
        self._make_private_etc()
        ip("netns", "add", FAR)
        ip("-n", FAR, "link", "set", "lo", "up")
        self.addCleanup(self._end_processes)
        self.programs = BIN

    @staticmethod
    def _make_private_etc():
        """A copy of /etc with a plain resolv.conf: programs write beside that file before they replace it."""
        # What other sandboxes are about to put in the place of their resolv.conf comes and goes there.
        shutil.copytree("/etc", "/run/etc", symlinks=True, ignore=shutil.ignore_patterns(".corvane-*"))
        resolver = pathlib.Path("/run/etc/resolv.conf")
        resolver.unlink(missing_ok=True)
        resolver.write_text("nameserver 192.0.2.53\n")
        subprocess.run(["mount", "--bind", "/run/etc", "/etc"], check=True)

    # --- links ---------------------------------------------------------------------------------------------------

    def veth(self, name, *addresses, mac=None, up=True):
        """A veth link whose other end has the same name in the namespace "far"."""
        ip("link", "add", name, *(["address", mac] if mac else []), "type", "veth", "peer", "name", name, "netns", FAR)
        ip("-n", FAR, "link", "set", name, "up")
        self._prepare(name, addresses, up, "UP")

    def bridge(self, name, *addresses, mac=None, up=True):
        ip("link", "add", name, *(["address", mac] if mac else []), "type", "bridge")
        self._prepare(name, addresses, up)

    def macvlan(self, name, lower, *addresses, mac=None, up=True):
        ip("link", "add", name, "link", lower, *(["address", mac] if mac else []), "type", "macvlan", "mode", "bridge")
        self._prepare(name, addresses, up, "UP")

    def tap(self, name, *addresses, mac=None, up=True):
        ip("tuntap", "add", name, "mode", "tap")
        if mac:
            ip("link", "set", name, "address", mac)
        self._prepare(name, addresses, up, "DOWN")

    def _prepare(self, name, addresses, up, state=None):
        # Duplicate address detection would make IPv6 addresses appear late.
        pathlib.Path(f"/proc/sys/net/ipv6/conf/{name}/accept_dad").write_text("0")
        for address in addresses:
            ip("address", "add", address, "dev", name)
        if up:
            ip("link", "set", name, "up")
            look_at_carrier(name)
            wait_for(lambda: self.link(name)["operstate"] in (state or "UP DOWN UNKNOWN"), f"{name} is {state}")

    # --- the kernel as witness -----------------------------------------------------------------------------------

    def link(self, name):
        """ip's record of a link, or None when there is no such link."""
        found = [link for link in ip_json("-d", "link") if link["ifname"] == name]
        return found[0] if found else None

    def mac(self, name):
        return self.link(name)["address"]

    def is_up(self, name):
        return "UP" in self.link(name)["flags"]

    def addresses(self, name):
        """IPv4 addresses with prefix length, in the kernel's order."""
        return [f"{info['local']}/{info['prefixlen']}"
                for entry in ip_json("-4", "address", "show", "dev", name) for info in entry.get("addr_info", [])]

    def ipv6_addresses(self, name, scope):
        return [f"{info['local']}/{info['prefixlen']}"
                for entry in ip_json("-6", "address", "show", "dev", name) for info in entry.get("addr_info", [])
                if info["scope"] == scope]

    def default_routes(self, name):
        """Gateways and metrics of a link's default routes, in the kernel's order."""
        return [(route["gateway"], route.get("metric", 0))
                for route in ip_json("-4", "route", "show", "default") if route["dev"] == name]

    def routes(self, name):
        """Destination and gateway of a link's other routes that somebody set."""
        return [(route["dst"], route.get("gateway")) for route in ip_json("-4", "route", "show", "dev", name)
                if route.get("protocol") != "kernel" and route["dst"] != "default"]

    def permanent_neighbours(self, name):
        return [(entry["dst"], entry["lladdr"]) for entry in ip_json("neigh", "show", "dev", name, "nud", "permanent")]

    def assert_up(self, name, mac, addresses=None, gateways=None):
        """The link is up with this address and set-up."""
        self.assertTrue(self.is_up(name), f"{name} is down")
        self.assertEqual(self.mac(name), mac)
        if addresses is not None:
            self.assertEqual(self.addresses(name), addresses)
        if gateways is not None:
            self.assertEqual(self.default_routes(name), gateways)

    def name_servers(self):
        return [line.split()[1] for line in RESOLV_CONF.read_text().splitlines() if line.startswith("nameserver")]

    # --- the programs --------------------------------------------------------------------------------------------

    @staticmethod
    def mount_read_only(path):
        """Makes a file or folder of the sandbox read-only, for root too."""
        subprocess.run(["mount", "--bind", str(path), str(path)], check=True)
        subprocess.run(["mount", "-o", "remount,bind,ro", str(path)], check=True)

    def copy_programs(self, folder="/run/programs"):
        """Uses a copy of the programs and their files from now on, for tests that change the files or that run as a user
        who may not enter the build folder."""
        self.programs = pathlib.Path(folder)
        self.programs.mkdir(parents=True)
        for name in ("nicx", "nicx-report", "nicx-dhcp", "nicx-registry", "VendorNumbers.log", "presets.npf"):
            if (BIN / name).exists():
                shutil.copy(BIN / name, self.programs / name)
        return self.programs

    def start(self, program, *arguments, user=None, environment=None, **options):
        """Starts a program with its output in pipes."""
        identity = {"user": user, "group": user, "extra_groups": []} if user is not None else {}
        settings = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE}
        return subprocess.Popen([str(self.programs / program), *arguments], cwd="/",
                                env={**os.environ, **(environment or {})}, **{**settings, **identity, **options})

    def finish(self, process, seconds=100):
        try:
            out, err = process.communicate(timeout=seconds)
        except subprocess.TimeoutExpired:
            process.kill()
            out, err = process.communicate()
            self.fail(f"{process.args} did not end within {seconds} seconds:\n{out}\n{err}")
        return Result(process.returncode, *((text or b"").decode("utf-8", "surrogateescape") for text in (out, err)))

    def run_program(self, program, *arguments, **options):
        return self.finish(self.start(program, *arguments, **options))

    def nicx(self, *arguments, code=0, **options):
        """Runs nicx; `code` is the exit code that it must have."""
        result = self.run_program("nicx", *arguments, **options)
        self.assertEqual(result.code, code, f"nicx {' '.join(arguments)}\n{result.out}\n{result.err}")
        return result

    def report(self, **options):
        """What nicx-report shows, by connection name."""
        result = self.run_program("nicx-report", "--json", **options)
        self.assertEqual((result.code, result.err), (0, ""))
        return {connection["name"]: connection for connection in json.loads(result.out)["connections"]}

    def processes(self):
        """Command lines of the programs that run in the test's network namespace, the test itself left out."""
        return [command for pid, command in self._processes(["/proc/self/ns/net"])]

    @staticmethod
    def _processes(namespaces):
        wanted = {os.stat(namespace).st_ino for namespace in namespaces if os.path.exists(namespace)}
        found = []
        for entry in pathlib.Path("/proc").iterdir():
            if not entry.name.isdigit() or int(entry.name) == os.getpid():
                continue
            try:
                # One that has ended and waits to be collected has no namespace any more.
                if os.stat(entry / "ns/net").st_ino in wanted:
                    command = (entry / "cmdline").read_bytes().replace(b"\0", b" ").decode().strip()
                    found.append((int(entry.name), command))
            except OSError:
                continue
        return found

    def _end_processes(self):
        for pid, _ in self._processes(["/proc/self/ns/net", f"/run/netns/{FAR}"]):
            try:
                os.kill(pid, signal.SIGKILL)
            except ProcessLookupError:
                pass

    # --- the store -----------------------------------------------------------------------------------------------

    def sql(self, text, *values):
        store = sqlite3.connect(STORE, timeout=10)
        try:
            with store:
                return store.execute(text, values).fetchall()
        finally:
            store.close()

    def key(self, path):
        """Values of a registry key below HKEY_LOCAL_MACHINE: name to (type, bytes). Empty when there is no such key."""
        rows = self.sql("SELECT v.name, v.type, v.data FROM keys k JOIN vals v ON v.key = k.id WHERE k.folded = ?",
                        path.upper())
        return {name: (kind, bytes(data)) for name, kind, data in rows}

    def link_row(self, name):
        """What the store remembers of a present link beside its keys."""
        columns = ("id", "original", "applied", "driver", "present", "held")
        rows = self.sql(f"SELECT {', '.join(columns)} FROM links WHERE name = ? ORDER BY present DESC", name)
        self.assertTrue(rows, f"the store has no link {name}")
        return dict(zip(columns, rows[0]))

    def tcpip(self, name):
        return self.key(INTERFACES_KEY + "\\" + self.link_row(name)["id"])

    def driver(self, name):
        return self.key(CLASS_KEY + "\\" + self.link_row(name)["driver"])

    def stored(self):
        """Everything in the store, to see whether anything changed."""
        return {table: self.sql(f"SELECT * FROM {table}") for table in ("keys", "vals", "links", "held")}

"""The store in trouble: damaged, locked, read-only, shared, and programs that are killed in the midst of their work."""

import pathlib
import signal
import sqlite3
import subprocess

from steps import run_until
from world import NOBODY, REG_MULTI_SZ, REG_SZ, RESOLV_CONF, STORE, World, ip, multi, wait_for

OWN = "02:00:00:00:10:01"
NEW = "00:0c:29:4f:8e:35"


class Trouble(World):
    def setUp(self):
        super().setUp()
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.nicx("-n", "eth0", "-m", NEW)

    def assert_refused(self, *words, user=None, code=None):
        """Nothing is changed by a program that cannot use the store, and it says why."""
        before = STORE.read_bytes()
        changed = self.run_program("nicx", "-n", "eth0", "-m", "02:00:00:00:99:99", "-re", user=user)
        shown = self.run_program("nicx-report", user=user)
        for result in (changed, shown):
            for word in words:
                self.assertIn(word, result.err)
        self.assertNotEqual(changed.code, 0)
        self.assertEqual(shown.code, 1)
        self.assertEqual(STORE.read_bytes(), before)
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])

    def test_a_damaged_file(self):
        STORE.write_bytes(b"This is no store." * 1000)
        self.assert_refused("Error! Cannot Read Registry", "(1015) The Registry Database is corrupt!")

    def test_a_file_with_a_damaged_page(self):
        data = bytearray(STORE.read_bytes())
        data[4096:8192] = b"\xff" * 4096
        STORE.write_bytes(data)
        self.assert_refused("Error! Cannot Read Registry", "The Registry Database is corrupt!")

    def test_a_file_that_was_cut_off(self):
        data = STORE.read_bytes()
        STORE.write_bytes(data[:len(data) // 2])
        self.assert_refused("Error! Cannot Read Registry", "(1015) The Registry Database is corrupt!")

    def test_another_programs_database(self):
        STORE.unlink()
        other = sqlite3.connect(STORE)
        other.execute("CREATE TABLE stamps(name TEXT)")
        other.commit()
        other.close()
        self.assert_refused("Error! Cannot Read Registry", "(1015) The Registry Database is corrupt!")

    def test_a_file_of_a_newer_version(self):
        store = sqlite3.connect(STORE)
        store.execute("PRAGMA user_version = 1000")
        store.close()
        self.assert_refused("Error! Cannot Read Registry", "(1011) Can't Open Key")

    def test_a_file_that_may_not_be_read(self):
        self.copy_programs()
        STORE.chmod(0o600)
        self.assert_refused("Error! Cannot Read Registry", "(5) Access to this key is denied", user=NOBODY)

    def test_a_file_that_is_locked_for_a_short_while_is_waited_for(self):
        blocker = sqlite3.connect(STORE, isolation_level=None)
        blocker.execute("BEGIN EXCLUSIVE")
        process = self.start("nicx", "-n", "eth0", "-m", "02:00:00:00:99:99")
        # It cannot have gone on: the lock was there before it was started.
        with self.assertRaises(subprocess.TimeoutExpired):
            process.wait(1)
        blocker.execute("COMMIT")
        blocker.close()
        self.assertEqual(self.finish(process).code, 0)
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"020000009999\0"))

    def test_a_file_that_stays_locked(self):
        blocker = sqlite3.connect(STORE, isolation_level=None)
        blocker.execute("BEGIN EXCLUSIVE")
        self.addCleanup(blocker.close)
        shown = self.finish(self.start("nicx-report"), 30)
        self.assertEqual(shown.code, 1)
        self.assertIn("Error! Cannot Read Registry", shown.err)
        self.assertIn("(1012) Can't Read Key", shown.err)
        changed = self.run_program("nicx", "-n", "eth0", "-m", "02:00:00:00:99:99")
        self.assertNotEqual(changed.code, 0)
        self.assertIn("Error! Cannot Read Registry", changed.err)
        blocker.execute("ROLLBACK")
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000c294f8e35\0"))

    def test_a_read_only_folder(self):
        self.mount_read_only(STORE.parent)
        before = self.stored()
        result = self.nicx("-n", "eth0", "-m", "02:00:00:00:99:99", "-i", "10.9.9.9", code=1)
        self.assertIn("Error! Cannot Write Registry", result.err)
        self.assertIn("NetworkAddress", result.err)
        self.assertIn("EnableDHCP", result.err)
        self.assertIn("(5) Access to this key is denied", result.err)
        self.assertEqual(self.stored(), before)
        self.assertEqual(self.report()["eth0"]["override"], "00-0C-29-4F-8E-35")

    def test_a_link_is_not_disabled_when_what_it_loses_cannot_be_kept(self):
        ip("route", "add", "192.0.2.0/24", "via", "10.1.0.1")
        self.mount_read_only(STORE.parent)
        result = self.nicx("-n", "eth0", "-di", code=1)
        self.assertIn("what it would lose could not be kept in the registry: Access is denied.", result.err)
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])
        self.assertEqual(self.routes("eth0"), [("192.0.2.0/24", "10.1.0.1")])

    def test_a_read_only_file(self):
        self.mount_read_only(STORE)
        result = self.nicx("-n", "eth0", "-m", "02:00:00:00:99:99", code=1)
        self.assertIn("Error! Cannot Write Registry", result.err)
        self.assertIn("(5) Access to this key is denied", result.err)
        self.assertEqual(self.report()["eth0"]["override"], "00-0C-29-4F-8E-35")

    def test_a_store_elsewhere(self):
        elsewhere = pathlib.Path("/run/elsewhere/store.db")
        before = STORE.read_bytes()
        settings = {"NICX_REGISTRY": str(elsewhere)}
        self.nicx("-n", "eth0", "-m", "02:00:00:00:99:99", environment=settings)
        self.assertEqual(self.report(environment=settings)["eth0"]["override"], "02-00-00-00-99-99")
        self.assertEqual(self.report()["eth0"]["override"], "00-0C-29-4F-8E-35")
        self.assertEqual(STORE.read_bytes(), before)

    def test_a_store_whose_folder_cannot_be_made(self):
        locked = pathlib.Path("/run/locked")
        locked.mkdir()
        self.mount_read_only(locked)
        settings = {"NICX_REGISTRY": str(locked / "sub/store.db")}
        self.assertEqual(self.report(environment=settings)["eth0"]["mac"], "02-00-00-00-10-01")
        result = self.nicx("-n", "eth0", "-m", "02:00:00:00:99:99", code=1, environment=settings)
        self.assertIn("Error! Cannot Write Registry", result.err)

    def test_a_full_disk(self):
        small = pathlib.Path("/run/small")
        small.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=128k", "tmpfs", str(small)], check=True)
        settings = {"NICX_REGISTRY": str(small / "store.db")}
        self.nicx("-n", "eth0", "-m", NEW, environment=settings)
        with self.assertRaises(OSError):
            (small / "filler").write_bytes(b"x" * 1000000)
        servers = ",".join(f"10.{i}.{j}.53" for i in range(1, 20) for j in range(1, 250))
        result = self.nicx("-n", "eth0", "-d", servers, code=1, environment=settings)
        self.assertIn("Error! Cannot Write Registry", result.err)
        (small / "filler").unlink()
        self.assertEqual(self.report(environment=settings)["eth0"]["override"], "00-0C-29-4F-8E-35")


class Together(World):
    def test_many_programs_write_at_once(self):
        for i in range(8):
            self.veth(f"lan{i}", f"10.{i}.0.2/24")
        processes = [self.start("nicx", "-n", f"lan{i}", "-m", f"02:00:00:00:00:{i:02x}", "-i", f"10.{i}.0.9",
                                "-d", f"10.{i}.0.53") for i in range(8)]
        processes += [self.start("nicx-report") for _ in range(4)]
        for process in processes:
            result = self.finish(process)
            self.assertEqual((result.code, result.err), (0, ""))
        for i in range(8):
            self.assertEqual(self.driver(f"lan{i}")["NetworkAddress"], (REG_SZ, f"0200000000{i:02x}\0".encode()))
            self.assertEqual(self.tcpip(f"lan{i}")["IPAddress"], (REG_MULTI_SZ, multi(f"10.{i}.0.9")))
            self.assertEqual(self.tcpip(f"lan{i}")["NameServer"], (REG_SZ, f"10.{i}.0.53\0".encode()))
        self.assertEqual(len(self.report()), 8)

    def test_two_restarts_of_one_link_at_once(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        ip("route", "add", "192.0.2.0/24", "via", "10.1.0.1")
        self.report()
        first = self.start("nicx", "-n", "eth0", "-m", NEW, "-re")
        wait_for(lambda: not self.is_up("eth0"), "the link is disabled")
        second = self.start("nicx", "-n", "eth0", "-re")
        for process in (first, second):
            self.finish(process)
        self.nicx("-n", "eth0", "-re")
        self.assert_up("eth0", NEW, ["10.1.0.2/24"])
        self.assertEqual(self.routes("eth0"), [("192.0.2.0/24", "10.1.0.1")])
        self.assertEqual(self.link_row("eth0")["original"], "020000001001")

    def test_a_report_of_a_link_that_is_being_restarted(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        process = self.start("nicx", "-n", "eth0", "-m", NEW, "-re")
        wait_for(lambda: not self.is_up("eth0"), "the link is disabled")
        shown = self.report()["eth0"]
        self.assertEqual((shown["status"], shown["macText"]), ("Disabled", "00-0C-29-4F-8E-35 (Changed)"))
        self.assertEqual(shown["addresses"], [{"address": "10.1.0.2", "mask": "255.255.255.0"}])
        self.assertEqual(self.finish(process).code, 0)
        self.assert_up("eth0", NEW, ["10.1.0.2/24"])


class Killed(World):
    """A program that is killed loses nothing, and the next restart repairs the link."""

    UP = f"""
        link set eth0 down
        address flush dev eth0
        link set eth0 address {NEW}
        link set eth0 up
        address add 10.1.0.2/24 dev eth0
        address add 2001:db8:1::2/64 dev eth0
        route add default via 10.1.0.1 metric 10
        route add 192.0.2.0/24 via 10.1.0.1
    """
    DOWN = f"""
        link set eth0 down
        address flush dev eth0
        link set eth0 address {NEW}
    """

    def setUp(self):
        """The link with all that a restart has to bring back, and its settings in the store."""
        super().setUp()
        self.veth("eth0", mac=OWN)
        self.report()
        self.set_link(self.UP)
        self.nicx("-n", "eth0", "-m", NEW, "-d", "10.1.0.53", "-di")
        self.run_nicx("-re")
        self.assert_as_it_was()

    @staticmethod
    def set_link(commands):
        subprocess.run(["ip", "-batch", "-"], input=commands, text=True, check=True)

    def assert_nothing_lost(self):
        self.assertEqual(self.sql("PRAGMA integrity_check"), [("ok",)])
        self.assertEqual(self.link_row("eth0")["original"], "020000001001")
        self.assertEqual(self.driver("eth0")["OriginalNetworkAddress"], (REG_SZ, b"02-00-00-00-10-01\0"))
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000c294f8e35\0"))
        values = self.tcpip("eth0")
        self.assertEqual(values["IPAddress"], (REG_MULTI_SZ, multi("10.1.0.2")))
        self.assertEqual(values["DefaultGateway"], (REG_MULTI_SZ, multi("10.1.0.1")))
        self.assertEqual(values["NameServer"], (REG_SZ, b"10.1.0.53\0"))

    def assert_set_up(self):
        self.assert_up("eth0", NEW, ["10.1.0.2/24"], [("10.1.0.1", 10)])
        self.assertEqual(self.name_servers(), ["10.1.0.53", "192.0.2.53"])
        self.assertEqual(self.link_row("eth0")["held"], 0)

    def assert_as_it_was(self):
        self.assert_set_up()
        self.assertEqual(self.routes("eth0"), [("192.0.2.0/24", "10.1.0.1")])
        self.assertEqual(self.ipv6_addresses("eth0", "global"), ["2001:db8:1::2/64"])

    def kill(self, process):
        process.send_signal(signal.SIGKILL)
        process.communicate()

    def test_in_the_wait_after_disabling(self):
        process = self.start("nicx", "-n", "eth0", "-re")
        wait_for(lambda: not self.is_up("eth0") and not self.addresses("eth0"), "the link is disabled")
        self.kill(process)
        self.assert_nothing_lost()
        self.nicx("-n", "eth0", "-re")
        self.assert_as_it_was()

    def test_in_the_wait_after_enabling(self):
        process = self.start("nicx", "-n", "eth0", "-di", "-re")
        wait_for(lambda: self.is_up("eth0") and self.link_row("eth0")["held"] == 0, "the link is enabled")
        self.kill(process)
        self.assert_nothing_lost()
        self.nicx("-n", "eth0", "-re")
        self.assert_as_it_was()

    def run_nicx(self, *options, moment=None):
        return run_until([self.programs / "nicx", "-n", "eth0", *options], moment)

    def kill_at_every_change(self, state, options, assert_repaired):
        """Kills `options` before each of its system calls that change anything. Each time link, store and resolv.conf are
        first put back to what they are now; `state` does so for the link. A restart then repairs it."""
        store, resolver = STORE.read_bytes(), RESOLV_CONF.read_bytes()

        def put_back():
            self.set_link(state)
            for file in STORE.parent.iterdir():
                file.unlink()
            STORE.write_bytes(store)
            RESOLV_CONF.write_bytes(resolver)

        put_back()
        moments = self.run_nicx(*options)
        self.assertGreater(len(moments), 20)
        for moment in moments:
            with self.subTest(call=moment):
                put_back()
                self.run_nicx(*options, moment=moment)
                self.assert_nothing_lost()
                # The two halves of a restart, without its waits.
                self.nicx("-n", "eth0", "-di")
                self.run_nicx("-re")
                self.assert_nothing_lost()
                assert_repaired()

    def test_at_every_change_of_disabling(self):
        self.kill_at_every_change(self.UP, ["-di"], self.assert_as_it_was)

    def test_at_every_change_of_disabling_where_resolv_conf_is_a_mount_point(self):
        bound = pathlib.Path("/run/bound.conf")
        bound.write_bytes(RESOLV_CONF.read_bytes())
        subprocess.run(["mount", "--bind", str(bound), str(RESOLV_CONF)], check=True)
        self.kill_at_every_change(self.UP, ["-di"], self.assert_as_it_was)

    def test_at_every_change_of_enabling(self):
        self.nicx("-n", "eth0", "-di")
        self.kill_at_every_change(self.DOWN, ["-re"], self.assert_as_it_was)

    def test_at_every_change_of_enabling_a_link_that_was_taken_down_by_hand(self):
        ip("link", "set", "eth0", "down")
        self.report()
        # Other routes and IPv6 addresses went when it was taken down, and nobody kept them.
        self.kill_at_every_change(self.UP + "link set eth0 down", ["-re"], self.assert_set_up)

    def test_at_every_change_of_writing_settings(self):
        self.kill_at_every_change(self.UP, ["-m", NEW, "-i", "10.1.0.2:255.255.255.0", "-g", "10.1.0.1:10",
                                            "-d", "10.1.0.53"], self.assert_as_it_was)

"""DNS servers of the connections in the resolver's file, and the file given back as it was."""

import pathlib
import subprocess

from world import INTERFACES_KEY, REG_SZ, RESOLV_CONF, World, ip

BEFORE = b"# kept by hand\nnameserver 192.0.2.53\noptions timeout:1\n"
BEGIN = "# Orvella Corvane: name servers of the network connections, do not edit"
END = "# Orvella Corvane: end"


class Dns(World):
    def setUp(self):
        super().setUp()
        RESOLV_CONF.write_bytes(BEFORE)

    def restart(self, name, *options, code=0):
        return self.nicx("-n", name, *options, "-di", "-re", code=code)

    def test_servers_in_order_before_the_others(self):
        self.veth("eth0", "10.1.0.2/24")
        self.nicx("-n", "eth0", "-d", "10.1.0.54, 10.1.0.53")
        self.assertEqual(self.tcpip("eth0")["NameServer"], (REG_SZ, b"10.1.0.54,10.1.0.53\0"))
        expected = f"{BEGIN}\nnameserver 10.1.0.54\nnameserver 10.1.0.53\n{END}\n" + BEFORE.decode()
        self.assertEqual(RESOLV_CONF.read_text(), expected)
        self.restart("eth0")
        self.assertEqual(RESOLV_CONF.read_text(), expected)
        self.assertEqual(self.report()["eth0"]["dnsServers"], ["10.1.0.54", "10.1.0.53"])

    def test_servers_are_in_force_at_once_and_without_a_restart(self):
        self.veth("eth0", "10.1.0.2/24", mac="02:00:00:00:10:01")
        self.veth("lan1", "10.2.0.2/24")
        self.assertEqual(self.nicx("-n", "lan1", "-d", "10.2.0.53").err, "")
        self.assertEqual(self.nicx("-n", "eth0", "-d", "10.1.0.54,10.1.0.53").err, "")
        self.assertEqual(self.name_servers(), ["10.1.0.54", "10.1.0.53", "10.2.0.53", "192.0.2.53"])
        self.nicx("-n", "eth0", "-d", "10.1.0.53,10.1.0.54")
        self.assertEqual(self.name_servers(), ["10.1.0.53", "10.1.0.54", "10.2.0.53", "192.0.2.53"])
        # DHCP on clears the list of the connection's own servers.
        self.nicx("-n", "eth0", "-h")
        self.assertEqual(self.name_servers(), ["10.2.0.53", "192.0.2.53"])
        self.nicx("-n", "lan1", "-d")
        self.assertEqual(RESOLV_CONF.read_bytes(), BEFORE)
        self.assert_up("eth0", "02:00:00:00:10:01", ["10.1.0.2/24"])

    def test_servers_of_a_link_that_is_down_wait_for_its_start(self):
        self.veth("eth0", "10.1.0.2/24")
        self.nicx("-n", "eth0", "-di")
        self.nicx("-n", "eth0", "-d", "10.1.0.53")
        self.assertEqual(RESOLV_CONF.read_bytes(), BEFORE)
        self.nicx("-n", "eth0", "-re")
        self.assertEqual(self.name_servers(), ["10.1.0.53", "192.0.2.53"])

    def test_servers_that_the_registry_tool_writes_wait_for_the_next_start(self):
        self.veth("eth0", "10.1.0.2/24")
        self.report()
        key = "HKLM\\" + INTERFACES_KEY + "\\" + self.link_row("eth0")["id"]
        written = self.run_program("nicx-registry", "add", key, "/v", "NameServer", "/d", "10.1.0.53", "/f")
        self.assertEqual(written.code, 0, written.err)
        self.assertEqual(RESOLV_CONF.read_bytes(), BEFORE)
        self.restart("eth0")
        self.assertEqual(self.name_servers(), ["10.1.0.53", "192.0.2.53"])

    def test_two_links_are_merged_and_taken_away_one_by_one(self):
        self.veth("eth0", "10.1.0.2/24")
        self.veth("lan1", "10.2.0.2/24")
        self.nicx("-n", "eth0", "-d", "10.1.0.53,10.9.9.9")
        self.nicx("-n", "lan1", "-d", "10.2.0.53,10.9.9.9")
        first = self.start("nicx", "-n", "eth0", "-di", "-re")
        second = self.start("nicx", "-n", "lan1", "-di", "-re")
        self.assertEqual([self.finish(first).code, self.finish(second).code], [0, 0])
        self.assertEqual(self.name_servers(), ["10.1.0.53", "10.9.9.9", "10.2.0.53", "192.0.2.53"])
        self.nicx("-n", "eth0", "-di")
        self.assertEqual(self.name_servers(), ["10.2.0.53", "10.9.9.9", "192.0.2.53"])
        self.nicx("-n", "lan1", "-di")
        self.assertEqual(RESOLV_CONF.read_bytes(), BEFORE)

    def test_an_empty_list_takes_them_away(self):
        self.veth("eth0", "10.1.0.2/24")
        self.restart("eth0", "-d", "10.1.0.53")
        self.restart("eth0", "-d")
        self.assertEqual(self.tcpip("eth0")["NameServer"], (REG_SZ, b"\0"))
        self.assertEqual(RESOLV_CONF.read_bytes(), BEFORE)

    def test_edits_of_the_administrator_stay(self):
        self.veth("eth0", "10.1.0.2/24")
        self.restart("eth0", "-d", "10.1.0.53")
        RESOLV_CONF.write_bytes(RESOLV_CONF.read_bytes() + b"search example.org\n")
        self.nicx("-n", "eth0", "-di")
        self.assertEqual(RESOLV_CONF.read_bytes(), BEFORE + b"search example.org\n")

    def test_what_is_no_server_address_is_left_out(self):
        self.veth("eth0", "10.1.0.2/24")
        warned = self.nicx("-n", "eth0", "-d", "10.1.0.53,dns.example")
        self.assertIn("DNS server 'dns.example' is stored as typed but cannot take effect", warned.err)
        self.assertEqual(self.tcpip("eth0")["NameServer"], (REG_SZ, b"10.1.0.53,dns.example\0"))
        self.restart("eth0")
        self.assertEqual(self.name_servers(), ["10.1.0.53", "192.0.2.53"])

    def test_a_file_that_cannot_be_written_is_told_and_the_rest_is_done(self):
        self.veth("eth0")
        ip("link", "set", "eth0", "address", "02:00:00:00:10:01")
        self.mount_read_only(RESOLV_CONF)
        told = self.nicx("-n", "eth0", "-d", "10.1.0.53")
        self.assertIn("nicx: warning: /etc/resolv.conf was left as it is: Read-only file system", told.err)
        self.assertEqual(self.tcpip("eth0")["NameServer"], (REG_SZ, b"10.1.0.53\0"))
        result = self.restart("eth0", "-d", "10.1.0.53", "-i", "10.1.0.5:255.255.255.0", code=1)
        self.assertIn("/etc/resolv.conf was left as it is: Read-only file system", result.err)
        self.assertEqual(RESOLV_CONF.read_bytes(), BEFORE)
        self.assert_up("eth0", "02:00:00:00:10:01", ["10.1.0.5/24"])

    def test_a_restart_without_servers_does_not_touch_the_file(self):
        self.veth("eth0", "10.1.0.2/24")
        before = RESOLV_CONF.stat().st_mtime_ns
        self.restart("eth0")
        self.assertEqual(RESOLV_CONF.read_bytes(), BEFORE)
        self.assertEqual(RESOLV_CONF.stat().st_mtime_ns, before)

    def test_a_file_that_is_a_mount_point_is_written_in_place(self):
        self.veth("eth0", "10.1.0.2/24")
        bound = pathlib.Path("/run/bound.conf")
        bound.write_bytes(BEFORE)
        subprocess.run(["mount", "--bind", str(bound), str(RESOLV_CONF)], check=True)
        self.restart("eth0", "-d", "10.1.0.53")
        self.assertEqual(bound.read_text(), f"{BEGIN}\nnameserver 10.1.0.53\n{END}\n" + BEFORE.decode())
        self.nicx("-n", "eth0", "-di")
        self.assertEqual(bound.read_bytes(), BEFORE)

    def test_a_link_to_another_programs_file_is_left_alone_in_words(self):
        self.veth("eth0", "10.1.0.2/24", mac="02:00:00:00:10:01")
        other = pathlib.Path("/run/resolver/resolv.conf")
        other.parent.mkdir()
        other.write_bytes(BEFORE)
        RESOLV_CONF.unlink()
        RESOLV_CONF.symlink_to(other)
        result = self.restart("eth0", "-d", "10.1.0.53", code=1)
        self.assertIn("it is a symbolic link to /run/resolver/resolv.conf, which another program keeps", result.err)
        self.assertTrue(RESOLV_CONF.is_symlink())
        self.assertEqual(other.read_bytes(), BEFORE)
        self.assert_up("eth0", "02:00:00:00:10:01", ["10.1.0.2/24"])

    def test_a_link_to_another_programs_file_is_no_matter_without_servers(self):
        self.veth("eth0", "10.1.0.2/24")
        RESOLV_CONF.unlink()
        RESOLV_CONF.symlink_to("/run/resolver/resolv.conf")
        self.restart("eth0")
        self.assertTrue(RESOLV_CONF.is_symlink())

    def test_a_missing_file_is_made_and_nothing_else_is_left_in_its_folder(self):
        self.veth("eth0", "10.1.0.2/24")
        RESOLV_CONF.unlink()
        before = sorted(entry.name for entry in RESOLV_CONF.parent.iterdir())
        self.restart("eth0", "-d", "10.1.0.53")
        self.assertEqual(self.name_servers(), ["10.1.0.53"])
        self.assertEqual(sorted(entry.name for entry in RESOLV_CONF.parent.iterdir()), sorted([*before, "resolv.conf"]))

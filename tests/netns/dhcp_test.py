"""DHCP on real links with a real server at the far end: leases, release, renewal, and the way back to a static set-up."""

import os
import pathlib
import signal
import time

from world import FAR, REG_DWORD, REG_MULTI_SZ, REG_SZ, DhcpServer, World, ip, ip_json, multi, wait_for

OWN = "02:00:00:00:10:01"


class Dhcp(World):
    def serve(self, link, network="10.77.0"):
        ip("-n", FAR, "address", "replace", f"{network}.1/24", "dev", link)
        server = DhcpServer(link, network)
        self.addCleanup(server.stop)
        return server

    def leased(self, name):
        """The link's address with its lifetime in seconds, or nothing while it has none."""
        return [(f"{info['local']}/{info['prefixlen']}", info["valid_life_time"])
                for entry in ip_json("-4", "address", "show", "dev", name) for info in entry.get("addr_info", [])
                if info.get("dynamic")]

    def await_lease(self, name):
        wait_for(lambda: self.leased(name) and self.default_routes(name), f"{name} has a lease")
        return self.leased(name)[0][0].split("/")[0]

    def take_lease(self, name="eth0"):
        """Turns DHCP on with a restart; the link was down before, so that there is one wait only."""
        result = self.nicx("-n", name, "-h", "-di", "-re")
        self.assertEqual(result.err, "")
        return self.await_lease(name)

    def kill_supervisor(self):
        """Kills the process that started the DHCP client."""
        [client] = [pid for pid, command in self._processes(["/proc/self/ns/net"]) if " udhcpc " in command]
        [parent] = [line.split()[1] for line in pathlib.Path(f"/proc/{client}/status").read_text().splitlines()
                    if line.startswith("PPid:")]
        self.assertIn("/nicx-dhcp\0", pathlib.Path(f"/proc/{parent}/cmdline").read_text())
        os.kill(int(parent), signal.SIGKILL)

    def assert_no_client(self):
        wait_for(lambda: not self.processes(), f"no process is left, now {self.processes()}")

    def test_a_lease_is_obtained_applied_and_recorded(self):
        self.veth("eth0", mac=OWN)
        server = self.serve("eth0")
        started = int(time.time())
        address = self.take_lease()
        self.assertEqual(server.leases(), {OWN: address})
        [(shown, lifetime)] = self.leased("eth0")
        self.assertEqual(shown, address + "/24")
        self.assertTrue(60 < lifetime <= 120, lifetime)
        self.assertEqual(self.default_routes("eth0"), [("10.77.0.1", 0)])
        self.assertEqual(self.name_servers(), ["10.77.0.53", "10.77.0.54", "192.0.2.53"])
        values = self.tcpip("eth0")
        self.assertEqual(values["EnableDHCP"], (REG_DWORD, b"\1\0\0\0"))
        self.assertEqual(values["IPAddress"], (REG_MULTI_SZ, multi("0.0.0.0")))
        self.assertEqual(values["DhcpIPAddress"][1].rstrip(b"\0"), address.encode())
        self.assertEqual(values["DhcpSubnetMask"][1].rstrip(b"\0"), b"255.255.255.0")
        self.assertEqual(values["DhcpDefaultGateway"][1].rstrip(b"\0"), b"10.77.0.1")
        self.assertEqual(values["DhcpNameServer"], (REG_SZ, b"10.77.0.53 10.77.0.54\0"))
        self.assertEqual(values["DhcpServer"], (REG_SZ, b"10.77.0.1\0"))
        self.assertEqual(values["NameServer"], (REG_SZ, b"\0"))
        obtained = int.from_bytes(values["LeaseObtainedTime"][1], "little")
        expires = int.from_bytes(values["LeaseTerminatesTime"][1], "little")
        self.assertTrue(started - 1 <= obtained <= time.time() + 1)
        self.assertEqual(expires - obtained, 120)
        shown = self.report()["eth0"]
        self.assertTrue(shown["dhcp"])
        self.assertEqual(shown["leaseObtained"], time.strftime("%Y-%m-%d %H:%M:%S GMT", time.gmtime(obtained)))
        self.assertEqual(shown["leaseExpires"], time.strftime("%Y-%m-%d %H:%M:%S GMT", time.gmtime(expires)))
        self.assertEqual(shown["addresses"], [{"address": address, "mask": "255.255.255.0"}])
        self.assertEqual(shown["gateways"], [{"gateway": "10.77.0.1", "metric": "0"}])
        self.assertEqual(shown["dnsServers"], ["10.77.0.53", "10.77.0.54"])

    def test_release_gives_the_lease_back_and_renewal_takes_one_anew(self):
        self.veth("eth0", mac=OWN)
        server = self.serve("eth0")
        address = self.take_lease()
        result = self.nicx("-n", "eth0", "-rl")
        self.assertIn("IP Release operation was performed on network connection 'eth0' successfully.", result.out)
        wait_for(lambda: server.leases() == {}, "the server has the address back")
        self.assertEqual(self.addresses("eth0"), [])
        self.assertEqual(self.default_routes("eth0"), [])
        self.assertEqual(self.name_servers(), ["192.0.2.53"])
        self.assertEqual(self.tcpip("eth0")["DhcpIPAddress"][1].rstrip(b"\0"), b"0.0.0.0")
        self.assertTrue(self.is_up("eth0"))
        result = self.nicx("-n", "eth0", "-rn")
        self.assertIn("IP Renew operation was performed on network connection 'eth0' successfully.", result.out)
        self.assertEqual(self.await_lease("eth0"), address)
        self.assertEqual(server.leases(), {OWN: address})
        self.assertEqual(self.name_servers(), ["10.77.0.53", "10.77.0.54", "192.0.2.53"])

    def test_renewal_of_a_lease_in_force_prolongs_it(self):
        self.veth("eth0", mac=OWN)
        self.serve("eth0")
        address = self.take_lease()
        before = int.from_bytes(self.tcpip("eth0")["LeaseObtainedTime"][1], "little")
        wait_for(lambda: time.time() > before + 2, "the clock shows another second")
        self.nicx("-n", "eth0", "-rn")
        self.assertEqual(self.await_lease("eth0"), address)
        self.assertGreater(int.from_bytes(self.tcpip("eth0")["LeaseObtainedTime"][1], "little"), before)

    def test_another_address_of_the_link_is_the_one_that_the_server_sees(self):
        self.veth("eth0", mac=OWN)
        server = self.serve("eth0")
        first = self.take_lease()
        self.nicx("-n", "eth0", "-h", "-m", "00:0c:29:4f:8e:35", "-re")
        second = self.await_lease("eth0")
        self.assertEqual(self.mac("eth0"), "00:0c:29:4f:8e:35")
        self.assertEqual(server.leases(), {"00:0c:29:4f:8e:35": second})
        self.assertNotEqual(first, second)
        self.assertEqual(self.addresses("eth0"), [second + "/24"])

    def test_a_static_set_up_ends_dhcp(self):
        self.veth("eth0", mac=OWN)
        server = self.serve("eth0")
        self.take_lease()
        result = self.nicx("-n", "eth0", "-i", "10.77.0.5:255.255.255.0", "-g", "10.77.0.1:3", "-re")
        self.assertIn("nicx: warning: DHCP is turned off on 'eth0'", result.err)
        self.assert_no_client()
        self.assertEqual(self.leased("eth0"), [])
        self.assert_up("eth0", OWN, ["10.77.0.5/24"], [("10.77.0.1", 3)])
        self.assertEqual(self.name_servers(), ["192.0.2.53"])
        self.assertEqual(server.leases(), {})
        self.assertFalse(self.report()["eth0"]["dhcp"])

    def test_disabling_ends_the_client_and_a_restart_takes_a_lease_again(self):
        self.veth("eth0", mac=OWN)
        server = self.serve("eth0")
        address = self.take_lease()
        self.nicx("-n", "eth0", "-di")
        self.assert_no_client()
        self.assertEqual(server.leases(), {})
        self.assertFalse(self.is_up("eth0"))
        self.assertEqual(self.addresses("eth0"), [])
        self.assertEqual(self.name_servers(), ["192.0.2.53"])
        self.assertTrue(self.report()["eth0"]["dhcp"])
        self.nicx("-n", "eth0", "-re")
        self.assertEqual(self.await_lease("eth0"), address)

    def test_without_a_server_the_restart_ends_and_one_that_comes_later_gives_a_lease(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        started = time.monotonic()
        self.nicx("-n", "eth0", "-h", "-di", "-re")
        self.assertLess(time.monotonic() - started, 30)
        self.assert_up("eth0", OWN, [], [])
        self.assertTrue(self.report()["eth0"]["dhcp"])
        server = self.serve("eth0")
        wait_for(lambda: self.leased("eth0"), "the later server gives a lease", 60)
        self.assertIn(OWN, server.leases())

    def test_renewal_without_a_server_fails_in_words(self):
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-h", "-di", "-re")
        result = self.nicx("-n", "eth0", "-rn", code=1)
        self.assertIn("API: IPRenewAddress", result.err)
        self.assertIn("ERROR ! IP Renew operation on network connection 'eth0' failed.", result.err)
        self.assertTrue(self.is_up("eth0"))

    def test_without_carrier_a_lease_comes_with_the_carrier(self):
        self.veth("eth0", mac=OWN)
        self.serve("eth0")
        ip("-n", FAR, "link", "set", "eth0", "down")
        self.nicx("-n", "eth0", "-h", "-di", "-re")
        self.assertTrue(self.is_up("eth0"))
        self.assertEqual(self.leased("eth0"), [])
        ip("-n", FAR, "link", "set", "eth0", "up")
        self.await_lease("eth0")

    def test_release_and_renewal_without_dhcp_fail_in_words(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        for option, word in (("-rl", "Release"), ("-rn", "Renew")):
            result = self.nicx("-n", "eth0", option, code=1)
            self.assertIn(f"ERROR ! IP {word} operation on network connection 'eth0' failed.", result.err)
            self.assertIn("Error Description : ", result.err)
            self.assertEqual(self.nicx("-n", "eth0", option, "-s", code=1)[1:], ("", ""))
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])

    def test_two_links_have_leases_at_once(self):
        self.veth("eth0", mac=OWN)
        self.veth("lan1", mac="02:00:00:00:10:02")
        self.serve("eth0")
        self.serve("lan1", "10.88.0")
        both = [self.start("nicx", "-n", name, "-h", "-di", "-re") for name in ("eth0", "lan1")]
        self.assertEqual([self.finish(process).code for process in both], [0, 0])
        self.assertTrue(self.await_lease("eth0").startswith("10.77.0."))
        self.assertTrue(self.await_lease("lan1").startswith("10.88.0."))
        self.assertEqual(self.name_servers(), ["10.77.0.53", "10.77.0.54", "10.88.0.53", "10.88.0.54", "192.0.2.53"])
        self.nicx("-n", "eth0", "-di")
        self.assertEqual(self.name_servers(), ["10.88.0.53", "10.88.0.54", "192.0.2.53"])
        self.assertEqual(self.leased("eth0"), [])
        self.assertEqual(len(self.leased("lan1")), 1)

    def test_nothing_is_left_running_when_the_link_vanishes(self):
        self.veth("eth0", mac=OWN)
        self.serve("eth0")
        self.take_lease()
        self.assertNotEqual(self.processes(), [])
        ip("link", "delete", "eth0")
        self.assert_no_client()
        self.assertEqual(self.report(), {})

    def test_a_renewal_brings_a_killed_supervisor_back(self):
        self.veth("eth0", mac=OWN)
        server = self.serve("eth0")
        address = self.take_lease()
        self.kill_supervisor()
        self.assert_no_client()
        self.nicx("-n", "eth0", "-rn")
        self.assertEqual(self.await_lease("eth0"), address)
        self.assertEqual(server.leases(), {OWN: address})

    def test_a_restart_repairs_a_link_whose_supervisor_was_killed(self):
        self.veth("eth0", mac=OWN)
        self.serve("eth0")
        self.take_lease()
        self.kill_supervisor()
        self.assert_no_client()
        self.nicx("-n", "eth0", "-i", "10.77.0.5:255.255.255.0", "-re")
        self.assert_no_client()
        self.assert_up("eth0", OWN, ["10.77.0.5/24"], [])

    def test_dhcp_leaves_the_servers_that_were_given_by_hand(self):
        self.veth("eth0", mac=OWN)
        self.serve("eth0")
        self.nicx("-n", "eth0", "-h", "-d", "10.1.0.53", "-di", "-re")
        self.await_lease("eth0")
        self.assertEqual(self.tcpip("eth0")["NameServer"], (REG_SZ, b"10.1.0.53\0"))
        self.assertEqual(self.name_servers(), ["10.1.0.53", "192.0.2.53"])

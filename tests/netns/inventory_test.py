"""What nicx-report shows of real links, and what the store keeps of them."""

import pathlib
import re
import time

from world import (ADAPTERS_KEY, CONNECTIONS_KEY, LINKAGE_KEY, NOBODY, REG_MULTI_SZ, REG_SZ, STORE, World, ip, multi)

OWN = "02:00:00:00:10:01"


class Inventory(World):
    def test_every_ethernet_link_is_listed_and_no_other(self):
        self.veth("eth0", mac=OWN)
        self.bridge("br0")
        self.macvlan("mv0", "eth0")
        self.tap("tap0")
        ip("tuntap", "add", "tun0", "mode", "tun")
        shown = {name: (entry["hardwareId"], entry["device"]) for name, entry in self.report().items()}
        self.assertEqual(shown, {
            "eth0": ("veth", "Virtual Ethernet"),
            "br0": ("ms_bridgemp", "Network Bridge"),
            "mv0": ("macvlan", "MAC VLAN"),
            "tap0": ("tun", "TUN/TAP Adapter"),
        })

    def test_a_live_link_shows_its_kernel_state(self):
        self.veth("eth0", "10.1.0.9/24", "10.1.0.5/24", "172.16.0.5/20", mac="00:0c:29:4f:8e:35")
        for gateway, metric in (("10.1.0.1", "0"), ("10.1.0.254", "20"), ("172.16.0.1", "5")):
            ip("route", "add", "default", "via", gateway, "metric", metric)
        shown = self.report()["eth0"]
        self.assertEqual(shown["interfaceIndex"], self.link("eth0")["ifindex"])
        self.assertEqual(shown["mac"], "00-0C-29-4F-8E-35")
        self.assertTrue(shown["manufacturer"].startswith("VMware"), shown["manufacturer"])
        self.assertEqual((shown["status"], shown["speed"]), ("Up, Operational", "10 Gbps"))
        self.assertTrue(shown["tcpip"])
        self.assertEqual(shown["addresses"], [{"address": "10.1.0.5", "mask": "255.255.255.0"},
                                              {"address": "10.1.0.9", "mask": "255.255.255.0"},
                                              {"address": "172.16.0.5", "mask": "255.255.240.0"}])
        self.assertEqual(shown["gateways"], [{"gateway": "10.1.0.1", "metric": "0"},
                                             {"gateway": "172.16.0.1", "metric": "5"},
                                             {"gateway": "10.1.0.254", "metric": "20"}])

    def test_a_link_without_carrier(self):
        self.tap("tap0")
        self.assertEqual(self.report()["tap0"]["status"], "Up, Disconnected")

    def test_a_disabled_link_shows_its_stored_settings(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.nicx("-n", "eth0", "-m", "00:0c:29:4f:8e:35", "-i", "10.1.0.5,10.1.0.6:255.255.255.0,255.255.255.0",
                  "-g", "10.1.0.1,10.1.0.2:10", "-d", "10.1.0.53", "-di")
        shown = self.report()["eth0"]
        self.assertEqual((shown["interfaceIndex"], shown["mac"], shown["status"]), (0, "", "Disabled"))
        self.assertEqual(shown["macText"], "00-0C-29-4F-8E-35 (Changed)")
        self.assertTrue(shown["manufacturer"].startswith("VMware"), shown["manufacturer"])
        self.assertEqual([entry["address"] for entry in shown["addresses"]], ["10.1.0.5", "10.1.0.6"])
        self.assertEqual(shown["gateways"], [{"gateway": "10.1.0.1", "metric": "10"},
                                             {"gateway": "10.1.0.2", "metric": "Automatic"}])
        self.assertEqual(shown["dnsServers"], ["10.1.0.53"])

    def test_a_link_taken_down_by_hand_shows_what_it_had(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        ip("route", "add", "default", "via", "10.1.0.1", "metric", "4")
        self.report()
        ip("link", "set", "eth0", "down")
        shown = self.report()["eth0"]
        self.assertEqual(shown["status"], "Disabled")
        self.assertEqual(shown["macText"], "02-00-00-00-10-01")
        self.assertEqual(shown["addresses"], [{"address": "10.1.0.2", "mask": "255.255.255.0"}])
        self.assertEqual(shown["gateways"], [{"gateway": "10.1.0.1", "metric": "4"}])

    def test_changes_made_by_other_programs_show_in_the_next_report(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        first = self.report()
        ip("address", "add", "10.1.0.3/24", "dev", "eth0")
        ip("route", "add", "default", "via", "10.1.0.1")
        ip("link", "set", "eth0", "address", "02:00:00:00:40:01")
        self.bridge("br0")
        second = self.report()
        self.assertEqual(sorted(second), ["br0", "eth0"])
        self.assertEqual(second["eth0"]["mac"], "02-00-00-00-40-01")
        self.assertEqual(second["eth0"]["configurationId"], first["eth0"]["configurationId"])
        self.assertEqual([entry["address"] for entry in second["eth0"]["addresses"]], ["10.1.0.2", "10.1.0.3"])
        self.assertEqual([entry["gateway"] for entry in second["eth0"]["gateways"]], ["10.1.0.1"])
        self.assertEqual(self.tcpip("eth0")["IPAddress"], (REG_MULTI_SZ, multi("10.1.0.2", "10.1.0.3")))
        ip("link", "delete", "br0")
        ip("address", "delete", "10.1.0.2/24", "dev", "eth0")
        third = self.report()
        self.assertEqual(list(third), ["eth0"])
        self.assertNotIn("10.1.0.2", [entry["address"] for entry in third["eth0"]["addresses"]])

    def test_a_link_with_a_lifetime_on_its_address_counts_as_one_with_dhcp(self):
        self.veth("eth0", mac=OWN)
        ip("address", "add", "10.1.0.2/24", "dev", "eth0", "valid_lft", "600", "preferred_lft", "600")
        self.assertTrue(self.report()["eth0"]["dhcp"])

    def test_the_store_has_the_keys_of_each_link(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.bridge("br0")
        ids = {name: entry["configurationId"] for name, entry in self.report().items()}
        for name, link_id in ids.items():
            self.assertRegex(link_id, r"^\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}$")
            self.assertEqual(self.key(f"{CONNECTIONS_KEY}\\{link_id}\\Connection"), {"Name": (REG_SZ, name.encode() + b"\0")})
            self.assertEqual(self.driver(name)["NetCfgInstanceId"], (REG_SZ, link_id.encode() + b"\0"))
            self.assertEqual(len(self.sql("SELECT 1 FROM keys WHERE folded = ?", f"{ADAPTERS_KEY}\\{link_id}".upper())), 1)
        self.assertEqual(self.driver("br0")["ComponentId"], (REG_SZ, b"ms_bridgemp\0"))
        bound = self.key(LINKAGE_KEY)["Bind"][1].decode().strip("\0").split("\0")
        self.assertCountEqual(bound, ["\\Device\\" + link_id for link_id in ids.values()])
        ip("link", "delete", "br0")
        self.report()
        self.assertEqual(self.key(LINKAGE_KEY)["Bind"], (REG_MULTI_SZ, multi("\\Device\\" + ids["eth0"])))
        self.assertEqual(self.key(f"{CONNECTIONS_KEY}\\{ids['br0']}\\Connection"), {})

    def test_what_the_user_set_is_not_overwritten_by_the_kernels_state(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.nicx("-n", "eth0", "-i", "10.1.0.9:255.255.255.0", "-g", "10.1.0.1:3")
        before = self.tcpip("eth0")
        ip("address", "add", "10.1.0.3/24", "dev", "eth0")
        ip("route", "add", "default", "via", "10.1.0.254")
        self.assertEqual([entry["address"] for entry in self.report()["eth0"]["addresses"]], ["10.1.0.2", "10.1.0.3"])
        self.assertEqual(self.tcpip("eth0"), before)
        ip("link", "set", "eth0", "down")
        self.assertEqual([entry["address"] for entry in self.report()["eth0"]["addresses"]], ["10.1.0.9"])

    def test_a_report_changes_nothing_when_nothing_changed(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.bridge("br0")
        self.report()
        before = (self.stored(), STORE.stat().st_mtime_ns)
        self.report()
        self.assertEqual((self.stored(), STORE.stat().st_mtime_ns), before)

    def test_ids_are_the_same_in_a_store_that_was_made_anew(self):
        self.veth("eth0", mac=OWN)
        before = self.report()["eth0"]["configurationId"]
        STORE.unlink()
        self.assertEqual(self.report()["eth0"]["configurationId"], before)

    def test_200_links(self):
        folder = pathlib.Path("/run/batch")
        lines = []
        for i in range(100):
            lines.append(f"link add v{i} type veth peer name w{i}")
            lines.append(f"address add 10.{100 + i // 250}.{i % 250}.2/24 dev v{i}")
            lines.append(f"link set v{i} up")
        folder.write_text("\n".join(lines))
        ip("-batch", str(folder))
        started = time.monotonic()
        shown = self.report()
        self.assertLess(time.monotonic() - started, 10)
        self.assertEqual(len(shown), 200)
        self.assertEqual(len({entry["configurationId"] for entry in shown.values()}), 200)
        for i in range(100):
            self.assertEqual(shown[f"v{i}"]["addresses"][0]["address"], f"10.100.{i}.2")
            self.assertEqual(shown[f"w{i}"]["status"], "Disabled")
        self.assertEqual(len(self.key(LINKAGE_KEY)["Bind"][1].rstrip(b"\0").split(b"\0")), 200)


class OriginalAddress(World):
    """The value "OriginalNetworkAddress" of the driver key."""

    def original(self, name):
        return self.driver(name).get("OriginalNetworkAddress")

    def test_it_is_saved_when_a_live_link_is_first_seen(self):
        self.veth("eth0", mac=OWN)
        self.report()
        self.assertEqual(self.original("eth0"), (REG_SZ, b"02-00-00-00-10-01\0"))

    def test_a_link_that_was_never_up_has_none_yet(self):
        self.veth("eth0", mac=OWN, up=False)
        self.assertEqual(self.report()["eth0"]["macText"], "(Network Connection Not Active)")
        self.assertIsNone(self.original("eth0"))
        ip("link", "set", "eth0", "up")
        self.report()
        self.assertEqual(self.original("eth0"), (REG_SZ, b"02-00-00-00-10-01\0"))

    def test_a_saved_one_stays_when_another_program_changes_the_address(self):
        self.veth("eth0", mac=OWN)
        self.report()
        ip("link", "set", "eth0", "address", "02:00:00:00:40:01")
        self.assertEqual(self.report()["eth0"]["originalMac"], "02-00-00-00-10-01")
        self.assertEqual(self.original("eth0"), (REG_SZ, b"02-00-00-00-10-01\0"))

    def test_zeros_are_never_stored(self):
        self.veth("eth0", mac=OWN)
        self.tap("tap0", up=False)
        self.nicx("-n", "eth0", "-m", "00:00:00:00:00:00", "-di", "-re", code=1)
        self.report()
        self.assertEqual(self.original("eth0"), (REG_SZ, b"02-00-00-00-10-01\0"))
        for original, applied in self.sql("SELECT original, applied FROM links"):
            self.assertNotIn("000000000000", (original, applied))


class WithoutRights(World):
    """The same for everybody."""

    def text_report(self, **options):
        """The text report without its date."""
        result = self.run_program("nicx-report", **options)
        self.assertEqual((result.code, result.err), (0, ""))
        return re.sub(r"Date: .*", "Date: ", result.out)

    def make_links(self):
        self.copy_programs()
        self.veth("eth0", "10.1.0.2/24", "10.2.0.2/24", mac=OWN)
        ip("route", "add", "default", "via", "10.1.0.1", "metric", "5")
        self.bridge("br0")
        self.tap("tap0", up=False)

    def test_every_user_sees_the_same_report(self):
        self.make_links()
        self.nicx("-n", "eth0", "-m", "00:0c:29:4f:8e:35", "-d", "10.1.0.53")
        self.assertEqual(self.text_report(user=NOBODY), self.text_report())

    def test_also_when_the_store_was_never_written(self):
        self.make_links()
        seen = self.text_report(user=NOBODY)
        self.assertFalse(STORE.exists())
        self.assertEqual(seen, self.text_report())

    def test_also_when_the_kernel_changed_since_the_store_was_written(self):
        self.make_links()
        self.report()
        ip("address", "add", "10.1.0.77/24", "dev", "eth0")
        ip("link", "delete", "br0")
        self.veth("new0", "10.5.0.2/24")
        before = self.stored()
        seen = self.text_report(user=NOBODY)
        self.assertIn("10.1.0.77", seen)
        self.assertIn("new0", seen)
        self.assertNotIn("br0", seen)
        self.assertEqual(self.stored(), before)
        self.assertEqual(seen, self.text_report())

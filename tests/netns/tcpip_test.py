"""IP addresses, gateways and presets on real links: the registry's exact bytes and, after a restart, the kernel's word."""

import struct

from world import BIN, REG_DWORD, REG_MULTI_SZ, REG_SZ, World, ip, multi, preset_bytes, vendor_bytes

OWN = "02:00:00:00:10:01"


class Static(World):
    def restart(self, *options, code=0):
        """Disables first, so that the restart has no wait after its disable step."""
        return self.nicx("-n", "eth0", *options, "-di", "-re", code=code)

    def assert_lists(self, addresses, masks, gateways=None, metrics=None):
        values = self.tcpip("eth0")
        self.assertEqual(values["EnableDHCP"], (REG_DWORD, b"\0\0\0\0"))
        self.assertEqual(values["IPAddress"], (REG_MULTI_SZ, multi(*addresses)))
        self.assertEqual(values["SubnetMask"], (REG_MULTI_SZ, multi(*masks)))
        if gateways is not None:
            self.assertEqual(values["DefaultGateway"], (REG_MULTI_SZ, multi(*gateways)))
            self.assertEqual(values["DefaultGatewayMetric"], (REG_MULTI_SZ, multi(*metrics)))

    def test_several_addresses_and_gateways(self):
        self.veth("eth0", "10.9.0.2/24", mac=OWN)
        ip("route", "add", "default", "via", "10.9.0.1")
        self.nicx("-n", "eth0", "-i", "10.1.0.5,10.1.0.6,172.16.0.5:255.255.255.0,255.255.255.0,255.255.240.0",
                  "-g", "10.1.0.1,172.16.0.1:10,20")
        self.assert_lists(["10.1.0.5", "10.1.0.6", "172.16.0.5"], ["255.255.255.0", "255.255.255.0", "255.255.240.0"],
                          ["10.1.0.1", "172.16.0.1"], ["10", "20"])
        self.assert_up("eth0", OWN, ["10.9.0.2/24"], [("10.9.0.1", 0)])
        self.assertEqual(self.restart().err, "")
        self.assert_up("eth0", OWN, ["10.1.0.5/24", "172.16.0.5/20", "10.1.0.6/24"],
                       [("10.1.0.1", 10), ("172.16.0.1", 20)])
        self.assert_lists(["10.1.0.5", "10.1.0.6", "172.16.0.5"], ["255.255.255.0", "255.255.255.0", "255.255.240.0"],
                          ["10.1.0.1", "172.16.0.1"], ["10", "20"])

    def test_fewer_addresses_than_before(self):
        self.veth("eth0", "10.1.0.5/24", "10.1.0.6/24", "10.2.0.5/24", mac=OWN)
        self.restart("-i", "10.1.0.6:255.255.255.0")
        self.assert_up("eth0", OWN, ["10.1.0.6/24"], [])

    def test_missing_masks_are_class_a(self):
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-i", "10.0.0.5")
        self.assert_lists(["10.0.0.5"], ["255.0.0.0"])
        self.nicx("-n", "eth0", "-i", "10.0.0.5,10.1.0.5:255.255.0.0")
        self.assert_lists(["10.0.0.5", "10.1.0.5"], ["255.255.0.0", "255.0.0.0"])
        self.restart()
        self.assertCountEqual(self.addresses("eth0"), ["10.0.0.5/16", "10.1.0.5/8"])

    def test_more_masks_than_addresses_are_dropped(self):
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-i", "10.0.0.5 : 255.255.255.0 , 255.255.0.0")
        self.assert_lists(["10.0.0.5"], ["255.255.255.0"])

    def test_gateways_without_metrics(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.restart("-g", "10.1.0.1")
        values = self.tcpip("eth0")
        self.assertEqual(values["DefaultGateway"], (REG_MULTI_SZ, multi("10.1.0.1")))
        self.assertEqual(values["DefaultGatewayMetric"], (REG_MULTI_SZ, multi("0")))
        self.assert_up("eth0", OWN, ["10.1.0.2/24"], [("10.1.0.1", 0)])

    def test_gateways_with_equal_metrics(self):
        self.veth("eth0", mac=OWN)
        result = self.restart("-i", "10.1.0.5:255.255.255.0", "-g", "10.1.0.1,10.1.0.2:5,5")
        self.assertEqual(result.err, "")
        self.assertCountEqual(self.default_routes("eth0"), [("10.1.0.1", 5), ("10.1.0.2", 5)])

    def test_two_links_with_the_same_gateway_metric(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.veth("lan1", "10.2.0.2/24")
        ip("route", "add", "default", "via", "10.2.0.1")
        self.restart("-g", "10.1.0.1")
        self.assertEqual(self.default_routes("eth0"), [("10.1.0.1", 0)])
        self.assertEqual(self.default_routes("lan1"), [("10.2.0.1", 0)])

    def test_an_unreachable_gateway_is_refused_in_the_kernels_words(self):
        self.veth("eth0", mac=OWN)
        warned = self.nicx("-n", "eth0", "-i", "10.1.0.5:255.255.255.0", "-g", "10.99.0.1,10.1.0.1")
        self.assertIn("nicx: warning: gateway '10.99.0.1' is in the network of none of the given addresses", warned.err)
        result = self.restart(code=1)
        self.assertIn("gateway 10.99.0.1 was refused: ", result.err)
        self.assertIn("Nexthop has invalid gateway", result.err)
        self.assert_up("eth0", OWN, ["10.1.0.5/24"], [("10.1.0.1", 0)])

    def test_no_gateways_any_more(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        ip("route", "add", "default", "via", "10.1.0.1")
        self.restart("-g")
        self.assertEqual(self.tcpip("eth0")["DefaultGateway"], (REG_MULTI_SZ, b"\0\0"))
        self.assert_up("eth0", OWN, ["10.1.0.2/24"], [])

    def test_what_no_host_can_have_is_stored_as_typed_and_refused_in_words(self):
        self.veth("eth0", mac=OWN)
        typed = ["10.1.0.5", "300.1.1.1", "224.0.0.5", "127.0.0.5", "10.2.0.5", "0.0.0.0"]
        masks = ["255.255.255.0", "255.0.0.0", "255.0.0.0", "255.0.0.0", "255.0.255.0", "255.0.0.0"]
        warned = self.nicx("-n", "eth0", "-i", ",".join(typed) + ":" + ",".join(masks), "-g", "gate:fast")
        for text in ("300.1.1.1", "224.0.0.5", "127.0.0.5", "255.0.255.0", "gate", "fast"):
            self.assertIn(f"'{text}' is stored as typed but", warned.err)
        self.assertNotIn("'10.1.0.5'", warned.err)
        self.assert_lists(typed, masks, ["gate"], ["fast"])
        result = self.restart(code=1)
        for text in ("IP address '300.1.1.1'", "IP address '224.0.0.5'", "IP address '127.0.0.5'",
                     "IP address '10.2.0.5'", "gateway 'gate'"):
            self.assertIn(text + " was not set: ", result.err)
        self.assert_up("eth0", OWN, ["10.1.0.5/24"], [])

    def test_settings_of_a_disabled_link_wait_for_its_next_start(self):
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-di")
        self.nicx("-n", "eth0", "-i", "10.1.0.5:255.255.255.0", "-g", "10.1.0.1:7")
        self.assertFalse(self.is_up("eth0"))
        self.assertEqual(self.addresses("eth0"), [])
        self.nicx("-n", "eth0", "-re")
        self.assert_up("eth0", OWN, ["10.1.0.5/24"], [("10.1.0.1", 7)])

    def test_a_bridge_and_a_macvlan_take_static_settings(self):
        self.veth("eth0", mac=OWN)
        self.bridge("br0")
        self.macvlan("mv0", "eth0")
        both = [self.start("nicx", "-n", "br0", "-i", "10.3.0.5:255.255.255.0", "-di", "-re"),
                self.start("nicx", "-n", "mv0", "-i", "10.4.0.5:255.255.255.0", "-g", "10.4.0.1", "-di", "-re")]
        for process in both:
            self.assertEqual(self.finish(process).code, 0)
        self.assertEqual(self.addresses("br0"), ["10.3.0.5/24"])
        self.assertEqual(self.addresses("mv0"), ["10.4.0.5/24"])
        self.assertEqual(self.default_routes("mv0"), [("10.4.0.1", 0)])


class Presets(World):
    OFFICE = ("The Office", 2 | 8 | 16 | 32, "00-0C-29-4F-8E-35", ["10.1.0.5", "10.2.0.5"],
              ["255.255.255.0", "255.255.0.0"], ["10.1.0.1"], ["15"], ["10.1.0.53"])

    def put_presets(self, *records):
        (self.copy_programs() / "presets.npf").write_bytes(preset_bytes(*records))

    def test_a_preset_is_applied_with_a_restart(self):
        self.put_presets(("", 0, "", None, None, None, None, None), self.OFFICE)
        self.veth("eth0", mac=OWN)
        result = self.nicx("-n", "eth0", "-p", "OFF", "-di", "-re")
        self.assertEqual(result.err, "")
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000C294F8E35\0"))
        values = self.tcpip("eth0")
        self.assertEqual(values["IPAddress"], (REG_MULTI_SZ, multi("10.1.0.5", "10.2.0.5")))
        self.assertEqual(values["SubnetMask"], (REG_MULTI_SZ, multi("255.255.255.0", "255.255.0.0")))
        self.assertEqual(values["DefaultGateway"], (REG_MULTI_SZ, multi("10.1.0.1")))
        self.assertEqual(values["DefaultGatewayMetric"], (REG_MULTI_SZ, multi("15")))
        self.assertEqual(values["NameServer"], (REG_SZ, b"10.1.0.53\0"))
        self.assert_up("eth0", "00:0c:29:4f:8e:35", ["10.1.0.5/24", "10.2.0.5/16"], [("10.1.0.1", 15)])
        self.assertEqual(self.name_servers(), ["10.1.0.53", "192.0.2.53"])

    def test_a_preset_rules_over_the_options(self):
        self.put_presets(self.OFFICE)
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-m", "02:00:00:00:99:99", "-i", "10.9.9.9", "-h", "-p", "office")
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000C294F8E35\0"))
        self.assertEqual(self.tcpip("eth0")["EnableDHCP"], (REG_DWORD, b"\0\0\0\0"))
        self.assertEqual(self.tcpip("eth0")["IPAddress"], (REG_MULTI_SZ, multi("10.1.0.5", "10.2.0.5")))

    def test_the_first_preset_that_matches_is_taken(self):
        second = ("Second office", 8, "", ["10.5.0.5"], ["255.0.0.0"], None, None, None)
        self.put_presets(second, self.OFFICE)
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-p", "office")
        self.assertEqual(self.tcpip("eth0")["IPAddress"], (REG_MULTI_SZ, multi("10.5.0.5")))
        self.assertNotIn("NetworkAddress", self.driver("eth0"))

    def test_an_unknown_preset_leaves_the_options_standing(self):
        self.put_presets(self.OFFICE)
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-i", "10.9.9.9", "-p", "home")
        self.assertEqual(self.tcpip("eth0")["IPAddress"], (REG_MULTI_SZ, multi("10.9.9.9")))

    def test_the_address_of_a_preset_that_is_the_original_removes_the_override(self):
        self.put_presets(("own", 2, "02-00-00-00-10-01", None, None, None, None, None))
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-m", "00:0c:29:4f:8e:35")
        self.nicx("-n", "eth0", "-p", "own")
        self.assertNotIn("NetworkAddress", self.driver("eth0"))

    def test_a_preset_with_a_random_address(self):
        self.put_presets(("dice", 2 | 4, "", None, None, None, None, None))
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-p", "dice")
        kind, data = self.driver("eth0")["NetworkAddress"]
        self.assertEqual((kind, len(data)), (REG_SZ, 13))
        self.assertIn(data[:6].decode(), vendor_prefixes())


def vendor_prefixes():
    """All prefixes of the vendor list, read by the description of its format: a count, then prefix (6 bytes), name and
    address, each with its length (16 bits) before it."""
    data = (BIN / "VendorNumbers.log").read_bytes()
    count, position, found = struct.unpack_from("<i", data)[0], 4, set()
    for _ in range(count):
        found.add(data[position:position + 6].decode("ascii"))
        position += 6
        for _ in range(2):
            position += 2 + struct.unpack_from("<H", data, position)[0]
    return found


class RandomAddress(World):
    def test_a_random_address_begins_with_a_manufacturers_prefix(self):
        prefixes = vendor_prefixes()
        self.veth("eth0", mac=OWN)
        seen = set()
        for _ in range(5):
            self.nicx("-n", "eth0", "-r")
            digits = self.driver("eth0")["NetworkAddress"][1][:-1].decode()
            self.assertRegex(digits, "^[0-9A-F]{12}$")
            self.assertIn(digits[:6], prefixes)
            seen.add(digits)
        # Equal seeds within one tick of the clock would give equal addresses; five equal ones are no chance.
        self.assertGreater(len(seen), 1)
        self.assertTrue(self.report()["eth0"]["override"])

    def test_a_random_address_on_the_wire(self):
        # The whole list has group prefixes too, which no link may have.
        (self.copy_programs() / "VendorNumbers.log").write_bytes(vendor_bytes(("000C29", "First"), ("00A0C9", "Second")))
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-r", "-di", "-re")
        digits = self.driver("eth0")["NetworkAddress"][1][:-1].decode()
        self.assertIn(digits[:6], ("000C29", "00A0C9"))
        self.assertEqual(self.mac("eth0"), ":".join(digits[i:i + 2] for i in range(0, 12, 2)).lower())
        self.assertTrue(self.is_up("eth0"))
        self.assertRegex(self.report()["eth0"]["manufacturer"], "^(First|Second)   Address: $")

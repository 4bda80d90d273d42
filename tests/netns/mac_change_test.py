"""Another MAC address on real links: applied with a restart, given back, and what happens when it cannot be had."""

from world import FAR, NOBODY, REG_SZ, STORE, World, ip, ip_json, wait_for

NEW = "00:0c:29:4f:8e:35"
OWN = "02:00:00:00:10:01"


def restart_of(world, name, *options):
    """Disables first, so that the restart has no wait after its disable step."""
    return world.nicx("-n", name, *options, "-di", "-re")


class MacChange(World):
    def make_full_set_up(self, name):
        """Everything that the kernel forgets of a link that is taken down."""
        self.veth(name, "10.1.0.2/24", "10.1.0.3/24", "2001:db8:1::2/64", mac=OWN)
        ip("route", "add", "default", "via", "10.1.0.1", "metric", "10")
        ip("route", "add", "default", "via", "10.1.0.254", "metric", "20")
        ip("route", "add", "192.0.2.0/24", "via", "10.1.0.1")
        ip("route", "add", "198.51.100.0/24", "dev", name)
        ip("neigh", "add", "10.1.0.77", "lladdr", "02:00:00:00:77:77", "dev", name, "nud", "permanent")

    def assert_full_set_up(self, name, mac):
        self.assert_up(name, mac, ["10.1.0.2/24", "10.1.0.3/24"], [("10.1.0.1", 10), ("10.1.0.254", 20)])
        self.assertCountEqual(self.routes(name), [("192.0.2.0/24", "10.1.0.1"), ("198.51.100.0/24", None)])
        self.assertEqual(self.ipv6_addresses(name, "global"), ["2001:db8:1::2/64"])
        self.assertIn(("10.1.0.77", "02:00:00:00:77:77"), self.permanent_neighbours(name))

    def test_a_restart_applies_the_address_and_brings_the_set_up_back(self):
        self.make_full_set_up("eth0")
        ip("netns", "exec", FAR, "sh", "-c", "echo 1 >/proc/sys/net/ipv4/conf/eth0/arp_accept")
        result = self.nicx("-n", "eth", "-m", NEW, "-re")
        self.assertEqual(result.err, "")
        self.assertIn("Network connection 'eth0' was restarted successfully.", result.out)
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000c294f8e35\0"))
        self.assertEqual(self.driver("eth0")["OriginalNetworkAddress"], (REG_SZ, b"02-00-00-00-10-01\0"))
        self.assert_full_set_up("eth0", NEW)
        self.assertEqual(self.ipv6_addresses("eth0", "link"), ["fe80::20c:29ff:fe4f:8e35/64"])
        # The far end learns addresses from gratuitous ARP alone: nothing else was sent from the new address.
        self.assertEqual(self.far_neighbours("eth0"), {"10.1.0.2": NEW, "10.1.0.3": NEW})
        self.assertEqual(self.report()["eth0"]["macText"], "00-0C-29-4F-8E-35 (Changed)")

    @staticmethod
    def far_neighbours(name):
        return {entry["dst"]: entry["lladdr"] for entry in ip_json("-n", FAR, "-4", "neigh", "show", "dev", name)}

    def test_without_a_restart_only_the_registry_changes(self):
        self.make_full_set_up("eth0")
        self.nicx("-n", "eth0", "-m", NEW)
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000c294f8e35\0"))
        self.assert_full_set_up("eth0", OWN)
        self.assertEqual(self.report()["eth0"]["macText"], "02-00-00-00-10-01 (Inactive, 00-0C-29-4F-8E-35)")
        self.nicx("-n", "eth0", "-m")
        self.assertNotIn("NetworkAddress", self.driver("eth0"))
        self.assert_full_set_up("eth0", OWN)

    def test_the_original_address_as_text_is_an_override_like_any_other(self):
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-m", NEW)
        # Only the hyphened form is compared with the saved original, and that cannot be typed here.
        self.nicx("-n", "eth0", "-m", OWN)
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"020000001001\0"))

    def change_and_give_back(self, name, original):
        self.assertEqual(self.mac(name), original)
        restart_of(self, name, "-m", NEW)
        self.assertEqual(self.mac(name), NEW)
        restart_of(self, name, "-m")
        self.assertTrue(self.is_up(name))
        self.assertEqual(self.mac(name), original)
        self.assertNotIn("NetworkAddress", self.driver(name))
        self.assertEqual(self.link_row(name)["applied"], "")

    def test_a_veth_link_gets_its_original_address_back(self):
        self.veth("eth0", mac=OWN)
        self.change_and_give_back("eth0", OWN)

    def test_a_macvlan_link_gets_its_original_address_back(self):
        self.veth("eth0", mac=OWN)
        self.macvlan("mv0", "eth0", mac="02:00:00:00:10:02")
        self.change_and_give_back("mv0", "02:00:00:00:10:02")
        self.assert_up("eth0", OWN)

    def test_a_bridge_with_a_port_gets_its_original_address_back(self):
        self.veth("eth0", mac=OWN)
        self.bridge("br0", up=False)
        ip("link", "set", "eth0", "master", "br0")
        ip("link", "set", "br0", "up")
        self.change_and_give_back("br0", OWN)
        self.assertEqual(self.link("eth0")["master"], "br0")

    def test_a_bridge_without_ports_gets_its_original_address_back(self):
        self.bridge("br0", mac="02:00:00:00:10:03")
        self.change_and_give_back("br0", "02:00:00:00:10:03")

    def test_a_tap_link_gets_its_original_address_back(self):
        self.tap("tap0", mac="02:00:00:00:10:04")
        self.change_and_give_back("tap0", "02:00:00:00:10:04")

    def test_disabling_leaves_it_down_and_bare_and_a_restart_brings_all_back(self):
        self.make_full_set_up("eth0")
        self.nicx("-n", "eth0", "-di")
        self.assertFalse(self.is_up("eth0"))
        self.assertEqual(self.addresses("eth0"), [])
        self.assertEqual(self.default_routes("eth0"), [])
        self.nicx("-n", "eth0", "-re")
        self.assert_full_set_up("eth0", OWN)
        self.assertEqual(self.link_row("eth0")["held"], 0)
        self.assertEqual(self.sql("SELECT count(*) FROM held"), [(0,)])

    def test_disabling_twice_keeps_what_the_first_kept(self):
        self.make_full_set_up("eth0")
        self.nicx("-n", "eth0", "-di")
        self.nicx("-n", "eth0", "-di")
        self.nicx("-n", "eth0", "-m", NEW, "-di", "-re")
        self.assert_full_set_up("eth0", NEW)

    def test_the_original_survives_many_changes(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        for number in range(1, 4):
            mac = f"02:00:00:00:20:{number:02x}"
            restart_of(self, "eth0", "-m", mac)
            self.assertEqual(self.mac("eth0"), mac)
            self.assertEqual(self.report()["eth0"]["originalMac"], "02-00-00-00-10-01")
        for number in range(1, 6):
            self.nicx("-n", "eth0", "-m", f"02:00:00:00:30:{number:02x}")
        restart_of(self, "eth0", "-m")
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])

    def test_the_original_survives_an_address_set_by_another_program(self):
        self.veth("eth0", mac=OWN)
        self.report()
        ip("link", "set", "eth0", "address", "02:00:00:00:40:01")
        restart_of(self, "eth0", "-m", NEW)
        restart_of(self, "eth0", "-m")
        self.assert_up("eth0", OWN)

    def test_the_original_survives_a_store_file_that_is_deleted_and_made_anew(self):
        self.veth("eth0", mac=OWN)
        self.report()
        STORE.unlink()
        restart_of(self, "eth0", "-m", NEW)
        restart_of(self, "eth0", "-m")
        self.assert_up("eth0", OWN)

    def test_the_original_survives_a_store_file_deleted_while_another_address_is_set(self):
        self.veth("eth0", mac=OWN)
        restart_of(self, "eth0", "-m", NEW)
        STORE.unlink()
        self.assertNotEqual(self.report()["eth0"]["originalMac"], "00-0C-29-4F-8E-35",
                            "the address that the program set is taken for the original")

    def test_a_renamed_link_keeps_its_id_its_settings_and_its_original(self):
        self.veth("eth0", mac=OWN)
        restart_of(self, "eth0", "-m", NEW, "-i", "10.1.0.9:255.255.255.0")
        before = self.report()["eth0"]["configurationId"]
        ip("link", "set", "eth0", "down")
        ip("link", "set", "eth0", "name", "office")
        after = self.report()
        self.assertEqual(list(after), ["office"])
        self.assertEqual(after["office"]["configurationId"], before)
        self.assertEqual(after["office"]["override"], "00-0C-29-4F-8E-35")
        restart_of(self, "office")
        self.assert_up("office", NEW, ["10.1.0.9/24"])
        restart_of(self, "office", "-m")
        self.assert_up("office", OWN, ["10.1.0.9/24"])

    def test_a_link_that_vanished_and_came_back_has_its_settings(self):
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-m", NEW, "-i", "10.1.0.9:255.255.255.0")
        before = self.report()["eth0"]["configurationId"]
        ip("link", "delete", "eth0")
        self.assertEqual(self.report(), {})
        self.veth("eth0", mac="02:00:00:00:50:01")
        self.assertEqual(self.report()["eth0"]["configurationId"], before)
        restart_of(self, "eth0")
        self.assert_up("eth0", NEW, ["10.1.0.9/24"])
        # A new link of that name has an original address of its own.
        restart_of(self, "eth0", "-m")
        self.assert_up("eth0", "02:00:00:00:50:01", ["10.1.0.9/24"])

    def test_two_restarts_at_once_do_not_disturb_each_other(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.veth("lan1", "10.2.0.2/24", mac="02:00:00:00:10:02")
        self.report()
        both = [self.start("nicx", "-n", "eth0", "-m", NEW, "-re"),
                self.start("nicx", "-n", "lan1", "-m", "00:0c:29:4f:8e:36", "-re")]
        for process in both:
            self.assertEqual(self.finish(process).code, 0)
        self.assert_up("eth0", NEW, ["10.1.0.2/24"])
        self.assert_up("lan1", "00:0c:29:4f:8e:36", ["10.2.0.2/24"])


class Refusals(World):
    """The address cannot be had: the cause is told, and the link is up with its original address."""

    def refuse(self, typed, stored, reason):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        warned = self.nicx("-n", "eth0", "-m", typed)
        self.assertIn("nicx: warning: ", warned.err)
        self.assertIn(reason, warned.err)
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, stored))
        self.assertEqual(self.nicx("-n", "eth0", "-m", typed, "-s")[1:], ("", ""))
        result = self.nicx("-n", "eth0", "-di", "-re", code=1)
        self.assertIn(reason, result.err)
        self.assertIn("'eth0'", result.err)
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])
        self.assertEqual(self.link_row("eth0")["original"], "020000001001")
        return result

    def test_a_multicast_address(self):
        self.refuse("01:00:5e:00:00:01", b"01005e000001\0", "multicast")

    def test_all_zeros(self):
        self.refuse("00:00:00:00:00:00", b"000000000000\0", "zero")

    def test_an_address_that_is_not_hexadecimal(self):
        self.refuse("00:0c:29:4f:8e:3g", b"000c294f8e3g\0", "twelve hexadecimal digits")

    def test_an_address_that_is_too_short(self):
        self.refuse("00:0c:29", b"000c29\0", "twelve hexadecimal digits")

    def test_an_address_that_is_too_long(self):
        self.refuse("00:0c:29:4f:8e:35:00", b"000c294f8e3500\0", "twelve hexadecimal digits")

    def test_a_short_override_does_not_count_as_one_until_another_takes_its_place(self):
        self.veth("eth0", mac=OWN)
        self.nicx("-n", "eth0", "-m", "12")
        self.assertEqual(self.report()["eth0"]["override"], "")
        self.nicx("-n", "eth0", "-m")
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"12\0"))
        self.nicx("-n", "eth0", "-m", NEW)
        self.nicx("-n", "eth0", "-m")
        self.assertNotIn("NetworkAddress", self.driver("eth0"))

    def test_the_address_of_the_lower_link_of_a_macvlan(self):
        self.veth("eth0", mac=OWN)
        self.macvlan("mv0", "eth0", "10.3.0.2/24", mac="02:00:00:00:10:02")
        result = self.nicx("-n", "mv0", "-m", OWN, "-di", "-re", code=1)
        self.assertIn("Address already in use", result.err)
        self.assert_up("mv0", "02:00:00:00:10:02", ["10.3.0.2/24"])
        self.assert_up("eth0", OWN)

    def test_the_address_of_a_sibling_of_a_macvlan(self):
        self.veth("eth0", mac=OWN)
        self.macvlan("mv0", "eth0", mac="02:00:00:00:10:02")
        self.macvlan("mv1", "eth0", "10.3.0.3/24", mac="02:00:00:00:10:03")
        result = self.nicx("-n", "mv1", "-m", "02:00:00:00:10:02", "-di", "-re", code=1)
        self.assertIn("Address already in use", result.err)
        self.assert_up("mv1", "02:00:00:00:10:03", ["10.3.0.3/24"])
        self.assert_up("mv0", "02:00:00:00:10:02")

    def test_without_rights_nothing_changes(self):
        self.copy_programs()
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.report()
        before = self.stored()
        result = self.nicx("-n", "eth0", "-m", NEW, "-i", "10.9.9.9", "-re", user=NOBODY, code=1)
        self.assertIn("Error: (5) Access to this key is denied", result.err)
        self.assertIn("Access is denied", result.err)
        self.assertIn("Network connection 'eth0' was not restarted successfully.", result.err)
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])
        self.assertEqual(self.stored(), before)

    def test_without_rights_disabling_says_so(self):
        self.copy_programs()
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        result = self.nicx("-n", "eth0", "-di", user=NOBODY, code=1)
        self.assertIn("Access is denied", result.err)
        self.assertIn("Network connection 'eth0' was not disabled successfully.", result.err)
        self.assert_up("eth0", OWN, ["10.1.0.2/24"])
        self.assertFalse(STORE.exists())

    def test_a_link_that_vanishes_during_the_restart(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        process = self.start("nicx", "-n", "eth0", "-m", NEW, "-re")
        wait_for(lambda: not self.is_up("eth0"), "the link is disabled")
        ip("link", "delete", "eth0")
        result = self.finish(process)
        self.assertIn("Could not locate network connection 'eth0'", result.err)
        self.assertNotEqual(result.code, 0, "nothing was restarted")

    def test_a_link_that_is_replaced_during_the_restart(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        process = self.start("nicx", "-n", "eth0", "-m", NEW, "-re")
        wait_for(lambda: not self.is_up("eth0"), "the link is disabled")
        ip("link", "delete", "eth0")
        self.veth("eth0", mac="02:00:00:00:50:01", up=False)
        self.assertEqual(self.finish(process).code, 0)
        # The settings are the name's; what was kept of the old kernel object is not put on the new one.
        self.assert_up("eth0", NEW, ["10.1.0.2/24"])
        self.assertEqual(self.link_row("eth0")["original"], "020000005001")

    def test_a_link_that_somebody_takes_up_during_the_restart(self):
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        process = self.start("nicx", "-n", "eth0", "-m", NEW, "-re")
        wait_for(lambda: not self.is_up("eth0"), "the link is disabled")
        ip("link", "set", "eth0", "up")
        result = self.finish(process)
        self.assertEqual(result.code, 1)
        self.assertIn("Network connection 'eth0' was not restarted successfully.", result.err)
        self.nicx("-n", "eth0", "-di", "-re")
        self.assert_up("eth0", NEW, ["10.1.0.2/24"])

    def test_a_name_that_matches_nothing(self):
        self.veth("eth0", mac=OWN)
        before = self.report() and self.stored()
        result = self.nicx("-n", "wlan", "-m", NEW, "-re", code=3)
        self.assertEqual(result.out, "")
        self.assertIn("ERROR! Network connection 'wlan' was not found.", result.err)
        self.assertEqual(self.nicx("-n", "wlan", "-m", NEW, "-re", "-s", code=3)[1:], ("", ""))
        # Names are compared in lower case, the given one as it is typed.
        self.nicx("-n", "ETH0", "-m", NEW, "-re", code=3)
        self.assertEqual(self.stored(), before)

    def test_silent_mode_still_fails(self):
        self.veth("eth0", mac=OWN)
        result = self.nicx("-n", "eth0", "-s", "-m", "01:00:5e:00:00:01", "-di", "-re", code=1)
        self.assertEqual(result[1:], ("", ""))
        self.assert_up("eth0", OWN)

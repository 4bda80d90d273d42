"""The command line of nicx.exe: what is told in message boxes, exit codes, and the bytes in the registry."""

import pathlib
import struct

from command_line import NEW, OFFICE, OWN, TITLE, VERSION, CommandLine, done
from parts import Box
from wine import REG_DWORD, REG_MULTI_SZ, REG_SZ
from world import multi, preset_bytes, vendor_bytes

GOLDEN = pathlib.Path(__file__).parent.parent / "cli/golden"
HELP_FORMS = ("-help", "help", "/help", "?", "/?", "/", "-")


class Help(CommandLine):
    def test_the_help_window(self):
        """It has the text that the program prints elsewhere, and its button ends the run."""
        printed = (GOLDEN / "help.txt").read_text(encoding="utf-8").partition("[standard output]\n")[2]
        program = self.nicx("-help")
        window = program.expect_window("Command Line Help" + VERSION, Box)
        usage = window.entry(None)
        self.assertEqual(usage.text, printed.rstrip("\n"))
        self.assertTrue(usage.read_only)
        self.assertEqual(window.buttons, ["OK"])
        self.assertTrue(window.button("OK").focused)
        window.press("OK")
        self.assertEqual(program.wait_exit(), 0)

    def test_every_form_of_help(self):
        for form in HELP_FORMS[1:]:
            with self.subTest(form=form):
                program = self.nicx(form)
                window = program.expect_window("Command Line Help" + VERSION, Box)
                self.assertTrue(window.entry(None).text.startswith("nicx -n network_connection_name   [-m mac_address"))
                program.press("Return")
                self.assertEqual(program.wait_exit(), 0)

    def test_nearly_help_is_an_invalid_parameter(self):
        text = "ERROR! Invalid paramater : HELP"
        self.run_with(["-HELP"], ("Invalid Parameter" + VERSION, text, "error"), code=2)

class Refusals(CommandLine):
    def test_an_invalid_parameter(self):
        before = self.stored()
        for arguments, name in ((["-n", "eth0", "-m", NEW, "-Restart"], "Restart"), (["-s", "-x"], "x"),
                                (["-n", "eth0", "-m", "00-11-22-33-44-55"], "11")):
            with self.subTest(arguments=arguments):
                box = ("Invalid Parameter" + VERSION, f"ERROR! Invalid paramater : {name}", "error")
                self.run_with(arguments, box, code=2)
        self.assertEqual(self.stored(), before)

    def test_nothing_to_do(self):
        self.run_with(["-s"], code=2)
        self.run_with(["-re", "-di"], code=2)

    def test_a_connection_that_is_not_there(self):
        # The first run notes the original address.
        self.run_with(["-n", "wlan", "-s"], code=3)
        before = self.stored()
        box = ("NIC Not Found- Orvella Corvane v4", "ERROR! Network connection 'wlan' was not found.", "error")
        self.run_with(["-n", "wlan", "-m", NEW], box, code=3)
        self.run_with(["-n", "wlan", "-m", NEW, "-s"], code=3)
        # The given name is compared as it was typed.
        box = (box[0], "ERROR! Network connection 'ETH0' was not found.", "error")
        self.run_with(["-n", "ETH0", "-m", NEW], box, code=3)
        self.assertEqual(self.stored(), before)

    def test_a_box_is_answered_by_keys(self):
        program = self.nicx("-n", "wlan")
        program.expect_box("NIC Not Found- Orvella Corvane v4")
        program.press("Return")
        self.assertEqual(program.wait_exit(), 3)

class MacAddress(CommandLine):
    def address(self):
        return self.driver("eth0").get("NetworkAddress")

    def test_it_is_written_and_deleted(self):
        self.run_done("-m", NEW)
        self.assertEqual(self.address(), (REG_SZ, b"000c294f8e35\0"))
        self.assertEqual(self.driver("eth0")["OriginalNetworkAddress"], (REG_SZ, b"02-00-00-00-10-01\0"))
        self.run_done("-m", "")
        self.assertIsNone(self.address())
        self.assertEqual(self.driver("eth0")["OriginalNetworkAddress"], (REG_SZ, b"02-00-00-00-10-01\0"))

    def test_silence(self):
        self.run_silent("-m", NEW)
        self.assertEqual(self.address(), (REG_SZ, b"000c294f8e35\0"))
        self.run_silent("-m")
        self.assertIsNone(self.address())

    def test_the_original_address_is_an_override_as_well(self):
        self.run_silent("-m", NEW)
        self.run_silent("-m", OWN)
        self.assertEqual(self.address(), (REG_SZ, b"020000001001\0"))

    def test_a_random_address_begins_with_a_manufacturers_prefix(self):
        (self.folder / "VendorNumbers.log").write_bytes(vendor_bytes(("000C29", "First"), ("00A0C9", "Second")))
        self.run_done("-r")
        kind, data = self.address()
        self.assertEqual((kind, len(data)), (REG_SZ, 13))
        self.assertRegex(data[:-1].decode(), "^(000C29|00A0C9)[0-9A-F]{6}$")

    def test_the_whole_vendor_list(self):
        data = (self.folder / "VendorNumbers.log").read_bytes()
        count, position, prefixes = struct.unpack_from("<i", data)[0], 4, set()
        for _ in range(count):
            prefixes.add(data[position:position + 6].decode())
            position += 6
            for _ in range(2):
                position += 2 + struct.unpack_from("<H", data, position)[0]
        self.run_silent("-r")
        self.assertIn(self.address()[1][:6].decode(), prefixes)

    def test_what_cannot_take_effect_is_stored_with_a_warning(self):
        warning = ("MAC address '01005e000001' is stored as typed but cannot take effect: it is a multicast address "
                   "(the first octet is odd); give another one")
        self.run_with(["-n", "eth0", "-m", "01:00:5e:00:00:01"], (TITLE, warning, "warning"), done("eth0"))
        self.assertEqual(self.address(), (REG_SZ, b"01005e000001\0"))

class Tcpip(CommandLine):
    def assert_values(self, **wanted):
        values = self.tcpip("eth0")
        self.assertEqual({name: values.get(name) for name in wanted}, wanted)

    def test_addresses_and_gateways(self):
        self.run_done("-i", "10.1.0.5,10.1.0.6,172.16.0.5:255.255.255.0,255.255.255.0,255.255.240.0",
                      "-g", "10.1.0.1,172.16.0.1:10,20")
        self.assert_values(
            EnableDHCP=(REG_DWORD, b"\0\0\0\0"),
            IPAddress=(REG_MULTI_SZ, multi("10.1.0.5", "10.1.0.6", "172.16.0.5")),
            SubnetMask=(REG_MULTI_SZ, multi("255.255.255.0", "255.255.255.0", "255.255.240.0")),
            DefaultGateway=(REG_MULTI_SZ, multi("10.1.0.1", "172.16.0.1")),
            DefaultGatewayMetric=(REG_MULTI_SZ, multi("10", "20")), NameServer=None)

    def test_missing_masks_and_metrics(self):
        self.run_silent("-i", "10.0.0.5,10.1.0.5:255.255.0.0", "-g", "10.0.0.1")
        self.assert_values(IPAddress=(REG_MULTI_SZ, multi("10.0.0.5", "10.1.0.5")),
                           SubnetMask=(REG_MULTI_SZ, multi("255.255.0.0", "255.0.0.0")),
                           DefaultGateway=(REG_MULTI_SZ, multi("10.0.0.1")),
                           DefaultGatewayMetric=(REG_MULTI_SZ, multi("0")))

    def test_more_masks_than_addresses_and_blanks(self):
        self.run_silent("-i", "10.0.0.5 : 255.255.255.0 , 255.255.0.0")
        self.assert_values(IPAddress=(REG_MULTI_SZ, multi("10.0.0.5")),
                           SubnetMask=(REG_MULTI_SZ, multi("255.255.255.0")))

    def test_no_gateways_any_more(self):
        self.run_silent("-g", "10.1.0.1")
        self.run_silent("-g")
        self.assert_values(DefaultGateway=(REG_MULTI_SZ, b"\0\0"))

    def test_servers(self):
        self.run_done("-d", "10.1.0.54, 10.1.0.53")
        self.assert_values(NameServer=(REG_SZ, b"10.1.0.54,10.1.0.53\0"), EnableDHCP=(REG_DWORD, b"\0\0\0\0"))

    def test_dhcp_takes_the_static_settings_away(self):
        self.run_silent("-i", "10.1.0.5:255.255.255.0", "-g", "10.1.0.1", "-d", "10.1.0.53")
        self.run_done("-h")
        self.assert_values(
            EnableDHCP=(REG_DWORD, b"\1\0\0\0"), IPAddress=(REG_MULTI_SZ, b"0.0.0.0\0\0"),
            SubnetMask=(REG_MULTI_SZ, b"0.0.0.0\0\0"), DefaultGateway=(REG_MULTI_SZ, b"\0"),
            DefaultGatewayMetric=(REG_MULTI_SZ, b"\0"), NameServer=(REG_SZ, b"\0"))

    def test_what_cannot_take_effect_is_stored_with_warnings(self):
        sentences = (
            "IP address '256.1.1.1' is stored as typed but cannot take effect: "
            "it is not four numbers 0 to 255 joined by '.'",
            "subnet mask '255.0.255.0' is stored as typed but cannot take effect: "
            "a mask is one bits followed by zero bits, such as 255.255.255.0",
            "metric 'fast' is stored as typed but is no number 0 to 4294967295: it will count as 0",
            "gateway '192.0.2.1' is in the network of none of the given addresses: it cannot take effect",
            "DNS server 'dns.example' is stored as typed but cannot take effect: "
            "it is not four numbers 0 to 255 joined by '.'")
        self.run_with(["-n", "eth0", "-i", "10.1.0.5,256.1.1.1:255.0.255.0", "-g", "10.1.0.1,192.0.2.1:fast",
                       "-d", "dns.example"], *[(TITLE, sentence, "warning") for sentence in sentences], done("eth0"))
        self.assert_values(IPAddress=(REG_MULTI_SZ, multi("10.1.0.5", "256.1.1.1")),
                           DefaultGatewayMetric=(REG_MULTI_SZ, multi("fast", "0")),
                           NameServer=(REG_SZ, b"dns.example\0"))

    def test_turning_dhcp_off_by_the_way_is_said(self):
        self.run_silent("-h")
        warning = "DHCP is turned off on 'eth0' because -h was not given; give -h to keep it"
        self.run_with(["-n", "eth0", "-m", NEW], (TITLE, warning, "warning"), done("eth0"))
        self.assert_values(EnableDHCP=(REG_DWORD, b"\0\0\0\0"))

class Presets(CommandLine):
    def put_presets(self, *records):
        (self.folder / "presets.npf").write_bytes(preset_bytes(*records))

    def test_a_preset_is_applied(self):
        self.put_presets(("", 0, "", None, None, None, None, None), OFFICE)
        self.run_done("-p", "OFF")
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000C294F8E35\0"))
        values = self.tcpip("eth0")
        self.assertEqual(values["IPAddress"], (REG_MULTI_SZ, multi("10.1.0.5", "10.2.0.5")))
        self.assertEqual(values["SubnetMask"], (REG_MULTI_SZ, multi("255.255.255.0", "255.255.0.0")))
        self.assertEqual(values["DefaultGateway"], (REG_MULTI_SZ, multi("10.1.0.1")))
        self.assertEqual(values["DefaultGatewayMetric"], (REG_MULTI_SZ, multi("15")))
        self.assertEqual(values["NameServer"], (REG_SZ, b"10.1.0.53\0"))

    def test_a_preset_rules_over_the_options(self):
        self.put_presets(OFFICE)
        self.run_silent("-m", "02:00:00:00:99:99", "-i", "10.9.9.9", "-h", "-p", "office")
        self.assertEqual(self.driver("eth0")["NetworkAddress"], (REG_SZ, b"000C294F8E35\0"))
        self.assertEqual(self.tcpip("eth0")["EnableDHCP"], (REG_DWORD, b"\0\0\0\0"))

    def test_an_unknown_preset_leaves_the_options_standing(self):
        self.put_presets(OFFICE)
        self.run_silent("-i", "10.9.9.9", "-p", "home")
        self.assertEqual(self.tcpip("eth0")["IPAddress"], (REG_MULTI_SZ, multi("10.9.9.9")))

    def test_a_preset_with_the_original_address_removes_the_override(self):
        self.put_presets(("own", 2, "02-00-00-00-10-01", None, None, None, None, None))
        self.run_silent("-m", NEW)
        self.run_silent("-p", "own")
        self.assertNotIn("NetworkAddress", self.driver("eth0"))

    def test_names_of_the_code_page(self):
        self.put_presets(("Büro", 8, "", ["10.3.0.5"], ["255.0.0.0"], None, None, None))
        self.run_silent("-p", "bür")
        self.assertEqual(self.tcpip("eth0")["IPAddress"], (REG_MULTI_SZ, multi("10.3.0.5")))

"""What changes outside of the program shows without a key; and the traffic of the selected connection."""

import pathlib
import socket
import subprocess

from main_window import OWN, OWN_TEXT, MainWindowTest, picture
from waiting import NotNow, end_with_parent
from world import FAR, ip, ip_json

GRAPH = "Traffic of the last two minutes"
# Colours of the curves of what is received and what is sent.
CURVES = (47, 125, 225), (217, 138, 0)
# The rows are in the order of configuration IDs, which are made of the names: these four are in this order.
FIRST, SECOND, THIRD, LAST = "lan1", "lan0", "lan2", "br0"


def await_tick(test, to="10.1.0.1", check=lambda facts: None):
    """Sends something over the selected connection and waits until its traffic has been read. Until then `check` gets
    the facts again and again."""
    before = test.facts["Sent:"]
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
        sender.sendto(b"tick", (to, 9))

    def look():
        facts = test._facts()
        check(facts)
        if facts["Sent:"] == before:
            raise NotNow("it has not been read yet")
    test.window.patiently(look, "a tick")


class Live(MainWindowTest):
    def test_links_come_and_go(self):
        self.veth("lan0", mac=OWN)
        self.open_window()
        self.expect_names("lan0")
        self.bridge("br0")
        self.expect_names("lan0", "br0")
        self.expect_fact("Number of connections", "2 connections")
        ip("link", "delete", "lan0")
        self.expect_names("br0")
        self.expect_facts({"Number of connections": "1 connection", "Connection Name:": "br0"})
        ip("link", "delete", "br0")
        self.expect_names("NIC Not Found")
        self.expect_facts({"Number of connections": "0 connections", "Connection Name:": ""})
        self.veth("lan0", mac=OWN)
        self.expect_names("lan0")
        self.expect_fact("Connection Name:", "lan0")

    def test_the_selected_link_changes(self):
        self.veth("lan0", mac=OWN)
        self.open_window()
        ip("link", "set", "lan0", "down")
        self.connections.expect_row("lan0", "No", OWN_TEXT, "Disabled", "Disabled")
        self.expect_fact("Link Status:", "Disabled")
        self.window.button("Enable").expect(enabled=True)
        ip("link", "set", "lan0", "up")
        self.connections.expect_row("lan0", "No", OWN_TEXT, "Up, Operational")
        self.window.button("Disable").expect(enabled=True)
        ip("-n", FAR, "link", "set", "lan0", "down")
        self.expect_fact("Link Status:", "Up, Disconnected")
        ip("-n", FAR, "link", "set", "lan0", "up")
        self.expect_fact("Link Status:", "Up, Operational")
        ip("address", "add", "10.1.0.2/24", "dev", "lan0")
        self.window.table("IP Address").expect(rows=[("10.1.0.2", "255.255.255.0")])
        ip("route", "add", "default", "via", "10.1.0.1", "metric", "9")
        self.window.table("Gateway").expect(rows=[("10.1.0.1", "9")])
        ip("link", "set", "lan0", "address", "02:00:00:00:40:01")
        self.connections.expect_row("lan0", "Yes", "02-00-00-00-40-01")
        self.expect_fact("MAC Address:", "02-00-00-00-40-01 (Changed)")

    def test_a_link_that_gets_another_name(self):
        self.veth("lan0", mac=OWN)
        self.open_window()
        ip("link", "set", "lan0", "down")
        ip("link", "set", "lan0", "name", "other0")
        self.expect_names("other0")
        self.expect_fact("Connection Name:", "other0")

    def test_the_selection_is_not_disturbed(self):
        self.bridge(LAST)
        self.veth(THIRD, mac=OWN)
        self.open_window()
        self.expect_names(THIRD, LAST)
        self.choose(LAST)
        # In front of it, two at once.
        self.veth(FIRST)
        self.veth(SECOND)
        self.expect_names(FIRST, SECOND, THIRD, LAST)
        self.assertEqual(self.selected(), LAST)
        ip("link", "delete", THIRD)
        self.expect_names(FIRST, SECOND, LAST)
        self.assertEqual(self.selected(), LAST)
        self.desktop.press("Up")
        self.assertEqual(self.selected(), SECOND)
        # When it goes itself, the one in its place is selected.
        ip("link", "delete", SECOND)
        self.expect_names(FIRST, LAST)
        self.assertEqual(self.selected(), LAST)

    def test_nothing_changes_while_the_panel_is_open(self):
        self.veth("lan0", "10.1.0.2/24", mac=OWN)
        ip("-n", FAR, "address", "add", "10.1.0.1/24", "dev", "lan0")
        self.open_window()
        self.open_panel()
        self.desktop.type("00")
        self.veth("lan1")
        ip("link", "delete", "lan1")
        self.bridge("br0")
        # The clock goes on ticking once a second; a refresh would have come in that time.
        for _ in range(3):
            await_tick(self)
        self.assertEqual(self.connections.names, ["lan0"])
        self.assertEqual((self.octets[0], self.window.focus[1]), ("00", "MAC address, octet 2 of 6"))
        self.desktop.press("Escape")
        self.expect_names("lan0", "br0")
        self.assertEqual(self.selected(), "lan0")

    def test_a_list_that_never_rests(self):
        self.veth("lan0", mac=OWN)
        self.open_window()
        self.connections.expect(choice="lan0")
        batch = pathlib.Path("/run/batch")
        for turn in range(6):
            names = [f"x{number}" for number in range(50)]
            batch.write_text("".join(f"link add {name} type bridge\nlink set {name} up\n" for name in names))
            ip("-batch", str(batch))
            if turn < 5:
                batch.write_text("".join(f"link delete {name}\n" for name in names))
                ip("-batch", str(batch))
        self.expect_fact("Number of connections", "51 connections")
        self.assertCountEqual(["lo", *self.connections.names], [link["ifname"] for link in ip_json("link")])
        self.assertEqual(self.selected(), "lan0")
        self.window.expect_windows(self.window.title)


class Traffic(MainWindowTest):
    def setUp(self):
        super().setUp()
        self.veth("lan0", "10.1.0.2/24", mac=OWN)
        self.bridge("br0", "10.2.0.2/24")
        ip("-n", FAR, "address", "add", "10.1.0.1/24", "dev", "lan0")

    def ping(self):
        """Traffic in both directions, until the test ends."""
        process = subprocess.Popen(["ip", "netns", "exec", FAR, "ping", "-q", "-i", "0.05", "-s", "1000", "10.1.0.2"],
                                   stdout=subprocess.DEVNULL, preexec_fn=end_with_parent)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def expect_rates(self, moving):
        """Waits until both rates are some, or none."""
        def look():
            facts = self._facts()
            rates = [facts["Receiving Rate:"], facts["Sending Rate:"]]
            if [rate != "0 Bytes/s" for rate in rates] != [moving, moving]:
                raise NotNow(f"the rates are {rates}")
        self.window.patiently(look, "rates")

    @staticmethod
    def counted(name, direction):
        return int(pathlib.Path(f"/sys/class/net/{name}/statistics/{direction}_bytes").read_text())

    def test_the_counters_are_the_kernels(self):
        self.open_window()
        ping = self.ping()
        self.expect_rates(moving=True)
        ping.terminate()
        self.expect_rates(moving=False)

        def look():
            facts, counted = self._facts(), [self.counted("lan0", direction) for direction in ("rx", "tx")]
            shown = [int(facts[name].split(" ")[0]) for name in ("Received:", "Sent:")]
            if shown != counted:
                raise NotNow(f"shown are {shown}, counted were {counted}")
            return facts
        facts = self.window.patiently(look, "the kernel's counters")
        for name in ("Received:", "Sent:"):
            self.assertRegex(facts[name], r"^\d+ Bytes \([\d.]+ KB\)$")

    def test_another_connection_starts_from_nothing(self):
        self.open_window()
        self.choose("lan0")
        self.ping()
        self.expect_rates(moving=True)
        self.choose("br0")

        def check(facts):
            # The other connection's counters have no part in it.
            self.assertEqual((facts["Receiving Rate:"], facts["Received:"]), ("0 Bytes/s", "0 Bytes"))
            self.assertNotIn("-", facts["Sending Rate:"])
        for _ in range(3):
            await_tick(self, "10.2.0.77", check)
        self.assertEqual(self.counted("br0", "rx"), 0)
        self.choose("lan0")
        self.expect_rates(moving=True)

    def test_the_graph_shows_it(self):
        self.open_window()
        self.choose("br0")
        self.assertEqual(self.high(self.graph(), *CURVES), [0, 0])
        self.choose("lan0")
        self.ping()
        self.expect_rates(moving=True)
        self.expect_curves()
        # Another connection has another graph.
        self.choose("br0")
        self.assertEqual(self.high(self.graph(), *CURVES), [0, 0])

    def graph(self):
        """The rows of the graph's picture."""
        x, y, width, height = self.window.control("panel", GRAPH).extents
        left, top, _, _ = self.desktop.screen.extents(self.x_window())
        pixels = picture(self.x_window(), x - left, y - top, width, height)
        return [pixels[start:start + width] for start in range(0, len(pixels), width)]

    @staticmethod
    def high(graph, *colours):
        """How many of the rows between the key and the bottom line have these colours."""
        rows = graph[len(graph) // 4:len(graph) * 7 // 8]
        return [sum(colour in row for row in rows) for colour in colours]

    def expect_curves(self):
        def look():
            found = self.high(self.graph(), *CURVES)
            if not all(found):
                raise NotNow(f"rows with curves: {found}")
        self.window.patiently(look, "the graph")

"""The presets of the main window and their editor, as a case finds them and works in them."""

from main_window import OWN, MainWindowTest
from waiting import NotNow
from window import LIST
from world import preset_bytes

NAME = "Preset name"
EDITOR = "Create / Edit Configuration Preset"
CHECKS = ("MAC Address", "Random MAC", "Original MAC", "DHCP", "IP Addresses", "Gateways", "DNS Servers")
MAC, RANDOM, ORIGINAL, DHCP, ADDRESSES, GATEWAYS, SERVERS = CHECKS
LISTS = ("IP Address", "Gateway", "DNS Server")
UNUSED = ("", 0, "", None, None, None, None, None)

SAVED = "Preset Saved Successfully"
OVERWRITE = "Overwrite Existing Preset ?"


def preset(name, flags=0, mac="", addresses=(("0.0.0.0", "0.0.0.0"),), gateways=(("", ""),), servers=("",)):
    """A record of the presets file, as the program saves one. Addresses come with masks, gateways with metrics."""
    return (name, flags, mac, *map(list, zip(*addresses)), *map(list, zip(*gateways)), list(servers))


OFFICE = preset("Office", 2 | 8 | 16 | 32, "02-00-00-00-40-01",
                [("10.1.0.5", "255.255.255.0"), ("10.2.0.5", "255.255.0.0")],
                [("10.1.0.1", "20"), ("10.2.0.1", "Automatic")], ["10.1.0.53", "9.9.9.9"])


class PresetTest(MainWindowTest):
    """Base of the test cases. The presets file is the case's own."""

    def setUp(self):
        super().setUp()
        self.file = self.copy_programs() / "presets.npf"
        self.veth("lan0", "10.9.0.2/24", mac=OWN)

    def tearDown(self):
        """The window closes as it does for the user, and it has complained of nothing."""
        result = self._outcome.result
        if not result.failures + result.errors:
            self.end_window()
        super().tearDown()

    def end_window(self):
        self.window.close()
        self.assertEqual((self.window.wait_exit(), self.window.err), (0, ""))

    def open_with(self, *records):
        """Writes the presets and opens the window, whose list has them then."""
        self.write(*records)
        self.open_window()
        self.expect_presets(*[record[0] for record in records if record[0]])

    def write(self, *records):
        self.file.write_bytes(preset_bytes(*records))

    def assert_file(self, *records, tail=b""):
        """The file has exactly these presets, and behind them what was longer before."""
        self.assertEqual(self.file.read_bytes(), preset_bytes(*records) + tail)

    def answer(self, title, text, press, kind=None):
        self.expect_box(title, text, press, kind=kind)

    def open_again(self):
        """Closes the window and starts the program anew."""
        self.end_window()
        self.open_window()

    def expect_no_box(self):
        self.window.expect_windows(self.window.title)

    # --- the list of presets -------------------------------------------------------------------------------------

    @property
    def presets(self):
        return self.window.table("Presets")

    def expect_presets(self, *names):
        self.presets.expect(rows=[(name,) for name in names])

    def select_preset(self, name):
        """Selects a preset by keys: not all are in sight."""
        self.presets.click()
        self.desktop.press("Home", *["Down"] * self.presets.rows.index((name,)))
        self.presets.expect(selected_rows=[(name,)])

    def preset_buttons(self):
        """Whether a preset can be applied, edited, deleted; the menu says the same."""
        names = ("Apply", "Edit", "Delete")
        enabled = [self.window.button(name).enabled for name in names]
        items = dict(self.window.menu("Presets").items)
        self.assertEqual([items[f"{name} Preset"] for name in names], enabled)
        return enabled

    # --- the editor ----------------------------------------------------------------------------------------------

    @property
    def name(self):
        return self.window.entry(NAME)

    def open_editor(self, name=None):
        """Opens the editor by Ctrl+T, and types a name."""
        self.desktop.press("ctrl+t")
        self.name.expect(showing=True, focused=True, text="")
        if name:
            self.desktop.type(name)

    @property
    def editor_is_open(self):
        return self.name.showing

    def tick(self, *checks):
        for check in checks:
            self.window.check(check).click()

    @property
    def ticked(self):
        return [check for check in CHECKS if self.window.check(check).checked]

    @property
    def enabled(self):
        """The check boxes that are enabled, and the lists that can be added to, and whether octets can be entered."""
        states = [self.octet(number).enabled for number in range(6)]
        self.assertEqual(len(set(states)), 1, states)
        return [*[check for check in CHECKS if self.window.check(check).enabled], *["octets"] * states[0],
                *[name for name in LISTS if self.window.button(f"Add {name}").enabled]]

    @property
    def rows(self):
        """The rows of the three lists."""
        return [self.window.table(name).rows for name in LISTS]

    def open_panel_of(self, name, first):
        """Opens the panel below a list; the keyboard is in its first box then."""
        self.window.button(f"Add {name}").click()
        self.window.entry(first).expect(showing=True, focused=True, text="")

    def add_addresses(self, *pairs):
        """Types addresses and masks, adds them by Enter and closes the panel."""
        first = "IP address, octet 1 of 4"
        self.open_panel_of("IP Address", first)
        for address, mask in pairs:
            self.desktop.type(address)
            self.window.entry("Subnet mask, octet 1 of 4").click()
            self.desktop.type(mask)
            self._add_by_enter(first)
        self.desktop.press("Escape")

    def add_gateways(self, *pairs):
        """The same for gateways and metrics; the metric None is automatic."""
        first = "Gateway, octet 1 of 4"
        self.open_panel_of("Gateway", first)
        for gateway, metric in pairs:
            self.desktop.type(gateway)
            if metric is None:
                self.tick("Auto Metric")
            else:
                self.window.entry("Metric . . . .").enter(metric)
            self._add_by_enter(first)
        self.desktop.press("Escape")

    def add_servers(self, *servers):
        first = "DNS server, octet 1 of 4"
        self.open_panel_of("DNS Server", first)
        for server in servers:
            self.desktop.type(server)
            self._add_by_enter(first)
        self.desktop.press("Escape")

    def _add_by_enter(self, first):
        self.desktop.press("Return")
        self.window.entry(first).expect(text="", focused=True)

    def expect_saved(self, name):
        """The box that tells of the success; the editor is left by then."""
        self.answer(SAVED, f"Preset '{name}' was saved successfully.", "OK")
        self.assertFalse(self.editor_is_open)
        self.expect_fact("Done last", f"Preset '{name}' was saved successfully.")

    def save(self, name, overwrite=False):
        """Saves by the button."""
        self.window.button("Save Preset").click()
        if overwrite:
            self.answer(OVERWRITE, f"Preset with name '{name}' already exists. Do you want to overwrite it ?", "Yes")
        self.expect_saved(name)

    def expect_warning(self, text):
        """Waits until the bar on top of the window has this text."""
        def look():
            texts = [node.text for node, role in self.window.root().walk() if role == "label"]
            if text not in texts:
                raise NotNow(f"the texts are {texts}")
        self.window.patiently(look, f"the warning '{text}'")

    def connection_states(self):
        """What can be worked at the list, the buttons and the menus of the connections, by name."""
        states = {name: self.window.button(name).enabled for name in self.window.buttons
                  if name not in ("Save Preset", "Leave")}
        for menu in ("File", "Connection", "TCP/IP", "Presets", "Help"):
            states.update((f"{menu} > {name}", enabled) for name, enabled in self.window.menu(menu).items)
        return {LIST: self.connections.enabled, "Presets": self.presets.enabled, **states}

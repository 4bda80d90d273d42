"""Presets of the main window: their editor, and saving them to a file that is compared byte for byte."""

import subprocess

from live_test import await_tick
from preset_window import (ADDRESSES, DHCP, EDITOR, GATEWAYS, LISTS, MAC, NAME, OFFICE, ORIGINAL, OVERWRITE,
                           RANDOM, SERVERS, UNUSED, PresetTest, preset)
from window import EMPTY, LIST, OCTETS, octet_name
from world import ip, preset_bytes

ALWAYS = [MAC, DHCP, SERVERS]
FIXED = [ADDRESSES, GATEWAYS]
OFFICE_ROWS = [[("10.1.0.5", "255.255.255.0"), ("10.2.0.5", "255.255.0.0")],
               [("10.1.0.1", "20"), ("10.2.0.1", "Automatic")], [("10.1.0.53",), ("9.9.9.9",)]]
# A list that is entered selects its first row.
LIST_ORDER = ["IP Address", "Add IP Address", "Remove IP Address", "Gateway", "Add Gateway", "Remove Gateway",
              "DNS Server", "Add DNS Server", "Remove DNS Server", "One down DNS Server priority"]
OFFICE_OCTETS = ["02", "00", "00", "00", "40", "01"]


class Editing(PresetTest):
    def test_the_editor_takes_the_place_of_the_facts_and_gives_it_back(self):
        ip("route", "add", "default", "via", "10.9.0.1")
        self.open_with(OFFICE)
        self.expect_fact("TCP/IP:", "Enabled")
        self.select_preset("Office")
        before, rows, stored = self.connection_states(), self.rows, self.stored()
        self.assertEqual(rows[:2], [[("10.9.0.2", "255.255.255.0")], [("10.9.0.1", "0")]])
        self.assertTrue(before[LIST] and before["Presets"] and before["Apply"] and before["Add IP Address"])
        ways = {
            "menu": (lambda: self.window.menu("Presets", EDITOR).choose(), self.window.button("Leave").click, ""),
            "keys": (lambda: self.desktop.press("ctrl+t"), lambda: self.desktop.press("alt+l"), ""),
            "button": (self.window.button("Edit").click, lambda: self.desktop.press("alt+l"), "Office"),
            "key of the button": (lambda: self.desktop.press("alt+i"), self.window.button("Leave").click, "Office"),
            "double click": (lambda: self.presets.click_row("Office", times=2), self.window.button("Leave").click,
                             "Office"),
        }
        for way, (enter, leave, name) in ways.items():
            with self.subTest(way):
                enter()
                self.name.expect(showing=True, focused=True, text=name)
                self.assertTrue(self.window.label(EDITOR).showing)
                self.assertFalse(self.fact("TCP/IP:").showing)
                self.assertEqual(self.rows, OFFICE_ROWS if name else [[], [], []])
                self.assert_only_harmless_commands(list_commands=bool(name))
                leave()
                self.expect_fact("TCP/IP:", "Enabled")
                self.assertFalse(self.editor_is_open)
                self.assert_focus(LIST)
                self.assertEqual((self.connection_states(), self.rows), (before, rows))
        self.assertEqual(self.stored(), stored)
        self.assert_file(OFFICE)

    def assert_only_harmless_commands(self, list_commands):
        states = self.connection_states()
        enabled = {name for name, state in states.items() if state}
        harmless = {"Export", "File > Export Text Report As ...", "File > Exit", "Help > Help",
                    "Help > Orvella Website", "Help > About Us"}
        adding = {f"{place}Add {name}" for place in ("", "TCP/IP > ") for name in LISTS}
        self.assertEqual(enabled, harmless | (adding if list_commands else set()))
        # Their keys do nothing either.
        self.desktop.press("F5", "ctrl+m", "ctrl+e", "ctrl+d", "ctrl+l", "ctrl+r", "ctrl+t")
        self.expect_no_box()
        self.assert_focus(NAME)

    def test_the_rules_of_the_check_boxes(self):
        self.open_with()
        self.open_editor("x")
        keys = {MAC: "alt+m", RANDOM: "alt+r", ORIGINAL: "alt+o", DHCP: "alt+d", ADDRESSES: "alt+i",
                GATEWAYS: "alt+g", SERVERS: "alt+v"}
        for way, work in (("mouse", self.tick), ("keys", lambda check: self.desktop.press(keys[check]))):
            with self.subTest(way):
                self.assert_rules(work)
        # A list that can be edited no more takes its panel with it.
        self.tick(ADDRESSES)
        self.open_panel_of("IP Address", "IP address, octet 1 of 4")
        self.tick(DHCP)
        self.assertFalse(self.window.entry("IP address, octet 1 of 4").showing)

    def assert_rules(self, work):
        sub = [MAC, RANDOM, ORIGINAL, DHCP, *FIXED, SERVERS]
        for check, ticked, enabled in (
                (MAC, [MAC], [*sub, "octets"]),
                (RANDOM, [MAC, RANDOM], sub),
                # One of the two at most.
                (ORIGINAL, [MAC, ORIGINAL], sub),
                (ORIGINAL, [MAC], [*sub, "octets"]),
                (MAC, [], [MAC, DHCP, *FIXED, SERVERS]),
                (ADDRESSES, [ADDRESSES], [MAC, DHCP, *FIXED, SERVERS, "IP Address"]),
                (GATEWAYS, FIXED, [MAC, DHCP, *FIXED, SERVERS, "IP Address", "Gateway"]),
                (SERVERS, [*FIXED, SERVERS], [MAC, DHCP, *FIXED, SERVERS, *LISTS]),
                (DHCP, [DHCP, *FIXED, SERVERS], [*ALWAYS, "DNS Server"]),
                (DHCP, [*FIXED, SERVERS], [MAC, DHCP, *FIXED, SERVERS, *LISTS]),
                (SERVERS, FIXED, [MAC, DHCP, *FIXED, SERVERS, "IP Address", "Gateway"]),
                (GATEWAYS, [ADDRESSES], [MAC, DHCP, *FIXED, SERVERS, "IP Address"]),
                (ADDRESSES, [], [MAC, DHCP, *FIXED, SERVERS])):
            work(check)
            self.assertEqual((check, self.ticked, self.enabled), (check, ticked, enabled))
            items = dict(self.window.menu("TCP/IP").items)
            self.assertEqual([name for name in LISTS if items[f"Add {name}"]],
                             [name for name in LISTS if name in enabled])

    def test_a_known_name_fills_the_editor_whatever_its_letter_case(self):
        holes = ("Holes", 8 | 16 | 32, "", ["", "10.3.0.5"], ["255.0.0.0", "255.255.255.0"], ["", "10.3.0.1"],
                 ["7", "8"], ["", "10.3.0.53", ""])
        self.open_with(UNUSED, OFFICE, preset("Dice", 2 | 4), holes, preset("Own", 2), preset("Home", 1))
        self.open_editor()
        for name, ticked, octets, rows in (
                ("oFFICE", [MAC, *FIXED, SERVERS], OFFICE_OCTETS, OFFICE_ROWS),
                ("DICE", [MAC, RANDOM], EMPTY, [[("0.0.0.0", "0.0.0.0")], [], []]),
                ("holes", [*FIXED, SERVERS], EMPTY,
                 [[("10.3.0.5", "255.255.255.0")], [("10.3.0.1", "8")], [("10.3.0.53",)]]),
                ("own", [MAC, ORIGINAL], EMPTY, [[("0.0.0.0", "0.0.0.0")], [], []]),
                ("home", [DHCP], EMPTY, [[("0.0.0.0", "0.0.0.0")], [], []])):
            with self.subTest(name):
                self.name.enter(name)
                filled = (ticked, octets, rows)
                self.assertEqual((self.ticked, self.octets, self.rows), filled)
                # What is typed on is another name; what was filled in stays.
                self.desktop.type("2")
                self.assertEqual((self.ticked, self.octets, self.rows), filled)
                self.assertEqual(self.name.text, name + "2")
        self.assertEqual(self.enabled, ALWAYS)

    def test_every_control_is_reached_with_tab(self):
        self.open_with(OFFICE)
        self.open_editor("office")
        order = [NAME, MAC, *map(octet_name, range(OCTETS)), RANDOM, ORIGINAL, DHCP, *FIXED, SERVERS, "Save Preset",
                 "Leave", *LIST_ORDER, "Export"]
        for name in [*order[1:], NAME]:
            self.desktop.press("Tab")
            self.assert_focus(name)
        before = NAME
        # The way back leads over the titles of a list, which are no part of it for a screen reader.
        for name in ["Export", *reversed(order[:-1])]:
            self.desktop.press(*["shift+Tab"] * (2 if before in LISTS else 1))
            self.assert_focus(name)
            before = name
        # Labels and check boxes have letters, and Save Preset is what Enter works.
        self.desktop.press("alt+n")
        self.assert_focus(NAME)
        self.assertEqual([self.window.button(name).mnemonic for name in ("Save Preset", "Leave")], ["alt+p", "alt+l"])

    def test_outside_changes_show_after_the_editor_is_left(self):
        self.open_with(OFFICE)
        ip("-n", "far", "address", "add", "10.9.0.1/24", "dev", "lan0")
        self.open_editor("office")
        ip("address", "add", "10.9.1.2/24", "dev", "lan0")
        self.bridge("br0")
        # The clock goes on ticking once a second; a refresh would have come in that time.
        for _ in range(2):
            await_tick(self, to="10.9.0.1")
        self.assertEqual((self.connections.names, self.rows), (["lan0"], OFFICE_ROWS))
        self.assert_focus(NAME)
        self.desktop.press("alt+l")
        self.expect_names("lan0", "br0")
        self.window.table("IP Address").expect(rows=[("10.9.0.2", "255.255.255.0"), ("10.9.1.2", "255.255.255.0")])
        self.assertEqual(self.selected(), "lan0")


class Saving(PresetTest):
    def test_a_full_preset(self):
        self.open_with(UNUSED)
        before = self.stored(), self.addresses("lan0"), self.name_servers()
        self.open_editor("The Office")
        self.desktop.press("alt+m", "Tab")
        self.desktop.type("02000000400a")
        self.tick(ADDRESSES, GATEWAYS, SERVERS)
        self.add_addresses(*OFFICE_ROWS[0])
        self.add_gateways(("10.1.0.1", "20"), ("10.2.0.1", None))
        self.add_servers("10.1.0.53", "10.1.0.54", "9.9.9.9")
        self.assertEqual(self.rows[:2], OFFICE_ROWS[:2])
        # The last one added is selected.
        self.desktop.press("alt+Up", "alt+Up")
        self.window.table("DNS Server").expect(rows=[("9.9.9.9",), ("10.1.0.53",), ("10.1.0.54",)], selected=[0])
        # Enter in the name box saves.
        self.name.click()
        self.desktop.press("Return")
        self.expect_saved("The Office")
        self.expect_presets("The Office")
        self.assert_file(preset("The Office", 2 | 8 | 16 | 32, "02-00-00-00-40-0A", *OFFICE_ROWS[:2],
                                ["9.9.9.9", "10.1.0.53", "10.1.0.54"]))
        # Nothing of it went to the connection.
        self.assertEqual((self.stored(), self.addresses("lan0"), self.name_servers()), before)
        self.window.table("IP Address").expect(rows=[("10.9.0.2", "255.255.255.0")])

    def test_presets_of_other_kinds_come_after_the_others(self):
        self.open_with(OFFICE)
        added = []
        for name, checks, flags in (("Dice", [MAC, RANDOM], 2 | 4), ("Own", [MAC, ORIGINAL], 2),
                                    ("no octets", [MAC], 2), ("Home", [ADDRESSES, GATEWAYS, DHCP], 1),
                                    ("Servers", [DHCP, SERVERS], 1 | 32), ("fixed", [ADDRESSES, GATEWAYS], 8 | 16),
                                    ("nothing at all", [], 0)):
            with self.subTest(name):
                self.open_editor(name)
                self.assertEqual((self.ticked, self.octets, self.rows), ([], EMPTY, [[], [], []]))
                self.tick(*checks)
                if SERVERS in checks:
                    self.add_servers("10.1.0.53")
                self.save(name)
                added.append(preset(name, flags, servers=["10.1.0.53" if SERVERS in checks else ""]))
                self.expect_presets("Office", *[record[0] for record in added])
                self.assert_file(OFFICE, *added)

    def test_a_name_is_asked_for_and_an_existing_preset_is_not_replaced_unasked(self):
        home = preset("Home", 1)
        self.open_with(OFFICE, home)
        old = self.file.read_bytes()
        self.open_editor()
        for press in (lambda: self.desktop.press("Return"), self.window.button("Save Preset").click):
            press()
            self.answer("Preset Name Missing", "Please enter a name for the preset.", "OK", kind="Warning")
            self.assert_focus(NAME)
        question = "Preset with name 'OFFICE' already exists. Do you want to overwrite it ?"
        self.desktop.type("OFFICE")
        self.tick(MAC, ADDRESSES, GATEWAYS)
        for answer in ("No", "Cancel"):
            self.desktop.press("alt+p")
            self.answer(OVERWRITE, question, answer)
            self.assert_focus(NAME)
            self.assertEqual((self.name.selection, self.ticked), ((0, 6), [SERVERS]))
        self.assertEqual(self.file.read_bytes(), old)
        self.save("OFFICE", overwrite=True)
        # In its place and in its new spelling; what was longer stays in the file behind the presets.
        replaced = (preset("OFFICE", 32, servers=["10.1.0.53", "9.9.9.9"]), home)
        self.assert_file(*replaced, tail=old[len(preset_bytes(*replaced)):])
        self.expect_presets("OFFICE", "Home")

    def test_octets_are_padded_and_rubbish_is_not_taken(self):
        self.open_with()
        self.open_editor("short")
        self.tick(MAC)
        self.octet(0).click()
        self.desktop.type("zg!2-c_:.,")
        self.octet(5).click()
        self.desktop.type("xF")
        self.save("short")
        self.assert_file(preset("short", 2, "02-0C-00-00-00-0F"))
        self.select_preset("short")
        self.window.button("Edit").click()
        self.assertEqual(self.octets, ["02", "0C", "00", "00", "00", "0F"])

    def test_a_save_that_fails_says_so_and_keeps_the_file(self):
        self.open_with(OFFICE)
        old, names = self.file.read_bytes(), sorted(entry.name for entry in self.programs.iterdir())
        self.mount_read_only(self.programs)
        self.fail_to_save("Home", 30, "Read-only file system")
        subprocess.run(["umount", str(self.programs)], check=True)
        self.mount_read_only(self.file)
        self.fail_to_save("Second", 30, "Read-only file system")
        subprocess.run(["umount", str(self.file)], check=True)
        self.assertEqual(self.file.read_bytes(), old)
        self.file.unlink()
        self.file.mkdir()
        self.fail_to_save("Third", 21, "Is a directory")
        self.file.rmdir()
        self.assertEqual(sorted([*(entry.name for entry in self.programs.iterdir()), self.file.name]), names)
        # What was entered is not lost: the next save that succeeds has all of it.
        self.expect_presets("Office", "Home", "Second", "Third")
        self.open_editor("Fourth")
        self.save("Fourth")
        self.assert_file(OFFICE, *[preset(name, 1) for name in ("Home", "Second", "Third")], preset("Fourth"))

    def fail_to_save(self, name, number, reason):
        """Enters a preset with DHCP, which cannot be saved; there is no box of a success."""
        self.open_editor(name)
        self.tick(DHCP)
        self.desktop.press("Return")
        box = self.expect_message()
        self.assertEqual((box.text, box.buttons, self.kind(box)),
                         (f"ERROR ! Presets file could not be saved.\n\nError : {number}\nDescription : {reason}: "
                          f"{self.file}\n\nClick OK to continue", ["OK"], "Error"))
        box.press("OK")
        self.expect_no_box()
        self.assertFalse(self.editor_is_open)
        self.expect_fact("Done last", "ERROR ! Presets file could not be saved.")

    def test_a_name_that_the_file_cannot_hold(self):
        self.open_with()
        name, stored = "Büro \u20ac \u6df1 \u0141", "Büro \u20ac ? ?"
        self.open_editor(name)
        self.save(name)
        self.expect_warning(f"The name '{name}' has characters that the presets file cannot hold: from the next start "
                            f"on it reads '{stored}'")
        self.assert_file(preset(stored))
        self.expect_presets(name)
        self.open_again()
        self.expect_presets(stored)
        # One that it can hold is not warned of.
        self.open_editor("Zürich \u201c1\u201d")
        self.save("Zürich \u201c1\u201d")
        self.assert_file(preset(stored), preset("Zürich \u201c1\u201d"))
        self.assertNotIn("cannot hold", "\n".join(self.window.describe()))

    def test_three_hundred_presets(self):
        records = [preset(f"Preset {number}", 8, addresses=[(f"10.{number % 256}.0.5", "255.0.0.0")])
                   for number in range(300)]
        self.open_with(*records)
        self.presets.click_row(0)
        self.desktop.press("End")
        self.presets.expect(selected=[299])
        self.window.button("Edit").click()
        self.assertEqual((self.name.text, self.rows[0]), ("Preset 299", [("10.43.0.5", "255.0.0.0")]))
        self.tick(MAC, RANDOM)
        self.save("Preset 299", overwrite=True)
        records[299] = preset("Preset 299", 8 | 2 | 4, addresses=[("10.43.0.5", "255.0.0.0")])
        self.assert_file(*records)
        self.open_editor("one more")
        self.save("one more")
        self.assert_file(*records, preset("one more"))
        self.presets.expect(size=301)

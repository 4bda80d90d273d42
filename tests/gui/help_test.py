"""The help page, the maker's pages and the about box."""

from main_window import OPENED, MainWindowTest, system_description

ABOUT = "About Orvella Corvane"
WEBSITE, MAIL = "https://orvella.example/", "corvane@orvella.example"
DISCLAIMER = """Disclaimer-
Orvella Corvane v4.5 is a FREEWARE, and provided 'as is' with no\x20
warranty what-so-ever. Orvella is not responsible in any way for damage to users\x20
computer hardware/software or any data loss while/by using this software. This\x20
software must not be used for any illegal or unethical purposes. User of this\x20
software is responsible for any deed done using the software and hence must use\x20
it at his/her own risk. By downloading/copying/using this software, you agrees upon\x20
this disclaimer. Software distribution by anyone is unlimited."""


class Pages(MainWindowTest):
    def test_each_way_to_each_page(self):
        self.open_window(environment=self.opener())
        page = f"{self.programs}/help.html"
        self.desktop.press("F1")
        self.expect_opened(page)
        self.window.menu("Help", "Help").choose()
        self.expect_opened(page)
        self.window.menu("Help", "Orvella Website").choose()
        self.expect_opened(WEBSITE)
        self.window.expect_windows(self.window.title)

    def test_the_help_page_is_the_one_beside_the_program(self):
        folder = self.copy_programs("/run/a folder with blanks & \u00e9")
        self.open_window(environment=self.opener())
        self.desktop.press("F1")
        self.expect_opened(f"{folder}/help.html")
        self.assertIn("<html", (folder / "help.html").read_text(encoding="utf-8"))

    def expect_refusal(self, target, reason):
        box = self.expect_message()
        self.assertEqual(box.text, f"Error! Could not open '{target}'.\n\nDescription: {reason}\n\nPlease open it by "
                                   f"hand: start your web browser and enter '{target}'.")
        self.assertEqual(box.buttons, ["OK"])
        box.press("OK")

    def test_a_program_that_fails(self):
        self.open_window(environment=self.opener("exit 3"))
        self.desktop.press("F1")
        self.expect_refusal(f"{self.programs}/help.html", "xdg-open found no program that opens it")
        self.window.menu("Help", "Orvella Website").choose()
        self.expect_refusal(WEBSITE, "xdg-open found no program that opens it")

    def test_no_such_program(self):
        # Only what the program itself needs is found.
        self.open_window(environment={"PATH": "/run/nothing"})
        self.desktop.press("F1")
        self.expect_refusal(f"{self.programs}/help.html", "xdg-open could not be started: No such file or directory; "
                                                          "install the package xdg-utils")

    def test_a_program_that_goes_on_running_holds_nothing_up(self):
        self.open_window(environment=self.opener('echo "$1" >>/run/opened; exec sleep 1000'))
        for _ in range(2):
            self.desktop.press("F1")
            self.expect_opened(f"{self.programs}/help.html")
        self.desktop.press("F5")
        self.expect_fact("Done last", "The connections were read anew.")
        self.desktop.press("ctrl+q")
        self.assertEqual(self.window.wait_exit(), 0)


class About(MainWindowTest):
    def open_about(self):
        self.open_window(environment=self.opener())
        self.window.menu("Help", "About Us").choose()
        return self.window.expect_box(ABOUT)

    def test_its_texts(self):
        box = self.open_about()
        self.assertEqual(box.text, f"System: {system_description()}")
        disclaimer = box.entry("Disclaimer")
        self.assertEqual(disclaimer.text, DISCLAIMER)
        self.assertFalse(disclaimer.editable)
        box.button("Close").expect(focused=True)

    def test_links_and_picture_open_pages(self):
        box = self.open_about()
        for name, page in (("Orvella Corvane 4.5", WEBSITE), (WEBSITE, WEBSITE), (MAIL, f"mailto:{MAIL}")):
            box.control(("panel", "link", "push button"), name).click()
            self.expect_opened(page)

    def test_links_are_worked_by_keys(self):
        box = self.open_about()
        ring = []
        while not ring or box.focus != ring[0]:
            ring.append(box.focus)
            self.desktop.press("Tab")
        names = [name for _, name in ring]
        self.assertIn(WEBSITE, names)
        self.assertIn(MAIL, names)
        for name, page in ((WEBSITE, WEBSITE), (MAIL, f"mailto:{MAIL}")):
            while box.focus[1] != name:
                self.desktop.press("Tab")
            self.desktop.press("Return")
            self.expect_opened(page)
        box.press("Close", by_key=True)

    def test_what_has_the_focus_does_something_with_the_enter_key(self):
        box = self.open_about()
        for _ in range(6):
            role, name = box.focus
            if role == "panel":
                self.desktop.press("Return")
                self.expect_opened(f"mailto:{MAIL}" if name == MAIL else WEBSITE)
            self.desktop.press("Tab")

    def test_each_way_out(self):
        box = self.open_about()
        box.press("Close")
        ways = (lambda: self.desktop.press("Escape"), lambda: self.desktop.press("Return"),
                lambda: self.desktop.screen.close(self.x_window(ABOUT)))
        for number, way in enumerate(ways):
            with self.subTest(way=number):
                self.desktop.press("alt+h", "a")
                box = self.window.expect_box(ABOUT)
                way()
                box.expect_gone()
                self.assertEqual(self.window.focus, ("table", "Network Connections"))
        self.assertFalse(OPENED.exists())

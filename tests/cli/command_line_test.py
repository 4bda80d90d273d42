"""Every box and form of nicx in a terminal, as whole-program goldens."""

from golden import Transcript
from terminal import Terminal
from world import CONNECTIONS_KEY, FAR, NOBODY, STORE, DhcpServer, World, ip, wait_for

OWN = "02:00:00:00:10:01"


class Recorded(World):
    """Cases that record what they run."""

    def setUp(self):
        super().setUp()
        self.veth("eth0", "10.1.0.2/24", mac=OWN)
        self.transcript = Transcript(self.programs)

    def use_copy(self):
        self.transcript.programs = str(self.copy_programs())
        return self.programs

    def record(self, *arguments, **options):
        result = self.run_program("nicx", *arguments, **options)
        self.transcript.add(f"nicx {' '.join(arguments)}", result)
        return result

    def record_terminal(self, *arguments):
        return Terminal(self, "nicx", *arguments)

    def note(self, terminal, *arguments):
        self.transcript.add(f"nicx {' '.join(arguments)}   (on a terminal)", terminal.finish())

    def check(self, name):
        self.transcript.check(self, name)


class Boxes(Recorded):
    def test_help(self):
        self.record("-help")
        self.check("help")

    def test_every_form_of_help_is_the_same(self):
        expected = self.nicx("-help")
        for form in ("help", "/help", "?", "/?", "/", "-"):
            self.assertEqual(self.nicx(form), expected, form)

    def test_invalid_parameter(self):
        self.record("-n", "eth0", "-Restart")
        self.record("-s", "-x")
        self.check("invalid_parameter")

    def test_nothing_to_do(self):
        self.record("-s")
        self.record("-re", "-di")
        self.check("nothing_to_do")

    def test_not_found(self):
        self.record("-n", "wlan", "-re")
        self.record("-n", "wlan", "-re", "-s")
        self.check("not_found")

    def test_done(self):
        self.record("-n", "eth0")
        self.record("-n", "eth0", "-m", "00:0c:29:4f:8e:35", "-i", "10.1.0.5:255.255.255.0", "-g", "10.1.0.1")
        self.record("-n", "eth0", "-m", "-s")
        self.check("done")

    def test_warnings(self):
        self.record("-n", "eth0", "-m", "01:00:5e:00:00:01", "-i", "10.1.0.5,256.1.1.1:255.0.255.0",
                    "-g", "10.1.0.1,192.0.2.1:fast", "-d", "dns.example")
        self.record("-n", "eth0", "-h")
        self.record("-n", "eth0", "-m", "12")
        self.check("warnings")

    def test_disabled_and_restarted(self):
        self.record("-n", "eth0", "-di")
        self.record("-n", "eth0", "-re")
        self.check("disabled_and_restarted")

    def test_disabled_and_restarted_on_a_terminal(self):
        self.note(self.record_terminal("-n", "eth0", "-di", "-re"), "-n", "eth0", "-di", "-re")
        self.check("disabled_and_restarted_terminal")

    def test_disabling_fails(self):
        self.use_copy()
        self.report()
        self.record("-n", "eth0", "-di", "-re", user=NOBODY)
        self.record("-n", "eth0", "-di", "-s", user=NOBODY)
        self.check("disabling_fails")

    def test_restarting_fails_at_the_third_attempt(self):
        process = self.start("nicx", "-n", "eth0", "-re")
        wait_for(lambda: not self.is_up("eth0"), "the link is disabled")
        ip("link", "set", "eth0", "up")
        self.transcript.add("nicx -n eth0 -re", self.finish(process))
        self.check("restarting_fails")

    def test_an_address_is_refused(self):
        self.record("-n", "eth0", "-m", "01:00:5e:00:00:01", "-di", "-re")
        self.check("address_refused")

    def test_registry_cannot_be_written(self):
        self.use_copy()
        self.report()
        self.record("-n", "eth0", "-m", "00:0c:29:4f:8e:35", "-i", "10.1.0.5", user=NOBODY)
        self.record("-n", "eth0", "-m", "00:0c:29:4f:8e:35", "-i", "10.1.0.5", "-s", user=NOBODY)
        self.check("registry_cannot_be_written")

    def test_registry_cannot_be_read(self):
        self.report()
        STORE.write_bytes(b"This is no store." * 1000)
        self.record("-n", "eth0", "-di")
        self.record("-n", "eth0", "-di", "-s")
        self.check("registry_cannot_be_read")

    def test_resolver_cannot_be_written(self):
        self.mount_read_only("/etc/resolv.conf")
        self.record("-n", "eth0", "-d", "10.1.0.53", "-di", "-re")
        self.check("resolver_cannot_be_written")

    def test_released_and_renewed(self):
        ip("-n", FAR, "address", "add", "10.77.0.1/24", "dev", "eth0")
        server = DhcpServer("eth0")
        self.addCleanup(server.stop)
        self.nicx("-n", "eth0", "-h", "-di", "-re")
        wait_for(server.leases, "the link has a lease")
        self.record("-n", "eth0", "-rl")
        self.record("-n", "eth0", "-rn")
        self.record("-n", "eth0", "-rl", "-rn", "-s")
        self.check("released_and_renewed")

    def test_releasing_and_renewing_fail(self):
        self.record("-n", "eth0", "-rl", "-rn")
        self.record("-n", "eth0", "-rl", "-rn", "-s")
        self.check("releasing_and_renewing_fail")

    def test_files_are_missing(self):
        folder = self.use_copy()
        (folder / "VendorNumbers.log").unlink()
        (folder / "presets.npf").unlink()
        self.record("-n", "eth0", "-r")
        self.record("-n", "eth0", "-p", "office", "-s")
        self.check("files_are_missing")

    def test_files_are_damaged(self):
        folder = self.use_copy()
        (folder / "VendorNumbers.log").write_bytes(b"\0\0\0\0")
        (folder / "presets.npf").write_bytes(b"\xff\xff\xff\xff")
        self.record("-n", "eth0", "-r")
        self.record("-n", "eth0", "-p", "office")
        self.check("files_are_damaged")

    def test_without_the_window_program(self):
        folder = self.use_copy()
        self.assertFalse((folder / "nicx-window").exists())
        self.record()
        self.record("-sv", "-n", "eth0")
        self.record("-ro", "-s")
        self.check("without_the_window_program")


class Questions(Recorded):
    """The connection is not in the folder of network connections: the registry calls it by another name."""

    def setUp(self):
        super().setUp()
        link_id = self.report()["eth0"]["configurationId"]
        done = self.run_program("nicx-registry", "add", f"HKLM\\{CONNECTIONS_KEY}\\{link_id}\\Connection",
                                "/v", "Name", "/d", "office", "/f")
        self.assertEqual(done.code, 0, done.err)

    QUESTION = "[Yes/No/Cancel] "
    FOLDER = "Number (0 to cancel): "

    def rename_the_link(self):
        ip("link", "set", "eth0", "down")
        ip("link", "set", "eth0", "name", "office")
        ip("link", "set", "office", "up")

    def test_without_a_terminal_the_answer_is_no(self):
        self.record("-n", "office", "-di")
        self.record("-n", "office", "-di", "-s")
        self.check("question_without_terminal")

    def test_no(self):
        terminal = self.record_terminal("-n", "office", "-di")
        terminal.answer(self.QUESTION, "perhaps")
        terminal.answer(self.QUESTION, "No")
        self.note(terminal, "-n", "office", "-di")
        self.check("question_no")

    def test_cancel(self):
        terminal = self.record_terminal("-n", "office", "-di")
        terminal.answer(self.QUESTION, "c")
        self.note(terminal, "-n", "office", "-di")
        self.check("question_cancel")

    def test_the_end_of_the_input(self):
        terminal = self.record_terminal("-n", "office", "-di")
        terminal.answer(self.QUESTION, None)
        self.note(terminal, "-n", "office", "-di")
        self.check("question_end_of_input")

    def test_no_folder(self):
        terminal = self.record_terminal("-n", "office", "-di")
        terminal.answer(self.QUESTION, "yes")
        terminal.answer(self.FOLDER, "2")
        terminal.answer(self.FOLDER, "one")
        terminal.answer(self.FOLDER, "0")
        self.note(terminal, "-n", "office", "-di")
        self.check("question_no_folder")

    def test_a_folder_in_which_the_connection_is_not_either(self):
        terminal = self.record_terminal("-n", "office", "-di")
        terminal.answer(self.QUESTION, "y")
        terminal.answer(self.FOLDER, "1")
        terminal.answer(self.QUESTION, "n")
        self.note(terminal, "-n", "office", "-di")
        self.check("question_folder_without_connection")
        self.assertTrue(self.is_up("eth0"))
        self.assertEqual(self.key(r"SOFTWARE\Orvella\Corvane_v4")["NetworkFolderName"], (1, b"network connections\0"))

    def test_a_folder_in_which_the_connection_appeared_meanwhile(self):
        terminal = self.record_terminal("-n", "office", "-di")
        terminal.expect(self.QUESTION)
        self.rename_the_link()
        terminal.answer(self.QUESTION, "yes")
        terminal.answer(self.FOLDER, "1")
        self.note(terminal, "-n", "office", "-di")
        self.check("question_folder_restarts")
        self.assertTrue(self.is_up("office"))

    def test_a_connection_that_vanished_between_disabling_and_enabling(self):
        self.rename_the_link()
        terminal = self.record_terminal("-n", "office", "-re")
        wait_for(lambda: not self.is_up("office"), "the link is disabled")
        ip("link", "set", "office", "name", "away")
        terminal.expect(self.QUESTION)
        ip("link", "set", "away", "name", "office")
        terminal.answer(self.QUESTION, "yes")
        terminal.answer(self.FOLDER, "1")
        self.note(terminal, "-n", "office", "-re")
        self.check("question_folder_enables")
        self.assertTrue(self.is_up("office"))
        self.assertEqual(self.addresses("office"), ["10.1.0.2/24"])

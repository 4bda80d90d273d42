"""Wine for one test case: a prefix of its own, which begins as tests/wine/prefix makes it and goes with the sandbox,
the programs that run in it, and the registry as they see it. For use inside tests/netns/sandbox.

    wine = Wine(self)                                   # self: the test case
    wine.registry.write(r"SOFTWARE\\Test", "Name", text("value"))
    process = wine.start(wine.drive / "Corvane/nicx.exe", "-n", "eth0")
"""

import importlib.machinery
import importlib.util
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import threading

from waiting import NotNow, end_with_parent, patiently

HERE = pathlib.Path(__file__).resolve().parent

WINDOWS = pathlib.Path(os.environ["CORVANE_WINDOWS"])
TOOLS = WINDOWS / "tests"
TEMPLATE = pathlib.Path(os.environ["CORVANE_BUILD"]) / "wine-prefix"
ROOM = pathlib.Path("/run/wine")
# Where Debian's Wine makes its sockets when the folder is there.
SOCKETS = pathlib.Path(f"/run/user/{os.getuid()}")

REG_SZ, REG_BINARY, REG_DWORD, REG_MULTI_SZ = 1, 3, 4, 7


def _load_prefix():
    loader = importlib.machinery.SourceFileLoader("prefix", str(HERE / "prefix"))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("prefix", loader))
    loader.exec_module(module)
    return module


def text(value):
    """A text value of the registry, as programs write it."""
    return REG_SZ, value.encode("cp1252") + b"\0"


def texts(*values):
    """A list of texts in the registry."""
    return REG_MULTI_SZ, "\0".join(values).encode("cp1252") + b"\0\0"


def number(value):
    return REG_DWORD, value.to_bytes(4, "little")


def processes_in(prefix):
    """Numbers of the processes that run in a prefix of this sandbox."""
    mark, namespace = f"WINEPREFIX={prefix}".encode(), os.stat("/proc/self/ns/mnt").st_ino
    found = []
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            if (os.stat(process / "ns/mnt").st_ino == namespace
                    and mark in (process / "environ").read_bytes().split(b"\0")):
                found.append(int(process.name))
        except OSError:
            # It has ended meanwhile.
            continue
    return found


def end_processes(prefix):
    """Kills them. Wine's own programs would outlive its server."""
    for pid in processes_in(prefix):
        try:
            os.kill(pid, signal.SIGKILL)
        except ProcessLookupError:
            pass


class Observer:
    """observer.exe, which tells what Windows says, or another program that answers as it does. It runs as long as the
    test."""

    def __init__(self, process):
        self.process = process
        self._lock = threading.Lock()

    @staticmethod
    def start(wine, program="observer.exe"):
        return wine.start(TOOLS / program, stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def ask(self, *question):
        """The answer to a question, whose parts must not have tabs or line ends in them."""
        with self._lock:
            self.process.stdin.write("\t".join(map(str, question)).encode() + b"\n")
            self.process.stdin.flush()
            line = self.process.stdout.readline()
        if not line:
            raise AssertionError(f"the observer has ended with {self.process.wait()} at {question}")
        answer = json.loads(line)
        if isinstance(answer, dict) and set(answer) == {"error"}:
            raise NotNow(f"{' '.join(map(str, question))}: {answer['error']}")
        return answer


class Registry:
    """Keys below HKEY_LOCAL_MACHINE. A value is a pair of type and bytes."""

    def __init__(self, observer):
        self.observer = observer

    def read(self, key):
        """Values of a key by name; None when there is no such key."""
        values = self.observer.ask("read", key)
        return values if values is None else {name: (kind, bytes.fromhex(data))
                                              for name, (kind, data) in values.items()}

    def keys(self, key):
        """Names of the subkeys; None when there is no such key."""
        return self.observer.ask("keys", key)

    def write(self, key, name, value):
        kind, data = value
        self.observer.ask("write", key, name, kind, data.hex())

    def delete(self, key, *name):
        """Deletes a key with all below it, or a value of it."""
        self.observer.ask("delete", key, *name)


class Wine:
    """A prefix, its server and what runs in it. All of it ends with the test, in whatever way that ends."""

    def __init__(self, test):
        self.test = test
        subprocess.run([str(HERE / "prefix"), str(TEMPLATE)], check=True)
        self.prefix = ROOM / "prefix"
        self.drive = self.prefix / "drive_c"
        self.environment = _load_prefix().environment(self.prefix)
        if "DISPLAY" in os.environ:
            self.environment["DISPLAY"] = os.environ["DISPLAY"]
        self._mount()
        self.processes = []
        # It ends what is left when the test ends in whatever way: its input ends then.
        self.guard = subprocess.Popen([sys.executable, __file__, str(self.prefix)], stdin=subprocess.PIPE,
                                      start_new_session=True)
        test.addCleanup(self._end)
        self.server = subprocess.Popen(["wineserver", "-f"], env=self.environment, stdin=subprocess.DEVNULL,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                       preexec_fn=end_with_parent)
        patiently(self._expect_socket, "Wine's server")
        self.observer = Observer(Observer.start(self))
        self.registry = Registry(self.observer)

    def _mount(self):
        for name in ("upper", "work", "prefix"):
            (ROOM / name).mkdir(parents=True)
        subprocess.run(["mount", "-t", "overlay", "overlay", "-o",
                        f"lowerdir={TEMPLATE},upperdir={ROOM}/upper,workdir={ROOM}/work", str(self.prefix)], check=True)
        SOCKETS.mkdir(mode=0o700, parents=True, exist_ok=True)

    def _expect_socket(self):
        if self.server.poll() is not None:
            raise AssertionError(f"Wine's server has ended with {self.server.returncode}")
        if not list(SOCKETS.glob("wine/server-*/socket")):
            raise NotNow("it has no socket")

    def start(self, program, *arguments, environment=None, **options):
        """Starts a Windows program, named by its path in this system."""
        settings = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL,
                    "cwd": self.drive, **options}
        process = subprocess.Popen(["wine", str(program), *map(str, arguments)], preexec_fn=end_with_parent,
                                   env={**self.environment, **(environment or {})}, **settings)
        self.processes.append(process)
        return process

    def run(self, program, *arguments, seconds=60, **options):
        """Runs a Windows program that needs nobody. Gives its exit code and standard output."""
        # Not to a pipe: what of Wine is started meanwhile would hold its other end.
        with tempfile.TemporaryFile() as output:
            process = self.start(program, *arguments, stdout=output, **options)
            try:
                process.wait(seconds)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
                self.test.fail(f"{program} {arguments} has not ended within {seconds} seconds")
            output.seek(0)
            return process.returncode, output.read()

    def path(self, path):
        """The name that Windows programs know a file or folder by."""
        path = pathlib.Path(path)
        if path.is_relative_to(self.drive):
            return "C:\\" + str(path.relative_to(self.drive)).replace("/", "\\")
        return "Z:" + str(path).replace("/", "\\")

    def _end(self):
        end_processes(self.prefix)
        for process in [*self.processes, self.server]:
            process.wait()
            for pipe in (process.stdin, process.stdout):
                if pipe:
                    pipe.close()
        self.guard.stdin.close()
        self.guard.wait()


if __name__ == "__main__":
    sys.stdin.read()
    end_processes(sys.argv[1])

"""A program on a pseudo-terminal: standard input and standard error are the terminal, standard output is a pipe."""

import os
import pty
import select
import termios
import time

from world import Result


class Terminal:
    """Starts `program` of a world. Everything is read as it comes, so that neither side has to wait for the other."""

    def __init__(self, world, program, *arguments):
        self.world = world
        self.master, slave = pty.openpty()
        settings = termios.tcgetattr(slave)
        settings[1] &= ~termios.ONLCR
        settings[3] &= ~termios.ECHO
        termios.tcsetattr(slave, termios.TCSANOW, settings)
        self.process = world.start(program, *arguments, stdin=slave, stderr=slave)
        os.close(slave)
        self.ends = [self.master, self.process.stdout.fileno()]
        self.texts = {end: b"" for end in self.ends}
        self.answered = 0
        world.addCleanup(self.close)

    def _read(self, seconds):
        ready = select.select(self.ends, [], [], seconds)[0]
        for end in ready:
            try:
                data = os.read(end, 65536)
            except OSError:  # What a terminal gives when its last user has gone.
                data = b""
            if data:
                self.texts[end] += data
            else:
                self.ends.remove(end)

    def _shown(self):
        return self.texts[self.master].decode()

    def expect(self, text, seconds=30):
        """Waits until the terminal has shown `text` behind what was answered last."""
        end = time.monotonic() + seconds
        while text not in self._shown()[self.answered:]:
            if time.monotonic() > end or not self.ends:
                self.world.fail(f"the terminal never showed {text!r}, but:\n{self._shown()}")
            self._read(0.2)

    def answer(self, prompt, line):
        """Waits for a prompt and types a line. None types the end of the input."""
        self.expect(prompt)
        self.answered = len(self._shown())
        os.write(self.master, b"\x04" if line is None else line.encode() + b"\n")

    def finish(self, seconds=60):
        end = time.monotonic() + seconds
        while self.ends:
            if time.monotonic() > end:
                self.world.fail(f"the program does not end; the terminal shows:\n{self._shown()}")
            self._read(0.2)
        self.process.wait()
        out = self.texts[self.process.stdout.fileno()].decode()
        return Result(self.process.returncode, out, self._shown())

    def close(self):
        os.close(self.master)
        self.process.stdout.close()
        self.process.kill()
        self.process.wait()

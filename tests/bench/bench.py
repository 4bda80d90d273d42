#!/usr/bin/env python3
"""Times the programs against peers, in one network namespace and one run: bench.py BUILD-FOLDER [RUNS].

Each figure is the median over RUNS whole processes, the program and its peer in turn, and their ratio. Run by
scripts/bench inside the tests' sandbox.
"""

import os
import statistics
import subprocess
import sys
import time

BUILD = os.path.abspath(sys.argv[1])
RUNS = int(sys.argv[2]) if len(sys.argv) > 2 else 31
BIN = os.path.join(BUILD, "bin")
QUIET = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL, "stdin": subprocess.DEVNULL}


def shell(text):
    subprocess.run(text, shell=True, check=True)


def spend(command):
    start = time.perf_counter()
    pid = os.posix_spawnp(command[0], command, os.environ, file_actions=[
        (os.POSIX_SPAWN_OPEN, 1, "/dev/null", os.O_WRONLY, 0), (os.POSIX_SPAWN_OPEN, 2, "/dev/null", os.O_WRONLY, 0)])
    _, status = os.waitpid(pid, 0)
    spent = (time.perf_counter() - start) * 1000
    if status != 0:
        sys.exit(f"bench.py: {' '.join(command)} ended with status {status}")
    return spent


def pair(title, limit, ours, peers):
    """`ours` and each of `peers` are functions of the run's number that give a command."""
    mine, theirs = [], []
    for run in range(-3, RUNS):
        a = spend(ours(run))
        b = sum(spend(peer(run)) for peer in peers)
        if run >= 0:
            mine.append(a)
            theirs.append(b)
    a, b = statistics.median(mine), statistics.median(theirs)
    print(f"{title:58} {a:8.2f} ms {b:8.2f} ms   ratio {a / b:5.2f}   (at most {limit})", flush=True)


def mac(run):
    return f"02:00:5e:00:{(run >> 8) & 255:02x}:{run & 255:02x}"


def fixed(*command):
    return lambda run: list(command)


def make_links(first, last):
    lines = []
    for i in range(first, last, 2):
        lines.append(f"link add ve{i} type veth peer name ve{i + 1}")
        for j in (i, i + 1):
            lines.append(f"link set ve{j} up")
            lines.append(f"address add 10.{j // 250}.{j % 250}.1/24 dev ve{j}")
    subprocess.run(["ip", "-b", "-"], input="\n".join(lines), text=True, check=True)


def refresh_milliseconds():
    lines = subprocess.run([os.path.join(BUILD, "tests", "bench_refresh"), str(RUNS)], check=True, text=True,
                           capture_output=True).stdout.split()
    return float(lines[0]), statistics.median(float(line) for line in lines[1:])


def main():
    nicx, report = os.path.join(BIN, "nicx"), os.path.join(BIN, "nicx-report")
    addr, route = fixed("ip", "-j", "addr"), fixed("ip", "-j", "route")
    print(f"{'':58} {'ours':>11} {'peer':>11}")
    make_links(0, 4)
    spend([report])
    pair("nicx -n X -m MAC -s  :  macchanger -m MAC X", 1.5,
         lambda run: [nicx, "-n", "ve0", "-m", mac(run), "-s"], [lambda run: ["macchanger", "-m", mac(run + 256), "ve2"]])
    pair("nicx-report, 4 links  :  ip -j addr + ip -j route", 2, fixed(report), [addr, route])
    for count in (1000, 2000):
        make_links(4 if count == 1000 else 1000, count)
        time.sleep(1)
        first, later = refresh_milliseconds()
        first, later = refresh_milliseconds()
        peer = statistics.median(spend(addr(0)) + spend(route(0)) for _ in range(RUNS))
        print(f"{f'RefreshNicInfo, {count} links  :  ip -j addr + ip -j route':58} {later:8.2f} ms {peer:8.2f} ms   "
              f"ratio {later / peer:5.2f}   (at most 3; first of the process {first:.2f} ms)", flush=True)


if __name__ == "__main__":
    main()

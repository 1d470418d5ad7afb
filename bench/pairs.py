# SPDX-License-Identifier: GPL-3.0-or-later
"""What the bench scripts share: single runs, medians over pairs of them, and the words for the machine."""
import os
import platform
import statistics
import subprocess
import time
from dataclasses import dataclass


@dataclass
class Run:
    wall: float  # seconds that a person waits
    cpu: float  # processor time of all cores in seconds


def measure(command, **options):
    """Runs the command to its end. Whatever fails ends the bench."""
    start = time.monotonic()
    child = subprocess.Popen(command, stdin=subprocess.DEVNULL, **options)
    _, status, usage = os.wait4(child.pid, 0)
    wall = time.monotonic() - start
    child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode != 0:
        raise SystemExit(f"{command} failed")
    return Run(wall, usage.ru_utime + usage.ru_stime)


def peak_memory(launcher, command):
    """The most memory in MiB that the command holds, in a run of its own."""
    told = subprocess.run([launcher, *command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=True)
    return int(told.stdout) / 1024


def middle(runs, name):
    return statistics.median(getattr(run, name) for run in runs)


def ratio(ours, theirs):
    """The median of the pairs' ratios."""
    return statistics.median(mine / max(their, 1e-9) for mine, their in zip(ours, theirs))


def ratio_of(ours, theirs, name):
    return ratio([getattr(run, name) for run in ours], [getattr(run, name) for run in theirs])


def machine():
    model = next((line.split(":", 1)[1].strip() for line in open("/proc/cpuinfo") if line.startswith("model name")),
                 platform.machine())
    return f"{model}, {os.cpu_count()} cores, load {os.getloadavg()[0]:.1f}"

# SPDX-License-Identifier: GPL-3.0-or-later
"""What a program under soak may not do, and how that is seen from outside."""
import contextlib
import os
import pathlib
import subprocess
import time

import dbus

from reader import ACCESSIBLE

PATIENCE = 2  # seconds without an answer to a key
FINALLY = 60  # seconds after which nobody waits any more
GROWTH = 2  # megabytes
SETTLED_AFTER = 600  # seconds of a program's life
SANITIZERS = ("ERROR: AddressSanitizer", "ERROR: LeakSanitizer", "runtime error:", "WARNING: ThreadSanitizer")
DEFECT = "by a defect of its own"
PAUSE = "34"  # the system's number for it, on x86-64
MESSAGE = "Velmora"
FAILED = 1  # the status of a program that ended by its message
REGISTRY = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")


class Fault(AssertionError):
    """What is to be mended."""


def waited_for_processor(process):
    """Seconds for which its window thread could have run, and other work on this computer ran instead."""
    return int(pathlib.Path(f"/proc/{process}/schedstat").read_text().split()[1]) / 1e9


def stacks(process):
    """Of all its threads, for whoever looks into a hang."""
    try:
        return subprocess.run(["gdb", "-p", str(process), "-batch", "-ex", "thread apply all bt 25"], capture_output=True, text=True,
                              timeout=120).stdout
    except (OSError, subprocess.TimeoutExpired) as error:
        return str(error)


class Judge:
    """Of one life of the program."""

    settled_after = SETTLED_AFTER

    def __init__(self, case, sanitized, note):
        self.case, self.sanitized, self.note = case, sanitized, note
        self.app, self.process = case.app, case.app.process.pid
        self.begun = time.monotonic()
        self.said_before = len(self.app.said()) if sanitized else 0
        self.face = self._face()
        self.bounds = {}
        self.stood_still = False
        self.worded = False  # the end that a failure has, with its word and number
        self.longest = 0

    def _face(self):
        """Where the program's window thread answers what a screen reader asks."""
        bus = self.case.desk.reader.bus
        people = bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus")
        owner = lambda name: int(people.GetConnectionUnixProcessID(name, dbus_interface="org.freedesktop.DBus"))
        find = lambda: next((bus.get_object(name, path, introspect=False)
                             for name, path in bus.get_object(*REGISTRY).GetChildren(dbus_interface=ACCESSIBLE)
                             if owner(name) == self.process), None)
        return self.case.desk.wait_for(find, "the screen reader finds the program")

    def judge(self, titles):
        """After each action. One that answers nothing is not asked what it shows."""
        if self.app.alive():
            self.judge_answer()
        self.notice(titles)

    def notice(self, titles):
        """The word that an end has, before the next input answers it."""
        if self.app.alive() and MESSAGE in titles and not self.worded:
            self.worded = any(control.name.startswith("Run-time error '") for control in self.app.controls(MESSAGE))

    def judge_answer(self):
        patience = PATIENCE * (4 if self.sanitized else 1)
        delayed, start = waited_for_processor(self.process), time.monotonic()
        seen = ""
        while not self._answers():
            if not self.app.alive():
                return
            if self._stands_still():
                self.stood_still = True
                self.app.kill()
                return
            if not seen:
                looking = time.monotonic()
                seen = stacks(self.process)
                start += time.monotonic() - looking  # it was held meanwhile
            if time.monotonic() - start > FINALLY:
                raise Fault(f"no answer for {FINALLY} s\n{seen}")
        taken = time.monotonic() - start - (waited_for_processor(self.process) - delayed)
        self.longest = max(self.longest, taken)
        if taken > patience:
            raise Fault(f"no answer for {taken:.1f} s, waiting for a processor left out\n{seen}")

    def _answers(self):
        try:
            self.face.GetChildren(dbus_interface=ACCESSIBLE, timeout=1.1 * PATIENCE)
        except dbus.DBusException:
            return False
        return True

    def _stands_still(self):
        """A list file without a line ends in that: the window thread waits for a signal that nobody sends."""
        with contextlib.suppress(OSError):
            return pathlib.Path(f"/proc/{self.process}/syscall").read_text().split()[0] == PAUSE

    def judge_end(self):
        """The program is gone: was it one of its own ends?"""
        status = self.app.process.wait()
        self.judge_words()
        if self.stood_still:
            return "a standstill"
        if status == 0 or status == FAILED and self.worded:
            return status
        raise Fault(f"it ended with {status}\n{self.app.said()[-6000:]}\n{self._trace()}")

    def _trace(self):
        """What the program leaves of a crash."""
        trace = self.case.desk.home / ".local/state/Velmora/crash.txt"
        return trace.read_text(errors="replace") if trace.exists() else "no trace of a crash"

    def judge_words(self):
        said = self.app.said()
        for word in (*SANITIZERS, DEFECT):
            if word in said:
                raise Fault(f"it says {word!r}\n{said[max(said.index(word) - 500, 0):][:8000]}")

    # At rest: nothing plays, nothing is asked, only the player's window shows.

    def judge_rest(self):
        self.judge_words()
        self._judge_processor()
        self._judge_bound("threads", lambda: len(os.listdir(f"/proc/{self.process}/task")), 4)
        self._judge_bound("descriptors", lambda: len(os.listdir(f"/proc/{self.process}/fd")), 4)
        if not self.sanitized:
            self._judge_bound("megabytes", self.case.memory, GROWTH)

    def _judge_processor(self):
        """What is under way may come to its end first."""
        for _ in range(60):
            before, start = self.case.processor_time(), time.monotonic()
            time.sleep(1)
            share = (self.case.processor_time() - before) / (time.monotonic() - start)
            if share < 0.2:
                return
        raise Fault(f"a processor at {100 * share:.0f} % at rest\n{stacks(self.process)}")

    def _judge_bound(self, what, measure, growth):
        """Threads that are left behind, and what was taken for a moment, may take a while to go."""
        young = what not in self.bounds or time.monotonic() - self.begun < self.settled_after
        now = measure()
        self.note(f"{what}: {now:.6g}")
        if young:
            self.bounds[what] = max(now, self.bounds.get(what, 0))
        if now <= self.bounds[what] + growth:
            return
        for _ in range(10):
            time.sleep(1)
            now = measure()
            if now <= self.bounds[what] + growth:
                return
        raise Fault(f"{what}: {now:.6g} after {self.bounds[what]:.6g} in the first {self.settled_after:g} s")

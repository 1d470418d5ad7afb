#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What a crash leaves, and how the next start tells of it."""
import signal

import case
from desk import wait_for


class Crash(case.Case):
    def setUp(self):
        super().setUp()
        self.shown = self.notifications()
        self.state = self.desk.home / ".local/state/Velmora"

    def start(self):
        for name in ("ASAN_OPTIONS", "TSAN_OPTIONS"):  # a sanitizer would take the signal for itself
            self.app.environment[name] = self.desk.environment[name] + ":handle_segv=0"
        super().start()

    def end_by(self, number):
        self.app.process.send_signal(number)
        self.assertEqual(self.app.process.wait(60), -number)

    def told(self):
        return [line for line in self.shown() if "crash" in line]

    def test_the_next_start_says_once_where_the_trace_of_a_crash_is(self):
        self.end_by(signal.SIGSEGV)
        trace = (self.state / "crash.txt").read_text()
        self.assertRegex(trace, r"\AVelmora \d+\.\d+\.\d+-[0-9a-f]{16}\nsignal 11\naddress 0x")
        self.assertIn(str(self.app.folder / "velmora"), trace)
        self.start()
        kept = self.state / "last crash.txt"
        line = f"Velmora|Velmora crashed|What is known of it is in {kept}."
        wait_for(lambda: self.told() == [line], "it is told")
        self.assertEqual(kept.read_text(), trace)
        self.end_by(signal.SIGKILL)
        self.start()
        self.show_list()
        self.assertEqual(self.told(), [line])

    def test_ends_that_are_no_crash_leave_no_trace(self):
        for number in (signal.SIGKILL, signal.SIGTERM):
            self.end_by(number)
            self.assertEqual(list(self.state.glob("*crash*")), [])
            self.start()
        self.app.menu(self.main, "f", "x")
        self.assertEqual(self.app.process.wait(60), 0)
        self.assertEqual(list(self.state.glob("*crash*")), [])


if __name__ == "__main__":
    case.main()

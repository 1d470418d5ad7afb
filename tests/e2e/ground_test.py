#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the program stands on: its standard streams, and threads."""
import os

import case
from desk import Velmora, wait_for


class Ground(case.Case):
    def test_closed_standard_streams_lead_nowhere_and_into_no_file(self):
        self.app.kill()
        process = self.desk.spawn("/bin/sh", "-c", 'exec "$0" <&- >&- 2>&-', str(self.app.folder / "velmora"))
        self.app.window(case.MAIN)
        for stream in range(3):
            self.assertEqual(os.readlink(f"/proc/{process.pid}/fd/{stream}"), "/dev/null")

    def test_where_too_few_threads_can_be_made_it_says_so_and_ends(self):
        self.app.kill()
        for allowed in (0, 1, 2, 5, 10, 15, 16, 24):
            with self.subTest(allowed):
                said = len(self.app.said())
                few = Velmora(self.desk, self.build, self.app.folder)
                few.environment = {"LD_PRELOAD": str(self.tool("libfew_threads.so")), "VELMORA_THREADS": str(allowed)}
                few.start(wait=False)
                wait_for(lambda: not few.alive() or self.app.windows(case.MAIN), "it ends, or its window shows")
                if few.alive():
                    self.assertGreaterEqual(allowed, 16)
                    few.kill()
                else:
                    self.assertEqual(few.process.returncode, 1)
                    self.assertEqual(self.app.said()[said:], "Velmora cannot start: the system makes no more threads. "
                                     "End some programs first.\n")


if __name__ == "__main__":
    case.main()

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The file dialogs of the real program: what they cost."""
import pathlib

import case
import places

TITLE = "Select a file to open"


class Dialogs(case.Case):
    def own_memory(self):
        """KB that no other process shares, and that stand in memory."""
        lines = pathlib.Path(f"/proc/{self.app.process.pid}/smaps_rollup").read_text().splitlines()
        return sum(int(line.split()[1]) for line in lines if line.startswith(("Private_Dirty:", "Swap:")))

    def open_and_cancel(self):
        self.app.click(self.main, places.PLAY)
        self.desk.run("xdotool", "windowfocus", "--sync", self.app.window(TITLE))
        self.app.key("Escape")
        self.app.gone(TITLE)

    def test_forty_openings_cost_less_than_a_megabyte_in_all(self):
        for number in range(30):
            (self.desk.music / f"song {number}.wav").write_bytes(b"RIFF")
        for _ in range(10):  # what a dialog needs is taken once
            self.open_and_cancel()
        before = self.own_memory()
        for _ in range(40):
            self.open_and_cancel()
        cost = self.own_memory() - before
        print(f"forty openings cost {cost} KB", flush=True)
        self.assertLess(cost, 1024)


if __name__ == "__main__":
    case.main()

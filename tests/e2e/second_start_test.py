#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The program started once more: it is one program for one user and one folder, and the running one comes up."""
import shutil
import signal

import case
import places
from desk import Velmora, wait_for


class SecondStart(case.Case):
    def second(self, **environment):
        """Starts the program once more, and waits for its end: the status, and what it said. A machine that is busy may
        need longer for an answer than the second start waits: then it is started again, as a person would."""
        hangs = self.refusal() + "\n"
        answers = []
        wait_for(lambda: answers.append(self.once_more(**environment)) or answers[-1] != (1, hangs), "a start is answered")
        return answers[-1]

    def once_more(self, **environment):
        said = len(self.app.said())
        again = Velmora(self.desk, self.build, self.app.folder)
        again.environment = environment
        again.start(wait=False)
        status = again.process.wait(60)
        return status, self.app.said()[said:]

    def refusal(self):
        return f"Velmora is running and does not answer: end it (process {self.app.process.pid}), and start it again."

    def test_the_running_one_comes_to_the_front(self):
        other = self.show_list()
        self.desk.run("xdotool", "windowactivate", "--sync", other)
        self.assertEqual(self.second(), (0, ""))
        wait_for(lambda: self.desk.active_window() == self.main, "the main window is the active one")
        self.assertEqual(len(self.app.windows(case.MAIN)), 1)
        self.assert_alive()

    def test_a_minimised_one_comes_back(self):
        self.app.click(self.main, places.MINIMIZE)
        self.app.gone(case.MAIN)
        self.assertEqual(self.second(), (0, ""))
        self.app.window(case.MAIN)

    def test_a_dialog_that_has_the_program_to_itself_comes_to_the_front(self):
        other = self.show_list()
        self.app.menu(other, "o", "a")
        dialog = self.app.window("Select .wav/.mp3 files to add to the playlist")
        self.desk.run("xdotool", "windowactivate", "--sync", self.main)
        self.assertEqual(self.second(), (0, ""))
        wait_for(lambda: self.desk.active_window() == dialog, "the dialog is the active window")

    def test_one_that_waits_for_its_first_file_says_so(self):
        shown = self.notifications()
        self.app.kill()
        conf = self.app.folder / "conf.mp3"
        whole = conf.read_bytes()
        conf.write_bytes(b"no sound at all" * 1000)
        self.app.start(wait=False)
        wait_for(lambda: len(shown()) == 1, "the damaged file is told of")
        line = f"Velmora|Velmora is still starting|{conf} cannot be opened. Velmora waits until it can: put an undamaged one in its place."
        told = lambda: shown().count(line)
        for _ in range(2):
            before = told()
            self.assertEqual(self.second(), (0, ""))
            wait_for(lambda: told() > before, "the second start is told why no window comes")
        self.assertEqual(self.app.windows(case.MAIN), [])
        conf.write_bytes(whole)
        self.app.window(case.MAIN)
        before = told()
        self.assertEqual(self.second(), (0, ""))
        self.assertEqual(told(), before)

    def test_one_that_hangs_is_told_of(self):
        shown = self.notifications()
        self.app.process.send_signal(signal.SIGSTOP)
        try:
            self.assertEqual(self.once_more(), (1, self.refusal() + "\n"))
            wait_for(lambda: shown() == [f"Velmora|Velmora|{self.refusal()}"], "the desktop is told")
        finally:
            self.app.process.send_signal(signal.SIGCONT)
        self.assertEqual(self.second(), (0, ""))
        self.assert_alive()

    def test_without_a_bus_nobody_can_be_asked(self):
        self.assertEqual(self.once_more(DBUS_SESSION_BUS_ADDRESS=""), (1, self.refusal() + "\n"))
        self.assert_alive()

    def test_after_a_kill_the_next_start_is_the_only_one(self):
        for _ in range(3):
            self.app.kill()
            self.start()
            self.assertEqual(self.second(), (0, ""))

    def test_two_that_start_together_become_one(self):
        self.app.kill()
        both = [Velmora(self.desk, self.build, self.app.folder).start(wait=False) for _ in range(2)]
        wait_for(lambda: sum(app.alive() for app in both) == 1, "one of them ends")
        self.app.window(case.MAIN)
        self.assertEqual(sum(app.alive() for app in both), 1)
        self.assertEqual(len(self.app.windows(case.MAIN)), 1)

    def test_another_home_and_folder_have_a_program_of_their_own(self):
        home = self.desk.folder / "other home"
        home.mkdir()
        other = Velmora(self.desk, self.build, self.desk.folder / "other folder")
        other.environment = {"HOME": str(home)}
        other.start(wait=False)
        wait_for(lambda: len(self.app.windows(case.MAIN)) == 2, "both windows show")
        self.assertTrue(other.alive())
        self.assert_alive()

    def test_a_copy_of_the_folder_would_share_the_settings(self):
        copy = self.desk.folder / "copy"
        shutil.copytree(self.app.folder, copy, ignore=shutil.ignore_patterns("*.part"))  # what is being written goes
        start = lambda: Velmora(self.desk, self.build, copy).start(wait=False).process.wait(60)
        wait_for(lambda: start() == 0, "a start is answered")
        self.assert_alive()


if __name__ == "__main__":
    case.main()

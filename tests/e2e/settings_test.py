#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The second and the third tab of the settings on a real disk: chosen by hand, kept, and found again by the next start."""
import case
from desk import Impatient, wait_for
from reader import CHECKED, ENABLED, SELECTED

DECODER = "Decoder Settings"
RIPPING = "CD => WAV Settings"


class Settings(case.Case):
    def setUp(self):
        super().setUp()
        (self.desk.music / "waves").mkdir()

    def open_tab(self, *mnemonics):
        self.open_workbench(*mnemonics)
        self.app.window(case.SETTINGS)

    def to_ripping_tab(self):
        """The list of the tab before is seen no more."""
        self.app.press(case.SETTINGS, "page tab", "CD => WAV")
        self.app.control(case.SETTINGS, "check box", "Get track titles from CDDB")
        wait_for(lambda: sum(c.role == "push button" for c in self.app.controls(case.SETTINGS)) == 3, "one tab shows")

    def button(self, name):
        return self.app.control(case.SETTINGS, "push button", name)

    def kept(self, section, **values):
        wanted = {key.replace("_", " "): value for key, value in values.items()}
        found = lambda: {key: self.app.setting(section, key) for key in wanted}
        try:
            wait_for(lambda: found() == wanted, f"{wanted} is kept")
        except Impatient as late:
            raise Impatient(f"{late}, but {found()}") from None

    def test_a_folder_for_decoded_files_is_kept_by_ok_and_found_again(self):
        self.open_tab("d", "s")
        self.to_folder(case.SETTINGS, "waves")
        wait_for(lambda: self.button("Apply").has(ENABLED), "there is something to apply")
        self.app.press(case.SETTINGS, "push button", "OK")
        self.app.gone(case.SETTINGS)
        self.kept(DECODER, SaveDirectory=str(self.desk.music / "waves"), SaveDrive="/", Settings_Saved="yes")
        self.app.kill()
        self.start()
        self.open_tab("d", "s")
        wait_for(lambda: any(c.role == "list item" and c.name.strip() == "waves" and c.has(SELECTED)
                             for c in self.app.controls(case.SETTINGS)), "the folder is the chosen one")
        self.assertFalse(self.button("Apply").has(ENABLED))

    def test_cancel_keeps_nothing_of_the_second_tab(self):
        self.open_tab("d", "s")
        self.to_folder(case.SETTINGS, "waves")
        wait_for(lambda: self.button("Apply").has(ENABLED), "there is something to apply")
        self.app.press(case.SETTINGS, "push button", "Cancel")
        self.app.gone(case.SETTINGS)
        self.assertEqual(self.app.setting(DECODER, "Settings Saved"), "")

    def test_names_folder_and_titles_of_ripped_tracks_are_kept_and_found_again(self):
        self.open_tab("d", "s")
        self.to_ripping_tab()
        self.app.point_at([c for c in self.app.controls(case.SETTINGS) if c.role == "list"][-1])
        self.desk.hand("click", "--repeat", "10", "--delay", "20", "5")  # the list is low: to its last row
        self.to_folder(case.SETTINGS, "waves")
        wait_for(lambda: self.button("Apply").has(ENABLED), "there is something to apply")
        box = wait_for(lambda: next((c for c in self.app.controls(case.SETTINGS) if c.role == "text"), None), "the box")
        self.app.click_control(box)
        self.app.key("ctrl+a")
        self.app.type("My disc ")
        wait_for(lambda: box.text() == "My disc ", "the beginning is typed")
        self.app.press(case.SETTINGS, "push button", "Apply")
        self.kept(RIPPING, SaveDirectory=str(self.desk.music / "waves"), FileNames="My disc ", Access_CDDB="0",
                  CD_Drive="1", Settings_Saved="yes")
        self.assertFalse(self.button("Apply").has(ENABLED))
        self.app.press(case.SETTINGS, "check box", "Get track titles from CDDB")
        self.app.press(case.SETTINGS, "push button", "OK")
        self.app.gone(case.SETTINGS)
        self.kept(RIPPING, FileNames="Track - Artist - Title", Access_CDDB="1")
        self.app.kill()
        self.start()
        self.open_tab("d", "s")
        self.to_ripping_tab()
        wait_for(lambda: self.app.control(case.SETTINGS, "check box", "Get track titles from CDDB").has(CHECKED),
                 "the titles are wanted")


if __name__ == "__main__":
    case.main()

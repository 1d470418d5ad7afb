#!/usr/bin/python3
"""WAV files onto a disc image and back."""
import subprocess
import wave

import case
import sounds
from desk import wait_for

SECTOR = 588  # frames


class Disc(case.Case):
    def test_three_files_go_onto_an_image_and_come_back_bit_for_bit(self):
        sources, samples = [], []
        for number, frames in enumerate((200 * sounds.RATE + 123, 2 * sounds.RATE, 200 * SECTOR * 75)):
            samples.append(sounds.music(1, seed=number) * 200)
            samples[-1] = samples[-1][:2 * frames]
            sources.append(sounds.write_wav(self.desk.home / f"source {number}.wav", samples[-1]))

        self.open_workbench("w")
        self.assertEqual(self.drop(sources), "copied")

        wait_for(lambda: [c.name for c in self.app.controls(case.WORKBENCH) if c.role == "list item"]
                 == [str(path) for path in sources], "the rows stand")
        self.app.press(case.WORKBENCH, "push button", "Write CD")
        self.app.window("CD created!")
        self.app.press("CD created!", "push button", "OK")
        self.app.gone("CD created!")
        self.assertTrue(all(path.exists() for path in sources))

        (sheet,) = (self.desk.music / "Velmora Discs").glob("*.cue")
        self.other_programs_accept(sheet)

        self.app.kill()
        self.start()
        self.open_workbench("c")
        self.check_tracks(3)
        bars = {control.name: control for control in self.app.controls(case.WORKBENCH) if control.role == "progress bar"}
        shown = {name: set() for name in ("This Track", "All Selected Tracks")}
        left, top, width, height = self.app.control(case.WORKBENCH, "push button", "START").place()
        self.desk.run("xdotool", "mousemove", str(left + width // 2), str(top + height // 2))
        self.desk.spawn("xdotool", "click", "1")

        def ended():
            for name, values in shown.items():
                values.add(bars[name].value())
            found = sorted(self.desk.music.glob("*.wav"))
            return len(found) == 3 and shown["All Selected Tracks"] >= {0} and bars["This Track"].value() == 0 and found
        for path, wanted in zip(wait_for(ended, "the tracks come back", pause=0), samples):
            with wave.open(str(path)) as file:
                data = file.readframes(file.getnframes())
            whole = -(-len(wanted) // (2 * SECTOR)) * SECTOR * 4
            self.assertEqual(data, wanted.tobytes().ljust(max(whole, 300 * SECTOR * 4), b"\0"), path)
        self.assertTrue(all(max(values) > 0 for values in shown.values()), shown)

    def other_programs_accept(self, sheet):
        listed = subprocess.run(["cd-info", "--no-header", "--no-cddb", "--cue-file", str(sheet)], capture_output=True,
                                text=True, check=True).stdout
        self.assertEqual(sum("audio" in line for line in listed.splitlines() if line.strip()[:2].strip(" :").isdigit()), 3)
        points = subprocess.run(["cuebreakpoints", str(sheet)], capture_output=True, text=True, check=True).stdout
        self.assertEqual(len(points.split()), 2)
        subprocess.run(["bchunk", "-w", str(sheet.with_suffix(".bin")), str(sheet), str(self.desk.folder / "chunk")],
                       capture_output=True, check=True)
        self.assertEqual(len(list(self.desk.folder.glob("chunk*.wav"))), 3)


if __name__ == "__main__":
    case.main()

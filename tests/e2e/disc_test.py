#!/usr/bin/python3
"""WAV files onto a disc image and back."""
import subprocess
import wave

import case
import sounds
from desk import wait_for

SECTOR = 588  # frames


class Disc(case.Case):
    def drop(self, paths, window_title):
        """Drags the files out of another program's window into the list of the workbench."""
        source = self.desk.spawn(str(self.tool("file_source")), *map(str, paths), stdout=subprocess.PIPE, text=True)
        window = self.app.window("Files")
        self.desk.run("xdotool", "windowmove", window, "20", "20")
        wait_for(lambda: self.app.geometry(window)[0] < 60, "the other window stands aside")
        target = next(c for c in self.app.controls(window_title) if c.role == "list")
        left, top, width, height = target.place()
        x, y, _, _ = self.app.geometry(window)
        self.desk.run("xdotool", "mousemove", str(x + 40), str(y + 30), "mousedown", "1")
        for _ in range(3):
            self.app.pull((x + 40, y + 30), (left + width // 2, top + height // 2), steps=12)
        wait_for(lambda: self.drops(), "the drop is taken")
        self.app.release()
        said = source.stdout.readline().strip()
        source.stdout.close()
        self.desk.end(source)
        return said

    def drops(self):
        """Moves the pointer a little, as a hand does, until the list has answered."""
        self.desk.run("xdotool", "mousemove_relative", "--", "1", "0", "mousemove_relative", "--", "-1", "0")
        self.tries = getattr(self, "tries", 0) + 1
        return self.tries % 25 == 0

    def test_three_files_go_onto_an_image_and_come_back_bit_for_bit(self):
        sources, samples = [], []
        for number, frames in enumerate((9 * sounds.RATE + 123, 5 * sounds.RATE, 7 * SECTOR * 100)):
            samples.append(sounds.music(1, seed=number) * 10)
            samples[-1] = samples[-1][:2 * frames]
            sources.append(sounds.write_wav(self.desk.home / f"source {number}.wav", samples[-1]))

        self.open_workbench("w")
        self.assertEqual(self.drop(sources, case.WORKBENCH), "copied")
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
        rows = wait_for(lambda: [c for c in self.app.controls(case.WORKBENCH) if c.role in ("list item", "check box")
                                 and c.place()[2] > 100][:3], "the tracks are listed")
        for row in rows:
            left, top, _, height = row.place()
            self.desk.run("xdotool", "mousemove", str(left + 9), str(top + height // 2), "click", "1")
        self.app.press(case.WORKBENCH, "push button", "START")
        bars = {"This Track": set(), "All Selected Tracks": set()}

        def ended():
            for control in self.app.controls(case.WORKBENCH):
                if control.role == "progress bar":
                    bars[control.name].add(control.value())
            found = sorted(self.desk.music.glob("*.wav"))
            return len(found) == 3 and not any(self.desk.music.glob("*.part")) and found
        for path, wanted in zip(wait_for(ended, "the tracks come back", pause=0), samples):
            with wave.open(str(path)) as file:
                data = file.readframes(file.getnframes())
            whole = -(-len(wanted) // (2 * SECTOR)) * SECTOR * 4
            self.assertEqual(data, wanted.tobytes().ljust(max(whole, 300 * SECTOR * 4), b"\0"), path)
        print({name: len(values) for name, values in bars.items()}, flush=True)
        self.assertGreater(len(bars["All Selected Tracks"]), 1)

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

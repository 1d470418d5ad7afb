#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the checks on each desktop and writes docs/desktops.md from what they said.

    table.py BUILD [NAME[:WORD] ...]

What is not run this time stays in the table as it was seen last.
"""
import os
import pathlib
import re
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs/desktops.md"
TRIES = 3
OWN = "desktops/desktop"

# clang-format off
CHECKS = [  # what is read in the table; the file below tests; the tests in it, or all
    ("A file is opened, heard sample for sample, paused, stopped", "e2e/play", []),
    ("A list: next, previous, each track whole, hardly a gap", "e2e/list", []),
    ("Stop is heard within 60 ms", OWN, ["Sound.test_stop_is_heard_within_60_ms"]),
    ("The sound server dies, or hangs, and comes back", "e2e/upset",
     ["Upset.test_a_sound_server_that_dies_takes_the_sound_along_and_not_the_place",
      "Upset.test_a_sound_server_that_hangs_does_not_hang_the_window",
      "Upset.test_without_a_sound_server_files_play_silently"]),
    ("Of the server, only what programs speak with dies", OWN, ["Sound.test_what_answers_programs_dies_and_comes_back"]),
    ("Docking, drawing off, closing, dialogs' frames", "e2e/windows", ["-k", "list", "-k", "docked", "-k", "drag", "-k", "close",
                                                                      "-k", "killed", "-k", "dialog", "-k", "size"]),
    ("Both windows minimise and come back", "e2e/windows", ["-k", "minimise_and_come_back"]),
    ("Size, frame, name, icon, menus", OWN, ["Looks"]),
    ("A day by keys alone", "e2e/keyboard", []),
    ("A screen reader", "e2e/screen_reader", []),
    ("Media keys", "e2e/media_keys", []),
    ("Scale 2, told as the desktop tells it", OWN, ["TwiceAsLarge"]),
    ("Two screens, the scale of the second", OWN, ["TwoScreens"]),
    ("The desktop's own file dialog, by its portal", OWN, ["Portal"]),
]
DESKTOPS = {  # what is read above the column; the packages whose versions are told
    "openbox": ("openbox, PulseAudio", ("openbox", "pulseaudio")),
    "mutter":  ("mutter with Xwayland, PipeWire", ("mutter", "xwayland", "pipewire-pulse", "wireplumber")),
    "xfwm4":   ("xfwm4, PulseAudio", ("xfwm4",)),
    "kwin":    ("KWin on X11, PulseAudio", ("kwin-x11",)),
}
# clang-format on


def pictures(name):
    folder = ROOT / "build/desktops" / name
    folder.mkdir(parents=True, exist_ok=True)
    return folder


def judged(build, name, file, tests):
    """What the table says of it. What fails is tried again, which the table tells: a machine that does much else may be late."""
    for number in range(1, TRIES + 1):
        said = tried(build, name, file, tests)
        if "failed" not in said:
            break
    return said if number == 1 or "failed" in said else f"{said}, at try {number}"


def tried(build, name, file, tests):
    told = subprocess.run(
        ["/usr/bin/python3", f"tests/{file}_test.py", build, *tests], cwd=ROOT, text=True, errors="replace",
        stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
        env={**os.environ, "VELMORA_TEST_DESKTOP": name, "VELMORA_DESKTOP_PICTURES": str(pictures(name))})
    (pictures(name) / f"{file.replace('/', '-')}-{'-'.join(tests)[:40]}.txt").write_text(told.stdout)
    count = int(re.search(r"^Ran (\d+) test", told.stdout, re.MULTILINE)[1])
    failed = sorted(set(re.findall(r"^(?:FAIL|ERROR): (test_\w+)", told.stdout, re.MULTILINE)))
    skipped = re.findall(r"\.\.\. skipped '(.*)'", told.stdout)
    figures = re.findall(r"^seen: (.*)$", told.stdout, re.MULTILINE)
    if failed:
        return "**failed:** " + ", ".join(name[5:].replace("_", " ") for name in failed)
    if skipped:
        return "not there: " + "; ".join(skipped)
    return f"yes ({', '.join(figures)})" if figures else f"yes ({count} tests)" if count > 1 else "yes"


def known():
    """The table as it stands in the page."""
    rows = re.findall(r"^\| (.*) \|$", PAGE.read_text(), re.MULTILINE) if PAGE.exists() else []
    cells = [[cell.strip() for cell in row.split(" | ")] for row in rows]
    heads = {head: column for column, head in enumerate(cells[0])} if cells else {}
    return {(name, row[0]): row[heads[head]] for name, (head, _) in DESKTOPS.items() if head in heads
            for row in cells[2:] if len(row) == len(heads)}


def versions():
    asked = [package for _, packages in DESKTOPS.values() for package in packages] + ["libqt6widgets6"]
    told = subprocess.run(["dpkg-query", "-W", "-f", "${Package} ${Version}\n", *asked], capture_output=True, text=True).stdout
    return ", ".join(told.split("\n")[:-1])


def table(seen):
    heads = ["What", *(head for head, _ in DESKTOPS.values())]
    rows = [[what, *(seen.get((name, what), "not run") for name in DESKTOPS)] for what, _, _ in CHECKS]
    return "\n".join(f"| {' | '.join(row)} |" for row in (heads, ["---"] * len(heads), *rows))


def write(seen):
    words = (pathlib.Path(__file__).with_name("page.md")).read_text()
    PAGE.write_text(words.replace("@TABLE@", table(seen)).replace("@VERSIONS@", versions())
                    .replace("@DATE@", time.strftime("%Y-%m-%d")))


def chosen(names):
    """The desktops and rows that are asked for: `mutter`, or the rows of it in which a word stands, `mutter:docking`."""
    for name, _, word in (asked.partition(":") for asked in names or DESKTOPS):
        yield from ((name, row) for row in CHECKS if word.lower() in row[0].lower())


def main(build, *names):
    seen = {}
    for name, (what, file, tests) in chosen(names):
        seen[name, what] = judged(str(pathlib.Path(build).resolve()), name, file, tests)
        print(f"{name}: {what}: {seen[name, what]}", flush=True)
        write({**known(), **seen})
    return any("failed" in cell for cell in seen.values())


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

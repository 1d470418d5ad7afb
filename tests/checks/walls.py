#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when a wall does not hold: puts one forbidden include into a copy of each room and asks the check `layers`."""
import pathlib
import shutil
import subprocess
import sys
import tempfile

root = pathlib.Path(sys.argv[1])
folders = ("platform", "files", "toolkit", "engines", "modules", "desktop", "main", "player", "sliders", "config", "settingsdlg",
           "playlist", "workbench", "info")
forbidden = {
    "platform/text.cpp": "files/folders.h",
    "files/folders.cpp": "engines/formats/mpeg_header.h",
    "files/output_file.cpp": "sqlite3.h",
    "toolkit/form.cpp": "desktop/places.h",
    "engines/formats/mpeg_header.cpp": "engines/tags/tag.h",
    "engines/tags/genre.cpp": "engines/codec/tasks.h",
    "engines/codec/tasks.cpp": "engines/disc/disc_id.h",
    "engines/disc/disc_id.cpp": "engines/audio/gain.h",
    "engines/audio/gain.cpp": "desktop/mounts.h",
    "desktop/mounts.cpp": "engines/audio/gain.h",
    "config/docking.cpp": "toolkit/form.h",
    "player/start_up.cpp": "files/folders.h",
    "playlist/sequencing.cpp": "QLabel",
    "info/error.h": "player/start_up.h",
    "main/main.cpp": "sndfile.h",
    "engines/audio/stream.cpp": "cubeb/cubeb.h",
    "engines/disc/discs.cpp": "modules/discs/cdio_reader.h",
    "modules/web/web.cpp": "engines/audio/gain.h",
}


def crossings(house):
    return subprocess.run([sys.executable, root / "tests/checks/layers.py", house], capture_output=True, text=True)


with tempfile.TemporaryDirectory() as kept:
    house = pathlib.Path(kept)
    for folder in folders:
        shutil.copytree(root / folder, house / folder)
    for name in ("CMakeLists.txt", "program.h", "program.cpp"):
        shutil.copy(root / name, house / name)
    standing = [] if crossings(house).returncode == 0 else ["the house as it is"]
    for name, include in forbidden.items():
        path = house / name
        text = path.read_text()
        path.write_text(f'#include "{include}"\n{text}')
        answer = crossings(house)
        if answer.returncode == 0 or f"{name}:1: {include}" not in answer.stdout:
            standing.append(f"{include} may be included by {name}")
        path.write_text(text)
print("\n".join(standing) or f"{len(forbidden)} walls hold.")
sys.exit(bool(standing))

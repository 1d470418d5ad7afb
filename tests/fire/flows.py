# SPDX-License-Identifier: GPL-3.0-or-later
"""The flows that are put under fire, and what each owes its user."""
import contextlib
import dataclasses
import pathlib
import re
import sqlite3
import tempfile


def as_it_is(files):
    return files


def settings_in(files):
    """What a start reads. The place of a window that is being dragged is as good as any other."""
    with tempfile.TemporaryDirectory(dir="/dev/shm") as folder:
        for name, data in files.items():
            pathlib.Path(folder, name.rsplit("/", 1)[1]).write_bytes(data)
        try:
            with contextlib.closing(sqlite3.connect(pathlib.Path(folder, "settings.sqlite"))) as store:
                rows = store.execute("select key, value from settings where section = 'Encoder Settings'").fetchall()
        except sqlite3.Error as error:
            rows = [("settings.sqlite", str(error))]
    return {key: value.encode() for key, value in rows}


def entries_in(files):
    """Of a file of entries each entry by itself, and the rest as it is."""
    found = {}
    for name, data in files.items():
        entry = re.compile(rb"^(\w+)=(.*)$", re.M)
        found.update((f"{name} {key.decode()}", value) for key, value in entry.findall(data))
        found[name] = entry.sub(rb"", data)
    return found


def discs_in(files):
    """Discs are named by the time: here by their turn, and one is as good as two."""
    stem = re.compile(r"Disc \d{4}-\d\d-\d\d \d\d\.\d\d\.\d\d")
    return {stem.sub("Disc", name): stem.sub("Disc", data.decode()).encode() if name.endswith(".cue") else data
            for name, data in files.items()}


@dataclasses.dataclass
class Flow:
    name: str
    program: str  # which of the two carries it out
    is_told: bool  # of a failure the user hears; otherwise a line on standard error says so
    seen: callable = as_it_is  # the files as they are compared


ALL = [
    Flow("settings", "fire_flow", False, settings_in),
    Flow("ini", "fire_flow", False, entries_in),
    Flow("list", "fire_window", False),
    Flow("save", "fire_window", True),
    Flow("m3u", "fire_window", True),
    Flow("tag", "fire_flow", True),
    Flow("encode", "fire_flow", True),
    Flow("decode", "fire_flow", True),
    Flow("rip", "fire_flow", True),
    Flow("image", "fire_flow", True, discs_in),
    Flow("levels", "fire_flow", False),
    Flow("titles", "fire_flow", False),
    Flow("skin", "fire_flow", False),
]

BY_NAME = {flow.name: flow for flow in ALL}

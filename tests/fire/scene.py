# SPDX-License-Identifier: GPL-3.0-or-later
"""A home of its own for one flow, put back to how it was before each run."""
import dataclasses
import os
import pathlib
import re
import shutil
import signal
import subprocess

FOLDERS = ("Music", "output", "state", "config", "cache", "app")
LIMIT = 120  # seconds, for what hangs
NOTES = re.compile(r"state/parts/[0-9a-f]{16}$")  # the program's own book of what it is writing


@dataclasses.dataclass
class Call:
    number: int
    kind: str
    what: str  # "done", "failed", or the fault that met it
    inode: int
    at: int
    path: str
    second: str
    data: bytes


@dataclasses.dataclass
class Ended:
    status: int
    lines: list  # of standard output
    trouble: list  # lines of standard error
    calls: list

    def words(self, what):
        return [line[len(what) + 1:] for line in self.lines if line.startswith(what + " ")]

    def was_met(self):
        return any(call.what not in ("done", "failed") for call in self.calls)


def calls_in(log):
    calls, at = [], 0
    while at < len(log):
        words = []
        for _ in range(8):
            end = log.index(b"\0", at)
            words.append(os.fsdecode(log[at:end]))
            at = end + 1
        size = int(words[5])
        calls.append(Call(int(words[0]), words[1], words[2], int(words[3]), int(words[4]), words[6], words[7],
                          log[at:at + size]))
        at += size
    return calls


class Scene:
    def __init__(self, flow, build, folder):
        self.flow, self.build, self.folder = flow, pathlib.Path(build) / "tests/fire", pathlib.Path(folder)
        self.home = self.folder / "home"
        self.log = self.folder / "calls"
        self.empty()
        for name in FOLDERS:
            (self.home / name).mkdir()
        self.furnished = self.run(arguments=["furnish"])
        assert self.furnished.status == 0 and not self.furnished.trouble, self.furnished
        self.old = self.snapshot()
        self.recorded = self.run(keep_bytes=True)
        self.new = self.snapshot()
        self.next = self.run()
        self.again = self.snapshot()

    def empty(self):
        shutil.rmtree(self.home, ignore_errors=True)
        self.home.mkdir(parents=True)

    def put(self, files, time=None):
        """`files` by their names in the home; None for a folder. `time`: when all were written."""
        self.empty()
        for name, data in sorted(files.items()):
            path = self.home / name
            if data is None:
                path.mkdir(exist_ok=True)
            else:
                path.write_bytes(data)
            if time is not None:
                os.utime(path, (time, time))

    def snapshot(self):
        found = {}
        for folder, folders, files in os.walk(self.home):
            for name in folders:
                found[os.path.relpath(os.path.join(folder, name), self.home)] = None
            for name in files:
                path = os.path.join(folder, name)
                with open(path, "rb") as file:
                    found[os.path.relpath(path, self.home)] = file.read()
        return found

    def seen(self, files):
        """What matters to a user: neither folders nor notes, nor what is being written beside its place."""
        return self.flow.seen({name: data for name, data in files.items()
                               if data is not None and not NOTES.match(name) and not name.endswith(".part")})

    def run(self, fault="", at=0, arguments=(), keep_bytes=False):
        self.log.unlink(missing_ok=True)
        environment = {
            "PATH": os.environ["PATH"], "HOME": str(self.home), "TZ": "UTC", "QT_QPA_PLATFORM": "offscreen", "QT_HASH_SEED": "0",
            "XDG_RUNTIME_DIR": str(self.folder), "DBUS_SESSION_BUS_ADDRESS": "disabled:",
            "VELMORA_FIRE_BELOW": str(self.home), "VELMORA_FIRE_LOG": str(self.log), "VELMORA_FIRE_FAULT": fault,
            "VELMORA_FIRE_AT": str(at), "VELMORA_FIRE_BYTES": "1" if keep_bytes else "",
            "LD_PRELOAD": str(self.build / "libfire.so")}
        command = [str(self.build / self.flow.program), self.flow.name, str(self.home), *arguments]
        process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=environment)
        try:
            output, trouble = process.communicate(timeout=LIMIT)
        except subprocess.TimeoutExpired:
            process.kill()
            output, trouble = process.communicate()
            trouble += b"\nIt did not end."
        log = self.log.read_bytes() if self.log.exists() else b""
        return Ended(process.returncode, output.decode(errors="replace").splitlines(),
                     [line for line in trouble.decode(errors="replace").splitlines() if line], calls_in(log))

    def was_killed(self, ended):
        return ended.status == -signal.SIGKILL

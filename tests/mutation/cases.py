# SPDX-License-Identifier: GPL-3.0-or-later
"""The single test cases: how long each takes, and which mutants it reaches. Those that fail or skip by themselves judge
nobody, and neither do those that measure what a person hears, for they want a machine to themselves."""
import fnmatch
import hashlib
import json
import os
import pathlib
import subprocess
import tempfile
import threading
import time
import xml.etree.ElementTree as xml
from concurrent.futures import ThreadPoolExecutor
from dataclasses import asdict, dataclass, field

here = pathlib.Path(__file__).resolve().parent
patience = 90 # seconds for a case that nobody has timed yet
dearest = 5 # seconds of processor time: a case that takes more judges nobody


@dataclass
class Case:
    group: str
    file: str
    name: str
    state: str # of the file's text and of the mutants, when it was run
    seconds: float = 0 # as it takes
    cost: float = 0 # of the processor's
    well: bool = False
    reached: list = field(default_factory=list)


@dataclass
class Ending:
    failed: bool
    late: bool
    said: str
    cost: float


def escaped(name):
    return name.replace("\\", "\\\\").replace(",", "\\,")


def waited(child, limit):
    """The status, the processor's seconds, and whether it had to be ended."""
    began, late = time.monotonic(), False
    while True:
        number, status, usage = os.wait4(child.pid, os.WNOHANG)
        if number:
            child.returncode = os.waitstatus_to_exitcode(status)
            return child.returncode, usage.ru_utime + usage.ru_stime, late
        if time.monotonic() - began > limit and not late:
            late = True
            child.kill()
        time.sleep(0.01)


class Runner:
    def __init__(self, place):
        self.place = place

    def run(self, cases, limit, cost, mutant=0, reached=None):
        """The cases of one group in one process, up to the first failure. Within `limit` seconds, and `cost` of the
        processor's: a loop without an end is cut short however busy the machine is."""
        environment = dict(os.environ, VELMORA_MUTANT=str(mutant), QT_QPA_PLATFORM="offscreen")
        if reached:
            environment["VELMORA_REACHED"] = reached
        names = ",".join(escaped(case.name) for case in cases)
        command = ["prlimit", f"--cpu={int(cost)}", here / "sandbox", self.place / f"tests/{cases[0].group}_tests", "--no-intro", "--no-colors",
                   "--case-sensitive", "--abort-after=1", f"--test-case={names}"]
        with tempfile.TemporaryFile() as said:
            child = subprocess.Popen(command, stdout=said, stderr=said, env=environment, stdin=subprocess.DEVNULL)
            status, cost, late = waited(child, limit)
            said.seek(0)
            return Ending(status != 0, late, said.read().decode(errors="replace"), cost)

    def listed(self, group):
        said = subprocess.run([here / "sandbox", self.place / f"tests/{group}_tests", "--list-test-cases", "--reporters=xml"],
                              capture_output=True, check=True)
        return [(pathlib.Path(case.get("filename")).name, case.get("name"))
                for case in xml.fromstring(said.stdout).iter("TestCase")]


def timed(root):
    """The files whose entry of ctest runs alone."""
    said = subprocess.run(["ctest", "--test-dir", root / "build/dev", "--show-only=json-v1"], capture_output=True, check=True)
    alone = [test["name"] for test in json.loads(said.stdout)["tests"]
             if any(p["name"] == "RUN_SERIAL" and p["value"] for p in test["properties"])]
    return {tuple(name.split("/", 1)) for name in alone}


class Cases:
    def __init__(self, root, place, groups, names, count, state, jobs):
        self.runner, self.count, self.kept = Runner(place), count, place / "cases.json"
        known = {(c["group"], c["file"], c["name"], c["state"]): Case(**c)
                 for c in (json.loads(self.kept.read_text()) if self.kept.exists() else [])}
        alone = timed(root)
        self.all, new = [], []
        for group in groups:
            for file, name in self.runner.listed(group):
                stem = file.removesuffix("_test.cpp")
                if (group, stem) in alone or not any(fnmatch.fnmatch(stem, name) for name in names):
                    continue
                text = (root / "tests" / group / file).read_bytes()
                now = hashlib.sha256(text + state.encode()).hexdigest()[:16]
                case = known.get((group, file, name, now))
                self.all.append(case or Case(group, file, name, now))
                if not case:
                    new.append(self.all[-1])
        self.lock, self.done = threading.Lock(), [case for case in self.all if case not in new]
        with ThreadPoolExecutor(jobs) as workers:
            list(workers.map(self.record, new))
        self.save()
        self.by_mutant = {}
        for case in self.all:
            for number in case.reached if case.well else []:
                self.by_mutant.setdefault(number, []).append(case)
        for cases in self.by_mutant.values():
            cases.sort(key=lambda case: case.cost)

    def record(self, case):
        with tempfile.NamedTemporaryFile(dir="/dev/shm", prefix="velmora-reached-") as marks:
            marks.truncate(self.count + 1)
            began = time.monotonic()
            ending = self.runner.run([case], patience, dearest + 1, reached=marks.name)
            case.seconds, case.cost = round(time.monotonic() - began, 3), round(ending.cost, 3)
            case.well = not ending.failed and case.cost <= dearest
            case.reached = [number for number, mark in enumerate(marks.read()) if mark]
        if not case.well:
            why = "late" if ending.late else "fails" if ending.failed else "dear"
            print(f"judges nobody ({why}): {case.group}/{case.file}: {case.name}", flush=True)
        with self.lock:
            self.done.append(case)
            if len(self.done) % 25 == 0:
                self.save()

    def save(self):
        self.kept.write_text(json.dumps([asdict(case) for case in self.done]))

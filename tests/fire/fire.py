#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Kills, refuses and breaks every call by which a flow changes the disk, one after the other, and sees that nothing is lost:
fire.py BUILD [--samples N] [--seed N] [--page FILE] [FLOW ...]. Ends with 1 where something is."""
import argparse
import collections
import multiprocessing
import os
import pathlib
import random
import re
import sys
import tempfile
import time

import flows
import judge
import power
from scene import Scene

ERRORS = ("ENOSPC", "EIO", "EACCES", "EDQUOT")
LONG_AGO = 1_000_000_000  # before the machine was started again
MEMORY = "/dev/shm" if os.path.isdir("/dev/shm") else None


def points_of(scene):
    """(number of the call, fault); and ("power", number of the state)."""
    for call in scene.recorded.calls:
        for fault in ("kill", *ERRORS, *(("torn", "short") if call.kind == "write" else ())):
            yield call.number, fault


class Worker:
    """One flow on a home of its own."""

    def __init__(self, flow, build, folder):
        self.scene = Scene(flow, build, folder)

    def power_states(self, draw):
        scene = self.scene
        scene.put(scene.old)
        disk = power.Disk(scene.home)
        recorded = scene.run(keep_bytes=True)
        return list(power.states(disk, recorded.calls, draw))

    def under_fault(self, number, fault):
        """None where the call did not come this time, or what was lost."""
        scene = self.scene
        scene.put(scene.old)
        ended = scene.run(fault, number)
        return judge.losses_of(scene, ended) if ended.was_met() else None

    def without_power(self, files):
        self.scene.put(files, LONG_AGO)
        return judge.losses_without_power(self.scene, files)


def drawn(points, share, chance):
    points = list(points)
    if share is None or len(points) <= share:
        return points
    return [points[number] for number in sorted(chance.sample(range(len(points)), share))]


def shares(share):
    """A third of the samples of a flow are of lost power."""
    return (None, None) if share is None else (share - share // 3, share // 3)


def fire_at(flow, build, share, seed, part, parts):
    """One part of the points of a flow: what was done how often, and what was lost."""
    counts, losses = collections.Counter(), []
    chance = random.Random(f"{seed} {flow.name}")
    with tempfile.TemporaryDirectory(prefix="velmora-fire-", dir=MEMORY) as folder:
        worker = Worker(flow, build, folder)
        counts["calls"] = len(worker.scene.recorded.calls)
        faults, powers = shares(share)
        for number, fault in drawn(points_of(worker.scene), faults, chance)[part::parts]:
            found = worker.under_fault(number, fault)
            counts["points"] += found is not None
            kind = worker.scene.recorded.calls[number - 1]
            losses += [(f"{fault} at call {number}, {kind.kind} of {os.path.basename(kind.path)}", loss)
                       for loss in found or ()]
        states = worker.power_states(lambda orders: drawn(orders, powers, chance))
        for number in range(len(states))[part::parts]:
            found = worker.without_power(states[number])
            counts["power"] += 1
            losses += [(f"power lost, state {number} of {len(states)}", loss) for loss in found]
    return counts, losses


def fire_part(arguments):
    return fire_at(*arguments)


def table(rows):
    """As the page shows it."""
    lines = ["| flow | calls | kills and faults | states without power | minutes | losses |",
             "|---|---|---|---|---|---|"]
    total = [sum(column) for column in zip(*rows.values())]
    for name, row in [*rows.items(), (f"all {len(rows)}", total)]:
        lines.append("| {} | {} | {} | {} | {:.1f} | {} |".format(name, *row))
    return "\n".join(lines) + "\n"


def put_table(page, rows):
    """In the place of the one that the page has."""
    path = pathlib.Path(page)
    text = re.sub(r"(?m)^\| flow \|.*\n(?:\|.*\n)*", lambda _: table(rows), path.read_text())
    path.write_text(text)


def missing(build):
    """The first of what is needed and not there; nothing otherwise."""
    programs = [pathlib.Path(build, "tests/fire", name) for name in ("libfire.so", "fire_flow", "fire_window")]
    return next((path for path in programs if not path.exists()), None)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build")
    parser.add_argument("--samples", type=int, help="so many points evenly drawn, in place of all")
    parser.add_argument("--seed", default="1")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--page", help="the table goes into this page, too")
    parser.add_argument("flows", nargs="*", choices=[[], *flows.BY_NAME], metavar="FLOW")
    given = parser.parse_intermixed_args()
    if lacks := missing(given.build):
        print(f"skipped: {lacks} is not built")
        sys.exit(77)
    chosen = [flows.BY_NAME[name] for name in given.flows] or flows.ALL
    share = given.samples and given.samples // len(chosen)
    rows = {}
    with multiprocessing.Pool(given.jobs) as pool:
        for flow in chosen:
            began = time.monotonic()
            parts = [(flow, given.build, share, given.seed, part, given.jobs) for part in range(given.jobs)]
            results = pool.map(fire_part, parts)
            counts = sum((result[0] for result in results), collections.Counter())
            lost = [loss for result in results for loss in result[1]]
            for place, loss in lost:
                print(f"LOST: {flow.name}: {place}: {loss}")
            rows[flow.name] = (counts["calls"] // given.jobs, counts["points"], counts["power"],
                               (time.monotonic() - began) / 60, len(lost))
            print("{}: {} calls, {} points, {} states without power, {:.1f} minutes, {} losses".format(
                flow.name, *rows[flow.name]), flush=True)
    print(table(rows), end="")
    if given.page:
        put_table(given.page, rows)
    sys.exit(any(row[-1] for row in rows.values()))


if __name__ == "__main__":
    main()

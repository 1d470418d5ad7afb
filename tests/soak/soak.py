#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The real program under seeded random input: soak.py BUILD [--asan BUILD] [MINUTES] [SEED]. Runs of at most a quarter of an
hour, each with a seed of its own; every third one on the build with sanitizers, where there is one. Ends with 1 where something
is wrong.

It looks for a crash, a sanitizer's word, an end that is none of the program's own, a window that answers nothing for two
seconds, a processor that is busy at rest, memory, threads or descriptors that grow, a list that is not kept as it shows, and
settings that a start finds otherwise than the end left them."""
import argparse
import pathlib
import re
import subprocess
import sys
import time
import traceback

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "e2e"))

from fence import UNKNOWN  # noqa: E402
from judge import SETTLED_AFTER, Fault, Judge  # noqa: E402
from session import FENCE, Session  # noqa: E402

RUN = 15  # minutes
LAST_MINUTE = 60


class Outcome:
    def __init__(self, session, fault):
        self.fault, self.actions = fault, session.done
        self.summary = (f"{session.done} actions, {session.ends} ends of its own, {session.rests} rests, "
                        f"longest answer {session.longest:.2f} s")


def one_run(build, tools, seed, sanitized, numbers, seconds, log_path):
    session = Session()
    fault = None
    with open(log_path, "w", encoding="utf-8", errors="backslashreplace") as log:
        try:
            session.prepare(build, tools, seed, sanitized, log)
            session.run_actions(numbers, seconds)
        except Fault as found:
            fault = str(found)
        except Exception:  # pylint: disable=broad-except
            fault = traceback.format_exc()
        finally:
            if fault:
                session.note(f"FAULT: {fault}")
                keep_picture(session, log_path.with_suffix(".png"))
            session.doCleanups()
    return Outcome(session, fault)


def keep_picture(session, path):
    try:
        session.desk.screenshot(path)
    except Exception as error:  # pylint: disable=broad-except
        print(f"No picture: {error}")


def cut_down(build, tools, seed, sanitized, log_path):
    """The last minute of a run that failed, from its first action on a desk of its own."""
    acted = [(float(moment), int(number)) for moment, number in
             re.findall(r"^ *(\d+\.\d) (\d+) ", log_path.read_text(errors="replace"), re.MULTILINE)]
    if not acted:
        return
    numbers = [number for moment, number in acted if moment > acted[-1][0] - LAST_MINUTE]
    path = log_path.with_name(f"{log_path.stem} again.log")
    again = one_run(build, tools, seed, sanitized, range(numbers[0], numbers[-1] + 1), float("inf"), path)
    print(f"  its last minute alone, actions {numbers[0]} to {numbers[-1]}: {'fails, too' if again.fault else 'passes'}; {path}")


def parsed():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("minutes", nargs="?", type=float, default=15)
    parser.add_argument("seed", nargs="?", type=int, default=1)
    parser.add_argument("--asan", type=pathlib.Path, help="a build with sanitizers")
    parser.add_argument("--actions", type=int, help="so many, however long they take")
    parser.add_argument("--first", type=int, default=0, help="the action to begin with")
    parser.add_argument("--settled", type=float, default=SETTLED_AFTER, help="the seconds after which nothing may grow any more")
    parser.add_argument("--logs", default="soak-logs", type=pathlib.Path)
    return parser.parse_intermixed_args()


def soak(arguments):
    failed = 0
    Judge.settled_after = arguments.settled
    end = time.monotonic() + 60 * arguments.minutes
    number = 0
    arguments.logs.mkdir(parents=True, exist_ok=True)
    while number == 0 or time.monotonic() < end - 5 and not arguments.actions:
        seed, sanitized = arguments.seed + number, bool(arguments.asan) and number % 3 == 2
        build = arguments.asan if sanitized else arguments.build
        log_path = arguments.logs / f"seed {seed}.log"
        numbers = range(arguments.first, arguments.first + (arguments.actions or sys.maxsize))
        seconds = float("inf") if arguments.actions else min(60 * RUN, end - time.monotonic())
        outcome = one_run(build, arguments.build, seed, sanitized, numbers, seconds, log_path)
        print(f"seed {seed}{', with sanitizers' if sanitized else ''}: {outcome.summary}", flush=True)
        if outcome.fault:
            failed += 1
            print(f"  FAULT: {outcome.fault}\n  {log_path}", flush=True)
            cut_down(build, arguments.build, seed, sanitized, log_path)
        number += 1
    print(f"{number} runs, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    if subprocess.run([sys.executable, FENCE, "/tmp", "/bin/true"]).returncode:
        print("skipped: the soak, since the kernel has no fence for a program that may go anywhere")
        sys.exit(UNKNOWN)
    sys.exit(soak(parsed()))

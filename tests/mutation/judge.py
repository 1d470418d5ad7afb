# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the cases that reach a mutant, cheapest first, until one fails. Before them those that killed its neighbours, and
those of the file of tests that has its source's name. A failure has to repeat, and a slow case to pass without the mutant: a loaded machine kills nobody."""
import pathlib
import re
from collections import Counter

slow = 1.0 # seconds
chunks = (1, 4, 16)
longest = 64


def limits(cases):
    """Seconds, and the processor's seconds."""
    return 10 * sum(case.seconds for case in cases) + 15, 10 * sum(case.cost for case in cases) + 5


class Judge:
    def __init__(self, cases, effort):
        self.cases, self.runner, self.effort, self.killers = cases, cases.runner, effort, {}

    def order(self, mutant):
        cases = [case for case in self.cases.by_mutant.get(mutant.number, []) if case.well]
        before = [name for name, _ in self.killers.get(mutant.file, Counter()).most_common(3)]
        namesake = pathlib.Path(mutant.file).stem + "_test.cpp"
        first = [case for case in cases if case.name in before and case.cost < 2]
        own = [case for case in cases if case.file == namesake and case not in first]
        return list(self.affordable(first + own + [case for case in cases if case not in first + own]))

    def affordable(self, cases):
        spent = 0.0
        for case in cases:
            if spent < self.effort:
                yield case
            spent += case.cost

    def portions(self, cases):
        """Few cases at first, then more in a process: a process costs as much as several cases."""
        sizes = iter(chunks)
        while cases:
            size = next(sizes, longest)
            of_one = [case for case in cases[:size] if case.group == cases[0].group and case.cost < 1]
            portion = of_one or cases[:1]
            cases = [case for case in cases if case not in portion]
            yield portion

    def verdict(self, mutant):
        """("killed", by whom), ("survived", of how many) or ("unreached", "")."""
        order = self.order(mutant)
        for portion in self.portions(order):
            killer = self.killer(mutant, portion)
            if killer:
                self.killers.setdefault(mutant.file, Counter())[killer.name] += 1
                return "killed", f"{killer.group}/{killer.file}: {killer.name}"
        all_of_them = len(self.cases.by_mutant.get(mutant.number, []))
        return ("survived", f"{len(order)} of {all_of_them} cases") if order else ("unreached", "")

    def killer(self, mutant, portion):
        ending = self.runner.run(portion, *limits(portion), mutant.number)
        if not ending.failed:
            return None
        if len(portion) == 1 and ending.late:
            return portion[0] if self.passes_without(portion[0]) else None
        told = re.findall(r"^TEST CASE:  (.*)$", ending.said, re.M) # those before the last only had something to say
        for case in sorted(portion, key=lambda case: not told or case.name != told[-1]):
            if self.runner.run([case], *limits([case]), mutant.number).failed and self.passes_without(case):
                return case
        return None

    def passes_without(self, case):
        if case.seconds < slow or not self.runner.run([case], *limits([case])).failed:
            return True
        print(f"judges nobody any more: {case.group}/{case.file}: {case.name}", flush=True)
        case.well = False
        return False

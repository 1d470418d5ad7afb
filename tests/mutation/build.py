# SPDX-License-Identifier: GPL-3.0-or-later
"""One build that holds all mutants: changed copies of the sources, compiled as the dev preset compiles them but for -O1,
in the places of their objects. Everything else is taken from build/dev."""
import re
import shutil
import subprocess
from concurrent.futures import ThreadPoolExecutor

groups = ("rules", "window", "backend")
asked = "::mutation::mutant({})"


def flat(text):
    """On one line, for the copy that stands beside the original: the compiler's line numbers stay the source's."""
    return re.sub(rb"\s*\n\s*", b" ", re.sub(rb"//[^\n]*", b"", text))


class Rendering:
    """A source with its mutants in it. What cannot stand inside another's change is lost."""

    def __init__(self, text, mutants):
        self.text, self.kept = text, set()
        self.result = self.between(0, len(text), sorted(mutants, key=lambda m: (m.begin, -m.end)))

    def between(self, begin, end, mutants):
        out, at = [], begin
        while mutants:
            mutant = mutants.pop(0)
            if mutant.begin < at:
                continue
            inner = [other for other in mutants if other.begin < mutant.end or (other.begin, other.end) == (mutant.begin, mutant.end)]
            mutants = [other for other in mutants if other not in inner]
            out += [self.text[at:mutant.begin], self.changed(mutant, inner)]
            at = mutant.end
            self.kept.add(mutant.number)
        return b"".join([*out, self.text[at:end]])

    def changed(self, mutant, inner):
        out = []
        for piece in mutant.pieces:
            if isinstance(piece, str):
                out.append(re.sub(r"\bM\b", asked.format(mutant.number), piece).encode())
                continue
            begin, end, whole = piece
            within = [other for other in inner if begin <= other.begin and other.end <= end]
            out.append(self.between(begin, end, within) if whole else flat(self.text[begin:end]))
        return b"".join(out)


class Build:
    def __init__(self, root, place, jobs):
        self.root, self.place, self.jobs = root, place, jobs
        self.dev = root / "build/dev"
        targets = [f"{group}_tests" for group in groups]
        said = subprocess.run(["ninja", "-C", self.dev, "-t", "commands", *targets], capture_output=True, text=True, check=True)
        self.commands = said.stdout.splitlines()
        self.objects = {}

    def compilation(self, source):
        ending = f" -c {self.root / source}"
        return next(line for line in self.commands if line.endswith(ending))

    def compile(self, source, mutants):
        """Returns the numbers that are in the object. What the compiler refuses is taken out, and tried without."""
        command = self.compilation(source)
        object_name = re.search(r" -o (\S+)", command)[1]
        copy, out = self.place / "tree" / source, self.place / "objects" / object_name
        for path in (copy, out):
            path.parent.mkdir(parents=True, exist_ok=True)
        command = re.sub(r"-MD -MT \S+ -MF \S+ -o \S+ -c \S+", "", command)
        command = re.sub(r" -(O2|g|Werror|W\w[\w-]*)(?= )", "", command)
        command += (f" -O1 -w -Wno-narrowing -iquote {(self.root / source).parent}"
                    f" -include {self.root}/tests/mutation/mutant.h -o {out} -c {copy}")
        text = (self.root / source).read_bytes()
        for attempt in range(6):
            rendering = Rendering(text, mutants)
            copy.write_bytes(rendering.result)
            said = subprocess.run(command, shell=True, cwd=self.dev, capture_output=True, text=True)
            if said.returncode == 0:
                self.objects[object_name] = out
                return rendering.kept
            refused = {int(line) for line in re.findall(rf"{re.escape(str(copy))}:(\d+):\d+: error", said.stderr)}
            fewer = [m for m in mutants if not self.lines(text, m) & refused]
            mutants = fewer if len(fewer) < len(mutants) and attempt < 5 else []
        print(f"{source} cannot be compiled: {said.stderr[:2000]}", flush=True)
        return set()

    def lines(self, text, mutant):
        first = text.count(b"\n", 0, mutant.begin) + 1
        return set(range(first, first + text.count(b"\n", mutant.begin, mutant.end) + 1))

    def make(self, mutants):
        """Returns the numbers of the mutants that the build holds."""
        shutil.rmtree(self.place / "objects", ignore_errors=True)
        by_file = {}
        for mutant in mutants:
            by_file.setdefault(mutant.file, []).append(mutant)
        with ThreadPoolExecutor(self.jobs) as workers:
            done = list(workers.map(lambda item: self.compile(*item), by_file.items()))
        self.link()
        return set().union(*done)

    def link(self):
        choice = self.place / "objects/mutant.o"
        subprocess.run(["c++", "-std=c++20", "-O1", "-I", self.root, "-c", self.root / "tests/mutation/mutant.cpp", "-o", choice],
                       check=True)
        moved = {}
        for line in self.commands:
            made = re.search(r"ar qc (\S+) ", line)
            if made and any(name in line for name in self.objects):
                moved[made[1]] = self.place / "lib" / made[1]
                self.run(line, {**self.objects, **moved})
        for group in groups:
            target = f"tests/{group}_tests"
            line = next(line for line in self.commands if f"-o {target} " in line)
            moved[target] = self.place / target
            self.run(line.replace(f"-o {target} ", f"-o {target} {choice} "), moved)

    def run(self, line, moved):
        for old, new in moved.items():
            new.parent.mkdir(parents=True, exist_ok=True)
            line = re.sub(rf"(?<=\s){re.escape(old)}(?=\s)", str(new), line)
        subprocess.run(line, shell=True, cwd=self.dev, check=True)

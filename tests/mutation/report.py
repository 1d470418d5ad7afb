# SPDX-License-Identifier: GPL-3.0-or-later
"""What became of each mutant, written down at once, and the figures by folder. Those that do nothing else than the
original stand in equivalent.tsv, by their file, line of text and change, each with its reason."""
import pathlib
import threading
from collections import Counter

here = pathlib.Path(__file__).resolve().parent
columns = "number file line kind change text verdict by seconds".split()


def rows(path):
    lines = path.read_text().splitlines() if path.exists() else []
    return [line.split("\t") for line in lines if line and not line.startswith("#")]


def told_apart(row):
    return row["file"], row["kind"], row["change"], row["text"]


def equivalent():
    return {tuple(row[:4]) for row in rows(here / "equivalent.tsv")}


class Results:
    def __init__(self, root, path, state, again):
        self.root, self.path, self.lock = root, path, threading.Lock()
        same = path.exists() and path.read_text().splitlines()[:1] == [f"# {state}"]
        before = [dict(zip(columns, row)) for row in rows(path)] if same else []
        left = [row for row in before if row["verdict"] != "killed" and told_apart(row) not in equivalent()]
        self.known = {int(row["number"]): row for row in before if not (again and row in left)}
        path.write_text(f"# {state}\n" + "".join(self.line(row) for row in self.known.values()))

    def line(self, row):
        return "\t".join(str(row[column]) for column in columns) + "\n"

    def has(self, mutant):
        return mutant.number in self.known

    def add(self, mutant, verdict, by, seconds):
        text = (self.root / mutant.file).read_text()
        number = text.encode()[:mutant.begin].count(b"\n")
        row = dict(number=mutant.number, file=mutant.file, line=number + 1, kind=mutant.kind, change=mutant.change,
                   text=" ".join(text.splitlines()[number].split()), verdict=verdict, by=by, seconds=round(seconds, 1))
        with self.lock:
            self.known[mutant.number] = row
            with self.path.open("a") as file:
                file.write(self.line(row))
            if verdict != "killed":
                print(f"{verdict}: {mutant.file}:{row['line']}: {mutant.kind} {mutant.change}: {row['text']}", flush=True)

    def summary(self, options):
        same = equivalent()
        folders = {}
        for row in self.known.values():
            verdict = "equivalent" if row["verdict"] != "killed" and told_apart(row) in same else row["verdict"]
            folder = str(pathlib.Path(row["file"]).parent).replace(".", "program.cpp")
            for name in (folder, "all"):
                folders.setdefault(name, Counter())[verdict] += 1
        print(f"\nseed {options.seed}\n| folder | mutants | killed | equivalent | survived | reached by none | killed of the rest |")
        print("|---|---|---|---|---|---|---|")
        for folder in sorted(folders, key=lambda name: (name == "all", name)):
            seen = folders[folder]
            rest = sum(seen.values()) - seen["equivalent"]
            print(f"| {folder} | {sum(seen.values())} | {seen['killed']} | {seen['equivalent']} | {seen['survived']} | "
                  f"{seen['unreached']} | {100 * seen['killed'] / max(rest, 1):.1f} % |")

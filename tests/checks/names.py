#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails where two types of the program have one name, nested ones as well: whoever reads or searches for it would have to
know which of them is meant. An alias may stand in several places where it stands for the same type. `names.py --self` holds
the judge against sources that it has to refuse."""
import collections
import pathlib
import re
import sys

OUTSIDE = {"build", "tests", "bench", "packaging", ".git"}
# What each class calls that it keeps out of its header; a window's state and that of what is heard.
ALLOWED = {"Parts", "State"}
TYPE = re.compile(r"^[ \t]*(?:template <.*>\s*)?(?:struct|class|union|enum(?: class| struct)?) (?:\w+\(.*?\) )?((?:\w+::)*)(\w+)"
                  r"(?: final)?(?:\s*:[^;{]*)?\s*\{", re.M)
ALIAS = re.compile(r"^[ \t]*using (\w+) =\s*([^;]+);", re.M)


def types_in(text):
    """Each type's name and what stands for it: its own place in the text, or the type that it is another name for."""
    for found in TYPE.finditer(text):
        yield found[2], f"line {text.count(chr(10), 0, found.start(2)) + 1}"
    for found in ALIAS.finditer(text):
        meant = re.sub(r"^typename ", "", " ".join(found[2].split()))
        yield found[1], meant


def same(name, meanings):
    """Whether all are aliases of one type: spelt alike, or as a longer name of the one."""
    types = {meaning for _, meaning in meanings if meaning.startswith("line ")}
    aliases = {re.sub(r".*\bClock\b|std::chrono::steady_clock", "clock", meaning) for _, meaning in meanings
               if not meaning.startswith("line ") and not meaning.endswith(f"::{name}")}
    return len([1 for _, meaning in meanings if meaning in types]) + len(aliases) <= 1


def twice(sources):
    named = collections.defaultdict(list)
    for path, text in sources:
        for name, meaning in types_in(text):
            named[name].append((path, meaning))
    return {name: meanings for name, meanings in named.items() if name not in ALLOWED and not same(name, meanings)}


def check_self():
    refused = [("struct One {};", "class One final : public Two {"), ("struct Outer {\n    enum class One { a };", "struct One {"),
               ("using One = std::vector<int>;", "    using One = std::vector<long>;"), ("struct One\n{", "using One = int;"),
               ("struct Outer::One {", "struct Other::One {")]
    taken = [("struct One {};", "struct Two;\nstruct One;"), ("using One = int;", "using One = int;"),
             ("struct Outer::Parts {", "struct Other::Parts {"), ("enum class One { a };", "using One = Outer::One;"),
             ("using Time = Clock::time_point;", "using Time = std::chrono::steady_clock::time_point;")]
    wrong = [pair for pair in refused if not twice(zip("ab", pair))] + [pair for pair in taken if twice(zip("ab", pair))]
    print(*(f"Judged wrongly: {pair}" for pair in wrong), sep="\n")
    return bool(wrong)


def check(root):
    files = [path for path in sorted(root.rglob("*")) if path.suffix in (".h", ".cpp")
             and path.relative_to(root).parts[0] not in OUTSIDE]
    found = twice((path.relative_to(root), path.read_text()) for path in files)
    for name, meanings in sorted(found.items()):
        print(f"{name} is more than one type:", *(f"  {path}: {meaning}" for path, meaning in meanings), sep="\n")
    if not found:
        print(f"No two types have one name in {len(files)} files.")
    return bool(found)


sys.exit(check_self() if sys.argv[1] == "--self" else check(pathlib.Path(sys.argv[1])))

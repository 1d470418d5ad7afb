#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What makes an attacker's work harder, in the files that people run: hardening.py FILE|FOLDER ...

A folder stands for the program and the modules in it. `hardening.py --self` has a compiler make files that lack one thing
each, and wants each to be refused. Ends with 77 where there is nothing to look at.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
LANDING = b"\xf3\x0f\x1e\xfa"  # where a jump may land (endbr64)
OF_THE_COMPILER = 2  # such places in what every program begins and ends with


def readelf(*arguments):
    return subprocess.run(["readelf", "-W", *arguments], check=True, capture_output=True, text=True).stdout


def is_elf(path):
    with open(path, "rb") as file:
        return file.read(4) == b"\x7fELF"


def is_program(path):
    return "INTERP" in readelf("-l", path)


def landings(path):
    _, offset, size = next(([int(field, 16) for field in fields.split()[:3]] for fields in
                            re.findall(r" \.text\s+PROGBITS\s+(.*)", readelf("-S", path))), (0, 0, 0))
    return path.read_bytes()[offset:offset + size].count(LANDING)


def missing(path):
    """What the file lacks, in words."""
    head, segments, dynamic, symbols = (readelf(option, path) for option in ("-h", "-l", "-d", "--dyn-syms"))
    lacks = []
    if "Type:" not in head or not re.search(r"Type:\s+DYN", head):
        lacks.append("a place in memory that nobody knows before (PIE)")
    if "GNU_RELRO" not in segments:
        lacks.append("tables of addresses that are read-only after the start (RELRO)")
    if not re.search(r"BIND_NOW|Flags:.*\bNOW\b", dynamic):
        lacks.append("all of these tables (-z now)")
    if not re.search(r"GNU_STACK\s.*\sRW\s", segments):
        lacks.append("a stack that is not executed")
    if re.search(r"^\s+LOAD\s.*\sRWE\s", segments, re.M):
        lacks.append("memory that is either written or executed")
    if "__stack_chk_fail" not in symbols:
        lacks.append("guards of the stack (-fstack-protector-strong)")
    if is_program(path) and not re.search(r"__(mem|str|read|pread|recv|fprintf|printf|vsnprintf|snprintf|readlink)\w*_chk\b", symbols):
        lacks.append("calls that know the size of what they fill (_FORTIFY_SOURCE)")
    if "X86-64" in head and landings(path) <= OF_THE_COMPILER:
        lacks.append("marks of where jumps may lead (-fcf-protection)")
    if "TEXTREL" in dynamic:
        lacks.append("code that the loader need not write (TEXTREL)")
    for paths in re.findall(r"\((?:RPATH|RUNPATH)\).*\[(.*)\]", dynamic):
        if not all(part.startswith("$ORIGIN") for part in paths.split(":")):
            lacks.append(f"libraries from its own folder or the system's alone (it looks in {paths})")
    return lacks


def files_in(place):
    place = pathlib.Path(place)
    if not place.is_dir():
        return [place] if place.is_file() else []
    found = [file for pattern in ("velmora", "velmora-*.so") for file in place.rglob(pattern)]
    return sorted(file for file in found if file.is_file() and not file.is_symlink() and is_elf(file))


def check(places):
    files = [file for place in places for file in files_in(place)]
    if not files:
        print("skipped: nothing of what people run is built here:", *places)
        return SKIPPED
    status = 0
    for file in files:
        lacks = missing(file)
        print(f"{file}: {'holds' if not lacks else 'lacks'}", *(f"  {lack}" for lack in lacks), sep="\n")
        status |= bool(lacks)
    return status


SOURCE = """
#include <cstdio>
#include <cstring>
#include <cstdlib>
int main(int count, char** words)
{
    char buffer[100];
    std::strcpy(buffer, words[count - 1]);
    std::printf(buffer, std::rand());
}
"""

HARD = {"pie": ["-fPIE", "-pie"], "relro": ["-Wl,-z,relro"], "now": ["-Wl,-z,now"], "stack": ["-Wl,-z,noexecstack"],
        "guards": ["-fstack-protector-strong"], "fortify": ["-O2", "-U_FORTIFY_SOURCE", "-D_FORTIFY_SOURCE=2"],
        "jumps": ["-fcf-protection"]}
SOFT = {"pie": ["-fno-pie", "-no-pie"], "relro": ["-Wl,-z,norelro"], "now": ["-Wl,-z,lazy"], "stack": ["-Wl,-z,execstack"],
        "guards": ["-fno-stack-protector"], "fortify": ["-O2", "-U_FORTIFY_SOURCE"], "jumps": ["-fcf-protection=none"]}
WORDS = {"pie": "PIE", "relro": "RELRO", "now": "-z now", "stack": "executed", "guards": "stack-protector",
         "fortify": "FORTIFY", "jumps": "cf-protection"}


def made(folder, without):
    """A program that lacks that one thing."""
    program = pathlib.Path(folder) / f"without-{without}"
    options = [option for what in HARD for option in (SOFT if what == without else HARD)[what]]
    subprocess.run(["c++", "-w", *options, "-x", "c++", "-", "-o", str(program)], input=SOURCE, text=True, check=True)
    return program


def check_self():
    if not shutil.which("c++"):
        print("skipped: no compiler is here")
        return SKIPPED
    status = 0
    with tempfile.TemporaryDirectory() as folder:
        whole = missing(made(folder, "nothing"))
        for what in HARD:
            said = [lack for lack in missing(made(folder, what)) if lack not in whole]
            if not any(WORDS[what] in lack for lack in said):
                print(f"Not noticed: a program without {what}. Said: {said}")
                status = 1
        if whole:
            print("Refused: a program that has everything:", *whole)
            status = 1
    return status


if shutil.which("readelf") is None:
    print("skipped: readelf is not here")
    sys.exit(SKIPPED)
sys.exit(check_self() if sys.argv[1:] == ["--self"] else check(sys.argv[1:]))

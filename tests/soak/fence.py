#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs a program that may write below a folder and nowhere else: fence.py FOLDER PROGRAM [ARGUMENT ...]. Random input finds its
way into every folder of the computer. Ends with 77 where the kernel has no fence."""
import ctypes
import os
import struct
import sys

CREATE_RULESET, ADD_RULE, RESTRICT_SELF = 444, 445, 446
BENEATH = 1
NO_NEW_PRIVILEGES = 38
UNKNOWN = 77

# Every right by which a file or folder comes, goes or changes. A file that stands may be written, or be cut short; the others are
# of folders.
WRITE, CUT = 1 << 1, 1 << 14
CHANGES = WRITE | sum(1 << bit for bit in range(4, 14)) | CUT

libc = ctypes.CDLL(None, use_errno=True)


def asked(number, *arguments):
    answer = libc.syscall(number, *arguments)
    if answer < 0:
        print(f"The kernel fences nobody in: {os.strerror(ctypes.get_errno())}", file=sys.stderr)
        sys.exit(UNKNOWN)
    return answer


def fence(*folders):
    rights = struct.pack("Q", CHANGES)
    rules = asked(CREATE_RULESET, rights, len(rights), 0)
    for folder in folders:
        place = os.open(folder, os.O_PATH | os.O_CLOEXEC)
        asked(ADD_RULE, rules, BENEATH, struct.pack("=Qi", CHANGES, place), 0)
        os.close(place)
    libc.prctl(NO_NEW_PRIVILEGES, 1, 0, 0, 0)
    asked(RESTRICT_SELF, rules, 0)
    os.close(rules)


if __name__ == "__main__":
    fence(sys.argv[1], "/dev")
    os.execv(sys.argv[2], sys.argv[2:])

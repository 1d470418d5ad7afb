#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Holds README and manual against docs/pictures: each picture that is named is there at twice the size that it is shown in,
each that is there is named, and none is heavy."""
import pathlib
import re
import struct
import sys

root = pathlib.Path(sys.argv[1])
pictures = root / "docs/pictures"
EACH, ALL = 80_000, 1_500_000


def width_of(picture):
    return struct.unpack(">I", picture.read_bytes()[16:20])[0]


named, wrong = set(), []
for page in (root / "README.md", root / "docs/manual.md"):
    for place, width in re.findall(r'<img src="([^"]+)" width="(\d+)" alt="[^"]+">', page.read_text()):
        picture = (page.parent / place).resolve()
        named.add(picture.name)
        if not picture.is_file():
            wrong.append(f"{page.name} names {place}, which is not there.")
        elif width_of(picture) != 2 * int(width):
            wrong.append(f"{page.name} shows {place} {width} wide; it is {width_of(picture)} for twice that.")
sizes = {picture.name: picture.stat().st_size for picture in pictures.glob("*.png")}
wrong += [f"Nothing names docs/pictures/{name}." for name in sorted(sizes.keys() - named)]
wrong += [f"docs/pictures/{name} has {size} bytes, more than {EACH}." for name, size in sizes.items() if size > EACH]
if sum(sizes.values()) > ALL:
    wrong.append(f"docs/pictures has {sum(sizes.values())} bytes, more than {ALL}.")
print("\n".join(wrong) or f"{len(sizes)} pictures, {sum(sizes.values())} bytes.")
sys.exit(bool(wrong))

#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when a handler that a window's header declares is wired to no event."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
events = "Click|DblClick|Change|Timer|MouseDown|MouseUp|DragDrop|OLEDragDrop|KeyDown|KeyUp|Scroll|Progress|Done|Load|" \
         "Activate|Deactivate|Unload|Terminate"
declaration = re.compile(rf"^\s+void (\w+)_({events})\(", re.M)

missing = []
handlers = 0
for header in sorted(root.glob("*/*.h")):
    text = header.read_text()
    window = re.search(r"^class (\w+) final : public Form", text, re.M)
    if not window:
        continue
    sources = "".join(path.read_text() for path in root.glob("*/*.cpp"))
    for control, event in declaration.findall(text):
        handlers += 1
        name = f"{window[1]}::{control}_{event}"
        owner = r"\s" if control == "Form" else rf"\b{control}(\.|->)"
        if not re.search(rf"{owner}{event}\.calls\(\*this,\s*&{name}\)", sources):
            missing.append(f"{header.relative_to(root)}: {name} is wired to no event")
    for control, event in re.findall(rf"\b(\w+)(?:\.|->)({events})\.calls\(\*this,\s*&{window[1]}::(?!\1_\2\b)\w+\)", sources):
        missing.append(f"{window[1]}: {control}.{event} is wired to the handler of another event")

print("\n".join(missing) or f"All {handlers} handlers are wired.")
sys.exit(bool(missing) or handlers < 50)

#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the packages are made of: package.py ROOT names|desktop_entry|metainfo|man_page

Ends with 77 where the program that judges a file is not here.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as xml

root = pathlib.Path(sys.argv[1])
ID = "org.velmora.Velmora"
SKIPPED = 77

ENTRY = f"packaging/{ID}.desktop"
METAINFO = f"packaging/{ID}.metainfo.xml"

JUDGES = {
    "desktop_entry": ["desktop-file-validate", ENTRY],
    "metainfo": ["appstreamcli", "validate", "--no-net", METAINFO],
    "man_page": ["mandoc", "-T", "lint", "-W", "warning", "packaging/velmora.1"],
}


def text(name):
    return (root / name).read_text(encoding="utf-8")


def found(name, pattern):
    """What the only group of the pattern is, wherever it stands in the file."""
    return set(re.findall(pattern, text(name), re.M))


def versions():
    return {
        "CMakeLists.txt": found("CMakeLists.txt", r"^project\(velmora VERSION ([0-9.]+)"),
        "debian/changelog": set(re.findall(r"^velmora \(([0-9.]+)-\d+\)", text("debian/changelog"))),
        "packaging/updates.txt": found("packaging/updates.txt", r"\AVelmora ([0-9.]+)"),
        METAINFO: {xml.fromstring(text(METAINFO)).find("releases/release").get("version")},
    }


def ids():
    return {
        "desktop/appearance.h": found("desktop/appearance.h", r'applicationId = "(\S+)"'),
        "packaging/CMakeLists.txt": found("packaging/CMakeLists.txt", r"^set\(id (\S+)\)"),
        ENTRY: found(ENTRY, r"^Icon=(\S+)"),
        METAINFO: found(METAINFO, r"<id>(\S+)</id>") | found(METAINFO, r"<launchable .*>(\S+)\.desktop</launchable>"),
    }


def bus_names():
    return {
        "desktop/mpris_remote.cpp": found("desktop/mpris_remote.cpp", r'service = "(org\.mpris\.\S+)"'),
        ENTRY: found(ENTRY, r"^Exec=dbus-send .*--dest=(\S+)"),
        METAINFO: found(METAINFO, r'<dbus type="user">(\S+)</dbus>'),
    }


def needs():
    """The libraries to build with."""
    development = r"(?<![\w-])([a-z0-9][a-z0-9.-]*-dev)(?![\w-])"
    script = re.search(r'packages_build="(.*?)"', text("scripts/packages"), re.S)[1]
    paper = text("docs/building.md").split("For the tests")[0]
    return {
        "scripts/packages": set(re.findall(development, script)),
        "debian/control": found("debian/control", r"^ (\S+-dev),$"),
        "docs/building.md": set(re.findall(development, paper)),
    }


def names():
    """One fact, the same at every place that has to have it."""
    status = 0
    if len({frozenset(stated) for stated in needs().values()}) != 1:
        status = 1
        print("Not the same libraries to build with everywhere:", *(f"  {place}: {sorted(said)}" for place, said in needs().items()), sep="\n")
    for what, stated in (("version", versions()), ("id", ids()), ("name on the bus", bus_names())):
        if len(set().union(*stated.values())) != 1 or not all(stated.values()):
            status = 1
            print(f"Not the same {what} everywhere:", *(f"  {place}: {said or 'none'}" for place, said in stated.items()), sep="\n")
    # The types of files are nobody's judge's: that it is well formed and names the suffix has to do.
    kinds = xml.fromstring(text(f"packaging/{ID}.mime.xml"))
    if [glob.get("pattern") for glob in kinds.findall(".//{*}glob")] != ["*.vlp"]:
        status = 1
        print("The type of lists is not that of *.vlp.")
    return status


def judged(command):
    if not shutil.which(command[0]):
        print(f"skipped: {command[0]} is not here")
        return SKIPPED
    return subprocess.run(command, cwd=root).returncode


what = sys.argv[2]
sys.exit(names() if what == "names" else judged(JUDGES[what]))

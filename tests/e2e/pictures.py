#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Renews the pictures of the manual and the README: takes the tour at twice the size, and keeps its pictures small.

    tests/e2e/pictures.py BUILD [docs/pictures]

The tour's home is a folder of a person called Anna, since paths are read in the pictures. It exists for this process alone.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

import tour
from desk import Desk

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SIZE_LIMIT = 80_000
HOMES = pathlib.Path("/home" if not ROOT.is_relative_to("/home") else "/srv")


class Large(tour.Tour):
    def setUp(self):
        home = HOMES / "anna"
        self.desk = self.enterContext(Desk(size="2560x1800", scale=2, home=home))
        self.app = self.program(self.desk, self.build)
        self.start()


def settle_apart():
    """Builds, and starts this program anew where other folders of homes can be put over the machine's."""
    if "VELMORA_APART" in os.environ:
        subprocess.run(["mount", "-t", "tmpfs", "tmpfs", str(HOMES)], check=True)
        return
    subprocess.run(["cmake", "--build", sys.argv[1], "--target", "all", "file_source"], check=True)
    os.environ["VELMORA_APART"] = "1"
    os.execvp("unshare", ["unshare", "--mount", "--map-root-user", sys.executable, *sys.argv])


def pressed(source, target):
    """A picture of few colours, as small as the programs that are here make it."""
    if shutil.which("pngquant"):
        subprocess.run(["pngquant", "--speed", "1", "--strip", "--force", "--output", str(target), "128", str(source)], check=True)
    else:
        subprocess.run(["convert", str(source), "-strip", "-colors", "128", f"PNG8:{target}"], check=True)
    if shutil.which("optipng"):
        subprocess.run(["optipng", "-quiet", "-o2", str(target)], check=True)


def renew(taken, pictures):
    pictures.mkdir(parents=True, exist_ok=True)
    for old in pictures.glob("*.png"):
        old.unlink()
    for picture in sorted(taken.glob("*.png")):
        pressed(picture, pictures / picture.name)
    sizes = {picture.name: picture.stat().st_size for picture in sorted(pictures.glob("*.png"))}
    for name, size in sizes.items():
        print(f"{size:7} {name}" + (", which is too much" if size > SIZE_LIMIT else ""))
    return any(size > SIZE_LIMIT for size in sizes.values())


def main():
    settle_apart()
    walk = Large()
    with tempfile.TemporaryDirectory() as folder:
        try:
            walk.prepare(sys.argv[1], pathlib.Path(folder))
            if tour.walk(walk):
                return 1
        finally:
            walk.doCleanups()
        return renew(pathlib.Path(folder), pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else ROOT / "docs/pictures")


if __name__ == "__main__":
    sys.exit(main())

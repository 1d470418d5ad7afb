# SPDX-License-Identifier: GPL-3.0-or-later
"""A clean Debian 12 for the packages to be tried in: a layer that is thrown away, over one that is made once.

Only root can have one, and only in a mount namespace of its own (unshare --mount): what is mounted goes with it.
"""
import hashlib
import os
import pathlib
import shutil
import stat
import subprocess

# A system that is thrown away need not reach the disk.
QUICKLY = ("-y", "--no-install-recommends", "-o", "Dpkg::Options::=--force-unsafe-io")

# Shared with the machine: devices, processes, and the folder where display, bus and sound server meet.
SHARED = ("dev", "proc", "tmp")

# Where the package tools keep their books.
BOOKS = ("var/lib/dpkg", "var/lib/apt", "var/cache", "var/log")


def run(*command, **options):
    return subprocess.run([str(part) for part in command], check=True, **options)


def sources():
    """Where this machine's own Debian comes from."""
    listed = subprocess.run(["apt-get", "indextargets", "--format", "$(REPO_URI) $(RELEASE) $(COMPONENT)",
                             "Created-By: Packages"], check=True, capture_output=True, text=True).stdout
    return sorted({line for line in listed.splitlines() if line.split()[1].startswith("bookworm")})


def make_base(base):
    if base.exists():
        return
    half = base.with_name(base.name + ".part")
    shutil.rmtree(half, ignore_errors=True)
    mirror = next(line.split()[0] for line in sources() if line.split()[1] == "bookworm")
    run("debootstrap", "--variant=minbase", "bookworm", half, mirror, stdout=subprocess.DEVNULL)
    (half / "etc/apt/sources.list").write_text("".join(f"deb {line}\n" for line in sources()))
    run("chroot", half, "apt-get", "update", "-qq")
    half.rename(base)


class CleanSystem:
    def __init__(self, folder):
        self.base, self.layer = folder / "base", folder / f"layer-{os.getpid()}"
        self.root = self.layer / "root"
        make_base(self.base)

    def __enter__(self):
        shutil.rmtree(self.layer, ignore_errors=True)
        for place in (self.layer / "changes", self.layer / "work", self.root):
            place.mkdir(parents=True, exist_ok=True)
        run("mount", "-t", "overlay", "overlay", self.root, "-o",
            f"lowerdir={self.base},upperdir={self.layer}/changes,workdir={self.layer}/work")
        for name in SHARED:
            run("mount", "--bind", f"/{name}", self.root / name)
        return self

    def __exit__(self, *_):
        for name in SHARED:
            run("umount", self.root / name)
        run("umount", self.root)
        shutil.rmtree(self.layer)

    def command(self, *command):
        return ["chroot", str(self.root), *map(str, command)]

    def run(self, *command):
        """What it prints."""
        environment = {**os.environ, "DEBIAN_FRONTEND": "noninteractive", "LC_ALL": "C.UTF-8"}
        return run(*self.command(*command), env=environment, capture_output=True, text=True).stdout

    def install(self, *what):
        return self.run("apt-get", "install", *QUICKLY, *what)

    def satisfy(self, relations):
        return self.run("apt-get", "satisfy", *QUICKLY, relations)

    def picture(self):
        """Every file that is there, and what it holds; but the package tools' books and what is shared."""
        left_out = {str(self.root / name) for name in (*SHARED, *BOOKS)}
        found = {}
        for folder, folders, files in os.walk(self.root):
            folders[:] = [name for name in folders if os.path.join(folder, name) not in left_out]
            for name in folders + files:
                path = pathlib.Path(folder, name)
                found[str(path.relative_to(self.root))] = content(path)
        return found


def content(path):
    mode = path.lstat().st_mode
    if stat.S_ISLNK(mode):
        return os.readlink(path)
    return hashlib.blake2b(path.read_bytes()).hexdigest() if stat.S_ISREG(mode) else mode


def differences(before, after):
    return sorted(path for path in before.keys() | after.keys() if before.get(path) != after.get(path))

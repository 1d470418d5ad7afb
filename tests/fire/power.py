# SPDX-License-Identifier: GPL-3.0-or-later
"""What a disk may hold when the power goes: the recorded calls up to any one of them, and each such time without one of
those that no force had brought to the disk by then, or with two neighbours of them in the other order."""

FOLDER = object()


class Disk:
    """Names, and what they name: a file keeps its number when it is renamed."""

    def __init__(self, home):
        self.home = home
        self.names, self.contents = {}, {}
        for path in home.rglob("*"):
            inode = path.stat().st_ino
            self.names[str(path)] = inode
            self.contents[inode] = FOLDER if path.is_dir() else path.read_bytes()

    def copy(self):
        other = object.__new__(Disk)
        other.home, other.names, other.contents = self.home, dict(self.names), dict(self.contents)
        return other

    def take(self, call):
        getattr(self, call.kind)(call)

    def open(self, call):
        if call.at == 1:
            self.names[call.path] = call.inode
            self.contents.setdefault(call.inode, b"")
        if call.at == 2:
            self.contents[call.inode] = b""

    def write(self, call):
        before = self.contents.get(call.inode, b"").ljust(call.at, b"\0")
        self.contents[call.inode] = before[:call.at] + call.data + before[call.at + len(call.data):]

    def size(self, call):
        self.contents[call.inode] = self.contents.get(call.inode, b"")[:call.at].ljust(call.at, b"\0")

    room = size

    def force(self, call):
        pass

    def folder(self, call):
        self.names[call.path] = call.inode or hash(call.path)
        self.contents[self.names[call.path]] = FOLDER

    def rename(self, call):
        if call.path in self.names:
            self.names[call.second] = self.names.pop(call.path)

    def exchange(self, call):
        if call.path in self.names and call.second in self.names:
            names = self.names
            names[call.path], names[call.second] = names[call.second], names[call.path]

    def link(self, call):
        if call.path in self.names:
            self.names[call.second] = self.names[call.path]

    def remove(self, call):
        self.names.pop(call.path, None)

    def files(self):
        """By their names in the home; without those whose folder is not there."""
        found = {}
        for path, inode in sorted(self.names.items()):
            parent = path.rsplit("/", 1)[0]
            name = path[len(str(self.home)) + 1:]
            if parent == str(self.home) or name.rsplit("/", 1)[0] in found:
                data = self.contents[inode]
                found[name] = None if data is FOLDER else data
        return found


def is_name(call):
    return call.kind not in ("write", "size", "room", "force")


def is_forced(calls, number, end):
    """A force brings what was written to its file, and with it every name that came before."""
    call = calls[number]
    return any(later.kind == "force" and (is_name(call) or later.inode == call.inode)
               for later in calls[number + 1:end])


def orders(calls):
    """What the disk took."""
    for end in range(len(calls) + 1):
        yield calls[:end]
        loose = [number for number in range(end) if calls[number].kind != "force" and not is_forced(calls, number, end)]
        for number in loose:
            yield calls[:number] + calls[number + 1:end]
            if number + 1 in loose:
                yield calls[:number] + [calls[number + 1], calls[number]] + calls[number + 2:end]


def states(disk, calls, draw):
    """Each different one once, of those that `draw` takes of all."""
    calls = [call for call in calls if call.what == "done"]
    known = set()
    for order in draw(list(orders(calls))):
        state = disk.copy()
        for call in order:
            state.take(call)
        files = state.files()
        key = hash(frozenset(files.items()))
        if key not in known:
            known.add(key)
            yield files

# SPDX-License-Identifier: GPL-3.0-or-later
"""Whether anything was lost: right after a fault, and after the next use of the same flow."""
import os

from scene import NOTES


def shown(data):
    return "no file" if data is None else f"{len(data)} bytes"


def files_between(scene, files):
    """Each file is the old one or the new one."""
    old, new, again = scene.seen(scene.old), scene.seen(scene.new), scene.seen(scene.again)
    seen = scene.seen(files)
    for name in sorted({*seen, *old, *new}):
        wanted = [side.get(name) for side in (old, new, again)]
        if seen.get(name) not in wanted:
            yield f"{name}: {shown(seen.get(name))}, neither the old ({shown(wanted[0])}) nor the new ({shown(wanted[1])})"


def is_new(scene, files):
    return scene.seen(files) in (scene.seen(scene.new), scene.seen(scene.again))


def is_of_user(path):
    """A folder, and the program's own book, cost nobody a file."""
    return not os.path.isdir(path) and "/state/parts/" not in path


def telling(scene, ended, files):
    """What did not succeed is said, in the way of its flow, and only then."""
    if scene.was_killed(ended):
        return
    if ended.status != 0:
        yield f"it ended with {ended.status}: {ended.trouble[-3:]}"
    told, said = ended.words("told"), [line for line in ended.trouble if line.startswith("Velmora: ")]
    force_failed = any(call.kind == "force" and call.what == "EIO" and is_of_user(call.path) for call in ended.calls)
    succeeded = is_new(scene, files) and not (force_failed and scene.flow.is_told)
    if scene.flow.is_told and not succeeded and not told:
        yield "the user was told nothing"
    if not scene.flow.is_told and not succeeded and len(said) != 1:
        yield f"{len(said)} lines on standard error: {ended.trouble[:3]}"
    if not scene.flow.is_told and told:
        yield f"the user was told: {told[0]}"
    if len(ended.trouble) > len(said):
        yield f"standard error: {ended.trouble[:3]}"


def next_use(scene, has_notes=True):
    """The same once more, undisturbed: it works, and nothing is left over."""
    ended = scene.run()
    if ended.status != 0 or ended.trouble or ended.words("told"):
        yield f"the next use: status {ended.status}, told {ended.words('told')}, {ended.trouble[:3]}"
    files = scene.snapshot()
    seen = scene.seen(files)
    if not is_new(scene, files):
        new = scene.seen(scene.new)
        yield "after the next use: " + ", ".join(f"{name}: {shown(seen.get(name))} in place of {shown(new.get(name))}"
                                                 for name in sorted({*seen, *new}) if seen.get(name) != new.get(name))
    yield from left_over(scene, files, lambda name: has_notes or was_written(scene, ended, name))


def was_written(scene, ended, part):
    """The part's target, in that use: a part whose note went with the power goes then."""
    target = str(scene.home / part[:-len(".0123456789abcdef.part")])
    return any(call.kind == "open" and call.path.startswith(target) for call in ended.calls)


def left_over(scene, files, must_go):
    """Of the program's own book, which each start begins anew, one empty page."""
    pages = [data for name, data in files.items() if NOTES.match(name)]
    if len(pages) > 1 or any(pages):
        yield f"after the next use the book has {len(pages)} pages: {pages}"
    known = {*scene.seen(scene.old), *scene.seen(scene.new), *scene.seen(scene.again)}
    over = sorted({*(name for name in files if name.endswith(".damaged") or name.endswith(".part") and must_go(name)), *(set(scene.seen(files)) - known)})
    if over:
        yield f"after the next use there is too much: {over}"


def losses_of(scene, ended):
    files = scene.snapshot()
    return [*files_between(scene, files), *telling(scene, ended, files), *next_use(scene)]


def losses_without_power(scene, files):
    return [*files_between(scene, files), *next_use(scene, has_notes=False)]

# SPDX-License-Identifier: GPL-3.0-or-later
"""A private desk for the real program: display, window manager, sound server and home of its own.

Everything is started by this process and ended by its process id. Nothing here waits for a time: it waits for a condition,
with a generous limit.
"""
import array
import contextlib
import ctypes
import os
import pathlib
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time

import dbus

import desktops
from reader import ScreenReader

LIMIT = float(os.environ.get("VELMORA_TEST_LIMIT", "120"))
TWIPS = 15  # to the pixel
TOLD_OF_DEATH = 1  # PR_SET_PDEATHSIG

# What is read just while it comes or goes is not there.
NOT_THERE = (dbus.DBusException, subprocess.CalledProcessError, StopIteration, IndexError)


class Impatient(AssertionError):
    """A condition did not come true within the limit."""


def wait_for(condition, what, limit=LIMIT, pause=0.02):
    """The first true answer of `condition`."""
    end = time.monotonic() + limit
    while True:
        missing = None
        try:
            answer = condition()
            if answer:
                return answer
        except NOT_THERE as error:
            missing = error
        if time.monotonic() > end:
            for desk in Desk.open_desks:
                desk.picture_of_failure()
            accounts = "\n".join(desk.account() for desk in Desk.open_desks)
            raise Impatient(f"{what}: not within {limit:g} s\n{accounts}") from missing
        time.sleep(pause)


def account_of(process):
    """Whether it has ended, and how; or what each of its threads waits for: a number of the kernel's calls, where it knows."""
    name = pathlib.Path(process.args[0]).name
    if process.poll() is not None:
        return f"{name} has ended: {process.returncode}"

    def read(thread, what):
        try:
            return (thread / what).read_text().split(maxsplit=1)[0]
        except (OSError, IndexError):
            return "?"
    threads = pathlib.Path(f"/proc/{process.pid}/task").glob("*")
    return f"{name}: " + ", ".join(" ".join(read(thread, what) for what in ("comm", "wchan", "syscall")) for thread in threads)


def die_with_parent():
    """Also a test that is killed leaves nothing running."""
    ctypes.CDLL(None).prctl(TOLD_OF_DEATH, signal.SIGKILL)


def run(*command, **options):
    """What the command prints. Fails when it does."""
    return subprocess.run(command, check=True, capture_output=True, text=True, **options).stdout


class Desk:
    """Use as a context: everything it started has ended when the context does."""

    open_desks = []

    def __init__(self, size="1280x900", sound=True, manager=True, scale=1, accessible=True, screen_file=False,
                 home=None, portal=False):
        self.desktop = desktops.chosen()
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="velmora-desk-"))
        self.home = pathlib.Path(home or self.folder / "home")
        self.scale = scale
        self.size = size
        self.music = self.home / "Music"
        self.runtime = self.folder / "run"
        self.music.mkdir(parents=True)
        self.runtime.mkdir(mode=0o700)
        self.processes = []
        self.recordings = []
        self.environment = {key: value for key, value in os.environ.items()
                            if not key.startswith(("XDG_", "QT_", "PULSE_", "DBUS_", "WAYLAND"))}
        self.environment.update(
            HOME=str(self.home), XDG_RUNTIME_DIR=str(self.runtime), LC_ALL="C.UTF-8",
            PULSE_RUNTIME_PATH=str(self.runtime / "pulse"), PULSE_STATE_PATH=str(self.runtime / "pulse-state"),
            PULSE_SERVER=f"unix:{self.runtime}/{self.desktop.sound.socket}", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
            **self.desktop.environment)
        self._take_down_sanitizers()
        if not accessible:
            del self.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"]
        self.screen_file = screen_file
        self.sound = self.bus = self.reader = self.hand = None
        Desk.open_desks.append(self)
        try:
            self._choose_services(portal)
            self.desktop.display.open(self, size, manager)
            if scale != 1:
                self.desktop.enlarge(self, scale)
            if sound:
                self.start_sound()
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def spawn(self, *command, **options):
        options.setdefault("stdout", subprocess.DEVNULL)
        options.setdefault("stderr", subprocess.DEVNULL)
        options.setdefault("env", self.environment)
        process = subprocess.Popen(command, start_new_session=True, preexec_fn=die_with_parent, **options)
        self.processes.append(process)
        return process

    def end(self, process, how=signal.SIGTERM):
        if process.poll() is None:
            process.send_signal(signal.SIGCONT)
            process.send_signal(how)
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()

    def close(self):
        if self in Desk.open_desks:
            Desk.open_desks.remove(self)
        for ear_or_hand in filter(None, (self.reader, self.hand)):
            ear_or_hand.close()
        for process in reversed(self.processes):
            if process is self.bus:
                self._end_what_it_started()
            self.end(process)
        for recording in self.recordings:
            recording.file.close()
        words = self.sanitizer_words()
        shutil.rmtree(self.folder, ignore_errors=True)
        if words:
            raise AssertionError(words)

    def _take_down_sanitizers(self):
        """What they say of a program, whoever started it, and whatever it does with its standard error. Before a sanitizer
        stands what a test preloads, and a program that ends waits for no thread."""
        for name in ("ASAN", "LSAN", "UBSAN", "TSAN"):
            options = [os.environ.get(f"{name}_OPTIONS", ""), f"log_path={self.folder}/sanitizer"]
            if name == "ASAN":
                options.append("verify_asan_link_order=0")
            if name == "TSAN":
                options += ["report_thread_leaks=0", "atexit_sleep_ms=0"]
            self.environment[f"{name}_OPTIONS"] = ":".join(filter(None, options))

    def sanitizer_words(self):
        return "\n".join(path.read_text(errors="replace")[:8000] for path in sorted(self.folder.glob("sanitizer.*")))

    def run(self, *command):
        return run(*command, env=self.environment)

    @staticmethod
    def wait_for(condition, what):
        return wait_for(condition, what)

    def _end_what_it_started(self):
        """What the bus starts on demand belongs to its process group, which bears its number. Once it has ended and was
        waited for, the number may be another's."""
        if self.bus.poll() is None:
            os.killpg(self.bus.pid, signal.SIGTERM)

    def start_bus(self):
        read, write = os.pipe()
        self.bus = self.spawn("dbus-daemon", "--session", "--nofork", "--nopidfile", f"--print-address={write}",
                              pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as answer:
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = answer.readline().strip()
        # The machine's own services, such as its login manager, are none of the tests' business.
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = self.environment["DBUS_SESSION_BUS_ADDRESS"]
        self.reader = ScreenReader(self.environment["DBUS_SESSION_BUS_ADDRESS"], self.scale)

    def _choose_services(self, portal):
        """A desktop's portal that is installed here is no part of a desk, unless it is asked for. The one for documents, which
        would mount a folder, never is. The bus reads a file there only if it has the service's whole name."""
        folder = self.runtime / "dbus-1/services"
        folder.mkdir(parents=True)
        for portal_name in ("Documents", *([] if portal else ["Desktop"])):
            name = f"org.freedesktop.portal.{portal_name}"
            (folder / f"{name}.service").write_text(f"[D-BUS Service]\nName={name}\nExec=/bin/false\n")
        if portal:
            self.environment["QT_QPA_PLATFORMTHEME"] = "xdgdesktopportal"

    def start_sound(self):
        self.sound = self.desktop.sound.start(self)

    def mend_sound(self):
        """After the end of what programs speak with."""
        self.sound = self.desktop.sound.mend(self)

    def pixels(self, twips):
        return round(twips / TWIPS * self.scale)

    def active_window(self):
        """Nothing while none is."""
        return subprocess.run(["xdotool", "getactivewindow"], env=self.environment, capture_output=True, text=True).stdout.strip()

    def screenshot(self, path, window=None):
        if window:
            self.run("import", "-window", str(window), str(path))
        else:
            self.desktop.display.picture(self, path)

    def picture_of_failure(self):
        """What the desk looked like when a condition did not come true, and what it had heard and read from the program by
        then, for whoever looks into it."""
        folder = os.environ.get("VELMORA_TEST_PICTURES")
        if not folder:
            return
        name = f"{folder}/{time.strftime('%H.%M.%S')}-{os.getpid()}"
        if "DISPLAY" in self.environment:
            self.screenshot(f"{name}.png")
        for kept in [*self.folder.glob("recording-*.raw"), *self.folder.glob("output.txt")]:
            shutil.copy(kept, f"{name}-{kept.name}")

    def account(self):
        """Of everything that was started here, and the last words of the program."""
        output = self.folder / "output.txt"
        said = output.read_text(errors="replace")[-2000:] if output.exists() else ""
        return "\n".join([*map(account_of, self.processes), *filter(None, [said])])

    def record(self, latency=None):
        """In milliseconds."""
        self.recordings.append(Recording(self, latency or self.desktop.sound.latency))
        return self.recordings[-1]


class Recording:
    """Everything that sounds from its start on: interleaved signed 16-bit stereo at 44100 Hz."""

    def __init__(self, desk, latency):
        self.desk = desk
        self.path = desk.folder / f"recording-{len(desk.processes)}.raw"
        self.file = open(self.path, "wb")
        self.process = desk.spawn("parec", "-d", "testsink.monitor", "--raw", "--format=s16le", "--rate=44100",
                                  "--channels=2", f"--latency-msec={latency}", stdout=self.file)
        wait_for(lambda: self.path.stat().st_size > 0, "the recorder runs")
        desktops.put_before_other_work(self.process)

    def frames(self):
        data = self.path.read_bytes()
        samples = array.array("h", data[:len(data) // 4 * 4])
        if sys.byteorder == "big":
            samples.byteswap()
        return samples

    def length(self):
        """Frames so far."""
        return self.path.stat().st_size // 4

    def heard_second(self):
        """Where in a counting signal the sound is by now; the signal counts its frames from 1. A busy machine leaves gaps of
        silence, which are no place in it."""
        with open(self.path, "rb") as file:
            for frame in range(self.length() - 1, -1, -1):
                file.seek(frame * 4)
                left, right = array.array("h", file.read(4))
                if right:
                    return (left | (right - 1) << 15) / 44100
        return 0

    def stop(self):
        self.desk.end(self.process, signal.SIGINT)
        self.file.close()
        return self.frames()


class Velmora:
    """The running program. Its folder is a portable copy of the build's, so it is the application folder, too.

    A program that stands elsewhere already is started by a command of its own.
    """

    def __init__(self, desk, build, folder=None, command=None):
        self.desk = desk
        self.folder = pathlib.Path(folder or desk.folder / "app")
        self.command = command or [str(self.folder / "velmora")]
        if not command and not self.folder.exists():
            self.folder.mkdir()
            for name in ("velmora", "conf.mp3", "updates.txt"):
                shutil.copy2(pathlib.Path(build) / name, self.folder / name)
            (self.folder / "modules").mkdir()
            for module in (pathlib.Path(build) / "modules").glob("*.so"):
                shutil.copy2(module, self.folder / "modules")
        self.process = None
        self.environment = {}  # beyond the desk's

    def start(self, wait=True):
        with open(self.desk.folder / "output.txt", "ab") as output:
            self.process = self.desk.spawn(*self.command, stdout=output, stderr=output,
                                           env={**self.desk.environment, **self.environment})
        if wait:
            self.window("Velmora v2.0")
            self.desk.hand.reach()
        return self

    def said(self):
        return (self.desk.folder / "output.txt").read_text(errors="replace")

    def kill(self):
        self.process.kill()
        self.process.wait()

    def alive(self):
        return self.process.poll() is None

    # Settings, as they stand on the disk.

    def store_path(self):
        return self.desk.home / ".config/Velmora/settings.sqlite"

    def setting(self, section, key):
        """Nothing while the program is about the file."""
        try:
            with contextlib.closing(sqlite3.connect(f"file:{self.store_path()}?mode=ro", uri=True, timeout=5)) as store:
                row = store.execute("select value from settings where section = ? and key = ?", (section, key)).fetchone()
        except sqlite3.Error:
            return ""
        return row[0] if row and isinstance(row[0], str) else (row[0].decode() if row else "")

    # Windows

    def windows(self, title):
        """The visible windows of that title."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"],
                               env=self.desk.environment, capture_output=True, text=True)
        return found.stdout.split()

    def window(self, title, limit=LIMIT):
        window = wait_for(lambda: self.windows(title), f"the window {title!r} shows", limit)[-1]
        self.desk.hand.notice(window)
        return window

    def gone(self, title):
        """With its frame: as long as that stands there, it takes the clicks."""
        wait_for(lambda: not self.windows(title), f"the window {title!r} goes")
        wait_for(lambda: not self.framed(title), f"the frame of the window {title!r} goes")

    def framed(self, title):
        """What the window manager still has in sight of that title, or of a window that is no more."""
        ask = lambda *words: subprocess.run(["xprop", *words], env=self.desk.environment, capture_output=True, text=True)

        def stands(window):
            told = ask("-id", window, "-notype", "_NET_WM_NAME", "WM_STATE")
            return told.returncode or f'"{title}"' in told.stdout and "state: Normal" in told.stdout
        return [window for window in re.findall("0x[0-9a-f]+", ask("-root", "_NET_CLIENT_LIST").stdout) if stands(window)]

    def geometry(self, window):
        """Left, top, width, height in pixels of the screen."""
        lines = self.desk.run("xdotool", "getwindowgeometry", "--shell", str(window))
        values = dict(line.split("=") for line in lines.split())
        return tuple(int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def inside(self, window):
        """As `geometry`, also where a window manager has put a frame around the window: without the frame."""
        lines = self.desk.run("xwininfo", "-id", str(window))
        return tuple(int(re.search(name + r":\s+(-?\d+)", lines)[1])
                     for name in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    def focus(self, window):
        """Gives it the keys. One that the window manager is still putting into its frame takes none yet."""
        wait_for(lambda: subprocess.run(["xdotool", "windowfocus", "--sync", str(window)], env=self.desk.environment,
                                        capture_output=True).returncode == 0, "the window takes the keys")

    def escape(self, title):
        """Closes it by its key."""
        self.focus(self.window(title))
        self.key("Escape")
        self.gone(title)

    # Mouse and keys. Places are in twips of a window.

    def point(self, window, left, top):
        self.desk.hand("mousemove", "--window", str(window), str(self.desk.pixels(left)),
                      str(self.desk.pixels(top)))

    def click(self, window, place, button=1, times=1):
        """Into the middle of a control's place: left, top, width, height."""
        left, top, width, height = place
        self.point(window, left + width / 2, top + height / 2)
        self.desk.hand("click", "--repeat", str(times), "--delay", "60", str(button))

    def grip(self, window, place):
        """Presses the button on a control and keeps it down. Returns the pointer's place on the screen."""
        left, top, _, _ = self.geometry(window)
        x, y = left + self.desk.pixels(place[0] + place[2] / 2), top + self.desk.pixels(place[1] + place[3] / 2)
        self.desk.hand("mousemove", str(x), str(y), "mousedown", "1")
        return x, y

    def pull(self, start, end, steps=8):
        """Moves the pointer, step by step."""
        for step in range(1, steps + 1):
            at = (round(a + (b - a) * step / steps) for a, b in zip(start, end))
            self.desk.hand("mousemove", *map(str, at))

    def release(self):
        self.desk.hand("mouseup", "1")

    def drag(self, window, place, by):
        """Drags a control by so many pixels."""
        x, y = self.grip(window, place)
        self.pull((x, y), (x + by[0], y + by[1]))
        self.release()

    def thumb(self, track):
        """Where the thumb of a bar stands that is at its beginning."""
        return track[0], track[1], 105, 75

    def key(self, *keys):
        self.desk.hand("key", "--delay", "30", *keys)

    def type(self, text):
        """Letters that no key has are put on one for the moment, which takes all programs some time to learn."""
        self.desk.hand("type", "--delay", "4" if text.isascii() else "120", text)

    # The dialogs

    def choose_file(self, title, path, filter_row=None, before=lambda: None):
        """Types a path into the file dialog of that title. `filter_row` counts the filters from 0; `before` is called
        before the typing."""
        dialog = self.window(title)
        self.focus(dialog)
        _, _, width, height = self.geometry(dialog)
        if filter_row is not None:
            self.settled(title)
            kinds = (dialog, width // 2, height - round(23 * self.desk.scale))
            wait_for(lambda: self._popup_opens(lambda: self._click_pixels(*kinds)), "the list of the kinds of files opens")
            self.key("Home", *["Down"] * filter_row, "Return")
            wait_for(lambda: self.popups() == 0, "the list of the kinds of files closes")
        before()
        self._click_pixels(dialog, width // 2, height - round(53 * self.desk.scale))
        self.key("alt+n", "ctrl+a")  # the name box, too, if the click was lost
        self.type(str(path))
        self.key("Return")
        self.gone(title)

    def _click_pixels(self, window, x, y):
        self.desk.hand("mousemove", "--window", str(window), str(x), str(y), "click", "1")

    def popups(self):
        """How many menus are open."""
        return len(self.popup_windows())

    def popup_windows(self):
        """The windows that no window manager manages, tips left out."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--class", "velmora"], capture_output=True,
                               text=True, env=self.desk.environment)

        def is_popup(window):
            told = subprocess.run(["xprop", "-id", window, "WM_STATE", "_NET_WM_WINDOW_TYPE"], capture_output=True, text=True,
                                  env=self.desk.environment).stdout
            return "WM_STATE:  not found" in told and "TOOLTIP" not in told
        return list(filter(is_popup, found.stdout.split()))

    def menu(self, window, *mnemonics):
        """Opens the window's menu by its image and walks it by its underlined letters."""
        self.open_menu(window, *mnemonics[:-1])
        self.key(mnemonics[-1])
        wait_for(lambda: self.popups() == 0, "the menus close")

    def open_menu(self, window, *mnemonics):
        """As `menu`, but the menu that the last letter opens stays open."""
        wait_for(lambda: self._popup_opens(lambda: self.click(window, (0, 0, 240, 225))), "the menu opens")
        for depth, letter in enumerate(mnemonics, 1):
            self.key(letter)
            wait_for(lambda: self.popups() > depth, f"menu {depth + 1} opens")

    def _popup_opens(self, click):
        """A window manager that is still busy with another window may keep a click for itself: a person clicks again."""
        click()
        with contextlib.suppress(Impatient):
            return wait_for(lambda: self.popups() > 0, "a menu shows", limit=LIMIT / 6)

    # What a screen reader reads

    def controls(self, title):
        return self.desk.reader.controls(title)

    def control(self, title, role, name):
        return wait_for(lambda: next((c for c in self.controls(title) if (c.role, c.name) == (role, name)), None),
                        f"{role} {name!r} in {title!r}")

    def label_at(self, title, place):
        """The label that stands there, its place in twips of the window."""
        window = self.geometry(self.window(title))
        wanted = (self.desk.pixels(place[0]) + window[0], self.desk.pixels(place[1]) + window[1])
        return next(c for c in self.controls(title) if c.role == "label" and c.place()[:2] == wanted)

    def press(self, title, role, name):
        """Clicks into the middle of a control with the mouse."""
        self.settled(title)
        self.click_control(self.control(title, role, name))

    def settled(self, title):
        """The program knows where the window manager has put the window: what it tells of places holds."""
        if "QT_LINUX_ACCESSIBILITY_ALWAYS_ON" not in self.desk.environment:
            return  # it tells nothing
        window = self.window(title)
        near = lambda: all(abs(here - there) < 2 * self.desk.scale
                           for here, there in zip(self.inside(window)[:2], self.desk.reader.windows(title)[0].place()[:2]))
        wait_for(near, f"the window {title!r} has come to its place")

    def click_control(self, control, times=1):
        self.point_at(control)
        self.desk.hand("click", "--repeat", str(times), "--delay", "60", "1")

    def point_at(self, control):
        left, top, width, height = control.place()
        self.desk.hand("mousemove", str(left + width // 2), str(top + height // 2))

    def click_meanwhile(self):
        """Clicks where the pointer is while the test goes on: it sees what begins from its first moment."""
        self.desk.hand.meanwhile("click", "1")

# SPDX-License-Identifier: GPL-3.0-or-later
"""The desktops that a desk can be: a display, a window manager, a sound server, and how large things are there.

The first one is what the end-to-end tests run on. VELMORA_TEST_DESKTOP names another one for them.
"""
import contextlib
import dataclasses
import glob
import os
import re
import subprocess

import dbus
import dbus.bus

from hand import RemoteHand, XHand

DISPLAYS = "org.gnome.Mutter.DisplayConfig"
SINK = "module-null-sink sink_name=testsink format=s16le rate=44100 channels=2"


class Together:
    """Several processes that live and die as one."""

    def __init__(self, *processes):
        self.processes = processes

    def kill(self):
        self.send_signal(9)

    def send_signal(self, number):
        for process in self.processes:
            process.send_signal(number)

    def wait(self, timeout=None):
        return [process.wait(timeout) for process in self.processes][0]

    def poll(self):
        states = [process.poll() for process in self.processes]
        return None if None in states else states[0]


def answers(desk, *command):
    return subprocess.run(command, env=desk.environment, capture_output=True).returncode == 0


def put_before_other_work(process):
    """As desktops do with their sound server, where that is allowed: a busy machine must not sound like a fault."""
    for thread in os.listdir(f"/proc/{process.pid}/task"):
        with contextlib.suppress(OSError):
            os.sched_setscheduler(int(thread), os.SCHED_RR, os.sched_param(1))


class PulseAudio:
    socket = "native"
    latency = 10  # of whoever listens, in milliseconds

    @staticmethod
    def start(desk):
        socket = desk.runtime / PulseAudio.socket
        socket.unlink(missing_ok=True)
        server = desk.spawn(
            "pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1", "--disallow-exit=yes",
            "--realtime=no", "--high-priority=no", "-L", f"{SINK} norewinds=1", "-L",
            f"module-native-protocol-unix socket={socket} auth-anonymous=1")
        desk.wait_for(lambda: answers(desk, "pactl", "info"), "the sound server answers")
        put_before_other_work(server)
        return Together(server)

    mend = start


class PipeWire:
    """With WirePlumber, and asked as a PulseAudio server. Debian lets it run at 48000 Hz and convert whatever has another
    rate; to hear each sample as it was sent, it is told to run at that of the music."""
    socket = "pulse/native"
    latency = 60  # one that asks for less makes all of its work smaller: a busy machine is late for that
    rate = "context.properties = { default.clock.rate = 44100 }\n"

    @staticmethod
    def start(desk):
        settings = desk.home / ".config/pipewire/pipewire.conf.d/rate.conf"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text(PipeWire.rate)
        (desk.runtime / PipeWire.socket).unlink(missing_ok=True)
        server = desk.spawn("pipewire")
        desk.wait_for(lambda: answers(desk, "pw-cli", "info", "0"), "PipeWire answers")
        session = desk.spawn("wireplumber")
        return Together(PipeWire._front(desk), session, server)

    @staticmethod
    def mend(desk):
        """Starts again what programs speak with, as the desktop's session does."""
        return Together(PipeWire._front(desk), *desk.sound.processes[1:])

    @staticmethod
    def _front(desk):
        front = desk.spawn("pipewire-pulse")
        desk.wait_for(lambda: answers(desk, "pactl", "info"), "the sound server answers")
        desk.run("pactl", "load-module", *SINK.replace("format=s16le ", "").split())
        wanted = "Default Sink: testsink"
        desk.wait_for(lambda: answers(desk, "pactl", "set-default-sink", "testsink") and wanted in desk.run("pactl", "info"),
                      "the sound goes where it is listened to")
        return front


def sides(size):
    """Of each monitor of a size such as 1280x900+2560x1800: width and height."""
    return [tuple(map(int, monitor.split("x"))) for monitor in size.split("+")]


def whole(size):
    return sum(width for width, _ in sides(size)), max(height for _, height in sides(size))


def managed(desk):
    return "window id" in subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=desk.environment,
                                         capture_output=True, text=True).stdout


@dataclasses.dataclass
class XServer:
    """A display of memory, and the window manager of a desktop."""
    manager: tuple

    def open(self, desk, size, with_manager):
        self._show(desk, size)
        desk.hand = XHand(desk)
        desk.start_bus()
        if with_manager:
            desk.spawn(*self.manager)
            desk.wait_for(lambda: managed(desk), "the window manager answers")

    @staticmethod
    def picture(desk, path):
        desk.run("import", "-window", "root", str(path))

    @staticmethod
    def part(desk):
        """Makes monitors of it, from left to right."""
        left = 0
        for number, (width, height) in enumerate(sides(desk.size)):
            desk.run("xrandr", "--setmonitor", f"part{number}", f"{width}/{width // 4}x{height}/{height // 4}+{left}+0",
                     "none" if number else "screen")
            left += width

    def enlarge(self, desk, scale):
        pass  # each program for itself

    @staticmethod
    def _show(desk, size):
        read, write = os.pipe()
        width, height = whole(size)
        desk.spawn("Xvfb", "-displayfd", str(write), "-screen", "0", f"{width}x{height}x24", "-nolisten", "tcp", "-noreset",
                   "-r",  # keys are held for as long as a busy machine holds them, and would be repeated
                   *(["-fbdir", str(desk.folder)] if desk.screen_file else []), pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as answer:
            number = answer.readline().strip()
        if not number:
            raise AssertionError("Xvfb did not start")
        desk.environment["DISPLAY"] = f":{number}"


class Mutter:
    """GNOME's compositor without a screen. X windows stand in its Xwayland."""

    @staticmethod
    def open(desk, size, _with_manager):
        desk.start_bus()
        # A key that the machine is too busy to let go of is no key held down.
        desk.run("gsettings", "set", "org.gnome.desktop.peripherals.keyboard", "repeat", "false")
        log = desk.folder / "mutter.txt"
        with open(log, "wb") as output:
            desk.spawn("mutter", "--headless", "--wayland", *Mutter.monitors(size), stdout=output, stderr=output)
        number = desk.wait_for(lambda: re.search(r"Using public X11 display (:\d+)", log.read_text(errors="replace")),
                               "mutter shows X windows")[1]
        keys = desk.wait_for(lambda: glob.glob(f"{desk.runtime}/.mutter-Xwaylandauth.*"), "Xwayland takes callers")
        desk.environment.update(DISPLAY=number, XAUTHORITY=keys[0], WAYLAND_DISPLAY="wayland-0")
        desk.wait_for(lambda: managed(desk), "the window manager answers")
        Mutter._tell_bus(desk)
        desk.hand = RemoteHand(desk)

    @staticmethod
    def picture(desk, path):
        """Of the X windows, put together: the root of Xwayland shows nothing."""
        rows = re.findall(r"^     (0x[0-9a-f]+) .*? \d+x\d+\+-?\d+\+-?\d+  \+(-?\d+)\+(-?\d+)$",
                          desk.run("xwininfo", "-root", "-tree"), re.MULTILINE)
        layers = []
        for window, left, top in reversed(rows):
            if "IsViewable" in desk.run("xwininfo", "-id", window) and "InputOutput" in desk.run("xwininfo", "-id", window):
                layer = desk.folder / f"{window}.miff"
                if answers(desk, "import", "-silent", "-window", window, str(layer)):
                    layers += [str(layer), "-geometry", f"{int(left):+}{int(top):+}", "-composite"]
        desk.run("convert", "-size", "{}x{}".format(*whole(desk.size)), "xc:#335", *layers, str(path))

    @staticmethod
    def monitors(sizes):
        return [word for size in sizes.split("+") for word in ("--virtual-monitor", size)]

    @staticmethod
    def part(desk):
        Mutter._scale(desk, [1, 2])

    @staticmethod
    def enlarge(desk, scale):
        """It offers whole scales. What lies between them is larger type for it, which X programs are told of the same way."""
        if scale == round(scale):
            Mutter._scale(desk, [round(scale)])
            desk.hand.speed = round(scale)

    @staticmethod
    def _scale(desk, scales):
        """Of its monitors, from left to right. Where X windows stand is told in pixels all the same."""
        bus = dbus.bus.BusConnection(desk.environment["DBUS_SESSION_BUS_ADDRESS"])
        settings = dbus.Interface(bus.get_object(DISPLAYS, "/org/gnome/Mutter/DisplayConfig"), DISPLAYS)
        serial, monitors, _, _ = settings.GetCurrentState()
        left, wanted = 0, []
        for number, ((name, modes, _), scale) in enumerate(zip(monitors, scales)):
            wanted.append((left, 0, float(scale), dbus.UInt32(0), number == 0, [(name[0], modes[0][0], {})]))
            left += int(modes[0][1])
        settings.ApplyMonitorsConfig(serial, dbus.UInt32(1), wanted, dbus.Dictionary(signature="sv"))
        bus.close()
        desk.hand.home()  # the pointer was put elsewhere

    @staticmethod
    def _tell_bus(desk):
        """What the bus starts on demand shows its windows here, too."""
        bus = dbus.bus.BusConnection(desk.environment["DBUS_SESSION_BUS_ADDRESS"])
        names = ("DISPLAY", "XAUTHORITY", "WAYLAND_DISPLAY")
        bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus").UpdateActivationEnvironment(
            {name: desk.environment[name] for name in names}, dbus_interface="org.freedesktop.DBus")
        bus.close()


def by_variable(desk, scale):
    desk.environment["QT_SCALE_FACTOR"] = str(scale)


def by_resource(desk, scale):
    """Letters of so many dots to the inch: most desktops tell X programs of their scale that way, one for all screens."""
    subprocess.run(["xrdb", "-merge"], input=f"Xft.dpi: {round(96 * scale)}\n", env=desk.environment, text=True, check=True)


def by_screen(desk, scale):
    desk.environment.update(QT_SCREEN_SCALE_FACTORS=f"screen={scale}", QT_AUTO_SCREEN_SCALE_FACTOR="0")
    by_resource(desk, scale)


@dataclasses.dataclass
class Desktop:
    display: object
    sound: object
    tell_scale: object
    environment: dict  # what its session tells programs

    def enlarge(self, desk, scale):
        self.display.enlarge(desk, scale)
        self.tell_scale(desk, scale)

    def two_screens(self, desk):
        """With things twice as large on the second one, if the desktop knows a way. Returns how large they are there."""
        self.display.part(desk)
        if self.tell_scale is not by_screen:
            return 1
        desk.environment.update(QT_SCREEN_SCALE_FACTORS="part0=1;part1=2", QT_AUTO_SCREEN_SCALE_FACTOR="0")
        return 2


# clang-format off
DESKTOPS = {
    "openbox": Desktop(XServer(("openbox", "--sm-disable")), PulseAudio, by_variable, {}),
    "mutter":  Desktop(Mutter, PipeWire, by_resource, {"XDG_CURRENT_DESKTOP": "GNOME", "XDG_SESSION_TYPE": "wayland"}),
    "xfwm4":   Desktop(XServer(("xfwm4",)), PulseAudio, by_resource, {"XDG_CURRENT_DESKTOP": "XFCE",
                                                                      "XDG_SESSION_TYPE": "x11"}),
    "kwin":    Desktop(XServer(("kwin_x11",)), PulseAudio, by_screen, {"XDG_CURRENT_DESKTOP": "KDE",
                                                                       "XDG_SESSION_TYPE": "x11",
                                                                       "KDE_FULL_SESSION": "true",
                                                                       "KDE_SESSION_VERSION": "5"}),
}
# clang-format on


def chosen():
    return DESKTOPS[os.environ.get("VELMORA_TEST_DESKTOP", "openbox")]

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What goes wrong around the player: sound servers that die or hang, files that are none, a settings file in pieces."""
import contextlib
import ctypes
import os
import select
import signal
import socket
import struct
import subprocess
import threading
import time

import case
import places
import sounds
from desk import wait_for


class SharedByJack:
    """Whether anyone opens what JACK's clients of this user share in memory, from now on."""
    OPENED, MADE = 0x20, 0x100  # as the system's header has them

    def __init__(self):
        self.library = ctypes.CDLL(None, use_errno=True)
        self.watch = self.library.inotify_init1(os.O_NONBLOCK | os.O_CLOEXEC)
        self.name = f"jack_db-{os.getuid()}"
        if self.library.inotify_add_watch(self.watch, b"/dev/shm", self.MADE) < 0:
            raise OSError(ctypes.get_errno(), "/dev/shm cannot be watched")
        self.library.inotify_add_watch(self.watch, f"/dev/shm/{self.name}".encode(), self.OPENED)

    def was_opened(self):
        events = b""
        with contextlib.suppress(BlockingIOError):
            while True:
                events += os.read(self.watch, 65536)
        at = 0
        while at < len(events):
            _, mask, _, length = struct.unpack_from("iIII", events, at)
            name = events[at + 16:at + 16 + length].rstrip(b"\0").decode()
            if mask & self.OPENED or name == self.name:
                return True
            at += 16 + length
        return False


class Upset(case.Case):
    def wav(self, seconds):
        return sounds.write_wav(self.desk.music / "a.wav", sounds.counter(seconds * sounds.RATE, 1))

    def seconds(self):
        minutes, seconds = self.label(places.TIME).split(":")
        return int(minutes) * 60 + int(seconds)

    def ask(self, name, path, member):
        return self.desk.run("dbus-send", "--session", "--print-reply", f"--dest={name}", path, member)

    def test_a_sound_server_that_dies_takes_the_sound_along_and_not_the_place(self):
        recording = self.desk.record()
        self.play(self.wav(60), 0)
        self.wait_clock(1)
        heard = recording.heard_second()
        died = time.monotonic()
        self.desk.sound.kill()
        self.desk.sound.wait()
        wait_for(lambda: self.seconds() >= 3, "the clock goes on")
        self.desk.start_sound()
        recording = self.desk.record()
        wait_for(lambda: any(recording.frames()), "the sound comes back")
        now = recording.heard_second() - heard
        self.assertAlmostEqual(now, time.monotonic() - died, delta=2)
        self.assert_alive()

    def test_a_sound_server_that_refuses_leads_to_no_start_of_another(self):
        """JACK's client would leave what it shares behind."""
        place = self.desk.folder / "refusing"
        server = socket.create_server(str(place), family=socket.AF_UNIX)
        self.addCleanup(server.close)
        guests = []

        def refuse():
            with contextlib.suppress(OSError):
                while True:
                    guest, _ = server.accept()
                    guests.append(guest.recv(1))  # a look at who listens says nothing
                    guest.close()
        threading.Thread(target=refuse, daemon=True).start()
        shared = SharedByJack()
        self.app.kill()
        self.app.environment["PULSE_SERVER"] = f"unix:{place}"
        self.start()
        self.play(self.wav(60), 0)
        wait_for(lambda: len([guest for guest in guests if guest]) >= 2, "the server was asked, and asked again")
        self.assertFalse(shared.was_opened())
        self.assert_alive()

    def test_a_sound_server_that_hangs_does_not_hang_the_window(self):
        self.play(self.wav(60), 0)
        self.wait_clock(1)
        self.desk.sound.send_signal(signal.SIGSTOP)
        self.app.click(self.main, places.STOP)
        self.wait_label(places.TIME, "0:00")
        self.app.click(self.main, places.PLAY)
        self.app.drag(self.main, (1200, 60, 300, 100), (30, 30))
        self.app.menu(self.main, "f", "l")
        self.app.window(case.LIST)
        self.desk.sound.send_signal(signal.SIGCONT)
        self.assert_alive()

    def test_the_program_ends_at_once_beside_neighbours_that_hang(self):
        """Until its process is gone, the key's own way through the window system included."""
        self.notifications()
        neighbours = [self.desk.sound, self.desk.bus, self.desk.processes[-1]]
        times = []
        hand = self.desk.spawn("xdotool", "-", stdin=subprocess.PIPE, text=True)
        self.addCleanup(hand.stdin.close)
        for _ in range(20):  # a busy machine adds to some
            if times:
                self.start()
            self.play(self.wav(60), 0)
            self.wait_clock(1)
            self.app.focus(self.main)
            end = os.pidfd_open(self.app.process.pid)
            for neighbour in neighbours:
                neighbour.send_signal(signal.SIGSTOP)
            start = time.monotonic()
            print("key alt+F4", file=hand.stdin, flush=True)
            self.assertTrue(select.select([end], [], [], 60)[0], "it ends")
            times.append(time.monotonic() - start)
            os.close(end)
            self.assertEqual(self.app.process.wait(), 0)
            for neighbour in neighbours:
                neighbour.send_signal(signal.SIGCONT)
            if times[-1] < 0.1:
                break
        self.assertLess(min(times), 0.1, times)

    def test_a_media_key_starts_nothing_behind_a_file_dialog(self):
        title = "Select a file to open"
        self.app.click(self.main, places.PLAY)
        self.app.window(title)
        wait_for(lambda: "MediaPlayer2.velmora" in self.ask("org.freedesktop.DBus", "/", "org.freedesktop.DBus.ListNames"),
                 "the media keys reach the program")
        for command in ("Play", "Next", "Play"):  # the answer to each comes when the one before was carried out
            self.ask("org.mpris.MediaPlayer2.velmora", "/org/mpris/MediaPlayer2", f"org.mpris.MediaPlayer2.Player.{command}")
        self.assertEqual(len(self.app.windows(title)), 1)
        self.app.choose_file(title, self.wav(5), 0)
        self.wait_clock(1)

    def test_without_a_sound_server_files_play_silently(self):
        self.desk.end(self.desk.sound)
        self.play(self.wav(5), 0)
        self.wait_clock(2)
        self.assert_alive()

    def test_without_a_display_the_program_says_so_and_ends(self):
        for environment in ({"DISPLAY": ":4242"}, {"DISPLAY": ""}):
            self.app.kill()
            self.app.environment = environment
            self.app.start(wait=False)
            self.assertEqual(self.app.process.wait(60), 1)
            self.assertIn("Velmora needs a display", self.app.said())

    def test_files_that_are_none_leave_the_window_usable(self):
        folder = self.desk.music
        wav = self.wav(1)
        mp3 = sounds.encode(wav, folder / "good.mp3")
        (folder / "empty.mp3").touch()
        (folder / "noise.mp3").write_bytes(os.urandom(100000))
        (folder / "wav.mp3").write_bytes(wav.read_bytes())
        (folder / "mp3.wav").write_bytes(mp3.read_bytes())
        (folder / "cut.mp3").write_bytes(mp3.read_bytes()[:5000])
        os.mkfifo(folder / "pipe.mp3")
        for name, filter_row in (("empty.mp3", 1), ("noise.mp3", 1), ("wav.mp3", 1), ("cut.mp3", 1), ("pipe.mp3", 1),
                                 ("mp3.wav", 0)):
            with self.subTest(name):
                self.app.kill()
                self.start()
                self.play(folder / name, filter_row)
                before = self.processor_time()
                start = time.monotonic()
                self.app.drag(self.main, (1200, 60, 300, 100), (10, 10))
                self.show_list()
                wait_for(lambda: time.monotonic() - start > 0.5, "half a second goes by")
                self.assertLess(self.processor_time() - before, 0.5 * (time.monotonic() - start))
                self.assert_alive()

    def test_a_damaged_settings_file_does_not_keep_the_program_from_starting(self):
        self.app.drag(self.main, (1200, 60, 300, 100), (50, 30))
        wait_for(lambda: self.app.setting("Position StartUp Window", "Left"), "the place is kept")
        self.app.kill()
        for damage in (b"", b"no database at all" * 100, self.app.store_path().read_bytes()[:3000]):
            for name in ("settings.sqlite-wal", "settings.sqlite-shm"):
                (self.app.store_path().parent / name).unlink(missing_ok=True)
            self.app.store_path().write_bytes(damage)
            self.start()
            left, top = self.app.geometry(self.main)[:2]
            place = left - 20, top + 10
            self.app.drag(self.main, (1200, 60, 300, 100), (-20, 10))
            wait_for(lambda: self.app.geometry(self.main)[:2] == place, "the window was dragged")
            kept = lambda: tuple(self.app.setting("Position StartUp Window", name) for name in ("Left", "Top"))
            wait_for(lambda: kept() == tuple(str(each * 15) for each in place), "it is kept again")
            self.app.kill()
            self.start()
            wait_for(lambda: self.app.geometry(self.main)[:2] == place, "the window stands where it was")
            self.app.kill()


if __name__ == "__main__":
    case.main()

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Keeps what a build leaves on the disk, for later builds to start on: make.py BUILD NAME

Drives the program of that build through everything that it keeps, kills it, and puts its files into tests/yesterday/NAME.
What names the desk's folder is written @DESK@ there; settings name folders of the system alone.
"""
import http.server
import pathlib
import shutil
import sys
import threading
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "e2e"))

import case  # noqa: E402
import places  # noqa: E402
import sounds  # noqa: E402
from desk import wait_for  # noqa: E402

ROWS = ["/usr/share/music/first.mp3", "/usr/share/music/second & <third>.wav", "/usr/share/music/Полёт.mp3"]
KEPT = {"home/.config/Velmora": ("settings.sqlite", "settings.sqlite-wal"), "home/.local/state/Velmora": ("levels", "parts/*"),
        "home/.cache/Velmora/titles": ("*",), "app": ("deflist.vlp", "deflist.vlp.bak", "vlmset.ini")}
ENTRY = ("210 rock 02000401 entry follows\r\nDTITLE=Some Band / Some Disc\r\nTTITLE0=Of yesterday\r\n.\r\n")


class Service(http.server.BaseHTTPRequestHandler):
    """The web, as the titles' service: whatever is asked over plain HTTP by way of this proxy."""

    def do_GET(self):
        self.send_response(200)
        self.end_headers()
        self.wfile.write((ENTRY if "cddb+read" in self.path.replace("%20", "+") else "200 rock 02000401 x\r\n").encode())

    def do_CONNECT(self):
        self.send_error(503)

    def log_message(self, *_):
        pass


def put_disc(music):
    """A disc image whose titles the service knows."""
    discs = music / "Velmora Discs"
    discs.mkdir()
    (discs / "disc.cue").write_text('FILE "disc.bin" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n')
    (discs / "disc.bin").write_bytes(bytes(300 * 2352))


class Yesterday(case.Case):
    out = None

    def start(self):
        """With the service as the web, and with what an earlier build got from it: later ones ask over HTTPS alone."""
        shutil.copytree(HERE / "a2d72be/home/.cache", self.desk.home / ".cache", dirs_exist_ok=True)
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Service)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.shutdown)
        proxy = f"http://127.0.0.1:{server.server_port}"
        self.app.environment = {"http_proxy": proxy, "https_proxy": proxy}
        put_disc(self.desk.music)
        super().start()

    def runTest(self):
        self.app.drag(self.main, (1200, 60, 300, 100), (90, 45))
        self.app.click(self.main, (700, 1950, 30, 60))  # the volume's track
        self.list = self.show_list()
        own = self.desk.home / "mine.vlp"
        own.write_bytes("".join(f"{row}\r\n" for row in ROWS).encode())
        self.app.menu(self.list, "f", "o")
        self.app.choose_file("Select a playlist", own, 0)
        wait_for(lambda: (self.app.folder / "deflist.vlp").read_bytes() == own.read_bytes(), "the working copy is written")
        self.open_workbench("e", "s")
        self.app.press(case.SETTINGS, "radio button", "320")
        self.app.press(case.SETTINGS, "push button", "Apply")
        self.app.press(case.SETTINGS, "page tab", "CD => WAV")
        self.app.press(case.SETTINGS, "check box", "Get track titles from CDDB")
        self.app.press(case.SETTINGS, "push button", "OK")
        self.app.gone(case.SETTINGS)
        titles = self.desk.home / ".cache/Velmora/titles"
        wait_for(lambda: titles.exists() and any(titles.iterdir()), "the titles are kept")
        self.kill_while_encoding()
        self.keep()

    def kill_while_encoding(self):
        sounds.write_wav(self.desk.music / "long.wav", sounds.music(1) * 600)
        self.open_workbench("e", "w")
        self.to_folder(case.WORKBENCH, "Music")
        self.app.click_control(self.wait_row(case.WORKBENCH, "long.wav"))
        self.app.press(case.WORKBENCH, "push button", "Encode")
        wait_for(lambda: list(self.desk.music.glob("*.part")), "a part file stands")
        self.app.kill()

    def keep(self):
        shutil.rmtree(self.out, ignore_errors=True)
        for folder, patterns in KEPT.items():
            for file in (file for pattern in patterns for file in (self.desk.folder / folder).glob(pattern)):
                target = self.out / folder / file.relative_to(self.desk.folder / folder)
                target.parent.mkdir(parents=True, exist_ok=True)
                data = file.read_bytes()
                target.write_bytes(data if "sqlite" in file.name else data.replace(bytes(self.desk.folder), b"@DESK@"))


if __name__ == "__main__":
    case.Case.build, Yesterday.out = sys.argv[1], HERE / sys.argv[2]
    sys.exit(not unittest.TextTestRunner(verbosity=2).run(Yesterday()).wasSuccessful())

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What leaves the computer: nothing before the user asks for titles, and then nothing that anyone on the way could read."""
import http.server
import threading

import case
from desk import wait_for


class Web(http.server.BaseHTTPRequestHandler):
    """Stands for the whole web, as its proxy, and lets nobody through."""

    asked = []

    def refuse(self):
        self.asked.append(f"{self.command} {self.path}")
        self.send_error(503)

    do_GET = do_POST = do_HEAD = do_CONNECT = refuse

    def log_message(self, *_):
        pass


class Privacy(case.Case):
    def start(self):
        discs = self.desk.music / "Velmora Discs"
        discs.mkdir()
        (discs / "disc.cue").write_text('FILE "disc.bin" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n')
        (discs / "disc.bin").write_bytes(bytes(300 * 2352))
        Web.asked.clear()
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Web)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        proxy = f"http://127.0.0.1:{server.server_port}"
        self.app.environment = {name: proxy for name in ("http_proxy", "https_proxy", "all_proxy")}
        super().start()

    def test_nothing_is_sent_before_titles_are_wanted_and_then_over_https_alone(self):
        self.show_list()
        self.open_workbench("d", "s")  # which lists the disc
        self.app.press(case.SETTINGS, "page tab", "CD => WAV")
        box = self.app.control(case.SETTINGS, "check box", "Get track titles from CDDB")
        self.assertEqual(Web.asked, [])
        self.app.click_control(box)
        self.app.press(case.SETTINGS, "push button", "OK")
        self.app.gone(case.SETTINGS)
        wait_for(lambda: Web.asked, "the service is asked")
        self.show_list()  # the look-up has ended
        self.assertEqual({line for line in Web.asked}, {"CONNECT gnudb.gnudb.org:443"})


if __name__ == "__main__":
    case.main()

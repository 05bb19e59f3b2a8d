"""Pages of our own in a real browser. The page itself says what can be seen of it (pages/witness.js), to a server in here that
it comes from; so it does with the presses of the mouse that arrive. Where the page stands on the screen is found by moving the
pointer to a known place and asking the page where it saw it."""

import json
import os
import subprocess
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path
from urllib.parse import urlparse

from application import Control, Probe
from marionette import Marionette, port_of

FIXTURES = Path(__file__).resolve().parent.parent / "desktop/fixtures"
PAGES = Path(__file__).with_name("pages")
MEASURED = Path(__file__).with_name("measured") / "chromium.json"
TYPES = {".html": "text/html; charset=utf-8", ".css": "text/css", ".js": "text/javascript"}
STEADY = 1.0  # seconds without a change

sys.path.insert(0, str(FIXTURES))

import browsers  # noqa: E402


class PageServer:
    """Serves the pages, and keeps what they tell."""

    def __init__(self):
        self.seen, self.changed, self.presses = None, 0.0, []
        self.lock = threading.Lock()
        outer = self

        class Handler(BaseHTTPRequestHandler):
            def do_GET(self):
                path = PAGES / Path(urlparse(self.path).path).name
                known = path.is_file()
                self.send_response(200 if known else 404)
                self.send_header("Content-Type", TYPES.get(path.suffix, "text/plain"))
                self.end_headers()
                if known:
                    self.wfile.write(path.read_bytes())

            def do_POST(self):
                outer.take(self.path, json.loads(self.rfile.read(int(self.headers["Content-Length"]))))
                self.send_response(204)
                self.end_headers()

            def log_message(self, *_):
                pass

        self.server = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.server.daemon_threads = True
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def take(self, path, told):
        with self.lock:
            if path == "/seen":
                self.seen, self.changed = told, time.monotonic()
            elif path == "/click":
                self.presses.append(told)

    def url(self, page):
        return f"http://127.0.0.1:{self.server.server_port}/{page}"

    def close(self):
        self.server.shutdown()
        self.server.server_close()


class PageProbe(Probe):
    """Subclasses say which page."""

    page = ""
    executable = ""
    toolkit = ""

    def __init__(self, folder):
        super().__init__(folder)
        self.server = PageServer()
        self.origin = None  # of the page's top left corner, in root pixels
        self.guess, self.target, self.tries, self.seen_before, self.patience = None, None, 0, None, 0.0

    def environment(self):
        return {name: value for name, value in browsers.environment().items() if os.environ.get(name) != value}

    def arguments(self):
        return [self.server.url(self.page)]

    def is_ready(self, window):
        with self.server.lock:
            seen, changed = self.server.seen, self.server.changed
        if not seen or not window:
            return False
        if not self.origin:
            self.calibrate(window, seen["pointer"])
        return self.origin is not None and time.monotonic() - changed > STEADY

    def calibrate(self, window, pointer):
        """Moves the pointer into the page until the page has seen it there, and once more elsewhere: a report of the page
        that comes late would go with the wrong place, but not twice. Then takes it out of the way."""
        import x11  # opens the display, which is there only now

        x, y, width, height = window["frame"]
        if self.target and pointer not in (None, self.seen_before):
            found = self.target[0] - pointer["x"], self.target[1] - pointer["y"]
            if found == self.guess:
                self.origin = found
                x11.move_pointer(0, 0)
                return
            self.guess, self.target = found, None
        elif self.target and time.monotonic() < self.patience:
            return
        self.seen_before, self.patience = pointer, time.monotonic() + 0.5
        self.tries += 1  # never the same place twice, so that the page sees a move
        self.target = int(x + width / 2 + 5 * (self.tries % 7)), int(y + height * 3 / 4)
        x11.move_pointer(*self.target)

    def version(self):
        words = subprocess.run([self.executable, "--version"], capture_output=True, text=True).stdout.split()
        return f"{self.toolkit} {next((word for word in words if word[0].isdigit()), '')}"

    def controls(self):
        with self.server.lock:
            elements = self.server.seen["elements"]
        return [self.on_screen(element) for element in elements]

    def on_screen(self, element):
        def at(box):
            return box and (box[0] + self.origin[0], box[1] + self.origin[1], box[2], box[3])

        return Control(id=element["id"], kind=element["kind"], text=element["name"], frame=at(element["frame"]),
                       text_frame=at(element["letters"]), visible=at(element["visible"]), seen=element["seen"], counted=element["isCounted"],
                       clickable=element["isClicked"], inside=element["inside"],
                       draws_parts=element["kind"] in ("date entry", "file entry"))

    def clicks(self):
        with self.server.lock:
            return [press["id"] for press in self.server.presses]

    def close(self):
        self.server.close()


class ChromiumProbe(PageProbe):
    """Its own window is known by its picture only (measured/chromium.json), so that nothing in it is clicked."""

    executable, toolkit = "chromium", "Chromium"

    def is_ready(self, window):
        self.window = window
        return super().is_ready(window)

    def controls(self):
        known = json.loads(MEASURED.read_text())
        x, y, width, height = self.window["frame"]
        if [width, height] != known["size"]:
            raise RuntimeError(f"Chromium's window is {width}x{height}, and was measured at {known['size']}")
        words = {"{title}": self.server.seen["title"], "{address}": self.server.url(self.page).removeprefix("http://")}
        return super().controls() + [
            Control(id=f"window {number}", kind=each["kind"], text=words.get(each["text"], each["text"]), clickable=False,
                    frame=(each["frame"][0] + x, each["frame"][1] + y, *each["frame"][2:]))
            for number, each in enumerate(known["controls"])]


class FirefoxProbe(PageProbe):
    """Firefox tells what is in its own window besides."""

    executable, toolkit = "firefox-esr", "Gecko"
    SCRIPT = (PAGES / "browser-window.js").read_text()

    def __init__(self, folder):
        super().__init__(folder)
        self.firefox, self.around, self.clicked = None, None, []

    def is_ready(self, window):
        if not super().is_ready(window):
            return False
        if not self.firefox:
            self.firefox = Marionette(port_of(self.folder / "profile"))
        return True

    def look_around(self):
        self.around = self.firefox.run(self.SCRIPT)

    def controls(self):
        self.look_around()
        things = [Control(id=each["id"], kind=each["kind"], text=each["text"], frame=tuple(each["frame"]), counted=each["isCounted"],
                          clickable=each["isClicked"], inside=each["inside"]) for each in self.around["things"]]
        return super().controls() + things

    def clicks(self):
        """In the order in which they are told of here: the page and the window have no clock in common."""
        self.look_around()
        for told in (super().clicks(), self.around["presses"]):
            known = sum(1 for each in self.clicked if each in told)
            self.clicked += told[known:]
        return list(self.clicked)

    def close(self):
        if self.firefox:
            self.firefox.close()
        super().close()

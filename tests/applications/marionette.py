"""Firefox's own window, told by Firefox itself: its remote protocol runs scripts in the document that the window is made of."""

import json
import socket
from pathlib import Path

LIMIT = 30.0  # seconds


class Marionette:
    def __init__(self, port):
        self.socket = socket.create_connection(("127.0.0.1", port), LIMIT)
        self.buffer, self.number = b"", 0
        self.read()  # what it is
        self.ask("WebDriver:NewSession", {})
        self.ask("Marionette:SetContext", {"value": "chrome"})

    def read(self):
        while b":" not in self.buffer:
            self.more()
        length, _, rest = self.buffer.partition(b":")
        self.buffer = rest
        while len(self.buffer) < int(length):
            self.more()
        message, self.buffer = self.buffer[:int(length)], self.buffer[int(length):]
        return json.loads(message)

    def more(self):
        received = self.socket.recv(1 << 16)
        if not received:
            raise ConnectionError("Firefox has closed the connection")
        self.buffer += received

    def ask(self, command, parameters):
        self.number += 1
        message = json.dumps([0, self.number, command, parameters]).encode()
        self.socket.sendall(str(len(message)).encode() + b":" + message)
        _, _, error, result = self.read()
        if error:
            raise RuntimeError(f"{command}: {error['message']}")
        return result

    def run(self, script):
        return self.ask("WebDriver:ExecuteScript", {"script": script, "args": []})["value"]

    def close(self):
        self.socket.close()


def port_of(profile):
    """Where Firefox listens, as it tells in its profile; None while it doesn't."""
    try:
        return int((Path(profile) / "MarionetteActivePort").read_text())
    except (OSError, ValueError):
        return None

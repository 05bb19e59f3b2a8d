"""A Java Swing window of our own, which walks its own components."""

import json
import os
import select
import subprocess
from pathlib import Path

from application import Application, Control, Probe, Shortfall

SOURCE = Path(__file__).with_name("swing") / "Plots.java"
ANSWER_LIMIT = 30.0  # seconds
# Debian installs the bridge, but leaves it to whoever starts a program to name it.
BRIDGE = "-Djavax.accessibility.assistive_technologies=org.GNOME.Accessibility.AtkWrapper"
BRIDGE_CLASSES = "/usr/share/java/java-atk-wrapper.jar"


class SwingProbe(Probe):
    """The program answers a line on its standard input with one on its standard output; both are pipes by name."""

    def __init__(self, folder):
        super().__init__(folder)
        subprocess.run(["javac", "-d", str(folder), str(SOURCE)], check=True)
        for name in ("questions", "answers"):
            os.mkfifo(folder / name)
        self.questions = self.answers = None
        self.buffer, self.told = b"", None

    def is_ready(self, window):
        if not self.questions:
            # Either end for both ways: opening a pipe by name waits for the other end else.
            self.questions = os.open(self.folder / "questions", os.O_RDWR)
            self.answers = os.open(self.folder / "answers", os.O_RDWR)
        return window["title"] == "Allotments"

    def ask(self):
        os.write(self.questions, b"\n")
        while b"\n" not in self.buffer:
            if not select.select([self.answers], [], [], ANSWER_LIMIT)[0]:
                raise TimeoutError("the Swing program gives no answer")
            self.buffer += os.read(self.answers, 1 << 16)
        line, _, self.buffer = self.buffer.partition(b"\n")
        return json.loads(line)

    def version(self):
        told = subprocess.run(["java", "-version"], capture_output=True, text=True).stderr
        return "Swing " + told.split('"')[1]

    def controls(self):
        return [Control(id=each["id"], kind=each["kind"], text=each["text"], frame=tuple(each["frame"]),
                        visible=tuple(each["visible"]), seen=each["seen"], counted=each["isCounted"], clickable=each["isClicked"],
                        inside=each["inside"]) for each in self.ask()["things"]]

    def clicks(self):
        return self.ask()["presses"]

    def close(self):
        for end in (self.questions, self.answers):
            if end is not None:
                os.close(end)


APPLICATIONS = [
    Application(name="swing", toolkit="Swing", packages=["openjdk-17-jre", "libatk-wrapper-java"],
                command=["sh", "-c", f"exec java {BRIDGE} -cp {{folder}}:{BRIDGE_CLASSES} Plots <>{{folder}}/questions 1<>{{folder}}/answers"],
                probe=SwingProbe, shortfalls=[
                    Shortfall("^combo box: ", "the text field in a combo box that can be typed into is found, and not the box around it")]),
]

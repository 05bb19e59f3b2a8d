"""LibreOffice, whose toolkit has no word of its controls but through accessibility: what can be seen is read off a picture of its
window, and a button that stays pressed in shows that it was clicked."""

import json
import subprocess
import time
from pathlib import Path

from application import Application, Control, Probe, Shortfall

MEASURED = Path(__file__).with_name("measured")
REST = 4.0  # seconds after which it adds no more tool bars
FADE = 0.3  # seconds, for the light below the pointer


class OfficeProbe(Probe):
    name = ""

    def __init__(self, folder):
        super().__init__(folder)
        self.known = json.loads((MEASURED / f"{self.name}.json").read_text())
        self.since, self.pictures, self.pressed = None, None, []

    def is_ready(self, window):
        self.since = self.since or time.monotonic()
        if time.monotonic() - self.since < REST:
            return False
        if list(window["frame"]) != self.known["window"]:
            raise RuntimeError(f"the window is at {window['frame']}, and was measured at {self.known['window']}")
        return True

    def version(self):
        told = subprocess.run(["soffice", "--version"], capture_output=True, text=True).stdout.split()
        return f"VCL {told[1]}"

    def controls(self):
        return [Control(id=str(number), kind=kind, text=text, frame=tuple(frame), counted=kind != "field",
                        clickable=text in self.known["stay"] or what in self.known["stay"], draws_parts=kind == "text area")
                for number, (kind, text, what, frame) in enumerate(self.known["controls"])] + self.cells()

    def cells(self):
        """Of a sheet; there is nothing to be seen in them but their borders."""
        if "grid" not in self.known:
            return []
        left, top, width, height, right, bottom = self.known["grid"]
        return [Control(id=f"cell {x} {y}", kind="field", text="", frame=(x, y, min(width, right - x), min(height, bottom - y)), counted=False,
                        clickable=False) for y in range(top, bottom, height) for x in range(left, right, width)]

    def pictures_now(self):
        """Of every button that can stay pressed in, with the pointer away from all of them."""
        x, y = self.known["away"]
        subprocess.run(["xdotool", "mousemove", str(x), str(y)], check=True)
        time.sleep(FADE)
        file = self.folder / "screen.png"
        subprocess.run(["import", "-window", "root", str(file)], check=True)
        pictures = {}
        for control in self.controls():
            if control.clickable:
                x, y, width, height = control.frame
                told = subprocess.run(["convert", str(file), "-crop", f"{width - 8}x{height - 8}+{x + 4}+{y + 4}", "+repage", "-format", "%#", "info:"],
                                      capture_output=True, text=True, check=True)
                pictures[control.id] = told.stdout
        return pictures

    def clicks(self):
        now = self.pictures_now()
        if self.pictures:
            self.pressed += [id for id, picture in now.items() if picture != self.pictures[id]]
        self.pictures = now
        return list(self.pressed)


def office(name, package, flag, shortfalls):
    command = ["soffice", "-env:UserInstallation=file://{folder}/office", "--norestore", "--nologo", "--nofirststartwizard", flag]
    return Application(name=name, toolkit="VCL", packages=[package, "libreoffice-gtk3"], command=command,
                       environment={"SAL_USE_VCLPLUGIN": "gtk3"},  # its choice for desktops that it doesn't know shows no tree
                       probe=type("Office", (OfficeProbe,), {"name": name}), title="LibreOffice (Writer|Calc)$", shortfalls=shortfalls)


BY_HAND = Shortfall("", "its controls are read off a picture, most of whose buttons have no borders, to a few pixels")

INPUT_LINE = Shortfall("^entry:", "no object tells of the line above a sheet that its cells are typed into")

APPLICATIONS = [
    office("libreoffice-writer", "libreoffice-writer", "--writer", [BY_HAND]),
    office("libreoffice-calc", "libreoffice-calc", "--calc", [INPUT_LINE, BY_HAND]),
]

"""GTK and Qt applications, with probes that live in them and walk the toolkit's own widgets."""

import json
import os
import socket
import time
from pathlib import Path

from application import Application, Control, Probe, Shortfall

ANSWER_LIMIT = 30.0  # seconds


class WidgetProbe(Probe):
    """The near end of the line to a probe library (probes/); each process that has loaded it connects."""

    library = ""  # its file below the build's tests/applications

    def __init__(self, folder):
        super().__init__(folder)
        self.path = Path(os.environ["TARVIX_PROBES"]) / self.library
        self.listener = socket.socket(socket.AF_UNIX)
        self.listener.bind(str(folder / "probe"))
        self.listener.listen()
        self.listener.setblocking(False)
        self.lines = {}  # pid -> Line
        self.window, self.pressed = None, []

    def environment(self):
        return {"TARVIX_PROBE": str(self.folder / "probe")}

    def is_ready(self, window):
        while True:
            try:
                connection, _ = self.listener.accept()
            except BlockingIOError:
                break
            line = Line(connection)
            hello = line.read(ANSWER_LIMIT)
            line.version = hello["version"]
            self.lines[hello["pid"]] = line
        if window["pid"] not in self.lines:
            return False
        self.window = window
        return True

    def line(self):
        return self.lines[self.window["pid"]]

    def version(self):
        return self.line().version

    def controls(self):
        line = self.line()
        line.write(str(self.window["number"]))
        while True:
            told = line.read(ANSWER_LIMIT)
            self.take(told)
            if "controls" in told:
                return [control(each) for each in told["controls"]]

    def take(self, told):
        if "pressed" in told:
            self.pressed.append(told["pressed"])

    def clicks(self):
        for line in self.lines.values():
            while (told := line.read(0)) is not None:
                self.take(told)
        return list(self.pressed)

    def close(self):
        for line in self.lines.values():
            line.connection.close()
        self.listener.close()


class Line:
    def __init__(self, connection):
        self.connection, self.pending, self.version = connection, b"", ""

    def write(self, text):
        self.connection.sendall(text.encode() + b"\n")

    def read(self, limit):
        """The next message, or None where none comes in time."""
        deadline = time.monotonic() + limit
        while b"\n" not in self.pending:
            self.connection.settimeout(max(deadline - time.monotonic(), 0.001))
            try:
                more = self.connection.recv(1 << 16)
            except TimeoutError:
                if limit == 0:
                    return None
                raise
            if not more:
                if limit == 0:
                    return None
                raise ConnectionError("the application has gone")
            self.pending += more
        line, _, self.pending = self.pending.partition(b"\n")
        return json.loads(line)


def control(told):
    return Control(id=told["id"], kind=told["kind"], text=told["text"], frame=tuple(told["frame"]),
                   text_frame=tuple(told["text_frame"]) if "text_frame" in told else None, visible=tuple(told["visible"]),
                   counted=told["counted"], seen=told["seen"], clickable=told["clickable"],
                   inside=told.get("inside"))


class Gtk3(WidgetProbe):
    library = "gtk3/libprobe_gtk3.so"

    def environment(self):
        return {**super().environment(), "GTK_MODULES": str(self.path)}


class Gtk4(WidgetProbe):
    library = "gio/libprobe_gtk4.so"

    def environment(self):
        return {**super().environment(), "GIO_EXTRA_MODULES": str(self.path.parent)}


class QtProbe(WidgetProbe):
    def environment(self):
        return {**super().environment(), "QT_QPA_GENERIC_PLUGINS": "tarvix-probe", "QT_PLUGIN_PATH": str(self.path.parent.parent)}


class Qt5(QtProbe):
    library = "qt5/generic/libprobe_qt5.so"


class Qt6(QtProbe):
    library = "qt6/generic/libprobe_qt6.so"


QT6_TOOLS = "/usr/lib/qt6/bin/"

TRANSLATIONS = """<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>Garden</name>
    <message><source>Seeds</source><translation>Samen</translation></message>
    <message><source>Water</source><translation>Wasser</translation></message>
    <message><source>Harvest</source><translation type="unfinished"></translation></message>
</context>
<context>
    <name>Kitchen</name>
    <message><source>Soup</source><translation>Suppe</translation></message>
</context>
</TS>
"""

# What no reading can mend, as the toolkits don't tell it.
STATUS_BAR = ("A status bar tells its message to accessibility and nothing else that is in it (GtkStatusbarAccessible has no children), "
              "so what an application puts there can't be found.")
FONT_BUTTON = "A button tells the first of its labels only, and the font button's size is its second."
ICON_VIEW = "The icon view of libexo 4.18 has no accessible items, so that its files are found in the list and compact views only."
CELL_VIEW = "A GtkComboBox draws its text in a GtkCellView, which tells nothing to accessibility; a GtkDropDown, which has taken its place, does."
TREE_VIEW = "GtkTreeView has no accessible rows or cells in GTK 4; GtkColumnView, which has taken its place, has."
FADED = ("The controls of a video that is not played are there, faded out: all widgets have the state VISIBLE in GTK 4.8, and nothing tells "
         "that these are transparent.")
MARKS = "The box of a slider comes without the text above it."
DISABLED_ENTRY = "An insensitive entry in a combo box is told without its border."
TAB_BUTTON = "A tab bar tells its tabs and the buttons that scroll it, but no buttons on tabs, such as the one that closes a page."
GROUP_TITLE = "Qt tells the box of a group and not that of its title, which is taken to be all above the first control."
EMPTY_RENDERERS = "Cells tell a place for each thing that could be drawn in them, drawn or not."

NOTES = {"notes.txt": "Milk\nBread\nA dozen eggs\n"}
GARDEN = {f"garden/{name}": name for name in ("beans.txt", "carrots.txt", "dill.txt")}

APPLICATIONS = [
    Application(name="gtk3-widget-factory", toolkit="GTK 3", packages=["gtk-3-examples"], command=["gtk3-widget-factory"],
                probe=Gtk3, unclicked=r"Page \d|\(None\)", quick=True,
                shortfalls=[Shortfall("^menu button: Sans Regular 12", FONT_BUTTON)]),
    Application(name="mousepad", toolkit="GTK 3", packages=["mousepad"], command=["mousepad", "{folder}/notes.txt"], files=NOTES,
                probe=Gtk3, quick=True),
    Application(name="gedit", toolkit="GTK 3", packages=["gedit"], command=["gedit", "{folder}/notes.txt"], files=NOTES, probe=Gtk3,
                shortfalls=[Shortfall("^menu button: (Plain Text|Tab Width)|^label: +(Ln|INS)", STATUS_BAR)]),
    Application(name="thunar", toolkit="GTK 3", packages=["thunar", "libexo-2-0"], command=["thunar", "{folder}/garden"], files=GARDEN,
                probe=Gtk3, shortfalls=[Shortfall("^icon:", ICON_VIEW), Shortfall("^someOtherShit:$|^cell:", EMPTY_RENDERERS)]),
    Application(name="xfce4-terminal", toolkit="GTK 3", packages=["xfce4-terminal", "libvte-2.91-0"],
                command=["xfce4-terminal", "--disable-server", "--show-menubar", "--show-toolbar", "--command",
                         "sh -c 'echo Harvest; cat'"], probe=Gtk3, unclicked=r"button: $",  # they open windows
                shortfalls=[Shortfall("^terminal", "The terminal is told with the scroll bar at its side.")]),
    Application(name="gtk4-widget-factory", toolkit="GTK 4", packages=["gtk-4-examples"], command=["gtk4-widget-factory"],
                probe=Gtk4, unclicked=r"Page \d|link",
                shortfalls=[Shortfall("^combo box: (Left|Middle|Right|Andrea|Otto)", CELL_VIEW),
                            Shortfall("cell:", TREE_VIEW), Shortfall("^AXButton:$|0:00", FADED),
                            Shortfall("^slider", MARKS), Shortfall("^combo box: comboboxentry", DISABLED_ENTRY)]),
    Application(name="gnome-calculator", toolkit="GTK 4", packages=["gnome-calculator"], command=["gnome-calculator"],
                probe=Gtk4, quick=True),
    Application(name="featherpad", toolkit="Qt 5", packages=["featherpad"], command=["featherpad", "{folder}/notes.txt"], files=NOTES,
                probe=Qt5, shortfalls=[Shortfall("^button:$", TAB_BUTTON)]),
    Application(name="qpdfview", toolkit="Qt 5", packages=["qpdfview"], command=["qpdfview", "--unique"], probe=Qt5),
    Application(name="qt6-linguist", toolkit="Qt 6", packages=["linguist-qt6"],
                command=[QT6_TOOLS + "linguist", "{folder}/garden.ts"], files={"garden.ts": TRANSLATIONS}, probe=Qt6, quick=True),
    Application(name="qt6-designer", toolkit="Qt 6", packages=["designer-qt6"], command=[QT6_TOOLS + "designer"], probe=Qt6,
                shortfalls=[Shortfall("^group:", GROUP_TITLE)]),
    Application(name="qt6-assistant", toolkit="Qt 6", packages=["assistant-qt6"], command=[QT6_TOOLS + "assistant"], probe=Qt6),
]

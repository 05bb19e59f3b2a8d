"""The document: written from results, and read again so that a run of some applications keeps the others' rows."""

from dataclasses import dataclass, field

COLUMNS = ["application", "toolkit and version", "from Debian's", "controls", "found", "frames exact", "unseen", "clicks confirmed",
           "ms"]

INTRODUCTION = """# What a search finds in applications

`tools/applications` makes this page: it starts each application on a desktop of its own, counts what a person sees in its window,
gathers the candidates of a search with the program's own services, and clicks up to ten of them.

- **controls**: counted from inside the application, by its own toolkit or page and never through accessibility; in LibreOffice and in
  Chromium's own window, which tell nobody else, read off a picture once, for these versions (`tests/applications/measured`). Counted are buttons,
  check boxes, radio buttons, switches, sliders, spin buttons, combo boxes, text fields and areas, links, tabs, menu bar entries, column
  headers, the text or check of each cell of a table, tree or icon view, group titles, progress texts and all other texts. A text on a
  button, a tab or the like is one with it. What one widget draws of itself, as a calendar or a chart does, is one control. Not counted
  are pictures that do nothing, separators, scroll bars, and the window's own buttons (close, minimize, maximize), which a search leaves
  out by its settings' defaults. What is scrolled out, on a covered page or cut off beyond its middle isn't counted.
- **found**: there is a candidate at its place (the middle of each inside the other, at least half of what the two cover in common) whose
  texts hold its text.
- **frames exact**: the candidate's frame is that of the control, or of a text the box of its letters, to 2 pixels.
- **unseen**: candidates at whose place nothing of that size, and no such text, can be seen.
- **clicks confirmed**: the application itself says that the press of the mouse reached that control; LibreOffice by a button that stays
  pressed in with the pointer away.
- **ms**: gathering the candidates, the median of 15 readings; it depends on the machine, and all rows of one run are from one machine.

No Electron application is among them: Debian 12 has none, and npm's `electron` fetches the program itself from
elsewhere.
"""

SHORTFALLS = "## What is missing, and why\n"
COMPLETE = "Nothing."
ENOUGH = 0.98  # of the controls


def is_found_well(controls, found, unseen):
    return controls > 0 and found >= ENOUGH * controls and unseen == 0


@dataclass
class Row:
    name: str
    toolkit: str
    packages: str
    controls: int
    found: int
    exact: int
    unseen: int
    clicked: int
    confirmed: int
    milliseconds: float
    shortfalls: list = field(default_factory=list)  # one line of text each

    def cells(self):
        return [self.name, self.toolkit, self.packages, str(self.controls), str(self.found), str(self.exact), str(self.unseen),
                f"{self.confirmed} of {self.clicked}", f"{self.milliseconds:.1f}"]

    def is_good(self):
        """Nearly all found, nothing unseen, and every click where it was meant to go."""
        return is_found_well(self.controls, self.found, self.unseen) and self.clicked > 0 and self.confirmed == self.clicked


def from_cells(cells):
    name, toolkit, packages, controls, found, exact, unseen, clicks, milliseconds = cells
    confirmed, clicked = clicks.split(" of ")
    return Row(name, toolkit, packages, int(controls), int(found), int(exact), int(unseen), int(clicked), int(confirmed),
               float(milliseconds))


def line(cells):
    return "| " + " | ".join(cells) + " |\n"


def write(rows):
    """The whole document."""
    rows = sorted(rows, key=lambda row: row.name)
    text = INTRODUCTION + "\n" + line(COLUMNS) + line(["---"] * 3 + ["---:"] * 6)
    text += "".join(line(row.cells()) for row in rows)
    text += "\n" + SHORTFALLS
    for row in rows:
        if row.shortfalls:
            text += f"\n### {row.name}\n\n" + "".join(f"- {shortfall}\n" for shortfall in row.shortfalls)
    if not any(row.shortfalls for row in rows):
        text += f"\n{COMPLETE}\n"
    return text


def read(text):
    """The rows of a document that write() has made."""
    rows, name = {}, None
    for each in text.splitlines():
        if each.startswith("| ") and not each.startswith(("| application |", "| --- |")):
            row = from_cells(each.strip("| \n").split(" | "))
            rows[row.name] = row
        elif each.startswith("### "):
            name = each[4:]
        elif name and each.startswith("- "):
            rows[name].shortfalls.append(each[2:])
    return list(rows.values())


def merged(old, new):
    """The new rows, and the old ones of other applications."""
    names = {row.name for row in new}
    return [row for row in old if row.name not in names] + list(new)

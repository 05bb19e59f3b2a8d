"""What a search has found, held against what a person sees."""

import re
from dataclasses import dataclass, field

NEAR = 0.5  # of two frames: the shared part of what they cover together
EXACT = 2.0  # pixels that each edge may be off
LONGEST = 200  # characters of a text that are compared

# What is clicked, the best first: a click on these does something that stays in the window.
CLICKED = ["check box", "radio button", "toggle button", "switch", "button", "entry", "spin button", "slider", "tab", "cell",
           "check cell", "row", "item", "icon", "header", "link", "text area", "terminal", "menu bar item"]


@dataclass(frozen=True)
class Candidate:
    number: int
    role: str
    text: str
    frame: tuple

    def __str__(self):
        return f"{self.role}: {self.text}"


def candidate(number, listed):
    return Candidate(number, listed["role"], plain(" ".join(listed["texts"])), tuple(listed["frame"]))


def plain(text):
    return re.sub(r"\s+", " ", text).strip()


def area(frame):
    return max(frame[2], 0) * max(frame[3], 0)


def shared(a, b):
    width = min(a[0] + a[2], b[0] + b[2]) - max(a[0], b[0])
    height = min(a[1] + a[3], b[1] + b[3]) - max(a[1], b[1])
    return max(width, 0) * max(height, 0)


def middle(frame):
    return frame[0] + frame[2] / 2, frame[1] + frame[3] / 2


def holds(frame, point):
    return frame[0] <= point[0] <= frame[0] + frame[2] and frame[1] <= point[1] <= frame[1] + frame[3]


def nearness(a, b):
    """1 for the same frame, 0 for frames without anything in common or with their middles outside each other."""
    together = area(a) + area(b) - shared(a, b)
    if together <= 0 or not holds(a, middle(b)) or not holds(b, middle(a)):
        return 0.0
    return shared(a, b) / together


def edges_off(a, b):
    return max(abs(a[0] - b[0]), abs(a[1] - b[1]), abs(a[0] + a[2] - b[0] - b[2]), abs(a[1] + a[3] - b[1] - b[3]))


def frames(control):
    return [frame for frame in (control.frame, control.text_frame, control.visible) if frame]


def fit(found, control):
    return max(nearness(found.frame, frame) for frame in frames(control))


def finds(found, control):
    """Whether a candidate is a control's: at its place, with its text."""
    return fit(found, control) >= NEAR and plain(control.text)[:LONGEST] in found.text


def is_exact(found, control):
    return min(edges_off(found.frame, frame) for frame in frames(control)) <= EXACT


def shows(control, found):
    """Whether a candidate stands for something that can be seen here: a thing of this frame, or a text on it."""
    if fit(found, control) >= NEAR:
        return True
    inside = any(holds(frame, middle(found.frame)) and shared(frame, found.frame) >= 0.9 * area(found.frame)
                 for frame in frames(control))
    return inside and (control.draws_parts or (bool(found.text) and found.text in plain(control.text)))


@dataclass
class Comparison:
    counted: int = 0
    found: dict = field(default_factory=dict)  # control id -> (Control, the best Candidate)
    missed: list = field(default_factory=list)  # Control
    inexact: list = field(default_factory=list)  # (Control, Candidate)
    unseen: list = field(default_factory=list)  # Candidate

    @property
    def exact(self):
        return len(self.found) - len(self.inexact)

    def is_complete(self):
        return self.counted > 0 and not self.missed and not self.unseen


def compare(controls, candidates):
    result = Comparison()
    for control in controls:
        if not control.counted or control.seen != "whole" or control.inside:
            continue
        result.counted += 1
        fitting = [found for found in candidates if finds(found, control)]
        if not fitting:
            result.missed.append(control)
            continue
        best = min(fitting, key=lambda found: (not is_exact(found, control), -fit(found, control)))
        result.found[control.id] = (control, best)
        if not is_exact(best, control):
            result.inexact.append((control, best))
    result.unseen = [found for found in candidates if not any(shows(control, found) for control in controls)]
    return result


def next_click(comparison, unclicked, tried):
    """The found control to click next, of a kind that was clicked least so far; none when there is none left."""
    def rank(pair):
        control = pair[0]
        same_kind = sum(kind == control.kind for _, kind in tried)
        return same_kind, not control.text, CLICKED.index(control.kind), control.frame[1], control.frame[0]

    known = {id for id, _ in tried}
    eligible = [(control, found) for control, found in comparison.found.values()
                if control.clickable and control.kind in CLICKED and control.id not in known
                and not re.search(unclicked, str(control))]
    return min(eligible, key=rank, default=None)


def is_confirmed(control, clicks):
    """A part of a cell answers with the cell's name, which comes before a "#"."""
    return control.id.split("#")[0] in {id.split("#")[0] for id in clicks}


def explain(subjects, shortfalls):
    """The reasons, each with what it is about in its order; None for what has none."""
    reasons = {}
    for subject in subjects:
        reason = next((known.reason for known in shortfalls if re.search(known.pattern, subject)), None)
        reasons.setdefault(reason, []).append(subject)
    return reasons

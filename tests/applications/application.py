"""What an application's entry is made of. README.md tells how they go together."""

from dataclasses import dataclass, field


@dataclass(frozen=True)
class Control:
    """Something that a person sees in an application's window, as its probe tells it."""

    id: str
    kind: str
    text: str
    frame: tuple  # x, y, width, height in pixels of the root window, not clipped
    text_frame: tuple | None = None  # of a text: the box of its letters, if that is another one
    visible: tuple | None = None  # what is left of the frame where something cuts it off
    counted: bool = True
    seen: str = "whole"  # or "cut"
    clickable: bool = True
    inside: str | None = None
    draws_parts: bool = False  # which its probe can't tell one by one

    def __str__(self):
        return f"{self.kind}: {self.text}"


class Probe:
    """How the independent count of one run comes about: through anything but the accessibility bus."""

    def __init__(self, folder):
        self.folder = folder

    def environment(self):
        return {}

    def arguments(self):
        return []

    def is_ready(self, window):
        raise NotImplementedError

    def version(self):
        raise NotImplementedError

    def controls(self):
        raise NotImplementedError

    def clicks(self):
        raise NotImplementedError

    def close(self):
        pass


@dataclass(frozen=True)
class Shortfall:
    pattern: str  # found in "kind: text" of a control, or in "role: text" of a candidate
    reason: str


@dataclass(frozen=True)
class Application:
    name: str
    toolkit: str
    packages: list
    command: list
    probe: type
    files: dict = field(default_factory=dict)
    environment: dict = field(default_factory=dict)
    desktop: list = field(default_factory=list)
    title: str | None = None
    unclicked: str = r"(?i)\b(quit|exit|close|cancel|ok|open|save|print|help)\b"
    quick: bool = False
    shortfalls: list = field(default_factory=list)

"""One application on the present desktop: started, counted, searched, clicked."""

import json
import os
import re
import select
import subprocess
import tempfile
import time
from pathlib import Path

from comparing import candidate, compare, explain, is_confirmed, next_click, plain, shared
from table import Row, is_found_well

START_LIMIT = 90.0  # seconds; an office suite that starts for the first time on a busy machine
ANSWER_LIMIT = 60.0
REST_LOOKS, REST_INTERVAL = 4, 0.1  # so many looks in a row that see the same
COMPLETE_LIMIT = 10.0  # an application that is busy answers later, and a search goes on without it
CLICK_LIMIT = 5.0
CLICKS, FEWER_CLICKS = 10, 4
OPENING = ["menu bar item"]
ROUNDS = 15


class RunError(Exception):
    pass


class Lister:
    """The product's own reading and clicking, by the commands of list_candidates."""

    def __init__(self, program):
        self.process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def ask(self, command):
        self.process.stdin.write(command.encode() + b"\n")
        self.process.stdin.flush()
        line = b""
        deadline = time.monotonic() + ANSWER_LIMIT
        while not line.endswith(b"\n"):
            ready, _, _ = select.select([self.process.stdout], [], [], max(deadline - time.monotonic(), 0))
            more = os.read(self.process.stdout.fileno(), 1 << 16) if ready else b""
            if not more:
                raise RunError(f"list_candidates gave no answer to {command}")
            line += more
        answer = json.loads(line)
        if isinstance(answer, dict) and "error" in answer:
            raise RunError(f"list_candidates: {answer['error']}")
        return answer

    def window(self):
        return self.ask("window")

    def candidates(self, rounds=1):
        """The candidates, and the milliseconds that gathering them took."""
        answer = self.ask(f"candidates {rounds}")
        return [candidate(number, each) for number, each in enumerate(answer["candidates"])], answer["milliseconds"]

    def close(self):
        self.process.stdin.close()
        self.process.wait(ANSWER_LIMIT)


def await_rest(look, limit, what, compared=lambda seen: seen):
    """What `look` sees once it has seen the same for some looks in a row; nothing seen (None) is never at rest."""
    deadline, seen, times = time.monotonic() + limit, None, 0
    while times < REST_LOOKS:
        now = look()
        same = now is not None and seen is not None and compared(now) == compared(seen)
        times = times + 1 if same else 0
        seen = now
        if time.monotonic() > deadline:
            raise RunError(f"{what}: not at rest after {limit:.0f} seconds")
        if times < REST_LOOKS:
            time.sleep(REST_INTERVAL)
    return seen


def places(seen):
    """Where the counted controls are: what moves by itself, as a bar that is filled does, isn't waited for."""
    return [(control.id, control.frame) for control in seen[1] if control.counted and control.seen == "whole"]


class Run:
    def __init__(self, application, program, say, brief):
        self.application, self.say, self.brief = application, say, brief
        self.folder = Path(tempfile.mkdtemp(prefix="application-"))
        self.lister = Lister(program)
        self.probe = application.probe(self.folder)

    def start(self):
        for name, text in self.application.files.items():
            path = self.folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        environment = {**os.environ, **self.probe.environment(), **self.application.environment}
        command = [part.replace("{folder}", str(self.folder)) for part in self.application.command]
        with open(self.folder / "output", "wb") as output:
            self.process = subprocess.Popen(command + self.probe.arguments(), env=environment, cwd=self.folder,
                                            stdin=subprocess.DEVNULL, stdout=output, stderr=output)

    def output(self):
        return (self.folder / "output").read_text(errors="replace")[-2000:]

    def look(self):
        """What is on the screen, when the application is there to be looked at."""
        window = self.lister.window()
        if window is None or not re.search(self.application.title or "", window["title"]):
            return None
        if not self.probe.is_ready(window):
            return None
        controls = self.probe.controls()
        return (window, controls) if places((window, controls)) else None

    def await_ready(self):
        try:
            return await_rest(self.look, START_LIMIT, self.application.name, places)
        except RunError as error:
            raise RunError(f"{error}\nactive window: {self.lister.window()}\n{self.output()}") from error

    def compare(self):
        """Some applications fill their trees when they are first asked, so the first readings find less."""
        deadline = time.monotonic() + COMPLETE_LIMIT
        while True:
            before = self.await_ready()
            candidates = await_rest(lambda: self.lister.candidates()[0], START_LIMIT, "candidates")
            after = self.await_ready()
            comparison = compare(after[1], candidates)
            has_moved = places(before) != places(after)  # a bar that goes by itself
            sizes = comparison.counted, len(comparison.found), len(comparison.unseen)
            enough = is_found_well(*sizes) if self.brief else comparison.is_complete()
            if (enough and not has_moved) or time.monotonic() > deadline + START_LIMIT * has_moved:
                return comparison

    def click(self):
        """Clicks what it finds. Gives the controls that were clicked, and those of them of which the application says so."""
        clicked, confirmed, tried = [], [], []
        while len(clicked) < (FEWER_CLICKS if self.brief else CLICKS):
            window, controls = self.await_ready()
            comparison = compare(controls, self.lister.candidates()[0])
            chosen = next_click(comparison, self.application.unclicked, tried)
            if chosen is None:
                break
            control, found = chosen
            tried.append((control.id, control.kind))
            clicked.append(control)
            self.say(f"click     {control.frame} {control} ({control.id})")
            before = len(self.probe.clicks())
            self.lister.ask(f"click {found.number}")
            deadline = time.monotonic() + CLICK_LIMIT
            while not is_confirmed(control, self.probe.clicks()[before:]) and time.monotonic() < deadline:
                time.sleep(0.02)
            if is_confirmed(control, self.probe.clicks()[before:]):
                confirmed.append(control)
            self.return_to(window, control.kind in OPENING)
        return clicked, confirmed

    def has_menu(self):
        return any(control.kind == "menu item" for control in self.probe.controls())

    def return_to(self, window, has_opened):
        """Something may have opened that takes the keyboard; it goes by Escape."""
        deadline = time.monotonic() + START_LIMIT
        while True:
            active = self.lister.window()
            if not has_opened and active and active["number"] == window["number"] and not self.has_menu():
                return
            has_opened = False
            if time.monotonic() > deadline:
                raise RunError(f"{self.application.name}: a click opened {active}, and Escape doesn't close it")
            self.lister.ask("escape")
            time.sleep(0.3)

    def close(self):
        self.probe.close()
        self.lister.close()


def packages_of(application):
    """Names and versions of the packages that are measured, without the epoch and the revision of Debian's."""
    names = []
    for package in application.packages:
        told = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], capture_output=True, text=True, check=True).stdout
        names.append(f"{package} {told.split(':')[-1].rsplit('-', 1)[0]}")
    return ", ".join(names)


def quoted(subjects):
    shown = [f"`{subject.strip().rstrip(':')}`" for subject in dict.fromkeys(subjects)]
    return ", ".join(shown[:6]) + (f" and {len(shown) - 6} more" if len(shown) > 6 else "")


UNEXPLAINED = "**no reason is known**"


def shortfalls(application, version, comparison, unconfirmed):
    """A line for each reason and each way of falling short."""
    lines = []
    for what, subjects in (("not found", [str(control) for control in comparison.missed]),
                           ("not exact", [str(control) for control, _ in comparison.inexact]),
                           ("found but unseen", [str(found) for found in comparison.unseen]),
                           ("clicked but not confirmed", [str(control) for control in unconfirmed])):
        for reason, about in explain([plain(subject)[:80] for subject in subjects], application.shortfalls).items():
            lines.append(f"{len(about)} {what} ({quoted(about)}). {version}: {reason or UNEXPLAINED}")
    return lines


def run(application, program, say=lambda text: None, brief=False):
    """The application's row; a brief run ends where it is good enough. Raises RunError where there can be none."""
    here = Run(application, program, say, brief)
    try:
        here.start()
        comparison = here.compare()
        candidates, milliseconds = here.lister.candidates(ROUNDS)
        for control in comparison.missed:
            say(f"missed    {control.frame} {control} ({control.id})")
            for found in candidates:
                if shared(found.frame, control.frame):
                    say(f"          {found.frame} {found}")
        for control, found in comparison.inexact:
            say(f"inexact   {control.frame} {control.text_frame or ''} {found.frame} {control}")
        for found in comparison.unseen:
            say(f"unseen    {found.frame} {found}")
        clicked, confirmed = here.click()
        unconfirmed = [control for control in clicked if control not in confirmed]
        for control in unconfirmed:
            say(f"no click  {control.frame} {control} ({control.id})")
        version = here.probe.version()
        return Row(application.name, version, packages_of(application), comparison.counted, len(comparison.found), comparison.exact,
                   len(comparison.unseen), len(clicked), len(confirmed), milliseconds,
                   shortfalls(application, version, comparison, unconfirmed))
    finally:
        here.close()

"""Browsers on pages of our own."""

from application import Application, Shortfall
import office
import swing
from browsing import ChromiumProbe, FirefoxProbe, browsers

# A page, and how far down it is scrolled.
PAGES = {"form": "form.html", "article": "article.html", "article-middle": "article.html?scrolled=0.5", "rows": "rows.html?scrolled=0.6"}
WIDTH, HEIGHT = 1500, 960

COVERED = Shortfall(r"^AX\w+: (\w+ no\. |Order )\d+", "what lies below a bar that stays at the top of the page is told as showing. Nothing "
                    "but a picture tells it from what can be seen")
CHROMIUM_SHORTFALLS = [
    COVERED,
    Shortfall("^tab: ", "a tab's box counts its feet in, which reach below its neighbours"),
    Shortfall(r"^entry: 127\.", "the address field is the text between its two buttons, and drawn as one with them"),
    Shortfall("^button:", "the button for a new tab is told as tall as the bar of tabs, and lights up as a circle"),
]
GECKO_SHORTFALLS = [
    COVERED,
    Shortfall(r"^text: (waiting list|is\.|first; it)", "words in bold are one text with the plain words around them, and found as that"),
    Shortfall("^(text: Pale|item: North)", "where a list follows a text without a blank, the box of the whole range is that of the list too, so that "
              "the last character is left out"),
    Shortfall("^text: ", "the blank at which a line is broken counts to the box of its text"),
]


def chromium(name, page):
    command = [part.replace("1100,900", f"{WIDTH},{HEIGHT}").replace("100,60", "40,20") for part in browsers.chromium(page, "{folder}/profile")[:-1]]
    return Application(name=f"chromium-{name}", toolkit="Chromium", packages=["chromium"], command=command,
                       probe=type("Chromium", (ChromiumProbe,), {"page": page}), unclicked="$^", shortfalls=CHROMIUM_SHORTFALLS)


def firefox(name, page):
    settings = {**browsers.FIREFOX_SETTINGS, "marionette.port": 0}
    lines = [f'user_pref("{key}", {browsers.setting(value)});\n' for key, value in settings.items()]
    command = ["firefox-esr", "--marionette", "--remote-allow-system-access", "--no-remote", "--new-instance", "--profile", "{folder}/profile", "--width", str(WIDTH), "--height", str(HEIGHT)]
    return Application(name=f"firefox-{name}", toolkit="Gecko", packages=["firefox-esr"], command=command,
                       files={"profile/user.js": "".join(lines)}, probe=type("Firefox", (FirefoxProbe,), {"page": page}),
                       unclicked="$^", shortfalls=GECKO_SHORTFALLS)


APPLICATIONS = [make(name, page) for make in (chromium, firefox) for name, page in PAGES.items()] + swing.APPLICATIONS + office.APPLICATIONS

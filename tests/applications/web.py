"""Browsers on pages of our own."""

from application import Application, Shortfall
import swing
from browsing import ChromiumProbe, FirefoxProbe, browsers

# A page, and how far down it is scrolled.
PAGES = {"form": "form.html", "article": "article.html", "article-middle": "article.html?scrolled=0.5", "rows": "rows.html?scrolled=0.6"}
WIDTH, HEIGHT = 1500, 960

COVERED = Shortfall(r"AX\w+: (\w+ no\. |Order )\d+", "what lies under a bar that stays at the top of the page is told as showing, "
                    "and nothing but a picture tells it from what is above")


def chromium(name, page):
    command = [part.replace("1100,900", f"{WIDTH},{HEIGHT}").replace("100,60", "40,20") for part in browsers.chromium(page, "{folder}/profile")[:-1]]
    return Application(name=f"chromium-{name}", toolkit="Chromium", packages=["chromium"], command=command,
                       probe=type("Chromium", (ChromiumProbe,), {"page": page}), unclicked="$^", shortfalls=[COVERED])


def firefox(name, page):
    settings = {**browsers.FIREFOX_SETTINGS, "marionette.port": 0}
    lines = [f'user_pref("{key}", {browsers.setting(value)});\n' for key, value in settings.items()]
    command = ["firefox-esr", "--marionette", "--remote-allow-system-access", "--no-remote", "--new-instance", "--profile", "{folder}/profile", "--width", str(WIDTH), "--height", str(HEIGHT)]
    return Application(name=f"firefox-{name}", toolkit="Gecko", packages=["firefox-esr"], command=command,
                       files={"profile/user.js": "".join(lines)}, probe=type("Firefox", (FirefoxProbe,), {"page": page}),
                       unclicked="$^", shortfalls=[COVERED])


APPLICATIONS = [make(name, page) for make in (chromium, firefox) for name, page in PAGES.items()] + swing.APPLICATIONS

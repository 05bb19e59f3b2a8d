"""What is in the Debian package, and whether those who read it find it in order. TARVIX_PACKAGE is its path."""

import gzip
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

PACKAGE = os.environ["TARVIX_PACKAGE"]

FILES = """
/usr/bin/tarvix
/usr/share/applications/org.tarvix.Tarvix.desktop
/usr/share/dbus-1/services/org.tarvix.Tarvix.service
/usr/share/doc/tarvix/changelog.gz
/usr/share/doc/tarvix/copyright
/usr/share/icons/hicolor/scalable/apps/org.tarvix.Tarvix.svg
/usr/share/icons/hicolor/symbolic/apps/org.tarvix.Tarvix-symbolic.svg
/usr/share/man/man1/tarvix.1.gz
/usr/share/metainfo/org.tarvix.Tarvix.metainfo.xml
""".split()


def output_of(*command, **more):
    """What a program says, on both outputs; it has to succeed."""
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **more)
    if done.returncode != 0:
        raise AssertionError(f"{command[0]} ended with status {done.returncode}:\n{done.stdout}")
    return done.stdout


class Content(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.root = Path(folder.name)
        subprocess.run(["dpkg-deb", "-x", PACKAGE, cls.root], check=True)

    def file(self, ending):
        return next(self.root / name[1:] for name in FILES if name.endswith(ending))

    def test_it_has_these_files_and_no_others(self):
        found = sorted(f"/{path.relative_to(self.root)}" for path in self.root.rglob("*") if not path.is_dir())
        self.assertEqual(found, FILES)

    def test_everybody_may_read_them_and_only_the_program_is_run(self):
        modes = {name: oct((self.root / name[1:]).stat().st_mode & 0o7777) for name in FILES}
        self.assertEqual(modes, {name: "0o755" if name == "/usr/bin/tarvix" else "0o644" for name in FILES})

    def test_the_desktop_file_is_valid(self):
        self.assertEqual(output_of("desktop-file-validate", self.file(".desktop")), "")

    def test_the_metainfo_is_valid(self):
        output_of("appstreamcli", "validate", "--no-net", "--pedantic", self.file(".metainfo.xml"))

    def test_the_manual_page_has_no_warnings(self):
        environment = dict(os.environ, LC_ALL="C.UTF-8", MANROFFSEQ="", MANWIDTH="80")
        said = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", self.file(".1.gz")],
                              env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, check=True)
        self.assertEqual(said.stderr, "")

    def test_the_manual_page_tells_of_each_option_that_help_tells_of(self):
        page = gzip.open(self.file(".1.gz"), "rt").read().replace("\\-", "-")
        told = output_of(self.file("/tarvix"), "--help")
        options = set(re.findall(r"--[a-z]+", told[:told.index("Exit status")])) | {"doctor"}
        self.assertGreater(len(options), 3)
        self.assertEqual([option for option in sorted(options) if option not in page], [])

    def test_the_version_is_everywhere_the_same(self):
        version = output_of("dpkg-deb", "-f", PACKAGE, "Version").strip()
        self.assertEqual(output_of(self.file("/tarvix"), "--version"), f"tarvix {version}\n")
        self.assertIn(f'"Tarvix {version}"', gzip.open(self.file(".1.gz"), "rt").readline())
        self.assertTrue(gzip.open(self.file("changelog.gz"), "rt").readline().startswith(f"tarvix ({version}) "))
        releases = re.findall(r'<release version="([^"]*)"', self.file(".metainfo.xml").read_text())
        self.assertEqual(releases[0], version)

    def test_the_bus_starts_the_installed_program(self):
        lines = self.file(".service").read_text().splitlines()
        self.assertEqual(lines, ["[D-BUS Service]", "Name=org.tarvix.Tarvix", "Exec=/usr/bin/tarvix --dbus-service"])

    @unittest.skipIf(os.environ.get("TARVIX_CONFIGURATION") == "Debug", "assertions name their source files")
    def test_nothing_in_it_knows_where_it_was_built(self):
        folder = str(Path(__file__).resolve().parents[2]).encode()
        self.assertEqual([name for name in FILES if folder in (self.root / name[1:]).read_bytes()], [])

    def test_lintian_finds_nothing(self):
        # It speaks of being root on the error output. An optimised build is what is given to people; another one isn't
        # hardened, which it only informs of.
        said = subprocess.run(["lintian", "--no-cfg", "--fail-on", "error,warning", PACKAGE], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, check=False)
        self.assertEqual((said.returncode, said.stdout), (0, ""), said.stderr)


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/python3
"""What the build installs: everything is where it belongs, desktops understand it, the manual is one
valid page, and a directory opens from another program. The first argument is the build directory."""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

BUILD = os.path.abspath(sys.argv.pop(1))
SOURCES = Path(__file__).resolve().parents[2]


def run(*command, **how):
    return subprocess.run(command, check=True, capture_output=True, text=True, **how)


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        os.umask(0o022)
        cls.directory = Path(tempfile.mkdtemp(prefix="fennick-test."))
        cls.addClassCleanup(shutil.rmtree, cls.directory)
        cls.prefix = re.search("^CMAKE_INSTALL_PREFIX:PATH=(.*)", Path(BUILD, "CMakeCache.txt").read_text(), re.M)[1]
        run("cmake", "--install", BUILD, env=dict(os.environ, DESTDIR=cls.directory))
        cls.root = Path(f"{cls.directory}{cls.prefix}")

    def test_no_file_is_missing(self):
        share = self.root / "share"
        marks = r'\b(?:id|href|src)="[^"]*"'
        english = re.findall(marks, (share / "fennick/Help/fennick.htm").read_text(encoding="utf-8"))
        for language in ["", *(SOURCES / "po/LINGUAS").read_text().split()]:
            manual = share / "fennick/Help" / language / "fennick.htm"
            text = manual.read_text(encoding="utf-8")
            self.assertEqual(set(re.findall('src="([^"]+)"', text)), {path.name for path in manual.parent.glob("*.png")})
            self.assertEqual(subprocess.run(["tidy", "-e", "-q", "-utf8", manual], capture_output=True).stderr, b"")
            # It leads nowhere but to itself.
            self.assertNotRegex(text, r"(?i)https?:|src\s*=\s*\"//|@import|url\(|<(script|link|iframe|object|embed)\b")
            links = set(re.findall('href="([^"]*)"', text))
            self.assertTrue(links and links <= {f"#{name}" for name in re.findall(r'\bid="([^"]*)"', text)})
            self.assertEqual(sorted(re.findall(marks, text)), sorted(english), language)
            catalogue = share / f"locale/{language}/LC_MESSAGES/fennick.mo"
            self.assertTrue(catalogue.exists() or not language, language)
        self.assertEqual(len(list(share.glob("icons/hicolor/*/apps/fennick.*"))), 10)

    def test_it_knows_where_its_files_are(self):
        program = self.root / "bin/fennick"
        for name in ("fennick/Help", "locale"):
            self.assertIn(f"{self.prefix}/share/{name}".encode(), program.read_bytes())
        number, date = run(program, "--version", env={}).stdout.split()[2:4]
        self.assertIn(f'<release version="{number}" date="{date.replace("/", "-")}"/>',
                      (self.root / "share/metainfo/alt.fennick.fennick.metainfo.xml").read_text())

    def test_what_describes_it_is_valid(self):
        share = self.root / "share"
        self.assertEqual(run("desktop-file-validate", *(share / "applications").iterdir()).stdout, "")
        metainfo = share / "metainfo/alt.fennick.fennick.metainfo.xml"
        checked = subprocess.run(["appstreamcli", "validate", "--no-net", metainfo], capture_output=True, text=True)
        self.assertIn("alt.fennick.fennick", checked.stdout)
        found = re.findall("^ *[EW]: .*", checked.stdout, re.MULTILINE)
        self.assertEqual([line for line in found if "url-homepage-missing" not in line], [], "it has no homepage")
        self.assertNotIn("@", (share / "man/man1/fennick.1").read_text())

    def test_a_directory_opens_from_another_program(self):
        home = Path(tempfile.mkdtemp(prefix="fennick-test."))
        self.addCleanup(shutil.rmtree, home)
        moved = home / "moved"
        # Not below DESTDIR: this way the index of programs is made as well.
        run("cmake", "--install", BUILD, "--prefix", moved)
        report = home / "report"
        program = moved / "bin/fennick"
        program.write_text(f"#!/bin/sh\nprintf '%s\\n' \"$#\" \"$@\" >'{report}.new'\nmv '{report}.new' '{report}'\n")
        # Nothing of this machine's own programs and preferences.
        variables = dict(HOME=str(home), XDG_DATA_HOME=str(home), XDG_DATA_DIRS=f"{moved}/share",
                         XDG_CONFIG_HOME=str(home), XDG_CONFIG_DIRS=str(home), XDG_CURRENT_DESKTOP="",
                         PATH=f"{moved}/bin:" + os.environ["PATH"])
        directory = home / "100%20 'Ümläut' \"$it\""
        directory.mkdir()
        # Another program opens directories, or none, until the user chooses this one.
        self.assertNotIn("fennick", run("gio", "mime", "inode/directory", env=dict(os.environ, **variables)).stdout)
        run("gio", "mime", "inode/directory", "fennick-folder-handler.desktop", env=dict(os.environ, **variables))
        run("gio", "open", directory, env=dict(os.environ, **variables))
        end = time.monotonic() + 20
        while not report.exists() and time.monotonic() < end:
            time.sleep(0.01)
        self.assertEqual(report.read_text(), f"2\n--root\n{directory}\n")


if __name__ == "__main__":
    unittest.main(verbosity=2)

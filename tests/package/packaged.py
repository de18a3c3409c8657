#!/usr/bin/python3
"""The Debian package: it is made, installed into a system without anything else in it, run from
there, and removed without a trace. The first argument is the directory of the sources."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SOURCES = Path(sys.argv.pop(1)).resolve()


def run(*command, **how):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **how).stdout


class Packaged(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        os.umask(0o022)
        # The script judges the package, too, and fails where there is anything to warn of. It needs
        # no root: CMake wants to write down what it installed, and no more.
        made = Path(tempfile.mkdtemp(prefix="fennick-test."))
        cls.addClassCleanup(shutil.rmtree, made)
        manifest = Path(os.environ["FENNICK_BUILD"]) / "install_manifest.txt"
        manifest.touch()
        if os.geteuid() == 0:
            made.chmod(0o777)
            manifest.chmod(0o666)
        cls.package = run(SOURCES / "script/as-user", SOURCES / "script/package", made / "package",
                          stdin=subprocess.DEVNULL, env=dict(os.environ, HOME=str(made))).splitlines()[-1]
        cls.root = Path(tempfile.mkdtemp(prefix="fennick-test."))
        cls.addClassCleanup(shutil.rmtree, cls.root)
        for directory in ("info", "updates"):
            (cls.root / "var/lib/dpkg" / directory).mkdir(parents=True)
        (cls.root / "var/lib/dpkg/status").touch()

    def dpkg(self, *arguments):
        # What it depends on is part of this system, not of that one.
        options = (f"--root={self.root}", "--log=/dev/null", "--force-depends,not-root,bad-path")
        run("dpkg", *options, *arguments, stderr=subprocess.STDOUT)

    def test_it_installs_runs_and_goes(self):
        self.dpkg("--install", self.package)
        self.assertIn("Version", run(self.root / "usr/bin/fennick", "--version"))
        self.dpkg("--purge", "fennick")
        self.assertEqual(list(self.root.rglob("*fennick*")), [])


if __name__ == "__main__":
    unittest.main(verbosity=2)

#!/usr/bin/python3
"""The first minutes with the built program where little is as usual: no home directory, a language
that the machine has not got, and a small far-away screen without a window manager. The first
argument is the program; tests to run may follow."""

import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = os.path.abspath(sys.argv.pop(1))
DEADLINE = 20
WIDTH, HEIGHT = 1024, 600


def wait_for(what, condition):
    end = time.monotonic() + DEADLINE
    while not (result := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.02)
    return result


class First(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # No shared memory, as from another machine, and nobody who would decorate or activate windows.
        reading, writing = os.pipe()
        server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-dpi", "96", "-nolisten",
             "tcp", "-noreset", "-extension", "MIT-SHM"], pass_fds=[writing], stderr=subprocess.DEVNULL)
        cls.addClassCleanup(server.wait)
        cls.addClassCleanup(server.terminate)
        os.close(writing)
        with os.fdopen(reading) as number:
            cls.display = f":{number.readline().strip()}"

    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="fennick-test.")
        self.addCleanup(scratch.cleanup)
        self.home = scratch.name
        self.variables = dict(os.environ, DISPLAY=self.display, HOME=self.home, LC_ALL="C.UTF-8")

    def start(self, *arguments, **how):
        process = subprocess.Popen([PROGRAM, *arguments], env=self.variables, stderr=subprocess.PIPE, text=True, **how)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def xdotool(self, *words):
        done = subprocess.run(["xdotool", *words], env=self.variables, capture_output=True, text=True)
        return done.stdout.split()

    def windows(self, process, name):
        self.assertIsNone(process.poll(), "it ended by itself")
        return self.xdotool("search", "--all", "--onlyvisible", "--pid", str(process.pid), "--name", f"^{name}$")

    def point_at_window(self, process):
        window = wait_for("a window", lambda: self.windows(process, "Fennick"))[0]
        self.xdotool("mousemove", "--window", window, "300", "200")

    def expect_on_screen(self, window):
        shape = dict(word.split("=") for word in self.xdotool("getwindowgeometry", "--shell", window))
        x, y, width, height = (int(shape[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))
        self.assertTrue(x >= 0 and y >= 0 and x + width <= WIDTH and y + height <= HEIGHT, shape)

    def ended(self, process, status=0, errors=""):
        said = process.communicate(timeout=DEADLINE)[1]
        self.assertEqual((process.returncode, said), (status, errors))

    def test_keys_and_dialogs_without_a_window_manager(self):
        os.mkdir(f"{self.home}/directory")
        process = self.start()
        self.point_at_window(process)
        self.expect_on_screen(self.windows(process, "Fennick")[0])
        self.xdotool("key", "Tab")
        for menu, entry, title in [("f", "p", "Property.*"), ("f", "c", "Copy"), ("f", "d", "Delete"),
                                   ("e", "f", "Find File"), ("e", "l", "Symbolic link"), ("s", "o", "Option"),
                                   ("l", "s", "Sort"), ("h", "a", "Abort")]:
            with self.subTest(title):
                self.xdotool("key", f"alt+{menu}", entry)
                dialog = wait_for(title, lambda: self.windows(process, title))[0]
                self.expect_on_screen(dialog)
                self.xdotool("key", "Escape")
                wait_for("its end", lambda: not self.windows(process, title))
        self.xdotool("key", "Return", "ctrl+w")
        self.ended(process)
        with open(f"{self.home}/.fennick", encoding="utf-8") as file:
            self.assertIn(f"CurrentDir={self.home}/directory/\n", file.read())

    def test_a_language_that_is_not_there(self):
        self.variables.update(LANG="xx_YY.UTF-8", LC_ALL="xx_YY.UTF-8")
        process = self.start()
        self.point_at_window(process)
        self.xdotool("key", "ctrl+w")
        self.ended(process)

    def test_no_home(self):
        del self.variables["HOME"]
        process = self.start()
        self.point_at_window(process)
        self.xdotool("key", "ctrl+w")
        self.ended(process)
        self.variables["HOME"] = f"{self.home}/nowhere"
        self.ended(self.start(), errors=f"fennick: cannot read the directory {self.home}/nowhere/\n")

    def test_a_home_that_takes_no_files(self):
        os.chmod(self.home, 0o555)
        if os.geteuid() == 0:
            os.chown(self.home, 65534, 65534)
        process = self.start(user=65534 if os.geteuid() == 0 else None)
        self.point_at_window(process)
        process.send_signal(signal.SIGTERM)
        self.ended(process)
        self.assertEqual(os.listdir(self.home), [])


if __name__ == "__main__":
    unittest.main(verbosity=2)

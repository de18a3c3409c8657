#!/usr/bin/python3
"""The built program from outside: what only the window manager, a person at mouse and keys, a screen
reader, another program or another locale gets to see. The first argument is the program; tests to
run may follow. Every step waits for what it leads to; nothing may be written to the error output."""

import gettext
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

PROGRAM = os.path.abspath(sys.argv.pop(1))
DEADLINE = 60


def wait_for(what, condition, act=None):
    """Acts, and once more every ten seconds: what is done to a loaded machine may come to nothing."""
    start = time.monotonic()
    acted, end = start - 10, start + DEADLINE
    while True:
        if act and time.monotonic() >= acted + 10:
            act()
            acted = time.monotonic()
        try:
            if result := condition():
                return result
        except GLib.Error:  # The accessible tree changes while one walks through it.
            pass
        assert time.monotonic() < end, f"waited in vain for {what() if callable(what) else what}"
        time.sleep(0.02)


def children(node):
    return filter(None, (node.get_child_at_index(index) for index in range(min(node.get_child_count(), 40))))


class Fennick:
    """A running program, its window and, once look_for has found them, what screen readers see of it."""

    def __init__(self, test, *arguments, home=None, through=(), **variables):
        self.home, self.errors = home or test.home, tempfile.TemporaryFile()
        variables = {**os.environ, **test.variables, "HOME": self.home, **variables}
        self.variables = {key: value for key, value in variables.items() if value is not None}
        self.xdotool("mousemove", "10000", "10000")  # A button that comes up under the pointer shows its tip.
        self.process = subprocess.Popen([*through, PROGRAM, *arguments], env=self.variables, stderr=self.errors)
        for cleanup in (self.errors.close, self.process.wait, self.process.kill):
            test.addCleanup(cleanup)
        self.window = wait_for("a window", lambda: self.windows("Fennick"))[0]

    def look_for(self, *names):
        self.application = wait_for("the accessible program", lambda: next(
            (child for child in children(Atspi.get_desktop(0)) if child.get_process_id() == self.process.pid), None))
        self.bar, self.entry, self.list = (wait_for(name, lambda: self.find(name)) for name in names)
        self.xdotool("windowactivate", self.window)
        wait_for("the focus", lambda: self.xdotool("getactivewindow").split() == [self.window])
        return self

    def xdotool(self, *words):
        # A search fails where it finds nothing, and over a window that goes away meanwhile.
        return subprocess.run(["xdotool", *words], env=self.variables, capture_output=True, text=True).stdout

    def windows(self, name):
        assert self.process.poll() is None, f"ended with {self.process.returncode}"
        search = ("search", "--all", "--onlyvisible", "--pid", str(self.process.pid), "--name", f"^{name}$")
        return self.xdotool(*search).split()

    def keys(self, *keys):
        self.xdotool("key", "--clearmodifiers", *keys)

    def ended(self, errors=""):
        """Stored values by key; of a key of several sections, that of the first."""
        status = self.process.wait(DEADLINE)
        self.errors.seek(0)
        assert (status, said := self.errors.read().decode()) == (0, errors), f"{status} {said}"
        if os.path.exists(f"{self.home}/.fennick"):
            with open(f"{self.home}/.fennick", encoding="utf-8", errors="surrogateescape") as file:
                return dict(reversed([line.rstrip("\n").split("=", 1) for line in file if "=" in line]))

    def end(self, errors=""):
        self.process.terminate()
        return self.ended(errors)

    def find(self, name, node=None):
        node = node or self.application
        if node.get_name() == name:
            return node
        return next((found for child in children(node) if (found := self.find(name, child))), None)

    def expect(self, status=None, location=None, act=None):
        def state():
            return self.bar.get_description(), Atspi.Text.get_text(self.entry, 0, -1)
        wait_for(lambda: f"{status}, {location}: {state()}", lambda: all(
            wanted in (None, seen) for wanted, seen in zip((status, location), state())), act)

    def place_of(self, name, node=None):
        def look():
            found = self.find(name, node)
            place = found and Atspi.Component.get_extents(found, Atspi.CoordType.SCREEN)
            return place if place and place.width > 0 and place.x >= 0 else None
        place = wait_for(f"a place of {name}", look)
        return str(place.x + min(place.width // 2, 20)), str(place.y + place.height // 2)

    def click(self, name, *, times=1, node=None):
        self.xdotool("mousemove", *self.place_of(name, node), "click", "--repeat", str(times), "--delay", "50", "1")


class Program(unittest.TestCase):
    def setUp(self):
        os.umask(0o022)
        self.directory = tempfile.mkdtemp(prefix="fennick-test.")
        self.addCleanup(shutil.rmtree, self.directory)
        os.chmod(self.directory, 0o755)
        self.home = f"{self.directory}/home"
        self.variables = dict(LANG="C.UTF-8", LC_ALL="C.UTF-8", LANGUAGE="", TZ="UTC", XDG_CONFIG_HOME=self.directory)
        # A loaded machine takes its time between the clicks of a double click.
        self.file("../gtk-3.0/settings.ini", "[Settings]\ngtk-double-click-time=5000\n")
        os.mkdir(self.home)

    def file(self, name, text=""):
        path = os.path.normpath(f"{self.home}/{name}")
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def start(self, *arguments, **how):
        return Fennick(self, *arguments, **how).look_for("Status", "Location", "File list")

    def test_the_command_line(self):
        inherited = {key: value for key, value in {**os.environ, "HOME": self.home}.items() if key != "DISPLAY"}
        for arguments, expected in [
                (["--version"], (0, "")),
                ([], (1, "fennick: there is no display to open a window on, DISPLAY is not set\n"))]:
            done = subprocess.run([PROGRAM, *arguments], env=inherited, capture_output=True, text=True)
            self.assertEqual((done.returncode, done.stderr), expected)
        self.assertEqual(os.listdir(self.home), [])
        # Closed standard descriptors are used for nothing else.
        closed = ["sh", "-c", 'exec "$0" <&- >&- 2>&-', PROGRAM]
        process = subprocess.Popen(closed, env={**os.environ, "HOME": self.home})
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        wait_for("the settings", lambda: os.path.exists(f"{self.home}/.fennick"))
        self.assertEqual([os.readlink(f"/proc/{process.pid}/fd/{number}") for number in range(3)], ["/dev/null"] * 3)

    def test_a_desktop_knows_its_windows(self):
        stored = dict(WindowX="101", WindowY="87", WindowWidth="643", WindowHeight="431", PandPosition="213")
        self.file(".fennick", "[Main Window]\n" + "".join(f"{key}={value}\n" for key, value in stored.items()))
        fennick = self.start()
        found = subprocess.run(["xprop", "-id", fennick.window, "-notype", "WM_CLASS"], capture_output=True, text=True)
        self.assertEqual(found.stdout, 'WM_CLASS = "fennick", "Fennick"\n')
        fennick.keys("alt+s", "o")
        wait_for("the options", lambda: fennick.windows("Option"))
        # A screen reader looks at all of it; the toolkit must not complain when it ends.
        wait_for("its accessible", lambda: fennick.find("Option") and not fennick.find("nothing"))
        fennick.keys("Escape")
        wait_for("its end", lambda: not fennick.windows("Option"))
        fennick.keys("alt+F4")  # The window manager's own.
        self.assertLessEqual(stored.items(), fennick.ended().items(), "the window drifts")

    def test_signals_end_it_with_its_settings_written(self):
        broken = f"{self.home}/" + os.fsdecode(b"\xff\xfe")
        os.mkdir(broken)
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGQUIT, signal.SIGHUP):
            fennick = self.start("--home", self.home, broken)
            os.remove(f"{self.home}/.fennick")
            fennick.keys("alt+f", "Up")
            fennick.expect(" Close this window.")
            fennick.process.send_signal(number)
            fennick.process.send_signal(signal.SIGTERM)
            self.assertEqual(fennick.ended()["CurrentDir"], broken + "/")

    def test_a_lost_display_ends_it_with_its_settings_written(self):
        def stored(pause):
            read, write = os.pipe()
            server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-noreset"], pass_fds=[write],
                                      stderr=subprocess.DEVNULL)
            for cleanup in (server.wait, server.kill):
                self.addCleanup(cleanup)
            fennick = Fennick(self, DISPLAY=f":{os.read(read, 10).decode().strip()}")
            fennick.xdotool("windowsize", fennick.window, "641", "437", "windowmove", fennick.window, "33", "44")
            time.sleep(pause)  # What it has seen of its window cannot be told from outside.
            server.terminate()
            return fennick.ended()
        seen = dict(WindowX="33", WindowY="44", WindowWidth="641", WindowHeight="437", PandPosition="200")
        self.assertTrue(any(seen.items() <= stored(pause).items() for pause in (0.5, 2, 10)))

    def test_mouse_keys_other_programs_and_windows(self):
        self.file("dir/x")
        viewer = f"{self.home}/viewer"
        self.file("viewer", '#!/bin/sh\nprintf %s "$*" >"$0.new"\nmv "$0.new" "$0.seen"\n')
        os.chmod(viewer, 0o755)
        self.file("a b.txt", "...")
        self.file(".extension", f"[Extension]\ntxt={viewer}\n")
        source = self.start()
        source.expect(f" {self.home}/dir/", f"{self.home}/dir/", lambda: source.click("dir", times=2, node=source.list))
        source.keys("Tab", "Down")
        source.expect(" x  0KByte")
        source.click("Location", times=3)
        source.xdotool("type", "--delay", "1", self.home)
        source.keys("Return")
        source.expect(location=f"{self.home}/")
        wait_for("the viewer", lambda: os.path.exists(viewer + ".seen"),
                 lambda: source.click("a b.txt", times=2, node=source.list))
        with open(viewer + ".seen", encoding="utf-8") as file:
            self.assertEqual(file.read(), f"{self.home}/a b.txt")
        source.keys("alt+f")
        source.expect(" Create a new window.")
        source.keys("w")

        def others():
            windows = source.xdotool("search", "--onlyvisible", "--name", "^Fennick$").split()
            return {source.xdotool("getwindowpid", each).strip() for each in windows} - {str(source.process.pid), ""}

        process = int(wait_for("another window", others).pop())
        self.assertEqual(os.getsid(process), process)
        self.assertEqual(os.readlink(f"/proc/{process}/exe"), PROGRAM, "it is not installed and finds itself")
        os.kill(process, signal.SIGTERM)
        wait_for("its end", lambda: not others())
        source.keys("ctrl+w")
        self.assertEqual(source.ended()["CurrentDir"], f"{self.home}/")

    def test_other_locales(self):
        subprocess.run(["localedef", "-i", "ja_JP", "-f", "EUC-JP", f"{self.directory}/ja_JP.EUC-JP"], check=True)
        columns = dict(ColumnCount="2", ColumnPosition0="0", ColumnPosition1="8")
        self.file(".fennick", "[Detailed View]\n" + "".join(f"{key}={value}\n" for key, value in columns.items()))
        self.file("a")
        os.utime(f"{self.home}/a", (983955900, 983955900))
        for locale, shown in [("ja_JP.EUC-JP", ["ファイル(F)", "戻る", "名前", "更新日時", "2001/03/07 09:05"]),
                              ("xx_YY.UTF-8", ["File(F)", "Back", "Name", "Mar 07 2001 09:05"])]:
            text = gettext.translation("fennick", f"{os.path.dirname(PROGRAM)}/locale", [locale], fallback=True).gettext
            fennick = Fennick(self, LANG=locale, LC_ALL=locale, LOCPATH=self.directory)
            fennick.look_for(*map(text, ("Status", "Location", "File list")))
            for each in shown:
                wait_for(each, lambda: fennick.find(each))
            fennick.keys("alt+e")
            fennick.expect(" " + text("Select all files in the current Directory."))
            self.assertLessEqual(columns.items(), fennick.end().items())

    def test_no_home_or_a_closed_one(self):
        Fennick(self, HOME=None).end()
        os.mkdir(f"{self.directory}/closed", 0o555)
        # An ordinary user may not reach a program below the home of root; root without capabilities does.
        through = ["setpriv", "--inh-caps=-all", "--bounding-set=-all"] if os.geteuid() == 0 else []
        closed = f"{self.directory}/closed"
        fennick = Fennick(self, home=closed, through=through)
        fennick.end(f"fennick: cannot save the settings in {closed}/.fennick\n")
        self.assertEqual(os.listdir(closed), [])
        gone = f"{self.directory}/gone/"
        done = subprocess.run([PROGRAM], env={**os.environ, "HOME": gone}, capture_output=True, text=True, timeout=60)
        self.assertEqual((done.returncode, done.stderr), (0, f"fennick: cannot read the directory {gone}\n"))


if __name__ == "__main__":
    unittest.main(verbosity=2)

#!/usr/bin/python3
"""The built program from outside: what it looks like to the window manager, to a person at mouse
and keys, and to a screen reader. The first argument is the program; tests to run may follow.

Every step waits for what it leads to, with a deadline; the program must never write to its error
output."""

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
DEADLINE = 20


def wait_for(what, condition):
    end = time.monotonic() + DEADLINE
    while True:
        try:
            result = condition()
        except GLib.Error:  # The accessible tree changes while one walks through it.
            result = None
        if result:
            return result
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.02)


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


class Fennick:
    """A running program and its window. Without a locale it speaks English; text translates what is
    looked for from that."""

    def __init__(self, home, *arguments, locale="C.UTF-8", text=str, **variables):
        self.home = home
        self.text = text
        self.errors = tempfile.TemporaryFile()
        environment = {**os.environ, "HOME": home, "LANG": locale, "LC_ALL": locale, "LANGUAGE": "", **variables}
        # A button that comes up under the pointer would show its tip.
        run("xdotool", "mousemove", "10000", "10000")
        self.process = subprocess.Popen([PROGRAM, *arguments], env=environment, stderr=self.errors)
        self.window = wait_for("a window", self.find_window)
        self.application = wait_for("the accessible program", self.find_application)
        wait_for("a status", lambda: self.status())
        # The window manager leaves the focus with a window that is in use.
        run("xdotool", "windowactivate", self.window)
        wait_for("the focus", lambda: run("xdotool", "getactivewindow").strip() == self.window)

    def windows_called(self, name):
        search = ["xdotool", "search", "--all", "--onlyvisible", "--pid", str(self.process.pid), "--name", name]
        return subprocess.run(search, capture_output=True, text=True).stdout.split()

    def find_window(self):
        found = self.windows_called("^Fennick$")
        assert self.process.poll() is None, f"ended at its start with {self.process.returncode}"
        return found[0] if found else None

    @staticmethod
    def all_windows():
        # The search fails over a window that goes away meanwhile.
        search = ["xdotool", "search", "--onlyvisible", "--name", "^Fennick$"]
        return subprocess.run(search, capture_output=True, text=True).stdout.split()

    def find_application(self):
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            if child and child.get_process_id() == self.process.pid:
                return child
        return None

    def find(self, name, node=None):
        """The first accessible of that name."""
        node = node or self.application
        if node.get_name() == name:
            return node
        for index in range(min(node.get_child_count(), 40)):
            child = node.get_child_at_index(index)
            found = self.find(name, child) if child else None
            if found:
                return found
        return None

    def status(self):
        node = self.find(self.text("Status"))
        return node.get_description() if node else None

    def location(self):
        return Atspi.Text.get_text(self.find("Location"), 0, -1)

    def await_status(self, text):
        wait_for(f"status {text!r}, it is {self.status()!r}", lambda: self.status() == text)

    def await_location(self, path):
        wait_for(f"location {path!r}, it is {self.location()!r}", lambda: self.location() == path)

    def keys(self, *keys):
        run("xdotool", "key", "--clearmodifiers", *keys)

    def point_at(self, name, node=None):
        run("xdotool", "mousemove", *map(str, self.place_of(name, node)))

    def click(self, name, *, times=1, key=None, node=None):
        self.point_at(name, node)
        hold = ["keydown", key] if key else []
        drop = ["keyup", key] if key else []
        click = ["click", "--repeat", str(times), "--delay", "50", "1"]
        run("xdotool", *hold, *click, *drop)

    def click_row(self, name, **how):
        self.click(name, node=self.find("File list"), **how)

    def place_of(self, name, node=None):
        place = Atspi.Component.get_extents(self.find(name, node), Atspi.CoordType.SCREEN)
        return place.x + min(place.width // 2, 20), place.y + place.height // 2

    def geometry(self):
        words = run("xdotool", "getwindowgeometry", "--shell", self.window).split()
        return {key: int(value) for key, value in (word.split("=") for word in words)}

    def settings(self):
        """Values by key; of a key of several sections, that of the first."""
        with open(os.path.join(self.home, ".fennick"), encoding="utf-8", errors="surrogateescape") as file:
            return dict(reversed([line.rstrip("\n").split("=", 1) for line in file if "=" in line]))

    def ended(self):
        """Waits for the end and returns what was written to the error output."""
        assert self.process.wait(DEADLINE) == 0, f"exit status {self.process.returncode}"
        with self.errors:
            self.errors.seek(0)
            return self.errors.read().decode(errors="replace")

    def close(self):
        self.keys("alt+F4")  # The window manager's own.
        return self.ended()


class ProgramTest(unittest.TestCase):
    """A home with files for programs that are ended with the test."""

    def setUp(self):
        self.directory = tempfile.mkdtemp(prefix="fennick-test.")
        self.addCleanup(shutil.rmtree, self.directory)
        self.home = os.path.join(self.directory, "home")
        os.mkdir(self.home)
        self.running = []
        self.addCleanup(self.end_all)

    def end_all(self):
        for fennick in self.running:
            if fennick.process.poll() is None:
                fennick.process.kill()
                fennick.process.wait()
            fennick.errors.close()

    def start(self, *arguments, **surroundings):
        self.running.append(Fennick(self.home, *arguments, **surroundings))
        return self.running[-1]

    def file(self, name, size=0):
        path = os.path.join(self.home, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(b"." * size)

    def settings(self, text):
        with open(os.path.join(self.home, ".fennick"), "wb") as file:
            file.write(text)


class Program(ProgramTest):
    def test_version_needs_no_display(self):
        environment = {key: value for key, value in os.environ.items() if key != "DISPLAY"}
        done = subprocess.run([PROGRAM, "--version"], env=environment, capture_output=True, text=True)
        self.assertEqual(done.returncode, 0)
        self.assertTrue(done.stdout.startswith("Fennick  Version 1.01 2001/07/27\nCopyright (C) "))
        self.assertEqual(done.stderr, "")

    def test_without_a_display_it_says_so(self):
        for display, sentence in [(None, "there is no display to open a window on, DISPLAY is not set"),
                                  ("", "there is no display to open a window on, DISPLAY is not set"),
                                  ("nowhere:7", "cannot open the display nowhere:7")]:
            environment = dict(os.environ, HOME=self.home, DISPLAY=display or "")
            if display is None:
                del environment["DISPLAY"]
            done = subprocess.run([PROGRAM], env=environment, capture_output=True, text=True)
            self.assertEqual((done.returncode, done.stdout, done.stderr), (1, "", f"fennick: {sentence}\n"))
        self.assertEqual(os.listdir(self.home), [])

    def test_closed_standard_descriptors_are_used_for_nothing_else(self):
        closing = ["sh", "-c", 'exec "$0" <&- >&- 2>&-', PROGRAM]
        process = subprocess.Popen(closing, env=dict(os.environ, HOME=self.home))
        self.addCleanup(process.kill)
        wait_for("the settings", lambda: os.path.exists(os.path.join(self.home, ".fennick")))
        links = [os.readlink(f"/proc/{process.pid}/fd/{number}") for number in range(3)]
        self.assertEqual(links, ["/dev/null"] * 3)
        wait_for("the window", lambda: subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--pid", str(process.pid), "--name", "^Fennick$"],
            capture_output=True).stdout)
        process.terminate()
        self.assertEqual(process.wait(DEADLINE), 0)

    def test_a_desktop_knows_its_windows(self):
        fennick = self.start(DESKTOP_STARTUP_ID="launcher-7_TIME0")

        def prop(window, name):
            form = ["32c"] if name == "_NET_WM_ICON" else []
            return run("xprop", "-id", window, "-notype", *form, name).split("=", 1)[-1].strip()

        self.assertEqual(prop(fennick.window, "WM_CLASS"), '"fennick", "Fennick"')
        leader = prop(fennick.window, "WM_CLIENT_LEADER").split()[-1]
        self.assertEqual(prop(leader, "_NET_STARTUP_ID"), '"launcher-7_TIME0"')
        fennick.keys("alt+h", "Up", "Return")
        notice = wait_for("the notice", lambda: fennick.windows_called("^Abort$"))[0]
        for window in (fennick.window, notice):
            # Each picture is its width, its height and its pixels.
            numbers = [int(number) for number in prop(window, "_NET_WM_ICON").split(",")]
            sizes = []
            while numbers:
                sizes.append(tuple(numbers[:2]))
                del numbers[:2 + numbers[0] * numbers[1]]
            self.assertEqual(sizes, [(size, size) for size in (16, 24, 32, 48, 64, 128)])
        fennick.keys("Return")
        wait_for("the end of the notice", lambda: not fennick.windows_called("^Abort$"))
        self.assertEqual(fennick.close(), "")

    def test_a_day_at_mouse_and_keys(self):
        for name, size in [("dir/inner/x", 0), ("a", 1000), ("b", 2000), ("c", 3000)]:
            self.file(name, size)
        fennick = self.start()
        home = self.home + "/"
        for name in ["Directory tree", "File list", "Location", "Status", "Filter status", "Back", "Home"]:
            self.assertIsNotNone(fennick.find(name), name)
        self.assertEqual(fennick.find("Filter status").get_description(), " Filter: Show all files")
        fennick.await_status(f" {home}")
        fennick.await_location(home)

        fennick.click_row("a")
        fennick.await_status(" a  1KByte")
        fennick.click_row("c", key="ctrl")
        fennick.await_status(" 2 files  3.9KByte")
        fennick.click_row("b")
        fennick.await_status(" b  2KByte")
        fennick.click_row("c", key="shift")
        fennick.await_status(" 2 files  4.9KByte")
        fennick.click_row("dir", times=2)
        fennick.await_location(home + "dir/")
        fennick.await_status(f" {home}dir/")
        fennick.keys("Tab", "Return")
        fennick.await_location(home + "dir/inner/")
        fennick.await_status(" x  0KByte")
        fennick.click("Up")
        fennick.await_location(home + "dir/")
        fennick.click("Location", times=3)
        run("xdotool", "type", "--delay", "1", home + "dir/inner/nothing")
        fennick.keys("Return")
        fennick.await_location(home + "dir/inner/")
        fennick.click("Home")
        fennick.await_location(home)
        fennick.point_at("Rescan")
        fennick.await_status("Rescan the current directory.")
        fennick.point_at("Filter status")
        fennick.await_status(f" {home}")
        fennick.keys("ctrl+a")
        fennick.await_status(" 4 files  9.9KByte")
        # By its letters, from the menu bar: Edit, Rescan directory.
        fennick.keys("alt+e")
        fennick.keys("Up")
        fennick.await_status(" Rescan the directory contents.")
        fennick.keys("r")
        fennick.await_status(f" {home}")
        fennick.click("Location", times=3)
        fennick.keys("ctrl+a")
        run("xdotool", "type", "--delay", "1", "elsewhere")
        fennick.keys("Return", "Tab", "x")
        fennick.await_location("elsewherex")
        fennick.keys("ctrl+a", "Delete", "Tab", "Down")
        fennick.await_location(home + "dir/")
        fennick.keys("ctrl+w")
        self.assertEqual(fennick.ended(), "")
        self.assertEqual(fennick.settings()["CurrentDir"], home + "dir/")

    def test_keys_that_are_held_page_by_page(self):
        for number in range(1000, 1200):
            self.file(f"f{number}")
        fennick = self.start()
        fennick.keys("Tab")
        fennick.await_status(" f1000  0KByte")
        run("xdotool", "key", "--delay", "1", "Next")
        wait_for("a page", lambda: fennick.status() != " f1000  0KByte")
        page = int(fennick.status()[2:6]) - 1000
        self.assertGreater(page, 3)
        run("xdotool", "key", "--delay", "1", "Next", "Next", "Next", "Next", "shift+Down")
        wait_for("two files", lambda: fennick.status().startswith(" 2 files"))
        run("xdotool", "key", "Up")
        wait_for("one file", lambda: fennick.status().startswith(" f"))
        self.assertGreater(int(fennick.status()[2:6]) - 1000, 4 * page)
        self.assertEqual(fennick.close(), "")

    def test_names_come_back_the_next_day(self):
        names = ["日本語", "sp ace"]
        for name in names:
            os.mkdir(os.path.join(self.home, name))
        broken = os.path.join(os.fsencode(self.home), b"\xff\xfe")
        os.mkdir(broken)
        self.assertEqual(self.start("--root", f"{self.home}/{names[0]}").close(), "")
        for path in [os.path.join(self.home, names[1]), os.fsdecode(broken)]:
            fennick = self.start("--home", self.home, path)
            self.assertEqual(fennick.close(), "")
        settings = fennick.settings()
        history = [settings[f"History{index}"] for index in range(5)]
        home = self.home + "/"
        self.assertEqual(history, [os.fsdecode(broken) + "/", home, f"{home}{names[1]}/", f"{home}{names[0]}/", "/"])
        self.assertEqual(settings["CurrentDir"], os.fsdecode(broken) + "/")
        fennick = self.start("--home", self.home)
        fennick.click("Back")
        fennick.await_location(self.home + "/\ufffd\ufffd/")
        fennick.click("Back")
        fennick.await_location(f"{self.home}/{names[1]}/")
        self.assertEqual(fennick.close(), "")

    def test_signals_end_it_with_settings_written(self):
        for number in [signal.SIGTERM, signal.SIGINT, signal.SIGQUIT]:
            with self.subTest(number):
                fennick = self.start()
                os.remove(os.path.join(self.home, ".fennick"))
                fennick.process.send_signal(number)
                fennick.process.send_signal(signal.SIGTERM)
                self.assertEqual(fennick.ended(), "")
                self.assertEqual(fennick.settings()["FileVersion"], "1.00")

    def test_a_signal_ends_it_while_a_menu_is_open(self):
        fennick = self.start()
        fennick.keys("alt+f", "Up")
        fennick.await_status(" Close this window.")
        os.remove(os.path.join(self.home, ".fennick"))
        fennick.process.send_signal(signal.SIGTERM)
        self.assertEqual(fennick.ended(), "")
        self.assertEqual(fennick.settings()["FileVersion"], "1.00")

    def test_the_window_does_not_drift(self):
        self.settings(b"[Main Window]\nWindowX=101\nWindowY=87\nWindowWidth=643\nWindowHeight=431\nPandPosition=213\n"
                      b"[Detailed View]\nColumnCount=3\nColumnPosition0=0\nColumnPosition1=1\nColumnPosition2=8\n"
                      b"ColumnSize0=133\nColumnSize1=61\nColumnSize2=0\n")
        keys = ["WindowX", "WindowY", "WindowWidth", "WindowHeight", "PandPosition",
                "ColumnSize0", "ColumnSize1", "ColumnSize2"]
        seen = []
        for _ in range(5):
            fennick = self.start()
            place = fennick.geometry()
            self.assertEqual((place["WIDTH"], place["HEIGHT"]), (643, 431))
            self.assertEqual(fennick.close(), "")
            seen.append([int(fennick.settings()[key]) for key in keys])
        self.assertEqual(seen[0][:7], [101, 87, 643, 431, 213, 133, 61])
        self.assertGreater(seen[0][7], 50)
        self.assertEqual(seen, [seen[0]] * 5)

    def test_dragged_edges_are_remembered(self):
        self.file("a")
        fennick = self.start()
        before = {"ColumnSize0": 150, "PandPosition": 200}
        title = Atspi.Component.get_extents(fennick.find("Name"), Atspi.CoordType.SCREEN)
        x, y = title.x + title.width, title.y + title.height // 2
        run("xdotool", "mousemove", str(x), str(y), "mousedown", "1", "mousemove", str(x + 20), str(y),
            "mousemove", str(x + 40), str(y), "mouseup", "1")
        tree = Atspi.Component.get_extents(fennick.find("Directory tree"), Atspi.CoordType.SCREEN)
        x, y = tree.x + tree.width + 5, tree.y + 100
        run("xdotool", "mousemove", str(x), str(y), "mousedown", "1", "mousemove", str(x + 20), str(y),
            "mousemove", str(x + 50), str(y), "mouseup", "1")
        wait_for("a wider tree", lambda: Atspi.Component.get_extents(
            fennick.find("Directory tree"), Atspi.CoordType.SCREEN).width > tree.width + 20)
        self.assertEqual(fennick.close(), "")
        for key, value in before.items():
            self.assertGreater(int(fennick.settings()[key]), value + 20, key)

    def test_files_are_opened_and_windows_multiply(self):
        self.file("file.txt")
        viewer = os.path.join(self.directory, "viewer")
        with open(viewer, "w", encoding="utf-8") as file:
            file.write('#!/bin/sh\nprintf %s "$*" >"$0.new"\nmv "$0.new" "$0.seen"\n')
        os.chmod(viewer, 0o755)
        with open(os.path.join(self.home, ".extension"), "w", encoding="utf-8") as file:
            file.write(f"[Extension]\ntxt={viewer}\n")
        fennick = self.start()
        fennick.click_row("file.txt", times=2)
        wait_for("the viewer", lambda: os.path.exists(viewer + ".seen"))
        with open(viewer + ".seen", encoding="utf-8") as file:
            self.assertEqual(file.read(), os.path.join(self.home, "file.txt"))

        # Another window by its letters; the program is not installed, so it finds itself.
        self.assertIsNone(shutil.which("fennick"))
        fennick.keys("alt+f")
        fennick.await_status(" Create a new window.")
        fennick.keys("w")
        other = wait_for("another window", lambda: set(fennick.all_windows()) - {fennick.window}).pop()
        process = int(run("xdotool", "getwindowpid", other))
        self.addCleanup(lambda: os.path.exists(f"/proc/{process}") and os.kill(process, signal.SIGKILL))
        self.assertNotEqual(process, fennick.process.pid)
        self.assertEqual(os.getsid(process), process)
        self.assertEqual(os.readlink(f"/proc/{process}/exe"), PROGRAM)
        wait_for("its focus", lambda: run("xdotool", "getactivewindow").strip() == other)
        run("xdotool", "key", "--clearmodifiers", "alt+F4")
        wait_for("its end", lambda: fennick.all_windows() == [fennick.window])
        wait_for("the focus", lambda: run("xdotool", "getactivewindow").strip() == fennick.window)
        self.assertEqual(fennick.close(), "")

    def test_files_are_dragged_from_one_program_to_another(self):
        self.file("a b", 3)
        other_home = os.path.join(self.directory, "other")
        os.mkdir(other_home)
        with open(os.path.join(other_home, ".fennick"), "w", encoding="utf-8") as file:
            file.write("[Main Window]\nWindowX=660\nWindowY=50\nWindowWidth=600\nWindowHeight=400\n")
        source = self.start()
        self.running.append(Fennick(other_home))
        target = self.running[-1]
        for key, expected in [("c", True), ("m", False)]:
            with self.subTest(key):
                from_x, from_y = source.place_of("a b", source.find("File list"))
                to_x, to_y = target.place_of("..", target.find("File list"))
                to_y += 100
                steps = [("mousemove", str(from_x + (to_x - from_x) * i // 8), str(from_y + (to_y - from_y) * i // 8),
                          "sleep", "0.05") for i in range(1, 9)]
                run("xdotool", "mousemove", str(from_x), str(from_y), "mousedown", "1", "sleep", "0.1",
                    *[word for step in steps for word in step], "mousemove", str(to_x + 2), str(to_y),
                    "sleep", "0.1", "mouseup", "1")
                wait_for("the popup", lambda: target.find("Copy(C)") or target.find("Copy"))
                target.keys(key)
                wait_for("the file", lambda: os.path.exists(os.path.join(other_home, "a b")))
                wait_for("the row", lambda: target.find("a b", target.find("File list")))
                self.assertEqual(os.path.exists(os.path.join(self.home, "a b")), expected)
                os.remove(os.path.join(other_home, "a b"))
        for fennick in (target, source):
            run("xdotool", "windowactivate", "--sync", fennick.window)
            self.assertEqual(fennick.close(), "")

    def test_it_starts_whatever_the_settings_file_is(self):
        self.file("a")
        path = os.path.join(self.home, ".fennick")

        def directory():
            os.mkdir(path)

        def loop():
            os.symlink(path, path)

        def pipe():
            os.mkfifo(path)

        def noise():
            self.settings(os.urandom(100_000))

        for make in [directory, loop, pipe, noise]:
            with self.subTest(make.__name__):
                make()
                fennick = self.start()
                fennick.keys("Tab")
                fennick.await_status(" a  0KByte")
                self.assertEqual(fennick.close(), "")
                self.assertEqual(os.path.isdir(path), make is directory)
            os.rmdir(path) if os.path.isdir(path) else os.remove(path)


if __name__ == "__main__":
    unittest.main(verbosity=2)

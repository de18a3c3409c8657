#!/usr/bin/python3
"""The built program in locales of other languages. The locales are made for the tests, as few are
there on most machines. The first argument is the program; tests to run may follow."""

import gettext
import os
import subprocess
import tempfile
import time
import unittest

import program


class Languages(program.ProgramTest):
    @classmethod
    def setUpClass(cls):
        directory = tempfile.TemporaryDirectory(prefix="fennick-locales.")
        cls.addClassCleanup(directory.cleanup)
        for name, charset in [("ja_JP", "UTF-8"), ("ja_JP", "EUC-JP"), ("de_DE", "UTF-8"), ("eo", "UTF-8")]:
            path = os.path.join(directory.name, f"{name}.{charset}")
            subprocess.run(["localedef", "-i", name, "-f", charset, path], check=True)
        os.environ["LOCPATH"] = directory.name
        cls.addClassCleanup(os.environ.pop, "LOCPATH")

    def start_in(self, locale):
        catalogues = os.path.join(os.path.dirname(program.PROGRAM), "locale")
        language = gettext.translation("fennick", catalogues, [locale], fallback=True)
        return self.start(locale=locale, text=language.gettext)

    def expect(self, fennick, *names):
        for name in names:
            program.wait_for(name, lambda: fennick.find(name))

    def test_a_day_abroad_and_at_home(self):
        columns = [f"ColumnPosition{place}={kind}" for place, kind in enumerate([0, 8, 1])]
        self.settings("\n".join(["[Detailed View]", "ColumnCount=3", *columns, ""]).encode())
        self.file("a", 1000)
        self.file("b", 3000)
        morning = time.mktime((2001, 3, 7, 9, 5, 0, 0, 0, -1))
        os.utime(os.path.join(self.home, "a"), (morning, morning))
        japanese = ["ファイル(F)", "編集(E)", "戻る", "名前", "更新日時", "サイズ", "2001/03/07 09:05"]
        german = ["Datei", "Bearbeiten", "Zurück", "Name", "Änderung", "Größe", "Mar 07 2001 09:05"]
        english = ["File(F)", "Edit(E)", "Back", "Name", "Modification time", "Size", "Mar 07 2001 09:05"]
        for locale, texts, menu_key, selected in [
                ("ja_JP.UTF-8", japanese, "alt+e", " 2 個のファイル  3.9KByte"),
                ("ja_JP.EUC-JP", japanese, "alt+e", " 2 個のファイル  3.9KByte"),
                ("de_DE.UTF-8", german, "alt+b", " 2 Dateien  3.9KByte"),
                ("eo.UTF-8", english, "alt+e", " 2 files  3.9KByte")]:
            with self.subTest(locale):
                fennick = self.start_in(locale)
                self.expect(fennick, *texts)
                # The letter of the Edit menu opens it, and Ctrl+A means the same everywhere.
                fennick.keys(menu_key)
                fennick.await_status(" " + fennick.text("Select all files in the current Directory."))
                fennick.keys("Escape", "Escape", "ctrl+a")
                fennick.await_status(selected)
                self.assertEqual(fennick.close(), "")
                # The columns are the same for whoever comes next.
                self.assertEqual([fennick.settings()[key] for key in ("ColumnCount", "ColumnPosition0",
                                 "ColumnPosition1", "ColumnPosition2")], ["3", "0", "8", "1"])


if __name__ == "__main__":
    unittest.main()

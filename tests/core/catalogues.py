#!/usr/bin/python3
"""The catalogues themselves: whether they hold what the sources say, and what a translation must
keep of its text. The arguments are the top of the sources and the compiled catalogues."""

import gettext
import os
import subprocess
import sys
import unittest

CATALOGUES = sys.argv.pop()
TOP = sys.argv.pop()


def texts(language):
    """Translations by text."""
    with open(os.path.join(CATALOGUES, language, "LC_MESSAGES", "fennick.mo"), "rb") as file:
        catalogue = gettext.GNUTranslations(file)._catalog  # There is no other way to list it.
    return {text: translation for text, translation in catalogue.items() if text}


def margins(text):
    return text[:len(text) - len(text.lstrip())], text[len(text.rstrip()):]


def letter(label):
    """The one that is underlined."""
    return label[label.index("_") + 1].lower() if "_" in label else None


class Catalogues(unittest.TestCase):
    def setUp(self):
        with open(os.path.join(TOP, "po", "LINGUAS"), encoding="utf-8") as file:
            self.languages = file.read().split()

    def test_they_hold_what_the_sources_say(self):
        done = subprocess.run([os.path.join(TOP, "script", "catalogues"), "--check"], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))

    def test_translations_have_the_shape_of_their_texts(self):
        for language in self.languages:
            for text, translation in texts(language).items():
                with self.subTest(language=language, text=text):
                    self.assertEqual(margins(translation), margins(text))
                    self.assertEqual(translation.count("\n"), text.count("\n"))
                    self.assertNotIn("...", translation, "an ellipsis is one character")
                    self.assertEqual(letter(translation) is None, letter(text) is None)
                    self.assertRegex(letter(translation) or "a", "[a-z]", "not on every keyboard")

    def test_the_popup_of_a_drop_can_be_answered_by_letters(self):
        for language in self.languages:
            known = texts(language)
            self.assertNotEqual(letter(known["Copy(_C)"]), letter(known["Move(_M)"]), language)


if __name__ == "__main__":
    unittest.main()

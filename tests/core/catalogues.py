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
    with open(os.path.join(CATALOGUES, language, "LC_MESSAGES", "fennick.mo"), "rb") as file:
        catalogue = gettext.GNUTranslations(file)._catalog  # There is no other way to list it.
    return {text: translation for text, translation in catalogue.items() if text}


def mnemonic(label):
    return label[label.index("_") + 1].lower() if "_" in label else None


class Catalogues(unittest.TestCase):
    def test_they_hold_what_the_sources_say(self):
        done = subprocess.run([os.path.join(TOP, "script", "catalogues"), "--check"], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))

    def test_translations_have_the_shape_of_their_texts(self):
        for language in os.listdir(CATALOGUES):
            known = texts(language)
            for text, translation in known.items():
                with self.subTest(language=language, text=text):
                    self.assertEqual([translation[0].isspace(), translation[-1].isspace(), translation.count("\n")],
                                     [text[0].isspace(), text[-1].isspace(), text.count("\n")])
                    self.assertEqual(mnemonic(translation) is None, mnemonic(text) is None)
                    self.assertRegex(mnemonic(translation) or "a", "[a-z]", "not on every keyboard")
            # The popup of a drop is answered by letters.
            self.assertNotEqual(mnemonic(known["Copy(_C)"]), mnemonic(known["Move(_M)"]), language)


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/python3
"""The manual is one valid page that leads nowhere but to itself. The argument is its file."""

import re
import subprocess
import sys
import unittest
from html.parser import HTMLParser
from pathlib import Path

MANUAL = Path(sys.argv.pop(1))


class Manual(unittest.TestCase):
    def test_it_is_one_valid_page(self):
        done = subprocess.run(["tidy", "-e", "-q", str(MANUAL)], capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        text, tags = MANUAL.read_text(encoding="utf-8"), []
        parser = HTMLParser()
        parser.handle_starttag = lambda tag, attributes: tags.append((tag, dict(attributes)))
        parser.feed(text)
        self.assertNotRegex(text, r"(?i)https?:|src\s*=\s*\"//|@import|url\(|<(script|link|iframe|object|embed)\b")
        names = [attributes["id"] for _, attributes in tags if "id" in attributes]
        self.assertEqual(len(names), len(set(names)))
        links = [attributes["href"] for _, attributes in tags if "href" in attributes]
        self.assertGreater(len(links), 20)
        self.assertLessEqual(set(links), {f"#{name}" for name in names})
        pictures = [attributes for tag, attributes in tags if tag == "img"]
        self.assertEqual({picture["src"] for picture in pictures}, {path.name for path in MANUAL.parent.glob("*.png")})
        for picture in pictures:
            self.assertGreater(len(picture["alt"]), 10)
            header = (MANUAL.parent / picture["src"]).read_bytes()[16:24]
            size = int.from_bytes(header[:4], "big"), int.from_bytes(header[4:], "big")
            self.assertEqual((int(picture["width"]), int(picture["height"])), size, picture["src"])


if __name__ == "__main__":
    unittest.main()

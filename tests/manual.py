#!/usr/bin/python3
"""The manual is one valid page that leads nowhere but to itself. The argument is its file."""

import re
import subprocess
import sys
import unittest
from html.parser import HTMLParser
from pathlib import Path

MANUAL = Path(sys.argv.pop(1))


class Page(HTMLParser):
    """What the tags of the page say, as pairs of tag and attributes."""

    def __init__(self, text):
        super().__init__()
        self.tags = []
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        self.tags.append((tag, dict(attrs)))

    def values(self, *names):
        return [attributes[name] for _, attributes in self.tags for name in names if name in attributes]


class Manual(unittest.TestCase):
    def setUp(self):
        self.text = MANUAL.read_text(encoding="utf-8")
        self.page = Page(self.text)

    def test_it_is_valid(self):
        done = subprocess.run(["tidy", "-e", "-q", str(MANUAL)], capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_every_link_has_an_end_and_every_name_is_there_once(self):
        names = self.page.values("id")
        self.assertEqual(len(names), len(set(names)))
        links = self.page.values("href")
        self.assertGreater(len(links), 20)
        for link in links:
            self.assertTrue(link.startswith("#"), link)
            self.assertIn(link[1:], names)

    def test_every_chapter_is_in_the_contents(self):
        contents = re.findall('href="#([^"]*)"', self.text[self.text.index("<nav>"):self.text.index("</nav>")])
        chapters = [attributes["id"] for tag, attributes in self.page.tags if tag == "h2"]
        self.assertEqual([], [chapter for chapter in chapters if chapter not in contents])

    def test_it_needs_no_network(self):
        self.assertNotRegex(self.text, r"(?i)https?:|src\s*=\s*\"//|@import|url\(|<(script|link|iframe|object|embed)\b")

    def test_every_picture_is_there_and_is_told_in_words(self):
        pictures = [attributes for tag, attributes in self.page.tags if tag == "img"]
        self.assertEqual({picture["src"] for picture in pictures}, {path.name for path in MANUAL.parent.glob("*.png")})
        for picture in pictures:
            with self.subTest(picture["src"]):
                self.assertGreater(len(picture["alt"]), 10)
                header = (MANUAL.parent / picture["src"]).read_bytes()[16:24]
                size = int.from_bytes(header[:4], "big"), int.from_bytes(header[4:], "big")
                self.assertEqual((int(picture["width"]), int(picture["height"])), size)


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/python3
"""The manual is one valid page that leads nowhere but to itself. The argument is its file."""

import re
import subprocess
import sys
import unittest
from pathlib import Path

MANUAL = Path(sys.argv.pop(1))


class Manual(unittest.TestCase):
    def test_it_is_one_valid_page(self):
        done = subprocess.run(["tidy", "-e", "-q", str(MANUAL)], capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        text = MANUAL.read_text(encoding="utf-8")
        self.assertNotRegex(text, r"(?i)https?:|src\s*=\s*\"//|@import|url\(|<(script|link|iframe|object|embed)\b")
        links = re.findall(r'href="([^"]*)"', text)
        self.assertGreater(len(links), 20)
        self.assertLessEqual(set(links), {f"#{name}" for name in re.findall(r'\bid="([^"]*)"', text)})
        pictures = set(re.findall(r'<img\b[^>]*?\bsrc="([^"]*)"', text))
        self.assertEqual(pictures, {path.name for path in MANUAL.parent.glob("*.png")})


if __name__ == "__main__":
    unittest.main()

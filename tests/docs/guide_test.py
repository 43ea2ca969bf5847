"""Compares docs/guide.md with what its program prints: guide_test.py REPOSITORY PROGRAM."""

import pathlib
import re
import subprocess
import sys
import unittest

import guide_blocks

REPOSITORY, PROGRAM = pathlib.Path(sys.argv[1]), sys.argv[2]
GUIDE = (REPOSITORY / "docs/guide.md").read_text()

# Numbers of standards, clauses, codecs and files are names, not values.
NAMES = re.compile(
    r"\]\([^)]*\)|`[\w/]*\.\w+`|ISO/IEC [\d-]+|H\.26[45]|(?:Table |\b[A-Z]\.)\d[\d.-]*|MP4|cd/m2"
)


def numbers(text):
    return set(re.findall(r"(?<![\w.])\d[0-9A-F]*(?:\.\d+)?\b", text))


def unexplained_numbers(guide, printed):
    explained = numbers(printed) | numbers(guide_blocks.blocks(guide, "cpp"))
    return numbers(NAMES.sub("", guide_blocks.prose(guide))) - explained


class GuideTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.printed = subprocess.run(
            [PROGRAM, REPOSITORY / "samples/hevc_hdr10.h265"], check=True, capture_output=True, text=True
        ).stdout

    def test_shows_what_its_program_prints(self):
        self.assertEqual(guide_blocks.blocks(GUIDE, ""), self.printed)

    def test_every_number_of_the_text_is_printed_or_in_the_code(self):
        self.assertEqual(unexplained_numbers(GUIDE, self.printed), set())

    def test_notices_a_number_that_nothing_prints(self):
        self.assertEqual(unexplained_numbers(GUIDE + "\nThat is 7353 or 0.7353.\n", self.printed), {"7353", "0.7353"})

    def test_every_block_is_of_a_known_kind(self):
        self.assertEqual({kind for kind, _ in guide_blocks.FENCE.findall(GUIDE)}, {"cpp", ""})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])

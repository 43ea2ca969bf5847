"""What the documents point at is there, and the README up to date: documents_test.py REPOSITORY."""

import pathlib
import re
import sys
import unittest

REPOSITORY = pathlib.Path(sys.argv[1])
DOCUMENTS = [path for pattern in ("*.md", "docs/*.md", "samples/*.md") for path in REPOSITORY.glob(pattern)]
FENCE = re.compile(r"^```.*?^```\n", re.M | re.S)
LINK = re.compile(r"\]\(([^)\s]+)\)")
# `scripts/dev/fuzz`, `tests/support`, `detail/Log.h`; TARGET stands for a name.
NAMED = re.compile(r"`((?:cmake|detail|docs|examples|fuzz|modules|samples|scripts|tests|tools|bench)/[\w./-]+)")
LIBRARY = REPOSITORY / "modules/demuxer/low_level/common"


def exists(name, folder):
    return any((root / name).exists() for root in (folder, REPOSITORY, LIBRARY))


class LinksTest(unittest.TestCase):
    def test_there_are_documents(self):
        self.assertGreaterEqual(len(DOCUMENTS), 10)

    def test_links_lead_somewhere(self):
        for document in DOCUMENTS:
            for link in LINK.findall(FENCE.sub("", document.read_text())):
                path = link.partition("#")[0]
                if path and not re.match(r"https?:", link):
                    with self.subTest(document=document.name, link=link):
                        self.assertTrue((document.parent / path).exists())

    def test_named_files_are_there(self):
        found = 0
        for document in DOCUMENTS:
            for name in NAMED.findall(FENCE.sub("", document.read_text())):
                if re.search(r"/[A-Z]+(/|$)", name):
                    continue
                found += 1
                with self.subTest(document=document.name, name=name):
                    self.assertTrue(exists(name.rstrip("."), document.parent))
        self.assertGreaterEqual(found, 20)

    def test_the_readme_shows_the_summary_as_it_is(self):
        summary = (REPOSITORY / "tests/inspect/golden/hdr10_summary.txt").read_text()
        self.assertIn("```\n%s```\n" % summary, (REPOSITORY / "README.md").read_text())

    def test_the_readme_has_one_program(self):
        programs = re.findall(r"^```cpp\n(.*?)^```\n", (REPOSITORY / "README.md").read_text(), re.M | re.S)
        self.assertEqual([program.count("int main(") for program in programs], [1])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])

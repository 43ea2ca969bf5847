"""Files, scripts and figures that the documents mention: documents_test.py REPOSITORY."""

import pathlib
import re
import subprocess
import sys
import unittest

REPOSITORY = pathlib.Path(sys.argv[1])
DOCUMENTS = [path for pattern in ("*.md", "docs/*.md", "samples/*.md", "tests/*.md") for path in REPOSITORY.glob(pattern)]
FENCE = re.compile(r"^```.*?^```\n", re.M | re.S)
LINK = re.compile(r"\]\(([^)\s]+)\)")
# `fuzz/build.sh`, `tests/support`, `detail/Log.h`; TARGET is a placeholder for a name.
NAMED = re.compile(r"`((?:cmake|detail|docs|examples|fuzz|modules|samples|scripts|tests|tools|bench)/[\w./-]+)")
SCRIPT = re.compile(r"(?<![\w./-])scripts/[\w./-]*\w")
LIBRARY = REPOSITORY / "modules/demuxer/low_level/common"


def exists(name, folder):
    return any((root / name).exists() for root in (folder, REPOSITORY, LIBRARY))


def text_of(name):
    return (REPOSITORY / name).read_text()


def texts():
    """(path, text) of every text of the repository, programs and build files included."""
    folders = ("bench", "cmake", "docs", "examples", "fuzz", "modules", "packaging", "scripts", "tests", "tools", ".ci")
    paths = [path for folder in folders for path in (REPOSITORY / folder).rglob("*")]
    for path in sorted(paths + list(REPOSITORY.glob("*"))):
        if path.is_file() and "__pycache__" not in path.parts:
            try:
                yield path.relative_to(REPOSITORY), path.read_text()
            except UnicodeDecodeError:
                pass  # a stream


class LinksTest(unittest.TestCase):
    def test_there_are_documents(self):
        self.assertGreaterEqual(len(DOCUMENTS), 10)

    def test_links_lead_to_files(self):
        for document in DOCUMENTS:
            for link in LINK.findall(FENCE.sub("", document.read_text())):
                path = link.partition("#")[0]
                if path and not re.match(r"https?:", link):
                    with self.subTest(document=document.name, link=link):
                        self.assertTrue((document.parent / path).exists())

    def test_named_files_exist(self):
        found = 0
        for document in DOCUMENTS:
            for name in NAMED.findall(FENCE.sub("", document.read_text())):
                if re.search(r"/[A-Z]+(/|$)", name):
                    continue
                found += 1
                with self.subTest(document=document.name, name=name):
                    self.assertTrue(exists(name.rstrip("."), document.parent))
        self.assertGreaterEqual(found, 20)


class ScriptsTest(unittest.TestCase):
    def test_named_scripts_exist(self):
        found = 0
        for path, text in texts():
            for name in SCRIPT.findall(text):
                found += 1
                with self.subTest(file=str(path), script=name):
                    self.assertTrue((REPOSITORY / name).exists())
        self.assertGreaterEqual(found, 60)

    def test_two_commands_are_for_everyone(self):
        self.assertEqual(sorted(path.name for path in (REPOSITORY / "scripts").iterdir()), ["dev", "inspect", "test"])

    def test_every_script_is_described(self):
        described = set(SCRIPT.findall(text_of("CONTRIBUTING.md")))
        scripts = {"scripts/dev/" + path.name for path in (REPOSITORY / "scripts/dev").iterdir() if path.is_file()}
        self.assertEqual(scripts - described, set())

    def test_every_step_of_ci_is_described(self):
        steps = re.findall(r"^step (\S+)", text_of(".ci/steps"), re.M)
        described = text_of("CONTRIBUTING.md").partition("## CI\n")[2].partition("\n## ")[0]
        self.assertGreaterEqual(len(steps), 10)
        self.assertEqual(re.findall(r"^\| `([\w-]+)` \|", described, re.M), steps)


class ReadmeTest(unittest.TestCase):
    def test_shows_the_summary_as_it_is(self):
        self.assertIn("```\n%s```\n" % text_of("tests/inspect/golden/hdr10_summary.txt"), text_of("README.md"))

    def test_shows_what_the_example_prints(self):
        expected = text_of("tests/consumers/expected/parameter_sets_hevc_hdr10.h265.txt")
        self.assertIn("```\n%s```\n" % expected, text_of("README.md"))

    def test_has_one_program(self):
        programs = re.findall(r"^```cpp\n(.*?)^```\n", text_of("README.md"), re.M | re.S)
        self.assertEqual([program.count("int main(") for program in programs], [1])

    def test_says_whether_there_is_a_licence(self):
        is_licensed = any(REPOSITORY.glob("LICEN[CS]E*")) or any(REPOSITORY.glob("COPYING*"))
        self.assertEqual("No licence has been granted yet." in text_of("README.md"), not is_licensed)


class ReliabilityTest(unittest.TestCase):
    def test_every_section_has_its_figures_with_a_commit(self):
        page = text_of("docs/reliability.md")
        figures = dict(re.findall(r"^<!-- figures (\S+) -->\n(.*?)^<!-- end -->$", page, re.M | re.S))
        listed = subprocess.run(
            [REPOSITORY / "scripts/dev/reliability", "--list"], check=True, capture_output=True, text=True
        ).stdout.split()
        self.assertEqual(list(figures), listed)
        for section, text in figures.items():
            with self.subTest(section=section):
                self.assertRegex(text, r"^Commit `[0-9a-f]{7,}` of \d{4}-\d\d-\d\d\b")
                self.assertRegex(text, r"\n```\n[^`]*\d[^`]*\n```\n$")

    def test_every_section_has_a_claim_and_a_command(self):
        sections = text_of("docs/reliability.md").split("\n## ")[1:]
        self.assertGreaterEqual(len(sections), 10)
        for section in sections:
            with self.subTest(section=section.splitlines()[0]):
                self.assertIn("\n**Claim.** ", section)
                self.assertIn("\n```sh\nscripts/", section)


class BenchmarksTest(unittest.TestCase):
    def setUp(self):
        self.page = text_of("docs/benchmarks.md")
        self.table = re.search(r"^<!-- AVX2 -->\n```\n(.*?)^```\n", self.page, re.M | re.S).group(1)

    def test_begins_with_the_results(self):
        headings = re.findall(r"^#+ (.*)$", self.page, re.M)
        self.assertEqual(headings[:3], ["Benchmarks", "AVX2", "SSE2"])

    def test_figures_of_the_summary_are_those_of_the_table(self):
        summary = self.page[: self.page.index("\n## AVX2")]
        figures = re.findall(r"(?<![\w.])(\d+\.\d\d|\d{4,})(?![\w.]*\d)", summary)
        self.assertGreaterEqual(len(figures), 10)
        measured = re.findall(r" (\d[\d.]*) of ", self.table)
        self.assertEqual([figure for figure in figures if figure not in measured], [])

    def test_goals_are_ratios_and_counts(self):
        for line in self.table.splitlines():
            if re.search(r" ns an? \w+ ", line + " "):
                self.assertNotRegex(line, r"(pass|MISS)$")


class FuzzTargetsTest(unittest.TestCase):
    def test_security_counts_them(self):
        targets = re.findall(r"^ *qvnalu_fuzz_target\((\w+) ", text_of("fuzz/CMakeLists.txt"), re.M)
        self.assertGreaterEqual(len(targets), 13)
        references = re.compile(r'#include "(ReferenceFraming|CursorModel)\.h"')
        compared = [target for target in targets if references.search(text_of("fuzz/%s.cpp" % target))]
        security = " ".join(text_of("SECURITY.md").split())
        self.assertIn("There are %d fuzz targets" % len(targets), security)
        self.assertIn("%d of them compare" % len(compared), security)
        self.assertIn("The other %d have no such reference" % (len(targets) - len(compared)), security)
        page = " ".join(text_of("docs/reliability.md").split())
        self.assertIn("There are %d targets" % len(targets), page)
        for target in compared:
            self.assertIn("`%s`" % target, page)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])

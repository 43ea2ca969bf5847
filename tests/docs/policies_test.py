"""docs/policies.md: each rule is enforced by tests, and each of these exists: policies_test.py REPOSITORY."""

import pathlib
import re
import sys
import unittest

REPOSITORY = pathlib.Path(sys.argv[1])
PAGE = (REPOSITORY / "docs/policies.md").read_text()
TEST_NAME = re.compile(r"`(\w+\.\w+)`")
FEWEST_STATEMENTS = 40


def statements():
    """(statement, the last column) of each row of the tables but their heads."""
    rows = [line.strip("|").split(" | ") for line in PAGE.splitlines() if line.startswith("| ")]
    return [(" | ".join(row[:-1]), row[-1]) for row in rows if row[-1].strip() != "enforced by"]


def tests_of_the_tree():
    names = set()
    for path in REPOSITORY.glob("tests/**/*.cpp"):
        found = re.findall(r"^(?:TYPED_)?TEST(?:_F|_P)?\((\w+),\s*(\w+)\)", path.read_text(), re.M)
        names.update("%s.%s" % test for test in found)
    return names


class PoliciesTest(unittest.TestCase):
    def test_there_are_statements(self):
        self.assertGreaterEqual(len(statements()), FEWEST_STATEMENTS)

    def test_every_statement_is_held_by_a_test(self):
        self.assertEqual([statement for statement, held in statements() if not TEST_NAME.search(held)], [])

    def test_every_test_named_is_there(self):
        named = {name for _, held in statements() for name in TEST_NAME.findall(held)}
        self.assertEqual(named - tests_of_the_tree(), set())

    def test_only_tests_stand_in_the_last_column(self):
        for statement, held in statements():
            self.assertRegex(held.strip(), r"^`\w+\.\w+`(, `\w+\.\w+`)*$", statement)

    def test_every_table_has_the_column(self):
        self.assertEqual(len(re.findall(r"^\|[-|]+\|$", PAGE, re.M)), PAGE.count("| enforced by |"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])

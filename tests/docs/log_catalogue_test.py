"""Compares docs/log-catalogue.md with the log calls of the library: log_catalogue_test.py REPOSITORY."""

import collections
import pathlib
import re
import sys
import unittest

REPOSITORY = pathlib.Path(sys.argv[1])
LIBRARY = REPOSITORY / "modules/demuxer/low_level/common"
MACROS = LIBRARY / "detail/Log.h"  # the one file that may call qvTraceLog
CATALOGUE = REPOSITORY / "docs/log-catalogue.md"
FEWEST_CALLS = 40  # finding fewer means that the calls look different now

CALL = re.compile(r"\bQV_LOG(?:_UNCHECKED)?\(")
TEXT = re.compile(r'"(?:[^"\\]|\\.)*"')
Line = collections.namedtuple("Line", "level function text")


def without_comments(code):
    """Replaces comments by blanks; texts and positions stay."""

    def blank(match):
        found = match.group()
        return found if found.startswith('"') else re.sub(r"[^\n]", " ", found)

    return re.sub(TEXT.pattern + r"|//[^\n]*|/\*.*?\*/", blank, code, flags=re.S)


def arguments(code, start):
    """The arguments of the call whose parenthesis opens before start, and where the call ends."""
    found, depth, at, begin = [], 0, start, start
    while True:
        text = TEXT.match(code, at)
        if text:
            at = text.end()
            continue
        char = code[at]
        if depth == 0 and char in ",)":
            found.append(code[begin:at].strip())
            begin = at + 1
            if char == ")":
                return found, at
        depth += (char in "([{") - (char in ")]}")
        at += 1


def literal(argument):
    """The text of adjacent literals, with escapes as written; None for anything else."""
    parts = TEXT.findall(argument)
    if not parts or TEXT.sub("", argument).strip():
        return None
    return "".join(part[1:-1] for part in parts)


def enclosing_function(code, at):
    return re.findall(r"^\w[^\n;]*?(\w+)\(", code[:at], re.M)[-1]


def step_name(code, at):
    """The name of the step in the function at this place: made there, or handed in by every caller."""
    start = [match.start() for match in re.finditer(r"^\w[^\n;]*?\w+\(", code[:at], re.M)][-1]
    made = re.findall(r'\bStep step\("(\w+)"', code[start:at])
    if made:
        return made[-1]
    calls = re.finditer(r"^[ ]+.*?\b%s\(" % enclosing_function(code, at), code, re.M)
    name, = {step_name(code, call.start()) for call in calls}
    return name


def function_name(code, argument, at):
    """The function name that an argument at this place of the code denotes."""
    name = literal(argument)
    if name is not None:
        return name
    if argument == "kFunction":
        return re.findall(r'kFunction = "(\w+)";', code[:at])[-1]
    if argument == "step.held().function":
        return step_name(code, at)
    # A parameter: the only caller of this function passes the name.
    callers = [
        (call.start(), arguments(code, call.end())[0][-1])
        for call in re.finditer(r"\b%s\(" % enclosing_function(code, at), code)
        if code[: call.start()].endswith("return ")
    ]
    (place, handed), = callers
    return function_name(code, handed, place)


def levels():
    header = (REPOSITORY / "modules/core/QVTraceLog.h").read_text()
    return {name: int(number) for name, number in re.findall(r"\b(QVTrace\w+) = (\d)", header)}


def sources():
    return {
        path: without_comments(path.read_text())
        for path in sorted(LIBRARY.rglob("*"))
        if path.suffix in (".h", ".cpp") and path != MACROS
    }


def logged(code):
    """The lines that a source logs."""
    numbers = levels()
    lines = []
    for call in CALL.finditer(code):
        level, function, text = arguments(code, call.end())[0][:3]
        lines.append(Line(numbers[level], function_name(code, function, call.start()), literal(text)))
    return lines


def catalogued():
    rows = re.findall(r"^\| (\d) \| (\w+) \| `(.*)` \|$", CATALOGUE.read_text(), re.M)
    return [Line(int(level), function, text) for level, function, text in rows]


def differences(lines, rows):
    lines, rows = collections.Counter(lines), collections.Counter(rows)
    return [("not in the catalogue", line) for line in (lines - rows).elements()] + [
        ("not logged", row) for row in (rows - lines).elements()
    ]


class LogCatalogueTest(unittest.TestCase):
    maxDiff = None

    def test_has_every_call_and_no_other(self):
        lines = [line for code in sources().values() for line in logged(code)]
        self.assertGreaterEqual(len(lines), FEWEST_CALLS)
        self.assertNotIn(None, [line.text for line in lines])
        self.assertEqual(differences(lines, catalogued()), [])

    def test_every_row_of_the_table_is_read(self):
        rows = [row for row in CATALOGUE.read_text().splitlines() if row.startswith("|")]
        self.assertEqual(len(rows), len(catalogued()) + 2)

    def test_only_the_macros_log(self):
        for path, code in sources().items():
            self.assertNotRegex(code, r"qvTraceLog|kUncheckedTraceLog|#\s*define\s+\w*LOG", path)

    def test_names_file_and_tag(self):
        macros, catalogue = MACROS.read_text(), CATALOGUE.read_text()
        file, = re.findall(r'kLogFile = "(.*)";', macros)
        tag, = re.findall(r'kLogTag = "(.*)";', macros)
        self.assertEqual(macros.count("qv_detail::kLogFile, __LINE__, function, qv_detail::kLogTag"), 2)
        self.assertIn('the file name "%s" and the tag\n"%s"' % (file, tag), catalogue)

    def test_names_the_levels(self):
        words = {"QVTraceError": "error", "QVTraceWarning": "warning",
                 "QVTraceInformation": "information", "QVTraceDebug": "debug"}
        named = ", ".join("%d %s" % (number, words[name]) for name, number in levels().items())
        self.assertIn("Levels: %s." % named, CATALOGUE.read_text())

    def test_names_the_dump(self):
        dumps = [
            literal(arguments(code, call.end())[0][0])
            for code in sources().values()
            for call in re.finditer(r"dumpActualData\(", code)
        ]
        self.assertEqual(dumps, ["parserDataToNaluType fail"])
        self.assertIn('dumps the buffer under the label "%s"' % dumps[0], CATALOGUE.read_text())

    def test_notices_every_change_of_a_call(self):
        everything = {path: logged(code) for path, code in sources().items()}
        total = [line for lines in everything.values() for line in lines]  # equal to the rows, by the first test
        for path, code in sources().items():
            others = list((collections.Counter(total) - collections.Counter(everything[path])).elements())
            for call in CALL.finditer(code):
                found, end = arguments(code, call.end())
                level, function, text = found[:3]
                head, tail = code[: call.end()], code[end + 1 :]
                other_level = "QVTraceDebug" if level != "QVTraceDebug" else "QVTraceError"
                changed = [
                    (other_level, function, text),
                    (level, '"another"', text),
                    (level, function, text[:-1] + '."'),
                ]
                for parts in changed:
                    with self.subTest(file=path.name, changed=parts):
                        lines = logged(head + ", ".join(parts) + ")" + tail)
                        self.assertEqual(len(differences(others + lines, total)), 2)
                with self.subTest(file=path.name, removed=text):
                    lines = logged(code[: call.start()] + "(0)" + tail)
                    self.assertEqual(len(differences(others + lines, total)), 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])

"""The functions of scripts/dev/lib.sh on a small project: scripts_test.py REPOSITORY."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

REPOSITORY = pathlib.Path(sys.argv[1])
LIBRARY = REPOSITORY / "scripts/dev/lib.sh"
PRESETS = """{
  "version": 4,
  "configurePresets": [{ "name": "dev", "generator": "Ninja", "binaryDir": "${sourceDir}/build/${presetName}" }],
  "buildPresets": [{ "name": "dev", "configurePreset": "dev" }],
  "testPresets": [{ "name": "dev", "configurePreset": "dev", "output": { "outputOnFailure": true } }]
}
"""
PROJECT = """cmake_minimum_required(VERSION 3.22)
project(small LANGUAGES CXX)
enable_testing()
add_executable(program program.cpp)
add_test(NAME passes COMMAND program)
add_test(NAME fails COMMAND program fail)
"""
PROGRAM = """#include <cstdio>
int main(int argc, char**) { std::puts("output of the program"); return argc - 1; }
"""


class ScriptsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name) / "project"
        self.root.mkdir()
        for name, text in (("CMakePresets.json", PRESETS), ("CMakeLists.txt", PROJECT), ("program.cpp", PROGRAM)):
            (self.root / name).write_text(text)

    def shell(self, commands, root=None, **environment):
        """(exit code, standard output, standard error) of commands that use the functions."""
        script = "set -euo pipefail\n. '%s'\n%s\n" % (LIBRARY, commands)
        inherited = {name: value for name, value in os.environ.items() if name not in ("CXX", "QVNALU_COUNTS")}
        done = subprocess.run(
            ["bash", "-c", script], cwd=root or self.root, env=dict(inherited, **environment), capture_output=True, text=True
        )
        return done.returncode, done.stdout, done.stderr

    def build(self, **options):
        return self.shell("build_preset dev", **options)

    def assert_is_made_anew(self, reason, **options):
        code, _, progress = self.build(**options)
        self.assertIn("Configuring build/dev anew: " + reason, progress)
        self.assertEqual(code, 0)

    def test_builds_once_and_says_how_much(self):
        code, out, progress = self.build()
        self.assertEqual((code, out), (0, ""))
        self.assertRegex(progress, r"^Configuring build/dev: \d+ s\nBuilding build/dev: 2 steps, \d+ s\n$")
        self.assertEqual(self.build(), (0, "", ""))

    def test_an_error_of_the_compiler_is_shown_without_the_steps(self):
        (self.root / "program.cpp").write_text("int main() { return undeclared_name; }\n")
        code, _, progress = self.build()
        self.assertNotEqual(code, 0)
        self.assertIn("undeclared_name", progress)
        self.assertNotIn("[1 of 2]", progress)

    def test_a_folder_of_other_sources_is_configured_anew(self):
        self.build()
        copy = self.root.parent / "copy"
        shutil.copytree(self.root, copy)
        self.assert_is_made_anew("it was made for %s" % self.root, root=copy)
        self.assertTrue((copy / "build/dev/program").exists())

    def test_a_folder_of_another_compiler_is_configured_anew(self):
        self.build()
        self.assert_is_made_anew("it was made with another compiler", CXX="clang++")
        self.assertIn("clang++", (self.root / "build/dev/CMakeCache.txt").read_text())

    def test_a_folder_whose_compiler_changed_is_configured_anew(self):
        self.build()
        stamp = self.root / "build/dev/compiler.txt"
        stamp.write_text(re.sub(r"\d+\.\d+", "1.0", stamp.read_text()))
        self.assert_is_made_anew("it was made with another compiler")

    def change_cache(self, old, new):
        cache = self.root / "build/dev/CMakeCache.txt"
        self.assertIn(old, cache.read_text())
        cache.write_text(cache.read_text().replace(old, new))

    def test_a_folder_of_another_generator_is_configured_anew(self):
        self.build()
        self.change_cache("CMAKE_GENERATOR:INTERNAL=Ninja", "CMAKE_GENERATOR:INTERNAL=Unix Makefiles")
        (self.root / "CMakeLists.txt").touch()
        self.assert_is_made_anew("CMake fails in the folder as it is")

    def test_a_folder_that_cmake_refuses_is_configured_anew(self):
        check = 'set(STATE good CACHE STRING "")\nif(STATE STREQUAL bad)\n  message(FATAL_ERROR bad)\nendif()\n'
        (self.root / "CMakeLists.txt").write_text(PROJECT + check)
        self.build()
        self.change_cache("STATE:STRING=good", "STATE:STRING=bad")
        (self.root / "CMakeLists.txt").touch()
        self.assert_is_made_anew("CMake fails in the folder as it is")

    def test_a_folder_that_needs_a_library_that_is_gone_is_configured_anew(self):
        library = self.root.parent / "first.so"
        library.touch()
        find = "find_file(LIBRARY NAMES first.so second.so PATHS .. NO_DEFAULT_PATH)\n"
        use = "set_property(TARGET program PROPERTY LINK_DEPENDS ${LIBRARY})\n"
        (self.root / "CMakeLists.txt").write_text(PROJECT + find + use)
        self.assertEqual(self.build()[0], 0)
        library.rename(library.with_name("second.so"))
        self.assert_is_made_anew("'%s', needed by" % library)

    def test_a_broken_project_keeps_its_folder(self):
        self.build()
        (self.root / "CMakeLists.txt").write_text(PROJECT + "no_such_command()\n")
        code, _, progress = self.build()
        self.assertNotEqual(code, 0)
        self.assertIn("no_such_command", progress)
        self.assertNotIn("anew", progress)
        self.assertTrue((self.root / "build/dev/program").exists())

    def test_tests_are_counted(self):
        self.build()
        counts = self.root / "counts"
        code, out, _ = self.shell("run_tests dev -R passes", QVNALU_COUNTS=str(counts))
        self.assertEqual(code, 0)
        self.assertRegex(out, r"^Tests of build/dev: 1 of 1 passed, 0 skipped, \d+ s\n$")
        self.assertEqual(counts.read_text(), "1 tests\n")

    def test_a_failure_is_shown_and_a_pass_is_not(self):
        self.build()
        code, out, errors = self.shell("run_tests dev")
        self.assertNotEqual(code, 0)
        self.assertIn("1 of 2 passed", out)
        self.assertIn("output of the program", errors)
        self.assertNotRegex(errors, r"passes \.*")

    def test_no_test_at_all_is_a_failure(self):
        self.build()
        code, _, errors = self.shell("run_tests dev -R nothing_of_the_kind")
        self.assertNotEqual(code, 0)
        self.assertIn("No tests were found", errors)

    def test_an_empty_list_is_a_failure(self):
        self.assertEqual(self.shell('list_from files printf "a b\\nc\\n"; echo "${#files[@]}"')[:2], (0, "2\n"))
        code, out, errors = self.shell("list_from files true; echo not reached")
        self.assertNotEqual(code, 0)
        self.assertEqual(out, "")
        self.assertIn("an empty list: true", errors)
        self.assertNotEqual(self.shell("list_from files false; echo not reached")[0], 0)

    def test_every_test_program_of_the_folders_is_listed(self):
        folder = self.root / "tests/some"
        folder.mkdir(parents=True)
        (folder / "CMakeLists.txt").write_text("qvnalu_test(A_test A.cpp)\nadd_executable(B_test B.cpp)\nadd_executable(tool t.cpp)\n")
        self.assertEqual(self.shell("test_programs some")[:2], (0, "A_test\nB_test\n"))
        (folder / "CMakeLists.txt").write_text("another_function(A_test A.cpp)\n")
        self.assertNotEqual(self.shell("list_from programs test_programs some")[0], 0)

    def test_a_phase_shows_its_output_when_it_fails(self):
        self.assertRegex(self.shell("phase 'Doing it' echo quiet")[2], r"^Doing it: \d+ s\n$")
        code, _, errors = self.shell("phase 'Doing it' bash -c 'echo reason; exit 3'")
        self.assertEqual((code, errors), (3, "reason\nDoing it: failed\n"))
        code, _, errors = self.shell("phase 'Doing it' no-such-program")
        self.assertEqual(code, 127)
        self.assertIn("no-such-program: command not found", errors)

    def test_a_terminal_shows_that_it_is_alive(self):
        script = "set -euo pipefail; . '%s'; phase 'Doing it' bash -c 'echo part 1 of 2; sleep 1'" % LIBRARY
        done = subprocess.run(
            ["script", "-qec", "bash -c %s" % repr(script).replace("\\'", "'\\''"), "/dev/null"],
            cwd=self.root, env=dict(os.environ, TERM="xterm"), capture_output=True, text=True, stdin=subprocess.DEVNULL,
        )
        self.assertIn("part 1 of 2", done.stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])

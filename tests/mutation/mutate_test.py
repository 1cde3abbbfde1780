#!/usr/bin/env python3
"""usage: mutate_test.py FOLDER

Runs mutate.py on a small project, made in FOLDER, whose mutants are known to be killed, to survive, or to be no
change."""

import pathlib
import shutil
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
import mutate

ROOT = pathlib.Path(sys.argv.pop()).resolve() / "planted"

ENGINE = """\
/* 1 < 2 */
int capped(int value) {
    return value < 10 ? value : 10;
}

int unseen(int value) {
    return value + 1;
}

unsigned counted(unsigned from) {
    volatile unsigned count = 0;
    while (from != 0) {
        from -= 1;
        count = count + 1;
    }
    return count;
}
"""
TEST = """\
int capped(int);
unsigned counted(unsigned);

int main() {
    return capped(3) == 3 && capped(100) == 10 && counted(4) == 4 ? 0 : 1;
}
"""
BUILD = """\
cmake_minimum_required(VERSION 3.25)
project(planted LANGUAGES CXX)
add_library(planted STATIC qzoci/planted.cpp)
add_executable(planted_test planted_test.cpp)
target_link_libraries(planted_test PRIVATE planted)
"""

KILLED = "qzoci/planted.cpp, capped\n- return value < 10 ? value : 10;\n+ return value < 10 ? value : 11;\n"
ENDLESS = "qzoci/planted.cpp, counted\n- from -= 1;\n+ from += 1;\n"
SAME = "qzoci/planted.cpp, capped\n- return value < 10 ? value : 10;\n+ return value <= 10 ? value : 10;\n"
SURVIVOR = "qzoci/planted.cpp, unseen\n- return value + 1;\n+ return value - 1;\n"
CHOSEN = "\n".join([KILLED, ENDLESS, SAME, SURVIVOR])


def changes(text):
    return [(mutant.original, mutant.mutated) for mutant in mutate.mutants_of("file", text)]


class Mutants(unittest.TestCase):
    def test_are_made_of_operators_and_constants(self):
        self.assertEqual(changes("a < b"), [("a < b", "a <= b")])
        self.assertEqual(changes("a && !b"), [("a && !b", "a || !b"), ("a && !b", "a && b")])
        self.assertEqual(changes("f(-1)"), [("f(-1)", "f(1)"), ("f(-1)", "f(-2)"), ("f(-1)", "f(-0)")])
        self.assertEqual(changes("--i"), [("--i", "++i")])
        self.assertEqual(changes("x = true"), [("x = true", "x = false")])

    def test_are_not_made_of_what_is_no_code(self):
        for text in ("// a < b", "/* a\n < b */", '"a < b"', "#if 1 + 1", "std::array<ub4, n>", "T& a, const T* b"):
            self.assertEqual(changes(text), [])

    def test_name_their_function(self):
        mutants = list(mutate.mutants_of("file", "int first() {\n    a + b;\n}\n\nbool second(int c) {\n    c > d;\n}\n"))
        self.assertEqual([mutant.function for mutant in mutants], ["first", "second"])
        mutants = list(mutate.mutants_of("file", "class Type {\n    int member(int c) const {\n        c > d;\n    }\n};\n"))
        self.assertEqual([mutant.function for mutant in mutants], ["member"])


class Run(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(ROOT, ignore_errors=True)
        files = {"qzoci/planted.cpp": ENGINE, "planted_test.cpp": TEST, "CMakeLists.txt": BUILD, "chosen.txt": CHOSEN}
        for name, text in (files | {"stages.txt": "planted_test planted_test\n", "must_run.txt": ""}).items():
            (ROOT / name).parent.mkdir(parents=True, exist_ok=True)
            (ROOT / name).write_text(text)

    def run_mutate(self, equivalent):
        (ROOT / "equivalent.txt").write_text(equivalent)
        arguments = ["--root", ROOT, "--lists", ROOT, "--build", ROOT / "build", "--only", ROOT / "chosen.txt"]
        command = [sys.executable, mutate.__file__, *arguments, "--library", "planted", "libplanted.a", "run"]
        return subprocess.run(command, text=True, capture_output=True)

    def test_tells_survivors_from_the_killed_and_the_same(self):
        run = self.run_mutate("")
        self.assertEqual(run.returncode, 1, run.stderr)
        self.assertIn("2 killed, 1 survived, 1 same code, 0 does not compile\n", run.stdout)
        self.assertEqual(run.stdout.count("qzoci/planted.cpp, "), 1)
        self.assertIn(SURVIVOR, run.stdout)

    def test_leaves_out_what_is_listed_as_equivalent(self):
        run = self.run_mutate(SURVIVOR + "Nobody calls it.\n")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertIn("2 killed, 0 survived, 1 same code, 0 does not compile\n", run.stdout)

    def test_wants_a_reason_and_a_mutant_for_each_listed_one(self):
        self.assertIn("no reason", self.run_mutate(SURVIVOR).stderr)
        self.assertIn("no such mutant", self.run_mutate(SURVIVOR.replace("value -", "value *") + "Why.\n").stderr)


if __name__ == "__main__":
    unittest.main()

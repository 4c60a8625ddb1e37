#!/usr/bin/env python3
"""Each house rule is broken once, in a small project of its own, and must be reported. Usage:
house_test.py PATH_OF_SCRIPT_HOUSE"""

import importlib.machinery
import importlib.util
import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.abspath(sys.argv.pop(1))
sys.dont_write_bytecode = True
LOADER = importlib.machinery.SourceFileLoader("house", SCRIPT)
HOUSE = importlib.util.module_from_spec(importlib.util.spec_from_loader("house", LOADER))
LOADER.exec_module(HOUSE)
HEAD = "// A file.\n"


class HouseTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.root = self.folder.name
        self.git("init", "-q")
        self.write("model/dir.h", HEAD + "void dir_read();\n")
        self.write("model/dir.cpp", HEAD + '#include "model/dir.h"\nvoid dir_read() {}\n')

    def tearDown(self):
        self.folder.cleanup()

    def git(self, *args):
        subprocess.run(("git", "-C", self.root, "-c", "user.name=a", "-c", "user.email=a@b", *args),
                       check=True, capture_output=True)

    def write(self, path, text):
        path = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def house(self):
        return "".join(f"{rule}: {text}\n" for rule, text in HOUSE.check(self.root))

    def assert_breach(self, rule, part):
        found = [line for line in self.house().splitlines() if line.startswith(rule + ": ") and part in line]
        self.assertTrue(found, f"no breach of '{rule}' that says '{part}' in:\n{self.house()}")

    def test_a_clean_project_has_no_breach(self):
        self.assertEqual(self.house(), "")

    def test_the_script_tells_and_fails(self):
        self.assertEqual(subprocess.run((SCRIPT, "--root", self.root), check=False).returncode, 0)
        self.write("model/es.h", "#pragma once\n")
        run = subprocess.run((SCRIPT, "--root", self.root), capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 1)
        self.assertTrue(run.stdout.startswith("purpose: model/es.h"))

    def test_an_include_from_above(self):
        self.write("views/fl.h", HEAD)
        self.write("model/es.cpp", HEAD + '#include "views/fl.h"\n')
        self.assert_breach("floors", "model/es.cpp includes views/fl.h")

    def test_the_settings_stand_on_the_ground(self):
        self.write("app/config.h", HEAD)
        self.write("app/menu.h", HEAD)
        self.write("platform/fonts.cpp", HEAD + '#include "app/config.h"\n')
        self.assertEqual(self.house(), "")
        self.write("app/config.h", HEAD + '#include "app/menu.h"\n')
        self.assert_breach("floors", "app/config.h includes app/menu.h")

    def test_a_circle_of_two(self):
        self.write("views/a.h", HEAD + '#include "views/b.h"\n')
        self.write("views/b.h", HEAD + '#include "b2.h"\n')
        self.write("views/b2.h", HEAD + '#include "a.h"\n')
        self.assert_breach("circles", "views/a.h -> views/b.h -> views/b2.h -> views/a.h")

    def test_the_core_knows_no_qt(self):
        self.write("fileops/fop_scan.cpp", HEAD + "#include <QString>\n")
        self.assert_breach("qt", "fileops/fop_scan.cpp")

    def test_the_core_knows_no_qt_through_a_header(self):
        self.write("platform/shown.h", HEAD + "#include <QString>\n")
        self.write("fileops/fop.h", HEAD + '#include "platform/shown.h"\n')
        self.write("fileops/fop_scan.cpp", HEAD + '#include "fop.h"\n')
        self.assert_breach("qt", "fileops/fop_scan.cpp must know no Qt, but includes it in platform/shown.h")

    def test_what_shows_itself_may_know_qt(self):
        self.write("fileops/slot.cpp", HEAD + "#include <QString>\n")
        self.assertEqual(self.house(), "")

    def test_exported_names_begin_with_their_module(self):
        self.write("views/fl_list.h", HEAD + "int fl_open();\nint open_list();\nstruct A { int b(); };\n")
        self.assert_breach("names", "open_list does not begin with fl")
        self.assertNotIn("fl_open", self.house())

    def test_one_name_in_twenty_may_differ(self):
        names = "".join(f"int fl_open{i}();\n" for i in range(20))
        self.write("views/fl_list.h", HEAD + names + "int open_list();\n")
        self.assertEqual(self.house(), "")

    def test_a_function_longer_than_a_screen(self):
        self.write("model/es.cpp", HEAD + "int es_long()\n{\n" + "    ;\n" * 60 + "    return 0;\n}\n")
        self.assert_breach("functions", "es_long has 64 lines")

    def test_a_long_test(self):
        self.write("tests/model/es_test.cpp", HEAD + "TEST(Es, Long)\n{\n" + "    ;\n" * 60 + "}\n")
        self.assert_breach("functions", "Es_Long has 63 lines")

    def test_many_functions_of_middle_size(self):
        body = "\n{\n" + "    ;\n" * 20 + "}\n"
        self.write("model/es.cpp", HEAD + "".join(f"void es_{i}()" + body for i in range(9)))
        self.assert_breach("functions", "median")

    def test_too_many_functions_that_are_long(self):
        long = "\n{\n" + "    ;\n" * 50 + "}\n"
        self.write("model/es.cpp", HEAD + "".join(f"void es_{i}()" + long for i in range(2)) +
                   "".join(f"void es_short_{i}() {{}}\n" for i in range(9)))
        self.assert_breach("functions", "fewer than 45 lines")

    def test_a_file_that_is_no_room_any_more(self):
        self.write("model/es.h", HEAD + "\n" * 500)
        self.assert_breach("files", "model/es.h has 501 lines")
        self.write("tests/model/es_test.cpp", HEAD + "\n" * 600)
        self.assert_breach("files", "tests/model/es_test.cpp has 601 lines")

    def test_a_file_without_a_purpose(self):
        self.write("model/es.h", "#pragma once\n")
        self.assert_breach("purpose", "model/es.h")

    def test_fixed_sleeps(self):
        for name, line in (("a.sh", "sleep 1"), ("b.sh", "  true; sleep 0.5"), ("i.sh", "do sleep \"$t\""),
                           ("c.cpp", "std::this_thread::sleep_for(s);"), ("d.cpp", "QTest::qSleep(5);"),
                           ("e.cpp", "usleep(5);"), ("f.cpp", "QTest::qWait(5);"),
                           ("g.py", "time.sleep(1)"), ("h.h", "::sleep(1);")):
            with self.subTest(line=line):
                path = os.path.join("tests", name)
                self.write(path, HEAD + line + "\n")
                self.assert_breach("sleeps", f"{path}:2")
                os.remove(os.path.join(self.root, path))

    def test_talk_of_sleep_is_no_sleep(self):
        self.write("tests/a.cpp", HEAD + "// no sleep(1) here\nbool x = QTest::qWaitFor(f, 5);\n")
        self.write("tests/b.sh", "# sleep 5\npgrep -x sleep\n")
        self.assertEqual(self.house(), "")

    def test_words_of_other_systems_and_papers(self):
        for word in ("Pho" "ton", "Q" "NX", "Pt" "Widget", "Ph" "Image", "Ap" "CreateModule", "specifi" "cation",
                     "Par" "t 3.1", "is" "sue 4", "/wo" "rk/main"):
            with self.subTest(word=word):
                self.write("docs/a.md", f"It is {word} here.\n")
                self.assert_breach("words", "docs/a.md:1")

    def test_commit_subjects(self):
        for subject in ("No area", "area: small letter", "area: Added a thing", "area: Adds a thing",
                        "area: End with a dot.", "area: " + "Long " * 20):
            with self.subTest(subject=subject):
                self.git("commit", "-q", "--allow-empty", "-m", subject)
                self.assert_breach("commits", subject.strip())

    def test_good_commit_subjects(self):
        for subject in ("model: Read a directory", "views/fl: Don't lose the cursor", "ci: Embed it"):
            self.git("commit", "-q", "--allow-empty", "-m", subject)
        self.assertEqual(self.house(), "")

    def test_an_exception_with_a_reason(self):
        self.write("model/es.h", HEAD + "\n" * 500)
        self.write("script/house.exceptions", "# List\n\nfiles model/es.h  # one flat table\n")
        self.assertEqual(self.house(), "")

    def test_an_exception_without_a_reason(self):
        self.write("model/es.h", HEAD + "\n" * 500)
        self.write("script/house.exceptions", "files model/es.h\n")
        self.assert_breach("exceptions", "house.exceptions:1")

    def test_an_exception_that_nothing_needs(self):
        self.write("script/house.exceptions", "files model/es.h  # long\n")
        self.assert_breach("exceptions", "no longer needed")


if __name__ == "__main__":
    unittest.main()

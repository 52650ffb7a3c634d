#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The ScanReader developers
"""Feeds scripts/check-includes small trees with one thing wrong in each and expects it to say so."""
import pathlib, subprocess, sys, tempfile, unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "scripts/check-includes"
LICENCE = "// SPDX-License-Identifier: MIT\n// Copyright (c) 2026 The ScanReader developers\n"
FLOORS = """
low  |     | Source/Bss/Bss_Hal/*
lift | low | Source/Bss/Bss_Err/*
mid  | lift | Source/Sio/*
edge |     | Source/Sio/ScanReader/Export.h
top  | mid | Source/Bss/Bss_Err/Top*
"""

class CheckIncludes(unittest.TestCase):
    def run_on(self, floors=FLOORS, **files):
        """Writes a clean tree, replaces or adds the files given, and runs the check on it."""
        tree = {"Source/Bss/Bss_Hal/Clock.h": LICENCE + "#ifdef _WIN32\n#include <windows.h>\n#endif\n",
                "Source/Bss/Bss_Err/Code.h": LICENCE + '#include "Bss/Bss_Hal/Clock.h"\n#include <vector>\n',
                "Source/Bss/Bss_Err/TopReport.cpp": LICENCE + '#include "Sio/Reader.h"\n#include "Code.h"\n',
                "Source/Sio/Reader.h": LICENCE + '#  include "Bss/Bss_Err/Code.h"\n',
                "Source/Sio/ScanReader/Export.h": LICENCE + "#if defined(_WIN32)\n#endif\n",
                "Docs/floors.txt": floors, **files}
        with tempfile.TemporaryDirectory() as folder:
            for name, text in tree.items():
                path = pathlib.Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            done = subprocess.run([sys.executable, CHECK, folder], capture_output=True, text=True)
        return done.returncode, done.stdout + done.stderr

    def expect_finding(self, finding, **arguments):
        code, output = self.run_on(**arguments)
        self.assertEqual((code, output), (1, finding + "\n"))

    def test_a_clean_tree_passes(self):
        self.assertEqual(self.run_on()[0], 0)

    def test_an_upward_include_is_named(self):
        self.expect_finding("Source/Bss/Bss_Err/Code.h:3: lift includes Sio/Reader.h, which stands on mid",
                            **{"Source/Bss/Bss_Err/Code.h": LICENCE + '#include "Sio/Reader.h"\n'})

    def test_an_upward_include_within_one_folder_is_named(self):
        self.expect_finding("Source/Bss/Bss_Err/Code.h:3: lift includes TopReport.cpp, which stands on top",
                            **{"Source/Bss/Bss_Err/Code.h": LICENCE + '#include "TopReport.cpp"\n'})

    def test_a_sideways_include_is_named(self):
        self.expect_finding("Source/Sio/Reader.h:3: mid includes ScanReader/Export.h, which stands on edge",
                            **{"Source/Sio/Reader.h": LICENCE + "#include <ScanReader/Export.h>\n"})

    def test_a_file_on_no_floor_is_named(self):
        self.expect_finding("Source/New/Thing.cpp:1: stands on no floor", **{"Source/New/Thing.cpp": LICENCE})

    def test_a_system_conditional_outside_the_platform_layer_is_named(self):
        for condition in ("#ifdef _WIN32", "#if defined(__linux__) && 1", "# ifndef _MSC_VER", "#elif WIN32"):
            with self.subTest(condition):
                self.expect_finding(
                    "Source/Sio/Reader.h:4: conditional on the operating system outside the platform layer",
                    **{"Source/Sio/Reader.h": LICENCE + "#if 0\n" + condition + "\n#endif\n"})

    def test_a_system_header_outside_the_platform_layer_is_named(self):
        self.expect_finding("Source/Sio/Reader.h:3: includes <sys/stat.h> outside the platform layer",
                            **{"Source/Sio/Reader.h": LICENCE + "#include <sys/stat.h>\n"})

    def test_missing_licence_lines_are_named(self):
        self.expect_finding("Source/Sio/Reader.h:1: does not begin with the two licence lines",
                            **{"Source/Sio/Reader.h": "#pragma once\n"})

    def test_a_list_whose_floor_hangs_in_the_air_is_refused(self):
        code, output = self.run_on(floors="mid | low | Source/*\n")
        self.assertEqual(code, 2)
        self.assertIn("low is not a floor above this line", output)

    def test_an_empty_tree_does_not_pass(self):
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "Docs").mkdir()
            pathlib.Path(folder, "Docs/floors.txt").write_text(FLOORS, encoding="utf-8")
            self.assertEqual(subprocess.run([sys.executable, CHECK, folder], capture_output=True).returncode, 1)

if __name__ == "__main__":
    unittest.main()

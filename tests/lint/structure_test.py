#!/usr/bin/env python3
"""The structure checks find what they are there for, in small trees made for the purpose."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "cmake/lint/structure.py"


class StructureTest(unittest.TestCase):
    def check(self, name, files, edges="include/ZELTarkaSDK/platform:\nlink:\ncommand: link\n"):
        with tempfile.TemporaryDirectory() as root:
            for path, text in {"cmake/lint/edges.txt": edges, **files}.items():
                target = Path(root) / path
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_text(text)
            done = subprocess.run([sys.executable, SCRIPT, "--root", root, name], capture_output=True, text=True, check=False)
            return done.returncode, done.stdout

    def test_accepts_the_standard_library_ports_and_what_is_below(self):
        files = {"command/a.cc": '#include <vector>\n#include <ZELTarkaSDK/platform/clock.h>\n#include "link/b.h"\n'}
        self.assertEqual(self.check("include-graph", files)[0], 0)

    def test_finds_an_include_of_what_is_above(self):
        code, text = self.check("include-graph", {"link/a.cc": '\n#include "command/b.h"\n'})
        self.assertEqual(code, 1)
        self.assertIn("link/a.cc:2", text)

    def test_finds_an_adapter_in_the_core(self):
        self.assertEqual(self.check("include-graph", {"link/a.cc": '#include "platform/linux/b.h"\n'})[0], 1)

    def test_finds_a_system_header_in_the_core(self):
        self.assertEqual(self.check("include-graph", {"link/a.cc": "#include <sys/socket.h>\n"})[0], 1)
        self.assertEqual(self.check("include-graph", {"link/a.cc": "#include <asio/post.hpp>\n"})[0], 1)

    def test_finds_a_folder_that_may_include_what_stands_above_it(self):
        self.assertEqual(self.check("include-graph", {}, "link: command\ncommand: link\n")[0], 1)

    def test_lets_one_header_of_a_folder_be_included_and_no_other(self):
        edges = "link:\ncommand: link/a.h\n"
        self.assertEqual(self.check("include-graph", {"command/a.cc": '#include "link/a.h"\n'}, edges)[0], 0)
        self.assertEqual(self.check("include-graph", {"command/a.cc": '#include "link/b.h"\n'}, edges)[0], 1)

    def test_finds_a_public_header_that_includes_what_is_not_installed(self):
        edges = "include/ZELTarkaSDK:\nlink:\n"
        self.assertEqual(self.check("include-graph", {"include/ZELTarkaSDK/A.h": '#include "link/a.h"\n'}, edges)[0], 1)
        self.assertEqual(self.check("include-graph", {"include/ZELTarkaSDK/A.h": "#include <asio.hpp>\n"}, edges)[0], 1)
        self.assertEqual(self.check("include-graph", {"include/ZELTarkaSDK/A.h": "#include <ZELTarkaSDK/B.h>\n"}, edges)[0], 0)

    def test_finds_files_of_a_folder_that_include_one_another_in_a_circle(self):
        files = {"link/a.h": "", "link/a.cc": '#include "link/b.h"\n', "link/b.h": '#include "link/c.h"\n',
                 "link/c.h": "", "link/c.cc": '#include "link/a.h"\n'}
        code, text = self.check("circles", files)
        self.assertEqual(code, 1)
        self.assertIn("link/a.h:1: includes itself by way of link/b.h -> link/c.h -> link/a.h", text)
        self.assertEqual(self.check("circles", {**files, "link/c.cc": ""})[0], 0)

    def test_takes_the_sources_of_a_public_class_for_a_part_of_its_header(self):
        files = {"include/ZELTarkaSDK/ZELView.h": "", "link/zel_view.cc": '#include "link/zel_view_state.h"\n',
                 "link/zel_view_state.h": "#include <ZELTarkaSDK/ZELView.h>\n"}
        self.assertEqual(self.check("circles", files, "include/ZELTarkaSDK:\nlink:\n")[0], 0)

    def test_finds_a_source_without_a_test(self):
        code, text = self.check("pairs", {"link/a.cc": "", "link/a.h": ""})
        self.assertEqual(code, 1)
        self.assertIn("tests/link/a_test.cc", text)

    def test_finds_a_function_that_is_too_long(self):
        body = "void f() {\n" + "  g();\n" * 61 + "}\n"
        self.assertEqual(self.check("length", {"link/a.cc": body})[0], 1)
        self.assertEqual(self.check("length", {"link/a.cc": body.replace("  g();\n", "", 1)})[0], 0)

    def test_finds_a_class_operation_in_the_core(self):
        self.assertEqual(self.check("text", {"command/a.cc": "X::defaultCamera().f();\n"})[0], 1)

    def test_finds_a_label_of_a_contract_in_mid_line(self):
        for text in ("// Sends it. Errors: false.\n", "int a;  // of the card; Units: bytes.\n", "// A.\n// B. Thread:\n// any.\n"):
            code, output = self.check("text", {"link/a.h": text})
            self.assertEqual(code, 1, text)
            self.assertIn("label", output)

    def test_accepts_a_label_that_begins_its_line(self):
        self.assertEqual(self.check("text", {"link/a.h": "// Sends it.\n// Errors: false.\nint a;  // Units: bytes.\n"})[0], 0)
        self.assertEqual(self.check("text", {"link/a.cc": 'auto text = "Thread: none";\n'})[0], 0)

    def test_finds_an_example_that_is_too_long_or_sees_more_than_a_host(self):
        self.assertEqual(self.check("examples", {"examples/a.cc": "#include <ZELTarkaSDK/A.h>\n" + "\n" * 58})[0], 0)
        self.assertEqual(self.check("examples", {"examples/a.cc": "\n" * 60})[0], 1)
        self.assertEqual(self.check("examples", {"examples/a.cc": '#include "link/roles.h"\n'})[0], 1)


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/env python3
"""Plants faults in a small tree and expects each to be reported, with its place."""

import tempfile
import unittest
import unittest.mock
from pathlib import Path

import check_tree


class CheckTreeTest(unittest.TestCase):
    def faults(self, files):
        """The faults of a sound tree into which `files` (text by path) are planted."""
        sound = {
            "platform/Orin/Ptr.h": "#include <utility>\n",
            "platform/OvSlab/Slab.h": '#include "platform/Orin/Ptr.h"\n',
            "platform/Ovk/UniqueId.h": "#include <cstdint>\n",
            "platform/Vex/Reactor.h": '#include "platform/OvSlab/Slab.h"\n',
            "platform/Strata/Mount.h": '#include "platform/Vex/Reactor.h"\n',
            "platform/Plugin/Loader.h": '#include "platform/Strata/Mount.h"\n',
            "platform/Agent/MounterPlugin.h": '#include "platform/Plugin/Loader.h"\n',
            "platform/Qos/Status.h": '#include "platform/Agent/MounterPlugin.h"\n',
            "platform/Acl/Config.h": '#include "platform/Ovk/UniqueId.h"\n',
            "platform/QosOc/Naming.h": '#include "platform/Qos/Status.h"\n',
            "QosOpenConfig/RootSm.h": '#include "platform/QosOc/Naming.h"\n',
            "QosOpenConfig/RootSm.cpp": '#include "QosOpenConfig/RootSm.h"\n#include <algorithm>\n',
            "agent/main.cpp": '#include <sys/stat.h>\n#include "platform/Qos/Status.h"\n'
                              "#include <nlohmann/json.hpp>\n#include <CLI/CLI.hpp>\n",
            "tests/support/Toy.h": '#include "platform/Vex/Reactor.h"\n#include <gtest/gtest.h>\n',
            "tests/platform/Qos/StatusTest.cpp": '#include "tests/support/Toy.h"\n',
            "bench/Event.h": "#include <cstdint>\n",
            "bench/floor/Lean.cpp": '#include "bench/platform/Walk.h"\n',
            "bench/platform/Walk.h": '#include "bench/Event.h"\n',
            "bench/time/main.cpp": "#include <benchmark/benchmark.h>\n",
            "run": "#!/usr/bin/env bash\n",
            "test": "#!/usr/bin/env bash\n",
            ".ci/run": "#!/usr/bin/env bash\n",
        }
        with tempfile.TemporaryDirectory() as root:
            for path, text in {**sound, **files}.items():
                (Path(root) / path).parent.mkdir(parents=True, exist_ok=True)
                (Path(root) / path).write_text(text, encoding="utf-8")
            return check_tree.faults(root)

    def assert_refuses(self, path, include, fault):
        self.assertEqual(self.faults({path: f"// first line\n#include {include}\n"}),
                         [f"{path}:2: {fault}"])

    def test_passes_a_sound_tree(self):
        self.assertEqual(self.faults({}), [])

    def test_refuses_an_empty_tree(self):
        with tempfile.TemporaryDirectory() as root:
            self.assertEqual(check_tree.faults(root), [f"{root}: no sources here"])

    def test_refuses_layers_that_include_upwards(self):
        for path, target in [
            ("platform/Orin/A.h", "platform/OvSlab/Slab.h"),
            ("platform/Orin/A.h", "platform/Vex/Reactor.h"),
            ("platform/OvSlab/A.h", "platform/Ovk/UniqueId.h"),
            ("platform/OvSlab/A.h", "platform/Vex/Reactor.h"),
            ("platform/Ovk/A.h", "platform/OvSlab/Slab.h"),
            ("platform/Vex/A.cpp", "platform/Strata/Mount.h"),
            ("platform/Vex/A.cpp", "platform/Qos/Status.h"),
            ("platform/Strata/A.h", "platform/Qos/Status.h"),
            ("platform/Plugin/A.h", "platform/Acl/Config.h"),
            ("platform/Agent/A.h", "platform/QosOc/Naming.h"),
            ("platform/QosOc/A.h", "QosOpenConfig/RootSm.h"),
            ("platform/Qos/A.cpp", "agent/main.cpp"),
            ("QosOpenConfig/A.cpp", "agent/main.cpp"),
            ("agent/A.cpp", "QosOpenConfig/RootSm.h"),
            ("tests/platform/ATest.cpp", "QosOpenConfig/RootSm.h"),
            ("tests/support/A.h", "tests/platform/Qos/StatusTest.cpp"),
            ("tests/model/A.cpp", "QosOpenConfig/RootSm.h"),
            ("bench/floor/A.h", "QosOpenConfig/RootSm.h"),
            ("bench/platform/A.h", "bench/time/main.cpp"),
        ]:
            with self.subTest(path=path, target=target):
                folder = "/".join(path.split("/")[:-1]) + "/"
                self.assert_refuses(path, f'"{target}"', f"{folder} must not include {target}")

    def test_refuses_libraries_where_they_do_not_belong(self):
        for path, folder, library in [
            ("platform/Vex/A.h", "platform/Vex/", "nlohmann/json.hpp"),
            ("platform/Qos/A.cpp", "platform/Qos/", "boost/any.hpp"),
            ("QosOpenConfig/A.cpp", "QosOpenConfig/", "CLI/CLI.hpp"),
            ("agent/A.cpp", "agent/", "boost/any.hpp"),
            ("agent/A.cpp", "agent/", "gtest/gtest.h"),
            ("tests/support/A.h", "tests/support/", "benchmark/benchmark.h"),
        ]:
            with self.subTest(path=path, library=library):
                self.assert_refuses(path, f"<{library}>", f"{folder} must not include <{library}>")

    def test_refuses_paths_that_do_not_begin_at_the_root(self):
        self.assert_refuses("platform/Orin/A.h", '"Ptr.h"', "platform/Orin/ must not include Ptr.h")

    def test_refuses_what_is_not_in_the_tree(self):
        self.assert_refuses("agent/A.cpp", '"agent/Gone.h"',
                            "includes agent/Gone.h, which is not in the tree")

    def test_refuses_includes_by_macro(self):
        self.assert_refuses("agent/A.cpp", "WHAT", "includes what cannot be read off: WHAT")

    def test_refuses_a_folder_that_has_no_layer(self):
        self.assertEqual(
            self.faults({"platform/Misc/A.h": "\n"}),
            ["platform/Misc/A.h:1: lies in a folder that has no place in the layers"])

    def test_refuses_a_file_that_includes_itself(self):
        self.assertEqual(
            self.faults({"agent/A.h": '#include "agent/A.h"\n'}),
            ["agent/A.h:1: includes itself: agent/A.h -> agent/A.h"])

    def test_refuses_cycles_of_several_files(self):
        self.assertEqual(
            self.faults({"platform/Qos/A.h": '#include "platform/Acl/B.h"\n',
                         "platform/Acl/B.h": '\n#include "platform/QosOc/C.h"\n',
                         "platform/QosOc/C.h": '#include "platform/Qos/A.h"\n'}),
            ["platform/Qos/A.h:1: includes itself: platform/Acl/B.h -> platform/QosOc/C.h"
             " -> platform/Qos/A.h -> platform/Acl/B.h"])

    def test_refuses_a_long_header_without_a_reason(self):
        long = "\n" * 151
        self.assertEqual(
            self.faults({"agent/A.h": long}),
            ["agent/A.h:151: a header of over 150 lines without a comment `long: REASON`"])
        self.assertEqual(self.faults({"agent/A.h": "// long: one table" + long}), [])
        self.assertEqual(len(self.faults({"agent/A.h": "// long: " + long})), 1)

    def test_refuses_a_long_file_without_a_reason(self):
        long = "\n" * 301
        for path, before in [("agent/A.cpp", ""), ("tests/model/A.cpp", ""),
                             ("scripts/a", "#!/usr/bin/env bash\n"), ("tests/shape/a.py", "")]:
            with self.subTest(path=path):
                lines = (before + long).count("\n")
                self.assertEqual(
                    self.faults({path: before + long}),
                    [f"{path}:{lines}: a file of over 300 lines without a comment `long: REASON`"])
                sign = "//" if path.endswith(".cpp") else "#"
                self.assertEqual(self.faults({path: f"{before}\n{sign} long: a table{long}"}), [])
                self.assertEqual(len(self.faults({path: f"{before}\n  {sign} long: a{long}"})), 1)

    def test_passes_a_long_file_that_is_listed(self):
        with unittest.mock.patch.object(check_tree, "LONG_FILES", {"tests/model/A.cpp"}):
            self.assertEqual(self.faults({"tests/model/A.cpp": "\n" * 301}), [])

    def test_refuses_a_long_function_without_a_reason(self):
        for path, before, first, line, last in [
            ("agent/A.cpp", "", "void f(int a,\n       int b) {\n", "    a();\n", "}\n"),
            ("bench/A.h", "class A {\n", "    int f() {\n", "        a();\n\n", "    }\n"),
            ("test", "#!/usr/bin/env bash\n", "f() {\n", "    a\n", "}\n"),
            ("scripts/a", "#!/usr/bin/env python3\n", "def f():\n", "    a()\n", ""),
            ("tests/shape/a.py", "", "def f():\n", "    a()\n", ""),
        ]:
            with self.subTest(path=path):
                longest = 50 if path.startswith("tests/") else 40
                inner = (longest - (first + last).count("\n")) // line.count("\n")
                self.assertEqual(self.faults({path: before + first + inner * line + last}), [])
                long = (inner + 1) * line
                [fault] = self.faults({path: before + first + long + last})
                place = f"{path}:{before.count(chr(10)) + 1}"
                self.assertTrue(fault.startswith(f"{place}: a function of over {longest} lines without a "
                                                 "comment `long: REASON`: "), fault)
                reason = f"    {'//' if path.endswith(('.cpp', '.h')) else '#'} long: a table\n"
                self.assertEqual(self.faults({path: before + first + reason + long + last}), [])

    def test_passes_a_full_file_and_a_full_header(self):
        self.assertEqual(self.faults({"agent/A.cpp": "\n" * 300, "agent/A.h": "\n" * 150}), [])


if __name__ == "__main__":
    unittest.main()

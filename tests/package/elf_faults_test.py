#!/usr/bin/env python3
"""Compiles files that each lack one protection, and looks whether that is noticed.

    elf_faults_test.py COMPILER

COMPILER is g++: others do not write into the file how it was called.
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from elf_faults import elf_faults

COMPILER = sys.argv[1]

# Needs each protection once: an array on the stack, a call that can be fortified, an index that the
# library can check, and a symbol of each visibility.
SOURCE = """
#include <cstring>
#include <vector>
template <class T> struct Counted { static inline int count = 0; };
namespace Own { __attribute__((visibility("default"))) int offered(const char* text, std::vector<int>& values) {
    char copy[64];
    std::strncpy(copy, text, values.size());
    return values[copy[0]] + Counted<int>::count++;
} }
int hidden() { return Counted<long>::count++; }
const char* place() { return __FILE__; }
MAIN
"""
GOOD = {
    "position": "-fPIC", "shape": "-shared", "optimised": "-O2", "debug": "-g1",
    "fortify": "-D_FORTIFY_SOURCE=3", "assertions": "-D_GLIBCXX_ASSERTIONS",
    "guard": "-fstack-protector-strong", "clash": "-fstack-clash-protection",
    "hidden": "-fvisibility=hidden", "unique": "-fno-gnu-unique",
    "relro": "-Wl,-z,relro", "now": "-Wl,-z,now", "stack": "-Wl,-z,noexecstack",
    "rpath": "-Wl,-rpath,$ORIGIN/../lib",
}
OFFERS = "Own::"


class ElfFaultsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.temporary.cleanup)
        cls.folder = Path(cls.temporary.name).resolve()

    def faults(self, main="", **changed):
        """Of what is built with the good options but for these."""
        source, file = self.folder / "unit.cpp", self.folder / "unit.so"
        source.write_text(SOURCE.replace("MAIN", main), encoding="utf-8")
        options = {"place": f"-ffile-prefix-map={self.folder}/=", **GOOD, **changed}
        subprocess.run([COMPILER, *" ".join(options.values()).split(), str(source), "-o", str(file)],
                       check=True)
        return elf_faults(file, OFFERS, [self.folder])

    def expect(self, fault, **changed):
        self.assertEqual(self.faults(**changed), [fault])

    def test_finds_nothing_wrong_with_what_has_all(self):
        self.assertEqual(self.faults(), [])

    def test_finds_what_the_loader_is_to_do(self):
        self.expect("its tables stay writable", relro="-Wl,-z,norelro")
        self.expect("it is bound late", now="-Wl,-z,lazy")
        self.expect("its stack is executable", stack="-Wl,-z,execstack")
        self.expect("it looks for libraries in /opt/lib", rpath="-Wl,-rpath,$ORIGIN:/opt/lib")

    def test_finds_code_that_can_be_changed(self):
        self.assertIn("its code is writable",
                      self.faults(now="-Wl,-z,now -Wl,--omagic -nostdlib"))
        self.assertIn("its code is changed when it is loaded",
                      self.faults(position="-fno-pic -mcmodel=large -Wl,-z,notext"))

    def test_finds_a_program_with_a_fixed_place(self):
        program = {"main": "int main() { return hidden(); }", "shape": "-Wl,--export-dynamic"}
        self.assertNotIn("its place in memory is fixed",
                         self.faults(position="-fPIE -pie", **program))
        self.assertIn("its place in memory is fixed",
                      self.faults(position="-fno-pie -no-pie", **program))

    def test_finds_code_without_protection(self):
        self.assertEqual(self.faults(guard="-fno-stack-protector"),
                         ["no function guards its stack",
                          "a unit is compiled without -fstack-protector-strong"])
        self.expect("a unit is compiled without -fstack-clash-protection",
                    clash="-fno-stack-clash-protection")
        self.expect("no call is fortified", fortify="-U_FORTIFY_SOURCE")
        self.expect("no call of the library is checked", assertions="-U_GLIBCXX_ASSERTIONS")
        self.expect("a unit is compiled without -O2", optimised="-O1")
        self.expect("it does not tell how it was compiled", debug="-g0")

    def test_finds_what_others_can_see(self):
        self.assertIn("it offers hidden()", self.faults(hidden="-fvisibility=default"))
        self.assertIn("a unique symbol keeps it loaded",
                      self.faults(unique="-fgnu-unique", hidden="-fvisibility=default"))

    def test_finds_where_it_was_built(self):
        self.expect(f"it tells of {self.folder}", place="")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

"""Which faults are found in a piece of C++, as clang reads it."""
import sys
import tempfile
import unittest
from pathlib import Path

try:
    import clang.cindex  # noqa: F401
except ImportError:
    print("not run: there is no python3-clang-19", file=sys.stderr)
    sys.exit(77)

from places import faults_of

HEAD = """#define NUMBER 5
bool Ask(int one);
bool Ask(int one, int other);
bool Tell(const wchar_t* text);
"""


class Found(unittest.TestCase):
    def faults(self, code, operator):
        """The changed lines, by faults of the operator's kind."""
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            (root / "base").mkdir()
            source = root / "base/code.cpp"
            source.write_text(HEAD + code)
            faults = faults_of(source, ["-xc++", "-std=c++17"], root, ("base",))
            return sorted(fault.lines(HEAD + code)[1] for fault in faults.values()
                          if fault.operator == operator)

    def test_comparisons_are_shifted_and_turned(self):
        self.assertEqual(self.faults("bool f(int a) { return a < 1; }", "comparison"),
                         ["bool f(int a) { return a <= 1; }"])
        self.assertEqual(self.faults("bool f(int a) { return a == 1; }", "comparison"),
                         ["bool f(int a) { return a != 1; }"])

    def test_logic_is_exchanged(self):
        self.assertEqual(self.faults("bool f(bool a, bool b) { return a && b; }", "logic"),
                         ["bool f(bool a, bool b) { return a || b; }"])

    def test_conditions_are_negated_once(self):
        self.assertEqual(self.faults("void f(int a) {\nif (a > 1) { Ask(a); }\n}", "negation"),
                         ["if (!(a > 1)) { Ask(a); }"])
        self.assertEqual(self.faults("void f(bool a) {\nwhile (!a) { Ask(1); }\n}", "negation"),
                         ["while (a) { Ask(1); }"])
        self.assertEqual(self.faults("bool f(int a) { return Ask(a); }", "negation"),
                         ["bool f(int a) { return !(Ask(a)); }"])
        # The turned comparison does the same.
        self.assertEqual(self.faults("int f(int a) { return a == 1 ? 2 : 3; }", "negation"), [])

    def test_arithmetic_goes_the_other_way(self):
        self.assertEqual(self.faults("int f(int a) { return a + NUMBER; }", "arithmetic"),
                         ["int f(int a) { return a - NUMBER; }"])
        self.assertEqual(self.faults("void f(int a) { ++a; }", "arithmetic"),
                         ["void f(int a) { --a; }"])

    def test_arguments_of_the_same_type_are_swapped(self):
        self.assertEqual(self.faults("bool f(int a, int b) { return Ask(a, b); }", "arguments"),
                         ["bool f(int a, int b) { return Ask(b, a); }"])
        self.assertEqual(self.faults("bool f(int a) { return Ask(a); }", "arguments"), [])
        self.assertEqual(self.faults("int min(int, int); int f(int a) { return min(a, 1); }",
                                     "arguments"), [])

    def test_neighbours_in_a_list_are_swapped(self):
        self.assertEqual(self.faults("int f[] = {1, 2, 3};", "entries"),
                         ["int f[] = {1, 3, 2};", "int f[] = {2, 1, 3};"])

    def test_numbers_are_moved_by_one(self):
        self.assertEqual(self.faults("int f = 0;", "number"), ["int f = 1;"])
        self.assertEqual(self.faults("long f = 0x0FL;", "number"),
                         ["long f = 0x0EL;", "long f = 0x10L;"])
        self.assertEqual(self.faults("int f = NUMBER;", "number"), ["int f = (NUMBER + 1);"])

    def test_texts_are_changed_and_shortened(self):
        self.assertEqual(self.faults('bool f = Tell(L"abc\\\\");', "text"),
                         ['bool f = Tell(L"abc");', 'bool f = Tell(L"abd\\\\");'])
        self.assertEqual(self.faults('bool f = Tell(L"");', "text"), ['bool f = Tell(L"x");'])
        self.assertEqual(self.faults("wchar_t f = L'\\\\';", "character"), ["wchar_t f = L'x';"])

    def test_truth_values_and_enumerators_are_exchanged(self):
        self.assertEqual(self.faults("bool f = true;", "truth value"), ["bool f = false;"])
        self.assertEqual(self.faults("enum E { A, B };\nE f = B;", "enumerator"), ["E f = A;"])

    def test_statements_are_removed(self):
        self.assertEqual(self.faults("void f(int a) { Ask(a); }", "removed call"),
                         ["void f(int a) { ; }"])
        self.assertEqual(self.faults("void f(int a) { a = 1; }", "removed assignment"),
                         ["void f(int a) { ; }"])
        self.assertEqual(self.faults("void f(int a) {\nif (a) { return; }\nAsk(a); }",
                                     "removed jump"), ["if (a) { ; }"])
        self.assertEqual(self.faults("void f(int a) { return; }", "removed jump"), [])
        self.assertEqual(self.faults("void f(int a) { if (a) { Ask(1); } else { Ask(2); } }",
                                     "removed else"), ["void f(int a) { if (a) { Ask(1); } }"])

    def test_calling_neighbours_are_swapped(self):
        self.assertEqual(self.faults("void f() { Ask(1); Ask(2); }", "swapped statements"),
                         ["void f() { Ask(2); Ask(1); }"])
        self.assertEqual(self.faults("void f(int a) { Ask(1); a = 2; }", "swapped statements"), [])
        self.assertEqual(self.faults("void f() { bool a = Ask(1); Ask(a); }",
                                     "swapped statements"), [])

    def test_functions_return_at_once(self):
        self.assertEqual(self.faults("void f() { Ask(1); }", "early return"),
                         ["void f() { return; Ask(1); }"])
        self.assertEqual(self.faults("bool f() { return Ask(1); }", "early return"),
                         ["bool f() { return false; return Ask(1); }",
                          "bool f() { return true; return Ask(1); }"])
        self.assertEqual(self.faults("int& f(int& a) { return a; }", "early return"), [])

    def test_a_static_assertion_and_a_comment_are_no_places(self):
        self.assertEqual(self.faults("static_assert(1 + 1 == 2); // 3 < 4", "number"), [])


if __name__ == "__main__":
    unittest.main()

"""What the comparison says of programs that differ, and that every sample has its expected captions."""
import json
import sys
import unittest

import conformance


def caption(start, end, *lines, name=None):
    return {"start": start, "end": end, "class": name, "lines": list(lines)}


EXPECTED = [caption(1000, 2000, "one", "two", name="KRCC"), caption(3000, None, "three", name="ENCC")]
FIRST, SECOND = EXPECTED

CASES = [
    ("nothing differs", [SECOND, FIRST], {"same": 2}, ""),
    ("a program that knows no classes", [caption(1000, 2000, "one", "two"), caption(3000, None, "three")], {"same": 2}, ""),
    ("an end", [FIRST, caption(3000, 4000, "three", name="ENCC")], {"same": 1, "time": 1}, "3000 to open three is 3000 to 4000"),
    ("a start", [caption(900, 2000, "one", "two", name="KRCC"), SECOND], {"same": 1, "time": 1}, "is 900 to 2000"),
    ("lines laid out anew", [caption(1000, 2000, "one  two", name="KRCC"), SECOND], {"same": 1, "wrap": 1}, "is 1000 to 2000 one  two"),
    ("a text", [caption(1000, 2000, "won", name="KRCC"), SECOND], {"same": 1, "text": 1}, "one / two is 1000 to 2000 won"),
    ("a class", [FIRST, caption(3000, None, "three", name="KRCC")], {"same": 1, "class": 1}, "3000"),
    ("one missing", [SECOND], {"same": 1, "missing": 1}, "one / two is missing"),
    ("one too many", [FIRST, SECOND, SECOND], {"same": 2, "extra": 1}, "three is extra"),
    ("no caption", [], {"missing": 2}, "is missing"),
]


class Comparison(unittest.TestCase):
    def test_kinds_of_differences(self):
        for why, given, counts, first in CASES:
            with self.subTest(why):
                told, where = conformance.compare(EXPECTED, given)
                self.assertEqual({name: count for name, count in told.items() if count}, counts)
                self.assertIn(first, where)
                self.assertEqual(where == "", first == "")

    def test_refusals_and_failures(self):
        self.assertEqual(conformance.judge({"captions": None}, None)[1], "")
        self.assertEqual(conformance.judge({"captions": EXPECTED}, None), ({"extra": 2}, "is to be refused"))
        self.assertEqual(conformance.judge({"captions": None}, EXPECTED), ({"missing": 2}, "is refused"))
        fails = conformance.run([sys.executable, "-c", "raise SystemExit('no luck')"], "x", "")
        self.assertEqual(conformance.judge(fails, EXPECTED), ({"missing": 2}, "no luck"))

    def test_every_sample_has_its_expectation(self):
        names = {path.name + ".json" for path in conformance.list_samples()}
        self.assertEqual(names, {path.name for path in conformance.EXPECTED.iterdir()})
        for name in names:
            document = json.loads((conformance.EXPECTED / name).read_text(encoding="utf-8"))
            self.assertEqual(conformance.format_document(document), (conformance.EXPECTED / name).read_text(encoding="utf-8"))


if __name__ == "__main__":
    unittest.main()

# SPDX-License-Identifier: MIT
"""What can be said of the widgets for macOS without their compiler: that they name what the program writes and opens."""

import json
import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SWIFT = "".join(path.read_text() for path in sorted(ROOT.glob("widgets/macos/*.swift")))
JSON_TYPES = {"Bool": bool, "String": str, "Double": (int, float), "Date": (int, float)}


def records():
    """What each structure that is decoded holds: its name, then its fields with their types."""
    found, open_ones = {}, []
    for line in SWIFT.splitlines():
        if struct := re.match(r" *struct (\w+): Decodable {", line):
            open_ones.append(struct[1])
            found[struct[1]] = {}
        elif field := open_ones and re.match(r" *let (\w+): (\S+)$", line):
            found[open_ones[-1]][field[1]] = field[2]
        elif open_ones and line == "  " * (len(open_ones) - 1) + "}":
            open_ones.pop()
    return found


class MacosWidgetsTest(unittest.TestCase):
    def check(self, value, kind):
        if kind.startswith("["):
            self.assertTrue(value, "an empty list says nothing of its elements")
            for each in value:
                self.check(each, kind[1:-1])
        elif kind in JSON_TYPES:
            self.assertIsInstance(value, JSON_TYPES[kind])
        else:
            self.seen.setdefault(kind, set()).update(value)
            fields = records()[kind]
            self.assertLessEqual(set(value), set(fields), f"keys that {kind} does not know")
            for name, optional_kind in fields.items():
                required = not optional_kind.endswith("?")
                if required or name in value:
                    self.check(value.get(name), optional_kind.rstrip("?"))

    def test_they_decode_what_is_written(self):
        self.seen = {}
        self.check(json.loads((ROOT / "tests/app/widgets/usage-snapshot.json").read_text()), "WidgetSnapshot")
        self.assertEqual(self.seen, {name: set(fields) for name, fields in records().items()}, "fields nobody writes")

    def test_what_may_be_left_out_is_optional(self):
        self.seen = {}
        provider = {"enabled": False, "isRefreshing": False}
        least = {"date": 0.0, "temperatureEnabled": False, "codex": provider, "claude": provider}
        self.check(least, "WidgetSnapshot")

    def test_the_kinds_are_those_that_are_reloaded(self):
        publisher = (ROOT / "src/app/widgets/widget_publisher.cpp").read_text()
        kinds = set(re.findall(r'kind: "(.+)"', SWIFT))
        self.assertEqual(len(kinds), 2)
        self.assertEqual(kinds, set(re.findall(r'"(com\.quellwerk\.Nimbo\..+?)"', publisher)))

    def test_their_links_lead_somewhere(self):
        links = set(re.findall(r'asWidget\(opening: "(.+)"\)', SWIFT))
        self.assertEqual(links, {"nimbo://usage", "nimbo://resources"})
        self.assertLessEqual(links, set(re.findall(r'"(nimbo://\w+)"sv', (ROOT / "src/app/launch.cpp").read_text())))

    def test_they_call_old_what_the_program_does(self):
        old = re.search(r"kFresh\{(\d+)\}", (ROOT / "src/usage/usage_status.cpp").read_text())[1]
        self.assertIn(f"freshFor: TimeInterval = {old}\n", SWIFT)


if __name__ == "__main__":
    unittest.main()

"""Runs sensorfile check as a user does, on files that are clean and for the form of its reports."""

import json
import os
import random
import re
import struct

from check_case import CheckTest
from sample_files import (CALIB, CALIBRATED, DATA, GAIN, IMU, IMU_ROWS, RANGE, TYPES, binary_calib,
                          binary_file, binary_header, date, kivra2_calib, opening, pack_rows,
                          text_calib, text_file)
from tool_test import ROOT, main

NUMBERS = [kind for code, (_, kind) in TYPES.items() if code not in (2, 3)]


class Clean(CheckTest):
    def rows_of(self, kinds):
        return [tuple(i % 2 if kind == "bool" else 20 + i for kind in kinds) for i in range(50)]

    def test_files_of_all_types_are_clean(self):
        for kinds, make in [([kind for _, kind in TYPES.values()], binary_file),
                            (NUMBERS, text_file)]:
            columns = [(f"c{i}", kind) for i, kind in enumerate(kinds)]
            self.assert_clean(make(columns, self.rows_of(kinds), calib=[GAIN, RANGE]))

    def test_little_endian_and_older_files_are_clean(self):
        self.assert_clean(binary_file(order="<", calib=[GAIN, RANGE]))
        self.assert_clean(binary_file(version=0x0100, calib=[GAIN]))
        values = struct.pack(">12d", *range(1, 13))
        calib = (opening(">", CALIB, 0x0100) + struct.pack(">Q", 31 + len(values)) +
                 date(">", CALIBRATED) + b"\1" + values)
        # The nine numbers count up: they are no gain that can be inverted.
        self.assertEqual(self.codes(binary_header(IMU) + calib + opening(">", DATA, 0x0100) +
                                    pack_rows(IMU, IMU_ROWS)), ["singular-gain"])

    def test_files_without_rows_columns_or_calibration_are_clean(self):
        for make in [binary_file, text_file]:
            self.assert_clean(make(rows=[]))
            self.assert_clean(make([], []))
        self.assert_clean(binary_header(IMU) + opening(">", DATA, 0x0100))

    def test_calibration_files_are_clean(self):
        for content in [binary_calib([GAIN, RANGE]), binary_calib([GAIN], order="<"),
                        text_calib([GAIN, RANGE]).encode(), kivra2_calib()[:272] + bytes(24)]:
            self.assert_clean(content)

    def test_recordings_that_were_made_up_are_clean(self):
        for layout, ending in [("imu", ".bin"), ("imu", ".txt"), ("counts", ".bin"),
                               ("counts", ".txt"), ("kivra2", ".bin")]:
            name = layout + ending
            self.output_of("gen", name, "--layout", layout, "--rows", "3000")
            self.assertEqual(self.output_of("check", name), f"{name}: clean, 3000 rows\n")

    def test_a_counter_that_wraps_at_its_largest_number_is_clean(self):
        for kind, top, bottom in [("uint16", 65535, 0), ("uint8", 255, 0), ("int16", 32767, 0),
                                  ("int16", 32767, -32768), ("uint64", 2**64 - 1, 0)]:
            numbers = [top - 1, top, bottom, bottom + 1]
            self.assert_clean(binary_file([("COUNT", kind)], [(n,) for n in numbers]))
            self.assert_clean(text_file([("COUNT", kind)], [(n,) for n in numbers]))

    def test_text_form(self):
        self.write("a.bin", binary_file())
        self.write("one.txt", text_file(rows=IMU_ROWS[:1]))
        self.write("c.bin", binary_calib([GAIN]))
        self.assertEqual(self.output_of("check", "a.bin", "one.txt", "c.bin"),
                         "a.bin: clean, 10 rows\none.txt: clean, 1 row\n"
                         "c.bin: clean, a calibration\n")

    def test_standard_input(self):
        self.write("a.txt", text_file())
        with open(self.folder / "a.txt", "rb") as stream:
            self.assertEqual(self.output_of("check", "-", stdin=stream),
                             "standard input: clean, 10 rows\n")


class Report(CheckTest):
    def jumps(self, count):
        return binary_file([("COUNT", "uint16")], [(2 * i,) for i in range(count + 1)])

    def test_many_defects_are_counted_and_some_are_shown(self):
        for arguments, shown in [([], 10), (["--max", "3"], 3), (["--max", "0"], 0),
                                 (["--all"], 5000)]:
            report = self.report(self.jumps(5000), *arguments)
            self.assertEqual(len(report["defects"]), shown)
            self.assertEqual(report["counts"],
                             [{"code": "counter-jump", "severity": "warning", "kind": "content",
                               "count": 5000, "listed": shown}])
            self.assertEqual(report["warnings"], 5000)
        self.write("b", self.jumps(12))
        text = self.output_of("check", "b", code=3)
        self.assertEqual(text.count("\n"), 12)
        self.assertIn("b: 12 warnings, 13 rows\n", text)
        self.assertTrue(text.endswith("  counter-jump: 12 in all, the first 10 are shown\n"))

    def test_defects_come_in_the_order_of_their_offsets(self):
        rows = [(1, 32767, 0, 3.0), (3, 1, 1, 2.0), (9, 32767, 1, 1.0)]
        offsets = [one[1] for one in self.found(binary_file(rows=rows))]
        self.assertEqual(offsets, sorted(offsets))

    def test_json_of_a_clean_file(self):
        content = binary_file(order="<")
        self.assertEqual(self.report(content, code=0),
                         {"schema": "sensorfile-check-1", "path": "a", "kind": "recording",
                          "encoding": "binary", "byte_order": "little", "size_bytes": len(content),
                          "rows": 10, "clean": True, "errors": 0, "warnings": 0, "notes": 0,
                          "counts": [], "defects": []})

    def test_notes_are_no_problems_unless_strict(self):
        content = binary_file([("X", "int16")], [(32767,)])
        report = self.report(content, code=0)
        self.assertEqual((report["clean"], report["notes"]), (True, 1))
        self.report(content, "--strict", code=3)
        self.report(binary_file(), "--strict", code=0)
        self.write("b", content)
        self.assertTrue(self.output_of("check", "b").startswith("b: clean, 1 row, 1 note\n  note"))

    def test_files_that_cannot_be_read_do_not_hide_the_others(self):
        self.write("a.bin", binary_file())
        self.write("cut.bin", binary_file() + b"\1")
        self.write("noise", b"what is that?")
        result = self.tool("check", "a.bin", "none", "noise", "cut.bin")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stderr.splitlines(), [
            "sensorfile: none: File not found",
            "sensorfile: noise: no sensor file: it begins with none of their openings"])
        self.assertTrue(result.stdout.startswith("a.bin: clean, 10 rows\ncut.bin: 1 error, 10"))

    def test_no_sensor_files(self):
        for content in [b"", b"x", b"\0" * 5000, text_file()[:10], binary_file()[:15],
                        b"Header id: nothing\n"]:
            self.assert_fails(self.tool("check", self.write("b", content)))
        self.assert_fails(self.tool("check", self.write("b", text_file()), "--encoding", "binary"))
        (self.folder / "folder").mkdir()
        self.assert_fails(self.tool("check", "folder"))

    def test_wrong_usage(self):
        for arguments in [[], ["a", "--max", "x"], ["a", "--max", "-1"], ["a", "--bad"],
                          ["a", "--all", "--max", "3"], ["a", "--kind", "x"]]:
            self.write("a", binary_file())
            self.assertEqual(self.tool("check", *arguments).returncode, 2, arguments)

    def test_a_full_disk(self):
        self.write("a", binary_file())
        with open("/dev/full", "w", encoding="ascii") as full:
            self.assertEqual(self.tool("check", "a", stdout=full).returncode, 1)

    def test_the_locale_does_not_matter(self):
        self.write("a", binary_file([("TIME", "double")], [(1.5,), (1.25,)]))
        environment = {**os.environ, "LC_ALL": "de_DE.UTF-8"}
        self.assertEqual(self.output_of("check", "a", code=3, env=environment),
                         self.output_of("check", "a", code=3))

    def test_all_codes_are_in_the_docs_and_tested(self):
        source = (ROOT / "tools" / "check" / "Defect.cpp").read_text()
        codes = re.findall(r'\{k\w+,\s*"([a-z-]+)"', source)
        self.assertGreater(len(codes), 50)
        tests = "".join(one.read_text() for one in
                        (ROOT / "tests" / "tools").glob("check_*_test.py"))
        docs = (ROOT / "docs" / "tool" / "check.md").read_text()
        for code in codes:
            self.assertIn(f"| `{code}` |", docs)
            if code != "unreadable":  # a net below the others: no file is known that needs it
                self.assertIn(f'"{code}"', tests)

    def test_damaged_files_are_checked_and_never_crash(self):
        numbers = random.Random(20170523)
        whole = [binary_file(calib=[GAIN, RANGE]), text_file(calib=[GAIN, RANGE]),
                 binary_file(order="<", calib=[GAIN, RANGE]),
                 text_file([("C", "unsigned char"), ("X", "double")], [("a", 1), ("b", 2.5)])]
        for _ in range(300):
            content = bytearray(numbers.choice(whole))
            for _ in range(numbers.randint(1, 4)):
                at = numbers.randrange(len(content))
                if numbers.random() < 0.5:
                    content[at] = numbers.randrange(256)
                else:
                    content[at:at] = numbers.randbytes(numbers.randrange(1, 5))
            self.write("b", content)
            result = self.tool("check", "b", "--json", text=False)
            self.assertIn(result.returncode, [0, 1, 3], bytes(content))
            if result.returncode == 1:
                self.assertRegex(result.stderr, rb"\Asensorfile: [^\n]+\n\Z")
                continue
            report = json.loads(result.stdout)
            self.assert_schema(report)
            # Whatever has no errors can be read.
            if report["errors"] == 0:
                self.assertNotEqual(self.tool("info", "b", text=False).returncode, 1,
                                    bytes(content))


if __name__ == "__main__":
    main()

"""Compares sensor files with the verb diff, as a user does."""

import json
import math
import os
import random
import struct
import unittest

import jsonschema

from sample_files import (CALIB, DATA, GAIN, IMU, IMU_ROWS, RANGE, binary_calib, binary_file,
                          binary_header, kivra2_calib, opening, pack_rows, text_calib, text_file)
from tool_test import ROOT, ToolTest, main

CHANGED = [(i, -i if i != 4 else 7, 100 + i, 0.005 * i) for i in range(10)]


class DiffTest(ToolTest):
    def diff(self, *arguments, code=0, **options):
        return self.output_of("diff", *arguments, code=code, **options)

    def json_of(self, *arguments, code=0):
        schema = json.loads((ROOT / "docs/schemas/sensorfile-diff-1.schema.json").read_text())
        found = json.loads(self.diff("--json", *arguments, code=code))
        jsonschema.validate(found, schema)
        self.assertEqual(found["same"], code == 0)
        self.assertEqual(list(found)[0], "schema")
        return found

    def pair(self, columns_a, rows_a, columns_b, rows_b):
        self.write("a.bin", binary_file(columns_a, rows_a))
        self.write("b.bin", binary_file(columns_b, rows_b))
        return ["a.bin", "b.bin"]


class Same(DiffTest):
    def test_same_files_say_nothing(self):
        self.write("a.bin", binary_file(calib=[GAIN, RANGE]))
        self.assertEqual(self.diff("a.bin", "a.bin"), "")
        self.assertEqual(self.diff("-q", "a.bin", "a.bin"), "")

    def test_encoding_and_byte_order_are_no_difference(self):
        self.write("a.bin", binary_file(calib=[GAIN, RANGE]))
        self.write("b.bin", binary_file(order="<", calib=[GAIN, RANGE]))
        self.write("c.txt", text_file(calib=[GAIN, RANGE]))
        for one in ["a.bin", "b.bin", "c.txt"]:
            for other in ["a.bin", "b.bin", "c.txt"]:
                self.assertEqual(self.diff(one, other), "")

    def test_no_number_is_the_same_as_no_number(self):
        rows = [(math.nan, math.nan), (math.inf, -math.inf), (0.0, 1.0)]
        files = self.pair([("X", "double"), ("Y", "float")], rows,
                          [("X", "double"), ("Y", "float")], rows[:2] + [(-0.0, 1.0)])
        self.assertEqual(self.diff(*files), "")

    def test_json_is_written_all_the_same(self):
        self.write("a.bin", binary_file())
        self.assertEqual(self.json_of("a.bin", "a.bin"), {
            "schema": "sensorfile-diff-1", "same": True,
            "a": {"path": "a.bin", "rows": 10, "trailing_bytes": 0, "trailing_values": 0},
            "b": {"path": "a.bin", "rows": 10, "trailing_bytes": 0, "trailing_values": 0},
            "tolerance": 0.0, "relative": 0.0, "parts": [], "rows_compared": 10,
            "first_difference": None,
            "columns": [{"name": name, "different": 0, "first_row": None,
                         "largest_difference": 0.0, "largest_row": None} for name, _ in IMU]})

    def test_order_of_records_is_no_difference(self):
        self.write("a.bin", binary_file(calib=[GAIN, RANGE]))
        self.write("b.bin", binary_file(calib=[RANGE, GAIN]))
        self.assertEqual(self.diff("a.bin", "b.bin"), "")

    def test_files_of_calibrations(self):
        self.write("a.bin", binary_calib([GAIN]))
        self.write("a.txt", text_calib([GAIN]).encode())
        self.assertEqual(self.diff("a.bin", "a.txt"), "")
        self.write("b.txt", text_calib([RANGE]).encode())
        self.assertEqual(self.diff("a.bin", "b.txt", code=1), """a.bin and b.txt differ
  calibration  Gain: double 2 x 2 | none
  calibration  Range: none | int32 1 x 2
""")

    def test_empty_recordings(self):
        for one in [binary_file(rows=[]), text_file(rows=[])]:
            for other in [binary_file(rows=[]), text_file(rows=[])]:
                self.write("a", one)
                self.write("b", other)
                self.assertEqual(self.diff("a", "b"), "")
        for one in [binary_file([], []), text_file([], [])]:
            self.write("a", one)
            self.assertEqual(self.diff("a", "a"), "")

    def test_standard_input_may_be_either(self):
        self.write("a.bin", binary_file())
        for arguments in [["-", "a.bin"], ["a.bin", "-"]]:
            self.assertEqual(self.diff(*arguments, text=False, input=binary_file(), stderr=b""),
                             b"")
            self.assertIn(b"standard input",
                          self.diff(*arguments, text=False, input=binary_file(rows=CHANGED),
                                    stderr=b"", code=1))


class Different(DiffTest):
    def test_first_value_is_named_and_columns_are_counted(self):
        self.write("a.bin", binary_file())
        rows = [list(row) for row in CHANGED]
        rows[6][3] = 0.5
        rows[8][1] = -9
        self.write("b.txt", text_file(rows=rows))
        self.assertEqual(self.diff("a.bin", "b.txt", code=1), """a.bin and b.txt differ
  first value  row 4, column ACCX: -4 | 7
  compared     10 row(s)

  column  different  first row  largest difference  at row
  ACCX            2          4                  11       4
  TIME            1          6                0.47       6
""")
        found = self.json_of("a.bin", "b.txt", code=1)
        self.assertEqual(found["first_difference"], {"row": 4, "column": "ACCX", "a": -4, "b": 7})
        self.assertEqual(found["columns"][1], {"name": "ACCX", "different": 2, "first_row": 4,
                                               "largest_difference": 11.0, "largest_row": 4})
        self.assertEqual(self.diff("-q", "a.bin", "b.txt", code=1), "a.bin and b.txt differ\n")

    def test_first_value_is_the_first_column_of_the_first_row(self):
        columns = [("X", "int16"), ("Y", "int16")]
        files = self.pair(columns, [(1, 2), (3, 4)], columns, [(1, 2), (5, 6)])
        self.assertEqual(self.json_of(*files, code=1)["first_difference"],
                         {"row": 1, "column": "X", "a": 3, "b": 5})

    def test_smallest_difference_of_each_type_is_seen(self):
        for kind, one, other in [("double", 1.0, 1.0 + 2**-52), ("float", 1.0, 1.0 + 2**-23),
                                 ("uint64", 2**64 - 1, 2**64 - 2), ("int64", 2**53, 2**53 + 1),
                                 ("int64", -2**63, -2**63 + 1), ("uint32", 2**32 - 1, 2**32 - 2),
                                 ("int8", -128, -127), ("bool", 0, 1), ("signed char", 65, 66)]:
            with self.subTest(kind):
                files = self.pair([("X", kind)], [(one,)], [("X", kind)], [(other,)])
                found = self.json_of(*files, code=1)
                self.assertEqual(found["columns"][0]["different"], 1)

    def test_large_integers_are_text_in_json(self):
        files = self.pair([("X", "uint64")], [(2**64 - 1,)], [("X", "uint64")], [(2**53,)])
        self.assertEqual(self.json_of(*files, code=1)["first_difference"],
                         {"row": 0, "column": "X", "a": "18446744073709551615", "b": 2**53})

    def test_no_numbers_differ_infinitely_whatever_the_tolerance(self):
        files = self.pair([("X", "double")], [(math.nan,), (math.inf,)],
                          [("X", "double")], [(1.0,), (-math.inf,)])
        found = self.json_of(*files, "--tolerance", "1e300", "--relative", "1", code=1)
        self.assertEqual(found["first_difference"],
                         {"row": 0, "column": "X", "a": "nan", "b": 1.0})
        self.assertEqual((found["columns"][0]["different"],
                          found["columns"][0]["largest_difference"]), (2, "inf"))
        self.assertIn("row 0, column X: nan | 1", self.diff(*files, code=1))

    def test_header(self):
        self.write("a.bin", binary_file())
        self.write("b.bin", binary_file(frequency=100.0))
        self.assertEqual(self.diff("a.bin", "b.bin", code=1), """a.bin and b.bin differ
  header       frequency_hz: 200 | 100
""")
        self.assertEqual(self.diff("a.bin", "b.bin", "--relative", "0.5"), "")
        # The version 0x0100 holds whole numbers of Hz.
        self.write("c.bin", binary_file(version=0x0100))
        self.assertEqual(self.diff("a.bin", "c.bin"), "")

    def test_dates_differ_if_they_are_wanted(self):
        whole = binary_file(calib=[GAIN])
        self.write("a.bin", whole)
        other = bytearray(whole)
        other[24] = 24  # the day of the creation
        self.write("b.bin", other)
        self.assertEqual(self.diff("a.bin", "b.bin"), "")
        self.assertEqual(self.diff("a.bin", "b.bin", "--dates", code=1), """a.bin and b.bin differ
  header       created: 2017-05-23T10:04:31Z | 2017-05-24T10:04:31Z
""")
        other = whole.replace(bytes([1, 12, 16, 8, 0, 9]), bytes([1, 12, 16, 8, 0, 10]))
        self.write("b.bin", other)
        found = self.json_of("a.bin", "b.bin", "--dates", code=1)
        self.assertEqual(found["parts"], [
            {"part": "header", "name": "calibrated", "a": "2016-12-01T08:00:09Z",
             "b": "2016-12-01T08:00:10Z"}])

    def test_columns_that_one_file_lacks(self):
        files = self.pair([("A", "int16"), ("B", "int16")], [(1, 2)],
                          [("B", "int16"), ("C", "float")], [(3, 4)])
        self.assertEqual(self.diff(*files, code=1), """a.bin and b.bin differ
  column       A: int16 | none
  column       C: none | float
  first value  row 0, column B: 2 | 3
  compared     1 row(s)

  column  different  first row  largest difference  at row
  B               1          0                   1       0
""")
        self.assertEqual(self.json_of(*files, code=1)["parts"],
                         [{"part": "column", "name": "A", "a": "int16", "b": None},
                          {"part": "column", "name": "C", "a": None, "b": "float"}])

    def test_order_and_types_of_columns(self):
        files = self.pair([("A", "int16"), ("B", "int64")], [(1, 2**60)],
                          [("B", "uint64"), ("A", "double")], [(2**60, 1.0)])
        self.assertEqual(self.diff(*files, code=1), """a.bin and b.bin differ
  column       A: int16 | double
  column       B: int64 | uint64
  column       order: A, B | B, A
""")

    def test_second_column_of_a_name_is_compared_with_the_second(self):
        files = self.pair([("X", "int16"), ("X", "int16")], [(1, 2)],
                          [("X", "int16"), ("X", "int16"), ("X", "int16")], [(1, 3, 2)])
        found = self.json_of(*files, code=1)
        self.assertEqual([one["different"] for one in found["columns"]], [0, 1])
        self.assertEqual(len(found["parts"]), 1)

    def test_records(self):
        other = ("Gain", "double", [[0.998, 0.5], [-0.5, 1.002]])
        self.write("a.bin", binary_file(calib=[GAIN]))
        self.write("b.bin", binary_file(calib=[other]))
        self.assertEqual(self.diff("a.bin", "b.bin", code=1), """a.bin and b.bin differ
  calibration  Gain(0,1): 0.25 | 0.5
""")
        self.assertEqual(self.diff("a.bin", "b.bin", "--tolerance", "0.25"), "")
        self.write("b.bin", binary_file(calib=[("Gain", "int32", [[1]])]))
        self.assertEqual(self.diff("a.bin", "b.bin", code=1), """a.bin and b.bin differ
  calibration  Gain: double 2 x 2 | int32 1 x 1
""")

    def test_numbers_of_rows_differ_and_the_common_ones_are_compared(self):
        for make in [binary_file, text_file]:
            self.write("a", make(rows=IMU_ROWS[:7]))
            self.write("b", make(rows=CHANGED))
            found = self.json_of("a", "b", code=1)
            self.assertEqual((found["a"]["rows"], found["b"]["rows"], found["rows_compared"]),
                             (7, 10, 7))
            self.assertEqual(found["first_difference"]["row"], 4)
            self.write("b", make(rows=IMU_ROWS))
            self.assertEqual(self.diff("a", "b", code=1), "a and b differ\n  rows         7 | 10\n")
            self.assertEqual(self.diff("b", "a", code=1), "b and a differ\n  rows         10 | 7\n")

    def test_cut_row_is_a_difference(self):
        self.write("a.bin", binary_file())
        self.write("b.bin", binary_file() + b"\0\1\0")
        self.assertEqual(self.diff("a.bin", "b.bin", code=1), """a.bin and b.bin differ
  cut row      none | 3 byte(s) (1 whole value(s))
""")
        self.assertEqual(self.diff("-q", "a.bin", "b.bin", code=1), "a.bin and b.bin differ\n")
        self.assertEqual(self.diff("b.bin", "b.bin"), "")
        self.assertEqual(self.diff("a.bin", "b.bin", "--rows", ":10"), "")


class Options(DiffTest):
    def test_tolerance(self):
        files = self.pair([("X", "double")], [(1.0,), (2.0,)], [("X", "double")], [(1.25,), (1.5,)])
        self.assertEqual(self.diff(*files, "--tolerance", "0.5"), "")
        found = self.json_of(*files, "--tolerance", "0.25", code=1)
        self.assertEqual((found["first_difference"]["row"], found["tolerance"]), (1, 0.25))
        self.assertEqual(self.diff(*files, "--relative", "0.25"), "")
        self.assertEqual(self.json_of(*files, "--relative", "0.2", code=1)["columns"][0]
                         ["different"], 1)

    def test_columns(self):
        self.write("a.bin", binary_file())
        self.write("b.bin", binary_file(IMU[1:], [row[1:] for row in CHANGED]))
        self.assertEqual(self.diff("a.bin", "b.bin", "--columns", "TIME,ACCY"), "")
        self.assertEqual(self.json_of("a.bin", "b.bin", "--columns", "COUNT", code=1)["parts"],
                         [{"part": "column", "name": "COUNT", "a": "uint16", "b": None}])
        self.assertEqual(len(self.json_of("a.bin", "b.bin", "--columns", "ACC*", code=1)
                             ["columns"]), 2)
        # A column that only the second file has may be named as well.
        self.assertEqual(self.diff("b.bin", "a.bin", "-q", "--columns", "COUNT", code=1),
                         "b.bin and a.bin differ\n")

    def test_rows(self):
        for make in [binary_file, text_file]:
            self.write("a", make())
            self.write("b", make(rows=CHANGED[:8]))
            self.assertEqual(self.diff("a", "b", "--rows", ":4"), "")
            self.assertEqual(self.diff("a", "b", "--rows", "5:8"), "")
            found = self.json_of("a", "b", "--rows", "3:9", code=1)
            self.assertEqual((found["a"]["rows"], found["b"]["rows"], found["rows_compared"],
                              found["first_difference"]["row"]), (6, 5, 5, 4))
            found = self.json_of("a", "b", "--rows", "9:", code=1)
            self.assertEqual((found["a"]["rows"], found["b"]["rows"]), (1, 0))
            self.assertEqual(self.diff("a", "b", "--rows", "20:30"), "")


class Trouble(DiffTest):
    def test_wrong_usage_ends_with_2(self):
        self.write("a.bin", binary_file())
        for arguments in [[], ["a.bin"], ["a.bin", "a.bin", "a.bin"], ["-", "-"],
                          ["a.bin", "a.bin", "--tolerance", "-1"],
                          ["a.bin", "a.bin", "--tolerance", "nan"],
                          ["a.bin", "a.bin", "--relative", "x"],
                          ["a.bin", "a.bin", "--columns", "GYRX"], ["a.bin", "a.bin", "--columns="],
                          ["a.bin", "a.bin", "--rows", "5"], ["a.bin", "a.bin", "-q", "--json"],
                          ["a.bin", "a.bin", "--encoding", "ascii"]]:
            with self.subTest(arguments):
                result = self.tool("diff", *arguments)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertNotEqual(result.stderr, "")

    def test_files_that_cannot_be_read_end_with_2_and_are_named(self):
        self.write("a.bin", binary_file())
        self.write("empty", b"")
        self.write("noise", random.Random(1).randbytes(300))
        self.write("unit.cal", kivra2_calib())
        self.write("cut", binary_file(rows=[])[:100])
        for name in ["none", "empty", "noise", "unit.cal", "cut", "."]:
            for arguments in [["a.bin", name], [name, "a.bin"], ["--json", name, "a.bin"],
                              ["-q", "a.bin", name]]:
                with self.subTest(arguments):
                    result = self.tool("diff", *arguments)
                    self.assert_fails(result, code=2)
                    self.assertIn(name, result.stderr)

    def test_output_that_cannot_be_written_ends_with_2(self):
        self.write("a.bin", binary_file())
        self.write("b.bin", binary_file(rows=CHANGED))
        with open("/dev/full", "w", encoding="ascii") as full:
            result = self.tool("diff", "a.bin", "b.bin", stdout=full)
        self.assertEqual((result.returncode, result.stderr),
                         (2, "sensorfile: the standard output cannot be written\n"))

    def test_output_closed_early_hides_no_difference(self):
        self.write("a.bin", binary_file())
        self.write("b.bin", binary_file(rows=CHANGED))
        reader, writer = os.pipe()
        os.close(reader)
        with os.fdopen(writer, "w", encoding="ascii") as closed:
            result = self.tool("diff", "a.bin", "b.bin", stdout=closed)
        self.assertEqual((result.returncode, result.stderr), (1, ""))

    def test_damaged_bytes_never_crash(self):
        numbers = random.Random(20170523)
        whole = [binary_file(calib=[GAIN, RANGE]), text_file(calib=[GAIN, RANGE]),
                 binary_file(order="<", calib=[GAIN, RANGE])]
        self.write("a", whole[0])
        for _ in range(150):
            content = bytearray(numbers.choice(whole))
            for _ in range(numbers.randint(1, 4)):
                content[numbers.randrange(len(content))] = numbers.randrange(256)
            self.write("b", content)
            result = self.tool("diff", "--json", "a", "b", text=False)
            self.assertIn(result.returncode, [0, 1, 2], bytes(content))
            if result.returncode == 2:
                self.assertRegex(result.stderr, rb"\Asensorfile: [^\n]+\n\Z")
            else:
                json.loads(result.stdout)

    def test_legacy_calibration(self):
        values = struct.pack(">12d", *range(12))
        legacy = (binary_header(IMU) + opening(">", CALIB, 0x0101) +
                  struct.pack(">Q", 32 + len(values)) + bytes([1, 12, 16, 8, 0, 9]) +
                  struct.pack(">H", 2) + values + opening(">", DATA, 0x0100) +
                  pack_rows(IMU, IMU_ROWS))
        self.write("old.bin", legacy)
        gain = [[row + 3 * col for col in range(3)] for row in range(3)]
        self.write("new.bin", binary_file(calib=[("Gain1", "double", gain),
                                                 ("Offset1", "double", [[9, 10, 11]])]))
        self.assertEqual(self.diff("old.bin", "new.bin"), "")


if __name__ == "__main__":
    main()

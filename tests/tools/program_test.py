"""Runs sensorfile as a user does and looks at both its streams and its exit codes.

Usage: program_test.py PROGRAM PROJECT_ROOT [TEST...]
"""

import csv
import io
import json
import math
import os
import pathlib
import pty
import random
import signal
import struct
import subprocess
import threading
import sys
import unittest

from sample_files import (CODES, DATA, GAIN, IMU, IMU_ROWS, RANGE, TYPES, binary_calib, binary_file,
                          binary_header, kivra2_calib, legacy_file, opening, pack_rows, text_calib,
                          text_file)
from tool_test import LIMIT, PROGRAM, ROOT, ToolTest, main


class Usage(ToolTest):
    def test_help_goes_to_stdout(self):
        for arguments in [["--help"], ["info", "--help"], ["cat", "--help"]]:
            self.assertIn("Usage: sensorfile", self.output_of(*arguments))
        for word in ["info", "cat", "Exit codes"]:
            self.assertIn(word, self.output_of("--help"))
        for word in ["--rows", "--columns", "--format", "--no-header", "--encoding"]:
            self.assertIn(word, self.output_of("cat", "--help"))

    def test_version_is_told(self):
        self.assertEqual(self.output_of("--version"), "sensorfile 2.5.0\n")

    def test_wrong_usage_ends_with_2_and_says_nothing_on_stdout(self):
        self.write("a.bin", binary_file())
        for arguments in [[], ["inform"], ["info"], ["cat"], ["cat", "a.bin", "a.bin"],
                          ["info", "a.bin", "--yaml"], ["info", "a.bin", "--encoding", "ascii"],
                          ["cat", "a.bin", "--format", "xml"], ["cat", "a.bin", "--json"],
                          ["cat", "a.bin", "--rows"], ["cat", "a.bin", "--rows", ""],
                          ["cat", "a.bin", "--columns", ""], ["cat", "a.bin", "--columns="],
                          ["info", "a.bin", "--rows", "1:2"]]:
            with self.subTest(arguments):
                result = self.tool(*arguments)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertNotEqual(result.stderr, "")

    def test_wrong_ranges_of_rows_are_wrong_usage(self):
        self.write("a.bin", binary_file())
        for text in ["5", "5:4", "-1:5", "a:b", "1:2:3", "18446744073709551616:"]:
            with self.subTest(text):
                self.assertEqual(
                    self.output_of("cat", "a.bin", "--rows=" + text, code=2,
                                   stderr=f"sensorfile: --rows: '{text}' is no range of rows such "
                                          "as 100:200 or 100:\n"), "")

    def test_unknown_columns_are_wrong_usage(self):
        self.write("a.bin", binary_file())
        for text, pattern in [("GYRX", "GYRX"), ("ACCX,GYR*", "GYR*"), ("accx", "accx"),
                              (",", ",")]:
            with self.subTest(text):
                self.assertEqual(
                    self.output_of("cat", "a.bin", "--columns=" + text, code=2,
                                   stderr=f"sensorfile: --columns: no column matches '{pattern}'; "
                                          "there are: COUNT, ACCX, ACCY, TIME\n"), "")


class Info(ToolTest):
    def json_of(self, *arguments, code=0, stderr=""):
        lines = self.output_of("info", "--json", *arguments, code=code, stderr=stderr)
        found = [json.loads(line) for line in lines.splitlines()]
        for one in found:
            self.assert_schema(one)
        return found

    def expected(self, name, **changes):
        def column(name, kind):
            return {"name": name, "type": kind, "code": CODES[kind],
                    "size": struct.calcsize(TYPES[CODES[kind]][0])}
        return {
            "schema": "sensorfile-info-1", "path": name, "kind": "recording",
            "encoding": "binary", "byte_order": "big", "calibration_only": False,
            "header": {"version": "0x0101", "created": "2017-05-23T10:04:31Z",
                       "frequency_hz": 200.0},
            "columns": [column(*one) for one in IMU],
            "calibration": {
                "version": "0x0200", "format": 2, "created": "2016-12-01T08:00:09Z",
                "records": [
                    {"name": "Gain", "type": "double", "rows": 2, "cols": 2, "values": GAIN[2]},
                    {"name": "Range", "type": "int32", "rows": 1, "cols": 2,
                     "values": RANGE[2]}]},
            "rows": 10, "trailing_values": 0, "trailing_bytes": 0,
            "size_bytes": (self.folder / name).stat().st_size,
            "measured": [{"column": "TIME", "rate_hz": 200.0, "first_s": 0.0, "last_s": 0.045},
                         {"column": "COUNT", "rate_hz": 200.0, "missing_rows": 0}],
            **changes}

    def assert_told(self, name, code=0, stderr="", **changes):
        found, = self.json_of(name, code=code, stderr=stderr)
        expected = self.expected(name, **changes)
        self.assertEqual(list(found), list(expected))
        for key in expected:
            self.assertEqual(found[key], expected[key], key)

    def test_binary_file(self):
        self.assert_told(self.write("a.bin", binary_file(calib=[GAIN, RANGE])))

    def test_text_file(self):
        self.assert_told(self.write("a.txt", text_file(calib=[GAIN, RANGE])), encoding="text",
                         byte_order=None)

    def test_little_endian_file(self):
        self.assert_told(self.write("a.bin", binary_file(order="<", calib=[GAIN, RANGE])),
                         byte_order="little")

    def test_text_form(self):
        self.write("a.bin", binary_file(calib=[GAIN, RANGE]))
        size = (self.folder / "a.bin").stat().st_size
        self.assertEqual(self.output_of("info", "a.bin"), f"""a.bin
  encoding     binary, big-endian
  versions     header 0x0101, data 0x0100, calibration 0x0200
  created      2017-05-23 10:04:31 UTC
  frequency    200 Hz
  rows         10, 0.05 s at 200 Hz
  measured     200 Hz by TIME, from 0 s to 0.045 s
  measured     200 Hz by COUNT, no row missing
  size         {size} bytes
  columns      4
    COUNT  uint16, 2 byte(s)
    ACCX   int16, 2 byte(s)
    ACCY   int16, 2 byte(s)
    TIME   double, 8 byte(s)
  calibration  2 record(s), format 2, 2016-12-01 08:00:09 UTC
    Gain  double 2 x 2
      0.998 0.25
      -0.5 1.002
    Range  int32 1 x 2
      -2048 2047
""")

    def test_all_types(self):
        columns = [(f"c{code}", TYPES[code][1]) for code in TYPES]
        for name, content in [("a.bin", binary_file(columns, [])),
                              ("a.txt", text_file(columns, []))]:
            found, = self.json_of(self.write(name, content))
            self.assertEqual([(one["name"], one["type"], one["code"], one["size"])
                              for one in found["columns"]],
                             [(f"c{code}", kind, code, struct.calcsize(letter))
                              for code, (letter, kind) in TYPES.items()])

    def test_missing_file_does_not_keep_the_others_from_being_told(self):
        self.write("a.bin", binary_file())
        self.write("b.txt", text_file())
        found = self.json_of("a.bin", "none.bin", "b.txt", code=1,
                             stderr="sensorfile: none.bin: File not found\n")
        self.assertEqual([one["path"] for one in found], ["a.bin", "b.txt"])
        text = self.output_of("info", "a.bin", "none.bin", "b.txt", code=1,
                              stderr="sensorfile: none.bin: File not found\n")
        self.assertIn("a.bin\n  encoding     binary, big-endian\n", text)
        self.assertIn("b.txt\n  encoding     text\n", text)

    def test_missing_file_counts_more_than_a_cut_one(self):
        self.write("cut.bin", binary_file() + b"\1")
        for paths in [["cut.bin", "none"], ["none", "cut.bin"]]:
            self.json_of(*paths, code=1, stderr="sensorfile: none: File not found\n")

    def test_kivra2_calibration(self):
        self.write("unit.cal", kivra2_calib())
        found, = self.json_of("unit.cal")
        records = found.pop("records")
        self.assertEqual(found, {"schema": "sensorfile-info-1", "path": "unit.cal",
                                 "kind": "kivra2-calibration", "encoding": "binary",
                                 "byte_order": "big", "created": "2017-03-05T14:07:09Z",
                                 "version": 3})
        self.assertEqual([(one["name"], one["rows"], one["cols"]) for one in records],
                         [("AccGain", 3, 3), ("AccOffset", 1, 3), ("MagGain", 3, 3),
                          ("MagOffset", 1, 3), ("GyrGain", 3, 3), ("GyrOffset", 1, 3)])
        self.assertEqual(records[0]["values"], [[0.5, 0, 0], [0.25, 0.5, 0], [0, 0, 0.5]])
        self.assertEqual(records[5]["values"], [[0.1, 0, -0.1]])
        text = self.output_of("info", "unit.cal")
        self.assertIn("Kivra2 calibration, by its size", text)
        self.assertIn("    AccGain  double 3 x 3\n      0.5 0 0\n      0.25 0.5 0\n", text)

    def test_calibration_only_file(self):
        for name, content in [("a.bin", binary_calib([GAIN, RANGE])),
                              ("a.txt", text_calib([GAIN, RANGE]).encode()),
                              ("l.bin", binary_calib([GAIN, RANGE], order="<"))]:
            self.assert_told(self.write(name, content), kind="calibration", calibration_only=True,
                             header=None, columns=[], rows=0, measured=[],
                             encoding="text" if name == "a.txt" else "binary",
                             byte_order={"a.txt": None, "a.bin": "big", "l.bin": "little"}[name])
            self.assertIn("kind         calibration without samples",
                          self.output_of("info", name))

    def test_recording_without_calibration_section(self):
        self.write("a.bin", binary_header(IMU) + opening(">", DATA, 0x0100))
        self.assert_told("a.bin", calibration=None, rows=0, measured=[])
        self.assertIn("calibration  none", self.output_of("info", "a.bin"))

    def test_legacy_header_and_bare_calibration(self):
        self.write("a.bin", legacy_file())
        found, = self.json_of("a.bin")
        self.assertEqual(found["header"], {"version": "0x0100", "created": "2017-05-23T10:04:31Z",
                                           "frequency_hz": 200.0})
        self.assertEqual((found["calibration"]["version"], found["calibration"]["format"]),
                         ("0x0100", 1))
        self.assertEqual({one["name"]: one["values"] for one in found["calibration"]["records"]},
                         {"Gain1": [[0, 3, 6], [1, 4, 7], [2, 5, 8]], "Offset1": [[9, 10, 11]]})
        self.assertEqual(found["rows"], 10)

    def test_cut_binary_file_at_every_byte(self):
        whole = binary_file(calib=[GAIN, RANGE])
        for rest in range(1, 14):
            self.write("a.bin", whole[:-14 + rest])
            rates = [{"column": "TIME", "rate_hz": 200.0, "first_s": 0.0, "last_s": 0.04},
                     {"column": "COUNT", "rate_hz": 200.0, "missing_rows": 0}]
            self.assert_told("a.bin", code=3, rows=9, trailing_bytes=rest,
                             trailing_values=min(rest // 2, 3), measured=rates)

    def test_cut_text_file_at_every_byte(self):
        rows = [(1, 2, 3, 0.5), (4, 5, 6, 1.5), (70, -8, 9, 2.25)]
        whole = text_file(rows=rows, calib=[GAIN, RANGE])
        row = b"70\t-8\t9\t2.25\t"
        for rest in range(1, len(row)):
            self.write("a.txt", whole[:-1 - len(row) + rest])
            rates = [{"column": "TIME", "rate_hz": 1.0, "first_s": 0.5, "last_s": 1.5},
                     {"column": "COUNT", "rate_hz": 200.0 / 3, "missing_rows": 2}]
            self.assert_told("a.txt", code=3, encoding="text", byte_order=None, rows=2,
                             trailing_bytes=rest, trailing_values=row[:rest].count(b"\t"),
                             measured=rates)

    def test_cut_file_is_told_with_offset(self):
        content = binary_file()
        self.write("a.bin", content + b"\0\1\0")
        self.assertIn(f"  cut          3 byte(s) from offset {len(content)} on are no whole row "
                      "(1 whole value(s))\n", self.output_of("info", "a.bin", code=3))

    def test_numbers_that_are_none_are_text_in_json(self):
        self.write("a.bin", binary_file(frequency=math.inf,
                                        calib=[("G", "double", [[math.nan, -math.inf]])]))
        found, = self.json_of("a.bin")
        self.assertEqual(found["header"]["frequency_hz"], "inf")
        self.assertEqual(found["calibration"]["records"][0]["values"], [["nan", "-inf"]])

    def test_large_sparse_file_is_told_at_once(self):
        self.write("a.bin", binary_file(rows=[(0, 0, 0, 1.0)]))
        size = (self.folder / "a.bin").stat().st_size
        os.truncate(self.folder / "a.bin", size + 14 * 400_000_000)
        found, = self.json_of("a.bin")
        self.assertEqual((found["rows"], found["trailing_bytes"]), (400_000_001, 0))

    def test_names_with_blanks_and_odd_bytes(self):
        self.write("my file.bin", binary_file([("acc x", "uint8"), (b"\xff\x01", "uint8")], []))
        found, = self.json_of("my file.bin")
        self.assertEqual([one["name"] for one in found["columns"]], ["acc x", "\ufffd\x01"])
        self.assertEqual(found["path"], "my file.bin")

    def test_output_on_a_full_disk_fails(self):
        self.write("a.bin", binary_file())
        for form in [[], ["--json"]]:
            with open("/dev/full", "w", encoding="ascii") as full:
                result = self.tool("info", "a.bin", *form, stdout=full)
            self.assertEqual((result.returncode, result.stderr),
                             (1, "sensorfile: the standard output cannot be written\n"))


class Cat(ToolTest):
    HEAD = "COUNT,ACCX,ACCY,TIME\n"

    def lines(self, rows, separator=","):
        return "".join(separator.join(f"{value:.17g}" if isinstance(value, int) else repr(value)
                                      for value in row) + "\n" for row in rows)

    def all_kinds(self):
        for name, content in [("a.bin", binary_file()), ("a.txt", text_file()),
                              ("l.bin", binary_file(order="<"))]:
            with self.subTest(name):
                yield self.write(name, content)

    def rows_of(self, *arguments, **options):
        return list(csv.reader(io.StringIO(self.output_of("cat", *arguments, **options))))

    def test_csv_is_what_is_written_unless_told(self):
        for name in self.all_kinds():
            rows = self.rows_of(name)
            self.assertEqual(rows[0], [name for name, _ in IMU])
            self.assertEqual([tuple(map(float, row)) for row in rows[1:]], IMU_ROWS)
            self.assertEqual(self.output_of("cat", name, "--format", "csv"),
                             self.output_of("cat", name))

    def test_csv_text(self):
        self.write("a.bin", binary_file(rows=[(1, -2, 3, 0.25), (65535, 4, 5, 1e300)]))
        self.assertEqual(self.output_of("cat", "a.bin"),
                         self.HEAD + "1,-2,3,0.25\n65535,4,5,1e+300\n")

    def test_tsv(self):
        for name in self.all_kinds():
            self.assertEqual(self.output_of("cat", name, "--format", "tsv"),
                             self.output_of("cat", name).replace(",", "\t"))

    def test_json_lines(self):
        for name in self.all_kinds():
            lines = self.output_of("cat", name, "--format", "json").splitlines()
            self.assertEqual([json.loads(line) for line in lines],
                             [dict(zip(("COUNT", "ACCX", "ACCY", "TIME"), row))
                              for row in IMU_ROWS])

    def test_rows(self):
        for name in self.all_kinds():
            lines = self.output_of("cat", name, "--no-header").splitlines()
            for text, part in [("2:5", lines[2:5]), ("7:", lines[7:]), (":3", lines[:3]),
                               (":", lines), ("4:4", []), ("0:10", lines), ("9:99", lines[9:]),
                               ("10:", []), ("12:20", []),
                               ("18446744073709551614:18446744073709551615", [])]:
                self.assertEqual(
                    self.output_of("cat", name, "--no-header", "--rows", text).splitlines(), part,
                    text)

    def test_columns_in_the_order_asked_for(self):
        for name in self.all_kinds():
            self.assertEqual(
                self.output_of("cat", name, "--columns", "TIME,ACC*,COUNT", "--rows", "2:3"),
                "TIME,ACCX,ACCY,COUNT\n0.01,-2,102,2\n")
            self.assertEqual(
                self.output_of("cat", name, "--columns", "?CCY", "--no-header", "--rows", ":1"),
                "100\n")
            self.assertEqual(self.output_of("cat", name, "--format", "json", "--rows", "3:4",
                                            "--columns", "ACCY,COUNT"), '{"ACCY":103,"COUNT":3}\n')

    def test_integers_of_64_bits_are_exact(self):
        columns = [("U", "uint64"), ("S", "int64"), ("B", "uint8")]
        rows = [(2**64 - 1, -2**63, 1), (2**53 + 1, 2**63 - 1, 2), (2**53, -2**53 - 1, 3),
                (0, 0, 4)]
        for name, content in [("a.bin", binary_file(columns, rows)),
                              ("l.bin", binary_file(columns, rows, order="<")),
                              ("a.txt", text_file(columns, rows))]:
            self.write(name, content)
            self.assertEqual([tuple(map(int, row)) for row in self.rows_of(name)[1:]], rows)
            found = [json.loads(line) for line in
                     self.output_of("cat", name, "--format", "json").splitlines()]
            self.assertEqual([(one["U"], one["S"]) for one in found],
                             [("18446744073709551615", "-9223372036854775808"),
                              ("9007199254740993", "9223372036854775807"),
                              (2**53, "-9007199254740993"), (0, 0)])

    def test_doubles_and_floats_read_back_exactly(self):
        numbers = random.Random(20170523)
        doubles = [struct.unpack(">d", numbers.randbytes(8))[0] for _ in range(5000)]
        floats = [struct.unpack(">f", numbers.randbytes(4))[0] for _ in range(5000)]
        rows = list(zip(doubles, floats))
        columns = [("D", "double"), ("F", "float")]
        self.write("a.bin", binary_file(columns, rows))
        found = self.rows_of("a.bin", "--no-header")
        self.assertEqual(len(found), len(rows))
        for text, (double, single) in zip(found, rows):
            for part, value, letter in [(text[0], double, "d"), (text[1], single, "f")]:
                if math.isnan(value):
                    self.assertEqual(part, "nan")
                else:
                    self.assertEqual(struct.pack(letter, float(part)), struct.pack(letter, value))

    def test_numbers_that_are_none(self):
        self.write("a.bin", binary_file([("X", "double")],
                                        [(math.nan,), (math.inf,), (-math.inf,)]))
        self.assertEqual(self.output_of("cat", "a.bin"), "X\nnan\ninf\n-inf\n")
        self.assertEqual(self.output_of("cat", "a.bin", "--format", "json"),
                         '{"X":"nan"}\n{"X":"inf"}\n{"X":"-inf"}\n')

    def test_names_are_quoted(self):
        self.write("a.bin", binary_file([("a,b", "uint8"), ('say "x"', "uint8")], [(1, 2)]))
        self.assertEqual(self.output_of("cat", "a.bin"), '"a,b","say ""x"""\n1,2\n')
        self.assertEqual(self.output_of("cat", "a.bin", "--format", "tsv"),
                         'a,b\t"say ""x"""\n1\t2\n')

    def test_cut_file_ends_with_3_and_all_whole_rows(self):
        for kind, content, rest in [("a.bin", binary_file(), b"\0\1\0"),
                                    ("a.txt", text_file(), b"1\t2")]:
            whole = self.output_of("cat", self.write(kind, content))
            self.write(kind, content + rest)
            message = (f"sensorfile: {kind}: 3 byte(s) from offset {len(content)} on are no whole "
                       "row (1 whole value(s))\n")
            self.assertEqual(self.output_of("cat", kind, code=3, stderr=message), whole)
            self.assertEqual(self.output_of("cat", kind, "--rows", ":10"), whole)

    def test_cut_file_with_wide_integers(self):
        columns = [("A", "int16"), ("N", "uint64"), ("B", "int16")]
        content = text_file(columns, [(1, 2**64 - 1, 2)])
        self.write("a.txt", content + b"1\t18446744073709551615\t")
        self.assertEqual(
            self.output_of("cat", "a.txt", code=3,
                           stderr=f"sensorfile: a.txt: 23 byte(s) from offset {len(content)} on "
                                  "are no whole row (2 whole value(s))\n"),
            "A,N,B\n1,18446744073709551615,2\n")

    def test_recording_without_rows_or_columns(self):
        for content in [binary_file(rows=[]), text_file(rows=[])]:
            self.assertEqual(self.output_of("cat", self.write("a", content)), self.HEAD)
        for content in [binary_file([], []), text_file([], [])]:
            self.assertEqual(self.output_of("cat", self.write("a", content)), "")

    def test_files_of_calibrations_have_no_rows(self):
        self.write("a.bin", binary_calib([GAIN]))
        self.write("a.txt", text_calib([GAIN]).encode())
        self.write("unit.cal", kivra2_calib())
        for name in ["a.bin", "a.txt", "unit.cal"]:
            result = self.tool("cat", name)
            self.assert_fails(result)
            self.assertIn(name, result.stderr)
            self.assertIn("calibration", result.stderr)

    def many_rows(self):
        return self.write("many.bin", binary_file(rows=IMU_ROWS * 20000))

    def test_output_closed_early_makes_no_noise(self):
        process = subprocess.Popen([PROGRAM, "cat", self.many_rows()], cwd=self.folder,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual(process.stdout.readline(), b"COUNT,ACCX,ACCY,TIME\n")
        process.stdout.close()
        self.assertEqual(process.stderr.read(), b"")
        process.stderr.close()
        self.assertEqual(process.wait(LIMIT), 0)

    def test_output_on_a_full_disk_fails(self):
        self.write("few.bin", binary_file())
        for name in ["few.bin", self.many_rows()]:
            with open("/dev/full", "w", encoding="ascii") as full:
                result = self.tool("cat", name, stdout=full)
            self.assertEqual((result.returncode, result.stderr),
                             (1, "sensorfile: the standard output cannot be written\n"))

    def test_many_rows_are_complete(self):
        rows = self.rows_of(self.many_rows(), "--no-header")
        self.assertEqual(len(rows), 200000)
        self.assertEqual([float(rows[i][0]) for i in range(0, 200000, 997)],
                         [i % 10 for i in range(0, 200000, 997)])

    def test_rows_far_behind_in_a_sparse_file(self):
        self.write("a.bin", binary_file(rows=[]))
        path = self.folder / "a.bin"
        size = path.stat().st_size
        with open(path, "r+b") as stream:
            stream.seek(size + 14 * 400_000_000)
            stream.write(pack_rows(IMU, [(7, 8, 9, 0.5)]))
        self.assertEqual(self.output_of("cat", "a.bin", "--rows", "400000000:"),
                         self.HEAD + "7,8,9,0.5\n")

    def test_locale_of_the_environment_does_not_matter(self):
        environment = {**os.environ, "LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8"}
        for name in self.all_kinds():
            for arguments in [["cat", name], ["info", name], ["info", name, "--json"]]:
                self.assertEqual(self.output_of(*arguments, env=environment),
                                 self.output_of(*arguments))

    def test_encoding_can_be_told(self):
        self.write("a.txt", text_file())
        self.assertEqual(self.output_of("cat", "a.txt", "--encoding", "text"),
                         self.output_of("cat", "a.txt", "--encoding", "auto"))
        self.assert_fails(self.tool("cat", "a.txt", "--encoding", "binary"))


    def test_calibrated_rows(self):
        gain = ("AccGain", "double", [[2.0, 0.5, 0.0], [0.0, 4.0, 0.0], [0.0, 0.0, -1.0]])
        offset = ("accoffset", "double", [[1.0, 2.0, 3.0]])
        columns = [("COUNT", "uint16"), ("ACCX", "int16"), ("ACCY", "int16"), ("ACCZ", "int16")]
        self.write("a.bin", binary_file(columns, [(7, 11, 22, 33)], calib=[gain, offset]))
        self.assertEqual(self.output_of("cat", "a.bin", "--calibrated"),
                         "COUNT,ACCX,ACCY,ACCZ\n7,30,80,-30\n")
        self.assertEqual(self.output_of("cat", "a.bin"), "COUNT,ACCX,ACCY,ACCZ\n7,11,22,33\n")

    def test_without_fitting_records_nothing_is_calibrated(self):
        self.write("a.bin", binary_file(calib=[GAIN]))
        self.assert_fails(self.tool("cat", "a.bin", "--calibrated"))


class Pipes(ToolTest):
    """Files that come from elsewhere than a path."""

    def test_dash_is_the_standard_input(self):
        for name, content in [("a.bin", binary_file()), ("a.txt", text_file())]:
            self.write(name, content)
            text = self.output_of("cat", name)
            self.assertEqual(self.tool("cat", "-", input=content, text=False).stdout.decode(), text)
            found = self.tool("info", "-", "--json", input=content, text=False).stdout
            self.assertEqual(json.loads(found)["path"], "standard input")
            self.assertEqual(json.loads(found)["rows"], 10)

    def test_messages_name_the_standard_input(self):
        for content in [b"", b"x" * 100, binary_file()[:50], binary_file()[:-1]]:
            result = self.tool("cat", "-", input=content, text=False)
            self.assertIn(b"standard input", result.stderr)
            self.assertNotIn(b"/", result.stderr)

    def test_fifos_are_read(self):
        content = binary_file()
        os.mkfifo(self.folder / "pipe")
        writer = threading.Thread(target=self.write, args=("pipe", content))
        writer.start()
        text = self.output_of("cat", "pipe")
        writer.join()
        self.write("a.bin", content)
        self.assertEqual(text, self.output_of("cat", "a.bin"))

    def test_no_copy_is_left(self):
        environment = {**os.environ, "TMPDIR": str(self.folder)}
        for content in [binary_file(), b"no sensor file"]:
            self.tool("cat", "-", input=content, text=False, env=environment)
            self.assert_files()

    def test_no_copy_is_left_by_ctrl_c(self):
        for number in [signal.SIGINT, signal.SIGTERM, signal.SIGHUP]:
            process = subprocess.Popen([PROGRAM, "cat", "-"], cwd=self.folder,
                                       stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                       env={**os.environ, "TMPDIR": str(self.folder)})
            process.stdin.write(binary_file())
            process.stdin.flush()
            while not list(self.folder.iterdir()):
                self.assertIsNone(process.poll())
            process.send_signal(number)
            self.assertEqual(process.wait(LIMIT), -number)
            process.stdin.close()
            process.stdout.close()
            self.assert_files()

    def test_a_kivra2_calibration_is_taken_as_such(self):
        self.assertIn("Kivra2", self.tool("info", "-", input=kivra2_calib(), text=False)
                      .stdout.decode())

    def test_kind_says_what_a_file_is(self):
        self.write("unit.cal", kivra2_calib() + b"more")
        self.assert_fails(self.tool("info", "unit.cal"))
        self.assertIn("Kivra2", self.output_of("info", "unit.cal", "--kind", "kivra2"))
        self.write("unit.cal", kivra2_calib())
        self.assert_fails(self.tool("info", "unit.cal", "--kind", "sensor"))
        self.write("short.cal", kivra2_calib()[:-1])
        self.assert_fails(self.tool("info", "short.cal", "--kind", "kivra2"))


class Bars(ToolTest):
    """Progress is told on a terminal, as a share of the whole work."""

    def first_share(self, *arguments):
        """The first one that is drawn, in per cent; the program is ended then."""
        mine, terminal = pty.openpty()
        process = subprocess.Popen([PROGRAM, *arguments], cwd=self.folder, stderr=terminal,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        os.close(terminal)
        text = b""
        while b"%" not in text:
            text += os.read(mine, 1000)
        process.terminate()  # as Ctrl-C does: no copy is left
        process.wait(LIMIT)
        os.close(mine)
        return int(text.split(b"%")[0].split()[-1])

    def test_long_work_begins_with_small_shares(self):
        with open(self.folder / "a.bin", "wb") as file:
            file.write(binary_file(rows=[]))
            file.truncate(100_000_000_000)
        for arguments in [["check", "a.bin"], ["stats", "a.bin"], ["time", "a.bin"],
                          ["diff", "a.bin", "a.bin"], ["plot", "a.bin", "-o", "/dev/null"],
                          ["convert", "a.bin", "/dev/full", "--to", "csv", "--columns", "COUNT"],
                          ["gen", "/dev/null", "--rows", "4000000000"]]:
            with self.subTest(arguments):
                self.assertLess(self.first_share(*arguments), 50)


class Hostile(ToolTest):
    """Files that are no sensor files: one line that names them, and nothing else."""

    def assert_refused(self, name, word="", encodings=("auto", "text", "binary")):
        for arguments in [["info"], ["info", "--json"], ["cat"]]:
            for encoding in encodings:
                with self.subTest([*arguments, encoding, name]):
                    result = self.tool(*arguments, "--encoding", encoding, name)
                    self.assert_fails(result)
                    self.assertIn(name, result.stderr)
                    self.assertIn(word, result.stderr)

    def test_empty_file(self):
        self.assert_refused(self.write("empty.bin", b""))

    def test_missing_file(self):
        self.assert_refused("none.bin", "not found")

    def test_missing_name(self):
        for verb in ["info", "cat"]:
            result = self.tool(verb, "")
            self.assertIn(result.returncode, [1, 2])
            self.assertEqual(result.stdout, "")
            self.assertRegex(result.stderr, r"\Asensorfile: [^\n]+\n\Z")
            self.assertNotIn("_path", result.stderr)

    def test_folder(self):
        (self.folder / "a folder").mkdir()
        self.assert_refused("a folder", "folder")

    def test_file_that_cannot_be_read(self):
        # Its first bytes are never mapped.
        self.assert_refused("/proc/self/mem")

    def test_random_bytes(self):
        numbers = random.Random(20170523)
        for size in [1, 3, 4, 16, 295, 297, 5000]:
            self.assert_refused(self.write("noise", numbers.randbytes(size)))

    def test_every_beginning_of_the_sections(self):
        for content, start in [(binary_file(rows=[], calib=[GAIN]), b"\xaf\x24"),
                               (text_file(rows=[], calib=[GAIN]), b"Header")]:
            for size in range(len(start), len(content) - 3, 7):
                self.write("a", content[:size])
                self.assert_fails(self.tool("info", "a"))

    def test_damaged_bytes_never_crash(self):
        numbers = random.Random(20170523)
        whole = [binary_file(calib=[GAIN, RANGE]), text_file(calib=[GAIN, RANGE]),
                 binary_file(order="<", calib=[GAIN, RANGE])]
        for _ in range(100):
            content = bytearray(numbers.choice(whole))
            for _ in range(numbers.randint(1, 4)):
                content[numbers.randrange(len(content))] = numbers.randrange(256)
            self.write("a", content)
            for arguments in [["info", "--json"], ["info"], ["cat"], ["cat", "--format", "json"]]:
                result = self.tool(*arguments, "a", text=False)
                self.assertIn(result.returncode, [0, 1, 3], bytes(content))
                if result.returncode == 1:
                    self.assertRegex(result.stderr, rb"\Asensorfile: [^\n]+\n\Z")
                elif b"json" in [one.encode() for one in arguments] or "--json" in arguments:
                    for line in result.stdout.splitlines():
                        json.loads(line)


if __name__ == "__main__":
    main()

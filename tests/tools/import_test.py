"""Runs sensorfile import and looks at what it made.

With SENSORFILE_REAL_DATA set to a folder of real recordings as CSV files, those are imported, too.
"""

import csv
import fractions
import json
import math
import os
import pathlib
import re
import resource
import struct
import subprocess
import threading

from sample_files import TYPES, binary_file, text_file
from tool_test import IS_SANITIZED, PROGRAM, ToolTest, main

DATE = ("--creation-time", "2020-02-03T04:05:06Z")
MEMORY = (512 if IS_SANITIZED else 64) << 20


class ImportTest(ToolTest):
    def run_import(self, *arguments, code=0, **options):
        """What is told on stderr."""
        result = self.tool("import", *arguments, **options)
        self.assertEqual((result.returncode, result.stdout), (code, ""), result.stderr)
        return result.stderr

    def import_text(self, text, *arguments, name="a.csv", out="a.bin", **options):
        self.write(name, text if isinstance(text, bytes) else text.encode())
        return self.run_import(name, out, "--force", *arguments, **options)

    def info(self, name="a.bin"):
        return json.loads(self.output_of("info", "--json", name))

    def columns(self, name="a.bin"):
        return [(one["name"], one["type"]) for one in self.info(name)["columns"]]

    def cat(self, name="a.bin"):
        return self.output_of("cat", name)

    def rows(self, name="a.bin"):
        return [line.split(",") for line in self.cat(name).splitlines()[1:]]

    def assert_refused(self, message, text, *arguments, **options):
        self.write("a.csv", text if isinstance(text, bytes) else text.encode())
        result = self.tool("import", "a.csv", "a.bin", *arguments, **options)
        self.assertEqual((result.returncode, result.stdout), (1, ""), result.stderr)
        self.assertEqual(result.stderr.splitlines()[-1], "sensorfile: " + message)
        self.assertFalse((self.folder / "a.bin").exists())


class Reading(ImportTest):
    def test_types_are_found_out_and_shown(self):
        told = self.import_text("Time (s),n,big,huge,flag,note,empty\n"
                                "0,1,1558680737898025123,18446744073709551615,true,abc,\n"
                                "0.005,-2,-5,0,false,def,\n")
        self.assertEqual(told, """a.csv: separated by comma, names in line 1
  Time (s)  DOUBLE
  n         INT32
  big       INT64
  huge      UINT64
  flag      BOOL
  note      left out: line 2: 'abc' is no number
  empty     left out: always blank
  frequency 200 Hz, by the median step of 'Time (s)' in s
a.bin: 2 row(s)
""")
        self.assertEqual(self.columns(), [("Time (s)", "double"), ("n", "int32"),
                                          ("big", "int64"), ("huge", "uint64"), ("flag", "bool")])
        self.assertEqual(self.cat(), "Time (s),n,big,huge,flag\n"
                                     "0,1,1558680737898025123,18446744073709551615,1\n"
                                     "0.005,-2,-5,0,0\n")

    def test_all_forms_of_a_table_give_the_same(self):
        self.import_text("a,b\n1,2.5\n-3,4\n", *DATE)
        expected = self.read("a.bin")
        for text in ["a,b\r\n1,2.5\r\n-3,4\r\n", "a,b\n1,2.5\n-3,4", "\ufeffa,b\n1,2.5\n-3,4\n",
                     "a;b\n1;2.5\n-3;4\n", "a\tb\n1\t2.5\n-3\t4\n", "a b\n  1 2.5\n -3   4\n",
                     '"a","b"\n"1","2.5"\n"-3","4"\n', "a, b\n 1 , 2.5 \n -3 ,\t4\n",
                     "a,b\n1,2.5,\n-3,4,\n", "# by hand\n\na,b\n# one\n1,2.5\n\n-3,4\n#",
                     "a,b\n1,25e-1\n-3,+4.0\n"]:
            with self.subTest(text):
                self.import_text(text, *DATE)
                self.assertEqual(self.read("a.bin"), expected)

    def test_comma_as_decimal_point(self):
        text = "a;b\n1;2,5\n-3;4\n"
        self.assert_refused("a.csv: line 2: column 2 (b): '2,5' is no number; with "
                            "--decimal-comma it would be one", text)
        self.import_text(text, "--decimal-comma")
        self.assertEqual(self.cat(), "a,b\n1,2.5\n-3,4\n")
        self.import_text("a\tb\n1\t2,5\n-3\t4\n", "--decimal-comma")
        self.assertEqual(self.cat(), "a,b\n1,2.5\n-3,4\n")

    def test_separator_and_header_as_told(self):
        self.import_text("1|2\n3|4\n", "--separator", "|", "--header")
        self.assertEqual(self.cat(), "1,2\n3,4\n")
        self.import_text("1;2\n3;4\n", "--separator", "semicolon", "--no-header")
        self.assertEqual(self.cat(), "COL1,COL2\n1,2\n3,4\n")

    def test_lists_become_columns(self):
        told = self.import_text('1,0.5,"[1, -2, 3]"\n2,0.6,"[4, 5, -6]"\n')
        self.assertIn("  COL3_1  INT32\n", told)
        self.assertEqual(self.cat(), "COL1,COL2,COL3_0,COL3_1,COL3_2\n1,0.5,1,-2,3\n2,0.6,4,5,-6\n")

    def test_marker_lines_are_counted_and_told(self):
        told = self.import_text("a\n#x\n1\n# y\n2\n")
        self.assertIn("a.csv: 2 line(s) that begin with # left out\n", told)
        self.assertEqual(self.cat(), "a\n1\n2\n")

    def test_quoted_names_with_line_ends(self):
        self.import_text('"a\nb","say ""x"""\n1,2\n')
        self.assertEqual(self.cat(), 'a b,"say ""x"""\n1,2\n')

    def test_no_numbers_that_are_numbers(self):
        self.import_text("a,b\nnan,inf\nNaN,-Infinity\n0,1\n")
        self.assertEqual(self.rows(), [["nan", "inf"], ["nan", "-inf"], ["0", "1"]])

    def test_blanks_are_nan_unless_told(self):
        self.import_text("a,b\n1,\n,2\n")
        self.assertEqual(self.columns(), [("a", "double"), ("b", "double")])
        self.assertEqual(self.rows(), [["1", "nan"], ["nan", "2"]])
        self.import_text("a,b\n1,\n,2\n", "--blank", "-1")
        self.assertEqual(self.columns(), [("a", "int32"), ("b", "int32")])
        self.assertEqual(self.rows(), [["1", "-1"], ["-1", "2"]])

    def test_whole_numbers_that_are_rounded_are_told(self):
        told = self.import_text("a,b\n9007199254740993,1\n,1\n")
        self.assertIn("  a  DOUBLE (whole numbers beyond 2^53 are rounded)\n", told)

    def test_header_without_rows(self):
        told = self.import_text("a,b\n")
        self.assertIn("a.bin: 0 row(s)", told)
        self.assertEqual(self.columns(), [("a", "double"), ("b", "double")])

    def test_a_german_locale_changes_nothing(self):
        environment = {**os.environ, "LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8"}
        self.import_text("t,a\n0,1.5\n0.001,2.5\n", env=environment)
        self.assertEqual(self.cat(), "t,a\n0,1.5\n0.001,2.5\n")


class Choosing(ImportTest):
    TEXT = "t,ax,ay,note\n0,1,2,x\n0.01,3,4,y\n"

    def test_columns_are_chosen_and_typed(self):
        self.import_text(self.TEXT, "--columns", "ay=FLOAT,t=double,ax=INT8")
        self.assertEqual(self.columns(), [("ay", "float"), ("t", "double"), ("ax", "int8")])
        self.assertEqual(self.rows(), [["2", "0", "1"], ["4", "0.01", "3"]])

    def test_every_type_is_taken(self):
        upper = ["UCHAR", "CHAR", "USHORT", "SHORT", "UINT32", "INT32", "FLOAT", "DOUBLE", "BOOL",
                 "UINT8", "INT8", "UINT16", "INT16", "UINT64", "INT64"]
        for name, (_, kind) in zip(upper, (TYPES[code] for code in sorted(TYPES))):
            for given in (name, kind):
                self.import_text("a\n1\n0\n", "--columns", "a=" + given)
                self.assertEqual(self.columns(), [("a", kind)])
                self.assertEqual(self.cat(), "a\n1\n0\n")

    def test_columns_without_names_have_positions(self):
        self.import_text("0,1,2\n3,4,5\n", "--columns", "3=INT16,1", "--rename", "3=ACC,1=N")
        self.assertEqual(self.columns(), [("ACC", "int16"), ("N", "int32")])
        self.assertEqual(self.rows(), [["2", "0"], ["5", "3"]])

    def test_renamed_columns(self):
        self.import_text(self.TEXT, "--rename", "t=TIME,ax=ACCX")
        self.assertEqual([name for name, _ in self.columns()], ["TIME", "ACCX", "ay"])

    def test_long_names_are_cut_in_binary_and_that_is_told(self):
        name = "a" * 31 + "\u00e4" + "b"
        told = self.import_text(f"{name},c\n1,2\n")
        self.assertIn(f"a.bin: the name '{name}' is cut to '{'a' * 31}', as long as names "
                      "are in binary files\n", told)
        self.assertEqual(self.columns(), [("a" * 31, "int32"), ("c", "int32")])
        told = self.import_text(f"{name},c\n1,2\n", out="a.txt")
        self.assertNotIn("is cut", told)
        self.assertEqual(self.columns("a.txt")[0][0], name)
        told = self.import_text("b" * 32 + ",c\n1,2\n")
        self.assertNotIn("is cut", told)

    def test_equal_names_are_told(self):
        told = self.import_text("a,a\n1,2\n")
        self.assertIn("a.bin: several columns are named 'a'\n", told)
        self.assertEqual(self.cat(), "a,a\n1,2\n")

    def test_columns_of_text_are_refused_when_asked_for(self):
        self.assert_refused("a.csv: line 2: column 4 (note): 'x' is no number", self.TEXT,
                            "--columns", "t,note")

    def test_blank_columns_are_nan_when_asked_for(self):
        self.import_text("a,b\n1,\n2,\n", "--columns", "b,a")
        self.assertEqual(self.rows(), [["nan", "1"], ["nan", "2"]])

    def test_frequency_is_measured_told_or_200(self):
        for text, arguments, hertz in [
                ("Time (s),a\n0,1\n0.0025,2\n0.005,3\n1,4\n", (), 400),
                ("timestamp,a\n1737840291000000000,1\n1737840291010000000,2\n", (), 100),
                ("t_ms,a\n0,1\n20,2\n", (), 50),
                ("x,a\n0,1\n20,2\n", (), 200), ("Time,a\n5,1\n5,2\n", (), 200),
                ("Time,a\n", (), 200), ("Time,a\n0,1\n0.1,2\n", ("--frequency", "12.5"), 12.5),
                ("x,a\n0,1\n20,2\n", ("--time", "x", "--time-unit", "us"), 50000),
                ("0,1\n0.1,2\n", ("--rename", "1=TIME"), 10)]:
            with self.subTest(text):
                told = self.import_text(text, *arguments)
                self.assertEqual(self.info()["header"]["frequency_hz"], hertz)
                self.assertRegex(told, rf"frequency {hertz:.9g} Hz, ")

    def test_calibration_records(self):
        self.write("gain.csv", b"1,0,0\n0,0.5,0\n0,0,2.25\n")
        self.write("offset.csv", b"1 -2 3\n")
        self.import_text("a\n1\n", "--calib", "AccGain=gain.csv", "--calib", "AccOffset=offset.csv")
        records = self.info()["calibration"]["records"]
        self.assertEqual([(one["name"], one["type"], one["values"]) for one in records],
                         [("AccGain", "double", [[1, 0, 0], [0, 0.5, 0], [0, 0, 2.25]]),
                          ("AccOffset", "double", [[1, -2, 3]])])

    def test_bad_calibration_files_are_told(self):
        self.write("gain.csv", b"1,x\n")
        self.assert_refused("gain.csv: line 1: column 2 (COL2): 'x' is no number", "a\n1\n",
                            "--calib", "G=gain.csv")
        self.assert_refused("none.csv: File not found", "a\n1\n", "--calib", "G=none.csv")


class Writing(ImportTest):
    def test_encodings(self):
        for out, arguments, encoding in [("a.bin", (), "binary"), ("a.txt", (), "text"),
                                         ("b.bin", ("--to", "text"), "text"),
                                         ("b.txt", ("--to", "binary"), "binary")]:
            self.import_text("a,b\n1,0.25\n", *arguments, out=out)
            self.assertEqual(self.info(out)["encoding"], encoding)
            self.assertEqual(self.cat(out), "a,b\n1,0.25\n")

    def test_text_has_the_digits_of_the_file(self):
        text = "a,b,c\n0.123456789,5.35E-05,7\n1.5,nan,123456789.25\n"
        self.import_text(text, out="a.txt")
        self.assertEqual(self.rows("a.txt"), [["0.123456789", "5.35e-05", "7"],
                                              ["1.5", "nan", "123456789.25"]])
        self.import_text(text, "--precision", "2", out="a.txt")
        self.assertEqual(self.rows("a.txt"), [["0.12", "0", "7"], ["1.5", "nan", "123456789.25"]])

    def test_pipes(self):
        content = b"a,b\n1,0.25\n"
        for arguments, options in [(("-", "-"), {}), (("-", "/dev/stdout"), {})]:
            result = self.tool("import", *arguments, *DATE, input=content, text=False, **options)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertIn(b"standard input: separated by comma, names in line 1\n", result.stderr)
            self.write("p.bin", result.stdout)
            self.assertEqual(self.cat("p.bin"), content.decode())

    def test_what_cat_writes_is_read_back(self):
        columns = [(f"c{code}", TYPES[code][1]) for code in TYPES]
        rows = [tuple(self.value(code, row) for code in TYPES) for row in range(20)]
        self.write("x.bin", binary_file(columns, rows))
        types = ",".join(f"{name}={kind}" for name, kind in columns)
        for arguments in [("--columns", types), ()]:
            text = self.output_of("cat", "x.bin")
            result = self.tool("import", "-", "y.bin", "--force", *arguments, input=text)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertEqual(self.cat("y.bin"), text)
            if arguments:
                self.assertEqual(self.columns("y.bin"), columns)
                self.assertEqual(self.samples("y.bin"), self.samples("x.bin"))

    @staticmethod
    def value(code, row):
        letter, kind = TYPES[code]
        if letter in "fd":
            numbers = [0.1 * row, -1e-30 * row, math.inf, -math.inf, 1e30 / (row + 1), -0.0]
            return struct.unpack(letter, struct.pack(letter, numbers[row % 6]))[0]
        if kind == "bool":
            return row % 2
        size = struct.calcsize(letter) * 8
        low = -(1 << size - 1) if letter.islower() else 0
        return [low, low + (1 << size) - 1, row][row % 3]

    def samples(self, name):
        rows = self.info(name)["rows"]
        size = sum(one["size"] for one in self.info(name)["columns"])
        return self.read(name)[-rows * size:]

    def test_same_input_gives_the_same_bytes(self):
        self.import_text("a\n1\n", *DATE)
        first = self.read("a.bin")
        self.import_text("a\n1\n", *DATE)
        self.assertEqual(self.read("a.bin"), first)
        self.assertEqual(self.info()["header"]["created"], "2020-02-03T04:05:06Z")

    def test_nothing_is_overwritten_unless_forced(self):
        self.write("a.csv", b"a\n1\n")
        self.write("a.bin", b"mine")
        self.assert_fails(self.tool("import", "a.csv", "a.bin"))
        self.assertEqual(self.read("a.bin"), b"mine")
        self.run_import("a.csv", "a.bin", "--force")
        self.assertEqual(self.rows(), [["1"]])

    def test_full_disk_leaves_nothing(self):
        self.write("a.csv", b"a,b\n" + b"1,0.5\n" * 100000)
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (100000, 100000))
        result = self.tool("import", "a.csv", "a.bin", preexec_fn=limit, restore_signals=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn("a.bin: Cannot write file", result.stderr)
        self.assert_files("a.csv")


class Refusing(ImportTest):
    def test_bad_rows_are_named(self):
        for message, text in [
                ("line 3: column 2 (b): 'x' is no number", "a,b\n1,2\n3,x\n"),
                ("line 3: column 1 (a): '1.2.3' is no number", "a,b\n0.5,2\n1.2.3,4\n"),
                ("line 4: 1 field(s) instead of 2", "a,b\n\n1,2\n3\n"),
                ("line 3: 3 field(s) instead of 2", "a,b\n1,2\n3,4,5\n"),
                ("line 2: field 2: text stands behind a closing quote", 'a,b\n1,"2"x\n'),
                ("line 2: the quote of field 2 is not closed before the end of the file",
                 'a,b\n1,"2\n3,4\n'),
                ("line 3: column 1 (a): '%s...' is no number" % ("x" * 40),
                 "a,b\n1,2\n%s,4\n" % ("x" * 41)),
                (r"line 3: column 1 (a): 'a\x1b[31m\x01b' is no number", "a,b\n1,2\na\x1b[31m\x01b,4\n"),
                ("line 3: column 2 (c0): '[1]' is no list of 2", 'a,c\n1,"[1,2]"\n1,"[1]"\n'),
                ("line 3: column 1 (a): '1e999' does not fit DOUBLE", "a\n0.5\n1e999\n"),
                ("no column holds numbers: a: line 2: 'x' is no number", "a,b\nx,y\n"),
                ("no column holds numbers: a: always blank", "a,b\n,\n"),
                ("no rows and no names are in the file", ""),
                ("no rows and no names are in the file", "# nothing\n\n"),
                ("UTF-16 text; only UTF-8 can be read", b"\xff\xfea\0,\0b\0"),
                ("line 3: field 1: a NUL byte, which no text has", b"a,b\n1,2\n1,\0\n")]:
            with self.subTest(message):
                self.assert_refused("a.csv: " + message, text)

    def test_values_that_do_not_fit_are_named(self):
        for kind, value in [("INT8", "128"), ("UINT16", "-1"), ("INT32", "1.5"), ("BOOL", "2"),
                            ("UINT64", "18446744073709551616"), ("FLOAT", "1e39")]:
            self.assert_refused(f"a.csv: line 3: column 1 (a): '{value}' does not fit {kind}",
                                f"a,b\n1,2\n{value},3\n", "--columns", "a=" + kind)
        self.assert_refused("a.csv: line 2: column 1 (a): blank, and INT16 has no nan; --blank "
                            "says what to put there", "a,b\n,1\n", "--columns", "a=INT16")

    def test_bad_rows_are_skipped_when_told(self):
        text = 'a,b\n1,2.5\n3\n4,x\n5,"6"y\n7,8,9\n10,11\n'
        told = self.import_text(text, "--skip-bad", code=3)
        self.assertEqual(told.splitlines()[-2:],
                         ["a.bin: 2 row(s)", "sensorfile: a.csv: 4 bad row(s) left out, the "
                          "first: line 3: 1 field(s) instead of 2"])
        self.assertEqual(self.cat(), "a,b\n1,2.5\n10,11\n")
        told = self.import_text("a\n300\n1\n", "--skip-bad", "--columns", "a=INT8", code=3)
        self.assertIn("1 bad row(s) left out, the first: line 2: column 1 (a): '300' does not "
                      "fit INT8", told)
        self.import_text("a\n1\n", "--skip-bad")

    def test_nothing_is_left_of_a_failed_import(self):
        self.assert_refused("a.csv: line 70001: column 1 (a): '?' is no number",
                            "a\n" + "0.5\n" * 69999 + "?\n" + "0.5\n" * 70000)
        self.assert_files("a.csv")

    def test_wrong_usage(self):
        self.write("a.csv", b"a,b\n1,2\n")
        for arguments in [(), ("a.csv",), ("a.csv", "b", "c"), ("a.csv", "b", "--columns", "x"),
                          ("a.csv", "b", "--columns", ""), ("a.csv", "b", "--columns", "a=REAL"),
                          ("a.csv", "b", "--columns", "a,a"), ("a.csv", "b", "--rename", "a"),
                          ("a.csv", "b", "--frequency", "0"), ("a.csv", "b", "--frequency", "nan"),
                          ("a.csv", "b", "--frequency", "inf"), ("a.csv", "b", "--calib", "G"),
                          ("a.csv", "b", "--calib", "=a.csv"),
                          ("a.csv", "b", "--calib", "x y=a.csv"),
                          ("a.csv", "b", "--calib", "x" * 33 + "=a.csv"),
                          ("a.csv", "b", "--separator", "xx"), ("a.csv", "b", "--separator", "5"),
                          ("a.csv", "b", "--separator", "#"), ("a.csv", "b", "--separator", '"'),
                          ("a.csv", "b", "--separator", ",", "--decimal-comma"),
                          ("a.csv", "b", "--header", "--no-header"), ("a.csv", "b", "--blank", "x"),
                          ("a.csv", "b", "--to", "csv"), ("a.csv", "b", "--precision", "21"),
                          ("a.csv", "b", "--precision", "-1"), ("a.csv", "b", "--time", "x"),
                          ("a.csv", "b", "--time-unit", "h"),
                          ("a.csv", "b", "--creation-time", "now")]:
            with self.subTest(arguments):
                result = self.tool("import", *arguments)
                self.assertEqual((result.returncode, result.stdout), (2, ""), result.stderr)
                self.assertNotEqual(result.stderr, "")
        self.assert_files("a.csv")

    def test_missing_files_are_told(self):
        result = self.tool("import", "none.csv", "a.bin")
        self.assert_fails(result)
        self.assertIn("none.csv", result.stderr)
        self.write("a.csv", b"a\n1\n")
        result = self.tool("import", "a.csv", "none/a.bin")
        self.assert_fails(result)
        self.assertIn("none/a.bin: the folder 'none' is not there", result.stderr)


class Hostile(ImportTest):
    """Files that are no tables end with an error, in bounded memory and time."""

    def peak(self, *arguments, code, pieces):
        """Pipes the pieces in; what is told, with the most memory that was used."""
        process = subprocess.Popen([PROGRAM, "import", *arguments], cwd=self.folder,
                                   stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.PIPE)

        def feed():
            try:
                for piece in pieces:
                    process.stdin.write(piece)
                process.stdin.close()
            except BrokenPipeError:
                pass
        feeder = threading.Thread(target=feed)
        feeder.start()
        told = process.stderr.read().decode()
        feeder.join()
        process.stderr.close()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(process.returncode, code, told)
        return told, usage.ru_maxrss * 1024

    def test_line_without_end(self):
        for piece, arguments in [(b"1" * (1 << 20), ()), (b"1,2," * (1 << 18), ()),
                                 (b'"' + b"1\n" * (1 << 19), ()), (b"#" * (1 << 20), ()),
                                 (b" " * (1 << 20), ()), (b"\0" * (1 << 20), ())]:
            with self.subTest(piece[:4]):
                told, memory = self.peak("-", "a.bin", *arguments, code=1,
                                         pieces=[b"a,b\n1,2\n"] + [piece] * 20)
                self.assertRegex(told, r"\Asensorfile: standard input: line 3: [^\n]+\n\Z")
                self.assertLess(memory, MEMORY)

    def test_a_million_columns(self):
        for row, name in [(b"1," * 1000000 + b"1\n", "comma"), (b"a," * 1000000 + b"a\n", "comma"),
                          (b"1 " * 1000000 + b"\n", "blanks")]:
            told, memory = self.peak("-", "a.bin", "--separator", name, code=1, pieces=[row])
            self.assertEqual(told, "sensorfile: standard input: line 1: more than 65535 fields\n")
            self.assertLess(memory, MEMORY)
        told, memory = self.peak("-", "a.bin", code=1, pieces=[b'"[' + b"1," * 1000000 + b'1]"\n'])
        self.assertEqual(told, "sensorfile: standard input: more than 65535 columns\n")

    def test_long_names_are_told_short(self):
        told = self.import_text("x" * 100000 + ",b\n1,2\n")
        self.assertLess(len(told), 1000)
        self.assertEqual(self.columns(), [("x" * 32, "int32"), ("b", "int32")])

    def test_many_columns(self):
        self.import_text(",".join(f"c{i}" for i in range(65535)) + "\n" +
                         ",".join(str(i) for i in range(65535)) + "\n")
        self.assertEqual(self.rows(), [[str(i) for i in range(65535)]])

    def test_long_files_need_little_memory(self):
        block = b"".join(b"%d,0.5,-12.25,%d\n" % (i, i * 1000003) for i in range(50000))
        told, memory = self.peak("-", "a.bin", code=0, pieces=[b"t,a,b,c\n"] + [block] * 60)
        self.assertIn("a.bin: 3000000 row(s)\n", told)
        self.assertLess(memory, MEMORY)

    def test_bytes_of_any_kind_end_in_order(self):
        whole = b"t,a,\"b c\"\r\n1,2.5,\"[1, 2]\"\r\n3,nan,\"[3, 4]\"\r\n"
        for place in range(len(whole)):
            for byte in b"\0\"\n\r,;[]#-\xff":
                self.write("a.csv", whole[:place] + bytes([byte]) + whole[place + 1:])
                result = self.tool("import", "a.csv", "a.bin", "--force", text=False)
                self.assertIn(result.returncode, (0, 1))

    def test_sensor_files_are_no_tables(self):
        for content in (binary_file(), text_file()):
            self.write("a.csv", content)
            result = self.tool("import", "a.csv", "a.bin", text=False)
            self.assertEqual(result.returncode, 1, result.stderr)


class RealData(ImportTest):
    """Of the folder that SENSORFILE_REAL_DATA names; without it there is none."""

    FILES = {"ahrs_9axis_xio.csv": (13514, 10), "walk_6axis_xio.csv": (28132, 7),
             "phone_accel_400hz_oxford.csv": (77008, 5),
             "phone_step_counters_oxford.csv": (19965, 7),
             "rocket_raw_counts_srp.csv": (10180, 5), "rocket_two_rate_ncsu.csv": (4981, 44)}

    @staticmethod
    def number(text):
        try:
            return int(text) if re.fullmatch(r"[-+]?\d+", text) else float(text)
        except ValueError:
            return None

    def columns_of(self, path):
        """The columns of numbers, by the csv module."""
        with open(path, newline="", encoding="ascii") as file:
            rows = [row for row in csv.reader(line for line in file if not line.startswith("#"))]
        rows = [[part for field in row for part in
                 (json.loads(field) if field.startswith("[") else [field])] for row in rows]
        rows = [[str(part) for part in row] for row in rows]
        if all(self.number(field) is None for field in rows[0]):
            rows = rows[1:]
        columns = [[self.number(field) for field in column] for column in zip(*rows)]
        return [column for column in columns if any(one is not None for one in column)]

    def test_every_number_is_read(self):
        folder = os.environ.get("SENSORFILE_REAL_DATA")
        for name, (row_count, column_count) in self.FILES.items() if folder else ():
            path = pathlib.Path(folder) / name
            for out in ("a.bin", "a.txt"):
                with self.subTest(name=name, out=out):
                    self.run_import(str(path), out, "--force")
                    expected = self.columns_of(path)
                    self.assertEqual(len(expected), column_count)
                    self.assertEqual(self.info(out)["rows"], row_count)
                    found = list(zip(*[[self.number(field) for field in row]
                                       for row in self.rows(out)]))
                    self.assertEqual(len(found), column_count)
                    for one, other in zip(found, expected):
                        self.assertEqual(len(other), row_count)
                        self.assertEqual(self.total(one), self.total(other))
                        self.assertEqual(["nan" if value != value else value for value in one],
                                         ["nan" if value is None else value for value in other])

    @staticmethod
    def total(column):
        return sum(fractions.Fraction(value) for value in column
                   if value is not None and value == value)


if __name__ == "__main__":
    main()

"""Tests of the verb convert: sensor files of both encodings, lines, and what it refuses."""

import csv
import io
import os
import struct
import subprocess

from convert_cases import ALL, ConvertTest, random_rows
from sample_files import (CALIB, CALIBRATED, DATA, GAIN, IMU, IMU_ROWS, RANGE, binary_calib,
                          binary_file, binary_header, date, kivra2_calib, opening, pack_rows,
                          text_calib, text_file)
from tool_test import LIMIT, PROGRAM, main


class Encodings(ConvertTest):
    def test_binary_becomes_text_to_the_byte_and_back(self):
        self.write("a.bin", binary_file(calib=[GAIN, RANGE]))
        self.convert("a.bin", "a.txt")
        self.assertEqual(self.read("a.txt").split(b"Data id")[1],
                         text_file(rows=[(i, -i, 100 + i, f"{0.005 * i:.3f}".rstrip("0")
                                          .rstrip(".")) for i in range(10)]).split(b"Data id")[1])
        self.assertEqual(self.header_of("a.txt"), self.header_of("a.bin"))
        self.convert("a.txt", "b.bin")
        self.assertEqual(self.read("b.bin"), self.read("a.bin"))

    def test_all_types_go_there_and_back_without_a_change(self):
        self.write("a.bin", binary_file(ALL, random_rows(300), calib=[GAIN]))
        self.convert("a.bin", "a.txt", "--lossless")
        self.convert("a.txt", "b.bin", "--lossless")
        self.assertEqual(self.read("b.bin"), self.read("a.bin"))

    def test_little_endian_becomes_big_endian(self):
        rows = random_rows(20)
        self.write("a.bin", binary_file(ALL, rows, order="<", calib=[GAIN, RANGE]))
        self.convert("a.bin", "b.bin", "--lossless")
        self.assertEqual(self.read("b.bin"), binary_file(ALL, rows, calib=[GAIN, RANGE]))

    def test_the_ending_or_the_option_says_what_is_made(self):
        self.write("a.bin", binary_file())
        for name, options, start in [
                ("a.txt", [], b"Header id"), ("a.TXT", [], b"Header id"),
                ("b.bin", [], b"\xaf\x24"), ("b", [], b"\xaf\x24"), ("b.dat", [], b"\xaf\x24"),
                ("c.bin", ["--to", "text"], b"Header id"), ("c.txt", ["--to", "binary"], b"\xaf$"),
                ("d.csv", [], b"COUNT,ACCX"), ("d.tsv", [], b"COUNT\tACCX"),
                ("d.jsonl", [], b'{"COUNT":'), ("d.ndjson", [], b'{"COUNT":'),
                ("d.npy", [], b"\x93NUMPY"), ("e.csv", ["--to", "tsv"], b"COUNT\t")]:
            with self.subTest(name):
                self.convert("a.bin", name, *options)
                self.assertTrue(self.read(name).startswith(start))

    def test_calibrations_of_old_versions_become_named_records(self):
        values = [float(i) for i in range(12)]
        section = (opening(">", CALIB, 0x0101) + struct.pack(">Q", 32 + 8 * 12) +
                   date(">", CALIBRATED) + struct.pack(">H12d", 2, *values))
        self.write("a.bin", binary_header(IMU) + section + opening(">", DATA, 0x0100) +
                   pack_rows(IMU, IMU_ROWS))
        for name in ["b.bin", "b.txt"]:
            self.convert("a.bin", name, "--lossless")
            calib = self.info(name)["calibration"]
            self.assertEqual(calib["version"], "0x0200")
            self.assertEqual([(one["name"], one["values"]) for one in calib["records"]],
                             [("Gain1", [[0, 3, 6], [1, 4, 7], [2, 5, 8]]),
                              ("Offset1", [[9, 10, 11]])])
            self.assertEqual(self.rows_of(name), self.rows_of("a.bin"))

    def test_headers_of_old_versions_keep_theirs(self):
        self.write("a.bin", binary_file(version=0x0100, frequency=100))
        self.convert("a.bin", "a.txt", "--lossless")
        self.assertEqual(self.header_of("a.txt"), self.header_of("a.bin"))
        self.assertEqual(self.info("a.txt")["header"]["version"], "0x0100")

    def test_files_of_calibrations_go_there_and_back(self):
        self.write("a.bin", binary_calib([GAIN, RANGE]))
        self.convert("a.bin", "a.txt", "--lossless")
        self.assertEqual(self.read("a.txt").decode(), text_calib([GAIN, RANGE]))
        self.convert("a.txt", "b.bin")
        self.assertEqual(self.read("b.bin"), self.read("a.bin"))

    def test_a_recording_without_a_calibration_makes_the_same_file_every_time(self):
        self.write("a.bin", binary_header(IMU) + opening(">", DATA, 0x0100))
        self.convert("a.bin", "a.txt")
        self.assertIn(b"Calib datetime:\t23/05/2017\t10:04:31\n", self.read("a.txt"))

    def test_no_rows_and_no_columns_stay_none(self):
        for columns in [IMU, []]:
            self.write("a.bin", binary_file(columns, []))
            self.convert("a.bin", "a.txt", "--force")
            self.convert("a.txt", "b.bin", "--force")
            self.assertEqual(self.read("b.bin"), self.read("a.bin"))

    def test_a_cut_recording_gives_its_whole_rows(self):
        whole = binary_file()
        self.write("a.bin", whole[:-3])
        self.convert("a.bin", "a.txt", code=3,
                     stderr="sensorfile: a.bin: 11 byte(s) from offset 358 on are no whole row "
                            "(3 whole value(s))\n")
        self.assertEqual(len(self.rows_of("a.txt")), 9)
        self.write("b.txt", text_file()[:-8])
        result = self.tool("convert", "b.txt", "b.bin")
        self.assertEqual((result.returncode, result.stdout), (3, ""))
        self.assertIn("b.txt: ", result.stderr)
        self.assertEqual(self.rows_of("b.bin"), self.rows_of("a.txt"))

    def test_a_cut_row_behind_the_range_is_not_told(self):
        self.write("a.bin", binary_file()[:-3])
        self.convert("a.bin", "a.txt", "--rows", "0:9")

    def test_a_german_locale_changes_nothing(self):
        self.write("a.bin", binary_file())
        self.convert("a.bin", "a.txt")
        result = self.tool("convert", "a.bin", "b.txt",
                           env={**os.environ, "LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8"})
        self.assertEqual(result.returncode, 0)
        self.assertEqual(self.read("b.txt"), self.read("a.txt"))


class Pipes(ConvertTest):
    def test_standard_input_and_output(self):
        data = binary_file(calib=[GAIN])
        text = self.tool("convert", "-", "-", "--to", "text", input=data, text=False)
        self.assertEqual((text.returncode, text.stderr), (0, b""))
        back = self.tool("convert", "-", "-", input=text.stdout, text=False)
        self.assertEqual((back.returncode, back.stdout), (0, data))
        self.assert_files()

    def test_nothing_is_overwritten_without_force(self):
        self.write("a.bin", binary_file())
        self.write("a.txt", b"mine")
        self.fails("a.bin", "a.txt", message="a.txt is there already; --force overwrites it")
        self.assertEqual(self.read("a.txt"), b"mine")
        self.convert("a.bin", "a.txt", "--force")
        self.assertEqual(self.read("a.txt")[:6], b"Header")

    def test_a_file_can_be_converted_in_its_place(self):
        self.write("a", binary_file())
        self.convert("a", "a", "--to", "text", "--force")
        self.assertEqual(len(self.rows_of("a")), 10)

    def test_an_error_leaves_the_old_file(self):
        self.write("a.bin", binary_file(rows=[(1, 1, 1, 0.123456789)]))
        self.write("a.txt", b"mine")
        self.assert_fails(self.tool("convert", "a.bin", "a.txt", "--force", "--lossless"))
        self.assertEqual(self.read("a.txt"), b"mine")
        self.assert_files("a.bin", "a.txt")


class Lossless(ConvertTest):
    def test_lost_digits_are_told_with_row_column_and_both_values(self):
        rows = [(0, 0, 0, 0.5), (1, 1, 1, 0.123456789), (2, 2, 2, 1e-9)]
        self.write("a.bin", binary_file(rows=rows))
        self.fails("a.bin", "a.txt", "--lossless",
                   message="a.bin: row 1, column TIME: 0.123456789 would become 0.12346 "
                           "(--precision sets the decimals of text)")
        self.convert("a.bin", "a.txt", code=3,
                     stderr="sensorfile: a.bin: 2 values changed, first in row 1, column TIME: "
                            "0.123456789 became 0.12346 (--precision sets the decimals of text)\n")
        self.assertEqual(self.rows_of("a.txt")[1:], ["1,1,1,0.12346", "2,2,2,0"])
        self.convert("a.bin", "a.txt", "--precision", "9", "--lossless", "--force")
        self.convert("a.txt", "b.bin")
        self.assertEqual(self.read("b.bin"), self.read("a.bin"))

    def test_one_changed_value_is_told_as_one(self):
        self.write("a.bin", binary_file(rows=[(0, 0, 0, 1e-9)]))
        self.convert("a.bin", "a.txt", code=3,
                     stderr="sensorfile: a.bin: 1 value changed, row 0, column TIME: 1e-09 became 0 "
                            "(--precision sets the decimals of text)\n")

    def test_numbers_that_are_none_are_kept(self):
        columns = [("F", "float"), ("D", "double")]
        rows = [(float("nan"), float("inf")), (float("-inf"), float("nan")), (-0.0, -0.0)]
        self.write("a.bin", binary_file(columns, rows))
        self.convert("a.bin", "a.txt", "--lossless")
        self.convert("a.txt", "b.bin", "--lossless")
        self.assertEqual(self.rows_of("b.bin"), ["nan,inf", "-inf,nan", "-0,-0"])

    def test_characters_that_are_blanks_do_not_spoil_their_neighbours(self):
        columns = [("A", "int16"), ("FLAG", "unsigned char"), ("B", "int16")]
        for blank in [9, 10, 11, 12, 13, 32]:
            rows = [(1, 65, 2), (3, blank, 4), (5, 0, 6), (7, 255, 8)]
            self.write("a.bin", binary_file(columns, rows))
            advice = ("(a column of characters cannot hold blanks in text; --type FLAG=uint8 "
                      "makes numbers of them)")
            self.fails("a.bin", "a.txt", "--lossless",
                       message=f"a.bin: row 1, column FLAG: the blank {blank} would become '?' "
                               + advice)
            self.convert("a.bin", "b.txt", "--force", code=3,
                         stderr="sensorfile: a.bin: 1 value changed, row 1, column FLAG: "
                                f"the blank {blank} became '?' {advice}\n")
            self.assertEqual(self.rows_of("b.txt"), ["1,65,2", "3,63,4", "5,0,6", "7,255,8"])
            self.convert("a.bin", "c.txt", "--lossless", "--type", "FLAG=uint8", "--force")
            self.assertEqual(self.rows_of("c.txt"), self.rows_of("a.bin"))

    def test_digits_of_calibrations_are_kept_or_told(self):
        third = ("Third", "double", [[1 / 3]])
        self.write("a.bin", binary_file(calib=[third]))
        self.fails("a.bin", "a.txt", "--lossless",
                   message="a.bin: calibration record Third, row 0, column 0: 0.3333333333333333 "
                           "would become 0.333333333333333")
        self.convert("a.bin", "a.txt", code=3,
                     stderr="sensorfile: a.bin: 1 value changed, calibration record Third, row 0, "
                            "column 0: 0.3333333333333333 became 0.333333333333333\n")

    def test_names_that_are_cut_are_told(self):
        name = "A_NAME_OF_MORE_THAN_32_CHARACTERS"
        self.write("a.txt", text_file([(name, "int16")], [(1,)]))
        self.fails("a.txt", "a.bin", "--lossless",
                   message=f"a.txt: the name of column 0: '{name}' would become '{name[:32]}'")
        self.convert("a.txt", "a.bin", code=3,
                     stderr=f"sensorfile: a.txt: 1 value changed, the name of column 0: '{name}' "
                            f"became '{name[:32]}'\n")

    def test_names_that_text_cannot_hold_are_an_error(self):
        self.write("a.bin", binary_file([("A\tB", "int16"), ("C", "int16")], [(1, 2)]))
        self.fails("a.bin", "a.txt", message="a.bin: the names of its columns or records do not "
                                             "read back as they were written")

    def test_numbers_of_text_that_8_bits_cannot_hold(self):
        self.write("a.txt", text_file([("U", "uint8"), ("I", "int8")], [(44, -1), (300, 200)]))
        self.fails("a.txt", "a.bin", "--lossless",
                   message="a.txt: row 1, column U: 300 would become 44 (8 bits hold no more; "
                           "--type gives a column more of them)")
        for name in ["a.bin", "b.txt", "a.csv"]:
            result = self.tool("convert", "a.txt", name)
            self.assertEqual(result.returncode, 3)
            self.assertIn("2 values changed", result.stderr)
            self.assertEqual(self.output_of("cat", name).splitlines()[1:] if name != "a.csv"
                             else self.read(name).decode().splitlines()[1:], ["44,-1", "44,-56"])
        self.convert("a.txt", "c.bin", "--lossless", "--type", "U=uint16,I=int16")
        self.assertEqual(self.rows_of("c.bin"), ["44,-1", "300,200"])


class Choices(ConvertTest):
    def test_rows_and_columns(self):
        self.write("a.bin", binary_file(calib=[GAIN]))
        self.convert("a.bin", "b.bin", "--rows", "2:4", "--columns", "TIME,ACC*")
        self.assertEqual(self.rows_of("b.bin"), ["0.01,-2,102", "0.015,-3,103"])
        self.assertEqual(self.info("b.bin")["calibration"], self.info("a.bin")["calibration"])

    def test_types_change(self):
        self.write("a.bin", binary_file(rows=[(1, -2, 3, 4.0)]))
        self.convert("a.bin", "b.bin", "--type", "ACC*=DOUBLE,TIME=float, COUNT = ui")
        self.assertEqual([one["type"] for one in self.info("b.bin")["columns"]],
                         ["uint32", "double", "double", "float"])
        self.assertEqual(self.rows_of("b.bin"), ["1,-2,3,4"])

    def test_values_beyond_their_new_types_are_errors(self):
        for kind, value, bad in [("double", 70000.0, "int16"), ("double", float("nan"), "int32"),
                                 ("double", 1e300, "float"), ("int64", -1, "uint64"),
                                 ("uint64", 2**64 - 1, "int64"), ("int16", -1, "UINT8"),
                                 ("double", 2.0**63, "int64"), ("int32", 128, "CHAR")]:
            with self.subTest(kind + " " + bad):
                self.write("a.bin", binary_file([("A", "int16"), ("B", kind)], [(1, value)]))
                shown = self.rows_of("a.bin")[0].split(",")[1]
                self.fails("a.bin", "b.bin", "--type", "B=" + bad,
                           message=f"a.bin: row 0, column B: {shown} is beyond the type that "
                                   "--type gives it")

    def test_values_that_their_new_types_round_are_told(self):
        for kind, value, new, after in [("double", 2.5, "int16", "2"), ("double", 0.1, "float", "0.1"),
                                        ("int32", 2**24 + 1, "FLOAT", "16777216"),
                                        ("int64", 2**53 + 1, "double", "9007199254740992"),
                                        ("uint64", 2**64 - 1, "DOUBLE", "18446744073709552000"),
                                        ("double", 0.5, "bool", "1")]:
            with self.subTest(kind + " " + new):
                self.write("a.bin", binary_file([("A", kind)], [(0,), (value,)]))
                shown = self.rows_of("a.bin")[1]
                result = self.tool("convert", "a.bin", "b.bin", "--type", "A=" + new, "--force")
                self.assertEqual(result.returncode, 3)
                self.assertRegex(result.stderr, "1 value changed, row 1, column A: "
                                 + shown.replace("+", r"\+") + " became ")
                self.assert_fails(self.tool("convert", "a.bin", "c.bin", "--type", "A=" + new,
                                            "--lossless"))

    def test_64_bit_integers_stay_exact(self):
        columns = [("U", "uint64"), ("I", "int64")]
        rows = [(2**64 - 1, -2**63), (2**53 + 1, 2**63 - 1)]
        self.write("a.bin", binary_file(columns, rows))
        self.convert("a.bin", "b.bin", "--columns", "I,U")
        self.assertEqual(self.rows_of("b.bin"), [f"{i},{u}" for u, i in rows])

    def test_calibrated_rows(self):
        columns = [("ACCX", "int16"), ("ACCY", "int16"), ("ACCZ", "int16")]
        calib = [("AccGain", "double", [[2, 0, 0], [0, 1, 0], [0, 0, 1]]),
                 ("AccOffset", "double", [[1, 0, 0]])]
        self.write("a.bin", binary_file(columns, [(3, 4, 5)], calib=calib))
        self.convert("a.bin", "b.bin", "--calibrated")
        self.assertEqual(self.rows_of("b.bin"), ["4,4,5"])
        self.assertEqual([one["type"] for one in self.info("b.bin")["columns"]], ["double"] * 3)

    def test_wrong_usage(self):
        self.write("a.bin", binary_file())
        for arguments in [[], ["a.bin"], ["a.bin", "b", "--to", "xml"], ["a.bin", "b", "c"],
                          ["a.bin", "b.txt", "--precision", "-1"],
                          ["a.bin", "b.bin", "--precision", "3"],
                          ["a.bin", "b", "--rows", "4:2"], ["a.bin", "b", "--columns", ""],
                          ["a.bin", "b", "--columns", "GYR*"], ["a.bin", "b", "--type", "ACCX"],
                          ["a.bin", "b", "--type", "ACCX=int17"], ["a.bin", "b", "--type", "=int8"],
                          ["a.bin", "b", "--type", "GYRX=int8"], ["a.bin", "b", "--type", ","]]:
            with self.subTest(arguments):
                result = self.tool("convert", *arguments)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertNotEqual(result.stderr, "")
                self.assert_files("a.bin")
        self.fails("a.bin", "b", "--type", "GYRX=int8", code=2,
                   message="--type: no column matches 'GYRX'; there are: COUNT, ACCX, ACCY, TIME")
        self.fails("a.bin", "b", "--type", "ACCX=int17", code=2,
                   message="--type: there is no type 'int17'; there are: BOOL, INT8, UINT8, INT16, "
                           "UINT16, INT32, UINT32, INT64, UINT64, FLOAT, DOUBLE, CHAR, UCHAR, "
                           "SHORT, USHORT")


class Hostile(ConvertTest):
    def test_what_is_no_recording_is_an_error(self):
        for name, content in [("empty", b""), ("junk", b"junk" * 99), ("k.cal", kivra2_calib()),
                              ("cut.bin", binary_file()[:70])]:
            self.write(name, content)
            for out in ["x.txt", "x.bin", "x.csv", "x.npy", "x.h5", "x.mat"]:
                result = self.tool("convert", name, out)
                self.assert_fails(result)
                self.assertIn(name, result.stderr)
        self.assert_fails(self.tool("convert", "missing", "x.txt"))
        self.assert_files("empty", "junk", "k.cal", "cut.bin")

    def test_calibrations_have_no_rows(self):
        self.write("a.bin", binary_calib([GAIN]))
        message = ("a.bin: a file of calibrations, which has no rows; binary, text, .h5 and .mat "
                   "hold its records")
        for arguments in [["a.csv"], ["a.npy"], ["a.jsonl"], ["b.bin", "--rows", "0:1"],
                          ["b.bin", "--calibrated"], ["b.bin", "--type", "A=int8"],
                          ["b.bin", "--columns", "A"]]:
            with self.subTest(arguments):
                self.fails("a.bin", *arguments, message=message)

    def test_an_unwritable_folder_is_told(self):
        self.write("a.bin", binary_file())
        self.assert_fails(self.tool("convert", "a.bin", "missing/a.txt"))
        self.assert_files("a.bin")

    def test_a_full_disk_leaves_nothing(self):
        self.write("a.bin", binary_file(ALL, random_rows(2000)))
        for name in ["a.txt", "b.bin", "a.csv", "a.npy", "a.mat"]:
            with self.subTest(name):
                result = subprocess.run(
                    ["bash", "-c", "ulimit -f 8; trap '' XFSZ; exec \"$0\" convert a.bin " + name,
                     PROGRAM], cwd=self.folder, timeout=LIMIT, text=True,
                    stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                self.assert_fails(result)
                self.assertIn(name, result.stderr)
                self.assertNotIn(".part", result.stderr)
                self.assert_files("a.bin")


class Lines(ConvertTest):
    def test_csv_reads_back_exactly(self):
        rows = random_rows(50)
        self.write("a.bin", binary_file(ALL, rows))
        self.convert("a.bin", "a.csv")
        found = list(csv.reader(io.StringIO(self.read("a.csv").decode())))
        self.assertEqual(found[0], [name for name, _ in ALL])
        self.assertEqual([[float(text) for text in row] for row in found[1:]],
                         [[float(value) for value in row] for row in rows])

    def test_left_out_calibrations_are_told(self):
        self.write("a.bin", binary_file(calib=[GAIN]))
        self.convert("a.bin", "a.csv", stderr="a.csv: 1 calibration record is left "
                                              "out, which the format cannot hold\n")

    def test_members_of_json_lines_differ(self):
        self.write("a.bin", binary_file([("A", "int16"), ("A", "int16"), ("A_2", "int16")],
                                        [(1, 2, 3)]))
        self.convert("a.bin", "a.jsonl")
        self.assertEqual(self.read("a.jsonl"), b'{"A":1,"A_3":2,"A_2":3}\n')


if __name__ == "__main__":
    main()

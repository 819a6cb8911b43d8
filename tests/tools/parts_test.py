"""Tests of the verbs that divide recordings and put them together: cut, split, merge."""

import json
import struct
import subprocess

from sample_files import (GAIN, IMU, IMU_ROWS, RANGE, binary_calib, binary_file, pack_rows,
                          text_file)
from tool_test import LIMIT, PROGRAM, ToolTest, main


class PartTest(ToolTest):
    def rows_of(self, name):
        return self.output_of("cat", name).splitlines()[1:]

    def header_of(self, name):
        info = json.loads(self.output_of("info", "--json", name))
        return {key: info[key] for key in ["encoding", "header", "columns", "calibration"]}


class Cut(PartTest):
    def test_rows_are_cut_from_both_encodings(self):
        for name, content in [("a.bin", binary_file(calib=[GAIN, RANGE])),
                              ("a.txt", text_file(calib=[GAIN, RANGE]))]:
            self.write(name, content)
            rows = self.rows_of(name)
            for text, part in [("0:10", slice(0, 10)), ("3:7", slice(3, 7)), ("8:", slice(8, 10)),
                               (":2", slice(0, 2)), ("9:99", slice(9, 10)), ("4:4", slice(4, 4)),
                               ("10:", slice(10, 10)), ("99:100", slice(10, 10))]:
                with self.subTest(name + " " + text):
                    self.assertEqual(self.output_of("cut", name, "out", "--rows", text, "--force"),
                                     "")
                    self.assertEqual(self.rows_of("out"), rows[part])
                    self.assertEqual(self.header_of("out"), self.header_of(name))

    def test_all_rows_make_the_same_bytes(self):
        for content in [binary_file(calib=[GAIN, RANGE]), text_file(calib=[GAIN, RANGE])]:
            self.write("a", content)
            self.output_of("cut", "a", "out", "--rows", "0:", "--force")
            self.assertEqual(self.read("out"), content)

    def test_bits_and_digits_stay_as_they_are(self):
        columns = [("F", "float"), ("B", "bool"), ("D", "double")]
        row = struct.pack(">IBQ", 0x7F800001, 0x55, 0x7FF0000000000001)  # signalling, odd byte
        self.write("a.bin", binary_file(columns, []) + row * 3)
        self.output_of("cut", "a.bin", "out.bin", "--rows", "1:2")
        self.assertEqual(self.read("out.bin")[-len(row):], row)
        rows = b"1.50000\t1\t+0.123456789012\t\n 2e3\t0\t-0\t\n"
        self.write("a.txt", text_file(columns, []) + rows + b"7\t1\t8\t\n")
        self.output_of("cut", "a.txt", "out.txt", "--rows", "0:2")
        self.assertTrue(self.read("out.txt").endswith(b"\n" + rows))

    def test_little_endian_rows_become_big_endian(self):
        self.write("a.bin", binary_file(order="<", calib=[GAIN]))
        self.output_of("cut", "a.bin", "out.bin", "--rows", "2:5")
        self.assertEqual(self.rows_of("out.bin"), self.rows_of("a.bin")[2:5])
        self.assertEqual(json.loads(self.output_of("info", "--json", "out.bin"))["byte_order"],
                         "big")

    def test_rows_of_text_need_no_lines_of_their_own(self):
        self.write("a.txt", text_file(rows=[]) + b"1 2 3 4\t5\n\n6 7\t8\t9\t10\n11\t12 \t\n")
        self.output_of("cut", "a.txt", "out.txt", "--rows", "1:3")
        self.assertEqual(self.rows_of("out.txt"), ["5,6,7,8", "9,10,11,12"])

    def test_very_long_lines_of_text_are_broken(self):
        self.write("a.txt", text_file(rows=[]) + b"1 2 3 4\t" * 500_000)
        self.output_of("cut", "a.txt", "out.txt", "--rows", "1:")
        self.assertEqual(json.loads(self.output_of("info", "--json", "out.txt"))["rows"], 499_999)

    def test_times_count_from_the_first_row(self):
        rows = [(i, 0, 0, 100.0 + 0.5 * i) for i in range(10)]
        for name, content in [("a.bin", binary_file(rows=rows)), ("a.txt", text_file(rows=rows))]:
            self.write(name, content)
            for text, numbers in [("1:2", [2, 3]), ("0.9:", range(2, 10)), (":0.6", [0, 1]),
                                  ("4.5:9", [9]), ("5:6", []), ("1:1", [])]:
                with self.subTest(name + " " + text):
                    self.output_of("cut", name, "out", "--seconds", text, "--force")
                    self.assertEqual([row.split(",")[0] for row in self.rows_of("out")],
                                     [str(number) for number in numbers])

    def test_without_stamps_the_frequency_tells_the_time(self):
        columns = [("N", "int16")]
        self.write("a.bin", binary_file(columns, [(i,) for i in range(400)]))
        self.output_of("cut", "a.bin", "out.bin", "--seconds", "1:1.05")
        self.assertEqual(self.rows_of("out.bin"), [str(i) for i in range(200, 210)])

    def test_column_and_unit_of_the_stamps_can_be_named(self):
        columns = [("TIME", "double"), ("CLOCK", "int64")]
        self.write("a.bin", binary_file(columns, [(i, 1_000_000 * i) for i in range(10)]))
        self.output_of("cut", "a.bin", "out.bin", "--seconds", "0.002:0.004", "--time",
                       "CLOCK", "--time-unit", "ns")
        self.assertEqual(self.rows_of("out.bin"), ["2,2000000", "3,3000000"])

    def test_stamps_that_go_back_do_not_tear_the_part(self):
        stamps = [0, 1, 2, 1, 3, 4, 3, 5]
        self.write("a.bin", binary_file(rows=[(i, 0, 0, t) for i, t in enumerate(stamps)]))
        self.output_of("cut", "a.bin", "out.bin", "--seconds", "2:4")
        self.assertEqual([row.split(",")[0] for row in self.rows_of("out.bin")], ["2", "3", "4"])

    def test_a_cut_row_is_told_only_if_the_end_is_wanted(self):
        self.write("a.bin", binary_file() + b"\1")
        self.output_of("cut", "a.bin", "1", "--rows", "0:10")
        result = self.tool("cut", "a.bin", "2", "--rows", "5:")
        self.assertEqual((result.returncode, result.stdout), (3, ""))
        self.assertIn("1 byte(s) from offset", result.stderr)
        self.assertEqual(len(self.rows_of("2")), 5)

    def test_nothing_is_overwritten_and_nothing_left_behind(self):
        self.write("a.bin", binary_file())
        self.write("out.bin", b"old")
        self.assert_fails(self.tool("cut", "a.bin", "out.bin", "--rows", "0:1"))
        self.assertEqual(self.read("out.bin"), b"old")
        self.output_of("cut", "a.bin", "out.bin", "--rows", "0:1", "--force")
        self.assert_fails(self.tool("cut", "none.bin", "new.bin", "--rows", "0:1"))
        self.assert_fails(self.tool("cut", "a.bin", "none/new.bin", "--rows", "0:1"))
        self.assert_files("a.bin", "out.bin")

    def test_a_file_may_be_cut_in_its_place(self):
        self.write("a.bin", binary_file())
        rows = self.rows_of("a.bin")
        self.output_of("cut", "a.bin", "a.bin", "--rows", "2:4", "--force")
        self.assertEqual(self.rows_of("a.bin"), rows[2:4])

    def test_pipes(self):
        content = binary_file()
        cut = self.tool("cut", "-", "-", "--rows", "2:4", input=content, text=False)
        self.assertEqual((cut.returncode, cut.stderr), (0, b""))
        self.assertEqual(len(self.tool("cat", "-", input=cut.stdout, text=False).stdout
                             .splitlines()), 3)

    def test_wrong_usage(self):
        self.write("a.bin", binary_file())
        for arguments in [[], ["--rows", "1:2", "--seconds", "1:2"], ["--rows", "2:1"],
                          ["--seconds", "2:1"], ["--seconds", "-1:2"], ["--seconds", "x"],
                          ["--seconds", "1:2", "--time", "NONE"],
                          ["--seconds", "1:2", "--time-unit", "h"]]:
            with self.subTest(arguments):
                self.assertEqual(self.tool("cut", "a.bin", "out", *arguments).returncode, 2)
        self.assert_files("a.bin")

    def test_calibrations_alone_have_no_rows(self):
        self.write("c.bin", binary_calib([GAIN]))
        self.assert_fails(self.tool("cut", "c.bin", "out.bin", "--rows", "0:1"))

    def test_folders_that_cannot_be_written_to(self):
        self.write("a.bin", binary_file())
        result = self.tool("cut", "a.bin", "/proc/out.bin", "--rows", "0:1")
        self.assert_fails(result)
        self.assertIn("/proc/out.bin", result.stderr)

    def test_rows_far_behind_in_a_sparse_file(self):
        rows = 5_000_000_000 // 14
        with open(self.folder / "a.bin", "wb") as file:
            file.write(binary_file(rows=[]))
            start = file.tell()
            file.truncate(start + rows * 14)
            file.seek(start + (rows - 2) * 14)
            file.write(pack_rows(IMU, IMU_ROWS[1:3]))
        self.output_of("cut", "a.bin", "out.bin", "--rows", f"{rows - 2}:")
        self.assertEqual(self.rows_of("out.bin"), ["1,-1,101,0.005", "2,-2,102,0.01"])


class Interrupted(PartTest):
    def test_nothing_is_left(self):
        with open(self.folder / "a.bin", "wb") as file:
            file.write(binary_file(rows=[]))
            file.truncate(20_000_000_000)
        process = subprocess.Popen([PROGRAM, "cut", "a.bin", "out.bin", "--rows", "0:"],
                                   cwd=self.folder, stderr=subprocess.PIPE)
        while len(list(self.folder.iterdir())) < 2:
            self.assertIsNone(process.poll())
        process.send_signal(2)
        self.assertEqual(process.wait(LIMIT), -2)
        process.stderr.close()
        self.assert_files("a.bin")


class Split(PartTest):
    def test_parts_together_are_the_whole(self):
        for ending, content in [("bin", binary_file(calib=[GAIN])),
                                ("txt", text_file(calib=[GAIN]))]:
            self.write("a." + ending, content)
            names = [f"a-00{i}.{ending}" for i in (1, 2, 3)]
            self.assertEqual(self.output_of("split", "a." + ending, "--rows", "4"),
                             f"{names[0]}: rows 0 to 4\n{names[1]}: rows 4 to 8\n"
                             f"{names[2]}: rows 8 to 10\n")
            for name in names:
                self.assertEqual(self.header_of(name), self.header_of("a." + ending))
            self.assertEqual(sum((self.rows_of(name) for name in names), []),
                             self.rows_of("a." + ending))
            self.output_of("merge", *names, "-o", "whole", "--force", "--json")
            self.assertEqual(self.read("whole"), content)

    def test_by_seconds_and_by_number(self):
        self.write("a.bin", binary_file(rows=[IMU_ROWS[0]] * 1000))
        self.output_of("split", "a.bin", "--seconds", "2", "-o", "s.bin")
        self.output_of("split", "a.bin", "--parts", "4", "-o", "p.bin")
        self.assert_files("a.bin", "s-001.bin", "s-002.bin", "s-003.bin", "p-001.bin", "p-002.bin",
                          "p-003.bin", "p-004.bin")
        self.assertEqual(len(self.rows_of("s-002.bin")), 400)
        self.assertEqual(len(self.rows_of("p-004.bin")), 250)

    def test_a_recording_without_rows_is_one_part(self):
        self.write("a.bin", binary_file(rows=[]))
        for arguments in [["--rows", "4"], ["--parts", "3"]]:
            self.output_of("split", "a.bin", *arguments, "--force")
            self.assert_files("a.bin", "a-001.bin")
            self.assertEqual(self.rows_of("a-001.bin"), [])

    def test_what_is_there_is_found_before_anything_is_written(self):
        self.write("a.bin", binary_file())
        self.write("a-003.bin", b"old")
        self.assert_fails(self.tool("split", "a.bin", "--rows", "4"))
        self.assert_files("a.bin", "a-003.bin")

    def test_the_rest_of_a_row_is_told(self):
        self.write("a.bin", binary_file() + b"12")
        result = self.tool("split", "a.bin", "--parts", "2")
        self.assertEqual(result.returncode, 3)
        self.assertIn("2 byte(s) from offset", result.stderr)

    def test_wrong_usage(self):
        self.write("a.bin", binary_file(rows=[IMU_ROWS[0]] * 20_000))
        for arguments in [[], ["--rows", "1", "--parts", "2"], ["--rows", "0"], ["--rows", "-1"],
                          ["--seconds", "0.001"], ["--seconds", "0"], ["--rows", "1"],
                          ["--parts", "99999"]]:
            with self.subTest(arguments):
                self.assertEqual(self.tool("split", "a.bin", *arguments).returncode, 2)
        self.assertEqual(self.tool("split", "-", "--rows", "1", input="").returncode, 2)
        self.assert_files("a.bin")


class Merge(PartTest):
    def parts(self, *ranges, **options):
        rows = [(i % 65536, 0, 0, 0.005 * i) for i in range(70_000)]
        names = []
        for number, (first, last) in enumerate(ranges):
            names.append(self.write(f"{number}.bin", binary_file(rows=rows[first:last], **options)))
        return names

    def merge(self, names, *arguments, code=0):
        return self.json_of("merge", *names, "-o", "out", "--force", *arguments, code=code)

    def test_counters_show_that_nothing_is_missing(self):
        report = self.merge(self.parts((0, 10), (10, 65_530), (65_530, 70_000)))
        self.assertEqual((report["rows"], report["is_whole"]), (70_000, True))
        self.assertEqual(report["counters"],
                         [{"column": "COUNT", "missing_rows": 0, "gap_count": 0, "gaps": []}])
        self.assertEqual(report["schema"], "sensorfile-merge-1")

    def test_missing_repeated_and_exchanged_parts_are_found(self):
        for ranges, gap in [
                (((0, 10), (12, 20)), {"missing_rows": 2, "is_repeated": False,
                                       "is_backward": False}),
                (((0, 10), (9, 20)), {"missing_rows": 0, "is_repeated": True,
                                      "is_backward": False}),
                (((10, 20), (0, 10)), {"missing_rows": 0, "is_repeated": False,
                                       "is_backward": True}),
                (((65_500, 65_530), (65_540, 65_550)), {"missing_rows": 10, "is_repeated": False,
                                                        "is_backward": False})]:
            report = self.merge(self.parts(*ranges), code=3)
            self.assertEqual(report["counters"][0]["gaps"], [{"path": "1.bin", "row": 0, **gap}])
            self.assertFalse(report["is_whole"])

    def test_gaps_within_a_part_are_found(self):
        self.write("a.bin", binary_file(rows=IMU_ROWS[:3] + IMU_ROWS[5:]))
        self.assertEqual(self.output_of("merge", "a.bin", "-o", "out", code=3),
                         "a.bin: 8 row(s)\nout: 8 row(s)\nCOUNT: 2 row(s) are missing, 1 place(s)\n"
                         "  a.bin row 3: 2 row(s) are missing before it\n")

    def test_text_form(self):
        self.write("a.bin", binary_file(rows=IMU_ROWS[:4]))
        self.write("b.bin", binary_file(rows=IMU_ROWS[4:]))
        self.assertEqual(self.output_of("merge", "a.bin", "b.bin", "-o", "out"),
                         "a.bin: 4 row(s)\nb.bin: 6 row(s)\nout: 10 row(s)\n"
                         "COUNT: no row is missing\n")

    def test_without_counters_nobody_can_tell(self):
        self.write("a.bin", binary_file([("X", "int16")], [(1,)]))
        self.assertIn("no column tells\n", self.output_of("merge", "a.bin", "a.bin", "-o", "out"))

    def test_encodings_may_be_mixed(self):
        self.write("a.txt", text_file(rows=IMU_ROWS[:4]))
        self.write("b.bin", binary_file(rows=IMU_ROWS[4:7]))
        self.write("c.bin", binary_file(rows=IMU_ROWS[7:], order="<"))
        self.output_of("merge", "a.txt", "b.bin", "c.bin", "-o", "out.txt", "--json")
        self.assertEqual(self.header_of("out.txt")["encoding"], "text")
        self.write("whole.bin", binary_file())
        self.assertEqual(self.rows_of("out.txt"), self.rows_of("whole.bin"))

    def test_other_columns_are_refused(self):
        self.write("a.bin", binary_file())
        other = [IMU[0], ("ACCX", "int32"), *IMU[2:]]
        self.write("b.bin", binary_file(other))
        result = self.tool("merge", "a.bin", "b.bin", "-o", "out")
        self.assert_fails(result)
        self.assertIn("b.bin: other columns than in a.bin: column 2 is ACCX (int16) there, ACCX "
                      "(int32) here", result.stderr)
        self.write("c.bin", binary_file(IMU[:3], []))
        self.assertIn("column 4 is TIME (double) there, missing here",
                      self.tool("merge", "a.bin", "c.bin", "-o", "out").stderr)
        self.assert_files("a.bin", "b.bin", "c.bin")

    def test_other_calibrations_and_frequencies_are_refused_unless_wanted(self):
        self.write("a.bin", binary_file(calib=[GAIN]))
        for content, word in [(binary_file(calib=[RANGE]), "calibration record Gain differs"),
                              (binary_file(), "0 here"),
                              (binary_file(calib=[GAIN], frequency=100.0), "100 Hz here")]:
            self.write("b.bin", content)
            result = self.tool("merge", "a.bin", "b.bin", "-o", "refused")
            self.assert_fails(result)
            self.assertIn(word, result.stderr)
            self.output_of("merge", "a.bin", "b.bin", "-o", "out", "--keep-first", "--force",
                           "--json", code=3)
            self.assertEqual(self.header_of("out"), self.header_of("a.bin"))

    def test_the_rest_of_a_part_is_left_out(self):
        self.write("a.bin", binary_file(rows=IMU_ROWS[:4]) + b"123")
        self.write("b.bin", binary_file(rows=IMU_ROWS[4:]))
        report = self.merge(["a.bin", "b.bin"], code=3)
        self.assertEqual([part["trailing_bytes"] for part in report["parts"]], [3, 0])
        self.assertEqual(report["rows"], 10)
        self.assertEqual(report["counters"][0]["gap_count"], 0)

    def test_the_report_goes_elsewhere_when_the_file_goes_to_the_output(self):
        self.write("a.bin", binary_file())
        result = self.tool("merge", "a.bin", "-o", "-", text=False)
        self.assertEqual(result.stdout, binary_file())
        self.assertIn(b"no row is missing", result.stderr)

    def test_a_counter_can_be_named(self):
        columns = [("COUNT", "uint16"), ("N", "uint8")]
        self.write("a.bin", binary_file(columns, [(0, 254), (9, 255), (7, 0)]))
        self.assertEqual(self.merge(["a.bin"], "--counter", "N")["is_whole"], True)
        self.assertEqual(self.merge(["a.bin"], code=3)["is_whole"], False)
        self.assertEqual(self.tool("merge", "a.bin", "-o", "o2", "--counter", "X").returncode, 2)


if __name__ == "__main__":
    main()

"""Tests of the verb calib: what it shows, takes out, puts in and compares."""

import json
import struct

from sample_files import (GAIN, RANGE, binary_calib, binary_file, kivra2_calib,
                          legacy_file, text_file)
from tool_test import ToolTest, main

ACC_GAIN = ("AccGain", "double", [[1.0, 2.0, 3.0], [4.0, 5.0, 6.0], [7.0, 8.0, 9.5]])
ACC_OFFSET = ("AccOffset", "double", [[0.1, -0.2, 0.3]])


class CalibTest(ToolTest):
    def records_of(self, name):
        found = self.json_of("calib", name)
        return [(one["name"], one["type"], one["values"]) for one in found["records"]]


class Show(CalibTest):
    def test_records_are_shown_wherever_they_are(self):
        for name, content in [("a.bin", binary_file(calib=[GAIN, RANGE])),
                              ("a.txt", text_file(calib=[GAIN, RANGE])),
                              ("c.bin", binary_calib([GAIN, RANGE])),
                              ("l.bin", binary_file(order="<", calib=[GAIN, RANGE]))]:
            with self.subTest(name):
                self.assertEqual(self.records_of(self.write(name, content)), [GAIN, RANGE])

    def test_text_form(self):
        self.write("a.bin", binary_file(calib=[GAIN]))
        self.assertEqual(self.output_of("calib", "a.bin"),
                         "a.bin\n  created      2016-12-01 08:00:09 UTC\n  format       2\n"
                         "  records      1\n    Gain  double 2 x 2\n      0.998 0.25\n"
                         "      -0.5 1.002\n")

    def test_kivra2_files_are_shown(self):
        self.write("unit.cal", kivra2_calib())
        self.assertEqual([name for name, _, _ in self.records_of("unit.cal")],
                         ["AccGain", "AccOffset", "MagGain", "MagOffset", "GyrGain", "GyrOffset"])
        self.assertIn("AccGain", self.output_of("calib", "-", input=kivra2_calib().decode("latin1"),
                                                encoding="latin1", text=None))

    def test_a_recording_without_records_has_none(self):
        self.write("a.bin", binary_file())
        self.assertEqual(self.records_of("a.bin"), [])

    def test_wrong_usage_and_files_that_are_none(self):
        self.assertEqual(self.tool("calib").returncode, 2)
        self.assertEqual(self.tool("calib", "a", "b").returncode, 2)
        self.assert_fails(self.tool("calib", "none"))
        self.write("x", b"x" * 10)
        self.assert_fails(self.tool("calib", "x"))


class Extract(CalibTest):
    def test_records_become_a_file_of_their_own(self):
        for name, content in [("a.bin", binary_file(calib=[GAIN, RANGE])),
                              ("a.txt", text_file(calib=[GAIN, RANGE]))]:
            self.write(name, content)
            for target, kind in [("text", "text"), ("binary", "binary")]:
                self.output_of("calib", "extract", name, "out", "--to", target, "--force")
                info = json.loads(self.output_of("info", "--json", "out"))
                self.assertEqual((info["encoding"], info["calibration_only"]), (kind, True))
                self.assertEqual(info["calibration"]["created"], "2016-12-01T08:00:09Z")
                self.assertEqual(self.records_of("out"), [GAIN, RANGE])

    def test_the_encoding_stays_unless_told(self):
        self.write("a.txt", text_file(calib=[GAIN]))
        self.output_of("calib", "extract", "a.txt", "out.txt")
        self.assertTrue(self.read("out.txt").startswith(b"Calib id: "))
        self.write("a.bin", binary_file(calib=[GAIN]))
        self.output_of("calib", "extract", "a.bin", "out.bin")
        self.assertEqual(self.read("out.bin"), binary_calib([GAIN]))

    def test_kivra2_files_come_back_to_the_byte(self):
        self.write("unit.cal", kivra2_calib())
        for target in ["text", "binary"]:
            self.output_of("calib", "extract", "unit.cal", "sensor", "--to", target, "--force")
            self.output_of("calib", "extract", "sensor", "again", "--to", "kivra2", "--force")
            self.assertEqual(self.read("again"), kivra2_calib())

    def test_sensors_without_records_get_identity_and_zeros(self):
        self.write("a.bin", binary_file(calib=[ACC_GAIN, ACC_OFFSET]))
        self.output_of("calib", "extract", "a.bin", "unit.cal", "--to", "kivra2")
        content = self.read("unit.cal")
        self.assertEqual(len(content), 296)
        self.assertEqual(content[:8], bytes([1, 12, 16, 8, 0, 9]) + b"\0\2")
        columns = [value for column in zip(*ACC_GAIN[2]) for value in column]
        identity = [1.0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0]
        self.assertEqual(struct.unpack(">36d", content[8:]),
                         (*columns, *ACC_OFFSET[2][0], *identity, *identity))

    def test_what_has_no_place_in_a_kivra2_file_is_refused(self):
        for record, word in [(GAIN, "Gain has no place"),
                             (("AccGain", "double", GAIN[2]), "AccGain is 2 x 2")]:
            self.write("a.bin", binary_file(calib=[record]))
            result = self.tool("calib", "extract", "a.bin", "out.cal", "--to", "kivra2")
            self.assert_fails(result)
            self.assertIn(word, result.stderr)
        self.assert_files("a.bin")

    def test_one_record_becomes_lines_of_numbers(self):
        self.write("a.bin", binary_file(calib=[GAIN, RANGE]))
        self.output_of("calib", "extract", "a.bin", "g.csv", "--record", "Gain", "--to", "csv")
        self.assertEqual(self.read("g.csv"), b"0.998,0.25\n-0.5,1.002\n")
        self.output_of("calib", "extract", "a.bin", "r.bin", "--record", "Range")
        self.assertEqual(self.records_of("r.bin"), [RANGE])
        self.assert_fails(self.tool("calib", "extract", "a.bin", "x", "--record", "None"))
        self.assertEqual(self.tool("calib", "extract", "a.bin", "x", "--to", "csv").returncode, 2)

    def test_without_records_there_is_nothing_to_take_out(self):
        self.write("a.bin", binary_file())
        self.assert_fails(self.tool("calib", "extract", "a.bin", "out"))
        self.assert_files("a.bin")

    def test_nothing_is_overwritten(self):
        self.write("a.bin", binary_file(calib=[GAIN]))
        self.write("out", b"old")
        self.assert_fails(self.tool("calib", "extract", "a.bin", "out"))
        self.assertEqual(self.read("out"), b"old")

    def test_pipes(self):
        result = self.tool("calib", "extract", "-", "-", input=binary_file(calib=[GAIN]),
                           text=False)
        self.assertEqual(result.stdout, binary_calib([GAIN]))


class Insert(CalibTest):
    def test_records_are_exchanged_and_rows_stay(self):
        for name, make in [("a.bin", binary_file), ("a.txt", text_file)]:
            self.write(name, make(calib=[GAIN]))
            self.write("c.bin", binary_calib([RANGE]))
            self.output_of("calib", "insert", "c.bin", name, "out", "--force")
            self.assertEqual(self.read("out"), make(calib=[RANGE]))
            self.output_of("calib", "insert", "c.bin", name, "out", "--force", "--keep")
            self.assertEqual(self.records_of("out"), [RANGE, GAIN])

    def test_records_of_the_same_name_are_not_kept(self):
        self.write("a.bin", binary_file(calib=[GAIN]))
        new = ("Gain", "double", [[5.0]])
        self.write("c.bin", binary_calib([new]))
        self.output_of("calib", "insert", "c.bin", "a.bin", "out", "--keep")
        self.assertEqual(self.records_of("out"), [new])

    def test_kivra2_calibrations_are_put_in(self):
        self.write("unit.cal", kivra2_calib())
        self.write("a.bin", binary_file())
        self.output_of("calib", "insert", "unit.cal", "a.bin", "out.bin")
        self.assertEqual(self.records_of("out.bin"), self.records_of("unit.cal"))
        self.assertEqual(self.output_of("cat", "out.bin"), self.output_of("cat", "a.bin"))

    def test_a_cut_row_is_told(self):
        self.write("c.bin", binary_calib([RANGE]))
        self.write("a.bin", binary_file() + b"1")
        result = self.tool("calib", "insert", "c.bin", "a.bin", "out")
        self.assertEqual(result.returncode, 3)
        self.assertEqual(self.read("out"), binary_file(calib=[RANGE]))

    def test_files_of_calibrations_have_no_rows(self):
        self.write("c.bin", binary_calib([RANGE]))
        self.assert_fails(self.tool("calib", "insert", "c.bin", "c.bin", "out"))
        self.assert_files("c.bin")

    def test_bare_values_become_records_with_names(self):
        self.write("old.bin", legacy_file())
        self.write("c.bin", binary_calib([RANGE]))
        self.output_of("calib", "insert", "c.bin", "old.bin", "out", "--keep")
        self.assertEqual([name for name, _, _ in self.records_of("out")],
                         ["Range", "Gain1", "Offset1"])


class Compare(CalibTest):
    def test_the_same_records_in_any_order_and_kind_of_file(self):
        self.write("a.bin", binary_file(calib=[GAIN, RANGE]))
        self.write("c.txt", text_file(calib=[RANGE, GAIN]))
        self.assertEqual(self.output_of("calib", "compare", "a.bin", "c.txt"), "")

    def test_differences_are_named(self):
        other = ("Gain", "double", [[0.998, 0.25], [-0.5, 1.0025]])
        self.write("a.bin", binary_calib([GAIN, RANGE]))
        self.write("b.bin", binary_calib([other, ACC_OFFSET]))
        self.assertEqual(self.output_of("calib", "compare", "a.bin", "b.bin", code=1),
                         "Gain: row 2, column 2: 1.002 in the first file, 1.0025 in the second\n"
                         "Range: in the first file only\nAccOffset: in the second file only\n")
        found = self.json_of("calib", "compare", "a.bin", "b.bin", code=1)
        self.assertEqual(found["schema"], "sensorfile-calib-compare-1")
        self.assertAlmostEqual(found["differences"][0]["largest_difference"], 0.0005)

    def test_small_differences_may_not_count(self):
        self.write("a.bin", binary_calib([("G", "double", [[1.0, 2.0]])]))
        self.write("b.bin", binary_calib([("G", "double", [[1.25, 2.0]])]))
        self.output_of("calib", "compare", "a.bin", "b.bin", code=1)
        self.output_of("calib", "compare", "a.bin", "b.bin", "--tolerance", "0.25")

    def test_other_shapes_differ(self):
        self.write("a.bin", binary_calib([("G", "double", [[1.0, 2.0]])]))
        self.write("b.bin", binary_calib([("G", "double", [[1.0], [2.0]])]))
        self.assertEqual(self.output_of("calib", "compare", "a.bin", "b.bin", code=1),
                         "G: 1 x 2 in the first file, 2 x 1 in the second\n")

    def test_nan_is_the_same_as_nan_and_nothing_else(self):
        nan = float("nan")
        self.write("a.bin", binary_calib([("G", "double", [[nan, 1.0]])]))
        self.write("b.bin", binary_calib([("G", "double", [[1.0, 1.0]])]))
        self.output_of("calib", "compare", "a.bin", "a.bin")
        self.output_of("calib", "compare", "a.bin", "b.bin", "--tolerance", "9", code=1)

    def test_trouble_is_2(self):
        self.write("a.bin", binary_calib([GAIN]))
        result = self.tool("calib", "compare", "a.bin", "none")
        self.assert_fails(result, code=2)


if __name__ == "__main__":
    main()

"""Sums up sensor files with the verb stats, as a user does."""

import json
import math
import os
import random
import statistics

import jsonschema

import real_data
from sample_files import (GAIN, binary_calib, binary_file, kivra2_calib, legacy_file, text_file)
from tool_test import ROOT, ToolTest, main


class StatsTest(ToolTest):
    def json_of(self, *arguments, code=0, stderr=""):
        schema = json.loads((ROOT / "docs/schemas/sensorfile-stats-1.schema.json").read_text())
        found = json.loads(self.output_of("stats", "--json", *arguments, code=code, stderr=stderr))
        jsonschema.validate(found, schema)
        self.assertEqual(list(found)[0], "schema")
        return found

    def column_of(self, kind, values, *arguments):
        self.write("a.bin", binary_file([("X", kind)], [(one,) for one in values]))
        column, = self.json_of("a.bin", *arguments)["columns"]
        return column


class Columns(StatsTest):
    def test_every_kind_of_file_is_summed_up_alike(self):
        expected = None
        for content in [binary_file(), binary_file(order="<"), text_file(), legacy_file(),
                        binary_file(calib=[GAIN])]:
            self.write("a", content)
            found = self.json_of("a")
            expected = expected or found
            if content != legacy_file():
                self.assertEqual(found, expected)
        self.assertEqual((expected["rows"], expected["first_row"], expected["calibrated"],
                          expected["allan"]), (10, 0, False, []))
        self.assertEqual(expected["columns"][1], {
            "name": "ACCX", "type": "int16", "count": 10, "not_finite": 0, "min": -9, "max": 0,
            "mean": -4.5, "deviation": expected["columns"][0]["deviation"], "first": 0, "last": -9,
            "at_min": 1, "at_max": 1, "clipped_low": 0, "clipped_high": 0, "repeated": 0,
            "longest_run": 1, "longest_run_row": 0})
        self.assertAlmostEqual(expected["columns"][0]["deviation"], math.sqrt(82.5 / 9))

    def test_text_form(self):
        rows = [(2, 0.5), (2, math.nan), (32767, -1.25)]
        self.write("a.bin", binary_file([("COUNT", "int16"), ("X", "double")], rows))
        self.assertEqual(self.output_of("stats", "a.bin"), """a.bin
  rows         3

  column    min    max         mean  std deviation  first   last
  COUNT       2  32767  10923.66667        18916.9      2  32767
  X       -1.25    0.5       -0.375        1.23744    0.5  -1.25

  column    type  not finite  clipped low  clipped high  repeated  longest run  at row
  COUNT    int16           0            0             1         1            2       0
  X       double           1            0             0         0            1       0
""")

    def test_numbers_are_those_of_exact_arithmetic(self):
        numbers = random.Random(20170523)
        values = [1e9 + numbers.gauss(0.0, 1e-3) for _ in range(2000)]
        found = self.column_of("double", values)
        self.assertEqual((found["min"], found["max"], found["first"], found["last"]),
                         (min(values), max(values), values[0], values[-1]))
        self.assertAlmostEqual(found["mean"], statistics.fmean(values), 6)
        exact = statistics.stdev(values)
        self.assertLess(abs(found["deviation"] - exact), 1e-9 * exact)

    def test_64_bits_are_exact(self):
        found = self.column_of("uint64", [2**64 - 1, 2**64 - 2, 2**53 + 1])
        self.assertEqual((found["min"], found["max"], found["first"], found["last"]),
                         ("9007199254740993", "18446744073709551615", "18446744073709551615",
                          "9007199254740993"))
        self.assertEqual(found["clipped_high"], 1)
        found = self.column_of("int64", [-2**63, -2**63 + 2])
        self.assertEqual((found["min"], found["clipped_low"]), ("-9223372036854775808", 1))
        self.assertAlmostEqual(found["deviation"], math.sqrt(2.0))
        self.assertIn(" 9007199254740993 ", self.output_of(
            "stats", self.write("b.bin", binary_file([("X", "uint64")], [(2**53 + 1,), (2**60,)]))))

    def test_floats_have_the_digits_of_floats(self):
        found = self.column_of("float", [0.1, 0.2])
        self.assertEqual((found["min"], found["max"]), (0.1, 0.2))

    def test_numbers_that_are_none_are_left_out(self):
        found = self.column_of("double", [math.nan, 1.0, math.inf, 3.0, -math.inf])
        self.assertEqual((found["count"], found["not_finite"], found["min"], found["max"],
                          found["mean"], found["first"], found["last"]),
                         (2, 3, 1.0, 3.0, 2.0, "nan", "-inf"))
        found = self.column_of("float", [math.nan])
        self.assertEqual((found["min"], found["mean"], found["longest_run_row"]),
                         (None, None, None))
        self.output_of("stats", "a.bin")

    def test_clipped_and_repeated_samples(self):
        found = self.column_of("int16", [32767, 32767, 5, -32768, 5, 5, 5, 5])
        self.assertEqual((found["clipped_high"], found["clipped_low"], found["at_max"],
                          found["repeated"], found["longest_run"], found["longest_run_row"]),
                         (2, 1, 2, 4, 4, 4))
        found = self.column_of("double", [1.0, 4.0, 4.0, 4.0, 2.0, 4.0, 0.0])
        self.assertEqual((found["clipped_high"], found["clipped_low"], found["at_max"]), (3, 0, 4))

    def test_rows_and_columns(self):
        for make in [binary_file, text_file]:
            self.write("a", make())
            found = self.json_of("a", "--rows", "2:5", "--columns", "ACC?")
            self.assertEqual([(one["name"], one["first"], one["last"])
                              for one in found["columns"]],
                             [("ACCX", -2, -4), ("ACCY", 102, 104)])
            self.assertEqual((found["first_row"], found["rows"]), (2, 3))
            self.assertIn("3, from row 2 on", self.output_of("stats", "a", "--rows", "2:5"))
            self.assertEqual(self.json_of("a", "--rows", "20:")["rows"], 0)

    def test_calibration_is_applied(self):
        columns = [(name, "int16") for name in ["ACCX", "ACCY", "ACCZ"]]
        calib = [("AccGain", "double", [[0.5, 0, 0], [0, 0.5, 0], [0, 0, 0.5]]),
                 ("AccOffset", "double", [[1, 0, 0]])]
        self.write("a.bin", binary_file(columns, [(1, 2, 3), (5, 6, 7)], calib=calib))
        found = self.json_of("a.bin", "--calibrated")
        self.assertEqual([(one["type"], one["first"], one["last"]) for one in found["columns"]],
                         [("double", 0.0, 2.0), ("double", 1.0, 3.0), ("double", 1.5, 3.5)])
        self.assertTrue(found["calibrated"])


class Allan(StatsTest):
    def allan_of(self, values, *arguments, kind="double", **options):
        self.write("a.bin", binary_file([("X", kind)], [(one,) for one in values], **options))
        found, = self.json_of("a.bin", "--allan", "X", *arguments)["allan"]
        return found

    def test_deviations_are_those_of_the_plain_loop(self):
        numbers = random.Random(1)
        values = [numbers.gauss(0.0, 1.0) for _ in range(300)]
        found = self.allan_of(values, frequency=50.0)
        self.assertEqual([one["samples"] for one in found["points"]],
                         [1, 2, 4, 8, 16, 32, 64, 128])
        for point in found["points"]:
            m = point["samples"]
            self.assertAlmostEqual(point["tau_s"], m / 50.0)
            means = [statistics.fmean(values[k:k + m]) for k in range(len(values) - m + 1)]
            squares = [(means[k + m] - means[k]) ** 2 for k in range(len(means) - m)]
            self.assertEqual(point["terms"], len(squares))
            self.assertAlmostEqual(point["deviation"],
                                   math.sqrt(sum(squares) / (2 * len(squares))), 12)
            self.assertAlmostEqual(point["relative_error"],
                                   1 / math.sqrt(2 * (len(values) / m - 1)), 12)

    def test_white_noise_has_its_coefficient(self):
        numbers = random.Random(2)
        found = self.allan_of([numbers.gauss(1e6, 0.5) for _ in range(20000)], frequency=100.0)
        self.assertAlmostEqual(found["white_noise"], 0.05, delta=0.002)
        self.assertEqual(found["random_walk"], None)
        text = self.output_of("stats", "a.bin", "--allan", "X")
        self.assertIn("\nAllan deviation of X at 100 Hz\n  white noise  0.0", text)

    def test_random_walk_has_its_coefficient(self):
        numbers = random.Random(3)
        value, values = 0.0, []
        for _ in range(40000):
            value += numbers.gauss(0.0, 0.01)
            values.append(value)
        found = self.allan_of(values, "--rate", "100")
        self.assertAlmostEqual(found["random_walk"], 0.1, delta=0.01)
        self.assertEqual((found["white_noise"], found["bias_instability"]), (None, None))

    def test_mean_of_64_bit_integers_does_no_harm(self):
        start = 2**62 + 1
        found = self.allan_of([start + i % 2 for i in range(100)], kind="int64")
        self.assertAlmostEqual(found["points"][0]["deviation"], 1 / math.sqrt(2))
        self.assertEqual(found["points"][1]["deviation"], 0.0)

    def test_numbers_that_are_none_are_left_out(self):
        found = self.allan_of([1.0, math.nan, 2.0, 1.0, math.inf, 2.0])
        self.assertEqual((found["left_out"], found["points"][0]["terms"]), (2, 3))
        self.assertIn("left out     2 value(s) that are not finite",
                      self.output_of("stats", "a.bin", "--allan", "X"))

    def test_few_values_have_no_points(self):
        for count in [0, 1]:
            found = self.allan_of([1.0] * count)
            self.assertEqual(found["points"], [])
            self.assertIn("none: there are too few values",
                          self.output_of("stats", "a.bin", "--allan", "X"))

    def test_columns_are_named_by_patterns_and_more_than_once(self):
        self.write("a.bin", binary_file())
        found = self.json_of("a.bin", "--columns", "COUNT", "--allan", "ACC*", "--allan", "TIME",
                             "--allan=ACCX")
        self.assertEqual([one["column"] for one in found["allan"]], ["ACCX", "ACCY", "TIME"])
        self.assertEqual([one["name"] for one in found["columns"]], ["COUNT"])


class Trouble(StatsTest):
    def test_wrong_usage_ends_with_2(self):
        self.write("a.bin", binary_file())
        self.write("zero.bin", binary_file(frequency=0.0))
        many = [(f"X{i}", "uint8") for i in range(101)]
        self.write("many.bin", binary_file(many, [[0] * 101]))
        for arguments in [[], ["a.bin", "a.bin"], ["a.bin", "--columns", "GYRX"],
                          ["a.bin", "--columns="], ["a.bin", "--rows", "5"],
                          ["a.bin", "--allan", "GYR*"], ["a.bin", "--allan="],
                          ["a.bin", "--allan", "TIME", "--rate", "0"],
                          ["a.bin", "--rate", "nan"], ["zero.bin", "--allan", "TIME"],
                          ["many.bin", "--allan", "*"]]:
            with self.subTest(arguments):
                result = self.tool("stats", *arguments)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertNotEqual(result.stderr, "")
        self.output_of("stats", "a.bin", "--allan", "GYRX", code=2,
                       stderr="sensorfile: --allan: no column matches 'GYRX'; there are: COUNT, "
                              "ACCX, ACCY, TIME\n")
        self.output_of("stats", "zero.bin", "--allan", "TIME", code=2,
                       stderr="sensorfile: --allan: the header has no frequency; give --rate: a "
                              "number above 0 is needed\n")
        self.json_of("zero.bin", "--allan", "TIME", "--rate", "5")

    def test_files_that_cannot_be_read_are_named(self):
        self.write("empty", b"")
        self.write("noise", random.Random(1).randbytes(300))
        self.write("calib", binary_calib([GAIN]))
        self.write("unit.cal", kivra2_calib())
        for name in ["none", "empty", "noise", "calib", "unit.cal", "."]:
            result = self.tool("stats", name)
            self.assert_fails(result)
            self.assertIn(name, result.stderr)

    def test_records_that_fit_no_columns_are_refused(self):
        self.write("a.bin", binary_file())
        self.assert_fails(self.tool("stats", "a.bin", "--calibrated"))

    def test_cut_file_ends_with_3_and_tells_of_the_whole_rows(self):
        for name, content, rest in [("a.bin", binary_file(), b"\0\1\0"),
                                    ("a.txt", text_file(), b"1\t2")]:
            self.write(name, content + rest)
            found = self.json_of(name, code=3,
                                 stderr=f"sensorfile: {name}: 3 byte(s) from offset "
                                        f"{len(content)} on are no whole row (1 whole value(s))\n")
            self.assertEqual(found["rows"], 10)
            self.assertEqual(self.json_of(name, "--rows", ":10")["rows"], 10)

    def test_recordings_without_rows_or_columns(self):
        for content in [binary_file(rows=[]), text_file(rows=[])]:
            self.write("a", content)
            self.assertEqual(self.json_of("a")["columns"][0]["first"], None)
            self.assertIn("  COUNT     -    -     -", self.output_of("stats", "a"))
        for content in [binary_file([], []), text_file([], [])]:
            self.write("a", content)
            self.assertEqual(self.output_of("stats", "a"), "a\n  rows         0\n")

    def test_standard_input(self):
        self.write("a.bin", binary_file())
        self.assertEqual(
            self.output_of("stats", "-", text=False, input=binary_file(), stderr=b"").decode(),
            self.output_of("stats", "a.bin").replace("a.bin", "standard input"))

    def test_locale_of_the_environment_does_not_matter(self):
        self.write("a.bin", binary_file())
        environment = {**os.environ, "LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8"}
        arguments = ["stats", "a.bin", "--allan", "TIME"]
        self.assertEqual(self.output_of(*arguments, env=environment), self.output_of(*arguments))

    def test_damaged_bytes_never_crash(self):
        numbers = random.Random(20170523)
        whole = [binary_file(), text_file(), binary_file(order="<")]
        for _ in range(150):
            content = bytearray(numbers.choice(whole))
            for _ in range(numbers.randint(1, 4)):
                content[numbers.randrange(len(content))] = numbers.randrange(256)
            self.write("a", content)
            result = self.tool("stats", "--json", "--allan", "*", "a", text=False)
            self.assertIn(result.returncode, [0, 1, 2, 3], bytes(content))
            if result.returncode in [0, 3]:
                json.loads(result.stdout)
            else:
                self.assertRegex(result.stderr, rb"\Asensorfile: [^\n]+\n\Z")


# Without the folder there is nothing to look at.
if real_data.FOLDER:

    class RealData(StatsTest):
        """What is known of recordings that people made."""

        def columns_of(self, name):
            self.write("a.bin", real_data.sensor_file(name))
            found = self.json_of("a.bin")
            return found["rows"], {one["name"]: one for one in found["columns"]}

        def test_walk_repeats_its_stamps(self):
            rows, columns = self.columns_of("walk_6axis_xio.csv")
            self.assertEqual((rows, columns["Time (s)"]["repeated"]), (28132, 252))
            self.assertEqual(columns["Time (s)"]["max"], 70.73208332)

        def test_phone_has_a_constant_status_and_stamps_of_16_digits(self):
            rows, columns = self.columns_of("phone_accel_400hz_oxford.csv")
            self.assertEqual(rows, 77008)
            self.assertEqual((columns["STATUS"]["min"], columns["STATUS"]["max"],
                              columns["STATUS"]["longest_run"]), (3, 3, 77008))
            self.assertEqual((columns["TIMESTAMP"]["min"], columns["TIMESTAMP"]["max"]),
                             (1018138549376479, 1018328593026780))

        def test_raw_counts_reach_what_the_sensor_can_tell(self):
            _, columns = self.columns_of("rocket_raw_counts_srp.csv")
            self.assertEqual((columns["ACCY"]["min"], columns["ACCZ"]["max"]), (-32764, 32764))

        def test_step_counter_ends_where_it_is_known_to(self):
            _, columns = self.columns_of("phone_step_counters_oxford.csv")
            self.assertEqual((columns["STEPS"]["max"], columns["STEPS"]["last"]), (344, 344))


if __name__ == "__main__":
    main()

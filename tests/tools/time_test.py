"""Looks at the time of sensor files with the verb time, as a user does."""

import json
import math
import os
import random
import struct

import jsonschema

import real_data
from sample_files import (CALIB, DATA, GAIN, IMU, IMU_ROWS, binary_calib, binary_file,
                          binary_header, opening, pack_rows, text_file)
from tool_test import ROOT, ToolTest, main

TIME = [("TIME", "double")]
COUNT = [("COUNT", "uint16")]
NONE = {"count": 0, "first_row": None}


def steady(count, period=0.005):
    return [(i * period,) for i in range(count)]


class TimeTest(ToolTest):
    def json_of(self, *arguments, code=0, stderr=""):
        schema = json.loads((ROOT / "docs/schemas/sensorfile-time-1.schema.json").read_text())
        found = json.loads(self.output_of("time", "--json", *arguments, code=code, stderr=stderr))
        jsonschema.validate(found, schema)
        self.assertEqual(list(found)[0], "schema")
        return found

    def stamps_of(self, rows, *arguments, columns=None, **options):
        self.write("a.bin", binary_file(columns or TIME, rows, **options))
        return self.json_of("a.bin", *arguments)["time"]

    def counter_of(self, numbers, kind="uint16"):
        self.write("a.bin", binary_file([("COUNT", kind)], [(one,) for one in numbers]))
        counter, = self.json_of("a.bin")["counters"]
        return counter


class Report(TimeTest):
    def test_steady_recording_of_every_kind(self):
        for content in [binary_file(), binary_file(order="<"), text_file(),
                        binary_file(calib=[GAIN]), binary_file(version=0x0100)]:
            self.write("a", content)
            found = self.json_of("a")
            self.assertEqual((found["rows"], found["nominal_hz"], found["remarks"]),
                             (10, 200.0, []))
            self.assertEqual([one["column"] for one in found["counters"]], ["COUNT"])
            stamps = found["time"]
            self.assertEqual((stamps["column"], stamps["unit"], stamps["unit_guessed"]),
                             ("TIME", "s", True))
            self.assertAlmostEqual(stamps["rate_hz"], 200.0)
            self.assertAlmostEqual(stamps["drift_ppm"], 0.0, 6)
            self.assertAlmostEqual(stamps["steps"]["p50_s"], 0.005)
            self.assertEqual(stamps["steps"]["count"], 9)

    def test_text_form(self):
        rows = [(i, -i, 0, 0.005 * i + (0.015 if i > 6 else 0)) for i in range(10)]
        rows = [(n if n < 7 else n + 3, *rest) for n, *rest in rows]
        self.write("a.bin", binary_file(rows=rows))
        self.assertEqual(self.output_of("time", "a.bin"), """a.bin
  rows         10
  nominal      200 Hz
  time         TIME in s (guessed), from 0 s to 0.06 s
  measured     150 Hz, 200 Hz by the median step
  drift        +0.0 ppm against nominal, by least squares over COUNT
  steps        min 5 ms, 1 % 5 ms, 5 % 5 ms, median 5 ms, 95 % 14 ms, 99 % 18.8 ms, max 20 ms
  jitter       13.8 ms from the median to the 1 % or 99 % step, standard deviation 5 ms
  gaps         1 longer than 7.5 ms (1.5 medians), about 3 row(s) missing
               longest 20 ms before row 7, at 0.03 s
  repeated     none
  backward     none
  counter      COUNT: 3 row(s) lost (23.1 %) in 1 place(s), first before row 7, 0 wrap(s)
  verdict      3 lost by COUNT, 1 gap(s)
""")

    def test_steady_recording_is_told_to_be(self):
        self.write("a.bin", binary_file(TIME, steady(100)))
        self.assertIn("\n  verdict      steady\n", self.output_of("time", "a.bin"))

    def test_percentiles_are_near_the_exact_ones(self):
        numbers = random.Random(20170523)
        stamps = [0.0]
        for _ in range(5000):
            stamps.append(stamps[-1] + max(0.0, numbers.gauss(0.005, 0.001)))
        found = self.stamps_of([(one,) for one in stamps])
        steps = sorted(b - a for a, b in zip(stamps, stamps[1:]))
        for key, share in [("min_s", 0), ("p1_s", 0.01), ("p5_s", 0.05), ("p50_s", 0.5),
                           ("p95_s", 0.95), ("p99_s", 0.99), ("max_s", 1)]:
            position = share * (len(steps) - 1)
            low = steps[int(position)]
            high = steps[min(int(position) + 1, len(steps) - 1)]
            exact = low + (position - int(position)) * (high - low)
            self.assertLessEqual(abs(found["steps"][key] - exact), 1e-6 * exact, key)
        mean = sum(steps) / len(steps)
        deviation = math.sqrt(sum((one - mean) ** 2 for one in steps) / (len(steps) - 1))
        self.assertAlmostEqual(found["steps"]["deviation_s"], deviation, 12)
        middle = found["steps"]["p50_s"]
        self.assertEqual(found["jitter_s"], max(found["steps"]["p99_s"] - middle,
                                                middle - found["steps"]["p1_s"]))

    def test_gaps_are_counted_and_the_first_ones_listed(self):
        rows = steady(200)
        for i in range(20):
            rows = rows[:8 * i + 5] + [(t + 0.01 * (1 + i % 2),) for t, in rows[8 * i + 5:]]
        found = self.stamps_of(rows)["gaps"]
        self.assertEqual((found["count"], found["factor"], found["missing_rows"]), (20, 1.5, 60.0))
        self.assertEqual([one["row"] for one in found["first"]], [8 * i + 5 for i in range(10)])
        self.assertEqual(found["longest"]["row"] % 16, 13)
        self.assertAlmostEqual(found["longest"]["length_s"], 0.025)
        self.assertAlmostEqual(found["first"][1]["at_s"], rows[12][0])
        self.assertIn("and 15 more\n", self.output_of("time", "a.bin"))
        found = self.stamps_of(rows, "--gap-factor", "4")["gaps"]
        self.assertEqual(found["count"], 10)

    def test_step_of_the_threshold_is_no_gap(self):
        found = self.stamps_of([(0.0,), (1.0,), (2.0,), (4.0,), (5.0,)], "--gap-factor", "2")
        self.assertEqual(found["gaps"]["count"], 0)
        found = self.stamps_of([(0.0,), (1.0,), (2.0,), (3.0,), (5.0,), (7.25,)], "--gap-factor",
                               "2")
        self.assertEqual([one["row"] for one in found["gaps"]["first"]], [5])

    def test_repeated_and_backward_stamps(self):
        found = self.stamps_of([(0.0,), (0.005,), (0.005,), (0.010,), (0.0075,), (0.015,),
                                (0.0125,), (0.0125,)])
        self.assertEqual(found["repeated"], {"count": 2, "first_row": 2})
        self.assertEqual((found["backward"]["count"], found["backward"]["first_row"]), (2, 4))
        self.assertAlmostEqual(found["backward"]["largest_s"], 0.0025)
        self.assertAlmostEqual(found["steps"]["min_s"], -0.0025)

    def test_stamps_that_are_no_numbers_make_no_steps(self):
        found = self.stamps_of([(math.nan,), (0.0,), (0.005,), (math.inf,), (0.015,), (0.020,)])
        self.assertEqual(found["not_finite"], {"count": 2, "first_row": 0})
        self.assertEqual(found["steps"]["count"], 2)
        self.assertAlmostEqual(found["rate_hz"], 200.0)
        self.assertAlmostEqual(found["steps"]["max_s"], 0.005)
        found = self.stamps_of([(math.nan,), (math.nan,)])
        self.assertEqual((found["rate_hz"], found["drift_ppm"], found["steps"]["count"]),
                         (None, None, 0))
        found = self.stamps_of([(-1.7e308,), (1.7e308,), (-1.7e308,)])
        self.assertEqual(found["steps"]["count"], 0)

    def test_nanoseconds_of_64_bits_are_exact(self):
        start = 1737839597123456789
        rows = [(start + 10_000_000 * i + (1 if i > 5 else 0),) for i in range(10)]
        for kind in ["int64", "uint64"]:
            found = self.stamps_of(rows, columns=[("timestamp_ns", kind)], frequency=100.0)
            self.assertEqual((found["unit"], found["unit_guessed"]), ("ns", False))
            self.assertEqual(found["steps"]["p50_s"], 0.01)
            self.assertAlmostEqual(found["steps"]["max_s"], 0.010000001, 15)
        last = 2**64 - 1
        found = self.stamps_of([(last - 2,), (last - 1,), (last,)],
                               columns=[("timestamp_ns", "uint64")])
        self.assertEqual((found["steps"]["min_s"], found["steps"]["max_s"]), (1e-9, 1e-9))

    def test_drift_is_by_least_squares(self):
        found = self.stamps_of(steady(1000, 0.005 / 1.0001))
        self.assertAlmostEqual(found["drift_ppm"], 100.0, 5)
        # The last stamp alone is late: the ends would tell 2000 ppm.
        rows = steady(1001)
        rows[-1] = (rows[-1][0] * 1.002,)
        found = self.stamps_of(rows)
        self.assertLess(abs(found["drift_ppm"]), 15)
        self.assertLess(found["rate_hz"], 199.7)

    def test_nominal_rate_may_be_told(self):
        found = self.stamps_of(steady(100), "--nominal", "100")
        self.assertAlmostEqual(found["drift_ppm"], 1e6, 3)

    def test_lost_rows_do_not_count_as_drift_where_a_counter_tells_of_them(self):
        rows = [(i, 0.005 * i) for i in range(1000) if i % 10 != 3]
        self.write("a.bin", binary_file(COUNT + TIME, rows))
        found = self.json_of("a.bin")["time"]
        self.assertEqual(found["drift_by"], "COUNT")
        self.assertAlmostEqual(found["drift_ppm"], 0.0, 5)
        found = self.stamps_of([(time,) for _, time in rows])
        self.assertEqual(found["drift_by"], None)
        self.assertLess(found["drift_ppm"], -50000)

    def test_counter_that_tells_nonsense_is_not_trusted_with_the_drift(self):
        for numbers in [[7] * 100, [1, 5, 3] * 33 + [9]]:
            rows = [(number, 0.005 * i) for i, number in enumerate(numbers)]
            self.write("a.bin", binary_file(COUNT + TIME, rows))
            found = self.json_of("a.bin")["time"]
            self.assertEqual(found["drift_by"], None)
            self.assertAlmostEqual(found["drift_ppm"], 0.0, 5)


class Counters(TimeTest):
    def test_wraps_are_no_losses(self):
        found = self.counter_of([*range(65530, 65536), *range(10)])
        self.assertEqual(found, {"column": "COUNT", "lost": 0, "loss_ratio": 0.0, "jumps": NONE,
                                 "wraps": 1, "backward": NONE, "repeated": NONE})
        for kind, last in [("uint8", 255), ("uint32", 2**32 - 1), ("uint64", 2**64 - 1)]:
            found = self.counter_of([last - 1, last, 0, 1], kind)
            self.assertEqual((found["wraps"], found["lost"]), (1, 0), kind)
        found = self.counter_of([126, 127, -128, -127], "int8")
        self.assertEqual((found["lost"], found["backward"]["count"]), (0, 0))

    def test_losses_are_counted_across_wraps(self):
        found = self.counter_of([65533, 65534, 2, 3, 10])
        self.assertEqual((found["lost"], found["jumps"], found["wraps"]),
                         (9, {"count": 2, "first_row": 2}, 1))
        self.assertAlmostEqual(found["loss_ratio"], 9 / 14)

    def test_repeated_and_backward_numbers(self):
        found = self.counter_of([5, 6, 6, 7, 3, 4, 4])
        self.assertEqual(found["repeated"], {"count": 2, "first_row": 2})
        self.assertEqual(found["backward"], {"count": 1, "first_row": 4})
        self.assertEqual(found["lost"], 0)

    def test_recording_without_stamps(self):
        self.write("a.bin", binary_file(COUNT, [(i,) for i in range(5)]))
        self.assertEqual(self.json_of("a.bin")["time"], None)
        self.assertEqual(self.output_of("time", "a.bin"), """a.bin
  rows         5
  nominal      200 Hz
  counter      COUNT: no row lost, 0 wrap(s)
  verdict      steady
""")

    def test_counter_may_be_named(self):
        self.write("a.bin", binary_file([("N", "uint8"), ("COUNT", "uint8")],
                                        [(i, 2 * i) for i in range(5)]))
        counter, = self.json_of("a.bin", "--counter", "N")["counters"]
        self.assertEqual((counter["column"], counter["lost"]), ("N", 0))


class Limits(TimeTest):
    def setUp(self):
        super().setUp()
        rows = [(i if i < 50 else i + 2, 0.005 * i + (0.01 if i >= 50 else 0)) for i in range(100)]
        rows[20] = (20, rows[19][1])
        rows[30] = (30, rows[29][1] - 0.001)
        self.write("a.bin", binary_file(COUNT + TIME, rows))

    def test_kept_limits_end_with_0(self):
        self.output_of("time", "a.bin", "--max-loss", "2%", "--max-jitter", "20ms", "--max-gap",
                       "16ms", "--max-drift", "1%", "--max-backward", "1", "--max-repeated", "1")

    def test_each_violation_is_named_with_its_value(self):
        for option, limit, found in [
                ("--max-loss", "0.1%", "2 lost by COUNT, 1.96 %"),
                ("--max-jitter", "1ms", "the jitter is 6.07 ms"),
                ("--max-gap", "14 ms", "the longest step is 15 ms, to row 50"),
                ("--max-drift", "1ppm", "the drift is +39.8 ppm"),
                ("--max-backward", "0", "1 backward stamp(s) in TIME, first in row 30"),
                ("--max-repeated", "0", "1 repeated stamp(s) in TIME, first in row 20")]:
            with self.subTest(option):
                result = self.tool("time", "a.bin", option, limit)
                self.assertEqual(result.returncode, 3)
                self.assertIn("; beyond 1 limit(s)\n", result.stdout)
                expected = f"sensorfile: a.bin: {option} {limit}: {found}\n"
                if option in ["--max-drift", "--max-jitter"]:
                    self.assertRegex(result.stderr, expected.split(" is ")[0] + " is [^\n]+\n")
                else:
                    self.assertEqual(result.stderr, expected)
                told = json.loads(self.tool("time", "a.bin", option, limit, "--json").stdout)
                self.assertEqual([(one["limit"], one["allowed"]) for one in told["violations"]],
                                 [(option, limit)])

    def test_counters_have_limits_too(self):
        self.write("b.bin", binary_file(COUNT, [(1,), (2,), (2,), (1,)]))
        self.output_of("time", "b.bin", "--max-backward", "0", "--max-repeated", "0", code=3,
                       stderr="sensorfile: b.bin: --max-backward 0: 1 backward step(s) in COUNT, "
                              "first in row 3\n"
                              "sensorfile: b.bin: --max-repeated 0: 1 repeated number(s) in "
                              "COUNT, first in row 2\n")

    def test_limit_without_its_column_is_wrong_usage(self):
        self.write("t.bin", binary_file(TIME, steady(5)))
        self.write("c.bin", binary_file(COUNT, [(1,), (2,)]))
        self.assertEqual(self.output_of(
            "time", "t.bin", "--max-loss", "1%", code=2,
            stderr="sensorfile: --max-loss: no column says that it counts; name one with "
                   "--counter\n"), "")
        for option, limit in [("--max-jitter", "1ms"), ("--max-gap", "1ms"),
                              ("--max-drift", "1ppm")]:
            self.assertEqual(self.output_of(
                "time", "c.bin", option, limit, code=2,
                stderr=f"sensorfile: {option}: no column says that it holds time; name one with "
                       "--time\n"), "")

    def test_too_few_rows_keep_no_limit(self):
        for rows in [[], steady(1)]:
            self.write("t.bin", binary_file(TIME, rows))
            self.output_of("time", "t.bin")
            self.output_of("time", "t.bin", "--max-gap", "1s", code=3,
                           stderr=f"sensorfile: t.bin: rows 2: {len(rows)} row(s), too few to "
                                  "judge\n")
        self.write("t.bin", binary_file(TIME, [(math.nan,)] * 3))
        self.output_of("time", "t.bin", "--max-gap", "1s", code=3,
                       stderr="sensorfile: t.bin: steps 1: no stamps that follow each other in "
                              "TIME\n")

    def test_drift_that_cannot_be_told_keeps_no_limit(self):
        self.write("t.bin", binary_file(TIME, [(1.0,)] * 5))
        self.output_of("time", "t.bin", "--max-drift", "1ppm", code=3,
                       stderr="sensorfile: t.bin: --max-drift 1ppm: the drift cannot be told\n")


class Trouble(TimeTest):
    def test_wrong_usage_ends_with_2(self):
        self.write("a.bin", binary_file())
        for arguments in [[], ["a.bin", "a.bin"], ["a.bin", "--time", "GYRX"],
                          ["a.bin", "--time-unit", "h"], ["a.bin", "--counter", "TIME"],
                          ["a.bin", "--counter", "GYRX"], ["a.bin", "--gap-factor", "1"],
                          ["a.bin", "--gap-factor", "nan"], ["a.bin", "--nominal", "0"],
                          ["a.bin", "--max-loss", "1"], ["a.bin", "--max-gap", "50"],
                          ["a.bin", "--max-drift", "x"], ["a.bin", "--max-backward", "-1"],
                          ["a.bin", "--max-repeated", "0.5"], ["a.bin", "--max-jitter", "1h"],
                          ["a.bin", "--max-gap="], ["a.bin", "--max-gap", ""],
                          ["a.bin", "--time="], ["a.bin", "--counter", ""]]:
            with self.subTest(arguments):
                result = self.tool("time", *arguments)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertNotEqual(result.stderr, "")

    def test_recording_without_stamps_and_counters_tells_what_to_name(self):
        self.write("a.bin", binary_file([("X", "double"), ("Y", "uint16")], [(0.0, 1), (1.0, 2)]))
        self.assertEqual(self.output_of(
            "time", "a.bin", code=2,
            stderr="sensorfile: no column says that it holds time or counts rows: name one with "
                   "--time or --counter; there are: X, Y\n"), "")
        self.assertAlmostEqual(self.json_of("a.bin", "--time", "X", "--time-unit", "ms")["time"]
                               ["steps"]["p50_s"], 0.001)

    def test_files_that_cannot_be_read_are_named(self):
        self.write("empty", b"")
        self.write("noise", random.Random(1).randbytes(300))
        self.write("calib", binary_calib([GAIN]))
        for name in ["none", "empty", "noise", "calib", "."]:
            result = self.tool("time", name)
            self.assert_fails(result)
            self.assertIn(name, result.stderr)

    def test_cut_file_ends_with_3_and_tells_of_the_whole_rows(self):
        for name, content, rest in [("a.bin", binary_file(), b"\0\1\0"),
                                    ("a.txt", text_file(), b"1\t2")]:
            self.write(name, content + rest)
            found = self.json_of(name, code=3,
                                 stderr=f"sensorfile: {name}: 3 byte(s) from offset "
                                        f"{len(content)} on are no whole row (1 whole value(s))\n")
            self.assertEqual(found["rows"], 10)

    def test_recording_without_rows(self):
        for content in [binary_file(rows=[]), text_file(rows=[])]:
            self.write("a", content)
            self.assertIn("too few rows to tell", self.output_of("time", "a"))
            self.assertEqual(self.json_of("a")["rows"], 0)

    def test_standard_input(self):
        self.write("a.bin", binary_file())
        self.assertEqual(
            self.output_of("time", "-", text=False, input=binary_file(), stderr=b"").decode(),
            self.output_of("time", "a.bin").replace("a.bin", "standard input"))

    def test_locale_of_the_environment_does_not_matter(self):
        self.write("a.bin", binary_file())
        environment = {**os.environ, "LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8"}
        arguments = ["time", "a.bin", "--max-gap", "7.5ms"]
        self.assertEqual(self.output_of(*arguments, env=environment), self.output_of(*arguments))

    def test_legacy_calibration(self):
        values = struct.pack(">12d", *range(12))
        self.write("old.bin", binary_header(IMU) + opening(">", CALIB, 0x0101) +
                   struct.pack(">Q", 32 + len(values)) + bytes([1, 12, 16, 8, 0, 9]) +
                   struct.pack(">H", 2) + values + opening(">", DATA, 0x0100) +
                   pack_rows(IMU, IMU_ROWS))
        self.assertEqual(self.json_of("old.bin")["rows"], 10)

    def test_damaged_bytes_never_crash(self):
        numbers = random.Random(20170523)
        whole = [binary_file(), text_file(), binary_file(order="<")]
        for _ in range(150):
            content = bytearray(numbers.choice(whole))
            for _ in range(numbers.randint(1, 4)):
                content[numbers.randrange(len(content))] = numbers.randrange(256)
            self.write("a", content)
            result = self.tool("time", "--json", "a", text=False)
            self.assertIn(result.returncode, [0, 1, 2, 3], bytes(content))
            if result.returncode in [0, 3]:
                json.loads(result.stdout)
            else:
                self.assertRegex(result.stderr, rb"\Asensorfile: [^\n]+\n\Z")


# Without the folder there is nothing to look at.
if real_data.FOLDER:

    class RealData(TimeTest):
        """What is known of recordings that people made."""

        def stamps_of_real(self, name, *arguments):
            self.write("a.bin", real_data.sensor_file(name))
            return self.json_of("a.bin", "--gap-factor", "2", *arguments)["time"]

        def test_walk_repeats_rows_and_has_gaps(self):
            found = self.stamps_of_real("walk_6axis_xio.csv")
            self.assertEqual(found["repeated"], {"count": 252, "first_row": 1})
            self.assertEqual((found["backward"]["count"], found["gaps"]["count"]), (0, 174))
            self.assertEqual((found["gaps"]["longest"]["row"], found["unit"]), (21314, "s"))
            self.assertAlmostEqual(found["gaps"]["longest"]["length_s"], 0.01757, 5)
            self.assertAlmostEqual(found["steps"]["p50_s"], 0.002509, 6)

        def test_turns_lose_ten_samples(self):
            found = self.stamps_of_real("ahrs_9axis_xio.csv")
            self.assertEqual((found["gaps"]["count"], found["repeated"]["count"],
                              found["backward"]["count"]), (10, 0, 0))
            self.assertAlmostEqual(found["steps"]["p50_s"], 0.010079, 6)
            self.assertAlmostEqual(found["steps"]["min_s"], 0.00756, 5)
            self.assertAlmostEqual(found["steps"]["max_s"], 0.03024, 5)

        def test_phone_counts_nanoseconds(self):
            found = self.stamps_of_real("phone_accel_400hz_oxford.csv")
            self.assertEqual((found["unit"], found["gaps"]["count"]), ("ns", 2))
            self.assertEqual(found["gaps"]["longest"]["row"], 1)
            self.assertAlmostEqual(found["steps"]["p50_s"], 0.002468, 6)

        def test_step_counting_phone_pauses_twice(self):
            found = self.stamps_of_real("phone_step_counters_oxford.csv")
            self.assertEqual(found["repeated"], {"count": 2, "first_row": 714})
            self.assertEqual([one["row"] for one in found["gaps"]["first"]], [715, 6715])
            self.assertAlmostEqual(found["gaps"]["longest"]["length_s"], 0.2195, 4)

        def test_raw_counts_are_without_a_gap(self):
            self.write("a.bin", real_data.sensor_file("rocket_raw_counts_srp.csv"))
            found = self.json_of("a.bin", "--gap-factor", "2")
            self.assertEqual([(one["column"], one["lost"]) for one in found["counters"]],
                             [("SAMPLE", 0)])
            self.assertEqual(found["time"]["gaps"]["longest"]["row"], 7609)
            self.assertAlmostEqual(found["time"]["steps"]["min_s"], 0.0032, 4)

        def test_stamps_of_two_rates_go_backward(self):
            found = self.stamps_of_real("rocket_two_rate_ncsu.csv")
            self.assertEqual((found["backward"]["count"], found["backward"]["first_row"],
                              found["repeated"]["count"]), (1647, 40, 0))
            self.assertAlmostEqual(found["backward"]["largest_s"], 0.01402, 5)
            found = self.stamps_of_real("rocket_two_rate_ncsu.csv", "--time", "update_timestamp_ns")
            self.assertEqual(found["repeated"]["count"], 302)


if __name__ == "__main__":
    main()

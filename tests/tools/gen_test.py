"""Runs sensorfile gen and looks at what it made."""

import csv
import io
import json
import math
import resource

from tool_test import IS_SANITIZED, ToolTest, main

DATE = "2020-02-03T04:05:06Z"
FIXED = ("--creation-time", DATE)


class GenTest(ToolTest):
    def gen(self, *arguments):
        self.assertEqual(self.output_of("gen", *arguments), "")

    def info(self, name):
        return json.loads(self.output_of("info", "--json", name))

    def rows_of(self, name, *arguments):
        return [[float(field) for field in row] for row in csv.reader(
            io.StringIO(self.output_of("cat", "--no-header", name, *arguments)))]


class Gen(GenTest):
    AXES = [sensor + axis for sensor in ("ACC", "GYR", "MAG") for axis in "XYZ"]

    def test_ten_seconds_of_floats_unless_told(self):
        self.gen("a.bin")
        found = self.info("a.bin")
        self.assertEqual([found[key] for key in ("encoding", "rows", "trailing_bytes")],
                         ["binary", 2000, 0])
        self.assertEqual(found["header"]["frequency_hz"], 200)
        self.assertEqual([(one["name"], one["type"]) for one in found["columns"]],
                         [("COUNT", "uint16"), ("TIME", "double")] +
                         [(name, "float") for name in self.AXES])
        self.assertEqual(found["calibration"]["records"], [])

    def test_counts_have_wide_stamps_and_calibrate_to_the_same_motion(self):
        self.gen("a.bin", "--rows", "300")
        self.gen("b.bin", "--rows", "300", "--layout", "counts", *FIXED)
        found = self.info("b.bin")
        self.assertEqual([(one["name"], one["type"]) for one in found["columns"]],
                         [("COUNT", "uint16"), ("TIME_NS", "int64")] +
                         [(name, "int16") for name in self.AXES])
        stamps = [line.split(",")[1] for line in
                  self.output_of("cat", "--no-header", "b.bin").splitlines()]
        self.assertEqual(stamps, [str(1580702706000000000 + 5000000 * i) for i in range(300)])
        # Noise is the same, so that counts are at most one off.
        for floats, counts in zip(self.rows_of("a.bin"), self.rows_of("b.bin", "--calibrated")):
            for one, other, count in zip(floats[2:], counts[2:], [1 / 208] * 3 + [1 / 937] * 3 +
                                         [1 / 19] * 3):
                self.assertAlmostEqual(one, other, delta=count)

    def test_kivra2_layout(self):
        self.gen("a.bin", "--layout", "kivra2")
        found = self.info("a.bin")
        self.assertEqual([(one["name"], one["type"]) for one in found["columns"]],
                         [("COUNT", "uint16")] +
                         [(sensor + axis, "int16") for sensor in ("ACC", "MAG", "GYR")
                          for axis in "XYZ"] + [("INFO", "uint8")])
        self.assertEqual([(one["name"], one["rows"], one["cols"])
                          for one in found["calibration"]["records"]],
                         [("AccGain", 3, 3), ("AccOffset", 1, 3), ("MagGain", 3, 3),
                          ("MagOffset", 1, 3), ("GyrGain", 3, 3), ("GyrOffset", 1, 3)])

    def test_motion_is_one_of_the_real_world(self):
        self.gen("a.bin", "--duration", "60")
        rows = self.rows_of("a.bin")
        for row in rows:
            self.assertAlmostEqual(math.hypot(*row[2:5]), 9.80665, delta=0.15)
            self.assertAlmostEqual(math.hypot(*row[8:11]), math.hypot(20, 44), delta=1)
        self.assertGreater(max(abs(row[5]) for row in rows), 0.3)

    def test_length_by_rows_or_by_duration(self):
        for arguments, rows in [(("--rows", "7"), 7), (("--rows", "0"), 0),
                                (("--duration", "2.5", "--frequency", "10"), 25),
                                (("--duration", "0"), 0),
                                (("--duration", "1", "--frequency", "33.4"), 33)]:
            with self.subTest(arguments):
                self.gen("a.bin", *arguments, "--force")
                self.assertEqual(self.info("a.bin")["rows"], rows)

    def test_time_follows_the_frequency(self):
        self.gen("a.bin", "--rows", "4", "--frequency", "3")
        self.assertEqual([row[1] for row in self.rows_of("a.bin")],
                         [0, 0.333333333, 0.666666666, 1])
        self.assertEqual(self.info("a.bin")["header"]["frequency_hz"], 3)

    def test_text_holds_the_same_values_as_binary(self):
        for layout in ("imu", "counts"):
            self.gen("a.bin", "--layout", layout, *FIXED, "--force")
            self.gen("a.txt", "--layout", layout, *FIXED, "--force")
            self.assertTrue(self.read("a.txt").startswith(b"Header id: \t"))
            self.assertEqual(self.output_of("cat", "a.txt"), self.output_of("cat", "a.bin"))

    def test_encoding_is_the_name_s_unless_told(self):
        for name, arguments, encoding in [("a.txt", (), "text"), ("b", (), "binary"),
                                          ("c.txt", ("--to", "binary"), "binary"),
                                          ("d.bin", ("--to", "text"), "text")]:
            self.gen(name, "--rows", "3", *arguments)
            self.assertEqual(self.info(name)["encoding"], encoding)

    def test_lost_frames_leave_gaps(self):
        for share in ("0.05", "5%"):
            self.gen("a.bin", "--duration", "100", "--lose", share, "--force")
            rows = self.rows_of("a.bin")
            self.assertAlmostEqual(len(rows) / 20000, 0.95, delta=0.01)
            for row in rows:
                self.assertAlmostEqual(row[1], row[0] / 200, delta=1e-6)
        self.gen("b.bin", "--rows", "1000", "--lose", "0.5")
        self.assertEqual(self.info("b.bin")["rows"], 1000)

    def test_jitter_moves_stamps_alone(self):
        self.gen("a.bin")
        self.gen("b.bin", "--jitter", "0.002")
        late = [jittered[1] - plain[1] for plain, jittered in
                zip(self.rows_of("a.bin"), self.rows_of("b.bin"))]
        self.assertLessEqual(max(map(abs, late)), 0.002 + 1e-9)
        self.assertGreater(max(late), 0.0019)
        self.assertLess(min(late), -0.0019)

    def test_same_options_give_the_same_bytes(self):
        for arguments in [(), ("--layout", "kivra2", "--lose", "1%"), ("--to", "text")]:
            self.gen("a", *FIXED, *arguments, "--force")
            self.gen("b", *FIXED, *arguments, "--force")
            self.assertEqual(self.read("a"), self.read("b"))
            self.gen("b", *FIXED, *arguments, "--force", "--seed", "2")
            self.assertNotEqual(self.read("a"), self.read("b"))

    def test_date_is_the_one_given_or_the_present_one(self):
        self.gen("a.bin", "--creation-time", "2019-12-31 23:59:58")
        found = self.info("a.bin")
        self.assertEqual((found["header"]["created"], found["calibration"]["created"]),
                         ("2019-12-31T23:59:58Z",) * 2)
        self.gen("b.bin")
        self.assertRegex(self.info("b.bin")["header"]["created"], r"\A20[2-9]\d-")

    def test_standard_output_gets_the_same_bytes(self):
        self.gen("a.bin", *FIXED, "--rows", "50")
        result = self.tool("gen", "-", *FIXED, "--rows", "50", text=False)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        self.assertEqual(result.stdout, self.read("a.bin"))

    def test_nothing_is_overwritten_unless_forced(self):
        self.write("a.bin", b"mine")
        self.assert_fails(self.tool("gen", "a.bin"))
        self.assertEqual(self.read("a.bin"), b"mine")
        self.gen("a.bin", "--force")
        self.assertNotEqual(self.read("a.bin"), b"mine")

    def test_wrong_usage(self):
        for arguments in [(), ("a.bin", "b.bin"), ("a.bin", "--rows", "-1"),
                          ("a.bin", "--rows", "1", "--duration", "1"), ("a.bin", "--duration", "-1"),
                          ("a.bin", "--duration", "nan"), ("a.bin", "--duration", "1e300"),
                          ("a.bin", "--frequency", "0"), ("a.bin", "--frequency", "-5"),
                          ("a.bin", "--frequency", "inf"), ("a.bin", "--lose", "1"),
                          ("a.bin", "--lose", "100%"), ("a.bin", "--lose", "-1%"),
                          ("a.bin", "--jitter", "2"), ("a.bin", "--jitter", "-1"),
                          ("a.bin", "--layout", "other"), ("a.bin", "--to", "csv"),
                          ("a.bin", "--seed", "x"), ("a.bin", "--creation-time", "yesterday"),
                          ("a.bin", "--creation-time", "1999-01-01T00:00:00Z"),
                          ("a.txt", "--layout", "kivra2"),
                          ("a.bin", "--layout", "kivra2", "--jitter", "0.1")]:
            with self.subTest(arguments):
                result = self.tool("gen", *arguments)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertNotEqual(result.stderr, "")
        self.assert_files()

    def test_full_disk_leaves_nothing(self):
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (100000, 100000))
        result = self.tool("gen", "a.bin", "--rows", "100000", preexec_fn=limit,
                           restore_signals=False)
        self.assert_fails(result)
        self.assertIn("a.bin: Cannot write file", result.stderr)
        self.assert_files()

    def test_missing_folder_is_told(self):
        result = self.tool("gen", "none/a.bin")
        self.assert_fails(result)
        self.assertIn("none/a.bin: the folder 'none' is not there", result.stderr)

    def test_memory_does_not_grow_with_the_rows(self):
        size = resource.RLIM_INFINITY if IS_SANITIZED else 256 << 20
        limit = lambda: resource.setrlimit(resource.RLIMIT_AS, (size, size))
        rows = 400000 if IS_SANITIZED else 8000000
        result = self.tool("gen", "a.bin", "--rows", str(rows), preexec_fn=limit)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual((self.folder / "a.bin").stat().st_size, 470 + 46 * rows)


if __name__ == "__main__":
    main()

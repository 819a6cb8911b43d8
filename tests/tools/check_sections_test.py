"""Shows each defect of a file's sections that sensorfile check tells."""

import math
import struct

from check_case import CheckTest, patched
from sample_files import (CALIB, CALIBRATED, DATA, GAIN, RANGE, binary_calib, binary_file, date,
                          kivra2_calib, opening, text_calib, text_file)
from tool_test import main

KIVRA2 = ([("COUNT", "uint16")] + [(f"{sensor}{axis}", "int16") for sensor in ("ACC", "MAG", "GYR")
                                   for axis in "XYZ"] + [("INFO", "uint8")])


class Sections(CheckTest):
    def test_cut_section(self):
        content = binary_file(rows=[], calib=[GAIN])
        for size in range(16, len(content)):
            report = self.report(content[:size])
            self.assertEqual([one["code"] for one in report["defects"]], ["cut-section"], size)
            self.assertEqual(report["rows"], 0)
        content = text_file(rows=[], calib=[GAIN])
        for size in range(content.index(b"23/05"), len(content) - 3):
            self.assertNotEqual(self.codes(content[:size]), [], size)

    def test_bad_header(self):
        self.assert_one(patched(binary_file(), 40, b"\3\0"),
                        ("bad-header", 42, None, None), "impossible size")
        self.assert_one(patched(binary_file(), 41, b"\x63"), ("bad-header", 42, None, None), "type")
        content = text_file()
        at = content.index(b"uint16")
        self.assertEqual(self.codes(patched(content, at, b"uintX6")), ["bad-header"])

    def test_impossible_date(self):
        report = self.report(patched(binary_file(), 24, bytes([31, 2])))
        self.assertEqual([(one["code"], one["offset"]) for one in report["defects"]],
                         [("impossible-date", 24)])
        self.assertEqual(report["rows"], 10)
        self.assertIn("31/2/2017", report["defects"][0]["message"])
        for wrong in [b"23/15/2017", b"xx/05/2017", b"23/05/20x7"]:
            content = text_file().replace(b"23/05/2017", wrong)
            self.assert_one(content, ("impossible-date", content.index(wrong), None, None))
        content = text_file(calib=[GAIN]).replace(b"01/12/2016", b"99/12/2016")
        self.assert_one(content, ("impossible-date", content.index(b"99/12"), None, None),
                        "calibration")
        content = binary_file(calib=[GAIN], order="<")
        at = content.index(date("<", CALIBRATED))
        self.assert_one(patched(content, at, b"\x63"), ("impossible-date", at, None, None))

    def test_bad_calibration_does_not_hide_the_rows(self):
        for make in [lambda: binary_file(calib=[GAIN, RANGE]),
                     lambda: binary_file(calib=[GAIN, RANGE], order="<")]:
            content = make()
            at = content.index(b"Gain") + 32
            report = self.report(patched(content, at, b"\x55"))
            self.assertEqual([one["code"] for one in report["defects"]], ["bad-calibration"])
            self.assertEqual(report["rows"], 10)
            self.assertIn("data section is at offset", report["defects"][0]["message"])
        report = self.report(text_file(calib=[GAIN]).replace(b"0.998", b"0,998"))
        self.assertEqual([one["code"] for one in report["defects"]], ["bad-calibration"])
        self.assertEqual(report["rows"], 10)

    def test_a_wrong_count_of_records_does_not_hide_the_rows(self):
        for count in [0, 1, 3, 2**60]:
            content = binary_file(calib=[GAIN, RANGE])
            at = content.index(b"Gain") - 8
            report = self.report(patched(content, at, struct.pack(">Q", count)))
            self.assertEqual([one["code"] for one in report["defects"]], ["bad-calibration"])
            self.assertEqual(report["rows"], 10)

    def test_no_data_section(self):
        content = binary_file(calib=[GAIN])
        at = content.index(opening(">", DATA, 0x0100))
        self.assertEqual(self.codes(patched(content, at, b"\0")), ["no-data-section"])
        content = text_file().replace(b"80350100", b"80990100")
        self.assertEqual(self.codes(content), ["no-data-section"])

    def test_header_size(self):
        self.assert_one(patched(binary_file(), 23, b"\1"), ("header-size", 16, None, None), "176")
        self.assert_one(patched(binary_file(order="<"), 16, b"\1"),
                        ("header-size", 16, None, None), "given as 1 ")

    def test_column_size(self):
        self.assert_one(patched(binary_file(), 40, b"\7"),
                        ("column-size", 40, None, "COUNT"), "given as 7")
        content = text_file().replace(b"ACCX\tint16\t(2) ", b"ACCX\tint16\t(4) ")
        self.assert_one(content, ("column-size", content.index(b"(4)"), None, "ACCX"))

    def test_calibration_size(self):
        content = binary_file(calib=[GAIN, RANGE])
        at = content.index(opening(">", CALIB, 0x0200)) + 16
        self.assert_one(patched(content, at, struct.pack(">Q", 999)),
                        ("calibration-size", at, None, None), "999")
        # Who counts every byte is right, too.
        whole = content.index(opening(">", DATA, 0x0100)) - at + 16
        self.assert_clean(patched(content, at, struct.pack(">Q", whole)))

    def test_junk_behind_calibration(self):
        for content in [binary_calib([GAIN]), text_calib([GAIN]).encode()]:
            self.assert_one(content + b"junk",
                            ("junk-behind-calibration", len(content), None, None), "4 byte(s)")
        self.assert_one(kivra2_calib() + b"\0",
                        ("junk-behind-calibration", 296, None, None), "", "--kind", "kivra2")

    def test_section_behind_calibration(self):
        content = binary_calib([GAIN])
        self.assert_one(content + opening(">", DATA, 0x0100),
                        ("section-behind-calibration", len(content), None, None))

    def test_unknown_version(self):
        self.assert_one(patched(binary_file(), 14, b"\1\2"),
                        ("unknown-version", 0, None, None), "0x0102")
        content = binary_file()
        at = content.index(opening(">", DATA, 0x0100))
        self.assert_one(content.replace(opening(">", DATA, 0x0100), opening(">", DATA, 0x0300)),
                        ("unknown-version", at, None, None), "data")
        content = text_file().replace(b"80360200", b"80360999")
        self.assertEqual(self.codes(content), ["unknown-version"])

    def test_zero_date(self):
        self.assert_one(patched(binary_file(), 24, b"\0"), ("zero-date", 24, None, None), code=0)

    def test_frequency(self):
        for frequency in [0.0, -1.0, math.nan, math.inf]:
            self.assertEqual(self.codes(binary_file(frequency=frequency)), ["frequency"])
        self.assertEqual(self.codes(text_file().replace(b"200 (Hz)", b"-3 (Hz)")), ["frequency"])

    def test_frequency_unset(self):
        rows = [(i,) + (5,) * 9 + (0,) for i in range(5)]
        self.assertEqual(self.codes(binary_file(KIVRA2, rows, frequency=0.0), code=0),
                         ["frequency-unset"])

    def test_names(self):
        def of(*names):
            return binary_file([(name, "uint8") for name in names], [])
        self.assert_one(of("A", ""), ("name-empty", 76, None, None))
        self.assert_one(of("A", "B", "A"), ("name-repeated", 110, None, "A"))
        self.assert_one(of("A\tB"), ("name-characters", 42, None, "A\tB"))
        self.assert_one(of("A" * 32), ("name-full", 42, None, "A" * 32), code=0)
        self.assert_one(of(b"A\0B"), ("name-junk", 44, None, "A"), code=0)
        content = text_file([("A", "uint8"), ("A", "uint8")], [])
        self.assert_one(content, ("name-repeated", content.index(b"A\tuint8\t(1) \t\n"), None, "A"))

    def test_names_of_records(self):
        for name, code in [("My Gain", "name-blank"), ("", "name-empty")]:
            content = binary_calib([(name, "double", [[1.0]])])
            self.assertEqual(self.codes(content, code=0 if name else 3), [code])
        self.assertEqual(self.codes(binary_calib([GAIN, GAIN])), ["name-repeated"])

    def test_calibration_value(self):
        content = binary_file(calib=[RANGE, ("G", "double", [[math.nan, 1.0]])])
        self.assert_one(content, ("calibration-value", content.index(b"G\0"), None, None), "'G'")
        content = text_file(calib=[("G", "double", [[1.0, math.inf]])])
        self.assert_one(content, ("calibration-value", content.index(b"G\tdouble"), None, None))

    def test_singular_gain(self):
        for matrix in [[[1, 2], [2, 4]], [[0, 0], [0, 0]]]:
            self.assertEqual(self.codes(binary_file(calib=[("AccGain", "double", matrix)])),
                             ["singular-gain"])
        self.assert_clean(binary_file(calib=[("Offset", "double", [[0, 0], [0, 0]])]))
        self.assertEqual(self.codes(patched(kivra2_calib(), 8, bytes(72))), ["singular-gain"])

    def test_kivra2_calibration(self):
        self.assertEqual(self.codes(b"\x63" + kivra2_calib()[1:]), ["impossible-date"])
        self.assertEqual(self.codes(kivra2_calib()[:200], "--kind", "kivra2"), ["cut-section"])
        self.assertEqual(self.codes(patched(kivra2_calib(), 80, struct.pack(">d", math.nan))),
                         ["calibration-value"])


if __name__ == "__main__":
    main()

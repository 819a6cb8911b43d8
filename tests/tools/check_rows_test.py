"""Shows each defect of a file's rows that sensorfile check tells."""

import math
import random
import struct

from check_case import CheckTest, row_text
from sample_files import IMU, IMU_ROWS, TYPES, binary_file, pack_rows, text_file
from tool_test import main


class Form(CheckTest):
    """The form of rows."""

    def test_truncated_row(self):
        for order in "><":
            content = binary_file(order=order)
            for rest in range(1, 14):
                self.assert_one(content + b"\0\12" + b"\1" * (rest - 2) if rest > 1 else
                                content + b"\1", ("truncated-row", len(content), 10, None),
                                f"{rest} of 14 bytes, {min(rest // 2, 3)} whole value(s)")
        content = text_file()
        row = row_text(10, 2, 3, 2.25)[:-1]
        for rest in range(1, len(row)):
            self.assert_one(content + row[:rest], ("truncated-row", len(content), 10, None),
                            f"{row[:rest].count(9)} whole field(s) in place of 4")

    def test_torn_row_and_nul_bytes_in_text(self):
        content = text_file()
        tail = row_text(11, 2, 3, 1.5) + row_text(12, 2, 3, 1.6)
        self.assertEqual(
            self.found(content + b"10\t2" + bytes(700) + tail),
            [("torn-row", len(content), 10, None), ("nul-bytes", len(content) + 4, None, None),
             ("torn-row", len(content) + 704, 11, None)])
        self.assert_one(content + bytes(4096), ("nul-bytes", len(content), None, None),
                        "4096 NUL bytes, up to the end")
        self.assertEqual(self.codes(content + b"10\t2" + bytes(3)), ["torn-row", "nul-bytes"])

    def test_zero_filled(self):
        content = binary_file()
        for zeros in [14, 28, 14 * 50, 14 * 100_000]:
            self.assert_one(content + bytes(zeros), ("zero-filled", len(content), 10, None),
                            f"{zeros // 14} row(s), {zeros} bytes")
        self.assertEqual(self.codes(content + bytes(700 + 3)), ["zero-filled", "truncated-row"])
        self.assertEqual(self.found(content + bytes(700) + pack_rows(IMU, [(60, 1, 1, 5.0)])),
                         [("zero-filled", len(content), 10, None),
                          ("counter-jump", len(content) + 700, 60, "COUNT")])

    def test_the_row_at_which_a_counter_wraps_may_be_zero(self):
        columns = [("COUNT", "uint16"), ("X", "int16")]
        content = binary_file(columns, [(65534, 1), (65535, 1)])
        self.assert_clean(content + bytes(4))
        self.assert_one(content + bytes(8), ("zero-filled", len(content) + 4, 3, None))

    def test_zero_rows(self):
        columns = [("X", "int16"), ("Y", "int16")]
        content = binary_file(columns, [(1, 2)] * 5)
        self.assert_clean(content + bytes(4 * 127))
        for rows in [128, 70_000, 200_000]:
            self.assert_one(content + bytes(4 * rows), ("zero-rows", len(content), 5, None),
                            f"{rows} row(s)")
            self.assert_one(content + bytes(4 * rows) + b"\1\2\3\4",
                            ("zero-rows", len(content), 5, None), f"{rows} row(s)")
        self.assert_one(binary_file(columns, [(0, 0)] * 200),
                        ("zero-rows", len(binary_file(columns, [])), 0, None), "all 200 row(s)")

    def test_zeros_are_found_wherever_they_lie(self):
        columns = [("X", "int16"), ("Y", "int8")]
        numbers = random.Random(20170523)
        for _ in range(40):
            before, zeros = numbers.randrange(1, 200_000), numbers.randrange(171, 400)
            content = binary_file(columns, [(1, 1)] * before)
            self.assert_one(content + bytes(3 * zeros) + b"\1\1\1" * numbers.randrange(1, 300),
                            ("zero-rows", len(content), before, None), f"{zeros} row(s)")

    def test_wrong_number_of_fields(self):
        for row, code, count in [((10, 2, 3), "too-few-fields", 3), ((10,), "too-few-fields", 1),
                                 ((10, 2, 3, 4, 5), "too-many-fields", 5),
                                 ((10, 2, 3, 4, 5, 6), "too-many-fields", 6)]:
            content = text_file()
            self.assert_one(content + row_text(*row) + row_text(11, 2, 3, 4.5),
                            (code, len(content), 10, None), f"{count} whole field(s)")
        self.assertEqual(self.codes(text_file() + b"10\t2\t3\n"), ["too-few-fields"])
        self.assertEqual(self.codes(text_file() + b"10\t2\t3\t4\t5\n"), ["too-many-fields"])

    def test_bad_field(self):
        content = text_file()
        for column, texts in [(0, ["x", "1.5", "65536", "", "1e3", "--1", "0x10", "1,5", "\0"]),
                              (3, ["x", "1,5", "1e", "1.5.2", "", "1e999", "infinity"])]:
            for text in texts:
                row = ["10", "2", "3", "1.5"]
                row[column] = text
                place = len(content) + sum(len(one) + 1 for one in row[:column])
                self.assert_one(content + row_text(*row) + row_text(11, 2, 3, 4.5),
                                ("bad-field", place, 10, IMU[column][0]))
        columns = [("B", "bool")]
        content = text_file(columns, [(1,), (0,)])
        self.assert_one(content + b"2\t\n", ("bad-field", len(content), 2, "B"))

    def test_checking_goes_on_behind_a_bad_line(self):
        content = text_file() + row_text(10, "x", 3, 1)
        self.assertEqual(self.found(content + row_text(11, "y", 3, 2) + row_text(12, 1, 1, 1.0)),
                         [("bad-field", len(text_file()) + 3, 10, "ACCX"),
                          ("bad-field", len(content) + 3, 11, "ACCX")])

    def test_endless_line(self):
        content = text_file()
        self.assert_one(content + b"1" * 3_000_000 + b"\n" + row_text(11, 2, 3, 4.5),
                        ("endless-line", len(content), 10, None), "3000001 bytes")

    def test_line_ends(self):
        content = text_file()
        self.assert_one(content[:-1], ("missing-line-end", content.rindex(b"9\t-9"), 9, None))
        self.assert_one(content[:-2] + b"\n", ("missing-tab", content.rindex(b"9\t-9"), 9, None))
        report = self.report(content.replace(b"\n", b"\r\n"))
        self.assertEqual([(one["code"], one["count"]) for one in report["counts"]],
                         [("crlf", content.count(b"\n"))])
        self.assertEqual(self.codes(content + b"\n\n" + row_text(10, 2, 3, 4.5), code=0),
                         ["empty-line", "empty-line"])
        self.assertEqual(self.codes(content + b"10 \t2\t 3\t4.5\t \n", code=0),
                         ["stray-blank"] * 3)

    def test_bytes_without_columns(self):
        for content in [binary_file([], []), text_file([], [])]:
            self.assert_one(content + b"1\t\n"[:1],
                            ("bytes-without-columns", len(content),
                             None if content[0] == 0xaf else 0, None))

    def test_section_in_data(self):
        for order in "><":
            one = binary_file(rows=IMU_ROWS, order=order)
            self.assertIn(("section-in-data", len(one), 10, None), self.found(one + one))
        one = text_file()
        self.assertIn(("section-in-data", len(one), 10, None), self.found(one + one))


class Values(CheckTest):
    def test_character_column(self):
        for kind in ["unsigned char", "signed char"]:
            columns = [("C", kind), ("N", "int16")]
            content = text_file(columns, [("A", 1), ("\n", 2), ("\t", 3), (" ", 4), ("\0", 5)])
            rows = content.index(b"A\t1\t\n")
            self.assertEqual(self.found(content),
                             [("character-column", content.index(b"\t\n"), None, "C"),
                              ("blank-character", rows + 5, 1, "C"),
                              ("blank-character", rows + 10, 2, "C"),
                              ("blank-character", rows + 15, 3, "C")])
            self.assert_clean(binary_file(columns, [(65, 1), (10, 2), (32, 3)]))

    def test_all_characters_but_blanks_are_values(self):
        blanks = {9, 10, 11, 12, 13, 32}
        rows = b"".join(b"7\t" + bytes([i]) + b"\t\n" for i in range(256) if i not in blanks)
        content = text_file([("N", "uint8"), ("C", "unsigned char")], [])
        report = self.report(content + rows)
        self.assertEqual([one["code"] for one in report["counts"]],
                         ["character-column", "clipped"][:1] + ["at-limit"])
        self.assertEqual(report["rows"], 250)
        for byte in blanks:
            self.assertIn("blank-character",
                          self.codes(content + b"7\t" + bytes([byte]) + b"\t\n7\tA\t\n"))

    def test_numbers_that_are_none(self):
        columns = [("N", "uint32"), ("X", "float"), ("Y", "double")]
        rows = [(1, math.nan, math.inf), (2, -math.inf, 1)]
        content = binary_file(columns, rows)
        at = len(content) - 32
        self.assertEqual(self.found(content, code=0),
                         [("non-finite", at + 4, 0, "X"), ("non-finite", at + 8, 0, "Y"),
                          ("non-finite", at + 20, 1, "X")])
        content = text_file(columns, rows)
        at = content.index(b"1\tnan")
        self.assertEqual(self.found(content),
                         [("non-finite-text", at + 2, 0, "X"),
                          ("non-finite-text", at + 6, 0, "Y"),
                          ("non-finite-text", at + 13, 1, "X")])

    def test_out_of_range(self):
        for kind, text, words in [("uint8", "300", "read as 300"), ("int8", "-129", "-129"),
                                  ("uint16", "-1", "read as 65535"), ("uint8", "-1", "4294967295")]:
            content = text_file([("X", kind)], [(5,)])
            self.assert_one(content + text.encode() + b"\t\n",
                            ("out-of-range", len(content), 1, "X"), words)

    def test_clipped_and_at_limit(self):
        for kind, limit in [("int16", 32767), ("int16", -32768), ("uint16", 65535), ("int8", -128),
                            ("uint8", 255), ("uint32", 2**32 - 1), ("int32", -2**31),
                            ("uint64", 2**64 - 1), ("int64", -2**63), ("int64", 2**63 - 1)]:
            size = struct.calcsize(TYPES[[c for c in TYPES if TYPES[c][1] == kind][0]][0])
            values = [5] + [limit] * 3 + [7, limit, 7, limit, limit]
            columns, rows = [("X", kind)], [(one,) for one in values]
            content = binary_file(columns, rows)
            at = len(content) - 9 * size
            self.assertEqual(self.found(content), [("clipped", at + size, 1, "X"),
                                                   ("at-limit", at + 5 * size, 5, "X"),
                                                   ("at-limit", at + 7 * size, 7, "X")])
            self.assertEqual(self.codes(text_file(columns, rows)),
                             ["clipped", "at-limit", "at-limit"])
        self.assert_clean(binary_file([("X", "uint16")], [(0,)] * 9 + [(1,)]))

    def test_a_run_at_the_limit_may_cross_blocks(self):
        rows = [(1,)] * 131_000 + [(32767,)] * 300 + [(1,)] * 10
        self.assert_one(binary_file([("X", "int16")], rows),
                        ("clipped", len(binary_file([("X", "int16")], [])) + 262_000, 131_000, "X"),
                        "300 row(s) at 32767")

    def test_odd_bool(self):
        content = binary_file([("B", "bool")], [(0,), (1,), (2,), (255,)])
        self.assertEqual(self.found(content, code=0),
                         [("odd-bool", len(content) - 2, 2, "B"),
                          ("odd-bool", len(content) - 1, 3, "B")])

    def counted(self, kind, numbers):
        """What is found in a counter's numbers, the same in both encodings."""
        columns, rows = [("COUNT", kind)], [(number,) for number in numbers]
        binary, text = [self.report(make(columns, rows)) for make in (binary_file, text_file)]
        found = [[(one["code"], one["row"], one["message"]) for one in report["defects"]]
                 for report in (binary, text)]
        self.assertEqual(*found)
        return [(code, row) for code, row, _ in found[0]]

    def test_counters(self):
        for kind, numbers, expected in [
                ("uint16", [1, 2, 5, 6], [("counter-jump", 2)]),
                ("uint16", [1, 2, 2, 3], [("counter-repeat", 2)]),
                ("uint16", [7, 8, 5, 6], [("counter-backward", 2)]),
                ("uint16", [65533, 65534, 0, 1], [("counter-wrap", 2)]),
                ("uint16", [65530, 3, 4], [("counter-wrap", 1)]),
                ("uint16", [998, 999, 0, 1], [("counter-restart", 2)]),
                ("int16", [32765, -32767], [("counter-wrap", 1)]),
                ("int16", [32765, 0, 1], [("counter-restart", 1)]),
                ("int16", [-3, 2], [("counter-jump", 1)]),
                ("uint8", [250, 251, 254, 3], [("counter-jump", 2), ("counter-wrap", 3)]),
                ("uint32", [2**32 - 2, 0, 1], [("counter-wrap", 1)]),
                ("uint64", [2**60, 2**60 + 1, 2**60 + 9], [("counter-jump", 2)]),
                ("int64", [2**53, 2**53 + 2], [("counter-jump", 1)])]:
            with self.subTest((kind, numbers)):
                self.assertEqual(self.counted(kind, numbers), expected)

    def test_counter_messages(self):
        self.write("a.bin", binary_file([("COUNT", "uint16")], [(1,), (5,), (65000,), (2,)]))
        start = (self.folder / "a.bin").stat().st_size - 8
        self.assertEqual(self.output_of("check", "a.bin", code=3), f"""\
a.bin: 3 warnings, 4 rows
  warning counter-jump     offset {start + 2}, row 1, COUNT: 5 follows 1: 3 number(s) missing
  warning counter-backward offset {start + 4}, row 2, COUNT: 65000 follows 5
  warning counter-wrap     offset {start + 6}, row 3, COUNT: 2 follows 65000: it begins again \
without 65535, 537 number(s) missing
""")

    def test_counter_can_be_named(self):
        content = binary_file([("N", "uint16"), ("X", "int16")], [(1, 2), (3, 3)])
        self.assert_clean(content)
        self.assertEqual(self.codes(content, "--counter", "N"), ["counter-jump"])
        self.assert_clean(content, "--counter", "X")
        for name in ["none", "TIME"]:
            self.write("b", binary_file())
            result = self.tool("check", "b", "--counter", name)
            self.assert_fails(result, code=2)
            self.assertIn("--counter", result.stderr)

    def test_time(self):
        for kind in ["double", "float", "uint32", "int64"]:
            columns, rows = [("TIME", kind)], [(1,), (2,), (2,), (4,), (3,), (4,)]
            for make in [binary_file, text_file]:
                report = self.report(make(columns, rows))
                self.assertEqual([(one["code"], one["row"], one["column"])
                                  for one in report["defects"]],
                                 [("time-repeat", 2, "TIME"), ("time-backward", 4, "TIME")])

    def test_time_can_be_named(self):
        content = binary_file([("W", "double")], [(2.0,), (1.5,)])
        self.assert_clean(content)
        at = len(content) - 8
        self.assert_one(content, ("time-backward", at, 1, "W"), "back by 0.5", "--time", "W")
        self.assert_one(content, ("time-backward", at, 1, "W"), "back by 0.0005 s", "--time", "W",
                        "--time-unit", "ms")
        self.write("b", content)
        for option in [["--time", "V"], ["--time", "W", "--time-unit", "h"]]:
            self.assert_fails(self.tool("check", "b", *option), code=2)

    def test_stamps_that_are_no_numbers_are_told_as_such_alone(self):
        content = binary_file([("TIME", "double")], [(1.0,), (math.nan,), (2.0,), (1.0,)])
        self.assertEqual(self.codes(content), ["non-finite", "time-backward"])


class Digits(CheckTest):
    """Digits that fixed notation lost."""

    COLUMNS = [("A", "double"), ("B", "float")]

    def lost(self, *rows, code=3):
        return [(one[0], one[2], one[3])
                for one in self.found(text_file(self.COLUMNS, rows), code=code)]

    def test_few_digits_of_small_values(self):
        self.assertEqual(self.lost(("0", "1.12345"), ("0.00005", "2"), ("0.00003", "3")),
                         [("digits-lost", 1, "A")])
        # A magnetic field in tesla.
        self.assertEqual(self.lost(("0.000048", "1"), ("-0.000021", "2")),
                         [("digits-lost", 0, "A")])

    def test_negative_zero_tells_that_a_value_was_lost(self):
        self.assertEqual(self.lost(("0", "1"), ("-0", "1"), ("0", "2")), [("digits-lost", 1, "A")])
        self.assertEqual(self.lost(("0.01", "1.5"), ("-0", "1"), ("0.02", "2")),
                         [("digits-lost", 1, "A")])

    def test_values_that_keep_their_digits(self):
        self.assertEqual(self.lost(("0.00999", "1"), ("0.00001", "5")), [("digits-lost", 0, "A")])
        for rows in [[("0.01", "1"), ("0.02", "2")], [("0.5", "1"), ("-0.5", "2")],
                     [("0.12345", "1"), ("0.2", "2")], [("123.5", "1"), ("-0", "2")],
                     [("0", "1"), ("0", "2")], [("1e-07", "1"), ("2e-07", "2.12345")],
                     [("0.5", "1.12345"), ("0.25", "1.5")], [("0.00999", "1"), ("0.123", "2")]]:
            with self.subTest(rows):
                self.assertEqual(self.lost(*rows, code=0), [])

    def test_message(self):
        report = self.report(text_file([("A", "double")],
                                       [("0",), ("0.00002",), ("-0",), ("0.00013",)]))
        self.assertEqual(report["defects"][0]["message"],
                         "5 decimals keep 2 digit(s) of the largest value, 0.00013; 2 of 4 value(s) "
                         "are written as 0")


if __name__ == "__main__":
    main()

"""Runs sensorfile recover as a user does: damages files and looks at what comes back."""

import os
import random
import struct

from sample_files import (CALIBRATED, DATA, GAIN, IMU, IMU_ROWS, RANGE, binary_calib, binary_file,
                          binary_header, date, kivra2_calib, opening, pack_rows, text_calib,
                          text_file)
from tool_test import ToolTest, main

ROW = 14  # bytes of a row of IMU


def patched(content, offset, replacement):
    return content[:offset] + replacement + content[offset + len(replacement):]


def text_row(row):
    return "".join(f"{value}\t" for value in row).encode() + b"\n"


class RecoverTest(ToolTest):
    def recover(self, content, *arguments, code=3):
        """The report, and the bytes of the new file, whose form is good."""
        self.write("in", content)
        report = self.json_of("recover", "in", "out", "--force", *arguments, code=code)
        self.assert_files("in", "out")
        self.assertEqual(self.read("in"), content)
        self.assert_good_form("out")
        return report, self.read("out")

    def assert_good_form(self, name):
        result = self.tool("check", name, "--json", "--strict")
        self.assertIn(result.returncode, [0, 3], result.stderr)
        self.assertNotIn('"kind":"structure"', result.stdout.replace(" ", ""), result.stdout)

    def assert_recovered(self, content, expected, *codes, arguments=()):
        """Everything but what was dropped for the codes is there."""
        report, found = self.recover(content, *arguments)
        self.assertEqual(found, expected)
        self.assertEqual([one["code"] for one in report["dropped"]], list(codes))
        self.assertEqual(report["whole"], False)
        return report

    def assert_lost(self, content, words="", *arguments):
        """Nothing can be recovered, and no file is left."""
        self.write("in", content)
        (self.folder / "out").unlink(missing_ok=True)
        result = self.tool("recover", "in", "out", *arguments)
        self.assert_fails(result)
        self.assertIn(words, result.stderr)
        self.assert_files("in")


class Whole(RecoverTest):
    def test_whole_files_are_copied(self):
        for content in [binary_file(calib=[GAIN, RANGE]), text_file(calib=[GAIN, RANGE]),
                        binary_file(order="<"), binary_file(version=0x0100),
                        binary_calib([GAIN]), text_calib([GAIN]).encode(),
                        binary_file(rows=[]), text_file(rows=[]), binary_file([], [])]:
            report, found = self.recover(content, code=0)
            self.assertEqual(found, content)
            self.assertEqual((report["whole"], report["dropped"], report["mended"]),
                             (True, [], []))

    def test_content_is_nobodys_to_mend(self):
        content = binary_file(rows=[(1, 2, 3, 5.0), (9, 32767, 3, 1.0)])
        report, found = self.recover(content, code=0)
        self.assertEqual(found, content)
        self.assertEqual([one["code"] for one in report["left"]],
                         ["at-limit", "counter-jump", "time-backward"])

    def test_text_form(self):
        self.write("a.bin", binary_file())
        self.assertEqual(self.output_of("recover", "a.bin", "b.bin"),
                         "a.bin: whole, copied as it is\nb.bin: clean, 10 rows\n")
        self.write("c.txt", text_file() + b"10\tx\t3\t5\t\n" + text_row((11, 2, 3, 4.5)))
        at = len(text_file())
        self.assertEqual(self.output_of("recover", "c.txt", "d.txt", code=3), f"""\
c.txt: 11 row(s) kept, 1 dropped
  dropped bad-field        1 row(s), 10 bytes, offset {at}, row 10: 'x' is no int16
d.txt: 1 warning, 11 rows
  warning counter-jump     offset {at}, row 10, COUNT: 11 follows 9: 1 number(s) missing
""")


class Rows(RecoverTest):
    def test_binary_file_cut_at_every_byte(self):
        for order in "><":
            content = binary_file(order=order, calib=[GAIN, RANGE])
            start = len(content) - ROW * len(IMU_ROWS)
            for size in range(start):
                self.assert_lost(content[:size])
            for size in range(start, len(content)):
                rows = (size - start) // ROW
                cut = (size - start) % ROW
                report, found = self.recover(content[:size], code=3 if cut else 0)
                self.assertEqual(found, content[:start + rows * ROW])
                self.assertEqual((report["rows_kept"], report["bytes_dropped"]), (rows, cut))

    def test_text_file_cut_at_every_byte(self):
        content = text_file(calib=[GAIN, RANGE])
        start = content.index(b"0\t0\t100\t")
        ends = [start]
        for row in IMU_ROWS:
            ends.append(ends[-1] + len(text_row(row)))
        for size in range(start - 2):
            self.assert_lost(content[:size])
        for size in range(start - 2, len(content) + 1):
            # A row is whole with its last TAB.
            rows = sum(end - 1 <= size for end in ends[1:])
            report, found = self.recover(content[:size], code=0 if size in ends or size < start
                                         else 3)
            self.assertEqual(report["rows_kept"], rows, content[:size])
            expected = content[:max(ends[rows], start)]
            self.assertEqual(found, content[:size] if size < start else expected)

    def test_text_file_with_characters_cut_at_every_byte(self):
        columns = [("C", "unsigned char"), ("X", "double"), ("D", "signed char")]
        rows = [("a", 1.5, "x"), ("\0", 22, "\1"), ("z", -3, "\x7f")]
        content = text_file(columns, rows)
        start = content.index(b"a\t1.5")
        ends = [start]
        for row in rows:
            ends.append(ends[-1] + len(text_row(row)))
        for size in range(start, len(content)):
            self.write("in", content[:size])
            self.json_of("recover", "in", "out", "--force", code=0 if size in ends else 3)
            # A character is whole by itself.
            whole = sum(end - 2 <= size for end in ends[1:])
            self.assertEqual(self.read("out"), content[:ends[whole]])

    def test_zeros_at_the_end_are_dropped_where_a_counter_shows_it(self):
        content = binary_file()
        for zeros in [ROW, 2 * ROW, 100 * ROW, 40_000 * ROW]:
            report = self.assert_recovered(content + bytes(zeros), content, "zero-filled")
            self.assertEqual((report["rows_dropped"], report["bytes_dropped"]),
                             (zeros // ROW, zeros))
        self.assert_recovered(content + bytes(4096), content, "zero-filled", "truncated-row")
        report, found = self.recover(content + bytes(5 * ROW), "--keep-zeros", code=0)
        self.assertEqual((found, report["zero_rows_at_end"]), (content + bytes(5 * ROW), 5))

    def test_zeros_without_a_counter_are_kept_unless_told(self):
        columns = [("X", "int16"), ("Y", "int16")]
        content = binary_file(columns, [(1, 2)] * 5)
        report, found = self.recover(content + bytes(4096), code=0)
        self.assertEqual((found, report["zero_rows_at_end"]), (content + bytes(4096), 1024))
        self.assertIn("--drop-zeros", self.output_of("recover", "in", "out", "--force"))
        self.assert_recovered(content + bytes(4096), content, "zero-rows",
                              arguments=["--drop-zeros"])
        # So few may have been recorded in any case.
        _, found = self.recover(content + bytes(400), "--drop-zeros", code=0)
        self.assertEqual(found, content + bytes(400))
        self.assert_recovered(binary_file([("N", "int16")], [(7,), (8,)]) + bytes(20),
                              binary_file([("N", "int16")], [(7,), (8,)]), "zero-filled",
                              arguments=["--counter", "N"])

    def test_nul_bytes_in_text(self):
        content = text_file()
        rest = text_row((12, 1, 2, 3.5))
        self.assert_recovered(content + bytes(4096), content, "nul-bytes")
        self.assert_recovered(content + b"10\t2" + bytes(4096), content, "torn-row", "nul-bytes")
        self.assert_recovered(content + b"10\t2" + bytes(99) + b"4.5\t\n" + rest, content + rest,
                              "torn-row", "nul-bytes", "too-few-fields")
        self.assert_recovered(content + bytes(2) + rest, content, "nul-bytes", "torn-row")

    def test_bad_lines_alone_are_dropped(self):
        content, rest = text_file(), text_row((11, 2, 3, 4.5))
        for line, code in [(b"10\tx\t3\t1\t\n", "bad-field"), (b"10\t2\t3\t\n", "too-few-fields"),
                           (b"10\t2\t3\t4\t5\t\n", "too-many-fields"), (b"what?\n",
                                                                        "too-few-fields"),
                           (b"7" * 2_000_000 + b"\n", "endless-line"), (b"\n", None)]:
            if code is None:
                _, found = self.recover(content + line + rest + b"x\n")
                self.assertEqual(found, content + rest)
            else:
                self.assert_recovered(content + line + rest, content + rest, code)

    def test_lines_that_differ_in_form_are_mended(self):
        content = text_file()
        for damaged, mended in [(content.replace(b"\n", b"\r\n"), "CR and LF"),
                                (content[:-1], "no line end"),
                                (content.replace(b"\t\n5\t", b"\n5\t"), "no TAB"),
                                (content.replace(b"\t-5\t", b" \t -5\r\t") + b"x\n", "around"),
                                (content.replace(b"\t\n5\t", b"\t \n5\t") + b"x\n", "behind")]:
            report, found = self.recover(damaged)
            self.assertEqual(found, content)
            self.assertEqual(report["rows_dropped"], int(damaged.endswith(b"x\n")))
            self.assertIn(mended, report["mended"][-1]["what"])

    def test_rows_with_blank_characters_are_dropped(self):
        columns = [("C", "unsigned char"), ("N", "int16")]
        content = text_file(columns, [("A", 1), (" ", 2), ("\n", 3), ("B", 4)])
        self.write("in", content)
        report = self.json_of("recover", "in", "out", code=3)
        self.assertEqual(self.read("out"), text_file(columns, [("A", 1), ("B", 4)]))
        self.assertEqual([(one["code"], one["rows"]) for one in report["dropped"]],
                         [("blank-character", 2)])

    def test_rows_without_columns_are_dropped(self):
        for content in [binary_file([], []), text_file([], [])]:
            self.assert_recovered(content + b"1\t\n", content, "bytes-without-columns")

    def test_many_rows(self):
        rows = [(i % 65536, i % 1000, -i % 1000, i * 0.01) for i in range(100_000)]
        content = binary_file(rows=rows)
        self.assert_recovered(content[:-5], content[:-ROW], "truncated-row")
        lines = [text_row(row) for row in rows]
        content = text_file(rows=[]) + b"".join(lines)
        damaged = text_file(rows=[]) + b"".join(lines[:50_000]) + b"?\n" + b"".join(lines[50_000:])
        self.assert_recovered(damaged, content, "too-few-fields")

    def test_damaged_bytes_cost_no_other_lines(self):
        numbers = random.Random(20170523)
        rows = [(i, numbers.randrange(-999, 999), i, i * 0.25) for i in range(30)]
        head, lines = text_file(rows=[]), [text_row(row) for row in rows]
        for _ in range(150):
            damaged, touched = [bytearray(line) for line in lines], set()
            for _ in range(numbers.randint(1, 4)):
                line = numbers.randrange(len(lines))
                touched.add(line)
                at = numbers.randrange(len(damaged[line]))
                if at == len(damaged[line]) - 1:
                    touched.add(line + 1)  # it may become a part of this one
                if numbers.random() < 0.5:
                    damaged[line][at] = numbers.randrange(256)
                else:
                    damaged[line][at:at] = numbers.randbytes(numbers.randint(1, 3))
            self.write("in", head + b"".join(damaged))
            result = self.tool("recover", "in", "out", "--force")
            self.assertIn(result.returncode, [0, 3], result.stderr)
            if result.returncode == 3:
                self.assert_good_form("out")
            found = self.read("out")
            self.assertTrue(found.startswith(head))
            kept = [line for line in found[len(head):].splitlines(keepends=True)]
            untouched = [line for i, line in enumerate(lines) if i not in touched]
            place = 0
            for line in untouched:
                self.assertIn(line, kept[place:])
                place = kept.index(line, place) + 1


class Sections(RecoverTest):
    def without_calibration(self, order=">"):
        return (binary_header(IMU, order) + opening(order, DATA, 0x0100) +
                pack_rows(IMU, IMU_ROWS, order))

    def test_damaged_calibration_is_left_out(self):
        for order in "><":
            content = binary_file(order=order, calib=[GAIN, RANGE])
            at = content.index(b"Gain")
            for damaged in [patched(content, at + 32, b"\x55"),
                            patched(content, at - 8, struct.pack(order + "Q", 2**60)),
                            patched(content, at - 36, b"????"), content[:at] + content[at + 9:]]:
                report = self.assert_recovered(damaged, self.without_calibration(order),
                                               "bad-calibration")
                self.assertEqual((report["rows_kept"], report["rows_dropped"]), (10, 0))
        content = text_file(calib=[GAIN, RANGE])
        calib = content.index(b"\nCalib")
        data = content.index(b"Data id:")
        expected = content[:calib] + b"\n" + content[data:]
        for damaged in [content.replace(b"0.998", b"0,998"), content.replace(b"\t2\t\nGain", b"x"),
                        content.replace(b"Calib id: \taf24", b"Calib id: \tbf24"),
                        content.replace(b"Range\tint32", b"Range\tint33")]:
            self.assertNotEqual(damaged, content)
            self.assert_recovered(damaged, expected, "bad-calibration")

    def test_bad_dates_become_good_ones(self):
        good = bytes([1, 1, 0, 0, 0, 0])
        for order in "><":
            content = binary_file(order=order, calib=[GAIN])
            damaged = patched(content, 24, b"\x63\x63")
            report = self.assert_recovered(damaged, patched(content, 24, good))
            self.assertIn("date", report["mended"][0]["what"])
            at = content.index(date(order, CALIBRATED))
            self.assert_recovered(patched(content, at, b"\x63\x63"), patched(content, at, good))
        content = text_file(calib=[GAIN])
        self.assert_recovered(content.replace(b"23/05/2017", b"23/05/20?7"),
                              content.replace(b"23/05/2017\t10:04:31", b"01/01/2000\t00:00:00"))
        self.assert_recovered(content.replace(b"01/12/2016", b"77/12/2016"),
                              content.replace(b"01/12/2016\t08:00:09", b"01/01/2000\t00:00:00"))

    def test_both_dates_and_the_end_may_be_damaged(self):
        content = binary_file(calib=[GAIN])
        at = content.index(date(">", CALIBRATED))
        good = bytes([1, 1, 0, 0, 0, 0])
        damaged = patched(patched(content, 24, b"\x63\x63"), at, b"\x63\x63")[:-3]
        self.assert_recovered(damaged, patched(patched(content, 24, good), at, good)[:-ROW],
                              "truncated-row")

    def test_sizes_are_mended(self):
        for order in "><":
            content = binary_file(order=order, calib=[GAIN, RANGE])
            calib = content.index(opening(order, 0x8036, 0x0200)) + 16
            for offset, size in [(16, 8), (40, 1), (74, 1), (calib, 8)]:
                self.assert_recovered(patched(content, offset, b"\x77" * size), content)
        content = text_file()
        self.assert_recovered(content.replace(b"(8)", b"(4)"), content)

    def test_calibration_files(self):
        for content in [binary_calib([GAIN, RANGE]), text_calib([GAIN, RANGE]).encode()]:
            self.assert_recovered(content + b"junk", content, "junk-behind-calibration")
            for size in range(len(content) - 4):
                self.assert_lost(content[:size])
        content = binary_calib([GAIN])
        self.assert_recovered(content + opening(">", DATA, 0x0100), content,
                              "section-behind-calibration")
        self.assertIn("calibration is kept", self.output_of("recover", "in", "o2", code=3))

    def test_what_has_no_rows_is_lost(self):
        self.assert_lost(patched(binary_file(), 41, b"\x63"), "bad-header at offset 42")
        content = binary_file()
        at = content.index(opening(">", DATA, 0x0100))
        self.assert_lost(patched(content, at, b"\0"), "nothing can be recovered: no-data-section")
        for content in [b"", b"\0" * 5000, b"what?", kivra2_calib()]:
            self.assert_lost(content, "in")


class Usage(RecoverTest):
    def test_a_file_is_never_its_own_output(self):
        content = binary_file() + b"\1"
        self.write("in", content)
        os.link(self.folder / "in", self.folder / "hard")
        os.symlink("in", self.folder / "soft")
        for name in ["in", "./in", "hard", "soft"]:
            for option in [[], ["--force"]]:
                self.assert_fails(self.tool("recover", "in", name, *option), code=2)
        self.assertEqual(self.read("in"), content)

    def test_nothing_is_overwritten_without_force(self):
        self.write("in", binary_file() + b"\1")
        self.write("out", b"precious")
        self.assert_fails(self.tool("recover", "in", "out"))
        self.assertEqual(self.read("out"), b"precious")
        self.output_of("recover", "in", "out", "--force", code=3)
        self.assertEqual(self.read("out"), binary_file())

    def test_a_failure_leaves_the_old_file(self):
        self.write("in", binary_file()[:100])
        self.write("out", b"precious")
        self.assert_fails(self.tool("recover", "in", "out", "--force"))
        self.assertEqual(self.read("out"), b"precious")
        self.assert_files("in", "out")

    def test_pipes(self):
        content = binary_file()
        self.write("in", content + b"\1\2")
        with open(self.folder / "in", "rb") as stream:
            result = self.tool("recover", "-", "-", stdin=stream, text=False)
        self.assertEqual((result.returncode, result.stdout), (3, content))
        self.assertIn(b"standard input: 10 row(s) kept, 1 dropped", result.stderr)
        self.assertIn(b"standard output: clean, 10 rows", result.stderr)
        self.assert_files("in")

    def test_wrong_usage(self):
        self.write("in", binary_file())
        for arguments in [[], ["in"], ["in", "out", "more"],
                          ["in", "out", "--keep-zeros", "--drop-zeros"]]:
            self.assertEqual(self.tool("recover", *arguments).returncode, 2)
        self.assert_fails(self.tool("recover", "in", "out", "--counter", "none"), code=2)
        self.assert_fails(self.tool("recover", "none", "out"))
        self.assert_fails(self.tool("recover", "in", "none/out"))
        self.assert_files("in")

    def test_the_encoding_can_be_told(self):
        self.write("in", text_file() + b"1\t")
        self.output_of("recover", "in", "out", "--encoding", "text", code=3)
        self.assertEqual(self.read("out"), text_file())
        self.assert_fails(self.tool("recover", "in", "o2", "--encoding", "binary"))

    def test_an_output_that_cannot_be_written(self):
        self.write("in", binary_file())
        with open("/dev/full", "wb") as full:
            result = self.tool("recover", "in", "-", stdout=full)
        self.assertEqual(result.returncode, 1)


if __name__ == "__main__":
    main()

"""Runs sensorfile plot and looks at what is in its pages."""

import html.parser
import math
import os
import random
import subprocess
import sys

from plot_page import columns_of, recording_of
from sample_files import (GAIN, IMU, IMU_ROWS, binary_calib, binary_file, kivra2_calib, text_calib,
                          text_file)
from tool_test import PROGRAM, ToolTest, main

COUNTED = [("COUNT", "uint16"), ("X", "int16")]
TIMED = [("TIME", "double"), ("X", "int16")]


class PlotTest(ToolTest):
    def page_of(self, *arguments, code=0, stderr="", **options):
        return self.output_of("plot", *arguments, "-o", "-", code=code, stderr=stderr, **options)

    def plot(self, content, *arguments, **options):
        """What the page of a file is given."""
        return recording_of(self.page_of(self.write("a.bin", content), *arguments, **options))

    def titles(self, recording):
        return [panel["title"] for panel in recording["panels"]]


class Outputs(PlotTest):
    def test_page_is_named_after_the_file(self):
        (self.folder / "my data").mkdir()
        self.write("my data/a.rec.bin", binary_file())
        self.assertEqual(self.output_of("plot", "my data/a.rec.bin"), "")
        self.assertTrue(self.read("my data/a.rec.html").startswith(b"<!DOCTYPE html>"))

    def test_page_goes_where_it_is_wanted(self):
        self.write("a.bin", binary_file())
        self.output_of("plot", "a.bin", "-o", "b.html")
        self.assertEqual(self.read("b.html").decode(), self.page_of("a.bin"))
        self.assert_files("a.bin", "b.html")

    def test_standard_input_is_plotted_to_the_standard_output(self):
        content = binary_file()
        page = self.output_of("plot", "-", input=content, text=False, stderr=b"").decode()
        found = recording_of(page)
        self.assertEqual((found["title"], found["file"]), ("standard input", "standard input"))
        self.assertEqual(found["levels"], self.plot(content)["levels"])
        self.assert_files("a.bin")

    def test_nothing_is_overwritten_unless_forced(self):
        self.write("a.bin", binary_file())
        self.write("a.html", b"mine")
        result = self.tool("plot", "a.bin")
        self.assert_fails(result)
        self.assertIn("a.html is there already; --force overwrites it", result.stderr)
        self.assertEqual(self.read("a.html"), b"mine")
        self.output_of("plot", "a.bin", "--force")
        self.assertIn(b"</html>", self.read("a.html"))
        self.assert_files("a.bin", "a.html")

    def test_failures_leave_nothing(self):
        self.write("a.bin", binary_file())
        for arguments in [["--calibrated"], ["--columns", "Y"], ["--time", "T"], ["--counter", "N"],
                          ["-o", "none/a.html"], ["--rows", "x"], ["--points", "1"],
                          ["--points", "100001"], ["--time-unit", "h"]]:
            result = self.tool("plot", "a.bin", *arguments)
            self.assertIn(result.returncode, [1, 2])
            self.assertEqual(result.stdout, "")
            self.assert_files("a.bin")

    def test_full_disk_fails(self):
        self.write("a.bin", binary_file())
        with open("/dev/full", "w", encoding="ascii") as full:
            result = self.tool("plot", "a.bin", "-o", "-", stdout=full)
        self.assertEqual((result.returncode, result.stderr),
                         (1, "sensorfile: the standard output cannot be written\n"))
        self.assert_fails(self.tool("plot", "a.bin", "-o", "/dev/full"))

    def test_wrong_columns_are_wrong_usage(self):
        self.write("a.bin", binary_file())
        self.output_of("plot", "a.bin", "--columns", "GYR*", code=2,
                       stderr="sensorfile: --columns: no column matches 'GYR*'; there are: COUNT, "
                              "ACCX, ACCY, TIME\n")
        self.output_of("plot", "a.bin", "--time", "T", code=2,
                       stderr="sensorfile: --time: there is no column 'T'\n")

    def test_files_of_calibrations_have_no_rows(self):
        self.write("a.bin", binary_calib([GAIN]))
        self.write("a.txt", text_calib([GAIN]).encode())
        self.write("unit.cal", kivra2_calib())
        for name in ["a.bin", "a.txt", "unit.cal"]:
            result = self.tool("plot", name)
            self.assert_fails(result)
            self.assertIn(name, result.stderr)
        self.assert_files("a.bin", "a.txt", "unit.cal")

    def test_what_is_no_sensor_file_is_refused(self):
        noise = random.Random(7)
        for content in [b"", b"a", noise.randbytes(300), binary_file()[:40]]:
            self.write("noise", content)
            self.assert_fails(self.tool("plot", "noise"))
        self.assert_fails(self.tool("plot", "none.bin"))
        self.assert_fails(self.tool("plot", "."))
        self.assert_files("noise")

    def test_damaged_files_never_crash(self):
        numbers = random.Random(20170523)
        whole = [binary_file(calib=[GAIN]), text_file(calib=[GAIN]), binary_file(order="<")]
        for _ in range(60):
            content = bytearray(numbers.choice(whole))
            for _ in range(numbers.randint(1, 4)):
                content[numbers.randrange(len(content))] = numbers.randrange(256)
            self.write("a", content)
            result = self.tool("plot", "a", "-o", "-", text=False)
            self.assertIn(result.returncode, [0, 1, 3], bytes(content))
            if result.returncode != 1:
                recording_of(result.stdout.decode())

    def test_cut_file_ends_with_3_and_a_page(self):
        for name, content, rest in [("a.bin", binary_file(), b"\0\1\0"),
                                    ("a.txt", text_file(), b"1\t2")]:
            self.write(name, content + rest)
            message = (f"sensorfile: {name}: 3 byte(s) from offset {len(content)} on are no whole "
                       "row (1 whole value(s))\n")
            found = recording_of(self.page_of(name, code=3, stderr=message))
            self.assertEqual(found["rows"], 10)
            self.page_of(name, "--rows", ":10")

    def test_locale_does_not_matter(self):
        self.write("a.bin", binary_file())
        environment = {**os.environ, "LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8"}
        self.assertEqual(self.page_of("a.bin", env=environment), self.page_of("a.bin"))

    def test_memory_does_not_grow_with_the_file(self):
        used = []
        for count in [10_000, 100_000]:
            self.write("a.bin", binary_file(rows=IMU_ROWS * count))  # 1.4 and 14 MB
            # A process of its own, since a fork is counted with the memory of its parent.
            measure = ("import resource, subprocess, sys; subprocess.run(sys.argv[1:], check=True);"
                       "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)")
            used.append(int(subprocess.run(
                [sys.executable, "-c", measure, PROGRAM, "plot", "a.bin", "--force"],
                cwd=self.folder, check=True, stdout=subprocess.PIPE).stdout))
        self.assertLess(used[1], used[0] + 4000)


class Contents(PlotTest):
    def test_facts_of_the_recording(self):
        found = self.plot(binary_file())
        self.assertEqual(found["schema"], "sensorfile-plot-1")
        self.assertEqual(found["title"], "a.bin")
        self.assertEqual((found["rows"], found["frequency_hz"]), (10, 200))
        self.assertEqual(found["created"], "2017-05-23T10:04:31Z")
        self.assertEqual(found["axis"]["column"], "TIME")
        self.assertEqual(found["axis"]["unit"], "s")
        self.assertEqual(found["gaps"], {"complete": True, "lost": 0, "counter": "COUNT",
                                         "marked": []})
        self.assertEqual(found["notes"], [])
        self.assertFalse(found["calibrated"])

    def test_rows_of_all_kinds_of_files(self):
        for content in [binary_file(), binary_file(order="<"), text_file(),
                        binary_file(version=0x0100)]:
            found = self.plot(content)
            self.assertEqual(self.titles(found), ["ACC", "COUNT"])
            level, = found["levels"]
            self.assertTrue(level["raw"])
            self.assertEqual(level["positions"], [round(0.005 * i, 6) for i in range(10)])
            self.assertEqual(columns_of(found), {
                "COUNT": list(range(10)), "ACCX": [-i for i in range(10)],
                "ACCY": [100 + i for i in range(10)]})

    def test_stamps_have_a_panel_if_asked_for_or_alone(self):
        self.assertEqual(self.titles(self.plot(binary_file(), "--columns", "TIME,ACCX")),
                         ["ACCX", "TIME"])
        only = binary_file([("TIME", "double")], [(0.5,), (1.0,)])
        self.assertEqual(self.titles(self.plot(only)), ["TIME"])

    def test_columns_are_chosen(self):
        found = self.plot(binary_file(), "--columns", "ACC*")
        self.assertEqual(list(columns_of(found)), ["ACCX", "ACCY"])
        self.assertEqual(found["axis"]["column"], "TIME")

    def test_rows_are_chosen(self):
        for content in [binary_file(), text_file()]:
            found = self.plot(content, "--rows", "3:7")
            self.assertEqual(columns_of(found)["COUNT"], [3, 4, 5, 6])
            self.assertEqual(found["levels"][0]["positions"], [0.015, 0.02, 0.025, 0.03])
        self.assertEqual(self.plot(binary_file(), "--rows", "20:")["rows"], 0)

    def test_title_is_chosen(self):
        found = self.plot(binary_file(), "--title", "Walk <2>")
        self.assertEqual((found["title"], found["file"]), ("Walk <2>", "a.bin"))

    def test_calibrated_values(self):
        columns = [("ACCX", "int16"), ("ACCY", "int16"), ("ACCZ", "int16")]
        calib = [("AccGain", "double", [[2, 0, 0], [0, 0.5, 0], [0, 0, 1]]),
                 ("AccOffset", "double", [[1, 2, 3]])]
        found = self.plot(binary_file(columns, [(11, 12, 13)], calib=calib), "--calibrated")
        self.assertTrue(found["calibrated"])
        self.assertEqual(columns_of(found), {"ACCX": [20], "ACCY": [5], "ACCZ": [10]})

    def test_without_stamps_the_frequency_gives_the_time(self):
        content = binary_file([("X", "int16")], [(i,) for i in range(5)])
        found = self.plot(content)
        self.assertEqual(found["axis"], {"column": None, "unit": "s", "origin": 0, "step": 0.005})
        self.assertEqual(found["levels"][0]["positions"], [0, 0.005, 0.01, 0.015, 0.02])
        self.assertEqual(self.plot(content, "--rows", "2:")["levels"][0]["positions"],
                         [0.01, 0.015, 0.02])

    def test_without_frequency_rows_are_counted(self):
        for frequency in [0.0, -1.0, math.nan, math.inf]:
            found = self.plot(binary_file([("X", "int16")], [(7,), (8,)], frequency=frequency))
            self.assertEqual(found["axis"]["unit"], "row")
            self.assertEqual(found["levels"][0]["positions"], [0, 1])

    def test_stamps_that_are_dates_begin_at_0(self):
        start = 1_495_533_871_000_000_000
        rows = [(start + 5_000_000 * i, i) for i in range(4)]
        found = self.plot(binary_file([("TIME", "uint64"), ("X", "int16")], rows))
        self.assertEqual(found["axis"]["origin"], start / 1e9)
        self.assertEqual(found["levels"][0]["positions"], [0, 0.005, 0.01, 0.015])

    def test_time_column_and_unit_are_told(self):
        content = binary_file([("A", "int16"), ("B", "uint32")],
                              [(i, 10 * i) for i in range(3)])
        found = self.plot(content, "--time", "B", "--time-unit", "ms")
        self.assertEqual(found["axis"]["column"], "B")
        self.assertEqual(found["levels"][0]["positions"], [0, 0.01, 0.02])
        self.assertEqual(self.titles(found), ["A"])

    def test_stamps_that_go_back_make_no_axis(self):
        found = self.plot(binary_file(TIMED, [(0.0, 1), (0.005, 2), (0.001, 3), (0.002, 4)]))
        self.assertIsNone(found["axis"]["column"])
        self.assertEqual(found["levels"][0]["positions"], [0, 0.005, 0.01, 0.015])
        self.assertEqual(found["notes"], ["the stamps of TIME go back at 1 row(s), so the axis "
                                          "follows the number of the row"])
        found = self.plot(binary_file(TIMED, [(0.0, 1), (math.nan, 2), (0.01, 3)]))
        self.assertEqual(found["notes"], ["the stamps of TIME are no numbers at 1 row(s), so the "
                                          "axis follows the number of the row"])

    def test_values_that_are_no_numbers_leave_holes(self):
        rows = [(1.5,), (math.nan,), (math.inf,), (-math.inf,), (2.5,)]
        found = self.plot(binary_file([("X", "double")], rows))
        self.assertEqual(columns_of(found)["X"], [1.5, None, None, None, 2.5])

    def test_all_types(self):
        kinds = ["unsigned char", "signed char", "unsigned short", "short", "uint32", "int32",
                 "float", "double", "bool", "uint8", "int8", "uint16", "int16", "uint64", "int64"]
        columns = [(f"c{letter}", kind) for letter, kind in zip("abcdefghijklmno", kinds)]
        found = self.plot(binary_file(columns, [[1] * 15]))
        self.assertEqual(columns_of(found), {name: [1] for name, _ in columns})

    def test_digits_are_enough_for_the_range_of_the_column(self):
        rows = [(1e9 + i / 1000, i / 3, 1e-12 * i, 2**53 - i) for i in range(1000)]
        columns = [("OFF", "double"), ("THIRD", "double"), ("TINY", "double"), ("WIDE", "uint64")]
        found = columns_of(self.plot(binary_file(columns, rows)))
        for index, (name, _) in enumerate(columns):
            wanted = [row[index] for row in rows]
            accuracy = (max(wanted) - min(wanted)) * 1e-6
            for value, exact in zip(found[name], wanted):
                self.assertLessEqual(abs(value - exact), accuracy, name)

    def test_nothing_to_show(self):
        for content in [binary_file(rows=[]), text_file(rows=[]), binary_file([], []),
                        text_file([], [])]:
            found = self.plot(content)
            self.assertEqual(found["rows"], 0)
            self.assertEqual(found["levels"][0]["positions"], [])


class Levels(PlotTest):
    """Few points for many rows: each bucket's smallest and largest value."""

    def rows(self, count, gaps=()):
        numbers = random.Random(count)
        rows, number = [], 0
        for row in range(count):
            number += 1 + (numbers.randrange(1, 2000) if row in gaps else 0)
            rows.append((number % 65536, numbers.randrange(-32768, 32768)))
        return rows

    def buckets(self, rows, count, gaps=()):
        """Slices of rows, with None where the line is broken."""
        bounds = [k * len(rows) // count for k in range(count + 1)]
        for first, last in zip(bounds, bounds[1:]):
            edges = [first, *(gap for gap in gaps if first < gap < last), last]
            for start, end in zip(edges, edges[1:]):
                if start in gaps:
                    yield None
                yield range(start, end)

    def assert_level(self, level, rows, count, gaps=()):
        self.assertFalse(level["raw"])
        position, values = iter(level["positions"]), iter(level["values"][1])
        for bucket in self.buckets(rows, count, gaps):
            points = next(values), next(values)
            places = next(position), next(position)
            if bucket is None:
                self.assertEqual(points, (None, None))
                continue
            part = [rows[i][1] for i in bucket]
            self.assertEqual((min(points), max(points)), (min(part), max(part)))
            if part.index(min(part)) != part.index(max(part)):
                self.assertEqual(points[0] == min(part),
                                 part.index(min(part)) < part.index(max(part)))
            for place, row in zip(places, [bucket[0], bucket[-1]]):
                self.assertAlmostEqual(place, row * 0.005)
        self.assertEqual((next(values, None), next(position, None)), (None, None))

    def test_buckets_hold_the_extremes_of_their_rows(self):
        for count in [201, 1000, 7777]:
            rows = self.rows(count)
            found = self.plot(binary_file(COUNTED, rows), "--points", "100")
            self.assert_level(found["levels"][0], rows, 100)
            last = found["levels"][-1]
            self.assertTrue(last["raw"])
            self.assertEqual(last["values"][1], [row[1] for row in rows])

    def test_levels_are_four_times_finer_each(self):
        rows = self.rows(7777)
        found = self.plot(text_file(COUNTED, rows), "--points", "100")
        self.assertEqual(len(found["levels"]), 4)
        for level, count in zip(found["levels"], [100, 400, 1600]):
            self.assert_level(level, rows, count)
        self.assertTrue(found["levels"][3]["raw"])

    def test_few_rows_have_one_level(self):
        for count, arguments in [(200, ["--points", "100"]), (8000, [])]:
            found = self.plot(binary_file(COUNTED, self.rows(count)), *arguments)
            self.assertEqual([level["raw"] for level in found["levels"]], [True])

    def test_gaps_end_buckets_and_break_lines(self):
        gaps = [150, 151, 500, 4000, 4999]
        rows = self.rows(5000, gaps)
        found = self.plot(binary_file(COUNTED, rows), "--points", "50")
        self.assertEqual([gap["row"] for gap in found["gaps"]["marked"]], gaps)
        for level, count in zip(found["levels"], [50, 200, 800]):
            self.assert_level(level, rows, count, gaps)
        holes = [i for i, value in enumerate(found["levels"][-1]["values"][1]) if value is None]
        self.assertEqual(holes, [gap + i for i, gap in enumerate(gaps)])

    def test_size_of_a_page_is_bounded(self):
        for columns in [1, 10, 200]:
            names = [(f"C{i}", "int16") for i in range(columns)]
            count = 2_000_000 // columns
            row = [-12345] * columns
            found = self.page_of(self.write("a.bin", binary_file(names, [row] * count)))
            self.assertLess(len(found), 8_000_000)


class Gaps(PlotTest):
    def gaps_of(self, columns, rows, *arguments):
        return self.plot(binary_file(columns, rows), *arguments)["gaps"]

    def test_counters_tell_what_is_missing(self):
        rows = [(number, 0) for number in [5, 6, 7, 10, 11, 12, 14]]
        self.assertEqual(self.gaps_of(COUNTED, rows), {
            "complete": True, "lost": 3, "counter": "COUNT",
            "marked": [{"row": 3, "start": 0.01, "end": 0.015, "lost": 2},
                       {"row": 6, "start": 0.025, "end": 0.03, "lost": 1}]})

    def test_counters_begin_again_behind_the_largest_number(self):
        rows = [(number % 65536, 0) for number in range(65530, 65540)]
        self.assertEqual(self.gaps_of(COUNTED, rows)["marked"], [])
        rows = [(number, 0) for number in [65533, 65534, 65535, 1, 2, 3]]
        self.assertEqual(self.gaps_of(COUNTED, rows)["lost"], 1)

    def test_counters_that_go_back_are_marked_without_loss(self):
        rows = [(number, 0) for number in [5, 6, 7, 8, 0, 1, 2]]
        found = self.gaps_of(COUNTED, rows)
        self.assertEqual([(gap["row"], gap["lost"]) for gap in found["marked"]], [(4, 0)])

    def test_counters_that_count_something_else_tell_nothing(self):
        found = self.gaps_of(COUNTED, [(10 * i, 0) for i in range(10)])
        self.assertEqual((found["counter"], found["marked"]), (None, []))

    def test_the_user_names_the_counter(self):
        columns = [("N", "uint8"), ("X", "int16")]
        rows = [(number, 0) for number in [1, 2, 3, 5, 6]]
        self.assertEqual(self.gaps_of(columns, rows)["lost"], 0)
        self.assertEqual(self.gaps_of(columns, rows, "--counter", "N")["lost"], 1)

    def test_stamps_tell_steps_of_more_than_twice_the_median(self):
        times = [0.0, 0.01, 0.02, 0.03, 0.0499, 0.06, 0.0802, 0.09, 0.1, 0.15]
        found = self.gaps_of(TIMED, [(time, 0) for time in times])
        self.assertEqual(found["counter"], None)
        self.assertEqual([(gap["row"], gap["lost"]) for gap in found["marked"]], [(6, 1), (9, 4)])
        self.assertEqual((found["lost"], found["complete"]), (5, True))

    def test_repeated_stamps_are_no_steps(self):
        times = [0.0, 0.0, 0.0, 0.01, 0.01, 0.01, 0.02, 0.02, 0.02]
        self.assertEqual(self.gaps_of(TIMED, [(time, 0) for time in times])["marked"], [])

    def test_pauses_without_loss_are_marked_by_the_stamps(self):
        columns = [("TIME", "double"), *COUNTED]
        times = [0.0, 0.01, 0.02, 5.0, 5.01, 5.02]
        found = self.gaps_of(columns, [(time, i, 0) for i, time in enumerate(times)])
        self.assertEqual([(gap["row"], gap["lost"]) for gap in found["marked"]], [(3, 0)])
        self.assertEqual(found["lost"], 0)

    def test_stamps_tell_how_often_a_counter_went_round(self):
        columns = [("TIME", "double"), ("COUNT", "uint8"), ("X", "int16")]
        for missing in [300, 256, 1023, 180]:
            numbers = [*range(10), *range(10 + missing, 20 + missing)]
            found = self.gaps_of(columns, [(0.01 * i, i % 256, 0) for i in numbers])
            self.assertEqual([(gap["row"], gap["lost"]) for gap in found["marked"]],
                             [(10, missing)])
            self.assertEqual(found["lost"], missing)

    def test_of_many_gaps_the_longest_are_marked(self):
        numbers = random.Random(5)
        steps = [0.01 * (1 if i % 2 == 0 or i % 4 == 1 else numbers.randrange(3, 100))
                 for i in range(8000)]
        times, time = [], 0.0
        for step in steps:
            time += step
            times.append(time)
        found = self.gaps_of(TIMED, [(time, 0) for time in times])
        self.assertFalse(found["complete"])
        self.assertEqual(len(found["marked"]), 1000)
        wanted = sorted((round(step / 0.01) for step in steps[1:]), reverse=True)[:1000]
        self.assertEqual(sorted((round((gap["end"] - gap["start"]) / 0.01)
                                 for gap in found["marked"]), reverse=True), wanted)
        self.assertEqual([gap["row"] for gap in found["marked"]],
                         sorted(gap["row"] for gap in found["marked"]))


class Loader(html.parser.HTMLParser):
    """Finds what a browser would load or run."""

    def __init__(self):
        super().__init__()
        self.tags, self.scripts = [], 0

    def handle_starttag(self, tag, attrs):
        names = dict(attrs)
        for name in ["src", "href", "srcset", "action", "data", "poster"]:
            if name in names:
                self.tags.append((tag, name, names[name]))
        if tag in ["link", "iframe", "img", "object", "embed", "base", "form"]:
            self.tags.append(tag)
        if any(name.startswith("on") for name in names):
            self.tags.append((tag, "handler"))
        self.scripts += tag == "script"


class Safety(PlotTest):
    HOSTILE = "</script><script>alert(1)</script>"[:32]

    def test_page_loads_nothing(self):
        page = self.page_of(self.write("a.bin", binary_file()))
        loader = Loader()
        loader.feed(page)
        self.assertEqual((loader.tags, loader.scripts), ([], 3))
        self.assertIn("default-src 'none'", page)
        for word in ["url(", "@import", "fetch(", "XMLHttpRequest", "WebSocket", "import("]:
            self.assertNotIn(word, page)
        comment = "/*! https://github.com/leeoniya/uPlot"
        self.assertEqual(page.count("https://") + page.count("http://"), page.count(comment))

    def test_licence_of_uplot_is_within(self):
        page = self.page_of(self.write("a.bin", binary_file()))
        self.assertIn("Copyright (c) 2022 Leon Sorokin", page)
        self.assertIn("The above copyright notice and this permission notice shall be included",
                      page)

    def test_names_cannot_end_a_script(self):
        names = [self.HOSTILE, "<!--<script>", "]]>&amp;'\"", b"\xff\xfe"]
        rows = [(1, 2, 3, 4), (2, 3, 4, 5)]
        content = binary_file([(name, "uint8") for name in names], rows)
        name = self.write("<img src=x onerror=alert(1)>.bin", content)
        for title in [[], ["--title", "</script><script>alert(2)</script>"]]:
            page = self.page_of(name, *title)
            loader = Loader()
            loader.feed(page)
            self.assertEqual((loader.tags, loader.scripts), ([], 3))
            found = recording_of(page)
            self.assertEqual(list(columns_of(found)), [*names[:3], "\ufffd\ufffd"])
            self.assertEqual(found["title"], title[1] if title else name)
            self.assertNotIn("<img", page)
            self.assertNotIn("<script>alert", page)

    def test_page_code_never_makes_html_of_texts(self):
        page = self.page_of(self.write("a.bin", binary_file()))
        code = page[page.rindex("<script>"):]
        for word in ["innerHTML", "outerHTML", "insertAdjacentHTML", "document.write", "eval("]:
            self.assertNotIn(word, code)


class WithoutUplot(ToolTest):
    """Of a program that was built without it."""

    def test_plot_says_that_it_cannot(self):
        self.write("a.bin", binary_file())
        self.output_of("plot", "a.bin", code=1, stderr="sensorfile: this sensorfile was built "
                       "without uPlot, so it cannot plot\n")
        self.assert_files("a.bin")


if __name__ == "__main__":
    main()

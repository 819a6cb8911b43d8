"""Opens the pages of sensorfile plot in Chromium, moves, drags and clicks.

The pictures that the tests take are kept in the folder that SENSORFILE_PICTURES names, if any.
"""

import json
import math
import os
import pathlib
import tempfile

from selenium import webdriver
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

from sample_files import binary_file, pack_rows
from tool_test import ToolTest, main

COLUMNS = [("TIME", "double"), ("COUNT", "uint16"), ("ACCX", "int16"), ("ACCY", "int16"),
           ("ACCZ", "int16"), ("GYRX", "float"), ("GYRY", "float"), ("INFO", "uint8")]
# Of one hundredth of a second each; 500 are missing.
NUMBERS = [*range(9000), *range(9500, 30000)]
WAIT = 30


def row_of(number):
    angle = number / 300
    return (number * 0.01, number % 65536, int(900 * math.sin(angle)), int(500 * math.cos(angle)),
            2048 + number % 7, math.sin(angle) * math.sin(angle / 9), math.cos(angle / 3),
            3 - number // 9000)


class Browser(ToolTest):
    @classmethod
    def setUpClass(cls):
        profile = tempfile.TemporaryDirectory()
        cls.addClassCleanup(profile.cleanup)
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for argument in ["--headless=new", "--no-sandbox", "--disable-gpu", "--no-first-run",
                         "--disable-background-networking", "--disable-dev-shm-usage",
                         "--window-size=1200,900", "--user-data-dir=" + profile.name]:
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        service = webdriver.chrome.service.Service("/usr/bin/chromedriver")
        cls.browser = webdriver.Chrome(service=service, options=options)
        cls.addClassCleanup(cls.browser.quit)

    def open(self, content, *arguments):
        self.write("a.bin", content)
        self.output_of("plot", "a.bin", "--force", *arguments)
        self.browser.get((self.folder / "a.html").as_uri())
        WebDriverWait(self.browser, WAIT).until(lambda _: self.run_script(
            "return document.readyState === 'complete' && 'sensorfilePlot' in window"))

    def open_recording(self):
        self.open(binary_file(COLUMNS, [row_of(number) for number in NUMBERS], frequency=100.0))

    def tearDown(self):
        # Reading pixels is what tests do, and slow as it may be.
        self.assertEqual([entry for entry in self.browser.get_log("browser")
                          if entry["source"] != "rendering"], [])

    def run_script(self, script, *arguments):
        return self.browser.execute_script(script, *arguments)

    def text_of(self, name):
        return self.browser.find_element(By.ID, name).text

    def panel(self, number):
        """The field of a panel that takes the pointer."""
        return self.browser.find_elements(By.CSS_SELECTOR, ".u-over")[number]

    def ranges(self):
        return self.run_script("return sensorfilePlot.panels.map(one => "
                               "[one.scales.x.min, one.scales.x.max])")

    def legend(self, number):
        section = self.browser.find_elements(By.CSS_SELECTOR, ".panel")[number]
        names = section.find_elements(By.CSS_SELECTOR, ".u-series .u-label")
        values = section.find_elements(By.CSS_SELECTOR, ".u-series .u-value")
        return {name.text: value.text for name, value in zip(names, values) if name.text}

    def at(self, panel, share, middle=0.5):
        """Moves the pointer to a share of a panel's width."""
        size = panel.size
        return ActionChains(self.browser, duration=0).move_to_element_with_offset(
            panel, int((share - 0.5) * size["width"]), int((middle - 0.5) * size["height"]))

    def drag(self, panel, start, end, key=None):
        chain = self.at(panel, start)
        if key is not None:
            chain.key_down(key)
        chain.click_and_hold().move_by_offset(int((end - start) * panel.size["width"]), 0).release()
        if key is not None:
            chain.key_up(key)
        chain.perform()

    def pixels(self, panel, position, color, tolerance):
        """How many pixels of a panel's column at a position have about a colour."""
        return self.run_script("""
            const [index, position, color, tolerance] = arguments;
            const chart = sensorfilePlot.panels[index];
            const x = Math.round(chart.valToPos(position, "x", true));
            const { top, height } = chart.bbox;
            const { data } = chart.ctx.getImageData(x, top, 1, height);
            let found = 0;
            for (let i = 0; i < data.length; i += 4)
              found += color.every((part, k) => Math.abs(part - data[i + k]) <= tolerance);
            return found;""", panel, position, color, tolerance)

    def take_picture(self, name):
        if "SENSORFILE_PICTURES" in os.environ:
            folder = pathlib.Path(os.environ["SENSORFILE_PICTURES"])
            self.browser.save_screenshot(str(folder / f"{name}.png"))

    def use_theme(self, name):
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "features": [{"name": "prefers-color-scheme", "value": name}]})

    def assert_range(self, low, high, tolerance=1.0):
        for found in self.ranges():
            self.assertAlmostEqual(found[0], low, delta=tolerance)
            self.assertAlmostEqual(found[1], high, delta=tolerance)


class View(Browser):
    def setUp(self):
        super().setUp()
        self.open_recording()

    def test_panels_and_facts_are_shown(self):
        titles = [one.text for one in self.browser.find_elements(By.CSS_SELECTOR, ".panel h2")]
        self.assertEqual(titles, ["ACC", "GYR", "COUNT", "INFO"])
        self.assertEqual((self.browser.title, self.text_of("title")), ("a.bin", "a.bin"))
        facts = self.text_of("facts").replace("\n", " ")
        for fact in ["rows 29\u202f500", "duration 0:05:00 h", "frequency 100 Hz",
                     "measured 98.3333 Hz", "time by TIME", "gaps 1, 500 rows lost (told by COUNT)",
                     "created 2017-05-23 10:04:31 UTC"]:
            self.assertIn(fact, facts)
        self.assertIn("smallest and the largest of each 7 rows", self.text_of("detail"))
        self.assert_range(0, 299.99, 0.001)
        self.take_picture("light")

    def test_nothing_is_loaded(self):
        self.browser.get_log("performance")  # so far
        self.browser.refresh()
        events = [json.loads(entry["message"])["message"]
                  for entry in self.browser.get_log("performance")]
        self.assertEqual([event["params"]["request"]["url"] for event in events
                          if event["method"] == "Network.requestWillBeSent"],
                         [self.browser.current_url])
        self.assertEqual(self.run_script(
            "return performance.getEntriesByType('resource').length"), 0)

    def test_pointer_shows_values_of_all_panels(self):
        self.assertEqual(self.legend(0), {"ACCX": "\u2013", "ACCY": "\u2013", "ACCZ": "\u2013"})
        self.at(self.panel(1), 0.75).perform()
        self.assertRegex(self.text_of("cursor"), r"^22[45]\.\d+ s$")
        for panel in range(4):
            for name, value in self.legend(panel).items():
                self.assertRegex(value, r"^-?[\d.]+( \u2026 -?[\d.]+)?$", name)
        self.assertEqual(self.legend(3), {"INFO": "1"})
        self.take_picture("pointer")
        self.at(self.panel(1), 0.305).perform()
        self.assertEqual(self.legend(3), {"INFO": "\u2013"})

    def test_drag_zooms_all_panels_and_double_click_shows_everything(self):
        self.drag(self.panel(0), 0.5, 0.75)
        self.assert_range(150, 225)
        self.take_picture("zoomed")
        ActionChains(self.browser).double_click(self.panel(2)).perform()
        self.assert_range(0, 299.99, 0.001)

    def test_zooming_in_shows_every_row(self):
        self.assertEqual(self.run_script("return sensorfilePlot.getLevel()"), 0)
        self.drag(self.panel(0), 0.5, 0.52)
        self.assertEqual(self.text_of("detail"), "every row is shown")
        for panel, column in enumerate(["ACCX", "GYRX", "COUNT", "INFO"]):
            self.at(self.panel(panel), 0.3).perform()
            self.assertNotIn("\u2026", self.legend(panel)[column])
        number = round(float(self.text_of("cursor")[:-2]) * 100)
        self.at(self.panel(2), 0.3).perform()
        self.assertAlmostEqual(int(self.legend(2)["COUNT"]), number, delta=2)
        self.browser.find_element(By.ID, "reset").click()
        self.assertEqual(self.run_script("return sensorfilePlot.getLevel()"), 0)
        self.assert_range(0, 299.99, 0.001)

    def test_labels_of_the_axes_are_not_rounded(self):
        for first, last in [(0, 5), (100, 102.5), (7, 7.013), (0, 300)]:
            self.run_script("sensorfilePlot.setRange(arguments[0], arguments[1])", first, last)
            for splits, labels in self.run_script(
                    "return sensorfilePlot.panels.flatMap(one => one.axes.map(axis => "
                    "[axis._splits, axis._values]))"):
                for split, label in zip(splits, labels):
                    if label:
                        self.assertAlmostEqual(float(label), split, 9)

    def test_drag_with_shift_moves(self):
        self.run_script("sensorfilePlot.setRange(100, 200)")
        self.drag(self.panel(1), 0.75, 0.5, Keys.SHIFT)
        self.assert_range(125, 225)
        self.drag(self.panel(1), 0.1, 0.9, Keys.SHIFT)
        self.drag(self.panel(1), 0.1, 0.9, Keys.SHIFT)
        self.assert_range(0, 100)

    def test_wheel_moves_with_shift_zooms_with_ctrl_and_scrolls_else(self):
        self.run_script("sensorfilePlot.setRange(100, 200)")
        turn = """
            const over = document.querySelector(".u-over");
            const { left, width } = over.getBoundingClientRect();
            const event = new WheelEvent("wheel", { deltaY: 100, clientX: left + width / 2,
              cancelable: true, bubbles: true, ...arguments[0] });
            over.dispatchEvent(event);
            return event.defaultPrevented;"""
        self.assertTrue(self.run_script(turn, {"shiftKey": True}))
        self.assert_range(115, 215, 0.01)
        self.assertTrue(self.run_script(turn, {"ctrlKey": True, "deltaY": -100}))
        (low, high), *_ = self.ranges()
        self.assertAlmostEqual((low + high) / 2, 165, delta=0.5)
        self.assertLess(high - low, 90)
        self.assertFalse(self.run_script(turn, {}))

    def test_keys_and_buttons_do_the_same(self):
        body = self.browser.find_element(By.TAG_NAME, "body")
        for pair in [("zoom-in", "+"), ("later", Keys.ARROW_RIGHT), ("earlier", Keys.ARROW_LEFT),
                     ("zoom-out", "-"), ("reset", "0")]:
            found = []
            for press in [lambda: self.browser.find_element(By.ID, pair[0]).click(),
                          lambda: body.send_keys(pair[1])]:
                self.run_script("sensorfilePlot.setRange(100, 200)")
                press()
                found.append(self.ranges())
            self.assertEqual(found[0], found[1], pair)
            self.assertNotEqual(found[0][0], [100, 200])

    def test_reset_is_reached_by_keyboard(self):
        self.run_script("sensorfilePlot.setRange(100, 200)")
        self.browser.find_element(By.TAG_NAME, "body").send_keys(Keys.TAB)
        self.assertEqual(self.browser.switch_to.active_element.get_attribute("id"), "reset")
        self.browser.switch_to.active_element.send_keys(Keys.ENTER)
        self.assert_range(0, 299.99, 0.001)

    def test_gaps_are_shaded_and_break_the_line(self):
        shade = self.run_script("""
            const chart = sensorfilePlot.panels[3];
            const x = Math.round(chart.valToPos(92.5, "x", true));
            return [...chart.ctx.getImageData(x, chart.bbox.top + 3, 1, 1).data].slice(0, 3);""")
        height = self.run_script("return sensorfilePlot.panels[3].bbox.height")
        # Everything but lines of the grid has the colour of gaps within, and nothing elsewhere.
        self.assertGreater(self.pixels(3, 92.5, shade, 2), 0.9 * height)
        self.assertEqual(self.pixels(3, 80.0, shade, 2), 0)
        self.assertEqual(self.pixels(3, 97.0, shade, 2), 0)
        line = [0, 114, 178]
        self.assertGreater(self.pixels(3, 80.0, line, 70), 0)
        self.assertEqual(self.pixels(3, 92.5, line, 70), 0)

    def test_gaps_are_listed_and_gone_to(self):
        self.browser.find_element(By.ID, "gap-summary").click()
        button, = self.browser.find_elements(By.CSS_SELECTOR, "#gap-list button")
        self.assertEqual(button.text, "89.990 s, 500 rows lost")
        button.click()
        self.assert_range(84.98, 100.01, 0.1)

    def test_names_hide_their_lines(self):
        self.browser.find_element(By.CSS_SELECTOR, ".u-series:nth-child(2) .u-label").click()
        self.assertEqual(self.run_script("return sensorfilePlot.panels[0].series[1].show"), False)

    def test_window_of_any_width(self):
        self.addCleanup(self.browser.set_window_size, 1200, 900)
        for width in [1500, 520]:
            self.browser.set_window_size(width, 900)
            WebDriverWait(self.browser, WAIT).until(lambda _: self.run_script(
                "return sensorfilePlot.panels.every(one => one.width === "
                "document.getElementById('panels').clientWidth)"))
            self.assertLessEqual(self.run_script("return document.body.scrollWidth"), width)
        self.take_picture("narrow")

    def test_dark_theme(self):
        self.addCleanup(self.use_theme, "light")
        self.run_script("sensorfilePlot.setRange(50, 150)")
        self.use_theme("dark")
        WebDriverWait(self.browser, WAIT).until(lambda _: self.pixels(3, 80.0, [86, 180, 233], 70) > 0)
        self.assert_range(50, 150, 0.001)
        self.assertEqual(len(set(self.run_script(
            "return sensorfilePlot.panels.map(one => one.bbox.width)"))), 1)
        self.take_picture("dark")


class Odd(Browser):
    def test_hostile_names_are_text(self):
        name = "</script><script>alert(1)</script>"[:32]
        self.open(binary_file([(name, "uint8"), ("<b>X", "uint8")], [(1, 2), (2, 3)]),
                  "--title", "<img src=x onerror=alert(2)>")
        self.assertEqual(self.text_of("title"), "<img src=x onerror=alert(2)>")
        titles = [one.text for one in self.browser.find_elements(By.CSS_SELECTOR, ".panel h2")]
        self.assertEqual(titles, [name, "<b>X"])
        self.assertEqual(list(self.legend(0)), [name])
        self.assertEqual(self.browser.find_elements(By.CSS_SELECTOR, "img, b"), [])

    def test_without_rows_it_says_so(self):
        self.open(binary_file(rows=[]))
        self.assertIn("There are no rows to show.", self.text_of("panels"))

    def test_one_row(self):
        self.open(binary_file(COLUMNS, [row_of(7)]))
        self.assertEqual(len(self.ranges()), 4)
        self.assert_range(-0.43, 0.57, 0.01)

    def test_stamps_that_do_not_move(self):
        self.open(binary_file(COLUMNS, [row_of(7), row_of(7)]))
        self.assert_range(-0.43, 0.57, 0.01)

    def test_rows_without_time_are_counted(self):
        self.open(binary_file([("X", "int16")], [(1,), (2,), (4,)], frequency=0.0))
        self.at(self.panel(0), 0.5).perform()
        self.assertRegex(self.text_of("cursor"), "^row 1$")

    def test_values_of_any_size(self):
        values = [0.0, 5e-324, 1.7e308, -1.7e308, math.nan, math.inf, -math.inf, 1.0]
        self.open(binary_file([("X", "double"), ("Y", "double"), ("NONE", "double")],
                              [(value, 1e-300 * i, math.nan) for i, value in enumerate(values)]))
        self.at(self.panel(0), 0.5).perform()
        self.drag(self.panel(1), 0.2, 0.8)
        self.assertEqual(len(self.ranges()), 2)

    def test_notes_are_shown(self):
        rows = [(0.0, 1), (1.0, 2), (0.5, 3)]
        self.open(binary_file([("TIME", "double"), ("X", "int16")], rows))
        self.assertIn("the stamps of TIME go back", self.text_of("notes"))


class Hour(Browser):
    """An hour of ten columns at 1 kHz."""

    def test_opens_and_zooms(self):
        columns = [("TIME", "double"), *((sensor + axis, "int16") for sensor in ["ACC", "GYR", "MAG"]
                                         for axis in "XYZ")]
        second = [tuple([0.0, *(int(1000 * math.sin(i / (50 + 9 * k))) for k in range(9))])
                  for i in range(1000)]
        with open(self.folder / "hour.bin", "wb") as stream:
            stream.write(binary_file(columns, [], frequency=1000.0))
            for start in range(3600):
                stream.write(pack_rows(columns, [(start + i / 1000, *row[1:])
                                                 for i, row in enumerate(second)]))
        self.output_of("plot", "hour.bin")
        self.assertLess((self.folder / "hour.html").stat().st_size, 6_000_000)
        self.browser.get((self.folder / "hour.html").as_uri())
        WebDriverWait(self.browser, WAIT).until(
            lambda _: self.run_script("return sensorfilePlot.drawnAfterMs > 0"))
        self.assertEqual(self.run_script("return sensorfilePlot.getLevel()"), 0)
        self.drag(self.panel(2), 0.5, 0.55)
        self.assert_range(1800, 1980, 10)
        self.assertEqual(self.run_script("return sensorfilePlot.getLevel()"), 1)
        print("drawn after", round(self.run_script("return sensorfilePlot.drawnAfterMs")), "ms")


if __name__ == "__main__":
    main()

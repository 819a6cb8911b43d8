"""Runs quoril as a user does and looks at its output, its files and its exit codes.

Usage: program_test.py PROGRAM PROJECT_ROOT MODULE_FOLDER [TEST...]
MODULE_FOLDER holds modules without entry points and of another host version.
"""

import fcntl
import json
import os
import pathlib
import pty
import signal
import subprocess
import sys
import tempfile
import termios
import time
import unittest

PROGRAM, ROOT, MODULES = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
PLUGIN = "QuorilPluginSensorFile-2.5.0"
# No test takes that long; a hanging one ends at last.
LIMIT = 60

MATRIX = """version: 1
filters:
- {name: source, class: FilterMatrixSource, properties: [Matrix: 1 2; 3 4]}
- {name: probe, class: FilterProbe, properties: [Pins Number: 1]}
connections: [source.matrix -> probe.input#1]
"""

# A unit that is far faster than its reader, which looks only fifty times a second.
OVERFLOW = """version: 1
layouts: [main, {name: slow, period: 20ms}]
filters:
- {name: imu, class: FilterImuSimulator, properties: [Rate: 100000, Count: 5000]}
- {name: probe, class: FilterProbe, layout: slow, properties: [File Name: out.jsonl, Pins Number: 1]}
connections: ["imu.frame -> probe.input#1 {buffer: %s}"]
"""

ENDLESS = """version: 1
plugins: [QuorilPluginSensorFile-2.5.0]
filters:
- {name: imu, class: FilterImuSimulator, properties: [Rate: 1000]}
- name: rec
  class: FilterRecordSensorFile
  properties:
  - File Name: out.bin
  - Binary: true
  - Pins Number: 2
  - ColNames#1: ACCX ACCY ACCZ
  - ColTypes#1: DOUBLE
  - ColNames#2: COUNT LOSS RATE
  - ColTypes#2: DOUBLE
  - Record: true
connections: [imu.acc -> rec.input#1, imu.frame -> rec.input#2]
"""

REPLAY = """version: 1
plugins: [QuorilPluginSensorFile-2.5.0]
filters:
- name: player
  class: FilterReplaySensorFile
  properties: [Load File: out.bin, QuickProcess: true, Replay: true]
- {name: probe, class: FilterProbe, properties: [Pins Number: 1]}
connections: [player.ACC -> probe.input#1]
stop: [when: {player.Replay: false}]
"""


class ProgramTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, text, name="flow.yaml"):
        (self.folder / name).write_text(text)
        return name

    def quoril(self, *arguments, **options):
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, text=True, timeout=LIMIT,
                              capture_output=True, **options)

    def start(self, *arguments, **options):
        process = subprocess.Popen([PROGRAM, *arguments], cwd=self.folder, text=True,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.stderr.close)
        return process

    def wait_until(self, condition, what):
        end = time.monotonic() + LIMIT
        while not condition():
            self.assertLess(time.monotonic(), end, what)
            time.sleep(0.01)

    def assert_ends(self, result, code, stderr=None):
        self.assertEqual(result.returncode, code, result.stderr)
        if stderr is not None:
            self.assertEqual(result.stderr, stderr)


class Usage(ProgramTest):
    def test_help_goes_to_stdout(self):
        result = self.quoril("--help")
        self.assert_ends(result, 0, "")
        for word in ["run", "inspect", "check", "graph", "Exit codes"]:
            self.assertIn(word, result.stdout)

    def test_version_is_told(self):
        self.assertEqual(self.quoril("--version").stdout, "quoril, host framework 0.10.0\n")

    def test_wrong_usage_ends_with_2_and_says_nothing_on_stdout(self):
        self.write(MATRIX)
        for arguments in [[], ["rum"], ["run"], ["run", "flow.yaml", "--rate", "0"],
                          ["run", "flow.yaml", "--rate", "fast"], ["run", "flow.yaml", "--for", "1"],
                          ["run", "flow.yaml", "--for", "1,5s"], ["run", "flow.yaml", "-q", "-v"],
                          ["run", "flow.yaml", "--progress", "yes"], ["run", "flow.yaml", "more"],
                          ["graph"], ["check"], ["inspect", "A", "B"]]:
            with self.subTest(arguments):
                result = self.quoril(*arguments)
                self.assert_ends(result, 2)
                self.assertEqual(result.stdout, "")
                self.assertNotEqual(result.stderr, "")

    def test_wrong_times_and_rates_name_the_text(self):
        self.write(MATRIX)
        self.assert_ends(self.quoril("run", "flow.yaml", "--rate", "-1"), 2,
                         "quoril: --rate: '-1' is neither a number above 0 nor max\n")
        self.assert_ends(self.quoril("run", "flow.yaml", "--for", "5"), 2,
                         "quoril: --for: '5' is not a time; write e.g. 200ms, 1.5s or 2min\n")

    def test_full_disk_of_stdout_is_a_failure(self):
        with open("/dev/full", "w") as full:
            result = subprocess.run([PROGRAM, "inspect"], stdout=full, stderr=subprocess.PIPE,
                                    text=True, timeout=LIMIT)
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stderr, "quoril: the standard output cannot be written\n")


class Run(ProgramTest):
    def test_results_go_to_stdout_and_the_summary_to_stderr(self):
        result = self.quoril("run", self.write(MATRIX))
        self.assert_ends(result, 0)
        self.assertEqual(json.loads(result.stdout)["values"], [1, 3, 2, 4])
        self.assertIn("source.matrix -> probe.input#1           1           1            0",
                      result.stderr)

    def test_quiet_says_nothing(self):
        self.assert_ends(self.quoril("run", "-q", self.write(MATRIX)), 0, "")

    def test_verbose_tells_of_the_script(self):
        self.write(MATRIX + "script: [{at: 10ms, command: source.Send}]\n")
        result = self.quoril("run", "-v", "flow.yaml")
        self.assert_ends(result, 0)
        self.assertEqual(len(result.stdout.splitlines()), 2)
        self.assertRegex(result.stderr, r"0\.\d\d\d s: command 'source\.Send'\n")

    def test_set_overrides_the_file(self):
        result = self.quoril("run", self.write(MATRIX), "--set", "source.Matrix=7",
                             "--set", "source.Time Stamp=2.5")
        self.assert_ends(result, 0)
        self.assertEqual(json.loads(result.stdout)["values"], [7])

    def test_wrong_override_names_itself(self):
        self.assert_ends(
            self.quoril("run", self.write(MATRIX), "--set", "source.Matrx=7"), 2,
            "--set 'source.Matrx=7': filter 'source' has no property 'Matrx'; did you mean "
            "'Matrix'?\n")

    def test_time_limit_ends_an_endless_flow(self):
        self.write(MATRIX.replace("FilterMatrixSource, properties: [Matrix: 1 2; 3 4]",
                                  "FilterImuSimulator").replace("source.matrix", "source.acc"))
        begin = time.monotonic()
        self.assert_ends(self.quoril("run", "flow.yaml", "--for", "200ms"), 0)
        self.assertGreaterEqual(time.monotonic() - begin, 0.2)

    def test_stop_condition_on_a_value_ends_the_run(self):
        self.write(MATRIX + "script: [{at: 10ms, set: {source.Time Stamp: 5}}]\n"
                            "stop: [when: {source.Time Stamp: 5}]\n")
        self.assert_ends(self.quoril("run", "flow.yaml"), 0)

    def test_lost_samples_end_with_3(self):
        result = self.quoril("run", self.write(OVERFLOW % 2))
        self.assert_ends(result, 3)
        self.assertRegex(result.stderr, r"\n\d+ samples were lost in full buffers\n$")

    def test_a_buffer_of_one_loses_nothing(self):
        self.assert_ends(self.quoril("run", self.write(OVERFLOW % 1)), 0)

    def test_rate_max_loses_nothing(self):
        self.assert_ends(self.quoril("run", self.write(OVERFLOW % 100), "--rate", "max"), 0)
        self.assertEqual(len((self.folder / "out.jsonl").read_text().splitlines()), 5000)

    def test_progress_is_shown_on_a_terminal_only(self):
        self.write(MATRIX)
        self.assertNotIn("rows/s", self.quoril("run", "flow.yaml").stderr)
        self.assertIn("rows/s", self.quoril("run", "flow.yaml", "--progress", "always").stderr)
        self.assertIn("rows/s", self.run_on_terminal("run", "flow.yaml"))
        self.assertNotIn("rows/s", self.run_on_terminal("run", "flow.yaml", "--progress", "never"))
        self.assertNotIn("rows/s", self.run_on_terminal("run", "flow.yaml", "-q"))

    def run_on_terminal(self, *arguments):
        ours, theirs = pty.openpty()
        process = subprocess.Popen([PROGRAM, *arguments], cwd=self.folder, stderr=theirs,
                                   stdout=subprocess.DEVNULL)
        os.close(theirs)
        text = b""
        try:
            while part := os.read(ours, 4096):
                text += part
        except OSError:  # the terminal's other side is closed
            pass
        os.close(ours)
        self.assertEqual(process.wait(LIMIT), 0)
        return text.decode()


class Refusals(ProgramTest):
    def assert_refused(self, text, code, stderr):
        for command in ["check", "run"]:
            with self.subTest(command):
                result = self.quoril(command, self.write(text))
                self.assert_ends(result, code, stderr)
                self.assertEqual(result.stdout, "")

    def test_missing_flow_file(self):
        for command in ["check", "run", "graph"]:
            self.assert_ends(self.quoril(command, "none.yaml"), 2,
                             "none.yaml: cannot be read: No such file or directory\n")

    def test_wrong_names_and_texts(self):
        self.assert_refused(
            MATRIX.replace("Matrix: 1", "Matrx: 1").replace("Pins Number: 1", "Pins Number: x"), 2,
            "flow.yaml:3:58: filter 'source' has no property 'Matrx'; did you mean 'Matrix'?\n"
            "flow.yaml:4:63: property 'Pins Number' of filter 'probe' cannot be set to 'x': 'x' is "
            "not a whole number from 0 to 64\n")

    def test_syntax_error(self):
        result = self.quoril("check", self.write("version: 1\nfilters: [a\nb: c\n"))
        self.assert_ends(result, 2)
        self.assertRegex(result.stderr, r"^flow\.yaml:\d+:\d+: ")

    def test_missing_plugin(self):
        self.assert_refused(
            "version: 1\nplugins: [sub/None.so]\nfilters: [{name: a, class: A}]\n", 2,
            "flow.yaml:2:11: plug-in 'sub/None.so' was not found; looked for "
            f"{os.path.realpath(self.folder)}/sub/None.so\n")

    def test_file_that_is_no_plugin(self):
        self.write("no module", "text.so")
        result = self.quoril("inspect", "--plugin", "text.so")
        self.assert_ends(result, 2)
        self.assertRegex(result.stderr, r"^--plugin: .*text\.so.*\n$")

    def test_plugin_without_entry_points_and_of_another_version(self):
        for name, cause in [("EmptyModule", "dll"), ("OldModule", "version")]:
            module = next(MODULES.glob(f"*{name}*"))
            result = self.quoril("run", self.write(MATRIX), "--plugin", str(module))
            self.assert_ends(result, 2)
            self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)
            self.assertIn(module.name, result.stderr)
            self.assertIn(cause, result.stderr)

    def test_folder_that_is_not_there(self):
        self.assert_refused(
            ENDLESS.replace("out.bin", "none/out.bin"), 1,
            "flow.yaml:8:16: property 'File Name' of filter 'rec' cannot be set to 'none/out.bin': "
            f"the folder '{os.path.realpath(self.folder)}/none' does not exist\n")

    def test_missing_recording(self):
        self.assert_refused(
            REPLAY, 1,
            "flow.yaml:6:27: property 'Load File' of filter 'player' cannot be set to 'out.bin': "
            f"File not valid. ({os.path.realpath(self.folder)}/out.bin does not exist)\n")

    def test_folder_and_empty_file_as_recording(self):
        (self.folder / "sub").mkdir()
        self.write("", "empty")
        for name, cause in [("sub", "is a folder"), ("empty", "is empty")]:
            result = self.quoril("check", self.write(REPLAY.replace("out.bin", name)))
            self.assert_ends(result, 1)
            self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)
            self.assertRegex(result.stderr, rf"'{name}': .*{cause}\)\n$")

    def test_csv_file_that_cannot_be_read_is_told_once(self):
        self.write("t,x\n", "header.csv")
        flow = ("version: 1\nfilters:\n- {name: csv, class: FilterCsvSource, "
                "properties: [File Name: %s, Columns: acc=x]}\n")
        for name, cause in [("none.csv", "does not exist"), (".", "is a folder, not a CSV file"),
                            ("header.csv", "holds a header but no rows")]:
            result = self.quoril("check", self.write(flow % name))
            self.assert_ends(result, 1)
            self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)
            self.assertRegex(result.stderr, rf"^flow\.yaml:3:\d+: property 'File Name' .*{cause}\n$")

    def test_recording_that_the_system_refuses_names_its_cause(self):
        self.assert_ends(
            self.quoril("run", self.write(ENDLESS.replace("out.bin", "/proc/quoril.bin"))), 1,
            "flow.yaml:15:13: property 'Record' of filter 'rec' cannot be set to 'true': Problem "
            "while openning : /proc/quoril.bin (No such file or directory)\n")

    def test_file_name_that_the_system_does_not_take(self):
        result = self.quoril("check", self.write(ENDLESS.replace("out.bin", 300 * "x")))
        self.assert_ends(result, 1)
        self.assertRegex(result.stderr, r"^flow\.yaml:8:16: .*x': File name too long\n$")

    def test_broken_recordings(self):
        for content in [b"", b"junk", b"\x00" * 100]:
            (self.folder / "out.bin").write_bytes(content)
            result = self.quoril("run", self.write(REPLAY))
            self.assert_ends(result, 1)
            self.assertRegex(result.stderr, r"^flow\.yaml:6:27: property 'Load File' .*'out\.bin'")

    def test_check_writes_and_starts_nothing(self):
        result = self.quoril("check", self.write(ENDLESS))
        self.assert_ends(result, 0, "")
        self.assertEqual(result.stdout, "flow.yaml: good, 2 filters, 2 connections\n")
        self.assertEqual([path.name for path in self.folder.iterdir()], ["flow.yaml"])

    def test_a_recording_that_cannot_start_is_a_failure(self):
        self.write(ENDLESS.replace("File Name: out.bin", "File Name: ''"))
        result = self.quoril("run", "flow.yaml")
        self.assert_ends(result, 1)
        self.assertEqual(
            result.stderr,
            "flow.yaml:15:13: property 'Record' of filter 'rec' cannot be set to 'true': File not "
            f"found : {os.path.realpath(self.folder)}/\n")


class Recording(ProgramTest):
    def count_rows(self):
        result = self.quoril("run", self.write(REPLAY, "replay.yaml"))
        self.assert_ends(result, 0)
        return len(result.stdout.splitlines())

    def test_is_complete_when_the_sources_are_finished(self):
        self.write(ENDLESS.replace("Rate: 1000", "Rate: 1000, Count: 700"))
        self.assert_ends(self.quoril("run", "flow.yaml", "--rate", "max"), 0)
        self.assertEqual(self.count_rows(), 700)

    def test_is_complete_after_an_interrupt(self):
        process = self.start("run", self.write(ENDLESS))
        file = self.folder / "out.bin"
        self.wait_until(lambda: file.exists() and file.stat().st_size > 1000, "rows in the file")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(LIMIT), 130)
        summary = process.stderr.read()
        pushed = int(summary.split("imu.acc -> rec.input#1")[1].split()[0])
        self.assertEqual(self.count_rows(), pushed, summary)

    def test_second_interrupt_aborts(self):
        # A probe whose pipe is full waits for a reader, and the end of the run with it.
        self.write(OVERFLOW.replace("out.jsonl", "/dev/stdout").replace(", Count: 5000", "") % 256)
        process = self.start("run", "flow.yaml")
        reader = process.stdout.fileno()
        self.wait_until(lambda: self.has_stopped_filling(reader), "a full pipe")
        process.send_signal(signal.SIGINT)
        self.assertIn("interrupted", process.stderr.readline())
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(LIMIT), 130)
        self.assertNotIn("connection", process.stderr.read())

    @staticmethod
    def has_stopped_filling(reader):
        def count():
            waiting = fcntl.ioctl(reader, termios.FIONREAD, bytes(4))
            return int.from_bytes(waiting, sys.byteorder)
        # A writer that is merely not given a turn stands still too, so the pipe must be full but
        # for the ends of its pages, which lines do not fill to the last byte.
        almost_all = 0.9 * fcntl.fcntl(reader, fcntl.F_GETPIPE_SZ)
        before = count()
        time.sleep(0.5)
        return count() == before >= almost_all

    def test_that_the_file_does_not_take_counts_as_lost_samples(self):
        result = self.quoril("run", self.write(ENDLESS.replace("out.bin", "/dev/full")), "--for",
                             "2s", "--rate", "max")
        self.assert_ends(result, 3)
        self.assertIn("filter 'rec': the recording to '/dev/full' ended by itself: No space left on "
                      "device\n", result.stderr)

    def test_that_ended_holds_nobody_back(self):
        self.write("x\n" + 2000 * "1\n", "rows.csv")
        self.write("""version: 1
plugins: [QuorilPluginSensorFile-2.5.0]
filters:
- {name: csv, class: FilterCsvSource, properties: [File Name: rows.csv, Columns: x=x]}
- {name: probe, class: FilterProbe, properties: [Pins Number: 1]}
- name: rec
  class: FilterRecordSensorFile
  properties: [File Name: /dev/full, Binary: true, Pins Number: 1, ColNames#1: x, Record: true]
connections: [csv.x -> rec.input#1, csv.x -> probe.input#1]
""")
        for rate in [], ["--rate", "max"]:
            result = self.quoril("run", "flow.yaml", "-q", *rate)
            self.assert_ends(result, 3, "filter 'rec': the recording to '/dev/full' ended by itself: "
                             "No space left on device\n")
            self.assertEqual(len(result.stdout.splitlines()), 2000)

    def test_whose_header_cannot_be_written_is_a_failure(self):
        self.write(ENDLESS.replace("  - Record: true", """  - Calib Pins Number: 1
  - CalibColNames#1: gain
  - Record: true
- {name: gain, class: FilterMatrixSource, properties: [Matrix: %s]}""" % "; ".join(256 * "1"))
                   .replace("connections: [", "connections: [gain.matrix -> rec.calibInput#1, "))
        result = self.quoril("run", "flow.yaml", "--for", "500ms", "-q")
        self.assert_ends(result, 1)
        self.assertRegex(result.stderr, r"^filter 'rec': the recording to '.*/out\.bin' ended by "
                         r"itself: .*too large.*\n$")

    def test_text_of_single_characters_is_warned_of(self):
        self.write(ENDLESS.replace("Binary: true", "Binary: false").replace(
            "ColTypes#2: DOUBLE", "ColTypes#2: UCHAR"))
        result = self.quoril("check", "flow.yaml")
        self.assert_ends(
            result, 0,
            "flow.yaml:14:17: warning: filter 'rec' writes 'UCHAR' columns as single characters of "
            "text: their values 9 to 13 and 32 vanish when the file is read; choose another type "
            "for 'ColTypes#2', or set 'Binary'\n")


class Inspect(ProgramTest):
    def test_lists_plugins_and_classes(self):
        result = self.quoril("inspect", "--plugin", PLUGIN)
        self.assert_ends(result, 0, "")
        for word in ["FilterCsvSource", "FilterRecordSensorFile", "2.5.0"]:
            self.assertIn(word, result.stdout)

    def test_without_plugins_only_the_hosts_classes_exist(self):
        plugins = json.loads(self.quoril("inspect", "--json").stdout)["plugins"]
        self.assertEqual([plugin["plugin"] for plugin in plugins], ["Quoril"])
        self.assertEqual(plugins[0]["filters"], ["FilterCsvSource", "FilterImuSimulator",
                                                 "FilterMatrixSource", "FilterProbe"])

    def test_describes_a_class(self):
        result = self.quoril("inspect", "FilterRecordSensorFile", "--plugin", PLUGIN, "--json",
                             "--set", "Pins Number=1")
        self.assert_ends(result, 0, "")
        report = json.loads(result.stdout)
        self.assertEqual([pin["name"] for pin in report["inputs"]], ["input#1"])
        properties = {each["name"]: each for each in report["properties"]}
        self.assertEqual(properties["ColTypes#1"]["entries"][12], "INT16")
        self.assertFalse(properties["Record"]["saved"])
        self.assertFalse(properties["Calib Version"]["writable"])

    def test_unknown_class_and_property(self):
        self.assert_ends(self.quoril("inspect", "FilterProb"), 2,
                         "no loaded plug-in has a class 'FilterProb'; did you mean 'FilterProbe'?\n")
        self.assert_ends(self.quoril("inspect", "FilterProbe", "--set", "Pin Number=1"), 2,
                         "--set 'Pin Number=1': class 'FilterProbe' has no property 'Pin Number'; "
                         "did you mean 'Pins Number'?\n")


class Examples(ProgramTest):
    def example(self, name, *arguments, **variables):
        result = self.quoril("run", str(ROOT / "examples" / name), *arguments,
                             env={**os.environ, **variables})
        self.assert_ends(result, 0)
        return result

    def test_record_and_replay(self):
        self.example("record-simulated.yaml", "--rate", "max")
        lines = self.example("replay-to-probe.yaml").stdout.splitlines()
        pins = [json.loads(line)["pin"] for line in lines]
        self.assertEqual(pins.count("input#1"), 600)
        self.assertEqual(pins.count("input#2"), 600)
        self.assertEqual(pins.count("input#3"), 1)

    def test_csv_to_sensor_file(self):
        self.write("t,gx,gy,gz,ax,ay,az\n" + "".join(f"{i}.5,1,2,3,4,5,{i}\n" for i in range(50)),
                   "walk.csv")
        self.example("csv-to-sensor-file.yaml", "--rate", "max")
        rows = (self.folder / "walk.txt").read_text().splitlines()
        self.assertEqual([float(value) for value in rows[-1].split()],
                         [49.5, 1, 2, 3, 4, 5, 49])

    def test_two_layouts(self):
        self.example("two-layouts.yaml")
        self.assertGreater((self.folder / "two-layouts.bin").stat().st_size, 100 * 24)

    def test_matrix_to_probe(self):
        self.assertEqual(len(self.example("matrix-to-probe.yaml").stdout.splitlines()), 2)

    def test_all_are_drawn(self):
        for path in sorted((ROOT / "examples").glob("*.yaml")):
            result = self.quoril("graph", str(path))
            self.assert_ends(result, 0, "")
            self.assertTrue(result.stdout.startswith("digraph flow {"))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])

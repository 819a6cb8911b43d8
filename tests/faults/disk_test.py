"""What becomes of recordings when their disk fills, fails, or their file goes: through the real host
and module.

Usage: disk_test.py QUORIL SENSORFILE FAILING_WRITES [TEST...]
FAILING_WRITES is the library that makes writes fail, or "" without it.

Full disks are small file systems in memory, which root can mount, and others within a name space of
their own. Where neither can, the program says so and ends with 77.
"""

import os
import pathlib
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import threading
import time
import unittest

QUORIL, SENSORFILE = (str(pathlib.Path(one).resolve()) for one in sys.argv[1:3])
FAILING_WRITES = sys.argv[3]
LIMIT = 60  # s
LEFT_OUT = 77
ROWS = 20000
FULL = "No space left on device"
ENCODINGS = ["binary", "text", "kivra2"]

# What a flow records: into one file, whose path is put in, by a filter of that name.
RECORDERS = {"binary": """
- name: {name}
  class: FilterRecordSensorFile
  properties:
  - File Name: {path}
  - Binary: true
  - Pins Number: 2
  - ColNames#1: ACCX, ACCY, ACCZ
  - ColTypes#1: DOUBLE
  - ColNames#2: COUNT, LOSS, RATE
  - ColTypes#2: UINT32
  - Record: {record}
""", "kivra2": """
- name: {name}
  class: FilterRecordKivra2Format
  properties:
  - File Name: {path}
  - Record: {record}
"""}
RECORDERS["text"] = RECORDERS["binary"].replace("Binary: true", "Binary: false")
CONNECTIONS = {
    "binary": ["acc -> {name}.input#1", "frame -> {name}.input#2"],
    "kivra2": ["acc -> {name}.3a", "mag -> {name}.3m", "frame -> {name}.FrameNumber",
               "button -> {name}.Button"],
}
CONNECTIONS["text"] = CONNECTIONS["binary"]


def make_flow(recordings, source="", script=""):
    """A flow of (name, encoding, path, records at once)."""
    text = ("version: 1\nplugins: [QuorilPluginSensorFile-2.5.0]\nfilters:\n"
            f"- {{name: imu, class: FilterImuSimulator, properties: [Raw Counts: true{source}]}}\n")
    connections = ""
    for name, encoding, path, record in recordings:
        text += RECORDERS[encoding].format(name=name, path=path, record=str(record).lower())
        for connection in CONNECTIONS[encoding]:
            connections += f"- imu.{connection.format(name=name)}\n"
    return f"{text}connections:\n{connections}{script}"


class DiskTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def mount(self, size):
        """A disk of that size."""
        disk = self.folder / "disk"
        disk.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}", "tmpfs", disk], check=True)
        self.addCleanup(subprocess.run, ["umount", disk], check=True)
        return disk

    def fill(self, disk):
        with open(disk / "filling", "wb", buffering=0) as file:
            try:
                while True:
                    file.write(bytes(4096))
            except OSError:
                pass

    def quoril(self, flow, *arguments, **options):
        (self.folder / "flow.yaml").write_text(flow)
        return subprocess.run([QUORIL, "run", "-q", "flow.yaml", *arguments], cwd=self.folder,
                              text=True, timeout=LIMIT, capture_output=True, **options)

    def assert_ends(self, result, code, *lines):
        """The lines are all that was told, in any order."""
        self.assertEqual(sorted(result.stderr.splitlines()), sorted(lines))
        self.assertEqual(result.returncode, code)

    def count_rows(self, path):
        """The number of rows of a file, which must be clean and without a hole."""
        for command in [["check"], ["cat", "--no-header", "--columns", "COUNT"]]:
            result = subprocess.run([SENSORFILE, *command, path], text=True, timeout=LIMIT,
                                    capture_output=True)
            self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        rows = [int(line) for line in result.stdout.split()]
        self.assertEqual(rows, list(range(len(rows))))
        return len(rows)


def ended(name, path, cause):
    return f"filter '{name}': the recording to '{path}' ended by itself: {cause}"


def lost_end(name, path, cause):
    return f"filter '{name}': the end of the recording to '{path}' is lost: {cause}"


class FullDisk(DiskTest):
    def test_ends_its_recordings_and_no_others(self):
        for encoding in ENCODINGS:
            with self.subTest(encoding):
                self.setUp()
                disk = self.mount("100k")
                names = [("one", disk / "one"), ("two", disk / "two"), ("else", self.folder / "else")]
                result = self.quoril(
                    make_flow([(name, encoding, path, True) for name, path in names],
                              f", Count: {ROWS}"), "--rate", "max")
                self.assert_ends(result, 3, *[ended(name, path, FULL) for name, path in names[:2]])
                rows = [self.count_rows(path) for _, path in names]
                self.assertEqual(rows[2], ROWS)
                for count in rows[:2]:
                    self.assertGreater(count, 100)
                    self.assertLess(count, ROWS)

    def test_after_an_interrupt_is_told_rather_than_the_interrupt(self):
        disk = self.mount("100k")
        flow = make_flow([("rec", "binary", disk / "a", True)], ", Rate: 20000")
        (self.folder / "flow.yaml").write_text(flow)
        process = subprocess.Popen([QUORIL, "run", "-q", "flow.yaml"], cwd=self.folder, text=True,
                                   stderr=subprocess.PIPE)
        self.addCleanup(process.stderr.close)
        line = process.stderr.readline()
        process.terminate()
        self.assertEqual(line, ended("rec", disk / "a", FULL) + "\n")
        self.assertEqual(process.stderr.read(), "")
        self.assertEqual(process.wait(LIMIT), 3)


class Refusal(DiskTest):
    def refusal(self, property_, value, path, place=r"flow\.yaml:\d+:\d+: "):
        return (rf"^{place}{property_} .*'{value}'.*: {re.escape(str(path))}: {FULL}, 0 bytes are "
                r"free\n$")

    def test_leaves_every_older_recording_alone(self):
        for encoding in ENCODINGS:
            with self.subTest(encoding):
                self.setUp()
                disk = self.mount("100k")
                # The one that would be started first has room.
                for path in [self.folder / "roomy", disk / "old"]:
                    path.write_text("an older recording")
                self.fill(disk)
                for name in ["old", "new"]:
                    result = self.quoril(make_flow([
                        ("roomy", encoding, self.folder / "roomy", True),
                        ("full", encoding, disk / name, True)], ", Count: 10"))
                    self.assertEqual(result.returncode, 1)
                    self.assertRegex(result.stderr,
                                     self.refusal("property 'Record' of filter 'full'", "true",
                                                  disk / name))
                for path in [self.folder / "roomy", disk / "old"]:
                    self.assertEqual(path.read_text(), "an older recording")
                self.assertFalse((disk / "new").exists())

    def test_of_a_script(self):
        disk = self.mount("100k")
        (disk / "old").write_text("an older recording")
        self.fill(disk)
        result = self.quoril(make_flow(
            [("roomy", "binary", self.folder / "roomy", True),
             ("full", "binary", disk / "old", False)], "",
            "script: [{at: 200ms, set: {full.Record: true}}]\n"))
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stderr, self.refusal(r"set 'full\.Record' to", "true", disk / "old"))
        self.assertEqual((disk / "old").read_text(), "an older recording")
        self.assertGreater(self.count_rows(self.folder / "roomy"), 10)

    def calibration_flow(self, path, action, matrix="1 2; 3 4"):
        return f"""version: 1
plugins: [QuorilPluginSensorFile-2.5.0]
filters:
- {{name: gain, class: FilterMatrixSource, properties: [Matrix: {matrix}]}}
- {{name: kivra2, class: FilterKivra2CalibWriter}}
- name: cal
  class: FilterCalibSensorFileWriter
  properties: [File Name: {path}, Calib Pins Number: 1, CalibColNames#1: gain]
connections: [gain.matrix -> cal.calibInput#1]
script: [{{at: 100ms, {action}}}]
""".replace("CalibColNames#1: gain]", "\"CalibColNames#1\": gain]")

    def test_leaves_every_older_calibration_alone(self):
        disk = self.mount("100k")
        (disk / "old").write_text("an older calibration")
        self.fill(disk)
        for action, told in [("command: cal.Save", r"command 'cal\.Save': "),
                             (f"set: {{kivra2.Save File: {disk}/old}}",
                              rf"set 'kivra2\.Save File' to '{disk}/old': ")]:
            with self.subTest(action):
                result = self.quoril(self.calibration_flow(disk / "old", action))
                self.assertEqual(result.returncode, 1)
                self.assertRegex(result.stderr, rf"^flow\.yaml:\d+:\d+: {told}{disk}/old: {FULL}, 0 "
                                 r"bytes are free\n$")
                self.assertEqual((disk / "old").read_text(), "an older calibration")

    def test_by_the_writer_itself_names_the_cause(self):
        disk = self.mount("20k")
        matrix = "; ".join(200 * [" ".join(200 * ["1"])])
        result = self.quoril(self.calibration_flow(disk / "a", "command: cal.Save", matrix))
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stderr, r"^flow\.yaml:\d+:\d+: command 'cal\.Save': Problem while "
                         rf"openning : {disk}/a \({FULL}, 0 bytes are free\)\n$")

    def test_of_a_disk_that_is_read_only(self):
        disk = self.mount("100k")
        (disk / "old").write_text("an older recording")
        subprocess.run(["mount", "-o", "remount,bind,ro", disk], check=True)
        for name in ["old", "new"]:
            result = self.quoril(make_flow([("rec", "binary", disk / name, True)]))
            self.assertEqual(result.returncode, 1)
            self.assertRegex(result.stderr, rf"^flow\.yaml:\d+:\d+: property 'File Name' .*'{disk}/"
                             rf"{name}': the .* cannot be written to: Read-only file system\n$")
        self.assertEqual((disk / "old").read_text(), "an older recording")


class Warning(DiskTest):
    def test_comes_once_while_there_is_a_minute_left(self):
        disk = self.mount("400k")
        flow = make_flow([(name, "binary", disk / name, True) for name in "ab"], ", Rate: 500")
        result = self.quoril(flow, "--for", "4s")
        self.assertEqual(result.returncode, 0, result.stderr)
        found = re.fullmatch(rf"warning: the disk of '{disk}/a', '{disk}/b' will be full in (\d+) s: "
                             r"(\d+) KiB are free, (\S+) KiB are recorded a second\n", result.stderr)
        self.assertTrue(found, result.stderr)
        seconds, free, rate = (float(number) for number in found.groups())
        # Two files, each with 500 rows of 36 bytes a second, which come in pieces.
        self.assertLess(abs(rate - 2 * 500 * 36 / 1024), 25)
        self.assertLess(free, 400)
        self.assertLess(abs(seconds - free / rate), 1)

    def test_does_not_come_with_more_time(self):
        disk = self.mount("100m")
        flow = make_flow([("rec", "binary", disk / "a", True)], ", Rate: 500")
        self.assert_ends(self.quoril(flow, "--for", "3s"), 0)


class Gone(DiskTest):
    def record_and(self, action):
        """Does something to the folder "sub" while its file "a" is recorded."""
        (self.folder / "sub").mkdir()
        path = self.folder / "sub" / "a"

        def wait_and_act():
            end = time.monotonic() + LIMIT
            while not (path.exists() and path.stat().st_size > 2000) and time.monotonic() < end:
                time.sleep(0.01)
            action(path)

        thread = threading.Thread(target=wait_and_act)
        thread.start()
        result = self.quoril(make_flow([("rec", "binary", path, True)], ", Rate: 500, Count: 1000"))
        thread.join()
        return path, result

    def test_removed_files_are_a_loss(self):
        for action in [lambda path: path.unlink(), lambda path: shutil.rmtree(path.parent)]:
            self.setUp()
            path, result = self.record_and(action)
            self.assert_ends(result, 3, f"filter 'rec': the file '{path}' was removed while it was "
                             "recorded: it is lost")

    def test_moved_files_go_on(self):
        places = {"sub/b": lambda path: path.rename(path.parent / "b"),
                  "bus/a": lambda path: path.parent.rename(self.folder / "bus")}
        for place, action in places.items():
            self.setUp()
            path, result = self.record_and(action)
            self.assert_ends(result, 0, f"warning: filter 'rec': the file '{path}' was moved while it "
                             "was recorded: the recording stays in it")
            self.assertEqual(self.count_rows(self.folder / place), 1000)


class Limit(DiskTest):
    def test_of_the_size_of_files_is_told_like_a_full_disk(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (50000, 50000))

        for encoding in ENCODINGS:
            path = self.folder / encoding
            result = self.quoril(make_flow([("rec", encoding, path, True)], f", Count: {ROWS}"),
                                 "--rate", "max", preexec_fn=limit)
            self.assert_ends(result, 3, ended("rec", path, "File too large"))
            self.assertGreater(self.count_rows(path), 100)


class FailingWrites(DiskTest):
    CAUSE = "Input/output error"
    COUNT = 700

    def record(self, encoding, path, *arguments, script="", **failures):
        # In text every row is a write.
        if encoding == "text":
            arguments = ["--rate", "max", *arguments]
        environment = {**os.environ, "LD_PRELOAD": FAILING_WRITES, "FAILING_FILE": path.name,
                       **{name: str(value) for name, value in failures.items()}}
        return self.quoril(make_flow([("rec", encoding, path, True)],
                                     f", Count: {self.COUNT}, Rate: 1000", script),
                           *arguments, env=environment)

    def test_end_the_recording_after_its_last_whole_row(self):
        for encoding in ENCODINGS:
            for number in [1, 2, 3]:
                for last in {}, {"FAILING_TO": number}:
                    with self.subTest(encoding, number=number, last=last):
                        path = self.folder / f"{encoding}{number}{len(last)}"
                        result = self.record(encoding, path, FAILING_FROM=number, **last)
                        self.assert_ends(result, 3, ended("rec", path, self.CAUSE))
                        if number == 1 and not last:
                            self.assertEqual(path.stat().st_size, 0)
                        else:
                            rows = self.count_rows(path)
                            self.assertLess(rows, self.COUNT)
                            self.assertTrue(rows > 0 or number == 1 or not last)

    def test_at_the_end_are_told_and_the_script_goes_on(self):
        # Before the first rows are a quarter of a second old, which brings them out.
        script = ("script:\n- {at: 100ms, set: {rec.Record: false}}\n"
                  "- {at: 200ms, set: {rec.File Name: %s, rec.Record: true}}\n"
                  "- {at: 300ms, set: {rec.Record: false}}\n")
        for encoding in ["binary", "kivra2"]:
            path, other = self.folder / f"{encoding}-bad", self.folder / f"{encoding}-good"
            result = self.record(encoding, path, "--for", "400ms", script=script % other,
                                 FAILING_FROM=2)
            self.assert_ends(result, 3, lost_end("rec", path, self.CAUSE))
            self.assertEqual(self.count_rows(path), 0)
            self.assertGreater(other.stat().st_size, 1000)

    def test_at_the_end_of_the_run_are_told_once(self):
        path = self.folder / "a"
        result = self.record("binary", path, "--for", "100ms", FAILING_FROM=2)
        self.assert_ends(result, 3, lost_end("rec", path, self.CAUSE))
        self.assertEqual(self.count_rows(path), 0)

    def test_short_ones_lose_nothing(self):
        for encoding in ENCODINGS:
            for size in 1, 7, 4096:
                path = self.folder / f"{encoding}{size}"
                self.assert_ends(self.record(encoding, path, SHORT_WRITES=size), 0)
                self.assertEqual(self.count_rows(path), self.COUNT)


MOUNTING = {"FullDisk", "Refusal", "Warning"}
INSIDE = "DISK_TEST_INSIDE"


def enter_name_space():
    """Mounts are seen by this program alone, and go with it."""
    command = ["unshare", "-m" if os.geteuid() == 0 else "-rm"]
    mount = "mount -t tmpfs tmpfs /mnt && umount /mnt"
    if shutil.which("unshare") is None or subprocess.run(
            [*command, "sh", "-c", mount], capture_output=True).returncode != 0:
        print(f"left out: {' '.join(sorted(set(sys.argv[4:]) & MOUNTING or MOUNTING))}: "
              "no file system can be mounted here")
        sys.exit(LEFT_OUT)
    os.environ[INSIDE] = "1"
    os.execvp(command[0], [*command, sys.executable, *sys.argv])


if __name__ == "__main__":
    if (not sys.argv[4:] or MOUNTING & set(sys.argv[4:])) and INSIDE not in os.environ:
        enter_name_space()
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])

"""What quoril does with names of files that are odd, long, links, pipes, devices or sockets, which
modules it loads, and how it shows texts that would steer a terminal.

Usage: host_paths_test.py QUORIL SENSORFILE PLUGIN HOSTILE_MODULE [TEST...]
"""

import json
import os
import pathlib
import re
import shutil
import socket
import stat
import subprocess
import sys
import tempfile
import threading
import unittest

QUORIL, SENSORFILE, PLUGIN, HOSTILE = (str(pathlib.Path(one).resolve()) for one in sys.argv[1:5])
MODULE = "QuorilPluginSensorFile-2.5.0"
# No test takes that long; a hanging one ends at last.
LIMIT = 60

# All but the last can stand in a flow file.
NAMES = [" two  blanks ", "größe µ 電源 😀", "line\nend", "it's \"quoted\" `id`",
         "100% %s %n {} {0} {:99999}", "$HOME ${HOME} $(id)", "~", "-x", "[a,b]", "*?[!x]",
         "#!;|&<>", "take1:", "\x1b[31mred\x1b]0;title\x07", "\u202egpj",
         "\u009b31m", "x" * 255, os.fsdecode(b"latin-\xfc\x9b1m")]
STEERING = re.compile("[\0-\x09\x0b-\x1f\x7f-\x9f\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069"
                      "\udc80-\udcff]")
SHOWN = {"encoding": "utf-8", "errors": "surrogateescape"}

IMU = {"name": "imu", "class": "FilterImuSimulator",
       "properties": [{"Rate": 1000}, {"Count": 20}, {"Raw Counts": True}]}
KIVRA2_PINS = [("acc", "3a"), ("accGain", "3aGain"), ("accOffset", "3aOff"), ("mag", "3m"),
               ("magGain", "3mGain"), ("magOffset", "3mOff"), ("frame", "FrameNumber"),
               ("button", "Button")]


def escaped(name):
    """For the filter, in whose file names $ and ~ are special."""
    name = name.replace("$", r"\$")
    return "./" + name if name.startswith("~") else name


def make_flow(filters, connections=(), **more):
    return {"version": 1, "plugins": [MODULE], "filters": filters,
            "connections": list(connections), **more}


def recorder(binary, path):
    return make_flow([IMU, {"name": "f", "class": "FilterRecordSensorFile", "properties": [
        {"File Name": path}, {"Binary": binary}, {"Pins Number": 1}, {"ColNames#1": "X, Y, Z"},
        {"ColTypes#1": "DOUBLE"}, {"Record": True}]}], ["imu.acc -> f.input#1"])


def kivra2_recorder(path):
    return make_flow([IMU, {"name": "f", "class": "FilterRecordKivra2Format", "properties": [
        {"File Name": path}, {"Record": True}]}],
        [f"imu.{pin} -> f.{other}" for pin, other in KIVRA2_PINS])


def calib_writer(binary, path):
    return make_flow([IMU, {"name": "f", "class": "FilterCalibSensorFileWriter", "properties": [
        {"Binary": binary}, {"File Name": path}, {"Calib Pins Number": 1},
        {"CalibColNames#1": "AccGain"}]}], ["imu.accGain -> f.calibInput#1"],
        script=[{"at": "50ms", "command": "f.Save"}])


def kivra2_calib_writer(path):
    return make_flow([{"name": "f", "class": "FilterKivra2CalibWriter",
                       "properties": [{"Save File": path}]}], stop=[{"for": "1ms"}])


def probe(path):
    return make_flow([IMU, {"name": "f", "class": "FilterProbe", "properties": [
        {"File Name": path}, {"Pins Number": 1}]}], ["imu.acc -> f.input#1"])


WRITERS = {
    "sensor file, binary": ("File Name", lambda path: recorder(True, path)),
    "sensor file, text": ("File Name", lambda path: recorder(False, path)),
    "Kivra2": ("File Name", kivra2_recorder),
    "calibration, binary": ("File Name", lambda path: calib_writer(True, path)),
    "calibration, text": ("File Name", lambda path: calib_writer(False, path)),
    "Kivra2 calibration": ("Save File", kivra2_calib_writer),
    "samples": ("File Name", probe),
}


def reader(class_name, name, path, *properties, **more):
    return make_flow([{"name": "f", "class": class_name,
                       "properties": [*properties, {name: path}]}], stop=[{"for": "1ms"}], **more)


def sensor_reader(class_name, binary):
    return lambda path: reader(class_name, "Load File", path, {"Binary": binary})


# What is read, by which property, and what wrote it.
READERS = {
    "sensor file, binary": ("Load File", sensor_reader("FilterReplaySensorFile", True)),
    "sensor file, text": ("Load File", sensor_reader("FilterReplaySensorFile", False)),
    "Kivra2": ("Load File", lambda path: reader("FilterReplayKivra2Format", "Load File", path)),
    "calibration, binary": ("Load File", sensor_reader("FilterCalibSensorFileReader", True)),
    "calibration, text": ("Load File", sensor_reader("FilterCalibSensorFileReader", False)),
    "Kivra2 calibration": ("Load File",
                           lambda path: reader("FilterKivra2CalibReader", "Load File", path)),
    "CSV": ("File Name",
            lambda path: reader("FilterCsvSource", "File Name", path, {"Columns": "a=1"})),
}


class PathTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def quoril(self, *arguments, **options):
        options = {"stdin": subprocess.DEVNULL, "cwd": self.folder, **SHOWN, **options}
        result = subprocess.run([QUORIL, *arguments], capture_output=True, timeout=LIMIT, **options)
        for text in [result.stdout, result.stderr]:
            self.assertIsNone(STEERING.search(text), repr(text))
        return result

    def write_flow(self, flow, name="flow.yaml"):
        """JSON is YAML; a flow file has variables of its own."""
        text = json.dumps(flow, ensure_ascii=False).replace("$", "$$")
        text = re.sub("[\x7f-\x9f\u2028\u2029]", lambda found: f"\\u{ord(found[0]):04x}", text)
        (self.folder / name).write_text(text)
        return name

    def run_flow(self, flow, *arguments, **options):
        return self.quoril("run", "-q", self.write_flow(flow), *arguments, **options)

    def remake(self):
        for one in self.folder.iterdir():
            one.unlink()

    def samples(self):
        """A file of each kind that is read."""
        files = {"CSV": b"1,2\n3,4\n"}
        for kind, (_, make) in WRITERS.items():
            result = self.run_flow(make("file"))
            self.assertEqual((result.returncode, result.stderr), (0, ""), kind)
            files[kind] = (self.folder / "file").read_bytes()
            self.assertNotEqual(files[kind], b"", kind)
        self.remake()
        return files


class Names(PathTest):
    def test_every_name_is_written_as_it_is(self):
        for kind, (name, make) in WRITERS.items():
            for file in NAMES:
                with self.subTest(kind=kind, file=file):
                    self.remake()
                    result = self.run_flow(make("plain"), "--set", f"f.{name}={escaped(file)}")
                    self.assertEqual((result.returncode, result.stderr), (0, ""))
                    self.assertEqual(sorted(os.listdir(self.folder)), sorted([file, "flow.yaml"]))
                    self.assertGreater((self.folder / file).stat().st_size, 0)

    def test_every_name_is_read_as_it_is(self):
        files = self.samples()
        for kind, (name, make) in READERS.items():
            for file in NAMES:
                with self.subTest(kind=kind, file=file):
                    self.remake()
                    (self.folder / file).write_bytes(files[kind])
                    flow = make("none")
                    del flow["filters"][0]["properties"][-1]
                    result = self.run_flow(flow, "--set", f"f.{name}={escaped(file)}")
                    self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_every_name_can_stand_in_a_flow_file(self):
        for file in NAMES[:-1]:
            with self.subTest(file):
                self.remake()
                result = self.run_flow(recorder(True, escaped(file)))
                self.assertEqual((result.returncode, result.stderr), (0, ""))
                self.assertEqual(sorted(os.listdir(self.folder)), sorted([file, "flow.yaml"]))
                result = self.run_flow(sensor_reader("FilterReplaySensorFile", True)(escaped(file)))
                self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_flow_files_of_every_name(self):
        for file in NAMES:
            with self.subTest(file):
                self.write_flow(probe(""), file)
                path = "./" + file
                for command in [["check", path], ["graph", path], ["run", "-q", path],
                                ["check", "--", file]]:
                    result = self.quoril(*command)
                    self.assertEqual((result.returncode, result.stderr), (0, ""))
                (self.folder / file).write_text("version: 2\n")
                result = self.quoril("check", path)
                self.assertEqual(result.returncode, 2)
                self.assertEqual(len(result.stderr.splitlines()), 2)

    def test_missing_files_are_told_on_one_line(self):
        for kind, (_, make) in READERS.items():
            for file in NAMES[:-1]:
                with self.subTest(kind=kind, file=file):
                    result = self.run_flow(make(escaped(file)))
                    self.assertEqual(result.returncode, 1)
                    self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)

    def test_only_documented_variables_are_expanded(self):
        home = self.folder / "home"
        home.mkdir()
        environment = {**os.environ, "HOME": str(home), "X": "$HOME/`id`", "PWD": "/"}
        for text, expected in [("$X", "$HOME/`id`"), ("a${X}b", None), ("~/y", "home/y"),
                               ("a~", "a~"), ("%X%", "%X%"), (r"\$(touch made)", "$(touch made)"),
                               ("`touch made`", "`touch made`"), ("a;touch made", "a;touch made"),
                               ("{a,b}", "{a,b}"), ("*", "*"), (r"\$X", "$X")]:
            with self.subTest(text):
                if expected is None:
                    (self.folder / "a$HOME").mkdir()
                    expected = "a$HOME/`id`b"
                elif "/" in expected and expected.startswith("$"):
                    (self.folder / "$HOME").mkdir()
                self.write_flow(probe("none"))
                result = self.quoril("run", "-q", "flow.yaml", "--set", f"f.File Name={text}",
                                     env=environment)
                self.assertEqual((result.returncode, result.stderr), (0, ""))
                self.assertGreater((self.folder / expected).stat().st_size, 0)
        self.assertFalse((self.folder / "made").exists())

    def test_nothing_is_dropped_from_a_name(self):
        """Without the variable DATA, $DATA/a.bin would be a file in the root folder."""
        for text, cause in [("$NO_SUCH/a", "variable 'NO_SUCH' is not defined"),
                            ("${NO_SUCH}", "variable 'NO_SUCH' is not defined"),
                            ("$(id)", "variable '' is not defined"),
                            ("a$", "variable '' is not defined"), ("${HOME", "HOME"),
                            ("a\\b", "cannot hold a backslash"), ("a\\", "cannot hold a backslash"),
                            (r"\\$X", "cannot hold a backslash")]:
            for kind, (_, make) in [*WRITERS.items(), *READERS.items()]:
                with self.subTest(text=text, kind=kind):
                    result = self.run_flow(make(text))
                    self.assertEqual(result.returncode, 1)
                    self.assertIn(cause, result.stderr)
                    self.assertEqual(len(result.stderr.splitlines()), 1)

    def test_a_zero_character_ends_no_name(self):
        for flow in [recorder(True, "a\0b"), {**probe(""), "plugins": ["./good.so\0.txt"]}]:
            self.write_flow(flow)
            result = self.quoril("run", "flow.yaml")
            self.assertEqual(result.returncode, 2)
            self.assertIn("a text cannot hold a zero character", result.stderr)
        self.assertEqual(os.listdir(self.folder), ["flow.yaml"])

    def test_names_that_are_too_long_are_told_as_such(self):
        for path in ["x" * 256, "d/" * 2048 + "x"]:
            for kind, (_, make) in [*WRITERS.items(), *READERS.items()]:
                with self.subTest(kind=kind, size=len(path)):
                    result = self.run_flow(make(path))
                    self.assertEqual(result.returncode, 1)
                    self.assertIn("File name too long", result.stderr)
                    self.assertIn(path, result.stderr)
                    self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)
            self.assertIn("File name too long", self.quoril("check", path).stderr)
            result = self.quoril("inspect", "--plugin", "./" + path)
            self.assertEqual(result.returncode, 2)
            self.assertIn("File name too long", result.stderr)
        self.assertEqual(os.listdir(self.folder), ["flow.yaml"])


class Kinds(PathTest):
    """What is no regular file."""

    def test_recordings_write_the_target_of_a_link(self):
        for kind, (_, make) in WRITERS.items():
            for content in [b"old", None]:
                with self.subTest(kind=kind, content=content):
                    self.remake()
                    (self.folder / "link").symlink_to("target")
                    if content:
                        (self.folder / "target").write_bytes(content)
                    result = self.run_flow(make("link"))
                    self.assertEqual((result.returncode, result.stderr), (0, ""))
                    self.assertTrue((self.folder / "link").is_symlink())
                    self.assertGreater((self.folder / "target").stat().st_size, 3)

    def test_no_recording_destroys_a_file_in_use(self):
        files = self.samples()
        player = sensor_reader("FilterReplaySensorFile", True)("a.bin")["filters"][0]
        for other in ["a.bin", "./a.bin", "link", "hard"]:
            with self.subTest(other):
                self.remake()
                (self.folder / "a.bin").write_bytes(files["sensor file, binary"])
                (self.folder / "link").symlink_to("a.bin")
                os.link(self.folder / "a.bin", self.folder / "hard")
                flow = recorder(True, other)
                flow["filters"].append({**player, "name": "player"})
                for command in ["check", "run"]:
                    result = self.quoril(command, self.write_flow(flow))
                    self.assertEqual(result.returncode, 2)
                    self.assertIn(f"filter 'f' would record into '{other}', a file of filter "
                                  "'player'\n", result.stderr)
                    self.assertEqual((self.folder / "a.bin").read_bytes(),
                                     files["sensor file, binary"])
        self.remake()
        flow = recorder(True, "new")
        flow["filters"].append({**flow["filters"][1], "name": "second"})
        flow["connections"].append("imu.acc -> second.input#1")
        result = self.quoril("check", self.write_flow(flow))
        self.assertEqual(len(result.stderr.splitlines()), 2, result.stderr)
        for one in flow["filters"][1:]:
            one["properties"][0] = {"File Name": "/dev/null"}
        self.assertEqual(self.quoril("check", self.write_flow(flow)).returncode, 0)

    def test_links_that_lead_nowhere_are_told(self):
        for kind, (_, make) in WRITERS.items():
            for target, cause in [("none/x", "none' does not exist"),
                                  ("link", "Too many levels of symbolic links")]:
                with self.subTest(kind=kind, target=target):
                    self.remake()
                    (self.folder / "link").symlink_to(target)
                    for command in ["check", "run"]:
                        result = self.quoril(command, self.write_flow(make("link")))
                        self.assertEqual(result.returncode, 1)
                        self.assertIn(cause, result.stderr)

    def test_nothing_waits_for_the_other_end_of_a_pipe(self):
        for kind, (name, make) in [*WRITERS.items(), *READERS.items()]:
            with self.subTest(kind=kind, name=name):
                self.remake()
                os.mkfifo(self.folder / "pipe")
                for command in ["check", "run"]:
                    result = self.quoril(command, self.write_flow(make("pipe")))
                    self.assertEqual(result.returncode, 1)
                    self.assertRegex(result.stderr, r"\A[^\n]*'pipe' is a (named )?pipe[^\n]*\n\Z")

    def test_nothing_waits_for_a_pipe_that_the_script_names(self):
        os.mkfifo(self.folder / "pipe")
        for flow, name in [(probe("first"), "File Name"), (kivra2_calib_writer("first"), "Save File"),
                           (READERS["Kivra2"][1](""), "Load File")]:
            flow = {**flow, "script": [{"at": "0s", "set": {f"f.{name}": "pipe"}}],
                    "stop": [{"for": "1s"}]}
            result = self.run_flow(flow)
            self.assertEqual(result.returncode, 1)
            self.assertIn("'pipe' is a", result.stderr)
        result = self.quoril("inspect", "FilterKivra2CalibWriter", "--plugin", MODULE,
                             "--set", "Save File=pipe")
        self.assertEqual(result.returncode, 2)
        self.assertIn("'pipe' is a named pipe", result.stderr)

    def test_a_pipe_without_a_name_takes_a_recording(self):
        (self.folder / "plain.yaml").write_text(json.dumps(recorder(True, "file")))
        self.assertEqual(self.quoril("run", "-q", "plain.yaml").returncode, 0)
        flow = self.write_flow(recorder(True, "/dev/stdout"))
        result = subprocess.run([QUORIL, "run", "-q", flow], cwd=self.folder, capture_output=True,
                                timeout=LIMIT)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(len(result.stdout), (self.folder / "file").stat().st_size)

    def test_a_reader_that_goes_away_ends_one_recording_alone(self):
        flow = recorder(True, "file")
        flow["filters"] += [{**probe("-")["filters"][1], "name": "seen"}]
        flow["filters"][0] = {**IMU, "properties": [{"Rate": 1000}, {"Count": 20000}]}
        flow["connections"] += ["imu.acc -> seen.input#1"]
        process = subprocess.Popen([QUORIL, "run", "-q", "--rate", "max", self.write_flow(flow)],
                                   cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        process.stdout.readline()
        process.stdout.close()
        errors = process.stderr.read().decode()
        process.stderr.close()
        self.assertEqual(process.wait(LIMIT), 1, errors)
        self.assertIn("standard output cannot be written", errors)
        result = subprocess.run([SENSORFILE, "info", "--json", "file"], cwd=self.folder,
                                capture_output=True, timeout=LIMIT)
        self.assertEqual(json.loads(result.stdout)["rows"], 20000)

    def test_sockets_folders_and_devices(self):
        server = socket.socket(socket.AF_UNIX)
        self.addCleanup(server.close)
        here = os.getcwd()
        os.chdir(self.folder)
        server.bind("socket")
        os.chdir(here)
        (self.folder / "dir").mkdir()
        for kind, (_, make) in WRITERS.items():
            for path, cause in [("socket", "'socket' is a socket"), ("dir", "it is a folder")]:
                with self.subTest(kind=kind, path=path):
                    result = self.run_flow(make(path))
                    self.assertEqual(result.returncode, 1)
                    self.assertIn(cause, result.stderr)
            with self.subTest(kind=kind):
                result = self.run_flow(make("/dev/null"))
                self.assertEqual((result.returncode, result.stderr), (0, ""))
                self.assertTrue(stat.S_ISCHR(os.stat("/dev/null").st_mode))
                result = self.run_flow(make("/dev/full"))
                is_recorder = kind == "Kivra2" or kind.startswith("sensor file")
                self.assertEqual(result.returncode, 3 if is_recorder else 1)
                self.assertIn("/dev/full", result.stderr)
        for kind, (_, make) in READERS.items():
            for path, cause in [("socket", "'socket' is a socket"), ("dir", "is a folder"),
                                ("/dev/zero", "is a device"), ("/dev/null", "is a device")]:
                with self.subTest(kind=kind, path=path):
                    result = self.run_flow(make(path))
                    self.assertEqual(result.returncode, 1)
                    self.assertIn(cause, result.stderr)

    def test_recordings_have_the_permissions_of_the_umask(self):
        for kind, (_, make) in WRITERS.items():
            for mask, expected in [(0o022, 0o644), (0o002, 0o664), (0o077, 0o600)]:
                with self.subTest(kind=kind, mask=mask):
                    self.remake()
                    result = self.run_flow(make("file"), preexec_fn=lambda: os.umask(mask))
                    self.assertEqual(result.returncode, 0, result.stderr)
                    self.assertEqual((self.folder / "file").stat().st_mode & 0o777, expected)

    def test_a_flow_comes_through_a_pipe(self):
        os.mkfifo(self.folder / "pipe")
        text = json.dumps(probe(""))
        writer = threading.Thread(target=(self.folder / "pipe").write_text, args=(text,))
        writer.start()
        self.assertEqual(self.quoril("check", "pipe").returncode, 0)
        writer.join(LIMIT)


class Modules(PathTest):
    """A module that waits in the folder where somebody works is not run in another's place."""

    def setUp(self):
        super().setUp()
        for name in [MODULE, MODULE + ".so", "Wanted.so", "libWanted.so"]:
            shutil.copy(HOSTILE, self.folder / name)
        self.environment = {**os.environ, "LD_LIBRARY_PATH": str(self.folder),
                            "PATH": f"{self.folder}:{os.environ['PATH']}"}

    def plugins(self, *arguments, **options):
        result = self.quoril("inspect", "--json", *arguments, env=self.environment, **options)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return [one["plugin"] for one in json.loads(result.stdout)["plugins"]]

    def test_the_hostile_module_is_one(self):
        self.assertEqual(self.plugins("--plugin", "./Wanted"), ["Quoril", "GoodModule"])

    def test_a_bare_name_is_looked_for_beside_the_program_alone(self):
        for name in [MODULE, MODULE + ".so"]:
            self.assertEqual(self.plugins("--plugin", name), ["Quoril", "SensorFile"])
        self.write_flow(probe(""))
        result = self.quoril("run", "-v", "flow.yaml", env=self.environment)
        self.assertEqual(result.returncode, 0)
        self.assertIn(f"plug-in {PLUGIN}\n", result.stderr)

    def test_the_places_are_told(self):
        beside = pathlib.Path(QUORIL).parent
        result = self.quoril("inspect", "--plugin", "Wanted", env=self.environment)
        self.assertEqual((result.returncode, result.stderr),
                         (2, f"--plugin: plug-in 'Wanted' was not found; looked for "
                             f"{beside}/Wanted, {beside}/Wanted.so (a bare name is looked for "
                             "beside the program alone; for a file of the current folder write "
                             "'./Wanted')\n"))
        (self.folder / "sub").mkdir()
        flow = self.write_flow({**probe(""), "plugins": ["libWanted.so"]}, "sub/flow.yaml")
        result = self.quoril("check", flow, env=self.environment)
        self.assertEqual(result.returncode, 2)
        self.assertIn("for a file of the flow file's folder write './libWanted.so'", result.stderr)
        result = self.quoril("inspect", "--plugin", "sub/Wanted", env=self.environment)
        self.assertIn(f"looked for {self.folder}/sub/Wanted, {self.folder}/sub/Wanted.so\n",
                      result.stderr)

    def test_paths_are_relative_to_whoever_wrote_them(self):
        (self.folder / "sub").mkdir()
        (self.folder / "Wanted.so").rename(self.folder / "sub" / "Wanted.so")
        flow = self.write_flow({**probe(""), "plugins": ["./Wanted"]}, "sub/flow.yaml")
        self.assertEqual(self.quoril("check", flow).returncode, 0)
        self.assertEqual(self.plugins("--plugin", "sub/Wanted"), ["Quoril", "GoodModule"])
        self.assertEqual(self.quoril("inspect", "--plugin", "./Wanted").returncode, 2)

    def test_modules_of_every_name(self):
        for name in NAMES:
            with self.subTest(name):
                shutil.copy(HOSTILE, self.folder / name)
                self.assertEqual(self.plugins("--plugin", "./" + name), ["Quoril", "GoodModule"])
                self.assertEqual(self.plugins("--plugin=./" + name), ["Quoril", "GoodModule"])

    def test_only_regular_files_are_modules(self):
        os.mkfifo(self.folder / "pipe")
        (self.folder / "link").symlink_to("Wanted.so")
        self.assertEqual(self.plugins("--plugin", "./link"), ["Quoril", "GoodModule"])
        for path in ["./pipe", "/dev/zero"]:
            result = self.quoril("inspect", "--plugin", path)
            self.assertEqual(result.returncode, 2)
            self.assertIn("it is no regular file", result.stderr)


class Texts(PathTest):
    """Texts of flow files and the command line are shown, not obeyed."""

    EVIL = "\x1b[31mE\nV\u009bI\u202eL\x07"

    def test_messages_steer_no_terminal(self):
        evil = self.EVIL
        flow = recorder(True, "file")
        for change in [{evil: 1}, {"version": evil}, {"plugins": [evil]}, {"layouts": [evil]},
                       {"connections": [f"imu.{evil} -> f.{evil}"]}, {"stop": [{"for": evil}]},
                       {"filters": [{"name": evil, "class": evil}]},
                       {"filters": [{**IMU, "properties": [{evil: evil}]}]},
                       {"filters": [{**IMU, "properties": [{"Rate": evil}]}]},
                       {"script": [{"at": "0s", "command": f"f.{evil}"}]},
                       {"script": [{"at": "0s", "set": {"f.Freq": evil}}]}]:
            with self.subTest(change):
                self.write_flow({**flow, **change})
                for command in [["check"], ["run"], ["graph"]]:
                    result = self.quoril(*command, "flow.yaml")
                    if command != ["graph"]:
                        self.assertEqual(result.returncode, 2)
                    self.assertNotIn("\nV", result.stderr)

    def test_the_command_line_is_shown(self):
        evil = self.EVIL.replace("\0", "")
        self.write_flow(probe(""))
        for arguments in [[evil], ["run", evil], ["run", "flow.yaml", "--for", evil],
                          ["run", "flow.yaml", "--rate", evil], ["run", "flow.yaml", "--" + evil],
                          ["run", "flow.yaml", "--progress", evil],
                          ["run", "flow.yaml", "--set", evil],
                          ["run", "flow.yaml", "--set", f"f.{evil}={evil}"],
                          ["inspect", evil], ["inspect", "FilterProbe", "--set", evil + "=1"]]:
            with self.subTest(arguments):
                result = self.quoril(*arguments)
                self.assertIn(result.returncode, [1, 2])
                self.assertNotEqual(result.stderr, "")

    def test_values_are_shown(self):
        for more in [[], ["--json"]]:
            result = self.quoril("inspect", "FilterProbe", "--set", f"Label={self.EVIL}", *more)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual(json.loads(result.stdout)["properties"][1]["default"], self.EVIL)

    def test_samples_are_shown(self):
        flow = probe("")
        flow["filters"][1]["properties"].append({"Label": self.EVIL})
        self.write_flow(flow)
        result = self.quoril("run", "flow.yaml")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(json.loads(result.stdout.splitlines()[0])["label"], self.EVIL)


if __name__ == "__main__":
    unittest.main(module="__main__", argv=[sys.argv[0], *sys.argv[5:]])

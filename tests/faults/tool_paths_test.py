"""What sensorfile does with names of files that are odd, long, links, pipes, devices or sockets, and
with texts that would steer a terminal.

Usage: tool_paths_test.py PROGRAM PROJECT_ROOT [TEST...]

With QUORIL_SOAK in the environment every verb gets every name, else every fourth.
"""

import json
import os
import pathlib
import pty
import re
import socket
import subprocess
import sys
import threading

sys.path.insert(0, str(pathlib.Path(sys.argv[2]) / "tests" / "tools"))

from sample_files import GAIN, IMU_ROWS, binary_calib, binary_file, text_file  # noqa: E402
from tool_test import LIMIT, PROGRAM, main  # noqa: E402
from verbs_test import CALLS, VerbTest  # noqa: E402

NAMES = [" two  blanks ", "größe µ 電源 😀", "line\nend", "tab\tcr\r", "it's \"quoted\" `id`",
         "100% %s %n {} {0} {:99999}", "$HOME ${HOME} $(id)", "~", "[a,b]", "*?[!x]", "back\\slash",
         "#!;|&<>", "@file", "%%", "\x1b[31mred\x1b]0;title\x07", "\u202egpj", "\u009b31m",
         os.fsdecode(b"latin-\xfc\x9b1m"), "x" * 240]
EVERYTHING = "QUORIL_SOAK" in os.environ
# Everything but line ends: controls of ASCII and Latin-1, turned directions, bytes that are no UTF-8.
STEERING = re.compile("[\0-\x09\x0b-\x1f\x7f-\x9f\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069"
                      "\udc80-\udcff]")
SHOWN = {"encoding": "utf-8", "errors": "surrogateescape"}
# Verbs that hand on what a file holds, to other programs.
DATA = {"cat"}


def visible(name):
    """As the program shows it."""
    text = "".join("".join(f"\\x{byte:02x}" for byte in os.fsencode(letter))
                   if letter == "\n" or STEERING.match(letter) else letter for letter in name)
    return text.replace("\ufeff", "\\xef\\xbb\\xbf")


class PathTest(VerbTest):
    def run_call(self, call, source, target, *more, **options):
        names = {"IN": source, "OUT": target}
        arguments = [names.get(word, word) for word in call.arguments]
        return self.tool(*arguments, *more, **{**SHOWN, **options})

    def content_for(self, call):
        return call.content or binary_file(calib=[GAIN])

    def assert_shown(self, result):
        for text in [result.stdout, result.stderr]:
            self.assertIsNone(STEERING.search(text), repr(text))

    def reset(self):
        for one in self.folder.iterdir():
            one.unlink()


class Names(PathTest):
    def results(self, source, target, call):
        """Exit code, texts with plain names in them, and the files that were made."""
        self.reset()
        (self.folder / source).write_bytes(self.content_for(call))
        result = self.run_call(call, os.path.join(".", source), os.path.join(".", target))
        self.assert_shown(result)
        texts = []
        for text in [result.stdout, result.stderr]:
            for odd, plain in [(target, "OUT"), (source, "IN")]:
                stem, ending = os.path.splitext(odd)
                for end in ["", "-001"]:
                    text = text.replace("./" + visible(stem + end + ending), plain + end)
            texts.append(text)
        names = sorted(one.name for one in self.folder.iterdir())
        return result.returncode, names, texts

    def test_every_verb_takes_every_name(self):
        writing = self.writing_calls()
        calls = [call for call in CALLS if (call in writing or "IN" in call.arguments)
                 and "--json" not in call.arguments and "json" not in call.arguments]
        for i, call in enumerate(calls):
            plain = self.results("plain", "target" + call.ending, call)
            self.assertIn(plain[0], [0, 1, 3])
            for name in NAMES if EVERYTHING else NAMES[i % 4::4]:
                with self.subTest(call=call.arguments, name=name):
                    target = "o" + name[:100] + call.ending
                    code, names, texts = self.results(name, target, call)
                    self.assertEqual(code, plain[0], texts)
                    self.assertIn(name, names)
                    self.assertEqual(len(names), len(plain[1]))
                    if "split" not in call.arguments and "OUT" in call.arguments:
                        self.assertEqual(names, sorted([name, target]))
                    if call.arguments[0] not in ("plot", "info", "check"):
                        # Tables and pages are made to the measure of their names.
                        self.assertEqual(texts, plain[2])

    def test_json_gives_the_name_itself(self):
        for name in [one for one in NAMES if one != "[a,b]"]:
            (self.folder / name).write_bytes(binary_file())
            for call in [["info", "--json"], ["check", "--json"], ["time", "--json"]]:
                with self.subTest(call=call, name=name):
                    result = self.tool(*call, name, **SHOWN)
                    self.assert_shown(result)
                    shown = os.fsencode(name).decode("utf-8", "replace")
                    self.assertEqual(json.loads(result.stdout)["path"], shown)

    def test_names_that_begin_with_a_dash(self):
        self.write("-x", binary_file())
        self.output_of("info", "--", "-x")
        self.output_of("info", "./-x")
        self.output_of("cut", "--rows", "0:", "--", "-x", "-out")
        merged = self.tool("merge", "--output=-merged", "--", "-x", "-out")
        self.assertIn(merged.returncode, [0, 3], merged.stderr)
        self.assert_files("-x", "-out", "-merged")
        for call in [["info", "-x"], ["cut", "-x", "out", "--rows", "0:"]]:
            self.assertEqual(self.tool(*call).returncode, 2)

    def test_a_missing_file_is_named_on_one_line(self):
        calls = [call for call in CALLS if "IN" in call.arguments]
        for i, call in enumerate(calls):
            for name in [NAMES[i % len(NAMES)], "line\nend", "\x1b[31m"]:
                with self.subTest(call=call.arguments, name=name):
                    result = self.run_call(call, "./" + name, "out")
                    self.assertIn(result.returncode, [1, 2])
                    self.assert_shown(result)
                    self.assertRegex(result.stderr, r"\A(sensorfile: [^\n]+\n)+\Z")
                    self.assertIn(visible(name), result.stderr)

    def test_wrong_usage_is_told_without_steering(self):
        for arguments in [["in\x1b[31mfo"], ["info", "--\x1b[31m"], ["cut", "a", "b", "c\x1b[31m"],
                          ["cat", "a", "--format", "\x1b[31m"], ["cut", "a", "b", "--rows", "\x07"]]:
            result = self.tool(*arguments, **SHOWN)
            self.assertIn(result.returncode, [1, 2])
            self.assert_shown(result)

    def test_longest_names(self):
        ends = {255: 0, 256: 1}
        for size, code in ends.items():
            for call in self.writing_calls():
                with self.subTest(call=call.arguments, size=size):
                    self.reset()
                    self.write("in", self.content_for(call))
                    pad = len("-001") if "split" in call.arguments else 0
                    target = "x" * (size - pad - len(call.ending)) + call.ending
                    result = self.run_call(call, "in", target)
                    self.assertEqual(result.returncode, code, result.stderr)
                    self.assertEqual(len(list(self.folder.iterdir())), 2 - code)
                    if code:
                        self.assertIn("File name too long", result.stderr)
                        self.assertNotIn(".part", result.stderr)

    def test_longest_paths(self):
        """4,095 bytes are a path; more is told as what it is, and nothing is cut."""
        deep = "/".join(["d" * 200] * 20)
        folder = os.open(self.folder, os.O_RDONLY)
        for part in deep.split("/"):
            os.mkdir(part, dir_fd=folder)
            folder, parent = os.open(part, os.O_RDONLY, dir_fd=folder), folder
            os.close(parent)
        for name in ["x" * (4095 - len(deep) - 1), "y"]:
            with os.fdopen(os.open(name, os.O_WRONLY | os.O_CREAT, dir_fd=folder), "wb") as file:
                file.write(binary_file(calib=[GAIN]))
        os.close(folder)
        longest = deep + "/" + "x" * (4095 - len(deep) - 1)
        self.output_of("check", longest)
        self.output_of("cut", longest, deep + "/" + "o" * 30, "--rows", "0:")
        for path in [longest + "x", "./" * 2100 + "in", deep * 2]:
            for call in CALLS:
                for source, target in [(path, "out"), (longest, path)]:
                    if (target == path and "OUT" not in call.arguments) or "IN" not in call.arguments:
                        continue
                    if target == path and call.content:
                        continue
                    with self.subTest(call=call.arguments, size=len(path)):
                        result = self.run_call(call, source, target)
                        self.assertIn(result.returncode, [1, 2])
                        self.assertIn("File name too long", result.stderr)
                        self.assertIn(path, result.stderr)

    def test_nothing_in_a_name_is_run_or_expanded(self):
        environment = {**os.environ, "HOME": str(self.folder / "home"), "X": "in"}
        for name in ["$X", "${X}", "~", "~/in", "`touch made`", "$(touch made)", "*"]:
            self.write("in", binary_file())
            result = self.tool("info", name, env=environment)
            self.assert_fails(result)
            self.assertIn("not found", result.stderr)
        self.assert_files("in")


class Texts(PathTest):
    """What a file holds is shown, not obeyed."""

    COLUMNS = [(b"\x1b[31mRED\x07", "int16"), (b"A\nB", "int16"), ("\u009b1m\u202e".encode(), "int16"),
               (b"\xfc\x9b", "int16"), (b"<script>", "int16")]
    RECORD = ("G\x1b[32mAIN", "double", [[1.0]])

    def contents(self):
        rows = [(1, 2, 3, 4, 5), (2, 2, 3, 4, 6)]
        yield binary_file(self.COLUMNS, rows, calib=[self.RECORD])
        yield binary_file(self.COLUMNS, rows, calib=[self.RECORD]) + b"\x1b[31m"
        text = text_file([(name.replace(b"\n", b" ").decode("latin-1"), kind)
                          for name, kind in self.COLUMNS], rows, calib=[self.RECORD])
        yield text
        yield text + b"\x1b[31mrow\t\x1b]0;x\x07\t"
        yield binary_calib([self.RECORD])
        yield b"Header id: \x1b[31m\x9b1m"
        yield b"a\x1b[31m,b\x1b[32m\n1,\x1b[33m\n2,3\n"

    def test_reports_steer_no_terminal(self):
        for number, content in enumerate(self.contents()):
            for call in CALLS:
                if call.arguments[0] in DATA:
                    continue
                with self.subTest(call=call.arguments, number=number):
                    self.reset()
                    self.write("in", content)
                    self.write("other", binary_file(self.COLUMNS, [(1, 2, 3, 4, 7)]))
                    self.assert_shown(self.run_call(call, "in", "out" + call.ending))
                    if "diff" in call.arguments:
                        self.assert_shown(self.tool("diff", "in", "other", **SHOWN))

    def test_cat_gives_programs_the_names_as_they_are(self):
        self.write("in", next(self.contents()))
        self.assertIn(b"\x1b[31mRED\x07,", self.tool("cat", "in", text=False).stdout)

    def on_terminal(self, *arguments):
        mine, terminal = pty.openpty()
        process = subprocess.Popen([PROGRAM, *arguments], cwd=self.folder, stdout=terminal,
                                   stderr=terminal, stdin=subprocess.DEVNULL,
                                   env={**os.environ, "NO_COLOR": "1", "TERM": "xterm"})
        os.close(terminal)
        text = b""
        try:
            while piece := os.read(mine, 4096):
                text += piece
        except OSError:
            pass  # the other end is closed
        os.close(mine)
        process.wait(LIMIT)
        return text.decode("utf-8", "surrogateescape").replace("\r\n", "\n").replace("\t", " ")

    def test_a_terminal_is_never_steered(self):
        for number, content in enumerate(self.contents()):
            self.write("in", content)
            for call in [["cat", "in"], ["cat", "in", "--format", "tsv"],
                         ["cat", "in", "--format", "json"], ["convert", "in", "-", "--to", "csv"],
                         ["convert", "in", "-", "--to", "text"], ["info", "in"], ["check", "in"],
                         ["convert", "in", "-", "--to", "binary"], ["stats", "in"]]:
                with self.subTest(call=call, number=number):
                    self.assertIsNone(STEERING.search(self.on_terminal(*call)))


class Links(PathTest):
    def setUp(self):
        super().setUp()
        (self.folder / "sub").mkdir()

    def reset(self):
        for one in [*(self.folder / "sub").iterdir(), *self.folder.iterdir()]:
            if not one.is_dir():
                one.unlink()

    def calls(self):
        """Of split the name of the only part is told apart."""
        return [(call, "out-001" if "split" in call.arguments else "out")
                for call in self.writing_calls()]

    def prepare(self, call, name, target, content=None):
        self.reset()
        self.write("in", self.content_for(call))
        link = self.folder / (name + call.ending)
        link.symlink_to(target)
        if content is not None:
            (self.folder / target).write_bytes(content)
        return link

    def test_through_a_link_its_target_is_replaced(self):
        for call, name in self.calls():
            with self.subTest(call.arguments):
                link = self.prepare(call, name, "sub/target", b"old")
                result = self.run_call(call, "in", "out" + call.ending)
                self.assertEqual(result.returncode, 1)
                self.assertIn("is there already", result.stderr)
                self.assertEqual((self.folder / "sub/target").read_bytes(), b"old")
                result = self.run_call(call, "in", "out" + call.ending, "--force")
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertTrue(link.is_symlink())
                self.assertEqual(os.readlink(link), "sub/target")
                self.assertNotEqual((self.folder / "sub/target").read_bytes(), b"old")
                self.assertEqual(os.listdir(self.folder / "sub"), ["target"])

    def test_a_link_to_nothing_is_there_already(self):
        for call, name in self.calls():
            with self.subTest(call.arguments):
                link = self.prepare(call, name, "sub/target")
                result = self.run_call(call, "in", "out" + call.ending)
                self.assertEqual(result.returncode, 1)
                self.assertIn("is there already", result.stderr)
                self.assertEqual(os.listdir(self.folder / "sub"), [])
                result = self.run_call(call, "in", "out" + call.ending, "--force")
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertTrue(link.is_symlink())
                self.assertTrue((self.folder / "sub/target").is_file())

    def test_links_that_lead_nowhere_are_refused(self):
        for call, name in self.calls():
            for target, cause in [(name + call.ending, "symbolic links"), ("none/x", "not there")]:
                with self.subTest(call=call.arguments, target=target):
                    self.prepare(call, name, target)
                    result = self.run_call(call, "in", "out" + call.ending, "--force")
                    self.assertEqual(result.returncode, 1)
                    self.assertIn(cause, result.stderr)

    def test_an_input_is_never_lost(self):
        """Without --force nothing is touched; with it the new file replaces the old one when it is
        whole, or recover refuses."""
        for call, name in self.calls():
            if "IN" not in call.arguments:
                continue
            for make in [lambda link: link.symlink_to("in"),
                         lambda link: os.link(self.folder / "in", link)]:
                with self.subTest(call.arguments):
                    self.reset()
                    content = self.content_for(call)
                    self.write("in", content)
                    make(self.folder / (name + call.ending))
                    result = self.run_call(call, "in", "out" + call.ending)
                    self.assertIn(result.returncode, [1, 2])
                    self.assertEqual(self.read("in"), content)
                    apart = {"TMPDIR": str(self.folder / "sub")}
                    result = self.run_call(call, "in", "out" + call.ending, "--force",
                                           env={**os.environ, **apart})
                    if "recover" in call.arguments:
                        self.assertEqual(result.returncode, 2)
                        self.assertEqual(self.read("in"), content)
                    else:
                        self.assertEqual(result.returncode, 0, result.stderr)
                        self.assertNotEqual(self.read("in"), b"")
                    self.assertEqual(len(list(self.folder.iterdir())), 3)

    def test_links_are_read_through(self):
        self.write("in", binary_file())
        (self.folder / "link").symlink_to("in")
        self.output_of("check", "link")
        (self.folder / "gone").symlink_to("none")
        self.assertIn("not found", self.tool("check", "gone").stderr)
        (self.folder / "circle").symlink_to("circle")
        self.assertIn("Too many levels of symbolic links", self.tool("check", "circle").stderr)


class Kinds(PathTest):
    """What is no regular file."""

    def reading_calls(self):
        return [call for call in CALLS if call.arguments.count("IN") == 1]

    def test_a_pipe_is_read_as_the_standard_input_is(self):
        for call in self.reading_calls():
            with self.subTest(call.arguments):
                self.reset()
                os.mkfifo(self.folder / "pipe")
                writer = threading.Thread(target=self.write, args=("pipe", self.content_for(call)))
                writer.start()
                result = self.run_call(call, "pipe", "out" + call.ending)
                writer.join(LIMIT)
                self.assertIn(result.returncode, [0, 3], result.stderr)

    def test_a_pipe_is_written_when_all_is_whole(self):
        for call in self.writing_calls():
            if "split" in call.arguments:
                continue
            with self.subTest(call.arguments):
                self.reset()
                self.write("in", self.content_for(call))
                self.run_call(call, "in", "plain" + call.ending)
                name = "pipe" + call.ending
                os.mkfifo(self.folder / name)
                found = []
                reader = threading.Thread(target=lambda: found.append(self.read(name)))
                reader.start()
                result = self.run_call(call, "in", name)
                reader.join(LIMIT)
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertTrue((self.folder / name).is_fifo())
                if not call.ending == ".h5":
                    self.assertEqual(found, [self.read("plain" + call.ending)])

    def test_sockets_are_refused(self):
        server = socket.socket(socket.AF_UNIX)
        self.addCleanup(server.close)
        self.write("in", binary_file(calib=[GAIN]))
        here = os.getcwd()
        os.chdir(self.folder)
        server.bind("out.sock")
        os.chdir(here)
        for call in CALLS:
            for source, target in [("out.sock", "out"), ("in", "out.sock")]:
                word = "IN" if source == "out.sock" else "OUT"
                if word not in call.arguments or ("split" in call.arguments and word == "OUT"):
                    continue
                with self.subTest(call=call.arguments, word=word):
                    result = self.run_call(call, source, target)
                    self.assertIn(result.returncode, [1, 2])
                    self.assertIn("out.sock is a socket", result.stderr)

    def test_folders_are_refused(self):
        (self.folder / "out").mkdir()
        self.write("in", binary_file(calib=[GAIN]))
        for call in CALLS:
            for source, target in [("out", "new"), ("in", "out")]:
                word = "IN" if source == "out" else "OUT"
                if word not in call.arguments or ("split" in call.arguments and word == "OUT"):
                    continue
                with self.subTest(call=call.arguments, word=word):
                    force = ["--force"] if word == "OUT" else []
                    result = self.run_call(call, source, target, *force)
                    self.assertIn(result.returncode, [1, 2])
                    self.assertIn("out is a folder", result.stderr)

    def test_devices_take_and_refuse_as_they_do(self):
        calls = self.writing_calls()
        self.write("in", binary_file(rows=IMU_ROWS * 100, calib=[GAIN]))
        for call in calls:
            if "split" in call.arguments or call.content:
                continue
            with self.subTest(call.arguments):
                self.assertIn(self.run_call(call, "in", "/dev/null").returncode, [0, 3])
                self.assertTrue(pathlib.Path("/dev/null").is_char_device())
                result = self.run_call(call, "in", "/dev/full")
                self.assertEqual(result.returncode, 1)
                self.assertRegex(result.stderr, r"(?m)^sensorfile: /dev/full\b")
        for call in self.reading_calls():
            result = self.run_call(call, "/dev/null", "out")
            self.assertIn(result.returncode, [1, 2, 3], call)


class Permissions(PathTest):
    def test_new_files_have_the_permissions_of_the_umask(self):
        for call in self.writing_calls():
            for mask, expected in [(0o022, 0o644), (0o002, 0o664), (0o077, 0o600), (0o777, 0)]:
                if mask == 0o777 and os.geteuid() != 0:
                    continue  # who is not root could not write it either
                with self.subTest(call=call.arguments, mask=mask):
                    self.reset()
                    self.write("in", self.content_for(call))
                    result = self.run_call(call, "in", "out" + call.ending,
                                           preexec_fn=lambda: os.umask(mask))
                    self.assertEqual(result.returncode, 0, result.stderr)
                    target, = self.targets()
                    self.assertEqual(target.stat().st_mode & 0o777, expected)


if __name__ == "__main__":
    main()

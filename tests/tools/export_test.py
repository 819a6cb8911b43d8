"""Tests of what convert makes for other programs: it is read by NumPy, pandas, SciPy and h5py."""

import os
import pathlib
import random
import subprocess
import tempfile

import h5py
import numpy
import pandas
import scipy.io

from convert_cases import ALL, ConvertTest, random_rows
from sample_files import (CODES, GAIN, IMU, IMU_ROWS, RANGE, TYPES, binary_calib, binary_file,
                          text_file)
from tool_test import LIMIT, PROGRAM, main

NUMPY_TYPES = {name: {"B": "u1", "b": "i1"}.get(letter, letter) if name != "bool" else "?"
               for letter, name in TYPES.values()}


def has_hdf5():
    """Whether the program was built with it."""
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "a.bin"
        path.write_bytes(binary_file())
        result = subprocess.run([PROGRAM, "convert", path, path.with_suffix(".h5")],
                                timeout=LIMIT, stderr=subprocess.PIPE, text=True)
    return "no HDF5" not in result.stderr


HAS_HDF5 = has_hdf5()


class ExportTest(ConvertTest):
    """A recording of all types, with names that other formats cannot hold."""
    COLUMNS = ALL + [("TIME", "double"), ("TIME", "float"), ("gr\u00fc\u00df", "int16"),
                     ("a/b 1", "uint8"), ("end", "bool"), ("2nd", "int8"), ("", "int32"),
                     (b"\xe9t\xe9", "int16"), ("calibration", "uint16"), ("it's \\", "int16")]
    # As sensor files hold them.
    NAMES = [name for name, _ in ALL] + ["TIME", "TIME", "gr\u00fc\u00df", "a/b 1", "end", "2nd", "",
                                         "\u00e9t\u00e9", "calibration", "it's \\"]

    def setUp(self):
        super().setUp()
        dice = random.Random(2)
        extra = [kind for _, kind in self.COLUMNS[len(ALL):]]
        self.rows = [row + [dice.randrange(2) if kind == "bool" else dice.randrange(128)
                            for kind in extra] for row in random_rows(20000)]
        self.rows[3][ALL.index(("C9", "double"))] = float("nan")
        self.rows[4][ALL.index(("C8", "float"))] = float("-inf")
        self.write("a.bin", binary_file(self.COLUMNS, self.rows, calib=[GAIN, RANGE]))
        self.types = [kind for _, kind in self.COLUMNS]

    def assert_column(self, index, found):
        """Type and values are those of the recording."""
        expected = numpy.array([row[index] for row in self.rows],
                               dtype=NUMPY_TYPES[self.types[index]])
        self.assertEqual(found.dtype, expected.dtype)
        numpy.testing.assert_array_equal(found, expected)


class Export(ExportTest):
    def test_npy_is_a_structured_array(self):
        self.convert("a.bin", "a.npy",
                     stderr="a.npy: 2 calibration records are left out, which the "
                            "format cannot hold\n")
        array = numpy.load(self.folder / "a.npy")
        self.assertEqual(array.shape, (20000,))
        names = list(self.NAMES)
        names[names.index("TIME") + 1] = "TIME_2"
        names[names.index("")] = "unnamed"
        self.assertEqual(list(array.dtype.names), names)
        for i, name in enumerate(names):
            self.assert_column(i, array[name])
        self.assertEqual(array.dtype.itemsize, sum(numpy.dtype(NUMPY_TYPES[kind]).itemsize
                                                   for kind in self.types))
        self.assertEqual(array.dtype["C13"].str, "<u2")
        pandas.DataFrame(numpy.load(self.folder / "a.npy"))

    def test_npy_with_any_number_of_rows(self):
        for count in [0, 1, 9, 10, 12345]:
            self.write("b.bin", binary_file(IMU, IMU_ROWS[:1] * count))
            self.convert("b.bin", "b.npy", "--force")
            array = numpy.load(self.folder / "b.npy", mmap_mode="r" if count else None)
            self.assertEqual(array.shape, (count,))
            self.assertEqual(array.dtype.names, ("COUNT", "ACCX", "ACCY", "TIME"))

    def test_npy_with_many_columns_has_a_longer_header(self):
        columns = [(f"A_COLUMN_WITH_A_LONG_NAME_{i}", "int16") for i in range(2000)]
        self.write("b.bin", binary_file(columns, [list(range(2000))]))
        self.convert("b.bin", "b.npy")
        self.assertEqual(self.read("b.npy")[:8], b"\x93NUMPY\x02\x00")
        array = numpy.load(self.folder / "b.npy", max_header_size=10**6)
        self.assertEqual(list(array[0]), list(range(2000)))

    def test_npy_needs_columns(self):
        self.write("b.bin", binary_file([], []))
        self.fails("b.bin", "b.npy", message="b.bin: there are no columns to make an array of")

    def test_csv_is_read_by_pandas(self):
        self.convert("a.bin", "a.csv", stderr="a.csv: 2 calibration records are left "
                                              "out, which the format cannot hold\n",
                     *["--columns", "C?,C1*"])
        frame = pandas.read_csv(self.folder / "a.csv", float_precision="round_trip")
        for i, (name, kind) in enumerate(ALL):
            values = frame[name].to_numpy().astype(NUMPY_TYPES[kind])
            self.assert_column(i, values)

    def test_json_lines_are_read_by_pandas(self):
        self.convert("a.bin", "a.jsonl", "--rows", "0:3", "--columns", "C9,C13", stderr=
                     "a.jsonl: 2 calibration records are left out, which the format "
                     "cannot hold\n")
        frame = pandas.read_json(self.folder / "a.jsonl", lines=True)
        self.assertEqual(list(frame["C13"]), [row[11] for row in self.rows[:3]])

    def test_mat_has_a_variable_a_column(self):
        self.convert("a.bin", "a.mat")
        mat = scipy.io.loadmat(self.folder / "a.mat")
        names = [name for name, _ in ALL] + ["TIME", "TIME_2", "gr____", "a_b_1", "xend", "x2nd",
                                             "x", "x_t_", "calibration_2", "it_s__"]
        self.assertEqual(sorted(name for name in mat if not name.startswith("__")),
                         sorted(names + ["frequency", "created", "columns", "calibration",
                                         "calibration_created"]))
        for i, name in enumerate(names):
            self.assertEqual(mat[name].shape, (20000, 1))
            found = mat[name][:, 0]
            if self.types[i] == "bool":
                found = found.astype(bool)
            self.assert_column(i, found)
        self.assertEqual(mat["frequency"], [[200.0]])
        self.assertEqual(list(mat["created"]), ["2017-05-23T10:04:31Z"])
        self.assertEqual(list(mat["calibration_created"]), ["2016-12-01T08:00:09Z"])
        plain = [[text.item() if text.size else "" for text in row] for row in mat["columns"]]
        self.assertEqual(plain, [[name, old or "unnamed", kind] for name, old, kind in
                                 zip(names, self.NAMES, self.types)])
        calibration = mat["calibration"][0, 0]
        self.assertEqual(calibration["Gain"].tolist(), GAIN[2])
        self.assertEqual(calibration["Range"].tolist(), RANGE[2])
        self.assertEqual(calibration["Range"].dtype, numpy.int32)
        kinds = {name: kind for name, _, kind in scipy.io.whosmat(self.folder / "a.mat")}
        self.assertEqual((kinds["xend"], kinds["C15"], kinds["calibration"]),
                         ("logical", "uint64", "struct"))

    def test_mat_of_text_and_parts(self):
        self.write("b.txt", text_file())
        self.convert("b.txt", "b.mat", "--rows", "2:5", "--columns", "TIME,ACCX")
        mat = scipy.io.loadmat(self.folder / "b.mat")
        self.assertEqual(mat["ACCX"].ravel().tolist(), [-2, -3, -4])
        self.assertEqual(mat["TIME"].ravel().tolist(), [0.01, 0.015, 0.02])
        for rows, count in [("8:99", 2), ("10:", 0), ("99:", 0), ("3:3", 0)]:
            self.convert("b.txt", "b.mat", "--rows", rows, "--force")
            mat = scipy.io.loadmat(self.folder / "b.mat")
            self.assertEqual(mat["TIME"].shape, (count, 1))

    def test_mat_of_a_cut_recording_has_its_whole_rows(self):
        self.write("b.bin", binary_file()[:-3])
        for name in ["b.mat", "b.npy"] + ["b.h5"] * HAS_HDF5:
            result = self.tool("convert", "b.bin", name)
            self.assertEqual((result.returncode, result.stdout), (3, ""))
            self.assertIn("no whole row", result.stderr)
        self.assertEqual(scipy.io.loadmat(self.folder / "b.mat")["TIME"].size, 9)
        self.assertEqual(numpy.load(self.folder / "b.npy").size, 9)

    def test_mat_names_what_is_too_large_and_the_way_out(self):
        self.write("b.bin", binary_file(IMU, []))
        with open(self.folder / "b.bin", "r+b") as file:
            file.truncate(14 * 2**28 + 1000)  # without taking room on the disk
        self.fails("b.bin", "b.mat", message="b.bin: column TIME is larger than the 2 GB that a "
                                             "variable of a .mat file can have; .h5 holds any "
                                             "size, --rows takes a part")

    def test_calibrations_alone_become_mat(self):
        self.write("b.bin", binary_calib([GAIN, RANGE]))
        self.convert("b.bin", "b.mat")
        mat = scipy.io.loadmat(self.folder / "b.mat")
        self.assertEqual(sorted(name for name in mat if not name.startswith("__")),
                         ["calibration", "calibration_created"])
        self.assertEqual(mat["calibration"][0, 0]["Gain"].tolist(), GAIN[2])

    def test_exports_go_to_standard_output_and_are_the_same_every_time(self):
        for name in ["npy", "mat", "csv"] + ["h5"] * HAS_HDF5:
            result = self.tool("convert", "a.bin", "-", "--to", name, text=False)
            self.assertEqual(result.returncode, 0)
            self.tool("convert", "a.bin", "b." + name)
            self.assertEqual(self.read("b." + name), result.stdout)


class Hdf5(ExportTest):
    def test_a_full_disk_leaves_nothing(self):
        # HDF5 itself leaks what it could not write.
        result = subprocess.run(
            ["bash", "-c", "ulimit -f 8; trap '' XFSZ; exec \"$0\" convert a.bin a.h5", PROGRAM],
            env={**os.environ, "ASAN_OPTIONS": "detect_leaks=0"}, cwd=self.folder, timeout=LIMIT, text=True, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE)
        self.assert_fails(result)
        self.assertRegex(result.stderr, "a.h5.*: HDF5")
        self.assertNotIn(".part", result.stderr)
        self.assert_files("a.bin")

    def test_h5_has_a_dataset_a_column(self):
        self.convert("a.bin", "a.h5")
        with h5py.File(self.folder / "a.h5") as file:
            self.assertEqual(dict(file.attrs), {
                "format": "sensorfile-h5-1", "encoding": "binary", "frequency_hz": 200.0,
                "created": "2017-05-23T10:04:31Z", "header_version": "0x0101"})
            names = [name for name, _ in ALL] + ["TIME", "TIME_2", "gr\u00fc\u00df", "a_b 1", "end",
                                                 "2nd", "unnamed", "\u00e9t\u00e9", "calibration_2",
                                                 "it's \\"]
            self.assertEqual(sorted(file), sorted(names + ["calibration"]))
            for i, name in enumerate(names):
                self.assert_column(i, file[name][:])
                self.assertEqual(dict(file[name].attrs), {
                    "name": self.NAMES[i] or "unnamed", "type": self.types[i], "index": i})
            group = file["calibration"]
            self.assertEqual(dict(group.attrs), {"created": "2016-12-01T08:00:09Z", "format": 2,
                                                 "version": "0x0200"})
            self.assertEqual(group["Gain"][:].tolist(), GAIN[2])
            self.assertEqual(group["Range"][:].tolist(), RANGE[2])
            self.assertEqual(group["Range"].dtype, numpy.int32)
            self.assertEqual(group["Gain"].attrs["type"], "double")

    def test_h5_with_any_number_of_rows(self):
        for count in [0, 1, 16384, 16385]:
            self.write("b.bin", binary_file(IMU, IMU_ROWS[:1] * count))
            self.convert("b.bin", "b.h5", "--force")
            with h5py.File(self.folder / "b.h5") as file:
                self.assertEqual(file["TIME"].shape, (count,))
                self.assertNotIn("calibration", file)

    def test_calibrations_alone_become_h5(self):
        self.write("b.bin", binary_calib([GAIN, RANGE]))
        self.convert("b.bin", "b.h5")
        with h5py.File(self.folder / "b.h5") as file:
            self.assertEqual(list(file), ["calibration"])
            self.assertEqual(file["calibration/Gain"][:].tolist(), GAIN[2])


class WithoutHdf5(ConvertTest):
    def test_a_build_without_hdf5_says_so(self):
        self.write("a.bin", binary_file())
        self.fails("a.bin", "a.h5", message="this build of sensorfile has no HDF5")

# The other one cannot be tried with this program.
if HAS_HDF5:
    del WithoutHdf5
else:
    del Hdf5

if __name__ == "__main__":
    main()

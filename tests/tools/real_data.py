"""Turns recordings that people made into sensor files.

They are no part of the project: the environment variable SENSORFILE_REAL_DATA tells the folder that
holds them, and tests that need them leave that out without it.
"""

import csv
import os
import pathlib

from sample_files import binary_file

FOLDER = os.environ.get("SENSORFILE_REAL_DATA")


def _column(name, kind, field):
    return {"name": name, "kind": kind, "field": field}


def _axes(prefix, first):
    return [_column(prefix + axis, "double", first + i) for i, axis in enumerate("XYZ")]


RECORDINGS = {
    "ahrs_9axis_xio.csv": (100.0, 1, [_column("Time (s)", "double", 0), *_axes("GYR", 1),
                                      *_axes("ACC", 4), *_axes("MAG", 7)]),
    "walk_6axis_xio.csv": (400.0, 1, [_column("Time (s)", "double", 0), *_axes("GYR", 1),
                                      *_axes("ACC", 4)]),
    "phone_accel_400hz_oxford.csv": (400.0, 0, [_column("TIMESTAMP", "uint64", 0),
                                                _column("STATUS", "uint8", 1), *_axes("ACC", 2)]),
    "phone_step_counters_oxford.csv": (100.0, 0, [_column("TIMESTAMP", "int64", 0),
                                                  *_axes("ACC", 1), _column("STEPS", "uint16", 4)]),
    "rocket_raw_counts_srp.csv": (10.0, 0, [_column("SAMPLE", "uint16", 0),
                                            _column("TIME", "double", 1),
                                            _column("ACCX", "int16", 2),
                                            _column("ACCY", "int16", 3),
                                            _column("ACCZ", "int16", 4)]),
    "rocket_two_rate_ncsu.csv": (150.0, 1, [_column("timestamp", "int64", 3),
                                            _column("update_timestamp_ns", "int64", 50)]),
}


def _fields(lines):
    """The values of the lines; lists in quotes are values of their own, marker lines none."""
    for line in csv.reader(line for line in lines if not line.startswith("#")):
        yield [part for field in line for part in field.strip("[]").split(",")]


def sensor_file(name, frequency=None):
    """The bytes of a sensor file with the recording's columns."""
    rate, header_lines, columns = RECORDINGS[name]
    kinds = [(one["name"], one["kind"]) for one in columns]
    reads = [float if one["kind"] == "double" else int for one in columns]
    with open(pathlib.Path(FOLDER) / name, encoding="ascii", newline="") as stream:
        lines = list(_fields(stream))[header_lines:]
    rows = [tuple(read(line[one["field"]]) for read, one in zip(reads, columns)) for line in lines]
    return binary_file(kinds, rows, frequency=frequency or rate)

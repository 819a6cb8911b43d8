#!/usr/bin/env python3
"""Prints the one table of bench/run from the JSON that the benchmarks wrote.

Times are medians over the repetitions, in ns an item (row, hand-over, ...). A benchmark that is
registered with UseRealTime() is shown by the clock, any other by the processor time it took, which
does not depend on what else runs.
"""

import json
import sys
from statistics import median
from typing import NamedTuple, Optional


class Comparison(NamedTuple):
    """A line of the table: `work` beside another way to do the same."""

    title: str
    work: str
    beside: str
    # The wanted ratio: either the work takes at most so many times as long as the other way ...
    at_most: Optional[float] = None
    # ... or the other way takes at least so many times as long as the work.
    at_least: Optional[float] = None


COMPARISONS = [
    Comparison("binary write, writeRow : limit", "binaryWrite/row", "binaryWrite/limit", at_most=1.6),
    Comparison("binary write, writeRow : plain", "binaryWrite/row", "binaryWrite/plain", at_least=8),
    Comparison("binary write, write<T> : limit", "binaryWrite/values", "binaryWrite/limit", at_most=3.5),
    Comparison("binary read, readRow : limit", "binaryRead/row", "binaryRead/limit", at_most=1.8),
    Comparison("binary read, readRow : plain", "binaryRead/row", "binaryRead/plain", at_least=10),
    Comparison("binary read, read<double> : limit", "binaryRead/values", "binaryRead/limit", at_most=1.8),
    Comparison("binary read, read<double> : plain", "binaryRead/values", "binaryRead/plain", at_least=10),
    Comparison("text write, unflushed : plain", "textWrite/unflushed", "textWrite/plain", at_least=12),
    Comparison("text write, flushed a row : limit", "textWrite/flushed", "textWrite/limit_flushed", at_most=1.25),
    Comparison("text read, readRow : plain", "textRead/row", "textRead/plain", at_least=8),
    Comparison("text read, read<double> : plain", "textRead/values", "textRead/plain", at_least=8),
    Comparison("hand-over, pin : two assignments", "handOver/pin", "handOver/assignments"),
    Comparison("hand-over, FIFO : two assignments", "handOver/buffer", "handOver/assignments", at_most=1.0),
    Comparison("two threads, pin's buffer : deque", "crossing/thread_safe", "crossing/deque", at_least=1.5),
]


class Figure(NamedTuple):
    """A line of the second table: a figure by itself."""

    title: str
    work: str
    counter: str  # of the benchmark, e.g. items_per_second
    scale: float  # from the counter's unit to the shown one
    unit: str
    at_most: Optional[float] = None
    at_least: Optional[float] = None


FIGURES = [
    Figure("simulated unit to file, one layout", "flow/simulator_to_file/1000000", "items_per_second", 1e-6,
           "million rows/s", at_least=1.0),
    Figure("Kivra2 unit to file, one layout", "kivra2/record/1000000", "items_per_second", 1e-6,
           "million rows/s", at_least=1.0),
    Figure("Kivra2 file to all pins and a file", "kivra2/replay/1000000", "items_per_second", 1e-6,
           "million rows/s", at_least=0.5),
    Figure("a sample across two layouts", "host/sample_latency", "ns", 1e-6, "ms", at_most=1.0),
    Figure("longest edit under an 819 Hz replay", "host/edit_latency", "longest_us", 1e-3, "ms", at_most=100.0),
    Figure("idle flow, source that is due later", "host/idle_flow/0", "percent_of_a_core", 1.0, "% of a core",
           at_most=1.0),
    Figure("idle flow, source that is asked", "host/idle_flow/1", "percent_of_a_core", 1.0, "% of a core",
           at_most=1.0),
    Figure("pace at 819 Hz, error", "host/pacing_819Hz", "error_percent", 1.0, "%", at_most=0.1),
]


def nanoseconds_an_item(run):
    """Time of one repetition; items_per_second was counted over the shown time."""
    return 1e9 / run["items_per_second"]


def short_name(run):
    """Name of the benchmark without the suffixes of the tool."""
    name = run["run_name"].split("/iterations:")[0]
    for suffix in ("/real_time", "/manual_time", "/process_time"):
        name = name.removesuffix(suffix)
    return name


def medians(results, value):
    """Median of value(run) over the repetitions of every benchmark, by its short name."""
    values = {}
    for run in results["benchmarks"]:
        if run.get("error_occurred"):
            raise SystemExit(f"bench: {run['name']}: {run['error_message']}")
        if run["run_type"] == "iteration" and value(run) is not None:
            values.setdefault(short_name(run), []).append(value(run))
    return {name: median(numbers) for name, numbers in values.items()}


def judge(value, at_most, at_least):
    """What was wanted of a value, and whether it was reached."""
    if at_most is not None:
        return f"<= {at_most:g}", "yes" if value <= at_most else "NO"
    if at_least is not None:
        return f">= {at_least:g}", "yes" if value >= at_least else "NO"
    return "", ""


def comparison_line(comparison, times):
    work, beside = times[comparison.work], times[comparison.beside]
    ratio = beside / work if comparison.at_least is not None else work / beside
    wanted, reached = judge(ratio, comparison.at_most, comparison.at_least)
    return (comparison.title, f"{work:.1f}", f"{beside:.1f}", f"{ratio:.2f}", wanted, reached)


def figure_line(figure, value):
    shown = value * figure.scale
    return (figure.title, f"{shown:.3g}", figure.unit) + judge(shown, figure.at_most, figure.at_least)


def show(lines):
    widths = [max(len(cells[i]) for cells in lines) for i in range(len(lines[0]))]
    for cells in lines:
        print("  ".join(cells[i].ljust(widths[i]) if i == 0 else cells[i].rjust(widths[i])
                        for i in range(len(cells))).rstrip())


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        results = json.load(file)
    times = medians(results, nanoseconds_an_item)
    lines = [("work : beside what", "ns", "beside ns", "ratio", "wanted", "reached")]
    lines += [comparison_line(c, times) for c in COMPARISONS if c.work in times and c.beside in times]
    figures = [("figure", "median", "unit", "wanted", "reached")]
    for figure in FIGURES:
        of_runs = nanoseconds_an_item if figure.counter == "ns" else lambda run: run.get(figure.counter)
        values = medians(results, of_runs)
        if figure.work in values:
            figures.append(figure_line(figure, values[figure.work]))
    if len(lines) > 1:
        show(lines)
    if len(figures) > 1:
        print()
        show(figures)


if __name__ == "__main__":
    main()

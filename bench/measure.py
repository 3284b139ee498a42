#!/usr/bin/python3
"""Runs the benchmarks, subject by subject, and stores the figure of every repetition.

Benchmarks are named subject/contender[/size...]. The contenders of one subject and size run in one
process, in short repetitions that are interleaved at random, so that other load on the machine affects
all of them alike.

    measure.py PROGRAM... RESULTS [--quick] [--only REGEX]
"""

import argparse
import json
import pathlib
import re
import subprocess
import sys


def listed(program):
    names = subprocess.run([program, "--benchmark_list_tests"], check=True, capture_output=True, text=True)
    return names.stdout.split()


def group_of(name):
    subject, _, size = (name.split("/") + ["", ""])[:3]
    return subject, size if size.isdigit() else ""


def run(program, group, repetitions, seconds):
    subject, size = group
    command = [
        program,
        f"--benchmark_filter=^{subject}/[^/]*{'/' + size if size else ''}(/[a-z].*)?$",
        "--benchmark_enable_random_interleaving=true",
        f"--benchmark_repetitions={repetitions}",
        f"--benchmark_min_time={seconds}",
        "--benchmark_format=json",
    ]
    output = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return [result for result in json.loads(output)["benchmarks"] if result["run_type"] == "iteration"]


def figure(result):
    """Nanoseconds per item. For memory: bytes of a row, and how many of them are its contents."""
    if "error_occurred" in result:
        sys.exit(f"{result['name']}: {result['error_message']}")
    if "bytes_a_row" in result:
        return result["bytes_a_row"], result["record_and_lists"]
    if "items_per_second" in result:
        return 1e9 / result["items_per_second"]
    units = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    wall = "real_time" in result["name"] or "manual_time" in result["name"]
    return result["real_time" if wall else "cpu_time"] * units[result["time_unit"]]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", nargs="+")
    parser.add_argument("results")
    parser.add_argument("--quick", action="store_true", help="fewer and shorter repetitions")
    parser.add_argument("--only", default="", help="measure only benchmarks that match; figures of the others are kept")
    arguments = parser.parse_args()
    repetitions, seconds = (5, 0.01) if arguments.quick else (31, 0.03)

    results = pathlib.Path(arguments.results)
    figures = json.loads(results.read_text(encoding="utf-8")) if arguments.only and results.exists() else {}
    for program in arguments.programs:
        names = [name for name in listed(program) if re.search(arguments.only, name)]
        for group in dict.fromkeys(group_of(name) for name in names):
            print("measuring", *filter(None, group), file=sys.stderr)
            runs = run(program, group, repetitions, seconds)
            for name in {result["run_name"] for result in runs}:
                figures[name] = []
            for result in sorted(runs, key=lambda result: (result["family_index"], result["repetition_index"])):
                figures[result["run_name"]].append(figure(result))
    results.write_text(json.dumps(figures, indent=1), encoding="utf-8")


main()

#!/usr/bin/python3
"""Plots cost against size from the results of measure.py.

    plots.py RESULTS FOLDER
"""

import json
import pathlib
import statistics
import sys

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams["svg.hashsalt"] = "tarnd_qrb"  # reproducible output
import matplotlib.pyplot as pyplot  # noqa: E402

PLOTS = {
    "keyed_read": ("Keyed read of a 387-byte record", "rows", "ns"),
    "scan": ("Scan, two fields read of each row", "rows", "ns per row"),
    "last_route": ("Inquiry that matches the last route", "routes", "ns per route"),
    "publish": ("Publishing an event", "callbacks", "ns"),
}


def main():
    results, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    with open(results, encoding="utf-8") as file:
        figures = json.load(file)
    for subject, (title, sizes, unit) in PLOTS.items():
        lines = {}
        for name, measured in figures.items():
            if name.startswith(subject + "/"):
                _, contender, size = name.split("/")
                lines.setdefault(contender, []).append((int(size), statistics.median(measured)))
        if not lines:
            continue
        figure, axes = pyplot.subplots(figsize=(7, 4))
        for contender, points in lines.items():
            axes.loglog(*zip(*sorted(points)), marker="o", label=contender.replace("_", " "))
        axes.set(title=title, xlabel=sizes, ylabel=unit)
        axes.grid(which="major", alpha=0.4)
        axes.legend()
        figure.savefig(folder / f"cost-{subject.replace('_', '-')}.svg", metadata={"Date": None}, bbox_inches="tight")


main()

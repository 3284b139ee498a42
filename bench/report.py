#!/usr/bin/python3
"""Prints the results of measure.py as tables: each figure with its reference, their ratio and the aim.

    report.py RESULTS LIBRARY
"""

import argparse
import json
import operator
import statistics
import subprocess

AT_MOST, LESS, AT_LEAST = ("at most", operator.le), ("below", operator.lt), ("at least", operator.ge)

KEYED_SIZES = (100, 10_000, 1_000_000)
FLAT_HASH_AIMS = {100: (None, None), 10_000: (AT_MOST, 2), 1_000_000: (AT_MOST, 3)}

# Title, measured, reference, relation of the ratio to the aim, aim. Rows without an aim are informative.
TIMES = [
    ("query, one-shot, over the same by hand", "query_one_shot/library", "query_one_shot/by_hand", AT_MOST, 1.05),
    ("query in a session, over the same by hand", "query_session/library", "query_session/by_hand", AT_MOST, 1.05),
    ("query of a list, over the same by hand", "query_list/library", "query_list/by_hand", AT_MOST, 1.05),
    ("query by condition, over the same by hand", "query_condition/library", "query_condition/by_hand", AT_MOST, 1.05),
    ("query by scan, over the same by hand", "query_scan/library", "query_scan/by_hand", AT_MOST, 1.05),
    *[
        (f"keyed read of {size:,} rows, over {name}", f"keyed_read/stand_in/{size}", f"keyed_read/{other}/{size}", *aim)
        for size in KEYED_SIZES
        for name, other, *aim in [
            ("a flat hash table", "flat_hash", *FLAT_HASH_AIMS[size]),
            ("an array", "array", None, None),
            ("std::unordered_map", "unordered_map", None, None),
            ("LMDB", "lmdb", LESS, 1),
            ("SQLite", "sqlite", LESS, 1),
        ]
    ],
    *[
        (
            f"two readers over one, {name}: reads per second",
            f"two_readers/{store}/10000/real_time/threads:1",
            f"two_readers/{store}/10000/real_time/threads:2",
            *aim,
        )
        for name, store, *aim in [("stand-in", "stand_in", AT_LEAST, 1.8), ("flat hash table", "flat_hash", None, None)]
    ],
    *[
        (f"scan of {size:,} rows, per row, over {name}", f"scan/stand_in/{size}", f"scan/{other}/{size}", *aim)
        for size in KEYED_SIZES
        for name, other, *aim in [
            ("an array", "array", None, None),
            ("LMDB", "lmdb", AT_MOST if size == 1_000_000 else None, 0.6 if size == 1_000_000 else None),
            ("SQLite", "sqlite", None, None),
        ]
    ],
    *[
        (f"scan of {name}, per row, a million rows over a thousand", f"scan/{store}/1000000", f"scan/{store}/1000", None, None)
        for name, store in [("the stand-in", "stand_in"), ("an array", "array"), ("LMDB", "lmdb")]
    ],
    ("session query over one-shot read", "session_read/session/10000", "session_read/one_shot/10000", AT_MOST, 5),
    ("list push and pop, over malloc, copy, free", "list_push_pop/util_list", "list_push_pop/malloc_copy_free", None, None),
    ("list push and pop, over std::list", "list_push_pop/util_list", "list_push_pop/std_list", None, None),
    ("list push and pop, over GQueue", "list_push_pop/util_list", "list_push_pop/gqueue", LESS, 1),
    ("sorted insert of 100, over std::list with the same comparator", "list_sorted_insert/util_list", "list_sorted_insert/std_list", AT_MOST, 1),
    ("the same, comparator inlined", "list_sorted_insert/util_list", "list_sorted_insert/std_list_inlined", None, None),
    ("sorted insert of 100, over GQueue", "list_sorted_insert/util_list", "list_sorted_insert/gqueue", None, None),
    *[
        (f"publishing to {callbacks}, over {name}", f"publish/registry/{callbacks}", f"publish/{other}/{callbacks}", *aim)
        for callbacks in (1, 8, 64)
        for name, other, *aim in [
            ("an array of callbacks", "array", AT_MOST if callbacks == 8 else None, 1.5),
            ("GList", "glist", None, None),
        ]
    ],
    *[
        (f"write of {table} to callback, over bare eventfd and epoll_wait", f"write_to_callback/{table}/manual_time", "write_to_callback/bare/manual_time", AT_MOST, 1.5)
        for table in ("if_route", "port")
    ],
    ("one of 10,000 queued changes, over bare eventfd and epoll_wait", "write_to_callback/queued_10000/manual_time", "write_to_callback/bare/manual_time", AT_MOST, 1),
    ("port update that changes no watched field, over the same by hand", "port_unchanged/library/manual_time", "port_unchanged/by_hand/manual_time", AT_MOST, 1.3),
    ("inquiry of the last of a million routes, per row, over the same by hand", "last_route/library/1000000", "last_route/by_hand/1000000", AT_MOST, 1.05),
    ("the same, per row, a million routes over a thousand", "last_route/library/1000000", "last_route/library/1000", None, None),
    ("loading the library, over an empty one", "load/library", "load/empty", None, None),
    ("log call that is not written, over a comparison", "log_suppressed/library", "log_suppressed/comparison", None, None),
]


def time(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def verdict(ratio, relation, aim):
    if relation is None:
        return "", ""
    description, holds = relation
    return f"{description} {aim:g}", "met" if holds(ratio, aim) else "NOT MET"


def time_rows(figures):
    for title, measured, reference, relation, aim in TIMES:
        if measured in figures and reference in figures:
            ratios = [one / other for one, other in zip(figures[measured], figures[reference])]
            low, ratio, high = statistics.quantiles(ratios, n=4)
            yield (
                title,
                time(statistics.median(figures[measured])),
                time(statistics.median(figures[reference])),
                f"{ratio:.2f}",
                f"{low:.2f} to {high:.2f}",
                *verdict(round(ratio, 2), relation, aim),
            )


def load_rows(figures):
    for name, measured in figures.items():
        if name.startswith("load_routes/"):
            yield f"{int(name.split('/')[2]):,} routes from JSON", time(statistics.median(measured))


def memory_rows(figures):
    for name, measured in figures.items():
        if name.startswith("row_memory/"):
            total, contents = measured[0]
            overhead = total - contents
            yield name.split("/")[1], f"{contents:.0f}", f"{total:.0f}", f"{overhead:.0f}", *verdict(overhead, AT_MOST, 96)


def library_rows(library):
    def lines(*command):
        return subprocess.run([*command, library], check=True, capture_output=True, text=True).stdout.splitlines()

    text, data, bss = lines("size")[1].split()[:3]
    relocations = [line.split()[2] for line in lines("readelf", "-rW") if " R_X86_64_" in line]
    relative = relocations.count("R_X86_64_RELATIVE")
    return [
        ("code and constants", f"{text} bytes"),
        ("data, .bss included", f"{int(data) + int(bss)} bytes"),
        ("symbolic relocations", str(len(relocations) - relative)),
        ("relative relocations", str(relative)),
        ("static initializers", str(sum("_GLOBAL__sub_I" in line for line in lines("nm")))),
    ]


def print_table(heading, rows):
    rows = [heading, *rows]
    widths = [max(len(row[column]) for row in rows) for column in range(len(heading))]
    rows.insert(1, ["-" * width for width in widths])
    for row in rows:
        print("| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |")
    print()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("results")
    parser.add_argument("library")
    arguments = parser.parse_args()
    with open(arguments.results, encoding="utf-8") as file:
        figures = json.load(file)
    print_table(("Benchmark", "Measured", "Reference", "Ratio", "Quartiles", "Aim", ""), time_rows(figures))
    print_table(("Bytes per row of", "Contents", "In memory", "Overhead", "Aim", ""), memory_rows(figures))
    print_table(("Loading", "Time"), load_rows(figures))
    print_table(("The library", ""), library_rows(arguments.library))


main()

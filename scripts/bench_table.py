#!/usr/bin/env python3
"""Prints the figures of a benchmark run, a JSON file, as one Markdown table."""
import collections
import json
import math
import sys

COLUMNS = ["ours", "Lua", "LuaJIT_off", "LuaJIT_on"]
HEADINGS = ["what", "of each", "ours", "Lua 5.4", "LuaJIT off", "LuaJIT on", "others",
            "to", "ratio", "target", "met", "rates"]

# What is to be at most so many times the figure of whom; "" stands for no one, an absolute figure.
TARGETS = {
    **{f"load/{what}": [("Lua", 1.0)]
       for what in ["arithmetic", "floats", "strings", "mixed", "subtraction", "bracketed",
                    "joining", "copies", "constants", "names", "literals", "functions",
                    "expression", "comments"]},
    **{f"load/{what}": [("Lua", 1.2)]
       for what in ["calls", "nested_calls", "brackets", "constant_brackets"]},
    **{f"first_load/{what}": [("Lua", 1.5)]
       for what in ["arithmetic", "floats", "strings", "mixed", "names"]},
    "first_load/calls": [("Lua", 1.8)],
    "first_load/brackets": [("Lua", 2.0)],
    **{f"first_load_memory/{what}": [("", 700)] for what in ["arithmetic", "strings", "mixed"]},
    "first_load_memory/calls": [("", 1200)],
    "release/mixed": [("Lua", 2.0)],
    **{f"run/{what}": [("Lua", 0.85)]
       for what in ["arithmetic", "floats", "mixed", "names", "subtraction", "bracketed",
                    "copies", "constants"]},
    **{f"run/{what}": [("Lua", 1.0)]
       for what in ["calls", "nested_calls", "built-in_call", "expression", "strings", "joining"]},
    **{f"run/{what}": [("Lua", 1.5)] for what in ["functions", "literals", "brackets"]},
    "run/constant_brackets": [("Lua", 2.5)],
    "loop/20_arithmetic_statements": [("idle_handlers", 2.2)],
    "loop/1000_arithmetic_statements": [("idle_handlers", 2.2)],
    "print/to_file": [("LuaJIT_off", 2.5), ("Lua", 0.35)],
    "pool/1_live": [("malloc", 1.2)],
    "pool/10^4_taken_and_given_back": [("malloc", 1.2)],
    "pool/10^6_taken_and_given_back": [("malloc", 1.2)],
    "pool/10^4_live_at_random": [("malloc", 2.5)],
    "pool/10^6_live_at_random": [("malloc", 4.0)],
    "scheduler/nothing_due": [("five_ring_scans", 0.2)],
    "scheduler/one_of_10^5_sleepers": [("bare_heap", 4.0)],
    "scheduler/any_of_10^5_sleepers": [("bare_heap", 4.0)],
    "start/first_output": [("Lua", 1.0)],
}
GROWTH_TARGETS = {"growth_of_load/names": 14, "growth_of_load": 12, "growth_of_run": 11}


def with_unit(value, factor, units):
    for unit in units:
        if value < 999.5 or unit == units[-1]:
            return f"{value:.3g} {unit}" if value < 999.5 else f"{value:.0f} {unit}"
        value /= factor


def as_time(nanoseconds):
    return with_unit(nanoseconds, 1000, ["ns", "µs", "ms", "s"])


def as_bytes(count):
    return with_unit(count, 1000, ["B", "kB", "MB"])


def words(name):
    return name.replace("_", " ")


def read(path):
    """The fastest of each benchmark's repetitions, as {(subject/what, who): record}."""
    with open(path) as file:
        records = json.load(file)["benchmarks"]
    found = {}
    for record in sorted(records, key=lambda each: each["family_index"]):
        if record.get("run_type") == "aggregate" or record.get("error_occurred"):
            continue
        parts = record["run_name"].split("/")
        wall = parts[-1] in ("manual_time", "real_time")
        scale = {"ns": 1, "us": 1e3, "ms": 1e6}[record["time_unit"]]
        record["time"] = record["real_time" if wall else "cpu_time"] * scale
        key = ("/".join(parts[:2]), parts[2])
        if key not in found or record["time"] < found[key]["time"]:
            found[key] = record
    return found


def rates(record):
    seconds = record["time"] / 1e9
    shown = []
    if "bytes" in record:
        shown.append(f"{record['bytes'] / seconds / 1e6:.3g} MB/s")
    if "tokens" in record:
        shown.append(f"{record['tokens'] / seconds / 1e6:.3g} M tokens/s")
    if record.get("instructions"):
        shown.append(f"{record['time'] / record['instructions']:.3g} ns an instruction")
    if record["label"].startswith("statement"):
        shown.append(f"{record['items'] / seconds / 1e6:.3g} M statements/s")
    return ", ".join(shown)


def ratio_cells(name, figures, show):
    """Who ours is compared with, the ratio, what it is to be at most, and whether it is."""
    ours = figures.get("ours", math.nan)
    peers = [who for who in figures if who != "ours"]
    for peer, most in TARGETS.get(name) or [(who, None) for who in peers[:1]] or [("", None)]:
        ratio = ours / figures.get(peer, math.nan) if peer else ours
        shown = "{:.2f}".format if peer else show
        if math.isnan(ratio) or not peer and most is None:
            yield ["", "", "", ""]
        elif most is None:
            yield [words(peer), shown(ratio), "", ""]
        else:
            yield [words(peer), shown(ratio), shown(most), "yes" if ratio <= most else "NO"]


def lines_of(name, unit, figures, show, note):
    """The lines of one subject: one for each target."""
    shown = [show(figures[who]) if who in figures else "-" for who in COLUMNS]
    others = [f"{words(who)} {show(value)}" for who, value in figures.items()
              if who not in COLUMNS]
    for cells in ratio_cells(name, figures, show):
        yield [words(name).replace("/", ": "), unit, *shown, ", ".join(others), *cells, note]


def growth_line(name, points):
    """The time at 10 N over that at N, and the exponent that fits all sizes best."""
    points = sorted(points)
    logs = [(math.log(size), math.log(time)) for size, time in points]
    x, y = (sum(values) / len(logs) for values in zip(*logs))
    exponent = sum((a - x) * (b - y) for a, b in logs) / sum((a - x) ** 2 for a, _ in logs)
    most = GROWTH_TARGETS.get(name, GROWTH_TARGETS[name.split("/")[0]])
    (first, first_time), (last, last_time) = points[0], points[-1]
    ratio = last_time / first_time
    return [words(name).replace("/", ": "), f"{first} to {last}",
            f"{as_time(first_time)} to {as_time(last_time)}", "", "", "", "", "N",
            f"{ratio:.1f}", f"{most}", "yes" if ratio <= most else "NO",
            f"grows with the power {exponent:.2f}"]


def worst_sizes(subjects):
    """Of the same in several sizes, "what@size", the one in which ours does worst beside Lua."""
    kept = {}
    for name, records in subjects.items():
        what, _, size = name.partition("@")
        times = {who: each["time"] / each["items"] for who, each in records.items() if size}
        ratio = times.get("ours", 0) / times.get("Lua", math.inf)
        if what not in kept or ratio > kept[what][0]:
            kept[what] = ratio, size, records
    for _, size, records in kept.values():
        for each in records.values():
            each["label"] += f" of {size}" if size else ""
    return {what: records for what, (_, _, records) in kept.items()}


def lines(subjects):
    for name, records in subjects.items():
        if name.startswith("growth"):
            points = [(int(size), record["time"]) for size, record in records.items()]
            if len(points) > 1:
                yield growth_line(name, points)
            continue
        unit = next(iter(records.values()))["label"]
        note = rates(records["ours"]) if "ours" in records else ""
        times = {who: each["time"] / each["items"] for who, each in records.items()}
        yield from lines_of(name, unit, times, as_time, note)
        if name.startswith("first_load"):
            memory = {who: each["memory"] / each["items"] for who, each in records.items()}
            yield from lines_of(name.replace("load", "load_memory"), unit, memory, as_bytes, "")


def by_subject(path):
    subjects = collections.defaultdict(dict)
    for (name, who), record in read(path).items():
        subjects[name][who] = record
    return subjects


def main(path):
    rows = [HEADINGS, *lines(worst_sizes(by_subject(path)))]
    widths = [max(len(row[k]) for row in rows) for k in range(len(HEADINGS))]
    rows.insert(1, ["-" * width for width in widths])
    for row in rows:
        print("| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |")


if __name__ == "__main__":
    main(sys.argv[1])

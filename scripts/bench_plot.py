#!/usr/bin/python3
"""Draws the pictures of docs/performance.md from a benchmark run, a JSON file: loads and runs beside
the peers', and how they grow. Needs the package python3-matplotlib, so it is run by the system's own
Python."""
import os
import sys

import matplotlib

sys.dont_write_bytecode = True
matplotlib.use("svg")
import matplotlib.pyplot as plot

import bench_table

FOLDER = os.path.join(os.path.dirname(__file__), "..", "docs", "images")
LABELS = {"ours": "vornscript", "Lua": "Lua 5.4", "LuaJIT_off": "LuaJIT, compiler off",
          "LuaJIT_on": "LuaJIT"}


def save(figure, name):
    figure.tight_layout()
    # Without the date and with fixed names inside, the same figures give the same file.
    figure.savefig(os.path.join(FOLDER, name), metadata={"Date": None})
    plot.close(figure)


def draw_bars(subjects, subject, name):
    """The times as parts of Lua's, of what Lua does too."""
    rows = {}
    for what, records in bench_table.worst_sizes(subjects).items():
        if what.startswith(subject + "/") and {"ours", "Lua"} <= records.keys():
            times = {who: each["time"] / each["items"] for who, each in records.items()}
            rows[bench_table.words(what.split("/")[1])] = times
    if not rows:
        return
    figure, axes = plot.subplots(figsize=(9, 1 + 0.45 * len(rows)))
    height = 0.8 / len(LABELS)
    for k, (who, label) in enumerate(LABELS.items()):
        places = [row + (k - 1.5) * height for row, times in enumerate(rows.values()) if who in times]
        ratios = [times[who] / times["Lua"] for times in rows.values() if who in times]
        axes.barh(places, ratios, height, label=label)
    axes.set_yticks(range(len(rows)), rows)
    axes.invert_yaxis()
    axes.axvline(1, color="black", linewidth=0.5)
    axes.set_xlabel(f"time to {subject}, Lua 5.4 is 1")
    axes.legend()
    save(figure, name)


def draw_growth(subjects, subject, name):
    figure, axes = plot.subplots(figsize=(9, 5))
    for what, records in subjects.items():
        if what.startswith(subject + "/"):
            points = sorted((int(size), each["time"]) for size, each in records.items())
            first, first_time = points[0]
            axes.loglog([size / first for size, _ in points],
                        [time / first_time for _, time in points],
                        marker="o", label=bench_table.words(what.split("/")[1]))
    if axes.lines:
        axes.loglog([1, 10], [1, 10], color="black", linewidth=0.5, label="linear")
        axes.set_xlabel("size, the smallest is 1")
        axes.set_ylabel(f"{bench_table.words(subject)}, time")
        axes.legend()
        save(figure, name)


def main(path):
    matplotlib.rcParams["svg.hashsalt"] = "vornscript"
    os.makedirs(FOLDER, exist_ok=True)
    subjects = bench_table.by_subject(path)
    draw_bars(subjects, "load", "load.svg")
    draw_bars(subjects, "run", "run.svg")
    draw_growth(subjects, "growth_of_load", "growth_of_load.svg")
    draw_growth(subjects, "growth_of_run", "growth_of_run.svg")


if __name__ == "__main__":
    main(sys.argv[1])

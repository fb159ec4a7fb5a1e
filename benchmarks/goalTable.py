#!/usr/bin/env python3
"""Holds the results of a run of the benchmarks against goals.json.

goalTable.py filter             prints the filter that selects the benchmarks that goals need
goalTable.py table RESULT...    prints the table of goals for results that Google Benchmark wrote as JSON

A goal names the benchmark that is "ours", what it is compared with as "plain" and "floor", the "metric" that is looked
at (a time, "real_time" if nothing else is said, or a counter), and the "rule" that shall hold:

    plain / ours >= 12      the plain way takes so many times as long
    ours / floor <= 1.5     ours takes at most so many times as long as the floor
    ours <= 100 ms          an amount, with its unit for the table
"""

import json
import operator
import pathlib
import re
import sys

COMPARISONS = {"<=": operator.le, ">=": operator.ge}
MILLISECONDS = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}
TIMES = ("real_time", "cpu_time")
# What Google Benchmark appends to the names that it was given.
SUFFIX = re.compile(r"(/(iterations|repeats|min_time|min_warmup_time|threads):[^/]*|/(real|process|manual)_time)+$")
RULE = re.compile(
    r"^(?P<left>ours|plain|floor)(?: / (?P<right>ours|plain|floor))? (?P<comparison><=|>=) (?P<limit>[0-9.]+)"
    r"(?: (?P<unit>\S+))?$"
)


class GoalError(Exception):
    """A goal that cannot be understood."""


def read_goals(path):
    goals = json.loads(pathlib.Path(path).read_text(encoding="utf-8"))
    for goal in goals:
        parsed = RULE.match(goal["rule"])
        if parsed is None:
            raise GoalError(f"The rule of \"{goal['goal']}\" is not understood: {goal['rule']}")
        for variant in (parsed["left"], parsed["right"]):
            if variant is not None and variant not in goal:
                raise GoalError(f"\"{goal['goal']}\" has a rule about {variant}, but names no such benchmark.")
    return goals


def names_of(goals):
    """The benchmarks that goals need, each once."""
    return sorted({goal[variant] for goal in goals for variant in ("ours", "plain", "floor") if variant in goal})


def make_filter(goals):
    return "^(" + "|".join(re.escape(name) for name in names_of(goals)) + ")(/(iterations|repeats|min_).*|/[a-z]+_time)*$"


def read_results(paths):
    """The runs of each benchmark by its name, those that failed left out."""
    results = {}
    for path in paths:
        try:
            runs = json.loads(pathlib.Path(path).read_text(encoding="utf-8"))["benchmarks"]
        except (OSError, json.JSONDecodeError) as error:
            # As a program leaves it that has not come to its end.
            print(f"{path} holds no results: {error}", file=sys.stderr)
            continue
        for run in runs:
            if run.get("run_type", "iteration") != "iteration" or run.get("error_occurred", False):
                continue
            results.setdefault(SUFFIX.sub("", run["name"]), []).append(run)
    return results


def amount(results, name, metric):
    """The best of the runs, times in milliseconds; None if there is none."""
    amounts = []
    for run in results.get(name, []):
        if metric in run:
            unit = MILLISECONDS[run["time_unit"]] if metric in TIMES else 1.0
            amounts.append(run[metric] * unit)
    return min(amounts) if amounts else None


def judge(goal, results):
    """The cells of the table for goal, and whether it holds; None for a goal that has not been measured."""
    rule = RULE.match(goal["rule"])
    metric = goal.get("metric", "real_time")
    amounts = {
        variant: amount(results, goal[variant], goal.get(variant + "_metric", metric)) if variant in goal else None
        for variant in ("ours", "plain", "floor")
    }
    ratio = None
    judged = amounts[rule["left"]]
    if judged is not None and rule["right"] is not None:
        divisor = amounts[rule["right"]]
        judged = None if divisor is None else judged / divisor if divisor != 0 else float("inf")
        ratio = judged
    holds = None if judged is None else COMPARISONS[rule["comparison"]](judged, float(rule["limit"]))
    unit = rule["unit"] or ("ms" if metric in TIMES or metric.endswith("_ms") else "")
    return amounts, unit, ratio, holds


def number(value, unit=""):
    if value is None:
        return "–"
    digits = 0 if abs(value) >= 100 else 1 if abs(value) >= 10 else 2 if abs(value) >= 0.1 else 4
    return f"{value:,.{digits}f}" + (f" {unit}" if unit else "")


def make_table(goals, results):
    """The lines of a table in Markdown, and how many goals hold, fail and are missing."""
    rows = [("goal", "rule", "ours", "plain", "floor", "ratio", "holds")]
    counts = {True: 0, False: 0, None: 0}
    for goal in goals:
        amounts, unit, ratio, holds = judge(goal, results)
        counts[holds] += 1
        verdict = {True: "yes", False: "NO", None: "missing"}[holds]
        cells = [number(amounts[variant], unit) for variant in ("ours", "plain", "floor")]
        rows.append((goal["goal"], goal["rule"], *cells, number(ratio), verdict))
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    lines = []
    for place, row in enumerate(rows):
        cells = [
            cell.ljust(width) if column < 2 or column == 6 else cell.rjust(width)
            for column, (cell, width) in enumerate(zip(row, widths))
        ]
        lines.append("| " + " | ".join(cells) + " |")
        if place == 0:
            rule = ["-" * width if column < 2 or column == 6 else "-" * (width - 1) + ":"
                    for column, width in enumerate(widths)]
            lines.append("| " + " | ".join(rule) + " |")
    return lines, counts


def main(arguments):
    goals = read_goals(pathlib.Path(__file__).with_name("goals.json"))
    if arguments == ["filter"]:
        print(make_filter(goals))
        return 0
    if len(arguments) >= 2 and arguments[0] == "table":
        lines, counts = make_table(goals, read_results(arguments[1:]))
        print("\n".join(lines))
        print(f"\n{counts[True]} goals hold, {counts[False]} do not, {counts[None]} were not measured.")
        return 0
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

# SPDX-License-Identifier: MIT
"""Measures builds; see scripts/bench, which makes them."""

import argparse
import os
import pathlib

import measured
import document
import figures


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--long", action="store_true", help="longer at rest, and ten times as many rounds of growth")
    parser.add_argument("--only", action="append", help="one group of figures; writes no page")
    parser.add_argument("builds", nargs="+", help="NAME=FOLDER; more than one are printed beside each other")
    return parser.parse_args()


def groups(long):
    seconds = 300 if long else 60
    return {
        "idle": lambda build: figures.idle(build, seconds),
        "counted": lambda build: figures.counted(build, figures.COUNTED),
        "start": figures.start,
        "windows": figures.windows,
        "processes": lambda build: figures.many_processes(build, seconds),
        "scan": figures.scan,
        "package": figures.package,
        "growth": lambda build: figures.growth(build, 1000 if long else 100),
    }, seconds


def main(options):
    os.environ["NIMBO_SLOW"] = "1"  # a busy machine has not failed
    builds = {name: pathlib.Path(folder).resolve() for name, _, folder in (each.partition("=") for each in options.builds)}
    chosen, seconds = groups(options.long)
    rows, found = {name: [] for name in builds}, {}
    for group, measure in chosen.items():
        if options.only and group not in options.only:
            continue
        for name, build in builds.items():
            result = measure(build)
            if group == "idle":
                found, result = result, figures.idle_rows(result)
            new = list(result)
            rows[name] += new
            print((f"{name}: " if len(builds) > 1 else "") + document.text_of(new), flush=True)
    if len(builds) > 1:
        print("\n" + "\n".join(document.table(["", *builds], document.compared(rows))))
    elif not options.only:
        document.write(found, rows[next(iter(builds))], seconds, measured.SETTLE, figures.COUNTED // figures.FAST)


if __name__ == "__main__":
    main(arguments())

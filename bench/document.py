# SPDX-License-Identifier: MIT
"""The page docs/performance.md with its picture, and the same table on a terminal."""

import datetime
import html
import os
import platform

from measured import ROOT

PAGE = ROOT / "docs" / "performance.md"
PICTURE = ROOT / "docs" / "pictures" / "performance.svg"
DIGITS = {"MiB": 2, "ms": 2, "%": 4, "million": 3, "KiB": 0}
SHOWN = (("private", "Private memory, MiB", 2), ("resident", "Resident memory, MiB", 1), ("cpu", "Processor, % of one", 4))

HEAD = """# What Nimbo costs

Written by `scripts/bench`, which installs, starts and measures all of this in one run. `--long` measures longer, `--only idle` one group of the figures,
and `--compare REVISION` builds that revision, too, and prints both beside each other.

{machine}

![Memory and processor time at rest](pictures/performance.svg)

## At rest

Each program shows memory and processor load every five seconds, but for Nimbo, which has the settings that it comes with and so shows memory
alone, and for caffeine-indicator, which only keeps the machine awake. All run at the same time and are read twice, {seconds} s apart, after {settle} s to come to rest; each with the processes that it has started. Nimbo has two items in a tray whose panel reads an item again when that tells
of a change; beside "no panel reads" nobody does.

Private is what a program has written itself (anonymous pages), resident all that it has in memory, and proportional the same with shared pages in equal parts.
Processor time is that of the process's own clock, in percent of one processor. The X server, the compositor, the buses and the panel are not counted for any of them.

"""

METHOD = """
## Goals

A goal is of the figure, or, where something stands beside it, of the ratio.

"""

REPEAT = """
## How it is measured

- Calls are counted by strace and allocations by a counter that is loaded before the C library, over {ticks} ticks after the tenth.
- Instructions are those of the program itself, without the kernel's, counted by callgrind; they are the same on a quiet and on a busy machine.
- An opening goes from `Activate` to the X server's `MapNotify` and is the processor time of both processes until then; of later ones the median of
  twenty is told. On the memory page a scan of all processes begins with it, and measuring a gigabyte of other programs' memory takes some 15 ms.
- A start goes from `exec` to the registration of the last item, the median of twenty.
- `top` runs in a terminal of 80 × 24, at the same interval.
- The scan and the bare loop, which opens, reads and closes each `status` file, are in `bench/process_scan_bench.cpp`.
- Growth is what the last four fifths of the rounds add; a round is an opening, a refresh and a closing, with a
  tick every two seconds.
"""


def figure(value, unit):
    return f"{value:.{DIGITS.get(unit, 1)}f} {unit}".rstrip()


def cells(row):
    beside = f"{row.beside[0]}: {figure(row.beside[1], row.unit)}" if row.beside else ""
    ratio = f"{row.ratio:.2f} ×" if row.beside else ""
    goal = "" if row.goal is None else f"{row.goal:g} ×" if row.beside else figure(row.goal, row.unit)
    return [row.what, figure(row.value, row.unit), beside, ratio, goal, row.verdict]


def table(head, lines):
    yield "| " + " | ".join(head) + " |"
    yield "|" + "---|" * len(head)
    for line in lines:
        yield "| " + " | ".join(line) + " |"


def text_of(rows):
    return "\n".join("  ".join(part for part in cells(row) if part) for row in rows)


def compared(named):
    """The same rows of several builds beside each other."""
    names = list(named)
    others = [{row.what: row for row in named[name]} for name in names]
    for row in named[names[0]]:
        found = [each.get(row.what) for each in others]
        yield [row.what, *(figure(each.value, each.unit) if each else "–" for each in found)]


def machine():
    with open("/proc/loadavg") as load:
        busy = load.read().split()[0]
    return (
        f"Measured on {datetime.date.today().isoformat()} with {os.cpu_count()} processors, Linux {platform.release()}, "
        f"{platform.freedesktop_os_release()['PRETTY_NAME']}; at the end of the run {busy} tasks wanted a processor, in the mean of a minute."
    )


def at_rest(found):
    peer = found["i3status"]
    head = ["", "private", "resident", "proportional", "processor", "beside i3status", "wake-ups in a minute"]
    for name, cost in found.items():
        sizes = (figure(getattr(cost, each), "MiB") for each in ("private", "resident", "proportional"))
        yield [name, *sizes, figure(cost.cpu, "%"), f"{cost.cpu / peer.cpu:.2f} ×", f"{cost.wakeups:.0f}"]
    at_rest.head = head


def picture(found):
    """Bars for each program, one group for each figure; light, in one colour and its accent."""
    line, left, width = 22, 150, 190
    names = list(found)
    height = 64 + line * len(names)
    parts = []
    for column, (figure_name, title, digits) in enumerate(SHOWN):
        x = left + column * (width + 70)
        most = max(getattr(cost, figure_name) for cost in found.values())
        parts.append(f'<text x="{x}" y="34" font-weight="600">{title}</text>')
        for index, name in enumerate(names):
            value = getattr(found[name], figure_name)
            y = 48 + index * line
            colour = "#2f6fde" if name.startswith(("Nimbo", "nimbo")) else "#b9c0cc"
            length = max(1, width * value / most)
            parts.append(f'<rect x="{x}" y="{y}" width="{length:.1f}" height="14" rx="2" fill="{colour}"/>')
            parts.append(f'<text x="{x + length + 5:.1f}" y="{y + 11}" fill="#4a5260">{value:.{digits}f}</text>')
    for index, name in enumerate(names):
        label = html.escape(name)
        parts.append(f'<text x="{left - 10}" y="{59 + index * line}" text-anchor="end">{label}</text>')
    total = left + len(SHOWN) * (width + 70)
    return (
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {total} {height}" font-family="sans-serif" font-size="12" fill="#1d2430">\n'
        f'<rect width="{total}" height="{height}" fill="#ffffff"/>\n' + "\n".join(parts) + "\n</svg>\n"
    )


def write(found, rows, seconds, settle, ticks):
    lines = [HEAD.format(machine=machine(), seconds=seconds, settle=settle)]
    rest = list(at_rest(found))
    lines += [each + "\n" for each in table(at_rest.head, rest)]
    lines.append(METHOD)
    lines += [each + "\n" for each in table(["what", "Nimbo", "beside", "ratio", "goal", ""], map(cells, rows))]
    missed = [row for row in rows if row.verdict == "OVER"]
    if missed:
        lines.append("\n## Goals that are not reached\n\n")
        lines += [f"- **{row.what}**: {row.reason or 'not looked into yet.'}\n" for row in missed]
    lines.append(REPEAT.format(ticks=ticks))
    PAGE.write_text("".join(lines))
    PICTURE.write_text(picture(found))

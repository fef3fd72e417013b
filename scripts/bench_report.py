#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Turns what scripts/bench.sh has measured into the tables and plots of a document.

usage: bench_report.py RESULTS DOCUMENT

RESULTS holds times.json (Google Benchmark, aggregates) and callgrind.* (a profile for each workload
and side). In DOCUMENT, what stands between `<!-- generated: NAME -->` and `<!-- end -->` is
replaced; the plots go to a directory beside it that has its name without the extension.
"""

import collections
import json
import math
import pathlib
import re
import subprocess
import sys

SIZES = [1, 8, 64, 512, 4096]
THREADS = [1, 2, 4]
WAYS = ["component", "router", "component alone"]


def read_times(results):
    """The medians over the repetitions, by the name of the benchmark."""
    with open(results / "times.json", encoding="utf-8") as file:
        measured = json.load(file)
    medians = {}
    for entry in measured["benchmarks"]:
        if entry.get("aggregate_name") == "median":
            medians[entry["run_name"]] = entry
    return measured["context"], medians


def read_instructions(results):
    """Instructions for one call or thing, by workload and side."""
    counted = collections.defaultdict(dict)
    for path in sorted(results.glob("callgrind.*")):
        text = path.read_text(encoding="utf-8")
        trigger = re.search(r"^desc: Trigger: Client Request: (.*)\|(.*)\|(.*)$", text, re.M)
        total = re.search(r"^(?:totals|summary): (\d+)$", text, re.M)
        if trigger and total:
            workload, side, items = trigger.groups()
            counted[workload][side] = int(total.group(1)) / int(items)
    return counted


def base_name(run_name):
    """The name without what the library adds: how a benchmark is timed, and how often it runs."""
    return re.sub(r"(/iterations:\d+)?/manual_time$", "", run_name)


def number(value):
    """Two digits after the point below ten, one below a hundred, none above."""
    if value < 9.995:
        return f"{value:.2f}"
    return f"{value:.1f}" if value < 99.95 else f"{value:.0f}"


def allocations(value):
    return f"{value:.0f}" if abs(value - round(value)) < 0.05 else f"{value:.1f}"


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" + "--:|" * (len(head) - 1)]
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return "\n".join(lines)


class Report:
    def __init__(self, results):
        self.context, medians = read_times(results)
        self.times = {base_name(name): entry for name, entry in medians.items()}
        self.instructions = read_instructions(results)

    def instruction_ratio(self, workload):
        both = self.instructions[workload]
        return both["component"] / both["router"]

    def setup(self):
        compiler = subprocess.run(["g++", "-dumpfullversion"], capture_output=True, text=True,
                                  check=True).stdout.strip()
        return (f"The numbers below: {self.context['num_cpus']} processors, g++ {compiler}, "
                f"`RelWithDebInfo`, {self.context['date'][:10]}.")

    def operations(self, prefix):
        rows = []
        for name, entry in self.times.items():
            if name.startswith(prefix + "/"):
                rows.append([
                    name.removeprefix(prefix + "/").replace("/", ", "),
                    number(entry["ratio"]),
                    number(self.instruction_ratio(name)),
                    allocations(entry["allocations"]),
                    allocations(entry["router_allocations"]),
                ])
        return table(["operation", "time", "instructions", "allocations",
                      "allocations of the router"], rows)

    def growth_kinds(self):
        kinds = []
        for name in self.times:
            if name.startswith("growth/") and name.split("/")[1] not in kinds:
                kinds.append(name.split("/")[1])
        return kinds

    def exponent(self, kind, side):
        """The exponent of n in the growth of the whole cost, between the two largest sizes."""
        small, large = SIZES[-2], SIZES[-1]
        each = [self.instructions[f"growth/{kind}/{size}"][side] for size in (small, large)]
        return 1 + math.log(each[1] / each[0]) / math.log(large / small)

    def growth(self):
        rows = []
        for kind in self.growth_kinds():
            row = [kind]
            row += [number(self.times[f"growth/{kind}/{size}"]["ratio"]) for size in SIZES]
            row += [f"{self.exponent(kind, side):.2f}" for side in ("component", "router")]
            row.append(allocations(self.times[f"growth/{kind}/{SIZES[-1]}"]["allocations"]))
            rows.append(row)
        head = ["n things"] + [f"n = {size}" for size in SIZES]
        return table(head + ["power of n", "power, router", "allocations for each"], rows)

    def throughput(self, call, way, threads):
        entry = self.times[f"threads/{call}/{way}/real_time/threads:{threads}"]
        return entry["items_per_second"]

    def thread_calls(self):
        calls = []
        for name in self.times:
            if name.startswith("threads/") and name.split("/")[1] not in calls:
                calls.append(name.split("/")[1])
        return calls

    def threads(self):
        rows = []
        for call in self.thread_calls():
            row = [call]
            for way in WAYS:
                one = self.throughput(call, way, 1)
                row += [number(self.throughput(call, way, count) / one) for count in THREADS[1:]]
            rows.append(row)
        head = ["call"]
        head += [f"{way}, {count}" for way in WAYS for count in THREADS[1:]]
        return table(head, rows)


def plot(commands, output, width, height):
    head = (f"set terminal svg size {width},{height} dynamic font 'sans-serif,12' "
            f"background rgb 'white'\nset output '{output}'\n")
    subprocess.run(["gnuplot"], input=head + commands, text=True, check=True)


def quoted(text):
    return text.replace("_", "\\\\_")


def plot_operations(report, output):
    rows = [name for name in report.times if re.match("[13]", name)]
    rows.reverse()
    data = "".join(f'"{quoted(name)}" {report.instruction_ratio(name)} '
                   f'{report.times[name]["ratio"]}\n' for name in rows)
    plot(f"""$data << EOD
{data}EOD
set title 'Through the component by straight to the router'
set logscale x 2
set xrange [0.5:32]
set xtics 2
set mxtics 1
set yrange [-0.7:{len(rows) - 0.3}]
set grid x lc rgb '#dddddd'
set key bottom right
set arrow from 1, graph 0 to 1, graph 1 nohead lc rgb '#888888'
plot $data using 2:0:ytic(1) with points pt 7 ps 0.6 lc rgb '#1f5fa8' title 'instructions', \\
     $data using 3:0 with points pt 6 ps 0.8 lc rgb '#c05020' title 'time'
""", output, 860, 60 + 19 * len(rows))


def plot_growth(report, output):
    kinds = report.growth_kinds()
    blocks = ""
    for index, kind in enumerate(kinds):
        scale = report.instructions[f"growth/{kind}/{SIZES[-1]}"]["router"]
        lines = ""
        for size in SIZES:
            both = report.instructions[f"growth/{kind}/{size}"]
            lines += f"{size} {both['component'] / scale} {both['router'] / scale}\n"
        blocks += f"$kind{index} << EOD\n{lines}EOD\n"
    panels = "".join(f"""set title '{kind}'
plot $kind{index} using 1:2 with linespoints pt 7 ps 0.6 lw 2 lc rgb '#1f5fa8' title 'component', \\
     $kind{index} using 1:3 with linespoints pt 6 ps 0.8 lw 2 lc rgb '#888888' title 'router'
""" for index, kind in enumerate(kinds))
    plot(f"""{blocks}
set logscale x 8
set logscale y 10
set xtics 8
set mxtics 1
set mytics 1
set grid lc rgb '#dddddd'
set key top right
set xlabel 'n'
set multiplot layout {math.ceil(len(kinds) / 2)},2
{panels}unset multiplot
""", output, 860, 250 * math.ceil(len(kinds) / 2))


def plot_threads(report, output):
    calls = report.thread_calls()
    styles = ["pt 7 ps 0.6 lw 2 lc rgb '#1f5fa8'", "pt 6 ps 0.8 lw 2 lc rgb '#888888'",
              "pt 5 ps 0.6 lw 2 lc rgb '#c05020'"]
    blocks, panels = "", ""
    for index, call in enumerate(calls):
        lines = ""
        for count in THREADS:
            values = [report.throughput(call, way, count) / report.throughput(call, way, 1)
                      for way in WAYS]
            lines += f"{count} " + " ".join(str(value) for value in values) + "\n"
        blocks += f"$call{index} << EOD\n{lines}EOD\n"
        curves = ", ".join(f"$call{index} using 1:{column + 2} with linespoints {styles[column]} "
                           f"title '{way}'" for column, way in enumerate(WAYS))
        panels += f"set title '{quoted(call)}'\nplot {curves}\n"
    plot(f"""{blocks}
set xtics (1, 2, 4)
set xrange [0.8:4.2]
set yrange [0:{report.context['num_cpus'] + 0.5}]
set grid lc rgb '#dddddd'
set key bottom right
set xlabel 'threads'
set multiplot layout {math.ceil(len(calls) / 2)},2
{panels}unset multiplot
""", output, 860, 250 * math.ceil(len(calls) / 2))


def replace_part(text, name, part):
    pattern = re.compile(rf"(<!-- generated: {name} -->\n).*?(<!-- end -->)", re.S)
    if len(pattern.findall(text)) != 1:
        sys.exit(f"the document must have one part named {name}")
    return pattern.sub(lambda match: match.group(1) + part + "\n" + match.group(2), text)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    report = Report(pathlib.Path(sys.argv[1]))
    document = pathlib.Path(sys.argv[2])
    text = document.read_text(encoding="utf-8")
    parts = {
        "setup": report.setup(),
        "version 3": report.operations("3"),
        "version 3_1": report.operations("3_1"),
        "version 1": report.operations("1"),
        "resource": report.operations("resource"),
        "growth": report.growth(),
        "threads": report.threads(),
    }
    for name, part in parts.items():
        text = replace_part(text, name, part)
    plots = document.with_suffix("")
    plots.mkdir(exist_ok=True)
    plot_operations(report, plots / "operations.svg")
    plot_growth(report, plots / "growth.svg")
    plot_threads(report, plots / "threads.svg")
    document.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()

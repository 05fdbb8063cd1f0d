"""Makes the tables of bench/README.md from a run of the benchmarks.

usage: tables.py PAGE RESULTS FAMILY...

Each section of the page is made from bench/tables/<family>.md, the text with places for figures:

    {A}         the median time of the benchmark A of that family, with its unit; {A.counter} its counter
    {A / B}     the ratio of two of them

RESULTS holds <family>.json (and <family>-*.json) as the benchmark library writes it. Sections of families that were not run stay as they
are. What was made is printed."""

import json
import pathlib
import re
import sys

PLACE = re.compile(r"\{([^{}\n]+)\}")
DECORATION = re.compile(r"/(?:manual_time|real_time|process_time|repeats:\d+|min_time:[\d.]+|min_warmup_time:[\d.]+|iterations:\d+)")
UNITS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


class Results:
    def __init__(self, folder, family):
        self.runs = {}
        for path in [folder / f"{family}.json", *folder.glob(f"{family}-*.json")]:
            for run in json.loads(path.read_text())["benchmarks"]:
                if run.get("aggregate_name", "median") == "median":
                    self.runs[DECORATION.sub("", run["run_name"])] = run

    def seconds(self, term):
        name, _, counter = term.partition(".")
        if name not in self.runs:
            sys.exit(f"there is no benchmark {name!r}; there are: " + ", ".join(sorted(self.runs)))
        run = self.runs[name]
        if counter:
            return float(run[counter])
        clock = "real_time" if re.search("/(?:real|manual)_time", run["run_name"]) else "cpu_time"
        return run[clock] * UNITS[run["time_unit"]]

    def figure(self, place):
        terms = [term.strip() for term in place.split(" / ")]
        values = [self.seconds(term) for term in terms]
        if len(values) == 2:
            return rounded(values[0] / values[1])
        if "." in terms[0]:
            return rounded(values[0])
        unit = next((unit for unit in UNITS if values[0] < 1000 * UNITS[unit]), "s")
        return f"{rounded(values[0] / UNITS[unit])} {unit}".replace("us", "µs")


def rounded(value):
    """Two decimals below 10, three significant digits above."""
    if value < 0.095:
        return f"{value:.2g}"
    return f"{value:.2f}" if value < 10 else f"{value:.1f}" if value < 100 else f"{value:.0f}"


def main(page, results, *families):
    page, tables = pathlib.Path(page), pathlib.Path(__file__).parent / "tables"
    text = page.read_text()
    for family in families:
        template = tables / f"{family}.md"
        if not template.exists():
            continue
        measured = Results(pathlib.Path(results), family)
        made = PLACE.sub(lambda place: measured.figure(place.group(1)), template.read_text())
        begin, end = f"<!-- {family} -->\n", f"<!-- /{family} -->\n"
        section = begin + made + end
        if begin in text:
            text = text[:text.index(begin)] + section + text[text.index(end) + len(end):]
        else:
            text += "\n" + section
        print(made)
    page.write_text(text)


main(*sys.argv[1:])

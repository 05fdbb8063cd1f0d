"""Holds the includes of src/ against the families that src/CMakeLists.txt declares: a file includes only files of its own
family and of those that its family uses, directly or through others; no two classes include each other in a circle; and
docs/architecture.md names the same families and arrows.

usage: structure.py TREE"""

import pathlib
import re
import sys

FAMILY = re.compile(r"kr_family\((\w+)(?: USES ([\w ]+?))? SOURCES\s([^)]*)\)")
INCLUDE = re.compile(r'^#include [<"]((?:base|platform)/[^>"]+)[>"]', re.MULTILINE)
ROW = re.compile(r"^\| `(\w+)` \|[^|]*\|[^|]*\|([^|]*)\|", re.MULTILINE)


def read_families(tree):
    uses, family_of = {}, {}
    for name, used, files in FAMILY.findall((tree / "src/CMakeLists.txt").read_text()):
        uses.setdefault(name, set()).update((used or "").split())
        for file in re.sub(r"#.*", "", files).split():
            family_of[unit(file)] = name
    return uses, family_of


def unit(file):
    """A header, its source and its template and inline bodies are one."""
    return re.sub(r"(Windows|WinNT)?\.\w+$", "", pathlib.Path(file).name) if "posix" not in file else file


def closure(uses, family):
    reached, open_ones = {family}, [family]
    while open_ones:
        for used in uses[open_ones.pop()]:
            if used not in reached:
                reached.add(used)
                open_ones.append(used)
    return reached


def circles(graph):
    """The strongly connected components of more than one unit (Tarjan 1972)."""
    order, low, stack, found = {}, {}, [], []

    def visit(node):
        order[node] = low[node] = len(order)
        stack.append(node)
        for other in graph.get(node, ()):
            if other not in order:
                visit(other)
            if other in stack:
                low[node] = min(low[node], low[other])
        if low[node] == order[node]:
            component = set(stack[stack.index(node):])
            del stack[stack.index(node):]
            if len(component) > 1:
                found.append(sorted(component))

    sys.setrecursionlimit(10000)
    for node in graph:
        if node not in order:
            visit(node)
    return found


def main(tree):
    uses, family_of = read_families(tree)
    faults, graph = [], {}
    files = [path for path in (tree / "src").rglob("*") if path.suffix in (".h", ".cpp", ".imp", ".inline")]
    for path in files:
        here = str(path.relative_to(tree / "src"))
        family = family_of.get(unit(here))
        if family is None:
            faults.append(f"{here} belongs to no family")
            continue
        for included in INCLUDE.findall(path.read_text()):
            there = family_of.get(unit(included))
            if there is not None and there not in closure(uses, family):
                faults.append(f"{here} ({family}) includes {included} ({there})")
            if unit(included) != unit(here):
                graph.setdefault(unit(here), set()).add(unit(included))
    faults += ["these include each other: " + ", ".join(circle) for circle in circles(graph)]

    drawn = {name: set(re.findall(r"\w+", used)) for name, used in ROW.findall((tree / "docs/architecture.md").read_text())}
    for name in sorted(set(drawn) | set(uses)):
        if drawn.get(name) != uses.get(name):
            faults.append(f"docs/architecture.md says that {name} uses {drawn.get(name)}; the build says {uses.get(name)}")
    if faults or not graph:
        sys.exit("\n".join(faults))
    print(f"{len(files)} files in {len(uses)} families")


main(pathlib.Path(sys.argv[1]))

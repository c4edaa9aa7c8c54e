#!/usr/bin/env python3
"""Prints docs/reliability.md from the tables of tests/reliability.

usage: reliability.py JOURNEY [--check]

JOURNEY is talvex-journey of any build with tests; it is only asked for its list, no journey is made. With --check
nothing is written: exit code 1 if the document says anything else. Either way every other test that a table names must
be there.
"""

import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
DOCUMENT = ROOT / "docs" / "reliability.md"
PHASES = ["search", "identification", "catalogue", "change log", "download", "store", "request", "stream",
          "installation", "log header", "log parts", "quit"]
GROUPS = {
    "unit": "The unit",
    "one deck of a pair": "One deck of a pair",
    "server": "The server and the network",
    "disk": "The disk",
    "user": "The user",
    "computer": "The computer and the process",
}
HEAD = """# What happens when something fails

Printed by `scripts/reliability.py` from the tables of `tests/reliability`; do not edit (`reliability.document` compares).

Each row is something that fails, each column the phase in which it does; an update runs from `search` to
`installation`, a log from `search` and `identification` to `log header` and `log parts`. The number in a cell is the
outcome, told below the tables; `·` is a phase in which the fault cannot occur, and the last column says why. A cell is
asserted by the row of `tst_reliability` with the names of group, fault and phase, unless its outcome names another
test. Those rows run the program from its own `main`, in a process of its own, against the virtual unit and real
sockets; whatever fails, they also demand: no crash, no hang, the end within 3 s with exit code 0, an image that is
whole on disk, and a unit that has nothing to complain of.
"""


def read(journey):
    """The faults in their order with their reasons, and the cells: (group, fault, phase) -> (outcome, other test)."""
    rows, cells = {}, {}
    listed = subprocess.run([journey, "--list"], check=True, capture_output=True, text=True, encoding="utf-8").stdout
    for line in listed.splitlines():
        kind, group, fault, *rest = line.split("\t")
        if kind == "row":
            rows[group, fault] = rest[0]
        else:
            cells[group, fault, rest[0]] = (rest[1], rest[2] if kind == "shown" else "")
    return rows, cells


def missing_tests(cells):
    """The other tests that no source file has."""
    missing = []
    for test in sorted({test for _, test in cells.values() if test}):
        program, function = test.split("::")
        if not any(f"{function}()" in path.read_text(encoding="utf-8") for path in ROOT.glob(f"tests/*/{program}.cpp")):
            missing.append(test)
    return missing


def numbered(rows, cells):
    """The outcomes in the order of the tables: (outcome, test) -> number."""
    numbers = {}
    for group in GROUPS:
        for row_group, fault in rows:
            for phase in PHASES:
                if row_group == group and (group, fault, phase) in cells:
                    numbers.setdefault(cells[group, fault, phase], len(numbers) + 1)
    return numbers


def table(group, rows, cells, numbers):
    lines = [f"| {GROUPS[group]} … | {' | '.join(PHASES)} | elsewhere |", "|---|" + ":-:|" * len(PHASES) + "---|"]
    for row_group, fault in rows:
        if row_group != group:
            continue
        marks = [str(numbers[cells[group, fault, phase]]) if (group, fault, phase) in cells else "·"
                 for phase in PHASES]
        lines.append(f"| {fault} | {' | '.join(marks)} | {rows[group, fault] if '·' in marks else ''} |")
    return "\n".join(lines)


def document(rows, cells):
    numbers = numbered(rows, cells)
    parts = [HEAD]
    for group in GROUPS:
        parts.append(f"## {GROUPS[group]}\n\n{table(group, rows, cells, numbers)}\n")
    outcomes = []
    for (outcome, test), number in numbers.items():
        shown = f" (`{test}`)" if test else ""
        outcomes.append(f"{number}. {outcome[0].upper() + outcome[1:]}.{shown}")
    parts.append("## Outcomes\n\n" + "\n".join(outcomes) + "\n")
    return "\n".join(parts)


def main():
    if len(sys.argv) not in (2, 3) or sys.argv[2:] not in ([], ["--check"]):
        sys.exit(__doc__)
    rows, cells = read(sys.argv[1])
    missing = missing_tests(cells)
    if missing:
        sys.exit("reliability.py: there is no " + ", ".join(missing))
    text = document(rows, cells)
    if sys.argv[2:] != ["--check"]:
        DOCUMENT.write_text(text, encoding="utf-8")
    elif DOCUMENT.read_text(encoding="utf-8") != text:
        sys.exit(f"{DOCUMENT} is not what the tables say: run {sys.argv[0]} {sys.argv[1]}")


main()

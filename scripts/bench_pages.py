"""How the tables of scripts/bench are shown, and put into the pages."""
import re


def short(ns):
    for unit, size in (("ms", 1e6), ("µs", 1e3)):
        if ns >= size:
            return f"{ns / size:.3g} {unit}" if ns < 1000 * size else f"{ns / size:.0f} {unit}"
    return f"{ns:.3g} ns"


def aligned(markdown):
    """Tables as columns of text; what stands between them stays."""
    return "\n\n".join(columns(block) if block.startswith("|") else block for block in markdown.strip().split("\n\n"))


def columns(table):
    cells = [line.strip("|").split("|") for line in table.splitlines() if not line.startswith("|--")]
    widths = [max(len(row[i].strip()) for row in cells) for i in range(len(cells[0]))]
    return "\n".join("  ".join(cell.strip().ljust(width) for cell, width in zip(row, widths)) for row in cells)


# What README shows of the table.
CALLS = {"`cycle`": "cycle/10^5/0", "`cycle` with one condition": "cycle/10^5/1", "`clock`": "clock/10^5/0",
         "`hadamard`": "hadamard/10^5/0", "`probabilities` of one qudit": "probabilities_one/10^5/0",
         "`measure` one qudit": "measure/10^5/0", "`probabilities` of all five": "probabilities_all/10^5/0"}


def calls_table(times):
    rows = "".join(f"| {call} | {short(times[case])} |\n" for call, case in CALLS.items())
    return "| Call | Time |\n| --- | ---: |\n" + rows


def write_section(page, name, text):
    """Puts a table between the two comments that hold its place."""
    begin, end = f"<!-- {name}: written by scripts/bench -->", f"<!-- end of {name} -->"
    place = re.compile(re.escape(begin) + ".*?" + re.escape(end), re.DOTALL)
    page.write_text(place.sub(lambda _: f"{begin}\n\n{text.strip()}\n\n{end}", page.read_text()))

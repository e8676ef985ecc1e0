"""Log-log plots of time against entries, as SVG and with the standard library alone."""
import math
from xml.sax.saxutils import escape

# The colours of Okabe and Ito, which readers with colour vision deficiencies can tell apart.
COLOURS = ["#0072b2", "#d55e00", "#009e73", "#cc79a7", "#56b4e9", "#e69f00"]
STYLE = ("<style>.page{fill:#fff}.ink{fill:#1a1a1a}.quiet{fill:#595959}.grid{stroke:#dedede}"
         "@media(prefers-color-scheme:dark){.page{fill:#16181d}.ink{fill:#f0f0f0}.quiet{fill:#b4b4b4}.grid{stroke:#3a3d44}}"
         "</style>")
# Narrow and in one column, so that a phone shows the labels at four fifths of their size.
PANEL_WIDTH, PANEL_HEIGHT, LEFT, TOP, LABELS, BELOW, LINE = 235, 240, 62, 84, 138, 84, 16


def decades(values):
    return math.floor(math.log10(min(values)) + 1e-9), math.ceil(math.log10(max(values)) - 1e-9)


def time_label(exponent):
    unit, base = (("s", 9) if exponent >= 9 else ("ms", 6) if exponent >= 6 else ("µs", 3) if exponent >= 3 else ("ns", 0))
    return f"{10 ** (exponent - base)} {unit}"


def count_label(exponent):
    return str(10**exponent) if exponent < 3 else "10" + "".join("⁰¹²³⁴⁵⁶⁷⁸⁹"[int(digit)] for digit in str(exponent))


def text(x, y, content, anchor="start", size=13, style="ink", extra=""):
    return f'<text class="{style}" x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" font-size="{size}"{extra}>{escape(content)}</text>'


def apart(heights):
    """The heights of labels, in the order of the curves' ends and at least a line apart, as near to the ends as that allows."""
    order = sorted(range(len(heights)), key=lambda i: heights[i])
    blocks = []  # of labels that touch: the sum of their wishes for the first one, and how many they are
    for i in order:
        blocks.append((heights[i], 1))
        while len(blocks) > 1 and blocks[-2][0] / blocks[-2][1] + LINE * blocks[-2][1] > blocks[-1][0] / blocks[-1][1]:
            (wishes, more), (before, count) = blocks.pop(), blocks.pop()
            blocks.append((before + wishes - LINE * count * more, count + more))
    placed = [wishes / count + LINE * k for wishes, count in blocks for k in range(count)]
    return [placed[order.index(i)] for i in range(len(heights))]


class Panel:
    def __init__(self, top, x_decades, y_decades):
        self.top, self.x, self.y = top, x_decades, y_decades

    def place(self, entries, time):
        across = (math.log10(entries) - self.x[0]) / (self.x[1] - self.x[0])
        up = (math.log10(time) - self.y[0]) / (self.y[1] - self.y[0])
        return LEFT + across * PANEL_WIDTH, self.top + (1 - up) * PANEL_HEIGHT

    def axes(self):
        for exponent in range(self.x[0], self.x[1] + 1):
            x, _ = self.place(10**exponent, 10**self.y[0])
            yield f'<path class="grid" d="M{x:.1f} {self.top}v{PANEL_HEIGHT}"/>'
            yield text(x, self.top + PANEL_HEIGHT + 20, count_label(exponent), "middle", style="quiet")
        for exponent in range(self.y[0], self.y[1] + 1):
            _, y = self.place(10**self.x[0], 10**exponent)
            yield f'<path class="grid" d="M{LEFT} {y:.1f}h{PANEL_WIDTH}"/>'
            yield text(LEFT - 8, y + 4, time_label(exponent), "end", style="quiet")
        yield text(LEFT + PANEL_WIDTH / 2, self.top + PANEL_HEIGHT + 42, "stored entries", "middle", style="quiet")

    def line(self, points, colour, plain):
        path = "M" + "L".join("%.1f %.1f" % self.place(*point) for point in sorted(points))
        style = 'stroke-width="1.6" stroke-dasharray="2 4"' if plain else 'stroke-width="2.4"'
        return f'<path d="{path}" fill="none" stroke="{colour}" {style} stroke-linejoin="round" stroke-linecap="round"/>'

    def labels(self, lines, colours):
        """The name of each operation beside the end of its curve."""
        ends = [self.place(*max(points)) for points, _ in lines.values()]
        x = LEFT + PANEL_WIDTH + 16
        for name, colour, (end_x, end_y), y in zip(lines, colours, ends, apart([y for _, y in ends])):
            yield f'<path d="M{end_x + 2:.1f} {end_y:.1f}L{x - 3:.1f} {y:.1f}" stroke="{colour}" stroke-width="1.2"/>'
            yield text(x, y + 4, name)


def plot(panels):
    """panels: rows of (title, {operation: (points, points of the plain form)}), a point being (entries, ns)."""
    rows, panels = panels, [panel for row in panels for panel in row]
    everything = [point for _, lines in panels for pair in lines.values() for points in pair for point in points]
    x_decades, y_decades = decades([n for n, _ in everything]), decades([t for _, t in everything])
    width, height = LEFT + PANEL_WIDTH + LABELS, TOP + len(panels) * (PANEL_HEIGHT + BELOW) - 30
    title = "Time of one call against the entries of the state"
    told = "; ".join(f"{name}: {min(points)[1]:.3g} ns of {min(points)[0]}, {max(points)[1]:.3g} ns of {max(points)[0]} entries"
                     for _, lines in panels for name, (points, _) in lines.items())
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
             f'width="{width}" height="{height}" '
             'style="max-width:100%;height:auto" role="img" font-family="sans-serif">', f"<title>{title}</title>",
             f"<desc>{escape(told)}.</desc>", STYLE, f'<rect class="page" width="{width}" height="{height}"/>',
             text(16, 26, title, size=17, extra=' font-weight="bold"'),
             text(16, 48, "solid: the library, dotted: the plainest form", style="quiet")]
    columns = [j for row in rows for j in range(len(row))]
    for number, (j, (name, lines)) in enumerate(zip(columns, panels)):
        panel = Panel(TOP + number * (PANEL_HEIGHT + BELOW), x_decades, y_decades)
        parts.append(text(LEFT, panel.top - 10, name, size=15))
        parts += panel.axes()
        names = list(rows[0][j][1])  # an operation has one colour in all rows
        colours = [COLOURS[names.index(operation)] for operation in lines]
        for colour, (points, plain) in zip(colours, lines.values()):
            parts += [panel.line(plain, colour, True)] if plain else []
            parts.append(panel.line(points, colour, False))
        parts += panel.labels(lines, colours)
    return "\n".join(parts) + "\n</svg>\n"

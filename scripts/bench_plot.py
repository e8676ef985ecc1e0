"""Log-log plots of time against entries, as SVG and with the standard library alone."""
import math
from xml.sax.saxutils import escape

INK, QUIET, GRID = "#1a1a1a", "#595959", "#dedede"
COLOURS = ["#0b5fa5", "#d1495b", "#2e8b57", "#b5651d", "#6a4c93", "#008b8b"]
PANEL_WIDTH, PANEL_HEIGHT, LEFT, TOP, GAP, ROW = 430, 430, 74, 70, 70, 20


def decades(values):
    return math.floor(math.log10(min(values)) + 1e-9), math.ceil(math.log10(max(values)) - 1e-9)


def time_label(exponent):
    unit, base = (("s", 9) if exponent >= 9 else ("ms", 6) if exponent >= 6 else ("µs", 3) if exponent >= 3 else ("ns", 0))
    return f"{10 ** (exponent - base)} {unit}"


def text(x, y, content, anchor="start", size=13, colour=INK, extra=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" font-size="{size}" fill="{colour}"{extra}>{escape(content)}</text>'


class Panel:
    def __init__(self, left, x_decades, y_decades):
        self.left, self.x, self.y = left, x_decades, y_decades

    def place(self, entries, time):
        across = (math.log10(entries) - self.x[0]) / (self.x[1] - self.x[0])
        up = (math.log10(time) - self.y[0]) / (self.y[1] - self.y[0])
        return self.left + across * PANEL_WIDTH, TOP + (1 - up) * PANEL_HEIGHT

    def axes(self, labelled):
        for exponent in range(self.x[0], self.x[1] + 1):
            x, _ = self.place(10**exponent, 10**self.y[0])
            yield f'<path d="M{x:.1f} {TOP}v{PANEL_HEIGHT}" stroke="{GRID}"/>'
            yield text(x, TOP + PANEL_HEIGHT + 20, f"{10**exponent:,}".replace(",", "\u202f"), "middle", colour=QUIET)
        for exponent in range(self.y[0], self.y[1] + 1):
            _, y = self.place(10**self.x[0], 10**exponent)
            yield f'<path d="M{self.left} {y:.1f}h{PANEL_WIDTH}" stroke="{GRID}"/>'
            if labelled:
                yield text(self.left - 8, y + 4, time_label(exponent), "end", colour=QUIET)
        yield text(self.left + PANEL_WIDTH / 2, TOP + PANEL_HEIGHT + 42, "stored entries", "middle", colour=QUIET)

    def line(self, points, colour, plain):
        path = "M" + "L".join("%.1f %.1f" % self.place(*point) for point in sorted(points))
        style = 'stroke-width="1.6" stroke-dasharray="2 4"' if plain else 'stroke-width="2.4"'
        return f'<path d="{path}" fill="none" stroke="{colour}" {style} stroke-linejoin="round" stroke-linecap="round"/>'


def plot(panels):
    """panels: a list of (title, {operation: (points, points of the plain form)}), a point being (entries, ns)."""
    everything = [point for _, lines in panels for pair in lines.values() for points in pair for point in points]
    x_decades, y_decades = decades([n for n, _ in everything]), decades([t for _, t in everything])
    width = LEFT + len(panels) * (PANEL_WIDTH + GAP)
    height = TOP + PANEL_HEIGHT + 62 + ROW * math.ceil(max(len(lines) for _, lines in panels) / 2) + 16
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}" '
             'font-family="sans-serif">', f'<rect width="{width}" height="{height}" fill="#ffffff"/>',
             text(LEFT, 26, "Time of one call against the entries of the state", size=17, extra=' font-weight="bold"'),
             text(width - GAP, 26, "solid: the library, dotted: the plainest form", "end", colour=QUIET)]
    for number, (title, lines) in enumerate(panels):
        panel = Panel(LEFT + number * (PANEL_WIDTH + GAP), x_decades, y_decades)
        parts.append(text(panel.left, TOP - 14, title, size=15))
        parts += panel.axes(labelled=number == 0)
        for i, (operation, (points, plain)) in enumerate(lines.items()):
            parts += [panel.line(plain, COLOURS[i], True)] if plain else []
            parts.append(panel.line(points, COLOURS[i], False))
            x = panel.left + i % 2 * PANEL_WIDTH / 2
            y = TOP + PANEL_HEIGHT + 70 + i // 2 * ROW
            parts.append(f'<path d="M{x:.1f} {y - 4}h26" stroke="{COLOURS[i]}" stroke-width="2.4" stroke-linecap="round"/>')
            parts.append(text(x + 34, y, operation))
    return "\n".join(parts) + "\n</svg>\n"

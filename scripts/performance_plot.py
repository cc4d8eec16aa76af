"""Small log-log plots side by side, as SVG."""
from math import log10

Width, Height = 260, 250
Style = ("text{font:11px sans-serif;fill:#555}.title{font-weight:bold;fill:#222}.axis{fill:none;stroke:#999}"
         "polyline{fill:none;stroke-width:2}.line0{stroke:#0b6e99}.line1{stroke:#c2571a}.line2{stroke:#5a7d2a}"
         ".line3{stroke:#7b4f9d}.line4{stroke:#777}.name0{fill:#0b6e99}.name1{fill:#c2571a}.name2{fill:#5a7d2a}"
         ".name3{fill:#7b4f9d}.name4{fill:#777}")


def duration(ns):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= size:
            return f"{ns / size:.1f} {unit}"
    return f"{ns:.1f} ns"


def mebibytes(kib):
    return f"{kib / 1024:.0f} MiB"


def panel(title, axis, lines, left, top, label):
    """One plot. Each line is (name, points); it is named and told its value at its end."""
    lines = [(name, points) for name, points in lines if points]
    points = [point for _, line in lines for point in line]
    xs, ys = [x for x, _ in points], [y for _, y in points]

    def at(x, y):
        span_x = max(log10(max(xs) / min(xs)), 0.1)
        span_y = max(log10(max(ys) / min(ys)), 1.0)
        return left + 55 + 130 * log10(x / min(xs)) / span_x, top + 200 - 140 * log10(y / min(ys)) / span_y

    parts = [f'<text x="{left + 10}" y="{top + 24}" class="title">{title}</text>',
             f'<path d="M{left + 50} {top + 45}V{top + 206}H{left + 200}" class="axis"/>',
             f'<text x="{left + 120}" y="{top + 238}" text-anchor="middle">{axis}</text>']
    for x in sorted(set(xs)):
        parts.append(f'<text x="{at(x, min(ys))[0]:.0f}" y="{top + 221}" text-anchor="middle">{x:,}</text>')
    below = None
    for number, (name, line) in sorted(enumerate(lines), key=lambda entry: -entry[1][1][-1][1]):
        path = " ".join("%.1f,%.1f" % at(x, y) for x, y in line)
        parts.append(f'<polyline points="{path}" class="line{number}"/>')
        x, y = at(*line[-1])
        y = y if below is None else max(y, below + 22)  # texts must not lie on each other
        below = y
        parts.append(f'<text x="{x + 4:.0f}" y="{y - 6:.0f}">{label(line[-1][1])}</text>')
        parts.append(f'<text x="{x + 4:.0f}" y="{y + 6:.0f}" class="name{number}">{name}</text>')
    return "\n".join(parts)


def svg(rows):
    """Rows of (title, axis, lines, label)."""
    body = [panel(title, axis, lines, Width * place, Height * row, label)
            for row, panels in enumerate(rows) for place, (title, axis, lines, label) in enumerate(panels)]
    width, height = Width * max(len(panels) for panels in rows), Height * len(rows)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}">\n<style>{Style}</style>\n'
            '<rect width="100%" height="100%" fill="#fff"/>\n' + "\n".join(body) + "\n</svg>\n")

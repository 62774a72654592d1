#!/usr/bin/env python3
"""Draws what a benchmark measured: one bar for each time, on a logarithmic scale.

    tools/charts/draw_times.py build/bench/log-file.json docs/images/log-file.png
"""
import json
import math
import sys
from pathlib import Path

from PIL import Image, ImageDraw, ImageFont

FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
ROW, MARGIN, LABELS, BARS, FIGURES = 30, 16, 380, 420, 90  # pixels
INK, QUIET, BAR = "#1c2733", "#d5dbe1", "#2f6fb3"


def decades(times):
    """The powers of ten around the times, at least one apart."""
    first = math.floor(math.log10(min(times)))
    return first, max(first + 1, math.ceil(math.log10(max(times))))


def duration(nanoseconds):
    for unit, size in (("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def draw(report):
    times = report["nanoseconds"]
    first, last = decades(times.values())
    font = ImageFont.truetype(FONT, 13)
    size = (LABELS + BARS + FIGURES + 2 * MARGIN, ROW * (len(times) + 2) + 2 * MARGIN)
    image = Image.new("RGB", size, "white")
    canvas = ImageDraw.Draw(image)
    left = MARGIN + LABELS
    bottom = MARGIN + ROW * (len(times) + 1)
    canvas.text((MARGIN, MARGIN), f"{report['title']}: medians of {report['rounds']} rounds", INK, font)
    for decade in range(first, last + 1):
        x = left + BARS * (decade - first) // (last - first)
        canvas.line((x, MARGIN + ROW, x, bottom), QUIET)
        canvas.text((x, bottom + 4), duration(10.0 ** decade), INK, font, anchor="ma")
    for row, (name, time) in enumerate(times.items(), 1):
        y = MARGIN + ROW * row + ROW // 2
        end = left + BARS * (math.log10(time) - first) / (last - first)
        canvas.rectangle((left, y - 8, end, y + 8), BAR)
        canvas.text((left - 10, y), name, INK, font, anchor="rm")
        canvas.text((end + 6, y), duration(time), INK, font, anchor="lm")
    return image


def main():
    if len(sys.argv) != 3:
        return __doc__
    draw(json.loads(Path(sys.argv[1]).read_text(encoding="utf-8"))).save(sys.argv[2], optimize=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())

"""Pictures side by side: a contact sheet for each kind, and a page with all of them."""
from html import escape

from PIL import Image, ImageDraw

_COLUMNS = 4
_GAP = 12
_LABEL = 16  # pixels above a picture, for the name of its language
_FEW_COLOURS = 16
_PAPER, _INK = "#ffffff", "#000000"

_PAGE = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>Orvik Notifications in every language</title>
<style>body {{ font: 14px sans-serif; margin: 2em }} figure {{ display: inline-block; margin: 0 1em 1em 0; vertical-align: top }}
figcaption {{ font-weight: bold }} nav a {{ margin-right: 1em }}</style></head>
<body><h1>Orvik Notifications in every language</h1>
<p>Taken in the simulated machine under Wine. Each dialog had the text of its catalogue when it was pictured.</p>
<nav>{links}</nav>
{sections}</body></html>
"""


def contact_sheet(pictures, columns=_COLUMNS):
    """One image of all; `pictures` are pairs of a name and a path."""
    images = [(name, Image.open(path).convert("RGB")) for name, path in pictures]
    width = max(image.width for _, image in images) + _GAP
    rows = [images[first:first + columns] for first in range(0, len(images), columns)]
    heights = [max(image.height for _, image in row) + _LABEL + _GAP for row in rows]
    sheet = Image.new("RGB", (width * min(columns, len(images)) + _GAP, sum(heights) + _GAP), _PAPER)
    draw = ImageDraw.Draw(sheet)
    top = _GAP
    for row, height in zip(rows, heights):
        for column, (name, image) in enumerate(row):
            left = _GAP + column * width
            draw.text((left, top), name, fill=_INK)
            sheet.paste(image, (left, top + _LABEL))
        top += height
    return sheet


def write_gallery(out, kinds, languages, documented):
    """What is there of the pictures OUT/KIND/LANGUAGE.png, as sheets and as a page.

    The sheet of the kind that the documents show is written once more, small enough to keep beside the sources."""
    sections = []
    for kind in kinds:
        pictures = [(language, out / kind / f"{language}.png") for language in languages]
        pictures = [(language, path) for language, path in pictures if path.exists()]
        if not pictures:
            continue
        sheet = contact_sheet(pictures)
        sheet.save(out / f"{kind}.png")
        if kind == documented:
            sheet.quantize(_FEW_COLOURS).save(out / "languages.png", optimize=True)
        figures = "\n".join(f'<figure><figcaption>{escape(language)}</figcaption><img loading="lazy" alt="{escape(language)}" '
                            f'src="{kind}/{escape(language)}.png"></figure>' for language, _ in pictures)
        sections.append(f'<h2 id="{kind}">{kind} (<a href="{kind}.png">sheet</a>)</h2>\n{figures}\n')
    links = " ".join(f'<a href="#{kind}">{kind}</a>' for kind in kinds)
    (out / "index.html").write_text(_PAGE.format(links=links, sections="".join(sections)), encoding="utf-8")

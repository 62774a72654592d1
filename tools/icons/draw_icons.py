#!/usr/bin/env python3
"""Draws the program's icons and the picture of its toasts into a folder: draw_icons.py <folder> [--sheet <file.png>].

The same Python imaging library gives the same bytes every time: no font, no random number, no date goes in.
"""

import argparse
import pathlib

from PIL import Image

from ico_file import ico_bytes, png_bytes
from motifs import default_icon, program_icon, toast_image, veritor_icon

SIZES = (16, 32, 48, 256)
ICONS = {"default.ico": default_icon, "veritor.ico": veritor_icon, "orvik.ico": program_icon}


def contact_sheet(icons, toast):
    """Every picture on light and dark ground, the 16-pixel ones also magnified, for people who judge the artwork."""
    sheet = Image.new("RGB", (1060, 280 * len(icons) + 290), "#F3F3F3")
    sheet.paste("#202020", (530, 0, 1060, sheet.height))
    for row, images in enumerate(icons):
        for left in (8, 538):
            x = left
            magnified = images[0].resize((128, 128), Image.Resampling.NEAREST)
            for image, top in [(images[3], 8), (magnified, 8)]:
                sheet.paste(image, (x, 280 * row + top), image)
                x += image.width + 8
            x = left + 264
            for image in images[:3]:
                sheet.paste(image, (x, 280 * row + 160), image)
                x += image.width + 16
    sheet.paste(toast, (8, 280 * len(icons) + 10))
    return sheet


def main():
    parser = argparse.ArgumentParser(description="Draws the program's icons and the picture of its toasts.")
    parser.add_argument("folder", type=pathlib.Path, help="where the files go")
    parser.add_argument("--sheet", type=pathlib.Path, help="also write one picture that shows them all")
    arguments = parser.parse_args()

    arguments.folder.mkdir(parents=True, exist_ok=True)
    drawn = {name: [motif(size) for size in SIZES] for name, motif in ICONS.items()}
    for name, images in drawn.items():
        (arguments.folder / name).write_bytes(ico_bytes(images))
    toast = toast_image()
    (arguments.folder / "toastImageAndText.png").write_bytes(png_bytes(toast))
    if arguments.sheet:
        contact_sheet(list(drawn.values()), toast).save(arguments.sheet)


if __name__ == "__main__":
    main()

"""The artwork. A motif takes a size in pixels and gives the picture at that size.

Each motif has a drawing on a 32-unit grid for 32 pixels and up, and its own on a 16-unit grid for 16 pixels, where edges
lie on pixels and what would blur into grey is left out.
"""

from canvas import Canvas, color, common, curve, union, without

WHITE = color("#FFFFFF")
BLUE = (color("#3D97F2"), color("#1553B0"))
AMBER = (color("#FFCE4A"), color("#F59A0C"))
TEAL = (color("#22B890"), color("#0A6A68"))
INDIGO = (color("#6E62F0"), color("#342A9E"))


def _bell(canvas, x, y, size):
    """A bell that fills a square of `size` units with the given top left corner."""
    def at(horizontal, vertical):
        return x + horizontal * size, y + vertical * size

    half = curve(at(0.5, 0.08), at(0.74, 0.08), at(0.80, 0.26), at(0.80, 0.46))
    half += curve(at(0.80, 0.46), at(0.80, 0.60), at(0.85, 0.64), at(0.91, 0.70))
    half += curve(at(0.91, 0.70), at(0.95, 0.74), at(0.94, 0.78), at(0.89, 0.78), 12)
    mirrored = [(2 * (x + 0.5 * size) - px, py) for px, py in reversed(half)]
    clapper = common(canvas.disc(*at(0.5, 0.83), 0.14 * size), canvas.rectangle(*at(0, 0.83), *at(1, 1.2)))
    knob = canvas.disc(*at(0.5, 0.09), 0.085 * size)
    return union(canvas.polygon(half + mirrored), clapper, knob)


def _plug(canvas, left, top, scale):
    """A mains plug with its cable, 12 by 20 units times `scale`."""
    def at(horizontal, vertical):
        return left + horizontal * scale, top + vertical * scale

    prongs = union(canvas.rectangle(*at(2, 0), *at(4, 6), 0.9 * scale),
                   canvas.rectangle(*at(8, 0), *at(10, 6), 0.9 * scale))
    collar = canvas.rectangle(*at(0, 5), *at(12, 8), 1 * scale)
    sides = [at(1, 7.5), at(11, 7.5)] + curve(at(11, 7.5), at(11, 12.6), at(9.4, 15), at(6, 15))
    body = canvas.polygon(sides + curve(at(6, 15), at(2.6, 15), at(1, 12.6), at(1, 7.5)))
    return prongs, union(collar, body), at(6, 14.6)


def default_icon(pixels):
    """Something about power or a device: a plug, and a bell that calls for attention."""
    return _default_small() if pixels < 32 else _default_large(pixels)


def _default_small():
    canvas = Canvas(16, 16)
    canvas.fill(canvas.disc(8, 8, 8), *BLUE)
    prongs = union(canvas.rectangle(4, 2, 5, 5), canvas.rectangle(7, 2, 8, 5))
    body = union(canvas.rectangle(3, 5, 9, 7), canvas.rectangle(3, 5, 9, 10, 2.5), canvas.rectangle(5, 9, 7, 14))
    bell = union(canvas.rectangle(10, 7, 14, 13, 1.9), canvas.rectangle(10, 10, 14, 13),
                 canvas.rectangle(9, 12, 15, 13), canvas.rectangle(11, 14, 13, 15))
    glyph = without(union(prongs, body), canvas.rectangle(8, 6, 16, 16, 2))
    canvas.fill(glyph, WHITE)
    canvas.fill(bell, AMBER[0])
    return canvas.finish()


def _default_large(pixels):
    canvas = Canvas(pixels, 32)
    disc = canvas.disc(16, 16, 15.5)
    canvas.fill(disc, *BLUE)
    canvas.fill(common(without(disc, canvas.disc(16, 17, 15.5)), disc), (255, 255, 255, 70))
    _power_scene(canvas, disc, pixels >= 48)
    return canvas.finish()


def _power_scene(canvas, ground, detailed):
    """Plug and bell on a ground that clips the cable."""
    prongs, body, cable_start = _plug(canvas, 8, 5, 1)
    x, y = cable_start
    cable = canvas.line(curve((x, y), (x, y + 9.5), (x - 5.5, y + 5.5), (x - 8, y + 14)), 2)
    bell = _bell(canvas, 16.8, 15.2, 11.6)
    plug = without(union(prongs, body, common(cable, ground)), canvas.grown(bell, 0.8))
    if detailed:
        canvas.shadow(plug, 0.5, 0.5, 90, within=ground)
    canvas.fill(plug, WHITE, color("#DDEBFB"))
    if detailed:
        canvas.shadow(bell, 0.5, 0.4, 90, within=ground)
    canvas.fill(bell, *AMBER)


def veritor_icon(pixels):
    """Firmware protection: a chip under a shield."""
    return _veritor_small() if pixels < 32 else _veritor_large(pixels)


def _shield(canvas, inset, unit=1.0):
    """The shield of a 32-unit grid, drawn in by `inset` units; `unit` scales it to another grid."""
    top, side, tip, middle = 1 + inset * 1.15, 3 + inset, 31 - inset * 1.15, 16
    half = curve((middle, top), (19.5, top + 2.6), (24, top + 3.6), (32 - side, top + 3.8))
    half += curve((32 - side, top + 3.8), (32 - side + 0.4, 18.5), (26.5 - inset, 26.5), (middle, tip))
    points = half + [(32 - x, y) for x, y in reversed(half)]
    return canvas.polygon([(x * unit, y * unit) for x, y in points])


def _veritor_small():
    canvas = Canvas(16, 16)
    canvas.fill(_shield(canvas, -0.6, 0.5), *TEAL)
    pins = [canvas.rectangle(6 + step, 3, 7 + step, 13) for step in (0, 3)]
    pins += [canvas.rectangle(3, 5 + step, 13, 6 + step) for step in (0, 3)]
    canvas.fill(union(*pins), color("#BDEFDF"))
    canvas.fill(canvas.rectangle(5, 4, 11, 10), WHITE)
    canvas.fill(canvas.rectangle(7, 6, 9, 8), TEAL[1])
    return canvas.finish()


def _veritor_large(pixels):
    canvas = Canvas(pixels, 32)
    outer = _shield(canvas, 0)
    inner = _shield(canvas, 1.5)
    canvas.fill(outer, *TEAL)
    canvas.fill(without(inner, _shield(canvas, 2.25 if pixels >= 48 else 2.5)), (255, 255, 255, 150))
    package = canvas.rectangle(10, 9, 22, 21, 1.5)
    offsets = (1.5, 5, 8.5) if pixels >= 48 else (2, 8)
    width = 2 if pixels < 48 else 1.5
    pins = [canvas.rectangle(10 + o + (0 if width == 2 else 0.25), 7, 10 + o + width, 23, 0.4) for o in offsets]
    pins += [canvas.rectangle(8, 9 + o + (0 if width == 2 else 0.25), 24, 9 + o + width, 0.4) for o in offsets]
    chip = union(package, *pins)
    if pixels >= 48:
        canvas.shadow(chip, 0.5, 0.5, 90, within=outer)
    canvas.fill(union(*pins), color("#BDEFDF"))
    canvas.fill(package, WHITE, color("#DDF6EF"))
    tick = canvas.line([(12.9, 15.3), (15.1, 17.5), (19.3, 12.9)], 1.7)
    canvas.fill(tick, TEAL[1])
    return canvas.finish()


def program_icon(pixels):
    """The program itself: a message that slides in over an older one."""
    return _program_small() if pixels < 32 else _program_large(pixels)


def _program_small():
    canvas = Canvas(16, 16)
    canvas.fill(canvas.rectangle(0, 0, 16, 16, 3), *INDIGO)
    canvas.fill(canvas.rectangle(3, 3, 13, 5, 0.5), (255, 255, 255, 130))
    canvas.fill(canvas.rectangle(1, 6, 15, 14, 1), WHITE)
    canvas.fill(canvas.ring(5, 10, 3, 1.2), INDIGO[1])
    canvas.fill(union(canvas.rectangle(9, 8, 14, 9), canvas.rectangle(9, 11, 13, 12)), color("#7A74C4"))
    return canvas.finish()


def _program_large(pixels):
    canvas = Canvas(pixels, 32)
    tile = canvas.rectangle(1, 1, 31, 31, 6)
    canvas.fill(tile, *INDIGO)
    canvas.fill(without(tile, canvas.rectangle(1, 1.75, 31, 32, 6)), (255, 255, 255, 70))
    canvas.fill(canvas.rectangle(8, 6, 24, 12, 1.5), (255, 255, 255, 110))
    card = canvas.rectangle(4, 10, 28, 25, 2)
    if pixels >= 48:
        canvas.shadow(card, 0.8, 0.8, 120, within=tile)
    canvas.fill(card, WHITE, color("#ECEAFD"))
    canvas.fill(canvas.ring(11, 17.5, 4.5, 2), INDIGO[0], INDIGO[1])
    canvas.fill(canvas.rectangle(18, 14, 26, 16, 1), color("#4A40B8"))
    canvas.fill(canvas.rectangle(18, 19, 24, 21, 1), color("#A9A4DE"))
    canvas.fill(canvas.disc(26, 10.5, 4), color("#675BE6"))
    canvas.fill(canvas.disc(26, 10.5, 3), *AMBER)
    return canvas.finish()


def toast_image(pixels=256):
    """The picture inside a toast: the plug and the bell on a full square, without transparency."""
    canvas = Canvas(pixels, 32)
    ground = canvas.rectangle(0, 0, 32, 32)
    canvas.fill(ground, *BLUE)
    for radius, strength in ((15, 26), (11, 30)):
        canvas.fill(canvas.disc(16, 16, radius), (255, 255, 255, strength))
    _power_scene(canvas, ground, True)
    return canvas.finish().convert("RGB")

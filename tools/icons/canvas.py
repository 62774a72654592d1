"""Drawing surface: shapes are drawn eight times too large and averaged down, so that every edge comes out smooth."""

from PIL import Image, ImageChops, ImageDraw, ImageFilter

OVERSAMPLING = 8


def color(text, alpha=255):
    """'#RRGGBB' as a pixel value."""
    return tuple(int(text[i:i + 2], 16) for i in (1, 3, 5)) + (alpha,)


class Canvas:
    """A square picture of `pixels` a side, addressed in units of a grid with `grid` units a side.

    Shapes are masks (greyscale images of the whole surface); fill() paints through one.
    """

    def __init__(self, pixels, grid):
        self.pixels = pixels
        self.side = pixels * OVERSAMPLING
        self.unit = self.side / grid
        self.image = Image.new("RGBA", (self.side, self.side))

    def finish(self):
        return self.image.reduce(OVERSAMPLING)

    def _blank(self):
        mask = Image.new("L", (self.side, self.side))
        return mask, ImageDraw.Draw(mask)

    def _scaled(self, values):
        return [round(value * self.unit) for value in values]

    def rectangle(self, left, top, right, bottom, radius=0):
        mask, draw = self._blank()
        x0, y0, x1, y1 = self._scaled((left, top, right, bottom))
        draw.rounded_rectangle((x0, y0, x1 - 1, y1 - 1), radius * self.unit, fill=255)
        return mask

    def disc(self, x, y, radius):
        mask, draw = self._blank()
        x0, y0, x1, y1 = self._scaled((x - radius, y - radius, x + radius, y + radius))
        draw.ellipse((x0, y0, x1 - 1, y1 - 1), fill=255)
        return mask

    def ring(self, x, y, radius, width):
        return ImageChops.subtract(self.disc(x, y, radius), self.disc(x, y, radius - width))

    def polygon(self, points):
        mask, draw = self._blank()
        draw.polygon([(x * self.unit, y * self.unit) for x, y in points], fill=255)
        return mask

    def line(self, points, width):
        """A line with round ends and joints."""
        mask, draw = self._blank()
        scaled = [(x * self.unit, y * self.unit) for x, y in points]
        thickness = width * self.unit
        draw.line(scaled, fill=255, width=round(thickness))
        for x, y in scaled:
            reach = thickness / 2
            draw.ellipse((x - reach, y - reach, x + reach - 1, y + reach - 1), fill=255)
        return mask

    def fill(self, mask, top, bottom=None):
        """Paints in one color, or from `top` to `bottom` down the height of the shape."""
        box = mask.getbbox()
        if box is None:
            return
        paint = Image.new("RGBA", self.image.size, top)
        if bottom is not None:
            height = box[3] - box[1]
            blend = Image.linear_gradient("L").resize((self.side, height))
            shaded = Image.composite(Image.new("RGBA", blend.size, bottom), Image.new("RGBA", blend.size, top), blend)
            paint.paste(shaded, (0, box[1]))
        paint.putalpha(ImageChops.multiply(paint.getchannel("A"), mask))
        self.image.alpha_composite(paint)

    def shadow(self, mask, down, blur, strength, within=None):
        """A soft dark copy of the shape, `down` units lower; `within` keeps it on another shape."""
        lowered, _ = self._blank()
        lowered.paste(mask, (0, round(down * self.unit)))
        soft = lowered.filter(ImageFilter.GaussianBlur(blur * self.unit))
        if within is not None:
            soft = ImageChops.multiply(soft, within)
        self.fill(soft, (6, 18, 44, strength))

    def grown(self, mask, by):
        """The shape widened by `by` units all round."""
        soft = mask.filter(ImageFilter.GaussianBlur(by * self.unit))
        return soft.point(lambda value: 255 if value > 8 else 0)


def union(*masks):
    result = masks[0]
    for mask in masks[1:]:
        result = ImageChops.lighter(result, mask)
    return result


def common(first, second):
    return ImageChops.multiply(first, second)


def without(mask, hole):
    return ImageChops.subtract(mask, hole)


def curve(start, control1, control2, end, steps=48):
    """Points of a cubic Bezier curve, both ends included."""
    points = []
    for step in range(steps + 1):
        t = step / steps
        weights = ((1 - t) ** 3, 3 * t * (1 - t) ** 2, 3 * t * t * (1 - t), t ** 3)
        points.append(tuple(sum(w * p[axis] for w, p in zip(weights, (start, control1, control2, end)))
                            for axis in (0, 1)))
    return points

"""A picture shows what was measured."""
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1]))
import draw_times  # noqa: E402
from PIL import ImageColor  # noqa: E402


def bar_lengths(image, rows):
    bar = ImageColor.getrgb(draw_times.BAR)
    lines = (draw_times.MARGIN + draw_times.ROW * row + draw_times.ROW // 2 - 7 for row in range(1, rows + 1))
    return [sum(image.getpixel((x, y)) == bar for x in range(image.width)) for y in lines]


class Picture(unittest.TestCase):
    def test_bars_grow_by_the_power_of_ten(self):
        image = draw_times.draw({"title": "T", "rounds": 1, "nanoseconds": {"a": 100.0, "b": 1e3, "c": 1e4}})
        lengths = bar_lengths(image, 3)
        self.assertEqual(lengths[0], 1)
        self.assertAlmostEqual(lengths[1], draw_times.BARS / 2, delta=2)
        self.assertAlmostEqual(lengths[2], draw_times.BARS, delta=2)

    def test_one_time_alone_is_drawn(self):
        image = draw_times.draw({"title": "T", "rounds": 1, "nanoseconds": {"a": 5.0}})
        self.assertGreater(bar_lengths(image, 1)[0], 1)

    def test_durations_have_the_unit_that_is_read_easily(self):
        self.assertEqual([draw_times.duration(t) for t in (0.15, 98.7, 1500, 2.66e6)],
                         ["0.15 ns", "98.7 ns", "1.5 µs", "2.66 ms"])


if __name__ == "__main__":
    unittest.main()

"""The table is laid out as Windows reads it."""
import struct
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1]))
import message_table  # noqa: E402

TABLE = message_table.table()
COUNT, = struct.unpack_from("<I", TABLE)
BLOCKS = [struct.unpack_from("<III", TABLE, 4 + 12 * index) for index in range(COUNT)]


class Table(unittest.TestCase):
    def test_blocks_ascend_and_hold_each_identifier_once(self):
        self.assertTrue(all(low <= high for low, high, _ in BLOCKS))
        self.assertTrue(all(before[1] < after[0] for before, after in zip(BLOCKS, BLOCKS[1:])))
        self.assertEqual(sum(high - low + 1 for low, high, _ in BLOCKS), 262144)
        severities = {low >> 16 for low, _, _ in BLOCKS}
        self.assertEqual(severities, {0x0000, 0x4000, 0x8000, 0xC000})

    def test_entries_of_a_block_end_within_the_table(self):
        for low, high, offset in BLOCKS:
            self.assertEqual(offset % 4, 0)
            for _ in range(low, high + 1):
                length, flags = struct.unpack_from("<HH", TABLE, offset)
                self.assertEqual((length % 4, flags), (0, message_table.UNICODE))
                text = TABLE[offset + 4:offset + length].decode("utf-16-le")
                self.assertEqual(text.rstrip("\0"), "%1")
                offset += length
            self.assertLessEqual(offset, len(TABLE))

    def test_table_is_the_same_each_time(self):
        self.assertEqual(message_table.table(), TABLE)
        self.assertLess(len(TABLE), 16384)


if __name__ == "__main__":
    unittest.main()

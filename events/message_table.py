#!/usr/bin/env python3
"""Makes the message table of the agent's event sources: whatever the identifier, the record's text and nothing else.

    message_table.py FILE

The number of a record is what the firmware says, so no number is known beforehand: the table has all 65,536, in each of
the four severities that an identifier's two highest bits can name. Windows finds a message by its block, then walks from
entry to entry; here all blocks share one run of entries, which makes the table 15 KB instead of 3 MB.
"""
import struct
import sys
from pathlib import Path

TEXT = "%1"
SEVERITIES = 4
IDENTIFIERS = 0x10000
BLOCK = 256  # identifiers; blocks and the run of entries are then about as long as each other
UNICODE = 1


def entry(text):
    """MESSAGE_RESOURCE_ENTRY: its length, what its characters are, its text; the next one begins at a multiple of four."""
    data = (text + "\0").encode("utf-16-le")
    data += bytes(-len(data) % 4)
    return struct.pack("<HH", 4 + len(data), UNICODE) + data


def blocks():
    """First and last identifier of each block, ascending."""
    for severity in range(SEVERITIES):
        for first in range(0, IDENTIFIERS, BLOCK):
            low = severity << 30 | first
            yield low, low + BLOCK - 1


def table():
    """MESSAGE_RESOURCE_DATA: count of blocks, the blocks with their entries' offset, the entries."""
    ranges = list(blocks())
    offset = 4 + 12 * len(ranges)
    heads = b"".join(struct.pack("<III", low, high, offset) for low, high in ranges)
    return struct.pack("<I", len(ranges)) + heads + entry(TEXT) * BLOCK


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: message_table.py FILE")
    Path(sys.argv[1]).write_bytes(table())

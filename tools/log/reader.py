#!/usr/bin/env python3
"""Shows a log file of the agent, or part of it.

    ./dev log FILE [--level LEVEL] [--function TEXT] [--thread ID] [--text TEXT] [--follow]

A file that is rotated while it is followed is followed into its successor. Lines behind a record that begin otherwise
belong to it.
"""
import argparse
import io
import os
import re
import sys
import time
from typing import NamedTuple

LEVELS = ("TraceIn", "TraceOut", "Verbose", "Information", "Warning", "Error", "Diag", "Undefined")
RECORD = re.compile(r"(\d{4}/\d\d/\d\d \d\d:\d\d:\d\d\.\d{3})\|([0-9A-F]{8})\|(\w+) *\|([^|]*)\|")
PAUSE = 0.2  # seconds between two looks at a file that is followed


class Record(NamedTuple):
    time: str
    thread: str
    level: str
    function: str
    lines: list  # as they stand in the file


def records_of(lines):
    """The records of an iterable of lines; what stands before the first one is a record without parts."""
    record = None
    for line in lines:
        parts = RECORD.match(line)
        if parts:
            if record:
                yield record
            record = Record(*parts.groups(), [line])
        elif record:
            record.lines.append(line)
        else:
            record = Record("", "", "", "", [line])
    if record:
        yield record


def level_rank(level):
    return LEVELS.index(level) if level in LEVELS else len(LEVELS)


def is_wanted(record, arguments):
    return (level_rank(record.level) >= level_rank(arguments.level)
            and arguments.function.lower() in record.function.lower()
            and (not arguments.thread or int(record.thread or "0", 16) == arguments.thread)
            and arguments.text.lower() in "".join(record.lines).lower())


class Follower:
    """The complete lines of a file that grows, and of its successor under the same name."""

    def __init__(self, path, pause=PAUSE):
        self.path = path
        self.pause = pause

    def lines_so_far(self):
        """Everything up to now, then None, then what is added, again with None where nothing more is there."""
        file, rest = open(self.path, "rb"), b""
        while True:
            data = rest + file.read()
            whole, newline, rest = data.rpartition(b"\n")
            yield from text_lines(whole + newline)
            yield None
            time.sleep(self.pause)
            if self._has_successor(file):
                yield from text_lines(rest + file.read())
                file.close()
                file, rest = open(self.path, "rb"), b""

    def _has_successor(self, file):
        try:
            with open(self.path, "rb") as now:
                return not _same_file(now, file) or now.seek(0, io.SEEK_END) < file.tell()
        except OSError:
            return False


def _same_file(one, other):
    return os.path.sameopenfile(one.fileno(), other.fileno())


def text_lines(data):
    return data.decode("utf-8-sig", errors="replace").replace("\r\n", "\n").splitlines(keepends=True)


def show(record, out):
    out.write("".join(record.lines))


def follow(arguments, out):
    waiting = []
    for line in Follower(arguments.file).lines_so_far():
        if line is not None:
            waiting.append(line)
            continue
        for record in records_of(waiting):
            if is_wanted(record, arguments):
                show(record, out)
        waiting.clear()
        out.flush()


def read(arguments, out):
    with open(arguments.file, "rb") as file:
        for record in records_of(text_lines(file.read())):
            if is_wanted(record, arguments):
                show(record, out)


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(prog="./dev log", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("file", metavar="FILE")
    parser.add_argument("--level", choices=LEVELS[:-1], default=LEVELS[0], help="the least level that is shown")
    parser.add_argument("--function", default="", metavar="TEXT", help="functions whose name holds the text")
    parser.add_argument("--thread", type=lambda text: int(text, 16), metavar="ID", help="hexadecimal, as in the file")
    parser.add_argument("--text", default="", help="records that hold the text")
    parser.add_argument("--follow", action="store_true", help="goes on with what is added, until Ctrl+C")
    return parser.parse_args(arguments)


def main(arguments=None, out=sys.stdout):
    parsed = parse_arguments(arguments)
    try:
        (follow if parsed.follow else read)(parsed, out)
    except OSError as error:
        return f"log: {parsed.file}: {error.strerror}"
    except (KeyboardInterrupt, BrokenPipeError):
        return 0
    return 0


if __name__ == "__main__":
    sys.exit(main())

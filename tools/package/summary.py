"""The summary of a package, where wixl puts a random package code and the time: both are replaced in the finished file."""
import struct

from faults import PackageFault

# A property set of one section, the one of summaries.
_HEADER = b"\xfe\xff\x00\x00"
_SUMMARY_FORMAT = bytes.fromhex("e0859ff2f94f6810ab9108002b27b3d9")
_SET_SIZE = 48
PACKAGE_CODE, CREATED, SAVED = 9, 12, 13
_TEXT, _TIME = 30, 64
_FILETIME_OF_1970 = 116444736000000000


def _find_set(data):
    at = data.find(_SUMMARY_FORMAT)
    begin = at - 28
    if at < 0 or data[begin:begin + 4] != _HEADER or data.find(_SUMMARY_FORMAT, at + 1) >= 0:
        raise PackageFault("The package's summary was not found; another version of msitools may write it otherwise.")
    return begin


def properties(data):
    """number -> (type, place of the value) in the file. That the set lies there in one piece is taken for granted; another
    tool's reading of the finished package shows it."""
    begin = _find_set(data)
    section = begin + struct.unpack_from("<I", data, begin + 44)[0]
    size, count = struct.unpack_from("<II", data, section)
    if section != begin + _SET_SIZE or not 8 + 8 * count <= size <= 4096:
        raise PackageFault("The package's summary is not laid out as expected.")
    found = {}
    for i in range(count):
        number, place = struct.unpack_from("<II", data, section + 8 + 8 * i)
        found[number] = (struct.unpack_from("<I", data, section + place)[0], section + place + 4)
    return found


def settle(path, package_code, epoch):
    """Gives the package the time of its making and saving, and its code: package_code makes a GUID, in braces and capitals,
    of all its bytes, those of the code blank."""
    data = bytearray(path.read_bytes())
    found = properties(data)
    kinds = [found.get(number, (None,))[0] for number in (PACKAGE_CODE, CREATED, SAVED)]
    if kinds != [_TEXT, _TIME, _TIME]:
        raise PackageFault(f"The package's summary has other properties than expected: {found}")
    place = found[PACKAGE_CODE][1]
    length, = struct.unpack_from("<I", data, place)
    if length != 39 or data[place + 4:place + 5] != b"{" or data[place + 41:place + 43] != b"}\0":
        raise PackageFault("The package's code is not where it should be.")
    for number in (CREATED, SAVED):
        struct.pack_into("<Q", data, found[number][1], _FILETIME_OF_1970 + epoch * 10_000_000)
    data[place + 4:place + 42] = b" " * 38
    data[place + 4:place + 42] = package_code(data).encode("ascii")
    path.write_bytes(data)

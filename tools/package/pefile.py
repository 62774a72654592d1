"""What the package needs to know of a Windows program file: its version, its language, the libraries that it imports."""
import struct

from faults import PackageFault

_RESOURCES, _IMPORTS = 2, 1
_RT_VERSION = 16
_TRANSLATION = "Translation\0".encode("utf-16-le")
_FIXED_SIGNATURE = struct.pack("<I", 0xFEEF04BD)


class PeFile:
    def __init__(self, data, name="the file"):
        self._data, self._name = data, name
        if data[:2] != b"MZ" or len(data) < 0x40:
            raise PackageFault(f"{name} is no Windows program file.")
        header = self._number(0x3C)
        if data[header:header + 4] != b"PE\0\0":
            raise PackageFault(f"{name} is no Windows program file.")
        sections, = struct.unpack_from("<H", data, header + 6)
        optional_size, = struct.unpack_from("<H", data, header + 20)
        optional = header + 24
        self.is_64_bit = struct.unpack_from("<H", data, optional)[0] == 0x20B
        directories = optional + (112 if self.is_64_bit else 96)
        self._directories = [struct.unpack_from("<II", data, directories + 8 * i) for i in range(16)]
        self._sections = [struct.unpack_from("<8sIIII", data, optional + optional_size + 40 * i) for i in range(sections)]

    @classmethod
    def read(cls, path):
        return cls(path.read_bytes(), path.name)

    def _number(self, offset):
        return struct.unpack_from("<I", self._data, offset)[0]

    def _offset(self, address):
        for _, size, start, raw_size, raw in self._sections:
            if start <= address < start + max(size, raw_size):
                return address - start + raw
        raise PackageFault(f"{self._name}: address {address:#x} lies in no section.")

    def _text(self, address):
        begin = self._offset(address)
        return self._data[begin:self._data.index(b"\0", begin)].decode("ascii")

    def imports(self):
        """Names of the imported libraries, as they stand there."""
        address, size = self._directories[_IMPORTS]
        if not size:
            return []
        names, at = [], self._offset(address)
        while name := self._number(at + 12):
            names.append(self._text(name))
            at += 20
        return names

    def _resource_entries(self, base, at):
        named, numbered = struct.unpack_from("<HH", self._data, at + 12)
        for i in range(named + numbered):
            number, place = struct.unpack_from("<II", self._data, at + 16 + 8 * i)
            yield number, base + (place & 0x7FFFFFFF)

    def _version_resources(self):
        """Places of the data entries of the version resource, one for each language."""
        address, size = self._directories[_RESOURCES]
        if not size:
            return
        base = self._offset(address)
        for kind, names in self._resource_entries(base, base):
            if kind == _RT_VERSION:
                for _, languages in self._resource_entries(base, names):
                    for _, entry in self._resource_entries(base, languages):
                        yield entry

    def version_block(self):
        """(offset, length) of the version resource, None without one."""
        for entry in self._version_resources():
            address, size = struct.unpack_from("<II", self._data, entry)
            return self._offset(address), size
        return None

    def _translation(self, begin, size):
        """The language that the version names, which is the one that Windows Installer takes; 0, neutral, without one."""
        at = self._data.find(_TRANSLATION, begin, begin + size)
        value = begin + (at + len(_TRANSLATION) - begin + 3 & ~3)
        return struct.unpack_from("<H", self._data, value)[0] if 0 <= at and value + 4 <= begin + size else 0

    def file_version(self):
        """("1.2.3.4", 1033), or None for a file without a version; Windows Installer calls those unversioned."""
        block = self.version_block()
        if not block:
            return None
        begin, size = block
        fixed = self._data.find(_FIXED_SIGNATURE, begin, begin + size)
        if fixed < 0:
            return None
        high, low = struct.unpack_from("<II", self._data, fixed + 8)
        return f"{high >> 16}.{high & 0xFFFF}.{low >> 16}.{low & 0xFFFF}", self._translation(begin, size)


def file_version(path):
    """As PeFile.file_version; None for what is no program file at all."""
    data = path.read_bytes()
    return PeFile(data, path.name).file_version() if data[:2] == b"MZ" else None

"""The .ico container: small images as 32-bit bitmaps, which every reader takes, the large one as PNG."""

import io
import struct

LARGE = 256


def png_bytes(image):
    buffer = io.BytesIO()
    image.save(buffer, "PNG", optimize=True)
    return buffer.getvalue()


def bitmap_bytes(image):
    """A device-independent bitmap of double height: colors bottom up, then the one-bit transparency mask."""
    side = image.width
    header = struct.pack("<IiiHHIIiiII", 40, side, side * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    upside_down = image.transpose(1)
    colors = upside_down.tobytes("raw", "BGRA")
    stride = (side + 31) // 32 * 4
    mask = bytearray()
    for row in range(side):
        bits = 0
        for column in range(side):
            bits = bits << 1 | (upside_down.getpixel((column, row))[3] == 0)
        mask += (bits << (stride * 8 - side)).to_bytes(stride, "big")
    return header + colors + bytes(mask)


def ico_bytes(images):
    """One icon of all the given square images, smallest first."""
    images = sorted(images, key=lambda image: image.width)
    payloads = [png_bytes(image) if image.width >= LARGE else bitmap_bytes(image) for image in images]
    entries = b""
    offset = 6 + 16 * len(images)
    for image, payload in zip(images, payloads):
        side = image.width % LARGE  # 256 is written as 0
        entries += struct.pack("<BBBBHHII", side, side, 0, 0, 1, 32, len(payload), offset)
        offset += len(payload)
    return struct.pack("<HHH", 0, 1, len(images)) + entries + b"".join(payloads)

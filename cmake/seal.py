#!/usr/bin/env python3
"""seal.py IMAGE: makes the resources of a Windows image read-only, which the linker always leaves writable, and takes
the time of the link out of the headers."""
import struct
import sys

MAY_WRITE = 0x80000000


def checksum(image, at):
    """As Windows reckons it: a folded sum of words, the field itself as zero, and the size."""
    image = bytearray(image)
    image[at:at + 4] = bytes(4)
    padded = bytes(image) + bytes(len(image) % 2)
    total = sum(struct.unpack(f'<{len(padded) // 2}H', padded))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    return total + len(image)


def seal(image):
    header = struct.unpack_from('<I', image, 0x3C)[0]
    sections, = struct.unpack_from('<H', image, header + 6)
    optional_size, = struct.unpack_from('<H', image, header + 20)
    struct.pack_into('<I', image, header + 8, 0)
    for index in range(sections):
        at = header + 24 + optional_size + 40 * index
        if image[at:at + 8].rstrip(b'\0') == b'.rsrc':
            flags, = struct.unpack_from('<I', image, at + 36)
            struct.pack_into('<I', image, at + 36, flags & ~MAY_WRITE)
    field = header + 24 + 64
    struct.pack_into('<I', image, field, checksum(image, field))


if __name__ == '__main__':
    with open(sys.argv[1], 'r+b') as file:
        whole = bytearray(file.read())
        seal(whole)
        file.seek(0)
        file.write(whole)

#!/usr/bin/env python3
"""images.py DIST VERSION PATH...: what every program and library of ours must be, whoever opens it; none may hold one of
the paths, which only the machine that built it has. Says what is wrong, and fails then."""
import pathlib
import re
import struct
import sys

IMAGES = ['Vesk Plugins/Planfold.zup', 'KorvexControls.dll', 'connectvesk.dll', 'VeskTrader.exe', 'veskserver.exe',
          'planfold-basket.exe', 'planfold-hostcheck.exe', 'HostCheck.zup']
HIGH_ENTROPY, DYNAMIC_BASE, NO_EXECUTE = 0x20, 0x40, 0x100
EXECUTE, WRITE = 0x20000000, 0x80000000
EXPORTS, RESOURCES = 0, 2


class Image:
    def __init__(self, content):
        self.content = content
        self.header = self.at('<I', 0x3C)
        optional = self.header + 24
        self.characteristics = self.at('<H', optional + 70)
        self.directories = [struct.unpack_from('<II', content, optional + 112 + 8 * index) for index in range(16)]
        first = optional + self.at('<H', self.header + 20)
        self.sections = [struct.unpack_from('<8s6I2HI', content, first + 40 * index)
                         for index in range(self.at('<H', self.header + 6))]

    def at(self, form, offset):
        return struct.unpack_from(form, self.content, offset)[0]

    def offset(self, address):
        for _, size, start, _, place, *_ in self.sections:
            if start <= address < start + size:
                return place + address - start
        return None

    def stamps(self):
        yield self.at('<I', self.header + 8)
        for directory in (EXPORTS, RESOURCES):
            if self.directories[directory][0]:
                yield self.at('<I', self.offset(self.directories[directory][0]) + 4)

    def versions(self):
        """The texts of the version resource that say a version, and the numbers at its start."""
        for name in 'FileVersion', 'ProductVersion':
            found = re.search(re.escape((name + '\0').encode('utf-16le')) + rb'(?:\0\0)?((?:[0-9.]\0)+)', self.content)
            yield found.group(1).decode('utf-16le') if found else 'no ' + name
        fixed = self.content.find(struct.pack('<II', 0xFEEF04BD, 0x10000))
        for offset in 8, 16:
            high, low = struct.unpack_from('<II', self.content, fixed + offset) if fixed >= 0 else (0, 0)
            yield f'{high >> 16}.{high & 0xFFFF}.{low >> 16}.{low & 0xFFFF}'


def faults(content, version, paths):
    image = Image(content)
    for flag, name in (HIGH_ENTROPY, '64-bit addresses at random'), (DYNAMIC_BASE, 'any address'), (NO_EXECUTE, 'DEP'):
        if not image.characteristics & flag:
            yield 'does without ' + name
    if any(image.stamps()):
        yield 'says when it was linked'
    for told in image.versions():
        if told != version:
            yield f'says version {told}, not {version}'
    for name, *_, flags in image.sections:
        name = name.rstrip(b'\0').decode('latin-1')
        if flags & EXECUTE and flags & WRITE:
            yield f'has code that can be written to, in {name}'
        if name == '.rsrc' and flags & WRITE:
            yield 'has resources that can be written to'
    if b'stack smashing detected' not in content:
        yield 'has no stack protector'
    if re.search(rb'lib(ssp|gcc|stdc\+\+|winpthread)[-_a-z0-9]*\.dll', content, re.I):
        yield "leans on the compiler's libraries"
    for path in paths:
        if path.encode() in content or path.encode('utf-16le') in content:
            yield f'holds the path {path}'


def main(dist, version, *paths):
    wrong = [f'{name} {fault}' for name in IMAGES
             for fault in faults((pathlib.Path(dist) / name).read_bytes(), version, paths)]
    print('\n'.join(wrong))
    return bool(wrong)


if __name__ == '__main__':
    sys.exit(main(*sys.argv[1:]))

#!/usr/bin/env python3
"""verify.py FOLDER: checks the packages of a folder: the zips' entries (sums, order, time, nothing of the machine), what
must be in them, and the images by the rules of tests/exports/images.py. Says what is wrong, and fails then."""
import hashlib
import pathlib
import subprocess
import sys
import tempfile
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / 'packaging'))
import windows  # noqa: E402

NEEDED = ['README.html', 'Planfold.pdf', 'CONTENTS.txt', 'selftest.cmd', 'SHA256SUMS', 'reference/data/scrips.csv', 'docs/design.html',
          'sdk/HostExports.h', 'sdk/example/ExampleHost.cpp', *(f'licences/{name}.txt' for name in windows.LICENCES),
          *(f'{folder}/{name}' for folder, names in windows.PLACES.items() for name in names if '*' not in name)]


def faults(path, needed):
    with zipfile.ZipFile(path) as archive:
        entries = archive.infolist()
        names = [entry.filename.removeprefix(path.stem + '/') for entry in entries]
        if names != sorted(set(names)):
            yield 'the names are not in order, or one comes twice'
        if len({entry.date_time for entry in entries}) != 1:
            yield 'the entries have several times'
        if any(entry.extra or entry.external_attr != windows.ORDINARY or entry.create_system for entry in entries):
            yield 'an entry has attributes'
        for name in needed:
            if name not in names:
                yield f'{name} is missing'
        told = dict(reversed(line.split('  ', 1)) for line in archive.read(f'{path.stem}/SHA256SUMS').decode().splitlines())
        for entry, name in zip(entries, names):
            if name != 'SHA256SUMS' and told.pop(name, None) != hashlib.sha256(archive.read(entry)).hexdigest():
                yield f'{name} has another sum'
        yield from (f'{name} has a sum only' for name in told)


def image_faults(path, version):
    """The images together as the reference terminal and the tools have them."""
    with tempfile.TemporaryDirectory() as folder, zipfile.ZipFile(path) as archive:
        for place in 'tools', 'reference':
            for entry in archive.infolist():
                name = entry.filename.removeprefix(f'{path.stem}/{place}/')
                if name != entry.filename:
                    target = pathlib.Path(folder, name)
                    target.parent.mkdir(parents=True, exist_ok=True)
                    target.write_bytes(archive.read(entry))
        check = [sys.executable, ROOT / 'tests/exports/images.py', folder, version, ROOT]
        return subprocess.run(check, capture_output=True, text=True).stdout.split('\n')[:-1]


def main(folder):
    version = windows.version()
    wrong = []
    for name, needed in (f'Planfold-{version}-win64', NEEDED), (f'Planfold-{version}-win64-symbols', ['Planfold.zup.debug']):
        path = pathlib.Path(folder, name + '.zip')
        wrong += [f'{path.name}: {fault}' for fault in faults(path, needed)]
    wrong += filter(None, image_faults(pathlib.Path(folder, f'Planfold-{version}-win64.zip'), version))
    package = next(pathlib.Path(folder).glob(f'planfold-tools_{version}_*.deb'))
    listing = subprocess.run(['dpkg-deb', '--contents', package], check=True, capture_output=True, text=True).stdout
    for name in 'bin/veskserver', 'bin/planfold-basket', 'share/man/man1/veskserver.1.gz', \
                'share/man/man1/planfold-basket.1.gz':
        if f'./usr/{name}\n' not in listing:
            wrong.append(f'{package.name}: {name} is missing')
    print('\n'.join(wrong) if wrong else 'everything is as it must be')
    return bool(wrong)


if __name__ == '__main__':
    sys.exit(main(*sys.argv[1:]))

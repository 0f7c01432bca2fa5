#!/usr/bin/env python3
"""windows.py BUILD DIST OUT: makes Planfold-<version>-win64.zip and the zip of its symbols in OUT, from a build of the
windows-release preset. Needs SOURCE_DATE_EPOCH, the time that all entries get."""
import hashlib
import html
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
ORDINARY = 0x20  # of a file's attributes on Windows
SCRIPTS = ['smoke', 'orderform', 'instalments', 'server', 'list', 'morning']

# The folders of the zip, and what comes into each: from dist/, unless it has a folder of its own.
PLACES = {
    'terminal-plugin': ['Vesk Plugins/Planfold.zup', 'KorvexControls.dll'],
    'reference': ['VeskTrader.exe', 'veskserver.exe', 'connectvesk.dll', 'KorvexControls.dll',
                  'Vesk Plugins/Planfold.zup', 'data/**'],
    'tools': ['planfold-basket.exe', 'planfold-hostcheck.exe', 'HostCheck.zup', 'connectvesk.dll'],
}

# What is linked into the programs, and the Debian packages whose copyright files say under which terms.
LICENCES = {
    'nlohmann-json': 'nlohmann-json3-dev',
    'rapidxml': 'librapidxml-dev',
    'zlib': 'libz-mingw-w64-dev',
    'mingw-w64-runtime-and-winpthreads': 'mingw-w64-common',
    'gcc-runtime': 'gcc-mingw-w64-x86-64-posix',
}

# The chapters of the PDF, after README: from the dealer's to the developer's.
CHAPTERS = ['install', 'guide', 'basket-files', 'troubleshooting', 'hosts', 'server', 'scripts', 'developers', 'design']
# Pictures of 1280 pixels and code of 120 columns go into the width of a page.
BOOK = ['--quiet', '--book', '--no-title', '--toclevels', '2', '--charset', 'utf-8', '--no-strict', '--linkstyle', 'plain',
        '--size', 'a4', '--left', '2cm', '--right', '1.5cm', '--browserwidth', '1300', '--bodyfont', 'Helvetica',
        '--fontsize', '10', '--header', '...', '--footer', '.t1', '-t', 'pdf14']

PAGE = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>{title}</title>
<style>body{{font:16px/1.5 sans-serif;max-width:60em;margin:2em auto;padding:0 1em}}img{{max-width:100%}}
table{{border-collapse:collapse}}td,th{{border:1px solid #999;padding:.3em .6em;vertical-align:top}}
pre{{background:#eee;padding:.6em;overflow:auto}}</style></head>
<body>
{body}</body></html>
"""


def version():
    return re.search(r'project\(planfold VERSION ([0-9.]+)', (ROOT / 'CMakeLists.txt').read_text()).group(1)


def documents():
    """Path in the zip by path in the source."""
    files = subprocess.run(['git', 'ls-files', '-z', ':(glob)*.md', 'docs'], cwd=ROOT, check=True, capture_output=True,
                           text=True).stdout.split('\0')
    return {name: re.sub(r'\.md$', '.html', name) for name in files if name.endswith(('.md', '.png', '.svg'))}


def page(source, pages):
    """A document as HTML. A link to what does not come along stays as its text."""
    body = subprocess.run(['cmark-gfm', '-e', 'table', '-e', 'autolink', '--unsafe', ROOT / source], check=True,
                          capture_output=True, text=True).stdout

    def link(match):
        target, part = re.match(r'([^#]*)(.*)', html.unescape(match.group(1))).groups()
        if not target or ':' in target:
            return match.group(0)
        path = os.path.normpath(os.path.join(os.path.dirname(source), target))
        if path not in pages:
            return match.group(2)
        return f'<a href="{html.escape(re.sub(r"[.]md$", ".html", target) + part)}">{match.group(2)}</a>'

    body = re.sub(r'<a href="([^"]*)">(.*?)</a>', link, body, flags=re.S)
    heading = re.search(r'<h1>(.*?)</h1>', body)
    return PAGE.format(title=heading.group(1) if heading else 'Planfold', body=body).encode()


def book(files, pages):
    """The documents as one PDF, from what the zip holds of them."""
    chapters = ['README.md', *(f'docs/{name}.md' for name in CHAPTERS)]
    chapters += sorted(name for name in pages if name.endswith('.md') and name not in chapters)
    with tempfile.TemporaryDirectory() as folder:
        for name in pages.values():
            content = files[name]
            if name.endswith('.html'):
                content = content.replace(b'<table>', b'<table border="1" cellspacing="0" cellpadding="3" width="100%">')
                content = re.sub(rb'(?<=<t[dh]>)<img ', b'<img width="600" ', content) # two beside each other
                content = re.sub(rb'<pre>(.*?)</pre>', rb'<pre><font size="-2">\1</font></pre>', content, flags=re.S)
            path = pathlib.Path(folder, name)
            path.parent.mkdir(exist_ok=True)
            path.write_bytes(content)
        subprocess.run(['htmldoc', *BOOK, '-f', 'book.pdf', *(pages[name] for name in chapters)], cwd=folder, check=True)
        content = pathlib.Path(folder, 'book.pdf').read_bytes()
    # Its identifier is a random one: that of the rest takes its place.
    start, identifiers, end = re.split(rb'(?<=/ID\[)(<[0-9a-f]{32}><[0-9a-f]{32}>)(?=\])', content)
    return start + b'<%s>' % hashlib.md5(start + end).hexdigest().encode() * 2 + end


def licence(package):
    return pathlib.Path('/usr/share/doc', package, 'copyright').read_bytes()


def contents(dist):
    """What the zip holds, by name."""
    files = {}
    for folder, patterns in PLACES.items():
        for pattern in patterns:
            for path in dist.glob(pattern + '/*' if pattern.endswith('**') else pattern):
                name = path.relative_to(dist).as_posix()
                # What a session leaves in its folder is nobody else's.
                if path.is_file() and (not name.startswith('data/') or (ROOT / name).is_file()):
                    files[f'{folder}/{name}'] = path.read_bytes()
    pages = documents()
    for source, target in pages.items():
        files[target] = page(source, pages) if source.endswith('.md') else (ROOT / source).read_bytes()
    files['Planfold.pdf'] = book(files, pages)
    for path in sorted((ROOT / 'sdk').rglob('*')):
        if path.is_file():
            files[path.relative_to(ROOT).as_posix()] = path.read_bytes()
    for name, package in LICENCES.items():
        files[f'licences/{name}.txt'] = licence(package)
    for script in SCRIPTS:
        files[f'selftest/{script}.script'] = (ROOT / 'tests/scripts' / f'{script}.script').read_bytes()
    for name, source in ('selftest.cmd', 'selftest.cmd'), ('CONTENTS.txt', 'contents.txt'):
        text = (ROOT / 'packaging' / source).read_text().replace('@scripts@', ' '.join(SCRIPTS))
        files[name] = text.replace('\n', '\r\n').encode()
    return files


def write(path, files):
    """The names in order, one time for all, and nothing of the machine."""
    stem = path.stem
    when = max(time.gmtime(int(os.environ['SOURCE_DATE_EPOCH']))[:6], (1980, 1, 1, 0, 0, 0))
    sums = ''.join(f'{hashlib.sha256(files[name]).hexdigest()}  {name}\n' for name in sorted(files))
    with zipfile.ZipFile(path, 'w') as target:
        for name, content in sorted({**files, 'SHA256SUMS': sums.encode()}.items()):
            entry = zipfile.ZipInfo(f'{stem}/{name}', when)
            entry.create_system = 0
            entry.external_attr = ORDINARY
            entry.compress_type = zipfile.ZIP_DEFLATED
            target.writestr(entry, content, compresslevel=9)


def main(build, dist, out):
    out = pathlib.Path(out)
    out.mkdir(parents=True)
    name = f'Planfold-{version()}-win64'
    write(out / f'{name}.zip', contents(pathlib.Path(dist)))
    symbols = pathlib.Path(build, 'symbols')
    write(out / f'{name}-symbols.zip', {path.name: path.read_bytes() for path in symbols.glob('*.debug')})


if __name__ == '__main__':
    main(*sys.argv[1:])

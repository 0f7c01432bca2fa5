#!/bin/sh
# debian.sh BUILD OUT: makes planfold-tools_<version>_<architecture>.deb in OUT from a build of the native-release preset.
# Needs SOURCE_DATE_EPOCH, the time that all files get.
set -eu
umask 022
root=$(cd "$(dirname "$0")/.." && pwd)
build=$1 out=$2
version=$(sed -n 's/^project(planfold VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
architecture=$(dpkg --print-architecture)
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
chmod 755 "$stage"
tree=$stage/tree

# page NAME COMMAND: the help of a program, dressed as its manual page.
page() {
    printf '.TH %s 1\n' "$(printf %s "$1" | tr a-z A-Z)"
    "$2" --help | sed -e 's/\\/\\e/g' -e 's/-/\\-/g' -e 's/^    //' -e "s/^\([.']\)/\\\\\&\1/" |
        awk '/^[A-Z][A-Z ]*$/ { if (NR > 1) print ".fi"; print ".SH " $0; print ".nf"; next } { print }'
}

install -d "$tree/usr/bin" "$tree/usr/share/man/man1" "$tree/usr/share/bash-completion/completions" \
    "$tree/usr/share/doc/planfold-tools" "$tree/DEBIAN" "$stage/debian"
for program in host/veskserver/veskserver tools/planfold-basket/planfold-basket; do
    install "$build/$program" "$tree/usr/bin"
    strip --strip-all "$tree/usr/bin/$(basename "$program")"
done
page veskserver "$tree/usr/bin/veskserver" >"$tree/usr/share/man/man1/veskserver.1"
install -m 644 "$root/tools/planfold-basket/planfold-basket.1" "$tree/usr/share/man/man1"
gzip -9n "$tree"/usr/share/man/man1/*.1
install -m 644 "$root/tools/planfold-basket/planfold-basket.bash" \
    "$tree/usr/share/bash-completion/completions/planfold-basket"
for package in nlohmann-json3-dev librapidxml-dev zlib1g-dev libssl-dev; do
    cat "/usr/share/doc/$package/copyright"
done >"$tree/usr/share/doc/planfold-tools/copyright"

printf 'Source: planfold\n\nPackage: planfold-tools\nArchitecture: any\n' >"$stage/debian/control"
depends=$(cd "$stage" && dpkg-shlibdeps -O tree/usr/bin/* | sed -n 's/^shlibs:Depends=//p')
cat >"$tree/DEBIAN/control" <<END
Package: planfold-tools
Version: $version
Architecture: $architecture
Maintainer: Planfold <planfold@localhost>
Depends: $depends
Section: misc
Priority: optional
Description: trading server and basket checker of Planfold
 veskserver is the trading server for several terminals of one machine;
 planfold-basket checks files of orders by the rules of the plug-in.
END
find "$tree" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
dpkg-deb --root-owner-group -Zxz --build "$tree" "$out/planfold-tools_${version}_$architecture.deb" >/dev/null

#!/bin/sh
# install.sh [LIST]: installs the packages of the list that this machine lacks; without one, what the build and the
# tests need. Debian's packages, nothing else.
set -eu
list=${1:-$(dirname "$0")/packages.txt}
missing=
while read -r package; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
done < "$list"
[ -n "$missing" ] || exit 0

echo "installing:$missing"
as_root=
[ "$(id -u)" = 0 ] || as_root=sudo
# Another installation may be under way. For the lists apt cannot wait itself.
for _ in $(seq 60); do
    ! $as_root apt-get update -q || break
    sleep 10
done
# shellcheck disable=SC2086
DEBIAN_FRONTEND=noninteractive $as_root apt-get -o DPkg::Lock::Timeout=600 install -q -y --no-install-recommends $missing

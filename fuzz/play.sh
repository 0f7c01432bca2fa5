#!/bin/sh
# play.sh NAME PROGRAM BUILD: one fuzzer for FUZZ_SECONDS (10) from its kept inputs. What it learns goes to the build
# folder, and so does the input of a finding, which its output names.
set -eu
name=$1 program=$2 build=$3
here=$(cd "$(dirname "$0")" && pwd)
words=$here/words/$name.dict
[ -f "$words" ] || words=
mkdir -p "$build/learnt/$name" "$build/findings"
exec "$program" -max_total_time="${FUZZ_SECONDS:-10}" -timeout=10 -max_len=4096 -verbosity=0 -print_final_stats=1 \
    -artifact_prefix="$build/findings/$name-" ${words:+-dict="$words"} "$build/learnt/$name" "$here/corpus/$name"

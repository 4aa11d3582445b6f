#!/bin/bash
# Fuzzes for a while and tells how many inputs were tried and what broke:
#
#   fuzz/run.sh SECONDS [bmp jpeg gif tiff png pnm webp raw headers texts]
#
# each of those for so many seconds, all of them unless some are named. What was learned stays in
# build/fuzz/corpus, so that the next run goes on from there; inputs that broke something are in
# build/fuzz/findings. A finding that is mended goes to fuzz/findings, where ./check runs it again.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
seconds=${1:?usage: fuzz/run.sh SECONDS [TARGET...]}
shift
targets=("$@")
((${#targets[@]})) || targets=(bmp jpeg gif tiff png pnm webp raw headers texts)

fuzz/libraries.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
top=$PWD/build/fuzz
programs=$top/fuzz
rm -rf "$top/seeds"
"$programs/MakeSeeds" "$top/seeds"
export ASAN_OPTIONS=allocator_may_return_null=1:detect_leaks=1
export UBSAN_OPTIONS=print_stacktrace=1
# FreeImage forgets the table of rows (eight bytes each) of a PNG file that is damaged.
echo 'leak:PluginPNG.cpp' >"$top/known-leaks"
export LSAN_OPTIONS=suppressions=$top/known-leaks:print_suppressions=0

findings=0
for target in "${targets[@]}"; do
    program=FuzzImage seeds=("$top/seeds/$target") longest=8192
    case $target in
    headers) program=FuzzHeaders seeds=("$top"/seeds/{gif,jpeg,png,tiff}) ;;
    texts) program=FuzzTexts ;;
    esac
    corpus=$top/corpus/$target
    log=$top/$target.log
    mkdir -p "$corpus" "$top/findings"
    # Children do the work, so that one that dies or hangs does not end the run.
    "$programs/$program" -fork=1 -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1 \
        -timeout=10 -rss_limit_mb=3000 -malloc_limit_mb=1500 -max_len=$longest \
        -max_total_time="$seconds" -artifact_prefix="$top/findings/$target-" \
        "$corpus" "${seeds[@]}" >"$log" 2>&1 || true
    # "#1234: cov: ..." counts the inputs tried so far.
    tried=$(sed -n 's/^#\([0-9]*\): cov: .*/\1/p' "$log" | tail -n 1)
    broken=$(find "$top/findings" -name "$target-*" | wc -l)
    findings=$((findings + broken))
    printf '%-8s %10s inputs, %s findings\n' "$target" "${tried:-0}" "$broken"
done
exit $((findings > 0))

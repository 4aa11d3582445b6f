#!/bin/bash
# Checks of the sources and of what was built from them:
#
#   lint.sh format    layout of all C++ files is what .clang-format says (lint.sh fix makes it so)
#   lint.sh tidy      clang-tidy over what the release build compiles; clean files are remembered
#   lint.sh tuned     objects for special instruction sets share no inline function with others
#   lint.sh imports   Windows programs need nothing that Windows does not bring
#   lint.sh run       ./run passes arguments, folder and exit code on and keeps quiet

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# All C++ files of ours, tracked or not yet.
Sources()
{
    find . -path ./build -prune -o -name .git -prune -o \
        \( -name '*.cpp' -o -name '*.h' -o -name '*.inl' \) -print0
}

CheckFormat() { Sources | xargs -0 clang-format-14 --dry-run -Werror; }

FixFormat() { Sources | xargs -0 clang-format-14 -i; }

# A file that was clean stays clean while it, our headers, the flags and the checks are the same.
CheckTidy()
{
    local commands=build/release/compile_commands.json common
    mkdir -p build/check/tidy
    common=$({ cat .clang-tidy "$commands"; Sources | grep -z '\.\(h\|inl\)$' | sort -z | xargs -0 cat; } |
        sha256sum | cut -c 1-16)
    export common
    sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$commands" | grep -v '^/usr/' |
        xargs -P "$(nproc)" -n 1 "$0" tidy-one
}

TidyOne()
{
    local file=${1#"$PWD/"} name stamp
    name=${file//\//-}
    stamp=build/check/tidy/$name
    [[ -f $stamp && $(<"$stamp") == "$common $(sha256sum "$file")" ]] && return
    # Warnings are chosen for the other compiler, which knows some that clang does not.
    clang-tidy-14 --quiet -p build/release --extra-arg=-Wno-unknown-warning-option \
        --extra-arg=-Wno-ignored-optimization-argument "$file" 2>"$stamp.err" ||
        { cat "$stamp.err" >&2; return 1; }
    rm -f "$stamp.err"
    echo "$common $(sha256sum "$file")" >"$stamp"
}

# An inline function that the linker keeps once may be kept in its tuned form, and then the program
# dies on a processor without these instructions. Weak symbols are such functions.
CheckTuned()
{
    local object weak failed=0 count=0
    while IFS= read -r -d '' object; do
        count=$((count + 1))
        weak=$(nm --defined-only -C "$object" | grep -E ' [WVu] ' || true)
        if [[ -n $weak ]]; then
            echo "${object##*/} shares inline functions with untuned code:" >&2
            echo "$weak" >&2
            failed=1
        fi
    done < <(find build/release -regex '.*_\(avx2\|avx512\)\.cpp\.o' -print0)
    ((count)) || { echo "no tuned objects found" >&2; return 1; }
    return $failed
}

CheckImports()
{
    local program name failed=0 count=0
    while IFS= read -r -d '' program; do
        count=$((count + 1))
        for name in $(x86_64-w64-mingw32-objdump -p "$program" | sed -n 's/.*DLL Name: //p'); do
            case ${name,,} in
            libg* | libstdc* | libwinpthread* | libssp* | zlib* | libgomp*)
                echo "${program##*/} needs $name" >&2
                failed=1
                ;;
            esac
        done
    done < <(find build/windows -name '*.exe' -not -path '*/CMakeFiles/*' -print0)
    ((count)) || { echo "no Windows programs found" >&2; return 1; }
    return $failed
}

CheckRun()
{
    local root=$PWD folder status=0 said
    folder=$(mktemp -d)
    trap 'rm -rf "$folder"' RETURN
    cd "$folder"
    "$root/run" --version >version 2>said || { echo "run --version fails" >&2; return 1; }
    [[ -s version && ! -s said ]] || { echo "run is not quiet: $(<said)" >&2; return 1; }
    "$root/run" no-such-command >/dev/null 2>&1 || status=$?
    ((status == 2)) || { echo "exit code $status instead of 2" >&2; return 1; }
    "$root/run" sample --quiet --out-dir here --width 60 --height 40 --frames 2
    said=$(ls here)
    [[ $said == *sample_1.jpg* ]] || { echo "relative paths went elsewhere: $said" >&2; return 1; }
}

case ${1:-} in
format) CheckFormat ;;
fix) FixFormat ;;
tidy) CheckTidy ;;
tidy-one) TidyOne "$2" ;;
tuned) CheckTuned ;;
imports) CheckImports ;;
run) CheckRun ;;
*)
    sed -n '2,/^$/s/^# \{0,1\}//p' "$0" >&2
    exit 2
    ;;
esac

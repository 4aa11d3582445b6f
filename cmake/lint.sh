#!/bin/bash
# Checks of the sources and of what was built from them:
#
#   lint.sh format    layout of all C++ files is what .clang-format says (lint.sh fix makes it so)
#   lint.sh tidy      clang-tidy over what is compiled here and, of the rest, for Windows; clean files
#                     are remembered
#   lint.sh analyze   the same with clang's analyzer, which takes long: by hand only
#   lint.sh tuned     objects for special instruction sets share no inline function with others
#   lint.sh imports   Windows programs import from libraries that Windows brings, and no others
#   lint.sh layers    who includes whom is what layers.txt says; what a header promises is beside it
#   lint.sh functions no function is longer than 60 lines
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

# Clang-tidy over what is compiled for this machine, and for Windows over the rest. A file that was
# clean stays clean while it, what it includes of ours, its flags and the checks are the same.
Tidy()
{
    local preset
    mkdir -p build/check/"$1"
    for preset in release windows; do
        WriteIncluded $preset >build/check/"$1"/included-$preset
    done
    {
        CompiledFiles release | sed 's/^/release /'
        comm -13 <(CompiledFiles release) <(CompiledFiles windows) | sed 's/^/windows /'
    } | xargs -P "$(nproc)" -n 2 "$0" tidy-one "$1"
}

CompiledFiles()
{
    sed -n "s|^ *\"file\": \"$PWD/\(.*\.cpp\)\",\{0,1\}\$|\1|p" "build/$1/compile_commands.json" | sort -u
}

# A line for each object of a build: its source and what that includes of ours, from the build's log.
WriteIncluded()
{
    ninja -C "build/$1" -t deps | awk '
        /^[^ ]/ { if (line != "") print line; line = "" }
        /^ +\.\.\/\.\.\// { sub(/^ +\.\.\/\.\.\//, ""); line = line (line == "" ? "" : " ") $0 }
        END { if (line != "") print line }'
}

# What clang needs to read what the other compiler compiles for Windows.
WindowsOptions()
{
    echo --extra-arg=--target=x86_64-w64-mingw32 --extra-arg=-nostdinc++
    # Without the folders of the compiler's own headers, which clang has its own of.
    x86_64-w64-mingw32-g++-posix -E -x c++ -v /dev/null 2>&1 |
        sed -n '/^#include <\.\.\.>/,/^End/s/^ //p' | grep -v '^[^.]*/include\(-fixed\)\?$' |
        sed 's/^/--extra-arg=-isystem/'
}

# Arguments: tidy or analyze, preset, file.
TidyOne()
{
    local kind=$1 preset=$2 file=$3 stamp state included options=() checks=
    stamp=build/check/$kind/${file//\//-}
    # Warnings are chosen for the other compiler, which knows some that clang does not.
    options=(--extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-ignored-optimization-argument)
    if [[ $preset == windows ]]; then
        mapfile -t -O 2 options < <(WindowsOptions | tr ' ' '\n')
        # Messages carry pointers in integers, and a constant handle is meant to be one.
        checks=-performance-no-int-to-ptr,-misc-misplaced-const
    fi
    if [[ $kind == analyze ]]; then
        checks=-*,clang-analyzer-*
    fi
    # A file that is not built yet may include anything.
    included=$(grep -m 1 "^$file " "build/check/$kind/included-$preset") ||
        included=$(Sources | grep -z '\.\(h\|inl\)$' | xargs -0)
    state=$({
        echo "$checks ${options[*]}"
        grep -F -B 2 "\"file\": \"$PWD/$file\"" "build/$preset/compile_commands.json"
        cat .clang-tidy "$file"
        tr ' ' '\n' <<<"$included" | { grep '^[^/]' || true; } | xargs -r sha256sum 2>&1 || true
    } | sha256sum)
    [[ -f $stamp && $(<"$stamp") == "$state" ]] && return
    clang-tidy-14 --quiet -p "build/$preset" "--checks=$checks" \
        "${options[@]}" "$file" 2>"$stamp.err" || { cat "$stamp.err" >&2; return 1; }
    rm -f "$stamp.err"
    echo "$state" >"$stamp"
}

# Objects of a build that are compiled for more than the processors that every user has.
TunedObjects()
{
    sed -nE '/"command".* -m(avx|sse[34]|fma|bmi|f16c|arch)/s/.* -o ([^ ]*) .*/\1/p' \
        "build/$1/compile_commands.json" | sed "s|^|build/$1/|"
}

# Functions of an object of which the linker keeps one copy out of many: weak symbols here, sections
# of the kind COMDAT for Windows. Pointers to other files' data are such sections, too, but hold no
# instructions.
SharedFunctions()
{
    case $1 in
    *.obj) x86_64-w64-mingw32-objdump -h "$1" | sed -n '/CODE.*COMDAT/s/.*COMDAT \([^ ]*\).*/\1/p' |
        c++filt ;;
    *) nm --defined-only -C "$1" | grep -E ' [WVu] ' || true ;;
    esac
}

# An inline function that the linker keeps once may be kept in its tuned form, and then the program
# dies on a processor without these instructions.
CheckTuned()
{
    local preset object shared failed=0 count
    for preset in release windows; do
        count=0
        while read -r object; do
            count=$((count + 1))
            shared=$(SharedFunctions "$object")
            if [[ -n $shared ]]; then
                echo "$object shares inline functions with untuned code:" >&2
                echo "$shared" >&2
                failed=1
            fi
        done < <(TunedObjects $preset)
        ((count)) || { echo "no tuned objects found in build/$preset" >&2; return 1; }
    done
    return $failed
}

# What every Windows since 7 has in its system folder. Everything else would have to be brought along.
systemLibraries=' comctl32.dll comdlg32.dll gdi32.dll gdiplus.dll kernel32.dll msvcrt.dll ntdll.dll
    ole32.dll shell32.dll user32.dll uxtheme.dll ws2_32.dll '

CheckImports()
{
    local program name names failed=0 count=0
    while IFS= read -r -d '' program; do
        count=$((count + 1))
        names=$(x86_64-w64-mingw32-objdump -p "$program" | sed -n 's/.*DLL Name: //p')
        # A program that imports nothing was not understood.
        [[ -n $names ]] || { echo "no imports found in ${program##*/}" >&2; failed=1; }
        for name in $names; do
            if [[ $systemLibraries != *[[:space:]]"${name,,}"[[:space:]]* ]]; then
                echo "${program##*/} needs $name" >&2
                failed=1
            fi
        done
    done < <(find build/windows -name '*.exe' -not -path '*/CMakeFiles/*' -print0)
    ((count)) || { echo "no Windows programs found" >&2; return 1; }
    return $failed
}

# Facts about all C++ files; see sources.awk.
Facts() { Sources | sed -z 's|^\./||' | sort -z | xargs -0 awk -f cmake/sources.awk; }

CheckLayers() { Facts | awk -f cmake/layers.awk cmake/layers.txt -; }

# Lines of a function, from its head to its closing brace.
longestFunction=60

CheckFunctions()
{
    Facts | awk -v most=$longestFunction '
        $1 == "function" { ++count }
        $1 == "puzzle" { print $2 ": braces do not pair"; ++tooLong }
        $1 == "function" && $4 > most { print $2 ":" $3 ": " $5 " has " $4 " lines"; ++tooLong }
        END { if (!count) print "no functions found"; exit !count || tooLong }' >&2
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
tidy | analyze) Tidy "$1" ;;
tidy-one) TidyOne "$2" "$3" "$4" ;;
tuned) CheckTuned ;;
imports) CheckImports ;;
layers) CheckLayers ;;
functions) CheckFunctions ;;
run) CheckRun ;;
*)
    sed -n '2,/^$/s/^# \{0,1\}//p' "$0" >&2
    exit 2
    ;;
esac

#!/bin/bash
# Builds libraries that Debian does not bring as packages, from Debian's source packages:
#
#   deps.sh windows       the picture libraries, colour profiles and oneTBB, for MinGW-w64
#   deps.sh tsan          oneTBB for this machine, built with the thread sanitizer
#   deps.sh path SET      only says where the set is, or would be
#
# They go into a cache outside the tree, PLENOVIZ_CACHE or plenoviz in the user's cache folder, under
# a name that changes with the recipe and the compiler. A folder appears there when it is complete.
# What the machine's apt is set up with stays as it is; its own source entry is read, not written.

set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cache=${PLENOVIZ_CACHE:-${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/plenoviz}
jobs=$(nproc)

# What a set is made of, apart from the sources: any change gives it a new folder.
RecipeKey()
{
    local files=("$here/deps.sh") compiler=g++
    if [[ $1 == windows ]]; then
        files+=("$here"/mingw-w64.cmake "$here"/freeimage/* "$here"/libraw/* "$here"/lcms2/*)
        compiler=x86_64-w64-mingw32-g++-posix
    fi
    { cat "${files[@]}"; "$compiler" -dumpfullversion; } | sha256sum | cut -c 1-16
}

Prefix() { echo "$cache/$1-$(RecipeKey "$1")"; }

# A private apt that knows Debian's source packages. Only entries of Debian's own are taken:
# other sources of packages often have no such part.
SetUpApt()
{
    local apt=$cache/apt entry
    mkdir -p "$apt/parts" "$apt/lists/partial" "$apt/archives/partial"
    rm -f "$apt"/parts/*
    for entry in /etc/apt/sources.list.d/debian*.sources; do
        [[ -f $entry ]] && sed 's/^Types:.*/Types: deb-src/' "$entry" >"$apt/parts/${entry##*/}"
    done
    for entry in /etc/apt/sources.list /etc/apt/sources.list.d/debian*.list; do
        [[ -f $entry ]] || continue
        sed -n 's/^deb\(-src\)\?[[:space:]]/deb-src /p' "$entry" >"$apt/parts/$(basename "$entry" .list).list"
    done
    aptOptions=(-q -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$apt/parts"
        -o Dir::State::Lists="$apt/lists" -o Dir::Cache::Archives="$apt/archives"
        -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache=
        -o APT::Sandbox::User=root -o Acquire::Retries=3)
    apt-get "${aptOptions[@]}" update
}

# Unpacks the newest version of a source package that can be fetched; a version that has just been
# announced is not always there yet. Sets `sourceFolder`.
Fetch()
{
    local name=$1 version
    local -a versions
    mapfile -t versions < <(apt-cache "${aptOptions[@]}" showsrc "$name" |
        sed -n "/^Package: $name\$/,/^\$/s/^Version: //p" | sort -rVu)
    for version in "${versions[@]}"; do
        mkdir -p "$work/$name" && cd "$work/$name"
        if apt-get "${aptOptions[@]}" source "$name=$version" </dev/null; then
            sourceFolder=$(find "$work/$name" -mindepth 1 -maxdepth 1 -type d)
            echo "$name $version" >>"$stage/versions.txt"
            # The notices of the packages are made of these.
            install -D -m 644 "$sourceFolder/debian/copyright" "$stage/share/doc/$name/copyright"
            return
        fi
        rm -rf "${work:?}/$name"
    done
    echo "deps.sh: no version of the source package $name could be fetched" >&2
    return 1
}

# Configures, builds and installs one CMake project into the staging folder.
Build()
{
    local name=$1 source=$2
    shift 2
    cmake -G Ninja -S "$source" -B "$work/$name-build" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_C_FLAGS_RELEASE="-O2 -DNDEBUG" -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG" \
        -DCMAKE_INSTALL_PREFIX="$stage" -DBUILD_SHARED_LIBS=OFF "$@"
    cmake --build "$work/$name-build" -j"$jobs"
    cmake --install "$work/$name-build"
}

# Runs a command with its output in a log, whose name says "failed" until the command has done its
# work. (A test for success here would switch `set -e` off in all that the command calls.)
Logged()
{
    local log=$logs/$1.log
    shift
    "$@" >"$log.failed" 2>&1
    mv "$log.failed" "$log"
}

# Fetches a source package and builds it, telling what takes the time.
Step()
{
    local name=$1 started=$SECONDS
    shift
    Logged "$name-source" Fetch "$name"
    Logged "$name" "$@"
    printf '    %-14s %3d s\n' "$name" $((SECONDS - started)) >&2
}

BuildWindows()
{
    local mingw=/usr/x86_64-w64-mingw32
    local common=(-DCMAKE_TOOLCHAIN_FILE="$here/mingw-w64.cmake" -DCMAKE_FIND_ROOT_PATH="$stage"
        -DCMAKE_PREFIX_PATH="$stage" -DZLIB_LIBRARY="$mingw/lib/libz.a" -DZLIB_INCLUDE_DIR="$mingw/include")

    Jpeg() { Build jpeg "$sourceFolder" "${common[@]}" -DENABLE_SHARED=OFF -DWITH_TURBOJPEG=OFF -DREQUIRE_SIMD=ON; }
    Png() { Build png "$sourceFolder" "${common[@]}" -DPNG_SHARED=OFF -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF; }
    Tiff()
    {
        local codec off=(tools tests contrib docs opengl)
        off=("${off[@]/#/-Dtiff-}")
        for codec in cxx jbig jpeg12 libdeflate; do
            off+=("-D$codec")
        done
        Build tiff "$sourceFolder" "${common[@]}" "${off[@]/%/=OFF}" -Dzlib=ON -Djpeg=ON -Dlzw=ON \
            -Dlzma=ON -Dzstd=ON -Dlerc=ON -Dwebp=ON \
            -DCMAKE_C_FLAGS_RELEASE="-O2 -DNDEBUG -DLERC_STATIC -DLZMA_API_STATIC"
        # A codec that is not found is left out without a word.
        for codec in LZMA ZSTD LERC WEBP; do
            grep -q "define ${codec}_SUPPORT 1" "$work/tiff-build/libtiff/tif_config.h"
        done
    }
    Webp()
    {
        local tool off=()
        for tool in ANIM_UTILS CWEBP DWEBP GIF2WEBP IMG2WEBP VWEBP WEBPINFO WEBPMUX EXTRAS; do
            off+=("-DWEBP_BUILD_$tool=OFF")
        done
        Build webp "$sourceFolder" "${common[@]}" "${off[@]}"
    }
    # What TIFF files are packed with, besides the above.
    Zstd()
    {
        Build zstd "$sourceFolder/build/cmake" "${common[@]}" -DZSTD_BUILD_PROGRAMS=OFF \
            -DZSTD_BUILD_SHARED=OFF -DZSTD_MULTITHREAD_SUPPORT=OFF -DZSTD_LEGACY_SUPPORT=OFF
    }
    Xz() { Build xz "$sourceFolder" "${common[@]}" -DENABLE_NLS=OFF -DENABLE_THREADS=OFF; }
    Lerc() { Build lerc "$sourceFolder" "${common[@]}" -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG -DLERC_STATIC"; }
    Profiles() { Build lcms2 "$here/lcms2" "${common[@]}" -DLCMS2_SOURCES="$sourceFolder"; }
    Imath() { Build imath "$sourceFolder" "${common[@]}" -DBUILD_TESTING=OFF; }
    Raw() { Build raw "$here/libraw" "${common[@]}" -DLIBRAW_SOURCES="$sourceFolder"; }
    FreeImage() { Build freeimage "$here/freeimage" "${common[@]}" -DFREEIMAGE_SOURCES="$sourceFolder"; }
    Tbb() { Build tbb "$sourceFolder" "${common[@]}" "${tbbOptions[@]}"; }

    # Two chains at a time: each spends half its time in configure checks, one compiler at a time.
    # A failure in either ends the script.
    (Step libjpeg-turbo Jpeg; Step libraw Raw) &
    local first=$!
    Step libpng1.6 Png
    Step libwebp Webp
    Step libzstd Zstd
    Step xz-utils Xz
    Step lerc Lerc
    Step lcms2 Profiles
    Step imath Imath
    Step onetbb Tbb
    wait $first
    Step tiff Tiff
    Step freeimage FreeImage
}

BuildTsan()
{
    Tbb() { Build tbb "$sourceFolder" "${tbbOptions[@]}" -DCMAKE_CXX_FLAGS="-fsanitize=thread -g1"; }
    Step onetbb Tbb
}

tbbOptions=(-DTBB_TEST=OFF -DTBB_STRICT=OFF -DTBB_ENABLE_IPO=OFF -DTBBMALLOC_BUILD=OFF
    -DTBB_DISABLE_HWLOC_AUTOMATIC_SEARCH=ON)

set_=${1:-}
if [[ $set_ == path ]]; then
    Prefix "$2"
    exit
fi
[[ $set_ == windows || $set_ == tsan ]] || { echo "deps.sh: windows, tsan or path SET" >&2; exit 2; }

prefix=$(Prefix "$set_")
[[ -d $prefix ]] && exit 0
mkdir -p "$cache"
exec 8>"$cache/lock"
flock 8
[[ -d $prefix ]] && exit 0

work=$(mktemp -d "$cache/work.XXXXXX")
stage=$work/stage
logs=$cache/log-$set_
rm -rf "$logs"
mkdir -p "$stage" "$logs"

# Whatever ends the script early has its log shown; the half-built folder goes in any case.
Finish()
{
    local status=$? newest
    wait
    rm -rf "$work"
    if ((status)); then
        newest=$(find "$logs" -name '*.failed' | head -n 1)
        [[ -n $newest ]] && tail -n 30 "$newest" >&2
        echo "deps.sh: failed, see $logs" >&2
    fi
}
trap Finish EXIT

echo "Building libraries from Debian's sources ($set_), details in $logs" >&2
Logged apt SetUpApt
case $set_ in
windows) BuildWindows ;;
tsan) BuildTsan ;;
esac
mv "$stage" "$prefix"

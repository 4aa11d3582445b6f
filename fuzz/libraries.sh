#!/bin/bash
# Builds FreeImage, the TIFF and the raw library with clang and its address sanitizer, from Debian's
# source packages, so that the fuzzer sees their branches and every wrong access inside of them:
#
#   fuzz/libraries.sh          builds them, unless they are there
#   fuzz/libraries.sh path     only says where they are, or would be
#
# Debian's own builds stay what the program uses. The sources come through the private apt that
# cmake/deps.sh sets up, so `cmake/deps.sh windows` has to have run once.

set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cache=${PLENOVIZ_CACHE:-${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/plenoviz}
recipes=("$here/libraries.sh" "$here"/../cmake/freeimage/* "$here"/../cmake/libraw/*)
prefix=$cache/fuzz-$(cat "${recipes[@]}" | sha256sum | cut -c 1-16)
[[ ${1:-} == path ]] && { echo "$prefix"; exit; }
[[ -d $prefix ]] && exit 0

needed=(clang libjpeg-dev libpng-dev libwebp-dev libimath-dev zlib1g-dev dpkg-dev)
dpkg-query -W "${needed[@]}" >/dev/null 2>&1 || { apt-get update && apt-get install -y "${needed[@]}"; }

work=$(mktemp -d "$cache/work.XXXXXX")
trap 'rm -rf "$work"' EXIT
stage=$work/stage
apt=$cache/apt
options=(-q -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$apt/parts"
    -o Dir::State::Lists="$apt/lists" -o Dir::Cache::Archives="$apt/archives"
    -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache= -o APT::Sandbox::User=root)

# The newest version that can be fetched: one that has just been announced is not always there yet.
Fetch()
{
    local version
    mkdir "$work/$1" && cd "$work/$1"
    for version in $(apt-cache "${options[@]}" showsrc "$1" | sed -n 's/^Version: //p' | sort -rV); do
        apt-get "${options[@]}" source "$1=$version" && break
        rm -rf "${work:?}/$1"/*
    done
    source=$(find "$work/$1" -mindepth 1 -maxdepth 1 -type d)
}

Build()
{
    local name=$1 recipe=$2
    shift 2
    cmake -G Ninja -S "$recipe" -B "$work/$name-build" -DCMAKE_BUILD_TYPE=None \
        -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
        -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" \
        -DCMAKE_INSTALL_PREFIX="$stage" -DCMAKE_PREFIX_PATH="$stage" -DBUILD_SHARED_LIBS=OFF "$@"
    cmake --build "$work/$name-build"
    cmake --install "$work/$name-build"
}

flags="-O1 -g1 -fsanitize=fuzzer-no-link,address"
off=()
for part in tools tests contrib docs opengl; do off+=("-Dtiff-$part=OFF"); done
for part in cxx jbig jpeg12 lerc libdeflate lzma webp zstd; do off+=("-D$part=OFF"); done
Fetch tiff
Build tiff "$source" "${off[@]}"
Fetch libraw
Build raw "$here/../cmake/libraw" -DLIBRAW_SOURCES="$source" -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON
Fetch freeimage
flags+=" -I/usr/include/Imath"
Build freeimage "$here/../cmake/freeimage" -DFREEIMAGE_SOURCES="$source"
mv "$stage" "$prefix"

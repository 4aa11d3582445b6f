#!/bin/bash
# Turns the texts (UTF-8, line feeds) into UTF-16 with a byte order mark and Windows line ends:
# `make_texts.sh source target`.

set -euo pipefail
{
    printf '\xff\xfe'
    sed 's/$/\r/' "$1" | iconv -f UTF-8 -t UTF-16LE
} >"$2"

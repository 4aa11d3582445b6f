#!/bin/bash
# Looks through the texts of all languages, and through what the build makes of them:
# `texts_check.sh res-folder`. English, the first, is what the others are measured by.

set -euo pipefail
source=$1/Plenoviz_loc.ini
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# Nothing gets lost on the way to UTF-16.
"$1/make_texts.sh" "$source" "$scratch/texts.ini"
[[ $(od -An -tx1 -N2 "$scratch/texts.ini") == ' ff fe' ]] || { echo "no byte order mark"; exit 1; }
tail -c +3 "$scratch/texts.ini" | iconv -f UTF-16LE -t UTF-8 | sed 's/\r$//' | cmp - "$source"

# Byte by byte, so that it does the same in every locale.
LC_ALL=C awk '
# Words that may be the same as in English, per language; * is for all.
BEGIN {
    split("*:45 *:76 fr:10 fr:44 it:4 es:40 nl:6 nl:109", same)
    for (i in same)
        isSame[same[i]] = 1
    # Names, keys and formats are the same everywhere, as often as in English.
    marks = "Vexa|Light|Ctrl\\+[A-Z]|F[0-9]+|\\([+-]\\)|[0-9]+%|%[a-zA-Z]|&|\\\\t|JPEG|TIFF|PNG|Notices"
}
function Complain(what) { print FILENAME ":" FNR ": " what; failed = 1 }

# The marks of a text, sorted: languages put their words in an order of their own.
function MarksOf(text,    found, n, i, j, word, all) {
    sub(/Jpeg/, "JPEG", text)
    while (match(text, marks)) {
        found[++n] = substr(text, RSTART, RLENGTH)
        text = substr(text, RSTART + RLENGTH)
    }
    for (i = 2; i <= n; ++i)
        for (j = i; j > 1 && found[j - 1] > found[j]; --j) {
            word = found[j]; found[j] = found[j - 1]; found[j - 1] = word
        }
    for (i = 1; i <= n; ++i)
        all = all " " found[i]
    return all
}
# What a text begins and ends with: quoted blanks, a colon, the dots of a command.
function EndsOf(text,    head, tail) {
    head = match(text, /^" +/) ? substr(text, 1, RLENGTH) : ""
    tail = match(text, / +"$/) ? substr(text, RSTART) : ""
    text = substr(text, 1, length(text) - length(tail))
    return head "|" (match(text, /(:| ?\.\.\.)$/) ? substr(text, RSTART) : "") tail
}
function EndLanguage() {
    if (section >= 0 && (count != english || seen["Language"] != section + 1 ||
                         seen["Acronym"] != section + 1))
        Complain("language " section " has " count " texts, English has " english)
}
function CheckText(number, text,    plain) {
    if (text == value[number] && !("*:" number in isSame) && !(acronym ":" number in isSame))
        Complain("still English: " number " " text)
    if (MarksOf(text) != MarksOf(value[number]))
        Complain("other names or keys:" MarksOf(text) " for" MarksOf(value[number]))
    if (EndsOf(text) != EndsOf(value[number]))
        Complain("ends otherwise: " EndsOf(text) " for " EndsOf(value[number]))
    if (text == "" && value[number] != "")
        Complain("empty: " number)
    # Commands and buttons that differ in English must not look alike, such as Cancel and Abort.
    if (text != "" && (acronym, text) in owner && value[owner[acronym, text]] != value[number])
        Complain("the same as " owner[acronym, text] ": " text)
    owner[acronym, text] = number
    # Where letters are others, each Latin one is a word that was forgotten.
    plain = text
    gsub(marks "|OK|Shift", "", plain)
    if (acronym ~ /ru|uk|ja|zh/ && plain ~ /[A-Za-z]/)
        Complain("Latin letters: " plain)
    if (acronym == "ru" && text ~ /і|ї|є|ґ/ || acronym == "uk" && text ~ /ы|э|ё|ъ/)
        Complain("letters of another language: " text)
}
BEGIN { section = -1 }
/^;/ || /^$/ { next }
/[ \t]$/ || /[^"]  / { Complain("blanks that nobody sees") }
/^\[General\]$/ { next }
/^Languages No=/ { announced = substr($0, 14) + 0; next }
/^Language Current=0$/ { next }
/^\[[0-9]+\]$/ {
    EndLanguage()
    count = 0
    if (substr($0, 2) + 0 != ++section)
        Complain("languages are numbered in order")
    next
}
/^Language=./ || /^Acronym=./ {
    key = substr($0, 1, index($0, "=") - 1)
    if (key == "Acronym")
        acronym = substr($0, 9)
    ++seen[key]
    if (known[$0]++)
        Complain("two languages of one name: " $0)
    next
}
/^string[0-9]+=/ {
    number = substr($0, 7) + 0
    text = substr($0, index($0, "=") + 1)
    ++count
    if (section == 0) {
        order[++english] = number
        value[number] = text
    }
    else if (order[count] != number)
        Complain("string" number " where English has string" order[count])
    else
        CheckText(number, text)
    if (length(text) > 1023)
        Complain("too long: " number)
    next
}
{ Complain("unknown line: " $0) }
END {
    EndLanguage()
    if (section + 1 != announced || !english)
        Complain(section + 1 " languages, " announced " announced, " english " texts")
    exit failed
}' "$source"

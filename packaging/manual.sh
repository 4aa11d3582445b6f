#!/bin/bash
# The manual page, `manual.sh PROGRAM <plenoviz-cli.1`: each line `@OPTIONS COMMAND@` becomes the options
# of that command that the page has not described yet, in the words of its help.

set -euo pipefail
program=$1
page=$(cat)
described=$(sed -n '/^\.TP$/{n;p}' <<<"$page" | sed 's/\\-/-/g')

# The options of a command, one a line: name, tab, what its value is called or a dash, tab, its text.
Options()
{
    "$program" "$1" --help | awk '
        function Flush() { if (name) print name "\t" (value ? value : "-") "\t" text; name = "" }
        /^Options:/ { inside = 1; next }
        !inside || /^$/ { Flush(); inside = 0; next }
        match($0, /--[a-z-]+( [A-Z][A-Z,]*)?/) && /^ +(-[a-z], )?--/ {
            Flush()
            split(substr($0, RSTART, RLENGTH), label, " ")
            name = label[1]; value = label[2]; text = substr($0, RSTART + RLENGTH)
            sub(/^ +/, "", text)
            next
        }
        { sub(/^ +/, ""); text = text (text ? " " : "") $0 }
        END { Flush() }'
}

while IFS= read -r line; do
    if [[ ! $line =~ ^@OPTIONS\ ([a-z-]+)@$ ]]; then
        printf '%s\n' "$line"
        continue
    fi
    options=$(Options "${BASH_REMATCH[1]}")
    while IFS=$'\t' read -r name value text; do
        grep -qE -- "(^|[^a-z-])$name([^a-z-]|\$)" <<<"$described" && continue
        described+=$'\n'$name
        heading=${name//-/\\-}
        if [[ $value == - ]]; then heading=".B $heading"; else heading=".BI $heading \" $value\""; fi
        printf '.TP\n%s\n%s.\n' "$heading" "${text^}"
    done <<<"$options"
done <<<"$page"

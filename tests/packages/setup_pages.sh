#!/bin/bash
# Photographs the pages of installer and uninstaller in all languages, for eyes to judge:
#
#   setup_pages.sh [LANGUAGE...]    such as de_DE; all fifteen unless some are named
#
# One sheet for each page lands in out/setup/. The setup takes the language of the user, so each
# language gets a locale of its own, made for the time of the run. What the components page says of
# a component shows while the mouse is over it.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../../cmake/screen.sh"
trap ScreenDown EXIT
languages=("$@")
((${#languages[@]})) || languages=(en_US de_DE fr_FR es_ES it_IT pt_BR nl_NL pl_PL cs_CZ sv_SE tr_TR
    ru_RU uk_UA ja_JP zh_CN)
pages=$root/out/setup
setupPid='' page=''

Settle() { sleep "${1:-0.4}"; }
Expect() { Until "$@" || { echo "$language: never: $*" >&2; return 1; }; }
HasWindow() { page=$(xdotool search --onlyvisible --name Plenoviz 2>/dev/null | tail -n 1); [[ $page ]]; }
HasChanged() { [[ $(ScreenSum) != "$last" ]]; }
IsStill() { local sum; sum=$(ScreenSum); Settle; [[ $(ScreenSum) == "$sum" ]]; }
Keep()
{
    Expect IsStill
    import -window "$page" "$pages/$1-$language.png"
    last=$(ScreenSum)
}
Next()
{
    xdotool windowfocus "$page" key Return
    Expect HasChanged
}
# The pages have the size of their language's font.
Hover() # COMPONENT, from 0
{
    local width height
    eval "$(xdotool getwindowgeometry --shell "$page" | sed -n 's/^WIDTH=/width=/p; s/^HEIGHT=/height=/p')"
    # Into the line by a second step: the first one may be what brings the mouse into the list.
    xdotool mousemove --window "$page" $((width / 2)) $((height * (411 + 43 * $1) / 1000))
    xdotool mousemove_relative 3 0
    Settle
}

# Starts one of the two programs in that language.
Start()
{
    xdotool mousemove 1270 890
    LC_ALL=$language.UTF-8 wine "$@" </dev/null >/dev/null 2>&1 &
    setupPid=$!
    Expect HasWindow
}
Stop()
{
    kill "$setupPid" 2>/dev/null || true
    wait "$setupPid" 2>/dev/null || true
    setupPid=''
    wineserver -w
}

Install()
{
    Start "$packages"/*-setup.exe
    Keep 1-welcome
    Next
    for ((i = 0; i < 4; i++)); do
        Hover $i
        Keep "2-components-$i"
    done
    Next
    Keep 3-folder
    Next
    Expect IsStill
    Settle 2
    Keep 4-finish
    Stop
}
Remove()
{
    Start "$installed/Uninstall.exe" "_?=$(wine winepath -w "$installed" 2>/dev/null | tr -d '\r')"
    Keep 5-remove
    Next
    for ((i = 0; i < 2; i++)); do
        Hover $i
        Keep "6-remove-components-$i"
    done
    Next
    Settle 2
    Keep 7-removed
    Stop
}

packages=$scratch/packages
"$root/package" --out-dir "$packages" windows >/dev/null
mkdir -p "$pages" "$scratch/locales"
export LOCPATH=$scratch/locales
for language in "${languages[@]}"; do
    localedef -i "$language" -f UTF-8 "$LOCPATH/$language.UTF-8"
done
ScreenFolder packages
# Fonts that only Windows has; their stand-in has no Latin letters.
for font in 'ＭＳ Ｐゴシック' 'MS PGothic' 宋体 SimSun; do
    wine reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$font" /d 'DejaVu Sans' /f >/dev/null
done
wineserver -w
ScreenUp
installed=$(echo "$WINEPREFIX"/drive_c/users/[!P]*)/AppData/Local/Programs/Plenoviz
for language in "${languages[@]}"; do
    rm -rf "$installed"
    Install
    Remove
done
for name in "$pages"/*-"${languages[0]}.png"; do
    name=${name%-"${languages[0]}.png"}
    montage $(printf "$name-%s.png " "${languages[@]}") -tile 3x -geometry +6+6 "$name.png"
done

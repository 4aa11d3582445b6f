#!/bin/bash
# Runs a Windows program of this project without a screen: `wine.sh program.exe arguments`.
# All builds share one wine folder below build/, made at first use, and one server that stays for
# ten idle minutes, since starting it costs more than most tests.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=$root/build/wineprefix
export WINEARCH=win64
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
unset DISPLAY WAYLAND_DISPLAY
mkdir -p "$root/build"

MakeFolder()
{
    # A server that still runs in the old folder would keep the old settings.
    [[ -d $WINEPREFIX ]] && wineserver -k || true
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    wineboot -i
    # Windows are created and painted as usual, but shown nowhere.
    wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
    # The font that stands in for the system's has no Chinese and Japanese letters.
    local link='HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink' font
    for font in 'DejaVu Sans' 'DejaVu Serif'; do
        wine reg add "$link" /v "$font" /t REG_MULTI_SZ \
            /d 'DroidSansFallbackFull.ttf,Droid Sans Fallback' /f
    done
    # The server writes the registry when its last program has ended.
    wineserver -w
    touch "$WINEPREFIX/complete"
}

# A server that has just been started (it says no when one is up) gets a first program of its own,
# because the system services keep the streams of the program that starts them, and whoever waits
# for the end of these streams would wait for the services.
StartServer()
{
    if wineserver -p600; then
        wine cmd /c exit
    fi
}

(
    flock 8
    # A folder that an older script has made is made again.
    [[ $WINEPREFIX/complete -nt $root/cmake/wine.sh ]] ||
        MakeFolder </dev/null >"$root/build/wineprefix.log" 2>&1 8>&-
    StartServer </dev/null >/dev/null 2>&1 8>&-
) 8>"$root/build/wineprefix.lock"
exec wine "$@"

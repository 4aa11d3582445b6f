# Shell functions, to be sourced: a screen that nobody sees, and the window program on it.
#
#   ScreenUp           starts the screen (1280 x 900) and exports DISPLAY; `ScreenDown` ends it
#   ScreenFolder NAME  makes a wine folder for windows that show, and exports WINEPREFIX
#   ForgetSettings     lets the program start as for the first time
#   StartProgram ARGS  starts Plenoviz.exe and waits for its window; its number is in $window
#   Shot NAME          keeps what the screen shows as out/NAME.png, and for Pixel
#   Pixel X Y          "red green blue" of the last shot
#   ScreenSum          a sum over what the screen shows right now, without keeping it
#   Until CONDITION... tries for $patience seconds, since the machine may be busy
#   KeysUntil CONDITION... -- KEYS   presses keys, again where the first are missed, as by a new
#                      window without a window manager; failing it calls Complain of the script
#   IsOpen NAME, IsClosed NAME, HasEnded   a window of that name (a pattern); the program

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
program=${PLENOVIZ_PROGRAM:-$root/build/windows/app/Plenoviz.exe}
screenWidth=1280 screenHeight=900
convert=$(command -v convert-im6.q16 || command -v convert)
screenPid='' programPid='' window=''
scratch=$(mktemp -d)

export WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"

# The folder of the tests with the screen switched on again, copied since a new one takes long.
ScreenFolder()
{
    export WINEPREFIX=$root/build/wineprefix-${1:-screen}
    (
        flock 8
        [[ $WINEPREFIX/complete -nt $root/cmake/wine.sh ]] && exit
        "$root/cmake/wine.sh" cmd /c exit </dev/null >/dev/null 2>&1 8>&-
        [[ -d $WINEPREFIX ]] && wineserver -k || true
        rm -rf "$WINEPREFIX"
        cp -a "$root/build/wineprefix" "$WINEPREFIX"
        sed -i '/^"Graphics"="null"/d' "$WINEPREFIX/user.reg"
        touch "$WINEPREFIX/complete"
    ) 8>"$WINEPREFIX.lock"
}

# As the first start of all. A program that was stopped by force is no crash to be warned of.
ForgetSettings() { rm -f "$WINEPREFIX"/drive_c/users/*/AppData/Roaming/Plenoviz/Plenoviz.txt; }

ScreenUp()
{
    Xvfb -displayfd 3 -screen 0 ${screenWidth}x${screenHeight}x24 -fbdir "$scratch" -nolisten tcp \
        3>"$scratch/display" 2>"$scratch/xvfb.log" &
    screenPid=$!
    local tries
    for ((tries = 0; tries < 1200; tries++)); do
        [[ -s $scratch/display ]] && break
        sleep 0.05
    done
    export DISPLAY=:$(<"$scratch/display")
}

ScreenDown()
{
    [[ -n $programPid ]] && kill "$programPid" 2>/dev/null || true
    [[ -n $screenPid ]] && kill "$screenPid" 2>/dev/null || true
    rm -rf "$scratch"
}

StartProgram()
{
    local tries
    wine "$program" "$@" </dev/null >/dev/null 2>&1 &
    programPid=$!
    for ((tries = 0; tries < 1200; tries++)); do
        window=$(xdotool search --onlyvisible --name '^Plenoviz' 2>/dev/null | head -n 1) || true
        [[ -n $window ]] && return
        kill -0 "$programPid" 2>/dev/null || break
        sleep 0.05
    done
    echo "the window does not come" >&2
    return 1
}

Shot()
{
    import -window root -depth 8 "ppm:$scratch/shot"
    "$convert" "ppm:$scratch/shot" "$root/out/$1.png"
}

Until()
{
    local deadline=$((SECONDS + ${patience:-25}))
    until "$@"; do
        ((SECONDS < deadline)) || return 1
        sleep 0.03
    done
}

KeysUntil()
{
    local condition=() tries
    while [[ $1 != -- ]]; do
        condition+=("$1")
        shift
    done
    for ((tries = 0; tries < 5; tries++)); do
        xdotool key "${@:2}"
        patience=2 Until "${condition[@]}" && return
    done
    Complain "keys ${*:2} do not lead to: ${condition[*]}"
}

IsOpen() { xdotool search --onlyvisible --name "^$1\$" >/dev/null 2>&1; }
IsClosed() { ! IsOpen "$1"; }
HasEnded() { ! kill -0 "$programPid" 2>/dev/null; }

# The screen's memory is a file.
ScreenSum() { cksum <"$scratch/Xvfb_screen0"; }

Pixel()
{
    local header
    header=$(($(stat -c %s "$scratch/shot") - screenWidth * screenHeight * 3))
    od -An -tu1 -N3 -j$((header + ($2 * screenWidth + $1) * 3)) "$scratch/shot" |
        sed 's/^ *//; s/  */ /g'
}

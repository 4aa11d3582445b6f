# Shell functions, to be sourced: a person at the program, who looks where things are and uses
# mouse and keys. Uses WindowProbe.exe, and screen.sh for the screen.
#
#   Sit PHOTO          starts the program with that photograph (a path below $scratch)
#   Look               reads all windows anew; what follows tells what the last look saw
#   Sees ID...         those controls are there, visible and enabled
#   Value ID, Text ID  position, mark or choice of a control; its text
#   modal, modalText   title and text of the message box or dialog above the frame, or nothing
#   Click ID, ClickModal ID, ClickView    with the left button
#   Rests              waits until the screen stands still
#   ViewSum            a sum over the rows of the view as the screen shows them
#   SaveAs FILE        by Ctrl+S and the real dialog
#   Handles            "kernel gdi user resident-kB" of the program
#
# Numbers of controls and commands have the names that they have in the sources.

. "$(dirname "${BASH_SOURCE[0]}")/../../cmake/screen.sh"
trap 'ScreenDown' EXIT
probe=${PLENOVIZ_PROBE:-$root/build/windows/tests/win/WindowProbe.exe}
cli=$root/run # of this machine, whatever the system of the program
failed=0 modal='' modalText='' status='' viewTop=0 viewRight=0 viewBottom=0
declare -A place able value text modalPlace shown
eval "$(sed -n 's/^#define \(ID[A-Z0-9_]*\) \([0-9]*\)$/\1=\2/p' "$root"/{app,tools}/*Ids.h)"
IDOK=1 IDCANCEL=2 IDYES=6 IDNO=7

Complain()
{
    echo "$1" >&2
    Shot "failed-$(basename "$0" .sh)-$((++failed))"
}

Expect() { Until "$@" || Complain "${step:-}: never: $*"; }

Ask()
{
    local row
    rows=()
    echo "$1" >&"${PROBE[1]}"
    while read -r -u "${PROBE[0]}" row && [[ $row != . ]]; do rows+=("$row"); done
}

Look()
{
    local row inModal=0
    Ask windows
    place=() able=() value=() text=() modalPlace=() shown=()
    modal='' modalText=''
    for row in "${rows[@]}"; do
        # shellcheck disable=SC2086
        set -- $row
        case $1 in
        T)
            inModal=0
            [[ ${*:10} == Plenoviz* ]] && continue
            # Neither tooltips nor the lists of combo boxes.
            [[ $3 == "#32770" ]] && inModal=1 && modal=${*:10}
            ;;
        B) place[$2]="$3 $4 $5 $6" able[$2]=$7 ;;
        W)
            if ((inModal)); then
                # Some lists have the number of OK.
                [[ $8 == 1,* && $3 =~ ^(Button|Edit)$ ]] && modalPlace[$2]="$4 $5 $6 $7"
                [[ $3 == Static ]] && modalText+=${*:10}
                continue
            fi
            case $3 in
            ToolbarWindow32) viewTop=$(($7 + 2)) ;;
            DockerWindow1) viewRight=$4 viewBottom=$7 ;;
            msctls_statusbar32) status=${*:10} ;;
            esac
            (($2 > 0)) || continue
            place[$2]="$4 $5 $6 $7" value[$2]=$9 text[$2]=${*:10}
            [[ $8 == 1,1 ]] && able[$2]=1 || able[$2]=0
            [[ $8 == 1,* ]] && shown[$2]=1
            ;;
        esac
    done
    centreX=$((viewRight / 2)) centreY=$(((viewTop + viewBottom) / 2))
}

Sees()
{
    local id
    Look
    for id in "$@"; do [[ ${able[$id]:-0} == 1 ]] || return 1; done
}
SeesNot() { ! Sees "$1"; }
SeesModal() { Look; [[ $modal == $1 ]]; }
SeesNoModal() { Look; [[ -z $modal ]]; }
Value() { echo "${value[$1]%%,*}"; }
HasValue() { Look; [[ ${value[$1]%%,*} == "$2" ]]; }
HasText() { Look; [[ ${text[$1]} == "$2" ]]; }
Runs() { kill -0 "$programPid" 2>/dev/null; }

# The tools may be started; the zoom box is on.
ToolsAreOn() { Sees $ID_FILE_OPEN $ID_FILE_SAVEAS $ID_SINGLE_LIGHT $ID_MULTI_IMAGE $ID_DAYLIGHT_UP \
    $ID_DAYLIGHT_DOWN $ID_SMART_CONTRAST $ID_TONE_MAPPING $ID_ZOOM_COMBO; }

Settle() { sleep 0.06; }
Press() { xdotool mousemove "$1" "$2"; Settle; xdotool click "${3:-1}"; Settle; }
Drag()
{
    xdotool mousemove "$1" "$2" mousedown "${5:-1}"
    Settle
    xdotool mousemove $((($1 + $3) / 2)) $((($2 + $4) / 2))
    Settle
    xdotool mousemove "$3" "$4"
    Settle
    xdotool mouseup "${5:-1}"
    Settle
}
MiddleOf() { echo $((($1 + $3) / 2)) $((($2 + $4) / 2)); }
Click() { Press $(MiddleOf ${place[$1]}); }
ClickModal() { [[ ! ${modalPlace[$1]:-} ]] || Press $(MiddleOf ${modalPlace[$1]}); }
ClickView() { Press "$centreX" "$centreY" "${1:-1}"; }
Park() { xdotool mousemove 400 $((viewTop + 20)); Settle; }

Rests()
{
    Park
    StandsStill
}
StandsStill()
{
    local before='' now
    now=$(ScreenSum)
    while [[ $now != "$before" ]]; do
        before=$now
        sleep 0.4
        # The answer comes when the program has nothing else to do.
        Look
        now=$(ScreenSum)
    done
}

ViewSum()
{
    local row=$((screenWidth * 4)) file=$scratch/Xvfb_screen0
    dd if="$file" bs=64k iflag=skip_bytes,count_bytes status=none \
        skip=$(($(stat -c %s "$file") - screenHeight * row + viewTop * row)) \
        count=$(((viewBottom - viewTop) * row)) | cksum
}
ShowsLike() { [[ $(ViewSum) == "$1" ]]; }

Sit()
{
    StartProgram "Z:${1//\//\\}"
    xdotool windowfocus "$window" 2>/dev/null || true
    Expect ToolsAreOn
}

# By Alt+F4, or where a dialog keeps the keys for itself by the system menu; Yes when it asks.
Leave()
{
    local tries
    for ((tries = 0; tries < 8; tries++)); do
        HasEnded && break
        if Sees $IDC_FUSION_SLIDER; then
            Ask close
        elif [[ ! $modal ]]; then
            xdotool windowfocus "$window" key alt+F4 2>/dev/null || true
        fi
        patience=4 Until EndsOrAsks || continue
        HasEnded || ClickModal $IDYES
        patience=10 Until HasEnded || true
    done
    HasEnded || Complain "$step: the program does not end"
    HasEnded || kill "$programPid"
    programPid=''
}
EndsOrAsks() { HasEnded || SeesModal Warning; }

SaveAs()
{
    rm -f "$1"
    Sees $ID_FILE_SAVEAS || { Complain "$step: nothing to save"; return; }
    xdotool key ctrl+s
    Expect SeesModal 'Save As*'
    local tries
    for ((tries = 0; tries < 5; tries++)); do
        Press $(MiddleOf ${modalPlace[1148]}) # the name
        xdotool key ctrl+a
        xdotool type --delay 2 "Z:${1//\//\\}"
        Settle
        ClickModal $IDOK
        patience=5 Until SeesNoModal && break
    done
    Expect SeesNoModal
    [[ -s $1 ]] || Complain "$step: nothing saved as $1"
}

Handles()
{
    Ask handles
    echo "${rows[0]#H }" "$(sed -n 's/^VmRSS:[^0-9]*\([0-9]*\).*/\1/p' "/proc/$programPid/status")"
}

ProbeUp()
{
    mkdir -p "$root/out"
    ScreenFolder
    ForgetSettings
    ScreenUp
    coproc PROBE { exec wine "$probe" "$(basename "$scratch")" 2>/dev/null; }
}

#!/bin/bash
# A person in a hurry: random but legal actions over all tools. The program must neither end nor
# stop to answer, and hold no more memory and handles at the end than after the first quarter, both
# times with nothing open.
#
#   soak.sh [ACTIONS [SEED]]    300

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/person.sh"
actions=${1:-300} seed=${2:-$((RANDOM * 32768 + RANDOM))}
RANDOM=$seed
echo "seed $seed"

# One of the arguments, in $picked: a subshell would not move the random numbers on.
Pick() { shift $((RANDOM % $#)); picked=$1; }
Note() { did=$*; }

ClickIf() { [[ ${able[$1]:-0} != 1 ]] || Click "$1"; }
AnyPoint()
{
    pointX=$((10 + RANDOM % (viewRight - 20))) pointY=$((viewTop + 10 + RANDOM % (viewBottom - viewTop - 20)))
}

# What the view and the toolbar allow at all times.
Browse()
{
    AnyPoint
    Pick wheel wheel pan compare 32793 32794 32795 32809 typed keys resize
    Note "$picked"
    case $picked in
    wheel)
        Pick 4 5
        Press $pointX $pointY "$picked"
        ;;
    pan) Drag $pointX $pointY $((pointX + RANDOM % 100 - 50)) $((pointY + RANDOM % 100 - 50)) ;;
    compare) Drag $pointX $pointY $pointX $pointY 3 ;;
    typed)
        ClickIf $ID_ZOOM_COMBO
        xdotool key ctrl+a
        xdotool type $((10 + RANDOM % 300))
        Pick Return Escape
        xdotool key "$picked"
        ;;
    keys)
        Pick plus minus F5 Left Right F1
        xdotool key "$picked"
        ;;
    resize)
        xdotool windowsize "$window" $((760 + RANDOM % 500)) $((520 + RANDOM % 350)) 2>/dev/null || true
        ;;
    *) ClickIf "$picked" ;;
    esac
}

Slide()
{
    local now thumb low high left top right bottom middle
    IFS=, read -r now thumb low high <<<"${value[$1]}"
    read -r left top right bottom <<<"${place[$1]}"
    middle=$(((top + bottom) / 2))
    Pick Up Down Next Prior Home End page drag drag
    Note "slider $1 $picked"
    case $picked in
    page) Press $((left + RANDOM % (right - left))) $middle ;;
    drag) Drag "$thumb" $middle $((left + RANDOM % (right - left))) $middle ;;
    *)
        Press "$thumb" $middle
        xdotool key "$picked"
        ;;
    esac
}

# A name in one of the two file dialogs, or the way out.
FileDialog()
{
    Pick "${1:-}" "${@:1}" cancel
    Note "file dialog $picked"
    fileDialogs=$((fileDialogs + 1))
    if [[ $picked != cancel && ${modalPlace[1148]:-} ]]; then
        Press $(MiddleOf ${modalPlace[1148]})
        xdotool key ctrl+a
        xdotool type --delay 2 "$picked"
        Settle
        ClickModal $IDOK
    else
        ClickModal $IDCANCEL
    fi
}

Answer()
{
    if ((${#modalPlace[@]} == 0)); then
        Note "$modal comes"
        return
    fi
    case $modal in
    "Save As"*) FileDialog "Z:${scratch//\//\\}\\saved$((RANDOM % 3)).tif" ;;
    "Select Source"*) FileDialog "${openNames[@]}" ;;
    *)
        Pick "${!modalPlace[@]}"
        Note "$modal: $picked"
        ClickModal "$picked"
        ;;
    esac
}

Work()
{
    local open=() id
    for id in $IDC_FUSION_SLIDER $IDC_LEVEL_SLIDER $((IDC_LEVEL_SLIDER + 3)) $((IDC_LEVEL_SLIDER + 7)) \
        $IDC_TONE_SLIDER $((IDC_TONE_SLIDER + 2)); do
        [[ ${able[$id]:-0} != 1 || ${value[$id]} != *,* ]] || open+=("$id" "$id")
    done
    for id in $IDC_TONE_COLORS $IDC_TONE_PREVIEW $IDC_TONE_STOP $IDC_FUSION_DEFAULT $IDOK $IDCANCEL; do
        [[ ${shown[$id]:-} && ${able[$id]:-0} == 1 ]] && open+=("$id")
    done
    Pick browse browse browse "${open[@]}"
    case $picked in
    browse) Browse ;;
    $IDC_FUSION_SLIDER | $((IDC_LEVEL_SLIDER))* | 111? | 114?) Slide "$picked" ;;
    *)
        Note "control $picked"
        Click "$picked"
        ;;
    esac
}

OpenNames()
{
    openNames=("${photos[@]//\//\\}")
    openNames=("${openNames[@]/#/Z:}")
}

Idle()
{
    Pick $ID_SINGLE_LIGHT $ID_DAYLIGHT_UP $ID_DAYLIGHT_DOWN $ID_SMART_CONTRAST $ID_TONE_MAPPING \
        $ID_SMART_CONTRAST $ID_TONE_MAPPING $ID_MULTI_IMAGE $ID_FILE_SAVEAS $ID_FILE_OPEN browse close
    case $picked in
    browse) Browse ;;
    close)
        Note close
        CloseByMenu
        ;;
    *)
        Note "command $picked"
        OpenNames
        [[ $picked != "$ID_MULTI_IMAGE" ]] || openNames=("$series" "$series" "${openNames[0]}")
        ClickIf "$picked"
        patience=2 Until SomethingOpens || true
        ;;
    esac
}
SomethingOpens() { Look; [[ $modal || ${shown[$IDC_PROGRESS_BAR]:-} || ${shown[$IDOK]:-} ]]; }

CloseByMenu()
{
    Click $ID_MENU_BUTTON
    xdotool key Down Right Down Down Return
    Settle
}

Act()
{
    did=''
    Look
    if [[ $modal ]]; then
        Answer
    elif [[ ${shown[$IDC_PROGRESS_BAR]:-} ]]; then
        Pick wait wait wait browse abort
        case $picked in
        wait) Note wait && sleep 0.3 ;;
        browse) Browse ;;
        abort) Note abort && Click $IDCANCEL ;;
        esac
    elif [[ ${shown[$IDOK]:-} ]]; then
        Work
    else
        Idle
    fi
}

# Out of everything, then the picture closed.
ComeToRest()
{
    local tries
    for ((tries = 0; tries < 200; tries++)); do
        Runs || return 1
        Look
        if [[ $modal ]]; then
            if [[ ${modalPlace[$IDYES]:-} ]]; then ClickModal $IDYES
            elif [[ ${modalPlace[$IDCANCEL]:-} ]]; then ClickModal $IDCANCEL
            else ClickModal $IDOK; fi
        elif [[ ${shown[$IDC_TONE_STOP]:-} ]]; then
            Click $IDC_TONE_STOP
        elif [[ ${shown[$IDCANCEL]:-} ]]; then
            Click $IDCANCEL
        elif [[ ${shown[$IDOK]:-} ]]; then
            Click $IDOK
        elif [[ ${able[$ID_FILE_SAVEAS]:-0} == 1 ]]; then
            xdotool key Escape
            CloseByMenu
        else
            return 0
        fi
        sleep 0.1
    done
    Complain "does not come to rest"
}

Weigh()
{
    ComeToRest || return 1
    xdotool windowsize "$window" 960 648 2>/dev/null || true
    Rests
    read -ra weight <<<"$(Handles)"
}

ProbeUp
"$cli" sample --quiet --out-dir "$scratch/series" --frames 3 --width 700 --height 480
frame=$scratch/series/sample_2.jpg
"$convert" "$frame" "$scratch/colour.png"
"$convert" "$frame" -depth 16 -gamma 1.3 "$scratch/deep.png"
"$convert" "$frame" -colorspace Gray -depth 8 "$scratch/grey.png"
photos=("$scratch"/{colour,deep,grey}.png)
series=$(printf '"Z:%s" ' "${scratch//\//\\}\\series\\sample_"{1,2,3}.jpg)
OpenNames
step=soak
Sit "$scratch/colour.png"
log=$root/out/soak.log
: >"$log"
warm=() weight=() fileDialogs=0
for ((turn = 1; turn <= actions; turn++)); do
    Act
    echo "$turn $did" >>"$log"
    Runs || { Complain "the program has ended after action $turn: $did"; exit 1; }
    if ((turn == actions / 4)); then
        Weigh || { Complain "the program has ended"; exit 1; }
        warm=("${weight[@]}")
        fileDialogs=0
    fi
done
Weigh || { Complain "the program has ended"; exit 1; }
echo "kernel, GDI, user handles, kB: ${warm[*]} after a quarter, ${weight[*]} at the end," \
    "$fileDialogs file dialogs between"
# Some threads, libraries and icons of the system's dialogs come late, each file dialog keeps one
# user object, and the program keeps up to 96 MB of freed blocks for the next picture. The last three
# quarters of 300 actions with 27 file dialogs added 10 kernel, 1 GDI and 18 user handles and 14 MB.
allowed=(16 60 $((8 + fileDialogs)) 160000)
for kind in 0 1 2 3; do
    ((weight[kind] <= warm[kind] + allowed[kind])) ||
        Complain "more is held: ${warm[*]} after a quarter, ${weight[*]} at the end"
done
Leave
exit $((failed > 0))

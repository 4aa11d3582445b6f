#!/bin/bash
# Stops every worker at random moments: by its button, by closing the program, by logging off. Each
# time the toolbar has to be right, the photograph to show as before, nothing to be left open, and
# the next start to be told of no crash. How long tone mapping takes to stop is printed, no more: it
# is the machine's as well.
#
#   stops_run.sh [COUNT [SEED [WORKER...]]]    moments per worker and way of stopping; 2

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/person.sh"
count=${1:-2} seed=${2:-$((RANDOM * 32768 + RANDOM))}
RANDOM=$seed
workers=("${@:3}")
((${#workers[@]})) || workers=(tone single up down)
declare -A commands=([tone]=$ID_TONE_MAPPING [single]=$ID_SINGLE_LIGHT
    [up]=$ID_DAYLIGHT_UP [down]=$ID_DAYLIGHT_DOWN)
echo "seed $seed"

hasResult='' # in no file
Start()
{
    Sit "$photo"
    hasResult=''
}

# From the command to the running worker.
StartWorker()
{
    Click "$1"
    if [[ $hasResult ]]; then
        Expect SeesModal Warning
        ClickModal $IDYES
        hasResult=''
    fi
    case $1 in
    "$ID_SINGLE_LIGHT")
        Expect Sees $IDC_NOISE_LEVEL $IDOK
        Click $IDOK
        ;;
    "$ID_TONE_MAPPING")
        Expect Sees $IDC_TONE_SLIDER
        Click $IDOK
        ;;
    esac
    started=$(date +%s%3N)
}
HasDialog() { Sees $IDC_FUSION_SLIDER || [[ ${shown[$IDC_TONE_SLIDER]:-} && ${able[$IDOK]} == 1 ]]; }
IsIdle() { ToolsAreOn || HasDialog; }

# Out of whatever is open. A finished run is closed by OK, an editing dialog by Cancel.
Tidy()
{
    Look
    hasResult=''
    if [[ ${shown[$IDCANCEL]:-} ]]; then
        Click $IDCANCEL
    elif [[ ${shown[$IDOK]:-} ]]; then
        Click $IDOK
        hasResult=1
    fi
    Expect ToolsAreOn
}

# How long it runs by itself, and where the button is that stops it.
Rehearse()
{
    StartWorker "$1"
    stopButton=$IDCANCEL
    [[ $1 != "$ID_TONE_MAPPING" ]] || stopButton=$IDC_TONE_STOP
    Expect Sees $stopButton
    stopPlace=$(MiddleOf ${place[$stopButton]})
    Shot "$step-running"
    patience=300 Expect HasDialog
    duration=$(($(date +%s%3N) - started))
    Tidy
}

Moment()
{
    local moment=$((RANDOM * duration / 32768)) now
    now=$(($(date +%s%3N) - started))
    stopped=$moment
    ((now >= moment)) || sleep "$(printf '0.%03d' $(((moment - now) % 1000)))"
    ((now >= moment)) || sleep $(((moment - now) / 1000))
}

# Presses the button that stops it. Of tone mapping, whose dialog stays open, $took says how many
# milliseconds later it can be used again.
PressStop()
{
    local pressed
    took=''
    xdotool mousemove $stopPlace
    Settle
    pressed=$(date +%s%3N)
    xdotool click 1
    [[ $worker == tone ]] || return 0
    Ask "ready $IDOK"
    took=", $(($(date +%s%3N) - pressed)) ms until it can be used again"
}

# Only whole files of the series are in its folder, and the program has none of them open.
FolderIsClean()
{
    local folder=("$WINEPREFIX"/drive_c/users/*/AppData/Roaming/Plenoviz/tmpfolder)
    local odd
    [[ -d ${folder[0]} ]] || return 0 # before the first series
    odd=$(find "${folder[0]}" -type f ! -name 'file_*.tif' 2>/dev/null)
    [[ -z $odd ]] || Complain "$step: left behind: $odd"
    [[ -z $programPid ]] || ! ls -l "/proc/$programPid/fd" 2>/dev/null | grep -q tmpfolder ||
        Complain "$step: a file of the series is still open"
}

StopByButton()
{
    local command=$1 turn before=() after=()
    for ((turn = 1; turn <= count; turn++)); do
        step=stops-$worker-button-$turn
        StartWorker "$command"
        Moment
        PressStop
        Expect IsIdle
        ! HasDialog || Tidy # a finished run leaves its dialog
        Park
        [[ $hasResult ]] || Expect ShowsLike "$source"
        FolderIsClean
        # Halfway, when everything has been used.
        [[ $turn != $(((count + 1) / 2)) ]] || read -ra before <<<"$(Handles)"
        echo "$step after $stopped of $duration ms: handles and memory $(Handles)$took"
    done
    read -ra after <<<"$(Handles)"
    local kind
    for kind in 0 1 2; do
        ((after[kind] <= before[kind] + 10)) ||
            Complain "$step: handles grew from ${before[*]} to ${after[*]}"
    done
    # The program keeps up to 96 MB of freed blocks for the next picture.
    ((after[3] < before[3] + 110000)) || Complain "$step: memory grew from ${before[3]} to ${after[3]} kB"
}

CrashMarker() { grep -h '^Crashed' "$WINEPREFIX"/drive_c/users/*/AppData/Roaming/Plenoviz/Plenoviz.txt; }
MarkerIsDown() { [[ $(CrashMarker) == "Crashed Last Time=0"* ]] || Complain "$step: $(CrashMarker)"; }

StopByClosing()
{
    local turn
    for ((turn = 1; turn <= count; turn++)); do
        step=stops-$worker-close-$turn
        Start
        StartWorker "$1"
        Moment
        Leave
        echo "$step after $stopped of $duration ms"
        MarkerIsDown
        FolderIsClean
    done
}

# What the system does: asks, tells, and ends the process if it is still there.
StopByLoggingOff()
{
    step=stops-$worker-log-off
    Start
    StartWorker "$1"
    Moment
    Ask endsession
    echo "$step after $stopped of $duration ms"
    [[ ${rows[0]:-} == "E 1" ]] || Complain "$step: refused"
    MarkerIsDown
    kill "$programPid" 2>/dev/null || true
    Until HasEnded
    programPid=''
    # The file that was being written may stay: the next series empties the folder.
}

ProbeUp
"$cli" sample --quiet --out-dir "$scratch/series" --frames 3 --width 1800 --height 1200
photo=$scratch/photo.tif
"$convert" "$scratch/series/sample_2.jpg" "$photo"
for worker in "${workers[@]}"; do
    command=${commands[$worker]} step=stops-$worker
    Start
    Rests
    source=$(ViewSum)
    Rehearse "$command"
    Leave
    Start
    Park
    StopByButton "$command"
    Leave
    StopByClosing "$command"
    StopByLoggingOff "$command"
done
exit $((failed > 0))

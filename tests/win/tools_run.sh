#!/bin/bash
# The single-image tools as a person uses them: every slider by key, page and drag, zoom, pan and
# compare while the dialog is open, Cancel, once more, OK and Save As. The file that is saved has
# to be, byte for byte, the one that plenoviz-cli makes with the same numbers: both builds give the
# same bits, the series pass through lossless files, and both take the metadata from the photograph.
#
#   tools_run.sh [PHOTO...]    these photographs instead of three of its own
#
# Without arguments, the first round of sliders and Cancel is for the first photograph only.
# Screenshots stay in out/.

set -euo pipefail
# The date of change that results get: the same picture is the same bytes then.
export SOURCE_DATE_EPOCH=1700000000
. "$(dirname "${BASH_SOURCE[0]}")/person.sh"
. "$(dirname "${BASH_SOURCE[0]}")/dialogs.sh"

# The photographs: colour, 16 bits, grey.
MakePhotos()
{
    "$cli" sample --quiet --out-dir "$scratch/series" --frames 3 --width 900 --height 600
    local frame=$scratch/series/sample_2.jpg
    "$convert" "$frame" "$scratch/colour.tif"
    "$convert" "$frame" -depth 16 -gamma 1.3 "$scratch/deep.tif"
    "$convert" "$frame" -colorspace Gray -depth 8 "$scratch/grey.tif"
    photos=("$scratch"/{colour,deep,grey}.tif)
}

# By key and by page, there and back, and to the ends.
StepSlider()
{
    Measure "$1"
    Press "$thumb" "$middle"
    xdotool key Down
    Expect HasValue "$1" $((now + 1))
    xdotool key Up
    Expect HasValue "$1" "$now"
    xdotool key Next
    Expect HasValue "$1" $((now + 1))
    xdotool key Prior
    Expect HasValue "$1" "$now"
    PageSlider "$1"
    xdotool key Home
    Expect HasValue "$1" "$low"
    [[ $1 != "${sliders[0]}" ]] || IsPaintedWhole 'the key Home'
    xdotool key End
    Expect HasValue "$1" "$high"
    Rests # the thumb moves when its preview is made
}

LabelsFollow()
{
    local slider
    for slider in "${sliders[@]}"; do
        [[ ${text[$((slider + labelStep))]} == "$(Value "$slider")" ]] ||
            Complain "$step: slider $slider is at $(Value "$slider"), its label says ${text[$((slider + labelStep))]}"
    done
}

CancelGivesBack()
{
    Click $IDCANCEL
    Expect ToolsAreOn
    Click $ID_ZOOM_FIT
    Rests
    Expect ShowsLike "$source"
    SaveAs "$scratch/cancelled.tif"
    SamePixels "$scratch/cancelled.tif" "$photo" || Complain "$step: Cancel leaves other pixels"
}

# The first round: everything that can be done with the dialog, and back.
TryAndCancel()
{
    local move
    Open "$2" "${sliders[0]}"
    [[ $1 != tone-map ]] || Click $IDC_TONE_PREVIEW
    for move in "${@:4}"; do
        StepSlider "${move%:*}"
        DragSlider "${move%:*}" "${move#*:}"
        [[ ${move%:*} != "${sliders[0]}" ]] || IsPaintedWhole 'a drag'
    done
    Rests
    LabelsFollow
    LookAround
    Shot "$step"
    CancelGivesBack
}

# Tool NAME COMMAND LABEL-STEP SLIDER:TARGET...: all of it with one tool. Leaves result.tif.
Tool()
{
    step=$name-$1 labelStep=$3 sliders=()
    local move started=$SECONDS
    Sees "$2"
    Click $ID_ZOOM_FIT
    Rests
    for move in "${@:4}"; do sliders+=("${move%:*}"); done

    [[ $quick ]] || TryAndCancel "$@"
    Open "$2" "${sliders[0]}"
    for move in "${@:4}"; do DragSlider "${move%:*}" "${move#*:}"; done
    Rests
    for move in "${sliders[@]}"; do chosen+=("$(Value "$move")"); done
    Click $IDOK
    patience=240 Expect ToolsAreOn
    [[ $1 != tone-map ]] || Click $IDOK
    Rests
    SaveAs "$scratch/result.tif"
    Shot "$step-saved"
    echo "$step: $((SECONDS - started)) s, values ${chosen[*]}"
}

# The command line with the values that the dialog showed.
SameAsCommandLine()
{
    "$cli" "$@" --quiet -o "$scratch/expected.tif" "$photo"
    cmp "$scratch/result.tif" "$scratch/expected.tif" ||
        Complain "$step: the file differs from that of plenoviz-cli $*"
    chosen=()
}

# A folder is where a file of the series should go: the user hears of it, once, and the tool works
# with the other files.
UnwritableFileIsTold()
{
    step=$name-unwritable
    local folder=("$WINEPREFIX"/drive_c/users/*/AppData/Roaming/Plenoviz/tmpfolder)
    rm -f "${folder[0]}/file_003.tif"
    mkdir "${folder[0]}/file_003.tif"
    Click $ID_SINGLE_LIGHT
    Expect Sees $IDC_NOISE_LEVEL $IDOK
    Click $IDOK
    patience=120 Expect SeesModal Warning
    Shot "$step"
    [[ $modalText == 'Cannot open file: '*file_003.tif* && $modalText != *file_*file_* ]] ||
        Complain "$step: says $modalText"
    ClickModal $IDOK
    Expect Sees $IDC_FUSION_SLIDER
    Rests
    DragSlider $IDC_FUSION_SLIDER 120
    Rests
    Expect SeesNoModal
    CancelGivesBack
    rmdir "${folder[0]}/file_003.tif"
}

All()
{
    Sit "$photo"
    Click $ID_ZOOM_FIT
    Rests
    source=$(ViewSum)
    chosen=()
    Tool smart-contrast $ID_SMART_CONTRAST $((IDC_LEVEL_VALUE - IDC_LEVEL_SLIDER)) \
        $IDC_LEVEL_SLIDER:17 $((IDC_LEVEL_SLIDER + 1)):22 $((IDC_LEVEL_SLIDER + 2)):4 \
        $((IDC_LEVEL_SLIDER + 3)):14 $((IDC_LEVEL_SLIDER + 4)):25 $((IDC_LEVEL_SLIDER + 5)):7 \
        $((IDC_LEVEL_SLIDER + 6)):16 $((IDC_LEVEL_SLIDER + 7)):12
    SameAsCommandLine smart-contrast --lod "$(IFS=,; echo "${chosen[*]}")"
    Tool tone-map $ID_TONE_MAPPING $((IDC_TONE_VALUE - IDC_TONE_SLIDER)) \
        $IDC_TONE_SLIDER:14 $((IDC_TONE_SLIDER + 1)):5 $((IDC_TONE_SLIDER + 2)):22 \
        $((IDC_TONE_SLIDER + 3)):31
    SameAsCommandLine tone-map --contrast "${chosen[0]}" --noise-amplitude "${chosen[1]}" \
        --details "${chosen[2]}" --equalization "${chosen[3]}"
    Tool daylight-up $ID_DAYLIGHT_UP $((IDC_FUSION_VALUE - IDC_FUSION_SLIDER)) $IDC_FUSION_SLIDER:21
    SameAsCommandLine daylight-up --power "${chosen[0]}"
    Tool daylight-down $ID_DAYLIGHT_DOWN $((IDC_FUSION_VALUE - IDC_FUSION_SLIDER)) \
        $IDC_FUSION_SLIDER:9
    SameAsCommandLine daylight-down --power "${chosen[0]}"
    if [[ ! $quick ]]; then
        UnwritableFileIsTold
        step=$name-single
        Open $ID_SINGLE_LIGHT $IDC_FUSION_SLIDER
        Shot "$step"
        CancelGivesBack
    fi
    Leave
}

ProbeUp
photos=() quick=''
for photo in "$@"; do
    "$convert" "$photo" "$scratch/$(basename "${photo%.*}").tif"
    photos+=("$scratch/$(basename "${photo%.*}").tif")
done
[[ $# -gt 0 ]] || MakePhotos
for photo in "${photos[@]}"; do
    name=tools-$(basename "$photo" .tif)
    All
    [[ $# -gt 0 ]] || quick=1
done
exit $((failed > 0))

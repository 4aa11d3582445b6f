#!/bin/bash
# Multi Image and Single Image as a person uses them: wrong picks, seven exposures chosen in the
# real dialog, paging before, during and after, the slider by drag and page (keys are for paging),
# zoom, pan and compare, Cancel, once more, OK, F5, Save As. The saved file has to be, byte for byte,
# the one that plenoviz-cli makes of the same files with the value that the dialog showed.
#
#   fusion_tools.sh [FOLDER...]    all pictures of each folder instead of three series of its own
#
# Screenshots stay in out/.

set -euo pipefail
# The date of change that results get: the same picture is the same bytes then.
export SOURCE_DATE_EPOCH=1700000000
. "$(dirname "${BASH_SOURCE[0]}")/person.sh"
. "$(dirname "${BASH_SOURCE[0]}")/dialogs.sh"

# 8-bit colour larger than the view, 16 bits, and grey.
MakeSeries()
{
    local i
    mkdir "$scratch"/{colour,deep,grey}
    "$cli" sample --quiet --out-dir "$scratch/colour" --frames 7
    for ((i = 1; i <= 7; i++)); do
        "$convert" "$scratch/colour/sample_$i.jpg" -resize 900x600 -depth 16 -gamma 1.1 \
            "$scratch/deep/deep_$i.tif"
        "$convert" "$scratch/colour/sample_$i.jpg" -resize 900x600 -colorspace Gray -depth 8 \
            "$scratch/grey/grey_$i.png"
    done
    series=("$scratch"/{colour,deep,grey})
}

MakeWrongFiles()
{
    mkdir "$scratch/wrong"
    "$convert" -size 300x200 gradient:red-blue "$scratch/wrong/a.png"
    "$convert" -size 301x200 gradient:red-blue "$scratch/wrong/b.png"
    "$convert" -size 300x200 gradient: -colorspace Gray -depth 8 "$scratch/wrong/c.png"
    echo broken >"$scratch/wrong/d.png"
}

WrongPick() # TEXT NAMES...
{
    local before
    Rests
    before=$(ViewSum)
    Choose "$scratch/wrong" "${@:2}"
    Expect SeesModal Warning
    Shot "$step"
    [[ $modalText == "$1" ]] || Complain "$step: ${*:2} gives $modalText"
    ClickModal $IDOK
    Expect SeesNoModal
    Park
    Expect ShowsLike "$before"
    ToolsAreOn || Complain "$step: the tools are off"
}

WrongPicks()
{
    step=fusion-wrong
    MakeWrongFiles
    WrongPick 'Please select more than one file as the source, using shift in open dialog.' a.png
    WrongPick "Cannot open file: Z:${scratch//\//\\}\\wrong\\d.png" a.png d.png
    WrongPick 'All the files must have the same resolution and number of components!' a.png b.png
    WrongPick 'All the files must have the same resolution and number of components!' a.png c.png
}

# Key and what the status bar says then; another source has to show.
Page()
{
    local before
    Rests
    before=$(ViewSum)
    xdotool key "$1"
    Expect Says "Showing $2 of ${#files[@]}. Use arrows to change it or F5 to switch to Vexa image."
    Expect ShowsOtherThan "$before"
}

OpenMulti()
{
    Choose "$folder" "${files[@]}"
    patience=120 Expect Sees $IDC_FUSION_SLIDER
    Rests
    Expect Says "Showing 1 of ${#files[@]}. Use arrows to change it."
}

UseSlider()
{
    local before at
    before=$(ViewSum)
    DragSlider $IDC_FUSION_SLIDER 70
    Rests
    [[ $(ViewSum) != "$before" ]] || Complain "$step: the slider changes nothing"
    PageSlider $IDC_FUSION_SLIDER
    at=$(Value $IDC_FUSION_SLIDER)
    xdotool key Up Next Home
    Rests
    Expect HasValue $IDC_FUSION_SLIDER "$at"
    Expect HasText $IDC_FUSION_VALUE "$at"
}

# What OK made, saved, against the command line.
Finish() # COMMAND ARGUMENTS...
{
    local mid
    mid=$(Value $IDC_FUSION_SLIDER)
    Click $IDOK
    patience=120 Expect SeesNot $IDC_FUSION_SLIDER
    Rests
    SaveAs "$scratch/result.tif"
    Shot "$step-saved"
    "$cli" "$1" --quiet --exposure "$mid" -o "$scratch/expected.tif" "${@:2}"
    cmp "$scratch/result.tif" "$scratch/expected.tif" ||
        Complain "$step: the file differs from that of plenoviz-cli $1 --exposure $mid"
    echo "$step: exposure $mid"
}

MultiImage()
{
    step=fusion-$name-multi
    OpenMulti
    UseSlider
    Shot "$step"
    LookAround
    Page Right 2
    Page Left 1
    Page Left ${#files[@]}
    PageSlider $IDC_FUSION_SLIDER # the preview again
    Sees $IDC_FUSION_DEFAULT
    Click $IDC_FUSION_DEFAULT
    Expect HasValue $IDC_FUSION_SLIDER 100
    IsPaintedWhole 'Set Default'
    Click $IDCANCEL
    Expect SeesNot $IDC_FUSION_SLIDER
    SaveAs "$scratch/cancelled.tif"
    SamePixels "$scratch/cancelled.tif" "$folder/${files[0]}" ||
        Complain "$step: Cancel leaves other pixels"

    xdotool key F5
    Expect Says "Showing ${#files[@]} of ${#files[@]}. Use arrows to change it."
    Page Right 1
    OpenMulti
    DragSlider $IDC_FUSION_SLIDER 120
    Rests
    Finish fuse "${files[@]/#/$folder/}"
    Expect Says 'Press F5 to switch between source images and Vexa Image.'
    local result
    Rests # with the mouse where it will be, since its pointer counts
    result=$(ViewSum)
    xdotool key F5
    Expect ShowsOtherThan "$result"
    Page Right 2
    xdotool key F5
    Expect ShowsLike "$result"
}

SingleImage()
{
    step=fusion-$name-single
    Open $ID_SINGLE_LIGHT $IDC_FUSION_SLIDER
    UseSlider
    DragSlider $IDC_FUSION_SLIDER 130
    Rests
    Finish single --noise low "$photo"
}

All()
{
    photo=$scratch/photo-$name.${files[0]##*.}
    cp "$folder/${files[$((${#files[@]} / 2))]}" "$photo"
    Sit "$photo"
    SingleImage
    [[ -d $scratch/wrong ]] || WrongPicks
    MultiImage
    Leave
}

ProbeUp
series=("$@")
[[ $# -gt 0 ]] || MakeSeries
for folder in "${series[@]}"; do
    files=("$folder"/*)
    files=("${files[@]##*/}")
    name=${folder##*/}
    All
done
exit $((failed > 0))

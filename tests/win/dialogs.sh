# Shell functions, to be sourced after person.sh: what a person does with the dialog of any tool.

# Where the slider is and what it shows: now thumb low high, left top right bottom, middle.
Measure()
{
    IFS=, read -r now thumb low high <<<"${value[$1]}"
    read -r left top right bottom <<<"${place[$1]}"
    middle=$(((top + bottom) / 2))
}

# To about that value: pixels are not values.
DragSlider()
{
    Look
    Measure "$1"
    Drag "$thumb" "$middle" \
        $((left + 8 + (right - left - 16) * ($2 - low) / (high - low))) "$middle"
    Expect IsNear "$1" "$2"
}
IsNear()
{
    Look
    local off=$(($(Value "$1") - $2))
    ((off > -4 && off < 4))
}

# The screen shows what a fresh painting would: nothing is left of what was there before. The mouse
# stays where it is, since coming and going it has controls painted.
IsPaintedWhole()
{
    local sum
    StandsStill
    sum=$(ScreenSum)
    Shot "$step-painted"
    Ask repaint
    StandsStill
    [[ $(ScreenSum) == "$sum" ]] || Complain "$step: $1 leaves pixels of what was there before"
}

# Beside the thumb, on the side of the higher values.
PageSlider()
{
    Measure "$1"
    Press $((right - 12)) "$middle"
    Expect HasValue "$1" $((now + 1))
}

# Zooms, pans and compares over the open dialog, and comes back to the whole picture.
LookAround()
{
    local whole near
    Click $ID_ZOOM_FIT
    Rests
    whole=$(ViewSum)
    xdotool mousemove "$centreX" "$centreY"
    Settle
    xdotool click 4
    Settle
    xdotool click 4
    Rests
    near=$(ViewSum)
    [[ $near != "$whole" ]] || Complain "$step: the wheel does not zoom"
    Drag "$centreX" "$centreY" $((centreX - 60)) $((centreY - 40))
    Rests
    [[ $(ViewSum) != "$near" ]] || Complain "$step: a drag does not pan"
    Shot "$step-zoomed"
    Click $ID_ZOOM_FIT
    Rests
    [[ $(ViewSum) == "$whole" ]] || Complain "$step: the preview is not what it was before zooming"
    xdotool mousemove 400 $((viewTop + 20)) mousedown 3
    Until ShowsOtherThan "$whole" || Complain "$step: nothing to compare with"
    Shot "$step-compared"
    xdotool mouseup 3
    Until ShowsLike "$whole" || Complain "$step: the preview does not come back"
}
ShowsOtherThan() { [[ $(ViewSum) != "$1" ]]; }

# Starts the tool of a command; its dialog is there when its first slider is.
Open()
{
    Click "$1"
    if [[ $1 == "$ID_SINGLE_LIGHT" ]]; then
        Expect Sees $IDC_NOISE_LEVEL $IDOK
        Shot "$step-prompt"
        Click $IDOK
    fi
    patience=120 Expect Sees "$2"
    Rests
}

# Into the name of a file dialog, and OK.
TypeName()
{
    Press $(MiddleOf ${modalPlace[1148]})
    xdotool key ctrl+a
    xdotool type --delay 5 "$1"
    Settle
    ClickModal $IDOK
}

# Answers the dialog of Multi Image: the folder first, then the names.
Choose()
{
    local names
    names=$(printf '"%s" ' "${@:2}")
    [[ $# -gt 2 ]] || names=$2
    Sees $ID_MULTI_IMAGE
    Click $ID_MULTI_IMAGE
    Expect SeesModal 'Select Source*'
    Rests
    TypeName "Z:${1//\//\\}\\"
    Rests
    TypeName "$names"
    Expect SeesNoChooser
}
SeesNoChooser() { Look; [[ $modal != 'Select Source'* ]]; }

# The status bar.
Says() { Look; [[ $status == "$1" ]]; }

SamePixels()
{
    cmp -s <("$convert" "$1" -depth 16 rgb:-) <("$convert" "$2" -depth 16 rgb:-)
}

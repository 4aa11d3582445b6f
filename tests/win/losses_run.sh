#!/bin/bash
# Takes things away from a person at work: sources of a series while its dialog is open, the folder
# of a series, the photograph itself, the right to write settings, room on the disk. Each time the
# program has to say so, keep what it has, and the next attempt has to work.
#
# Full disks are mounted; where that is not permitted that part is left out.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/person.sh"
. "$(dirname "${BASH_SOURCE[0]}")/dialogs.sh"
trap CleanUp EXIT

folder=$scratch/series files=(s1.png s2.png s3.png s4.png s5.png) photo=$scratch/photo.tif
mounts=() told=0
CleanUp()
{
    local mount
    for mount in "${mounts[@]}"; do umount "$mount" || umount -l "$mount"; done
    ScreenDown
}

Windows() { echo "Z:${1//\//\\}"; }
MakeFiles()
{
    local i
    mkdir -p "$folder"
    for i in 1 2 3 4 5; do cp "$scratch/sample/sample_$i.png" "$folder/s$i.png"; done
}

# A box with that title that says all of these words; OK closes it.
Told() # TITLE WORDS...
{
    local words
    Until SeesModal "$1" || { Complain "$step: nobody says ${*:2}"; return; }
    for words in "${@:2}"; do
        [[ $modalText == *"$words"* ]] || Complain "$step: '$words' is not said: $modalText"
    done
    Shot "losses-$((++told))"
    ClickModal $IDOK
    Expect SeesNoModal
}

OpenSeries()
{
    Choose "$folder" "${files[@]}"
    Expect Sees $IDC_FUSION_SLIDER
    Rests
}
PressOk() { Sees $IDOK && Click $IDOK; }
HasClosed() { Expect SeesNot $IDC_FUSION_SLIDER; Expect Sees $ID_FILE_OPEN $ID_MULTI_IMAGE; }

SaveLike() # EXPECTED
{
    Look
    SaveAs "$scratch/result.tif"
    SamePixels "$scratch/result.tif" "$1" || Complain "$step: the saved picture is another one"
}

SaveAsTold() # FILE TITLE WORDS...
{
    Sees $ID_FILE_SAVEAS
    xdotool key ctrl+s
    Expect SeesModal 'Save As*'
    TypeName "$(Windows "$1")"
    Told "${@:2}"
}

LoseSources()
{
    local shows mid cannot
    cannot="Cannot open file: $(Windows "$folder")"
    step=losses-sources
    OpenSeries
    shows=$(ViewSum)
    rm "$folder/s2.png"
    xdotool key Right
    Expect Says "$cannot\\s2.png"
    Expect ShowsLike "$shows"
    xdotool key Right
    Expect Says 'Showing 3 of 5. Use arrows to change it or F5 to switch to Vexa image.'
    PageSlider $IDC_FUSION_SLIDER
    Told Warning "$cannot\\s2.png"
    "$convert" "$scratch/sample/sample_3.png" -resize 50% "$folder/s3.png" # another size
    echo none >"$folder/s4.png"
    Look
    PageSlider $IDC_FUSION_SLIDER
    Told Warning "$cannot\\s3.png" "$cannot\\s4.png"
    Look
    PageSlider $IDC_FUSION_SLIDER # and not once more
    Rests
    [[ -z $modal ]] || Complain "$step: $modalText"
    mid=$(Value $IDC_FUSION_SLIDER)
    PressOk
    HasClosed
    "$cli" fuse --quiet --exposure "$mid" -o "$scratch/expected.tif" "$folder"/s[15].png
    SaveLike "$scratch/expected.tif"
    xdotool key F5
    Expect Says 'Showing 3 of 5. Use arrows to change it.'

    step=losses-metadata
    rm "$folder/s1.png"
    SaveAsTold "$scratch/again.tif" Error "$cannot\\s1.png"
    SamePixels "$scratch/again.tif" "$scratch/expected.tif" || Complain "$step: another picture"

    step=losses-all
    MakeFiles
    OpenSeries
    shows=$(ViewSum)
    rm "$folder"/s*.png
    PageSlider $IDC_FUSION_SLIDER
    Told Warning "$cannot"\\s{1,2,3,4,5}.png
    PressOk
    Told Warning "$cannot"\\s{1,2,3,4,5}.png
    HasClosed
    MakeFiles
    OpenSeries
    mid=$(Value $IDC_FUSION_SLIDER)
    PressOk
    HasClosed
    "$cli" fuse --quiet --exposure "$mid" -o "$scratch/expected.tif" "$folder"/s*.png
    SaveLike "$scratch/expected.tif"
}

# At once: a worker may be about to make the next file in it.
TakeFolder()
{
    mv "$settings/tmpfolder" "$settings/taken"
    rm -r "$settings/taken"
}
HasFile() { compgen -G "$settings/tmpfolder/file_*.tif" >/dev/null; }
ShowsPhoto() { Expect ToolsAreOn; Park; Expect ShowsLike "$shows"; }

LoseFolder()
{
    local shows mid
    step=losses-folder
    Rests
    shows=$(ViewSum)
    Open $ID_SINGLE_LIGHT $IDC_FUSION_SLIDER
    TakeFolder
    PageSlider $IDC_FUSION_SLIDER
    Told Warning 'Cannot open file:' file_000.tif file_010.tif
    Sees $IDCANCEL
    Click $IDCANCEL
    ShowsPhoto

    step=losses-folder-ok
    Open $ID_SINGLE_LIGHT $IDC_FUSION_SLIDER
    TakeFolder
    PressOk
    Told Warning 'Cannot open file:' file_000.tif file_010.tif
    ShowsPhoto

    # Under the worker: what it could not write is no series.
    step=losses-folder-worker
    Click $ID_DAYLIGHT_UP
    Until HasFile || Complain "$step: no series begins"
    TakeFolder
    Told Warning 'Cannot open file:' file_
    ! Sees $IDC_FUSION_SLIDER || Click $IDCANCEL
    ShowsPhoto

    step=losses-folder-after
    Open $ID_SINGLE_LIGHT $IDC_FUSION_SLIDER
    mid=$(Value $IDC_FUSION_SLIDER)
    PressOk
    HasClosed
    "$cli" single --quiet --noise low --exposure "$mid" -o "$scratch/expected.tif" "$photo"
    SaveLike "$scratch/expected.tif"
}

# A tool that stores its sliders; the photograph goes while it is open.
UseSmartContrast()
{
    Look
    Click $ID_SMART_CONTRAST
    Expect Sees $IDC_LEVEL_SLIDER
    PageSlider $IDC_LEVEL_SLIDER
    PressOk
}
Stored() { sed -n "s/^$1=\([0-9]*\).*/\1/p" "$settings/Plenoviz.txt"; }
OnlyOneFile()
{
    [[ $(ls "$settings"/Plenoviz*) == "$settings/Plenoviz.txt" ]] || Complain "$step: something stays"
}

LoseSettings()
{
    local before
    step=losses-settings
    before=$(<"$settings/Plenoviz.txt")
    chmod 444 "$settings/Plenoviz.txt"
    UseSmartContrast
    Told Warning 'The settings cannot be saved.' Plenoviz.txt
    Expect ToolsAreOn
    SaveAsTold "$scratch/result.jpg" Warning 'The settings cannot be saved.'
    [[ -s $scratch/result.jpg ]] || Complain "$step: the result is not saved"
    [[ $(<"$settings/Plenoviz.txt") == "$before" ]] || Complain "$step: the file has changed"
    OnlyOneFile
    Ask endsession
    [[ ${rows[0]:-} == "E 1" ]] || Complain "$step: logging off is refused"
    Look
    [[ -z $modal ]] || Complain "$step: $modalText is in the way of logging off"

    step=losses-settings-end
    xdotool windowfocus "$window" key alt+F4
    Told Warning 'The settings cannot be saved.' Plenoviz.txt
    Expect HasEnded
    programPid=''
    chmod 644 "$settings/Plenoviz.txt"
    sed -i 's/^Crashed Last Time=1/Crashed Last Time=0/' "$settings/Plenoviz.txt"

    step=losses-settings-after
    Sit "$photo"
    UseSmartContrast
    Expect ToolsAreOn
    [[ $(Stored LOD_0) == 11 ]] || Complain "$step: nothing is stored: $(Stored LOD_0)"
}

Mounted() # FOLDER SIZE
{
    ((EUID == 0)) && mount -t tmpfs -o "size=$2" tmpfs "$1" 2>/dev/null && mounts+=("$1")
}
FillUp() { dd if=/dev/zero of="$1/rest" bs=1k 2>/dev/null || true; }

# With the result of before, which is in no file.
LoseRoom()
{
    local before
    mkdir "$scratch/full"
    Mounted "$scratch/full" 64k || { echo "full disks: left out, not permitted"; return; }
    step=losses-room
    FillUp "$scratch/full"
    before=$(ls -A "$scratch/full")
    SaveAsTold "$scratch/full/result.tif" Error 'The file cannot be' "$(Windows "$scratch/full")"
    [[ $(ls -A "$scratch/full") == "$before" ]] || Complain "$step: left: $(ls -A "$scratch/full")"
    mount -o remount,ro "$scratch/full"
    SaveAsTold "$scratch/full/other.tif" Error 'The file cannot be' "$(Windows "$scratch/full")"
    "$cli" smart-contrast --quiet --lod 11,10,10,10,10,10,10,10 -o "$scratch/expected.tif" "$photo"
    SaveLike "$scratch/expected.tif"

    step=losses-room-settings
    cp "$settings/Plenoviz.txt" "$scratch/"
    Mounted "$settings" 16k
    cp "$scratch/Plenoviz.txt" "$settings/"
    FillUp "$settings"
    UseSmartContrast
    Told Warning 'The settings cannot be saved.' Plenoviz.txt
    cmp "$scratch/Plenoviz.txt" "$settings/Plenoviz.txt" || Complain "$step: the file has changed"
    OnlyOneFile
    rm "$settings/rest"
    UseSmartContrastAgain
    Expect ToolsAreOn
    [[ $(Stored LOD_0) == 12 ]] || Complain "$step: nothing is stored: $(Stored LOD_0)"
}
UseSmartContrastAgain()
{
    Sees $ID_SMART_CONTRAST
    Click $ID_SMART_CONTRAST
    Expect SeesModal Warning # of the result that is in no file
    ClickModal $IDYES
    Expect Sees $IDC_LEVEL_SLIDER
    PageSlider $IDC_LEVEL_SLIDER
    PressOk
}

ProbeUp
settings=$(echo "$WINEPREFIX"/drive_c/users/[!P]*)/AppData/Roaming/Plenoviz
"$cli" sample --quiet --out-dir "$scratch/sample" --frames 5 --width 450 --height 300
for file in "$scratch"/sample/*.jpg; do "$convert" "$file" "${file%.jpg}.png"; done
"$convert" "$scratch/sample/sample_3.jpg" "$photo"
MakeFiles
Sit "$photo"
LoseFolder
LoseSources
Leave
Sit "$photo"
LoseSettings
LoseRoom
Leave
exit $((failed > 0))

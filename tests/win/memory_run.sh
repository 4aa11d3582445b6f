#!/bin/bash
# Tools that run out of memory say so and leave the photograph on the screen and the toolbar on.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/person.sh"

ShowsAsBefore()
{
    Expect ToolsAreOn
    Park
    Expect ShowsLike "$source"
}
SaysMemoryIsShort()
{
    patience=120 Expect SeesModal Warning
    Shot "$step"
    [[ $modalText == *memory* ]] || Complain "$step: says $modalText"
    ClickModal $IDOK
}

ProbeUp
"$cli" sample --quiet --out-dir "$scratch/series" --frames 1
"$convert" "$scratch/series/sample_1.jpg" -resize '6000x4000!' "$scratch/large.tif"
ulimit -S -d 600000 # kB; enough for the photograph and the program, not for the tools
step=memory-smart-contrast
Sit "$scratch/large.tif"
Rests
source=$(ViewSum)
Click $ID_SMART_CONTRAST
SaysMemoryIsShort
ShowsAsBefore

# This one opens, and is short of memory when it runs over the whole photograph.
step=memory-tone-map
Click $ID_TONE_MAPPING
Expect Sees $IDC_TONE_SLIDER
Click $IDOK
SaysMemoryIsShort
Expect Sees $IDC_TONE_SLIDER $IDCANCEL
Click $IDCANCEL
ShowsAsBefore
Leave
exit $((failed > 0))

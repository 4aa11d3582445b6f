#include "tools/ParameterControlsWnd.h"

#include "tools/ToolDialogWnd.h"

static SliderControl SliderControlOf(const ParameterControls& controls, int row)
{
    return {controls.slider + row, controls.value + row,
            ParametersOf(controls.tool)[row].stored.range};
}

void SetUpControls(HWND dialog, const ParameterControls& controls, const ToolNumbers& numbers)
{
    const ParameterRows rows = ParametersOf(controls.tool);
    for (int i = 0; i < rows.count; ++i)
    {
        const ParameterRow& row = rows[i];
        const bool isBox = row.kind == ParameterKind::CheckBox;
        if (row.text != kNoText)
            SetDlgItemTextW(dialog, (isBox ? controls.box : controls.label) + i, Text(row.text));
        if (row.kind == ParameterKind::Slider)
            SetUpSlider(dialog, SliderControlOf(controls, i), NumberOf(numbers, row));
        if (isBox)
            ShowNumber(dialog, controls, row, numbers);
    }
}

void EnableControls(HWND dialog, const ParameterControls& controls, bool enable)
{
    const ParameterRows rows = ParametersOf(controls.tool);
    for (int i = 0; i < rows.count; ++i)
    {
        if (rows[i].kind == ParameterKind::Slider)
            for (int id : {controls.label + i, controls.slider + i, controls.value + i})
                EnableWindow(GetDlgItem(dialog, id), enable);
        if (rows[i].kind == ParameterKind::CheckBox)
            EnableWindow(GetDlgItem(dialog, controls.box + i), enable);
    }
}

void ShowNumber(HWND dialog, const ParameterControls& controls, const ParameterRow& row,
                const ToolNumbers& numbers)
{
    const int i = int(&row - ParametersOf(controls.tool).first), number = NumberOf(numbers, row);
    if (row.kind == ParameterKind::CheckBox)
        CheckDlgButton(dialog, controls.box + i, number != 0 ? BST_CHECKED : BST_UNCHECKED);
    else
        ShowSlider(dialog, SliderControlOf(controls, i), number);
}

static const ParameterRow* RowOf(Tool tool, int i, ParameterKind kind)
{
    const ParameterRows rows = ParametersOf(tool);
    return i >= 0 && i < rows.count && rows[i].kind == kind ? &rows[i] : nullptr;
}

const ParameterRow* SliderOf(const ParameterControls& controls, int control)
{
    return RowOf(controls.tool, control - controls.slider, ParameterKind::Slider);
}

const ParameterRow* BoxOf(const ParameterControls& controls, int control)
{
    return RowOf(controls.tool, control - controls.box, ParameterKind::CheckBox);
}

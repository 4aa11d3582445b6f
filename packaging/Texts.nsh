; What installer and uninstaller say in their own words; the pages bring theirs along. The first
; language serves everybody whose own is missing.

!insertmacro MUI_LANGUAGE "English"

LangString TextRunning ${LANG_ENGLISH} "Plenoviz is running. Please close it first."
LangString TextStartMenu ${LANG_ENGLISH} "Start menu entry"
LangString TextOpenWith ${LANG_ENGLISH} "$\"Open with$\" for pictures"
LangString TextDesktop ${LANG_ENGLISH} "Desktop icon"
LangString TextSettings ${LANG_ENGLISH} "Settings"
LangString TextPicture ${LANG_ENGLISH} "Picture"
LangString TextProgramHint ${LANG_ENGLISH} "The program, its texts and the command line plenoviz-cli."
LangString TextStartMenuHint ${LANG_ENGLISH} "Starts Plenoviz from the start menu."
LangString TextOpenWithHint ${LANG_ENGLISH} "Offers Plenoviz for BMP, JPEG, TIFF and PNG pictures. What opens them by default stays as it is."
LangString TextDesktopHint ${LANG_ENGLISH} "Starts Plenoviz from the desktop."
LangString TextRemoveHint ${LANG_ENGLISH} "The program and the exposures of its last series. Your pictures stay."
LangString TextSettingsHint ${LANG_ENGLISH} "The positions of the sliders and the quality of JPEG files. Without this they wait for the next installation."

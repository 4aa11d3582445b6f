; The installer. `./package` passes SOURCE (folder with the files to install), OUTPUT (file to
; write), VERSION, FILE_VERSION (four numbers), ICON, the two bitmaps of the pages, and two lists of
; instructions that name every file: FILES_TO_ADD and FILES_TO_REMOVE.
;
; Everything belongs to the user who installs: no administrator is asked for, and the texts stay
; writable, which is where the program keeps the language that was chosen.
;
;   /S         asks and shows nothing, for installer and uninstaller
;   /D=FOLDER  where to install, without quotes and as the last argument
;   /PURGE     the uninstaller removes the settings as well

Unicode true
Target amd64-unicode
ManifestDPIAware true
SetCompressor /SOLID lzma
RequestExecutionLevel user

!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include Sections.nsh

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Plenoviz"
!define PATH_KEY "Software\Microsoft\Windows\CurrentVersion\App Paths\Plenoviz.exe"
!define PROGRAM_KEY "Software\Classes\Applications\Plenoviz.exe"
!define PICTURE_CLASS "Plenoviz.Picture"
!define TEXTS "Plenoviz_loc.ini"

Name "Plenoviz"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Plenoviz"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
BrandingText "Plenoviz ${VERSION}"
ShowInstDetails nevershow
ShowUninstDetails nevershow

VIProductVersion "${FILE_VERSION}"
VIAddVersionKey "CompanyName" "Plenoviz"
VIAddVersionKey "FileDescription" "Plenoviz Setup"
VIAddVersionKey "FileVersion" "${FILE_VERSION}"
VIAddVersionKey "ProductName" "Plenoviz"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "Plenoviz"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${SIDE_BITMAP}"
!define MUI_UNWELCOMEFINISHPAGE_BITMAP "${SIDE_BITMAP}"
!define MUI_HEADERIMAGE
!define MUI_HEADERIMAGE_BITMAP "${HEADER_BITMAP}"
!define MUI_COMPONENTSPAGE_SMALLDESC
!define MUI_FINISHPAGE_RUN "$INSTDIR\Plenoviz.exe"

!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_COMPONENTS
!insertmacro MUI_UNPAGE_INSTFILES
!include "Texts.nsh"

; The program keeps its file open while it runs, and would be left half replaced.
!macro WaitForEnd prefix
Function ${prefix}WaitForEnd
again:
    FindWindow $0 "Plenoviz"
    ${If} $0 != 0
        MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(TextRunning)" /SD IDCANCEL IDRETRY again
        SetErrorLevel 2
        Quit
    ${EndIf}
FunctionEnd
!macroend
!insertmacro WaitForEnd ""
!insertmacro WaitForEnd "un."

; The shell reads anew which program opens what.
!macro TellShell
    System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
!macroend

!macro ForEachEnding action
    !insertmacro ${action} ".bmp"
    !insertmacro ${action} ".jpg"
    !insertmacro ${action} ".jpeg"
    !insertmacro ${action} ".tif"
    !insertmacro ${action} ".tiff"
    !insertmacro ${action} ".png"
!macroend
!macro OfferFor ending
    WriteRegStr HKCU "${PROGRAM_KEY}\SupportedTypes" "${ending}" ""
    WriteRegStr HKCU "Software\Classes\${ending}\OpenWithProgids" "${PICTURE_CLASS}" ""
!macroend
!macro WithdrawFor ending
    DeleteRegValue HKCU "Software\Classes\${ending}\OpenWithProgids" "${PICTURE_CLASS}"
    DeleteRegKey /ifempty HKCU "Software\Classes\${ending}\OpenWithProgids"
    DeleteRegKey /ifempty HKCU "Software\Classes\${ending}"
!macroend

; The language of a former installation stays, and a new one begins with that of the user, where
; the texts have it. $9 is the former number, empty when there was none.
Function ChooseLanguage
    ReadINIStr $1 "$INSTDIR\${TEXTS}" "General" "Languages No"
    ${If} $9 == ""
        System::Call 'kernel32::GetLocaleInfoW(i 0x400, i 0x59, w .r2, i ${NSIS_MAX_STRLEN})'
        StrCpy $0 0
        ${While} $0 < $1
            ReadINIStr $3 "$INSTDIR\${TEXTS}" "$0" "Acronym"
            StrCpy $3 $3 2 ; "pt" of "pt-BR"
            ${If} $3 == $2
                StrCpy $9 $0
            ${EndIf}
            IntOp $0 $0 + 1
        ${EndWhile}
    ${EndIf}
    ${If} $9 != ""
    ${AndIf} $9 >= 0
    ${AndIf} $9 < $1
        WriteINIStr "$INSTDIR\${TEXTS}" "General" "Language Current" "$9"
    ${EndIf}
FunctionEnd

Section "Plenoviz" SectionProgram
    SectionIn RO
    Call WaitForEnd
    SetOutPath "$INSTDIR"
    ReadINIStr $9 "$INSTDIR\${TEXTS}" "General" "Language Current"
    !include "${FILES_TO_ADD}"
    Call ChooseLanguage
    WriteUninstaller "$INSTDIR\Uninstall.exe"

    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "Plenoviz"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\Plenoviz.exe"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "Plenoviz"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $0
    WriteRegStr HKCU "${PATH_KEY}" "" "$INSTDIR\Plenoviz.exe"
SectionEnd

Section "$(TextStartMenu)" SectionStartMenu
    CreateShortCut "$SMPROGRAMS\Plenoviz.lnk" "$INSTDIR\Plenoviz.exe"
SectionEnd

Section "$(TextOpenWith)" SectionOpenWith
    WriteRegStr HKCU "${PROGRAM_KEY}" "FriendlyAppName" "Plenoviz"
    WriteRegStr HKCU "${PROGRAM_KEY}\DefaultIcon" "" "$INSTDIR\Plenoviz.exe,0"
    WriteRegStr HKCU "${PROGRAM_KEY}\shell\open\command" "" '"$INSTDIR\Plenoviz.exe" "%1"'
    WriteRegStr HKCU "Software\Classes\${PICTURE_CLASS}" "" "$(TextPicture)"
    WriteRegStr HKCU "Software\Classes\${PICTURE_CLASS}\DefaultIcon" "" "$INSTDIR\Plenoviz.exe,0"
    WriteRegStr HKCU "Software\Classes\${PICTURE_CLASS}\shell\open\command" "" \
        '"$INSTDIR\Plenoviz.exe" "%1"'
    !insertmacro ForEachEnding OfferFor
    !insertmacro TellShell
SectionEnd

Section /o "$(TextDesktop)" SectionDesktop
    CreateShortCut "$DESKTOP\Plenoviz.lnk" "$INSTDIR\Plenoviz.exe"
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionProgram} "$(TextProgramHint)"
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionStartMenu} "$(TextStartMenuHint)"
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionOpenWith} "$(TextOpenWithHint)"
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionDesktop} "$(TextDesktopHint)"
!insertmacro MUI_FUNCTION_DESCRIPTION_END

; Only what was installed goes, by name: the folder may hold pictures by now. The exposures of the
; last series are no settings, and they are large.
Section "un.Plenoviz" SectionRemove
    SectionIn RO
    Call un.WaitForEnd
    !include "${FILES_TO_REMOVE}"
    Delete "$INSTDIR\Uninstall.exe"
    RMDir "$INSTDIR"
    FindFirst $0 $1 "$APPDATA\Plenoviz\tmpfolder*"
    ${While} $1 != ""
        Delete "$APPDATA\Plenoviz\$1\file_*.tif"
        RMDir "$APPDATA\Plenoviz\$1"
        FindNext $0 $1
    ${EndWhile}
    FindClose $0
    RMDir "$APPDATA\Plenoviz"

    Delete "$SMPROGRAMS\Plenoviz.lnk"
    Delete "$DESKTOP\Plenoviz.lnk"
    DeleteRegKey HKCU "${UNINSTALL_KEY}"
    DeleteRegKey HKCU "${PATH_KEY}"
    DeleteRegKey HKCU "${PROGRAM_KEY}"
    DeleteRegKey HKCU "Software\Classes\${PICTURE_CLASS}"
    !insertmacro ForEachEnding WithdrawFor
    !insertmacro TellShell
SectionEnd

Section /o "un.$(TextSettings)" SectionSettings
    Delete "$APPDATA\Plenoviz\Plenoviz.txt"
    RMDir "$APPDATA\Plenoviz"
SectionEnd

!insertmacro MUI_UNFUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionRemove} "$(TextRemoveHint)"
    !insertmacro MUI_DESCRIPTION_TEXT ${SectionSettings} "$(TextSettingsHint)"
!insertmacro MUI_UNFUNCTION_DESCRIPTION_END

Function un.onInit
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/PURGE" $1
    ${IfNot} ${Errors}
        !insertmacro SelectSection ${SectionSettings}
    ${EndIf}
FunctionEnd

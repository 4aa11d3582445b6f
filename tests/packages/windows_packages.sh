#!/bin/bash
# Installs, uses and removes what ./package makes for Windows, as a stranger would, and looks at
# files and registry in between. The wine folder is the test's own.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../../cmake/screen.sh"
trap ScreenDown EXIT
packages=$scratch/packages photos="$scratch/Zdjęcia 写真" registry=$scratch/registry.txt failed=0

Complain() { echo "$1" >&2; failed=1; }
Windows() { local path=$1; echo "Z:${path//\//\\}"; }
# All that the registry holds for the user, in $registry.
ReadRegistry()
{
    wine reg export HKCU "$(Windows "$scratch/registry")" /y >/dev/null
    iconv -f UTF-16 -t UTF-8 "$scratch/registry" | tr -d '\r' >"$registry"
}
# Lines of one key: RegistryKey KEY, below the classes.
RegistryKey() { grep -Fx -A6 "[HKEY_CURRENT_USER\\Software\\Classes\\$1]" "$registry" | sed '/^$/,$d'; }
HasTitle() { [[ $(xdotool getwindowname "$window" 2>/dev/null) == "$1" ]]; }
ShowsRed() { Shot packages; [[ $(Pixel 480 358) == "255 0 0" ]]; }
IsGone() { [[ ! -e $1 ]]; }

# The window with a red photograph in it, whose path has every kind of letter.
UseProgram()
{
    program=$1
    StartProgram "$(Windows "$photos/czerwień 赤.png")"
    Until HasTitle "Plenoviz - $(Windows "$photos/czerwień 赤.png")" ||
        Complain "$2: the photograph does not open, the title is '$(xdotool getwindowname "$window")'"
    Until ShowsRed || Complain "$2: the photograph is not shown (see out/packages.png)"
}
CloseProgram()
{
    local tries
    for ((tries = 0; tries < 5; tries++)); do
        xdotool windowfocus "$window" key alt+F4 2>/dev/null || true
        patience=10 Until HasEnded && break
    done
    wait "$programPid" || Complain "the program ends with exit code $?"
    programPid=''
}

# Its pictures are the ones that this machine makes, to the last bit. Windows leaves the star to it.
FuseWith()
{
    wine "$1" fuse --quiet -o "$(Windows "$photos/fused.bmp")" \
        "$(Windows "$photos/sample_*.jpg")" ||
        Complain "$2: the command line fails"
    cmp -s "$photos/fused.bmp" "$scratch/expected.bmp" || Complain "$2: the fused picture differs"
    rm -f "$photos/fused.bmp"
}

# The number of the language in the file of texts.
Language() { iconv -f UTF-16 -t UTF-8 "$installed/Plenoviz_loc.ini" | tr -d '\r' | sed -n 's/^Language Current=//p'; }
SetLanguage()
{
    iconv -f UTF-16 -t UTF-8 "$installed/Plenoviz_loc.ini" | sed "s/^\(Language Current=\)[0-9]*/\1$1/" |
        iconv -f UTF-8 -t UTF-16LE >"$scratch/texts"
    { printf '\xff\xfe'; cat "$scratch/texts"; } >"$installed/Plenoviz_loc.ini"
}

Uninstall()
{
    wine "$installed/Uninstall.exe" "$@"
    # It goes on as a copy of itself, since nobody can delete himself; the server ends after it.
    timeout 60 wineserver -w || Complain "the uninstaller does not end"
    IsGone "$installed/Uninstall.exe" || Complain "the uninstaller stays"
    IsGone "$menu" || Complain "the start menu entry stays"
}

"$root/package" --out-dir "$packages" windows
mkdir -p "$photos" "$root/out"
"$root/run" sample --quiet --out-dir "$photos" --width 300 --height 200 --frames 2
"$root/run" fuse --quiet -o "$scratch/expected.bmp" "$photos"/sample_*.jpg
convert -size 600x400 xc:red "png24:$photos/czerwień 赤.png"

ScreenFolder packages
ScreenUp
user=$(echo "$WINEPREFIX"/drive_c/users/[!P]*)
installed=$user/AppData/Local/Programs/Plenoviz
settings=$user/AppData/Roaming/Plenoviz
menu="$user/AppData/Roaming/Microsoft/Windows/Start Menu/Programs/Plenoviz.lnk"
rm -rf "$installed" "$settings"
# What another program offers is not ours to touch.
wine reg add 'HKCU\Software\Classes\.png\OpenWithProgids' /v Other.Picture /f >/dev/null

wine "$packages"/*-setup.exe /S || Complain "setup ends with exit code $?"
unzip -q "$packages"/*-windows.zip -d "$photos"
diff <(cd "$photos/Plenoviz" && find . -type f | sort) \
    <(cd "$installed" && find . -type f ! -name Uninstall.exe | sort) ||
    Complain "zip and setup bring different files"
for name in freeimage libjpeg-turbo libpng1.6 tiff libwebp libraw lcms2 libzstd xz-utils lerc imath onetbb libz gcc mingw-w64; do
    grep -q '[a-z]' "$installed/Notices/$name"*.txt || Complain "no notice of $name"
done
grep -q 'FreeImage Public License' "$installed/Notices/freeimage.txt" || Complain "wrong notice of FreeImage"
for program in Plenoviz plenoviz-cli; do
    header=$(x86_64-w64-mingw32-objdump -p "$installed/$program.exe")
    for flag in HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT; do
        [[ $header == *"$flag"* ]] || Complain "$program.exe is not $flag"
    done
    version=$(sed -n 's/^project(Plenoviz VERSION \([0-9.]*\) .*/\1/p' "$root/CMakeLists.txt")
    grep -qa "name=\"Plenoviz[.A-Za-z]*\" version=\"$version.0\"" "$installed/$program.exe" ||
        Complain "the manifest of $program.exe has another version"
done
[[ -s $menu ]] || Complain "no start menu entry"
ReadRegistry
for ending in bmp jpg jpeg tif tiff png; do
    [[ $(RegistryKey ".$ending\\OpenWithProgids") == *'"Plenoviz.Picture"'* ]] ||
        Complain "not offered for .$ending"
done
for class in Plenoviz.Picture Applications\\Plenoviz.exe; do
    [[ $(RegistryKey "$class\\shell\\open\\command") == *'@="\"C:'*'\\Plenoviz.exe\" \"%1\""'* ]] ||
        Complain "$class opens nothing: $(RegistryKey "$class\\shell\\open\\command")"
done
command=$(RegistryKey 'Plenoviz.Picture\shell\open\command' | sed -n 's/^@="\\"\(.*\)\\" .*/\1/p')
paths='[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\App Paths\Plenoviz.exe]'
[[ $(grep -Fx -A1 "$paths" "$registry") == *'@="C:'*'\\Plenoviz.exe"' ]] || Complain "not found by its name"
UseProgram "${command//\\\\/\\}" installed
code=0
wine "$packages"/*-setup.exe /S || code=$?
((code == 2)) || Complain "setup with the program running ends with $code"
code=0
wine "$installed/Uninstall.exe" /S "_?=$(wine winepath -w "$installed" 2>/dev/null | tr -d '\r')" || code=$?
((code == 2)) || Complain "uninstall with the program running ends with $code"
[[ -f $installed/Plenoviz.exe && -f $menu ]] || Complain "a running program is removed"
CloseProgram
FuseWith "$installed/plenoviz-cli.exe" installed
SetLanguage 7
wine "$packages"/*-setup.exe /S || Complain "setup over an older one ends with exit code $?"
[[ $(Language) == 7 ]] || Complain "setup forgets the language: $(Language)"
[[ -f $settings/Plenoviz.txt ]] || Complain "no settings"

mkdir -p "$settings/tmpfolder"
touch "$settings/tmpfolder/file_000.tif" "$installed/my photo.jpg"
Uninstall /S
[[ $(ls "$installed") == "my photo.jpg" ]] || Complain "left of the program: $(ls "$installed")"
[[ $(ls "$settings") == Plenoviz.txt ]] || Complain "left of the settings: $(ls "$settings")"
ReadRegistry
grep -i 'plenoviz' "$registry" && Complain "left in the registry"
[[ $(RegistryKey '.png\OpenWithProgids') == *Other.Picture* ]] || Complain "another program is no longer offered"

rm "$installed/my photo.jpg"
wine "$packages"/*-setup.exe /S
Uninstall /S /PURGE
IsGone "$settings" || Complain "left after a purge: $(ls "$settings")"
IsGone "$installed" || Complain "left of the program: $(ls "$installed")"

UseProgram "$photos/Plenoviz/Plenoviz.exe" unpacked
CloseProgram
FuseWith "$photos/Plenoviz/plenoviz-cli.exe" unpacked
exit $failed

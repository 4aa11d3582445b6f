#!/bin/bash
# Places that take no file, files that are none, and numbers that make no sense:
#
#   bad_places.sh PLENOVIZ_CLI
#
# Every failure is one line and an exit code, leaves what was there as it was and nothing beside it,
# and the next attempt in a better place works. As root, real full and read-only file systems are
# mounted; else the limit on file sizes stands in for the first, and the second is left out.

set -uo pipefail
# The date of change that results get: the same picture is the same bytes then.
export SOURCE_DATE_EPOCH=1700000000
cli=$(realpath "$1")
work=$(mktemp -d)
mounts=()
CleanUp()
{
    local mount
    for mount in "${mounts[@]}"; do umount "$mount"; done
    chattr -i "$work/fixed/out.png" 2>/dev/null
    rm -rf "$work"
}
trap CleanUp EXIT
cd "$work" || exit 1
failures=0 checks=0

Complain() { echo "bad_places: $*" >&2; failures=$((failures + 1)); }

# Runs the program; its exit code must be the first argument, its message hold the second.
Expect()
{
    local code=$1 text=$2 said
    shift 2
    checks=$((checks + 1))
    said=$("$@" 2>&1 >/dev/null </dev/null)
    local got=$?
    ((got == code)) || Complain "exit code $got instead of $code: $* ($said)"
    [[ $said == *"$text"* ]] || Complain "'$text' is not said: $* ($said)"
    ((code == 0)) || (($(wc -l <<<"$said") == 1)) || Complain "not one line: $* ($said)"
}

# The same for a target that must not change, in a folder that must not fill up.
ExpectUntouched()
{
    local target=$1 before after
    shift
    before=$(sha256sum "$target" 2>&1; ls -A "$(dirname "$target")")
    Expect "$@"
    after=$(sha256sum "$target" 2>&1; ls -A "$(dirname "$target")")
    [[ $before == "$after" ]] || Complain "$target or its folder has changed: $*"
}

Mounted()
{
    local folder=$1
    shift
    ((EUID == 0)) && mount "$@" "$folder" 2>/dev/null && mounts+=("$folder")
}

"$cli" sample -q --width 96 --height 64 --frames 3 --out-dir .
"$cli" fuse -q -o good.png sample_1.jpg sample_2.jpg || exit 1
"$cli" fuse -q -o good.tif sample_1.jpg
mkdir full fixed locked folder.png 'a b' deep

# Disks that are full.
if Mounted full -t tmpfs -o size=16k tmpfs; then
    cp sample_1.jpg full/out.png
    dd if=/dev/zero of=full/rest bs=1k 2>/dev/null
    for name in out.png out.tif out.bmp out.jpg; do
        ExpectUntouched full/out.png 1 "No space" "$cli" fuse -q -o "full/$name" sample_1.jpg
    done
    ExpectUntouched full/out.png 1 "No space" "$cli" series --out-dir full single sample_1.jpg
    Expect 1 "" "$cli" sample -q --width 96 --height 64 --out-dir full/new
    rm full/rest
    mount -o remount,size=4m full
    Expect 0 "" "$cli" fuse -q -o full/out.png sample_1.jpg sample_2.jpg
    cmp -s full/out.png good.png || Complain "the attempt after the full disk differs"
else
    Limited() { (trap '' XFSZ; ulimit -f 1; exec "$@"); }
    cp sample_1.jpg out.png
    ExpectUntouched out.png 1 "cannot be written" Limited "$cli" fuse -q -o out.png sample_1.jpg
fi

# Targets that are not to be replaced.
cp sample_1.jpg fixed/out.png
chmod 444 fixed/out.png
ExpectUntouched fixed/out.png 2 "Permission denied" "$cli" fuse -q -o fixed/out.png sample_1.jpg
chmod 644 fixed/out.png
if ((EUID == 0)) && chattr +i fixed/out.png 2>/dev/null; then
    ExpectUntouched fixed/out.png 2 "cannot be" "$cli" fuse -q -o fixed/out.png sample_1.jpg
    chattr -i fixed/out.png
fi
Expect 0 "" "$cli" fuse -q -o fixed/out.png sample_1.jpg
if Mounted locked -t tmpfs tmpfs; then
    cp sample_1.jpg locked/out.png
    mount -o remount,ro locked
    ExpectUntouched locked/out.png 2 "Read-only" "$cli" fuse -q -o locked/out.png sample_1.jpg
    Expect 2 "folder cannot be made" "$cli" series --out-dir locked/new single sample_1.jpg
    # Read-only media are fine to read from.
    Expect 0 "" "$cli" fuse -q -o read.png locked/out.png
fi
ExpectUntouched good.png 2 "s a directory" "$cli" fuse -q -o folder.png sample_1.jpg
Expect 2 "No such file" "$cli" fuse -q -o missing/out.png sample_1.jpg
Expect 2 "Not a directory" "$cli" fuse -q -o good.png/out.png sample_1.jpg
mkfifo pipe.png
ExpectUntouched good.png 2 "cannot be created" "$cli" fuse -q -o pipe.png sample_1.jpg
ln -s /dev/full device.png
ExpectUntouched good.png 2 "cannot be created" "$cli" fuse -q -o device.png sample_1.jpg
[[ -L device.png && -c /dev/full ]] || Complain "the device is gone"
ln -s loop.png loop.png
Expect 2 "cannot be created" "$cli" fuse -q -o loop.png sample_1.jpg

# Links stay, and what they point to is replaced, whether it is there or not.
cp sample_1.jpg real.png
ln -s real.png link.png
ln -s 'a b/new.png' later.png
for link in link.png later.png; do
    Expect 0 "" "$cli" fuse -q -o $link sample_1.jpg sample_2.jpg
    [[ -L $link ]] && cmp -s $link good.png || Complain "$link is not the link to the result"
done

# A result takes no input's place, whatever names lead to it, and no other result's.
cp good.png same.png
ln same.png twin.png
ln -s same.png alias.png
for out in same.png ./same.png twin.png alias.png; do
    ExpectUntouched same.png 2 "would overwrite the input 'same.png'" "$cli" fuse -q -o $out sample_1.jpg same.png
    ExpectUntouched same.png 2 "would overwrite" "$cli" single -q -o "$work/$out" same.png
done
mkdir own
cp sample_1.jpg own/a.jpg
cp sample_2.jpg own/a-vexa.jpg
ExpectUntouched own/a-vexa.jpg 2 "would overwrite the input 'own/a-vexa.jpg'" \
    "$cli" smart-contrast -q --out-dir own/../own own/a.jpg own/a-vexa.jpg
Expect 0 "" "$cli" smart-contrast -q --out-dir own own/a.jpg
mkdir exposures
"$cli" series --out-dir exposures single sample_1.jpg >names
source=exposures/$(head -n 1 names)
ExpectUntouched "$source" 2 "would overwrite" "$cli" series --out-dir exposures single "$source"
mkdir two
cp sample_1.jpg two/b.jpg
touch results.jpg
ln -s ../results.jpg own/b-vexa.jpg
ln -s ../results.jpg own/c-vexa.jpg
cp sample_1.jpg two/c.jpg
ExpectUntouched results.jpg 2 "another result" "$cli" smart-contrast -q --out-dir own two/b.jpg two/c.jpg

# Sources that are no pictures.
: >empty.jpg
head -c 30000 /dev/urandom >noise.jpg
head -c 300 good.png >half.png
printf 'P5 100000 100000 255\n' >claims.pgm
printf 'GIF89a\xff\xff\xff\xff\x00\x00\x00,\x00\x00\x00\x00\xff\xff\xff\xff\x00' >claims.gif
for source in empty.jpg noise.jpg half.png claims.pgm claims.gif missing.jpg folder.png /dev/null \
    good.png/x ''; do
    ExpectUntouched real.png 1 "" timeout 20 "$cli" fuse -q -o real.png "$source"
    ExpectUntouched real.png 1 "" timeout 20 "$cli" tone-map -q -o real.png "$source"
done

# A source that goes away between two of them, and numbers that make no sense.
ExpectUntouched real.png 1 "gone.jpg: no such file" "$cli" fuse -q -o real.png sample_1.jpg gone.jpg
for number in nan inf -1 1e3 99999999999999999999 0x10 ' 100' 100.5 ''; do
    ExpectUntouched real.png 2 "whole number" "$cli" fuse -q --exposure "$number" -o real.png good.png
    ExpectUntouched real.png 2 "whole number" "$cli" fuse -q --threads "$number" -o real.png good.png
done
Expect 2 "eight numbers" "$cli" smart-contrast --lod 1,2,3,4,5,6,7,nan -o real.png good.png
Expect 2 "not empty" "$cli" fuse -o '' good.png

# Names that look like options, and names with everything that a name may have.
cp good.png ./-o
Expect 0 "" "$cli" fuse -q -o ./-x.png -- -o
Expect 0 "" "$cli" fuse -q --output=-y.png -- -o
[[ -s ./-x.png && -s ./-y.png ]] || Complain "results with a dash in front are missing"
odd=$'q\'"\\ \t\n*?[]{}$;&|<>~#%:äß漢字 🙂 e\xcc\x81'
for name in "$odd" $'bad-\xff\xfe-utf8' . ' ' '...'; do
    [[ $name == . ]] && continue
    cp good.png "a b/$name"
    Expect 0 "" "$cli" fuse -q -o "a b/$name.png" "a b/$name"
    cmp -s "a b/$name.png" "$work/a b/$name.png" || Complain "no result for '$name'"
done

echo "$checks checks, $failures complaints"
exit $((failures > 0))

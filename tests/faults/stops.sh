#!/bin/bash
# What ends the command line early, and what it is cut off from:
#
#   stops.sh PLENOVIZ_CLI
#
# Signals in the middle of a save leave the old file or the new one and nothing beside it, several
# files come together or not at all, and pipes, closed streams and a system without threads are
# worked with.

set -uo pipefail
cli=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

Complain() { echo "stops: $*" >&2; failures=$((failures + 1)); }
Siblings() { find "${1:-.}" -name '.plenoviz-*'; }
Sum() { sha256sum <"$1"; }
# Waits until a save is under way, or the program has ended.
Saving() { until [[ -n $(Siblings "$1") || ! -d /proc/$2 ]]; do :; done; }

Noise() { printf 'P6 %d %d 255\n' "$1" "$2"; head -c $(($1 * $2 * 3)) /dev/urandom; } # a portable map
Noise 1200 900 >sample_1.ppm
Noise 1200 900 >sample_2.ppm
Noise 80 60 >small.ppm
"$cli" fuse -q -o sample_1.jpg sample_1.ppm && "$cli" fuse -q -o sample_2.jpg sample_2.ppm &&
    "$cli" fuse -q -o small.png small.ppm || exit 1

# One signal asks for an orderly end: exit code 1, the old file, one line. Of two, the second ends the
# program as it would without us. A background job has SIGINT ignored unless `set -m` is on.
mkdir out
for signals in 'TERM' 'HUP' 'INT' 'INT INT' 'TERM TERM' 'TERM HUP'; do
    cp small.png out/out.png
    (
        set -m
        "$cli" fuse -q -o out/out.png sample_1.jpg sample_2.jpg 2>said &
        Saving out $!
        for signal in $signals; do
            kill -"$signal" $! 2>/dev/null
            sleep 0.003
        done
        wait $!
        echo $? >code
    ) 2>/dev/null
    case $signals:$(<code) in
    ??? | ????) ;;
    *' '*:129 | *' '*:130 | *' '*:143) ;;
    *:1) [[ $(<said) == 'plenoviz-cli: stopped' ]] || Complain "$signals: said $(<said)" ;;
    *) Complain "$signals: exit code $(<code)" ;;
    esac
    cmp -s out/out.png small.png || Complain "$signals: the old file is gone"
    [[ -z $(Siblings) ]] || Complain "$signals: left behind: $(Siblings)"
done
# A whole batch tells how far it got, and what is done stays.
mkdir photos results
for i in 1 2 3 4; do cp sample_1.jpg photos/$i.jpg; done
(
    set -m
    "$cli" smart-contrast -q --out-dir results photos/*.jpg 2>said &
    until [[ -e results/1-vexa.jpg || ! -d /proc/$! ]]; do :; done
    kill -TERM $!
    wait $!
    echo $? >code
) 2>/dev/null
done=$(find results -name '*-vexa.jpg' | wc -l)
[[ $(<code) == 1 && $(<said) == "plenoviz-cli: stopped: $done of 4 pictures done, 0 failed, $((4 - done)) not tried" ]] ||
    Complain "a stopped batch with $done results says: $(<said), exit code $(<code)"
# Who has set a signal to be ignored goes on having that.
(
    trap '' HUP TERM
    "$cli" fuse -q -o ignoring.png sample_1.jpg sample_2.jpg &
    sleep 0.05
    kill -HUP $!
    kill -TERM $!
    wait $!
) || Complain "an ignored signal has stopped the program: $?"

# Files that grow too large and readers that go away are failures like others.
said=$(ulimit -f 200; "$cli" fuse -q -o limited.png sample_1.jpg 2>&1)
[[ $? == 1 && $said == *'limited.png: the file cannot be written: File too large' ]] || Complain "too large: $said"
for out in /dev/full /dev/closed; do
    for command in --help 'fuse -o written.png sample_1.jpg' 'series --out-dir written single small.png'; do
        # shellcheck disable=SC2086 # the words are arguments
        if [[ $out == /dev/full ]]; then
            said=$("$cli" $command 2>&1 >/dev/full)
        else
            said=$("$cli" $command 2>&1 >&-)
        fi
        [[ $? == 1 && $said == 'plenoviz-cli: the standard output cannot be written' ]] ||
            Complain "$command to $out: $said"
    done
done
cmp -s written.png <("$cli" fuse -q -o again.png sample_1.jpg && cat again.png) ||
    Complain "what was said went into the picture"
{ "$cli" series --out-dir written single small.png; echo $? >code; } 2>/dev/null | true
[[ $(<code) == 1 ]] || Complain "exit code $(<code) when nobody reads"
[[ -z $(Siblings) ]] || Complain "left behind: $(Siblings)"

# All files of a series or none: of a stop, of a failure in the last one, and of two runs at once.
mkdir parts
"$cli" series --out-dir parts daylight-up small.png >names || Complain "no series"
before=$(cat parts/* | sha256sum)
(
    set -m
    "$cli" series --out-dir parts daylight-down small.png >/dev/null 2>said &
    Saving parts $!
    kill -INT $!
    wait $!
) 2>/dev/null
[[ $(<said) == *stopped && $before == $(cat parts/* | sha256sum) && -z $(Siblings parts) ]] ||
    Complain "a stopped series has changed files: $(ls -A parts)"
(ulimit -f 15; "$cli" series --out-dir new/parts daylight-up small.png) >/dev/null 2>&1 &&
    Complain "no limit"
[[ ! -e new ]] || Complain "a failed series leaves $(ls -A new/parts)"
"$cli" sample -q --width 40 --height 30 --frames 9 --out-dir a
"$cli" sample -q --width 30 --height 40 --frames 9 --out-dir b
for ((i = 0; i < 4; i++)); do
    "$cli" sample -q --width 40 --height 30 --frames 9 --out-dir shared &
    "$cli" sample -q --width 30 --height 40 --frames 9 --out-dir shared &
done
wait
shared=$(cat shared/* | sha256sum)
[[ $shared == $(cat a/* | sha256sum) || $shared == $(cat b/* | sha256sum) ]] || Complain "two series are mixed"
[[ $(ls -A shared | wc -l) == 9 ]] || Complain "in the shared folder: $(ls -A shared)"

# Other names of a replaced file keep what they have, and that is told.
cp small.png marked.png
ln marked.png twin.png
said=$("$cli" fuse -o marked.png sample_1.jpg sample_2.jpg)
[[ $said == *', under this name only: 1 other name keeps the old file' ]] || Complain "other names: $said"
cmp -s twin.png small.png || Complain "the other name has changed"

# Names cannot steer a terminal.
cp small.png $'a\nb\e[31m\xff\u202e.png'
said=$("$cli" fuse -o $'o\t.png' $'a\nb\e[31m\xff\u202e.png' missing.png 2>&1)
[[ $said == 'plenoviz-cli: missing.png: no such file' ]] || Complain "an odd name is not read: $said"
said=$("$cli" fuse -o $'o\t.png' $'a\nb\e[31m\xff\u202e.png' $'\r.png' 2>&1)
[[ $said == 'plenoviz-cli: \r.png: no such file' ]] || Complain "shown as $said"
said=$("$cli" smart-contrast --out-dir . $'a\nb\e[31m\xff\u202e.png')
[[ $said == './a\nb\x1b[31m\xff\u202e-vexa.png: '* ]] || Complain "shown as $said"

# Pipes are pictures like others, as often as they are looked at.
"$cli" fuse -q -o files.png sample_1.jpg sample_2.jpg
"$cli" fuse -q -o pipes.png <(cat sample_1.jpg) <(cat sample_2.jpg) || Complain "pipes are not read"
cmp -s files.png pipes.png || Complain "pipes give another picture"
mkfifo named.jpg
cat sample_1.jpg >named.jpg &
"$cli" smart-contrast -q --out-dir . named.jpg || Complain "a named pipe is not read"
[[ -s named-vexa.jpg && -p named.jpg ]] || Complain "no result of a named pipe"

# No other thread can be had: everything is done on the one.
if ((EUID == 0)); then
    chmod 777 .
    Alone() { (ulimit -u 1; exec setpriv --reuid 65534 --clear-groups "$cli" "$@"); }
    "$cli" tone-map -q -o many.png small.png
    Alone tone-map -q -o one.png small.png && cmp -s one.png many.png || Complain "tone-map alone"
    Alone fuse -q -o one.png sample_1.jpg sample_2.jpg && cmp -s one.png files.png || Complain "fuse alone"
    for command in single smart-contrast daylight-down; do
        Alone $command -q --out-dir alone small.png || Complain "$command alone"
    done
    Alone series --out-dir alone single small.png >/dev/null || Complain "series alone"
    Alone sample -q --width 100 --height 100 --out-dir alone || Complain "sample alone"
fi

echo "$failures complaints"
exit $((failures > 0))

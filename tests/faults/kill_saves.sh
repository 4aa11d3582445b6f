#!/bin/bash
# Kills the command line while it saves over an existing file, and looks at what is left:
#
#   kill_saves.sh PLENOVIZ_CLI [KILLS]      200 kills unless told otherwise
#
# The name must hold the old picture or the complete new one. What a killed save leaves beside it is
# gone after the next save, while a save that is still under way loses nothing.

set -euo pipefail
# The date of change that results get: the same picture is the same bytes then.
export SOURCE_DATE_EPOCH=1700000000
cli=$(realpath "$1")
kills=${2:-200}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

Die() { echo "kill_saves: $*" >&2; exit 1; }
Sum() { sha256sum <"$1"; }
Siblings() { find folder -name '.plenoviz-*.tmp'; }
Save() { "$cli" fuse -q --threads 1 --exposure "$1" -o folder/out.png sample_1.jpg; }

"$cli" sample -q --width 450 --height 300 --frames 1 --out-dir .
mkdir folder
Save 60
old=$(Sum folder/out.png)
cp folder/out.png old.png
started=$(date +%s%N)
Save 150
microseconds=$((($(date +%s%N) - started) / 1000))
new=$(Sum folder/out.png)
[[ $old != "$new" ]] || Die "both pictures are the same"

olds=0 news=0 during=0
RANDOM=1
for ((kill = 1; kill <= kills; kill++)); do
    cp old.png folder/out.png
    "$cli" fuse -q --threads 1 --exposure 150 -o folder/out.png sample_1.jpg &
    pid=$!
    if ((kill % 2)); then
        # Somewhere in the whole run.
        sleep "$(printf '0.%06d' $(((RANDOM * 32768 + RANDOM) % (microseconds + microseconds / 4) % 1000000)))"
    else
        # In the save: from the moment on at which its file is there.
        until [[ -n $(compgen -G 'folder/.plenoviz-*.tmp') || ! -d /proc/$pid ]]; do :; done
        sleep "$(printf '0.%06d' $((RANDOM % microseconds)))"
    fi
    kill -KILL $pid 2>/dev/null || true
    wait $pid 2>/dev/null || true
    left=$(Siblings | wc -l)
    ((left <= 1)) || Die "kill $kill: $left siblings, the one before was not removed"
    during=$((during + left))
    case $(Sum folder/out.png) in
    "$old") olds=$((olds + 1)) ;;
    "$new") news=$((news + 1)) ;;
    *) Die "kill $kill: the file is neither the old nor the new one" ;;
    esac
done
((during > 0)) || Die "no kill fell into a save"

# Names that only look alike belong to somebody else.
touch folder/.plenoviz-1-x.tmp folder/.plenoviz-notes.tmp folder/.plenoviz-1-1.tmp.txt
Save 150
[[ $(find folder -type f | wc -l) == 4 ]] || Die "wrong files after the next save: $(ls -A folder)"

# Somebody who is still writing: the file is locked, as the program does it.
touch folder/.plenoviz-999999-0.tmp
flock folder/.plenoviz-999999-0.tmp "$cli" fuse -q -o folder/out.png sample_1.jpg
[[ -e folder/.plenoviz-999999-0.tmp ]] || Die "a save removed the file of a running one"
Save 150
[[ ! -e folder/.plenoviz-999999-0.tmp ]] || Die "an abandoned file stayed"

echo "$kills kills: $olds left the old file, $news the new one; $during fell into the save"

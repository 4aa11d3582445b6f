# A shell function, to be sourced: `Build PRESET TARGET...`, for scripts that hand out what was built.
#
# Standard output belongs to them; what a build has to say goes to standard error, and only when
# there is something to build. $root is the folder of the project.

Build()
{
    local preset=$1 build=$root/build/$1 log=$root/build/run.log
    shift
    mkdir -p "$root/build"
    exec 9>"$root/build/run.lock"
    flock 9
    if [[ ! -f $build/build.ninja ]]; then
        echo "Configuring" >&2
        (cd "$root" && cmake --preset "$preset") >"$log" 2>&1 9>&- || BuildFailed "$log"
    elif [[ $(ninja -C "$build" -n "$@") == *"no work to do."* ]]; then
        exec 9>&-
        return
    fi
    echo "Building $*" >&2
    ninja -C "$build" "$@" >>"$log" 2>&1 9>&- || BuildFailed "$log"
    exec 9>&-
}

BuildFailed()
{
    tail -n 40 "$1" >&2
    echo "${0##*/}: the build failed; all of it is in $1" >&2
    exit 1
}

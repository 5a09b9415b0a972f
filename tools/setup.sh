# Sourced by run.sh, test.sh and bench.sh: where things are, and how what is missing gets installed.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=$(nproc)

has() # WHAT: a command, or a file (a pattern that begins with /)
{
    case $1 in
    /*) compgen -G "$1" >/dev/null ;;
    *) command -v "$1" >/dev/null ;;
    esac
}

# need WHAT:PACKAGE...: where WHAT is missing, the Debian package that has it is installed.
need()
{
    local entry packages=() missing=()
    for entry in "$@"; do
        if ! has "${entry%%:*}"; then
            missing+=("${entry%%:*}")
            packages+=("${entry#*:}")
        fi
    done
    [ ${#missing[@]} = 0 ] && return

    echo "Missing: ${missing[*]}"
    local sudo=
    if ! command -v apt-get >/dev/null; then
        echo "There is no apt here. Please install what is missing (in Debian the packages ${packages[*]}) and come back." >&2
        exit 1
    elif [ "$(id -u)" != 0 ]; then
        sudo=sudo
        if ! command -v sudo >/dev/null; then
            echo "Neither root nor sudo. Please have these packages installed and come back: ${packages[*]}" >&2
            exit 1
        fi
    fi
    echo "Installing with apt: ${packages[*]}"
    # Only an error shows apt's chatter.
    local log
    log=$(mktemp)
    if ! { $sudo apt-get update && $sudo env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends "${packages[@]}"; } >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        echo "apt could not install: ${packages[*]}" >&2
        exit 1
    fi
    rm -f "$log"
}

needBuildTools() { need cmake:cmake ninja:ninja-build gcc:gcc g++:g++ ccache:ccache "$@"; }
needArm()
{
    need arm-linux-gnueabihf-g++:g++-arm-linux-gnueabihf arm-linux-gnueabihf-gcc:gcc-arm-linux-gnueabihf \
        /usr/arm-linux-gnueabihf/include/stdio.h:libc6-dev-armhf-cross qemu-arm:qemu-user
}
needAarch64()
{
    need aarch64-linux-gnu-g++:g++-aarch64-linux-gnu aarch64-linux-gnu-gcc:gcc-aarch64-linux-gnu \
        /usr/aarch64-linux-gnu/include/stdio.h:libc6-dev-arm64-cross qemu-aarch64:qemu-user
}

needReport()
{
    need python3:python3 /usr/share/javascript/chart.js/chart.min.js:libjs-chart.js \
        /usr/share/javascript/jquery/jquery.min.js:libjs-jquery \
        /usr/share/javascript/jquery-datatables/jquery.dataTables.min.js:libjs-jquery-datatables
}
needOpenCv()
{
    local module modules=()
    for module in imgproc features2d calib3d video ml objdetect; do
        modules+=("/usr/include/opencv4/opencv2/$module.hpp:libopencv-$module-dev")
    done
    need "${modules[@]}"
}

# build PRESET [TARGET...]: configures and builds; quiet unless something is wrong.
build()
{
    local preset=$1 log="$root/build/$1.log"
    shift
    mkdir -p "$root/build"
    if ! { (cd "$root" && cmake --preset "$preset") &&
            cmake --build "$root/build/$preset" -j "$jobs" ${1:+--target "$@"}; } >"$log" 2>&1; then
        grep -n -A 12 -E 'error|Error|FAILED|not found' "$log" | head -n 60 >&2
        echo "The build \"$preset\" failed; all of it is in $log" >&2
        return 1
    fi
}

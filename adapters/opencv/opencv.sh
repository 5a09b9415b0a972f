#!/usr/bin/env bash
# OpenCV with this adapter beside OpenCV without.
#
#   adapters/opencv/opencv.sh [STEP...]
#
#   build      OpenCV's source from Debian, its modules core, imgproc and features2d built twice, in build/opencv/plain
#              and build/opencv/adapted; the library and the adapter, installed in build/opencv/ravik
#   test       OpenCV's own test programs of both: no test fails with the adapter that passes without
#   check      random calls on both: the same results
#   time       how much faster, at 640x480 and 1920x1080, on one thread
#
# Without a step: all of these. "needs" installs what they need. After a step's name and a colon may stand a part of an
# operation's name: time:canny.
set -u
. "$(dirname "$0")/../../tools/setup.sh"

folder=$root/build/opencv
modules="core imgproc features2d"
version=4.6.0

# Debian's source package, unpacked, by a list of sources of its own: the machine's stay as they are.
fetchSource()
{
    [ -d "$folder/source" ] && return
    local download=$folder/download
    mkdir -p "$download/state/lists/partial" "$download/cache/archives/partial"
    cat >"$download/sources.list" <<EOF
deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] http://deb.debian.org/debian bookworm main
EOF
    (cd "$download" &&
        set -- -qq -o Dir::Etc::SourceList="$download/sources.list" -o Dir::Etc::SourceParts=- \
            -o Dir::State="$download/state" -o Dir::State::status=/var/lib/dpkg/status \
            -o Dir::Cache="$download/cache" -o APT::Sandbox::User=root &&
        apt-get "$@" update && apt-get "$@" source opencv) >"$folder/fetch.log" 2>&1 ||
        { cat "$folder/fetch.log" >&2; return 1; }
    mv "$download/opencv-$version+dfsg" "$folder/source" && rm -rf "$download"
}

quietly() # LOG COMMAND...: shows the end of the log when the command fails
{
    local log=$1
    shift
    "$@" >>"$log" 2>&1 || { tail -n 30 "$log" >&2; echo "All of it: $log" >&2; return 1; }
}

buildAdapter() # the library as it is released, installed without the tests' data
{
    rm -rf "$folder/ravik"
    quietly "$folder/library.log" cmake -S "$root" --preset release -B "$folder/library" -DRAVIK_TEST_DATA=OFF \
        -DRAVIK_BUILD_BENCH=OFF -DRAVIK_BUILD_EXAMPLES=OFF &&
        quietly "$folder/library.log" cmake --build "$folder/library" -j "$jobs" &&
        quietly "$folder/library.log" cmake --install "$folder/library" --prefix "$folder/ravik"
}

# Paths are relative to the build's folder for the compiler cache: what is the same in both builds is compiled once.
export CCACHE_BASEDIR=$folder CCACHE_NOHASHDIR=1
buildOpenCv() # plain|adapted [CMAKE ARGUMENTS...]: without other libraries, so that its own code is what is compared
{
    local name=$1 library
    shift
    for library in IPP OPENCL TBB LAPACK EIGEN ITT FFMPEG GSTREAMER GTK QT V4L 1394 JPEG TIFF WEBP OPENJPEG JASPER \
        OPENEXR PROTOBUF QUIRC ADE; do
        set -- "$@" "-DWITH_$library=OFF"
    done
    quietly "$folder/$name.log" cmake -G Ninja -S "$folder/source" -B "$folder/$name" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache \
        -DBUILD_LIST="${modules// /,},ts" -DBUILD_PERF_TESTS=OFF -DBUILD_opencv_apps=OFF -DBUILD_JAVA=OFF \
        -DBUILD_opencv_python2=OFF -DBUILD_opencv_python3=OFF -DOPENCV_GENERATE_PKGCONFIG=OFF "$@" &&
        quietly "$folder/$name.log" cmake --build "$folder/$name" -j "$jobs" --target $(testPrograms)
}

testPrograms()
{
    local module
    for module in $modules; do
        echo "opencv_test_$module"
    done
}

buildCompare()
{
    quietly "$folder/compare.log" cmake -G Ninja -S "$root/adapters/opencv/compare" -B "$folder/compare" \
        -DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DOpenCV_DIR="$folder/plain" &&
        quietly "$folder/compare.log" cmake --build "$folder/compare" -j "$jobs"
}

needs_()
{
    needBuildTools apt-get:apt dpkg-source:dpkg-dev /usr/bin/python3:python3 \
        /usr/lib/python3/dist-packages/numpy:python3-numpy /usr/include/png.h:libpng-dev
}

build_()
{
    needs_
    mkdir -p "$folder"
    fetchSource && buildAdapter && buildOpenCv plain &&
        buildOpenCv adapted -DOpenCV_HAL=ravik -Dravik_DIR="$folder/ravik/lib/cmake/ravik" &&
        { grep -q 'Custom HAL:.*YES.*ravik' "$folder/adapted.log" ||
            { echo "OpenCV did not take the adapter; see $folder/adapted.log" >&2; false; }; } &&
        buildCompare
}

# Runs one test program of one build. Tests that want OpenCV's extra data fail in both.
runTests() # plain|adapted MODULE
{
    local out=$folder/$1.$2
    rm -f "$out.xml"
    (cd "$folder" && OPENCV_TEST_DATA_PATH=$folder/source LD_LIBRARY_PATH=$folder/$1/lib \
        "$folder/$1/bin/opencv_test_$2" --test_threads=1 --gtest_output="xml:$out.xml" >"$out.log" 2>&1)
}

test_()
{
    local module result=0
    printf '%-12s %8s %8s %8s   %s\n' module tests plain adapted "fail only with the adapter"
    for module in $modules; do
        runTests plain "$module" &
        runTests adapted "$module" &
        wait
        /usr/bin/python3 "$root/adapters/opencv/testResults.py" "$module" "$folder/plain.$module.xml" \
            "$folder/adapted.$module.xml" || result=1
    done
    return $result
}

compare()
{
    /usr/bin/python3 "$root/adapters/opencv/compare.py" "$folder/compare/ravikHalCompare" "$folder/plain/lib" \
        "$folder/adapted/lib" "$@"
}
check_() { compare check "$@"; }
time_() { compare time "$@"; }

for step in "${@:-build test check time}"; do
    for one in $step; do
        name=${one%%:*}
        case $name in
        needs | build | test | check | time) ;;
        *) sed -n '2,/^set -u/s/^# \{0,1\}//p' "$0" >&2; exit 1 ;;
        esac
        filter=${one#"$name"}
        "${name}_" ${filter:+"${filter#:}"} || exit 1
    done
done

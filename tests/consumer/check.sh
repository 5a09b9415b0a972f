#!/bin/sh
# Usage: check.sh CMAKE GENERATOR BUILD_DIRECTORY SOURCE_DIRECTORY CC CXX
#
# Installs the library into a fresh place and uses it there as strangers do: through CMake, through pkg-config, in C and
# in C++, and as the program that proves itself with the installed test data.
set -eu
cmake=$1 generator=$2 build=$3 source=$4 cc=$5 cxx=$6
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT

"$cmake" --install "$build" --prefix "$place/usr" >/dev/null
expected='0 5 0 20
0 0 0 175'

echo "--- CMake"
"$cmake" -G "$generator" -S "$source/tests/consumer" -B "$place/consumer" -DCMAKE_PREFIX_PATH="$place/usr" \
    -DEXAMPLES="$source/examples" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
    >"$place/log" || { cat "$place/log"; exit 1; }
"$cmake" --build "$place/consumer"
test "$("$place/consumer/inC")" = "$expected"
"$place/consumer/inCpp"
"$place/consumer/withArchive"

echo "--- pkg-config"
PKG_CONFIG_PATH=$(dirname "$(find "$place/usr" -name ravik.pc)")
export PKG_CONFIG_PATH
LD_LIBRARY_PATH=$(pkg-config --variable=libdir ravik)
export LD_LIBRARY_PATH
# Word splitting of the flags is meant.
"$cc" -std=c11 -Wall -Wextra -pedantic -Werror "$source/examples/absdiff.c" -o "$place/inC" $(pkg-config --cflags --libs ravik)
test "$("$place/inC")" = "$expected"
"$cxx" -std=c++20 -Wall -Wextra -pedantic -Werror "$source/examples/modes.cpp" -o "$place/inCpp" \
    $(pkg-config --cflags --libs ravik)
"$place/inCpp"

echo "--- every header alone, in C and in C++"
for header in "$place"/usr/include/ravik/*.h; do
    name=$(basename "$header")
    echo "#include <ravik/$name>" | "$cxx" -std=c++20 -Wall -Wextra -pedantic -Werror -I"$place/usr/include" -fsyntax-only -x c++ -
    echo "#include <ravik/$name>
typedef int notEmpty;" | "$cc" -std=c11 -Wall -Wextra -pedantic -Werror -I"$place/usr/include" -fsyntax-only -x c -
done

echo "--- ravikTest"
"$place/usr/bin/ravikTest" "$place/usr/share/ravik/testdata" -U -t 6 -m ABSDIFF 2>"$place/log" || { cat "$place/log"; exit 1; }

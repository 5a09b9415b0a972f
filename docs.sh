#!/usr/bin/env bash
# Makes the reference, build/docs/index.html: what the headers say of each function, with pictures of what it does, and
# the guides. A function, type, constant or parameter that nothing explains is an error.
set -u
. "$(dirname "$0")/tools/setup.sh"

needBuildTools doxygen:doxygen /usr/include/png.h:libpng-dev python3:python3
cd "$root" || exit 1

docs/headerFilter.py --check include/ravik/*.h || exit 1
build gcc ravikGallery || exit 1
rm -rf build/docs
mkdir -p build/docs
echo "Drawing what the functions do..."
build/gcc/docs/ravikGallery build/docs/gallery || exit 1

# The families in the order in which ravik.h includes them.
headers=$(sed -n 's,^#include "\(.*\)",include/ravik/\1,p' include/ravik/ravik.h)
RAVIK_GALLERY=build/docs/gallery doxygen - <<EOF || exit 1
@INCLUDE = docs/Doxyfile
PROJECT_NUMBER = $(sed -n 's/^project(ravik VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
INPUT = README.md docs/fromOpenCV.md docs/instructionSets.md docs/conventions.md docs/python.md docs/building.md \
    docs/frame.md docs/ravikTest.md docs/functions.md docs/hog.md HACKING.md CHANGELOG.md $(echo $headers)
IMAGE_PATH = build/docs/gallery docs
OUTPUT_DIRECTORY = build/docs
EOF
rm -r build/docs/gallery
echo "build/docs/index.html is the reference."

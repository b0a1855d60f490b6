#!/usr/bin/env bash
# consumer_test.sh WAY BUILD SOURCE VERSION: installs the libraries of the build into a prefix, moves it, builds the project
# of packaging/consumer against it by "cmake", "cmake-static", "pkg-config", "pkg-config-static" or "pkg-config-archive", runs
# it, and looks at what it says.
set -euo pipefail
way=$1 build=$2 source=$3 version=$4

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
for component in runtime outputs pictures camera c development; do
  cmake --install "$build" --prefix "$folder/first" --component "$component" >/dev/null
done
mv "$folder/first" "$folder/moved"
cp -r "$source/packaging/consumer" "$folder/consumer"
libraries=$(dirname "$(find "$folder/moved" -name libZELTarkaSDK.so)")
# No other package is in sight: what the library is made with is nothing that pkg-config may ask a host for.
export CXXFLAGS=-O0 PKG_CONFIG_LIBDIR=$libraries/pkgconfig

by_cmake() {
  unset CXXFLAGS PKG_CONFIG_LIBDIR
  cmake -S . -B . -DCMAKE_PREFIX_PATH="$folder/moved" -DZEL_STATIC="$1" >/dev/null
  cmake --build . >/dev/null
}

# Nothing of other libraries comes with the shared one.
asks_for_the_library_alone() {
  local asked expected="-std=c++20 -I$folder/moved/include -L$libraries -lZELTarkaSDK"
  asked=$(pkg-config --cflags --libs zeltarkasdk | sed -E "s#$libraries/pkgconfig/[./]*/#$folder/moved/#g; s/ +\$//")
  [ "$asked" = "$expected" ] || { printf 'asked:    %s\nexpected: %s\n' "$asked" "$expected"; exit 1; }
}

# A program in C, by a compiler that knows nothing of C++. Arguments: more options of pkg-config.
builds_in_c() {
  "${CC:-cc}" -std=c99 -Wall -Wextra -pedantic -Werror "$source/examples/c/battery.c" -o battery \
    $(pkg-config "$@" --cflags --libs zeltarkasdk-c)
  mkdir "$folder/none"
  local status=0
  LD_LIBRARY_PATH=$libraries ZEL_ACCESSORIES=$folder/none timeout 60 ./battery 2>said || status=$?
  [ "$status" = 3 ] && grep -q 'no camera was attached in time' said || { cat said; exit 1; }
}

# As a prefix that holds no shared library: the flags of pkg-config serve as they are.
by_archive() {
  find "$libraries" -name 'libZELTarkaSDK*.so*' -delete
  builds_in_c --static
  "${CXX:-c++}" main.cc -o consumer $(pkg-config --static --cflags --libs zeltarkasdk-camera zeltarkasdk-pictures)
}

cd "$folder/consumer"
linked=static
case $way in
  cmake) by_cmake OFF; linked=shared ;;
  cmake-static) by_cmake ON ;;
  pkg-config) asks_for_the_library_alone; builds_in_c; make -s; linked=shared ;;
  pkg-config-static) make -s ZEL_STATIC=1 ;;
  pkg-config-archive) by_archive ;;
esac
needed=$(readelf -d consumer | grep -c 'NEEDED.*libZELTarkaSDK[A-Za-z]*.so.0' || true)
[ "$needed" = "$([ "$linked" = static ] && echo 0 || echo 4)" ] || { echo "linked wrongly"; exit 1; }

# What writes streams and pictures is no burden of a host that does neither.
if [ "$linked" = shared ] && readelf -d "$libraries/libZELTarkaSDK.so" | grep -E 'NEEDED.*(avformat|turbojpeg|png|exempi)'; then
  exit 1
fi

said=$(LD_LIBRARY_PATH=$libraries ./consumer "$folder/bus")
expected="ZELTarkaSDK $version (${version%.*}), 0 accessories, a camera: no, decodes: yes, offset 1_1.000_2.000_3.000_4.000_5.000_6.000_7_8_9, output rtmp://localhost, a PNG: yes"
[ "$said" = "$expected" ] || { printf 'said:     %s\nexpected: %s\n' "$said" "$expected"; exit 1; }

# Nothing in the copy knows where it was first.
! grep -rIl "$folder/first\|$source" "$folder/moved" || { echo "not relocatable"; exit 1; }

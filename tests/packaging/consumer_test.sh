#!/usr/bin/env bash
# consumer_test.sh WAY BUILD SOURCE VERSION: installs the library of the build into a prefix, moves it, builds the project
# of packaging/consumer against it by "cmake", "static" or "pkg-config", runs it, and looks at what it says.
set -euo pipefail
way=$1 build=$2 source=$3 version=$4

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
for component in runtime development; do
  cmake --install "$build" --prefix "$folder/first" --component "$component" >/dev/null
done
mv "$folder/first" "$folder/moved"
cp -r "$source/packaging/consumer" "$folder/consumer"
libraries=$(dirname "$(find "$folder/moved" -name libZELTarkaSDK.so)")

cd "$folder/consumer"
case $way in
  pkg-config)
    CXXFLAGS=-O0 PKG_CONFIG_PATH=$libraries/pkgconfig make -s
    ;;
  *)
    [ "$way" = static ] && static=ON || static=OFF
    cmake -S . -B . -DCMAKE_PREFIX_PATH="$folder/moved" -DZEL_STATIC=$static >/dev/null
    cmake --build . >/dev/null
    ;;
esac
needed=$(readelf -d consumer | grep -c 'NEEDED.*libZELTarkaSDK.so.0' || true)
[ "$needed" = "$([ "$way" = static ] && echo 0 || echo 1)" ] || { echo "linked wrongly"; exit 1; }

said=$(LD_LIBRARY_PATH=$libraries ./consumer "$folder/bus")
expected="ZELTarkaSDK $version (${version%.*}), 0 accessories, a camera: no, decodes: yes, offset 1_1.000_2.000_3.000_4.000_5.000_6.000_7_8_9"
[ "$said" = "$expected" ] || { printf 'said:     %s\nexpected: %s\n' "$said" "$expected"; exit 1; }

# Nothing in the copy knows where it was first.
! grep -rIl "$folder/first\|$source" "$folder/moved" || { echo "not relocatable"; exit 1; }

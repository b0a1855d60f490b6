#!/usr/bin/env bash
# compare.sh JOBS [--update]: compares the binary interface of the shared libraries in build/release/ with the recorded
# ones beside this file, or records it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

jobs=$1
update=${2:-}
libraries=(libZELTarkaSDK libZELTarkaSDKOutputs libZELTarkaSDKPictures libZELTarkaSDKCamera libZELTarkaSDKC)

# Types and symbols that the shared library shows, in build/abi/LIBRARY.abi, as a text that tells nothing of where it was
# built.
dump() {
  abidw --suppressions packaging/abi/foreign.abignore --drop-private-types --headers-dir include \
    --exported-interfaces-only --no-parameter-names --no-show-locs --no-corpus-path --no-comp-dir-path \
    --out-file "build/abi/$1.abi" "build/release/lib/$1.so"
  sed -i "s|path='$PWD/|path='|" "build/abi/$1.abi"
}

cmake --build build/release -j "$jobs" --target "${libraries[@]#lib}"
mkdir -p build/abi
for library in "${libraries[@]}"; do
  dump "$library"
  if [ "$update" = --update ]; then
    cp "build/abi/$library.abi" packaging/abi/
    printf './run: packaging/abi/%s.abi is made anew\n' "$library"
  else
    abidiff --no-added-syms "packaging/abi/$library.abi" "build/abi/$library.abi"
  fi
done

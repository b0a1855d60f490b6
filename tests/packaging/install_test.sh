#!/usr/bin/env bash
# install_test.sh BUILD SOURCE: everything that "cmake --install" takes from the build folder is made by each command of ./run
# that the README and docs/packaging.md begin with, and a whole copy, without any component named, has the programs and
# their pages in it.
set -euo pipefail
build=$1 source=$2

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# What ./run COMMAND builds: the words behind --target, or everything.
targets_of() {
  local targets
  targets=$(sed -n "/^command_$1() {/,/^}/p" "$source/run" | grep -oP 'configure_and_build release --target \K.*' || true)
  printf '%s\n' "${targets:-all}"
}

# Files in the build folder that the installation scripts name, but for those that are written while configuring.
installed_files() {
  find "$build" -name cmake_install.cmake -exec grep -hoP "FILES \"\\K$build/[^\"]+" {} + | sort -u |
    grep -vE '\.(pc|cmake)$'
}

installed_files | grep -q libZELTarkaSDK.a || { echo "the installation scripts are not understood"; exit 1; }
for command in build demo; do
  ninja -C "$build" -t commands $(targets_of "$command") | tr ' ' '\n' | sed "s#^$build/##" | sort -u >"$folder/made"
  while read -r file; do
    grep -qxF "${file#"$build"/}" "$folder/made" || { echo "./run $command does not build $file"; exit 1; }
  done < <(installed_files)
done

cmake --install "$build" --prefix "$folder/copy" >/dev/null
for file in bin/zelcam bin/zelcam-sim share/man/man1/zelcam.1 share/man/man1/zelcam-sim.1 \
  share/bash-completion/completions/zelcam lib/systemd/system/zelcam-serve.service lib/systemd/user/zelcam-serve.service share/zsh/site-functions/_zelcam include/ZELTarkaSDK/ZELTarkaSDK.h; do
  [ -s "$folder/copy/$file" ] || { echo "$file is not in the copy"; exit 1; }
done
"$folder/copy/bin/zelcam" --version

#!/usr/bin/env bash
# Installs the build into a scratch folder and builds and runs the consumer against it.
# Usage: run.sh BUILD_DIR SOURCE_DIR CXX_FLAGS
set -euo pipefail
build=$1 source=$2 flags=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
cmake -S "$source" -B "$scratch/build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" \
    -DCMAKE_CXX_FLAGS="$flags -Wall -Wextra -Werror" >/dev/null
cmake --build "$scratch/build"
"$scratch/build/consumer"
"$scratch/prefix/bin/rycut" --version

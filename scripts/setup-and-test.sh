#!/usr/bin/env bash
# Installs what Tessarin needs on Debian, builds it with warnings as errors and runs every test.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_build_packages
configure_and_build -DTESSARIN_WERROR=ON -DTESSARIN_BUILD_TESTS=ON

# The fuzz targets, built with clang and run briefly from their seed corpora.
if [ -n "$(ls -d "$TOP"/fuzz/*/ 2>/dev/null)" ]; then
  FUZZ_DIR="${BUILD_DIR}-fuzz"
  CC=clang CXX=clang++ cmake -S "$TOP" -B "$FUZZ_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DTESSARIN_BUILD_TESTS=OFF -DTESSARIN_BUILD_FUZZ=ON
  cmake --build "$FUZZ_DIR" --parallel "$(nproc)" --target tessarin_fuzzers
  (cd "$FUZZ_DIR" && ctest --output-on-failure --parallel "$(nproc)" -L fuzz)
fi

# Every test of the program, last, so that its summary closes the run.
cd "$BUILD_DIR"
ctest --output-on-failure --parallel "$(nproc)" --timeout 600

#!/usr/bin/env bash
# Installs what Tessarin needs on Debian, builds it with warnings as errors and runs every test.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_build_packages

# Repository checks, first since they take a second: no window header in a logic file, and
# every C++ file as clang-format makes it.
bash "$TOP/scripts/check-includes.sh"
bash "$TOP/scripts/check-format.sh"

configure_and_build -DTESSARIN_WERROR=ON -DTESSARIN_BUILD_TESTS=ON

# One clang build with AddressSanitizer and UBSan for the fuzz targets and the logic tests: the
# fuzz targets run briefly from their seed corpora, then the logic tests run instrumented (the
# window tests and the few that take long even uninstrumented are left to the normal run below,
# to keep CI short).
SAN_DIR="${BUILD_DIR}-san"
CC=clang CXX=clang++ cmake -S "$TOP" -B "$SAN_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTESSARIN_BUILD_TESTS=ON -DTESSARIN_BUILD_FUZZ=ON
SAN_TESTS=(test_core test_store test_builder test_archive test_cli test_online test_images)
cmake --build "$SAN_DIR" --parallel "$(nproc)" --target tessarin_fuzzers "${SAN_TESTS[@]}"
(cd "$SAN_DIR" && ctest --output-on-failure --parallel "$(nproc)" -L fuzz)
(cd "$SAN_DIR" &&
  ASAN_OPTIONS=detect_leaks=0:abort_on_error=1 \
    UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --output-on-failure --parallel "$(nproc)" --timeout 300 -LE fuzz \
      -L logic -E 'MoreThan65535')

# Every test of the program, last, so that its summary closes the run.
cd "$BUILD_DIR"
ctest --output-on-failure --parallel "$(nproc)" --timeout 600

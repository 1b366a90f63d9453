#!/usr/bin/env bash
# Fails when a C++ file of the project differs from what clang-format makes of it with the
# repository's .clang-format. Fix with: clang-format -i FILE
set -euo pipefail
TOP=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$TOP"
mapfile -d '' files < <(find src tests bench fuzz -path tests/data -prune -o -type f \
  \( -name '*.cpp' -o -name '*.h' \) -print0 2>/dev/null)
clang-format --dry-run --Werror "${files[@]}"
echo "clang-format: ${#files[@]} files as formatted"

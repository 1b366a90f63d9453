#!/bin/sh
# Writes the archives that the archive tests read, made by Debian's zip (Info-ZIP).
# Usage: make_zips_infozip.sh OUTPUT_FOLDER
set -e
out=$1
mkdir -p "$out/src/tree/sub" "$out/src/tree/emptydir"
cd "$out/src"
i=0
while [ $i -lt 60 ]; do echo "line $i of a text that deflates well" >> tree/notes.txt; i=$((i + 1)); done
printf 'inner file\n' > tree/sub/inner.txt
printf 'x' > tree/one.bin
# Deflated, with folder entries.
zip -q -r "$out/iz_deflated.zip" tree
# Stored.
zip -q -r -0 "$out/iz_stored.zip" tree
# With an archive comment.
echo "Rom pack comment" | zip -q -z "$out/iz_comment.zip" tree/notes.txt
# Streamed to a pipe: sizes go to data descriptors behind the data.
zip -q -r - tree | cat > "$out/iz_descriptor.zip"
# Zip64 records forced on a small archive.
zip -q -r -fz "$out/iz_zip64.zip" tree

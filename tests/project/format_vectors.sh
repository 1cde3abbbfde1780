#!/usr/bin/env bash
# docs/format/vectors.* are what the generator beside them writes.
# shellcheck source=tests/project/lib.sh
source "$(dirname "$0")/lib.sh"
enter_work_folder

cp "$SOURCE/docs/format/generate" .
./generate
for file in vectors.csv vectors.json; do
    cmp "$file" "$SOURCE/docs/format/$file" || fail "$file: run docs/format/generate"
done

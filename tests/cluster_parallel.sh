#!/bin/sh
# SPDX-FileCopyrightText: 2026 The Sendrivo authors
# SPDX-License-Identifier: GPL-3.0-or-later
#
# The GNU parallel recipe as it stands in docs/scale.md, on this host, with calls that are killed in
# the middle: afterwards there is every document once, whole, and nothing else.
# usage: cluster_parallel.sh SENDRIVO_BATCH SAMPLE_FOLDER SCALE_MD
set -eu
batch=$1
sample=$2
recipe=$3
command -v parallel >/dev/null || { echo "GNU parallel is missing"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/in" "$work/out" "$work/expected"
# Three of a base name share a folder.
for i in $(seq 60); do cp "$sample/invoices.pdf" "$work/in/file$((i / 3)).$i.pdf"; done
sed -n "/^    mkdir/,/^\$/s/^    //p" "$recipe" |
    sed -e "s|/data/|$work/|g; s/lists=20/lists=6/" >"$work/deal"
sh -e "$work/deal"
[ "$(cat "$work/lists/"[0-5] | wc -l)" = 60 ]

# The recipe for this host: other paths and numbers.
awk '/^## / { isParallel = /parallel/ } isParallel && sub(/^    /, "")' "$recipe" |
    sed -e "s|/data/setting.ini|$sample/setting.ini|; s|/data/|$work/|g; s|'sendrivo-batch|'$batch --jobs 1|" \
        -e 's/--sshlogin host1,host2 --jobs 1/--will-cite --jobs 2/' >"$work/recipe"
grep -q -- '--will-cite --jobs 2' "$work/recipe"
run() {
    sh "$work/recipe"
}
# Kill calls without warning as soon as there is something in the ledger.
run & running=$!
killed=0
for _ in $(seq 300); do
    [ "$killed" -ge 3 ] && break
    sleep 0.05
    grep -qs . "$work"/reports/*.jsonl || continue
    for call in $(pgrep -x -f ".*$work/out.*" || true); do
        case $(readlink "/proc/$call/exe") in
        "$batch") kill -KILL "$call" 2>/dev/null && killed=$((killed + 1)) ;;
        esac
    done
done
wait "$running" || true
[ "$killed" -ge 3 ]
run
cat "$work"/lists/* >"$work/list"
"$batch" --settings "$sample/setting.ini" --rule 'Invoice number' --output "$work/expected" \
    --files-from "$work/list" --quiet
diff -r "$work/expected" "$work/out"
jq -s 'group_by(.input) | map(last) | length' "$work"/reports/*.jsonl | grep -qx 60
echo "killed processes: $killed; all documents are there once"

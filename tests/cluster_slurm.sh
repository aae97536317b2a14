#!/bin/bash
# SPDX-FileCopyrightText: 2026 The Sendrivo authors
# SPDX-License-Identifier: GPL-3.0-or-later
#
# The Slurm recipe as it stands in docs/scale.md, on a cluster of this one machine that the test
# starts and ends. Tasks are killed and requeued in the middle; afterwards there is every document
# once, whole, and nothing else.
# usage: cluster_slurm.sh SENDRIVO_BATCH SAMPLE_FOLDER SCALE_MD
set -eu
batch=$1
sample=$2
recipe=$3
for program in munged slurmctld slurmd sbatch jq; do
    command -v "$program" >/dev/null || { echo "$program is missing (slurm-wlm, jq)"; exit 77; }
done
[ "$(id -u)" = 0 ] || { echo "only root can run a slurmd here"; exit 77; }

work=$(mktemp -d)
daemons=()
finish() {
    scancel --user root 2>/dev/null || true
    kill "${daemons[@]}" 2>/dev/null || true
    wait
    rm -rf "$work"
}
trap finish EXIT

startCluster() {
    local host
    host=$(hostname -s)
    mkdir "$work/spool" "$work/state"
    chmod 755 "$work"
    (umask 077 && head -c 1024 /dev/urandom >"$work/key")
    cat >"$work/slurm.conf" <<CONF
ClusterName=sendrivo
SlurmctldHost=$host(127.0.0.1)
SlurmUser=root
SlurmctldPort=16817
SlurmdPort=16818
AuthInfo=socket=$work/munge.sock,cred_expire=5
StateSaveLocation=$work/state
SlurmdSpoolDir=$work/spool
SlurmctldPidFile=$work/slurmctld.pid
SlurmdPidFile=$work/slurmd.pid
ProctrackType=proctrack/linuxproc
TaskPlugin=task/affinity
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
KillWait=2
NodeName=$host NodeAddr=127.0.0.1 CPUs=$(nproc)
PartitionName=main Nodes=ALL Default=YES
CONF
    export SLURM_CONF="$work/slurm.conf"
    munged --foreground --force --key-file="$work/key" --socket="$work/munge.sock" \
        --pid-file="$work/munged.pid" --seed-file="$work/seed" 2>"$work/munged.log" &
    daemons+=($!)
    sleep 1
    slurmctld -D 2>"$work/slurmctld.log" &
    daemons+=($!)
    slurmd -D 2>"$work/slurmd.log" &
    daemons+=($!)
    for _ in $(seq 60); do
        sinfo --noheader --format %t 2>/dev/null | grep -qx idle && return
        sleep 0.5
    done
    echo "the cluster does not start:" && tail "$work"/*.log
    exit 1
}

# The recipe for one machine: other paths and numbers, and the program as it was built.
makeJob() {
    awk '/^## / { isSlurm = /Slurm/ } isSlurm && sub(/^    /, "")' "$recipe" |
        sed -e "s|/data/setting.ini|$sample/setting.ini|; s|/data/|$work/|g" \
            -e 's/--array=0-19 --cpus-per-task=8 --mem=4G/--array=0-3 --cpus-per-task=1/' \
            -e "s|--requeue|& --output=$work/log|" >"$work/sendrivo.sbatch"
    grep -q -- '--array=0-3 .*--output' "$work/sendrivo.sbatch"
    PATH=$(dirname "$batch"):$PATH sbatch --parsable "$work/sendrivo.sbatch"
}

startCluster
mkdir "$work/in" "$work/out" "$work/expected"
# Three of a base name share a folder.
for i in $(seq 400); do cp "$sample/invoices.pdf" "$work/in/file$((i / 3)).$i.pdf"; done
sed -n "/^    mkdir/,/^\$/s/^    //p" "$recipe" |
    sed -e "s|/data/|$work/|g; s/lists=20/lists=4/" >"$work/deal"
sh -e "$work/deal"
cat "$work"/lists/[0-3] >"$work/list"
job=$(makeJob)

# Kill programs of two tasks without warning as soon as there is something in the ledger, and take
# a third task its node away.
killed=0
for _ in $(seq 300); do
    [ "$killed" -ge 2 ] && break
    sleep 0.1
    grep -qs . "$work"/reports/*.jsonl || continue
    for call in $(pgrep -x sendrivo-batch || true); do
        grep -qzF "$work/out" "/proc/$call/cmdline" 2>/dev/null || continue
        # Not the processes of its inputs.
        [ "$(cat "/proc/$(ps -o ppid= -p "$call" | tr -d ' ')/comm")" = sendrivo-batch ] && continue
        kill -KILL "$call" 2>/dev/null && killed=$((killed + 1)) && break
    done
done
requeued=0
for _ in $(seq 300); do
    task=$(squeue --noheader --states running --format %i | tail -n 1)
    [ -n "$task" ] && scontrol requeue "$task" && requeued=1 && break
    sleep 0.1
done
for _ in $(seq 240); do
    [ -z "$(squeue --noheader)" ] && break
    sleep 0.5
done
echo "job $job, killed programs: $killed, requeued tasks: $requeued"
restarts=$(scontrol show job "$job" | grep -o 'Restarts=[1-9]' | wc -l)
cat "$work/log"
[ "$killed" -ge 2 ] && [ "$requeued" = 1 ] && [ "$restarts" -ge 2 ]
scontrol show job "$job" | grep -c JobState=COMPLETED | grep -qx 4

"$batch" --settings "$sample/setting.ini" --rule 'Invoice number' --output "$work/expected" \
    --files-from "$work/list" --quiet
diff -r "$work/expected" "$work/out"
# The lines of docs/scale.md that read the reports.
sed -n "s|^    \(jq .*\)|\1|p" "$recipe" | sed "s|/data/|$work/|g" >"$work/merge"
sh -e "$work/merge"
[ "$(wc -l <"$work/all.jsonl")" = 400 ]
echo "all documents are there once"

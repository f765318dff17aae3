#!/usr/bin/env bash
# Whole-program benchmark: a scripted server on loopback floods `tolv --headless` and
# times it. The scripted server is the team's shared harness (shared/bench/fakeircd.py,
# beside this repository); it reports lines/s, peak memory and PING latency as JSON.
#
#   bench/whole_program.sh [build-dir] [runs]
#
# Scenarios: ingest of 1,000,000 channel PRIVMSG lines then a PING (time from the first
# byte to the PONG), the same from 50 talkers into the joined channel without and with
# ignore and highlight lists of 50 words each, latency (200 x one PRIVMSG and a PING in
# one write), and a names reply of 50,000 nicks after the own join.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$top/build}
runs=${2:-3}
fake=${FAKEIRCD:-$top/../shared/bench/fakeircd.py}
[[ -f $fake ]] || { echo "no scripted server at $fake (set FAKEIRCD)" >&2; exit 1; }

# 50 words each for the ignore and highlight lists; none of them occurs in the flood.
word_list() { for i in $(seq 1 50); do printf '%s%02d ' "$1" "$i"; done; }

prepare_home() {  # home lists(0|1)
  printf '' | TOLV_HOME="$1" "$build/tolv" --headless > /dev/null  # a first start writes the defaults
  [[ $2 == 1 ]] || return 0
  { printf '\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv]\n'
    printf '"en_ignore"=dword:00000001\n"ignore"="%s"\n' "$(word_list quiet)"
    printf '"en_hlights"=dword:00000001\n"hlights"="%s"\n' "$(word_list alarm)"
  } >> "$1/settings.reg"
}

run_one() {  # label lists(0|1) scenario args...
  local label=$1 lists=$2 scenario=$3; shift 3
  local dir port fake_pid tolv_pid
  dir=$(mktemp -d)
  port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')
  mkdir -p "$dir/home"
  printf 'Bench\t127.0.0.1\t%s\t\r\n' "$port" > "$dir/home/servers.txt"
  prepare_home "$dir/home" "$lists"
  python3 "$fake" --port "$port" --scenario "$scenario" "$@" --join force --timeout 120 \
    > "$dir/result.json" 2> "$dir/fake.err" &
  fake_pid=$!
  for _ in $(seq 1 50); do grep -q listening "$dir/fake.err" 2>/dev/null && break; sleep 0.1; done
  # Standard input is a pipe held open here, so the client runs until we close it.
  mkfifo "$dir/input"
  TOLV_HOME="$dir/home" "$build/tolv" --headless --connect < "$dir/input" > /dev/null 2> "$dir/tolv.err" &
  tolv_pid=$!
  exec 3> "$dir/input"
  wait "$fake_pid" || true
  exec 3>&-  # end of input: the client disconnects and exits by itself
  for _ in $(seq 1 50); do kill -0 "$tolv_pid" 2>/dev/null || break; sleep 0.1; done
  kill "$tolv_pid" 2>/dev/null || true
  python3 - "$dir/result.json" "$scenario" "$label" <<'PY'
import json, sys
lines = [l for l in open(sys.argv[1]).read().splitlines() if l.strip()]
d = json.loads(lines[-1]) if lines else {"ok": False, "error": "no result"}
scenario, label = sys.argv[2], sys.argv[3]
if not d.get("ok"):
    print(f"{label}: FAILED {d.get('error')}")
elif scenario == "ingest":
    print(f"{label}: {d['lines_per_s']:.0f} lines/s, peak RSS {d['hwm_kb']/1024:.0f} MiB, "
          f"client CPU {d.get('client_cpu_s', 0):.2f} s")
elif scenario == "latency":
    print(f"{label}: median {d['median_ms']:.3f} ms, p90 {d['p90_ms']:.3f} ms, p99 {d['p99_ms']:.3f} ms")
else:
    print(f"{label}: {d.get('figure')} (fields: {', '.join(k for k in d if k.endswith('_ms'))})")
PY
  rm -rf "$dir"
}

for _ in $(seq 1 "$runs"); do
  run_one ingest 0 ingest --n 1000000
  run_one ingest-50talkers 0 ingest --n 1000000 --nicks 50
  run_one ingest-50talkers-lists 1 ingest --n 1000000 --nicks 50
  run_one latency 0 latency --probes 200 --gap-ms 50
  run_one names50k 0 names --m 50000
done

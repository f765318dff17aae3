#!/usr/bin/env bash
# Whole-program benchmark: a scripted server on loopback floods `tolv --headless` and
# times it. The scripted server is the team's shared harness (shared/bench/fakeircd.py,
# beside this repository); it reports lines/s, peak memory and PING latency as JSON.
#
#   bench/whole_program.sh [build-dir] [runs]
#
# Scenarios: ingest of 1,000,000 channel PRIVMSG lines then a PING (time from the first
# byte to the PONG), and latency (200 x one PRIVMSG and a PING in one write).
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$top/build}
runs=${2:-3}
fake=${FAKEIRCD:-$top/../shared/bench/fakeircd.py}
[[ -f $fake ]] || { echo "no scripted server at $fake (set FAKEIRCD)" >&2; exit 1; }

run_one() {  # scenario args...
  local scenario=$1; shift
  local dir port fake_pid tolv_pid
  dir=$(mktemp -d)
  port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')
  mkdir -p "$dir/home"
  printf 'Bench\t127.0.0.1\t%s\t\r\n' "$port" > "$dir/home/servers.txt"
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
  python3 - "$dir/result.json" "$scenario" <<'PY'
import json, sys
lines = [l for l in open(sys.argv[1]).read().splitlines() if l.strip()]
d = json.loads(lines[-1]) if lines else {"ok": False, "error": "no result"}
if not d.get("ok"):
    print(f"{sys.argv[2]}: FAILED {d.get('error')}")
elif sys.argv[2] == "ingest":
    print(f"ingest: {d['lines_per_s']:.0f} lines/s, peak RSS {d['hwm_kb']/1024:.0f} MiB, "
          f"client CPU {d.get('client_cpu_s', 0):.2f} s")
else:
    print(f"latency: median {d['median_ms']:.3f} ms, p90 {d['p90_ms']:.3f} ms, p99 {d['p99_ms']:.3f} ms")
PY
  rm -rf "$dir"
}

for _ in $(seq 1 "$runs"); do
  run_one ingest --n 1000000
  run_one latency --probes 200 --gap-ms 50
done

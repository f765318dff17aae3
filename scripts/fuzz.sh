#!/usr/bin/env bash
# Builds the libFuzzer targets with clang into build-fuzz/ and runs each one for SECONDS
# (default 12, about a minute for all five) on a copy of its seed corpus plus fresh
# inputs. Exits non-zero when any target finds a crash, a leak or a time-out; what it
# found is kept in build-fuzz/findings/<target>/ and can be replayed with
#   build-fuzz/fuzz/<target>_fuzz <file>
#
#   scripts/fuzz.sh                 # every target, 12 s each
#   scripts/fuzz.sh 600             # the long run: ten minutes each, on every core
#   scripts/fuzz.sh 60 server_bytes # chosen targets only
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-12}
shift || true
targets=("$@")
[[ ${#targets[@]} -gt 0 ]] || targets=(server_bytes input_line settings_file server_list formatting)
[[ $seconds =~ ^[0-9]+$ && $seconds -gt 0 ]] || { echo "fuzz: SECONDS must be a whole number" >&2; exit 2; }

"$top/scripts/setup.sh"
# clang and its runtimes (libFuzzer, the sanitizers) come from Debian as well.
if ! command -v clang++ >/dev/null || ! dpkg-query -W -f='${Status}' libclang-rt-14-dev 2>/dev/null |
     grep -q "install ok installed"; then
  echo "fuzz: installing clang and libclang-rt-14-dev" >&2
  sudo=""
  [[ $(id -u) -eq 0 ]] || sudo="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends clang libclang-rt-14-dev >/dev/null
fi

build="$top/build-fuzz"
CC=clang CXX=clang++ cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTOLV_FUZZ=ON -DTOLV_BUILD_TESTS=OFF -DTOLV_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" --target tolv_fuzz --parallel "$(nproc)"

# The targets' settings and log folders, in memory when possible; a target stopped by a
# finding cannot remove its own, so the whole folder goes at the end.
scratch=$(mktemp -d /dev/shm/tolv-fuzz-run.XXXXXX 2>/dev/null || mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export TOLV_FUZZ_TMPDIR=$scratch

# Any sanitizer report ends the run as a finding.
export ASAN_OPTIONS=detect_leaks=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

failed=()
for target in "${targets[@]}"; do
  fuzzer="$build/fuzz/${target}_fuzz"
  [[ -x $fuzzer ]] || { echo "fuzz: no target named $target" >&2; exit 2; }
  work="$build/fuzz-run/$target"
  findings="$build/findings/$target"
  rm -rf "$work"
  mkdir -p "$work/corpus" "$findings"
  cp "$top/fuzz/corpus/$target/"* "$work/corpus/"
  dict=()
  [[ -f $top/fuzz/$target.dict ]] && dict=(-dict="$top/fuzz/$target.dict")
  echo "fuzz: $target for ${seconds} s"
  status=0
  # TOLV_FUZZ_SEED and TOLV_FUZZ_RUNS make a run repeatable (CI uses them), so what
  # passed before a submission passes in CI too; fresh finds belong to the long runs.
  repeatable=()
  [[ -n ${TOLV_FUZZ_SEED:-} ]] && repeatable+=(-seed="$TOLV_FUZZ_SEED")
  [[ -n ${TOLV_FUZZ_RUNS:-} ]] && repeatable+=(-runs="$TOLV_FUZZ_RUNS")
  # Other runs use every core, in child processes that libFuzzer restarts every few
  # minutes: one process's memory under AddressSanitizer creeps up by about half a
  # kilobyte per input (its quarantine and allocation stacks, not the client's heap), which
  # would end an hours-long run at the memory limit with a false finding. A forked run
  # would otherwise only count hangs and memory blow-ups; they are findings here.
  forked=()
  [[ -z ${TOLV_FUZZ_RUNS:-} && $(nproc) -gt 1 ]] &&
    forked=(-fork="$(nproc)" -ignore_timeouts=0 -ignore_ooms=0)
  "$fuzzer" "$work/corpus" "${dict[@]}" "${repeatable[@]}" "${forked[@]}" \
    -max_total_time="$seconds" -timeout=5 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$findings/" </dev/null >"$work/log" 2>&1 || status=$?
  # A forked run counts its inputs on its "#N: cov: ..." progress lines.
  if [[ ${#forked[@]} -gt 0 ]]; then
    runs=$(sed -n 's/^#\([0-9]*\): cov:.*/\1/p' "$work/log" | tail -n 1)
    speed=$(( ${runs:-0} / seconds ))
  else
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$work/log")
    speed=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$work/log")
  fi
  if [[ $status -ne 0 ]]; then
    failed+=("$target")
    echo "fuzz: $target FAILED (exit $status) after ${runs:-?} runs; the end of its log:"
    grep -v -E '^#[0-9]+(\s+(NEW|REDUCE|pulse)|: cov:)' "$work/log" | tail -n 40
    echo "fuzz: replay with: $fuzzer $findings/<file>"
  else
    echo "fuzz: $target clean: ${runs:-?} runs, ${speed:-?} per second"
  fi
done

if [[ ${#failed[@]} -gt 0 ]]; then
  echo "fuzz: findings in ${failed[*]} (inputs kept in $build/findings/)"
  exit 1
fi
echo "fuzz: all ${#targets[@]} targets clean"

# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash disable=SC2154 # work: set by the script that sources this
# Functions for scripts that check one step after the other. Sourced by a script that has set `work`, a
# folder for logs.

checks=0

# Runs a step of a check; prints its whole output when it failed.
step() {
  local what=$1
  shift
  if ! "$@" >"$work/log" 2>&1; then
    echo "$(basename "$0"): could not $what" >&2
    cat "$work/log" >&2
    exit 1
  fi
  checks=$((checks + 1))
  echo "ok: $what"
}

# The base address that a starting sandbox prints in this file.
base_address() {
  local base tries
  for ((tries = 0; tries < 100; ++tries)); do
    base=$(sed -n 's/.*"event":"ready","base":"\([^"]*\)".*/\1/p' "$1")
    if [[ -n $base ]]; then
      echo "$base"
      return
    fi
    read -r -t 0.1 <> <(:) || true
  done
  echo "the sandbox did not start" >&2
  return 1
}

#!/usr/bin/env bash
# Runs a command that sees the folder STAGE as /usr/local, without changing the system:
# with_stage.sh STAGE COMMAND...   Ends with 77 where that is not allowed.
set -euo pipefail
stage=$1
shift
options=(--mount)
[ "$(id -u)" -eq 0 ] || options+=(--map-root-user)
if ! unshare "${options[@]}" mount --bind "$stage" /usr/local 2>/dev/null; then
  echo "NOT TESTED: no private mounts are allowed here"
  exit 77
fi
# shellcheck disable=SC2016  # Meant for the inner shell.
exec unshare "${options[@]}" bash -c 'mount --bind "$0" /usr/local && exec "$@"' "$stage" "$@"

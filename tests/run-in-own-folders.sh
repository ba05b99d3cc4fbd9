#!/usr/bin/env bash
# Runs one test program in folders of its own: HOME, the XDG folders and TMPDIR all point into a
# fresh folder that is removed when the program ends. Nothing a test or Qt writes on its behalf
# (QSettings, the file dialog's history, scratch files, QTemporaryDir) reaches the user's home, the
# system temp folder's top or another test, and no run sees what an earlier one left behind.
# Every ctest entry starts through this script (fastpanel_add_test); ./dev test --each too.
set -u
own="$(mktemp -d "${TMPDIR:-/tmp}/fastpanel-test.XXXXXX")" || exit 1
trap 'rm -rf "$own"' EXIT
mkdir -p "$own/home" "$own/config" "$own/config-dirs" "$own/data" "$own/cache" "$own/state" "$own/tmp"
mkdir -m 700 "$own/runtime"
export HOME="$own/home" TMPDIR="$own/tmp" XDG_CONFIG_HOME="$own/config" XDG_CONFIG_DIRS="$own/config-dirs" \
  XDG_DATA_HOME="$own/data" XDG_CACHE_HOME="$own/cache" XDG_STATE_HOME="$own/state" XDG_RUNTIME_DIR="$own/runtime"
"$@"

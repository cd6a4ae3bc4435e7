# Shared by the scripts beside this file; sourced, not run.
# Everything the scripts make lies under build/ of the checkout, except the Debian packages that
# scripts/setup installs.

set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=$root/build

say() { printf '== %s\n' "$*"; }
die() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

# The Wine environment of this checkout: a prefix and a home of its own, no crash dialog, no
# diagnostics on stderr, and locale and zone fixed so that results do not depend on the machine.
wine_environment() {
  export WINEPREFIX=${VELM_WINEPREFIX:-$build_dir/wine/prefix}
  export HOME=$build_dir/wine/home
  export WINEDEBUG=${WINEDEBUG:--all}
  export WINEDLLOVERRIDES="mscoree=;mshtml=;winedbg.exe="
  export LC_ALL=C.UTF-8 TZ=UTC
  unset DISPLAY WAYLAND_DISPLAY
}

# Keeps the prefix's server and desktop up for some minutes between programs. Programs start faster, and
# above all they do not meet a desktop on its way down: Wine closes it, with every window that a new
# program has just opened, when the last program before has ended.
keep_wine_desktop() {
  local keeper=$build_dir/wine/desktop.pid
  kill -0 "$(cat "$keeper" 2>/dev/null)" 2>/dev/null && return 0
  wineserver -p60 >/dev/null 2>&1 || true
  setsid timeout 600 wine notepad </dev/null >/dev/null 2>&1 &
  echo $! >"$keeper"
  sleep 1 # until its window stands
}

# configure_and_build PRESET [TARGET...]
configure_and_build() {
  local preset=$1
  shift
  [ -f "$build_dir/$preset/build.ninja" ] || (cd "$root" && cmake --preset "$preset")
  (cd "$root" && cmake --build --preset "$preset" ${1:+--target "$@"})
}

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

# configure_and_build PRESET [TARGET...]
configure_and_build() {
  local preset=$1
  shift
  [ -f "$build_dir/$preset/build.ninja" ] || (cd "$root" && cmake --preset "$preset")
  (cd "$root" && cmake --build --preset "$preset" ${1:+--target "$@"})
}

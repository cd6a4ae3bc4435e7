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
# diagnostics on stderr, and locale and zone fixed so that results do not depend on the machine. VELM_TZ
# is another zone, for a test that is about zones.
wine_environment() {
  export WINEPREFIX=${VELM_WINEPREFIX:-$build_dir/wine/prefix}
  export HOME=$build_dir/wine/home
  export WINEDEBUG=${WINEDEBUG:--all}
  export WINEDLLOVERRIDES="mscoree=;mshtml=;winedbg.exe="
  export LC_ALL=C.UTF-8 TZ=${VELM_TZ:-UTC}
  unset DISPLAY WAYLAND_DISPLAY
}

# Keeps the prefix's server, services and desktop up for some minutes between programs: the next program
# starts in a fraction of the time. They are started with nothing of the caller's but /dev/null, because
# whoever reads a program's output to its end would otherwise wait for them as well.
keep_wine_desktop() {
  local keeper=$build_dir/wine/desktop.pid
  exec 9>"$build_dir/wine/desktop.lock"
  flock 9
  if ! kill -0 "$(cat "$keeper" 2>/dev/null)" 2>/dev/null; then
    {
      wineserver -p60 || true
      wine cmd /c exit || true # returns when the services are up
      setsid timeout 600 wine notepad &
      echo $! >"$keeper"
    } </dev/null >/dev/null 2>&1 9>&-
  fi
  exec 9>&-
}

# configure_and_build PRESET [TARGET...]
configure_and_build() {
  local preset=$1
  shift
  [ -f "$build_dir/$preset/build.ninja" ] || (cd "$root" && cmake --preset "$preset")
  (cd "$root" && cmake --build --preset "$preset" ${1:+--target "$@"})
}

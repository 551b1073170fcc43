# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# What ./run, ./test and .ci/run have in common; sourced by them.
#
# Nothing is written outside the repository: the compiler cache, temporary files and the user directories of the
# programs that are started all lie below build/.

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
JOBS="${TORVALEN_JOBS:-$(nproc)}"

BUILD_PACKAGES=(g++ cmake ninja-build pkg-config ccache mold git qtbase5-dev libgl-dev libbenchmark-dev)
MEDIA_PACKAGES=(libavcodec-dev libavformat-dev libavutil-dev libswscale-dev libswresample-dev libdeflate-dev libopenimageio-dev
    portaudio19-dev ffmpeg)
SCRIPT_PACKAGES=(python3-dev pybind11-dev)
DISPLAY_PACKAGES=(xvfb xauth libgl1-mesa-dri fonts-dejavu-core)
TEST_PACKAGES=(x11-utils xdotool openbox imagemagick openimageio-tools)

fail()
{
    printf '%s: %s\n' "$0" "$*" >&2
    exit 1
}

say()
{
    printf '%s: %s\n' "$0" "$*"
}

# Keeps what the tools and the programs would write below the user's home in the repository.
enter_sandbox()
{
    local home="$ROOT/build/home"
    mkdir -p "$home/config" "$home/cache" "$home/data" "$home/state" "$home/tmp"
    mkdir -p -m 0700 "$home/run"
    export XDG_CONFIG_HOME="$home/config" XDG_CACHE_HOME="$home/cache" XDG_DATA_HOME="$home/data"
    export XDG_STATE_HOME="$home/state" XDG_RUNTIME_DIR="$home/run" TMPDIR="$home/tmp"
    export CCACHE_DIR="${CCACHE_DIR:-$ROOT/build/ccache}"
}

# install_missing PACKAGE… installs those Debian packages that are missing.
install_missing()
{
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        say "this is no Debian system; the counterparts of these packages must be there: $*"
        return
    fi
    local installed missing=() name
    installed=" $(dpkg-query -W -f '${db:Status-Status}/${Package} ' "$@" 2>/dev/null || true)"
    for name in "$@"; do
        [[ "$installed" == *" installed/$name "* ]] || missing+=("$name")
    done
    [[ ${#missing[@]} -gt 0 ]] || return 0

    local as_root=()
    if [[ "$(id -u)" -ne 0 ]]; then
        command -v sudo >/dev/null || fail "as root, run: apt-get install --no-install-recommends ${missing[*]}"
        as_root=(sudo)
    fi
    say "installing ${missing[*]}"
    mkdir -p "$ROOT/build"
    local log="$ROOT/build/packages.log"
    local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -y -o DPkg::Lock::Timeout=900)
    local install=("${apt[@]}" install --no-install-recommends "${missing[@]}")
    # Package lists that are absent or too old are renewed; lists that do are left alone.
    if ! apt-cache show "${missing[@]}" >/dev/null 2>&1 || ! "${install[@]}" >"$log" 2>&1 </dev/null; then
        "${apt[@]}" update >"$log" 2>&1 </dev/null || fail "the package lists could not be renewed; see $log"
        "${install[@]}" >>"$log" 2>&1 </dev/null || fail "could not install ${missing[*]}; see $log"
    fi
}

# build_preset PRESET [TARGET…] configures, where that was not done yet, and builds.
build_preset()
{
    local preset="$1"
    shift
    local log="$ROOT/build/$preset-configure.log"
    mkdir -p "$ROOT/build"
    if [[ ! -f "$ROOT/build/$preset/build.ninja" ]]; then
        say "configuring the preset $preset"
        (cd "$ROOT" && cmake --preset "$preset") >"$log" 2>&1 </dev/null ||
            { cat "$log" >&2; fail "configuring the preset $preset failed; see $log"; }
    fi
    say "building the preset $preset"
    cmake --build "$ROOT/build/$preset" -j "$JOBS" ${1:+--target "$@"} </dev/null ||
        fail "building the preset $preset failed"
}

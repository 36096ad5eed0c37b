# Sourced by the other scripts: where the project is, and the tools of its own prefix first in PATH.

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
prefix="$root/.deps"
export PATH="$prefix/venv/bin:$PATH"

say() { printf '%s: %s\n' "${0##*/}" "$*"; }
fail() {
    printf '%s: error: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# command_for <sample library>: the words of the tool's command that makes its documents.
command_for() {
    case "$1" in
        */overlays*.json) echo overlay ;;
        */legacy*.json) echo convert --legacy ;;
        *) echo convert ;;
    esac
}

# need <program> <Debian package>: installs what is missing when this run may.
need() {
    command -v "$1" >/dev/null && return
    local install=(env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$2")
    if ((EUID != 0)); then
        sudo -n true 2>/dev/null || fail "$1 is missing; please run this, then start again:
    apt-get update && apt-get install -y --no-install-recommends $2"
        install=(sudo -n "${install[@]}")
    fi
    say "installing $2"
    "${install[@]}" >/dev/null || fail "installing $2 failed; apt-get update may help"
}

# All C++ files of the project, relative to its root, each ended by a NUL.
sources() {
    local folder folders=()
    for folder in include platform src assetlib batch cli tests benchmarks examples tools; do
        [[ -d $root/$folder ]] && folders+=("$folder")
    done
    (cd "$root" && find "${folders[@]}" -type f \( -name '*.h' -o -name '*.cpp' \) -print0 | sort -z)
}

# build <preset> [target...]: configures and builds, one run at a time; says what the compiler says only when it
# fails.
build() (
    preset="$1" folder="$root/build/$1" fresh=() targets=()
    shift
    (($#)) && targets=(--target "$@")
    cd "$root"
    mkdir -p "$folder"
    exec 8>"$folder/.lock"
    flock 8
    # A checkout that was moved keeps a cache that CMake refuses.
    grep -qs "^CMAKE_HOME_DIRECTORY:INTERNAL=$root\$" "$folder/CMakeCache.txt" || fresh=(--fresh)
    say "building $preset"
    if ! cmake --preset "$preset" "${fresh[@]}" >"$folder/configure.log" 2>&1; then
        cat "$folder/configure.log" >&2
        fail "configuring $preset failed"
    fi
    cmake --build --preset "$preset" -j "$(nproc)" "${targets[@]}" -- --quiet ||
        fail "building $preset failed"
)

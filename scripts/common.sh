# Sourced by the other scripts: where the project is, and the tools of its own prefix first in PATH.

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
prefix="$root/.deps"
export PATH="$prefix/venv/bin:$PATH"

say() { printf '%s: %s\n' "${0##*/}" "$*"; }
fail() {
    printf '%s: error: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# Shared by the scripts; to be sourced. Sets `root`, the project's folder, and goes there.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$root" || exit
export root

say() { printf '%s: %s\n' "${0##*/}" "$*" >&2; }

die() {
    say "$*"
    exit 1
}

# Configures and builds a preset of CMakePresets.json, through ccache when that is there. Further arguments are targets.
build_preset() {
    local preset=$1
    shift
    local options=()
    if command -v ccache >/dev/null; then
        export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1 # what one folder built serves another
        options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    say "building preset $preset"
    cmake --preset "$preset" "${options[@]}" >/dev/null
    if (($# > 0)); then
        cmake --build --preset "$preset" --target "$@"
    else
        cmake --build --preset "$preset"
    fi
}

# The path as a file URL.
file_url() {
    local LC_ALL=C path=$1 url=file:// i character
    for ((i = 0; i < ${#path}; i++)); do
        character=${path:i:1}
        case $character in
        [a-zA-Z0-9/._~-]) url+=$character ;;
        *) printf -v url '%s%%%02X' "$url" "'$character" ;;
        esac
    done
    printf '%s\n' "$url"
}

# The project's own sources, as paths from its folder: C++ files that git tracks or would track.
list_sources() {
    git ls-files --cached --others --exclude-standard -- '*.cpp' '*.h' | while IFS= read -r file; do
        if [[ -f $file ]]; then
            printf '%s\n' "$file"
        fi
    done
}

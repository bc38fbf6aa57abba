# shellcheck shell=bash
# Sourced by the tests of what is installed. They set `cmake`, `compiler` and `work`, a directory that
# goes when they end.

consumer=$(cd "$(dirname "${BASH_SOURCE[0]}")/consumer" && pwd)

quietly() {
    "$@" >"$work/log" 2>&1 || {
        cat "$work/log"
        exit 1
    }
}

# expect TEXT COMMAND...: the command prints just the text.
expect() {
    local text=$1 printed
    shift
    printed=$("$@") || true
    if [[ $printed != "$text" ]]; then
        printf 'FAILED: %s: expected "%s", got "%s"\n' "$*" "$text" "$printed"
        exit 1
    fi
}

# Programs that find what is installed at PREFIX with CMake: use_with_cmake PREFIX FLAGS
use_with_cmake() {
    local build=$work/with_cmake
    rm -rf "$build"
    quietly "$cmake" -S "$consumer" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_CXX_FLAGS="$2" -DCMAKE_PREFIX_PATH="$1"
    quietly "$cmake" --build "$build"
    expect identical "$build/consumer"
    expect '{"rdnSequence":[]}' "$build/json"
    expect C=RU,O=x "$build/value_classes"
    expect "$(<"$consumer/own_module.expected")" "$build/own_module"
    echo "CMake package: works"
}

# Programs that find it with pkg-config: use_with_pkg_config PREFIX FLAGS PKG_CONFIG_OPTION...
use_with_pkg_config() {
    if ! command -v pkg-config >/dev/null; then
        echo "pkg-config: not tried, the command is missing"
        return
    fi
    local needed given pc_file library_directory
    pc_file=$(find "$1" -name brevantis-asn1.pc)
    PKG_CONFIG_PATH=$(dirname "$pc_file")
    export PKG_CONFIG_PATH
    read -r -a given <<<"$2"
    shift 2
    library_directory=$(pkg-config --variable=libdir brevantis-asn1)
    read -r -a needed <<<"$(pkg-config "$@" --cflags --libs brevantis-asn1)"
    quietly "$compiler" -std=c++17 "${given[@]}" "$consumer/consumer.cpp" "${needed[@]}" -o "$work/consumer"
    expect identical env LD_LIBRARY_PATH="$library_directory" "$work/consumer"
    read -r -a needed <<<"$(pkg-config "$@" --cflags --libs brevantis-asn1-text)"
    quietly "$compiler" -std=c++17 "${given[@]}" "$consumer/json.cpp" "${needed[@]}" \
        -Wl,-rpath-link,"$library_directory" -o "$work/json"
    expect '{"rdnSequence":[]}' env LD_LIBRARY_PATH="$library_directory" "$work/json"
    # In C, where the language's own library has to be told.
    printf '#include <brevantis/asn1.h>\nint main(void) { return basn1_find_type("Name") == 0; }\n' \
        >"$work/c.c"
    quietly "${CC:-cc}" "${given[@]}" "$work/c.c" "${needed[@]}" \
        -Wl,-rpath-link,"$library_directory" -o "$work/c"
    expect "" env LD_LIBRARY_PATH="$library_directory" "$work/c"
    echo "pkg-config $*: works"
}

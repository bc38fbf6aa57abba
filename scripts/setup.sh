# shellcheck shell=bash
# Sourced by the scripts beside it: finds the tree, installs what is missing, configures and builds.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=${BREVANTIS_JOBS:-2}
ca_bundle=/etc/ssl/certs/ca-certificates.crt

say() { printf '== %s\n' "$*"; }
fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# What a package is needed for is what shows whether it is missing: a compiler or a CMake from
# elsewhere serves as well as the distribution's.
is_provided() {
    case $1 in
        abigail-tools) command -v abidiff ;;
        clang) command -v clang++ ;;
        xz-utils) command -v xz ;;
        debhelper) command -v dh ;;
        dpkg-dev) command -v dpkg-buildpackage ;;
        dh-python) command -v dh_python3 ;;
        python3-all) command -v python3 && dpkg -s python3-all ;;
        doxygen | lintian | piuparts | debootstrap | python3) command -v "$1" ;;
        llvm) command -v llvm-cov ;;
        g++) command -v c++ || command -v g++ ;;
        cmake) command -v cmake ;;
        ninja-build) command -v ninja ;;
        binutils) command -v nm ;;
        openssl) command -v openssl ;;
        pkg-config) command -v pkg-config ;;
        valgrind) test -e /usr/include/valgrind/callgrind.h && command -v valgrind ;;
        libssl-dev) test -e /usr/include/openssl/x509.h ;;
        libgnutls28-dev) test -e /usr/include/gnutls/gnutls.h ;;
        libtasn1-6-dev) test -e /usr/include/libtasn1.h ;;
        libmbedtls-dev) test -e /usr/include/mbedtls/x509_crt.h ;;
        libbotan-2-dev) test -e /usr/include/botan-2/botan/x509cert.h ;;
        libnss3-dev) test -e /usr/include/nss/nss.h ;;
        libbenchmark-dev) compgen -G '/usr/lib/*/cmake/benchmark/benchmarkConfig.cmake' ||
            compgen -G '/usr/local/lib/cmake/benchmark/benchmarkConfig.cmake' ;;
        nlohmann-json3-dev) test -e /usr/include/nlohmann/json.hpp ;;
        libcli11-dev) test -e /usr/include/CLI/CLI.hpp ;;
        nettle-dev) test -e /usr/include/nettle/sha2.h ;;
        chromium) command -v chromium ;;
        chromium-driver) command -v chromedriver ;;
        python3-selenium) /usr/bin/python3 -c 'import selenium' ;;
        python3-pytest) /usr/bin/python3 -c 'import pytest' ;;
        ca-certificates) test -s "$ca_bundle" ;;
        libc++-dev) echo '#include <list>' | clang++ -stdlib=libc++ -x c++ -fsyntax-only - 2>&1 ;;
        libc++abi-dev) compgen -G '/usr/lib/*/libc++abi.so' || compgen -G '/usr/lib/llvm-*/lib/libc++abi.so' ;;
        googletest) test -e /usr/src/googletest/CMakeLists.txt ;;
        libgtest-dev) compgen -G '/usr/lib/*/cmake/GTest/GTestConfig.cmake' ||
            compgen -G '/usr/local/lib/cmake/GTest/GTestConfig.cmake' ;;
        *) false ;;
    esac >/dev/null
}

# Installs the packages of the arguments that are missing. With nothing missing it needs neither
# network nor privileges.
install_missing() {
    local package missing=() as_root=()
    for package in "$@"; do
        is_provided "$package" || missing+=("$package")
    done
    if ((${#missing[@]} == 0)); then
        return
    fi
    command -v apt-get >/dev/null || fail "please install: ${missing[*]}"
    if ((EUID != 0)); then
        command -v sudo >/dev/null || fail "please install as root: ${missing[*]}"
        as_root=(sudo)
    fi
    say "installing ${missing[*]}"
    "${as_root[@]}" apt-get -q update
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get -q install -y --no-install-recommends "${missing[@]}"
}

# build PRESET CMAKE_ARGUMENT... -- TARGET...
# With BREVANTIS_DEBUG_INFO=ON in the environment the libraries have debug information, so that one
# build serves scripts/abi.sh too.
build() {
    local preset=$1 arguments=()
    shift
    if [[ $preset == release && -n ${BREVANTIS_DEBUG_INFO:-} ]]; then
        arguments+=("-DBREVANTIS_DEBUG_INFO=$BREVANTIS_DEBUG_INFO")
    fi
    while (($# > 0)) && [[ $1 != -- ]]; do
        arguments+=("$1")
        shift
    done
    shift
    say "building ${*:-everything} (preset $preset)"
    (
        cd "$root" || exit
        cmake --preset "$preset" "${arguments[@]}" >"$root/build/$preset.configure.log" 2>&1 || {
            cat "$root/build/$preset.configure.log" >&2
            exit 1
        }
        cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"}
    )
}

mkdir -p "$root/build"

# Shared by ./run, ./test and .ci/run: where things lie, and the packages that a fresh machine lacks.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '\033[1m== %s\033[0m\n' "$*"; }

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# install_missing PACKAGE...: installs those of the packages that are not there; quiet when all are.
install_missing() {
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null)" = "ii " ] || missing+=("$package")
    done
    [ ${#missing[@]} = 0 ] && return 0
    say "Installing ${missing[*]}"
    as_root apt-get update -qq
    DEBIAN_FRONTEND=noninteractive as_root apt-get install -y -qq --no-install-recommends "${missing[@]}" \
        > /tmp/quillary_install.log 2>&1 || { tail -20 /tmp/quillary_install.log; return 1; }
}

build_packages=(g++ cmake ninja-build ccache pkg-config git libicu-dev libsqlite3-dev libx11-dev libxcb1-dev
                qt6-base-dev libgtest-dev libgmock-dev libbenchmark-dev mdbtools-dev)
run_packages=(fonts-dejavu-core tzdata)
test_packages=(clang-format clang-tidy xvfb xdotool imagemagick python3 mdbtools
               dpkg-dev file lintian appstream desktop-file-utils)

# configure_and_build FOLDER TARGETS... [-- CMAKE-OPTIONS...]
configure_and_build() {
    local folder=$1 targets=() options=()
    shift
    while [ $# -gt 0 ]; do
        if [ "$1" = -- ]; then shift; options=("$@"); break; fi
        targets+=("$1"); shift
    done
    cmake -G Ninja -S "$root" -B "$folder" -DCMAKE_CXX_COMPILER_LAUNCHER=ccache "${options[@]}" > "$folder/configure.log" 2>&1 ||
        { tail -30 "$folder/configure.log"; return 1; }
    ninja -C "$folder" "${targets[@]}"
}

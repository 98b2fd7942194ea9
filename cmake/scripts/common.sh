# What ./run and ./test share. Sourced from the project's root.

say() { printf '\n== %s\n' "$*"; }

PACKAGES="build-essential cmake ninja-build ccache mold pkg-config
    qtbase5-dev libqt5svg5-dev libqt-advanced-docking-system-dev libcli11-dev
    libquazip1-qt5-dev libmd4c-html0-dev libmd4c-dev
    libopenimageio-dev librsvg2-dev libfreetype-dev libfontconfig-dev libopenexr-dev libopencolorio-dev libpng-dev libwebp-dev libassimp-dev libtinygltf-dev
    libtbb-dev libhwy-dev libxxhash-dev
    libepoxy-dev libglm-dev libegl1 libgl1-mesa-dri
    python3-dev pybind11-dev
    fonts-inter fonts-dejavu-core"
# xvfb-run needs xauth, but does not depend on it.
TEST_PACKAGES="libgtest-dev xvfb xauth"
CHECK_PACKAGES="clang-format clang-tidy"

# What a preset needs beyond that.
packages_of() {
    case "$1" in
    dev) echo clang ;;
    asan | tsan | fuzz) echo clang libclang-rt-14-dev ;;
    esac
}

# Installs those of the named packages that are not there yet.
install_packages() {
    missing=""
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' \
            || missing="$missing $package"
    done
    if [ -z "$missing" ]; then
        say "All packages are installed"
        return
    fi
    say "Installing:$missing"
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    export DEBIAN_FRONTEND=noninteractive
    # shellcheck disable=SC2086
    $sudo apt-get update -qq && $sudo apt-get install -y -qq --no-install-recommends $missing >/dev/null
}

# Configures and builds a preset.
build() {
    say "Building ($1)"
    cmake --preset "$1" >"build-$1.log" 2>&1 || { cat "build-$1.log"; rm -f "build-$1.log"; return 1; }
    rm -f "build-$1.log"
    cmake --build --preset "$1"
}

# The Khronos Group's validator of glTF files, for the tests; without it they leave one check out.
install_validator() {
    modules="$PWD/build/npm/node_modules"
    if [ ! -d "$modules/gltf-validator" ]; then
        command -v npm >/dev/null || install_packages nodejs npm
        say "Installing: gltf-validator"
        npm install --silent --no-audit --no-fund --prefix build/npm gltf-validator@2.0.0-dev.3.10 \
            >/dev/null 2>&1 || { say "gltf-validator cannot be installed: one check is left out"; return 0; }
    fi
    export OSSA_NODE_MODULES="$modules" OSSA_GLTF_VALIDATOR="$PWD/tests/tools/check-gltf.js"
}

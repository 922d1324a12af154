# Shared by the entry scripts: what the project needs from Debian, and how it is built.
# Sourced with the working folder at the root of the checkout.

build_packages=(g++ cmake ninja-build pkg-config
    libavcodec-dev libswresample-dev libhwy-dev libboost-dev libexpat1-dev libcli11-dev nlohmann-json3-dev
    libsoxr-dev qt6-base-dev qt6-tools-dev libqt6opengl6-dev)
test_packages=(libgtest-dev libsndfile1-dev libavformat-dev ffmpeg flac sox libsox-fmt-all lame mpg123 faad
    sndfile-programs binutils fonts-dejavu-core fonts-ipafont-gothic xvfb xdotool locales dbus-daemon)
bench_packages=(libavformat-dev libsndfile1-dev ffmpeg sndfile-programs flac lame python3)
fuzz_packages=(clang-14 libclang-rt-14-dev)

# fail TEXT...: ends the script with a message.
fail()
{
    printf '%s\n' "$*" >&2
    exit 1
}

# install_packages NAME...: installs those that are missing, quietly.
install_packages()
{
    local missing=() name
    for name in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local become=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "Please install these packages: ${missing[*]}"
        become=(sudo)
    fi
    printf 'Installing %s\n' "${missing[*]}" >&2
    local log
    log=$(mktemp)
    if ! { "${become[@]}" apt-get update -qq &&
        "${become[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        rm -f "$log"
        fail "Installing packages failed."
    fi
    rm -f "$log"
}

# What build_tree builds; everything when empty.
build_targets=()

# build_tree PRESET [CMAKE_OPTION...]: configures when needed and builds; speaks only on failure.
build_tree()
{
    local preset=$1 log
    shift
    mkdir -p "build/$preset"
    log=build/$preset/build.log
    printf '%s\n' "$*" >"build/$preset/options.new"
    if [ ! -f "build/$preset/build.ninja" ] || ! cmp -s "build/$preset/options.new" "build/$preset/options"; then
        [ -t 2 ] && printf 'Configuring %s ...\n' "$preset" >&2
        if ! cmake --preset "$preset" "$@" >"$log" 2>&1; then
            cat "$log" >&2
            fail "Configuring failed."
        fi
        mv "build/$preset/options.new" "build/$preset/options"
    fi
    [ -t 2 ] && printf 'Building %s ...\n' "$preset" >&2
    if ! cmake --build "build/$preset" ${build_targets[@]+--target "${build_targets[@]}"} >"$log" 2>&1; then
        grep -v '^\[' "$log" >&2
        fail "Building failed."
    fi
}

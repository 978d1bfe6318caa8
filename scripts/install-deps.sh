#!/usr/bin/env bash
# Installs what Vantor needs on Debian 12, Ubuntu and their relatives, and only what is missing.
#
#   scripts/install-deps.sh build   what building and running needs (the default)
#   scripts/install-deps.sh test    the same and the tools of the test suite
#
# Says nothing when everything is there. Without apt-get it names the libraries and succeeds, so that CMake decides.
set -euo pipefail

build_packages=(
    # Toolchain. clang-19 brings no C++ standard library of its own; g++ brings the distribution's.
    git ca-certificates cmake ninja-build ccache pkg-config
    clang-19 lld-19 g++ libc6-dev
    # Libraries.
    qt6-base-dev qt6-base-dev-tools qt6-websockets-dev libgl1-mesa-dev qcoro-qt6-dev qtkeychain-qt6-dev
    libzip-dev zlib1g-dev libavformat-dev libavcodec-dev libavutil-dev libswresample-dev
    libtag1-dev libxcb1-dev libxcb-sync-dev libpulse-dev libsqlite3-dev libssl-dev
    # A font for dialogs and menus; the window system's plugin comes with Qt's library.
    fonts-dejavu-core
)
# The sanitizer run-times, the formatter, an encoder for test files, a display, its window manager, mouse and keyboard, a sound server, a message bus, and what runs the scripts.
test_packages=(
    clang-format-19 libclang-rt-19-dev llvm-19
    libgtest-dev libgmock-dev libbenchmark-dev
    xvfb xauth xdotool x11-utils x11-xserver-utils openbox
    pulseaudio pulseaudio-utils dbus ffmpeg python3
)

name_libraries() {
    cat <<'TEXT'
apt-get was not found, so nothing is installed. Vantor needs, by whatever names your system has them:
  compiler and tools      Clang 19 with LLD, CMake 3.25, Ninja, pkg-config, ccache (optional)
  windows, images, HTTP   Qt 6.4 or later (base: Core, Gui, Widgets, Network, Concurrent, DBus; WebSockets) and OpenGL headers
  coroutines              QCoro 0.8 or later for Qt 6 (Core, DBus)
  saved tokens            QtKeychain for Qt 6
  ZIP archives            libzip and zlib
  audio decoding          FFmpeg 5.1 or later (libavformat, libavcodec, libavutil, libswresample)
  tags and covers         TagLib
  skin index              SQLite 3 with FTS5, and OpenSSL (libcrypto)
  sound output            the PulseAudio client library (libpulse)
  tests, benchmarks       GoogleTest with GoogleMock, Google Benchmark, Xvfb, xprop, xrandr, xdotool, openbox, PulseAudio, D-Bus, ffmpeg, Python 3
Going on; CMake tells what it cannot find.
TEXT
}

missing_packages() {
    local package
    for package in "$@"; do
        # One line for each architecture it is installed for; dpkg-query fails for a package never heard of.
        if ! dpkg-query --show --showformat='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed; then
            printf '%s\n' "$package"
        fi
    done
}

# Runs apt-get as root, with sudo only when it is needed; never waits for an answer.
apt_get() {
    local -a command=(env DEBIAN_FRONTEND=noninteractive apt-get --quiet --yes -o DPkg::Lock::Timeout=120 "$@")
    if ((EUID != 0)); then
        command=(sudo "${command[@]}")
    fi
    "${command[@]}" </dev/null
}

# True when apt's lists know every package, so that no update is needed.
lists_know() {
    apt-get --quiet --simulate --no-install-recommends install "$@" >/dev/null 2>&1 </dev/null
}

install_packages() {
    lists_know "$@" || apt_get update
    # The lists may be there and yet older than the archive, which then no longer holds those versions.
    if ! apt_get install --no-install-recommends "$@"; then
        apt_get update
        apt_get install --no-install-recommends "$@"
    fi
}

main() {
    local -a wanted=("${build_packages[@]}")
    case "${1:-build}" in
    build) ;;
    test) wanted+=("${test_packages[@]}") ;;
    *)
        echo "usage: scripts/install-deps.sh [build|test]" >&2
        return 2
        ;;
    esac

    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        name_libraries
        return 0
    fi

    local -a missing
    mapfile -t missing < <(missing_packages "${wanted[@]}")
    if ((${#missing[@]} == 0)); then
        return 0
    fi
    echo "Installing: ${missing[*]}"
    if ((EUID != 0)) && ! { command -v sudo >/dev/null && sudo true </dev/null; }; then
        echo "This needs root, and sudo is missing or refuses. As root, run:" >&2
        echo "  apt-get update && apt-get install --no-install-recommends ${missing[*]}" >&2
        return 1
    fi
    install_packages "${missing[@]}"
}

main "$@"

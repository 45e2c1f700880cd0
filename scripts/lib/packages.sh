# The Debian packages that the project needs, by purpose; to be sourced.
# shellcheck shell=bash disable=SC2034

packages_build=(
    cmake
    g++
    libexpat1-dev
    libfmt-dev
    libicu-dev
    libwayland-dev
    libxcb1-dev
    libxcb-screensaver0-dev
    ninja-build
    nlohmann-json3-dev
    pkg-config
    qt6-base-dev
    qt6-svg-dev
    wayland-protocols
)

packages_test=(
    appstream
    ccache
    clang
    dbus
    desktop-file-utils
    e2fsprogs
    fonts-dejavu-core
    libclang-rt-dev
    libfaketime
    libglib2.0-bin
    libgmock-dev
    libgtest-dev
    man-db
    mandoc
    python3
    python3-dbusmock
    python3-gi
    rclone
    xdotool
    xvfb
)

# What the backup tool calls.
packages_tool=(
    libnotify-bin
    restic
)

# A desktop of our own, for runs on machines without one.
packages_display=(
    dbus
    fonts-dejavu-core
    imagemagick
    lxqt-panel
    openbox
    x11-utils
    xdotool
    xvfb
)

# What makes Debian packages, and what scripts/check-packages judges them with besides.
packages_package=(
    debhelper
    dpkg-dev
    git
)

packages_check_packages=(
    dbus
    debootstrap
    devscripts
    fonts-dejavu-core
    lintian
    xdotool
    xvfb
)

packages_bench=(
    libbenchmark-dev
    libplist-dev
)

# Programs of other makers to measure Orvello beside.
packages_peers=(
    borgbackup
    deja-dup
    kup-backup
    libglib2.0-bin
    vorta
)

packages_format=(
    clang-format
    git
)

packages_lint=(
    clang-tidy
    cppcheck
    git
    shellcheck
)

# What the project needs of Debian, by what it is needed for. Sourced by ./run and ./check.

build_packages=(g++ cmake ninja-build ccache pkg-config qt6-base-dev qt6-base-dev-tools libqt6svg6-dev libicu-dev libsqlite3-dev
    libical-dev libecal2.0-dev libebook1.2-dev libsodium-dev libzstd-dev libgl-dev libxcb1-dev)
run_packages=(libqt6svg6 qt6-translations-l10n fonts-inter fonts-dejavu-core fonts-noto-color-emoji evolution-data-server)
test_packages=(lld libgtest-dev libgmock-dev libbenchmark-dev qt6-base-private-dev sqlite3 dbus dconf-gsettings-backend khal xvfb
    at-spi2-core)

# Installs those of the given packages that are missing, and says which.
install_missing() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "Installing what is missing: ${missing[*]}"
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "Neither root nor sudo: please install these packages first." >&2; return 1; }
        as_root=(sudo)
    fi
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

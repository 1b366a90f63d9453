# Shared by the set-up scripts: package installation and the build.
set -euo pipefail

TOP=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BUILD_DIR=${TESSARIN_BUILD_DIR:-$TOP/build}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# Installs the listed Debian packages that are missing; asks the mirror only when one is.
install_packages() {
  local missing=()
  local pkg
  for pkg in "$@"; do
    if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q 'install ok installed'; then
      missing+=("$pkg")
    fi
  done
  if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
      "${missing[@]}"
  fi
}

install_build_packages() {
  mapfile -t pkgs < <(grep -v '^#' "$TOP/scripts/packages.txt" | grep -v '^$')
  install_packages "${pkgs[@]}"
}

# configure_and_build [extra cmake arguments...]
configure_and_build() {
  cmake -S "$TOP" -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
  cmake --build "$BUILD_DIR" --parallel "$(nproc)"
}

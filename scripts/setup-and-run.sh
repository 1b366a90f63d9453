#!/usr/bin/env bash
# Installs what Tessarin needs on Debian, builds it and starts it on its default data.
# Arguments are passed to the program (for example --home DIR).
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_build_packages
# A newcomer without an emulator gets Debian's, so that a real database can be built at once.
if ! command -v mame >/dev/null 2>&1 && [ ! -x /usr/games/mame ]; then
  install_packages mame
fi
configure_and_build -DTESSARIN_BUILD_TESTS=OFF
exec "$BUILD_DIR/src/tessarin" "$@"

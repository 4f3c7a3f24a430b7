#!/bin/sh
# Installs the Debian packages that build and tests need, and looks for the .NET SDK.
set -eu

packages='make cmake ninja-build g++ ccache git python3-dev python3-jinja2 python3-pytest
 python3-pytest-xdist python3-pytest-timeout python3-hypothesis python3-exceptiongroup
 python3-tomli python3-psd-tools googletest
 libpng-dev libdeflate-dev zlib1g-dev clang-format black mypy python3-flake8 pngcheck
 imagemagick'

sdk=10

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"
    elif command -v sudo >/dev/null; then sudo "$@"
    else
        echo "Missing packages: $missing" >&2
        echo "Install them as root, for instance: apt-get install $missing" >&2
        exit 1
    fi
}

if ! command -v dpkg-query >/dev/null; then
    echo "This is no Debian system: see to these packages or their like yourself: $packages" >&2
else
    # shellcheck disable=SC2086
    present=$(dpkg-query -W -f '${db:Status-Abbrev}${Package}\n' $packages 2>/dev/null |
        sed -n 's/^ii *//p' || true)
    missing=
    for package in $packages; do
        printf '%s\n' "$present" | grep -qx "$package" || missing="$missing $package"
    done
    if [ -n "$missing" ]; then
        echo "Installing:$missing"
        export DEBIAN_FRONTEND=noninteractive
        as_root apt-get update -q
        # shellcheck disable=SC2086
        as_root apt-get install -q -y --no-install-recommends $missing
    fi
fi

if ! command -v dotnet >/dev/null || ! dotnet --list-sdks | grep -q "^$sdk\."; then
    cat >&2 <<END
The .NET SDK $sdk is missing; Debian has no package of it. Install it by one of these and try again:
  - Microsoft's package feed for Debian:  apt-get install dotnet-sdk-$sdk.0
  - without root: Microsoft's dotnet-install.sh --channel $sdk.0, then put ~/.dotnet first in PATH
Both are described at https://learn.microsoft.com/dotnet/core/install/linux
END
    exit 1
fi

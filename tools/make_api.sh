#!/bin/sh
# Describes the compiled libraries anew: api/ for the generator, docs/status.md for the reader.
set -eu
cd "$(dirname "$0")/.."
build=$1
check=${2:-}
artifacts="$PWD/$build/managed/"

run() {
    dotnet run --project managed/Extractor -p:KelmorArtifacts="$artifacts" -- "$@" $check
}

library() { # library <project>: builds it and prints where the assembly is
    dotnet build "managed/$1" -c Release -v quiet -nologo -p:KelmorArtifacts="$artifacts" >&2
    find "$artifacts/bin/$1" -name "$1.dll" -newermt 2000-01-01 | head -n 1
}

psd=$(library Kelmor.PSD)
run --library "$psd" --out api/psd
run --library "$psd" --status docs/status.md
run --library "$(library Kelmor.GfxTypes)" --out api/gfxtypes

#!/bin/sh
# Describes the compiled libraries anew: api/ for the generator, docs/status.md for the reader.
#   make_api.sh <build folder> [--check]   --check writes nothing and fails on a difference
set -eu
cd "$(dirname "$0")/.."
artifacts="$(mkdir -p "$1" && cd "$1" && pwd)/managed/"
check=${2:-}
status=0

built() { # built <project folder>: compiles a library and prints where the assembly lies
    dotnet build "$1" -nologo -v quiet -p:KelmorArtifacts="$artifacts" >&2
    dotnet msbuild "$1" -nologo -getProperty:TargetPath -p:KelmorArtifacts="$artifacts"
}

extractor=$(built managed/Extractor)

describe() { # describe <library> <argument...>
    library=$1
    shift
    dotnet "$extractor" --library "$library" "$@" $check || status=1
}

psd=$(built managed/Kelmor.PSD)
gfxtypes=$(built managed/Kelmor.GfxTypes)
harness=$(built tests/harness/managed/Kelmor.Harness)
framework=$(dotnet --list-runtimes | sed -n 's/^Microsoft.NETCore.App \([^ ]*\) \[\(.*\)\]/\2\/\1/p' |
    sort -V | tail -n 1)
describe "$psd" --out api/psd
describe "$psd" --status docs/status.md
describe "$gfxtypes" --out api/gfxtypes
describe "$harness" --out api/harness
describe "$framework/System.Private.CoreLib.dll" --only api/typemodel.selection.json \
    --out api/typemodel
# Tags are made once for what is new, and never changed.
[ -n "$check" ] || /usr/bin/python3 -B -m wrpgen tags --api api
exit $status

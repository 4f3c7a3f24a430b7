#!/bin/sh
# Formatters, linters and the layer test over all files that git knows; --write mends the format.
cd "$(dirname "$0")/.." || exit 1
status=0
if [ "${1:-}" = --write ]; then
    clang='-i' black='' dotnet=''
else
    clang='--dry-run -Werror' black='--check' dotnet='--verify-no-changes'
fi

run() { # run <what> <command...>: silent when all is well
    what=$1
    shift
    if output=$("$@" 2>&1); then
        echo "check: $what: ok"
    else
        status=1
        echo "check: $what: FAILED"
        echo "$output"
    fi
}

native=$(git ls-files '*.cpp' '*.h' '*.c')
python=$(git ls-files '*.py' bench/import)
# shellcheck disable=SC2086
{
    [ -z "$native" ] || run clang-format clang-format $clang $native
    [ -z "$python" ] || run black /usr/bin/black -q $black $python
    [ -z "$python" ] || run flake8 /usr/bin/python3 -m flake8 $python
}
# shellcheck disable=SC2086
run 'dotnet format' dotnet format whitespace --folder $dotnet managed
run layers /usr/bin/python3 tools/check_layers.py
run files /usr/bin/python3 tools/check_files.py
exit $status

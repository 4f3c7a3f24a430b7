"""Builds the modules for every supported interpreter and runs the boundary tests on each."""
import argparse
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
VERSIONS = ["3.8", "3.9", "3.10", "3.11", "3.12", "3.13"]


def interpreters():
    """Full paths by version: those of pyenv first, because a name in PATH may be a shim."""
    pyenv = pathlib.Path(os.environ.get("PYENV_ROOT", "~/.pyenv")).expanduser() / "versions"
    for version in VERSIONS:
        found = sorted(pyenv.glob(f"{version}.*/bin/python{version}"))
        found += [path for path in [pathlib.Path(f"/usr/bin/python{version}")] if path.exists()]
        yield version, found[0] if found else None


def quietly(log, *command):
    with log.open("a") as out:
        return subprocess.run(
            [str(part) for part in command], cwd=ROOT, stdout=out, stderr=subprocess.STDOUT
        ).returncode


def build(folder, python, base):
    log = folder / "build.log"
    log.write_text("")
    # The managed assemblies do not depend on the interpreter: those of the base build serve all.
    failed = quietly(
        log,
        *("cmake", "-G", "Ninja", "-S", ROOT, "-B", folder, "-DCMAKE_BUILD_TYPE=Dev"),
        *(f"-DKELMOR_PYTHON={python}", f"-DKELMOR_ASSEMBLIES={base}/package/kelmor/assemblies"),
    )
    failed = failed or quietly(log, "ninja", "-C", folder)
    warnings = len(re.findall(r"\bwarning:", log.read_text()))
    return not failed, warnings, log


def test(folder, python):
    command = [sys.executable, ROOT / "tools/run_tests.py", "--build", folder]
    command += ["--python", python, "--only", "boundary", "--no-merge"]
    result = subprocess.run([str(part) for part in command], capture_output=True, text=True)
    (folder / "test.log").write_text(result.stdout + result.stderr)
    last = [line for line in result.stdout.splitlines() if line][-1:]
    return result.returncode == 0, last[0] if last else result.stderr[-200:]


def row(version, python, base):
    """Whether all is well with an interpreter, and the words for it."""
    if python is None:
        return False, "no such interpreter on this machine (pyenv, /usr/bin)"
    folder = ROOT / "build/matrix" / version
    folder.mkdir(parents=True, exist_ok=True)
    built, warnings, log = build(folder, python, base)
    if not built:
        return False, f"does not build: see {log}"
    passed, counts = test(folder, python)
    return passed and warnings == 0, f"builds with {warnings} warnings; {counts}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--base", type=pathlib.Path, required=True)
    parser.add_argument("versions", nargs="*", help="such as 3.12; all by default")
    options = parser.parse_args()
    good = True
    for version, python in interpreters():
        if options.versions and version not in options.versions:
            continue
        passed, words = row(version, python, options.base.resolve())
        good = good and passed
        print(f"CPython {version}: {'ok' if passed else 'FAILED'}: {words}", flush=True)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())

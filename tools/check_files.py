"""Looks at hand-written files: a first line that says the job, sane lengths, no marks left."""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LONGEST_FILE = 600
LONGEST_LINE = 100
SHORT_LINES = (".h", ".cpp", ".c", ".py")
HEADS = {
    ".h": ("//", "/*"),
    ".cpp": ("//", "/*"),
    ".c": ("//", "/*"),
    ".cs": ("//",),
    ".py": ('"""', "#", "r'''", 'r"""'),
    ".sh": ("#!",),
    ".cmake": ("#",),
    ".txt": ("#",),
}
# Data that a program compares with, byte for byte, and stubs that only hold declarations.
EXCEPT = re.compile(r"^(tests/golden/|tests/behaviours/|wrpgen/templates/|api/)")
# Put together here, so that this file does not find itself.
MARKS = re.compile(r"\b(" + "|".join(("TO" + "DO", "FIX" + "ME", "XX" + "X", "HA" + "CK")) + r")\b")


def faults(name):
    path = ROOT / name
    heads = HEADS.get(path.suffix)
    if heads is None or EXCEPT.match(name) or not path.is_file():
        return
    if path.suffix == ".txt" and path.name != "CMakeLists.txt":
        return
    lines = path.read_text().splitlines()
    if lines and not lines[0].startswith(heads):
        yield f"{name}:1: the first line does not say the file's job"
    if len(lines) > LONGEST_FILE:
        yield f"{name}: {len(lines)} lines, {LONGEST_FILE} at most"
    for number, line in enumerate(lines, 1):
        if len(line) > LONGEST_LINE and path.suffix in SHORT_LINES and "http" not in line:
            yield f"{name}:{number}: {len(line)} columns, {LONGEST_LINE} at most"
        if MARKS.search(line):
            yield f"{name}:{number}: a mark that was left: {line.strip()}"


def main():
    names = subprocess.check_output(["git", "ls-files"], cwd=ROOT, text=True).splitlines()
    found = [fault for name in names for fault in faults(name)]
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())

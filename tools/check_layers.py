"""Looks that every native folder includes only itself and the folders below it."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LAYERS = ["host", "shell", "marshal", "binding", "collections"]
# What each folder may include beside the layers below it and itself.
FREE_STANDING = {"clrwrap": [], "imaging": []}
PYTHON_HEADER = re.compile(r'#\s*include\s*[<"](Python|structmember|datetime|frameobject)\.h[">]')
# datetime.h gives every file that includes it a pointer of its own to fill, so one file does.
PYTHON_HEADERS_OF = {"shell/cpython.h": {"Python"}, "marshal/date_api.cpp": {"datetime"}}
INCLUDE = re.compile(r'^\s*#\s*include\s*"([a-z]+)/', re.MULTILINE)


def allowed(folder):
    if folder in FREE_STANDING:
        return {folder, *FREE_STANDING[folder]}
    return set(LAYERS[: LAYERS.index(folder) + 1])


def faults():
    folders = set(LAYERS) | set(FREE_STANDING)
    for folder in sorted(folders):
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp", ".c", ".inc"):
                continue
            text = path.read_text()
            name = path.relative_to(ROOT)
            for target in INCLUDE.findall(text):
                if target in folders and target not in allowed(folder):
                    yield f"{name}: {folder}/ must not know {target}/"
            # The versions of CPython differ: one header holds what differs.
            if set(PYTHON_HEADER.findall(text)) - PYTHON_HEADERS_OF.get(str(name), set()):
                yield f"{name}: include shell/cpython.h instead of a header of Python"
            if folder == "host" and "shell/cpython.h" in text:
                yield f"{name}: host/ knows nothing of Python"


def main():
    found = list(faults())
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())

# What a frozen program needs of the package besides its Python files: the runtime, the assemblies.
import os

import kelmor

_PACKAGE = os.path.dirname(kelmor.__file__)


def _files_below(folder):
    """Pairs of a file and the folder that it goes to. Links are followed by the copy."""
    for parent, _, names in os.walk(os.path.join(_PACKAGE, folder)):
        target = os.path.join("kelmor", os.path.relpath(parent, _PACKAGE))
        for name in names:
            yield os.path.join(parent, name), target


# As data, not as binaries: the runtime finds its libraries by folder, so nothing may be moved.
datas = [pair for folder in ("runtime", "assemblies") for pair in _files_below(folder)]

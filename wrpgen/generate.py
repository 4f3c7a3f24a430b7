"""The generator as a whole: from a folder of descriptions to folders of text."""

from __future__ import annotations

from pathlib import Path

from . import generics, managed, model, stubs, tree, units
from .families import Composer
from .family import Family
from .output import write_all


class Generation:
    """One module, composed and ready to be written."""

    def __init__(self, extension: model.Extension):
        self.extension = extension
        self._composer = Composer(extension)
        self.families: list[Family] = self._composer.families()
        self.generics = generics.instances(extension, self._composer.forms)

    @property
    def skipped(self) -> list[str]:
        """Members without a form, which are not bound."""
        return sorted(set(self._composer.skipped))

    def family(self, full_name: str) -> Family:
        return next(f for f in self.families if f.type.full_name == full_name)

    def native_files(self, count: int) -> dict[str, str]:
        return {
            "families.h": tree.write_header(self.extension, self.families, self.generics),
            **units.write_units(self.families, count),
            "generic.cpp": generics.write_native(self.extension, self.generics),
            "tree.cpp": tree.write_tree(self.extension, self.families),
            "module.cpp": tree.write_module(self.extension, self.families),
        }

    def managed_files(self) -> dict[str, str]:
        return {
            **managed.write_entries(self.extension, self.families),
            **generics.write_managed(self.extension, self.generics),
        }

    def write_native(self, folder: Path, count: int) -> int:
        return write_all(folder, self.native_files(count))

    def write_managed(self, folder: Path) -> int:
        return write_all(folder, self.managed_files())

    def write_stubs(self, folder: Path) -> int:
        return write_all(folder, stubs.write(self.extension, self.families))


def load(api: Path, key: str) -> Generation:
    return Generation(model.load(api, key))

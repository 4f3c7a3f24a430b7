"""Writes the .pyi stubs: what type checkers and editors show of the bindings."""

from __future__ import annotations

import keyword

from .families import Call, Family, Method, Property, StaticField
from .model import Extension
from .units import _value_name

_HEADER = '''"""{title}"""

import datetime
import decimal
import enum
import uuid
from collections.abc import Collection, Iterable, Iterator, Sequence
from typing import IO, Any, overload

'''

_COMMON = """    def get_type(self) -> kelmor.typemodel.Type: ...
    @staticmethod
    def _type_of() -> kelmor.typemodel.Type: ...
    @staticmethod
    def _cast_to(obj: Any, /) -> Any: ...
    def _cast_from(self, type: Any, /) -> Any: ...
    @staticmethod
    def _reinterpret_obj(obj: Any, /) -> Any: ...
    @staticmethod
    def _cast_as(obj: Any, /) -> Any: ...
    @staticmethod
    def _is_assignable(obj: Any, /) -> bool: ...
"""


def write(extension: Extension, families: list[Family]) -> dict[str, str]:
    by_module: dict[str, list[Family]] = {}
    for family in families:
        by_module.setdefault(extension.module_of(family.type), []).append(family)
    files = {}
    for name, _ in extension.modules:
        children = [m for m, _ in extension.modules if m.rpartition(".")[0] == name]
        body = "".join(_type(family) for family in by_module.get(name, ()) if not family.type.outer)
        imports = "".join(f"import {other}\n" for other in _imports(extension, body, name))
        imports += "".join(
            f"from . import {child.rsplit('.', 1)[-1]} as {child.rsplit('.', 1)[-1]}\n"
            for child in children
            if child != name
        )
        title = f"Module {name}."
        text = _HEADER.format(title=title) + imports + body
        if name == extension.module:
            text += "\nVERSION: Any\ndef get_pyinstaller_hook_dirs() -> list[str]: ...\n"
        files[name.replace(".", "/") + "/__init__.pyi"] = text
    return files


def _imports(extension: Extension, body: str, own: str) -> list[str]:
    """The modules whose types the text names."""
    known = {name for name, _ in extension.modules}
    known |= {capsule.module for capsule in extension.imports} | {"kelmor.typemodel"}
    return sorted(name for name in known if name + "." in body)


def _type(family: Family, indent: str = "") -> str:
    type_ = family.type
    if family.kind == "enum":
        base = "enum.IntFlag" if type_.flags else "enum.IntEnum"
        lines = [f"class {type_.simple_name}({base}):", *_doc(type_.doc)]
        for value in type_.values:
            number = value.value
            if type_.width == "System.UInt64" and number < 0:
                number += 2**64
            lines.append(f"    {_value_name(family, value)} = {number}")
        if not type_.values:
            lines.append("    ...")
        return "\n" + "\n".join(lines) + "\n"
    base = f"({family.base.py_type})" if family.base else ""
    lines = [f"class {type_.simple_name}{base}:", *_doc(type_.doc)]
    lines += _constructors(family)
    for item in family.order:
        if isinstance(item, Method):
            lines += _method(item)
        elif isinstance(item, Property):
            lines += _property(item)
        elif isinstance(item, StaticField):
            lines.append(f"    {item.py_name}: {item.form.py_out}")
            if item.settable:
                name = item.py_name.lower()
                lines.append("    @staticmethod")
                lines.append(f"    def set_{name}(value: {item.form.py_in}, /) -> None: ...")
    if family.disposable:
        lines.append(f"    def __enter__(self) -> {type_.simple_name}: ...")
        lines.append("    def __exit__(self, *exception: Any) -> None: ...")
    if family.iterable or family.iterator:
        lines.append("    def __iter__(self) -> Iterator[Any]: ...")
    return "\n" + "\n".join(lines) + "\n" + _COMMON


def _doc(text: str, indent: str = "    ") -> list[str]:
    if not text:
        return []
    plain = text.replace("\\", "\\\\").replace('"""', "'''")
    if plain.endswith('"'):
        plain += " "
    return [f'{indent}"""{plain}"""']


def _constructors(family: Family) -> list[str]:
    lines = []
    for call in family.constructors:
        if len(family.constructors) > 1:
            lines.append("    @overload")
        lines += _function("__init__", call, "None", static=False)
    return lines


def _method(method: Method) -> list[str]:
    lines = []
    for attempt in method.attempts:
        call = attempt.call
        if len(method.attempts) > 1 or method.mixed:
            lines.append("    @overload")
        if method.static:
            lines.append("    @staticmethod")
        result = call.result.py_out if call.result else "None"
        if call.member.nullable and not result.endswith("None") and result != "Any":
            result += " | None"
        lines += _function(method.py_name, call, result, method.static)
    return lines


def _function(name: str, call: Call, result: str, static: bool) -> list[str]:
    parameters = [] if static else ["self"]
    for argument in call.arguments:
        annotation = argument.form.py_in
        if argument.by_reference:
            annotation = "list[Any]"
        elif (
            argument.parameter.nullable and not annotation.endswith("None") and annotation != "Any"
        ):
            annotation += " | None"
        word = argument.keyword
        # A keyword of the language can be given by position alone.
        word = f"__{word}" if keyword.iskeyword(word) else word
        parameters.append(f"{word}: {annotation}")
    if keyword.iskeyword(name):
        return []
    head = f"    def {name}({', '.join(parameters)}) -> {result}:"
    doc = _doc(call.member.doc, "        ")
    return [head, *doc] if doc else [head + " ..."]


def _property(item: Property) -> list[str]:
    annotation = item.form.py_out
    if item.member.nullable and not annotation.endswith("None") and annotation != "Any":
        annotation += " | None"
    lines = ["    @property"]
    head = f"    def {item.py_name}(self) -> {annotation}:"
    doc = _doc(item.member.doc, "        ")
    lines += [head, *doc] if doc else [head + " ..."]
    if item.set:
        given = item.form.py_in
        if item.member.nullable and not given.endswith("None") and given != "Any":
            given += " | None"
        lines.append(f"    @{item.py_name}.setter")
        lines.append(f"    def {item.py_name}(self, value: {given}) -> None: ...")
    return lines

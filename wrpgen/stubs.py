"""Writes the .pyi stubs: what type checkers and editors show of the bindings."""

from __future__ import annotations

import keyword
import re
from pathlib import Path

from .family import Call, Family, Method, Property, StaticField
from .model import Extension
from .units import _value_name

_TYPING = ("IO", "Any", "Final", "NoReturn", "Protocol", "final", "overload")
_ABSTRACT = ("Collection", "Iterable", "Iterator", "Sequence")
_LIBRARY = ("datetime", "decimal", "enum", "uuid")
_INTEROP = Path(__file__).with_name("templates") / "interop.pyi"

_CASTS = """    @staticmethod
    def _type_of() -> kelmor.typemodel.Type: ...
    @staticmethod
    def _cast_to(obj: Any, /) -> kelmor.shellbase.CastOpResult: ...
    def _cast_from(self, type: Any, /) -> kelmor.shellbase.CastOpResult: ...
    @staticmethod
    def _reinterpret_obj(obj: kelmor.typemodel.Object, /) -> Any: ...
    @staticmethod
    def _cast_as(obj: Any, /) -> kelmor.shellbase.CastOpResult: ...
    @staticmethod
    def _is_assignable(obj: Any, /) -> bool: ...
"""
_COMMON = "    def get_type(self) -> kelmor.typemodel.Type: ...\n" + _CASTS
_OF_ENUMS = "    def _as_uni_enum(self) -> kelmor.typemodel.Enum: ...\n" + _COMMON
_NO_CONSTRUCTOR = [
    "    def __init__(self, _: NoReturn, /) -> None:",
    '        """Instances come from other members; the class itself cannot be called."""',
]


def write(extension: Extension, families: list[Family]) -> dict[str, str]:
    by_module: dict[str, list[Family]] = {}
    for family in families:
        by_module.setdefault(extension.module_of(family.type), []).append(family)
    files = {}
    for name, _ in extension.modules:
        body = "".join(
            "\n" + _type(family, families)
            for family in by_module.get(name, ())
            if not family.type.outer
        )
        if name == extension.module:
            body += "\nVERSION: kelmor.shellbase._ModuleVersionType\n"
            if extension.hook_folders:
                body += "def get_pyinstaller_hook_dirs() -> list[str]: ...\n"
        # A type of the module itself goes by its own name.
        body = re.sub(rf"\b{re.escape(name)}\.(?=[A-Z])", "", body)
        title = f'"""Module {name}."""\n\n'
        files[_path(name) + "/__init__.pyi"] = title + _imports(extension, name, body) + body
    hidden = _path(extension.module) + "/_wrpgen"
    files[f"{hidden}/__init__.pyi"] = '"""Wrappers that no member names."""\n'
    files[f"{hidden}/_interop.pyi"] = _INTEROP.read_text()
    return files


def _path(module: str) -> str:
    return module.replace(".", "/")


def _imports(extension: Extension, own: str, body: str) -> str:
    """What the body names, and the sub-modules."""

    def used(names: tuple[str, ...]) -> list[str]:
        return [name for name in names if re.search(rf"\b{name}\b", body)]

    lines = [f"import {name}" for name in _LIBRARY if re.search(rf"\b{name}\.\w", body)]
    for module, names in (("collections.abc", _ABSTRACT), ("typing", _TYPING)):
        if used(names):
            lines.append(f"from {module} import {', '.join(used(names))}")
    if lines:
        lines.append("")
    reached = set(re.findall(r"\b(kelmor(?:\.[a-z]\w*)+)\.(?=[A-Z_])", body)) - {own}
    lines += [f"import {name}" for name in sorted(reached)]
    if "_interop." in body:
        lines.append(f"from {extension.module}._wrpgen import _interop")
    leaves = [
        name.rpartition(".")[2]
        for name, _ in extension.modules
        if name.rpartition(".")[0] == own and name != own
    ]
    lines += [f"from . import {leaf} as {leaf}" for leaf in leaves]
    return "\n".join(lines) + "\n" if lines else ""


def _type(family: Family, families: list[Family]) -> str:
    if family.kind == "enum":
        return _enum(family)
    type_ = family.type
    nested = [f for f in families if f.type in family.enums]
    inner = [line for enum in nested for line in _indented(_enum(enum).splitlines(), "    ") + [""]]
    lines = [_class_line(family), *_doc(type_.doc), *inner, *_constructors(family)]
    for item in family.order:
        if isinstance(item, Method):
            lines += _method(family, item)
        elif isinstance(item, Property):
            lines += _property(item)
        elif isinstance(item, StaticField):
            lines += _static(item)
    if family.disposable:
        lines.append(f"    def __enter__(self) -> {type_.simple_name}: ...")
        lines.append("    def __exit__(self, *exception: Any) -> None: ...")
    if family.iterable or family.iterator:
        lines.append("    def __iter__(self) -> Iterator[Any]: ...")
    if family.iterator:
        lines.append("    def __next__(self) -> Any: ...")
    common = "" if family.base else _COMMON
    if lines[1:] == [] and not common:
        lines.append("    ...")
    # No Python class can have one of these among its bases; those of others cannot be marked so.
    is_base = any(other.base is family for other in families)
    mark = "" if is_base or family.kind == "interface" else "@final\n"
    return "".join(_mixed_types(family)) + mark + "\n".join(lines) + "\n" + common


def _class_line(family: Family) -> str:
    # No Python class has an interface among its bases: whoever has the members fits.
    base = "Protocol" if family.kind == "interface" else family.base.py_type if family.base else ""
    return f"class {family.type.simple_name}{f'({base})' if base else ''}:"


def _enum(family: Family) -> str:
    type_ = family.type
    base = "enum.IntFlag" if type_.flags else "enum.IntEnum"
    lines = [f"class {type_.simple_name}({base}):", *_doc(type_.doc)]
    for value in type_.values:
        number = value.value
        if type_.width == "System.UInt64" and number < 0:
            number += 2**64
        lines.append(f"    {_value_name(family, value)} = {number}")
        lines += _doc(value.doc)
    return "\n".join(lines) + "\n" + _OF_ENUMS


def _indented(lines: list[str], indent: str) -> list[str]:
    return [indent + line if line else line for line in lines]


def _doc(text: str, indent: str = "    ") -> list[str]:
    if not text:
        return []
    plain = text.replace("\\", "\\\\").replace('"""', "'''")
    if plain.startswith('"'):
        plain = " " + plain
    if plain.endswith('"'):
        plain += " "
    return [f'{indent}"""{plain}"""']


def _constructors(family: Family) -> list[str]:
    if not family.constructors and family.kind != "interface":
        return _NO_CONSTRUCTOR
    lines = []
    for call in family.constructors:
        if len(family.constructors) > 1:
            lines.append("    @overload")
        lines += _function("__init__", call, "None", static=False)
    return lines


def _method(family: Family, method: Method) -> list[str]:
    if method.mixed:
        # The two halves are one attribute.
        line = f"    {method.py_name}: {_mixed_name(family, method)}"
        return [line] if method.static else []
    lines = []
    for attempt in method.attempts:
        if len(method.attempts) > 1:
            lines.append("    @overload")
        if method.static:
            lines.append("    @staticmethod")
        call = attempt.call
        lines += _function(method.py_name, call, _result(call), method.static)
    return lines


def _mixed_name(family: Family, method: Method) -> str:
    words = "".join(word.capitalize() for word in method.py_name.split("_"))
    return f"_{family.type.simple_name}{words}"


def _mixed_types(family: Family) -> list[str]:
    """The types of names that are static on the class and other methods on its instances."""
    found = []
    own = family.type.simple_name
    for method in family.methods:
        if not method.mixed:
            continue
        name = _mixed_name(family, method)
        half = name + ("OfType" if method.static else "OfInstance")
        lines = [f"class {half}(Protocol):"]
        for attempt in method.attempts:
            if len(method.attempts) > 1:
                lines.append("    @overload")
            lines += _function("__call__", attempt.call, _result(attempt.call), static=False)
        found.append("\n".join(lines) + "\n\n")
        if method.static:
            found.append(
                f"class {name}:\n"
                f"    @overload\n"
                f"    def __get__(self, instance: None, owner: Any, /) -> {name}OfType: ...\n"
                f"    @overload\n"
                f"    def __get__(self, instance: {own}, owner: Any, /) -> {name}OfInstance: ...\n"
                "\n"
            )
    return found


def _or_none(annotation: str, nullable: bool) -> str:
    known = annotation == "Any" or annotation.endswith("None")
    return f"{annotation} | None" if nullable and not known else annotation


def _result(call: Call) -> str:
    return _or_none(call.result.py_out, call.member.nullable) if call.result else "None"


def _function(name: str, call: Call, result: str, static: bool) -> list[str]:
    parameters = [] if static else ["self"]
    for argument in call.arguments:
        annotation = _or_none(argument.form.py_in, argument.parameter.nullable)
        if argument.by_reference:
            annotation = "list[Any]"
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
    nullable = item.member.nullable
    head = f"    def {item.py_name}(self) -> {_or_none(item.form.py_out, nullable)}:"
    doc = _doc(item.member.doc, "        ")
    lines = ["    @property", *([head, *doc] if doc else [head + " ..."])]
    if item.set:
        given = _or_none(item.form.py_in, nullable)
        lines.append(f"    @{item.py_name}.setter")
        lines.append(f"    def {item.py_name}(self, value: {given}) -> None: ...")
    return lines


def _static(item: StaticField) -> list[str]:
    # Nothing can be assigned to it, yet each access asks anew.
    found = _or_none(item.form.py_out, item.member.nullable)
    lines = [f"    {item.py_name}: Final[{found}]", *_doc(item.member.doc)]
    if item.settable:
        name = item.py_name.lower()
        given = _or_none(item.form.py_in, item.member.nullable)
        lines.append("    @staticmethod")
        lines.append(f"    def set_{name}(value: {given}, /) -> None: ...")
    return lines

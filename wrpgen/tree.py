"""Writes the module tree and the module entry."""

from __future__ import annotations

from types import SimpleNamespace

from .family import Family
from .generics import Instance
from .model import Capsule, Extension
from .native import environment, wrapped
from .units import has_eypi, visible_functions

# Pointers that the hand-made runtime itself uses; it defines them.
_OF_THE_RUNTIME = {
    "System.Type": ("clr_to_py", "trancaps"),
    "System.Object": ("clr_to_py", "trancaps"),
    "System.Enum": ("clr_to_py",),
}


def write_header(extension: Extension, families: list[Family], instances: list[Instance]) -> str:
    generics = []
    for instance in instances:
        for letter, kind in zip("AIEL", ("Array", "Iter", "Iterable", "List")):
            if not instance.has(letter):
                continue
            generics.append(f"extern PyTypeObject wrpPygn_tyds_{kind}Wrapper_{instance.tag};")
            if letter in "AL":
                converter = f"wrpPygn_conv_py_to_clr_{kind.lower()}_{instance.tag}"
                generics.append(f"int {converter}(PyObject *value, VariantArg *out);")
    text = (
        environment()
        .get_template("families.h.j2")
        .render(
            extension=extension,
            families=families,
            generics=generics,
            sibling_pointers=[f"extern {line};" for line in _pointers(extension)],
            visible={family.symbol: visible_functions(family) for family in families},
        )
    )
    return wrapped(text)


def write_tree(extension: Extension, families: list[Family]) -> str:
    text = (
        environment()
        .get_template("tree.cpp.j2")
        .render(
            extension=extension,
            modules=_modules(extension, families),
        )
    )
    return wrapped(text)


def _modules(extension: Extension, families: list[Family]) -> list[SimpleNamespace]:
    by_module: dict[str, list[Family]] = {}
    for family in families:
        by_module.setdefault(extension.module_of(family.type), []).append(family)
    symbols = {name: f"{tag}_{name.rsplit('.', 1)[-1]}" for name, tag in extension.modules}
    by_name = {family.type.full_name: family for family in families}
    modules = []
    for name, _ in extension.modules:
        own = by_module.get(name, [])
        classes = _bases_first([family for family in own if family.kind != "enum"])
        modules.append(
            SimpleNamespace(
                name=name,
                root=name == extension.module,
                symbol=symbols[name],
                children=[
                    SimpleNamespace(leaf=child.rsplit(".", 1)[-1], symbol=symbols[child])
                    for child, _ in extension.modules
                    if child.rpartition(".")[0] == name and child != extension.module
                ],
                enums=[f for f in own if f.kind == "enum" and f.type.outer is None],
                ready=_ready(classes),
                rows=[_row(family, by_name) for family in classes],
            )
        )
    return modules


def _bases_first(classes: list[Family]) -> list[Family]:
    """Interfaces, then classes with each base before what derives from it; else as they stand."""
    ordered: list[Family] = [family for family in classes if family.kind == "interface"]
    own = {family.symbol for family in classes}

    def add(family: Family) -> None:
        if family.symbol not in own or any(family.symbol == other.symbol for other in ordered):
            return
        if family.base is not None:
            add(family.base)
        ordered.append(family)

    for family in classes:
        add(family)
    return ordered


def _ready(classes: list[Family]) -> list[str]:
    """Every type that these rest on, interfaces and bases first, each once."""
    needed: dict[str, None] = {}
    for family in classes:
        for interface in (*family.interfaces, *family.implicit):
            needed.setdefault(interface)
    for family in classes:
        chain = [family]
        while chain[-1].base is not None:
            chain.append(chain[-1].base)
        for item in reversed(chain):
            needed.setdefault(f"wrpPy_tyds_{item.symbol}")
    return list(needed)


def _row(family: Family, by_name: dict[str, Family]) -> SimpleNamespace:
    symbol = family.symbol
    outer = by_name[family.type.outer].symbol if family.type.outer else None
    fields = [
        f"&wrpPy_tyds_{symbol}",
        f'"{family.type.simple_name}"',
        f'u"{family.type.full_name}"',
        "true" if family.kind == "struct" else "false",
        f"additional_{symbol}" if family.interfaces else "nullptr",
        str(len(family.interfaces)),
        f"implicit_{symbol}" if family.implicit else "nullptr",
        str(len(family.implicit)),
        f"&wrpPy_tyds_{outer}" if outer else "nullptr",
        f"wrpPy_eypi_{symbol}" if has_eypi(family) else "nullptr",
    ]
    return SimpleNamespace(
        symbol=symbol,
        interfaces=bool(family.interfaces or family.implicit),
        additional=family.interfaces,
        implicit=family.implicit,
        text="    {" + ", ".join(fields) + "},",
    )


# Capsules.


def _word_types(capsule: Capsule) -> dict[int, tuple[str, str]]:
    kind = {"class": "Class", "struct": "Struct", "enum": "Enum"}[capsule.form]
    symbol = capsule.symbol
    return {
        0: (f"Sibling{kind}FromPy", f"wrpPyl_convcaps_py_to_clr_{symbol}"),
        1: (f"Sibling{kind}ToPy", f"wrpPyl_convcaps_clr_to_py_{symbol}"),
        2: (f"Sibling{kind}FromPy", f"wrpPyl_trancaps_py_to_clr_{symbol}"),
    }


def _pointers(extension: Extension) -> list[str]:
    """The pointers that this module itself defines."""
    lines = []
    for capsule in extension.imports:
        if capsule.type in _OF_THE_RUNTIME:
            continue
        for word in capsule.words:
            lines.append(" ".join(_word_types(capsule)[word]))
    return lines


def write_module(extension: Extension, families: list[Family]) -> str:
    name, tag = extension.modules[0]
    leaf = name.rsplit(".", 1)[-1]
    by_name = {family.type.full_name: family for family in families}
    text = (
        environment()
        .get_template("module.cpp.j2")
        .render(
            extension=extension,
            leaf=leaf,
            root=f"{tag}_{leaf}",
            pointers=[f"{line};" for line in _pointers(extension)],
            sources=_sources(extension),
            exports=[_export(capsule, by_name) for capsule in extension.exports],
            own_pointers=_own_pointers(extension, by_name),
        )
    )
    return wrapped(text)


def _sources(extension: Extension) -> list[SimpleNamespace]:
    """Sibling modules in the order of their first capsule; a sub-module belongs to its root."""
    sources: dict[str, list[str]] = {}
    for capsule in extension.imports:
        root = ".".join(capsule.module.split(".")[:2])
        words = _word_types(capsule)
        fields = [f"&{words[n][1]}" if n in capsule.words else "nullptr" for n in range(3)]
        row = f'{{"{capsule.capsule_name}", {", ".join(fields)}}},'
        sources.setdefault(root, []).append(row)
    return [
        SimpleNamespace(module=module, name=module.rsplit(".", 1)[-1], rows=rows)
        for module, rows in sources.items()
    ]


def _export(capsule: Capsule, by_name: dict[str, Family]) -> SimpleNamespace:
    if capsule.type not in by_name:
        raise SystemExit(f"{capsule.type} is to be exported and is not described")
    symbol = capsule.symbol
    to_py = "wrpPyl_conv_clr_to_py_" if capsule.form == "struct" else "wrpPy_conv_clr_to_py_"
    table = [f"wrpPy_conv_py_to_clr_{symbol}", f"{to_py}{symbol}"]
    passes = capsule.form == "class"
    if passes:
        table.append(f"wrpPyl_tran_py_to_clr_{symbol}")
    return SimpleNamespace(
        symbol=symbol,
        form=capsule.form,
        capsule_name=capsule.capsule_name,
        table=table,
        passes=passes,
    )


def _own_pointers(extension: Extension, by_name: dict[str, Family]) -> list[str]:
    """The module that exports a type of the runtime serves its own runtime with it."""
    lines = []
    for capsule in extension.exports:
        words = _OF_THE_RUNTIME.get(capsule.type, ())
        symbol = capsule.symbol
        if "clr_to_py" in words:
            lines.append(f"wrpPyl_convcaps_clr_to_py_{symbol} = wrpPy_conv_clr_to_py_{symbol};")
        if "trancaps" in words:
            lines.append(f"wrpPyl_trancaps_py_to_clr_{symbol} = wrpPyl_tran_py_to_clr_{symbol};")
    return lines

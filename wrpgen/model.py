"""The description of a managed library as immutable records, read from api/."""

from __future__ import annotations

import json
from dataclasses import dataclass
from functools import cached_property
from pathlib import Path


@dataclass(frozen=True)
class Parameter:
    name: str
    type: str
    direction: str  # "in", "ref" or "out"
    nullable: bool

    @staticmethod
    def read(text: str) -> Parameter:
        """From the one string that a row has for it: "out System.Int32 count"."""
        spelled, name = text.rsplit(" ", 1)
        direction = "in"
        for prefix in ("ref", "out"):
            if spelled.startswith(prefix + " "):
                direction, spelled = prefix, spelled[len(prefix) + 1 :]
        return Parameter(name, spelled.removesuffix("?"), direction, spelled.endswith("?"))


@dataclass(frozen=True)
class Member:
    kind: str  # "ctor", "method", "property" or "field"
    name: str
    static: bool
    type: str
    nullable: bool
    get: bool
    set: bool
    params: tuple[Parameter, ...]
    doc: str

    @property
    def signature(self) -> tuple[str, ...]:
        """What tells overloads apart."""
        return tuple(f"{p.direction} {p.type}" for p in self.params)

    @staticmethod
    def read(row: dict) -> Member:
        spelled = row.get("type", "")
        return Member(
            kind=row["kind"],
            name=row.get("name", ""),
            static=row.get("static", False),
            type=spelled.removesuffix("?"),
            nullable=spelled.endswith("?"),
            get=row.get("get", False),
            set=row.get("set", False),
            params=tuple(Parameter.read(text) for text in row.get("params", ())),
            doc=row.get("doc", ""),
        )


@dataclass(frozen=True)
class EnumValue:
    name: str
    value: int
    doc: str


@dataclass(frozen=True)
class Type:
    namespace: str
    name: str  # "Outer+Inner" for a nested type
    kind: str  # "class", "struct", "interface" or "enum"
    base: str | None
    abstract: bool
    static: bool
    interfaces: tuple[str, ...]  # all, inherited ones included
    explicit: tuple[str, ...]  # those that only the interface itself reaches
    width: str | None
    flags: bool
    members: tuple[Member, ...]
    values: tuple[EnumValue, ...]
    doc: str

    @property
    def full_name(self) -> str:
        return f"{self.namespace}.{self.name}"

    @property
    def simple_name(self) -> str:
        return self.name.rsplit("+", 1)[-1]

    @property
    def outer(self) -> str | None:
        """Full name of the enclosing type."""
        return self.full_name.rsplit("+", 1)[0] if "+" in self.name else None

    @staticmethod
    def read(namespace: str, row: dict) -> Type:
        return Type(
            namespace=namespace,
            name=row["type"],
            kind=row["kind"],
            base=row.get("base"),
            abstract=row.get("abstract", False),
            static=row.get("static", False),
            interfaces=tuple(row.get("interfaces", ())),
            explicit=tuple(row.get("explicit", ())),
            width=row.get("width"),
            flags=row.get("flags", False),
            members=tuple(Member.read(member) for member in row.get("members", ())),
            values=tuple(
                EnumValue(value["name"], value["value"], value.get("doc", ""))
                for value in row.get("values", ())
            ),
            doc=row.get("doc", ""),
        )


@dataclass(frozen=True)
class Capsule:
    """One capsule of a sibling module: its type and the words that are read of it."""

    module: str
    type: str  # full managed name of the type
    name: str  # simple name
    form: str  # "class", "struct" or "enum"
    tag: str  # native tag of the type in its own module
    words: tuple[int, ...]

    @property
    def symbol(self) -> str:
        return f"{self.tag}_{self.name}"

    @property
    def capsule_name(self) -> str:
        prefix = "_C_APITV1_" if self.form == "struct" else "_C_APIT_"
        return f"{self.module}.{prefix}{self.name}"


@dataclass(frozen=True)
class GenericTag:
    """One row of the table of element types."""

    tag: str
    element: str  # "kelmor.psd.Color", a managed name of the runtime, or "T[]" of one
    wrappers: str  # of A, I, E, L
    callbacks: bool


@dataclass(frozen=True)
class Overrides:
    """Exceptions to the patterns: data, each with its reason in the file."""

    python_names: dict[str, str]  # "Type.Member" -> Python name
    skip: frozenset[str]  # "Type.Member" that is not bound
    cast_from: frozenset[str]  # types with a real _cast_from
    own_members: frozenset[str]  # types that serve members of their interfaces by own entries
    stream_owners: frozenset[str]  # bool parameters by which a member takes a stream over


@dataclass(frozen=True)
class Extension:
    """One Python extension module: what api/modules.json says, with the types of its library."""

    key: str  # "psd"
    module: str  # "kelmor.psd"
    assembly: str
    root_namespace: str
    modules: tuple[tuple[str, str], ...]  # dotted name and tag, in order, root first
    hook_folders: tuple[str, ...]  # where packaging hooks lie; none: no function that tells it
    imports: tuple[Capsule, ...]
    exports: tuple[Capsule, ...]
    generics: tuple[GenericTag, ...]
    types: tuple[Type, ...]
    tags: dict[str, tuple[str, str]]  # full name -> native and managed tag
    overrides: Overrides

    @cached_property
    def by_name(self) -> dict[str, Type]:
        return {type_.full_name: type_ for type_ in self.types}

    @cached_property
    def capsules(self) -> dict[str, Capsule]:
        return {capsule.type: capsule for capsule in self.imports}

    def module_of(self, type_: Type) -> str:
        """The Python module of a type: its namespace in lower case below the root."""
        below = type_.namespace.removeprefix(self.root_namespace).lower()
        return self.module + below

    def python_name(self, type_: Type) -> str:
        return f"{self.module_of(type_)}.{type_.name.replace('+', '.')}"


def load(api: Path, key: str) -> Extension:
    """Reads the description of one extension module."""
    row = json.loads((api / "modules.json").read_text())[key]
    all_tags = json.loads((api / "tags.json").read_text())
    tags = all_tags.get(key, {})
    native = {name: pair[0] for types in all_tags.values() for name, pair in types.items()}
    generics = json.loads((api / "generics.json").read_text()).get(key, [])
    overrides = json.loads((api / "overrides.json").read_text())
    types = []
    for path in sorted((api / key).glob("*.json")):
        description = json.loads(path.read_text())
        types += [Type.read(description["namespace"], type_) for type_ in description["types"]]
    extension = Extension(
        key=key,
        module=row["module"],
        assembly=row["assembly"],
        root_namespace=row["namespace"],
        modules=tuple((name, tag) for name, tag in row["modules"]),
        hook_folders=tuple(row.get("hook_folders", ())),
        imports=tuple(_capsule(entry, native) for entry in row.get("imports", ())),
        exports=tuple(_capsule(entry, native) for entry in row.get("exports", ())),
        generics=tuple(GenericTag(*entry) for entry in generics),
        types=tuple(types),
        tags={name: (native, managed) for name, (native, managed) in tags.items()},
        overrides=Overrides(
            python_names={entry["member"]: entry["name"] for entry in overrides["names"]},
            skip=frozenset(entry["member"] for entry in overrides["skip"]),
            cast_from=frozenset(entry["type"] for entry in overrides["cast_from"]),
            stream_owners=frozenset(entry["parameter"] for entry in overrides["stream_owners"]),
            own_members=frozenset(entry["type"] for entry in overrides["own_members"]),
        ),
    )
    _check(extension)
    return extension


def _capsule(entry: dict, native: dict[str, str]) -> Capsule:
    """A row is module, managed type, form and the words that are read."""
    full_name = entry["type"]
    return Capsule(
        entry["module"],
        full_name,
        full_name.rsplit(".", 1)[-1],
        entry["form"],
        native[full_name],
        tuple(entry.get("words", ())),
    )


def _check(extension: Extension) -> None:
    known = {name for name, _ in extension.modules}
    for type_ in extension.types:
        if type_.full_name not in extension.tags:
            raise SystemExit(f"{type_.full_name} has no tag: run `make api`")
        if extension.module_of(type_) not in known:
            raise SystemExit(f"{type_.full_name} lies in no module of api/modules.json")

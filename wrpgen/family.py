"""What a family consists of: calls, methods, properties, statics, and the names around them."""

from __future__ import annotations

import keyword
from dataclasses import dataclass, field

from . import names
from .basic_forms import Form
from .forms import cs_number, cs_type, number_type
from .model import Extension, Member, Parameter, Type

# Names that a parameter cannot have in the generated functions.
_TAKEN = frozenset(
    "self args kwds keywords result failure attempts value host handle attempt outcome "
    "default new delete class struct union enum operator namespace register template this int "
    "long short float double char bool signed unsigned void auto const static extern inline "
    "public private protected virtual friend typename using export explicit switch case do goto "
    "and or not xor true false object".split()
)


@dataclass(frozen=True)
class Argument:
    """A parameter of one signature with its form."""

    parameter: Parameter
    form: Form

    @property
    def keyword(self) -> str:
        return names.snake(self.parameter.name)

    @property
    def variable(self) -> str:
        name = self.keyword
        return name + "_" if name in _TAKEN or keyword.iskeyword(name) else name

    @property
    def by_reference(self) -> bool:
        return self.parameter.direction != "in"


@dataclass(frozen=True)
class Call:
    """One signature of a member and the entry point that serves it."""

    owner: Type
    entry: str
    member: Member
    static: bool
    arguments: tuple[Argument, ...]
    result: Form | None  # None for void and constructors
    constructor: bool = False
    number: int = 0  # among the signatures that the owner itself declares under this name
    owners: frozenset[str] = frozenset()  # parameters that say who closes a stream

    @property
    def cleanup(self) -> bool:
        return any(argument.form.cleanup for argument in self.arguments)


@dataclass(frozen=True)
class Attempt:
    """A call in a dispatcher: inline, or in a function that other classes may share."""

    call: Call
    function: str  # "" when it stands inline


@dataclass(frozen=True)
class Method:
    """One Python name with its attempts; a single one has no dispatcher."""

    owner: Type
    py_name: str
    static: bool
    attempts: tuple[Attempt, ...]
    function: str
    external: bool  # visible to other classes
    shared: bool = False  # the body is an interface's
    mixed: bool = False  # one of the two halves of a name that is static and instance

    @property
    def flags(self) -> str:
        static = " | METH_STATIC" if self.static else ""
        if len(self.attempts) == 1 and not self.attempts[0].call.arguments:
            return "METH_NOARGS" + static
        return "METH_VARARGS | METH_KEYWORDS" + static

    @property
    def no_arguments(self) -> bool:
        return self.flags.startswith("METH_NOARGS")


@dataclass(frozen=True)
class Property:
    owner: Type
    member: Member
    py_name: str
    form: Form
    get: str | None  # function, None when it cannot be read
    set: str | None
    external: bool
    shared: bool = False


@dataclass(frozen=True)
class StaticField:
    member: Member
    py_name: str
    form: Form
    settable: bool


@dataclass(frozen=True)
class Family:
    """All that is generated for one type."""

    extension: Extension
    type: Type
    native: str
    managed: str
    constructors: tuple[Call, ...] = ()
    methods: tuple[Method, ...] = ()
    properties: tuple[Property, ...] = ()
    statics: tuple[StaticField, ...] = ()
    outlined: tuple[Attempt, ...] = ()  # attempts of this class that stand in functions
    order: tuple[object, ...] = ()  # methods, properties, statics as declared, for the host
    base: Family | None = None
    interfaces: tuple[str, ...] = ()  # wrapper types of the additional set
    implicit: tuple[str, ...] = ()
    references: tuple[str, ...] = ()  # validity queries
    disposable: bool = False
    iterable: bool = False
    iterator: bool = False
    enums: tuple[Type, ...] = field(default=())  # nested ones

    @property
    def symbol(self) -> str:
        return f"{self.native}_{self.type.simple_name}"

    @property
    def host(self) -> str:
        return f"PyHost_cs_{self.symbol}"

    @property
    def kind(self) -> str:
        return self.type.kind

    @property
    def cs_namespace(self) -> str:
        return ".".join(f"WrpNs_{part}" for part in self.type.namespace.split("."))

    @property
    def cs_class(self) -> str:
        return names.entry_class_part(self.type.simple_name, self.managed)

    @property
    def entry_class(self) -> str:
        return f"{self.cs_namespace}.{self.cs_class}"

    @property
    def entry_class_literal(self) -> str:
        """The entry class in C++; a long name goes on in a second literal."""
        if len(self.entry_class) <= 80:
            return names.literal(self.entry_class)
        return (
            names.literal(self.cs_namespace + ".")
            + "\n             "
            + names.literal(self.cs_class)
        )

    @property
    def cs_type(self) -> str:
        return cs_type(self.type.full_name)

    @property
    def py_type(self) -> str:
        return self.extension.python_name(self.type)

    @property
    def has_cast_from(self) -> bool:
        return self.type.full_name in self.extension.overrides.cast_from

    @property
    def number(self) -> str:
        return number_type(self.type)

    @property
    def cs_number(self) -> str:
        return cs_number(self.type)

"""Composes from each type the family that binds it: entry points, functions, tables.

What a description does not repeat is put together here: the signatures that a class inherits, the
members that it shares with its interfaces, the types that its validity rests on.
"""

from __future__ import annotations

import dataclasses
from collections import defaultdict

from . import names
from .basic_forms import Form
from .family import Argument, Attempt, Call, Family, Method, Property, StaticField
from .forms import Forms
from .model import Extension, Member, Type

VOID = "System.Void"

# Runtime interfaces that a class may declare, with the query of their wrapper's validity.
RUNTIME_INTERFACES = {
    "System.IDisposable": ("wrpPye_tyds_IDisposableWrapper", "idisposable"),
    "System.Collections.IEnumerator": ("wrpPye_tyds_IterWrapper", "iter"),
    "System.Collections.IEnumerable": ("wrpPye_tyds_IterableWrapper", "iterable"),
    "System.Collections.ICollection": ("wrpPye_tyds_IColWrapper", "icollection"),
    "System.Collections.IList": ("wrpPye_tyds_IListWrapper", "ilist"),
}


class Composer:
    """Builds the families of one extension module."""

    def __init__(self, extension: Extension):
        self.extension = extension
        self.forms = Forms(extension)
        self.skipped: list[str] = []
        self._calls: dict[str, dict[tuple[str, bool], list[Call]]] = {}
        self._families: dict[str, Family] = {}
        for type_ in extension.types:
            self._calls[type_.full_name] = self._own_calls(type_)
        self._reached = self._find_reached()

    def families(self) -> list[Family]:
        return [self._family(type_) for type_ in self.extension.types]

    # Ancestors.

    def _base(self, type_: Type) -> Type | None:
        return self.extension.by_name.get(type_.base or "")

    def _ancestors(self, type_: Type) -> list[Type]:
        """Bound bases, the nearest first."""
        found = []
        base = self._base(type_)
        while base is not None:
            found.append(base)
            base = self._base(base)
        return found

    # Signatures.

    def _arguments(self, member: Member) -> tuple[Argument, ...] | None:
        arguments = []
        for parameter in member.params:
            form = self.forms.find(parameter.type)
            if form is None or not form.converter:
                return None
            if parameter.direction != "in" and not form.by_reference:
                return None
            arguments.append(Argument(parameter, form))
        return tuple(arguments)

    def _result(self, member: Member) -> tuple[bool, Form | None]:
        """Whether the result can cross, and its form."""
        if member.type == VOID or member.kind == "ctor":
            return True, None
        form = self.forms.find(member.type)
        return form is not None and bool(form.c_result), form

    def _own_calls(self, type_: Type) -> dict[tuple[str, bool], list[Call]]:
        """Signatures that the type itself declares, by Python name and whether static."""
        groups: dict[tuple[str, bool], list[Call]] = defaultdict(list)
        counters: dict[str, int] = defaultdict(int)
        for member in type_.members:
            if member.kind != "method":
                continue
            arguments = self._arguments(member)
            crosses, result = self._result(member)
            if arguments is None or not crosses or self._skips(type_, member):
                self._skip(type_, member)
                continue
            py_name = self._py_name(type_, member)
            number = len(groups[(py_name, True)]) + len(groups[(py_name, False)])
            entry = f"call_{counters[member.name]:03}_{member.name}"
            counters[member.name] += 1
            groups[(py_name, member.static)].append(
                Call(type_, entry, member, member.static, arguments, result, number=number)
            )
        return {key: group for key, group in groups.items() if group}

    def _skips(self, type_: Type, member: Member) -> bool:
        return f"{type_.full_name}.{member.name}" in self.extension.overrides.skip

    def _skip(self, type_: Type, member: Member) -> None:
        spelled = ", ".join(parameter.type for parameter in member.params)
        name = f"{type_.full_name}.{member.name or 'ctor'}"
        self.skipped.append(f"{name}({spelled}) -> {member.type}")

    def _py_name(self, type_: Type, member: Member) -> str:
        fixed = self.extension.overrides.python_names.get(f"{type_.full_name}.{member.name}")
        return fixed or names.snake(member.name)

    def _full_set(self, type_: Type, key: tuple[str, bool]) -> list[Call]:
        """Own signatures, then those of the bases that no nearer class has replaced."""
        calls: list[Call] = []
        seen: set[tuple[str, ...]] = set()
        for owner in [type_, *self._ancestors(type_)]:
            for call in self._calls[owner.full_name].get(key, ()):
                if call.member.signature not in seen:
                    seen.add(call.member.signature)
                    calls.append(call)
        return calls

    def _find_reached(self) -> set[Call]:
        """Signatures that a dispatcher of a derived class calls."""
        reached = set()
        for type_ in self.extension.types:
            for key in self._calls[type_.full_name]:
                reached |= {c for c in self._full_set(type_, key) if c.owner is not type_}
        return reached

    # Interfaces.

    def _bound_interfaces(self, type_: Type) -> list[Type]:
        by_name = self.extension.by_name
        return [by_name[name] for name in type_.interfaces if name in by_name]

    def _lenders(self, type_: Type) -> list[Type]:
        """Interfaces whose functions may stand in the tables of the class."""
        own = type_.full_name in self.extension.overrides.own_members
        return [] if own else self._implicit_interfaces(type_)

    def _shared_method(self, type_: Type, key: tuple[str, bool]) -> Type | None:
        """The interface whose function serves this name of the class as it stands."""
        own = self._full_set(type_, key)
        if key[1] or any(call in self._reached or call.owner is not type_ for call in own):
            return None
        for interface in self._lenders(type_):
            theirs = self._calls[interface.full_name].get(key)
            if theirs and [(c.member.signature, c.member.type) for c in theirs] == [
                (c.member.signature, c.member.type) for c in own
            ]:
                return interface
        return None

    def _shared_property(self, type_: Type, member: Member) -> Type | None:
        for interface in self._lenders(type_):
            for theirs in interface.members:
                same = (theirs.name, theirs.type, theirs.get, theirs.set)
                if theirs.kind == "property" and same == (
                    member.name,
                    member.type,
                    member.get,
                    member.set,
                ):
                    return interface
        return None

    def _implicit_interfaces(self, type_: Type) -> list[Type]:
        if type_.kind == "interface":
            return []
        return [i for i in self._bound_interfaces(type_) if i.full_name not in type_.explicit]

    # Functions.

    def _symbol(self, type_: Type) -> str:
        return f"{self.extension.tags[type_.full_name][0]}_{type_.simple_name}"

    def _attempt(self, call: Call, alone: bool) -> Attempt:
        outlined = call in self._reached or (call.cleanup and not alone)
        if not outlined:
            return Attempt(call, "")
        name = self._py_name(call.owner, call.member)
        return Attempt(call, f"wrpPy_htgn_{self._symbol(call.owner)}_{call.number:03}_{name}")

    def _method(self, type_: Type, key: tuple[str, bool], mixed: bool) -> Method:
        py_name, static = key
        shared = self._shared_method(type_, key)
        owner = shared or type_
        calls = self._full_set(owner, key)
        alone = len(calls) == 1
        visible = owner.kind == "interface"
        kind = ("htfn" if visible else "mtfn") if alone else ("hgfn" if visible else "mgfn")
        # Where both halves of a mixed name have one signature, their bodies need two numbers.
        twin = self._calls[owner.full_name].get((py_name, not static), ())
        number = 1 if mixed and not static and alone and len(twin) == 1 else 0
        return Method(
            owner=owner,
            py_name=py_name,
            static=static,
            attempts=tuple(self._attempt(call, alone) for call in calls),
            function=f"wrpPy_{kind}_{self._symbol(owner)}_{number:03}_{py_name}",
            external=visible,
            shared=shared is not None,
            mixed=mixed,
        )

    def _property(self, type_: Type, member: Member) -> Property | None:
        form = self.forms.find(member.type)
        readable = member.get and form is not None and bool(form.c_result)
        if form is None or not readable or self._skips(type_, member):
            self._skip(type_, member)
            return None
        settable = (member.set or self._inherits_setter(type_, member)) and bool(form.converter)
        shared = self._shared_property(type_, member)
        owner = shared or type_
        py_name = self._py_name(owner, member)
        visible = owner.kind == "interface"
        stem = f"wrpPy_{'phfn' if visible else 'pafn'}_{self._symbol(owner)}_000"
        return Property(
            owner=owner,
            member=member,
            py_name=py_name,
            form=form,
            get=f"{stem}_get_{py_name}",
            set=f"{stem}_set_{py_name}" if settable else None,
            external=visible,
            shared=shared is not None,
        )

    def _inherits_setter(self, type_: Type, member: Member) -> bool:
        """An override may repeat the getter alone; the setter of the base still works."""
        return any(
            theirs.kind == "property" and theirs.name == member.name and theirs.set
            for base in self._ancestors(type_)
            for theirs in base.members
        )

    def _constructors(self, type_: Type) -> tuple[Call, ...]:
        rows = [member for member in type_.members if member.kind == "ctor"]
        if type_.kind == "struct" and not any(not row.params for row in rows):
            # Every struct can be made without arguments, whether or not it declares so.
            rows.insert(0, Member("ctor", "", False, "", False, False, False, (), ""))
        calls = []
        for member in rows:
            arguments = self._arguments(member)
            # A slot of the type makes the object: there is no way back into a caller's list.
            if arguments is None or any(argument.by_reference for argument in arguments):
                self._skip(type_, member)
                continue
            entry = f"ctor_{len(calls):03}_{type_.simple_name}"
            calls.append(
                Call(
                    type_,
                    entry,
                    member,
                    True,
                    arguments,
                    None,
                    True,
                    len(calls),
                    self.extension.overrides.stream_owners,
                )
            )
        return tuple(calls)

    def _statics(self, type_: Type) -> tuple[StaticField, ...]:
        fields = []
        for member in type_.members:
            if member.kind not in ("property", "field") or not member.static:
                continue
            form = self.forms.find(member.type)
            if form is None or not form.c_result or not member.get or self._skips(type_, member):
                self._skip(type_, member)
                continue
            fixed = self.extension.overrides.python_names.get(f"{type_.full_name}.{member.name}")
            fields.append(
                StaticField(
                    member=member,
                    py_name=(fixed or names.upper_snake(member.name)).upper(),
                    form=form,
                    settable=member.set and bool(form.converter),
                )
            )
        return tuple(fields)

    def _inherited_of_interface(self, type_: Type) -> list[Type]:
        return self._bound_interfaces(type_) if type_.kind == "interface" else []

    def _members(self, type_: Type) -> list[object]:
        """Methods, properties and static fields in declaration order."""
        statics = {item.member: item for item in self._statics(type_)}
        own = self._calls[type_.full_name]
        done: set[tuple[str, bool]] = set()
        found: list[object] = []
        for member in type_.members:
            if member in statics:
                found.append(statics[member])
            elif member.kind in ("property", "field") and not member.static:
                item = self._property(type_, member)
                if item is not None:
                    found.append(item)
            elif member.kind == "method":
                key = (self._py_name(type_, member), member.static)
                if key in own and key not in done:
                    done.add(key)
                    mixed = (key[0], not key[1]) in own
                    found.append(self._method(type_, key, mixed))
        for interface in self._inherited_of_interface(type_):
            for item in self._members_of_interface(interface):
                found.append(item)
        return found

    def _members_of_interface(self, interface: Type) -> list[object]:
        """Members that a derived interface shows: the functions are those of the base one."""
        own = dataclasses.replace(interface, interfaces=())
        return [
            dataclasses.replace(item, owner=interface, shared=True)  # type: ignore[type-var]
            for item in self._members(own)
        ]

    # Families.

    def _family(self, type_: Type) -> Family:
        if type_.full_name in self._families:
            return self._families[type_.full_name]
        native, managed = self.extension.tags[type_.full_name]
        if type_.kind == "enum":
            family = Family(self.extension, type_, native, managed)
        else:
            family = self._class_family(type_, native, managed)
        self._families[type_.full_name] = family
        return family

    def _class_family(self, type_: Type, native: str, managed: str) -> Family:
        base = self._base(type_)
        order = self._members(type_)
        methods = tuple(item for item in order if isinstance(item, Method))
        runtime = [name for name in RUNTIME_INTERFACES if name in type_.interfaces]
        additional = [f"wrpPy_tyds_{self._symbol(i)}" for i in self._bound_interfaces(type_)]
        additional += [RUNTIME_INTERFACES[name][0] for name in runtime]
        implicit = [f"wrpPy_tyds_{self._symbol(i)}" for i in self._implicit_interfaces(type_)]
        implicit += [RUNTIME_INTERFACES[name][0] for name in runtime if name not in type_.explicit]
        inherited = set(base.interfaces) if base is not None else set()
        is_interface = type_.kind == "interface"
        family = Family(
            extension=self.extension,
            type=type_,
            native=native,
            managed=managed,
            constructors=() if type_.abstract or type_.static else self._constructors(type_),
            methods=methods,
            properties=tuple(item for item in order if isinstance(item, Property)),
            statics=tuple(item for item in order if isinstance(item, StaticField)),
            outlined=self._outlined(type_, methods),
            order=tuple(order),
            base=self._family(base) if base is not None else None,
            interfaces=() if is_interface else tuple(additional),
            implicit=() if is_interface else tuple(implicit),
            references=() if is_interface else self._references(type_, methods, runtime),
            disposable="System.IDisposable" in runtime and "System.IDisposable" not in inherited,
            iterable="System.Collections.IEnumerable" in runtime
            and "System.Collections.IEnumerable" not in inherited,
            iterator="System.Collections.IEnumerator" in runtime
            and "System.Collections.IEnumerator" not in inherited,
            enums=tuple(
                t for t in self.extension.types if t.outer == type_.full_name and t.kind == "enum"
            ),
        )
        self._check_names(family)
        return family

    def _outlined(self, type_: Type, methods: tuple[Method, ...]) -> tuple[Attempt, ...]:
        return tuple(
            attempt
            for method in methods
            if not method.shared
            for attempt in method.attempts
            if attempt.function and attempt.call.owner is type_
        )

    def _references(
        self, type_: Type, methods: tuple[Method, ...], runtime: list[str]
    ) -> tuple[str, ...]:
        """The base, the runtime interfaces, then what dispatchers reach beyond the base.

        Each is asked through its own aggregate, so a failure anywhere up the chain is found.
        """
        base = self._base(type_)
        asked = [base] if base is not None else []
        reached = {a.call.owner.full_name for m in methods for a in m.attempts}
        further = [a for a in self._ancestors(type_)[1:] if a.full_name in reached]
        queries = [f"wrpPy_bltp_{self._symbol(a)}_is_not_valid" for a in asked]
        queries += [f"wrpPye_bltp_{RUNTIME_INTERFACES[name][1]}_is_not_valid" for name in runtime]
        queries += [f"wrpPy_bltp_{self._symbol(a)}_is_not_valid" for a in further]
        return tuple(queries)

    def _check_names(self, family: Family) -> None:
        """Two members of one Python name would hide each other."""
        seen: dict[str, object] = {}
        for item in family.order:
            name = item.py_name  # type: ignore[attr-defined]
            other = seen.get(name)
            if other is not None and not (isinstance(item, Method) and item.mixed):
                raise SystemExit(f"{family.type.full_name} has two members named {name}")
            seen[name] = item


__all__ = ["Composer", "Family", "Method", "Property", "StaticField", "Call", "Attempt"]

"""Writes the C++ half: the families in grouped units, their common header, the module tree."""

from __future__ import annotations

import functools
from collections.abc import Sequence
from pathlib import Path

import jinja2

from . import names
from .family import Argument, Call, Family, Method, Property, StaticField
from .basic_forms import Form
from .layout import LINE, wrapped

_TEMPLATES = Path(__file__).with_name("templates")


@functools.cache
def environment() -> jinja2.Environment:
    """Templates fail on a name that does not exist, and leave no blank where a statement stood."""
    made = jinja2.Environment(
        loader=jinja2.FileSystemLoader(_TEMPLATES),
        undefined=jinja2.StrictUndefined,
        trim_blocks=True,
        lstrip_blocks=True,
        keep_trailing_newline=True,
        autoescape=False,
    )
    made.filters["wrapped"] = wrapped
    made.filters["literal"] = names.literal
    return made


def _fill(pattern: str, value: str) -> str:
    return pattern.replace("{v}", value)


class CallText:
    """The lines of one delegate call: records, parse, call, test, result."""

    def __init__(self, host: str, call: Call, function: str = ""):
        self._host = host
        self.call = call
        self.function = function

    @property
    def keywords(self) -> str:
        return ", ".join([names.literal(a.keyword) for a in self.call.arguments] + ["nullptr"])

    @property
    def locals(self) -> list[str]:
        """Declarations of the argument records, each fresh for this attempt."""
        lines: list[str] = []
        for argument in self.call.arguments:
            if argument.by_reference:
                lines += _by_reference_locals(argument)
            else:
                lines += _fill(argument.form.local, argument.variable).split("\n")
        return lines

    @property
    def parse(self) -> str:
        """The arguments behind the format of PyArg_ParseTupleAndKeywords."""
        units = '"' + "O&" * len(self.call.arguments) + '"'
        parts = ["args", "kwds", units, "const_cast<char **>(keywords)"]
        for argument in self.call.arguments:
            if argument.by_reference:
                parts += ["fn_conv_py_parbyref_to_clr_parbyref", f"&{argument.variable}"]
            else:
                target = _fill(argument.form.target, argument.variable)
                parts += [argument.form.converter, target]
        return f"PyArg_ParseTupleAndKeywords({', '.join(parts)})"

    def invoke(self, self_handle: str = "handle_of(self)") -> list[str]:
        """From the delegate call to the return, for a method, getter or static getter."""
        passed = [] if self.call.static else [self_handle]
        for argument in self.call.arguments:
            if argument.by_reference and argument.form.built:
                passed.append(_fill(argument.form.passed, argument.variable + "_value"))
                passed.append(f"&{argument.variable}_object")
            elif argument.by_reference:
                passed.append(f"&{argument.variable}_value")
            else:
                passed.append(_fill(argument.form.passed, argument.variable))
        outs = [argument for argument in self.call.arguments if argument.by_reference]
        return result_lines(self._host, self.call.entry, passed, self.call.result, outs)

    def construct_into(self, handle: str) -> list[str]:
        """From the delegate call to the return, for a constructor."""
        passed = [_fill(a.form.passed, a.variable) for a in self.call.arguments]
        return [
            f"*{handle} = {self._host}::get_instance().{self.call.entry}({', '.join(passed)});",
            "return PyErr_Occurred() ? -1 : 0;",
        ]


def _by_reference_locals(argument: Argument) -> list[str]:
    form, name = argument.form, argument.variable
    target = _fill(form.target, name + "_value")
    lines = [
        _fill(form.local, name + "_value"),
        f"PyParamByRef {name} = {{nullptr, reinterpret_cast<PyConverter>({form.converter}), "
        f"{target}}};",
    ]
    # What goes in and what comes out are two forms where the managed side makes the object.
    return [*lines, f"PyObject *{name}_object = nullptr;"] if form.built else lines


def result_lines(
    host: str, entry: str, passed: list[str], form: Form | None, outs: Sequence[Argument] = ()
) -> list[str]:
    """Call, test for an error, convert the result, return it."""
    call, value = _called(f"{host}::get_instance().{entry}", passed, form)
    if outs:
        return [*call, *_handed_out(outs, value if form else "")]
    return [*call, "if (PyErr_Occurred()) return nullptr;", f"return {value};"]


def _called(entry: str, passed: list[str], form: Form | None) -> tuple[list[str], str]:
    """The lines of the call itself, and the expression that makes Python's result of it."""
    if form is None:
        return [f"{entry}({', '.join(passed)});"], "fn_py_return_none()"
    value = _fill(form.c_to_py, "result")
    if not form.by_slot:
        pointer = form.c_result.endswith("*")
        head = f"{form.c_result}const result" if pointer else f"const {form.c_result} result"
        return [f"{head} = {entry}({', '.join(passed)});"], value
    if form.c_result.startswith("nullable "):
        declaration, address = _record(form.c_result.removeprefix("nullable "))
        call = f"const int has_value = {entry}({', '.join([*passed, address])});"
        return [declaration, call], f"has_value != 0 ? {value} : fn_py_return_none()"
    declaration, address = _record(form.c_result)
    return [declaration, f"{entry}({', '.join([*passed, address])});"], value


def _handed_out(outs: Sequence[Argument], value: str) -> list[str]:
    """Behind the call: the result is made, then what came out, and only then do lists change.

    Whatever is not handed over by then goes back: objects that the managed side has built are held
    from the call on, and handles that no wrapper owns are freed.
    """
    built = [out for out in outs if out.form.built]
    handles = [out for out in outs if not out.form.built and out.form.c_result == "void *"]
    plain = [out for out in outs if out not in built and out not in handles]
    lines = [f"PyTrPyObjStack<{len(outs)}> made;"]
    test = "PyErr_Occurred()"
    if built:
        pushed = " & ".join(f"made.push({out.variable}_object)" for out in built)
        lines.append(f"const bool held = {pushed};")
        test += " || !held"
    lines.append(f"if ({test}) return nullptr;")
    if value:
        lines.append(f"Ref returned = Ref::steal({value});")
        lines.append(f"if (!returned) {_given_up(handles)};")
    for index, out in enumerate(handles):
        made = _fill(out.form.c_to_py, f"{out.variable}_value")
        lines.append(f"if (!made.push({made})) {_given_up(handles[index + 1:])};")
    for out in plain:
        made = _fill(out.form.c_to_py, f"{out.variable}_value")
        lines.append(f"if (!made.push({made})) return nullptr;")
    lines += [
        f"if (fn_push_parbyref_outvalue({out.variable}.list, made.pop()) < 0) return nullptr;"
        for out in reversed([*built, *handles, *plain])
    ]
    return [*lines, "return returned.release();" if value else "return fn_py_return_none();"]


def _given_up(handles: Sequence[Argument]) -> str:
    if not handles:
        return "return nullptr"
    return f"return fn_free_handles({{{', '.join(out.variable + '_value' for out in handles)}}})"


def _record(type_: str) -> tuple[str, str]:
    """Declaration of a result record, and what the delegate is given of it."""
    if type_.endswith("]"):
        element, count = type_[:-1].split("[")
        return f"{element} result[{count}] = {{}};", "result"
    return f"{_spaced(type_)}result{{}};", "&result"


class Entry:
    """One slot of a host: its name, its parameters and its result."""

    def __init__(self, name: str, parameters: list[tuple[str, str]], result: str = "void"):
        self.name = name
        self.parameters = parameters
        # A bool comes in the low byte, whatever stands above it.
        self.slot_result = "unsigned char" if result == "bool" else result
        self.result = result

    @property
    def slot(self) -> str:
        types = ", ".join(type_ for type_, _ in self.parameters)
        return f"{_spaced(self.slot_result)}(*m_{self.name})({types}) = nullptr;"

    @property
    def forward(self) -> str:
        declared = ", ".join(f"{_spaced(type_)}{name}" for type_, name in self.parameters)
        passed = ", ".join(name for _, name in self.parameters)
        back = "" if self.result == "void" else "return "
        head = f"    {_spaced(self.result)}{self.name}({declared}) const {{"
        body = f"{back}m_{self.name}({passed});"
        if len(head) + len(body) + 3 <= LINE:
            return f"{head} {body} }}"
        return f"{head}\n        {body}\n    }}"


def _spaced(type_: str) -> str:
    return type_ if type_.endswith("*") else type_ + " "


def _parameters(call: Call) -> list[tuple[str, str]]:
    parameters = [] if call.static else [("void *", "self")]
    for argument in call.arguments:
        if argument.by_reference and argument.form.built:
            parameters.append((argument.form.c_param, argument.variable))
            parameters.append(("PyObject **", argument.variable + "_object"))
        elif argument.by_reference:
            plain = argument.form.c_param
            pointer = f"{plain}*" if plain.endswith("*") else f"{plain} *"
            parameters.append((pointer, argument.variable))
        else:
            parameters.append((argument.form.c_param, argument.variable))
    return parameters


def _with_result(name: str, parameters: list[tuple[str, str]], form: Form | None) -> Entry:
    if form is None:
        return Entry(name, parameters)
    if not form.by_slot:
        return Entry(name, parameters, form.c_result)
    if form.c_result.startswith("nullable "):
        inner = form.c_result.removeprefix("nullable ").split("[")[0]
        pointer = f"{inner}*" if inner.endswith("*") else f"{inner} *"
        return Entry(name, [*parameters, (pointer, "out")], "int")
    element = form.c_result.split("[")[0]
    return Entry(name, [*parameters, (f"{element} *", "out")])


_OUT = ("void **", "out")
_VARIANT = ("const VariantArg *", "value")
_HANDLE = ("void *", "value")


def cast_entries(family: Family) -> list[Entry]:
    """The "btp_" set at the end of every host."""
    if family.kind == "enum":
        number = (family.number, "value")
        out = (f"{family.number} *", "out")
        return [
            Entry("btp_TypeOf", [_OUT], "int"),
            Entry("btp_CastTo", [_VARIANT, out], "int"),
            Entry("btp_ReInterpretObj", [_HANDLE, out], "int"),
            Entry("btp_AsUniEnum", [number, _OUT], "int"),
            Entry("btp_CastAs", [_HANDLE, out], "int"),
            Entry("btp_IsAssignable", [_HANDLE], "bool"),
            Entry("btp_GetType", [number, _OUT], "int"),
        ]
    value = _HANDLE if family.kind == "class" else _VARIANT
    entries = [Entry("btp_TypeOf", [_OUT], "int"), Entry("btp_CastTo", [_VARIANT, _OUT], "int")]
    if family.has_cast_from:
        entries.append(Entry("btp_CastFrom", [("void *", "self"), ("void *", "type"), _OUT], "int"))
    if family.kind != "interface":
        entries.append(Entry("btp_ReInterpretObj", [_HANDLE, _OUT], "int"))
    entries.append(Entry("btp_CastAs", [value, _OUT], "int"))
    entries.append(Entry("btp_IsAssignable", [value], "bool"))
    return entries


def own_calls(family: Family, item: object) -> list[Call]:
    """The signatures of a method that this class serves by entries of its own."""
    assert isinstance(item, Method)
    if item.shared:
        return []
    return [a.call for a in item.attempts if a.call.owner is family.type]


def host_entries(family: Family) -> list[Entry]:
    """All slots in order: constructors, members as declared, casts."""
    entries = [Entry(c.entry, _parameters(c), "void *") for c in family.constructors]
    for item in _entry_order(family):
        if isinstance(item, Call):
            entries.append(_with_result(item.entry, _parameters(item), item.result))
        elif isinstance(item, StaticField):
            entries.append(_with_result(f"getsa_{item.member.name}", [], item.form))
            if item.settable:
                value = (item.form.c_param, "value")
                entries.append(Entry(f"setsa_{item.member.name}", [value]))
        elif isinstance(item, Property) and not item.shared:
            self_ = ("void *", "self")
            entries.append(_with_result(f"get_{item.member.name}", [self_], item.form))
            if item.set:
                value = (item.form.c_param, "value")
                entries.append(Entry(f"set_{item.member.name}", [self_, value]))
    return entries + cast_entries(family)


def _entry_order(family: Family) -> list[object]:
    """Members as declared; overloads that stand apart in the class keep their own places."""
    calls = {call.member: call for item in family.methods for call in own_calls(family, item)}
    others = {item.member: item for item in (*family.properties, *family.statics)}
    found: list[object] = []
    for member in family.type.members:
        if member in calls:
            found.append(calls[member])
        elif member in others:
            found.append(others[member])
    return found


def groups(families: list[Family], count: int) -> list[list[Family]]:
    """Splits families, in order, into units of about equal weight."""
    total = sum(_weight(family) for family in families)
    units: list[list[Family]] = [[] for _ in range(count)]
    before = 0
    for family in families:
        units[min(count - 1, before * count // max(total, 1))].append(family)
        before += _weight(family)
    return units


def _weight(family: Family) -> int:
    if family.kind == "enum":
        return 12
    calls = sum(len(method.attempts) for method in family.methods)
    return (
        24 + 2 * (calls + len(family.constructors)) + len(family.properties) + len(family.statics)
    )

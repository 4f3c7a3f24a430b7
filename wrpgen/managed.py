"""Writes the C# half: one static class of entry points for each bound type."""

from __future__ import annotations

from dataclasses import dataclass, field
from types import SimpleNamespace

from .family import Argument, Call, Family, Property, StaticField
from .basic_forms import Form
from .forms import cs_type
from .model import Extension
from .native import _entry_order, environment


def write_entries(extension: Extension, families: list[Family]) -> dict[str, str]:
    """One file for each namespace."""
    template = environment().get_template("entries.cs.j2")
    spaces: dict[str, list[Family]] = {}
    for family in families:
        spaces.setdefault(family.type.namespace, []).append(family)
    return {
        f"{space}.cs": template.render(
            space=own[0].cs_namespace, classes=[_class(family) for family in own]
        )
        for space, own in spaces.items()
    }


def _class(family: Family) -> SimpleNamespace:
    entries = [_constructor(family, call) for call in family.constructors]
    for item in _entry_order(family):
        if isinstance(item, Call):
            entries.append(_call(family, item))
        elif isinstance(item, StaticField):
            entries += _static(family, item)
        elif isinstance(item, Property) and not item.shared:
            entries += _property(family, item)
    return SimpleNamespace(
        name=family.cs_class,
        title=family.type.full_name,
        entries=entries,
        casts=_casts(family),
    )


def _self(family: Family) -> str:
    unbox = "Unbox" if family.kind == "struct" else "Target"
    return f"Handles.{unbox}<{family.cs_type}>(self)"


def _read(form: Form, type_: str, value: str) -> str:
    return form.cs_read.replace("{v}", value).replace("{t}", cs_type(type_))


def _parameter(argument: Argument) -> str:
    form, name = argument.form, _variable(argument)
    if argument.by_reference and form.built:
        return f"{form.cs_param} {name}, nint* {name}_out"
    return f"{form.cs_param}{'*' if argument.by_reference else ''} {name}"


def _variable(argument: Argument) -> str:
    return "a_" + argument.variable


@dataclass(frozen=True)
class _Passed:
    """The arguments of a call, and what has to stand around it."""

    before: list[str] = field(default_factory=list)
    arguments: list[str] = field(default_factory=list)
    # Behind the call. Making a Python object may fail with Python's error pending, which ends the
    # entry; handles and numbers come after that, so that no handle is left without an owner.
    failures: list[str] = field(default_factory=list)
    given: list[str] = field(default_factory=list)

    def tests(self, nothing: str) -> list[str]:
        return [f"if ({failure}) {{ {nothing} }}" for failure in self.failures]


def _passed(call: Call) -> _Passed:
    passed = _Passed()
    for argument in call.arguments:
        name, form = _variable(argument), argument.form
        if not argument.by_reference:
            owned = _owned(call, argument)
            passed.arguments.append(owned or _read(form, argument.parameter.type, name))
            continue
        held = name + "_value"
        if argument.parameter.direction == "ref":
            given = name if form.built else f"(*{name})"
            passed.before.append(f"var {held} = {_read(form, argument.parameter.type, given)};")
            passed.arguments.append(f"ref {held}")
        else:
            passed.arguments.append(f"out var {held}")
        write = form.cs_write.replace("{v}", held)
        if form.built:
            passed.failures.append(f"(*{name}_out = {write}) == 0")
        else:
            passed.given.append(f"*{name} = {write};")
    return passed


def _owned(call: Call, argument: Argument) -> str:
    """A stream that the member takes over when another parameter says so."""
    if argument.parameter.type != "System.IO.Stream":
        return ""
    for other in call.arguments:
        if other.parameter.name in call.owners:
            return f"Args.Stream({_variable(argument)}, {_variable(other)} != 0)"
    return ""


def _entry(name: str, result: str, parameters: list[str], body: list[str]) -> SimpleNamespace:
    caught = "Bridge.Raise(e);" if result == "void" else f"return Bridge.Raise<{result}>(e);"
    return SimpleNamespace(
        name=name,
        result=result,
        parameters=", ".join(parameters),
        body=["Bridge.Enter();", *body],
        caught=caught,
    )


def _result(
    form: Form | None, name: str, parameters: list[str], expression: str, passed: _Passed
) -> SimpleNamespace:
    """An entry that evaluates an expression and hands its value over."""
    if form is None:
        body = [*passed.before, f"{expression};", *passed.tests("return;"), *passed.given]
        return _entry(name, "void", parameters, body)
    if form.c_result.startswith("nullable "):
        write = form.cs_write.replace("{v}", "value.GetValueOrDefault()").replace("{r}", "result")
        body = [
            *passed.before,
            f"var value = {expression};",
            *passed.tests("return 0;"),
            *passed.given,
            "if (!value.HasValue) { return 0; }",
            f"{write};",
            "return 1;",
        ]
        return _entry(name, "int", [*parameters, f"{form.cs_result} result"], body)
    # The value has a name only where something stands between it and its way out.
    held = f"var value = {expression};" if passed.failures or passed.given else ""
    value = "value" if held else expression if form.by_slot else _grouped(expression)
    write = form.cs_write.replace("{v}", value).replace("{r}", "result")
    head = [*passed.before, *([held] if held else [])]
    if form.by_slot:
        body = [*head, *passed.tests("return;"), *passed.given, f"{write};"]
        return _entry(name, "void", [*parameters, f"{form.cs_result} result"], body)
    body = [*head, *passed.tests("return default;")]
    if form.built and passed.given:
        body += [f"nint made = {write};", "if (made == 0) { return 0; }"]
        write = "made"
    return _entry(name, form.cs_result, parameters, [*body, *passed.given, f"return {write};"])


def _grouped(expression: str) -> str:
    return f"({expression})" if " " in expression.split("(")[0] else expression


def _constructor(family: Family, call: Call) -> SimpleNamespace:
    made = f"new {family.cs_type}({', '.join(_passed(call).arguments)})"
    parameters = [_parameter(argument) for argument in call.arguments]
    return _entry(call.entry, "nint", parameters, [f"return Results.Object({made});"])


def _call(family: Family, call: Call) -> SimpleNamespace:
    passed = _passed(call)
    target = family.cs_type if call.static else _self(family)
    parameters = [] if call.static else ["nint self"]
    parameters += [_parameter(argument) for argument in call.arguments]
    expression = f"{target}.{call.member.name}({', '.join(passed.arguments)})"
    return _result(call.result, call.entry, parameters, expression, passed)


def _property(family: Family, item: Property) -> list[SimpleNamespace]:
    name = item.member.name
    target = f"{_self(family)}.{name}"
    entries = [_result(item.form, f"get_{name}", ["nint self"], target, _Passed())]
    if item.set:
        value = _read(item.form, item.member.type, "value")
        parameters = ["nint self", f"{item.form.cs_param} value"]
        entries.append(_entry(f"set_{name}", "void", parameters, [f"{target} = {value};"]))
    return entries


def _static(family: Family, item: StaticField) -> list[SimpleNamespace]:
    name = item.member.name
    target = f"{family.cs_type}.{name}"
    entries = [_result(item.form, f"getsa_{name}", [], target, _Passed())]
    if item.settable:
        value = _read(item.form, item.member.type, "value")
        entries.append(
            _entry(
                f"setsa_{name}", "void", [f"{item.form.cs_param} value"], [f"{target} = {value};"]
            )
        )
    return entries


def _casts(family: Family) -> list[str]:
    """The "btp_" entries, each one call of the shared bodies."""
    return _enum_casts(family) if family.kind == "enum" else _object_casts(family)


def _enum_casts(family: Family) -> list[str]:
    bound, number = family.cs_type, family.cs_number
    pair = f"<{bound}, {number}>"
    return [
        f"int btp_TypeOf(nint* result) => Casts.TypeOf<{bound}>(result);",
        f"int btp_CastTo(VariantArg* value, {number}* result) => "
        f"Casts.EnumCastTo{pair}(value, result);",
        f"int btp_ReInterpretObj(nint value, {number}* result) => "
        f"Casts.EnumReInterpret{pair}(value, result);",
        f"int btp_AsUniEnum({number} value, nint* result) => "
        f"Casts.EnumAsUniEnum{pair}(value, result);",
        f"int btp_CastAs(nint value, {number}* result) => "
        f"Casts.EnumCastAs{pair}(value, result);",
        f"byte btp_IsAssignable(nint value) => Casts.IsAssignable<{bound}>(value);",
        f"int btp_GetType({number} value, nint* result) => "
        f"Casts.EnumGetType{pair}(value, result);",
    ]


def _object_casts(family: Family) -> list[str]:
    bound = family.cs_type
    type_of = f"TypeOf<{bound}>(result)"
    if family.type.static:
        type_of = f"TypeOf(typeof({bound}), result)"
        bound = "NoInstance"
    cast_to = "CastToStruct" if family.kind == "struct" else "CastTo"
    rows = [
        f"int btp_TypeOf(nint* result) => Casts.{type_of};",
        "int btp_CastTo(VariantArg* value, nint* result) => "
        f"Casts.{cast_to}<{bound}>(value, result);",
    ]
    if family.has_cast_from:
        rows.append(
            "int btp_CastFrom(nint self, nint type, nint* result) => "
            "Casts.CastFrom(self, type, result);"
        )
    if family.kind != "interface":
        rows.append(
            "int btp_ReInterpretObj(nint value, nint* result) => "
            f"Casts.ReInterpret<{bound}>(value, result);"
        )
    if family.kind == "class":
        rows += [
            f"int btp_CastAs(nint value, nint* result) => Casts.CastAs<{bound}>(value, result);",
            f"byte btp_IsAssignable(nint value) => Casts.IsAssignable<{bound}>(value);",
        ]
    else:
        rows += [
            "int btp_CastAs(VariantArg* value, nint* result) => "
            f"Casts.CastAsVariant<{bound}>(value, result);",
            "byte btp_IsAssignable(VariantArg* value) => "
            f"Casts.IsAssignableVariant<{bound}>(value);",
        ]
    return rows

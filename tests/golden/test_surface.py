"""The bound surface against the published list of it."""

import csv
import pathlib

import pytest

SURFACE = pathlib.Path(__file__).resolve().parents[3] / "shared" / "surface"

pytestmark = pytest.mark.skipif(
    not SURFACE.is_dir(), reason="the list of the surface does not lie beside this checkout"
)


def rows(name):
    with (SURFACE / name).open(encoding="utf-8", newline="") as source:
        return list(csv.DictReader(source, delimiter="\t"))


def report(missing, total):
    """A failure that tells how far the surface is."""
    shown = "\n".join(sorted(missing)[:60])
    return f"{len(missing)} of {total} are missing:\n{shown}"


@pytest.fixture(scope="module")
def families(generation):
    made = generation("psd")
    return {made.extension.python_name(f.type): f for f in made.families}


def listed_types(kind):
    return [
        f"{row['module']}.{row['name']}"
        for row in rows("types.tsv")
        if row["kind"] in kind and "._" not in f"{row['module']}.{row['name']}"
    ]


def chain(family):
    found = []
    while family is not None:
        found.append(family)
        family = family.base
    return found


def test_every_type_with_listed_members_is_bound(families):
    listed = {f"{r['module']}.{r['type']}" for r in rows("members.tsv") if r["type"] != "*"}
    assert not listed - set(families), report(listed - set(families), len(listed))


INCOMPLETE = pytest.mark.xfail(
    reason="the imaging library does not have the whole surface yet", strict=True
)


@pytest.mark.parametrize(
    "kind",
    [
        pytest.param("class", marks=INCOMPLETE),
        "struct",
        pytest.param("intenum", marks=INCOMPLETE),
        pytest.param("intflag", marks=INCOMPLETE),
    ],
)
def test_every_listed_type_is_bound_as_its_kind(families, kind):
    kinds = {"class": ("class", "interface"), "struct": ("struct",)}.get(kind, ("enum",))
    listed = listed_types((kind,))
    missing = {
        name
        for name in listed
        if name not in families
        or families[name].kind not in kinds
        or (families[name].kind == "enum" and families[name].type.flags != (kind == "intflag"))
    }
    assert not missing, report(missing, len(listed))


def test_no_type_is_bound_that_is_not_listed(families):
    listed = set(listed_types(("class", "struct", "intenum", "intflag")))
    assert set(families) <= listed, sorted(set(families) - listed)


def test_every_listed_base_is_the_base(families):
    wrong = {}
    for row in rows("types.tsv"):
        family = families.get(f"{row['module']}.{row['name']}")
        if family is None or not row["bases"]:
            continue
        base = family.base.type.simple_name if family.base else "object"
        if base != row["bases"]:
            wrong[family.py_type] = (base, row["bases"])
    assert not wrong


def test_every_listed_enumeration_has_its_values_in_order(families):
    from wrpgen.units import _value_name

    listed = {}
    for row in rows("enums.tsv"):
        name = f"{row['module']}.{row['enum']}"
        listed.setdefault(name, []).append((row["member"], int(row["value"])))
    wrong = {}
    for name, values in listed.items():
        family = families.get(name)
        bound = [(_value_name(family, v), v.value) for v in family.type.values] if family else None
        if bound != values:
            wrong[name] = (bound, values)
    assert not wrong


def test_every_listed_member_is_bound(families):
    listed = [row for row in rows("members.tsv") if row["type"] != "*"]
    missing = set()
    for row in listed:
        family = families.get(f"{row['module']}.{row['type']}")
        if family is None or not has_member(family, row):
            missing.add(f"{row['module']}.{row['type']}.{row['member']} ({row['kind']})")
    assert not missing, report(missing, len(listed))


def has_member(family, row):
    name, kind = row["member"], row["kind"]
    if kind == "constructor":
        return bool(family.constructors)
    if name in ("__enter__", "__exit__"):
        return family.disposable
    if kind in ("method", "static_method"):
        # A member may stand in a table of its own or reach the type from a base.
        return any(m.py_name == name for f in chain(family) for m in f.methods)
    if kind == "static_property":
        return any(s.py_name == name for s in family.statics)
    return any(p.py_name == name for f in chain(family) for p in f.properties)


def listed_signatures():
    """Members whose parameters are listed, with their keywords in the order of the attempts."""
    found = {}
    for row in rows("members.tsv"):
        shape = row["signature_or_type"]
        if row["type"] == "*" or not shape.startswith("(") or row["member"].startswith("__e"):
            continue
        words = tuple(word.strip() for word in shape[1 : shape.index(")")].split(",") if word)
        key = (f"{row['module']}.{row['type']}", row["member"], row["kind"])
        found.setdefault(key, []).append(words)
    return found


def test_every_listed_signature_has_its_keywords_in_order(families):
    wrong = {}
    for (name, member, kind), keywords in listed_signatures().items():
        family = families.get(name)
        bound = bound_signatures(family, member, kind) if family else []
        same = len(bound) == len(keywords) and all(map(fits, bound, keywords))
        if not same:
            wrong[f"{name}.{member}"] = (bound, keywords)
    assert not wrong


def fits(bound, listed):
    """Where the list gives a type instead of a keyword, any keyword will do."""
    return len(bound) == len(listed) and all(
        given == word or word == "int" for given, word in zip(bound, listed)
    )


def bound_signatures(family, member, kind):
    if kind == "constructor":
        calls = family.constructors
    else:
        named = [m for m in family.methods if m.py_name == member]
        # The list tells static members apart only where a name has both sorts.
        static = kind == "static_method" or not any(not m.static for m in named)
        methods = [m for m in named if m.static == static]
        calls = [a.call for m in methods for a in m.attempts]
    return [tuple(argument.keyword for argument in call.arguments) for call in calls]

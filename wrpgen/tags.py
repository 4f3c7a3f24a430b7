"""Tags: eight hexadecimal digits that tell apart bound types of equal name.

A tag is made once, recorded in api/tags.json and never changes; that file alone is the truth. A row
holds the native tag and the managed one; null stands for one that is still to be made.
"""

import hashlib
import json
from pathlib import Path


def _fresh(seed: str, taken: set[str]) -> str:
    """A tag that nobody has. It depends on the seed alone, so that two people make the same."""
    attempt = 0
    while True:
        tag = hashlib.blake2b(f"{seed}#{attempt}".encode(), digest_size=4).hexdigest().upper()
        if tag not in taken and tag != "FFFFFFFF":
            taken.add(tag)
            return tag
        attempt += 1


def complete(api: Path) -> list[str]:
    """Gives every described type the tags that it lacks; returns the names served."""
    path = api / "tags.json"
    tags = json.loads(path.read_text())
    modules = json.loads((api / "modules.json").read_text())
    elements = _element_tags(api)
    taken = {tag for types in tags.values() for pair in types.values() for tag in pair if tag}
    taken |= {tag for row in modules.values() for _, tag in row["modules"]} | set(elements.values())
    served = []
    for key, row in modules.items():
        types = tags.setdefault(key, {})
        for full_name in _described(api / key, row):
            native, managed = types.get(full_name) or (None, None)
            if native and managed:
                continue
            # An element of the table of generic instances has its tag there.
            known = elements.get(_python_name(row, full_name))
            types[full_name] = [
                native or _fresh(f"{full_name} native", taken),
                managed or known or _fresh(f"{full_name} managed", taken),
            ]
            served.append(full_name)
    if served:
        path.write_text(_write(tags))
    return served


def _element_tags(api: Path) -> dict[str, str]:
    generics = json.loads((api / "generics.json").read_text())
    return {row[1]: row[0] for rows in generics.values() for row in rows}


def _python_name(row: dict, full_name: str) -> str:
    space, _, name = full_name.removeprefix(row["namespace"]).rpartition(".")
    return f"{row['module']}{space.lower()}.{name}"


def _described(folder: Path, row: dict) -> list[str]:
    """The described types, and those that capsules name before their library has them."""
    names = {capsule["type"] for capsule in row["exports"]}
    for path in folder.glob("*.json"):
        description = json.loads(path.read_text())
        names |= {f"{description['namespace']}.{type_['type']}" for type_ in description["types"]}
    return sorted(names)


def _write(tags: dict) -> str:
    """One row a line, sorted."""
    blocks = []
    for key, types in tags.items():
        rows = [f"  {json.dumps(name)}: {json.dumps(types[name])}" for name in sorted(types)]
        blocks.append(f"{json.dumps(key)}: {{\n" + ",\n".join(rows) + "\n}")
    return "{\n" + ",\n".join(blocks) + "\n}\n"

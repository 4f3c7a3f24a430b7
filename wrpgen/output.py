"""Writes generated files: only when their text changes, and nothing else stays in the folder."""

from pathlib import Path


def write_all(folder: Path, files: dict[str, str]) -> int:
    """Makes the folder hold exactly these files; returns how many changed."""
    changed = 0
    for name, text in sorted(files.items()):
        path = folder / name
        if path.exists() and path.read_text() == text:
            continue
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        changed += 1
    for path in sorted(folder.rglob("*")):
        if path.is_file() and path.relative_to(folder).as_posix() not in files:
            path.unlink()
            changed += 1
    return changed

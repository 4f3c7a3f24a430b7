"""docs/generator.md shows what the generator writes today."""

import os
import pathlib
import re

import pytest

PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs" / "generator.md"
NAME = "Kelmor.PSD.Xmp.XmpHeaderPi"


def native(made):
    from wrpgen import units

    return units.write_family(made.family(NAME), made.families)


def managed(made):
    from wrpgen import managed

    (text,) = managed.write_entries(made.extension, [made.family(NAME)]).values()
    return text


def description(made):
    text = (PAGE.parents[1] / "api" / "psd" / "Kelmor.PSD.Xmp.json").read_text()
    found = re.search(r'^\{"type": "XmpHeaderPi".*?\]\}(?=,?$)', text, re.M | re.S)
    return found.group()


@pytest.mark.parametrize("section", [description, native, managed])
def test_the_page_shows_the_family_as_it_comes_out(generation, section):
    block = re.compile(rf"(<!-- {section.__name__} -->\n```\w+\n)(.*?)(\n```)", re.S)
    page, text = PAGE.read_text(), section(generation("psd")).strip("\n")
    if os.environ.get("KELMOR_UPDATE_GOLDENS"):
        page = block.sub(lambda found: found.group(1) + text + found.group(3), page)
        PAGE.write_text(page)
    assert block.search(page).group(2) == text

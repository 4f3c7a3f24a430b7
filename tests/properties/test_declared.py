"""Collections by their declared type, and nullables of every form, over the real runtime."""

import datetime as dt
import decimal
import io
import uuid

import pytest

from kelmor.harness import Circle, Collections, Counter, Declared, Pair, Shade, Shelf, Showcase

NULLABLES = [
    ("u_int64", 2**64 - 1),
    ("single", 0.5),
    ("char", "漢"),
    ("span", dt.timedelta(days=-1, microseconds=7)),
    ("offset", dt.datetime(2020, 1, 2, tzinfo=dt.timezone(dt.timedelta(hours=-3)))),
    ("decimal", decimal.Decimal("-12.340")),
    ("guid", uuid.UUID(int=2**127 + 5)),
    ("pair", Pair(1, 2)),
]


@pytest.mark.parametrize(("form", "value"), NULLABLES, ids=[n[0] for n in NULLABLES])
def test_a_nullable_is_its_value_or_none(count_case, form, value):
    count_case()
    echo = getattr(Declared, f"echo_nullable_{form}")
    back = echo(value)
    assert back == value and type(back) is type(value)
    assert echo(None) is None
    with pytest.raises(TypeError):
        echo(object())


ECHOES = ["collection", "enumerable", "enumerator", "array", "array_list", "collection_base"]
ECHOES += ["read_only_collection_base", "disposable", "numbers", "texts", "sequence", "walk"]
ECHOES += ["rows", "shades", "figures", "values"]


@pytest.mark.parametrize("form", ECHOES)
def test_none_is_none_in_every_form(count_case, form):
    count_case()
    assert getattr(Declared, f"echo_{form}")(None) is None


@pytest.mark.parametrize("form", ECHOES)
def test_what_is_no_collection_is_refused(count_case, form):
    count_case()
    for value in (5, object(), Pair(1, 2)):
        with pytest.raises(TypeError):
            getattr(Declared, f"echo_{form}")(value)


def test_a_python_object_comes_back_as_itself(count_case):
    items, pair, walk = [1, 2], (1, 2), iter([1, 2])
    for echo, value in (
        (Declared.echo_collection, items),
        (Declared.echo_collection, {1, 2}),
        (Declared.echo_enumerable, pair),
        (Declared.echo_enumerator, walk),
        (Declared.echo_texts, ["a"]),
        (Declared.echo_sequence, range(3)),
        (Declared.echo_walk, walk),
    ):
        count_case()
        assert echo(value) is value


def test_what_is_copied_comes_back_as_a_managed_collection(count_case):
    for echo, value in (
        (Declared.echo_array, [1, "two", None]),
        (Declared.echo_array, (1, 2.5)),
        (Declared.echo_collection_base, [1, "two"]),
        (Declared.echo_read_only_collection_base, (1, "two")),
        (Declared.echo_numbers, [1, 2, 3]),
        (Declared.echo_numbers, (7,)),
        (Declared.echo_values, [1, "two", None, 2.5]),
    ):
        count_case()
        back = echo(value)
        assert list(back) == list(value) and back is not value
        assert len(back) == len(value)


def test_an_array_list_is_a_view_of_the_python_list(count_case):
    count_case()
    items = [1]
    view = Declared.echo_array_list(items)
    view.append("two")
    assert items == [1, "two"] == list(view)


def test_elements_keep_their_types(count_case):
    count_case()
    rows = Declared.echo_rows([[1.5, 2], (3,), []])
    assert [list(row) for row in rows] == [[1.5, 2.0], [3.0], []]
    figures = Declared.echo_figures([Circle(1), None])
    assert [type(figure) for figure in figures] == [Circle, type(None)]
    assert figures[0].radius == 1


def test_collections_of_a_class_of_their_own(count_case):
    count_case()
    shelf = Shelf()
    shelf.put("a")
    assert list(shelf) == ["a"]
    for count, echo in enumerate((Declared.echo_collection_base, Declared.echo_collection), 2):
        back = echo(shelf)
        shelf.put(count)
        assert list(back) == list(shelf) == ["a", *range(2, count + 1)]
    showcase = Showcase(3)
    assert list(Declared.echo_read_only_collection_base(showcase)) == [0, 1, 2]
    assert 2 in showcase and 3 not in showcase


def test_managed_collections_come_back_as_wrappers_of_their_own(count_case):
    for echo, value in (
        (Declared.echo_array_list, Collections.make_array_list(3)),
        (Declared.echo_array, Collections.make_range(3)),
        (Declared.echo_collection, Collections.make_array_list(3)),
        (Declared.echo_enumerable, Collections.make_enumerable(3)),
        (Declared.echo_enumerator, Collections.make_enumerator(3)),
    ):
        count_case()
        assert list(echo(value)) == [0, 1, 2]


def test_what_can_be_disposed_of_ends_with_its_block(count_case):
    count_case()
    counter = Counter(1)
    with Declared.echo_disposable(counter):
        assert not counter.disposed
    assert counter.disposed
    with pytest.raises(TypeError):
        Declared.echo_disposable(io.BytesIO())


def test_members_of_an_enumeration_in_an_array(count_case):
    count_case()
    with pytest.raises(RuntimeError, match="unknown variant type"):
        Declared.echo_shades([Shade.LIGHT])
    assert list(Declared.echo_shades([7, -2])) == [7, -2]

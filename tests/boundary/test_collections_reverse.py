"""Python lists, sequences and iterators on the managed side, and the tables of callbacks."""

import ctypes
import sys

from wrappers import INT, OBJECT, POINTER, handle_of, scene, shown, text_of


@scene(
    "collections-reverse.tables.slots-four-to-eight",
    "collections-reverse.tables.iter",
    "collections-reverse.tables.ucol",
    "collections-reverse.tables.olist",
    "collections-reverse.tables.oseq",
    "collections-reverse.tables.rawio",
)
def test_the_tables(s):
    tables = (POINTER * 12).from_address(s.native.address("m_all_py_wrapper_callbacks"))
    assert None not in tables[:9] and list(tables[9:]) == [None] * 3
    (handed,) = s.calls_of_start["SetPyStaticCallbacks"]
    assert handed == s.native.address("m_all_py_wrapper_callbacks")
    wanted = {
        4: ("iter", ["next"]),
        5: (
            "ucol",
            "list_length list_longlength remove_at clear sequence_length sequence_longlength"
            " get_enumerator object_length create_fast_list create_fast_longlist"
            " get_unicode_bytes".split(),
        ),
        6: (
            "olist",
            "get_item set_item add insert remove contains index_of set_fast_item write_clr_ilist"
            " write_clr_arrlist write_clr_array".split(),
        ),
        7: ("oseq", ["get_item", "contains", "index_of"]),
        8: (
            "rawio",
            "write write_byte read readbyte seek truncate flush close readable writable seekable"
            " tell length".split(),
        ),
    }
    for slot, (group, names) in wanted.items():
        found = list((POINTER * len(names)).from_address(tables[slot]))
        assert found == [s.native.address(f"fn_clbk_{group}_{name}") for name in names], group


@scene(
    "collections-reverse.ucol-length.values",
    "collections-reverse.ucol-length.failure",
    "collections-reverse.ucol-length.list-own-size",
    "collections-reverse.ucol-length.overflow",
    "collections-reverse.ucol-longlength.values",
)
def test_lengths(s):
    def sized(length, base=object):
        def answer(self):
            if isinstance(length, BaseException):
                raise length
            return length

        members = {"__len__": answer, "__getitem__": lambda self, index: 0}
        return type("Sized", (base,), members)()

    def ask(name, value):
        return shown(s.status(f"fn_clbk_ucol_{name}", value, wide="long" in name))

    def short(name, value):
        return shown(s.status(f"fn_clbk_ucol_{name}_length", value))

    assert (
        short("list", [1, 2]) == short("sequence", (1, 2)) == short("object", {1, 2}) == (2, None)
    )
    assert short("list", sized(99, list)) == (0, None)
    assert ask("list_longlength", sized(99, list)) == (0, None)
    for name in ("sequence", "object"):
        assert short(name, sized(2147483647)) == (2147483647, None)
        text = "the value of 'length' (2147483648) is out of the INT32 range"
        assert short(name, sized(2147483648)) == (-1, OverflowError, text)
        assert short(name, sized(KeyError(1))) == (-1, KeyError, "1")
    assert short("list", (1,))[:2] == (-1, SystemError)
    assert short("object", 5.0)[:2] == (-1, TypeError)
    assert ask("sequence_longlength", sized(2147483648)) == (2147483648, None)
    assert ask("sequence_longlength", sized(KeyError(1))) == (-1, KeyError, "1")
    assert ask("list_longlength", [1]) == (1, None) and ask("list_longlength", 5.0)[0] == -1


@scene(
    "collections-reverse.ucol-remove-at.call",
    "collections-reverse.ucol-remove-at.failure",
    "collections-reverse.ucol-clear.call",
    "collections-reverse.ucol-enumerator.result",
    "collections-reverse.ucol-enumerator.error-kept",
    "collections-reverse.ucol-enumerator.no-iterator",
)
def test_changing_and_iterating(s):
    def ask(name, *arguments):
        return shown(s.status(f"fn_clbk_ucol_{name}", *arguments))

    m = [1, 2, 3]
    assert ask("remove_at", m, 0) == (0, None) and m == [2, 3]
    assert ask("remove_at", m, 0xFFFFFFFF) == (0, None) and m == [2]
    assert ask("remove_at", m, 5)[:2] == (-2, IndexError)
    odd = type("Odd", (list,), {"pop": lambda self, i: 1 / 0, "clear": lambda self: 1 / 0})()
    assert ask("remove_at", odd, 0)[:2] == (-1, ZeroDivisionError)
    assert ask("clear", m) == (0, None) and m == []
    assert ask("clear", odd)[:2] == (-1, ZeroDivisionError)
    enumerator = s.function("fn_clbk_ucol_get_enumerator", OBJECT, OBJECT)
    it = iter([1])
    assert enumerator(it) is it and list(enumerator({7})) == [7]
    assert text_of(TypeError, enumerator, 5) == "'int' object is not iterable"
    s.method("Iterable", "GetEnumerator").returns(-1)
    lazy = s.wrap(s.interop._IterableWrapper, 1)
    text = "No iterator in 'kelmor.psd._wrpgen._interop._IterableWrapper'"
    assert text_of(TypeError, enumerator, lazy) == text


@scene(
    "collections-reverse.ucol-fast-list.create",
    "collections-reverse.ucol-fast-list.long",
    "collections-reverse.ucol-fast-list.set",
    "collections-reverse.ucol-fast-list.whole",
)
def test_fast_lists(s):
    store = s.function("fn_clbk_olist_set_fast_item", None, POINTER, INT, POINTER)
    for name, size_type in [("fast_list", INT), ("fast_longlist", ctypes.c_int64)]:
        create = s.function(f"fn_clbk_ucol_create_{name}", POINTER, size_type, POINTER)
        out = POINTER()
        items = create(3, ctypes.addressof(out))
        things = [["a"], ["b"], ["c"]]
        before = [sys.getrefcount(t) for t in things]
        for index, thing in enumerate(things):
            ctypes.pythonapi.Py_IncRef(OBJECT(thing))
            store(items, index, id(thing))
        made = ctypes.cast(out.value, OBJECT).value
        ctypes.pythonapi.Py_DecRef(OBJECT(made))
        assert type(made) is list and made == things and sys.getrefcount(made) == 2
        assert POINTER.from_address(id(made) + 24).value == items
        del thing
        assert [sys.getrefcount(t) for t in things] == [count + 1 for count in before]
        del made
        assert [sys.getrefcount(t) for t in things] == before


def item_for(thing):
    """The address of an object with one more reference, as the managed side hands one in."""
    ctypes.pythonapi.Py_IncRef(OBJECT(thing))
    return id(thing)


@scene(
    "collections-reverse.olist-get.value",
    "collections-reverse.olist-get.out-of-range",
    "collections-reverse.olist-get.unsupported",
    "collections-reverse.olist-get.cleared-list",
    "collections-reverse.olist-set.call",
    "collections-reverse.olist-add.call",
    "collections-reverse.olist-insert.call",
    "collections-reverse.olist-remove.call",
    "collections-reverse.rules.list-live-view",
)
def test_a_list_is_driven(s):
    def ask(name, *arguments):
        return shown(s.status(f"fn_clbk_olist_{name}", *arguments))

    record = s.native.VariantArg(kind=-7)
    place = ctypes.addressof(record)
    number, w, v = 123456, s.wrap(s.Sample, 0x50), s.wrap(s.Value, 0x60)
    m = [number, w, v, object()]
    before = sys.getrefcount(w)
    for index, wanted in enumerate([(6, id(number)), (1, 0x50), (2, 0x60)]):
        assert ask("get_item", m, index, place) == (0, None)
        assert (record.kind, record.value) == wanted
    assert sys.getrefcount(w) == before
    assert ask("get_item", m, 3, place) == (-1, TypeError, "unknown variant type")
    for index in (4, 0xFFFFFFFF):
        assert ask("get_item", m, index, place)[:2] == (-2, IndexError)
    m.clear()
    assert ask("get_item", m, 0, place)[:2] == (-2, IndexError)
    assert ask("add", m, item_for("a")) == (1, None) and ask("add", m, item_for("b")) == (2, None)
    assert ask("set_item", m, 0, item_for("c")) == (0, None) and m == ["c", "b"]
    assert ask("set_item", m, 2, item_for("d"))[:2] == (-2, IndexError)
    assert ask("set_item", (), 0, item_for("d"))[:2] == (-1, SystemError)
    for index, thing in [(99, "end"), (0xFFFFFFFF, "last-but-one"), (0, "first")]:
        assert ask("insert", m, index, item_for(thing)) == (0, None)
    assert m == ["first", "c", "b", "last-but-one", "end"]
    assert ask("insert", (), 0, item_for("d"))[:2] == (-1, SystemError)
    assert ask("add", (), item_for("d"))[:2] == (-1, SystemError)
    assert ask("remove", m, item_for("b")) == (0, None) and "b" not in m
    assert ask("remove", m, item_for("b"))[:2] == (-1, ValueError)


@scene("collections-reverse.rules.direct-list-calls")
def test_a_subclass_is_changed_directly(s):
    class Odd(list):
        def broken(self, *_):
            raise AssertionError("called")

        __getitem__ = __setitem__ = append = insert = broken

        def remove(self, item):
            seen.append(("remove", item))

        def index(self, item):
            seen.append(("index", item))
            return 5

        def pop(self, index):
            seen.append(("pop", index))

        def clear(self):
            seen.append(("clear",))

    seen = []
    m = Odd([1])
    record = s.native.VariantArg()

    def ask(name, *arguments):
        return shown(s.status(f"fn_clbk_{name}", *arguments))

    assert ask("olist_get_item", m, 0, ctypes.addressof(record)) == (0, None)
    assert ask("olist_set_item", m, 0, item_for(7)) == (0, None)
    assert ask("olist_add", m, item_for(8)) == (2, None)
    assert ask("olist_insert", m, 0, item_for(6)) == (0, None)
    assert list(m) == [6, 7, 8]
    assert ask("olist_remove", m, item_for("x")) == (0, None)
    assert ask("olist_contains", m, item_for("y")) == (1, None)
    assert ask("olist_index_of", m, item_for("z")) == (5, None)
    assert ask("ucol_remove_at", m, 4) == ask("ucol_clear", m) == (0, None)
    assert seen == [("remove", "x"), ("index", "y"), ("index", "z"), ("pop", 4), ("clear",)]


@scene("collections-reverse.rules.item-consumed")
def test_every_item_is_consumed(s):
    class Odd(list):
        def index(self, item):
            raise KeyError

    thing = ["thing"]
    before = sys.getrefcount(thing)
    for name in ("add", "remove", "contains", "index_of"):
        for target in ([], (), Odd()):
            s.status(f"fn_clbk_olist_{name}", target, item_for(thing))
            del target
    assert sys.getrefcount(thing) == before
    kept = [0]
    for index in (0, 5):
        s.status("fn_clbk_olist_set_item", kept, index, item_for(thing))
    s.status("fn_clbk_olist_insert", kept, 0, item_for(thing))
    s.status("fn_clbk_olist_insert", (), 0, item_for(thing))
    assert kept == [thing, thing] and sys.getrefcount(thing) == before + 2
    kept.clear()
    for name in ("contains", "index_of"):
        for target in ((1, 2), (thing,), 5.0):
            s.status(f"fn_clbk_oseq_{name}", target, item_for(thing))
    del target
    assert sys.getrefcount(thing) == before


@scene(
    "collections-reverse.olist-contains.call",
    "collections-reverse.olist-index-of.call",
    "collections-reverse.olist-index-of.bad-result",
)
def test_searching_a_list(s):
    def odd(answer):
        def index(self, item):
            if isinstance(answer, BaseException):
                raise answer
            return answer

        return type("Odd", (list,), {"index": index})()

    def ask(name, m, item):
        return shown(s.status(f"fn_clbk_olist_{name}", m, item_for(item)))

    assert ask("contains", ["a"], "a") == (1, None) and ask("contains", ["a"], "b") == (0, None)
    assert ask("contains", odd(KeyError(1)), "a") == (-1, KeyError, "1")
    assert ask("index_of", ["a", "b"], "b") == (1, None)
    assert ask("index_of", ["a"], "b") == (-1, None)
    assert ask("index_of", odd(KeyError(1)), "a") == (-2, KeyError, "1")
    text = "the index (2147483648) is out of the INT32 range"
    assert ask("index_of", odd(2147483648), "a") == (-2, OverflowError, text)
    text = "argument should be integer or None, not 'str'"
    assert ask("index_of", odd("x"), "a") == (-2, TypeError, text)


@scene("collections-reverse.olist-write.wrappers")
def test_managed_lists_are_written(s):
    for name, wrapper in [
        ("ilist", "_IListWrapper"),
        ("arrlist", "_ArrListWrapper"),
        ("array", "_ArrayWrapper"),
    ]:
        w = s.function(f"fn_clbk_olist_write_clr_{name}", OBJECT, POINTER)(0x70)
        assert type(w) is getattr(s.interop, wrapper) and handle_of(w) == 0x70
        s.clear()
        del w
        assert s.calls("FreeInstance") == [[0x70]]


@scene(
    "collections-reverse.olist-write.invalid",
    refuse=[("IList", "Add"), ("ArrList", "Add"), ("Array", "SqLength")],
)
def test_an_invalid_list_releases_its_handle(s):
    for name in ("ilist", "arrlist", "array"):
        s.clear()
        write = s.function(f"fn_clbk_olist_write_clr_{name}", OBJECT, POINTER)
        assert "not found" in text_of(TypeError, write, 0x70)
        assert s.calls("FreeInstance") == [[0x70]]


@scene(
    "collections-reverse.oseq-get.value",
    "collections-reverse.oseq-get.failure",
    "collections-reverse.oseq-get.negative",
)
def test_items_of_a_sequence(s):
    def ask(value, index):
        return shown(s.status("fn_clbk_oseq_get_item", value, index, place))

    record = s.native.VariantArg()
    place = ctypes.addressof(record)
    thing = [1]
    pair = ("a", thing)
    before = sys.getrefcount(thing)
    assert ask(pair, 1) == (0, None) and (record.kind, record.value) == (15, id(thing))
    assert sys.getrefcount(thing) == before + 1
    assert ask(pair, -1 & 0xFFFFFFFF) == (0, None) and record.value == id(thing)
    assert ask(pair, 2)[:2] == (-2, IndexError)
    odd = type("Odd", (), {"__getitem__": lambda self, i: 1 / 0, "__len__": lambda self: 1})()
    assert ask(odd, 0)[:2] == (-1, ZeroDivisionError)
    unknown = object()
    before = sys.getrefcount(unknown)
    box = (unknown,)
    assert ask(box, 0) == (-1, TypeError, "unknown variant type")
    assert sys.getrefcount(unknown) == before + 1


@scene(
    "collections-reverse.oseq-contains.found",
    "collections-reverse.oseq-contains.size-each-pass",
    "collections-reverse.oseq-contains.compare-fails",
    "collections-reverse.oseq-contains.fetch-fails",
    "collections-reverse.oseq-contains.operand-order",
    "collections-reverse.oseq-index-of.found",
    "collections-reverse.oseq-index-of.size-once",
    "collections-reverse.oseq-index-of.compare-fails",
    "collections-reverse.oseq-index-of.fetch-fails",
    "collections-reverse.oseq-index-of.empty-or-no-size",
)
def test_searching_a_sequence(s):
    def ask(name, q, item):
        return shown(s.status(f"fn_clbk_oseq_{name}", q, item_for(item)))

    nan = float("nan")
    for items, item, place in [(("a", "b"), "b", 1), ((nan,), nan, 0), ((1, 2.0), 2, 1)]:
        assert ask("contains", items, item) == (1, None)
        assert ask("index_of", items, item) == (place, None)
    assert ask("contains", ("a",), "b") == (0, None) and ask("index_of", ("a",), "b") == (-1, None)
    assert ask("index_of", (), "b") == (-1, None)

    class Shrinking:
        def __init__(self):
            self.items = [1, 2, 3]

        def __len__(self):
            return len(self.items)

        def __getitem__(self, index):
            return self.items[index]

    class Eater:
        def __eq__(self, other):
            seen.append(other)
            q.items.clear()
            return False

    class Failing:
        def __eq__(self, other):
            raise KeyError("compare")

    seen = []
    q = Shrinking()
    assert ask("contains", q, Eater()) == (0, None) and seen == [1]
    q = Shrinking()
    assert ask("index_of", q, Eater())[:2] == (-2, IndexError)
    assert ask("contains", (1,), Failing()) == (1, KeyError, "'compare'")
    assert ask("index_of", (1,), Failing()) == (0, KeyError, "'compare'")

    class Judge:
        def __eq__(self, other):
            judged.append((self, other))
            return False

    judged = []
    item, element = Judge(), Judge()
    assert ask("contains", (element,), item) == (0, None)
    assert ask("index_of", (element,), item) == (-1, None)
    assert [(a is item, b is element) for a, b in judged] == [(True, True)] * 2
    for failure in (IndexError, KeyError):

        def fail(self, index, failure=failure):
            raise failure("fetch")

        odd = type("Odd", (), {"__getitem__": fail, "__len__": lambda self: 1})()
        assert ask("contains", odd, "a")[:2] == (-1, failure)
        assert ask("index_of", odd, "a")[:2] == (-2, failure)

    def no_size(self):
        raise KeyError("size")

    odd = type("Odd", (), {"__getitem__": lambda self, i: 0, "__len__": no_size})()
    assert ask("index_of", odd, "a") == (-1, KeyError, "'size'")


@scene(
    "collections-reverse.iter-next.item",
    "collections-reverse.iter-next.end",
    "collections-reverse.iter-next.failure",
)
def test_stepping_an_iterator(s):
    out, record = POINTER(), s.native.VariantArg()

    def step(it):
        return shown(
            s.status("fn_clbk_iter_next", it, ctypes.addressof(out), ctypes.addressof(record))
        )

    def items():
        yield "a"
        yield object()

    def failing():
        raise KeyError("gone")
        yield

    it = items()
    assert step(it) == (0, None) and (record.kind, out.value) == (3, id("a"))
    assert step(it) == (2, TypeError, "unknown variant type")
    assert step(it) == (1, None) and step(it) == (1, None)
    assert step(failing()) == (2, KeyError, "'gone'")
    thing = [1]
    before = sys.getrefcount(thing)
    it = iter([thing])
    assert step(it) == (0, None)
    del it
    assert sys.getrefcount(thing) == before + 1


@scene(
    "collections-reverse.unicode-bytes.values",
    "collections-reverse.unicode-bytes.surrogates",
    "collections-reverse.unicode-bytes.subclass",
    "collections-reverse.unicode-bytes.not-str",
    "collections-reverse.unicode-bytes.encode-error",
)
def test_the_characters_of_a_str(s):
    owner, count, characters = POINTER(), ctypes.c_int32(), POINTER()
    addresses = [ctypes.addressof(x) for x in (owner, count, characters)]

    def ask(text):
        return shown(s.status("fn_clbk_ucol_get_unicode_bytes", text, *addresses))

    for text, units in [("abc", 3), ("\U0001F600", 2), ("", 0), (type("S", (str,), {})("xy"), 2)]:
        assert ask(text) == (1, None) and count.value == units
        held = ctypes.cast(owner.value, OBJECT).value
        assert held == text.encode("utf-16")
        assert characters.value == id(held) + bytes.__basicsize__ - 1 + 4
        if text == "abc":
            assert sys.getrefcount(held) == 3  # the name, the argument, and the one handed over
    assert ask(5.0) == (0, TypeError, "can't build Char from 'float'")
    assert ask("\ud800")[:2] == (0, UnicodeEncodeError)


@scene("collections-reverse.oseq-contains.null-item")
def test_an_item_may_be_null_without_an_error(s):
    s.method("ICol", "SqLength").returns(1)
    s.method("IList", "SqGetItem").returns(5)
    m = s.wrap(s.interop._IListWrapper, 0x10)
    wanted = (IndexError, "item is null")
    assert shown(s.status("fn_clbk_oseq_contains", m, item_for("a"))) == (-1, *wanted)
    assert shown(s.status("fn_clbk_oseq_index_of", m, item_for("a"))) == (-2, *wanted)

"""What comes out of a call by reference beside its result: all of it arrives, or none is kept."""

# flake8: noqa: F403, F405
from harness_scene import *

LOWER, UPPER, WHOLE = 0x5000, 0x6000, 0x7000


def divided(s, name, shade=7, refuse=None):
    """Calls a member with a result and four values that come out; gives what it raised, if it did.

    The order of the arguments: the sum, the text in and out, a class, a member, another class.
    """
    if refuse:
        type_name = f"WrpNs_Kelmor.WrpNs_Harness.WrpCs_{refuse[:8]}_{s.classes[refuse]}"
        s.script.refuse(type_name, "btp_TypeOf", assembly=ASSEMBLY)

    owned = s.new_ref(name)  # no name here: the function below is kept

    def give(frame):
        built, lower, number, upper = frame.integers[2:6]
        POINTER.from_address(built).value = owned
        POINTER.from_address(lower).value = LOWER
        ctypes.c_int32.from_address(number).value = shade
        POINTER.from_address(upper).value = UPPER
        frame.result = WHOLE

    s.on("References", "call_000_Divide", give)
    s.kept.clear()
    lists = [], [None], [], []
    try:
        result = s.harness.References.divide(5, *lists)
    except Exception as caught:
        assert lists == ([], [None], [], [])
        return caught
    return result, lists


def handle_of(wrapper):
    return POINTER.from_address(id(wrapper) + 16).value


@harness_scene()
def test_all_that_comes_out_stands_in_the_lists(s):
    from test_marshal_references import LOWER, UPPER, WHOLE, divided, handle_of

    name = "".join(["a ", "name"])
    before = sys.getrefcount(name)
    result, (text, lower, shade, upper) = divided(s, name)
    s.kept.clear()
    assert text == [name] and text[0] is name and sys.getrefcount(name) == before + 1
    assert shade == [s.harness.Shade.LIGHT]
    assert [handle_of(w) for w in (result, lower[0], upper[0])] == [WHOLE, LOWER, UPPER]
    kinds = s.harness.Square, s.harness.Counter, s.harness.Circle
    assert [type(w) for w in (result, lower[0], upper[0])] == list(kinds)
    assert s.freed() == []
    del result, text, lower, upper
    gc.collect()
    assert sorted(s.freed()) == [LOWER, UPPER, WHOLE]
    assert sys.getrefcount(name) == before


@harness_scene("marshal-records.lifetime.handle-released-when-unwrappable")
def test_no_handle_is_left_when_one_value_cannot_be_made(s):
    from test_marshal_references import LOWER, UPPER, WHOLE, divided

    name = "".join(["a ", "name"])
    before = sys.getrefcount(name)
    error = divided(s, name, shade=12345)
    s.kept.clear()
    assert type(error) is ValueError
    del error
    gc.collect()
    assert sorted(s.freed()) == [LOWER, UPPER, WHOLE]
    assert sys.getrefcount(name) == before


def unwrappable(s, kind):
    name = "".join(["a ", "name"])
    before = sys.getrefcount(name)
    error = divided(s, name, refuse=kind)
    s.kept.clear()
    assert type(error) is TypeError and "btp_TypeOf" in str(error)
    del error
    gc.collect()
    assert sorted(s.freed()) == [LOWER, UPPER, WHOLE]
    assert sys.getrefcount(name) == before


@harness_scene("marshal-records.lifetime.handle-released-when-unwrappable")
def test_a_result_that_cannot_be_wrapped_takes_the_others_with_it(s):
    from test_marshal_references import unwrappable

    unwrappable(s, "Square")


@harness_scene("marshal-records.lifetime.handle-released-when-unwrappable")
def test_the_first_object_that_cannot_be_wrapped_takes_the_others_with_it(s):
    from test_marshal_references import unwrappable

    unwrappable(s, "Counter")


@harness_scene("marshal-records.lifetime.handle-released-when-unwrappable")
def test_the_last_object_that_cannot_be_wrapped_takes_the_others_with_it(s):
    from test_marshal_references import unwrappable

    unwrappable(s, "Circle")


@harness_scene()
def test_an_object_that_was_built_before_an_error_is_given_back(s):
    name = "".join(["a ", "name"])
    before = sys.getrefcount(name)
    s.method("References", "call_000_Cut").raises(ValueError, "no").writes(
        2, struct.pack("<Q", s.new_ref(name))
    )
    s.kept.clear()
    head, length = [], []
    raised(ValueError, s.harness.References.cut, "a b", head, length)
    assert (head, length) == ([], [])
    assert sys.getrefcount(name) == before

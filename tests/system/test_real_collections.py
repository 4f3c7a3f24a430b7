"""Collections and streams between Python and live managed code, through the harness library."""

import io

import pytest

harness = pytest.importorskip(
    "kelmor.harness", reason="the harness module is not part of this build"
)
from kelmor.harness import Collections, Streams  # noqa: E402

pytestmark = pytest.mark.usefixtures("no_handle_leaks")


@pytest.mark.behaviour("binding-registry.identity-survives")
def test_a_python_object_comes_back_as_itself():
    items, stream = [1, "two", None], io.BytesIO(b"abc")
    assert Collections.echo_list(items) is items
    assert Streams.echo(stream) is stream


@pytest.mark.behaviour(
    "collections-arrays.conv.live-view", "collections-reverse.rules.list-live-view"
)
def test_a_python_list_is_a_live_view():
    items = [1, 2]
    assert Collections.add_to(items, "three") == 3
    assert items == [1, 2, "three"]
    items[0] = "one"
    assert Collections.join_by_index(items) == "one,2,three"
    assert Collections.count(items) == 3


@pytest.mark.behaviour("collections-generic.callbacks.error-to-managed")
def test_an_item_of_a_wrong_type_fails_the_managed_call():
    assert Collections.sum_array([1, 2, 3]) == 6
    with pytest.raises(RuntimeError) as failure:
        Collections.sum_array([1, "two", 3])
    assert str(failure.value).startswith("Proxy error(")
    assert "TypeError" in str(failure.value) and "str" in str(failure.value)


@pytest.mark.behaviour("collections-iterators.iter.for-loop")
@pytest.mark.parametrize("count", [0, 1, 5])
def test_a_for_loop_gives_the_items_in_order_and_ends(count):
    items = Collections.make_enumerable(count)
    assert [item for item in items] == list(range(count))
    iterator = iter(items)
    assert list(iterator) == list(range(count))
    with pytest.raises(StopIteration):
        next(iterator)


@pytest.mark.behaviour("collections-lists.behaviour.real-list")
def test_a_managed_list_behaves_as_a_list():
    ours, model = Collections.make_array_list(4), [0, 1, 2, 3]
    for work in (
        lambda items: items.__delitem__(0),
        lambda items: items[0],
        lambda items: items[-1],
        lambda items: list(items[::-1]),
        lambda items: items.append(4),
        lambda items: items.__delitem__(0),
        lambda items: items.index(3),
        lambda items: items.pop(),
        lambda items: items.reverse(),
        lambda items: list(items),
    ):
        assert work(ours) == work(model)
    assert list(ours) == model


@pytest.mark.behaviour("collections-reverse.real.list-parameter")
def test_managed_code_reads_searches_and_enumerates_a_python_list():
    assert Collections.join_all([1, "two", None, True]) == Collections.join_by_index(
        [1, "two", None, True]
    )
    assert Collections.join_all(number * 2 for number in range(4)) == "0,2,4,6"


@pytest.mark.behaviour("collections-reverse.real.bytesio-write")
def test_managed_code_reads_and_writes_file_objects(tmp_path):
    from kelmor.shellcommon import BytesAsStream

    target = io.BytesIO()
    Streams.write(target, b"hello")
    assert target.getvalue() == b"hello"
    path = tmp_path / "file"
    path.write_bytes(b"on disk")
    with path.open("rb") as file:
        assert Streams.read_all(file) == b"on disk"
    assert Streams.read_all(io.BytesIO(b"in memory")) == b"in memory"
    assert Streams.read_all(BytesAsStream(b"as a stream")) == b"as a stream"


class Full(io.RawIOBase):
    def writable(self):
        return True

    def write(self, data):
        raise OSError("no room for " + repr(bytes(data)))


@pytest.mark.behaviour(
    "collections-reverse.real.write-raises", "marshal-exceptions.callback-error.round-trip"
)
def test_an_exception_of_a_stream_comes_back_with_its_text():
    with pytest.raises(RuntimeError) as failure:
        Streams.write(Full(), b"hello")
    text = str(failure.value)
    assert text.startswith("Proxy error(")
    assert "Traceback (most recent call last):" in text
    assert "OSError: no room for b'hello'" in text
    assert failure.value.__context__ is None


@pytest.mark.behaviour("collections-streams.roundtrip.real")
def test_a_managed_stream_behaves_as_a_file():
    stream = Streams.make(b"")
    assert stream.write(b"hello") == 5
    assert stream.seek(0) == 0
    assert stream.read() == b"hello"
    assert stream.tell() == 5
    assert stream.truncate(2) == 2
    stream.seek(0)
    assert stream.read() == b"he"


@pytest.mark.behaviour("collections-streams.iter.lines")
def test_iteration_over_a_managed_stream_gives_lines():
    assert list(Streams.make(b"one\ntwo\nthree")) == [b"one\n", b"two\n", b"three"]


@pytest.mark.behaviour(
    "collections-iterators.iter.bound-classes", "collections-iterators.iterable.bound-classes"
)
def test_classes_may_be_enumerators_or_enumerables_themselves():
    launch, countdown = harness.Launch(), harness.Countdown()
    assert list(launch) == list(launch) == [3, 2, 1]
    assert iter(countdown) is countdown and next(countdown) == 3 and list(countdown) == [2, 1]
    countdown.reset()
    assert max(countdown) == 3
    assert Collections.join_all(harness.Launch()) == "3,2,1"

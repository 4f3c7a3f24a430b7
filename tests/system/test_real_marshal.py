"""What only the managed side can show of a value: how it reads, copies and gives it back."""

import ctypes
import datetime as dt
import decimal
import inspect
import subprocess
import sys
import textwrap

import pytest

harness = pytest.importorskip("kelmor.harness", reason="kelmor.harness was not built")
behaviour = pytest.mark.behaviour


@pytest.mark.parametrize(
    ("text", "units"),
    [
        pytest.param(
            "éÿ", 2, marks=behaviour("marshal-records.string-arg.managed-decodes-width-1")
        ),
        pytest.param(
            "€中", 2, marks=behaviour("marshal-records.string-arg.managed-decodes-width-2")
        ),
        pytest.param(
            "a😀", 3, marks=behaviour("marshal-records.string-arg.managed-decodes-width-4")
        ),
    ],
)
def test_a_text_of_each_width_is_decoded(text, units):
    assert harness.Texts.length(text) == units
    assert harness.Texts.echo(text) == text


@behaviour("marshal-bytes.to-clr.none-is-null-array")
def test_no_block_is_a_null_array():
    assert harness.Blocks.is_null(None) is True
    assert harness.Blocks.is_null(b"") is False
    assert harness.Blocks.length(b"") == 0
    assert harness.Blocks.echo(None) is None
    assert harness.Blocks.echo(b"") == bytearray()


@behaviour("marshal-records.lifetime.str-copied-by-managed")
def test_what_is_kept_of_an_argument_is_a_copy():
    name = "".join(["a name ", "of its own"])
    counter = harness.Counter(name)
    # Overwritten where it stands, as memory is that was freed and used again.
    header = sys.getsizeof("") - 1
    ctypes.memset(id(name) + header, ord("x"), len(name))
    assert counter.name == "a name of its own"
    assert name == "x" * 17
    block = bytearray(b"abc")
    stream = harness.Streams.make(block)
    block[:] = b"xyz"
    assert harness.Streams.read_all(stream) == b"abc"
    del block
    stream.seek(0)
    assert stream.read() == b"abc"


@behaviour("marshal-decimals.round-trip")
@pytest.mark.parametrize(
    ("text", "shown"),
    [
        ("1.50", "1.50"),
        ("-79228162514264337593543950335", "-79228162514264337593543950335"),
        ("1E-28", "1E-28"),
        ("0.00", "0"),
    ],
)
def test_a_decimal_survives_as_an_object(text, shown):
    value = harness.Variants.echo(decimal.Decimal(text))
    assert type(value) is decimal.Decimal
    assert value.as_tuple() == decimal.Decimal(shown).as_tuple()


def same(left, right):
    return (type(left), left, left.tzinfo) == (type(right), right, right.tzinfo)


@behaviour("marshal-dates.real.round-trip")
def test_dates_and_spans_survive():
    naive = dt.datetime(2021, 7, 4, 13, 45, 59, 123456)
    universal = naive.replace(tzinfo=dt.timezone.utc)
    for echo in (harness.Times.echo_date, harness.Variants.echo):
        assert same(echo(naive), naive)
    assert same(harness.Times.echo_date(universal), universal)
    assert harness.Variants.echo(universal) == universal
    away = naive.replace(tzinfo=dt.timezone(dt.timedelta(hours=2)))
    assert same(harness.Times.echo_date(away), away.astimezone(dt.timezone.utc))
    for span in (dt.timedelta(0), dt.timedelta(microseconds=-1), dt.timedelta(5, 6, 7)):
        assert harness.Times.echo_span(span) == span
        assert harness.Variants.echo(span) == span


def name_of_a_type():
    import ctypes

    import managed_side

    from kelmor import harness

    wrap = managed_side.wrap_library()

    def entry(method, restype, *arguments):
        address = ctypes.c_void_p()
        status = wrap.coreclr_wrap_create_delegate(
            b"WrpInterop.Kelmor.Harness",
            b"Kelmor.WrpGen.Interop.ExchangeHost",
            method.encode(),
            ctypes.byref(address),
        )
        assert status == 0
        return ctypes.PYFUNCTYPE(restype, *arguments)(address.value)

    pointer = ctypes.c_void_p
    name = entry("GetTypeName", pointer, pointer)
    counter = harness.Counter("x")
    handle = pointer.from_address(id(counter) + 16).value

    # As the module has wired it: a cell of the C library's heap over a counted string.
    cell = name(handle)
    characters = pointer.from_address(cell).value
    count = ctypes.c_uint64.from_address(characters - 24).value
    text = ctypes.string_at(characters, 2 * count).decode("utf-16-le")
    assert text == "Kelmor.Harness.Counter", text
    libc = ctypes.CDLL(None)
    libc.malloc_usable_size.argtypes = libc.free.argtypes = [pointer]
    assert 8 <= libc.malloc_usable_size(cell) < 64
    libc.free(cell)

    # Another builder is what makes the text from then on.
    seen = []

    def build(chars, length):
        seen.append(ctypes.string_at(chars, 2 * length).decode("utf-16-le"))
        return 0x1234

    builder = ctypes.PYFUNCTYPE(pointer, pointer, ctypes.c_int32)(build)
    entry("SetU16StrBuilderCallback", None, pointer)(ctypes.cast(builder, pointer))
    assert name(handle) == 0x1234 and seen == ["Kelmor.Harness.Counter"]
    print("done")


@behaviour("marshal-records.service.type-name-built-by-callback")
def test_the_name_of_a_type_is_built_by_the_callback():
    """In a process of its own: the callback cannot be put back."""
    program = textwrap.dedent(inspect.getsource(name_of_a_type)) + "\nname_of_a_type()\n"
    paths = f"import sys; sys.path[:0] = {sys.path!r}\n"
    run = subprocess.run([sys.executable, "-c", paths + program], capture_output=True, text=True)
    assert (run.returncode, run.stdout) == (0, "done\n"), run.stderr


@behaviour("marshal-exceptions.to-python.coreexceptions-are-plain")
def test_bound_exception_classes_are_plain_types():
    import kelmor.psd

    found = []

    def walk(module):
        for value in vars(module).values():
            if isinstance(value, type(module)) and value.__name__.startswith(module.__name__):
                walk(value)
            elif isinstance(value, type) and value.__module__ == module.__name__:
                found.append(value)

    walk(kelmor.psd.coreexceptions)
    assert kelmor.psd.coreexceptions.ImageLoadException in found
    assert [kind for kind in found if issubclass(kind, BaseException)] == []
    with pytest.raises(Exception) as caught:
        kelmor.psd.Image.load("/no/such/file.psd")
    assert type(caught.value) is RuntimeError

"""Wrappers over live managed objects: casts, equality, ownership, failures of members."""

import io
import pathlib
import subprocess
import sys
import textwrap
import weakref

import documents
import pytest

pytestmark = pytest.mark.usefixtures("no_handle_leaks")


@pytest.fixture(scope="module")
def content():
    """A document of this module's own making, as bytes."""
    from kelmor.psd.fileformats.psd import PsdImage

    target = io.BytesIO()
    with PsdImage(20, 10) as document:
        for name in ("one", "two", "three"):
            document.add_regular_layer().name = name
        document.save(target)
    return target.getvalue()


@pytest.fixture
def image(content, no_handle_leaks):
    from kelmor.psd import Image

    return Image.load(io.BytesIO(content))


def run(code, **options):
    command = [sys.executable, "-c", textwrap.dedent(code)]
    return subprocess.run(command, capture_output=True, text=True, timeout=120, **options)


@pytest.mark.behaviour("shell-entry.real.import")
def test_the_import_succeeds_and_the_process_ends_well():
    result = run("import kelmor.psd; print(kelmor.psd.VERSION)")
    assert (result.returncode, result.stdout, result.stderr) == (0, "24.11.0.0\n", "")


def test_load_gives_the_declared_class(image):
    from kelmor.psd import Image

    assert type(image) is Image
    assert (image.width, image.height) == (20, 10)
    assert not hasattr(image, "layers")


@pytest.mark.behaviour("binding-casts.cast-as.psd-image")
def test_a_cast_gives_a_wrapper_with_a_handle_of_its_own(image, live_handles):
    from kelmor.psd.fileformats.psd import PsdImage

    before = live_handles()
    result = PsdImage._cast_as(image)
    assert result.is_success and type(result.value) is PsdImage
    assert live_handles() == before + 1
    assert result.value.layers[0] is not None
    del result
    assert live_handles() == before
    assert image.width == 20


@pytest.mark.behaviour("binding-casts.cast-as.not-of-type")
def test_a_cast_to_what_the_object_is_not_fails_softly(image):
    from kelmor.psd.fileformats.psd.layers import Layer, TextLayer

    for wrong in (Layer, TextLayer):
        result = wrong._cast_as(image)
        assert not result.is_success and result.status == 0 and result.value is None
        assert not wrong._is_assignable(image)


@pytest.mark.behaviour("binding-wrapper.get-type.result")
def test_get_type_gives_the_type_of_the_sibling(image):
    from kelmor.typemodel import Type

    assert type(image.get_type()) is Type


@pytest.mark.behaviour("binding-wrapper.compare.same-managed-object")
def test_two_wrappers_of_one_object_are_equal_and_not_identical(image):
    document = documents.as_type(documents_psd_image(), image)
    first, second = document.layers[0], document.layers[0]
    assert first is not second
    assert first == second and hash(first) == hash(second)
    assert first != document.layers[1]
    assert image == document


def documents_psd_image():
    from kelmor.psd.fileformats.psd import PsdImage

    return PsdImage


@pytest.mark.behaviour("family-statics.struct.equality-value")
def test_default_values_are_equal():
    from kelmor.psd import Rectangle

    assert Rectangle() is not Rectangle()
    assert Rectangle() == Rectangle() and hash(Rectangle()) == hash(Rectangle())
    assert Rectangle(1, 2, 3, 4) == Rectangle(1, 2, 3, 4) != Rectangle(1, 2, 3, 5)


@pytest.mark.behaviour("collections-generic.array.iteration")
def test_iteration_over_an_array_gives_wrappers_of_its_class(image):
    from kelmor.harness import Collections
    from kelmor.psd.fileformats.psd.layers import Layer

    document = documents.as_type(documents_psd_image(), image)
    assert [type(layer) for layer in document.layers] == [Layer] * len(document.layers)
    assert {"one", "two", "three"} <= {layer.name for layer in document.layers}
    assert list(Collections.make_range(4)) == [0, 1, 2, 3]


@pytest.mark.behaviour("binding-wrapper.init.new-without-init-managed")
def test_a_wrapper_without_an_object_raises():
    code = """
        from kelmor.psd import Image, Rectangle
        from kelmor.psd.fileformats.psd import PsdImage
        for type_ in (Image, PsdImage):
            try:
                type_.__new__(type_).width
            except RuntimeError as failure:
                print(str(failure).startswith("Proxy error("))
    """
    result = run(code)
    assert (result.returncode, result.stdout) == (0, "True\nTrue\n"), result.stderr


@pytest.mark.behaviour("family-class.managed-exception.instance")
def test_a_managed_exception_leaves_the_wrapper_usable(image):
    document = documents.as_type(documents_psd_image(), image)
    with pytest.raises(RuntimeError, match=r"^Proxy error\([\w.]+\): .") as failure:
        document.save("/no/such/folder/x.psd")
    assert failure.value.__cause__ is None and failure.value.__context__ is None
    assert document.width == 20


@pytest.mark.behaviour("marshal-exceptions.no-unwinding")
def test_managed_exceptions_of_every_member_end_no_process(tmp_path):
    code = f"""
        import io
        from kelmor.psd import Image
        from kelmor.psd.fileformats.psd import PsdImage

        disposed = PsdImage(4, 4)
        with disposed:
            pass
        calls = [
            lambda: Image.load({str(tmp_path / "missing.psd")!r}),
            lambda: disposed.save(io.BytesIO()),
            lambda: PsdImage(-1, 4),
        ]
        for call in calls:
            try:
                call()
            except RuntimeError as failure:
                print("Proxy error(" in str(failure))
    """
    result = run(code)
    assert (result.returncode, result.stdout) == (0, "True\n" * 3), result.stderr


@pytest.mark.behaviour("marshal-records.error.managed-returns-null")
def test_calls_that_fail_leave_no_handles(image, live_handles):
    from kelmor.psd import Image
    from kelmor.psd.fileformats.psd import PsdImage

    before = live_handles()
    for _ in range(20):
        for call in (
            lambda: Image.load("/no/such/file"),
            lambda: Image.load(io.BytesIO(b"no document")),
            lambda: PsdImage(-1, -1),
            lambda: image.save("/no/such/folder/x.psd"),
        ):
            with pytest.raises(RuntimeError):
                call()
    assert live_handles() == before


@pytest.mark.behaviour("binding-wrapper.dealloc.at-exit")
@pytest.mark.parametrize("ending", ["", "raise SystemExit(3)", "import sys; sys.exit(3)"])
def test_live_wrappers_at_exit_do_no_harm(ending):
    code = f"""
        import kelmor.psd as psd
        from kelmor.psd.fileformats.psd import PsdImage
        document = PsdImage(8, 8)
        layers = document.layers
        iterator = iter(layers)
        cycle = [document]
        cycle.append(cycle)
        psd.kept = document
        {ending}
    """
    result = run(code)
    assert (result.returncode, result.stderr) == (3 if ending else 0, "")


def test_a_stream_dies_when_both_sides_are_collected(image, live_handles):
    class Marked(io.BytesIO):
        pass

    stream = Marked()
    watch = weakref.ref(stream)
    image.save(stream)
    del stream
    live_handles()  # collects on both sides
    assert watch() is None


@pytest.mark.behaviour("shell-entry.code.1007-assembly")
def test_a_missing_assembly_is_an_import_error(tmp_path):
    import kelmor

    # Copies of all folders but the one of the module: nothing else is missing.
    assemblies = pathlib.Path(kelmor.__file__).parent / "assemblies"
    for folder in ("gfxtypes", "typemodel"):
        (tmp_path / folder).mkdir()
        for path in (assemblies / folder).iterdir():
            (tmp_path / folder / path.name).symlink_to(path)
    code = f"""
        import os
        os.environ["NETCORE_WRAPPER_ASSEMBLY_DIR_kelmor"] = {str(tmp_path)!r}
        try:
            import kelmor.psd
        except ImportError as failure:
            print(failure)
            cause = failure.__cause__
            print(type(cause).__name__)
            print("GetTypeName" in str(cause), "Kelmor.WrpGen.Interop.ExchangeHost" in str(cause))
    """
    result = run(code)
    words = "One or more errors occurred while loading the module 'kelmor.psd' (-1007)"
    assert result.stdout.splitlines() == [words, "TypeError", "True True"], result.stderr

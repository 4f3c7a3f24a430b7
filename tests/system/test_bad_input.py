"""Wrong input is answered by the right error, and nothing is lost on the way."""

import io
import sys

import documents
import pytest

pytestmark = pytest.mark.usefixtures("no_handle_leaks")


@pytest.fixture
def image_class():
    from kelmor.psd import Image

    return Image


@pytest.fixture(scope="module")
def content():
    for truth in documents.truths():
        if documents.short_name(truth) == "slices.psd":
            return documents.path_of(truth).read_bytes()
    pytest.skip(documents.WITHOUT_CORPUS)


def proxy_error(failure):
    text = str(failure.value)
    assert text.startswith("Proxy error("), text
    return text


def test_a_missing_file_is_named(image_class, tmp_path):
    missing = tmp_path / "missing.psd"
    with pytest.raises(RuntimeError) as failure:
        image_class.load(str(missing))
    assert "FileNotFoundException" in proxy_error(failure)
    assert str(missing) in str(failure.value)


def test_a_folder_is_no_document(image_class, tmp_path):
    with pytest.raises(RuntimeError) as failure:
        image_class.load(str(tmp_path))
    proxy_error(failure)


@pytest.mark.parametrize("content", [b"", b"8", b"8BPS", b"GIF89a" + bytes(100), bytes(1000)])
def test_what_is_no_document_is_refused(image_class, content):
    with pytest.raises(RuntimeError) as failure:
        image_class.load(io.BytesIO(content))
    proxy_error(failure)


def test_groups_nested_beyond_every_program_are_refused(image_class):
    record = bytes(18) + b"8BIMnorm" + bytes(4)
    records = b"".join(record + extra([b"8BIMlsct", 4, kind]) for kind in [3] * 5000 + [1] * 5000)
    info = (10_000).to_bytes(2, "big") + records
    layers = len(info).to_bytes(4, "big") + info
    head = b"8BPS" + bytes([0, 1] + [0] * 6 + [0, 3, 0, 0, 0, 1, 0, 0, 0, 1, 0, 8, 0, 3])
    content = head + bytes(8) + len(layers).to_bytes(4, "big") + layers + bytes(5)
    with pytest.raises(RuntimeError, match="nested more than 100 deep"):
        image_class.load(io.BytesIO(content))


def extra(block):
    key, *numbers = block
    block = key + b"".join(number.to_bytes(4, "big") for number in numbers)
    length = 12 + len(block)
    return length.to_bytes(4, "big") + bytes(12) + block


def test_a_wrong_argument_lists_the_failure_of_every_signature(image_class):
    with pytest.raises(TypeError) as failure:
        image_class.load(42)
    (messages,) = failure.value.args
    assert isinstance(messages, list) and len(messages) == 4


@pytest.mark.parametrize("arguments", [(), (None, None, None), ("a", "b"), (object(),), (b"x",)])
def test_other_wrong_arguments_are_type_errors(image_class, arguments):
    with pytest.raises(TypeError):
        image_class.load(*arguments)


class Raising(io.RawIOBase):
    """A file object that raises after some bytes."""

    def __init__(self, content, calls):
        self._inner = io.BytesIO(content)
        self._calls = calls

    def _count(self):
        self._calls -= 1
        if self._calls < 0:
            raise OSError("the disk is gone")

    def readable(self):
        return True

    def writable(self):
        return True

    def seekable(self):
        return True

    def readinto(self, buffer):
        self._count()
        return self._inner.readinto(buffer)

    def write(self, data):
        self._count()
        return self._inner.write(data)

    def seek(self, offset, whence=0):
        return self._inner.seek(offset, whence)

    def tell(self):
        return self._inner.tell()


@pytest.mark.parametrize("calls", [0, 1, 2])
def test_a_stream_that_raises_while_read_is_an_error(image_class, content, calls):
    with pytest.raises(RuntimeError) as failure:
        documents.load(Raising(content, calls))
    assert "the disk is gone" in proxy_error(failure)


def test_a_stream_that_raises_while_written_is_an_error(content):
    with documents.load(io.BytesIO(content)) as document:
        with pytest.raises(RuntimeError) as failure:
            document.save(Raising(b"", 0))
        assert "the disk is gone" in proxy_error(failure)
        target = io.BytesIO()
        document.save(target)  # the document is unharmed
    assert target.getvalue() == content


def test_a_png_into_a_stream_that_raises_is_an_error(content):
    from kelmor.psd.imageoptions import PngOptions

    with documents.load(io.BytesIO(content)) as document:
        with pytest.raises(RuntimeError) as failure:
            document.save(Raising(b"", 0), PngOptions())
    assert "the disk is gone" in proxy_error(failure)


class Short(io.RawIOBase):
    """A file object that hands out and takes a few bytes at a time."""

    def __init__(self, content=b"", most=7):
        self.inner = io.BytesIO(content)
        self._most = most

    def readable(self):
        return True

    def seekable(self):
        return True

    def readinto(self, buffer):
        return self.inner.readinto(memoryview(buffer)[: self._most])

    def seek(self, offset, whence=0):
        return self.inner.seek(offset, whence)

    def tell(self):
        return self.inner.tell()


def test_a_stream_that_comes_back_short_is_read_to_its_end(content):
    with documents.load(Short(content, most=4096)) as document:
        target = io.BytesIO()
        document.save(target)
    assert target.getvalue() == content


def test_the_file_object_is_given_back(content, live_handles):
    stream = io.BytesIO(content)
    before = sys.getrefcount(stream)
    with documents.load(stream) as document:
        assert document.width > 0
    del document
    live_handles()  # collects on both sides
    assert sys.getrefcount(stream) == before
    assert not stream.closed


def test_a_disposed_document_refuses(content):
    with documents.load(io.BytesIO(content)) as document:
        pass
    assert document.disposed
    with pytest.raises(RuntimeError) as failure:
        document.save(io.BytesIO())
    assert "ObjectDisposedException" in proxy_error(failure)


def test_a_wrapper_without_an_object_raises(image_class):
    from kelmor.psd.fileformats.psd import PsdImage

    empty = PsdImage.__new__(PsdImage)
    with pytest.raises(RuntimeError) as failure:
        empty.width
    proxy_error(failure)


@pytest.mark.parametrize("value", [-1, 256, 2**31, "1", None, 1.5])
def test_an_opacity_out_of_range_is_refused(content, value):
    with documents.load(io.BytesIO(content)) as document:
        layer = documents.first_layer(document)
        before = layer.opacity
        with pytest.raises((TypeError, OverflowError)):
            layer.opacity = value
        assert layer.opacity == before


class Stubborn(io.RawIOBase):
    """A file object that gives the same answer to every write."""

    def __init__(self, answer):
        self._answer = answer

    def writable(self):
        return True

    def write(self, data):
        return self._answer


@pytest.mark.parametrize("answer", [None, 0, -3, 2**31 - 1, "many"])
def test_a_stream_that_answers_nonsense_to_a_write_is_an_error(content, answer):
    with documents.load(io.BytesIO(content)) as document:
        with pytest.raises(RuntimeError) as failure:
            document.save(Stubborn(answer))
        proxy_error(failure)


@pytest.mark.parametrize("source", [io.StringIO("8BPS"), io.StringIO, b"8BPS", 1.5])
def test_what_is_no_binary_stream_is_a_type_error(image_class, content, source):
    with pytest.raises(TypeError, match="can't build Stream"):
        image_class.load(source)
    with documents.load(io.BytesIO(content)) as document:
        with pytest.raises(TypeError, match="can't build Stream"):
            document.save(source)


def test_a_file_opened_for_reading_is_not_written(content, tmp_path):
    path = tmp_path / "read only.psd"
    path.write_bytes(content)
    with open(path, "rb") as file, documents.load(file) as document:
        for save in (lambda: document.save(file), document.save):
            with pytest.raises(RuntimeError, match="ImageSaveException"):
                save()
    assert path.read_bytes() == content


def test_a_document_is_written_back_to_the_file_object_that_it_came_from(content, tmp_path):
    path = tmp_path / "back.psd"
    path.write_bytes(b"before" + content)
    with open(path, "r+b") as file:
        file.seek(6)
        with documents.load(file) as document:
            documents.first_layer(document).name = "Changed"
            document.save()
    assert path.read_bytes()[:6] == b"before"
    with documents.load(io.BytesIO(path.read_bytes()[6:])) as document:
        assert documents.first_layer(document).name == "Changed"


def test_saving_and_walking_twice_gives_the_same(content):
    from kelmor.psd.imageoptions import PngOptions

    with documents.load(io.BytesIO(content)) as document:
        documents.first_layer(document).opacity = 9
        psd, png = ([io.BytesIO(), io.BytesIO()] for _ in "12")
        for stream, picture in zip(psd, png):
            document.save(stream)
            document.save(picture, PngOptions())
        layers = document.layers
        names = [layer.name for layer in layers]
        assert [layer.name for layer in layers] == names
        assert [layer.name for layer in document.layers] == names
    assert psd[0].getvalue() == psd[1].getvalue()
    assert png[0].getvalue() == png[1].getvalue()


def test_an_unwritable_path_is_an_error(content, tmp_path):
    with documents.load(io.BytesIO(content)) as document:
        with pytest.raises(RuntimeError) as failure:
            document.save(str(tmp_path / "no" / "such" / "folder.psd"))
    assert "DirectoryNotFoundException" in proxy_error(failure)
    assert f"'{tmp_path / 'no' / 'such' / 'folder.psd'}'" in str(failure.value)


def test_refused_loads_leave_no_references(image_class, live_handles):
    stream = io.BytesIO(b"no document")
    before = sys.getrefcount(stream)
    for _ in range(50):
        with pytest.raises(RuntimeError):
            image_class.load(stream)
    live_handles()  # collects on both sides: managed adapters hold the stream until then
    assert sys.getrefcount(stream) == before

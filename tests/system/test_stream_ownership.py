"""Who closes a Python file that managed code was given: its owner, and nobody before that."""

import io

import kelmor.psd as psd
import pytest

pytestmark = pytest.mark.usefixtures("no_handle_leaks")


@pytest.mark.parametrize(
    ("arguments", "keywords"),
    [
        pytest.param((True,), {}, id="by-place"),
        pytest.param((), {"dispose_stream": True}, id="by-keyword"),
    ],
)
def test_a_container_that_owns_the_file_closes_it(arguments, keywords):
    file = io.BytesIO(b"content")
    with psd.StreamContainer(file, *arguments, **keywords):
        assert not file.closed
    assert file.closed


@pytest.mark.parametrize(
    "arguments", [pytest.param((), id="unsaid"), pytest.param((False,), id="no")]
)
def test_a_container_that_was_lent_the_file_leaves_it_open(arguments):
    file = io.BytesIO(b"content")
    with psd.StreamContainer(file, *arguments):
        pass
    assert not file.closed and file.getvalue() == b"content"


def test_a_property_cannot_be_deleted():
    header = psd.xmp.XmpHeaderPi("one")
    with pytest.raises(AttributeError, match="can't delete attribute 'guid'"):
        del header.guid
    assert header.guid == "one"


def test_a_file_that_cannot_be_closed_disturbs_nothing(monkeypatch):
    class Broken(io.BytesIO):
        def close(self):
            super().close()
            raise OSError("cannot close")

    seen = []
    monkeypatch.setattr("sys.unraisablehook", lambda raised: seen.append(str(raised.exc_value)))
    file = Broken(b"content")
    with psd.StreamContainer(file, True):
        pass
    assert file.closed and seen == ["cannot close"]

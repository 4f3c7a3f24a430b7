"""A document that is loaded and saved without a change is the same file, byte for byte."""

import io

import documents


def test_saved_to_a_path_it_is_unchanged(readable_truth, tmp_path, no_handle_leaks):
    source = documents.path_of(readable_truth)
    target = tmp_path / source.name
    with documents.load(source) as document:
        document.save(str(target))
    assert target.read_bytes() == source.read_bytes()


def test_saved_with_its_original_options_it_is_unchanged(readable_truth, tmp_path):
    source = documents.path_of(readable_truth)
    target = tmp_path / source.name
    with documents.load(source) as document:
        document.save(str(target), document.get_original_options())
    assert target.read_bytes() == source.read_bytes()


def test_from_stream_to_stream_it_is_unchanged(readable_truth, no_handle_leaks):
    source = documents.path_of(readable_truth).read_bytes()
    target = io.BytesIO()
    with documents.load(io.BytesIO(source)) as document:
        document.save(target)
    assert target.getvalue() == source


def test_it_may_be_saved_over_its_own_file(layered_truth, tmp_path):
    source = documents.path_of(layered_truth)
    copy = tmp_path / source.name
    copy.write_bytes(source.read_bytes())
    with documents.load(copy) as document:
        document.save(str(copy))
    assert copy.read_bytes() == source.read_bytes()

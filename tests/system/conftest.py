"""Corpus files by what can be asked of them, and the count of live managed handles."""

import gc

import documents
import managed_side
import pytest

SETS = {
    "readable": documents.readable,
    "merged": documents.has_merged_truth,
    "damaged": lambda truth: not documents.readable(truth),
    "layered": lambda truth: documents.readable(truth) and truth.get("layers"),
}


def pytest_generate_tests(metafunc):
    """A test that takes `<set>_truth` runs once for every file of that set of the corpus."""
    for name, belongs in SETS.items():
        argument = f"{name}_truth"
        if argument in metafunc.fixturenames:
            found = [truth for truth in documents.truths() if belongs(truth)]
            skip = pytest.mark.skip(reason=documents.WITHOUT_CORPUS)
            rows = found or [pytest.param(None, marks=skip)]
            ids = [documents.short_name(truth) for truth in found] or ["no corpus"]
            metafunc.parametrize(argument, rows, ids=ids)


@pytest.fixture(scope="session")
def live_handles():
    """Counts the handles that are alive when all garbage of both sides is gone."""
    import kelmor.psd  # noqa: F401  (starts the runtime)

    side = managed_side.ManagedSide("WrpInterop.Kelmor.PSD")

    def count():
        gc.collect()
        side.collect()
        return side.live_handles()

    return count


@pytest.fixture
def no_handle_leaks(request, live_handles):
    """No managed handle is left over. Fixtures that hold wrappers must ask for this one first."""
    before = live_handles()
    yield
    request.node.funcargs.clear()  # it keeps the values of fixtures that have ended
    after = live_handles()
    # Fewer when an earlier test had failed: its traceback has kept wrappers until now.
    assert after <= before, f"{after - before} managed handles are left"

"""Property tests: the real runtime through kelmor.harness, and how many cases were run."""

import collections

import pytest
from hypothesis import HealthCheck, settings

# The counting fixture is made once for all examples of a test, which is what it is for.
settings.register_profile("counted", suppress_health_check=[HealthCheck.function_scoped_fixture])
settings.load_profile("counted")

CASES = collections.Counter()


@pytest.fixture
def count_case(request):
    """A function that counts one case (or several) for the file of the test that calls it."""
    name = request.node.path.stem.removeprefix("test_")

    def count(cases=1):
        CASES[name] += cases

    return count


def pytest_sessionfinish(session):
    # With xdist the cases are counted in the workers; each hands its figures to the controller.
    if hasattr(session.config, "workeroutput"):
        session.config.workeroutput["property_cases"] = dict(CASES)


def pytest_testnodedown(node, error):
    CASES.update(getattr(node, "workeroutput", {}).get("property_cases", {}))


def pytest_terminal_summary(terminalreporter):
    if CASES:
        figures = ", ".join(f"{name} {count:,}" for name, count in sorted(CASES.items()))
        terminalreporter.write_line(f"property cases: {figures}; {sum(CASES.values()):,} in all")

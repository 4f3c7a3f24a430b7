"""What holds for all tests: the signals that they inherit, and the behaviours that they claim."""

import signal

# Python itself ignores these, and gives them back to its children.
IGNORED_BY_PYTHON = {signal.SIGPIPE, signal.SIGXFSZ}


def pytest_configure():
    # A shell makes a job in the background ignore Ctrl-C, and so would every process of the tests.
    for number in signal.valid_signals() - IGNORED_BY_PYTHON:
        if signal.getsignal(number) == signal.SIG_IGN:
            back = signal.default_int_handler if number == signal.SIGINT else signal.SIG_DFL
            signal.signal(number, back)


def pytest_collection_modifyitems(items):
    for item in items:
        ids = [name for mark in item.iter_markers("behaviour") for name in mark.args]
        if ids:
            item.user_properties.append(("behaviour", " ".join(ids)))

"""What the tests of the start share: its setters, its texts, looks at a chain of errors."""

from peer import ASSEMBLY

SETTERS = [
    "SetExceptionCallback",
    "SetCatchAndClearErrorCallback",
    "SetU16StrBuilderCallback",
    "SetPyStrBuilderCallback",
    "SetPyUnraisableStrBuilderCallback",
    "SetPyObjApiCallbacks",
    "SetPyStaticCallbacks",
    "SetPyGenericCallbacks",
    "SetPyBytesBuilderCallback",
]
NOT_FOUND = "The module not found or errors occurred while initializing it."


def numbered(code):
    return f"One or more errors occurred while loading the module 'kelmor.psd' ({code})"


def absent(name):
    return f"Unable to import module dependencies. Cannot import the {name} module. " + NOT_FOUND


def missing_method(service, method, code):
    return (
        f"While initializing the host for the '{service} (Assembly={ASSEMBLY})' type, an error "
        f"occurred - Method '{method}' not found (error={code})"
    )


def texts(shown):
    return [entry[:2] for entry in shown]


def linked(shown):
    """Whether the cause of each is its context too."""
    return [entry[2] for entry in shown]


def distinct(names):
    return list(dict.fromkeys(names))

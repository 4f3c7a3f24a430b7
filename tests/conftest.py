"""What a test claims to show goes into the report, where the conformance page finds it."""


def pytest_collection_modifyitems(items):
    for item in items:
        ids = [name for mark in item.iter_markers("behaviour") for name in mark.args]
        if ids:
            item.user_properties.append(("behaviour", " ".join(ids)))

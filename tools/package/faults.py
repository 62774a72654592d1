"""The fault that a releaser can do something about."""


class PackageFault(Exception):
    """Its text is one sentence that says what failed and what to do."""

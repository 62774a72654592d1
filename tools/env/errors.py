"""The fault that a person can do something about."""


class EnvironmentFault(Exception):
    """Its text is one sentence that says what failed and what to do."""

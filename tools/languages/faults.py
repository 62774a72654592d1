"""What is wrong with a text, said so that its translator finds the place."""


class TextFault(Exception):
    def __init__(self, path, what, name=None):
        super().__init__(f"{path}: {f'{name}: ' if name else ''}{what}")

"""Files and functions that a person can hold in mind."""
import ast
import re

from .tree import Finding

_FILE_LINES = 400
_FUNCTION_LINES = 60
_LENGTH_COUNTS = (".cpp", ".h", ".py", ".sh", ".cmake", "CMakeLists.txt")
_SCOPE = re.compile(r"\b(namespace|class|struct|union|enum|extern)\b")
_PARENTHESES = re.compile(r"\([^()]*\)")


def file_length(tree):
    """Rule file-length."""
    for file in tree.files.values():
        is_source = file.path.endswith(_LENGTH_COUNTS) or file.text.startswith("#!")
        if is_source and len(file.lines) > _FILE_LINES:
            yield Finding("file-length", file.path, 1, f"{len(file.lines)} lines, {_FILE_LINES} are the most")


def _kind(head):
    """What a brace opens that stands outside functions, judged by the text since the last statement."""
    flat = re.sub(r"\boperator\s*[^\s\w(]+", "operator", head)
    while (shorter := _PARENTHESES.sub(" @ ", flat)) != flat:
        flat = shorter
    if "@" not in flat and _SCOPE.search(flat):
        return "scope"
    if re.search(r"(?<![=!<>])=(?!=)", flat):
        return "value"
    # An empty head follows the last brace of a member initialiser.
    return "function" if "@" in flat or not flat.strip() else "value"


def cpp_blocks(code):
    """(first line, last line) of the outermost function bodies of C++ code without comments and texts."""
    code = re.sub(r"^[ \t]*#(?:[^\n\\]|\\.|\\\n)*", "", code, flags=re.MULTILINE)
    kinds, head, line, begin = [], "", 1, 0
    for letter in code:
        if letter == "{":
            inside = bool(kinds) and kinds[-1] != "scope"
            kinds.append("inner" if inside else _kind(head))
            if kinds[-1] == "function":
                begin = line
        elif letter == "}" and kinds:
            if kinds.pop() == "function":
                yield begin, line
        head = "" if letter in ";{}" else head + letter
        line += letter == "\n"


def _cpp_lengths(file):
    return ((first, last - first + 1) for first, last in cpp_blocks(file.code))


def _python_lengths(file):
    for node in ast.walk(ast.parse(file.text)):
        if isinstance(node, (ast.FunctionDef, ast.AsyncFunctionDef)):
            yield node.lineno, node.end_lineno - node.lineno + 1


def function_length(tree):
    """Rule function-length: the body with its braces."""
    for file in tree.files.values():
        lengths = _cpp_lengths(file) if file.is_cpp else _python_lengths(file) if file.path.endswith(".py") else ()
        for line, length in lengths:
            if length > _FUNCTION_LINES:
                yield Finding("function-length", file.path, line, f"{length} lines, {_FUNCTION_LINES} are the most")


RULES = {"file-length": file_length, "function-length": function_length}

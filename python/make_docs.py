"""Makes the rows of Docs.cpp of the package's hints: make_docs.py <__init__.pyi> <output>

Each row is the name of a class, function or member, its signature as inspect reads it, and its text.
The hints are so the one place where the module is described."""

import ast
import inspect
import sys


def signature(function):
    """Without types, which the hints have."""
    plain = ast.parse(ast.unparse(function)).body[0]
    for argument in [*plain.args.posonlyargs, *plain.args.args, *plain.args.kwonlyargs]:
        argument.annotation = None
    return f"({ast.unparse(plain.args)})"


def is_property(function):
    return any(ast.unparse(mark) == "property" for mark in function.decorator_list)


def text_after(body, i):
    follows = body[i + 1] if i + 1 < len(body) else None
    is_text = isinstance(follows, ast.Expr) and isinstance(follows.value, ast.Constant)
    return follows.value.value if is_text and isinstance(follows.value.value, str) else ""


def rows(body, prefix=""):
    for i, node in enumerate(body):
        if isinstance(node, ast.ClassDef):
            yield node.name, "", ast.get_docstring(node) or ""
            yield from rows(node.body, node.name + ".")
        elif isinstance(node, ast.FunctionDef) and not any(
            ast.unparse(mark).endswith(".setter") for mark in node.decorator_list
        ):
            sign = "" if is_property(node) else signature(node)
            if node.name.startswith("__") and node.name != "__geo_interface__":
                continue
            yield prefix + node.name, sign, ast.get_docstring(node) or ""
        elif isinstance(node, ast.AnnAssign) and prefix:
            yield prefix + node.target.id, "", inspect.cleandoc(text_after(body, i))


def quoted(text):
    return 'R"doc(' + text + ')doc"'


hints, output = sys.argv[1:]
with open(hints, encoding="utf-8") as file:
    tree = ast.parse(file.read())
with open(output, "w", encoding="utf-8") as file:
    for name, sign, text in rows(tree.body):
        if sign or text:
            file.write(f"{{{quoted(name)}, {quoted(sign)}, {quoted(text)}}},\n")

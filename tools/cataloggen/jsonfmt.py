"""Writes catalog documents the way they are kept in the repository: objects
one key a line, short lists of plain values on one line, so that a diff
between two releases shows the panes that changed and little else."""

import json

WIDTH = 120


def _scalar(value):
    return not isinstance(value, (dict, list))


def _inline(value):
    return json.dumps(value, ensure_ascii=False, separators=(", ", ": "))


def _fits_inline(value):
    if _scalar(value):
        return True
    if isinstance(value, list):
        # Groups of ids get a line each; colours stay together.
        return all(_scalar(v) or (isinstance(v, list) and all(_scalar(w) and not isinstance(w, str) for w in v))
                   for v in value)
    return False


def _write(value, indent, lead):
    pad = " " * indent
    if isinstance(value, dict):
        if not value:
            return "{}"
        lines = [f'{pad}  {json.dumps(k, ensure_ascii=False)}: {_write(v, indent + 2, len(pad) + len(k) + 6)}'
                 for k, v in value.items()]
        return "{\n" + ",\n".join(lines) + "\n" + pad + "}"
    if isinstance(value, list):
        if not value:
            return "[]"
        if _fits_inline(value) and lead + len(_inline(value)) <= WIDTH:
            return _inline(value)
        lines = [pad + "  " + _write(v, indent + 2, indent + 2) for v in value]
        return "[\n" + ",\n".join(lines) + "\n" + pad + "]"
    return _inline(value)


def dumps(document):
    return _write(document, 0, 0) + "\n"

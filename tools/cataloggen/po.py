"""The msgids of a gettext .po file, as a program would look them up: with
the context and U+0004 in front when there is one."""

import ast


def _text(pieces):
    return "".join(ast.literal_eval(piece) for piece in pieces)


def msgids(path):
    ids, current, field, context = set(), {}, None, None
    try:
        with open(path, encoding="utf-8") as f:
            lines = f.read().splitlines() + [""]
    except OSError:
        return ids
    for line in lines:
        line = line.strip()
        if line.startswith("#~"):
            continue  # obsolete entries are not in the built catalog
        for key in ("msgctxt", "msgid_plural", "msgid", "msgstr"):
            if line.startswith(key + " ") or line.startswith(key + "["):
                field = key
                current.setdefault(key, []).append(line[line.index('"'):])
                break
        else:
            if line.startswith('"') and field:
                current[field].append(line)
            elif not line:
                if "msgid" in current:
                    msgid = _text(current["msgid"])
                    if msgid:
                        context = _text(current["msgctxt"]) if "msgctxt" in current else None
                        ids.add(f"{context}\u0004{msgid}" if context is not None else msgid)
                current, field = {}, None
    return ids

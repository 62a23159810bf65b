"""Printable text for arbitrary bytes, and back.

Bytes that read as printable UTF-8 stand for themselves; a backslash is written \\\\, a tab \\t, a
carriage return \\r and every other byte \\xHH. Different bytes never give the same text.
"""

import re

_ESCAPE = re.compile(r"\\(\\|t|r|x[0-9A-Fa-f]{2}|.?)", re.DOTALL)
_SHORT = {"\\": "\\\\", "\t": "\\t", "\r": "\\r"}
_SHORT_BACK = {"\\": b"\\", "t": b"\t", "r": b"\r"}


class EscapeError(ValueError):
    """A backslash followed by something that is no escape."""


def escape_text(data: bytes, extra: str = "") -> str:
    """The text for `data`; a character of `extra` is preceded by a backslash.

    unescape_text knows nothing of `extra`: its users take those backslashes off themselves."""
    parts = []
    for char in data.decode("utf-8", "surrogateescape"):
        if char in _SHORT:
            parts.append(_SHORT[char])
        elif char in extra:
            parts.append("\\" + char)
        elif char.isprintable():
            parts.append(char)
        else:
            parts.extend(f"\\x{byte:02x}" for byte in char.encode("utf-8", "surrogateescape"))
    return "".join(parts)


def unescape_text(text: str) -> bytes:
    """The bytes for `text`. Raises EscapeError at a backslash that begins no escape."""
    result = bytearray()
    end = 0
    for match in _ESCAPE.finditer(text):
        result += text[end : match.start()].encode("utf-8")
        body = match.group(1)
        if body in _SHORT_BACK:
            result += _SHORT_BACK[body]
        elif len(body) == 3:
            result.append(int(body[1:], 16))
        else:
            raise EscapeError(f"unknown escape \\{body} in: {text}")
        end = match.end()
    return bytes(result + text[end:].encode("utf-8"))

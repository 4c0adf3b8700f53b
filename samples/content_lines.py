"""How calendars and contacts write a line."""


def escaped(text):
    return text.replace("\\", "\\\\").replace("\n", "\\n").replace(",", "\\,").replace(";", "\\;")


def folded(line, width=75):
    """Lines of at most width bytes, cut between characters."""
    pieces, piece = [], b""
    for character in line:
        raw = character.encode()
        if len(piece) + len(raw) > width:
            pieces.append(piece)
            piece = b" "
        piece += raw
    return b"\r\n".join(pieces + [piece]) + b"\r\n"

"""Registry data in the registry editor's form (.reg files)."""
from pathlib import Path

HEADER = "Windows Registry Editor Version 5.00"


def merged(items):
    """One file's bytes, as the registry editor writes them: files, or text below the first line."""
    parts = [body(item) if isinstance(item, Path) else item for item in items]
    text = "\n".join(["\ufeff" + HEADER, "", *parts, ""])
    return text.replace("\r\n", "\n").replace("\n", "\r\n").encode("utf-16-le", "surrogatepass")


def body(file):
    """What a file holds below its first line. It may be UTF-8 or, as the registry editor writes it,
    UTF-16."""
    data = file.read_bytes()
    try:
        text = data.decode("utf-16" if data.startswith(b"\xff\xfe") else "utf-8-sig")
    except UnicodeError as error:
        raise ValueError(f"{file} is damaged: {error}") from error
    first, _, rest = text.partition("\n")
    if first.strip() not in (HEADER, "REGEDIT4"):
        raise ValueError(f"{file} is no registry file: it does not begin with \"{HEADER}\"")
    return rest

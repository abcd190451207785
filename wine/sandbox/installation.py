"""Puts an installation of the library into a Wine prefix: files from a list, registry data, the
viewers of documents, the class that shows HTML."""
from pathlib import Path

from .places import DEMO, HTML_DOCUMENT, STUB

HTML_CLASS = r"HKEY_LOCAL_MACHINE\Software\Classes\CLSID\{25336920-03F9-11CF-8FD0-00AA00686F13}"


def install(prefix, name, dpi, registry=None, managed=False, gecko=False):
    """The viewers, the demonstration installation of that name, and a file with registry data; None
    leaves one out. managed leaves the windows to the desktop's window manager, gecko the HTML class
    as Wine has it."""
    data = [DEMO / "viewers.reg"]
    lay_files(prefix, DEMO / "viewers.txt")
    if name:
        lay_files(prefix, DEMO / name / "files.txt")
        data.append(DEMO / name / "registry.reg")
    if registry:
        data.append(Path(registry))
    prefix.import_registry(*data, settings(dpi, managed, gecko))


def lay_files(prefix, files):
    """Makes the files of a list on drive C. The form of a list: see demo/development/files.txt."""
    folder = prefix.drive
    for line in files.read_text(encoding="utf-8").splitlines():
        kind, _, path = line.strip().partition(" ")
        path = path.strip()
        target = folder / path
        if kind == "in":
            folder = prefix.drive / path
        elif kind == "folder":
            target.mkdir(parents=True, exist_ok=True)
        elif kind in ("file", "program"):
            target.parent.mkdir(parents=True, exist_ok=True)
            # What stands there may be a link to a file that other prefixes share.
            target.unlink(missing_ok=True)
            if kind == "program":
                target.symlink_to(STUB)
            else:
                target.write_text(f"Part of the demonstration installation: {path}\n", "utf-8")
        elif kind and not kind.startswith("#"):
            raise ValueError(f"{files}: unknown kind '{kind}' ({path})")


def settings(dpi, managed, gecko):
    """What is set besides an installation."""
    text = (f'[HKEY_CURRENT_USER\\Control Panel\\Desktop]\n"LogPixels"=dword:{dpi:08x}\n\n'
            '[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]\n'
            f'"Managed"="{"Y" if managed else "N"}"\n\n')
    if not gecko:
        library = windows_path(HTML_DOCUMENT).replace("\\", "\\\\")
        text += f'[{HTML_CLASS}\\InprocServer32]\n@="{library}"\n'
    return text


def windows_path(file):
    return "Z:" + str(file).replace("/", "\\")

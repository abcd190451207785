"""The installer: a Windows Installer package made with wixl, with the same bytes every time."""
import calendar
import hashlib
import os
import re
import shutil
import struct
import tempfile
from pathlib import Path
from string import Template
from xml.sax.saxutils import escape

from . import product
from .tools import Failed, run

TEMPLATE = Path(__file__).with_name("installer.wxs.in")
ICON = product.ROOT / "res/korcontrolcenter.ico"
LAUNCHER = "korcontrolcenter.exe"
ENGLISH = 1033
FOLDER_KEY = r"Software\Vantrel\Control Center"
HUNDRED_NANOSECONDS_TO_1970 = 116444736000000000

# An upgrade, a repair and a removal take the folder that was chosen at first, unless one is given; the
# list of installed programs shows it.
SET_PROPERTY = 51
FOLDER_ROWS = (
    "INSERT INTO `CustomAction` (`Action`, `Type`, `Source`, `Target`) "
    f"VALUES ('KeepFolder', {SET_PROPERTY}, 'INSTALLDIR', '[PREVIOUSDIR]')",
    "INSERT INTO `CustomAction` (`Action`, `Type`, `Source`, `Target`) "
    f"VALUES ('NoteFolder', {SET_PROPERTY}, 'ARPINSTALLLOCATION', '[INSTALLDIR]')",
    "INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) "
    "VALUES ('KeepFolder', 'PREVIOUSDIR AND NOT INSTALLDIR', 60)",
    "INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('NoteFolder', 1010)",
    "UPDATE `Property` SET `Value` = 'INSTALLDIR;PREVIOUSDIR;WIX_DOWNGRADE_DETECTED;WIX_UPGRADE_DETECTED' "
    "WHERE `Property` = 'SecureCustomProperties'",
    # wixl takes the folder of the component instead of the named one.
    "DELETE FROM `CreateFolder`",
    f"INSERT INTO `CreateFolder` (`Directory_`, `Component_`) VALUES ('MAKERDIR', '{LAUNCHER}')",
)


def make(file, files, version):
    """Writes the installer of {name: bytes}; of the names, the launcher's is one."""
    with tempfile.TemporaryDirectory() as folder:
        stage = Path(folder)
        for name, data in files.items():
            write(stage / name, data)
        write(stage / "product.ico", ICON.read_bytes())
        source = definition(files, version)
        write(stage / "installer.wxs", source.encode())
        run("wixl", "--arch", "x64", "--output", "made.msi", "installer.wxs", cwd=stage)
        run("msibuild", "made.msi", "-q", *rows(files, version), cwd=stage)
        settle(stage / "made.msi", product.identity("package", source, *map(digest, files.values())))
        shutil.copyfile(stage / "made.msi", file)


def write(path, data):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(data)
    # The cabinet keeps the files' times.
    os.utime(path, (product.moment(),) * 2)


def digest(data):
    return hashlib.sha256(data).hexdigest()


def product_code(version):
    return product.identity("product", version)


def upgrade_code():
    return "{" + str(product.UPGRADE_CODE).upper() + "}"


def component_guid(name):
    """Each file is a component of its own, the same one in all versions."""
    return product.identity("component", name)


def file_id(name):
    return re.sub(r"[^A-Za-z0-9_.]", "_", name)


def definition(files, version):
    """wixl's input."""
    maker_folder, product_folder = product.FOLDERS
    names = {key: escape(value) for key, value in (
        ("name", product.NAME), ("maker", product.MAKER), ("version", version),
        ("maker_folder", maker_folder), ("product_folder", product_folder))}
    names["product_code"] = product_code(version)
    names["upgrade_code"] = upgrade_code()
    names["folder_key"] = FOLDER_KEY
    names["components"] = "\n".join(folder_of_components(files, "") + folder_of_components(files, "docs"))
    names["references"] = "\n".join(f'<ComponentRef Id="{file_id(name)}"/>' for name in sorted(files))
    return Template(TEMPLATE.read_text("utf-8")).substitute(names)


def folder_of_components(files, folder):
    lines = [component(name) for name in sorted(files) if name.rpartition("/")[0] == folder]
    return [f'<Directory Id="{folder}" Name="{folder}">', *lines, "</Directory>"] if folder else lines


def component(name):
    extra = ""
    if name == LAUNCHER:
        # Not advertised: a click starts the program and never the installer.
        extra = (f'<Shortcut Id="menu" Directory="ProgramMenuFolder" Name="{escape(product.NAME)}"'
                 f' Target="[INSTALLDIR]{LAUNCHER}" WorkingDirectory="INSTALLDIR" Icon="product.ico"/>'
                 # Removed with it, if nobody else has put something there.
                 '<CreateFolder Directory="MAKERDIR"/>'
                 f'<RegistryValue Root="HKLM" Key="{FOLDER_KEY}" Name="Folder" Type="string" Value="[INSTALLDIR]"/>')
    return (f'<Component Id="{file_id(name)}" Guid="{component_guid(name)}" Win64="yes">'
            f'<File Id="{file_id(name)}" Source="{name}" KeyPath="yes"/>{extra}</Component>')


def rows(files, version):
    """What wixl leaves out: the programs' versions, by which Windows decides what is to be replaced, in the
    place of their hashes; the folder."""
    for name in sorted(files):
        if name.endswith(".exe"):
            yield f"DELETE FROM `MsiFileHash` WHERE `File_` = '{file_id(name)}'"
            yield (f"UPDATE `File` SET `Version` = '{version}.0', `Language` = '{ENGLISH}' "
                   f"WHERE `File` = '{file_id(name)}'")
    yield from FOLDER_ROWS


def settle(file, package_code):
    """Replaces what wixl draws by chance or takes from the clock: the package's code and two times."""
    summary = run("msiinfo", "export", file, "_SummaryInformation")
    made = re.search(r"\{[0-9A-F-]{36}\}", summary)[0]
    data = replaced(file.read_bytes(), made.encode(), package_code.encode(), 1)
    times = re.findall(r"^1[23]\t(\d+)/(\d+)/(\d+) (\d+):(\d+):(\d+)", summary, re.MULTILINE)
    for time in set(times):
        made = calendar.timegm(tuple(map(int, time)))
        data = replaced(data, file_time(made), file_time(product.moment()), times.count(time))
    file.write_bytes(data)


def file_time(moment):
    return struct.pack("<Q", moment * 10**7 + HUNDRED_NANOSECONDS_TO_1970)


def replaced(data, old, new, times):
    if data.count(old) != times:
        raise Failed(f"the installer has {data.count(old)} places with {old!r}, not {times}")
    return data.replace(old, new)

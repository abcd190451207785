"""Where things are. All that is made lies under build/; the user's own ~/.wine is never touched."""
import shutil
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build"
DEMO = ROOT / "wine/demo"
LAUNCHER = BUILD / "release/app/korcontrolcenter.exe"
STUB = BUILD / "release/wine/demo/demostub.exe"
HTML_DOCUMENT = BUILD / "release/wine/htmldocument/htmldocument.dll"

WINE = ROOT / "wine/wine.sh"
WINESERVER = shutil.which("wineserver") or "/usr/lib/wine/wineserver"
# Prefixes get a home of their own: their Desktop and Documents do not lead to the user's.
HOME = BUILD / "scratch-home"
TEMPLATE = BUILD / "prefix-template"
TEMPLATE_READY = TEMPLATE / ".ready"
# The template's Windows\System32, which it shares with its copies.
SYSTEM = BUILD / "prefix-system32"

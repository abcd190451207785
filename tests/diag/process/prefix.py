"""kordiag.exe in a throw-away Wine prefix, and the schemas of its documents."""
import contextlib
import json
import subprocess
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "wine"))
import jsonschema  # noqa: E402
from sandbox.demopage import DEVELOPMENT, LINKS, SECTIONS, row_heights  # noqa: E402, F401
from sandbox.display import private_display  # noqa: E402, F401
from sandbox.installation import install, lay_files  # noqa: E402
from sandbox.places import DEMO, ROOT  # noqa: E402, F401
from sandbox.prefix import throw_away  # noqa: E402


def closed(schema):
    """The schema without room for members that it does not name."""
    if isinstance(schema, list):
        return [closed(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    closing = {"additionalProperties": False} if schema.get("type") == "object" else {}
    return {**{key: closed(part) for key, part in schema.items()}, **closing}


def validate(command, document):
    """That the document is what the schema of the command says, and nothing more."""
    schema = json.loads((ROOT / f"docs/kordiag-{command}.schema.json").read_text("utf-8"))
    jsonschema.Draft7Validator.check_schema(schema)
    jsonschema.Draft7Validator(closed(schema)).validate(document)


class Prefix:
    """installation: a folder of wine/demo, or none for an empty prefix. viewers: also what shows documents and
    HTML pages. variables: of the environment, for all of its programs."""

    def __init__(self, program, installation=None, viewers=False, **variables):
        self.program = program
        with contextlib.ExitStack() as stack:
            self.prefix = stack.enter_context(throw_away("kordiag", **variables))
            self.path = self.prefix.path
            self.import_registry = self.prefix.import_registry
            if viewers:
                self.install(installation)
            elif installation:
                lay_files(self.prefix, DEMO / installation / "files.txt")
                self.import_registry(DEMO / installation / "registry.reg")
            else:
                # The first program starts services, which keep its output open after it has ended.
                self.prefix.start("wineboot", stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).wait()
            # Without a desktop that stays, each program that asks for the screen makes one: 1.2 s.
            self.desktop = self.prefix.start("explorer.exe", "/desktop", stdout=subprocess.DEVNULL,
                                             stderr=subprocess.DEVNULL)
            self.stack = stack.pop_all()

    def close(self):
        self.stack.close()
        self.desktop.wait(timeout=30)

    def install(self, installation):
        install(self.prefix, installation, 96)

    def start(self, *arguments, variables=None, program=None, **options):
        options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options}
        return self.prefix.start(program or self.program, *arguments, **options,
                                 env={**self.prefix.environment, **(variables or {})})

    def run(self, *arguments, meanwhile=None, **options):
        """Exit code, standard output and standard error, as bytes; meanwhile is called as long as it runs."""
        process = self.start(*arguments, **options)
        while meanwhile and process.poll() is None:
            meanwhile()
            time.sleep(0.2)
        out, err = process.communicate(timeout=120)
        return process.returncode, out, err

    def json(self, *arguments, **options):
        code, out, err = self.run(*arguments, "--json", **options)
        assert not err, err
        assert out.endswith(b"\n") and out.count(b"\n") == 1, "one document and nothing else"
        document = json.loads(out.decode("utf-8"))
        validate("-".join(arguments[:2] if arguments[0] == "registry" else arguments[:1]), document)
        return code, document

    def export_registry(self):
        """The library's part of the registry, as text."""
        exports = []
        for hive in ("HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER"):
            file = self.path / "export.reg"
            self.prefix.run("regedit", "/E", file, hive + "\\Software")
            exports.append(file.read_text("utf-16"))
            file.unlink()
        return exports

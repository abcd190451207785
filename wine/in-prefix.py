#!/usr/bin/env -S python3 -B
"""in-prefix.py [--restart] PROGRAM.exe [ARGUMENT...]: runs a test program in a throw-away Wine
prefix and gives back its exit code. CTest starts every test program through it. With --restart it
runs before and after a restart of the registry server; KOR_TEST_STAGE tells it which half it is
in."""
import contextlib
import os
import sys
from pathlib import Path

from sandbox.display import Display
from sandbox.ending import end_on_signals
from sandbox.prefix import SERVER_SECONDS, throw_away
from sandbox.say import say


def run(prefix, command, **variables):
    code = prefix.start(*command, env={**prefix.environment, **variables}).wait()
    if (prefix.drive / "tests-are-running").exists():
        say(f"The program ended before its tests did (exit code {code}).")
        return 1
    return code


def run_twice(prefix, command):
    for stage in ("before", "after"):
        code = run(prefix, command, KOR_TEST_STAGE=stage)
        if code != 0:
            return code
        prefix.server("-k")
        prefix.server("-w")
        prefix.server(f"-p{SERVER_SECONDS}")
    return 0


def main(command):
    restart = command[0] == "--restart"
    if restart:
        del command[0]
    end_on_signals()
    with contextlib.ExitStack() as cleanup:
        # A test program refuses to start without the variable: it deletes keys and folders.
        prefix = throw_away(Path(command[0]).stem, KOR_TEST_SANDBOX="1")
        cleanup.callback(prefix.remove)
        if not os.environ.get("DISPLAY"):
            display = Display("1600x1200")
            cleanup.callback(display.close)
            prefix.environment["DISPLAY"] = display.name
        return (run_twice if restart else run)(prefix, command)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

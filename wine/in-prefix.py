#!/usr/bin/env -S python3 -B
"""in-prefix.py [--restart] PROGRAM.exe [ARGUMENT...]: runs a test program in a throw-away Wine
prefix and gives back its exit code. CTest starts every test program through it. With --restart it
runs before and after a restart of the registry server; KOR_TEST_STAGE tells it which half it is
in."""
import contextlib
import os
import sys
from pathlib import Path

from sandbox.display import private_display
from sandbox.ending import end_on_signals
from sandbox.prefix import SERVER_SECONDS, throw_away
from sandbox.say import say


def run(prefix, command):
    code = prefix.start(*command).wait()
    if (prefix.drive / "tests-are-running").exists():
        say(f"The program ended before its tests did (exit code {code}).")
        return 1
    return code


def run_twice(prefix, command):
    prefix.environment["KOR_TEST_STAGE"] = "before"
    code = run(prefix, command)
    for option in ("-k", "-w", f"-p{SERVER_SECONDS}"):
        prefix.server(option)
    prefix.environment["KOR_TEST_STAGE"] = "after"
    return code or run(prefix, command)


def main(command):
    end_on_signals()
    with contextlib.ExitStack() as stack:
        display = os.environ.get("DISPLAY") or stack.enter_context(private_display("1600x1200"))
        restart = command[0] == "--restart"
        command = command[restart:]
        # A test program refuses to start without the sandbox: it deletes keys and folders.
        prefix = stack.enter_context(
            throw_away(Path(command[0]).stem, DISPLAY=display, KOR_TEST_SANDBOX="1"))
        return (run_twice if restart else run)(prefix, command)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

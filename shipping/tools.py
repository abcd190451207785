"""Runs the tools that packages are made with."""
import os
import subprocess


class Failed(Exception):
    """A tool or a file stands in the way; the text is for the person who packs."""


def run(*command, **options):
    """What the command printed. Its messages are shown only if it fails; it sees the same time zone and
    language everywhere."""
    environment = {**os.environ, "TZ": "UTC", "LC_ALL": "C.UTF-8"}
    try:
        done = subprocess.run([str(word) for word in command], env=environment, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, check=False, **options)
    except OSError as error:
        raise Failed(f"{command[0]}: {error.strerror}") from error
    if done.returncode:
        said = (done.stderr + done.stdout).decode(errors="replace")
        raise Failed(f"{command[0]} failed ({done.returncode}):\n{said}")
    return done.stdout.decode(errors="replace")

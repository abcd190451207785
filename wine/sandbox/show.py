"""python3 -m sandbox.show [OPTION...]: what ./run does once everything is built: shows the launcher
with an installation, on the user's display or as a picture. ./run explains the options and has
checked them."""
import argparse
import contextlib
import fcntl
import hashlib
import os
import subprocess
import sys
import time
from pathlib import Path

from .controlcenter import ControlCenter
from .display import Display
from .ending import end_on_signals
from .installation import install
from .places import BUILD, DEMO, ROOT, STUB, TEMPLATE_READY
from .prefix import Prefix
from .say import say, step


class Failure(Exception):
    """What ./run says before it ends with 1."""


def parse(arguments):
    parser = argparse.ArgumentParser(prog="./run")
    parser.add_argument("--dpi", type=int, default=96)
    for name in ("--screenshot", "--registry", "--files"):
        parser.add_argument(name, type=Path)
    for name in ("--gecko", "--fresh"):
        parser.add_argument(name, action="store_true")
    options = parser.parse_args(arguments)
    options.own = bool(options.registry or options.files)
    return options


def picture_file(options):
    """Where a picture is to be saved; None where the user sees the window."""
    if options.screenshot:
        return options.screenshot
    display = os.environ.get("DISPLAY")
    if not display:
        say("There is no display (DISPLAY is not set): a picture is taken instead.")
    elif subprocess.run(["xdotool", "getdisplaygeometry"], check=False, stdout=subprocess.DEVNULL,
                        stderr=subprocess.DEVNULL).returncode != 0:
        say(f"The display {display} does not answer: a picture is taken instead.")
    else:
        return None
    return BUILD / "controlcenter.png"


def lock(prefix, cleanup):
    """Keeps the prefix to this process."""
    prefix.path.parent.mkdir(parents=True, exist_ok=True)
    holder = cleanup.enter_context(open(f"{prefix.path}.pid", "a+", encoding="ascii"))
    try:
        fcntl.flock(holder, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        holder.seek(0)
        raise Failure(f"process {holder.read().strip()}, another ./run, shows this installation "
                      "already; close its window first") from None
    holder.truncate(0)
    holder.write(f"{os.getpid()}\n")
    holder.flush()


def prepare(prefix, options, managed):
    """Makes the prefix anew, unless it is still what it would become."""
    record = prefix.path / ".fingerprint"
    now = fingerprint()
    same = record.exists() and record.read_text(encoding="ascii") == now
    if same and not options.own and not options.fresh:
        return
    with step(f"Putting the installation into {prefix.path.relative_to(ROOT)}"):
        # Programs that an earlier page started may still use the prefix.
        if prefix.path.exists():
            try:
                prefix.server("-w", timeout=10)
            except subprocess.TimeoutExpired:
                raise ValueError(
                    "Programs started from the page are still open: close them first.") from None
        prefix.copy_template()
        registry = [options.registry] if options.registry else []
        install(prefix, None if options.own else "development", options.dpi, *registry,
                managed=managed, gecko=options.gecko)
        if options.files:
            subprocess.run(["cp", "-a", "--remove-destination", f"{options.files}/.", prefix.drive],
                           check=True)
        record.write_text(now, encoding="ascii")


def fingerprint():
    """What a prefix with the demonstration is made from: another value, another prefix."""
    digest = hashlib.sha256(str(TEMPLATE_READY.stat().st_mtime_ns).encode())
    for file in (*sorted(DEMO.rglob("*")), *sorted((ROOT / "wine/sandbox").glob("*.py")), STUB):
        if file.is_file():
            digest.update(file.read_bytes())
    return digest.hexdigest()


def open_page(center, gecko):
    """Starts the launcher and waits for its page; for its window where Gecko shows the page."""
    started = time.monotonic()
    try:
        (center.open if gecko else center.start)()
    except AssertionError:
        code = center.launcher.poll()
        reason = ("did not show its page within a minute and was ended" if code is None else
                  f"ended before its window opened (exit code {shell_code(code)})")
        raise Failure(f"the program {reason}. WINEDEBUG=err+all ./run shows what Wine says about "
                      "it.") from None
    say(f"Starting the program ... {time.monotonic() - started:.1f} s")
    title = center.xdotool("getwindowname", center.window).strip()
    width, height = center.size()
    say(f'It shows "{title}", {width} x {height} pixels.')


def take_picture(center, picture):
    try:
        center.save_picture(picture)
    except AssertionError:
        say("The page did not come to rest; this is its last picture.")
    except subprocess.CalledProcessError:
        raise Failure("no picture could be taken") from None
    say(f"Picture: {picture}")
    try:
        center.end(5)
    except subprocess.TimeoutExpired:
        say("It did not end on Alt+F4 within 5 s.")
        center.terminate()


def shell_code(code):
    return code if code >= 0 else 128 - code


def show(options, cleanup):
    picture = picture_file(options)
    kind = "own" if options.own else "demonstration"
    name = f"{kind}-{options.dpi}-{'picture' if picture else 'window'}"
    if options.gecko:
        name += "-gecko"
    prefix = Prefix(BUILD / "run-prefix" / name)
    lock(prefix, cleanup)
    if picture:
        # As tall as the tallest page: a window is not made taller than the screen.
        display = Display("1600x1800")
        cleanup.callback(display.close)
        # Nobody sees what the private display shows: nothing outlives it.
        cleanup.callback(prefix.server, "-k")
        prefix.environment["DISPLAY"] = display.name
    try:
        prepare(prefix, options, managed=not picture)
    except (OSError, ValueError, subprocess.CalledProcessError) as error:
        say(error)
        raise Failure("the installation could not be put into the prefix") from None

    center = ControlCenter(prefix)
    cleanup.callback(center.terminate)
    open_page(center, options.gecko)
    if picture:
        take_picture(center, picture)
    else:
        say("Close the window or press Alt+F4 to end it; F5 reads the installation again.",
            f"What the links start is noted in {prefix.drive.relative_to(ROOT)}/stub.log")
    code = shell_code(center.launcher.wait())
    if code != 0:
        raise Failure(f"the program ended with exit code {code}")


def main():
    end_on_signals()
    try:
        with contextlib.ExitStack() as cleanup:
            show(parse(sys.argv[1:]), cleanup)
    except (Failure, OSError) as failure:
        say(f"./run: {failure}")
        sys.exit(1)


if __name__ == "__main__":
    main()

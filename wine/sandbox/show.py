"""python3 -m sandbox.show [OPTION=VALUE...]: what ./run does once everything is built: shows the
launcher with an installation, on the user's display or as a picture. ./run explains the options and
has checked them."""
import contextlib
import fcntl
import hashlib
import os
import subprocess
import sys

from .controlcenter import ControlCenter
from .display import private_display
from .ending import end_on_signals
from .installation import install
from .places import BUILD, DEMO, ROOT, STUB, TEMPLATE_READY
from .prefix import Prefix
from .say import say, step


def fail(text):
    sys.exit(f"./run: {text}")


def needs_picture():
    """Says why where the user could not see the window."""
    display = os.environ.get("DISPLAY")
    if not display:
        say("There is no display (DISPLAY is not set): a picture is taken instead.")
    elif subprocess.run(["xdotool", "getdisplaygeometry"], capture_output=True).returncode != 0:
        say(f"The display {display} does not answer: a picture is taken instead.")
    else:
        return False
    return True


def lock(prefix):
    """Keeps the prefix to this process, as long as the file that it gives back is open."""
    prefix.path.parent.mkdir(parents=True, exist_ok=True)
    holder = open(f"{prefix.path}.pid", "a+", encoding="ascii")
    try:
        fcntl.flock(holder, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        holder.seek(0)
        fail(f"process {holder.read().strip()}, another ./run, shows this installation already; "
             "close its window first")
    holder.truncate(0)
    print(os.getpid(), file=holder, flush=True)
    return holder


def prepare(prefix, name, options, managed):
    """Makes the prefix anew, unless it is still what it would become."""
    record = prefix.path / ".fingerprint"
    now = fingerprint()
    if name and not options.get("fresh") and record.exists() and record.read_text() == now:
        return
    with step(f"Putting the installation into {prefix.path.relative_to(ROOT)}"):
        # Programs that an earlier page started may still use the prefix.
        if prefix.path.exists():
            prefix.server("-w", timeout=10)
        prefix.copy_template()
        install(prefix, name, int(options["dpi"]), options.get("registry"), managed,
                options.get("gecko"))
        if "files" in options:
            subprocess.run(["cp", "-a", "--remove-destination", options["files"] + "/.",
                            prefix.drive], check=True)
        record.write_text(now)


def fingerprint():
    """What a prefix with the demonstration is made from: another value, another prefix."""
    digest = hashlib.sha256(str(TEMPLATE_READY.stat().st_mtime_ns).encode())
    for file in (*sorted(DEMO.rglob("*")), *sorted((ROOT / "wine/sandbox").glob("*.py")), STUB):
        if file.is_file():
            digest.update(file.read_bytes())
    return digest.hexdigest()


def open_page(center, gecko):
    """Starts the launcher and waits for its page; for its window where Gecko shows the page."""
    try:
        with step("Starting the program"):
            (center.open if gecko else center.start)()
    except AssertionError:
        code = center.launcher.poll()
        fail(("the program did not show its page within a minute and was ended" if code is None else
              f"the program ended before its window opened (exit code {shell_code(code)})") +
             ". WINEDEBUG=err+all ./run shows what Wine says about it.")
    title = center.xdotool("getwindowname", center.window).strip()
    say('It shows "{}", {} x {} pixels.'.format(title, *center.size()))


def take_picture(center, picture):
    try:
        center.save_picture(picture)
    except AssertionError:
        say("The page did not come to rest; this is its last picture.")
    say(f"Picture: {picture}")
    try:
        center.end(5)
    except subprocess.TimeoutExpired:
        say("It did not end on Alt+F4 within 5 s.")
        center.kill()


def shell_code(code):
    return code if code >= 0 else 128 - code


def show(options, stack):
    picture = options.get("screenshot") or needs_picture() and BUILD / "controlcenter.png"
    name = None if "registry" in options or "files" in options else "development"
    prefix = Prefix(BUILD / "run-prefix" / "-".join(
        ["demonstration" if name else "own", options["dpi"], "picture" if picture else "window"] +
        ["gecko"] * ("gecko" in options)))
    stack.enter_context(lock(prefix))
    if picture:
        # As tall as the tallest page: a window is not made taller than the screen.
        prefix.environment["DISPLAY"] = stack.enter_context(private_display("1600x1800"))
        # Nobody sees what the private display shows: nothing outlives it.
        stack.callback(prefix.server, "-k")
    try:
        prepare(prefix, name, options, managed=not picture)
    except subprocess.TimeoutExpired:
        fail("Programs started from the page are still open: close them first.")
    except (OSError, ValueError, subprocess.CalledProcessError) as error:
        say(error)
        fail("the installation could not be put into the prefix")

    center = ControlCenter(prefix)
    stack.callback(center.kill)
    open_page(center, "gecko" in options)
    if picture:
        take_picture(center, picture)
    else:
        say("Close the window or press Alt+F4 to end it; F5 looks again at what there is in the folders of the start.",
            f"What the links start is noted in {prefix.drive.relative_to(ROOT)}/stub.log")
    code = shell_code(center.launcher.wait())
    if code != 0:
        fail(f"the program ended with exit code {code}")


if __name__ == "__main__":
    end_on_signals()
    with contextlib.ExitStack() as everything:
        show(dict(option.split("=", 1) for option in sys.argv[1:]), everything)

"""What is said on standard error: single lines, and steps with the time that they took."""
import contextlib
import sys
import time


def say(*lines):
    print(*lines, sep="\n", file=sys.stderr)


@contextlib.contextmanager
def step(text):
    """Says what is done in the meantime, and how long it took."""
    print(text, end=" ... ", file=sys.stderr, flush=True)
    started = time.monotonic()
    try:
        yield
    except BaseException:
        print("FAILED after ", end="", file=sys.stderr)
        raise
    finally:
        say(f"{time.monotonic() - started:.1f} s")

"""A private X server that nobody sees.

python3 -m sandbox.display WIDTHxHEIGHT: starts one for a shell, which evaluates what this prints
and ends the process kor_display_pid."""
import contextlib
import select
import subprocess
import sys

SECONDS = 20


def start(size):
    # The server tells its number through a pipe. Without -noreset it throws its clients out when
    # the last one goes, and with it a next one that is just coming.
    return subprocess.Popen(
        ["Xvfb", "-displayfd", "1", "-screen", "0", f"{size}x24", "-nolisten", "tcp", "-noreset"],
        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)


def name_of(server):
    with server.stdout as told:
        number = select.select([told], [], [], SECONDS)[0] and told.readline().strip()
    if not number:
        sys.exit("No private display could be started (Xvfb).")
    return ":" + number.decode()


@contextlib.contextmanager
def private_display(size):
    """Its name; it ends with the context."""
    server = start(size)
    try:
        yield name_of(server)
    finally:
        server.terminate()
        server.wait()


if __name__ == "__main__":
    process = start(sys.argv[1])
    print(f"export DISPLAY={name_of(process)} kor_display_pid={process.pid}")

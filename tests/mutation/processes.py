"""Runs commands on one processor, and ends them with everything that they started."""
import os
import signal
import subprocess
import threading
import time


class Stopped(Exception):
    """The user ended the run."""


class Processes:
    """The commands of one worker."""

    def __init__(self, processor):
        self.processor = processor
        self.running = None
        self.stopped = threading.Event()

    def run(self, command, folder, environment=None, seconds=None):
        """Exit code and output; None for the exit code when it took more seconds."""
        if self.stopped.is_set():
            raise Stopped
        bound = ["taskset", "-c", str(self.processor), *map(str, command)]
        with subprocess.Popen(
                bound, cwd=folder, env={**os.environ, **(environment or {})},
                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                start_new_session=True) as process:
            self.running = process
            try:
                output = process.communicate(timeout=seconds)[0]
                result = process.returncode
            except subprocess.TimeoutExpired:
                self.end(process)
                output, result = process.communicate()[0], None
            finally:
                self.running = None
        if self.stopped.is_set():
            raise Stopped
        return result, output.decode(errors="replace")

    def stop(self):
        self.stopped.set()
        if self.running is not None:
            self.end(self.running)

    @staticmethod
    def end(process):
        """First a request, so that scripts remove their prefixes."""
        for number, patience in ((signal.SIGTERM, 60), (signal.SIGKILL, 5)):
            deadline = time.monotonic() + patience
            try:
                os.killpg(process.pid, number)
                while time.monotonic() < deadline:
                    process.poll()
                    os.killpg(process.pid, 0)
                    time.sleep(0.1)
            except ProcessLookupError:
                return

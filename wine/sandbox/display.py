"""A private X server that nobody sees.

python3 -m sandbox.display WIDTHxHEIGHT: starts one for a shell, which evaluates what this prints
and ends the process kor_display_pid."""
import select
import subprocess
import sys

SECONDS = 20


class Display:
    def __init__(self, size):
        # The server tells its number through a pipe. Without -noreset it throws its clients out
        # when the last one goes, and with it a next one that is just coming.
        self.process = subprocess.Popen(
            ["Xvfb", "-displayfd", "1", "-screen", "0", f"{size}x24", "-nolisten", "tcp",
             "-noreset"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        number = b""
        if select.select([self.process.stdout], [], [], SECONDS)[0]:
            number = self.process.stdout.readline().strip()
        if not number:
            self.close()
            raise OSError("No private display could be started (Xvfb).")
        self.name = ":" + number.decode()

    def close(self):
        self.process.terminate()
        self.process.wait()
        self.process.stdout.close()


if __name__ == "__main__":
    try:
        display = Display(sys.argv[1])
        print(f"export DISPLAY={display.name}; kor_display_pid={display.process.pid}")
    except OSError as error:
        print("false")
        sys.exit(str(error))

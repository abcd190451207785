"""Ends by a signal."""
import signal
import sys

ENDING = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)


def end_on_signals():
    """Makes an exception of them, so that what has to be ended and removed is."""
    def end(number, _):
        for other in ENDING:
            signal.signal(other, signal.SIG_IGN)
        sys.exit(128 + number)
    for number in ENDING:
        signal.signal(number, end)

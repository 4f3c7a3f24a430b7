"""Scripts that get a signal while they wait or work."""

import subprocess
import sys
import textwrap
import time


def interrupted(script, sent, delay=0.3):
    """Waits for the script's line "ready", sends the signal; gives exit code, seconds, words."""
    child = subprocess.Popen(
        [sys.executable, "-c", textwrap.dedent(script)],
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        text=True,
    )
    try:
        assert child.stdout.readline() == "ready\n", child.stderr.read()
        time.sleep(delay)
        start = time.monotonic()
        child.send_signal(sent)
        child.wait(timeout=60)
        return child.returncode, time.monotonic() - start, child.stdout.read() + child.stderr.read()
    finally:
        child.kill()
        child.communicate()

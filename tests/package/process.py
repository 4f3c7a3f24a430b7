"""Runs Python code in a process of its own, with the same interpreter and packages."""

import subprocess
import sys
import textwrap


def run(code, **options):
    """What the code printed; its failure fails the test with all that it wrote."""
    command = [sys.executable, "-c", textwrap.dedent(code)]
    result = subprocess.run(command, capture_output=True, text=True, timeout=120, **options)
    assert result.returncode == 0, result.stdout + result.stderr
    return result.stdout.strip()

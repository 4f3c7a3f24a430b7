"""A process that holds the runtime behaves as any Python process: signals, children, exit."""

import concurrent.futures
import os
import signal
import subprocess
import sys
import textwrap

import pytest
from interrupting import interrupted

FORKED = "managed code cannot be called in a forked child process"


def python(code, **options):
    """Runs a script in a process of its own, with the same interpreter and packages."""
    return subprocess.run(
        [sys.executable, "-c", textwrap.dedent(code)],
        capture_output=True,
        text=True,
        timeout=120,
        **options,
    )


WAITS = {
    "sleep": "time.sleep(60)",
    "read": "os.read(0, 1)",
    "input": "input()",
    "select": "import select; select.select([], [], [], 60)",
}


@pytest.mark.parametrize("wait", WAITS)
def test_ctrl_c_raises_keyboard_interrupt_at_once(wait):
    code, seconds, output = interrupted(
        f"""
        import os, time
        from kelmor.psd import Color
        assert Color.RED.r == 255
        print("ready", flush=True)
        {WAITS[wait]}
        """,
        signal.SIGINT,
    )
    assert "KeyboardInterrupt" in output
    assert code == -signal.SIGINT
    assert seconds < 2


def test_ctrl_c_is_seen_after_a_long_managed_call():
    code, _, output = interrupted(
        """
        import io, time
        from kelmor.psd.fileformats.psd import PsdImage
        image = PsdImage(4000, 4000)
        print("ready", flush=True)
        end = time.monotonic() + 60
        while time.monotonic() < end:
            image.save(io.BytesIO())
        """,
        signal.SIGINT,
    )
    assert "KeyboardInterrupt" in output
    assert code == -signal.SIGINT


def test_sigterm_ends_the_process_as_in_plain_python():
    code, seconds, _ = interrupted(
        """
        import time
        import kelmor.psd
        print("ready", flush=True)
        time.sleep(60)
        """,
        signal.SIGTERM,
    )
    assert code == -signal.SIGTERM
    assert seconds < 2


def test_handlers_that_python_set_stay():
    result = python(
        """
        import signal
        names = [signal.SIGINT, signal.SIGTERM, signal.SIGQUIT, signal.SIGPIPE, signal.SIGHUP]
        before = [signal.getsignal(n) for n in names]
        hits = []
        signal.signal(signal.SIGUSR1, lambda *a: hits.append(1))
        import kelmor.psd
        assert [signal.getsignal(n) for n in names] == before
        signal.raise_signal(signal.SIGUSR1)
        assert hits == [1]
        """
    )
    assert (result.returncode, result.stderr) == (0, "")


def test_file_descriptor_limit_and_signal_mask_are_what_they_were():
    result = python(
        """
        import resource, signal
        resource.setrlimit(resource.RLIMIT_NOFILE, (256, 1024))
        signal.pthread_sigmask(signal.SIG_BLOCK, [signal.SIGUSR2])
        import kelmor.psd
        assert resource.getrlimit(resource.RLIMIT_NOFILE) == (256, 1024)
        assert signal.pthread_sigmask(signal.SIG_BLOCK, []) == {signal.SIGUSR2}
        """
    )
    assert (result.returncode, result.stderr) == (0, "")


def test_faulthandler_before_the_import_does_not_break_a_managed_null_reference():
    result = python(
        """
        import faulthandler
        faulthandler.enable()
        from kelmor.psd import Image
        try:
            Image.__new__(Image).width
        except RuntimeError as error:
            print(str(error).partition("(")[0])
        """
    )
    assert (result.returncode, result.stdout) == (0, "Proxy error\n")


def test_a_subprocess_can_be_started():
    result = python(
        """
        import subprocess, sys
        from kelmor.psd import Color
        inner = "from kelmor.psd import Color; print(Color.RED.r)"
        print(subprocess.run([sys.executable, "-c", inner], capture_output=True, text=True).stdout)
        """
    )
    assert (result.returncode, result.stdout.strip()) == (0, "255")


@pytest.mark.parametrize("method", ["spawn", "forkserver"])
def test_a_worker_process_of_its_own_can_use_the_runtime(method, tmp_path):
    script = tmp_path / "workers.py"
    script.write_text(
        textwrap.dedent(
            f"""
        import multiprocessing
        from kelmor.psd import Color

        def red(number):
            return Color.from_argb(number, 0, 0).r

        if __name__ == "__main__":
            with multiprocessing.get_context("{method}").Pool(2) as pool:
                print(pool.map(red, range(4)))
        """
        )
    )
    result = subprocess.run(
        [sys.executable, str(script)], capture_output=True, text=True, timeout=120
    )
    assert (result.returncode, result.stdout) == (0, "[0, 1, 2, 3]\n"), result.stderr


CHILD_CALLS = {
    "property": "image.width",
    "method": "image.get_default_options([])",
    "static": "Color.from_argb(1, 2, 3)",
    "constructor": "Color()",
    "constant": "Color.RED",
    "text": "repr(image)",
    "hash": "hash(image)",
    "equality": "image == other",
    "type": "image.get_type()",
    "cast": "PsdImage._cast_as(image)",
    "length": "len(layers)",
    "item": "layers[0]",
    "iteration": "iter(layers)",
    "disposal": "image.__exit__(None, None, None)",
}


@pytest.mark.parametrize("call", CHILD_CALLS)
def test_in_a_forked_child_every_managed_call_is_refused(call):
    result = python(
        f"""
        import os, sys
        from kelmor.psd import Color
        from kelmor.psd.fileformats.psd import PsdImage
        image, other = PsdImage(4, 4), PsdImage(4, 4)
        layers = image.layers
        child = os.fork()
        if child == 0:
            try:
                {CHILD_CALLS[call]}
            except RuntimeError as error:
                print(error, flush=True)
            del image, other, layers
            os._exit(7)
        assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 7
        print(image.width, Color.RED.r)
        """
    )
    assert result.returncode == 0, result.stderr
    assert result.stdout == f"{FORKED}\n4 255\n"


def test_a_forked_child_may_end_in_the_usual_way():
    result = python(
        """
        import os, sys
        from kelmor.psd import Color
        from kelmor.psd.fileformats.psd import PsdImage
        images = [PsdImage(4, 4) for _ in range(20)]
        images.append(images)
        child = os.fork()
        if child == 0:
            sys.exit(3)
        assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 3
        print(images[0].width, Color.RED.r)
        """
    )
    assert (result.returncode, result.stdout, result.stderr) == (0, "4 255\n", "")


def test_a_child_that_is_forked_before_the_start_has_a_runtime_of_its_own():
    result = python(
        """
        import os, sys
        import kelmor
        child = os.fork()
        from kelmor.psd import Color
        assert Color.RED.r == 255
        if child == 0:
            sys.exit(3)
        assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 3
        """
    )
    assert (result.returncode, result.stderr) == (0, "")


def test_a_module_that_comes_first_in_a_forked_child_is_refused():
    result = python(
        """
        import os
        import kelmor.typemodel
        child = os.fork()
        try:
            import kelmor.psd
        except ImportError as error:
            while error:
                reason, error = error, error.__cause__
            print(type(reason).__name__, reason, flush=True)
            os._exit(3)
        assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 3
        from kelmor.psd import Color
        print(Color.RED.r)
        """
    )
    assert (result.returncode, result.stderr) == (0, ""), result.stderr
    assert result.stdout == (
        "TypeError While initializing the host for the 'Kelmor.WrpGen.Interop.ExchangeHost"
        " (Assembly=WrpInterop.Kelmor.GfxTypes)' type, an error occurred -"
        " Method 'GetTypeName' not found (error=-2146234333)\n255\n"
    )


def test_a_forked_worker_that_does_without_managed_code_leaves_the_parent_unharmed():
    result = python(
        """
        import multiprocessing
        from kelmor.psd import Color
        from kelmor.psd.fileformats.psd import PsdImage
        images = [PsdImage(4, 4) for _ in range(20)]

        def work(number):
            kept = images
            return sum(range(number))

        with multiprocessing.get_context("fork").Pool(2) as pool:
            assert pool.map(work, [10] * 20) == [45] * 20
        for image in images:
            assert image.width == 4
        print(Color.RED.r)
        """
    )
    assert (result.returncode, result.stdout) == (0, "255\n"), result.stderr


ENDS = {
    "live-wrappers": ("keep = [Color.from_argb(i, 0, 0) for i in range(50)]", 0),
    "cycle": ("a = [Color.RED]; a.append(a)", 0),
    "pending-exception": ("image = PsdImage(2, 2); raise ValueError('end')", 1),
    "exit-from-a-callback": (
        """
import io
class Stop(io.BytesIO):
    def write(self, data):
        sys.exit(5)
try:
    PsdImage(2, 2).save(Stop())
except RuntimeError:
    sys.exit(5)
""",
        5,
    ),
    "nested-exit": ("(lambda: (lambda: sys.exit(0))())()", 0),
}


@pytest.mark.parametrize("end", ENDS)
def test_a_hundred_starts_and_exits_end_cleanly(end):
    body, code = ENDS[end]
    script = "import sys\nfrom kelmor.psd import Color\n"
    script += "from kelmor.psd.fileformats.psd import PsdImage\n" + body

    def once(_):
        return subprocess.run(
            [sys.executable, "-c", script], capture_output=True, timeout=120
        ).returncode

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        assert set(pool.map(once, range(100))) == {code}

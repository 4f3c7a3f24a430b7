"""Runs the three test runners over one build, merges what they report, prints their counts last."""
import argparse
import os
import pathlib
import shutil
import subprocess
import sys

import conformance

ROOT = pathlib.Path(__file__).resolve().parent.parent
DEBIAN_PACKAGES = pathlib.Path("/usr/lib/python3/dist-packages")
# pytest and hypothesis of Debian serve every interpreter, but only these of its packages do.
SHARED_PACKAGES = """_pytest pytest pluggy iniconfig packaging attr attrs exceptiongroup tomli
    hypothesis sortedcontainers _hypothesis_pytestplugin.py _hypothesis_ftz_detector.py py py.py
    xdist execnet pytest_timeout.py""".split()
# Links have no metadata of their own by which pytest would find its plugins.
LINKED = ["-p", "xdist.plugin", "-p", "pytest_timeout", "-p", "_hypothesis_pytestplugin"]
# Debian's pytest is older than the newest interpreters.
LINKED += ["-W", "ignore::DeprecationWarning:_pytest.assertion.rewrite"]
FOLDERS = ["boundary", "golden", "package", "properties", "system"]


def run(name, command, **kwargs):
    """The exit code and the last words of a runner, whose output is shown as it comes."""
    print(f"==== {name}", flush=True)
    lines = []
    with subprocess.Popen(
        [str(part) for part in command],
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        errors="replace",
        cwd=ROOT,
        **kwargs,
    ) as process:
        for line in process.stdout:
            print(line, end="", flush=True)
            lines.append(line.rstrip())
    return process.returncode, lines


def run_unit(options):
    program = options.build / "tests/unit/kelmor_unit"
    report = options.reports / "unit.xml"
    environment = dict(os.environ, KELMOR_BUILD=str(options.build))
    code, lines = run(
        "GoogleTest", [program, "--gtest_brief=1", f"--gtest_output=xml:{report}"], env=environment
    )
    counts = [line for line in lines if line.startswith(("[==========]", "[  PASSED", "[  FAILED"))]
    return code, counts[-3:] or [f"GoogleTest ended with code {code}"]


def pytest_path(options):
    """PYTHONPATH for an interpreter that has no pytest of its own: links to Debian's."""
    probe = [options.python, "-c", "import pytest, hypothesis, xdist, pytest_timeout"]
    if subprocess.run(probe, capture_output=True).returncode == 0:
        return None
    links = options.build / "pytest"
    links.mkdir(parents=True, exist_ok=True)
    for name in SHARED_PACKAGES:
        if (DEBIAN_PACKAGES / name).exists() and not (links / name).exists():
            (links / name).symlink_to(DEBIAN_PACKAGES / name)
    return links


def run_pytest(options, folders):
    launcher = options.build / "bin/python"
    environment = dict(os.environ, KELMOR_BUILD=str(options.build))
    links = pytest_path(options)
    if links:
        environment["PYTHONPATH"] = f"{links}:{os.environ.get('PYTHONPATH', '')}".rstrip(":")
    paths = [path for path in (ROOT / "tests" / folder for folder in folders) if path.is_dir()]
    if not paths:
        return 0, []
    command = [launcher, "-m", "pytest", f"--junitxml={options.reports / 'pytest.xml'}"]
    command += LINKED if links else []
    command += ["-n", str(options.jobs)] if options.jobs > 1 else []
    code, lines = run("pytest", command + paths, env=environment)
    return code, [line for line in lines if line][-1:] or [f"pytest ended with code {code}"]


def run_dotnet(options):
    """Every test project in its turn; each has counts of its own."""
    codes, counts = [], []
    for project in sorted((ROOT / "managed").glob("*.Tests")):
        command = ["dotnet", "test", project, "--nologo", "-v", "minimal"]
        command += ["--logger", f"trx;LogFileName={project.name}.trx"]
        command += ["--results-directory", options.reports]
        command += [f"-p:KelmorArtifacts={options.build / 'managed'}/"]
        code, lines = run(f"dotnet test {project.name}", command)
        codes.append(code)
        found = [line for line in lines if line.startswith(("Passed!", "Failed!"))]
        counts += found or [f"dotnet test {project.name} ended with code {code}"]
    return max(codes, default=0), counts


def parse():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--python", default="/usr/bin/python3", help="the modules are built for it")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1)
    parser.add_argument(
        "--only", action="append", choices=["unit", "managed", *FOLDERS], default=[]
    )
    parser.add_argument("--no-merge", action="store_true", help="leave the conformance as it is")
    options = parser.parse_args()
    options.build = options.build.resolve()
    options.reports = options.build / "reports"
    return options


def main():
    options = parse()
    shutil.rmtree(options.reports, ignore_errors=True)
    options.reports.mkdir(parents=True)
    wanted = options.only or ["unit", *FOLDERS, "managed"]
    results = []
    if "unit" in wanted:
        results.append(run_unit(options))
    folders = [folder for folder in FOLDERS if folder in wanted]
    if folders:
        results.append(run_pytest(options, folders))
    if "managed" in wanted:
        results.append(run_dotnet(options))
    merged = 0 if options.no_merge else conformance.merge(options.build, options.reports)
    print("==== counts")
    for _, counts in results:
        print("\n".join(counts))
    return 1 if merged or any(code for code, _ in results) else 0


if __name__ == "__main__":
    sys.exit(main())

"""The tools of the build say what is: merged reports, the conformance page, layers, file heads."""

import pathlib
import sys

import pytest

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "tools"
sys.path.insert(0, str(TOOLS))

import check_files  # noqa: E402
import check_layers  # noqa: E402
import conformance  # noqa: E402

JUNIT = """<testsuites><testsuite>
<testcase classname="a" name="passes"><properties>
  <property name="behaviour" value="x.one x.two"/></properties></testcase>
<testcase classname="a" name="fails"><properties>
  <property name="behaviour" value="x.two"/></properties><failure message="no"/></testcase>
<testcase classname="a" name="skipped"><properties>
  <property name="behaviour" value="x.three"/></properties><skipped/></testcase>
<testcase classname="a" name="disabled" result="suppressed"><properties>
  <property name="behaviour" value="x.four"/></properties></testcase>
<testcase classname="a" name="claims nothing"/>
</testsuite></testsuites>"""

TRX = """<TestRun xmlns="http://microsoft.com/schemas/VisualStudio/TeamTest/2010">
<Results><UnitTestResult testId="1" outcome="Passed"/><UnitTestResult testId="2" outcome="Failed"/>
</Results><TestDefinitions>
<UnitTest id="1" name="N.T.Good"><TestMethod className="N.T" name="Good"/></UnitTest>
<UnitTest id="2" name="N.T.Bad(1)"><TestMethod className="N.T" name="Bad"/></UnitTest>
</TestDefinitions></TestRun>"""

SOURCE = """public class T {
    [Fact]
    [Trait("behaviour", "x.one")]
    public void Good() { }

    [Fact] public void Other() { }

    [Theory, InlineData(1)]
    [Trait("behaviour", "x.three")]
    public async Task Bad(int number) { }
}
"""


@pytest.fixture
def project(tmp_path, monkeypatch):
    """A list of four behaviours and a report of each kind; the folder of the build."""
    lists = tmp_path / "tests/behaviours"
    lists.mkdir(parents=True)
    rows = [("x.one", "First"), ("x.two", "Second"), ("x.three", "Third | bar"), ("x.four", "4")]
    text = "id\thow\tbehaviour\n" + "".join(f"{name}\tunit\t{words}\n" for name, words in rows)
    (lists / "x.tsv").write_text(text)
    reports = tmp_path / "build/reports"
    reports.mkdir(parents=True)
    (reports / "a.xml").write_text(JUNIT)
    (reports / "b.trx").write_text(TRX)
    (tmp_path / "managed/X.Tests").mkdir(parents=True)
    (tmp_path / "managed/X.Tests/T.cs").write_text(SOURCE)
    monkeypatch.setattr(conformance, "ROOT", tmp_path)
    monkeypatch.setattr(conformance, "LISTS", lists)
    monkeypatch.setattr(conformance, "PAGE", tmp_path / "docs/conformance.md")
    return tmp_path / "build"


def test_the_reports_are_merged_by_behaviour(project):
    assert conformance.merge(project, project / "reports") == 0
    assert (project / "conformance.tsv").read_text().splitlines() == [
        "id\ttest\toutcome",
        "x.four\ta.disabled\tskipped",
        "x.one\tN.T.Good\tpassed",
        "x.one\ta.passes\tpassed",
        "x.three\tN.T.Bad(1)\tfailed",
        "x.three\ta.skipped\tskipped",
        "x.two\ta.fails\tfailed",
        "x.two\ta.passes\tpassed",
    ]


def test_a_claim_of_an_unknown_behaviour_is_an_error(project, capsys):
    (project / "reports/a.xml").write_text(JUNIT.replace("x.one", "x.wrong"))
    assert conformance.merge(project, project / "reports") == 1
    assert "a.passes claims x.wrong, which no list has" in capsys.readouterr().out


def test_the_page_counts_and_puts_what_is_missing_first(project):
    conformance.merge(project, project / "reports")
    assert conformance.make_page(project) == 0
    page = conformance.PAGE.read_text()
    assert "| x | 4 | 2 | 2 |" in page
    assert "- `x.three` (claimed by a test that did not pass): Third | bar" in page
    assert "| `x.one` | N.T.Good and 1 more |" in page
    assert page.index("## Without a passing test") < page.index("## Shown")


def test_the_page_needs_a_run_before(project):
    assert conformance.make_page(project) == 1


@pytest.mark.parametrize(
    ("folder", "line", "words"),
    [
        ("host", '#include "shell/ref.h"', "host/ must not know shell/"),
        ("marshal", '#include "binding/variant.h"', "marshal/ must not know binding/"),
        ("imaging", '#include "host/utils.h"', "imaging/ must not know host/"),
        ("shell", "#include <Python.h>", "include shell/cpython.h instead of a header of Python"),
    ],
)
def test_an_include_that_points_upwards_is_found(tmp_path, monkeypatch, folder, line, words):
    (tmp_path / folder).mkdir()
    (tmp_path / folder / "x.cpp").write_text(f"// A file.\n{line}\n")
    monkeypatch.setattr(check_layers, "ROOT", tmp_path)
    assert list(check_layers.faults()) == [f"{folder}/x.cpp: {words}"]


def test_an_include_that_points_downwards_is_fine(tmp_path, monkeypatch):
    (tmp_path / "binding").mkdir()
    (tmp_path / "binding/x.cpp").write_text('#include "host/utils.h"\n#include "binding/y.h"\n')
    monkeypatch.setattr(check_layers, "ROOT", tmp_path)
    assert not list(check_layers.faults())


@pytest.mark.parametrize(
    ("name", "text", "words"),
    [
        ("x.cpp", "int x;\n", "the first line does not say the file's job"),
        ("x.py", '"""Job."""\n' + "# " + "a" * 100 + "\n", "102 columns, 100 at most"),
        ("x.cs", "// Job.\n" * 601, "601 lines, 600 at most"),
        ("x.py", '"""Job."""\n# TO' "DO later\n", "a mark that was left"),
    ],
)
def test_a_file_out_of_measure_is_found(tmp_path, monkeypatch, name, text, words):
    (tmp_path / name).write_text(text)
    monkeypatch.setattr(check_files, "ROOT", tmp_path)
    (fault,) = check_files.faults(name)
    assert words in fault

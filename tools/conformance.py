"""Merges the reports of the test runners by behaviour, and makes the conformance page from that."""
import argparse
import collections
import csv
import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent
LISTS = ROOT / "tests/behaviours"
PAGE = ROOT / "docs/conformance.md"
TRX = "{http://microsoft.com/schemas/VisualStudio/TeamTest/2010}"

TRAIT = re.compile(r'\bTrait\("behaviour", "([^"]*)"\)')
CLASS = re.compile(r"\bclass (\w+)")
METHOD = re.compile(r"\bpublic (?:async )?(?:void|Task) (\w+)\(")

Claim = collections.namedtuple("Claim", "id test outcome")


def read_behaviours():
    """Subject to its rows (id to text), in the order of the lists."""
    subjects = {}
    for path in sorted(LISTS.glob("*.tsv")):
        with path.open(newline="") as file:
            rows = csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE)
            subjects[path.stem] = {row["id"]: row["behaviour"] for row in rows}
    return subjects


def junit_outcome(case):
    for tag, outcome in (("failure", "failed"), ("error", "failed"), ("skipped", "skipped")):
        if case.find(tag) is not None:
            return outcome
    # GoogleTest says so in an attribute.
    return "skipped" if case.get("result") in ("skipped", "suppressed") else "passed"


def junit_claims(path):
    for case in ElementTree.parse(path).iter("testcase"):
        test = f"{case.get('classname')}.{case.get('name')}"
        found = [p.get("value") for p in case.iter("property") if p.get("name") == "behaviour"]
        for name in " ".join(filter(None, found)).split():
            yield Claim(name, test, junit_outcome(case))


def traits():
    """Class and method of a test to the ids that its traits name.

    Read from the sources: the report of `dotnet test` leaves traits out.
    """
    found = {}
    for path in sorted((ROOT / "managed").glob("*.Tests/**/*.cs")):
        type_name, pending = None, []
        for line in path.read_text(encoding="utf-8-sig").splitlines():
            pending += TRAIT.findall(line)
            declared = CLASS.search(line)
            method = METHOD.search(line)
            if declared:
                type_name = declared.group(1)
            elif method and pending:
                found[type_name, method.group(1)] = " ".join(pending).split()
            if declared or method:
                pending = []
    return found


def trx_claims(path):
    tree = ElementTree.parse(path)
    outcomes = {
        result.get("testId"): result.get("outcome") for result in tree.iter(TRX + "UnitTestResult")
    }
    words = {"Passed": "passed", "NotExecuted": "skipped"}
    claimed = traits()
    for test in tree.iter(TRX + "UnitTest"):
        outcome = words.get(outcomes.get(test.get("id")), "failed")
        method = test.find(TRX + "TestMethod")
        type_name = method.get("className").rpartition(".")[2]
        for name in claimed.get((type_name, method.get("name")), []):
            yield Claim(name, test.get("name"), outcome)


def all_claims(reports):
    for path in sorted(reports.glob("*.xml")):
        yield from junit_claims(path)
    for path in sorted(reports.glob("*.trx")):
        yield from trx_claims(path)


def merge(build, reports):
    """Writes conformance.tsv; answers how many claims name a behaviour that no list has."""
    claims = sorted(set(all_claims(reports)))
    known = {name for rows in read_behaviours().values() for name in rows}
    with (build / "conformance.tsv").open("w") as file:
        file.write("id\ttest\toutcome\n")
        for claim in claims:
            test = claim.test.replace("\t", " ").replace("\n", " ")
            file.write(f"{claim.id}\t{test}\t{claim.outcome}\n")
    (ROOT / "build/conformance.tsv").write_bytes((build / "conformance.tsv").read_bytes())
    unknown = [claim for claim in claims if claim.id not in known]
    for claim in unknown:
        print(f"conformance: {claim.test} claims {claim.id}, which no list has")
    shown = len({claim.id for claim in claims if claim.outcome == "passed"} & known)
    print(f"conformance: {shown} of {len(known)} behaviours are shown by a passing test")
    return len(unknown)


def read_claims(path):
    """Behaviour to its passing tests, and to the others."""
    passing, other = collections.defaultdict(list), collections.defaultdict(list)
    with path.open(newline="") as file:
        for row in csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE):
            (passing if row["outcome"] == "passed" else other)[row["id"]].append(row["test"])
    return passing, other


def cell(text):
    return text.replace("|", "\\|")


def page_lines(subjects, passing, other):
    yield "# Which behaviours are shown by a test"
    yield ""
    yield "Made by `make conformance` from the last `make test`."
    yield "The lists stand in tests/behaviours."
    yield ""
    yield "| Subject | Behaviours | Shown | Not shown |"
    yield "|---|---|---|---|"
    totals = [0, 0]
    for subject, rows in subjects.items():
        shown = sum(name in passing for name in rows)
        totals = [totals[0] + len(rows), totals[1] + shown]
        yield f"| {subject} | {len(rows)} | {shown} | {len(rows) - shown} |"
    yield f"| all | {totals[0]} | {totals[1]} | {totals[0] - totals[1]} |"
    yield ""
    yield "## Without a passing test"
    yield ""
    for rows in subjects.values():
        for name, text in rows.items():
            if name not in passing:
                note = " (claimed by a test that did not pass)" if name in other else ""
                yield f"- `{name}`{note}: {text}"
    yield ""
    yield "## Shown"
    yield ""
    yield "| Behaviour | Tests |"
    yield "|---|---|"
    for rows in subjects.values():
        for name in rows:
            if name in passing:
                tests = sorted(passing[name])
                more = f" and {len(tests) - 1} more" if len(tests) > 1 else ""
                yield f"| `{name}` | {cell(tests[0])}{more} |"


def make_page(build):
    table = build / "conformance.tsv"
    if not table.exists():
        print(f"{table} is missing: run `make test` first", file=sys.stderr)
        return 1
    lines = page_lines(read_behaviours(), *read_claims(table))
    PAGE.parent.mkdir(exist_ok=True)
    PAGE.write_text("\n".join(lines) + "\n")
    return 0


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("action", choices=["page", "merge"])
    parser.add_argument("--build", type=pathlib.Path, required=True)
    options = parser.parse_args()
    if options.action == "page":
        return make_page(options.build)
    return 1 if merge(options.build, options.build / "reports") else 0


if __name__ == "__main__":
    sys.exit(main())

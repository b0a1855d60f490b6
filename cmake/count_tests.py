#!/usr/bin/env python3
"""Names the tests that failed and prints the counts as one line: N passed, N failed, N skipped.

Takes ctest's report and a folder with those of the programs that ran many tests each."""
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path


def is_skipped(case):
    return case.find("skipped") is not None or case.get("status") in ("notrun", "disabled") or case.get("result") == "skipped"


def cases_of(case, folder):
    """The tests that one of ctest's stands for. A program that did not come to its end has no report, or an old one."""
    report = folder / f"{case.get('name')}.xml"
    if not report.exists():
        return [case]
    own = list(ElementTree.parse(report).getroot().iter("testcase"))
    failed = case.find("failure") is not None
    return own + [case] if failed and not any(one.find("failure") is not None for one in own) else own


folder = Path(sys.argv[2])
cases = [one for case in ElementTree.parse(sys.argv[1]).getroot().findall("testcase") for one in cases_of(case, folder)]
failed = [case for case in cases if case.find("failure") is not None]
skipped = sum(is_skipped(case) for case in cases)
for case in failed:
    print(f"failed: {case.get('classname')}.{case.get('name')}")
print(f"{len(cases) - skipped - len(failed)} passed, {len(failed)} failed, {skipped} skipped")

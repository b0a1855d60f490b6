#!/usr/bin/env python3
"""Names the tests that failed and why others were skipped, and prints the counts: N passed, N failed, N skipped.

Reads ctest's report and a folder with the reports of programs that ran many tests each."""
import re
import sys
import xml.etree.ElementTree as ElementTree
from collections import Counter
from pathlib import Path


def is_skipped(case):
    return case.find("skipped") is not None or case.get("status") in ("notrun", "disabled") or case.get("result") == "skipped"


def cases_of(case, folder):
    """The tests of one ctest entry. A program that crashed has no report, or an old one."""
    report = folder / f"{case.get('name')}.xml"
    if not report.exists():
        return [case]
    own = list(ElementTree.parse(report).getroot().iter("testcase"))
    failed = case.find("failure") is not None
    return own + [case] if failed and not any(one.find("failure") is not None for one in own) else own


def reason_of(case):
    """The message of a skipped test, after the line with its location."""
    own = case.find("skipped")
    texts = [own.get("message", "") if own is not None else "", case.findtext("system-out", "")]
    found = [re.search(r"\.(?:cc|py):\d+(?:: Skipped)?\n(.+)", text) for text in texts]
    return next((one[1] for one in found if one), "it does not say why")


folder = Path(sys.argv[2])
cases = [one for case in ElementTree.parse(sys.argv[1]).getroot().findall("testcase") for one in cases_of(case, folder)]
failed = [case for case in cases if case.find("failure") is not None]
skipped = [case for case in cases if is_skipped(case)]
for case in failed:
    print(f"failed: {case.get('classname')}.{case.get('name')}")
for reason, count in sorted(Counter(map(reason_of, skipped)).items()):
    print(f"{count} skipped: {reason}")
print(f"{len(cases) - len(skipped) - len(failed)} passed, {len(failed)} failed, {len(skipped)} skipped")

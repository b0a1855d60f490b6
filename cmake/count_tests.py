#!/usr/bin/env python3
"""Prints the counts of a ctest report as one line: N passed, N failed, N skipped."""
import sys
import xml.etree.ElementTree as ElementTree

cases = ElementTree.parse(sys.argv[1]).getroot().findall("testcase")
skipped = sum(case.find("skipped") is not None or case.get("status") in ("notrun", "disabled") for case in cases)
failed = sum(case.find("failure") is not None for case in cases)
print(f"{len(cases) - skipped - failed} passed, {failed} failed, {skipped} skipped")

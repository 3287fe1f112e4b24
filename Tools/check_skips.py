#!/usr/bin/env python3
"""Fails when a test was skipped in every one of the reports: check_skips.py REPORT…

A report is what ctest writes with --output-junit, with the whole output of each program. A test may be skipped in one
build, such as one with a sanitizer that it cannot run under, when it ran in another."""
import re
import sys
import xml.etree.ElementTree as xml

ENDED = re.compile(r"^\[\s+(OK|SKIPPED|FAILED) +\] (\S+?)(?:,.*)? \(\d+ ms(?: total)?\)$")


def tests_of(report):
    """[(name, whether it ran, why not)]"""
    for case in xml.parse(report).getroot().iter("testcase"):
        skipped = case.find("skipped")
        output = (case.findtext("system-out") or "").splitlines()
        if skipped is not None or case.get("status") == "notrun":
            said = [line for line in output if line.strip()]
            yield case.get("name"), False, said[-1] if said else skipped.get("message") if skipped is not None else "it was not run"
            continue
        yield case.get("name"), True, ""
        reason = ""
        for before, line in zip([""] + output, output):
            if before.endswith(": Skipped"):
                reason = line
            elif match := ENDED.match(line):
                yield match[2], match[1] != "SKIPPED", reason
                reason = ""


def main(reports):
    ran, skipped = set(), {}
    for report in reports:
        for name, has_run, reason in tests_of(report):
            if has_run:
                ran.add(name)
            else:
                skipped[name] = reason or skipped.get(name) or "no reason given"
    if not ran and not skipped:
        print("no test ran")
        return 1
    missing = {name: reason for name, reason in skipped.items() if name not in ran}
    for name, reason in sorted(missing.items()):
        print(f"{name} was skipped in every build. Run the tests where it can run: {reason}")
    for name in sorted(skipped.keys() - missing.keys()):
        print(f"{name} was skipped in one build and ran in another: {skipped[name]}")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

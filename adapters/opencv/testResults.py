#!/usr/bin/env python3
"""Holds the results of one of OpenCV's test programs with the adapter against those without.

  testResults.py MODULE PLAIN.xml ADAPTED.xml

Prints a line for the summary, and each test that fails only with the adapter; then its exit status is 1.
"""
import os
import sys
import xml.etree.ElementTree


def outcomes(path):
    """Whether each test passed, by its name. A program that broke off has none."""
    tests = {}
    if not os.path.exists(path):
        print(f"There is no {path}: see the log beside it")
        return tests
    for case in xml.etree.ElementTree.parse(path).iter("testcase"):
        if case.get("status") == "run":
            name = f"{case.get('classname')}.{case.get('name')}" # with its number, if it has parameters
            tests[name] = case.find("failure") is None
    return tests


module, plain, adapted = sys.argv[1], outcomes(sys.argv[2]), outcomes(sys.argv[3])
worse = [name for name, passed in plain.items() if passed and not adapted.get(name, False)]
print(f"{module:12} {len(plain):8} {sum(plain.values()):8} {sum(adapted.values()):8}   {len(worse)}")
for name in worse:
    print(f"    {name}")
sys.exit(1 if worse or not plain else 0)

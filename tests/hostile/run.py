#!/usr/bin/env python3
"""Gives the programs input that means no good: absurd sizes, bombs, lies.

No run may end by a signal that is none of its business, take more than a minute or two gigabytes,
or come to anything but what the rules say. What small damage does is tried in tests/unit.
"""

import argparse
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))
import program  # noqa: E402


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bin", type=Path, required=True, metavar="DIR",
                        help="where the programs are")
    parser.add_argument("names", nargs="+",
                        help="files of tests, tests in them: xml_test, xml_test.Bombs")
    arguments = parser.parse_args()
    program.BIN = arguments.bin.resolve()
    tests = unittest.defaultTestLoader.loadTestsFromNames(arguments.names)
    result = unittest.TextTestRunner().run(tests)
    return 0 if result.wasSuccessful() and result.testsRun and not result.skipped else 1


if __name__ == "__main__":
    sys.exit(main())

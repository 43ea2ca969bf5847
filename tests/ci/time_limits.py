"""Every test has a time limit, so that one that hangs fails: time_limits.py CTEST BUILD_FOLDER."""

import json
import subprocess
import sys

CTEST, BUILD = sys.argv[1:]
FEWEST_TESTS = 20

tests = json.loads(
    subprocess.run([CTEST, "--test-dir", BUILD, "--show-only=json-v1"], check=True, capture_output=True).stdout
)["tests"]
built = [test for test in tests if not test["name"].endswith("_NOT_BUILT")]
limits = {
    test["name"]: {each["name"]: each["value"] for each in test.get("properties", [])}.get("TIMEOUT", 0)
    for test in built
}
unlimited = sorted(name for name, seconds in limits.items() if seconds <= 0)
print("%d tests, %d of them without a time limit" % (len(built), len(unlimited)))
print("".join("%s has no TIMEOUT\n" % name for name in unlimited), end="")
sys.exit(0 if len(built) >= FEWEST_TESTS and not unlimited else 1)

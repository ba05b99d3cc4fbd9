"""The unmutated suite, run once: each test's duration, its verdict and the lines it executes."""

import time

from .coverage import CoverageMap, lines_from_gcov
from .testsuite import run_with_setups

# A test gets this long on the unmutated code; the suite's own limit is five minutes.
MEASURING_TIME_LIMIT = 300


def measure(tests, all_tests, settings, fingerprint, say):
    coverage = CoverageMap(fingerprint=fingerprint)
    waiting, running = list(tests), []
    began = time.monotonic()
    try:
        while waiting or running:
            while waiting and len(running) < settings.jobs:
                running.append(run_with_setups(waiting.pop(0), all_tests, MEASURING_TIME_LIMIT))
            time.sleep(0.05)
            for process in list(running):
                outcome = process.poll()
                if outcome is None:
                    continue
                running.remove(process)
                try:
                    _record(coverage, process, outcome, settings, say)
                finally:
                    process.cleanup()
    finally:
        for process in running:
            process.cleanup()
    say(f"measured {len(tests)} tests in {time.monotonic() - began:.0f} s")
    return coverage


def _record(coverage, process, outcome, settings, say):
    name = process.test.name
    if outcome.status != "passed":
        coverage.failing[name] = outcome.status
        say(f"    {name}: {outcome.status} on the unmutated code; left out (its output ends with:)")
        for line in outcome.output.strip().splitlines()[-15:]:
            say(f"        {line}")
        return
    coverage.durations[name] = round(outcome.seconds, 2)
    executed, known = lines_from_gcov(process.gcov_prefix, settings.root, settings.build_dir)
    coverage.record(name, executed, known)
    lines = sum(len(v) for v in executed.values())
    say(f"    {name:<28} {outcome.seconds:6.1f} s  {lines:5} lines in {len(executed)} files")

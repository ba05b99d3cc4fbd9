"""The unmutated suite, run once: each test's duration, its verdict and the lines it executes."""

import time

from .coverage import CoverageMap, lines_from_gcov
from .testsuite import run_with_setups

# A test gets this long on the unmutated code; the suite's own limit is five minutes.
MEASURING_TIME_LIMIT = 300


def measure(tests, all_tests, settings, fingerprint, say):
    coverage = CoverageMap(fingerprint=fingerprint)
    waiting, running = [(t, 1) for t in tests], []
    began = time.monotonic()
    try:
        while waiting or running:
            while waiting and len(running) < settings.jobs:
                test, attempt = waiting.pop(0)
                running.append((run_with_setups(test, all_tests, MEASURING_TIME_LIMIT), attempt))
            time.sleep(0.05)
            for entry in list(running):
                process, attempt = entry
                outcome = process.poll()
                if outcome is None:
                    continue
                running.remove(entry)
                try:
                    if outcome.status == "passed" or attempt == 2:
                        _record(coverage, process, outcome, settings, say)
                    else:
                        # Some tests fail now and then; a second run tells a flaky test from a broken one.
                        coverage.flaky[process.test.name] = outcome.status
                        _show_failure(process.test.name, outcome, "; running it again", say)
                        waiting.insert(0, (process.test, 2))
                finally:
                    process.cleanup()
    finally:
        for process, _ in running:
            process.cleanup()
    say(f"measured {len(tests)} tests in {time.monotonic() - began:.0f} s")
    return coverage


def _show_failure(name, outcome, consequence, say):
    say(f"    {name}: {outcome.status} on the unmutated code{consequence}; its output ends with:")
    for line in outcome.output.strip().splitlines()[-12:]:
        say(f"        {line}")


def _record(coverage, process, outcome, settings, say):
    name = process.test.name
    if outcome.status != "passed":
        coverage.failing[name] = outcome.status
        coverage.flaky.pop(name, None)
        _show_failure(name, outcome, " twice; left out", say)
        return
    coverage.durations[name] = round(outcome.seconds, 2)
    executed, known = lines_from_gcov(process.gcov_prefix, settings.root, settings.build_dir)
    coverage.record(name, executed, known)
    lines = sum(len(v) for v in executed.values())
    flaky = " (flaky: failed, then passed; a kill by it is confirmed by a second run)" if name in coverage.flaky else ""
    say(f"    {name:<28} {outcome.seconds:6.1f} s  {lines:5} lines in {len(executed)} files{flaky}")

"""The unmutated suite, run once: each test's duration, its verdict and the lines it executes."""

import time

from .coverage import CoverageMap, lines_from_gcov
from .testsuite import run_with_setups

# A test gets this long on the unmutated code; the suite's own limit is five minutes.
MEASURING_TIME_LIMIT = 300


def measure(tests, all_tests, settings, fingerprint, say):
    coverage = CoverageMap(fingerprint=fingerprint)
    began = time.monotonic()
    failed = _run_all(tests, all_tests, settings, coverage, say)
    # Some tests fail now and then, more often beside another one: a failure is retried alone.
    for test in failed:
        process = run_with_setups(test, all_tests, MEASURING_TIME_LIMIT)
        try:
            _record(coverage, process, process.wait(), settings, say)
        finally:
            process.cleanup()
    say(f"measured {len(tests)} tests in {time.monotonic() - began:.0f} s")
    return coverage


def _run_all(tests, all_tests, settings, coverage, say):
    """Runs the tests, settings.jobs at once, recording those that pass; returns those that failed."""
    waiting, running, failed = list(tests), [], []
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
                    if outcome.status == "passed":
                        _record(coverage, process, outcome, settings, say)
                    else:
                        coverage.flaky[process.test.name] = outcome.status
                        _show_failure(process.test.name, outcome, "; it runs again alone at the end", say)
                        failed.append(process.test)
                finally:
                    process.cleanup()
    finally:
        for process in running:
            process.cleanup()
    return failed


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
    flaky = " (flaky: failed, then passed; runs last, its kills confirmed alone)" if name in coverage.flaky else ""
    say(f"    {name:<28} {outcome.seconds:6.1f} s  {lines:5} lines in {len(executed)} files{flaky}")

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
    # A test that fails on the unmutated code cannot tell a mutant: it is left out. Run alone once
    # more, it shows whether it is broken or fails now and then (both need fixing).
    for test in failed:
        process = run_with_setups(test, all_tests, MEASURING_TIME_LIMIT)
        try:
            outcome = process.wait()
        finally:
            process.cleanup()
        if outcome.status == "passed":
            coverage.failing[test.name] = f"flaky: {coverage.failing[test.name]}, then passed alone"
        else:
            coverage.failing[test.name] += f", then {outcome.status} alone"
            _show_failure(test.name, outcome, " again, alone", say)
        say(f"    {test.name}: left out ({coverage.failing[test.name]})")
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
                        coverage.failing[process.test.name] = outcome.status
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
    coverage.durations[name] = round(outcome.seconds, 2)
    executed, known = lines_from_gcov(process.gcov_prefix, settings.root, settings.build_dir)
    coverage.record(name, executed, known)
    lines = sum(len(v) for v in executed.values())
    say(f"    {name:<28} {outcome.seconds:6.1f} s  {lines:5} lines in {len(executed)} files")

"""One mutant's life: into the source, incremental build, the tests that reach it, the verdict."""

import subprocess
import time
from dataclasses import dataclass

from .testsuite import TestProcess, build_targets, run_with_setups

BUILD_TIME_LIMIT = 900


@dataclass
class Verdict:
    status: str  # killed, timed out, survived, not covered, not compiled
    detail: str = ""
    build_seconds: float = 0.0
    test_seconds: float = 0.0
    tests_run: int = 0  # test runs, confirmations included


@dataclass
class Settings:
    root: str
    build_dir: str
    jobs: int
    timeout_factor: float
    timeout_margin: float


def build(settings, targets, log_path):
    """Incremental build of the targets; True when it succeeded."""
    command = ["cmake", "--build", settings.build_dir, "-j", str(settings.jobs)]
    if targets:
        command += ["--target", *targets]
    with open(log_path, "wb") as log:
        try:
            return subprocess.run(command, stdout=log, stderr=subprocess.STDOUT, timeout=BUILD_TIME_LIMIT).returncode == 0
        except subprocess.TimeoutExpired:
            return False


def time_limit(settings, duration):
    return duration * settings.timeout_factor + settings.timeout_margin


def first_failure(settings, tests, all_tests, durations):
    """Runs the tests, up to settings.jobs at once, in the given order, until one fails.

    A failure is believed only when the test fails again running alone: some tests of the suite
    fail now and then on the unmutated code, more often beside another test. Returns (status,
    test name or note, number of runs): status is killed, timed out or survived."""
    waiting, running, runs, failed_once = list(tests), [], 0, []
    try:
        while waiting or running:
            while waiting and len(running) < settings.jobs:
                test = waiting.pop(0)
                running.append(run_with_setups(test, all_tests, time_limit(settings, durations[test.name])))
                runs += 1
            time.sleep(0.05)
            for process in list(running):
                outcome = process.poll()
                if outcome is None:
                    continue
                running.remove(process)
                process.cleanup()
                if outcome.status == "passed":
                    continue
                # Those still running start again later, from the start.
                waiting[:0] = [p.test for p in running]
                for other in running:
                    other.cleanup()
                running = []
                runs += 1
                alone = run_with_setups(process.test, all_tests, time_limit(settings, durations[process.test.name]))
                try:
                    again = alone.wait()
                finally:
                    alone.cleanup()
                if again.status != "passed":
                    return ("killed" if again.status == "failed" else "timed out"), process.test.name, runs
                failed_once.append(process.test.name)
                break
        return "survived", ", ".join(f"{name} failed once" for name in failed_once), runs
    finally:
        for process in running:
            process.cleanup()


def judge(mutant, source, guard, coverage, tests, settings, log_path):
    """Puts the mutant into the source, builds, runs the tests that reach it; returns a Verdict."""
    reaching = coverage.tests_reaching(mutant.path, *mutant.reach)
    selectable = {t.name: t for t in tests if t.name in coverage.durations}
    if reaching is None:
        chosen = list(selectable.values())  # a file the coverage build does not measure
    else:
        chosen = [selectable[name] for name in reaching if name in selectable]
    if not chosen:
        return Verdict("not covered")
    # Quickest first, but the tests known to fail now and then last: a kill they find needs a rerun.
    chosen.sort(key=lambda t: (t.name in coverage.flaky, coverage.durations[t.name], t.name))

    targets = sorted({target for t in chosen for target in build_targets(t, settings.build_dir)})
    with guard.mutated(mutant.path, mutant.apply(source)):
        began = time.monotonic()
        if not build(settings, targets, log_path):
            return Verdict("not compiled", build_seconds=time.monotonic() - began)
        built = time.monotonic()
        status, test, started = first_failure(settings, chosen, tests, coverage.durations)
        return Verdict(status, test, built - began, time.monotonic() - built, started)

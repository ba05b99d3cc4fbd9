#!/usr/bin/env python3
"""Mutation testing: which faults put into the code does the test suite notice?

./dev mutate [--sample N] [--seed S] [--committed-sample | --sample-file F] [FILE|DIR ...]
(tools/mutate/README.md). ./dev configures the build folder; this script does the rest.
"""

import argparse
import fcntl
import os
import random
import subprocess
import sys
import time
from pathlib import Path

sys.dont_write_bytecode = True  # no __pycache__ in the source tree
sys.path.insert(0, str(Path(__file__).resolve().parent))

from mutation import report  # noqa: E402
from mutation.coverage import CoverageMap, fingerprint  # noqa: E402
from mutation.generate import mutants_of  # noqa: E402
from mutation.measure import measure  # noqa: E402
from mutation.runner import Settings, build, judge  # noqa: E402
from mutation.sourceguard import Interrupted, SourceGuard, raise_on_signals  # noqa: E402
from mutation.testsuite import load_tests, selectable  # noqa: E402

ROOT = Path(__file__).resolve().parents[2]
DEFAULT_DIRECTORIES = ["fast", "platform/osdu"]
COMMITTED_SAMPLE = "tools/mutate/sample.txt"
SOURCE_SUFFIXES = (".cpp", ".h")


def say(text):
    print(text, flush=True)


def parse_arguments(argv):
    parser = argparse.ArgumentParser(prog="./dev mutate", description=__doc__.splitlines()[0])
    parser.add_argument("paths", nargs="*", metavar="FILE", help="sources or folders (default: fast/ platform/osdu/)")
    parser.add_argument("--sample", type=int, help="judge N mutants drawn at random instead of all")
    parser.add_argument("--seed", type=int, default=1, help="the draw's seed (default 1)")
    parser.add_argument("--sample-file", help="take seed, sample size and files from this file")
    parser.add_argument("--committed-sample", action="store_true", help=f"the same with {COMMITTED_SAMPLE}")
    parser.add_argument("--match", action="append", metavar="TEXT",
                        help="only mutants whose description (file:line kind: before -> after) holds TEXT")
    parser.add_argument("--list", action="store_true", help="print the chosen mutants and stop")
    parser.add_argument("--build-dir", default="build-mutate")
    parser.add_argument("--jobs", type=int, default=2, help="build jobs and tests at once (default 2)")
    parser.add_argument("--timeout-factor", type=float, default=3.0,
                        help="a test times out after this many times its measured duration ... (default 3)")
    parser.add_argument("--timeout-margin", type=float, default=10.0, help="... plus these seconds (default 10)")
    arguments = parser.parse_args(argv)
    if arguments.committed_sample:
        arguments.sample_file = COMMITTED_SAMPLE
    if arguments.sample_file:
        read_sample_file(arguments)
    return arguments


def read_sample_file(arguments):
    """A sample file holds "seed S", "sample N" and one source (or folder) per line."""
    for line in (ROOT / arguments.sample_file).read_text().splitlines():
        line = line.split("#", 1)[0].strip()
        if not line:
            continue
        word, _, value = line.partition(" ")
        if word == "seed":
            arguments.seed = int(value)
        elif word == "sample":
            arguments.sample = int(value)
        else:
            arguments.paths.append(line)


def source_files(paths):
    listed = subprocess.run(
        ["git", "-C", str(ROOT), "ls-files", "--", *(paths or DEFAULT_DIRECTORIES)],
        check=True, capture_output=True, text=True,
    ).stdout.split()
    files = sorted(name for name in listed if name.endswith(SOURCE_SUFFIXES))
    named = [p for p in paths if p not in files and (ROOT / p).is_file()]  # not yet committed
    return sorted(set(files + named))


def choose_mutants(files, sample, seed, matches):
    mutants = []
    for path in files:
        mutants += mutants_of(path, (ROOT / path).read_text())
    generated = len(mutants)
    if matches:
        mutants = [m for m in mutants if any(text in m.describe() for text in matches)]
    if sample is not None and sample < len(mutants):
        chosen = random.Random(seed).sample(range(len(mutants)), sample)
        mutants = [mutants[i] for i in sorted(chosen)]
    return mutants, generated


def prepare_coverage(settings, tests, state_dir):
    """The coverage map of the current sources: the kept one, or measured anew."""
    path = state_dir / "coverage.json"
    current = fingerprint(ROOT)
    coverage = CoverageMap.load(path)
    if coverage is not None and coverage.fingerprint == current:
        say(f"==> coverage of {len(coverage.durations)} tests from {path} (sources unchanged)")
        return coverage, 0.0
    say("==> running each test once on the unmutated code: durations and the lines each one executes")
    began = time.monotonic()
    coverage = measure(selectable(tests), tests, settings, current, say)
    coverage.save(path)
    return coverage, time.monotonic() - began


def judge_all(mutants, guard, coverage, tests, settings, state_dir, run):
    sources = {}
    for number, mutant in enumerate(mutants, 1):
        if mutant.path not in sources:
            sources[mutant.path] = (ROOT / mutant.path).read_text()
        began = time.monotonic()
        verdict = judge(mutant, sources[mutant.path], guard, coverage, tests, settings, state_dir / "build.log")
        run["mutant_seconds"] += time.monotonic() - began
        run["mutants"].append(report.as_dict(mutant, verdict))
        say(report.row(number, len(mutants), mutant, verdict))


def main(argv):
    arguments = parse_arguments(argv)
    os.chdir(ROOT)
    build_dir = Path(arguments.build_dir)
    state_dir = build_dir / "mutate"
    state_dir.mkdir(parents=True, exist_ok=True)
    lock = open(state_dir / "lock", "w")  # held until the process ends
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        say(f"another ./dev mutate is running on {build_dir} (and may have a mutant in the source); not starting")
        return 1
    guard = SourceGuard(ROOT, state_dir / "backup")
    raise_on_signals()
    leftover = guard.restore_leftover()
    if leftover:
        say(f"==> restored {leftover} from the backup of an interrupted run")

    files = source_files(arguments.paths)
    mutants, generated = choose_mutants(files, arguments.sample, arguments.seed, arguments.match)
    say(f"==> {len(mutants)} mutants of {generated} from {len(files)} files (seed {arguments.seed})")
    if arguments.list:
        for mutant in mutants:
            say("    " + mutant.describe())
        return 0

    settings = Settings(str(ROOT), str(build_dir), arguments.jobs, arguments.timeout_factor, arguments.timeout_margin)
    run = {"seed": arguments.seed, "sample": arguments.sample, "files": files, "generated": generated,
           "mutants": [], "seconds": 0.0, "mutant_seconds": 0.0, "measure_seconds": 0.0}
    began = time.monotonic()
    status = 0
    try:
        say(f"==> building the unmutated code in {build_dir}")
        if not build(settings, [], state_dir / "build.log"):
            say(f"the unmutated build failed; see {state_dir / 'build.log'}")
            return 1
        tests = load_tests(build_dir)
        coverage, run["measure_seconds"] = prepare_coverage(settings, tests, state_dir)
        run["left_out"], run["flaky"] = coverage.failing, coverage.flaky
        say(f"==> judging {len(mutants)} mutants")
        judge_all(mutants, guard, coverage, tests, settings, state_dir, run)
    except (Interrupted, KeyboardInterrupt) as interruption:
        say(f"==> interrupted ({interruption}); the source is restored")
        run["interrupted"] = True
        status = 130
    run["seconds"] = time.monotonic() - began
    results = report.write(run, state_dir)
    say("==> summary")
    say(report.summary(run))
    say(f"==> written to {results} and {state_dir / 'report.txt'}")
    return status


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

"""Runs a check over units in parallel and reports as tidy.py and windows.py both do."""

import concurrent.futures
import sys


def run_pooled(name, units, check, jobs, cache):
    """Prints each unit's output in order and a summary line; 1 when a unit failed, else 0.

    check(unit) returns (output, failed, remembered), remembered when a cache under `cache` held it.
    """
    failed = False
    remembered = 0
    with concurrent.futures.ThreadPoolExecutor(max_workers=jobs) as pool:
        for output, unit_failed, unit_remembered in pool.map(check, units):
            sys.stdout.write(output)
            failed = failed or unit_failed
            remembered += unit_remembered
    print(f"{name}: {len(units)} units, {remembered} of them unchanged since a run that {cache} remembers",
          file=sys.stderr)
    return 1 if failed else 0

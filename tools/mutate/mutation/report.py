"""What a run prints and writes: one row per mutant, then the counts, the score and the survivors."""

import json
from pathlib import Path

STATUSES = ("killed", "timed out", "survived", "not covered", "not compiled")
DETECTED = ("killed", "timed out")


def row(number, total, mutant, verdict):
    detail = ""
    if verdict.detail:
        detail = f" by {verdict.detail}" if verdict.status in DETECTED else f" ({verdict.detail}, then passed)"
    timing = ""
    if verdict.status != "not covered":
        timing = f" [build {verdict.build_seconds:.0f} s, {verdict.tests_run} tests {verdict.test_seconds:.0f} s]"
    return (
        f"[{number:>{len(str(total))}}/{total}] {verdict.status + detail}{timing}\n"
        f"    {mutant.path}:{mutant.line} {mutant.kind}: {mutant.before} -> {mutant.after}"
    )


def counts(results):
    tally = {status: 0 for status in STATUSES}
    for result in results:
        tally[result["status"]] += 1
    return tally


def score(tally):
    detected = sum(tally[s] for s in DETECTED)
    compiled = detected + tally["survived"] + tally["not covered"]
    return detected, compiled, (100.0 * detected / compiled if compiled else 0.0)


def as_dict(mutant, verdict):
    return {
        "file": mutant.path,
        "line": mutant.line,
        "kind": mutant.kind,
        "before": mutant.before,
        "after": mutant.after,
        "status": verdict.status,
        "detail": verdict.detail,
        "build_seconds": round(verdict.build_seconds, 1),
        "test_seconds": round(verdict.test_seconds, 1),
        "tests_run": verdict.tests_run,
    }


def summary(run):
    """The text printed at the end, and written to report.txt."""
    results = run["mutants"]
    tally = counts(results)
    detected, compiled, percent = score(tally)
    judged = max(len(results), 1)
    lines = [
        f"mutants: {len(results)} of {run['generated']} generated from {len(run['files'])} files"
        f" (seed {run['seed']}){' - interrupted' if run.get('interrupted') else ''}",
        f"  killed        {tally['killed']}",
        f"  timed out     {tally['timed out']}",
        f"  survived      {tally['survived'] + tally['not covered']} ({tally['not covered']} of them not covered)",
        f"  not compiled  {tally['not compiled']}",
        f"score: {detected}/{compiled} = {percent:.1f} % (killed + timed out) / compiled",
        f"time: {run['seconds'] / 60:.1f} min in all, {run['mutant_seconds'] / judged:.1f} s per mutant on average"
        f" (build {sum(r['build_seconds'] for r in results) / judged:.1f} s,"
        f" tests {sum(r['test_seconds'] for r in results) / judged:.1f} s),"
        f" measuring the unmutated suite {run['measure_seconds']:.0f} s",
    ]
    if run.get("left_out"):
        lines.append("left out, failing on the unmutated code: " + ", ".join(sorted(run["left_out"])))
    if run.get("flaky"):
        lines.append("flaky (failed once on the unmutated code; run last): "
                     + ", ".join(sorted(run["flaky"])))
    survivors = [r for r in results if r["status"] in ("survived", "not covered")]
    if survivors:
        lines.append("survivors:")
        for r in survivors:
            note = " [not covered]" if r["status"] == "not covered" else ""
            lines.append(f"  {r['file']}:{r['line']} {r['kind']}: {r['before']} -> {r['after']}{note}")
    return "\n".join(lines)


def write(run, folder):
    folder = Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    tally = counts(run["mutants"])
    detected, compiled, percent = score(tally)
    data = dict(run, counts=tally, score={"detected": detected, "compiled": compiled, "percent": round(percent, 1)})
    (folder / "results.json").write_text(json.dumps(data, indent=1))
    (folder / "report.txt").write_text(summary(run) + "\n")
    return folder / "results.json"

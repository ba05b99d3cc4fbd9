#!/usr/bin/env python3
"""clang-tidy over the sources of a compile database, remembering what it said.

A translation unit's findings depend only on its preprocessed text, its file name, the checks in
.clang-tidy and the clang-tidy that runs them, so they are kept under a hash of those four in a
cache outside the checkout (~/.cache/fastpanel-clang-tidy unless --cache says otherwise): a later
run, in this tree or in a fresh clone elsewhere, reruns clang-tidy only where one of them changed.

    tidy.py --build DIR --root ROOT --regex REGEX [--jobs N] [--cache DIR]

Prints clang-tidy's output for every unit whose file matches REGEX and exits 1 when a run failed.
"""

import argparse
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

from pooled import run_pooled

ROOT_MARK = "@ROOT@"


def command_of(entry):
    args = entry.get("arguments") or shlex.split(entry["command"])
    if os.path.basename(args[0]) == "ccache":
        args = args[1:]
    return args


def preprocessed(entry):
    """The unit as the compiler sees it, without line markers (they name absolute paths)."""
    args, kept, skip = command_of(entry), [], False
    for arg in args:
        if skip:
            skip = False
            continue
        if arg == "-o":
            skip = True
            continue
        if arg == "-c":
            continue
        kept.append(arg)
    result = subprocess.run(kept + ["-E", "-P"], cwd=entry["directory"], capture_output=True, check=False)
    return result.stdout if result.returncode == 0 else None


def key_of(entry, root, salt):
    text = preprocessed(entry)
    if text is None:
        return None
    digest = hashlib.sha256(salt)
    digest.update(os.path.relpath(entry["file"], root).encode())
    digest.update(b"\0")
    digest.update(text)
    return digest.hexdigest()


def tidy(entry, build, root, cache, salt):
    """(output, failed, remembered) of one unit, from the cache where it holds the unit's key."""
    key = key_of(entry, root, salt)
    stored = cache / key if key else None
    if stored and stored.exists():
        return stored.read_text().replace(ROOT_MARK, root), False, True
    result = subprocess.run(["clang-tidy", "--quiet", "-p", build, entry["file"]], capture_output=True, text=True,
                            check=False)
    output = result.stdout + result.stderr
    if stored and result.returncode == 0:
        stored.write_text(output.replace(root, ROOT_MARK))
    return output, result.returncode != 0, False


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", required=True)
    parser.add_argument("--root", required=True)
    parser.add_argument("--regex", required=True)
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 2)
    parser.add_argument("--cache", default=os.path.expanduser("~/.cache/fastpanel-clang-tidy"))
    options = parser.parse_args()

    root = os.path.realpath(options.root)
    cache = pathlib.Path(options.cache)
    cache.mkdir(parents=True, exist_ok=True)
    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout
    checks = pathlib.Path(root, ".clang-tidy").read_bytes()
    salt = hashlib.sha256(version + b"\0" + checks).digest()

    with open(os.path.join(options.build, "compile_commands.json"), encoding="utf-8") as database:
        entries = [entry for entry in json.load(database) if re.search(options.regex, entry["file"])]
    return run_pooled("clang-tidy", entries, lambda e: tidy(e, options.build, root, cache, salt), options.jobs,
                      options.cache)


if __name__ == "__main__":
    sys.exit(main())

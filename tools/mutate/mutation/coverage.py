"""Which test executes which source line, measured once and kept in the build folder.

Every test runs once against the gcov-instrumented libraries, its counters going to its own
folder; gcov's JSON then names the lines it executed. The map is kept together with each test's
duration and a fingerprint of the sources, and measured again when the fingerprint changes.
"""

import gzip
import hashlib
import json
import subprocess
from dataclasses import dataclass, field
from pathlib import Path

# What the map depends on: the code, the tests and how they are built.
FINGERPRINTED = ["CMakeLists.txt", "cmake", "fast", "platform", "resources", "tests", "tools", "translations"]
FORMAT = 2


def fingerprint(root):
    listing = subprocess.run(
        ["git", "-C", str(root), "ls-files", "--cached", "--others", "--exclude-standard", "-z", "--", *FINGERPRINTED],
        check=True,
        capture_output=True,
    ).stdout
    digest = hashlib.sha256(str(FORMAT).encode())
    for name in sorted(set(listing.decode().split("\0")) - {""}):
        path = Path(root) / name
        ours = name.startswith("tools/mutate/") and name != "tools/mutate/Coverage.cmake"
        if path.is_file() and not ours:
            digest.update(name.encode() + b"\0" + path.read_bytes() + b"\0")
    return digest.hexdigest()


@dataclass
class CoverageMap:
    fingerprint: str = ""
    durations: dict = field(default_factory=dict)  # test -> seconds
    failing: dict = field(default_factory=dict)  # test -> status on the unmutated code, twice
    flaky: dict = field(default_factory=dict)  # test -> status of its first run, the second passed
    executed: dict = field(default_factory=dict)  # test -> {file: set of lines}
    instrumented: dict = field(default_factory=dict)  # file -> set of lines gcov knows

    def save(self, path):
        data = {
            "format": FORMAT,
            "fingerprint": self.fingerprint,
            "durations": self.durations,
            "failing": self.failing,
            "flaky": self.flaky,
            "executed": {t: {f: sorted(l) for f, l in files.items()} for t, files in self.executed.items()},
            "instrumented": {f: sorted(l) for f, l in self.instrumented.items()},
        }
        Path(path).write_text(json.dumps(data, indent=1, sort_keys=True))

    @classmethod
    def load(cls, path):
        try:
            data = json.loads(Path(path).read_text())
        except (OSError, ValueError):
            return None
        if data.get("format") != FORMAT:
            return None
        return cls(
            fingerprint=data["fingerprint"],
            durations=data["durations"],
            failing=data["failing"],
            flaky=data["flaky"],
            executed={t: {f: set(l) for f, l in files.items()} for t, files in data["executed"].items()},
            instrumented={f: set(l) for f, l in data["instrumented"].items()},
        )

    def record(self, test, lines_by_file, known_by_file):
        self.executed[test] = lines_by_file
        for path, lines in known_by_file.items():
            self.instrumented.setdefault(path, set()).update(lines)

    def tests_reaching(self, path, first, last):
        """The tests that execute a line in first..last, or None when the file is not measured.

        A line gcov attributes no code to (the continuation of a wrapped condition, a lone
        brace) stands for the nearest line above it that has code."""
        known = self.instrumented.get(path)
        if not known:
            return None
        lines = {line for line in known if first <= line <= last}
        if not lines:
            above = [line for line in known if line < first]
            lines = {max(above)} if above else set()
        return {t for t, files in self.executed.items() if files.get(path, set()) & lines}


def lines_from_gcov(gcov_prefix, root, build_dir):
    """(executed, known): per source file under root, the lines run and the lines gcov knows."""
    gcov_prefix, root, build_dir = Path(gcov_prefix), Path(root).resolve(), Path(build_dir).resolve()
    counters = sorted(gcov_prefix.rglob("*.gcda"))
    executed, known = {}, {}
    if not counters:
        return executed, known
    for counter in counters:
        # gcov wants the notes file that the compiler wrote next to the object beside the counters.
        original = Path("/") / counter.relative_to(gcov_prefix)
        notes = original.with_suffix(".gcno")
        if notes.exists():
            counter.with_suffix(".gcno").symlink_to(notes)
    result = subprocess.run(
        ["gcov", "--json-format", "--stdout", *map(str, counters)],
        cwd=str(gcov_prefix),
        capture_output=True,
        check=False,
    )
    for document in _json_documents(result.stdout):
        directory = Path(document.get("current_working_directory", build_dir))
        for entry in document.get("files", []):
            path = _relative_source(entry["file"], directory, root)
            if path is None or (root / path).resolve().is_relative_to(build_dir):
                continue  # a system header, or code generated into the build (moc, resources)
            for line in entry.get("lines", []):
                known.setdefault(path, set()).add(line["line_number"])
                if line["count"] > 0:
                    executed.setdefault(path, set()).add(line["line_number"])
    return executed, known


def _json_documents(output):
    if output[:2] == b"\x1f\x8b":
        output = gzip.decompress(output)
    decoder = json.JSONDecoder()
    text, position = output.decode(errors="replace"), 0
    while True:
        while position < len(text) and text[position].isspace():
            position += 1
        if position >= len(text):
            return
        document, position = decoder.raw_decode(text, position)
        yield document


def _relative_source(name, directory, root):
    path = Path(name)
    if not path.is_absolute():
        path = directory / path
    path = Path(*_normalized(path.parts))
    try:
        return str(path.relative_to(root))
    except ValueError:
        return None


def _normalized(parts):
    result = []
    for part in parts:
        if part == ".." and len(result) > 1:
            result.pop()
        elif part != ".":
            result.append(part)
    return result

"""The build's tests as CTest knows them, run one process group each, isolated and time-limited.

Each run gets a fresh folder holding its HOME, XDG folders and TMPDIR (removed afterwards), the
offscreen Qt platform, and GCOV_PREFIX pointing into that folder, so that the coverage counters
of one run never mix with another's.
"""

import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
from dataclasses import dataclass, field
from pathlib import Path

# The packaging tests install the build and compile a consumer against it: they check the
# packaging, take minutes, and find nothing a mutant in the code could change.
EXCLUDED_LABELS = {"package"}


@dataclass
class Test:
    name: str
    command: list
    environment: dict = field(default_factory=dict)
    working_directory: str = None
    labels: list = field(default_factory=list)
    will_fail: bool = False
    pass_regex: list = field(default_factory=list)
    fail_regex: list = field(default_factory=list)
    fixtures_required: list = field(default_factory=list)
    fixtures_setup: list = field(default_factory=list)


def load_tests(build_dir):
    """All tests of the build, in CTest's order, fixture setups included."""
    listing = subprocess.run(
        ["ctest", "--test-dir", str(build_dir), "--show-only=json-v1"], check=True, capture_output=True, text=True
    ).stdout
    tests = []
    for entry in json.loads(listing)["tests"]:
        if "command" not in entry:
            continue
        properties = {p["name"]: p["value"] for p in entry.get("properties", [])}
        tests.append(
            Test(
                name=entry["name"],
                command=entry["command"],
                environment=dict(v.split("=", 1) for v in properties.get("ENVIRONMENT", [])),
                working_directory=properties.get("WORKING_DIRECTORY"),
                labels=properties.get("LABELS", []),
                will_fail=bool(properties.get("WILL_FAIL", False)),
                pass_regex=properties.get("PASS_REGULAR_EXPRESSION", []),
                fail_regex=properties.get("FAIL_REGULAR_EXPRESSION", []),
                fixtures_required=properties.get("FIXTURES_REQUIRED", []),
                fixtures_setup=properties.get("FIXTURES_SETUP", []),
            )
        )
    return tests


def selectable(tests):
    return [t for t in tests if not EXCLUDED_LABELS & set(t.labels) and not t.fixtures_setup]


def setups_for(test, tests):
    return [t for t in tests if set(t.fixtures_setup) & set(test.fixtures_required)]


def build_targets(test, build_dir):
    """The programs of the build that a test runs (ninja targets relative to the build folder)."""
    build_dir = Path(build_dir).resolve()
    targets = []
    for argument in test.command:
        path = Path(argument)
        if path.is_absolute() and build_dir in path.parents and os.access(path, os.X_OK) and path.is_file():
            targets.append(str(path.relative_to(build_dir)))
    return targets


@dataclass
class Outcome:
    status: str  # passed, failed, timed out
    seconds: float
    output: str = ""


class TestProcess:
    """One test running in its own process group and its own folders."""

    def __init__(self, test, timeout):
        self.test = test
        self.timeout = timeout
        self.folder = Path(tempfile.mkdtemp(prefix=f"mutate-{test.name}-"))
        self.log_path = self.folder / "output.log"
        self.process = None
        self.started = None

    @property
    def gcov_prefix(self):
        return self.folder / "gcov"

    def environment(self):
        env = dict(os.environ)
        env.update(self.test.environment)
        places = {"HOME": "home", "XDG_CONFIG_HOME": "config", "XDG_DATA_HOME": "data",
                  "XDG_CACHE_HOME": "cache", "TMPDIR": "tmp"}
        for variable, name in places.items():
            (self.folder / name).mkdir()
            env[variable] = str(self.folder / name)
        env["QT_QPA_PLATFORM"] = "offscreen"
        env["GCOV_PREFIX"] = str(self.gcov_prefix)
        env["GCOV_PREFIX_STRIP"] = "0"
        return env

    def start(self):
        with open(self.log_path, "wb") as log:
            self.process = subprocess.Popen(
                self.test.command,
                cwd=self.test.working_directory,
                env=self.environment(),
                stdin=subprocess.DEVNULL,
                stdout=log,
                stderr=subprocess.STDOUT,
                start_new_session=True,
            )
        self.started = time.monotonic()
        return self

    def elapsed(self):
        return time.monotonic() - self.started

    def poll(self):
        """None while running; the Outcome once it ended or ran out of time."""
        code = self.process.poll()
        if code is None and self.elapsed() <= self.timeout:
            return None
        if code is None:
            self.kill()
            return Outcome("timed out", self.elapsed(), self._output())
        self._kill_group()  # whatever the test started and left behind
        output = self._output()
        return Outcome("passed" if self._passed(code, output) else "failed", self.elapsed(), output)

    def wait(self):
        while True:
            outcome = self.poll()
            if outcome is not None:
                return outcome
            time.sleep(0.05)

    def _passed(self, code, output):
        if self.test.pass_regex:
            passed = any(re.search(p, output) for p in self.test.pass_regex)
        else:
            passed = (code == 0) != self.test.will_fail
        return passed and not any(re.search(p, output) for p in self.test.fail_regex)

    def _output(self):
        return self.log_path.read_text(errors="replace")

    def _kill_group(self):
        try:
            os.killpg(self.process.pid, signal.SIGKILL)
        except (ProcessLookupError, PermissionError):
            pass

    def kill(self):
        if self.process is not None and self.process.poll() is None:
            self._kill_group()
            self.process.wait()
        elif self.process is not None:
            self._kill_group()

    def cleanup(self):
        self.kill()
        shutil.rmtree(self.folder, ignore_errors=True)


def run_with_setups(test, tests, timeout):
    """Runs a test's fixture setups, then the test; returns the TestProcess (still to clean up)."""
    for setup in setups_for(test, tests):
        process = TestProcess(setup, timeout).start()
        try:
            process.wait()
        finally:
            process.cleanup()
    return TestProcess(test, timeout).start()

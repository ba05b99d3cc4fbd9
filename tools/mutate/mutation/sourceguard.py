"""Puts a mutant into the source tree and guarantees that the original comes back.

Before a file is changed its original is copied to the backup folder together with a note of
where it belongs; the copy goes away only once the original is back in place. A run that was
killed outright (power, SIGKILL) thus leaves the backup behind, and the next run restores it
before anything else.
"""

import json
import os
import signal
from contextlib import contextmanager
from pathlib import Path

GUARDED_SIGNALS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)


class Interrupted(Exception):
    def __init__(self, signum):
        super().__init__(signal.Signals(signum).name)
        self.signum = signum


def _write_atomically(path, data):
    temporary = path.with_name(path.name + ".mutate-tmp")
    temporary.write_bytes(data)
    os.replace(temporary, path)


class SourceGuard:
    def __init__(self, root, backup_dir):
        self.root = Path(root)
        self.backup_dir = Path(backup_dir)
        self.note = self.backup_dir / "restore.json"
        self.copy = self.backup_dir / "original"

    def restore_leftover(self):
        """Restores what an interrupted run left mutated; returns the file's path, or None."""
        if not self.note.exists():
            return None
        relative = json.loads(self.note.read_text())["path"]
        self._restore(relative)
        return relative

    @contextmanager
    def mutated(self, relative, mutated_text):
        path = self.root / relative
        original = path.read_bytes()
        self.backup_dir.mkdir(parents=True, exist_ok=True)
        _write_atomically(self.copy, original)
        _write_atomically(self.note, json.dumps({"path": relative}).encode())
        try:
            with _signals_deferred():
                _write_atomically(path, mutated_text.encode())
            yield
        finally:
            with _signals_deferred():
                self._restore(relative)

    def _restore(self, relative):
        _write_atomically(self.root / relative, self.copy.read_bytes())
        self.note.unlink()
        self.copy.unlink()


@contextmanager
def _signals_deferred():
    # Writing the original back must not itself be cut short by a second Ctrl-C.
    previous = signal.pthread_sigmask(signal.SIG_BLOCK, GUARDED_SIGNALS)
    try:
        yield
    finally:
        signal.pthread_sigmask(signal.SIG_SETMASK, previous)


def raise_on_signals():
    """SIGINT, SIGTERM and SIGHUP become an Interrupted exception, so that every finally runs."""

    def handler(signum, _frame):
        raise Interrupted(signum)

    for signum in GUARDED_SIGNALS:
        signal.signal(signum, handler)

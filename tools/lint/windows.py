#!/usr/bin/env python3
"""The library's sources and their moc output compiled for Windows (-fsyntax-only), remembering
which passed.

Each unit of a Linux compile database whose file matches REGEX is compiled again with MinGW-w64
g++, with the Linux build's defines and include folders turned into those of a Windows build: the
export headers of --exports (tools/lint/windows/CMakeLists.txt), Qt's win32-g++ defines, and
Poco's and curl's headers without the rest of the host's /usr/include (glibc's headers there would
hide every POSIX-only call). Where MinGW-w64 is kinder than MSVC, it is made MSVC's: the POSIX
headers it has and MSVC has not are errors, and windows.h defines min and max as macros
(tools/lint/windows/include). Warnings are errors, as in CI. A unit that compiled cleanly is
remembered under a hash of its preprocessed text, its file name, the command and the compiler, in
a cache outside the checkout (~/.cache/fastpanel-windows-check unless --cache says otherwise).

    windows.py --build DIR --exports DIR --root ROOT --regex REGEX [--jobs N] [--cache DIR]

Prints the compiler's diagnostics and exits 1 when a unit failed.
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

COMPILER = "x86_64-w64-mingw32-g++-posix"
ROOT_MARK = "@ROOT@"
# What qmake's win32-g++ gives a Qt 5 build (mkspecs/common/g++-win32.conf), and what CMake gives
# a Windows build (_WINDOWS).
WINDOWS_DEFINES = ["-DUNICODE", "-D_UNICODE", "-DWIN32", "-D_WINDOWS", "-DMINGW_HAS_SECURE_API=1"]
# Poco's CMake package describes the Linux build it came from; on Windows, Poco/Platform.h finds
# its own family.
LINUX_DEFINES = re.compile(r"-D(POCO_OS_FAMILY_UNIX|POCO_HAVE_FD_EPOLL|_XOPEN_SOURCE|_FILE_OFFSET_BITS|"
                           r"_LARGEFILE64_SOURCE|_REENTRANT|_THREAD_SAFE)(=.*)?$")
LINUX_FLAGS = {"-c", "-g", "-fPIC", "-fPIE", "-fvisibility=hidden", "-fvisibility-inlines-hidden"}
# The libraries whose headers Debian installs among the system's own.
THIRD_PARTY = ["Poco", "curl"]
# POSIX headers that MinGW-w64 has and MSVC has not; what a source finds in them is not on Windows.
POSIX_ONLY = ["unistd.h", "dirent.h", "strings.h", "sys/time.h", "libgen.h", "getopt.h"]
# Headers that make MinGW-w64's answer MSVC's where the two differ (min and max).
SHIMS = pathlib.Path(__file__).resolve().parent / "windows" / "include"


def host_include_dirs(compiler):
    result = subprocess.run([compiler, "-x", "c++", "-E", "-v", os.devnull], capture_output=True, text=True,
                            check=True)
    lines = result.stderr.splitlines()
    start = lines.index("#include <...> search starts here:") + 1
    return [line.strip() for line in lines[start:lines.index("End of search list.")]]


def link(name, target, folder):
    path = folder / name
    if path.is_symlink():
        path.unlink()
    path.symlink_to(target)


def system_headers(compiler, folder):
    """A folder of system headers to search before MinGW-w64's: the host's third-party header
    folders without the rest of the host's; the Windows headers these name in mixed case
    (<Winsock2.h>), which a Windows file system finds but MinGW-w64 installs in lower case; and
    the POSIX-only headers, each an error."""
    folder.mkdir(parents=True, exist_ok=True)
    for name in POSIX_ONLY:
        (folder / name).parent.mkdir(exist_ok=True)
        (folder / name).write_text(f'#error "<{name}> is POSIX-only: Windows (MSVC) has no such header"\n')
    host = host_include_dirs(compiler)
    mixed_case = set()
    for name in THIRD_PARTY:
        found = next((pathlib.Path(d, name) for d in host if pathlib.Path(d, name).is_dir()), None)
        if found is None:
            sys.exit(f"windows.py: no {name} headers on this machine")
        link(name, found, folder)
        for header in found.rglob("*.h"):
            mixed_case.update(re.findall(r"#\s*include\s*<([^>/]*[A-Z][^>/]*)>", header.read_text(errors="replace")))
    windows = [pathlib.Path(d) for d in host_include_dirs(COMPILER)]
    for name in mixed_case:
        found = next((d / name.lower() for d in windows if (d / name.lower()).is_file()), None)
        if found:
            link(name, found, folder)
    return folder.resolve()


def windows_command(entry, build, exports, system):
    args = entry.get("arguments") or shlex.split(entry["command"])
    if os.path.basename(args[0]) == "ccache":
        args = args[1:]
    kept, skip = [COMPILER], False
    linux_include = os.path.join(os.path.realpath(build), "include")
    for arg in args[1:]:
        if skip:
            skip = False
            continue
        if arg == "-o":
            skip = True
        elif arg in LINUX_FLAGS or LINUX_DEFINES.match(arg):
            pass
        elif arg.endswith("/mkspecs/linux-g++"):
            kept.append(arg[: -len("linux-g++")] + "win32-g++")
        elif arg.startswith("-I") and os.path.realpath(arg[2:]) == linux_include:
            kept.append("-I" + os.path.join(os.path.realpath(exports), "include"))
        else:
            kept.append(arg)
    source = kept.pop()
    return kept + WINDOWS_DEFINES + ["-I", str(SHIMS), "-isystem", str(system), "-Werror", source]


def at_the_include(output, system):
    """A POSIX-only header's error, told where the #include that reached it is."""
    blocked = "|".join(re.escape(name) for name in POSIX_ONLY)
    return re.sub(rf"(In file included from ([^\n]*?):(\d+)[,:]\n(?:\s+from [^\n]*\n)*)"
                  rf"{re.escape(str(system))}/(?:{blocked}):\d+:\d+:", r"\1\2:\3:1:", output)


def check(entry, command, system, root, cache, salt):
    """(output, failed, remembered) of one unit, from the cache where it holds the unit's key."""
    directory = entry["directory"]
    preprocessed = subprocess.run(command + ["-E", "-P"], cwd=directory, capture_output=True, check=False)
    stored = None
    if preprocessed.returncode == 0:
        digest = hashlib.sha256(salt)
        for part in (os.path.relpath(entry["file"], root), " ".join(command)):
            digest.update(part.replace(root, ROOT_MARK).encode() + b"\0")
        # __FILE__ in Qt's asserts names the checkout; a clone elsewhere has the same unit.
        digest.update(preprocessed.stdout.replace(root.encode(), ROOT_MARK.encode()))
        stored = cache / digest.hexdigest()
        if stored.exists():
            return "", False, True
    result = subprocess.run(command + ["-fsyntax-only"], cwd=directory, capture_output=True, text=True, check=False)
    if stored and result.returncode == 0:
        stored.touch()
    return at_the_include(result.stdout + result.stderr, system), result.returncode != 0, False


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", required=True, help="the Linux build with compile_commands.json")
    parser.add_argument("--exports", required=True, help="the build of tools/lint/windows")
    parser.add_argument("--root", required=True)
    parser.add_argument("--regex", required=True)
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 2)
    parser.add_argument("--cache", default=os.path.expanduser("~/.cache/fastpanel-windows-check"))
    options = parser.parse_args()

    root = os.path.realpath(options.root)
    cache = pathlib.Path(options.cache)
    cache.mkdir(parents=True, exist_ok=True)
    version = subprocess.run([COMPILER, "--version"], capture_output=True, check=True).stdout
    salt = hashlib.sha256(version).digest()

    with open(os.path.join(options.build, "compile_commands.json"), encoding="utf-8") as database:
        entries = [entry for entry in json.load(database) if re.search(options.regex, entry["file"])]
    if not entries:
        sys.exit(f"windows.py: no unit of {options.build} matches {options.regex}")
    first = entries[0].get("arguments") or shlex.split(entries[0]["command"])
    host = first[1] if os.path.basename(first[0]) == "ccache" else first[0]
    system = system_headers(host, pathlib.Path(options.exports, "system"))
    commands = [windows_command(entry, options.build, options.exports, system) for entry in entries]

    return run_pooled("windows", list(zip(entries, commands)),
                      lambda unit: check(*unit, system, root, cache, salt), options.jobs, options.cache)


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Lists the operations of korvane, kvWidgets and osdu that the panel library calls.

The list is what the linker sees: the symbols that the panel leaves undefined and one of the
platform libraries defines. A host that builds the panel against its own libraries
(FASTPANEL_PLATFORM=host) must provide each of them. Operations beyond the host interface we
were given (given.txt beside this script) are marked.

  operations.py --panel LIB --platform LIB [LIB...] --write docs/platform-operations.md
  operations.py --panel LIB --platform LIB [LIB...] --check docs/platform-operations.md
"""

import argparse
import difflib
import pathlib
import re
import shutil
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
REGENERATE = ("python3 tools/platform-operations/operations.py --panel build/fast/libfastpanel.so "
              "--platform build/platform/*/lib*.so --write docs/platform-operations.md")
# What the compiler and moc make for a class: given whenever the class is.
CLASS_MADE = re.compile(r"^(?P<owner>.+)::(?:staticMetaObject|qt_metacall|qt_metacast|metaObject)$")
TYPE_DATA = re.compile(r"^(?:vtable|typeinfo|typeinfo name) for ")
READABLE = [("std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >", "std::string"),
            ("std::chrono::duration<long, std::ratio<1l, 1000000000l> >", "std::chrono::nanoseconds")]


def dynamic_symbols(library, which):
    nm = shutil.which("nm")
    if not nm:
        sys.exit("operations.py: no nm on the PATH (binutils)")
    out = subprocess.run([nm, "-D", which, str(library)], check=True, capture_output=True, text=True).stdout
    # "<address> <type> <name>" or "<type> <name>" for undefined ones; weak undefined ones count too.
    return {line.split()[-1] for line in out.splitlines() if line.strip()}


def demangle(symbols):
    out = subprocess.run([shutil.which("c++filt") or "c++filt"], input="\n".join(symbols), check=True,
                         capture_output=True, text=True).stdout
    return dict(zip(symbols, out.splitlines()))


def name_of(operation):
    """The qualified name without parameters and qualifiers."""
    depth = 0
    for index, char in enumerate(operation):
        if char in "<":
            depth += 1
        elif char in ">":
            depth -= 1
        elif char == "(" and depth == 0:
            return operation[:index]
    return operation


def read_given(path):
    lines = (line.strip() for line in path.read_text(encoding="utf-8").splitlines())
    return {line for line in lines if line and not line.startswith("#")}


def is_given(operation, given):
    name = name_of(operation)
    made = CLASS_MADE.match(name)
    if made:
        owner = made.group("owner")
        return any(entry == owner + "::*" or entry.startswith(owner + "::") for entry in given)
    owner = name.rpartition("::")[0]
    return name in given or (owner and owner + "::*" in given)


def readable(operation):
    for long, short in READABLE:
        operation = operation.replace(long, short)
    return operation


def operations(panel, platform, given):
    needed = dynamic_symbols(panel, "--undefined-only")
    by_library = {}
    for library in platform:
        name = re.sub(r"^lib|(-qt6)?\.so.*$|\.dylib$", "", pathlib.Path(library).name)
        name = {"kvwidgets": "kvWidgets"}.get(name, name)
        provided = dynamic_symbols(library, "--defined-only") & needed
        names = demangle(sorted(provided))
        # A class's type information comes with the class, and whether the panel refers to it
        # depends on the compiler and Qt's casts, not on what the panel calls.
        provided = {s for s in provided if not TYPE_DATA.match(names[s])}
        by_library[name] = sorted((readable(names[s]), not is_given(names[s], given)) for s in provided)
    return by_library


def render(by_library):
    total = sum(len(ops) for ops in by_library.values())
    beyond = sum(extra for ops in by_library.values() for _, extra in ops)
    lines = ["# Operations of the platform libraries that the panel calls", "",
             "Written by `tools/platform-operations/operations.py` from the build; do not edit. The",
             "package test fails when it differs from what the build yields; regenerate with",
             "", "```sh", REGENERATE, "```", "",
             "Each line is a function or datum of the host's `korvane`, `kvWidgets` or `osdu` that",
             "`libfastpanel` links against, as the linker names it. **beyond** marks those outside the",
             "host interface we were given (`tools/platform-operations/given.txt`). Calls through a",
             "virtual function and functions defined in the headers leave no symbol, so they are not",
             "listed; the headers declare them.", "",
             f"{total} operations, {beyond} of them beyond the given interface.", ""]
    for library in sorted(by_library, key=str.lower):
        lines += [f"## {library}", ""]
        lines += [f"- `{op}`" + (" **beyond**" if extra else "") for op, extra in by_library[library]]
        lines.append("")
    return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--panel", required=True, help="the panel's shared library")
    parser.add_argument("--platform", required=True, nargs="+", help="korvane, kvWidgets and osdu")
    parser.add_argument("--given", default=HERE / "given.txt", type=pathlib.Path)
    mode = parser.add_mutually_exclusive_group(required=True)
    mode.add_argument("--write", type=pathlib.Path)
    mode.add_argument("--check", type=pathlib.Path)
    args = parser.parse_args()

    text = render(operations(args.panel, args.platform, read_given(args.given)))
    if args.write:
        args.write.write_text(text, encoding="utf-8")
        return 0
    committed = args.check.read_text(encoding="utf-8") if args.check.exists() else ""
    if committed == text:
        return 0
    sys.stdout.writelines(difflib.unified_diff(committed.splitlines(True), text.splitlines(True),
                                               str(args.check), "from the build"))
    print(f"\n{args.check} differs from the operations the panel calls; regenerate with\n  {REGENERATE}")
    return 1


if __name__ == "__main__":
    sys.exit(main())

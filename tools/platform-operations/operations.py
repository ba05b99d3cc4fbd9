#!/usr/bin/env python3
"""Lists the operations of korvane, kvWidgets and osdu that the panel library calls.

The list joins two views of one build. The linker's: the symbols that the panel leaves
undefined and one of the platform libraries defines. The compiler's: what the panel's code
refers to in the platform's headers (references.py), which adds calls through virtual
functions, functions defined in headers and members of plain records. A host that builds the
panel against its own libraries (FASTPANEL_PLATFORM=host) must provide each of them. Operations
beyond the host interface we were given (given.txt beside this script) are marked.

  operations.py --panel LIB --platform LIB [LIB...] --sources BUILD --panel-dir DIR [DIR...]
                --platform-include DIR [DIR...] (--write | --check) docs/platform-operations.md

BUILD holds the compile_commands.json of the build that made LIB; the panel's units are those
under a --panel-dir, the platform's headers those under a --platform-include.
"""

import argparse
import difflib
import os
import pathlib
import re
import shutil
import subprocess
import sys

from references import Scope, platform_references

HERE = pathlib.Path(__file__).resolve().parent
# What the compiler and moc make for a class: given whenever the class is.
CLASS_MADE = re.compile(r"^(?P<owner>.+)::(?:staticMetaObject|qt_metacall|qt_metacast|metaObject)$")
TYPE_DATA = re.compile(r"^(?:vtable|typeinfo|typeinfo name) for ")
READABLE = [("std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >", "std::string"),
            ("std::chrono::duration<long, std::ratio<1l, 1000000000l> >", "std::chrono::nanoseconds"),
            ("std::vector<std::string, std::allocator<std::string > >", "std::vector<std::string>"),
            ("[abi:cxx11]", "")]


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


def linked(panel, platform):
    """{library: {symbol}} that the panel takes from each platform library."""
    needed = dynamic_symbols(panel, "--undefined-only")
    by_library = {}
    for library in platform:
        name = re.sub(r"^lib|(-qt6)?\.so.*$|\.dylib$", "", pathlib.Path(library).name)
        by_library[{"kvwidgets": "kvWidgets"}.get(name, name)] = dynamic_symbols(library, "--defined-only") & needed
    return by_library


def operations(linked_symbols, references, given):
    """{library: [(operation, beyond, without a symbol)]} from both views."""
    referenced = {}
    for library, symbol, qualified in references:
        referenced.setdefault(library, {})[symbol or qualified] = bool(symbol)
    symbols = {s for found in linked_symbols.values() for s in found}
    symbols |= {s for found in referenced.values() for s, mangled in found.items() if mangled}
    names = demangle(sorted(symbols))
    by_library = {}
    for library in set(linked_symbols) | set(referenced):
        seen_by_linker = {readable(names[s]) for s in linked_symbols.get(library, ())}
        listed = set(seen_by_linker)
        listed |= {readable(names[s]) if mangled else s for s, mangled in referenced.get(library, {}).items()}
        # A class's type information comes with the class, and whether the panel refers to it
        # depends on the compiler and Qt's casts, not on what the panel calls.
        listed = {op for op in listed if not TYPE_DATA.match(op)}
        by_library[library] = sorted((op, not is_given(op, given), op not in seen_by_linker) for op in listed)
    return by_library


def render(by_library):
    total = sum(len(ops) for ops in by_library.values())
    beyond = sum(extra for ops in by_library.values() for _, extra, _ in ops)
    unlinked = sum(header for ops in by_library.values() for _, _, header in ops)
    lines = ["# Operations of the platform libraries that the panel calls", "",
             "Written by `tools/platform-operations/operations.py` from the host-mode build of the",
             "package test; do not edit. The test fails when this differs from what the build yields,",
             "and prints the difference as a patch to apply.", "",
             "Each line is a function, datum or enumerator of the host's `korvane`, `kvWidgets` or",
             "`osdu` that `libfastpanel` calls or uses, named as the linker names it: what the panel",
             "links against, and what its code refers to in those libraries' headers. *header* marks",
             "those that leave no symbol (calls through a virtual function, functions defined in a",
             "header, members of a record, enumerators, virtual functions that a class of the panel",
             "overrides): the host's headers must declare them alike.",
             "**beyond** marks those outside the host interface we were given",
             "(`tools/platform-operations/given.txt`).", "",
             f"{total} operations, {beyond} of them beyond the given interface, {unlinked} through the "
             "headers alone.", ""]
    for library in sorted(by_library, key=str.lower):
        lines += [f"## {library}", ""]
        lines += [f"- `{op}`" + (" *header*" if header else "") + (" **beyond**" if extra else "")
                  for op, extra, header in by_library[library]]
        lines.append("")
    return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--panel", required=True, help="the panel's shared library")
    parser.add_argument("--platform", required=True, nargs="+", help="korvane, kvWidgets and osdu")
    parser.add_argument("--sources", required=True, help="the build folder with compile_commands.json")
    parser.add_argument("--panel-dir", required=True, nargs="+", help="folders of the panel's sources")
    parser.add_argument("--platform-include", required=True, nargs="+",
                        help="folders holding korvane/, kvWidgets/ and osdu/ headers")
    parser.add_argument("--given", default=HERE / "given.txt", type=pathlib.Path)
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1)
    mode = parser.add_mutually_exclusive_group(required=True)
    mode.add_argument("--write", type=pathlib.Path)
    mode.add_argument("--check", type=pathlib.Path)
    args = parser.parse_args()

    references = platform_references(args.sources, Scope(args.panel_dir, args.platform_include), args.jobs)
    text = render(operations(linked(args.panel, args.platform), references, read_given(args.given)))
    if args.write:
        args.write.write_text(text, encoding="utf-8")
        return 0
    committed = args.check.read_text(encoding="utf-8") if args.check.exists() else ""
    if committed == text:
        return 0
    sys.stdout.writelines(difflib.unified_diff(committed.splitlines(True), text.splitlines(True),
                                               str(args.check), "from the build"))
    print(f"\n{args.check} differs from the operations the panel calls. Save the diff above, from its"
          f" '---' line, and apply it:\n  patch {args.check} < saved.diff")
    return 1


if __name__ == "__main__":
    sys.exit(main())

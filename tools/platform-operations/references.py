"""What the panel's own code refers to in the platform libraries, as the compiler sees it.

The linker sees only the calls that leave a symbol. A call through a virtual function, a function
defined in a header and a member of a plain record leave none, and a host must still declare each
of them as the panel expects. This walks the syntax tree of every unit of the panel (its sources
and their moc output, from the build's compile database) with libclang, and keeps each call,
reference and member access whose declaration is in a header of korvane, kvWidgets or osdu, and
each virtual function of theirs that a class of the panel overrides.
"""

import concurrent.futures
import ctypes
import json
import os
import pathlib
import shlex
import sys

LIBRARIES = ("korvane", "kvWidgets", "osdu")
# Debian's python3-clang, when the interpreter running this is not Debian's own.
DEBIAN_MODULES = "/usr/lib/python3/dist-packages"


def _cindex():
    try:
        import clang.cindex
    except ImportError:
        sys.path.append(DEBIAN_MODULES)
        try:
            import clang.cindex
        except ImportError:
            sys.exit("operations.py: libclang's Python module is missing (Debian: python3-clang-14)")
    return clang.cindex


class Scope:
    """Which files are the panel's and which declarations are the platform's."""

    def __init__(self, panel_dirs, platform_includes):
        self.panel_dirs = [str(pathlib.Path(d).resolve()) + os.sep for d in panel_dirs]
        self.platform_includes = [str(pathlib.Path(d).resolve()) + os.sep for d in platform_includes]

    def is_panel(self, path):
        path = os.path.realpath(path)
        return any(path.startswith(d) for d in self.panel_dirs)

    def library_of(self, path):
        path = os.path.realpath(path)
        if self.is_panel(path):
            return None
        for include in self.platform_includes:
            if path.startswith(include):
                first = path[len(include):].split(os.sep, 1)[0]
                if first in LIBRARIES:
                    return first
        return None


def _arguments(entry):
    """The compiler's arguments without the compiler (and its launcher), the output and the source."""
    words = entry["arguments"] if "arguments" in entry else shlex.split(entry["command"])
    while words and not words[0].startswith("-"):
        words = words[1:]
    kept, skip = [], False
    for word in words:
        if skip:
            skip = False
        elif word in ("-o", "-c"):
            skip = True
        elif word != entry["file"]:
            kept.append(word)
    return kept


def _qualified(cursor, kinds):
    parts = []
    while cursor is not None and cursor.kind != kinds.TRANSLATION_UNIT:
        if cursor.spelling:
            parts.append(cursor.spelling)
        cursor = cursor.semantic_parent
    return "::".join(reversed(parts))


def _is_implicit(declaration):
    """A special member the compiler declared: it sits where its class's name does."""
    owner = declaration.semantic_parent
    return owner is not None and declaration.location.line == owner.location.line \
        and declaration.location.column == owner.location.column


def _overridden(cindex, method):
    """The declarations that a method overrides; the Python module lacks this call."""
    lib = cindex.conf.lib
    if not getattr(lib.clang_getOverriddenCursors, "argtypes", None):
        lib.clang_getOverriddenCursors.argtypes = [cindex.Cursor, ctypes.POINTER(ctypes.POINTER(cindex.Cursor)),
                                                   ctypes.POINTER(ctypes.c_uint)]
        lib.clang_getOverriddenCursors.restype = None
        lib.clang_disposeOverriddenCursors.argtypes = [ctypes.POINTER(cindex.Cursor)]
        lib.clang_disposeOverriddenCursors.restype = None
    array, count = ctypes.POINTER(cindex.Cursor)(), ctypes.c_uint(0)
    lib.clang_getOverriddenCursors(method, ctypes.byref(array), ctypes.byref(count))
    try:
        # Copied out: the array goes with the call below, and each cursor keeps its unit.
        found = []
        for index in range(count.value):
            cursor = cindex.Cursor()
            ctypes.pointer(cursor)[0] = array[index]
            cursor._tu = method._tu
            found.append(cursor)
        return found
    finally:
        if count.value:
            lib.clang_disposeOverriddenCursors(array)


def _unit(job):
    """(library, mangled symbol or "", qualified name) of each platform declaration one unit refers to."""
    entry, scope = job
    cindex = _cindex()
    kinds = cindex.CursorKind
    wanted = {kinds.CALL_EXPR, kinds.DECL_REF_EXPR, kinds.MEMBER_REF_EXPR}
    methods = {kinds.CXX_METHOD, kinds.DESTRUCTOR}
    data = {kinds.FIELD_DECL, kinds.ENUM_CONSTANT_DECL}
    os.chdir(entry["directory"])
    unit = cindex.Index.create().parse(entry["file"], args=_arguments(entry))
    errors = [str(d) for d in unit.diagnostics if d.severity >= cindex.Diagnostic.Error]
    if errors:
        return None, f"{entry['file']}: " + "; ".join(errors[:3])
    found = set()
    pending = [c for c in unit.cursor.get_children() if c.location.file and scope.is_panel(c.location.file.name)]
    while pending:
        cursor = pending.pop()
        pending.extend(cursor.get_children())
        if cursor.kind in wanted:
            declarations = [cursor.referenced]
        elif cursor.kind in methods and cursor.is_virtual_method():
            declarations = _overridden(cindex, cursor)
        else:
            continue
        for declaration in declarations:
            if declaration is None or declaration.location.file is None:
                continue
            library = scope.library_of(declaration.location.file.name)
            if not library or _is_implicit(declaration):
                continue
            symbol = "" if declaration.kind in data else declaration.mangled_name
            found.add((library, symbol, _qualified(declaration, kinds)))
    return found, None


def platform_references(database_dir, scope, jobs):
    entries = json.loads((pathlib.Path(database_dir) / "compile_commands.json").read_text(encoding="utf-8"))
    units = [e for e in entries if scope.is_panel(os.path.join(e["directory"], e["file"]))]
    if not units:
        sys.exit(f"operations.py: no unit of the panel in {database_dir}/compile_commands.json")
    found = set()
    with concurrent.futures.ProcessPoolExecutor(max_workers=max(1, jobs)) as pool:
        for references, error in pool.map(_unit, [(e, scope) for e in units]):
            if error:
                sys.exit(f"operations.py: libclang could not read {error}")
            found |= references
    return found

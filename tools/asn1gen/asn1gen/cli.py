"""Command line: compile one module into a header and a source.

    asn1gen.py MODULE.asn --header-dir DIR --source-dir DIR [-I DIR ...]
               [--depfile FILE]

Imported modules are looked up by name (Module-Name -> Module_Name.asn) in the
module's own folder and in every -I folder. Outputs are rewritten only when
their text changes, so an unchanged result does not trigger recompilation.
"""

import argparse
import os
import sys

from .emit_cpp import emit
from .errors import CompileError
from .resolve import Program


def write_if_changed(path, text):
    try:
        with open(path, encoding="utf-8") as f:
            if f.read() == text:
                return
    except OSError:
        pass
    os.makedirs(os.path.dirname(path) or ".", exist_ok=True)
    tmp = path + ".tmp"
    with open(tmp, "w", encoding="utf-8") as f:
        f.write(text)
    os.replace(tmp, path)


def compile_module(path, search_dirs):
    """(ModInfo, header text, source text, files read) for the module at path."""
    prog = Program([os.path.dirname(os.path.abspath(path))] + list(search_dirs))
    mod = prog.load_path(path)
    mod.analyze()
    done = set()
    while len(done) < len(prog.modules):
        for other in list(prog.modules.values()):
            if other.name not in done:
                done.add(other.name)
                other.analyze()
    prog.finish()
    header, source = emit(mod, os.path.basename(path))
    return mod, header, source, prog.files


def main(argv=None):
    ap = argparse.ArgumentParser(prog="asn1gen", description=__doc__.split("\n")[0])
    ap.add_argument("module")
    ap.add_argument("--header-dir", required=True)
    ap.add_argument("--source-dir", required=True)
    ap.add_argument("-I", dest="search", action="append", default=[])
    ap.add_argument("--depfile")
    args = ap.parse_args(argv)
    try:
        mod, header, source, files = compile_module(args.module, args.search)
    except CompileError as e:
        print(str(e), file=sys.stderr)
        return 1
    except OSError as e:
        print(f"{args.module}:0: {e}", file=sys.stderr)
        return 1
    hpath = os.path.join(args.header_dir, mod.cbase + ".h")
    spath = os.path.join(args.source_dir, mod.cbase + ".cpp")
    write_if_changed(hpath, header)
    write_if_changed(spath, source)
    if args.depfile:
        deps = " ".join(os.path.abspath(f).replace(" ", "\\ ") for f in files)
        write_if_changed(args.depfile, f"{spath}: {deps}\n")
    return 0

"""Directives file beside a module (<Module>.dir): per-type choices that the
ASN.1 text alone does not settle. Grammar in docs/asn1-compiler.md."""

from .errors import CompileError

# directive -> number of arguments
_ARITY = {"namespace": 1, "list": 1, "array": 1, "opentype": 1, "name": 2, "bigint": 1,
          "int": 1}


class Directive:
    def __init__(self, verb, args, file, line):
        self.verb, self.args, self.file, self.line = verb, args, file, line
        self.used = False


class Directives:
    def __init__(self, file=None):
        self.file = file
        self.namespace = None
        self.items = []

    def find(self, verb, *keys):
        """The directive of this verb whose path is one of keys (first match)."""
        for d in self.items:
            if d.verb == verb and d.args[0] in keys:
                d.used = True
                return d
        return None

    def unused(self):
        return [d for d in self.items if not d.used and d.verb != "namespace"]


def parse_directives(text, filename):
    dirs = Directives(filename)
    for lineno, raw in enumerate(text.splitlines(), 1):
        line = raw.split("#", 1)[0].strip()
        if not line:
            continue
        words = line.split()
        verb, args = words[0], words[1:]
        if verb not in _ARITY:
            raise CompileError(filename, lineno, f"unknown directive '{verb}'")
        if verb == "namespace" and not args:
            args = [""]
        if len(args) != _ARITY[verb]:
            raise CompileError(filename, lineno,
                               f"'{verb}' takes {_ARITY[verb]} argument(s), found {len(args)}")
        if verb == "namespace":
            ns = args[0].strip('"')
            if ns and not all(p.isidentifier() for p in ns.split("::")):
                raise CompileError(filename, lineno, f"'{ns}' is not a C++ namespace name")
            if dirs.namespace is not None:
                raise CompileError(filename, lineno, "namespace given twice")
            dirs.namespace = ns
            continue
        if verb == "name" and not args[1].isidentifier():
            raise CompileError(filename, lineno, f"'{args[1]}' is not a C++ identifier")
        dirs.items.append(Directive(verb, args, filename, lineno))
    return dirs

"""Helpers of the compiler tests: write modules into a temporary folder and
compile one of them."""

import os
import tempfile

from asn1gen.cli import compile_module
from asn1gen.errors import CompileError


class ModuleDir:
    """A temporary folder of modules: write(name, text[, directives])."""

    def __init__(self):
        self.tmp = tempfile.TemporaryDirectory()
        self.path = self.tmp.name

    def write(self, name, text, directives=None):
        base = name.replace("-", "_")
        with open(os.path.join(self.path, base + ".asn"), "w", encoding="utf-8") as f:
            f.write(text)
        dir_path = os.path.join(self.path, base + ".dir")
        if directives is not None:
            with open(dir_path, "w", encoding="utf-8") as f:
                f.write(directives)
        elif os.path.exists(dir_path):
            os.remove(dir_path)
        return os.path.join(self.path, base + ".asn")

    def compile(self, name):
        return compile_module(os.path.join(self.path, name.replace("-", "_") + ".asn"), [])

    def error(self, name):
        """The refusal text with the folder removed, or None when it compiles."""
        try:
            self.compile(name)
        except CompileError as e:
            return str(e).replace(self.path + os.sep, "")
        return None

    def close(self):
        self.tmp.cleanup()


def module(body, name="M", tags="EXPLICIT", imports=""):
    return (f"{name} DEFINITIONS {tags} TAGS ::= BEGIN\n{imports}{body}\nEND\n")

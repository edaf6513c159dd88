"""Abstract syntax of a module as the parser reads it (X.680, X.681, X.682)."""


class Node:
    """Anything that can be located in a source file for error messages."""
    file = "?"
    line = 0

    def at(self, file, line):
        self.file, self.line = file, line
        return self


class Tag(Node):
    """[class number] with its mode: 'EXPLICIT', 'IMPLICIT' or None (module default)."""

    def __init__(self, cls, number, mode):
        self.cls, self.number, self.mode = cls, number, mode


class Constraint(Node):
    """One parenthesised constraint.

    kind: 'size' (sub is a Constraint on the count), 'range' (lo, hi values,
    'MIN'/'MAX' allowed), 'single' (value), 'union' (parts), 'table' (set name,
    at_path list or None), 'from', 'containing', 'components', 'type' (a
    contained subtype), 'pattern'. extensible: the root is followed by '...'.
    """

    def __init__(self, kind, **kw):
        self.kind = kind
        self.extensible = False
        self.__dict__.update(kw)


class Type(Node):
    """A type as written.

    kind is one of the builtin names ('BOOLEAN', 'INTEGER', 'SEQUENCE',
    'SEQUENCE OF', 'CHOICE', 'UTF8String' ...), 'ANY', 'REF' (name, module),
    or 'FIELD' (a class field type: cls, field, constraint via constraints).
    """

    def __init__(self, kind):
        self.kind = kind
        self.tags = []          # outermost first
        self.constraints = []
        self.named = []         # (name, value-or-None, line): named numbers, bits, enumerators
        self.enum_ext = False   # ENUMERATED with '...'
        self.components = []    # Component list (SEQUENCE, SET, CHOICE)
        self.extensible = False
        self.elem = None        # SEQUENCE OF / SET OF element Type
        self.elem_name = None   # the optional identifier of X.680 25.1 'SEQUENCE OF id Type'
        self.size = None        # SEQUENCE SIZE (...) OF: the size Constraint
        self.name = None        # REF: the referenced name; FIELD: class name
        self.module = None      # REF: explicit Module.Type
        self.field = None       # FIELD: the field name ('id', 'Type')
        self.defined_by = None  # ANY DEFINED BY: the component name


class Component(Node):
    def __init__(self, name, type_):
        self.name = name
        self.type = type_
        self.optional = False
        self.default = None      # Value
        self.extension = False   # an extension addition (after '...')
        self.components_of = None  # COMPONENTS OF: the Type


class Value(Node):
    """A value as written: kind 'int', 'bool', 'null', 'ref' (name, module),
    'braced' (tokens: the raw tokens between the braces, resolved later against
    the governing type), 'cstring', 'bstring', 'hstring', 'choice' (name, value),
    'real', 'minmax' ('MIN' or 'MAX')."""

    def __init__(self, kind, v=None, **kw):
        self.kind = kind
        self.v = v
        self.__dict__.update(kw)


class FieldSpec(Node):
    """A field of an information object class (X.681 9)."""

    def __init__(self, name, kind):
        self.name = name        # without '&'
        self.kind = kind        # 'type', 'value' (fixed-type value), 'other'
        self.type = None        # fixed-type value field: its Type
        self.unique = False
        self.optional = False
        self.default = None


class ClassDef(Node):
    def __init__(self):
        self.fields = []
        self.syntax = None      # WITH SYNTAX: list of items ('word', text) / ('field', name) / ('opt', [...])


class Import(Node):
    def __init__(self, module, symbols):
        self.module = module
        self.symbols = symbols  # list of (name, line)


class Assignment(Node):
    """kind: 'type' (type), 'value' (governor Type, value Value), 'class'
    (cls ClassDef, or alias name), 'valueset' (governor name: an object set or a
    value set; tokens), 'object' decided later from a 'value' whose governor is a class."""

    def __init__(self, kind, name, **kw):
        self.kind = kind
        self.name = name
        self.__dict__.update(kw)


class Module(Node):
    def __init__(self, name):
        self.name = name
        self.oid = None          # Value or None
        self.tag_default = "EXPLICIT"
        self.extensibility_implied = False
        self.imports = []
        self.assignments = []
        self.by_name = {}
        self.directives = None
        self.path = None

"""Intermediate representation handed from the resolver to the emitter: records,
descriptors, values, information objects and object sets of one module."""

CONS = 0x20000000
CLASS_BITS = {"UNIVERSAL": 0x00000000, "APPLICATION": 0x40000000, "CONTEXT": 0x80000000,
              "PRIVATE": 0xC0000000}

# Engine kinds whose encoding is constructed (X.690 8.9-8.12).
CONSTRUCTED_KINDS = {"kSequence", "kSet", "kSequenceOf", "kSetOf"}
PRIMITIVE_KINDS = {"kBoolean", "kInteger", "kEnumerated", "kBigInteger", "kNull", "kBitString",
                   "kOctetString", "kObjectId", "kCharString", "kBMPString",
                   "kUniversalString", "kOpenType", "kTableOpenType", "kTableOctetString"}


class Limits:
    """Size (strings, lists) or value (integers) bounds; enumeration values."""

    def __init__(self, lo=None, hi=None, values=None, extensible=False):
        self.lo, self.hi, self.values, self.extensible = lo, hi, values, extensible

    def key(self):
        return (self.lo, self.hi, tuple(self.values or ()), self.extensible)


class Desc:
    """One engine descriptor (Korvex::Asn1Engine::TypeDesc).

    storage: 'engine' (a constant of the engine, name is its C++ name),
    'public' (asn1Desc_<Type>, declared in the module header), 'local' (a static
    of the module source). fresh: a local descriptor made for one occurrence
    whose tag may still be replaced by an IMPLICIT tag.
    """

    def __init__(self, kind, tag=0, size="0", storage="local", name=None, mod=None):
        self.kind = kind
        self.tag = tag
        self.flags = []
        self.size = size          # C++ expression
        self.off1 = "0"
        self.off2 = "0"
        self.inner = None
        self.members = None       # list of Member
        self.limits = None
        self.tagindex = []        # (tag, member index) sorted
        self.storage = storage
        self.name = name
        self.mod = mod
        self.fresh = False
        self.named = {}           # named numbers / bits / enumerators (for values)
        self.typedef = None       # the TypeDef whose public descriptor this is
        self.char_tag = None      # string kinds: the universal tag

    def clone(self):
        d = Desc(self.kind, self.tag, self.size, "local", None, self.mod)
        d.flags = list(self.flags)
        d.off1, d.off2, d.inner, d.members = self.off1, self.off2, self.inner, self.members
        d.limits, d.tagindex, d.named = self.limits, list(self.tagindex), dict(self.named)
        d.char_tag = self.char_tag
        d.typedef = self.typedef  # a copy still describes the same record
        d.fresh = True
        return d

    def constructed(self):
        if self.tag:
            return bool(self.tag & CONS)
        if self.kind in CONSTRUCTED_KINDS:
            return True
        if self.kind == "kTagged":
            return "kExplicitTag" in self.flags or self.inner.constructed()
        if self.kind == "kAlias":
            return self.inner.constructed()
        return False

    def first_tags(self):
        """Tags (without the constructed bit) that may start a value, None = any."""
        if self.tag:
            return {self.tag & ~CONS}
        if self.kind == "kAlias":
            return self.inner.first_tags()
        if self.kind == "kChoice":
            tags = set()
            for m in self.members:
                t = {m.tag & ~CONS} if m.tag else m.type.first_tags()
                if t is None:
                    return None
                tags |= t
            if "kExtensible" in self.flags:
                return None
            return tags
        return None  # open types


class Member:
    """A component of a SEQUENCE/SET or an alternative of a CHOICE."""

    def __init__(self, name, field, ctype, type_desc):
        self.name = name            # ASN.1 identifier
        self.field = field          # C++ field name (None: no storage, e.g. NULL)
        self.ctype = ctype          # C++ field type
        self.type = type_desc       # Desc of the component type without its own tag
        self.tag = 0                # own tag word (with the constructed bit), 0 = none
        self.explicit = False
        self.optional = False
        self.default = None         # DER bytes of the default value (member tags included)
        self.extension = False
        self.presence = -1
        self.by_pointer = False     # CHOICE alternative held by pointer
        self.table = None           # Table
        self.line = 0


class Table:
    """Table constraint of an open-type component (X.682 10): the object set, the
    sibling component holding the key and the class field giving the type."""

    def __init__(self, objset, key_name, field_index, via_list, line):
        self.objset, self.key_name, self.field_index = objset, key_name, field_index
        self.via_list, self.line = via_list, line
        self.key_index = None


class TypeDef:
    """A generated record (or typedef) ASN1T_<cname> with its functions and control class.

    shape: 'struct' (SEQUENCE/SET), 'choice', 'array', 'list' (SEQUENCE OF/SET OF
    as count+array or ASN1TSeqOfList), 'alias' (typedef of a primitive or another
    record).
    """

    def __init__(self, cname, mod, shape):
        self.cname = cname
        self.mod = mod
        self.shape = shape
        self.desc = None
        self.members = []
        self.alias_ctype = None
        self.elem_ctype = None
        self.elem_desc = None
        self.presence_bits = 0
        self.has_table = False
        self.extensible = False
        self.depends = []           # TypeDefs embedded by value (emission order)
        self.shared_seqof = False
        self.line = 0
        self.asn1_name = None

    @property
    def record(self):
        return "ASN1T_" + self.cname


class ValueDef:
    """A value assignment emitted as a constant."""

    def __init__(self, cname, kind, value, line):
        self.cname, self.kind, self.value, self.line = cname, kind, value, line


class ClassInfo:
    def __init__(self, name, cname, mod):
        self.name, self.cname, self.mod = name, cname, mod
        self.fields = []          # FieldSpec
        self.syntax = None
        self.type_fields = []     # names
        self.value_fields = []    # names
        self.key_field = None
        self.key_kind = None      # 'oid' or 'int'


class ObjectInfo:
    def __init__(self, name, cname, cls, mod, line):
        self.name, self.cname, self.cls, self.mod, self.line = name, cname, cls, mod, line
        self.types = {}           # field name -> Desc (public)
        self.values = {}          # field name -> (ctype, C expression of a pointer, constant def)
        self.key = None           # python value of the key


class ObjectSetInfo:
    def __init__(self, name, cname, cls, mod, line):
        self.name, self.cname, self.cls, self.mod, self.line = name, cname, cls, mod, line
        self.objects = []         # ObjectInfo
        self.extensible = False

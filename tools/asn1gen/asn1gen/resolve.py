"""Resolution of parsed modules into the IR: imports across modules, tags (X.680
31), realisation of every type as a record or typedef with its descriptor, values,
information object classes, objects and object sets (X.681), table constraints
(X.682), and the directives of each module."""

import os

from .directives import Directives, parse_directives
from .errors import CompileError
from .ir import (CLASS_BITS, CONS, ClassInfo, Desc, Limits, Member, ObjectInfo,
                 ObjectSetInfo, Table, TypeDef, ValueDef)
from .model import FieldSpec, Type, Value
from .parser import STRING_TYPES, TIME_TYPES, is_upper, parse_module_text, parse_tokens_as
from .values import ValueResolver, encode_member, split_top, ultimate

INT32_MIN, INT32_MAX = -2**31, 2**31 - 1

CPP_KEYWORDS = set("""alignas alignof and and_eq asm auto bitand bitor bool break case catch char
char16_t char32_t class compl const constexpr const_cast continue decltype default delete do
double dynamic_cast else enum explicit export extern false float for friend goto if inline int
long mutable namespace new noexcept not not_eq nullptr operator or or_eq private protected public
register reinterpret_cast return short signed sizeof static static_assert static_cast struct
switch template this thread_local throw true try typedef typeid typename union unsigned using
virtual void volatile wchar_t while xor xor_eq m t u mpContext""".split())

# Engine descriptor constants of the universal primitive types.
ENGINE_DESCS = {
    "BOOLEAN": "kDescBoolean", "NULL": "kDescNull", "OCTET STRING": "kDescOctetString",
    "OBJECT IDENTIFIER": "kDescObjectId", "BIT STRING": "kDescBitString",
    "ANY": "kDescOpenType", "BMPString": "kDescBMPString",
    "UniversalString": "kDescUniversalString",
}

# Record field types and typedef types per engine kind, and whether a CHOICE holds
# the alternative by pointer.
FIELD_CTYPE = {
    "kBoolean": "ASN1BOOL", "kInteger": "ASN1INT", "kBigInteger": "const char*",
    "kNull": None, "kBitString": "ASN1DynBitStr", "kOctetString": "ASN1DynOctStr",
    "kObjectId": "ASN1OBJID", "kCharString": "const char*",
    "kBMPString": "Asn116BitCharString", "kUniversalString": "Asn132BitCharString",
    "kOpenType": "ASN1OpenType", "kTableOpenType": "Asn1Object",
    "kTableOctetString": "Asn1Object",
}
# ASN1TObjId is the runtime's C++ form of ASN1OBJID (same layout).
ALIAS_CTYPE = {
    "kNull": "Asn1NullValue", "kBitString": "ASN1TDynBitStr", "kOctetString": "ASN1TDynOctStr",
    "kObjectId": "ASN1TObjId", "kOpenType": "ASN1TOpenType",
}
BY_POINTER = {"kBitString", "kOctetString", "kObjectId", "kBMPString", "kUniversalString",
              "kOpenType", "kTableOpenType", "kTableOctetString"}
SIZED_KINDS = {"kBitString", "kOctetString", "kCharString", "kBMPString", "kUniversalString",
               "kSequenceOf", "kSetOf"}


def cident(name):
    return name.replace("-", "_")


class TI:
    """A resolved type occurrence: its tags (outermost first, (word, explicit)), the
    descriptor of what is under them, and how a record holds it."""

    def __init__(self, desc, ctype, by_pointer, typedef=None):
        self.tags = []
        self.desc = desc
        self.ctype = ctype
        self.by_pointer = by_pointer
        self.typedef = typedef        # TypeDef whose record is embedded (for ordering)
        self.typedef_mod = None       # module of the record named by ctype, if any
        self.table = None             # pending Table
        self.named_ref = False        # a reference to a named record (for _SeqOf naming)
        self.alias_ctype = None       # typedef form of a primitive


class Ctx:
    def __init__(self, path, prefix, top=None):
        self.path, self.prefix, self.top = path, prefix, top


class Program:
    """All modules loaded for one compilation, found by name in the search dirs."""

    def __init__(self, search_dirs):
        self.search_dirs = list(search_dirs)
        self.modules = {}
        self.files = []
        self.pending = []           # work that needs every record built first

    def load_path(self, path):
        with open(path, encoding="utf-8") as f:
            text = f.read()
        ast = parse_module_text(text, path)
        if ast.name in self.modules:
            return self.modules[ast.name]
        dir_path = os.path.splitext(path)[0] + ".dir"
        dirs = Directives(None)
        if os.path.exists(dir_path):
            with open(dir_path, encoding="utf-8") as f:
                dirs = parse_directives(f.read(), dir_path)
            self.files.append(dir_path)
        self.files.append(path)
        expected = cident(ast.name) + ".asn"
        if os.path.basename(path) != expected:
            raise CompileError(path, ast.line, f"module '{ast.name}' must be in a file named "
                               f"'{expected}'")
        mod = ModInfo(self, ast, path, dirs)
        self.modules[ast.name] = mod
        return mod

    def finish(self):
        """Runs the deferred work (DEFAULT encodings) once the records exist."""
        while self.pending:
            work, self.pending = self.pending, []
            for fn in work:
                fn()

    def find(self, name):
        if name in self.modules:
            return self.modules[name]
        fname = cident(name) + ".asn"
        for d in self.search_dirs:
            p = os.path.join(d, fname)
            if os.path.exists(p):
                return self.load_path(p)
        return None


class ModInfo:
    def __init__(self, prog, ast, path, dirs):
        self.prog, self.ast, self.path, self.dirs = prog, ast, path, dirs
        self.name = ast.name
        self.cbase = cident(ast.name)
        self.ns = dirs.namespace or ""
        self.imports = {}
        for imp in ast.imports:
            for sym, line in imp.symbols:
                self.imports[sym] = (imp, line)
        self.typedefs = {}
        self.records = []
        self.by_cname = {}
        self.local_descs = []
        self.value_cache = {}
        self.value_defs = []
        self.classes = {}
        self.objects = {}
        self.objsets = {}
        self.deps = []              # ModInfo whose headers the source includes
        self.type_deps = []         # ModInfo whose records the header uses
        self.analyzed = False
        self.in_progress = set()
        self.vr = ValueResolver(self)
        self.seqof_cache = {}
        self.constants = []         # (cname, ctype, value) named numbers/bits

    # ---- errors and symbols -----------------------------------------------------------
    def err(self, node, message):
        raise CompileError(getattr(node, "file", self.path) or self.path,
                           getattr(node, "line", 0), message)

    def use(self, other):
        if other is not self and other not in self.deps:
            self.deps.append(other)

    def use_type(self, other):
        """other's records appear in this module's records (header include)."""
        self.use(other)
        if other is not self and other not in self.type_deps:
            self.type_deps.append(other)

    def note_type(self, ti):
        """ti's record is named in this module's records: its header is needed."""
        if ti.typedef_mod is not None and ti.typedef_mod is not self:
            self.use_type(ti.typedef_mod)

    def adopt(self, ti, other):
        """A type occurrence resolved in module other, used in this module's records:
        its record names are re-qualified for this module's namespace."""
        if other is self or ti.typedef_mod is None:
            return ti
        owner = ti.typedef_mod
        if owner is not self:
            self.use_type(owner)
        if ti.ctype and ti.ctype.startswith("ASN1T_"):
            ti.ctype = self.qual(owner, ti.ctype)
        return ti

    def has_symbol(self, name):
        return name in self.ast.by_name or name in self.imports

    def lookup(self, name, node, module=None):
        """(ModInfo, Assignment) defining name as seen from this module, or
        ('missing', Import) when the module it is imported from is absent."""
        if module is not None and module != self.name:
            other = self.prog.find(module)
            if other is None:
                self.err(node, f"module '{module}' not found")
            self.use(other)
            return other.lookup(name, node)
        if name in self.ast.by_name:
            return self, self.ast.by_name[name]
        if name in self.imports:
            imp, line = self.imports[name]
            other = self.prog.find(imp.module)
            if other is None:
                return "missing", imp
            self.use(other)
            if name not in other.ast.by_name and name not in other.imports:
                raise CompileError(self.path, line, f"'{name}' is not defined in module "
                                   f"'{imp.module}'")
            return other.lookup(name, node)
        self.err(node, f"'{name}' is not defined")

    def lookup_present(self, name, node, module=None):
        r = self.lookup(name, node, module)
        if r[0] == "missing":
            self.err(node, f"module '{r[1].module}' (imported for '{name}') not found in the "
                     "module directories")
        return r

    def qual(self, other, cname):
        """C++ name of a symbol of module other as written in this module's code."""
        if other is self or other.ns == self.ns:
            return cname
        return f"::{other.ns}::{cname}" if other.ns else f"::{cname}"

    # ---- values ----------------------------------------------------------------------
    def value_node(self, name, node, module=None):
        m, a = self.lookup_present(name, node, module)
        if a.kind != "value":
            self.err(node, f"'{name}' is not a value")
        return a.value

    def value_of(self, name, node, hint, module=None):
        m, a = self.lookup_present(name, node, module)
        if m is not self:
            return m.value_of(name, node, hint)
        if name in self.value_cache:
            return self.value_cache[name]
        if a.kind != "value":
            self.err(node, f"'{name}' is not a value")
        if name in self.in_progress:
            self.err(node, f"value '{name}' is defined through itself")
        self.in_progress.add(name)
        gov = a.governor
        if gov.kind == "OBJECT IDENTIFIER":
            v = self.vr.oid_value(a.value)
        elif gov.kind == "INTEGER":
            v = self.vr.int_value(a.value)
        else:
            ti = self.analyze_type(gov, Ctx(name, cident(name)))
            v = self.vr.value_for(self.wrap(ti.tags, ti.desc), a.value)
        self.in_progress.discard(name)
        self.value_cache[name] = v
        return v

    # ---- whole-module analysis --------------------------------------------------------
    def analyze(self):
        if self.analyzed:
            return self
        self.analyzed = True
        for a in self.ast.assignments:
            if a.kind == "type":
                if a.type.kind == "REF" and self.is_class(a.type.name, a.type):
                    self.class_info(a.name, a)
                    continue
                self.named_type(a.name)
            elif a.kind == "class":
                self.class_info(a.name, a)
        for a in self.ast.assignments:
            if a.kind == "value":
                if a.governor.kind == "REF" and self.is_class(a.governor.name, a.governor):
                    self.object_info(a.name, a)
                else:
                    self.value_def(a)
            elif a.kind == "valueset":
                if a.governor.kind == "REF" and self.is_class(a.governor.name, a.governor):
                    self.objset_info(a.name, a)
                else:
                    self.err(a, f"value set '{a.name}' is not supported: write a constrained "
                             "type instead")
        for d in self.dirs.unused():
            raise CompileError(d.file, d.line, f"directive '{d.verb} {' '.join(d.args)}' "
                               "matches nothing in the module")
        return self

    def value_def(self, a):
        gov = a.governor
        ti = self.analyze_type(gov, Ctx(a.name, cident(a.name)))
        base = ultimate(ti.desc)
        cname = self.cname_value(a)
        if base.kind == "kObjectId":
            self.value_defs.append(ValueDef(cname, "oid", self.value_of(a.name, a, "oid"),
                                            a.line))
        elif base.kind in ("kInteger", "kBigInteger", "kEnumerated"):
            v = self.value_of(a.name, a, "int")
            self.value_defs.append(ValueDef(cname, "int", v, a.line))
        elif base.kind == "kBoolean":
            self.value_defs.append(ValueDef(cname, "bool", self.value_of(a.name, a, "bool"),
                                            a.line))
        elif base.kind == "kCharString":
            self.value_defs.append(ValueDef(cname, "str", self.value_of(a.name, a, "str"),
                                            a.line))
        # Values of other types are not emitted; they are resolved where a DEFAULT
        # uses them.

    def cname_value(self, a):
        # A value reference begins with a lower-case letter (X.680 12.4), so a
        # C++ name that must begin with a capital comes from a 'name' directive.
        d = self.dirs.find("name", a.name)
        if d:
            return d.args[1]
        c = cident(a.name)
        return c + "_" if c in CPP_KEYWORDS else c

    # ---- naming ------------------------------------------------------------------------
    def new_typedef(self, cname, shape, node):
        d = self.dirs.find("name", cname)
        if d:
            cname = d.args[1]
        if cname in self.by_cname:
            self.err(node, f"two records would be named ASN1T_{cname}; rename one with a "
                     "'name' directive")
        td = TypeDef(cname, self, shape)
        td.line = getattr(node, "line", 0)
        td.desc = Desc("kSequence", storage="public", name="asn1Desc_" + cname, mod=self)
        td.desc.typedef = td
        self.by_cname[cname] = td
        self.records.append(td)
        return td

    def named_type(self, name):
        if name in self.typedefs:
            return self.typedefs[name]
        a = self.ast.by_name[name]
        ty = a.type
        kind = ty.kind
        shape = {"SEQUENCE": "struct", "SET": "struct", "CHOICE": "choice"}.get(kind, "alias")
        if kind in ("SEQUENCE OF", "SET OF"):
            shape = self.seqof_shape(name, cident(name))
        td = self.new_typedef(cident(name), shape, a)
        td.asn1_name = name
        # Until the type is built, a reference to it (through a cycle of imports
        # or object sets) sees this tag: X.680 31.2.7 decides by it whether an
        # IMPLICIT tag on the reference is applied or made explicit.
        td.desc.tag = self.intrinsic_tag(ty)
        self.typedefs[name] = td
        ti = self.analyze_type(ty, Ctx(name, td.cname, top=td))
        self.finish_typedef(td, ti, ty)
        return td

    def finish_typedef(self, td, ti, node):
        """Makes td's public descriptor the fully tagged type of ti."""
        if ti.table:
            self.err(node, "a table-constrained open type needs its key in the same SEQUENCE")
        if td.shape in ("struct", "choice", "array", "list") and ti.desc is td.desc:
            if ti.tags:
                inner = Desc("kSequence")
                self.copy_desc(inner, td.desc)
                inner.typedef = td  # its members are the record's fields
                inner.name = None
                inner.storage = "local"
                self.local_descs.append(inner)
                full = self.wrap(ti.tags, inner)
                self.copy_desc(td.desc, full)
            return
        if td.shape != "alias":
            return
        full = self.wrap(ti.tags, ti.desc)
        if full.storage == "local" and full.fresh:
            self.copy_desc(td.desc, full)
            if full in self.local_descs:
                self.local_descs.remove(full)
        elif full.storage == "engine":
            self.copy_desc(td.desc, full)
        else:
            td.desc.kind = "kAlias"
            td.desc.inner = full
            td.desc.size = full.size
            td.desc.named = full.named
            td.desc.members = full.members
        self.note_type(ti)
        td.alias_ctype = ti.alias_ctype or ti.ctype
        td.by_pointer = ti.by_pointer
        if ti.typedef is not None:
            td.depends.append((ti.typedef, True))

    @staticmethod
    def copy_desc(dst, src):
        for k in ("kind", "tag", "flags", "size", "off1", "off2", "inner", "members", "limits",
                  "tagindex", "named", "char_tag"):
            v = getattr(src, k)
            setattr(dst, k, list(v) if isinstance(v, list) and k in ("flags",) else v)

    def seqof_shape(self, path, cname):
        for key in (path, cname):
            if self.dirs.find("list", key):
                return "list"
            if self.dirs.find("array", key):
                return "array"
        if self.dirs.find("list", "*"):
            return "list"
        self.dirs.find("array", "*")
        return "array"

    # ---- tags -------------------------------------------------------------------------
    UNIVERSAL_TAGS = {"BOOLEAN": 1, "INTEGER": 2, "BIT STRING": 3, "OCTET STRING": 4, "NULL": 5,
                      "OBJECT IDENTIFIER": 6, "ENUMERATED": 10, "SEQUENCE": 16 | CONS,
                      "SEQUENCE OF": 16 | CONS, "SET": 17 | CONS, "SET OF": 17 | CONS}

    def intrinsic_tag(self, ty, skip=0, seen=()):
        """The tag word (with its constructed bit) that a value of ty starts with,
        read from the module text alone, 0 for an untagged CHOICE or open type.
        skip outer tags of ty are ignored."""
        if len(ty.tags) > skip:
            tag = ty.tags[skip]
            number = tag.number if isinstance(tag.number, int) else self.vr.int_value(tag.number)
            inner = self.intrinsic_tag(ty, skip + 1, seen)
            mode = tag.mode or ("IMPLICIT" if self.tag_default_implicit() else "EXPLICIT")
            word = CLASS_BITS[tag.cls] | number
            if mode == "EXPLICIT" or not inner or inner & CONS:
                word |= CONS
            return word
        k = ty.kind
        if k in self.UNIVERSAL_TAGS:
            return self.UNIVERSAL_TAGS[k]
        if k in STRING_TYPES or k in TIME_TYPES:
            return STRING_TYPES.get(k) or TIME_TYPES[k]
        if k == "REF" and ty.name not in seen and not self.dirs.find("opentype", ty.name):
            try:
                r = self.lookup(ty.name, ty, ty.module)
            except CompileError:
                return 0
            if r[0] != "missing":
                m, a = r
                if a.kind == "type" and not (a.type.kind == "REF" and
                                             m.is_class(a.type.name, a.type)):
                    return m.intrinsic_tag(a.type, 0, seen + (ty.name,))
        return 0
    def tag_default_implicit(self):
        return self.ast.tag_default in ("IMPLICIT", "AUTOMATIC")

    def resolve_tags(self, tags, base_desc):
        """[(word, explicit)] outermost first for model Tags over base_desc (X.680 31.2.7:
        IMPLICIT is not applied to an untagged CHOICE or open type)."""
        out = []
        inner_tagged = base_desc.tag != 0
        constructed = base_desc.constructed()
        for tag in reversed(tags):
            number = tag.number if isinstance(tag.number, int) else self.vr.int_value(tag.number)
            if number < 0 or number > 0x1FFFFFFF:
                self.err(tag, f"tag number {number} out of range")
            mode = tag.mode or ("IMPLICIT" if self.tag_default_implicit() else "EXPLICIT")
            explicit = mode == "EXPLICIT" or not inner_tagged
            word = CLASS_BITS[tag.cls] | number
            if explicit:
                word |= CONS
                constructed = True
            elif constructed:
                word |= CONS
            out.insert(0, (word, explicit))
            inner_tagged = True
        return out

    def wrap(self, tags, desc):
        if not tags:
            return desc
        inner = self.wrap(tags[1:], desc)
        word, explicit = tags[0]
        if not explicit and inner.kind != "kTagged" and inner.kind != "kAlias" and (
                inner.storage == "engine" or inner.fresh):
            d = inner if inner.fresh else self.local(inner.clone())
            d.tag = word
            return d
        d = self.local(Desc("kTagged", word, inner.size, mod=self))
        d.inner = inner
        if explicit:
            d.flags.append("kExplicitTag")
        d.fresh = True
        return d

    def local(self, d):
        d.storage = "local"
        d.mod = self
        d.fresh = True
        self.local_descs.append(d)
        return d

    # ---- constraints -------------------------------------------------------------------
    def bound(self, v, node):
        if v.kind == "minmax":
            return None
        return self.vr.int_value(v)

    def range_of(self, c, want):
        """(lo, hi) of a constraint for want 'size' or 'value'; None when it does not
        restrict that aspect or is extensible (X.680 49.8: no check outside PER)."""
        if c is None:
            return None
        if c.extensible:
            return None
        k = c.kind
        if k == "size":
            if want != "size":
                return None
            return self.range_of(c.sub, "value")
        if want == "size" and k in ("range", "single"):
            return None
        if k == "range":
            return (self.bound(c.lo, c), self.bound(c.hi, c))
        if k == "single":
            if c.value.kind in ("int", "ref"):
                try:
                    v = self.vr.int_value(c.value)
                except CompileError:
                    return None
                return (v, v)
            return None
        if k in ("union", "intersection"):
            rs = [self.range_of(p, want) for p in c.parts]
            if k == "union":
                if not rs or any(r is None for r in rs):
                    return None
                lo = None if any(r[0] is None for r in rs) else min(r[0] for r in rs)
                hi = None if any(r[1] is None for r in rs) else max(r[1] for r in rs)
                return (lo, hi)
            rs = [r for r in rs if r is not None]
            if not rs:
                return None
            lo = max((r[0] for r in rs if r[0] is not None), default=None)
            hi = min((r[1] for r in rs if r[1] is not None), default=None)
            return (lo, hi)
        return None

    def limits_of(self, constraints, want):
        lo = hi = None
        found = False
        for c in constraints:
            r = self.range_of(c, want)
            if r is None:
                continue
            found = True
            if r[0] is not None:
                lo = r[0] if lo is None else max(lo, r[0])
            if r[1] is not None:
                hi = r[1] if hi is None else min(hi, r[1])
        if not found or (lo is None and hi is None):
            return None
        return Limits(lo, hi)

    # ---- types ----------------------------------------------------------------------
    def analyze_type(self, ty, ctx):
        ti = self.analyze_base(ty, ctx)
        if ty.tags:
            ti.tags = self.resolve_tags(ty.tags, ti.desc) + ti.tags
        return ti

    def prim(self, kind, tag, ctype, by_pointer=False, engine=None, size=None):
        if engine:
            d = Desc(kind, tag, size or f"sizeof({ctype or 'Asn1NullValue'})", "engine",
                     "::Korvex::Asn1Engine::" + engine)
        else:
            d = self.local(Desc(kind, tag, size or f"sizeof({ctype or 'Asn1NullValue'})"))
        ti = TI(d, ctype, by_pointer)
        ti.alias_ctype = ALIAS_CTYPE.get(kind, ctype)
        return ti

    def directive_path(self, verb, ctx):
        return self.dirs.find(verb, ctx.path)

    def analyze_base(self, ty, ctx):
        k = ty.kind
        if k == "BOOLEAN":
            return self.prim("kBoolean", 1, "ASN1BOOL", engine="kDescBoolean")
        if k == "NULL":
            return self.prim("kNull", 5, None, engine="kDescNull")
        if k == "INTEGER":
            return self.integer(ty, ctx)
        if k == "ENUMERATED":
            return self.enumerated(ty, ctx)
        if k == "BIT STRING":
            lim = self.limits_of(ty.constraints, "size")
            named = self.named_numbers(ty, ctx, bits=True)
            if not lim and not named:
                return self.prim("kBitString", 3, "ASN1DynBitStr", True, engine="kDescBitString")
            ti = self.prim("kBitString", 3, "ASN1DynBitStr", True)
            ti.desc.limits = lim
            ti.desc.named = named
            if named:
                ti.desc.flags.append("kNamedBits")
            return ti
        if k == "OCTET STRING":
            contained = self.contained_table(ty, ctx)
            if contained is not None:
                return contained
            lim = self.limits_of(ty.constraints, "size")
            ti = self.prim("kOctetString", 4, "ASN1DynOctStr", True,
                           engine=None if lim else "kDescOctetString")
            ti.desc.limits = lim
            return ti
        if k == "OBJECT IDENTIFIER":
            return self.prim("kObjectId", 6, "ASN1OBJID", True, engine="kDescObjectId")
        if k == "RELATIVE-OID":
            self.err(ty, "RELATIVE-OID is not supported")
        if k in STRING_TYPES or k in TIME_TYPES:
            tag = STRING_TYPES.get(k) or TIME_TYPES[k]
            lim = self.limits_of(ty.constraints, "size") if k not in TIME_TYPES else None
            if k == "BMPString":
                ti = self.prim("kBMPString", tag, "Asn116BitCharString", True,
                               engine=None if lim else "kDescBMPString")
            elif k == "UniversalString":
                ti = self.prim("kUniversalString", tag, "Asn132BitCharString", True,
                               engine=None if lim else "kDescUniversalString")
            else:
                ti = self.prim("kCharString", tag, "const char*",
                               engine=None if lim else "kDesc" + k)
            ti.desc.limits = lim
            ti.desc.char_tag = tag
            return ti
        if k == "ANY":
            return self.prim("kOpenType", 0, "ASN1OpenType", True, engine="kDescOpenType")
        if k in ("SEQUENCE", "SET", "CHOICE"):
            return self.constructed(ty, ctx)
        if k in ("SEQUENCE OF", "SET OF"):
            return self.seqof(ty, ctx)
        if k == "REF":
            return self.reference(ty, ctx)
        if k == "FIELD":
            return self.class_field(ty, ctx)
        self.err(ty, f"type '{k}' is not supported")

    def contained_table(self, ty, ctx):
        """OCTET STRING (CONTAINING CLASS.&Type({Set}{@key})) (X.682 11): the octets
        hold the DER of the type the object of the key names. Such a string is
        realised like a table-constrained open type (Asn1Object: the contents, and
        the typed value decoded from them); None for other OCTET STRINGs."""
        c = next((c for c in ty.constraints if c.kind == "containing"), None)
        if c is None or c.type.kind != "FIELD":
            return None
        if not any(t.kind == "table" and t.at_path for t in c.type.constraints):
            return None
        fti = self.class_field(c.type, ctx)
        if fti.table is None:
            return None
        ti = self.prim("kTableOctetString", 4, "Asn1Object", True,
                       engine="kDescTableOctetString")
        ti.table = fti.table
        return ti

    def named_numbers(self, ty, ctx, bits=False):
        named = {}
        for name, v, line in ty.named:
            if v is None:
                continue
            n = self.vr.int_value(v)
            if bits and n < 0:
                self.err(ty, f"named bit '{name}' has a negative number")
            if name in named:
                self.err(ty, f"'{name}' named twice")
            named[name] = n
        if named:
            for name, n in named.items():
                self.constants.append((f"{ctx.prefix}_{cident(name)}",
                                       "ASN1UINT" if bits else "ASN1INT", n))
        return named

    def integer(self, ty, ctx):
        named = self.named_numbers(ty, ctx)
        lim = self.limits_of(ty.constraints, "value")
        force_int = self.dirs.find("int", ctx.path)
        force_big = self.dirs.find("bigint", ctx.path)
        bounded = lim is not None and lim.lo is not None and lim.hi is not None and (
            INT32_MIN <= lim.lo and lim.hi <= INT32_MAX)
        if force_big or not (force_int or named or bounded):
            ti = self.prim("kBigInteger", 2, "const char*", engine="kDescBigInteger")
            ti.desc.named = named
            return ti
        if lim and ((lim.lo is not None and lim.lo < INT32_MIN) or
                    (lim.hi is not None and lim.hi > INT32_MAX)):
            self.err(ty, "a 32-bit INTEGER cannot hold the constrained range")
        if not lim and not named:
            return self.prim("kInteger", 2, "ASN1INT", engine="kDescInteger")
        ti = self.prim("kInteger", 2, "ASN1INT")
        ti.desc.limits = lim
        ti.desc.named = named
        return ti

    def enumerated(self, ty, ctx):
        named, used, nxt, values = {}, set(), 0, []
        explicit = {self.vr.int_value(v) for _, v, _ in ty.named if v is not None}
        for name, v, line in ty.named:
            if v is not None:
                n = self.vr.int_value(v)
            else:  # X.680 20.3: the smallest number not yet used
                while nxt in explicit or nxt in used:
                    nxt += 1
                n = nxt
            if n in used or name in named:
                self.err(ty, f"enumerator '{name}' ({n}) given twice")
            used.add(n)
            named[name] = n
            values.append(n)
        unsigned = all(v >= 0 for v in values)
        ctype = "ASN1UINT" if unsigned else "ASN1INT"
        ti = self.prim("kEnumerated", 10, ctype)
        ti.desc.limits = Limits(values=sorted(values), extensible=ty.enum_ext)
        ti.desc.named = named
        if unsigned:
            ti.desc.flags.append("kUnsignedEnum")
        if ty.enum_ext:
            ti.desc.flags.append("kExtensible")
        for name, n in named.items():
            self.constants.append((f"{ctx.prefix}_{cident(name)}", ctype, n))
        return ti

    def reference(self, ty, ctx):
        name = ty.name
        if self.dirs.find("opentype", ctx.path) or self.dirs.find("opentype", name):
            return self.prim("kOpenType", 0, "ASN1OpenType", True, engine="kDescOpenType")
        if name in ("TYPE-IDENTIFIER", "ABSTRACT-SYNTAX"):
            self.err(ty, f"the class '{name}' is not a type")
        r = self.lookup(name, ty, ty.module)
        if r[0] == "missing":
            self.err(ty, f"module '{r[1].module}' (imported for '{name}') not found in the "
                     f"module directories; add it, or carry '{name}' as an open type with "
                     f"the directive 'opentype {name}'")
        m, a = r
        if a.kind == "class" or (a.kind == "type" and a.type.kind == "REF" and
                                 m.is_class(a.type.name, a.type)):
            self.err(ty, f"'{name}' is an information object class, not a type")
        if a.kind != "type":
            self.err(ty, f"'{name}' is not a type")
        m.analyze_named_dependency(name)
        td = m.typedefs[name]
        ctype = self.qual(m, td.record)
        desc = td.desc
        by_pointer = td.shape != "alias" or getattr(td, "by_pointer", True)
        if ty.constraints and td.shape == "alias":
            base = ultimate(td.desc)
            want = "value" if base.kind == "kInteger" else "size"
            lim = self.limits_of(ty.constraints, want)
            if lim and base.kind in SIZED_KINDS | {"kInteger"}:
                desc = self.constrained_clone(td.desc, lim)
        ti = TI(desc, ctype, by_pointer, td if m is self else None)
        ti.typedef_mod = m
        ti.named_ref = True
        return ti

    def constrained_clone(self, desc, lim):
        if desc.kind in ("kAlias",):
            return self.constrained_clone(desc.inner, lim)
        d = self.local(desc.clone())
        if desc.kind == "kTagged":
            d.inner = self.constrained_clone(desc.inner, lim)
            return d
        old = desc.limits
        if old and old.values is None:
            lo = lim.lo if old.lo is None else (old.lo if lim.lo is None else max(old.lo, lim.lo))
            hi = lim.hi if old.hi is None else (old.hi if lim.hi is None else min(old.hi, lim.hi))
            lim = Limits(lo, hi)
        d.limits = lim
        return d

    def type_desc(self, ty):
        """The fully tagged descriptor of a type written in this module."""
        ti = self.analyze_type(ty, Ctx("", "_value"))
        return self.wrap(ti.tags, ti.desc)

    def analyze_named_dependency(self, name):
        """Makes sure the named type of this module has its TypeDef (recursion-safe)."""
        if name not in self.typedefs:
            self.named_type(name)

    # ---- SEQUENCE OF ---------------------------------------------------------------------
    def seqof(self, ty, ctx):
        is_set = ty.kind == "SET OF"
        elem_ctx = Ctx(ctx.path, (ctx.top.cname if ctx.top else ctx.prefix) + "_element")
        eti = self.analyze_type(ty.elem, elem_ctx)
        if eti.table:
            eti.table.via_list = True
        elem_desc = self.wrap(eti.tags, eti.desc)
        size = None
        if ty.size is not None:
            size = self.limits_of([ty.size], "size")
        if ty.constraints:
            extra = self.limits_of(ty.constraints, "size")
            size = size or extra
        if ctx.top is not None:
            td = ctx.top
        else:
            named = eti.named_ref and not eti.tags and not ty.elem.constraints
            if size is None and named:
                ename = eti.ctype.split("::")[-1][len("ASN1T_"):]
                cname = ("_SetOf" if is_set else "_SeqOf") + ename
                existing = self.find_shared(cname)
                if existing is not None:
                    if existing.mod is not self:
                        self.use_type(existing.mod)
                    ti = TI(existing.desc, self.qual(existing.mod, existing.record), True,
                            existing if existing.mod is self else None)
                    ti.typedef_mod = existing.mod
                    ti.table = eti.table
                    return ti
            else:
                cname = ctx.prefix
            td = self.new_typedef(cname, self.seqof_shape(ctx.path, cname), ty)
            td.shared_seqof = cname.startswith("_SeqOf") or cname.startswith("_SetOf")
        self.note_type(eti)
        td.elem_ctype = eti.ctype or "Asn1NullValue"
        if eti.tags and eti.alias_ctype and eti.ctype in FIELD_CTYPE.values():
            td.elem_ctype = eti.ctype
        td.elem_desc = elem_desc
        if eti.typedef is not None:
            td.depends.append((eti.typedef, False))
        d = td.desc
        d.kind = "kSetOf" if is_set else "kSequenceOf"
        d.tag = (17 if is_set else 16) | CONS
        d.size = f"sizeof({td.record})"
        d.inner = elem_desc
        d.limits = size
        if td.shape == "list":
            d.flags = ["kListForm"]
        else:
            d.off1 = f"offsetof({td.record}, n)"
            d.off2 = f"offsetof({td.record}, elem)"
        ti = TI(d, td.record, True, td)
        ti.typedef_mod = self
        ti.table = eti.table
        ti.named_ref = ctx.top is None
        return ti

    def find_shared(self, cname):
        """This module's _SeqOfX/_SetOfX record, if made already. Every module that
        needs one makes its own; the header defines it inline under a guard, so
        the copies of modules of one namespace merge (see emit_cpp)."""
        return self.by_cname.get(cname)

    # ---- SEQUENCE, SET, CHOICE -------------------------------------------------------------
    def expand_components(self, ty, mod, seen=()):
        out = []
        for c in ty.components:
            if c.components_of is None:
                out.append((c, mod))
                continue
            ref = c.components_of
            if ref.kind != "REF":
                target, tmod = ref, mod
            else:
                m, a = mod.lookup_present(ref.name, ref, ref.module)
                if a.kind != "type":
                    mod.err(ref, f"COMPONENTS OF '{ref.name}': not a type")
                target, tmod = a.type, m
                if ref.name in seen:
                    mod.err(ref, "COMPONENTS OF refers to itself")
                seen = seen + (ref.name,)
            while target.kind == "REF" and not target.tags:
                m, a = tmod.lookup_present(target.name, target, target.module)
                target, tmod = a.type, m
            if target.kind not in ("SEQUENCE", "SET") or target.tags:
                mod.err(ref, "COMPONENTS OF needs an untagged SEQUENCE or SET type")
            for cc, cm in self.expand_components(target, tmod, seen):
                if not cc.extension:
                    out.append((cc, cm))
        return out

    def field_name(self, td, comp_name, used, node):
        d = self.dirs.find("name", f"{td.asn1_name or td.cname}.{comp_name}")
        f = d.args[1] if d else cident(comp_name)
        if f in CPP_KEYWORDS:
            f += "_"
        if f in used:
            self.err(node, f"two fields named '{f}' in ASN1T_{td.cname}")
        used.add(f)
        return f

    def constructed(self, ty, ctx):
        choice = ty.kind == "CHOICE"
        if ctx.top is not None and ctx.top.shape in ("struct", "choice") and \
                ctx.top.desc.members is None:
            td = ctx.top
        else:
            td = self.new_typedef(ctx.prefix, "choice" if choice else "struct", ty)
        td.desc.members = []
        comps = self.expand_components(ty, self) if not choice else [
            (c, self) for c in ty.components]
        automatic = self.ast.tag_default == "AUTOMATIC" and not any(
            c.type.tags for c, _ in comps if not c.extension)
        used = set()
        bit = 0
        members = []
        base_path = td.asn1_name or ctx.path
        for i, (c, cmod) in enumerate(comps):
            cty = c.type
            path = f"{base_path}.{c.name}"
            prefix = f"{td.cname}_{cident(c.name)}"
            if cmod is self and self.sized_octets(cty):
                ti = self.component_record(cty, Ctx(path, prefix))
            else:
                ti = self.adopt(cmod.analyze_type(cty, Ctx(path, prefix)), cmod)
            self.note_type(ti)
            if cmod is not self:
                self.use(cmod)
            if automatic:
                from .model import Tag
                auto = Tag("CONTEXT", i, None)
                ti.tags = self.resolve_tags([auto], self.wrap(ti.tags, ti.desc)) + ti.tags
            field = self.field_name(td, c.name, used, c)
            ctype = ti.ctype
            m = Member(c.name, field if ctype is not None else None, ctype, None)
            m.line = c.line
            if ti.tags:
                m.tag, m.explicit = ti.tags[0]
                m.type = self.wrap(ti.tags[1:], ti.desc)
            else:
                m.type = ti.desc
            if ti.typedef is not None:
                td.depends.append((ti.typedef, not choice or not ti.by_pointer))
            if choice:
                m.by_pointer = ti.by_pointer and ctype is not None
            else:
                m.optional = c.optional or c.default is not None
                m.extension = c.extension
                if m.optional or m.extension:
                    m.presence = bit
                    bit += 1
                if c.default is not None:
                    # Later: the value may need records still being built (imports
                    # between modules can be circular).
                    self.prog.pending.append(
                        lambda m=m, cmod=cmod, ti=ti, c=c: self.set_default(m, cmod, ti, c))
            if ti.table:
                if choice:
                    self.err(c, "a table-constrained open type in a CHOICE is not supported")
                m.table = ti.table
                td.has_table = True
            members.append(m)
        td.members = members
        td.presence_bits = bit
        td.extensible = ty.extensible or self.ast.extensibility_implied
        d = td.desc
        d.members = members
        d.size = f"sizeof({td.record})"
        if td.extensible:
            d.flags.append("kExtensible")
        if choice:
            d.kind = "kChoice"
            d.tag = 0
            d.off1 = f"offsetof({td.record}, t)"
            d.off2 = f"offsetof({td.record}, u)"
            index, wild = [], None
            for i, m in enumerate(members):
                tags = {m.tag & ~CONS} if m.tag else m.type.first_tags()
                if tags is None:
                    if wild is not None:
                        self.err(ty, f"alternatives '{members[wild].name}' and '{m.name}' "
                                 "both take any tag")
                    wild = i
                    index.append((0, i))
                    continue
                for t in tags:
                    index.append((t, i))
            seen = {}
            for t, i in index:
                if t and t in seen:
                    self.err(ty, f"alternatives '{members[seen[t]].name}' and "
                             f"'{members[i].name}' share a tag (X.680 29.3)")
                seen[t] = i
            d.tagindex = sorted(index)
        else:
            d.kind = "kSet" if ty.kind == "SET" else "kSequence"
            d.tag = (17 if ty.kind == "SET" else 16) | CONS
            if bit:
                d.off1 = f"offsetof({td.record}, m)"
            for m in members:
                if m.table:
                    idx = next((i for i, o in enumerate(members) if o.name == m.table.key_name),
                               None)
                    if idx is None:
                        self.err(m, f"table constraint of '{m.name}': no component "
                                 f"'{m.table.key_name}' in this SEQUENCE (only sibling "
                                 "components are supported as keys)")
                    kb = ultimate(members[idx].type)
                    want = "kObjectId" if m.table.objset.cls.key_kind == "oid" else "kInteger"
                    if kb.kind != want:
                        self.err(m, f"table constraint of '{m.name}': '{m.table.key_name}' "
                                 "does not hold the class's key type")
                    m.table.key_index = idx
            if ty.kind == "SET":
                index = []
                for i, m in enumerate(members):
                    tags = {m.tag & ~CONS} if m.tag else m.type.first_tags()
                    index.append((min(tags) if tags else 0, i))
                d.tagindex = sorted(index)
        ti = TI(d, td.record, True, td)
        ti.typedef_mod = self
        ti.named_ref = True
        return ti

    def sized_octets(self, ty):
        """A component written as a size-constrained OCTET STRING (not a reference
        and not a contents constraint) gets a record of its own, <Type>_<field>."""
        return ty.kind == "OCTET STRING" and self.limits_of(ty.constraints, "size") and \
            not any(c.kind == "containing" for c in ty.constraints)

    def component_record(self, ty, ctx):
        """The typedef record ASN1T_<ctx.prefix> of a component's inline type, and a
        reference to it carrying the component's tags."""
        untagged = Type(ty.kind)
        untagged.__dict__.update(ty.__dict__)
        untagged.tags = []
        td = self.new_typedef(ctx.prefix, "alias", ty)
        td.asn1_name = ctx.path
        self.finish_typedef(td, self.analyze_type(untagged, Ctx(ctx.path, td.cname, top=td)),
                            untagged)
        ti = TI(td.desc, td.record, True, td)
        ti.typedef_mod = self
        ti.named_ref = True
        if ty.tags:
            ti.tags = self.resolve_tags(ty.tags, td.desc)
        return ti

    def set_default(self, m, cmod, ti, c):
        try:
            pv = cmod.vr.value_for(self.wrap(ti.tags, ti.desc), c.default)
            m.default = encode_member(m, pv)
        except (ValueError, KeyError) as e:
            self.err(c.default, f"DEFAULT value of '{c.name}': {e}")

    # ---- information object classes, objects, sets (X.681) -------------------------------
    def is_class(self, name, node):
        if name in ("TYPE-IDENTIFIER", "ABSTRACT-SYNTAX"):
            return True
        try:
            r = self.lookup(name, node)
        except CompileError:
            return False
        if r[0] == "missing":
            return name.upper() == name and "-" in name or name.upper() == name
        m, a = r
        if a.kind == "class":
            return True
        if a.kind == "type" and a.type.kind == "REF" and not a.type.tags:
            return m.is_class(a.type.name, a.type)
        return False

    def class_info(self, name, node):
        if name in ("TYPE-IDENTIFIER", "ABSTRACT-SYNTAX"):
            return self.builtin_class(name)
        r = self.lookup(name, node)
        if r[0] == "missing":
            self.err(node, f"module '{r[1].module}' (imported for '{name}') not found")
        m, a = r
        if m is not self:
            self.use(m)
            return m.class_info(name, node)
        if name in self.classes:
            return self.classes[name]
        if a.kind == "type":
            ci = self.class_info(a.type.name, a.type)
            self.classes[name] = ci
            return ci
        if a.cls is None:
            ci = self.class_info(a.alias, a)
            self.classes[name] = ci
            return ci
        ci = ClassInfo(name, cident(name), self)
        self.classes[name] = ci
        self.fill_class(ci, a.cls.fields, a.cls.syntax, a)
        return ci

    def builtin_class(self, name):
        key = "\0" + name
        if key in self.classes:
            return self.classes[key]
        ci = ClassInfo(name, cident(name), self)
        idf = FieldSpec("id", "value")
        idf.type = Type("OBJECT IDENTIFIER")
        idf.unique = True
        tf = FieldSpec("Type", "type")
        syntax = [("field", "Type"), ("word", "IDENTIFIED"), ("word", "BY"), ("field", "id")]
        fields = [idf, tf]
        if name == "ABSTRACT-SYNTAX":
            pf = FieldSpec("property", "other")
            pf.optional = True
            fields.append(pf)
            syntax.append(("opt", [("word", "HAS"), ("word", "PROPERTY"), ("field", "property")]))
        self.fill_class(ci, fields, syntax, None)
        ci.builtin = True
        self.classes[key] = ci
        return ci

    def fill_class(self, ci, fields, syntax, node):
        ci.fields = fields
        ci.syntax = syntax
        for f in fields:
            if f.kind == "type":
                ci.type_fields.append(f.name)
            elif f.kind == "value":
                ci.value_fields.append(f.name)
                if f.unique and ci.key_field is None:
                    ci.key_field = f.name
                    k = f.type
                    if k.kind == "OBJECT IDENTIFIER":
                        ci.key_kind = "oid"
                    elif k.kind == "INTEGER":
                        ci.key_kind = "int"
                    else:
                        self.err(f, "a UNIQUE field must be an OBJECT IDENTIFIER or INTEGER")

    def field_spec(self, ci, name, node):
        for f in ci.fields:
            if f.name == name:
                return f
        self.err(node, f"class '{ci.name}' has no field '&{name}'")

    def class_field(self, ty, ctx):
        if "." in ty.field:
            self.err(ty, "nested class field references are not supported")
        ci = self.class_info(ty.name, ty)
        f = self.field_spec(ci, ty.field, ty)
        table = next((c for c in ty.constraints if c.kind == "table"), None)
        if f.kind == "value":
            ti = self.adopt(ci.mod.analyze_type(f.type, ctx), ci.mod)
            if ci.mod is not self:
                self.use(ci.mod)
            return ti
        if f.kind != "type":
            self.err(ty, f"the field '&{f.name}' of '{ci.name}' is not a type or fixed-type "
                     "value field")
        if table is None or not table.at_path:
            return self.prim("kOpenType", 0, "ASN1OpenType", True, engine="kDescOpenType")
        if len(table.at_path) != 1 or len([p for p in table.at_path[0] if p != "."]) != 1:
            self.err(ty, "a table constraint must name exactly one sibling component "
                     "({@component})")
        objset = self.objset_ref(table.set, table)
        if objset.cls is not ci and objset.cls.fields is not ci.fields:
            self.err(ty, f"object set '{table.set}' is not of class '{ci.name}'")
        if ci.key_field is None:
            self.err(ty, f"class '{ci.name}' has no UNIQUE field to look objects up by")
        ti = self.prim("kTableOpenType", 0, "Asn1Object", True, engine="kDescTableOpenType")
        ti.table = Table(objset, table.at_path[0][-1], ci.type_fields.index(f.name), False,
                         ty.line)
        return ti

    def objset_ref(self, name, node):
        r = self.lookup(name, node)
        if r[0] == "missing":
            self.err(node, f"module '{r[1].module}' (imported for '{name}') not found")
        m, a = r
        if a.kind != "valueset":
            self.err(node, f"'{name}' is not an object set")
        self.use(m)
        return m.objset_info(name, a)

    def object_ref(self, name, node, module=None):
        r = self.lookup(name, node, module)
        if r[0] == "missing":
            self.err(node, f"module '{r[1].module}' (imported for '{name}') not found")
        m, a = r
        if a.kind != "value" or a.governor.kind != "REF" or not m.is_class(a.governor.name,
                                                                             a.governor):
            self.err(node, f"'{name}' is not an information object")
        self.use(m)
        return m.object_info(name, a)

    def object_info(self, name, a):
        if name in self.objects:
            return self.objects[name]
        ci = self.class_info(a.governor.name, a.governor)
        cname = cident(name)
        cname = cname + "_" if cname in CPP_KEYWORDS else cname
        oi = ObjectInfo(name, cname, ci, self, a.line)
        self.objects[name] = oi
        if a.value.kind != "braced":
            if a.value.kind == "ref":
                other = self.object_ref(a.value.v, a.value)
                oi.types, oi.values, oi.key = other.types, other.values, other.key
                return oi
            self.err(a, f"object '{name}' needs its definition in braces")
        settings = self.parse_object(ci, a.value.v, a)
        self.settle_object(oi, settings, a)
        return oi

    def parse_object(self, ci, tokens, node):
        """Field settings {name: ('type', Type) | ('value', Value)} of an object."""
        from .lexer import Token
        toks = list(tokens) + [Token("eof", "", tokens[-1].line if tokens else node.line)]
        settings = {}
        if ci.syntax is None:
            for part in split_top(tokens):
                if not part:
                    continue
                if part[0].kind != "field":
                    self.err(node, "expected '&field setting' in an object definition")
                f = self.field_spec(ci, part[0].text, node)
                settings[f.name] = self.parse_setting(f, part[1:], node)
            return settings
        pos = [0]

        def setting_at(f):
            from .parser import Parser
            p = Parser(toks, node.file)
            p.pos = pos[0]
            if f.kind == "type":
                v = ("type", p.parse_type())
            elif f.kind == "value":
                v = ("value", p.parse_value())
            else:
                if p.at("{"):
                    p.balanced()
                else:
                    p.parse_value()
                v = ("other", None)
            pos[0] = p.pos
            return v

        def match(items, required):
            for kind, val in items:
                t = toks[pos[0]]
                if kind == "word":
                    if t.text != val or t.kind not in ("id", "sym"):
                        if required:
                            self.err(node, f"object of '{ci.name}': expected '{val}', found "
                                     f"'{t.text or 'end'}'")
                        return False
                    pos[0] += 1
                    required = True
                elif kind == "field":
                    f = self.field_spec(ci, val, node)
                    settings[f.name] = setting_at(f)
                    required = True
                else:  # optional group: present when its first literal is next
                    first = val[0]
                    if first[0] != "word":
                        self.err(node, "an optional group of WITH SYNTAX must start with a "
                                 "literal word")
                    if toks[pos[0]].text == first[1]:
                        match(val, True)
            return True

        match(ci.syntax, True)
        if toks[pos[0]].kind != "eof":
            self.err(node, f"object of '{ci.name}': unexpected '{toks[pos[0]].text}'")
        return settings

    def parse_setting(self, f, tokens, node):
        method = {"type": "parse_type", "value": "parse_value"}.get(f.kind)
        if method is None:
            return ("other", None)
        v, p = parse_tokens_as(tokens, node.file, method)
        if p.peek().kind != "eof":
            self.err(node, f"unexpected '{p.peek().text}' in the setting of '&{f.name}'")
        return (f.kind, v)

    def settle_object(self, oi, settings, a):
        ci = oi.cls
        for f in ci.fields:
            s = settings.get(f.name)
            if s is None:
                if not f.optional and f.default is None and f.kind in ("type", "value"):
                    self.err(a, f"object '{oi.name}' lacks the field '&{f.name}'")
                continue
            kind, v = s
            if kind == "type":
                if v.kind == "REF" and not v.tags and not v.constraints and \
                        not self.dirs.find("opentype", v.name):
                    ti = self.analyze_type(v, Ctx(oi.name, f"_{oi.cname}_{cident(f.name)}"))
                    oi.types[f.name] = ti.desc
                else:
                    cname = f"_{oi.cname}_{cident(f.name)}"
                    shape = {"SEQUENCE": "struct", "SET": "struct", "CHOICE": "choice"}.get(
                        v.kind, "alias")
                    if v.kind in ("SEQUENCE OF", "SET OF") and not v.tags:
                        shape = self.seqof_shape(cname, cname)
                    td = self.new_typedef(cname, shape, v)
                    td.asn1_name = cname
                    ti = self.analyze_type(v, Ctx(cname, cname, top=td))
                    self.finish_typedef(td, ti, v)
                    oi.types[f.name] = td.desc
            elif kind == "value":
                fty = f.type
                if fty.kind == "OBJECT IDENTIFIER":
                    pv = self.vr.oid_value(v)
                    ctype = "ASN1OBJID"
                elif fty.kind == "INTEGER":
                    pv = self.vr.int_value(v)
                    ctype = "ASN1INT"
                elif fty.kind == "BOOLEAN":
                    if v.kind != "bool":
                        self.err(a, f"'&{f.name}' needs TRUE or FALSE")
                    pv = v.v
                    ctype = "ASN1BOOL"
                else:
                    continue  # other fixed-type fields are not kept
                expr = None
                if v.kind == "ref" and fty.kind == "OBJECT IDENTIFIER":
                    m, va = self.lookup_present(v.v, v, getattr(v, "module", None))
                    if ultimate(m.analyze_type(va.governor, Ctx(va.name, "x")).desc).kind \
                            == "kObjectId":
                        expr = "&" + self.qual(m, m.cname_value(va))
                        self.use(m)
                oi.values[f.name] = (ctype, expr, pv)
                if f.name == ci.key_field:
                    oi.key = pv

    def objset_info(self, name, a):
        if name in self.objsets:
            return self.objsets[name]
        ci = self.class_info(a.governor.name, a.governor)
        cname = cident(name)
        si = ObjectSetInfo(name, cname, ci, self, a.line)
        self.objsets[name] = si
        n = 0
        for part in split_top(a.tokens, (",", "|", "UNION")):
            if not part:
                continue
            t = part[0]
            if len(part) == 1 and t.text == "...":
                si.extensible = True
            elif t.kind == "sym" and t.text == "{":
                from .lexer import Token
                n += 1
                oname = f"{name}-object{n}"
                oi = ObjectInfo(oname, cident(oname), ci, self, t.line)
                self.objects[oname] = oi
                node = Value("braced").at(self.path, t.line)
                self.settle_object(oi, self.parse_object(ci, part[1:-1], node), node)
                si.objects.append(oi)
            elif t.kind == "id":
                module = None
                if len(part) == 3 and part[1].text == ".":
                    module, t = t.text, part[2]
                elif len(part) != 1:
                    self.err(a, f"unexpected '{part[1].text}' in object set '{name}'")
                node = Value("ref", t.text).at(self.path, t.line)
                if is_upper(t.text):
                    other = self.objset_ref(t.text, node) if module is None else None
                    if other is None:
                        m = self.prog.find(module)
                        other = m.objset_ref(t.text, node)
                    if other is si:
                        self.err(a, f"object set '{name}' contains itself")
                    si.objects.extend(o for o in other.objects if o not in si.objects)
                    si.extensible = si.extensible or other.extensible
                else:
                    oi = self.object_ref(t.text, node, module)
                    if oi.cls.fields is not ci.fields:
                        self.err(a, f"object '{t.text}' is not of class '{ci.name}'")
                    if oi not in si.objects:
                        si.objects.append(oi)
            else:
                self.err(a, f"unexpected '{t.text}' in object set '{name}'")
        keys = {}
        for oi in si.objects:
            k = oi.key
            if k in keys:
                self.err(a, f"objects '{keys[k].name}' and '{oi.name}' of set '{name}' share "
                         "the key")
            keys[k] = oi
        return si

"""C++ output of one module: a header with records, descriptors' declarations,
functions, control classes, constants, information objects and sets, and a source
with the descriptor data and the thin wrappers over the engine."""

from .errors import CompileError
from .ir import CONS

E = "::Korvex::Asn1Engine::"
TYPE_FLAGS = {"kExtensible", "kListForm", "kUnsignedEnum", "kExplicitTag", "kNamedBits",
              "kNoStorage"}
PLAIN_KINDS = {"kBoolean", "kInteger", "kEnumerated", "kNull", "kObjectId"}


def no_storage(d, seen=None):
    """Whether a value of d owns no heap storage (free skips it): plain kinds,
    and SEQUENCE/SET of such components held by value, without tables."""
    seen = seen if seen is not None else set()
    if id(d) in seen:
        return False
    seen.add(id(d))
    if d.kind in PLAIN_KINDS:
        return True
    if d.kind in ("kTagged", "kAlias"):
        return no_storage(d.inner, seen)
    if d.kind in ("kSequence", "kSet") and d.members is not None:
        return all(not m.by_pointer and m.table is None and no_storage(m.type, seen)
                   for m in d.members)
    return False


def hexlist(data):
    return ", ".join(f"0x{b:02X}" for b in data)


def cstr(s):
    out = []
    for ch in s.encode("utf-8"):
        c = chr(ch)
        if c in '"\\':
            out.append("\\" + c)
        elif 32 <= ch < 127:
            out.append(c)
        else:
            out.append(f"\\{ch:03o}")
    return '"' + "".join(out) + '"'


def shared_guard(mod, td):
    ns = mod.ns.replace("::", "_")
    return f"KORVEX_ASN1GEN_SHARED_{ns}_{td.cname}"


class Emitter:
    def __init__(self, mod, source_name):
        self.mod = mod
        self.source_name = source_name
        self.local_names = {}
        self.counter = 0
        self.data = []        # lines of static data in the source

    # ---- ordering ---------------------------------------------------------------------
    def ordered_records(self):
        order, state = [], {}
        records = self.mod.records

        def visit(td, chain):
            st = state.get(td)
            if st == 2:
                return
            if st == 1:
                names = " -> ".join(t.cname for t in chain + [td])
                raise CompileError(self.mod.path, td.line, f"records contain each other by "
                                   f"value ({names}); make one of the components OPTIONAL "
                                   "inside a CHOICE or a SEQUENCE OF")
            state[td] = 1
            for dep, by_value in td.depends:
                if dep.mod is self.mod and (by_value or dep.shape == "alias"):
                    visit(dep, chain + [td])
            state[td] = 2
            order.append(td)

        for td in records:
            visit(td, [])
        return order

    # ---- names of descriptor data -------------------------------------------------------
    def new_name(self, prefix):
        self.counter += 1
        return f"k{prefix}_{self.counter}"

    def desc_ref(self, d):
        """C++ expression for the address of descriptor d."""
        if d.storage == "engine":
            return "&" + d.name
        if d.storage == "public":
            return "&" + self.mod.qual(d.mod, d.name)
        # A local descriptor, possibly made while resolving another module (a
        # constrained class field type, COMPONENTS OF): this module has its copy.
        return "&" + self.local_name(d)

    def local_name(self, d):
        if id(d) not in self.local_names:
            self.local_names[id(d)] = (self.new_name("Desc"), d)
        return self.local_names[id(d)][0]

    def collect_locals(self):
        """Local descriptors reachable from this module's public ones, inner first."""
        order, seen = [], set()

        def visit(d):
            if d is None or id(d) in seen:
                return
            if d.storage == "local":
                seen.add(id(d))
                visit(d.inner)
                for m in d.members or []:
                    visit(m.type)
                self.local_name(d)
                order.append(d)
            elif d.storage == "public" and d.mod is self.mod:
                seen.add(id(d))
                visit(d.inner)
                for m in d.members or []:
                    visit(m.type)

        for td in self.mod.records:
            visit(td.desc)
        for oi in self.mod.objects.values():
            for d in oi.types.values():
                visit(d)
        return order

    # ---- descriptor data ---------------------------------------------------------------
    def limits_expr(self, lim):
        if lim is None:
            return "nullptr"
        if lim.extensible:
            return "nullptr"
        name = self.new_name("Limits")
        values, count = "nullptr", 0
        if lim.values is not None:
            vname = self.new_name("Values")
            self.data.append(f"static const ASN1INT {vname}[] = {{"
                             f"{', '.join(str(v) for v in lim.values)}}};")
            values, count = vname, len(lim.values)
        flags = []
        if lim.lo is not None:
            flags.append(E + "kHasLower")
        if lim.hi is not None:
            flags.append(E + "kHasUpper")
        self.data.append(
            f"static const {E}Limits {name} = {{{lim.lo if lim.lo is not None else 0}LL, "
            f"{lim.hi if lim.hi is not None else 0}LL, {' | '.join(flags) or '0'}, "
            f"{values}, {count}}};")
        return "&" + name

    def members_expr(self, d, record):
        if not d.members:
            return "nullptr"
        name = self.new_name("Members")
        rows = []
        for m in d.members:
            flags = []
            if m.optional:
                flags.append("kOptional")
            if m.default is not None:
                flags.append("kDefault")
            if m.explicit:
                flags.append("kExplicit")
            if m.by_pointer:
                flags.append("kByPointer")
            if m.extension:
                flags.append("kExtensionAddition")
            if d.kind == "kChoice":
                offset = f"offsetof({record}, u)"
            elif m.field:
                offset = f"offsetof({record}, {m.field})"
            else:
                offset = "0"
            default, dlen = "nullptr", 0
            if m.default is not None:
                default = self.new_name("Default")
                self.data.append(f"static const ASN1OCTET {default}[] = {{{hexlist(m.default)}}};")
                dlen = len(m.default)
            table = "nullptr"
            if m.table is not None:
                table = self.new_name("Table")
                t = m.table
                setref = self.mod.qual(t.objset.mod, t.objset.cname + "_instance")
                self.data.append(f"static const {E}TableRef {table} = {{&{setref}, "
                                 f"{t.key_index}, {t.field_index}, {1 if t.via_list else 0}}};")
                table = "&" + table
            flag_expr = " | ".join(E + f for f in flags) or "0"
            rows.append(f"  {{{offset}, 0x{m.tag:08X}u, {flag_expr}, {m.presence}, "
                        f"{self.desc_ref(m.type)}, {default}, {dlen}, {table}}},")
        self.data.append(f"static const {E}MemberDesc {name}[] = {{")
        self.data.extend(rows)
        self.data.append("};")
        return name

    def tagindex_expr(self, d):
        if not d.tagindex:
            return "nullptr", 0
        name = self.new_name("TagIndex")
        rows = ", ".join(f"{{0x{t:08X}u, {i}}}" for t, i in d.tagindex)
        self.data.append(f"static const {E}TagIndexEntry {name}[] = {{{rows}}};")
        return name, len(d.tagindex)

    def desc_body(self, d, record=None):
        members = self.members_expr(d, record) if d.members is not None and d.kind in (
            "kSequence", "kSet", "kChoice") else "nullptr"
        count = len(d.members) if d.members and d.kind in ("kSequence", "kSet",
                                                            "kChoice") else 0
        limits = self.limits_expr(d.limits)
        tix, tcount = self.tagindex_expr(d) if d.kind in ("kChoice", "kSet") else ("nullptr", 0)
        names = [f for f in d.flags if f in TYPE_FLAGS]
        if no_storage(d) and "kNoStorage" not in names:
            names.append("kNoStorage")
        flags = " | ".join(E + f for f in names) or "0"
        inner = self.desc_ref(d.inner) if d.inner is not None else "nullptr"
        return (f"{{{E}{d.kind}, {flags}, {count}, 0x{d.tag:08X}u, {d.size}, {d.off1}, "
                f"{d.off2}, {inner}, {members}, {limits}, {tix}, {tcount}}}")

    # ---- header ------------------------------------------------------------------------
    def header(self):
        mod = self.mod
        guard = f"KORVEX_ASN1GEN_{mod.cbase.upper()}_H"
        out = [f"// korvex/asn1gen/{mod.cbase}.h: generated by asn1gen from {self.source_name}.",
               "// Do not edit; change the module or its directives instead.",
               "//",
               f"// The ASN.1 module {mod.name}: for every type T the record ASN1T_T, its",
               "// descriptor asn1Desc_T, asn1E_T (encode: length or negative status), asn1D_T",
               "// (decode: 0 or negative status), asn1Copy_T (deep copy into the context's",
               "// type heap), asn1Free_T (frees what the record's components own) and the",
               "// control class ASN1C_T. Every pointer in a record points into the type heap",
               "// of the context that decoded or copied it; a record whose mpContext is set",
               "// frees its components and drops that context when it is destroyed.",
               f"#ifndef {guard}", f"#define {guard}", "",
               "#include <korvex/asn1rt/asn1engine.h>"]
        # Only the modules whose records this header uses: descriptors, objects and
        # sets of other modules are needed by the source alone, and the imports of
        # a catalogue may be circular.
        for dep in sorted(mod.type_deps, key=lambda m: m.cbase):
            out.append(f"#include <korvex/asn1gen/{dep.cbase}.h>")
        out.append("")
        if mod.ns:
            out.append(f"namespace {mod.ns} {{")
            out.append("")
        records = self.ordered_records()
        structs = [td for td in records if td.shape != "alias"]
        if structs:
            for td in structs:
                out.append(f"struct {td.record};")
            out.append("")
        self.constants(out)
        for ci in self.used_classes():
            out.append(f"// Information object class {ci.name}.")
            out.append(f"typedef {E}InfoObject {ci.cname};")
            out.append("")
        for td in records:
            self.record_decl(td, out)
        for td in records:
            if not td.shared_seqof:
                self.functions_decl(td, out)
        # Shared lists last: their inline descriptors name the element descriptors.
        for td in records:
            if td.shared_seqof:
                self.functions_decl(td, out)
        self.objects_decl(out)
        if mod.ns:
            out.append(f"}}  // namespace {mod.ns}")
            out.append("")
        out.append("#endif")
        return "\n".join(out) + "\n"

    def used_classes(self):
        """Classes this module defines or declares objects and sets of. Each is a
        typedef of InfoObject, repeated in every module that needs the name (the
        same typedef twice is allowed), so no header needs another for it."""
        seen, out = set(), []
        classes = [ci for ci in self.mod.classes.values() if ci.mod is self.mod]
        classes += [oi.cls for oi in self.mod.objects.values() if oi.mod is self.mod]
        classes += [si.cls for si in self.mod.objsets.values() if si.mod is self.mod]
        for ci in classes:
            if ci.cname not in seen:
                seen.add(ci.cname)
                out.append(ci)
        return out

    def constants(self, out):
        mod = self.mod
        if mod.value_defs:
            out.append("// Values defined by the module.")
        for v in mod.value_defs:
            if v.kind == "oid":
                out.append(f"KORVEX_API extern const ASN1OBJID {v.cname};")
            elif v.kind == "int":
                ctype = "ASN1INT" if -2**31 <= v.value < 2**31 else "ASN1INT64"
                out.append(f"constexpr {ctype} {v.cname} = {v.value};")
            elif v.kind == "bool":
                out.append(f"constexpr ASN1BOOL {v.cname} = {1 if v.value else 0};")
            elif v.kind == "str":
                out.append(f"constexpr const char* {v.cname} = {cstr(v.value)};")
        if mod.value_defs:
            out.append("")
        seen = set()
        lines = []
        for cname, ctype, value in mod.constants:
            if cname in seen:
                continue
            seen.add(cname)
            suffix = "u" if ctype == "ASN1UINT" else ""
            lines.append(f"constexpr {ctype} {cname} = {value}{suffix};")
        if lines:
            out.append("// Named numbers, named bits and enumerators.")
            out.extend(lines)
            out.append("")

    def record_decl(self, td, out):
        if td.shared_seqof:
            guard = shared_guard(self.mod, td) + "_RECORD"
            out.append(f"#ifndef {guard}  // also made by other modules of this namespace")
            out.append(f"#define {guard}")
            self.record_body(td, out)
            out.append("#endif")
            out.append("")
            return
        self.record_body(td, out)

    def record_body(self, td, out):
        rec = td.record
        if td.shape == "alias":
            out.append(f"typedef {td.alias_ctype} {rec};")
            out.append("")
            return
        if td.shape == "list":
            out.append(f"// {rec}: list of {td.elem_ctype} (nodes point to heap elements).")
            out.append(f"struct KORVEX_API {rec} : public ASN1TSeqOfList {{")
            out.append("  ASN1Context* mpContext;  // owning context, or null")
            out.append(f"  {rec}();")
            out.append(f"  ~{rec}();")
            out.append("};")
            out.append("")
            return
        out.append(f"struct KORVEX_API {rec} {{")
        if td.shape == "choice":
            sels = [f"T_{m.name.replace('-', '_')} = {i + 1}" for i, m in enumerate(td.members)]
            if td.extensible:
                sels.append(f"T_extElem1 = {len(td.members) + 1}")
            out.append(f"  enum {{ {', '.join(sels)} }};")
        out.append("  ASN1Context* mpContext;  // owning context, or null")
        if td.shape == "struct":
            if td.presence_bits:
                out.append("  struct {")
                for m in td.members:
                    if m.presence >= 0:
                        out.append(f"    unsigned {m.field or m.name.replace('-', '_')}Present : 1;")
                out.append("  } m;")
            for m in td.members:
                if m.field:
                    out.append(f"  {m.ctype} {m.field};")
        elif td.shape == "choice":
            out.append("  ASN1UINT t;")
            out.append("  union {")
            for m in td.members:
                if m.field:
                    star = "*" if m.by_pointer else ""
                    out.append(f"    {m.ctype}{star} {m.field};")
            if td.extensible:
                out.append("    ASN1OpenType* extElem1;")
            out.append("  } u;")
        elif td.shape == "array":
            out.append("  ASN1UINT n;")
            out.append(f"  {td.elem_ctype}* elem;")
        out.append(f"  {rec}();")
        out.append(f"  ~{rec}();")
        out.append("};")
        out.append("")

    def functions_decl(self, td, out):
        if td.shared_seqof:
            self.shared_functions(td, out)
            return
        rec, c = td.record, td.cname
        out.append(f"// {c}")
        out.append(f"KORVEX_API extern const {E}TypeDesc asn1Desc_{c};")
        out.append(f"KORVEX_API int asn1E_{c}(ASN1CTXT* ctxt, {rec}* value, ASN1TagType tagging);")
        out.append(f"KORVEX_API int asn1D_{c}(ASN1CTXT* ctxt, {rec}* value, ASN1TagType tagging, "
                   "int length);")
        out.append(f"KORVEX_API int asn1Copy_{c}(ASN1CTXT* ctxt, const {rec}* src, {rec}* dest);")
        out.append(f"KORVEX_API void asn1Free_{c}(ASN1CTXT* ctxt, {rec}* value);")
        if td.has_table:
            out.append(f"KORVEX_API int asn1ETC_{c}(ASN1CTXT* ctxt, {rec}* value);")
            out.append(f"KORVEX_API int asn1DTC_{c}(ASN1CTXT* ctxt, {rec}* value);")
        self.control_class(td, out)

    def control_class(self, td, out):
        rec, c = td.record, td.cname
        out.append(f"class KORVEX_API ASN1C_{c} : public {E}Control {{")
        out.append(" public:")
        out.append(f"  explicit ASN1C_{c}({rec}& data);")
        out.append(f"  ASN1C_{c}(ASN1MessageBufferIF& buffer, {rec}& data);")
        out.append(f"  ASN1C_{c}(const ASN1C_{c}& other);")
        out.append(f"  {rec}& getData() {{ return msgData; }}")
        out.append(f"  {rec}* getCopy({rec}* dest = nullptr);")
        out.append(f"  {rec}* newCopy();")
        out.append(" protected:")
        out.append(f"  {rec}& msgData;")
        out.append("};")
        out.append("")

    def shared_functions(self, td, out):
        """A _SeqOfX/_SetOfX record's descriptor, functions and control class as
        inline definitions: identical in every module that makes the record."""
        guard = shared_guard(self.mod, td) + "_FUNCTIONS"
        out.append(f"#ifndef {guard}")
        out.append(f"#define {guard}")
        out.append(f"KORVEX_API inline const {E}TypeDesc asn1Desc_{td.cname} = "
                   f"{self.desc_body(td.desc, td.record)};")
        self.control_class(td, out)
        body = []
        self.functions_def(td, body)
        for line in body:
            # Every definition starts at the left margin: make each one inline.
            if line and not line[0].isspace() and not line.startswith("}"):
                line = "inline " + line
            out.append(line)
        out.append("#endif")
        out.append("")

    def objects_decl(self, out):
        mod = self.mod
        objs = [oi for oi in mod.objects.values() if oi.mod is mod]
        if objs:
            out.append("// Information objects.")
        for oi in objs:
            out.append(f"KORVEX_API extern const {oi.cls.cname} {oi.cname};")
        if objs:
            out.append("")
        for si in mod.objsets.values():
            if si.mod is not mod:
                continue
            cls = si.cls.cname
            key = "const ASN1OBJID& id" if si.cls.key_kind == "oid" else "ASN1INT id"
            out.append(f"// Information object set {si.name}.")
            out.append(f"struct KORVEX_API {si.cname} : public {E}ObjectSet {{")
            out.append(f"  static const {si.cname}& instance(ASN1CTXT* ctxt = nullptr);")
            out.append(f"  const {cls}* lookupObject({key}) const {{ return lookup(id); }}")
            out.append("};")
            out.append(f"KORVEX_API extern const {si.cname} {si.cname}_instance;")
            out.append("")

    # ---- source ------------------------------------------------------------------------
    def source(self):
        mod = self.mod
        out = [f"// {mod.cbase}.cpp: generated by asn1gen from {self.source_name}. Do not edit.",
               "//",
               "// Descriptor data and one-line wrappers over the codec engine.",
               f"#include <korvex/asn1gen/{mod.cbase}.h>", "", "#include <cstddef>", ""]
        for dep in sorted(mod.deps, key=lambda m: m.cbase):
            if dep not in mod.type_deps:
                out.append(f"#include <korvex/asn1gen/{dep.cbase}.h>")
        out += ["",
               "// List records derive from ASN1TSeqOfList; offsetof on records that embed",
               "// them is exact with the Itanium C++ ABI used here.",
               "#if defined(__GNUC__)",
               "#pragma GCC diagnostic ignored \"-Winvalid-offsetof\"",
               "#endif", ""]
        if mod.ns:
            out.append(f"namespace {mod.ns} {{")
            out.append("")
        body = []
        for v in mod.value_defs:
            if v.kind == "oid":
                body.append(f"const ASN1OBJID {v.cname} = {{{len(v.value)}, "
                            f"{{{', '.join(str(a) for a in v.value)}}}}};")
        if body:
            body.append("")
        self.data = []
        locals_ = self.collect_locals()
        for d in locals_:
            name = self.local_names[id(d)][0]
            record = self.mod.qual(d.typedef.mod, d.typedef.record) if d.typedef else None
            init = self.desc_body(d, record)
            self.data.append(f"static const {E}TypeDesc {name} = {init};")
        publics = []
        for td in self.ordered_records():
            if td.shared_seqof:
                continue  # defined inline in the header
            init = self.desc_body(td.desc, td.record)
            publics.append(f"const {E}TypeDesc asn1Desc_{td.cname} = {init};")
        self.objects_data()
        out.extend(body)
        if self.data:
            out.append("namespace {")
            out.extend(self.data)
            out.append("}  // namespace")
            out.append("")
        out.extend(publics)
        out.append("")
        self.object_sets(out)
        for td in self.ordered_records():
            if not td.shared_seqof:
                self.functions_def(td, out)
        if mod.ns:
            out.append(f"}}  // namespace {mod.ns}")
        return "\n".join(out) + "\n"

    def objects_data(self):
        for oi in self.mod.objects.values():
            if oi.mod is not self.mod:
                continue
            ci = oi.cls
            types = []
            for f in ci.type_fields:
                d = oi.types.get(f)
                types.append(self.desc_ref(d) if d is not None else "nullptr")
            tname = "nullptr"
            if types:
                tname = self.new_name("Types")
                self.data.append(f"const {E}TypeDesc* const {tname}[] = {{{', '.join(types)}}};")
            values, key = [], "nullptr"
            for f in ci.value_fields:
                v = oi.values.get(f)
                if v is None:
                    values.append("nullptr")
                    continue
                ctype, expr, pv = v
                if expr is None:
                    vname = self.new_name("Value")
                    if ctype == "ASN1OBJID":
                        init = f"{{{len(pv)}, {{{', '.join(str(a) for a in pv)}}}}}"
                    else:
                        init = str(int(pv))
                    self.data.append(f"const {ctype} {vname} = {init};")
                    expr = "&" + vname
                values.append(expr)
                if f == ci.key_field:
                    key = expr
            vname = "nullptr"
            if values:
                vname = self.new_name("Values")
                self.data.append(f"const void* const {vname}[] = {{{', '.join(values)}}};")
            self.object_defs = getattr(self, "object_defs", [])
            cls = ci.cname
            self.object_defs.append(f"const {cls} {oi.cname} = {{{key}, {tname}, {vname}}};")

    def object_sets(self, out):
        for line in getattr(self, "object_defs", []):
            out.append(line)
        for si in self.mod.objsets.values():
            if si.mod is not self.mod:
                continue
            # Sorted by key, the order in which ObjectSet::lookup searches: an
            # OID by its arc count, then arc by arc from the last; an object
            # without a key is never found.
            def order(oi):
                if si.cls.key_kind != "oid":
                    return oi.key
                return (len(oi.key), tuple(reversed(oi.key)))
            keyed = sorted((oi for oi in si.objects if oi.key is not None), key=order)
            objs = [("&" + self.mod.qual(oi.mod, oi.cname)) for oi in keyed]
            arr = "nullptr"
            if objs:
                arr = f"kObjects_{si.cname}"
                out.append(f"static const {E}InfoObject* const {arr}[] = {{{', '.join(objs)}}};")
            kind = E + ("kKeyObjectId" if si.cls.key_kind == "oid" else "kKeyInteger")
            out.append(f"const {si.cname} {si.cname}_instance = {{{{{arr}, {len(objs)}, {kind}}}}};")
            out.append(f"const {si.cname}& {si.cname}::instance(ASN1CTXT*) {{ return "
                       f"{si.cname}_instance; }}")
        out.append("")

    def functions_def(self, td, out):
        rec, c = td.record, td.cname
        desc = f"&asn1Desc_{c}"
        if td.shape != "alias":
            if td.shape == "list":
                out.append(f"{rec}::{rec}() : mpContext(nullptr) {{}}")
            else:
                out.append(f"{rec}::{rec}() {{ {E}zeroRecord(this, sizeof(*this)); }}")
            out.append(f"{rec}::~{rec}() {{")
            out.append("  if (mpContext) {")
            out.append(f"    {E}free(mpContext->getPtr(), {desc}, this);")
            out.append("    mpContext->_unref();")
            out.append("  }")
            out.append("}")
        out.append(f"int asn1E_{c}(ASN1CTXT* ctxt, {rec}* value, ASN1TagType tagging) {{")
        out.append(f"  return {E}encode(ctxt, {desc}, value, tagging);")
        out.append("}")
        out.append(f"int asn1D_{c}(ASN1CTXT* ctxt, {rec}* value, ASN1TagType tagging, int length) {{")
        out.append(f"  return {E}decode(ctxt, {desc}, value, tagging, length);")
        out.append("}")
        out.append(f"int asn1Copy_{c}(ASN1CTXT* ctxt, const {rec}* src, {rec}* dest) {{")
        out.append(f"  return {E}copy(ctxt, {desc}, src, dest);")
        out.append("}")
        out.append(f"void asn1Free_{c}(ASN1CTXT* ctxt, {rec}* value) {{ {E}free(ctxt, {desc}, value); }}")
        if td.has_table:
            out.append(f"int asn1ETC_{c}(ASN1CTXT* ctxt, {rec}* value) {{")
            out.append(f"  return {E}encodeTables(ctxt, {desc}, value);")
            out.append("}")
            out.append(f"int asn1DTC_{c}(ASN1CTXT* ctxt, {rec}* value) {{")
            out.append(f"  return {E}decodeTables(ctxt, {desc}, value);")
            out.append("}")
        out.append(f"ASN1C_{c}::ASN1C_{c}({rec}& data) : Control({desc}, &data), msgData(data) {{}}")
        out.append(f"ASN1C_{c}::ASN1C_{c}(ASN1MessageBufferIF& buffer, {rec}& data)")
        out.append(f"    : Control(buffer, {desc}, &data), msgData(data) {{}}")
        out.append(f"ASN1C_{c}::ASN1C_{c}(const ASN1C_{c}& other) : Control(other), "
                   "msgData(other.msgData) {}")
        has_ctx = td.shape != "alias"
        out.append(f"{rec}* ASN1C_{c}::getCopy({rec}* dest) {{")
        out.append("  if (dest == &msgData) return dest;")
        out.append(f"  if (!dest) dest = static_cast<{rec}*>(memAllocZ(sizeof({rec})));")
        out.append("  if (!dest) return nullptr;")
        out.append(f"  {E}copy(getCtxtPtr(), {desc}, &msgData, dest);")
        if has_ctx:
            out.append("  if (!dest->mpContext) {")
            out.append("    dest->mpContext = mpContext;")
            out.append("    mpContext->_ref();")
            out.append("  }")
        out.append("  return dest;")
        out.append("}")
        out.append(f"{rec}* ASN1C_{c}::newCopy() {{")
        out.append(f"  {rec}* dest = new {rec}();")
        out.append(f"  {E}copy(getCtxtPtr(), {desc}, &msgData, dest);")
        if has_ctx:
            out.append("  dest->mpContext = mpContext;")
            out.append("  mpContext->_ref();")
        out.append("  return dest;")
        out.append("}")
        out.append("")


def emit(mod, source_name):
    em = Emitter(mod, source_name)
    header = em.header()
    source = em.source()
    return header, source

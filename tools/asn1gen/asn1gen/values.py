"""Value resolution (X.680 clause 17 onwards) and DER encoding of values, used for
OID constants and for the DER of DEFAULT values that the engine compares against."""

from .errors import CompileError
from .ir import CONS

WELL_KNOWN_ROOT = {"itu-t": 0, "ccitt": 0, "iso": 1, "joint-iso-itu-t": 2, "joint-iso-ccitt": 2}
WELL_KNOWN_SECOND = {
    0: {"recommendation": 0, "question": 1, "administration": 2, "network-operator": 3,
        "identified-organization": 4},
    1: {"standard": 0, "registration-authority": 1, "member-body": 2,
        "identified-organization": 3},
}


def split_top(tokens, seps=(",",)):
    """Splits a token list at top-level separators (outside braces/parentheses)."""
    parts, cur, depth = [], [], 0
    for t in tokens:
        if t.kind == "sym" and t.text in ("{", "("):
            depth += 1
        elif t.kind == "sym" and t.text in ("}", ")"):
            depth -= 1
        if depth == 0 and t.text in seps and t.kind in ("sym", "id"):
            parts.append(cur)
            cur = []
            continue
        cur.append(t)
    if cur or parts:
        parts.append(cur)
    return parts


# ---- DER (X.690 clause 10) ---------------------------------------------------------
def der_tag(word):
    first = (word >> 24) & 0xE0
    num = word & 0x1FFFFFFF
    if num < 31:
        return bytes([first | num])
    groups = [num & 0x7F]
    num >>= 7
    while num:
        groups.append(0x80 | (num & 0x7F))
        num >>= 7
    return bytes([first | 0x1F]) + bytes(reversed(groups))


def der_len(n):
    if n < 128:
        return bytes([n])
    b = n.to_bytes((n.bit_length() + 7) // 8, "big")
    return bytes([0x80 | len(b)]) + b


def der_tlv(word, contents):
    return der_tag(word) + der_len(len(contents)) + contents


def der_int(v):
    n = max(1, (v.bit_length() + 8) // 8)
    return v.to_bytes(n, "big", signed=True)


def der_oid(arcs):
    out = bytearray()
    vals = [arcs[0] * 40 + arcs[1]] + list(arcs[2:])
    for v in vals:
        groups = [v & 0x7F]
        v >>= 7
        while v:
            groups.append(0x80 | (v & 0x7F))
            v >>= 7
        out += bytes(reversed(groups))
    return bytes(out)


def der_bits(bits, named):
    """bits: list of 0/1. Named-bit strings drop trailing zeros (X.690 11.2.2)."""
    if named:
        while bits and bits[-1] == 0:
            bits = bits[:-1]
    nbytes = (len(bits) + 7) // 8
    data = bytearray(nbytes)
    for i, b in enumerate(bits):
        if b:
            data[i // 8] |= 0x80 >> (i % 8)
    unused = nbytes * 8 - len(bits)
    return bytes([unused]) + bytes(data)


def encode_value(desc, v):
    """DER of value v (python form) of the type described by desc, own tag included."""
    kind = desc.kind
    if kind == "kAlias":
        return encode_value(desc.inner, v)
    if kind == "kTagged":
        if "kExplicitTag" in desc.flags:
            return der_tlv(desc.tag, encode_value(desc.inner, v))
        return der_tlv(desc.tag, encode_contents(desc.inner, v))
    if kind in ("kChoice",):
        name, inner = v
        for m in desc.members:
            if m.name == name:
                return encode_member(m, inner)
        raise KeyError(name)
    if kind in ("kOpenType", "kTableOpenType"):
        if isinstance(v, bytes):
            return v  # already the complete encoding ('Type : value')
        raise ValueError("open type value")
    return der_tlv(desc.tag, encode_contents(desc, v))


def encode_contents(desc, v):
    kind = desc.kind
    if kind == "kAlias":
        return encode_contents(desc.inner, v)
    if kind == "kTagged":
        if "kExplicitTag" in desc.flags:
            return encode_value(desc.inner, v)
        return encode_contents(desc.inner, v)
    if kind == "kBoolean":
        return b"\xff" if v else b"\x00"
    if kind in ("kInteger", "kBigInteger", "kEnumerated"):
        return der_int(v)
    if kind == "kNull":
        return b""
    if kind == "kBitString":
        return der_bits(v, "kNamedBits" in desc.flags)
    if kind == "kOctetString":
        return bytes(v)
    if kind == "kObjectId":
        return der_oid(v)
    if kind == "kCharString":
        return v.encode("utf-8") if desc.char_tag == 12 else v.encode("latin-1")
    if kind == "kBMPString":
        return v.encode("utf-16-be")
    if kind == "kUniversalString":
        return v.encode("utf-32-be")
    if kind in ("kSequence", "kSet"):
        out = b""
        for m in desc.members:
            if m.name in v:
                enc = encode_member(m, v[m.name])
                if m.default is not None and enc == m.default:
                    continue
                out += enc
            elif not m.optional and not m.extension:
                raise ValueError(f"component '{m.name}' missing")
        return out
    if kind in ("kSequenceOf", "kSetOf"):
        elems = [encode_value(desc.inner, e) for e in v]
        if kind == "kSetOf":
            elems.sort()
        return b"".join(elems)
    raise ValueError(f"no value of kind {kind}")


def encode_member(m, v):
    if not m.tag:
        return encode_value(m.type, v)
    if m.explicit:
        return der_tlv(m.tag | CONS, encode_value(m.type, v))
    return der_tlv(m.tag, encode_contents(m.type, v))


def ultimate(desc):
    while desc.kind in ("kAlias", "kTagged"):
        desc = desc.inner
    return desc


class ValueResolver:
    """Turns Value nodes into python values against a descriptor."""

    def __init__(self, mod):
        self.mod = mod

    def err(self, node, message):
        raise CompileError(node.file, node.line, message)

    def int_value(self, v, named=None):
        if v.kind == "int":
            return v.v
        if v.kind == "ref":
            if named and v.v in named and getattr(v, "module", None) is None:
                return named[v.v]
            r = self.mod.value_of(v.v, v, "int", getattr(v, "module", None))
            if not isinstance(r, int) or isinstance(r, bool):
                self.err(v, f"'{v.v}' is not an INTEGER value")
            return r
        self.err(v, "expected an integer value")

    def oid_value(self, v):
        if v.kind == "ref":
            r = self.mod.value_of(v.v, v, "oid", getattr(v, "module", None))
            if not isinstance(r, tuple):
                self.err(v, f"'{v.v}' is not an OBJECT IDENTIFIER value")
            return r
        if v.kind != "braced":
            self.err(v, "expected an OBJECT IDENTIFIER value { ... }")
        arcs = []
        toks = v.v
        i = 0
        while i < len(toks):
            t = toks[i]
            if t.kind == "num":
                arcs.append(int(t.text))
                i += 1
            elif t.kind == "id":
                if i + 1 < len(toks) and toks[i + 1].text == "(":
                    if i + 3 >= len(toks) or toks[i + 3].text != ")":
                        self.err(v, f"malformed arc '{t.text}(...)'")
                    nt = toks[i + 2]
                    if nt.kind == "num":
                        arcs.append(int(nt.text))
                    else:
                        from .model import Value
                        arcs.append(self.int_value(Value("ref", nt.text).at(v.file, nt.line)))
                    i += 4
                elif not arcs and t.text in WELL_KNOWN_ROOT and not self.mod.has_symbol(t.text):
                    arcs.append(WELL_KNOWN_ROOT[t.text])
                    i += 1
                elif len(arcs) == 1 and t.text in WELL_KNOWN_SECOND.get(arcs[0], {}):
                    arcs.append(WELL_KNOWN_SECOND[arcs[0]][t.text])
                    i += 1
                elif not arcs:
                    from .model import Value
                    ref = Value("ref", t.text).at(v.file, t.line)
                    arcs.extend(self.oid_value(ref))
                    i += 1
                else:
                    self.err(v, f"arc '{t.text}' needs its number: {t.text}(n)")
            else:
                self.err(v, f"unexpected '{t.text}' in an OBJECT IDENTIFIER value")
        if len(arcs) < 2 or arcs[0] > 2 or (arcs[0] < 2 and arcs[1] > 39):
            self.err(v, "invalid OBJECT IDENTIFIER value (X.690 8.19.4)")
        if len(arcs) > 128 or any(a > 0xFFFFFFFF for a in arcs):
            self.err(v, "OBJECT IDENTIFIER value beyond 128 arcs of 32 bits")
        return tuple(arcs)

    def open_value(self, tokens, node):
        """DER of an open-type value written 'Type : value' (X.681 14.6)."""
        from .lexer import Token
        from .parser import Parser
        p = Parser(list(tokens) + [Token("eof", "", node.line)], node.file)
        ty = p.parse_type()
        p.expect(":")
        val = p.parse_value()
        if p.peek().kind != "eof":
            self.err(node, f"unexpected '{p.peek().text}' in an open-type value")
        desc = self.mod.type_desc(ty)
        return encode_value(desc, self.value_for(desc, val))

    def value_for(self, desc, v):
        """Python value of v as a value of the type desc."""
        kind = desc.kind
        if kind in ("kAlias", "kTagged"):
            return self.value_for(desc.inner, v)
        if v.kind == "ref" and kind not in ("kInteger", "kBigInteger", "kEnumerated",
                                            "kObjectId", "kBitString"):
            return self.value_for(desc, self.mod.value_node(v.v, v))
        if kind == "kBoolean":
            if v.kind != "bool":
                self.err(v, "expected TRUE or FALSE")
            return v.v
        if kind in ("kInteger", "kBigInteger"):
            return self.int_value(v, desc.named)
        if kind == "kEnumerated":
            if v.kind == "ref" and v.v in desc.named:
                return desc.named[v.v]
            self.err(v, "expected one of the enumerators")
        if kind == "kNull":
            if v.kind != "null":
                self.err(v, "expected NULL")
            return None
        if kind == "kObjectId":
            return self.oid_value(v)
        if kind == "kBitString":
            if v.kind == "bstring":
                return [int(c) for c in v.v]
            if v.kind == "hstring":
                return [int(b) for c in v.v for b in format(int(c, 16), "04b")]
            if v.kind == "braced":
                bits = []
                for part in split_top(v.v):
                    if len(part) != 1 or part[0].text not in desc.named:
                        self.err(v, "expected named bits of the BIT STRING")
                    n = desc.named[part[0].text]
                    bits += [0] * max(0, n + 1 - len(bits))
                    bits[n] = 1
                return bits
            if v.kind == "ref":
                return self.value_for(desc, self.mod.value_node(v.v, v))
            self.err(v, "expected a BIT STRING value")
        if kind == "kOctetString":
            if v.kind == "hstring":
                s = v.v + ("0" if len(v.v) % 2 else "")
                return bytes.fromhex(s)
            if v.kind == "bstring":
                s = v.v + "0" * (-len(v.v) % 8)
                return bytes(int(s[i:i + 8], 2) for i in range(0, len(s), 8))
            self.err(v, "expected an OCTET STRING value 'hex'H")
        if kind in ("kCharString", "kBMPString", "kUniversalString"):
            if v.kind != "cstring":
                self.err(v, "expected a character string value")
            return v.v
        if kind in ("kSequence", "kSet"):
            if v.kind != "braced":
                self.err(v, "expected a SEQUENCE value { name value, ... }")
            from .parser import parse_tokens_as
            out = {}
            for part in split_top(v.v):
                if not part:
                    continue
                name = part[0].text
                m = next((m for m in desc.members if m.name == name), None)
                if m is None:
                    self.err(v, f"no component '{name}'")
                if ultimate(m.type).kind in ("kOpenType", "kTableOpenType"):
                    out[name] = self.open_value(part[1:], v)
                    continue
                val, p = parse_tokens_as(part[1:], v.file, "parse_value")
                if p.peek().kind != "eof":
                    self.err(v, f"unexpected '{p.peek().text}' in the value of '{name}'")
                out[name] = self.value_for(m.type, val)
            return out
        if kind in ("kSequenceOf", "kSetOf"):
            if v.kind != "braced":
                self.err(v, "expected a list value { v, ... }")
            from .parser import parse_tokens_as
            out = []
            for part in split_top(v.v):
                if part:
                    val, _ = parse_tokens_as(part, v.file, "parse_value")
                    out.append(self.value_for(desc.inner, val))
            return out
        if kind == "kChoice":
            if v.kind != "choice":
                self.err(v, "expected a CHOICE value 'alternative : value'")
            m = next((m for m in desc.members if m.name == v.v), None)
            if m is None:
                self.err(v, f"no alternative '{v.v}'")
            return (v.v, self.value_for(m.type, v.value))
        self.err(v, "values of open types are not supported")

"""Recursive-descent parser for the X.680/X.681/X.682 subset of our modules.

The subset is documented in docs/asn1-compiler.md. Anything outside it is
refused with a CompileError naming the file and line.
"""

from .errors import CompileError
from .lexer import tokenize
from .model import (Assignment, ClassDef, Component, Constraint, FieldSpec, Import, Module,
                    Tag, Type, Value)

STRING_TYPES = {
    "UTF8String": 12, "NumericString": 18, "PrintableString": 19, "TeletexString": 20,
    "T61String": 20, "VideotexString": 21, "IA5String": 22, "GraphicString": 25,
    "VisibleString": 26, "ISO646String": 26, "GeneralString": 27, "UniversalString": 28,
    "BMPString": 30, "ObjectDescriptor": 7,
}
TIME_TYPES = {"UTCTime": 23, "GeneralizedTime": 24}
SIMPLE_BUILTINS = {"BOOLEAN", "NULL", "RELATIVE-OID"} | set(STRING_TYPES) | set(TIME_TYPES)
UNSUPPORTED = {
    "REAL": "REAL is not supported",
    "EXTERNAL": "EXTERNAL is not supported",
    "EMBEDDED": "EMBEDDED PDV is not supported",
    "CHARACTER": "CHARACTER STRING is not supported",
    "INSTANCE": "INSTANCE OF is not supported",
    "MACRO": "ASN.1 macros are not supported",
}
CLASS_KEYWORDS = {"TYPE-IDENTIFIER", "ABSTRACT-SYNTAX"}


def is_upper(name):
    return name[:1].isupper()


class Parser:
    def __init__(self, tokens, filename):
        self.toks = tokens
        self.pos = 0
        self.file = filename

    # ---- token helpers -----------------------------------------------------
    def peek(self, k=0):
        return self.toks[min(self.pos + k, len(self.toks) - 1)]

    def at(self, text, k=0):
        t = self.peek(k)
        return t.kind in ("sym", "id") and t.text == text

    def next(self):
        t = self.toks[self.pos]
        if t.kind != "eof":
            self.pos += 1
        return t

    def error(self, message, tok=None):
        tok = tok or self.peek()
        raise CompileError(self.file, tok.line, message)

    def expect(self, text):
        t = self.peek()
        if not self.at(text):
            shown = t.text if t.kind != "eof" else "end of file"
            self.error(f"expected '{text}', found '{shown}'")
        return self.next()

    def accept(self, text):
        if self.at(text):
            return self.next()
        return None

    def ident(self, what="an identifier"):
        t = self.peek()
        if t.kind != "id":
            self.error(f"expected {what}, found '{t.text or 'end of file'}'")
        return self.next()

    def balanced(self, open_="{", close="}"):
        """Consumes a balanced group starting at open_ and returns the inner tokens."""
        start = self.expect(open_)
        depth, inner = 1, []
        while True:
            t = self.next()
            if t.kind == "eof":
                raise CompileError(self.file, start.line, f"unbalanced '{open_}'")
            if t.kind == "sym" and t.text == open_:
                depth += 1
            elif t.kind == "sym" and t.text == close:
                depth -= 1
                if depth == 0:
                    return inner
            inner.append(t)

    def located(self, node, tok):
        return node.at(self.file, tok.line)

    # ---- module --------------------------------------------------------------
    def parse_module(self):
        name_tok = self.ident("a module name")
        if not is_upper(name_tok.text):
            self.error("a module name starts with an upper-case letter", name_tok)
        mod = self.located(Module(name_tok.text), name_tok)
        if self.at("{"):
            mod.oid = self.located(Value("braced", self.balanced()), name_tok)
        self.expect("DEFINITIONS")
        if self.at("EXPLICIT") or self.at("IMPLICIT") or self.at("AUTOMATIC"):
            mod.tag_default = self.next().text
            self.expect("TAGS")
        if self.accept("EXTENSIBILITY"):
            self.expect("IMPLIED")
            mod.extensibility_implied = True
        self.expect("::=")
        self.expect("BEGIN")
        if self.accept("EXPORTS"):
            while not self.at(";"):
                if self.peek().kind == "eof":
                    self.error("EXPORTS list does not end with ';'")
                self.next()
            self.expect(";")
        if self.at("IMPORTS"):
            self.parse_imports(mod)
        while not self.at("END"):
            if self.peek().kind == "eof":
                self.error("module does not end with END")
            a = self.parse_assignment()
            if a.name in mod.by_name:
                self.error(f"'{a.name}' is defined twice", a)
            mod.assignments.append(a)
            mod.by_name[a.name] = a
        self.expect("END")
        if self.peek().kind != "eof":
            self.error("text after END (one module per file)")
        return mod

    def parse_imports(self, mod):
        self.expect("IMPORTS")
        symbols = []
        while not self.at(";"):
            t = self.peek()
            if t.kind == "eof":
                self.error("IMPORTS list does not end with ';'")
            if self.at("FROM"):
                self.next()
                mt = self.ident("a module name")
                imp = self.located(Import(mt.text, symbols), mt)
                if self.at("{"):
                    self.balanced()
                elif (self.peek().kind == "id" and not is_upper(self.peek().text)
                      and not (self.at(",", 1) or self.at("FROM", 1))):
                    self.next()  # AssignedIdentifier given as a value reference
                if not symbols:
                    self.error("FROM without imported symbols", mt)
                mod.imports.append(imp)
                symbols = []
                continue
            st = self.ident("an imported symbol")
            symbols.append((st.text, st.line))
            if self.at("{"):
                if self.balanced():
                    self.error("parameterised references are not supported", st)
            if not self.accept(","):
                if not self.at("FROM"):
                    self.error(f"expected ',' or FROM after '{st.text}'")
        if symbols:
            self.error("imported symbols without FROM")
        self.expect(";")

    # ---- assignments -----------------------------------------------------------
    def parse_assignment(self):
        t = self.ident("an assignment")
        if t.text in UNSUPPORTED:
            self.error(UNSUPPORTED[t.text], t)
        if self.at("{"):
            self.error(f"parameterised assignment '{t.text}' is not supported: "
                       "expand it into concrete types", t)
        if self.at("MACRO"):
            self.error(UNSUPPORTED["MACRO"])
        if is_upper(t.text):
            if self.accept("::="):
                if self.at("CLASS"):
                    return self.located(Assignment("class", t.text, cls=self.parse_class()), t)
                if self.peek().text in CLASS_KEYWORDS and self.peek().kind == "id":
                    alias = self.next().text
                    return self.located(Assignment("class", t.text, cls=None, alias=alias), t)
                ty = self.parse_type()
                return self.located(Assignment("type", t.text, type=ty), t)
            gov = self.parse_type()
            self.expect("::=")
            if not self.at("{"):
                self.error(f"expected '{{' to start the set '{t.text}'")
            return self.located(Assignment("valueset", t.text, governor=gov,
                                           tokens=self.balanced()), t)
        gov = self.parse_type()
        self.expect("::=")
        val = self.parse_value()
        return self.located(Assignment("value", t.text, governor=gov, value=val), t)

    # ---- information object classes (X.681 9) ------------------------------------
    def parse_class(self):
        start = self.expect("CLASS")
        cls = self.located(ClassDef(), start)
        self.expect("{")
        while True:
            ft = self.peek()
            if ft.kind != "field":
                self.error("expected a field '&name' in CLASS")
            self.next()
            fs = self.located(FieldSpec(ft.text, "other"), ft)
            if is_upper(ft.text):
                if self.at(",") or self.at("}") or self.at("OPTIONAL") or self.at("DEFAULT"):
                    fs.kind = "type"
                    if self.accept("OPTIONAL"):
                        fs.optional = True
                    elif self.accept("DEFAULT"):
                        fs.default = self.parse_type()
                else:
                    fs.type = self.parse_type()
                    self._field_tail(fs)
            else:
                if self.peek().kind == "field":
                    self.next()
                    self._field_tail(fs)
                else:
                    fs.kind = "value"
                    fs.type = self.parse_type()
                    if self.accept("UNIQUE"):
                        fs.unique = True
                    self._field_tail(fs)
            cls.fields.append(fs)
            if self.accept("}"):
                break
            self.expect(",")
        if self.accept("WITH"):
            self.expect("SYNTAX")
            cls.syntax = self.parse_syntax()
        return cls

    def _field_tail(self, fs):
        if self.accept("OPTIONAL"):
            fs.optional = True
        elif self.accept("DEFAULT"):
            fs.default = self.parse_value()

    def parse_syntax(self):
        inner = self.balanced()
        flat = []
        for t in inner:  # '[[' in a syntax list is two optional-group brackets
            if t.kind == "sym" and t.text in ("[[", "]]"):
                flat.extend([type(t)("sym", t.text[0], t.line)] * 2)
            else:
                flat.append(t)
        pos = 0

        def group(closing):
            nonlocal pos
            items = []
            while pos < len(flat):
                t = flat[pos]
                pos += 1
                if t.kind == "sym" and t.text == "[":
                    items.append(("opt", group("]")))
                elif t.kind == "sym" and t.text == "]":
                    if closing != "]":
                        raise CompileError(self.file, t.line, "unbalanced ']' in WITH SYNTAX")
                    return items
                elif t.kind == "field":
                    items.append(("field", t.text))
                elif (t.kind == "id" and t.text.upper() == t.text) or (
                        t.kind == "sym" and t.text == ","):
                    items.append(("word", t.text))
                else:
                    raise CompileError(self.file, t.line,
                                       f"'{t.text}' is not a literal of a WITH SYNTAX list")
            if closing == "]":
                raise CompileError(self.file, flat[-1].line if flat else 0,
                                   "unbalanced '[' in WITH SYNTAX")
            return items

        return group(None)

    # ---- types ---------------------------------------------------------------------
    def parse_tag(self):
        start = self.expect("[")
        cls = "CONTEXT"
        if self.at("UNIVERSAL") or self.at("APPLICATION") or self.at("PRIVATE"):
            cls = self.next().text
        t = self.peek()
        if t.kind == "num":
            number = int(self.next().text)
        elif t.kind == "id" and not is_upper(t.text):
            number = self.located(Value("ref", self.next().text), t)
        else:
            self.error("expected a tag number")
        self.expect("]")
        mode = None
        if self.at("IMPLICIT") or self.at("EXPLICIT"):
            mode = self.next().text
        return self.located(Tag(cls, number, mode), start)

    def parse_type(self):
        start = self.peek()
        tags = []
        while self.at("["):
            tags.append(self.parse_tag())
        ty = self.parse_untagged_type()
        ty.tags = tags + ty.tags
        while self.at("("):
            ty.constraints.append(self.parse_constraint())
        return self.located(ty, start) if tags else ty

    def parse_untagged_type(self):
        t = self.peek()
        if t.kind != "id":
            self.error(f"expected a type, found '{t.text or 'end of file'}'")
        w = t.text
        if w in UNSUPPORTED:
            self.error(UNSUPPORTED[w])
        self.next()
        if w in SIMPLE_BUILTINS:
            return self.located(Type(w), t)
        if w == "INTEGER" or w == "ENUMERATED" or w == "BIT":
            if w == "BIT":
                self.expect("STRING")
                w = "BIT STRING"
            ty = self.located(Type(w), t)
            if self.at("{"):
                self.parse_named(ty, enumerated=(w == "ENUMERATED"))
            elif w == "ENUMERATED":
                self.error("ENUMERATED needs its list of enumerators", t)
            return ty
        if w == "OCTET":
            self.expect("STRING")
            return self.located(Type("OCTET STRING"), t)
        if w == "OBJECT":
            self.expect("IDENTIFIER")
            return self.located(Type("OBJECT IDENTIFIER"), t)
        if w in ("SEQUENCE", "SET"):
            if self.at("{"):
                ty = self.located(Type(w), t)
                self.parse_components(ty, choice=False)
                return ty
            ty = self.located(Type(w + " OF"), t)
            if self.accept("SIZE"):
                ty.size = self.located(Constraint("size", sub=self.parse_constraint()), t)
            elif self.at("("):
                c = self.parse_constraint()
                ty.size = c if c.kind == "size" else None
                if ty.size is None:
                    self.error(f"only a SIZE constraint may stand between {w} and OF")
            self.expect("OF")
            nt = self.peek()
            if nt.kind == "id" and not is_upper(nt.text):
                ty.elem_name = self.next().text
            ty.elem = self.parse_type()
            return ty
        if w == "CHOICE":
            ty = self.located(Type("CHOICE"), t)
            self.parse_components(ty, choice=True)
            return ty
        if w == "ANY":
            ty = self.located(Type("ANY"), t)
            if self.accept("DEFINED"):
                self.expect("BY")
                ty.defined_by = self.ident("a component name").text
            return ty
        if not is_upper(w):
            self.error(f"expected a type, found the value reference '{w}'", t)
        ty = self.located(Type("REF"), t)
        ty.name = w
        if self.at(".") and self.peek(1).kind == "field":
            ty.kind = "FIELD"
            fields = []
            while self.at(".") and self.peek(1).kind == "field":
                self.next()
                fields.append(self.next().text)
            ty.field = ".".join(fields)
            return ty
        if self.at(".") and self.peek(1).kind == "id" and is_upper(self.peek(1).text):
            self.next()
            ty.module, ty.name = w, self.next().text
        if self.at("{") and self.peek(1).kind != "sym":
            self.error(f"parameterised type '{ty.name}{{...}}' is not supported: "
                       "expand it into a concrete type")
        return ty

    def parse_named(self, ty, enumerated):
        self.expect("{")
        while True:
            if enumerated and self.accept("..."):
                ty.enum_ext = True
                if self.accept("!"):
                    self.parse_value()
            else:
                nt = self.ident("a named number")
                value = None
                if self.accept("("):
                    if self.peek().kind == "id":
                        value = self.located(Value("ref", self.next().text), nt)
                    else:
                        value = self.parse_value()
                        if value.kind != "int":
                            self.error("a named number needs an integer")
                    self.expect(")")
                elif not enumerated:
                    self.error(f"'{nt.text}' needs its number in parentheses", nt)
                ty.named.append((nt.text, value, nt.line))
            if self.accept("}"):
                return
            self.expect(",")

    def parse_components(self, ty, choice):
        self.expect("{")
        extension = False
        if self.accept("}"):
            return
        while True:
            t = self.peek()
            if self.accept("..."):
                if ty.extensible and extension:
                    extension = False  # second marker: back in the root
                else:
                    ty.extensible = True
                    extension = True
                if self.accept("!"):
                    self.parse_value()
            elif self.accept("[["):
                if self.peek().kind == "num" and self.at(":", 1):
                    self.next()
                    self.next()
                while True:
                    c = self.parse_component(choice)
                    c.extension = True
                    ty.components.append(c)
                    if self.accept("]]"):
                        break
                    self.expect(",")
            else:
                c = self.parse_component(choice)
                c.extension = extension
                ty.components.append(c)
            if self.accept("}"):
                return
            if not self.accept(","):
                self.error(f"expected ',' or '}}', found '{self.peek().text}'", self.peek())
            del t

    def parse_component(self, choice):
        t = self.peek()
        if not choice and self.at("COMPONENTS"):
            self.next()
            self.expect("OF")
            c = self.located(Component(None, None), t)
            c.components_of = self.parse_type()
            return c
        nt = self.ident("a component name")
        if is_upper(nt.text):
            self.error(f"component '{nt.text}' has no name (X.680 needs one)", nt)
        c = self.located(Component(nt.text, self.parse_type()), nt)
        if not choice:
            if self.accept("OPTIONAL"):
                c.optional = True
            elif self.accept("DEFAULT"):
                c.default = self.parse_value()
        return c

    # ---- constraints (X.680 49, X.682) ------------------------------------------------
    def parse_constraint(self):
        start = self.expect("(")
        c = self.parse_element_set_specs(")")
        if self.accept("!"):
            self.parse_value()
        self.expect(")")
        return self.located(c, start)

    def parse_element_set_specs(self, closing):
        t = self.peek()
        if self.accept("..."):
            c = self.located(Constraint("union", parts=[]), t)
            c.extensible = True
            if self.accept(","):
                self.parse_element_set()
            return c
        c = self.parse_element_set()
        if self.accept(","):
            self.expect("...")
            c.extensible = True
            if self.accept(","):
                self.parse_element_set()  # additions are not checked
        return c

    def parse_element_set(self):
        t = self.peek()
        parts = [self.parse_intersections()]
        while self.at("|") or self.at("UNION"):
            self.next()
            parts.append(self.parse_intersections())
        if len(parts) == 1:
            return parts[0]
        return self.located(Constraint("union", parts=parts), t)

    def parse_intersections(self):
        t = self.peek()
        parts = [self.parse_elements()]
        while self.at("^") or self.at("INTERSECTION") or self.at("EXCEPT"):
            op = self.next().text
            e = self.parse_elements()
            if op != "EXCEPT":
                parts.append(e)
        if len(parts) == 1:
            return parts[0]
        return self.located(Constraint("intersection", parts=parts), t)

    def parse_elements(self):
        t = self.peek()
        if self.accept("SIZE"):
            return self.located(Constraint("size", sub=self.parse_constraint()), t)
        if self.accept("FROM"):
            return self.located(Constraint("from", sub=self.parse_constraint()), t)
        if self.accept("PATTERN"):
            self.parse_value()
            return self.located(Constraint("pattern"), t)
        if self.accept("CONTAINING"):
            ty = self.parse_type()
            if self.accept("ENCODED"):
                self.expect("BY")
                self.parse_value()
            return self.located(Constraint("containing", type=ty), t)
        if self.accept("ENCODED"):
            self.expect("BY")
            self.parse_value()
            return self.located(Constraint("pattern"), t)
        if self.accept("WITH"):
            if self.accept("COMPONENT"):
                self.parse_constraint()
            else:
                self.expect("COMPONENTS")
                self.balanced()
            return self.located(Constraint("components"), t)
        if self.accept("CONSTRAINED"):
            self.expect("BY")
            self.balanced()
            return self.located(Constraint("pattern"), t)
        if self.at("("):
            self.next()
            c = self.parse_element_set_specs(")")
            self.expect(")")
            return c
        if self.at("{") and self.peek(1).kind == "id" and is_upper(self.peek(1).text) \
                and self.at("}", 2):
            self.next()
            set_name = self.next().text
            self.expect("}")
            at_path = None
            if self.at("{"):
                self.next()
                at_path = []
                while True:
                    self.expect("@")
                    path = []
                    while self.accept("."):
                        path.append(".")
                    path.append(self.ident("a component name").text)
                    while self.accept("."):
                        path.append(self.ident("a component name").text)
                    at_path.append(path)
                    if self.accept("}"):
                        break
                    self.expect(",")
            return self.located(Constraint("table", set=set_name, at_path=at_path), t)
        if self.at("INCLUDES"):
            self.next()
            return self.located(Constraint("type", type=self.parse_type()), t)
        if t.kind == "id" and is_upper(t.text) and t.text not in ("MIN", "MAX", "TRUE",
                                                                  "FALSE", "NULL"):
            return self.located(Constraint("type", type=self.parse_type()), t)
        lo = self.parse_value()
        if self.at("<") or self.at(".."):
            self.accept("<")
            self.expect("..")
            self.accept("<")
            hi = self.parse_value()
            return self.located(Constraint("range", lo=lo, hi=hi), t)
        return self.located(Constraint("single", value=lo), t)

    # ---- values --------------------------------------------------------------------
    def parse_value(self):
        t = self.peek()
        if t.kind == "num":
            self.next()
            if self.at(".") and self.peek(1).kind == "num":
                self.next()
                frac = self.next().text
                return self.located(Value("real", float(t.text + "." + frac)), t)
            return self.located(Value("int", int(t.text)), t)
        if self.at("-") and self.peek(1).kind == "num":
            self.next()
            return self.located(Value("int", -int(self.next().text)), t)
        if t.kind in ("cstring", "bstring", "hstring"):
            self.next()
            return self.located(Value(t.kind, t.text), t)
        if self.at("{"):
            return self.located(Value("braced", self.balanced()), t)
        if t.kind == "id":
            if t.text in ("TRUE", "FALSE"):
                self.next()
                return self.located(Value("bool", t.text == "TRUE"), t)
            if t.text == "NULL":
                self.next()
                return self.located(Value("null"), t)
            if t.text in ("MIN", "MAX"):
                self.next()
                return self.located(Value("minmax", t.text), t)
            if not is_upper(t.text):
                self.next()
                if self.accept(":"):
                    return self.located(Value("choice", t.text, value=self.parse_value()), t)
                return self.located(Value("ref", t.text), t)
            if self.at(".", 1) and self.peek(2).kind == "id":
                self.next()
                self.next()
                return self.located(Value("ref", self.next().text, module=t.text), t)
        self.error(f"expected a value, found '{t.text or 'end of file'}'")


def parse_module_text(text, filename):
    return Parser(tokenize(text, filename), filename).parse_module()


def parse_tokens_as(tokens, filename, method):
    """Parses a token slice (e.g. the inside of braces) with one parser method."""
    from .lexer import Token
    last = tokens[-1].line if tokens else 0
    p = Parser(list(tokens) + [Token("eof", "", last)], filename)
    result = getattr(p, method)()
    return result, p

"""Parser and lexer of our ASN.1 compiler: what the subset accepts, and the exact
refusal of everything else."""

import unittest

from asn1gen.errors import CompileError
from asn1gen.lexer import tokenize
from asn1gen.parser import parse_module_text

from asn1gen_testutil import ModuleDir, module


class LexerTest(unittest.TestCase):
    def texts(self, src):
        return [t.text for t in tokenize(src, "x.asn") if t.kind != "eof"]

    def test_comments_end_at_double_hyphen_or_line_end(self):
        self.assertEqual(self.texts("a -- one -- b -- two\nc /* x /* y */ z */ d"),
                         ["a", "b", "c", "d"])

    def test_identifiers_with_hyphens_and_symbols(self):
        self.assertEqual(self.texts("id-pkix ::= { 1 } ... .. [[ ]] &Type"),
                         ["id-pkix", "::=", "{", "1", "}", "...", "..", "[[", "]]", "Type"])

    def test_binary_and_hex_strings(self):
        toks = tokenize("'0101'B 'A0F'H", "x.asn")
        self.assertEqual([(t.kind, t.text) for t in toks[:2]],
                         [("bstring", "0101"), ("hstring", "A0F")])

    def test_refusals(self):
        cases = [("a /* open", "x.asn:1: unterminated /* comment"),
                 ('"open', "x.asn:1: unterminated character string"),
                 ("'12'B", "x.asn:1: invalid bstring '12'"),
                 ("a\n$", "x.asn:2: unexpected character '$'")]
        for src, message in cases:
            with self.subTest(src=src):
                with self.assertRaises(CompileError) as cm:
                    tokenize(src, "x.asn")
                self.assertEqual(str(cm.exception), message)


class ParserTest(unittest.TestCase):
    def parse(self, body, **kw):
        return parse_module_text(module(body, **kw), "m.asn")

    def test_header_imports_and_assignments(self):
        mod = parse_module_text(
            "Mod-A { 1 2 3 } DEFINITIONS IMPLICIT TAGS ::= BEGIN\n"
            "EXPORTS ALL;\nIMPORTS A, b FROM Other { 1 2 } C FROM Third ;\n"
            "T ::= SEQUENCE { a [0] INTEGER OPTIONAL, b BOOLEAN DEFAULT TRUE, ... }\n"
            "v INTEGER ::= 5\nEND\n", "m.asn")
        self.assertEqual(mod.name, "Mod-A")
        self.assertEqual(mod.tag_default, "IMPLICIT")
        self.assertEqual([(i.module, [s for s, _ in i.symbols]) for i in mod.imports],
                         [("Other", ["A", "b"]), ("Third", ["C"])])
        t = mod.by_name["T"].type
        self.assertEqual([c.name for c in t.components], ["a", "b"])
        self.assertTrue(t.components[0].optional)
        self.assertEqual(t.components[1].default.v, True)
        self.assertTrue(t.extensible)

    def test_constructs_of_the_house_style(self):
        mod = self.parse(
            "A ::= SEQUENCE SIZE (1..MAX) OF INTEGER (0..255)\n"
            "B ::= SEQUENCE (SIZE (2)) OF SET OF OCTET STRING\n"
            "C ::= CHOICE { x [APPLICATION 3] IMPLICIT NULL, y [PRIVATE 1] EXPLICIT BIT STRING { f(0) } }\n"
            "D ::= ENUMERATED { a, b(5), c, ... }\n"
            "E ::= SEQUENCE { COMPONENTS OF A, z ANY DEFINED BY a, [[ w UTF8String ]] }\n"
            "F ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &Type OPTIONAL } WITH SYNTAX { ID &id [T &Type] }\n"
            "G ::= SEQUENCE { id F.&id({S}), v F.&Type({S}{@id}) }\n")
        self.assertEqual(mod.by_name["A"].type.kind, "SEQUENCE OF")
        self.assertEqual(mod.by_name["A"].type.size.kind, "size")
        self.assertEqual(mod.by_name["B"].type.elem.kind, "SET OF")
        c = mod.by_name["C"].type
        self.assertEqual([(t.cls, t.number, t.mode) for t in c.components[0].type.tags],
                         [("APPLICATION", 3, "IMPLICIT")])
        self.assertEqual([n for n, _, _ in mod.by_name["D"].type.named], ["a", "b", "c"])
        self.assertTrue(mod.by_name["D"].type.enum_ext)
        e = mod.by_name["E"].type
        self.assertEqual(e.components[1].type.defined_by, "a")
        self.assertTrue(e.components[2].extension)
        g = mod.by_name["G"].type
        self.assertEqual(g.components[1].type.constraints[0].at_path, [["id"]])
        self.assertEqual(mod.by_name["F"].cls.syntax,
                         [("word", "ID"), ("field", "id"), ("opt", [("word", "T"), ("field", "Type")])])

    def test_refusals(self):
        cases = [
            ("T ::= REAL", "m.asn:2: REAL is not supported"),
            ("T{X} ::= SEQUENCE { a X }",
             "m.asn:2: parameterised assignment 'T' is not supported: expand it into concrete types"),
            ("T ::= SIGNED{Foo}",
             "m.asn:2: parameterised type 'SIGNED{...}' is not supported: expand it into a concrete type"),
            ("T ::= SEQUENCE { a INTEGER b BOOLEAN }", "m.asn:2: expected ',' or '}', found 'b'"),
            ("T ::= SEQUENCE { Foo }", "m.asn:2: component 'Foo' has no name (X.680 needs one)"),
            ("T ::= ENUMERATED", "m.asn:2: ENUMERATED needs its list of enumerators"),
            ("T ::= INTEGER { a }", "m.asn:2: 'a' needs its number in parentheses"),
            ("T ::= INSTANCE OF X", "m.asn:2: INSTANCE OF is not supported"),
            ("T ::= SEQUENCE (1..2) OF INTEGER",
             "m.asn:2: only a SIZE constraint may stand between SEQUENCE and OF"),
            ("T ::= INTEGER\nT ::= BOOLEAN", "m.asn:3: 'T' is defined twice"),
        ]
        for body, message in cases:
            with self.subTest(body=body):
                with self.assertRaises(CompileError) as cm:
                    self.parse(body)
                self.assertEqual(str(cm.exception), message)

    def test_module_level_refusals(self):
        cases = [
            ("M DEFINITIONS ::= BEGIN\nIMPORTS A FROM B\nT ::= INTEGER\nEND\n",
             "m.asn:3: expected ',' or FROM after 'T'"),
            ("M DEFINITIONS ::= BEGIN\nT ::= INTEGER\n", "m.asn:3: module does not end with END"),
            ("M DEFINITIONS ::= BEGIN\nEND\nN DEFINITIONS ::= BEGIN END",
             "m.asn:3: text after END (one module per file)"),
            ("m DEFINITIONS ::= BEGIN END", "m.asn:1: a module name starts with an upper-case letter"),
        ]
        for text, message in cases:
            with self.subTest(text=text):
                with self.assertRaises(CompileError) as cm:
                    parse_module_text(text, "m.asn")
                self.assertEqual(str(cm.exception), message)


class ResolveRefusalTest(unittest.TestCase):
    def setUp(self):
        self.dir = ModuleDir()

    def tearDown(self):
        self.dir.close()

    def test_refusals(self):
        cases = [
            ("T ::= SEQUENCE { a Missing }", None, "M.asn:2: 'Missing' is not defined"),
            ("T ::= CHOICE { a INTEGER, b INTEGER }", None,
             "M.asn:2: alternatives 'a' and 'b' share a tag (X.680 29.3)"),
            ("T ::= SEQUENCE { a INTEGER }", "list Nope\n",
             "M.dir:1: directive 'list Nope' matches nothing in the module"),
            ("T ::= SEQUENCE { a INTEGER }", "frobnicate T\n", "M.dir:1: unknown directive 'frobnicate'"),
            ("v OBJECT IDENTIFIER ::= { 3 1 }", None,
             "M.asn:2: invalid OBJECT IDENTIFIER value (X.690 8.19.4)"),
            ("v OBJECT IDENTIFIER ::= { iso foo }", None,
             "M.asn:2: arc 'foo' needs its number: foo(n)"),
            ("T ::= SEQUENCE { a T }", None,
             "M.asn:2: records contain each other by value (T -> T); make one of the components "
             "OPTIONAL inside a CHOICE or a SEQUENCE OF"),
            ("T ::= INTEGER (0..4294967296)", "int T\n",
             "M.asn:2: a 32-bit INTEGER cannot hold the constrained range"),
            ("C ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &Type }\n"
             "T ::= SEQUENCE { id C.&id, v C.&Type({S}{@other}) }\nS C ::= { }", None,
             "M.asn:3: table constraint of 'v': no component 'other' in this SEQUENCE (only "
             "sibling components are supported as keys)"),
        ]
        for body, dirs, message in cases:
            with self.subTest(body=body):
                self.dir.write("M", module(body), dirs)
                self.assertEqual(self.dir.error("M"), message)

    def test_missing_imported_module(self):
        self.dir.write("M", module("T ::= SEQUENCE { a Name }", imports="IMPORTS Name FROM PKIX ;\n"))
        self.assertEqual(self.dir.error("M"),
                         "M.asn:3: module 'PKIX' (imported for 'Name') not found in the module "
                         "directories; add it, or carry 'Name' as an open type with the directive "
                         "'opentype Name'")
        self.dir.write("M", module("T ::= SEQUENCE { a Name }", imports="IMPORTS Name FROM PKIX ;\n"),
                       "opentype Name\n")
        self.assertIsNone(self.dir.error("M"))

    def test_file_name_must_match_module(self):
        self.dir.write("Other", module("T ::= INTEGER", name="M"))
        self.assertEqual(self.dir.error("Other"),
                         "Other.asn:1: module 'M' must be in a file named 'M.asn'")


if __name__ == "__main__":
    unittest.main()

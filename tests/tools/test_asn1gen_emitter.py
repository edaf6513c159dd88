"""Resolver and emitter of our ASN.1 compiler: record names and layouts, tags,
descriptors, directives, imports and the command line."""

import os
import tempfile
import unittest

from asn1gen.cli import main

from asn1gen_testutil import ModuleDir, module


class EmitterTest(unittest.TestCase):
    def setUp(self):
        self.dir = ModuleDir()

    def tearDown(self):
        self.dir.close()

    def compile(self, body, directives=None, name="M", tags="EXPLICIT", imports=""):
        self.dir.write(name, module(body, name=name, tags=tags, imports=imports), directives)
        mod, header, source, files = self.dir.compile(name)
        return mod, header, source

    def test_names_of_generated_records(self):
        mod, header, _ = self.compile(
            "X ::= SEQUENCE { a INTEGER }\n"
            "P ::= SEQUENCE {\n"
            "  plain    SEQUENCE OF X,\n"
            "  sized    SEQUENCE SIZE (1..MAX) OF X,\n"
            "  builtin  SEQUENCE OF INTEGER,\n"
            "  nested   SEQUENCE OF SEQUENCE { b BOOLEAN },\n"
            "  inner    CHOICE { c NULL, d X },\n"
            "  set      SET OF X,\n"
            "  other-name  SEQUENCE OF X }\n"
            "L ::= SEQUENCE OF CHOICE { e INTEGER, f BOOLEAN }\n")
        names = [td.cname for td in mod.records]
        self.assertEqual(names, ["X", "P", "_SeqOfX", "P_sized", "P_builtin", "P_nested_element",
                                 "_SeqOfP_nested_element", "P_inner", "_SetOfX", "L",
                                 "L_element"])
        self.assertIn("  ASN1T__SeqOfX plain;", header)
        self.assertIn("  ASN1T__SeqOfX other_name;", header)

    def test_record_layout(self):
        _, header, _ = self.compile(
            "S ::= SEQUENCE { a INTEGER (0..5) OPTIONAL, b BOOLEAN, c OCTET STRING DEFAULT 'AB'H,"
            " n NULL, d OBJECT IDENTIFIER OPTIONAL }\n"
            "C ::= CHOICE { x INTEGER (1..2), y S, z UTF8String, w NULL, ... }\n")
        self.assertIn("struct KORVEX_API ASN1T_S {\n"
                      "  ASN1Context* mpContext;  // owning context, or null\n"
                      "  struct {\n"
                      "    unsigned aPresent : 1;\n"
                      "    unsigned cPresent : 1;\n"
                      "    unsigned dPresent : 1;\n"
                      "  } m;\n"
                      "  ASN1INT a;\n"
                      "  ASN1BOOL b;\n"
                      "  ASN1DynOctStr c;\n"
                      "  ASN1OBJID d;\n", header)
        self.assertIn("  enum { T_x = 1, T_y = 2, T_z = 3, T_w = 4, T_extElem1 = 5 };\n"
                      "  ASN1Context* mpContext;  // owning context, or null\n"
                      "  ASN1UINT t;\n"
                      "  union {\n"
                      "    ASN1INT x;\n"
                      "    ASN1T_S* y;\n"
                      "    const char* z;\n"
                      "    ASN1OpenType* extElem1;\n"
                      "  } u;\n", header)
        for fn in ("int asn1E_S(ASN1CTXT* ctxt, ASN1T_S* value, ASN1TagType tagging);",
                   "int asn1D_S(ASN1CTXT* ctxt, ASN1T_S* value, ASN1TagType tagging, int length);",
                   "int asn1Copy_S(ASN1CTXT* ctxt, const ASN1T_S* src, ASN1T_S* dest);",
                   "void asn1Free_S(ASN1CTXT* ctxt, ASN1T_S* value);",
                   "class KORVEX_API ASN1C_S : public ::Korvex::Asn1Engine::Control {"):
            self.assertIn(fn, header)

    def test_tags_and_defaults_in_descriptors(self):
        _, _, source = self.compile(
            "T ::= SEQUENCE { a [0] INTEGER, b [1] EXPLICIT BOOLEAN, c [2] CHOICE { x NULL, y BOOLEAN },"
            " d [3] SEQUENCE OF INTEGER, e [APPLICATION 4] INTEGER DEFAULT 3 }\n",
            tags="IMPLICIT")
        self.assertIn("{offsetof(ASN1T_T, a), 0x80000000u, 0, -1,", source)
        self.assertIn("{offsetof(ASN1T_T, b), 0xA0000001u, ::Korvex::Asn1Engine::kExplicit,", source)
        # X.680 31.2.7: a CHOICE is tagged explicitly even under IMPLICIT TAGS.
        self.assertIn("{offsetof(ASN1T_T, c), 0xA0000002u, ::Korvex::Asn1Engine::kExplicit,", source)
        self.assertIn("{offsetof(ASN1T_T, d), 0xA0000003u, 0,", source)
        self.assertIn("static const ASN1OCTET kDefault_", source)
        self.assertIn("= {0x44, 0x01, 0x03};", source)

    def test_automatic_tags(self):
        _, _, source = self.compile("T ::= SEQUENCE { a INTEGER, b CHOICE { x NULL, y BOOLEAN } }\n",
                                    tags="AUTOMATIC")
        self.assertIn("{offsetof(ASN1T_T, a), 0x80000000u, 0,", source)
        self.assertIn("{offsetof(ASN1T_T, b), 0xA0000001u, ::Korvex::Asn1Engine::kExplicit,", source)

    def test_directives(self):
        mod, header, _ = self.compile(
            "T ::= SEQUENCE { a SEQUENCE OF INTEGER, b INTEGER, c INTEGER, d SEQUENCE OF BOOLEAN }\n",
            directives="namespace my::ns\nlist T.a\nname T.b counter\nbigint T.c\nname T_d Flags\n"
                       "int T.a\n")
        self.assertIn("namespace my::ns {", header)
        self.assertIn("struct KORVEX_API ASN1T_T_a : public ASN1TSeqOfList {", header)
        self.assertIn("  const char* counter;", header)
        self.assertIn("  const char* c;", header)
        self.assertIn("struct KORVEX_API ASN1T_Flags {", header)
        self.assertIn("  ASN1BOOL* elem;", header)

    def test_integers_default_to_big_integers(self):
        _, header, _ = self.compile(
            "T ::= SEQUENCE { big INTEGER, bounded INTEGER (0..100), named INTEGER { v1(0) },"
            " open INTEGER (0..MAX) }\n")
        self.assertIn("  const char* big;\n  ASN1INT bounded;\n  ASN1INT named;\n  const char* open;",
                      header)
        self.assertIn("constexpr ASN1INT T_named_v1 = 0;", header)

    def test_information_objects(self):
        _, header, source = self.compile(
            "ALGORITHM ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &Type OPTIONAL }\n"
            "  WITH SYNTAX { IDENTIFIED BY &id [PARMS &Type] }\n"
            "id-a OBJECT IDENTIFIER ::= { 1 2 3 }\n"
            "a ALGORITHM ::= { IDENTIFIED BY id-a PARMS SEQUENCE { n INTEGER (0..9) } }\n"
            "b ALGORITHM ::= { IDENTIFIED BY { 1 2 4 } }\n"
            "S ALGORITHM ::= { a | b, ... }\n"
            "Alg ::= SEQUENCE { algorithm ALGORITHM.&id({S}), parameters ALGORITHM.&Type({S}{@algorithm}) OPTIONAL }\n")
        self.assertIn("typedef ::Korvex::Asn1Engine::InfoObject ALGORITHM;", header)
        self.assertIn("struct KORVEX_API ASN1T__a_Type {", header)
        self.assertIn("KORVEX_API extern const ALGORITHM a;", header)
        self.assertIn("struct KORVEX_API S : public ::Korvex::Asn1Engine::ObjectSet {", header)
        self.assertIn("KORVEX_API int asn1ETC_Alg(ASN1CTXT* ctxt, ASN1T_Alg* value);", header)
        self.assertIn("  Asn1Object parameters;", header)
        self.assertIn("const ASN1OBJID id_a = {3, {1, 2, 3}};", source)
        self.assertIn("const S S_instance = {{kObjects_S, 2, ::Korvex::Asn1Engine::kKeyObjectId}};",
                      source)
        self.assertIn("= {&S_instance, 0, 0, 0};", source)

    def test_imports_across_modules(self):
        self.dir.write("Base", module("B ::= SEQUENCE { x INTEGER }\nid-b OBJECT IDENTIFIER ::= { 1 3 }",
                                      name="Base"), "namespace base\n")
        mod, header, source = self.compile(
            "U ::= SEQUENCE { b B, v OBJECT IDENTIFIER DEFAULT { id-b 7 } }\n",
            imports="IMPORTS B, id-b FROM Base ;\n")
        self.assertIn("#include <korvex/asn1gen/Base.h>", header)
        self.assertIn("  ::base::ASN1T_B b;", header)
        self.assertIn("&::base::asn1Desc_B", source)
        self.assertIn("{0x06, 0x02, 0x2B, 0x07}", source)


    def test_circular_imports(self):
        # A gathers B's object set into its table constraint; B's DEFAULT value is
        # a value of A's record: each header includes only the modules whose
        # records it uses, the sources include the rest.
        self.dir.write("A", module(
            "ALG ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &Type OPTIONAL }\n"
            "  WITH SYNTAX { ID &id [PARMS &Type] }\n"
            "Set ALG ::= { BSet, ... }\n"
            "Alg ::= SEQUENCE { algorithm ALG.&id({Set}), parameters ALG.&Type({Set}{@algorithm}) OPTIONAL }\n"
            "id-a OBJECT IDENTIFIER ::= { 1 2 }", name="A",
            imports="IMPORTS BSet FROM B ;\n"))
        self.dir.write("B", module(
            "id-b OBJECT IDENTIFIER ::= { 1 3 }\n"
            "b ALG ::= { ID id-b PARMS Params }\n"
            "BSet ALG ::= { b }\n"
            "sha Alg ::= { algorithm id-a, parameters NULL : NULL }\n"
            "Params ::= SEQUENCE { hash Alg DEFAULT sha }", name="B",
            imports="IMPORTS ALG, Alg, id-a FROM A ;\n"))
        _, a_header, a_source, _ = self.dir.compile("A")
        _, b_header, b_source, _ = self.dir.compile("B")
        self.assertNotIn("#include <korvex/asn1gen/B.h>", a_header)
        self.assertIn("#include <korvex/asn1gen/B.h>", a_source)
        self.assertIn("#include <korvex/asn1gen/A.h>", b_header)
        # DEFAULT { algorithm 1.2, parameters 05 00 } as the member's DER
        self.assertIn("{0x30, 0x05, 0x06, 0x01, 0x2A, 0x05, 0x00}", b_source)

    def test_shared_lists_are_inline_under_a_guard(self):
        _, header, source = self.compile("X ::= INTEGER (0..1)\nP ::= SEQUENCE { a SEQUENCE OF X }",
                                         directives="namespace ns\n")
        self.assertIn("#ifndef KORVEX_ASN1GEN_SHARED_ns__SeqOfX_RECORD", header)
        self.assertIn("KORVEX_API inline const ::Korvex::Asn1Engine::TypeDesc asn1Desc__SeqOfX = ", header)
        self.assertIn("inline int asn1E__SeqOfX(", header)
        self.assertNotIn("asn1E__SeqOfX", source)


    def test_catalogue_forms(self):
        """The forms the catalogue modules need: a value renamed by a directive,
        a record of its own for a size-constrained OCTET STRING component, an
        OCTET STRING holding a table-constrained type (X.682 11), object sets in
        key order, and X.680 31.2.7 applied to a type still being built."""
        mod, header, source = self.compile(
            "ALG ::= CLASS { &id OBJECT IDENTIFIER UNIQUE, &Type OPTIONAL }\n"
            "  WITH SYNTAX { IDENTIFIED BY &id [PARMS &Type] }\n"
            "big-Name OBJECT IDENTIFIER ::= { 1 2 9 }\n"
            "b ALG ::= { IDENTIFIED BY { 1 2 7 } PARMS INTEGER }\n"
            "a ALG ::= { IDENTIFIED BY { 1 2 3 4 } PARMS BOOLEAN }\n"
            "c ALG ::= { IDENTIFIED BY { 1 2 3 } }\n"
            "Set ALG ::= { b | a | c }\n"
            "P ::= SEQUENCE { iv OCTET STRING (SIZE (8)), salt [0] OCTET STRING (SIZE (1..4)),\n"
            "  id ALG.&id({Set}), value OCTET STRING (CONTAINING ALG.&Type({Set}{@id})) }\n"
            "Outer ::= SEQUENCE { inner [1] Names OPTIONAL }\n"
            "Names ::= SEQUENCE OF CHOICE { n [0] Outer, m INTEGER }\n",
            directives="name big-Name Big_Name\n", tags="IMPLICIT")
        self.assertIn("KORVEX_API extern const ASN1OBJID Big_Name;", header)
        self.assertIn("typedef ASN1TDynOctStr ASN1T_P_iv;", header)
        self.assertIn("typedef ASN1TDynOctStr ASN1T_P_salt;", header)
        self.assertIn("  ASN1T_P_iv iv;\n  ASN1T_P_salt salt;\n", header)
        self.assertIn("  Asn1Object value;", header)
        self.assertIn("&::Korvex::Asn1Engine::kDescTableOctetString", source)
        # Objects in key order: 1.2.3 (3 arcs) and 1.2.7 before 1.2.3.4 (4).
        self.assertIn("kObjects_Set[] = {&c, &b, &a};", source)
        # [0] Outer inside Names is implicit although Outer, whose building led
        # to Names, was not built yet when the tag met it.
        self.assertIn("{offsetof(ASN1T_Names_element, u), 0xA0000000u, "
                      "::Korvex::Asn1Engine::kByPointer, -1, &asn1Desc_Outer,", source)


class CommandLineTest(unittest.TestCase):
    def test_outputs_depfile_and_unchanged_outputs(self):
        with tempfile.TemporaryDirectory() as tmp:
            asn = os.path.join(tmp, "M.asn")
            with open(asn, "w", encoding="utf-8") as f:
                f.write(module("T ::= INTEGER"))
            args = [asn, "--header-dir", os.path.join(tmp, "h"), "--source-dir",
                    os.path.join(tmp, "s"), "--depfile", os.path.join(tmp, "M.d")]
            self.assertEqual(main(args), 0)
            header = os.path.join(tmp, "h", "M.h")
            stamp = os.stat(header).st_mtime_ns
            os.utime(header, ns=(stamp - 10**9, stamp - 10**9))
            self.assertEqual(main(args), 0)
            self.assertEqual(os.stat(header).st_mtime_ns, stamp - 10**9)
            with open(os.path.join(tmp, "M.d"), encoding="utf-8") as f:
                self.assertEqual(f.read(), f"{os.path.join(tmp, 's', 'M.cpp')}: {asn}\n")

    def test_refusal_goes_to_stderr_with_status_1(self):
        import contextlib
        import io
        with tempfile.TemporaryDirectory() as tmp:
            asn = os.path.join(tmp, "M.asn")
            with open(asn, "w", encoding="utf-8") as f:
                f.write(module("T ::= REAL"))
            err = io.StringIO()
            with contextlib.redirect_stderr(err):
                rc = main([asn, "--header-dir", tmp, "--source-dir", tmp])
            self.assertEqual(rc, 1)
            self.assertEqual(err.getvalue(), f"{asn}:2: REAL is not supported\n")


if __name__ == "__main__":
    unittest.main()

"""asn1gen: our ASN.1 compiler (X.680/X.681/X.682 subset) to C++ records and
descriptors for the Korvex codec engine. See docs/asn1-compiler.md."""

#!/usr/bin/env python3
"""Entry point of our ASN.1 compiler; see asn1gen/cli.py and docs/asn1-compiler.md."""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from asn1gen.cli import main  # noqa: E402

if __name__ == "__main__":
    sys.exit(main())

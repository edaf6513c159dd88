// cmd_dump.cpp: `adestool dump FILE [--hex | --asn1]`.
#include "command.h"
#include "dump.h"
#include "tool_error.h"

namespace adestool {

namespace {

int RunDump(CommandContext& context) {
  const ParsedArgs& args = context.args();
  ExpectPositionals(kDumpCommand, args, 1, "FILE");
  if (args.Has("hex") && args.Has("asn1")) {
    throw UsageError("dump: --hex and --asn1 exclude each other (try 'adestool dump --help')");
  }
  const DumpMode mode = args.Has("hex") ? DumpMode::kHex : DumpMode::kAsn1;
  const Input input = context.LoadInput(args.positionals()[0]);
  for (size_t i = 0; i < input.items.size(); ++i) {
    std::string text = ItemHeading(input, i);
    DumpFailure failure;
    bool ok = DumpBytes(input.items[i].bytes, mode, &text, &failure);
    // What could be parsed is shown before the error.
    context.output().Write(text);
    if (!ok) throw FileError(input.name, ItemFailureText(input, i, failure));
  }
  return kExitOk;
}

}  // namespace

const Command kDumpCommand = {
    "dump",
    "dump FILE [--asn1 | --hex]",
    "show the ASN.1 structure of a file, or a hex dump",
    "Shows FILE as an indented ASN.1 tree (--asn1, the default) or as a hex\n"
    "dump (--hex). The tree has one line per element: its offset, '+' and the\n"
    "length of its header, the tag and the contents length, then the decoded\n"
    "value of a primitive. OCTET STRING and BIT STRING contents that hold one\n"
    "complete element are shown decoded below them. A PEM file with several\n"
    "blocks is shown block by block.\n"
    "\n"
    "Exit status: 0 when the input is well-formed; 2 for usage and input\n"
    "errors, and for malformed input, which is shown up to the fault and\n"
    "named with its offset on standard error.",
    {
        {"asn1", 0, false, "", "indented ASN.1 tree (the default)", true},
        {"hex", 0, false, "", "hex dump: eight bytes a line, then the bytes as text", true},
    },
    RunDump,
};

}  // namespace adestool

// command.h: the subcommand table of adestool and what a subcommand gets.
//
// A subcommand is one Command entry (name, help texts, its own options and a
// run function) listed in Commands(). The dispatcher parses the arguments
// against the command's options plus the common ones (-o/--output,
// -h/--help), opens the output, runs the command, and commits the output
// when the command returns 0 or 1. A command reports an input or usage
// error by throwing ToolError (status 2); the output file is then not
// created.
#ifndef ADESTOOL_COMMAND_H
#define ADESTOOL_COMMAND_H

#include <string>
#include <string_view>
#include <vector>

#include "args.h"
#include "input.h"
#include "output.h"

namespace adestool {

class CommandContext {
 public:
  CommandContext(const ParsedArgs& args, Output& output) : args_(args), output_(output) {}

  const ParsedArgs& args() const { return args_; }
  Output& output() { return output_; }

  // LoadInput reads and decodes the input at path ("-": standard input).
  // Throws ToolError (status 2) for unreadable or undecodable input, and
  // when the input is the output file.
  Input LoadInput(const std::string& path);

 private:
  const ParsedArgs& args_;
  Output& output_;
};

struct Command {
  std::string_view name;                // "dump"
  std::string_view usage;               // "dump FILE [--hex | --asn1]"
  std::string_view summary;             // one line for `adestool --help`
  std::string_view description;         // the body of `adestool NAME --help`
  std::vector<OptionSpec> options;      // the command's own options
  int (*run)(CommandContext& context);  // returns kExitOk or kExitCheckFailed
};

// Commands: every available subcommand, in the order help lists them.
const std::vector<Command>& Commands();

// The options every subcommand takes.
const std::vector<OptionSpec>& CommonOptions();

// ExpectPositionals throws a usage error unless exactly count positional
// arguments were given ("dump: missing FILE", "dump: unexpected argument 'x'").
void ExpectPositionals(const Command& command, const ParsedArgs& args, size_t count,
                       std::string_view what);

// The command entries, defined beside each command's code.
extern const Command kDumpCommand;
extern const Command kInspectCommand;
extern const Command kRefsCommand;
extern const Command kValuesCommand;
extern const Command kImprintCommand;
extern const Command kExtendCommand;

}  // namespace adestool

#endif

// command.cpp: the command table and the helpers commands share.
#include "command.h"

#include "tool_error.h"

namespace adestool {

const std::vector<Command>& Commands() {
  static const std::vector<Command> commands = {kDumpCommand,    kInspectCommand, kRefsCommand,
                                                kValuesCommand,  kImprintCommand, kExtendCommand};
  return commands;
}

const std::vector<OptionSpec>& CommonOptions() {
  static const std::vector<OptionSpec> options = {
      {"output", 'o', true, "FILE",
       "write the output to FILE, whole or not at all ('-': standard output)", false},
  };
  return options;
}

Input CommandContext::LoadInput(const std::string& path) {
  output_.RefuseInput(path);
  return DecodeInput(DisplayName(path), ReadInputBytes(path));
}

void ExpectPositionals(const Command& command, const ParsedArgs& args, size_t count,
                       std::string_view what) {
  const std::string name(command.name);
  const std::string hint = " (try 'adestool " + name + " --help')";
  if (args.positionals().size() < count) {
    throw UsageError(name + ": missing " + std::string(what) + hint);
  }
  if (args.positionals().size() > count) {
    throw UsageError(name + ": unexpected argument '" + args.positionals()[count] + "'" + hint);
  }
}

}  // namespace adestool

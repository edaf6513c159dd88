// args.h: the command-line parser of adestool.
//
// A subcommand declares its options as OptionSpec entries; ParseArgs turns
// its arguments into flags, option values and positional arguments:
//   --flag               a flag
//   --opt VALUE          an option with a value (the value may start with '-')
//   --opt=VALUE          the same
//   -o FILE, -oFILE      a one-letter option with a value
//   -f                   a one-letter flag
//   --                   every later argument is positional
//   -                    a positional argument (standard input)
// --help or -h anywhere before "--" asks for help, whatever else is there.
#ifndef ADESTOOL_ARGS_H
#define ADESTOOL_ARGS_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace adestool {

struct OptionSpec {
  std::string_view name;       // long name without the dashes: "output"
  char shortName;              // one-letter name ('o'), or 0
  bool takesValue;             // true: --name VALUE; false: a flag
  std::string_view valueName;  // shown in help: "FILE"
  std::string_view help;       // one line
  bool repeatable;             // may be given more than once
};

class ParsedArgs {
 public:
  // Has: the option or flag was given (at least once).
  bool Has(std::string_view name) const;
  // Value: the last value of an option, or null when it was not given.
  const std::string* Value(std::string_view name) const;
  // Values: every value of an option in command-line order (empty if absent).
  const std::vector<std::string>& Values(std::string_view name) const;
  const std::vector<std::string>& positionals() const { return positionals_; }
  bool helpRequested() const { return helpRequested_; }

 private:
  friend ParsedArgs ParseArgs(const std::vector<std::string>&, const std::vector<OptionSpec>&,
                              std::string_view);
  std::map<std::string, std::vector<std::string>, std::less<>> options_;
  std::vector<std::string> positionals_;
  bool helpRequested_ = false;
};

// ParseArgs parses args (the arguments after the subcommand name) against
// optionList. A flag is recorded with one empty value per occurrence. Throws
// ToolError (status 2) naming command for an unknown option, a missing or
// unexpected value, or a non-repeatable option given twice.
ParsedArgs ParseArgs(const std::vector<std::string>& args, const std::vector<OptionSpec>& optionList,
                     std::string_view command);

// OptionUsage: "--output FILE, -o FILE" style text of one option for help.
std::string OptionUsage(const OptionSpec& option);

}  // namespace adestool

#endif

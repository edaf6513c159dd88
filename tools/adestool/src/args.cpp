// args.cpp: the command-line parser.
#include "args.h"

#include "tool_error.h"

namespace adestool {

namespace {

const std::vector<std::string> kNoValues;

ToolError BadOption(std::string_view command, const std::string& what) {
  std::string cmd(command);
  return UsageError(cmd + ": " + what + " (try 'adestool " + cmd + " --help')");
}

const OptionSpec* FindLong(const std::vector<OptionSpec>& optionList, std::string_view name) {
  for (const OptionSpec& s : optionList) {
    if (s.name == name) return &s;
  }
  return nullptr;
}

const OptionSpec* FindShort(const std::vector<OptionSpec>& optionList, char c) {
  for (const OptionSpec& s : optionList) {
    if (s.shortName != 0 && s.shortName == c) return &s;
  }
  return nullptr;
}

}  // namespace

bool ParsedArgs::Has(std::string_view name) const { return options_.find(name) != options_.end(); }

const std::string* ParsedArgs::Value(std::string_view name) const {
  auto it = options_.find(name);
  if (it == options_.end() || it->second.empty()) return nullptr;
  return &it->second.back();
}

const std::vector<std::string>& ParsedArgs::Values(std::string_view name) const {
  auto it = options_.find(name);
  return it == options_.end() ? kNoValues : it->second;
}

ParsedArgs ParseArgs(const std::vector<std::string>& args, const std::vector<OptionSpec>& optionList,
                     std::string_view command) {
  ParsedArgs parsed;
  // Help wins over everything else on the line, errors included.
  for (const std::string& arg : args) {
    if (arg == "--") break;
    if (arg == "--help" || arg == "-h") {
      parsed.helpRequested_ = true;
      return parsed;
    }
  }
  auto record = [&](const OptionSpec& option, const std::string& shown, std::string value) {
    std::vector<std::string>& values = parsed.options_[std::string(option.name)];
    if (!values.empty() && !option.repeatable) {
      throw BadOption(command, "option '" + shown + "' given more than once");
    }
    values.push_back(std::move(value));
  };

  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg == "--") {
      parsed.positionals_.insert(parsed.positionals_.end(), args.begin() + i + 1, args.end());
      break;
    }
    if (arg.size() < 2 || arg[0] != '-') {
      parsed.positionals_.push_back(arg);
      continue;
    }
    if (arg[1] == '-') {
      // --name, --name=value, --name value
      size_t eq = arg.find('=');
      std::string name = arg.substr(2, eq == std::string::npos ? std::string::npos : eq - 2);
      const OptionSpec* option = FindLong(optionList, name);
      std::string shown = "--" + name;
      if (!option) throw BadOption(command, "unknown option '" + shown + "'");
      if (!option->takesValue) {
        if (eq != std::string::npos) {
          throw BadOption(command, "option '" + shown + "' takes no value");
        }
        record(*option, shown, std::string());
      } else if (eq != std::string::npos) {
        record(*option, shown, arg.substr(eq + 1));
      } else {
        if (i + 1 >= args.size()) {
          throw BadOption(command, "option '" + shown + "' needs a value (" +
                                       std::string(option->valueName) + ")");
        }
        record(*option, shown, args[++i]);
      }
      continue;
    }
    // -x, -xVALUE, -x VALUE
    const OptionSpec* option = FindShort(optionList, arg[1]);
    std::string shown = arg.substr(0, 2);
    if (!option) throw BadOption(command, "unknown option '" + arg + "'");
    if (!option->takesValue) {
      if (arg.size() > 2) throw BadOption(command, "unknown option '" + arg + "'");
      record(*option, shown, std::string());
    } else if (arg.size() > 2) {
      record(*option, shown, arg.substr(2));
    } else {
      if (i + 1 >= args.size()) {
        throw BadOption(
            command, "option '" + shown + "' needs a value (" + std::string(option->valueName) + ")");
      }
      record(*option, shown, args[++i]);
    }
  }
  return parsed;
}

std::string OptionUsage(const OptionSpec& option) {
  std::string text;
  if (option.shortName != 0) {
    text += '-';
    text += option.shortName;
    if (option.takesValue) text += " " + std::string(option.valueName);
    text += ", ";
  }
  text += "--" + std::string(option.name);
  if (option.takesValue) text += " " + std::string(option.valueName);
  return text;
}

}  // namespace adestool

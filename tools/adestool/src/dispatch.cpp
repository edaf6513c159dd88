// dispatch.cpp: argument dispatch, help, version and error reporting.
#include "dispatch.h"

#include <korvex/platform/atl/atlexcept.h>

#include <cstdio>
#include <exception>
#include <new>

#include "command.h"
#include "tool_error.h"

#ifndef ADESTOOL_VERSION
#error "ADESTOOL_VERSION must be defined by the build"
#endif

namespace adestool {

namespace {

constexpr const char kHelpOption[] = "-h, --help";

void Print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

// "  NAME    text" with the text column at width.
std::string Row(std::string_view left, std::string_view text, size_t width) {
  std::string row = "  " + std::string(left);
  row += row.size() < width ? std::string(width - row.size(), ' ') : std::string("  ");
  return row + std::string(text) + "\n";
}

std::string OverviewHelp() {
  std::string text =
      "Usage: adestool COMMAND [OPTIONS] ARGUMENTS\n"
      "       adestool COMMAND --help\n"
      "       adestool --version\n"
      "\n"
      "Inspects CMS signatures, certificates, CRLs, OCSP responses, time-stamp\n"
      "tokens and any other DER with libkorvex-ades.\n"
      "\n"
      "Commands:\n";
  for (const Command& c : Commands()) text += Row(c.name, c.summary, 12);
  text += "\nOptions of every command:\n";
  for (const OptionSpec& o : CommonOptions()) text += Row(OptionUsage(o), o.help, 28);
  text += Row(kHelpOption, "show the help of the command", 28);
  text +=
      "\n"
      "Inputs may be DER (or BER), PEM or base64; the form is detected. '-' reads\n"
      "standard input.\n"
      "Exit status: 0 success, 1 a check failed, 2 usage or input error.\n";
  return text;
}

std::string CommandHelp(const Command& c) {
  std::string text = "Usage: adestool " + std::string(c.usage) + " [-o FILE]\n\n";
  text += std::string(c.description) + "\n\nOptions:\n";
  for (const OptionSpec& o : c.options) text += Row(OptionUsage(o), o.help, 28);
  for (const OptionSpec& o : CommonOptions()) text += Row(OptionUsage(o), o.help, 28);
  text += Row(kHelpOption, "show this help", 28);
  return text;
}

const Command* FindCommand(std::string_view name) {
  for (const Command& c : Commands()) {
    if (c.name == name) return &c;
  }
  return nullptr;
}

const Command& RequireCommand(const std::string& name) {
  const Command* c = FindCommand(name);
  if (!c) throw UsageError("unknown command '" + name + "' (try 'adestool --help')");
  return *c;
}

int Run(const std::vector<std::string>& args) {
  if (args.empty()) throw UsageError("missing command (try 'adestool --help')");
  const std::string& first = args[0];
  if (first == "--help" || first == "-h" || first == "help") {
    if (first == "help" && args.size() > 1) {
      Print(CommandHelp(RequireCommand(args[1])));
    } else {
      Print(OverviewHelp());
    }
    return kExitOk;
  }
  if (first == "--version") {
    Print(std::string("adestool ") + ToolVersion() + "\n");
    return kExitOk;
  }
  if (first.size() > 1 && first[0] == '-') {
    throw UsageError("unknown option '" + first + "' (try 'adestool --help')");
  }
  const Command& command = RequireCommand(first);
  std::vector<OptionSpec> optionList = command.options;
  optionList.insert(optionList.end(), CommonOptions().begin(), CommonOptions().end());
  ParsedArgs parsed =
      ParseArgs(std::vector<std::string>(args.begin() + 1, args.end()), optionList, command.name);
  if (parsed.helpRequested()) {
    Print(CommandHelp(command));
    return kExitOk;
  }
  const std::string* outputPath = parsed.Value("output");
  Output output(outputPath ? *outputPath : std::string("-"));
  CommandContext context(parsed, output);
  int status = command.run(context);
  output.Commit();
  return status;
}

void PrintError(const char* message) {
  // What the command printed before the fault comes first.
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", message);
}

}  // namespace

const char* ToolVersion() { return ADESTOOL_VERSION; }

int RunTool(const std::vector<std::string>& args) {
  try {
    int status = Run(args);
    if (std::fflush(stdout) != 0) {
      PrintError("adestool: <stdout>: cannot write");
      return kExitError;
    }
    return status;
  } catch (const ToolError& e) {
    PrintError(e.what());
    return e.status();
  } catch (const std::bad_alloc&) {
    PrintError("adestool: out of memory");
  } catch (const ATL::CAtlException& e) {
    char text[64];
    std::snprintf(text, sizeof text, "adestool: library error 0x%08X",
                  static_cast<unsigned>(e.m_hr));
    PrintError(text);
  } catch (const std::exception& e) {
    PrintError((std::string("adestool: internal error: ") + e.what()).c_str());
  }
  return kExitError;
}

}  // namespace adestool

// tool_error.cpp: message builders of ToolError.
#include "tool_error.h"

#include <cstring>

namespace adestool {

ToolError UsageError(const std::string& what) { return ToolError(kExitError, "adestool: " + what); }

ToolError FileError(const std::string& file, const std::string& what) {
  return ToolError(kExitError, "adestool: " + file + ": " + what);
}

ToolError CheckFailure(const std::string& file, const std::string& what) {
  return ToolError(kExitCheckFailed, "adestool: " + file + ": " + what);
}

std::string ErrnoText(int error) {
  // strerror is enough here: adestool runs one thread.
  const char* text = std::strerror(error);
  return text ? text : "error " + std::to_string(error);
}

}  // namespace adestool

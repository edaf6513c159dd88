// tool_error.h: the one exception type of adestool.
//
// Every failure that ends the program carries its exit status and the whole
// message line, "adestool: FILE: what is wrong", so that main() only prints
// it and exits.
#ifndef ADESTOOL_TOOL_ERROR_H
#define ADESTOOL_TOOL_ERROR_H

#include <stdexcept>
#include <string>

namespace adestool {

// Exit statuses of every subcommand.
constexpr int kExitOk = 0;           // done, every check passed
constexpr int kExitCheckFailed = 1;  // done, a check failed
constexpr int kExitError = 2;        // usage or input error

// The name that stands for standard input in messages.
constexpr const char kStdinName[] = "<stdin>";

class ToolError : public std::runtime_error {
 public:
  // message is the complete line without the trailing newline.
  ToolError(int status, const std::string& message)
      : std::runtime_error(message), status_(status) {}
  int status() const { return status_; }

 private:
  int status_;
};

// UsageError: status 2, "adestool: what".
ToolError UsageError(const std::string& what);

// FileError: status 2, "adestool: file: what".
ToolError FileError(const std::string& file, const std::string& what);

// CheckFailure: status 1, "adestool: file: what".
ToolError CheckFailure(const std::string& file, const std::string& what);

// ErrnoText: the C library's text for an errno value ("No such file or
// directory").
std::string ErrnoText(int error);

}  // namespace adestool

#endif

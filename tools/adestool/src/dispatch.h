// dispatch.h: the whole program behind main().
#ifndef ADESTOOL_DISPATCH_H
#define ADESTOOL_DISPATCH_H

#include <string>
#include <vector>

namespace adestool {

// RunTool runs adestool with args (argv without the program name): help and
// version to standard output, a command's output where -o says, one error
// line on standard error. Returns the exit status (0, 1 or 2); never throws.
int RunTool(const std::vector<std::string>& args);

// ToolVersion: "0.1.0", the version of the library the tool was built with.
const char* ToolVersion();

}  // namespace adestool

#endif

// main.cpp: adestool, the command-line tool of libkorvex-ades.
#include <string>
#include <vector>

#include "dispatch.h"

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
  return adestool::RunTool(args);
}

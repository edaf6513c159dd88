// output.h: where a subcommand's output goes.
//
// Standard output, or with -o FILE a file that appears whole or not at all:
// the text goes to a temporary file in the same directory, which Commit
// flushes to disk (fsync) and renames over FILE. A run that ends without
// Commit (an error, an exception, SIGINT/SIGTERM/SIGHUP) removes the
// temporary file and leaves FILE as it was. An existing FILE that is not a
// regular file (/dev/null, a pipe) is written directly. "-" means standard
// output.
#ifndef ADESTOOL_OUTPUT_H
#define ADESTOOL_OUTPUT_H

#include <string>
#include <string_view>

namespace adestool {

class Output {
 public:
  // Output(path): path empty or "-" means standard output. Throws ToolError
  // (status 2) when path names a directory.
  explicit Output(const std::string& path);
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  // Write appends text. Throws ToolError (status 2) naming the output when
  // the file cannot be created or written.
  void Write(std::string_view text);

  // RefuseInput throws ToolError (status 2) when the output file is the
  // same file as the input at inputPath ("-": standard input), so that no
  // command overwrites what it reads.
  void RefuseInput(const std::string& inputPath) const;

  // Commit makes the output final: flushes standard output, or syncs and
  // renames the temporary file over the target (creating an empty file if
  // nothing was written). Throws ToolError (status 2) on a write error.
  void Commit();

  // Discard drops a file output: the temporary file is removed and the
  // target is not touched. Standard output cannot be taken back.
  void Discard();

  bool toStdout() const { return toStdout_; }
  // name: "<stdout>" or the path as given.
  const std::string& name() const { return name_; }

 private:
  void Open();
  void Flush();

  bool toStdout_;
  bool direct_ = false;  // writing straight into a non-regular target
  std::string path_;     // the target as given
  std::string target_;   // the file to replace (a symbolic link resolved)
  std::string name_;
  std::string temp_;  // temporary file path while open
  std::string buffer_;
  int fd_ = -1;
  bool committed_ = false;
};

}  // namespace adestool

#endif

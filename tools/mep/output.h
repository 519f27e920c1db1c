// Standard output, or a file: collects text and writes it in large pieces, host text in the
// encoding of the user, bytes as they are.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace mep {

class TextIo;

class Output {
 public:
  // An empty path means standard output.
  explicit Output(const TextIo& io, std::string path = {});
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void Write(std::string_view host_text);
  void WriteBytes(std::string_view bytes);
  // Writes what is left. The exit status: 0, or that of an output that could not be written,
  // which has been reported.
  int Finish();

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void Flush();
  void Put(std::string_view bytes);
  void Fail();

  const TextIo& io_;
  std::string path_;
  std::unique_ptr<std::FILE, CloseFile> file_;
  std::string pending_;  // host text
  bool failed_ = false;
};

}  // namespace mep

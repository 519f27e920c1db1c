// Nothing more is written after a failure; the first reason is reported once.
#include "tools/mep/output.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "tools/mep/commands.h"
#include "tools/mep/text_io.h"

namespace mep {

namespace {
constexpr std::size_t kPiece = 1 << 16;
}

Output::Output(const TextIo& io, std::string path) : io_(io), path_(std::move(path)) {
  if (path_.empty()) return;
  file_.reset(std::fopen(path_.c_str(), "wb"));
  if (!file_) Fail();
}

void Output::Write(std::string_view host_text) {
  pending_ += host_text;
  if (pending_.size() >= kPiece) Flush();
}

void Output::WriteBytes(std::string_view bytes) {
  Flush();
  Put(bytes);
}

int Output::Finish() {
  Flush();
  if (!failed_ && std::fflush(file_ ? file_.get() : stdout) != 0) Fail();
  return failed_ ? kExitUsage : kExitSuccess;
}

void Output::Flush() {
  if (!pending_.empty()) Put(io_.Encode(pending_));
  pending_.clear();
}

void Output::Put(std::string_view bytes) {
  if (failed_) return;
  std::FILE* file = file_ ? file_.get() : stdout;
  if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) Fail();
}

void Output::Fail() {
  failed_ = true;
  const char* name = path_.empty() ? "the output" : path_.c_str();
  std::fprintf(stderr, "mep: error: cannot write %s: %s\n", name, std::strerror(errno));
}

}  // namespace mep

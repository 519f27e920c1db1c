// Files of the default host. Only regular files are read: a folder has no text, a device or a
// pipe might never end. Repository names are read below one folder and cannot leave it.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>

#include "ixomep/host/portable/default_host.h"

namespace ixomep {
namespace {

constexpr std::string_view kRepositoryPrefix = "db:\\";

// The folder of repository names. Gone means that static destruction has passed it.
struct RepositoryFolder {
  std::string path;
  ~RepositoryFolder() { gone = true; }
  inline static constinit bool gone = false;

  static RepositoryFolder* Get() {
    if (gone) return nullptr;
    static RepositoryFolder folder;
    return &folder;
  }
};

class FileDescriptor {
 public:
  explicit FileDescriptor(int number) noexcept : number_(number) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (number_ >= 0) ::close(number_);
  }
  int Get() const noexcept { return number_; }

 private:
  int number_;
};

std::string WithSlashes(std::string_view name) {
  std::string path(name);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

// Whether a part of the path between slashes is "..".
bool HasParentStep(std::string_view path) noexcept {
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    if (path.substr(0, end) == "..") return true;
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return false;
}

// The path of a name; empty when it names nothing that may be read.
std::string PathOf(std::string_view name) {
  if (name.find('\0') != std::string_view::npos) return {};
  if (!portable::IsRepositoryName(name)) return WithSlashes(name);
  const RepositoryFolder* folder = RepositoryFolder::Get();
  const std::string below = WithSlashes(name.substr(kRepositoryPrefix.size()));
  if (folder == nullptr || folder->path.empty() || HasParentStep(below)) return {};
  return folder->path + "/" + below;
}

// One read of at most `count` bytes; -1 on failure, 0 at the end of the file.
ssize_t ReadSome(int descriptor, char* bytes, std::size_t count) noexcept {
  ssize_t read = -1;
  do {
    read = ::read(descriptor, bytes, count);
  } while (read < 0 && errno == EINTR);
  return read;
}

bool ReadAll(int descriptor, std::int64_t expected, String& text) {
  constexpr std::int32_t kStep = 65536;
  if (expected > String::kMaxLength) return false;
  String content;
  std::int32_t length = 0;
  // One byte more than expected, so that the end of the file shows in the first round.
  std::int32_t room =
      static_cast<std::int32_t>(std::min<std::int64_t>(expected + 1, String::kMaxLength));
  for (;;) {
    content.Resize(room);
    const ssize_t read = ReadSome(descriptor, content.MutableText() + length,
                                  static_cast<std::size_t>(room - length));
    if (read < 0) return false;
    if (read == 0) break;
    length += static_cast<std::int32_t>(read);
    if (length < room) continue;
    if (room == String::kMaxLength) return false;
    room = room > String::kMaxLength - kStep ? String::kMaxLength : room + kStep;
  }
  content.Resize(length);
  text = content;
  return true;
}

}  // namespace

void SetRepositoryFolder(const String& folder) {
  if (RepositoryFolder* kept = RepositoryFolder::Get()) kept->path = WithSlashes(folder.view());
}

namespace portable {

bool IsRepositoryName(std::string_view name) noexcept {
  return name.substr(0, kRepositoryPrefix.size()) == kRepositoryPrefix;
}

bool ReadSystemFile(std::string_view name, String& text) {
  const std::string path = PathOf(name);
  if (path.empty()) return false;
  // Not blocking: opening a pipe would wait for its other end.
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (file.Get() < 0) return false;
  struct stat status = {};
  if (::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  return ReadAll(file.Get(), status.st_size, text);
}

}  // namespace portable
}  // namespace ixomep

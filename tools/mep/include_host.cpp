// Confinement works on canonical paths, so that neither ".." nor a symbolic link leads outside.
#include "tools/mep/include_host.h"

#include <algorithm>
#include <optional>
#include <system_error>
#include <utility>

#include "ixomep/host/encodings.h"
#include "tools/mep/diagnostics.h"
#include "tools/mep/text_io.h"

namespace mep {
namespace {

namespace fs = std::filesystem;

// The name as a path of this system: UTF-8, either separator.
fs::path PathOf(const String& name) {
  std::string text(ConvertStringToUTF8(name).view());
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

bool LiesBelow(const fs::path& path, const fs::path& folder) {
  const auto [in_folder, in_path] =
      std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
  return in_folder == folder.end() && in_path != path.end();
}

}  // namespace

IncludeHost::IncludeHost(fs::path folder, const fs::path& root, const TextIo& io,
                         Diagnostics& diagnostics)
    : folder_(std::move(folder)), io_(io), diagnostics_(diagnostics), previous_(Install(this)) {
  const fs::path& wanted = root.empty() ? folder_ : root;
  std::error_code error;
  root_ = fs::canonical(wanted.empty() ? "." : wanted, error);
}

IncludeHost::~IncludeHost() { Install(previous_); }

bool IncludeHost::Fail(const std::string& name, const std::string& reason) {
  last_reason_ = name + ": " + reason;
  return false;
}

bool IncludeHost::ReadTextFile(const String& name, String& text) {
  if (IsRepositoryName(name)) {
    return LimitedHost::ReadTextFile(name, text) ||
           Fail(io_.Encode(name.view()), "there is no repository to read it from");
  }
  const std::string given = NameOf(name);
  std::error_code error;
  const fs::path path = fs::canonical(given, error);
  if (error) return Fail(given, error.message());
  if (!LiesBelow(path, root_)) {
    return Fail(given,
                "it lies outside " + root_.string() + " (--include-root names another folder)");
  }
  if (!fs::is_regular_file(path, error)) return Fail(given, "it is not a plain file");
  std::string reason;
  const std::optional<std::string> bytes = ReadBytes(path.string(), reason);
  if (!bytes) return Fail(given, reason);
  const std::optional<String> decoded = io_.Decode(*bytes, given, diagnostics_);
  if (!decoded) return Fail(given, "it is not in the encoding that was named");
  text = *decoded;
  texts_[name] = text;
  return true;
}

const String* IncludeHost::TextOf(const String& name) const {
  const auto found = texts_.find(name);
  return found == texts_.end() ? nullptr : &found->second;
}

std::string IncludeHost::NameOf(const String& name) const {
  return (folder_ / PathOf(name)).lexically_normal().string();
}

}  // namespace mep

// Confinement compares canonical paths, so that neither ".." nor a symbolic link leads outside.
#include "library_host.h"

#include <algorithm>
#include <system_error>

namespace bakery {
namespace {

namespace fs = std::filesystem;

struct Text {
  std::int32_t number;
  const char* text;
};

// The words of this application; the numbers are those of the library's resources.
constexpr Text kTexts[] = {
    {16143, "The library has no file %filename."},
    {33570582, "at line"},
    {33570583, "of"},
};

bool LiesBelow(const fs::path& path, const fs::path& folder) {
  const auto [in_folder, in_path] =
      std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
  return in_folder == folder.end() && in_path != path.end();
}

}  // namespace

std::string Utf8(const String& text) { return std::string(ConvertStringToUTF8(text).view()); }

LibraryHost::LibraryHost(const fs::path& folder)
    : folder_(fs::canonical(folder)), previous_(Install(this)) {}

LibraryHost::~LibraryHost() { Install(previous_); }

String LibraryHost::ResourceText(std::int32_t number) {
  for (const Text& own : kTexts) {
    if (own.number == number) return own.text;
  }
  return IxoHost::ResourceText(number);
}

bool LibraryHost::ReadTextFile(const String& name, String& text) {
  std::string relative = Utf8(name);
  std::replace(relative.begin(), relative.end(), '\\', '/');
  std::error_code error;
  const fs::path path = fs::canonical(folder_ / relative, error);
  String bytes;
  if (error || !LiesBelow(path, folder_) || !IxoHost::ReadTextFile(path.string(), bytes)) {
    return false;
  }
  text = FromUtf8(bytes.view());
  return true;
}

bool LibraryHost::IsRepositoryName(const String&) { return false; }

void LibraryHost::ReportAssertion(std::string_view message, const char*, int) {
  reports_.push_back("assertion: " + std::string(message));
}

int LibraryHost::ShowErrorBox(void*, int, const String& title, const String& text) {
  reports_.push_back("box \"" + Utf8(title) + "\": " + Utf8(text));
  return IxoErrorBox::kAnswerContinue;
}

}  // namespace bakery

// The reader of token lists.
#include "ixomep/builtins/tokens.h"

#include <algorithm>

namespace ixomep {

std::int64_t Separator::CountIn(std::string_view text) const noexcept {
  return exists_ ? std::count(text.begin(), text.end(), byte_) : 0;
}

Separator SeparatorArg(const Call& call, std::int32_t i) {
  return call.Has(i) ? Separator(call.Text(i)) : Separator::Space();
}

bool TokenWalker::Next(std::string_view& token) noexcept {
  if (done_) return false;
  const std::size_t end = separator_.Find(list_, at_);
  token = list_.substr(at_, end - at_);
  done_ = end == list_.size();
  at_ = end + 1;
  return true;
}

std::int32_t CountTokens(std::string_view list, Separator separator) noexcept {
  if (list.empty()) return 0;
  constexpr std::int64_t kMost = 2147483647;
  return static_cast<std::int32_t>(std::min(separator.CountIn(list) + 1, kMost));
}

std::string_view TokenAt(std::string_view list, std::int32_t index, Separator separator) {
  if (index < 0) return {};
  TokenWalker walker(list, separator);
  std::string_view token;
  for (std::int32_t i = 0; walker.Next(token); ++i) {
    LimitWatch::Work();
    if (i == index) return token;
  }
  return {};
}

}  // namespace ixomep

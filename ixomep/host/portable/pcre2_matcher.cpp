// Regular expressions of the default host. Backtracking can take longer than anyone waits, so
// every match has a budget: a callout in front of each pattern item counts the steps of the whole
// match, beside the limits that the matcher has for one starting position and for its memory.
// Patterns are compiled once; the most recently used ones are kept.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "ixomep/host/limit_watch.h"
#include "ixomep/host/portable/default_host.h"
#include "ixomep/host/reg_ex.h"

namespace ixomep::portable {
namespace {

constexpr std::size_t kMaxPatternLength = 65536;
constexpr std::size_t kKeptPatterns = 16;
constexpr std::uint32_t kMatchLimit = 10'000'000;  // steps from one starting position
constexpr std::uint32_t kDepthLimit = 1'000'000;   // nested backtracking points
constexpr std::uint32_t kHeapLimitKilobytes = 64 * 1024;
// Steps of a whole match: a fixed part and enough for a few visits to every byte.
constexpr std::uint64_t kBaseSteps = 10'000'000;
constexpr std::uint64_t kStepsPerByte = 8;

struct FreeCode {
  void operator()(pcre2_code* code) const noexcept { pcre2_code_free(code); }
};
struct FreeMatchData {
  void operator()(pcre2_match_data* data) const noexcept { pcre2_match_data_free(data); }
};
struct FreeCompileContext {
  void operator()(pcre2_compile_context* context) const noexcept {
    pcre2_compile_context_free(context);
  }
};
struct FreeMatchContext {
  void operator()(pcre2_match_context* context) const noexcept {
    pcre2_match_context_free(context);
  }
};

using Code = std::shared_ptr<pcre2_code>;

PCRE2_SPTR Units(std::string_view text) noexcept {
  // The matcher refuses a null pointer even for no bytes.
  return reinterpret_cast<PCRE2_SPTR>(text.data() == nullptr ? "" : text.data());
}

Code Compile(std::string_view pattern, int options) {
  const std::unique_ptr<pcre2_compile_context, FreeCompileContext> context(
      pcre2_compile_context_create(nullptr));
  if (context == nullptr) throw std::bad_alloc();
  pcre2_set_max_pattern_length(context.get(), kMaxPatternLength);
  std::uint32_t flags = PCRE2_AUTO_CALLOUT | PCRE2_NEVER_UTF | PCRE2_NEVER_UCP;
  if ((options & IxoRegEx::kCaseSensitive) == 0) flags |= PCRE2_CASELESS;
  if ((options & IxoRegEx::kExtendedSyntax) == 0) flags |= PCRE2_LITERAL;
  if ((flags & PCRE2_LITERAL) != 0) flags &= ~(PCRE2_NEVER_UTF | PCRE2_NEVER_UCP);
  int error = 0;
  PCRE2_SIZE error_offset = 0;
  return Code(
      pcre2_compile(Units(pattern), pattern.size(), flags, &error, &error_offset, context.get()),
      FreeCode());
}

// The patterns used last, the latest in front. What does not compile is kept too, as null.
class KeptPatterns {
 public:
  ~KeptPatterns() { gone_ = true; }

  // Null once static destruction has passed it; patterns are then compiled for each use.
  static KeptPatterns* Get() {
    if (gone_) return nullptr;
    static KeptPatterns patterns;
    return &patterns;
  }

  Code Find(std::string_view pattern, int options) {
    const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
      return entry.options == options && entry.pattern == pattern;
    });
    if (found != entries_.end()) {
      std::rotate(entries_.begin(), found, found + 1);
      return entries_.front().code;
    }
    Entry entry{std::string(pattern), options, Compile(pattern, options)};
    if (entries_.size() == kKeptPatterns) entries_.pop_back();
    entries_.insert(entries_.begin(), std::move(entry));
    return entries_.front().code;
  }

 private:
  struct Entry {
    std::string pattern;
    int options;
    Code code;
  };

  inline static constinit bool gone_ = false;
  std::vector<Entry> entries_;
};

Code CodeOf(std::string_view pattern, int options) {
  if (pattern.size() > kMaxPatternLength) return nullptr;
  KeptPatterns* kept = KeptPatterns::Get();
  return kept == nullptr ? Compile(pattern, options) : kept->Find(pattern, options);
}

constexpr std::uint64_t kStepsBetweenQuestions = 65536;

// Called in front of every pattern item; a negative result ends the match.
int CountStep(pcre2_callout_block*, void* steps_left) {
  auto& left = *static_cast<std::uint64_t*>(steps_left);
  if (left == 0) return PCRE2_ERROR_MATCHLIMIT;
  --left;
  const bool asks = left % kStepsBetweenQuestions == 0 && LimitWatch::IsEvaluating();
  return asks && LimitWatch::IsInterrupted() ? PCRE2_ERROR_CALLOUT : 0;
}

}  // namespace

bool CompilesPattern(std::string_view pattern, int options) {
  return CodeOf(pattern, options) != nullptr;
}

bool MatchesPattern(std::string_view pattern, std::string_view text, int options) {
  const Code code = CodeOf(pattern, options);
  if (code == nullptr) return false;
  const std::unique_ptr<pcre2_match_context, FreeMatchContext> context(
      pcre2_match_context_create(nullptr));
  const std::unique_ptr<pcre2_match_data, FreeMatchData> data(pcre2_match_data_create(1, nullptr));
  if (context == nullptr || data == nullptr) throw std::bad_alloc();
  pcre2_set_match_limit(context.get(), kMatchLimit);
  pcre2_set_depth_limit(context.get(), kDepthLimit);
  pcre2_set_heap_limit(context.get(), kHeapLimitKilobytes);
  std::uint64_t steps = kBaseSteps + kStepsPerByte * text.size();
  pcre2_set_callout(context.get(), &CountStep, &steps);
  // 0 says that the pattern matched but has groups that were not recorded.
  const int count =
      pcre2_match(code.get(), Units(text), text.size(), 0, 0, data.get(), context.get());
  if (count == PCRE2_ERROR_CALLOUT) throw LimitExceeded(Limit::Interrupt);
  return count >= 0;
}

}  // namespace ixomep::portable

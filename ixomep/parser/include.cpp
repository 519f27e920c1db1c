// Directives: @INCLUDE reads a file and puts its text in the place of the directive. The text is
// read where it is; the parser only remembers the splice. Limits on depth, number and length keep
// files that include each other from running away.
#include <utility>

#include "ixomep/host/files.h"
#include "ixomep/parser/bytes.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/parser_state.h"
#include "ixomep/parser/reader.h"
#include "ixomep/parser/spliced_text.h"
#include "ixomep/values/mep_text.h"

std::map<String, String> IxoMepParser::m_aIncludeCache;

namespace ixomep {
namespace {

constexpr std::string_view kIncludeKeyword = "@INCLUDE";
constexpr std::int32_t kMaxDepth = 64;
// One reading includes no more files than this: files that include each other twice at every
// level would go on for ever without ever being deep or long.
constexpr std::int32_t kMaxIncludes = 100000;
constexpr std::int32_t kRepositoryPrefix = 4;
constexpr std::string_view kSeparators = "\\/";

bool IsOnStack(std::string_view stack, std::string_view name) noexcept {
  for (;;) {
    const std::size_t feed = stack.find('\n');
    if (stack.substr(0, feed) == name) return true;
    if (feed == std::string_view::npos) return false;
    stack.remove_prefix(feed + 1);
  }
}

std::int32_t DepthOf(std::string_view stack) noexcept {
  return 1 + CountLineFeeds(stack, 0, stack.size());
}

// A relative name is one in the directory of the current file.
String Resolved(const String& name, const String& current) {
  const std::string_view view = name.view();
  const bool is_absolute = view.find(':') != std::string_view::npos ||
                           (!view.empty() && kSeparators.find(view[0]) != std::string_view::npos);
  const std::size_t separator = current.view().find_last_of(kSeparators);
  if (is_absolute || separator == std::string_view::npos) return name;
  return current.view().substr(0, separator + 1) + name;
}

bool ReadFile(const String& name, bool use_cache, std::map<String, String>& cache, String& text) {
  if (!use_cache || !Ixo_Valid_DBFilename(name)) {
    return IxoSystemFileManager::readStringFromFile(text, name, false);
  }
  const String key = name.Copy(kRepositoryPrefix);
  if (const auto hit = cache.find(key); hit != cache.end()) {
    text = hit->second;
    return true;
  }
  if (!IxoSystemFileManager::readStringFromFile(text, name, false)) return false;
  cache.emplace(key, text);
  return true;
}

}  // namespace

IxoMepErrorEnum Grammar::Execute(std::unique_ptr<IxoMepElement> directive, std::size_t start) {
  if (directive->keyword_ != kIncludeKeyword) {
    return Fail(IMEPERR_UNKNOWN_DIRECTIVE, start, {{"%s", directive->keyword_.view()}});
  }
  return Include(std::move(directive), start);
}

IxoMepErrorEnum Grammar::Include(std::unique_ptr<IxoMepElement> directive, std::size_t start) {
  IxoMepParser& parser = *Top().parser;
  const String written = directive->value_ != nullptr ? directive->value_->GetStr() : String();
  const String name = Resolved(written, parser.GetCurFilename());
  const String stack = parser.State().filename_stack;
  String text;
  // An empty stack is that of no file, or that of one file without a name.
  const bool is_in_file = Top().is_included || !stack.IsEmpty();
  const bool may_nest = !is_in_file || (!IsOnStack(stack, name) && DepthOf(stack) < kMaxDepth);
  if (may_nest && includes_ < kMaxIncludes &&
      ReadFile(name, parser.State().use_include_cache, IxoMepParser::m_aIncludeCache, text) &&
      EnterFile(std::move(directive), start, name, text)) {
    return IMEPERR_NONE;
  }
  return Fail(IMEPERR_INCLUDE_FAILED, start, {{"%filename", MepTextOfString(name)}});
}

// Splices the text in the place of the directive and goes on reading there; false, and nothing
// changed, when the complete text would become too long.
bool Grammar::EnterFile(std::unique_ptr<IxoMepElement> directive, std::size_t start,
                        const String& name, const String& text) {
  const ReadingFrame& outer = Top();
  IxoMepParser& parser = *outer.parser;
  if (parser.State().splices == nullptr)
    parser.State().splices = std::make_unique<Splices>(parser.State().text);
  const auto removed = static_cast<std::int32_t>(outer.position - start);
  const std::int32_t rest = parser.State().splices->Length() - removed;
  if (text.Len() > String::kMaxLength - rest) return false;

  ReadingFrame frame;
  frame.kind = ReadingFrame::Kind::Include;
  frame.is_included = true;
  frame.continues = outer.continues || outer.position < outer.bytes.size();
  frame.base = OffsetOf(start);
  frame.parser = &parser;
  frame.source = text;
  frame.bytes = frame.source.view();
  frame.end = frame.bytes.size();
  frame.directive_start = start;
  frame.own_extents = std::make_unique<Extents>(frame.bytes);
  frame.extents = frame.own_extents.get();
  frame.saved_shift = parser.State().include_shift + text.Len() - removed;

  // What may throw comes first; behind it the frame's end undoes what the include changed.
  frames_.reserve(frames_.size() + 1);
  parser.State().splices->Add(frame.base, removed, text, name);
  parser.State().length += text.Len() - removed;
  parser.PushFilename(name);
  parser.State().include_shift = 0;
  parser.SetCurrent(directive.get(), -1);
  frame.directive = std::move(directive);
  frames_.push_back(std::move(frame));
  ++includes_;
  return true;
}

}  // namespace ixomep

void IxoMepParser::PushFilename(const String& name) {
  State().filename_stack =
      State().filename_stack.IsEmpty() ? name : name + '\n' + State().filename_stack;
}

void IxoMepParser::PopFilename() noexcept {
  const std::int32_t feed = State().filename_stack.Search('\n');
  if (feed == String::kNotFound) {
    State().filename_stack.Clear();
    return;
  }
  try {
    State().filename_stack.Erase(0, feed + 1);
  } catch (const std::exception&) {
    State().filename_stack.Clear();
  }
}

String IxoMepParser::GetCurFilename() const {
  return State().filename_stack.Copy(0, State().filename_stack.Search('\n'));
}

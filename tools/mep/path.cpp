// Reading a path, and following it breadth first: each step turns what was selected so far into
// what is selected next.
#include "tools/mep/path.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "ixomep/values/value.h"
#include "tools/mep/limits.h"

namespace mep {
namespace {

bool IsKeywordByte(char byte) { return (byte >= 'A' && byte <= 'Z') || byte == '_'; }

class PathReader {
 public:
  PathReader(const String& text, std::size_t& mistake, std::string& reason)
      : text_(text), mistake_(mistake), reason_(reason) {}

  std::optional<std::vector<PathStep>> Read() {
    std::vector<PathStep> path;
    for (;;) {
      std::optional<PathStep> step = ReadStep();
      if (!step) return std::nullopt;
      path.push_back(std::move(*step));
      if (at_ == text_.Len()) return path;
      if (text_[at_] != '/') return Fail("\"/\" or the end of the path is expected here");
      ++at_;
    }
  }

 private:
  std::nullopt_t Fail(const char* reason) {
    mistake_ = static_cast<std::size_t>(at_);
    reason_ = reason;
    return std::nullopt;
  }

  std::optional<PathStep> ReadStep() {
    const std::int32_t start = at_;
    PathStep step;
    step.is_element = at_ < text_.Len() && text_[at_] >= 'A' && text_[at_] <= 'Z';
    if (step.is_element) {
      while (IsKeywordByte(text_[at_])) ++at_;
    } else {
      at_ = std::min(text_.Search('/', at_), text_.Len());
    }
    step.name = text_.Copy(start, at_ - start);
    if (step.name.IsEmpty()) return Fail("a keyword or the name of an attribute is expected here");
    if (step.is_element && at_ < text_.Len() && text_[at_] == '[' && !ReadFilter(step)) {
      return std::nullopt;
    }
    return step;
  }

  bool ReadFilter(PathStep& step) {
    ++at_;
    if (text_[at_] == '"') {
      std::int32_t code = 0;
      String error_text;
      const std::unique_ptr<IxoMepValue> value(
          IxoMepValue::Create(text_, at_, code, error_text, nullptr, 0));
      if (!value || text_[at_] != ']') return Fail("a string and \"]\" are expected here"), false;
      step.value = value->GetStr();
    } else {
      const std::int32_t end = text_.Search(']', at_);
      if (end == String::kNotFound) return Fail("\"]\" is missing"), false;
      const String inner = text_.Copy(at_, end - at_);
      const bool is_number = !inner.IsEmpty() && inner.Len() < 10 &&
                             inner.view().find_first_not_of("0123456789") == std::string_view::npos;
      if (is_number) {
        step.number = std::stoi(std::string(inner.view()));
        if (step.number == 0) return Fail("elements are counted from 1"), false;
      } else {
        step.value = inner;
      }
      at_ = end;
    }
    ++at_;
    return true;
  }

  const String& text_;
  std::size_t& mistake_;
  std::string& reason_;
  std::int32_t at_ = 0;
};

const IxoMepParser* BodyOf(const Selection& selection) {
  return selection.attribute != nullptr ? selection.attribute->GetBodyParser()
                                        : selection.element->GetBodyParser();
}

void SelectElements(const IxoMepParser* body, const PathStep& step, std::vector<Selection>& found) {
  if (body == nullptr) return;
  std::int32_t number = 0;
  for (std::int32_t i = 0; i < body->GetElemCount(); ++i) {
    CheckTime();
    const IxoMepElement& element = ElementAt(*body, i);
    if (element.GetKeyword() != step.name) continue;
    ++number;
    if (step.number != 0 && step.number != number) continue;
    const IxoMepValue* value = element.GetValue();
    if (step.value && (value == nullptr || value->GetStr() != *step.value)) continue;
    found.push_back({body, i, &element});
  }
}

}  // namespace

std::optional<std::vector<PathStep>> ParsePath(const String& text, std::size_t& mistake,
                                               std::string& reason) {
  return PathReader(text, mistake, reason).Read();
}

std::vector<Selection> Select(const IxoMepParser& parser, const std::vector<PathStep>& path,
                              std::size_t& failed_step) {
  std::vector<Selection> selected;
  for (failed_step = 0; failed_step < path.size(); ++failed_step) {
    const PathStep& step = path[failed_step];
    std::vector<Selection> found;
    if (failed_step == 0 && step.is_element) SelectElements(&parser, step, found);
    for (const Selection& selection : selected) {
      if (step.is_element) {
        SelectElements(BodyOf(selection), step, found);
      } else if (selection.attribute == nullptr) {
        const IxoMepAttribute* attribute = selection.element->FindAttr(step.name.view());
        if (attribute != nullptr) {
          found.push_back({selection.body, selection.index, selection.element, attribute});
        }
      }
    }
    selected = std::move(found);
    if (selected.empty()) break;
  }
  return selected;
}

}  // namespace mep

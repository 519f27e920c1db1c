// Sums of texts in side programs and quick trees: the parts are found first and put together once,
// where one "+" after the other would make a text for each. All parts are quiet, so that whatever
// is unusual (a part that is no text, a failure) is evaluated again the plain way.
#include <array>
#include <charconv>
#include <exception>
#include <memory>
#include <span>
#include <string_view>

#include "ixomep/expr/program_numbers.h"
#include "ixomep/expr/program_quick.h"

namespace ixomep {

namespace {

// The parts of a sum, where they stand.
class TextParts {
 public:
  TextParts() noexcept {}

  void Add(std::int32_t number) noexcept {
    char* const begin = digits_.data() + count_ * kDigits;
    const char* const end = std::to_chars(begin, begin + kDigits, number).ptr;
    Add(std::string_view(begin, end));
  }
  void Add(std::string_view view) noexcept { std::construct_at(&views_[count_++], view); }

  std::span<const std::string_view> Views() const noexcept { return {views_, count_}; }

 private:
  static constexpr std::size_t kDigits = 11;

  std::size_t count_ = 0;
  union {  // made one by one: setting all of them first is a third of the work
    std::string_view views_[TextSumOp::kMaxParts];
  };
  std::array<char, kDigits * TextSumOp::kMaxParts> digits_;
};

class TextSum {
 public:
  // False when the part is no text.
  bool Add(const TextSumOp::Part& part, Run& run) {
    const Operand& operand = part.operand;
    if (part.shown) {
      const IxoMepValue* const shown = operand.shape == Shape::Variable ? run.Find(operand.name)
                                       : operand.shape == Shape::Argument
                                           ? FindArgument(operand, run)
                                           : nullptr;
      if (shown != nullptr && shown->GetType() == IxoMepValueType::Integer) {
        parts_.Add(ValueAccess::Integer(*shown));
        return true;
      }
      owned_.push_back(OwnedValue((*operand.op)(run)));
      return AddText(owned_.back());
    }
    IxoMepValue storage;
    const IxoMepValue* const value = ReadOperand(operand, run, storage);
    if (value == nullptr) return false;
    if (value != &storage) return AddText(*value);
    owned_.push_back(std::move(storage));
    return AddText(owned_.back());
  }

  String Joined() const { return String::Joined(parts_.Views()); }

 private:
  // Where a value stands may change, its text stays.
  bool AddText(const IxoMepValue& value) noexcept {
    if (value.GetType() != IxoMepValueType::String) return false;
    parts_.Add(ValueAccess::Text(value).view());
    return true;
  }

  TextParts parts_;
  std::vector<IxoMepValue> owned_;
};

}  // namespace

Reg RunTextSum(const Op& op, Run& run) {
  const auto& chain = As<TextSumOp>(op);
  try {
    TextSum sum;
    bool are_texts = true;
    for (const TextSumOp::Part& part : chain.parts) are_texts = are_texts && sum.Add(part, run);
    if (are_texts) return RegOf(IxoMepValue(sum.Joined()));
  } catch (const std::exception&) {  // too long, or no memory: the plain way says which
  }
  return (*chain.plain)(run);
}

// Into the text that the result holds already, unless that is a part of the sum.
bool QuickTextSum::StoreIn(IxoMepValue& result) const {
  TextParts texts;
  bool is_part = false;
  for (std::size_t i = 0; i < count; ++i) {
    const IxoMepValue& value = **parts[i].slot;
    is_part = is_part || &value == &result;
    if (value.GetType() == IxoMepValueType::String) {  // is shown as it is
      texts.Add(ValueAccess::Text(value).view());
    } else if (parts[i].shown && value.GetType() == IxoMepValueType::Integer) {
      texts.Add(ValueAccess::Integer(value));
    } else {
      return false;
    }
  }
  const bool is_text = result.GetType() == IxoMepValueType::String;
  if (!is_text && !IsScalar(result) && result.GetType() != IxoMepValueType::Undefined) return false;
  try {
    if (is_text && !is_part) {
      ValueAccess::Text(result).Join(texts.Views());
    } else {
      result = IxoMepValue(String::Joined(texts.Views()));
    }
    return true;
  } catch (const std::exception&) {  // too long, or no memory: the plain way says which
    return false;
  }
}

}  // namespace ixomep

// Sums of texts in side programs: the parts are found first and put together once, where one "+"
// after the other would make a text for each. All parts are quiet, so that whatever is unusual (a
// part that is no text, a failure) is evaluated again the plain way.
#include <array>
#include <charconv>
#include <exception>
#include <memory>
#include <span>
#include <string_view>

#include "ixomep/expr/program_numbers.h"

namespace ixomep {

namespace {

class TextSum {
 public:
  TextSum() noexcept {}

  // False when the part is no text.
  bool Add(const TextSumOp::Part& part, Run& run) {
    const Operand& operand = part.operand;
    if (part.shown) {
      const IxoMepValue* const shown = operand.shape == Shape::Variable ? run.Find(operand.name)
                                       : operand.shape == Shape::Argument
                                           ? FindArgument(operand, run)
                                           : nullptr;
      if (shown != nullptr && shown->GetType() == IxoMepValueType::Integer) {
        return AddInteger(ValueAccess::Integer(*shown));
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

  String Joined() const { return String::Joined(std::span(views_, count_)); }

 private:
  static constexpr std::size_t kDigits = 11;

  bool AddInteger(std::int32_t number) noexcept {
    char* const begin = digits_.data() + count_ * kDigits;
    const char* const end = std::to_chars(begin, begin + kDigits, number).ptr;
    return AddView({begin, end});
  }

  // Where a value stands may change, its text stays.
  bool AddText(const IxoMepValue& value) noexcept {
    if (value.GetType() != IxoMepValueType::String) return false;
    return AddView(ValueAccess::Text(value).view());
  }

  bool AddView(std::string_view view) noexcept {
    std::construct_at(&views_[count_++], view);
    return true;
  }

  std::size_t count_ = 0;
  union {  // made one by one: setting all of them first is a third of the work
    std::string_view views_[TextSumOp::kMaxParts];
  };
  std::array<char, kDigits * TextSumOp::kMaxParts> digits_;
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

}  // namespace ixomep

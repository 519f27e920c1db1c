// Failing: the text of a code, or of a limit of the host, with its placeholders filled.
#include "ixomep/values/raise.h"

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include "ixomep/host/host.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/host/res_id.h"
#include "ixomep/values/error.h"

namespace ixomep {

namespace {

// The resource number of a limit's text is its number plus this.
constexpr std::int32_t kBeforeFirstResource = 16200;

std::uint64_t NumberOf(Limit which) noexcept {
  const IxoLimits limits = IxoHost::GetLimits();
  switch (which) {
    case Limit::Steps:
      return limits.steps;
    case Limit::Memory:
      return limits.memory;
    case Limit::Depth:
      return static_cast<std::uint64_t>(limits.depth);
    default:
      return 0;
  }
}

String TextOfLimit(Limit which) {
  String text(ResId(kBeforeFirstResource + static_cast<std::int32_t>(which)));
  FillPlaceholder(text, "%1", std::to_string(NumberOf(which)));
  return text;
}

}  // namespace

void FillPlaceholder(String& text, std::string_view placeholder, std::string_view replacement) {
  text.ReplaceFirst(placeholder, replacement);
}

IxoMepErrorEnum Raise(String& text, IxoMepErrorEnum code, std::initializer_list<Fill> fills) {
  String filled = IxoMepError::GetErrorText(code);
  for (const Fill& fill : fills) FillPlaceholder(filled, fill.placeholder, fill.replacement);
  text = std::move(filled);
  return code;
}

// A host that has no text for its limits gets that of the code.
IxoMepErrorEnum RaiseLimit(String& text, Limit which) noexcept {
  const Limit first = LimitWatch::Exceed(which);
  const MemoryBudget::Reserve reserve;
  try {
    String filled = TextOfLimit(first);
    if (filled.IsEmpty()) return Raise(text, IMEPERR_TOO_DEEP);
    text = std::move(filled);
  } catch (const std::exception&) {
    text.Clear();
  }
  return IMEPERR_TOO_DEEP;
}

IxoMepErrorEnum RaiseNoMemory(String& text, IxoMepErrorEnum code,
                              const std::exception& cause) noexcept {
  if (const auto* exceeded = dynamic_cast<const LimitExceeded*>(&cause)) {
    return RaiseLimit(text, exceeded->Which());
  }
  try {
    return Raise(text, code);
  } catch (const std::exception&) {
    text.Clear();
    return code;
  }
}

}  // namespace ixomep

// The element that stands for none, and the text of a body. See element_view.h.
#include "ixomep/parser/element_view.h"

#include "ixomep/host/memory_budget.h"

namespace ixomep {

IxoMepElement* EmptyElement() noexcept {
  static IxoMepElement empty;
  return &empty;
}

std::string_view BodyView::Text(String& room) const {
  const IxoMepParser* const parser = Parser();
  if (parser == nullptr) {
    const BodyRecord& body = document_->Body(index_);
    return document_->Text().view().substr(body.start, body.end - body.start);
  }
  room = parser->GetText();
  if (room.Len() != parser->GetTextLen()) MemoryBudget::Refuse();
  return room.view();
}

}  // namespace ixomep

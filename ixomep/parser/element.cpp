// Elements and attributes: construction, look-up, and the destruction of bodies without
// recursion. See element.h.
#include "ixomep/parser/element.h"

#include <algorithm>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/parser/parser.h"
#include "ixomep/values/free_list.h"
#include "ixomep/values/value.h"

namespace ixomep {

// The bodies that wait while another one is being destroyed, linked through themselves.
class BodyTeardown {
 public:
  static void Destroy(IxoMepParser* body) noexcept {
    body->next_doomed_ = doomed_;
    doomed_ = body;
    if (running_) return;
    running_ = true;
    while (doomed_ != nullptr) {
      IxoMepParser* const next = doomed_;
      doomed_ = next->next_doomed_;
      delete next;
    }
    running_ = false;
  }

 private:
  inline static IxoMepParser* doomed_ = nullptr;
  inline static bool running_ = false;
};

void BodyDeleter::operator()(IxoMepParser* body) const noexcept {
  if (!is_borrowed) BodyTeardown::Destroy(body);
}

namespace {

// A class derived by a host is larger and comes from the heap.
template <class Kind>
struct Recycled {
  using List = FreeList<Kind, sizeof(Kind)>;
  static void* Take(std::size_t size) {
    return size == sizeof(Kind) ? List::Take() : ::operator new(size);
  }
  static void Give(void* block, std::size_t size) noexcept {
    if (size == sizeof(Kind)) {
      List::Give(block);
    } else {
      ::operator delete(block);
    }
  }
};

}  // namespace
}  // namespace ixomep

void* IxoMepAttribute::operator new(std::size_t size) {
  return ixomep::Recycled<IxoMepAttribute>::Take(size);
}
void IxoMepAttribute::operator delete(void* block, std::size_t size) noexcept {
  ixomep::Recycled<IxoMepAttribute>::Give(block, size);
}
void* IxoMepElement::operator new(std::size_t size) {
  return ixomep::Recycled<IxoMepElement>::Take(size);
}
void IxoMepElement::operator delete(void* block, std::size_t size) noexcept {
  ixomep::Recycled<IxoMepElement>::Give(block, size);
}

IxoMepAttribute::IxoMepAttribute(const String& name) : name_(name) {}

IxoMepAttribute::~IxoMepAttribute() = default;

IxoMepElement::IxoMepElement() : IxoMepElement(String(), nullptr, -1, 0) {}

IxoMepElement::IxoMepElement(const String& keyword, IxoMepParser* parser, std::int32_t start_offset,
                             std::int32_t line)
    : keyword_(keyword), parser_(parser), start_offset_(start_offset), line_(line) {}

IxoMepElement::~IxoMepElement() = default;

IxoMepAttribute* IxoMepElement::GetAttr(std::int32_t position) const noexcept {
  if (position < 0 || position >= GetAttrCount()) return nullptr;
  return attributes_[static_cast<std::size_t>(position)].get();
}

IxoMepAttribute* IxoMepElement::FindAttr(std::string_view name) const noexcept {
  const auto found =
      std::find_if(attributes_.begin(), attributes_.end(),
                   [name](const auto& attribute) { return attribute->GetName().view() == name; });
  return found == attributes_.end() ? nullptr : found->get();
}

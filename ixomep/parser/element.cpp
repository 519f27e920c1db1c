// Elements and attributes: construction, look-up, and the destruction of bodies without
// recursion. See element.h.
#include "ixomep/parser/element.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <utility>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/parser_state.h"
#include "ixomep/values/free_list.h"
#include "ixomep/values/value.h"

namespace ixomep {

// The bodies that wait while another one is being destroyed, linked through themselves.
class BodyTeardown {
 public:
  static void Destroy(IxoMepParser* body) noexcept {
    if (body->State().is_shared) {  // it has no elements, and no room for the link
      delete body;
      return;
    }
    body->State().next_doomed = doomed_;
    doomed_ = body;
    if (running_) return;
    running_ = true;
    while (doomed_ != nullptr) {
      IxoMepParser* const next = doomed_;
      doomed_ = next->State().next_doomed;
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

namespace {

std::uint32_t HashOf(std::string_view name) noexcept {
  return static_cast<std::uint32_t>(std::hash<std::string_view>()(name));
}

}  // namespace

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

// Of an entry in by_name_.
IxoMepAttribute* IxoMepElement::AttributeOf(std::uint64_t entry) const noexcept {
  return attributes_[static_cast<std::uint32_t>(entry)].get();
}

// Without the memory for it what is not in order is looked for one by one.
std::size_t IxoMepElement::OrderAttributes() const noexcept {
  constexpr std::size_t kFewAttributes = 32;
  const std::size_t ordered = by_name_ != nullptr ? by_name_->size() : 0;
  if (attributes_.size() - ordered <= kFewAttributes) return ordered;
  try {
    auto order = std::make_unique<std::vector<std::uint64_t>>();
    order->reserve(attributes_.size());
    for (const auto& attribute : attributes_) {
      order->push_back(std::uint64_t{HashOf(attribute->GetName())} << 32 | order->size());
    }
    // Hashes decide where they differ, so that few names are looked at, and names where they do
    // not, so that nobody can make them fall together. The first of equal names comes first.
    std::sort(order->begin(), order->end(), [this](std::uint64_t a, std::uint64_t b) {
      if (a >> 32 != b >> 32) return a < b;
      const auto by_name = AttributeOf(a)->GetName() <=> AttributeOf(b)->GetName();
      return by_name != 0 ? by_name < 0 : a < b;
    });
    by_name_ = std::move(order);
    return by_name_->size();
  } catch (const std::exception&) {
    return ordered;
  }
}

IxoMepAttribute* IxoMepElement::FindAttr(std::string_view name) const noexcept {
  const std::size_t ordered = OrderAttributes();
  if (ordered != 0) {
    const auto at =
        std::lower_bound(by_name_->begin(), by_name_->end(), name,
                         [this, hash = HashOf(name)](std::uint64_t entry, std::string_view wanted) {
                           const auto own = static_cast<std::uint32_t>(entry >> 32);
                           return own != hash ? own < hash : AttributeOf(entry)->GetName() < wanted;
                         });
    if (at != by_name_->end() && AttributeOf(*at)->GetName() == name) return AttributeOf(*at);
  }
  const auto found =
      std::find_if(attributes_.begin() + static_cast<std::ptrdiff_t>(ordered), attributes_.end(),
                   [name](const auto& attribute) { return attribute->GetName().view() == name; });
  return found == attributes_.end() ? nullptr : found->get();
}

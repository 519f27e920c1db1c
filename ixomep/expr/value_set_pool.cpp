// The pool of scopes. Only the one instance owns the scopes in its list; copies of it merely list
// them.
#include "ixomep/expr/value_set_pool.h"

#include <memory>
#include <new>

IxoMepValueSetContainer IxoMepValueSetContainer::aInstance;

IxoMepValueSetContainer::IxoMepValueSetContainer() = default;

IxoMepValueSetContainer::IxoMepValueSetContainer(const IxoMepValueSetContainer& other)
    : free_(other.free_) {}

IxoMepValueSetContainer& IxoMepValueSetContainer::operator=(const IxoMepValueSetContainer& other) {
  free_ = other.free_;
  return *this;
}

IxoMepValueSetContainer::~IxoMepValueSetContainer() {
  if (this != &aInstance) return;
  for (IxoMepValueSet* scope : free_) delete scope;
}

IxoMepValueSet* IxoMepValueSetContainer::AllocateValueSet(IxoMepValueSet* parent) {
  auto& [free, spare] = aInstance;
  if (!free.empty()) {
    IxoMepValueSet* const scope = free.front();
    spare.splice(spare.begin(), free, free.begin());
    scope->SetParent(parent);
    return scope;
  }
  spare.push_front(nullptr);
  try {
    return new IxoMepValueSet(parent);
  } catch (...) {
    spare.pop_front();
    throw;
  }
}

void IxoMepValueSetContainer::FreeValueSet(IxoMepValueSet* scope) noexcept {
  if (scope == nullptr) return;
  scope->Clear();
  auto& [free, spare] = aInstance;
  if (spare.empty()) {  // a scope that was not handed out here: the pool takes it over
    try {
      spare.push_front(nullptr);
    } catch (const std::bad_alloc&) {
      delete scope;
      return;
    }
  }
  spare.front() = scope;
  free.splice(free.begin(), spare, spare.begin());
}

// IxoMepValueSetContainer: the process-wide pool of scopes, last in first out, never trimmed.
#pragma once

#include <list>
#include <utility>

#include "ixomep/export.h"
#include "ixomep/expr/value_set.h"

class IXOMEP_API IxoMepValueSetContainer {
 public:
  IxoMepValueSetContainer();
  IxoMepValueSetContainer(const IxoMepValueSetContainer& other);
  IxoMepValueSetContainer& operator=(const IxoMepValueSetContainer& other);
  ~IxoMepValueSetContainer();

  // An empty scope with that parent; to be given back with FreeValueSet, never deleted.
  static IxoMepValueSet* AllocateValueSet(IxoMepValueSet* parent);
  // Empties the scope and keeps it for the next AllocateValueSet.
  static void FreeValueSet(IxoMepValueSet* scope) noexcept;

  static IxoMepValueSetContainer aInstance;

 private:
  std::list<IxoMepValueSet*> free_;
  // List nodes of the scopes that are handed out, so that giving one back allocates nothing.
  std::list<IxoMepValueSet*> spare_;
};

namespace ixomep {

// A scope from the pool for the length of a block.
class PooledScope {
 public:
  explicit PooledScope(IxoMepValueSet* parent)
      : scope_(IxoMepValueSetContainer::AllocateValueSet(parent)) {}
  PooledScope(const PooledScope&) = delete;
  PooledScope& operator=(const PooledScope&) = delete;
  ~PooledScope() { IxoMepValueSetContainer::FreeValueSet(scope_); }
  // Hands the scope to the caller, who gives it back.
  IxoMepValueSet* Release() noexcept { return std::exchange(scope_, nullptr); }
  IxoMepValueSet* get() const noexcept { return scope_; }
  IxoMepValueSet* operator->() const noexcept { return scope_; }

 private:
  IxoMepValueSet* scope_;
};

}  // namespace ixomep

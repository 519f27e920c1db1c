// Internal: destruction without recursion. Storages of arrays and maps, objects and expression
// nodes can nest as deep as a text likes; whoever releases the last owner of one hands it to
// Teardown, which destroys it at once or, when a teardown is already running further up the
// stack, queues it. Queues are linked through the dead things themselves: nothing is allocated.
#pragma once

#include "ixomep/values/value_rep.h"

namespace ixomep {

class Teardown {
 public:
  static void OfList(ListRep* list) noexcept;
  static void OfMap(MapRep* map) noexcept;
  static void OfObject(IxoMepObject* object) noexcept;
  // For nodes (expr/node.cpp): true when the caller is the outermost and must call Drain once it
  // has queued its node; false when somebody further up will.
  static bool Begin() noexcept;
  // Destroys everything queued, nodes included, and ends the teardown that Begin began.
  static void Drain() noexcept;
};

}  // namespace ixomep

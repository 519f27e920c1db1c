// Destruction of what can nest: storages of arrays and maps, objects and, asked through a hook,
// expression nodes. Everything here runs on fixed native stack and allocates nothing.
#include "ixomep/values/teardown.h"

#include <utility>

#include "ixomep/host/memory_budget.h"
#include "ixomep/values/engine_hooks.h"
#include "ixomep/values/object_access.h"

namespace ixomep {

namespace {

bool running = false;
RepHeader* doomed_lists = nullptr;
RepHeader* doomed_maps = nullptr;
IxoMepObject* doomed_objects = nullptr;

void Queue(RepHeader*& queue, RepHeader* rep) noexcept {
  rep->next_doomed = queue;
  queue = rep;
}

template <class Rep>
Rep* Next(RepHeader*& queue) noexcept {
  Rep* const rep = static_cast<Rep*>(queue);
  queue = queue->next_doomed;
  return rep;
}

void Destroy(ListRep* rep) noexcept {
  for (IxoMepValue* item : rep->items) delete item;
  MemoryBudget::Give(rep->counted);
  delete rep;
}

void Destroy(MapRep* rep) noexcept {
  for (const auto& [key, value] : rep->items) {
    delete key;
    delete value;
  }
  MemoryBudget::Give(rep->counted);
  delete rep;
}

void DestroyNextObject() noexcept {
  IxoMepObject* const object = doomed_objects;
  doomed_objects = std::exchange(ObjectAccess::NextDoomed(*object), nullptr);
  delete object;
}

// True while there may be more.
bool DestroyNext() noexcept {
  if (doomed_lists != nullptr) {
    Destroy(Next<ListRep>(doomed_lists));
  } else if (doomed_maps != nullptr) {
    Destroy(Next<MapRep>(doomed_maps));
  } else if (doomed_objects != nullptr) {
    DestroyNextObject();
  } else {
    return BuryDoomedNodes();
  }
  return true;
}

}  // namespace

bool Teardown::Begin() noexcept { return !std::exchange(running, true); }

void Teardown::Drain() noexcept {
  while (DestroyNext()) {
  }
  running = false;
}

void Teardown::OfList(ListRep* list) noexcept {
  Queue(doomed_lists, list);
  if (Begin()) Drain();
}

void Teardown::OfMap(MapRep* map) noexcept {
  Queue(doomed_maps, map);
  if (Begin()) Drain();
}

void Teardown::OfObject(IxoMepObject* object) noexcept {
  ObjectAccess::NextDoomed(*object) = std::exchange(doomed_objects, object);
  if (Begin()) Drain();
}

}  // namespace ixomep

// Internal: what the sources of values/ may know of an object.
#pragma once

#include <map>

#include "ixomep/values/object.h"

namespace ixomep {

struct ObjectAccess {
  static const std::map<String, IxoMepValue*>& Properties(const IxoMepObject& object) noexcept {
    return object.properties_.values;
  }
  // Whether a call of the name reaches something: a lambda property or, without a property of
  // that name, a native method.
  static bool HasMethod(const IxoMepObject& object, const String& name);
  static bool& Rendering(const IxoMepObject& object) noexcept { return object.rendering_; }
  // The base link of a dead object, which nobody gives back, links the objects that wait for
  // their destruction.
  static IxoMepObject*& NextDoomed(IxoMepObject& object) noexcept { return object.base_; }
};

}  // namespace ixomep

// IxoMepStringAddressMap: one canonical, process-lifetime address for every name, so that the
// engine compares names by pointer. Names are compared byte-wise and case-sensitively.
#pragma once

#include <memory>
#include <string_view>

#include "ixomep/export.h"
#include "ixomep/host/string.h"

class IXOMEP_API IxoMepStringAddressMap {
 public:
  IxoMepStringAddressMap();
  IxoMepStringAddressMap(const IxoMepStringAddressMap& other);  // copies the texts
  IxoMepStringAddressMap& operator=(const IxoMepStringAddressMap& other);
  ~IxoMepStringAddressMap();

  // The one map that the engine uses.
  static IxoMepStringAddressMap& Global();
  // The interned address of the name in the global map; null for the empty name. The address
  // stays valid, and the same, for the life of the process.
  static const char* GetAddress(const String& name);

  static const char* const IMEPSAM_COPY;
  static const char* const IMEPSAM_EMPTY;
  static const char* const IMEPSAM_ERASE;
  static const char* const IMEPSAM_ERASE_ALL_FROM;
  static const char* const IMEPSAM_INSERT;
  static const char* const IMEPSAM_INSERT_ALL_FROM;
  static const char* const IMEPSAM_KEY;
  static const char* const IMEPSAM_LAST_INDEX_OF;
  static const char* const IMEPSAM_LENGTH;
  static const char* const IMEPSAM_SORT;
  static const char* const IMEPSAM_TRIM;
  static const char* const IMEPSAM_WITHOUT;

  // The interned address of a text in this map; null for the empty text.
  const char* Intern(std::string_view name);
  // Are there so many names that memory is waited for in finding one? Then it pays to announce
  // names, which are not empty, some time before they are interned.
  bool IsLarge() const noexcept;
  void Announce(std::string_view name) const noexcept;

 private:
  struct Names;
  std::unique_ptr<Names> names_;
};

namespace ixomep {
// GetAddress for a text that need not be a String.
inline const char* Intern(std::string_view name) {
  return IxoMepStringAddressMap::Global().Intern(name);
}
}  // namespace ixomep

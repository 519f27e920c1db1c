// Internal: the characters that URL escaping leaves as they are, one set for each part of an
// address. Built once, in encodings.cpp, and never changed.
#pragma once

#include "ixomep/host/string.h"

namespace ixomep {

struct UnescapedSets {
  String query_component;  // what tourlquerystring leaves: a key or a value of a query
  String whole_uri;        // what encodeuri leaves: an address with all its separators
  String path;             // a path with its slashes, no separator of a query
  String query_text;       // everything printable that separates nothing in a query
  String printable;        // everything printable but "%"

  static const UnescapedSets& Get();
};

}  // namespace ixomep

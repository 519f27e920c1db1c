// The mark that makes a class or function part of the library's binary interface, and the
// version of that interface. Included by every public header; includes nothing itself.
#pragma once

#define IXOMEP_VERSION_MAJOR 1
#define IXOMEP_VERSION_MINOR 0
#define IXOMEP_VERSION_PATCH 0
#define IXOMEP_VERSION_TEXT "1.0.0"

// The library is compiled with hidden visibility; what carries this mark is exported.
#define IXOMEP_API __attribute__((visibility("default")))

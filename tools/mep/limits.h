// What the options --max-steps, --max-memory and --timeout limit, and the host that knows when the
// time is over.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "ixomep/host/host.h"
#include "ixomep/parser/parser.h"

namespace CLI {
class App;
}

namespace mep {

// The base of every host of the command: the default host, except that evaluations end when the
// time that --timeout gives is over.
class LimitedHost : public IxoHost {
 public:
  bool IsInterruptRequested() noexcept override;
  String ResourceText(std::int32_t number) override;
};

// A limit ended the command; says which.
class LimitReached : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws LimitReached when the time that --timeout gives is over. For loops over whole texts.
void CheckTime();
// The element of that index, which exists: throws std::bad_alloc without the memory to make it.
const IxoMepElement& ElementAt(const IxoMepParser& parser, std::int32_t index);
// What is to be said about a std::bad_alloc: throws LimitReached when --max-memory is given.
void CheckMemoryLimit();

// Adds the three options, which stand in front of the sub-command or behind it; each is in force
// as soon as it is read.
void AddLimitOptions(CLI::App& app);

}  // namespace mep

// What the options --max-steps, --max-memory and --timeout limit, and the host that knows when the
// time is over.
#pragma once

#include <cstdint>

#include "ixomep/host/host.h"

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

// Adds the three options, which stand in front of the sub-command or behind it; each is in force
// as soon as it is read.
void AddLimitOptions(CLI::App& app);

}  // namespace mep

// The modules of the peers: found beside the benchmark programs.
#pragma once

#include <string>

namespace ixomep::bench {

// Calls `extern "C" Made* function()` of a module; null, and a note on the error output that names
// the peer, when there is no such module.
void* MakeFromModule(const std::string& peer, const std::string& file, const char* function);

}  // namespace ixomep::bench

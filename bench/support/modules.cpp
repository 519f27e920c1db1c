// Loading of the peers' modules. See modules.h.
#include "bench/support/modules.h"

#include <dlfcn.h>

#include <iostream>

namespace ixomep::bench {

void* MakeFromModule(const std::string& peer, const std::string& file, const char* function) {
  const std::string path = std::string(IXOMEP_PEERS) + "/" + file;
  void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) {
    std::cerr << peer << " is left out: " << dlerror() << "\n";
    return nullptr;
  }
  return reinterpret_cast<void* (*)()>(dlsym(module, function))();
}

}  // namespace ixomep::bench

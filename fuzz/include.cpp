// Fuzz target: includes. The input is a set of files: a line "=== name" begins one, what stands
// before the first such line is the text that is read. With and without the include cache.
#include "fuzz/support/bounds.h"
#include "fuzz/support/bytes.h"
#include "fuzz/support/definition_walk.h"
#include "fuzz/support/fuzz_host.h"
#include "ixomep/expr/program.h"

using namespace ixomep::fuzz;

namespace {

// Cuts the files off the text and gives them to the host.
std::string_view TakeFiles(std::string_view text, FuzzHost& host) {
  constexpr std::string_view kMark = "\n=== ";
  const std::size_t first = text.find(kMark);
  std::string_view rest = first == text.npos ? std::string_view() : text.substr(first);
  while (rest.starts_with(kMark)) {
    rest.remove_prefix(kMark.size());
    const std::string_view name = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(name.size());
    const std::size_t next = rest.find(kMark, rest.empty() ? 0 : 1);
    const std::string_view content = rest.substr(0, next);
    host.files[std::string(name)] = content.empty() ? content : content.substr(1);
    rest.remove_prefix(content.size());
  }
  return text.substr(0, first);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzHost host;
  const bool before = ixomep::UsePrograms(false);
  const String text(TakeFiles(TextOf(data, size), host));
  for (const bool cached : {false, true}) {
    host.reads = 0;
    const Bounds bounds;
    (void)ReadAndAsk(text, cached);
  }
  ixomep::UsePrograms(before);
  return 0;
}

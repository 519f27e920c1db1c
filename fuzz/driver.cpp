// Replays inputs through a fuzz target where there is no fuzzing engine: each argument is a file,
// or a folder whose files are taken in the order of their names. Prints how many it ran.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> FilesOf(const std::filesystem::path& path) {
  if (!std::filesystem::is_directory(path)) return {path};
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// Also every shorter input: what is cut off inside a token, a string, a bracket.
int RunWithPrefixes(const std::vector<std::uint8_t>& input) {
  constexpr std::size_t kMaxPrefixes = 256;
  const std::size_t step = input.size() / kMaxPrefixes + 1;
  int runs = 0;
  for (std::size_t size = 0; size < input.size(); size += step, ++runs) {
    const std::vector<std::uint8_t> part(input.begin(),
                                         input.begin() + static_cast<std::ptrdiff_t>(size));
    (void)LLVMFuzzerTestOneInput(part.data(), part.size());
  }
  (void)LLVMFuzzerTestOneInput(input.data(), input.size());
  return runs + 1;
}

}  // namespace

int main(int argc, char** argv) {
  int files = 0;
  int runs = 0;
  for (int i = 1; i < argc; ++i) {
    for (const std::filesystem::path& path : FilesOf(argv[i])) {
      std::ifstream file(path, std::ios::binary);
      if (!file) {
        std::fprintf(stderr, "%s cannot be read\n", path.c_str());
        return 2;
      }
      const std::vector<std::uint8_t> input{std::istreambuf_iterator<char>(file), {}};
      std::fprintf(stderr, "%s\n", path.c_str());
      runs += RunWithPrefixes(input);
      ++files;
    }
  }
  std::printf("%d files, %d runs\n", files, runs);
  return files > 0 ? 0 : 2;
}

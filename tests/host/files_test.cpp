// Tests of reading files: names, what cannot be read, repository names and their folder.
#include "ixomep/host/files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "ixomep/host/host.h"
#include "tests/support/test_host.h"

namespace {

namespace fs = std::filesystem;
using ixomep::test::TestHost;

class Files : public ::testing::Test {
 protected:
  Files() {
    std::string pattern = (fs::temp_directory_path() / "ixomep-files-XXXXXX").string();
    EXPECT_NE(::mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    fs::create_directory(folder_ / "sub");
    Write("a.txt", "text of a");
    Write("sub/b.txt", "text of b");
  }
  ~Files() override {
    ixomep::SetRepositoryFolder("");
    fs::remove_all(folder_);
  }

  void Write(const std::string& name, const std::string& content) const {
    std::ofstream(folder_ / name, std::ios::binary) << content;
  }
  // The text, or "(unreadable)"; a failure must leave the text alone.
  static String Read(const String& name, bool plain_line_ends = false) {
    String text("(unreadable)");
    const bool read = IxoSystemFileManager::readStringFromFile(text, name, plain_line_ends);
    EXPECT_TRUE(read || text == "(unreadable)");
    return text;
  }
  String Path(const std::string& name) const { return (folder_ / name).string(); }

  fs::path folder_;
};

TEST_F(Files, Are_read_byte_for_byte) {
  const std::string bytes("\r\n\0\xFF last", 9);
  Write("bytes", bytes);
  EXPECT_EQ(Read(Path("bytes")), bytes);
  Write("empty", "");
  EXPECT_EQ(Read(Path("empty")), "");
  Write("long", std::string(300000, 'x'));
  EXPECT_EQ(Read(Path("long")), String::Filled(300000, 'x'));
}

TEST_F(Files, Lose_carriage_returns_before_line_feeds_when_asked) {
  Write("lines", "a\r\nb\rc\n\r\n\r");
  EXPECT_EQ(Read(Path("lines"), true), "a\nb\rc\n\n\r");
  EXPECT_EQ(Read(Path("lines"), false), "a\r\nb\rc\n\r\n\r");
}

TEST_F(Files, Are_found_with_either_separator) {
  String name = Path("sub/b.txt");
  EXPECT_EQ(Read(name), "text of b");
  while (name.ReplaceFirst("/", "\\")) {
  }
  EXPECT_EQ(Read(name), "text of b");
}

TEST_F(Files, Whose_size_is_not_known_beforehand_are_read_to_their_end) {
  // A regular file that claims to have no bytes.
  EXPECT_NE(Read("/proc/self/status").Search("Name:"), String::kNotFound);
}

TEST_F(Files, That_are_absent_or_no_regular_files_cannot_be_read) {
  EXPECT_EQ(Read(""), "(unreadable)");
  EXPECT_EQ(Read(Path("missing")), "(unreadable)");
  EXPECT_EQ(Read(Path("sub")), "(unreadable)");
  EXPECT_EQ(Read(Path("a.txt") + "/x"), "(unreadable)");
  EXPECT_EQ(Read("/dev/zero"), "(unreadable)");
  EXPECT_EQ(Read(String::Filled(100000, 'n')), "(unreadable)");
}

TEST_F(Files, That_are_pipes_cannot_be_read_and_nobody_waits_for_them) {
  ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(Read(Path("pipe")), "(unreadable)");
}

TEST_F(Files, Whose_name_holds_a_zero_byte_cannot_be_read) {
  EXPECT_EQ(Read(Path("a.txt") + String("\0b", 2)), "(unreadable)");
}

TEST_F(Files, That_are_longer_than_a_text_can_be_cannot_be_read) {
  // Only its size is large: no block of it is written.
  Write("huge", "");
  fs::resize_file(folder_ / "huge", std::uintmax_t{String::kMaxLength} + 1);
  EXPECT_EQ(Read(Path("huge")), "(unreadable)");
}

TEST_F(Files, That_fail_while_they_are_read_cannot_be_read) {
  // A regular file here, with nothing readable at its beginning.
  const char* const kUnreadable = "/proc/self/mem";
  if (!fs::is_regular_file(kUnreadable)) GTEST_SKIP() << "no such file on this system";
  EXPECT_EQ(Read(kUnreadable), "(unreadable)");
}

// Objects of the application may outlive what the library keeps.
TEST(FilesAtTheEndDeathTest, Of_the_repository_cannot_be_read_when_the_process_has_nearly_ended) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  struct Late {
    ~Late() {
      ixomep::SetRepositoryFolder("/");
      String text;
      const bool read = IxoSystemFileManager::readStringFromFile(text, "db:\\etc/passwd", false);
      std::fputs(read ? "read" : "not to be read", stderr);
    }
  };
  EXPECT_EXIT(
      {
        static const Late late;
        ixomep::SetRepositoryFolder("/");
        std::exit(0);
      },
      testing::ExitedWithCode(0), "^not to be read$");
}

TEST_F(Files, That_pass_the_memory_budget_fail_as_every_allocation_does) {
  Write("long", std::string(300000, 'x'));
  const ixomep::test::ScopedMemoryLimit limit(100000);
  String text("kept");
  EXPECT_THROW(IxoSystemFileManager::readStringFromFile(text, Path("long"), false), std::bad_alloc);
  EXPECT_EQ(text, "kept");
}

TEST_F(Files, Repository_names_begin_with_the_four_characters) {
  EXPECT_TRUE(Ixo_Valid_DBFilename("db:\\a.txt"));
  EXPECT_TRUE(Ixo_Valid_DBFilename("db:\\"));
  for (const char* name :
       {"", "db:", "db:/a.txt", "DB:\\a.txt", "xdb:\\a.txt", "a.txt", "c:\\db"}) {
    EXPECT_FALSE(Ixo_Valid_DBFilename(name)) << name;
  }
}

TEST_F(Files, Of_the_repository_cannot_be_read_without_a_folder) {
  EXPECT_EQ(Read("db:\\a.txt"), "(unreadable)");
}

TEST_F(Files, Of_the_repository_are_read_below_its_folder) {
  ixomep::SetRepositoryFolder(folder_.string());
  EXPECT_EQ(Read("db:\\a.txt"), "text of a");
  EXPECT_EQ(Read("db:\\sub\\b.txt"), "text of b");
  EXPECT_EQ(Read("db:\\sub/b.txt"), "text of b");
  EXPECT_EQ(Read("db:\\c.txt"), "(unreadable)");
}

TEST_F(Files, Of_the_repository_never_leave_its_folder) {
  ixomep::SetRepositoryFolder((folder_ / "sub").string());
  EXPECT_EQ(Read("db:\\b.txt"), "text of b");
  for (const char* name : {"db:\\..\\a.txt", "db:\\../a.txt", "db:\\x\\..\\..\\a.txt", "db:\\.."}) {
    EXPECT_EQ(Read(name), "(unreadable)") << name;
  }
  // An absolute name counts from the folder as well.
  EXPECT_EQ(Read("db:\\" + Path("a.txt")), "(unreadable)");
}

TEST_F(Files, Are_served_by_the_installed_host) {
  TestHost host;
  host.files["a"] = "from memory";
  EXPECT_EQ(Read("a"), "from memory");
  EXPECT_EQ(Read(Path("a.txt")), "(unreadable)");
  host.any_file = true;
  EXPECT_EQ(Read(Path("a.txt")), "text of a");
  EXPECT_EQ(host.ReadsOf("a"), 1);
  EXPECT_EQ(host.ReadsOf(Path("a.txt").view()), 2);
  EXPECT_TRUE(Ixo_Valid_DBFilename("db:\\a"));
}

}  // namespace

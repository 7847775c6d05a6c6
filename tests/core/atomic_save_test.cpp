#include "core/files/atomic_save.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>

#include "core/files/temporary_file.h"
#include "support/recorder.h"

namespace torvane {
namespace {

namespace fs = std::filesystem;
using test::Messages;

class AtomicSave : public ::testing::Test {
 protected:
  AtomicSave() {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    std::ofstream(path_) << "old";
  }
  ~AtomicSave() override {
    fs::permissions(folder_, fs::perms::owner_all);
    fs::remove_all(folder_);
  }

  static std::string Content(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  std::ptrdiff_t FileCount() const {
    return std::distance(fs::directory_iterator(folder_), fs::directory_iterator());
  }
  void ExpectOldFileWhole() const {
    EXPECT_EQ(Content(path_), "old");
    EXPECT_EQ(FileCount(), 1) << "something was left beside the file";
  }
  void ExpectSaved(const fs::path& path, const fs::path& holder) {
    const std::string bytes = "new " + path.string();
    EXPECT_EQ(WhyNotWritable(path), "");
    EXPECT_TRUE(SaveAtomically(path, bytes));
    EXPECT_EQ(Content(holder), bytes);
    EXPECT_EQ(messages_.Take(), Messages{});
  }
  void ExpectNotOpened(const fs::path& path, const char* reason) {
    const std::string fault = "Cannot open " + path.string() + ": " + reason;
    EXPECT_EQ(WhyNotWritable(path), fault);
    EXPECT_FALSE(SaveAtomically(path, "new"));
    EXPECT_EQ(messages_.Take(), Messages{"Error: " + fault});
  }

  /// In a process of its own, as a user without special rights; tells whether it returned true.
  static bool AsOrdinaryUser(const std::function<bool()>& action) {
    const pid_t child = fork();
    if (child == 0) {
      if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) _exit(2);
      _exit(action() ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }

  test::Recorder messages_;
  // Cases run at the same time, each in a process of its own.
  const fs::path folder_ =
      fs::path(::testing::TempDir()) / ("atomic-save-" + std::to_string(::getpid()));
  const fs::path path_ = folder_ / "a.tvf";
};

TEST_F(AtomicSave, ReplacesTheFileThatLinksLeadToAndKeepsItsPermissions) {
  chmod(path_.c_str(), 04640);
  ExpectSaved(path_, path_);
  EXPECT_EQ(FileCount(), 1);
  fs::create_directory(folder_ / "links");
  fs::create_symlink("../a.tvf", folder_ / "links" / "first");
  fs::create_symlink("first", folder_ / "links" / "second");
  fs::create_symlink("not-yet.tvf", folder_ / "dangling");
  fs::create_symlink("round", folder_ / "round");
  ExpectSaved(folder_ / "links" / "second", path_);
  EXPECT_TRUE(fs::is_symlink(folder_ / "links" / "second"));
  struct stat status {};
  stat(path_.c_str(), &status);
  EXPECT_EQ(status.st_mode & 07777, 04640U);
  ExpectSaved(folder_ / "dangling", folder_ / "not-yet.tvf");
  ExpectNotOpened(folder_ / "round", "Too many levels of symbolic links");
}

// Not as root, whom a slip would let put a file in the device's place.
TEST_F(AtomicSave, ADeviceIsWrittenInPlace) {
  EXPECT_TRUE(AsOrdinaryUser([&] {
    return !SaveAtomically("/dev/full", "new") && SaveAtomically("/dev/null", "new") &&
           messages_.Take() == Messages{"Error: Cannot write /dev/full: No space left on device"};
  }));
}

TEST_F(AtomicSave, WhatCannotBeWrittenStaysAsItIs) {
  ExpectNotOpened(folder_, "Is a directory");
  ExpectNotOpened(folder_ / "gone" / "a.tvf", "No such file or directory");
  ExpectNotOpened(path_ / "a.tvf", "Not a directory");
  ExpectNotOpened("", "No such file or directory");
  chmod(path_.c_str(), 0666);
  fs::permissions(folder_, static_cast<fs::perms>(0555));
  // A folder that may not be written.
  EXPECT_FALSE(AsOrdinaryUser([&] { return SaveAtomically(path_, "new"); }));
  ExpectOldFileWhole();
  // A file that may not, in a folder that may.
  fs::permissions(folder_, fs::perms::all);
  chmod(path_.c_str(), 0444);
  EXPECT_FALSE(AsOrdinaryUser([&] { return SaveAtomically(path_, "new"); }));
  ExpectOldFileWhole();
  // Not even root creates files here.
  EXPECT_FALSE(SaveAtomically("/proc/a.tvf", "new"));
}

// Only what looks like a temporary file that nobody writes any more is removed. While one is
// written, a signal to end has to wait until it is moved or gone.
TEST_F(AtomicSave, TemporaryFilesDoNotStay) {
  for (const char* name : {".torvane-1-0", ".torvane-1-1", ".torvane-x-1", ".torvane-1",
                           ".torvane-1-", ".torvane--1", "torvane-1-1"}) {
    std::ofstream(folder_ / name) << "part";
  }
  const int held = open((folder_ / ".torvane-1-1").c_str(), O_WRONLY);
  ASSERT_EQ(flock(held, LOCK_EX), 0);
  EXPECT_TRUE(SaveAtomically(path_, "new"));
  EXPECT_FALSE(fs::exists(folder_ / ".torvane-1-0"));
  EXPECT_EQ(FileCount(), 7);
  close(held);
  sigset_t blocked;
  {
    const TemporaryFile temporary(folder_.string() + "/");
    const TemporaryFile second(folder_.string() + "/");
    EXPECT_EQ(FileCount(), 8) << "two of this process, and the one whose holder is gone is not";
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    EXPECT_TRUE(sigismember(&blocked, SIGTERM) && sigismember(&blocked, SIGINT));
  }
  EXPECT_EQ(FileCount(), 6);
  pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
  EXPECT_FALSE(sigismember(&blocked, SIGTERM));
}

}  // namespace
}  // namespace torvane

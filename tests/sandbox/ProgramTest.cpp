#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "sandbox/Json.h"

extern char** environ;  // NOLINT: POSIX gives it no header.

namespace orlix::sandbox::test {
namespace {

/// The program, started with its output in pipes.
class Program {
 public:
  explicit Program(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), ORLIX_SANDBOX_PROGRAM);
    std::vector<char*> values;
    for (std::string& argument : arguments) values.push_back(argument.data());
    values.push_back(nullptr);
    int out[2];
    int err[2];
    if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
    posix_spawn(&id_, values.front(), &actions, nullptr, values.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    close(err[1]);
    out_ = fdopen(out[0], "r");
    err_ = fdopen(err[0], "r");
  }
  ~Program() {
    if (out_ != nullptr) std::fclose(out_);
    if (err_ != nullptr) std::fclose(err_);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  std::string line() { return lineOf(out_); }
  std::string complaint() { return lineOf(err_); }
  void terminate() const { kill(id_, SIGTERM); }

  int exitCode() const {
    int status = 0;
    waitpid(id_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

 private:
  static std::string lineOf(FILE* file) {
    std::string text(4096, '\0');
    if (file == nullptr ||
        std::fgets(text.data(), static_cast<int>(text.size()), file) == nullptr) {
      return "";
    }
    return text.substr(0, text.find('\n'));
  }

  pid_t id_ = -1;
  FILE* out_ = nullptr;
  FILE* err_ = nullptr;
};

TEST(Program, SaysWhereItIsAndEndsCleanlyWhenAsked) {
  std::string folder = (std::filesystem::temp_directory_path() / "sandbox-XXXXXX").string();
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  Program program({"--dir", folder, "--enrolled"});
  const auto ready = parseObject(program.line());
  ASSERT_TRUE(ready);
  EXPECT_EQ(textOf(*ready, "event"), "ready");
  EXPECT_EQ(textOf(*ready, "anchor"), folder + "/certificateroot.cer");
  EXPECT_TRUE(std::filesystem::exists(folder + "/certificateroot.cer"));
  program.terminate();
  EXPECT_EQ(program.exitCode(), 0);
  EXPECT_TRUE(std::filesystem::exists(folder)) << "a folder that was given stays";
  std::filesystem::remove_all(folder);
}

TEST(Program, RefusesBadArgumentsWithTwoAndWhatItCannotUseWithOne) {
  struct Row {
    std::vector<std::string> arguments;
    int code;
    const char* names;  ///< What the complaint must name.
  };
  for (const Row& row : std::vector<Row>{{{"--nonsense"}, 2, "--nonsense"},
                                         {{"surplus"}, 2, "surplus"},
                                         {{"--port"}, 2, "--port"},
                                         {{"--port", "x"}, 2, "\"x\""},
                                         {{"--port", "-1"}, 2, "\"-1\""},
                                         {{"--port", "65536"}, 2, "65536"},
                                         {{"--dir", ""}, 2, "--dir"},
                                         {{"--db"}, 2, "--db"},
                                         {{"--dir", "/proc/no/folder"}, 1, "/proc/no/folder"},
                                         {{"--db", "/proc/no/file"}, 1, "/proc/no/file"}}) {
    Program program(row.arguments);
    EXPECT_NE(program.complaint().find(row.names), std::string::npos) << row.names;
    EXPECT_EQ(program.exitCode(), row.code) << row.names;
  }
}

}  // namespace
}  // namespace orlix::sandbox::test

// SPDX-License-Identifier: Apache-2.0

#include <array>
#include <csignal>
#include <cstdio>

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "sandbox/Json.h"
#include "tests/TemporaryFolder.h"

namespace orlix::sandbox::test {
namespace {

const std::string kProgram = ORLIX_SANDBOX_PROGRAM;

std::string lineOf(FILE* pipe) {
  std::array<char, 4096> text{};
  std::string line = std::fgets(text.data(), text.size(), pipe) == nullptr ? "" : text.data();
  return line.substr(0, line.find('\n'));
}

TEST(Program, SaysWhereItIsAndEndsCleanlyWhenAsked) {
  const orlix::test::TemporaryFolder folder;
  const std::string command = kProgram + " --enrolled --dir " + folder.path().string();
  FILE* pipe = popen((command + " & echo $!; wait $!").c_str(), "r");
  const int id = std::stoi(lineOf(pipe));
  const auto ready = parseObject(lineOf(pipe));
  ASSERT_TRUE(ready);
  EXPECT_EQ(textOf(*ready, "event"), "ready");
  EXPECT_EQ(textOf(*ready, "anchor"), folder.path() / "certificateroot.cer");
  EXPECT_TRUE(std::filesystem::exists(textOf(*ready, "anchor")));
  EXPECT_TRUE(std::filesystem::exists(textOf(*ready, "anchorPem")));
  EXPECT_EQ(textOf(*ready, "base"), textOf(*ready, "local") + "/vello");
  EXPECT_EQ(textOf(*ready, "console").rfind("http://127.0.0.1:", 0), 0U);
  kill(id, SIGTERM);
  EXPECT_EQ(pclose(pipe), 0);
  EXPECT_TRUE(std::filesystem::exists(folder.path())) << "a folder that was given stays";
}

TEST(Program, TellsItsOptionsInGroupsWithExamplesWhenAskedForHelp) {
  FILE* pipe = popen((kProgram + " --help").c_str(), "r");
  std::string help;
  for (std::string line = lineOf(pipe); std::feof(pipe) == 0; line = lineOf(pipe))
    help += line + "\n";
  EXPECT_EQ(pclose(pipe), 0);
  for (const char* told : {"Network:", "State:", "Behaviour:", "  --port N ", "Examples:"}) {
    EXPECT_NE(help.find(told), std::string::npos) << told << help;
  }
}

TEST(Program, RefusesBadArgumentsWithTwoAndWhatItCannotUseWithOne) {
  struct Row {
    std::string arguments;
    int code;
    std::string names;  ///< What the complaint must name.
  };
  for (const Row& row : std::vector<Row>{{"--nonsense", 2, "--nonsense"},
                                         {"surplus", 2, "surplus"},
                                         {"--port", 2, "--port"},
                                         {"--port x", 2, "\"x\""},
                                         {"--port 65536", 2, "65536"},
                                         {"--listen phone", 2, "\"phone\" is no address"},
                                         {"--listen 0.0.0.0", 2, "no single address"},
                                         {"--listen 127.0.0.1", 2, "listened on already"},
                                         {"--listen 203.0.113.9", 1, "203.0.113.9"},
                                         {"--keep-root", 2, "--keep-root requires --dir"},
                                         {"--dir ''", 2, "--dir"},
                                         {"--dir /proc/no/folder", 1, "/proc/no/folder"},
                                         {"--db /proc/no/file", 1, "/proc/no/file"},
                                         {"--record /proc/no/file", 1, "/proc/no/file"}}) {
    FILE* pipe = popen((kProgram + " " + row.arguments + " 2>&1").c_str(), "r");
    EXPECT_NE(lineOf(pipe).find(row.names), std::string::npos) << row.names;
    EXPECT_EQ(WEXITSTATUS(pclose(pipe)), row.code) << row.names;
  }
}

}  // namespace
}  // namespace orlix::sandbox::test

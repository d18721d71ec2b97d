#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace tof {
namespace {

namespace fs = std::filesystem;

const fs::path kRoot = TOF_SOURCE_DIR;

std::string BytesOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.good()) << path;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string WithLineFeeds(std::string text) {
  std::string result;
  for (const char c : text) {
    if (c != '\r') result += c;
  }
  return result;
}

// The text between the first two lines that hold `marker`, both left out.
std::string Between(const std::string& text, const std::string& marker) {
  const auto first = text.find(marker);
  EXPECT_NE(first, std::string::npos) << marker;
  const auto begin = text.find('\n', first) + 1;
  const auto second = text.find(marker, begin);
  EXPECT_NE(second, std::string::npos) << marker;
  return text.substr(begin, text.rfind('\n', second) + 1 - begin);
}

// The fenced block behind a line of the document.
std::string BlockBehind(const std::string& document, const std::string& line) {
  const auto at = document.find(line);
  EXPECT_NE(at, std::string::npos) << line;
  const auto fence = document.find("\n```", at);
  const auto begin = document.find('\n', fence + 1) + 1;
  return document.substr(begin, document.find("```", begin) - begin);
}

TEST(Readme, ShowsTheEmbeddingExampleAsItIsCompiled) {
  const std::string code = Between(BytesOf(kRoot / "examples/embedding/calibrate.cpp"), "[readme]");
  EXPECT_EQ(BlockBehind(BytesOf(kRoot / "README.md"), "<!-- examples/embedding/calibrate.cpp -->"),
            code);
}

TEST(ConformancePage, ShowsItsExampleAsItIsCompiled) {
  const std::string example = "examples/embedding/check_instrument.cpp";
  const std::string code = Between(BytesOf(kRoot / example), "[page]");
  EXPECT_EQ(BlockBehind(BytesOf(kRoot / "docs/conformance.md"), "<!-- " + example + " -->"), code);
}

TEST(PackagesPage, ShowsTheConsumerAsItIsBuilt) {
  const std::string example = "tests/consumer/CMakeLists.txt";
  const std::string code = Between(BytesOf(kRoot / example), "[page]");
  EXPECT_EQ(BlockBehind(BytesOf(kRoot / "docs/packages.md"), "<!-- " + example + " -->"), code);
}

// Runs an example with a base folder of its own; its answer is that of the program.
int RunInFolder(const std::string& program, const std::string& name) {
  const fs::path folder = fs::path(testing::TempDir()) / name;
  fs::create_directories(folder / "Logfiles");
  const std::string command = "'" + program + "' '" + folder.string() + "' > /dev/null";
  const int answer = std::system(command.c_str());
  fs::remove_all(folder);
  return answer;
}

TEST(EmbeddingExample, Calibrates) {
  EXPECT_EQ(RunInFolder(TOF_EMBEDDING_EXAMPLE, "embedding_example"), 0);
}

TEST(CheckInstrumentExample, FindsNothingWrong) {
  EXPECT_EQ(RunInFolder(TOF_CHECK_INSTRUMENT_EXAMPLE, "check_instrument_example"), 0);
}

// The texts between `begin` and `end`.
std::vector<std::string> AllBetween(const std::string& text, const std::string& begin,
                                    const std::string& end) {
  std::vector<std::string> found;
  for (auto at = text.find(begin); at != std::string::npos; at = text.find(begin, at)) {
    at += begin.size();
    found.push_back(text.substr(at, text.find(end, at) - at));
  }
  return found;
}

// Each example in the page on log files names the golden file that it shows.
TEST(LogFilePage, ShowsTheGoldenFiles) {
  const std::string page = BytesOf(kRoot / "docs/log_files.md");
  const auto names = AllBetween(page, "<!-- golden: ", " -->");
  for (const std::string& name : names) {
    EXPECT_EQ(BlockBehind(page, "<!-- golden: " + name + " -->"),
              WithLineFeeds(BytesOf(kRoot / "tests/golden" / name)))
        << name;
  }
  EXPECT_GE(names.size(), 6U);
}

// A page that is named somewhere is there.
TEST(Documents, LinkToFilesThatExist) {
  std::vector<fs::path> pages = {kRoot / "README.md"};
  for (const auto& entry : fs::recursive_directory_iterator(kRoot / "docs")) {
    if (entry.path().extension() == ".md") pages.push_back(entry.path());
  }
  for (const fs::path& page : pages) {
    for (const std::string& link : AllBetween(BytesOf(page), "](", ")")) {
      const std::string file = link.substr(0, link.find('#'));
      const bool elsewhere = file.find(':') != std::string::npos;
      if (file.empty() || elsewhere) continue;
      EXPECT_TRUE(fs::exists(page.parent_path() / file)) << page << ": " << file;
    }
  }
}

}  // namespace
}  // namespace tof

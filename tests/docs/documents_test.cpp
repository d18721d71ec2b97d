#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
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

// Each example in the page on log files names the golden file that it shows.
TEST(LogFilePage, ShowsTheGoldenFiles) {
  const std::string page = BytesOf(kRoot / "docs/log_files.md");
  const std::regex marker("<!-- golden: (\\S+) -->");
  int examples = 0;
  for (std::sregex_iterator it(page.begin(), page.end(), marker), end; it != end;
       ++it, ++examples) {
    const std::string name = (*it)[1];
    EXPECT_EQ(BlockBehind(page, it->str()), WithLineFeeds(BytesOf(kRoot / "tests/golden" / name)))
        << name;
  }
  EXPECT_GE(examples, 6);
}

// A page that is named somewhere is there.
TEST(Documents, LinkToFilesThatExist) {
  std::vector<fs::path> pages = {kRoot / "README.md"};
  for (const auto& entry : fs::recursive_directory_iterator(kRoot / "docs")) {
    if (entry.path().extension() == ".md") pages.push_back(entry.path());
  }
  const std::regex link("\\]\\(([^)#:]+)(#[^)]*)?\\)");
  for (const fs::path& page : pages) {
    const std::string text = BytesOf(page);
    for (std::sregex_iterator it(text.begin(), text.end(), link), end; it != end; ++it) {
      EXPECT_TRUE(fs::exists(page.parent_path() / (*it)[1].str())) << page << ": " << (*it)[1];
    }
  }
}

}  // namespace
}  // namespace tof

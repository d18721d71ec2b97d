// The names by which a user makes an operation fail.
#include "instruments/standin/operation.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace tof::standin {
namespace {

std::string TextOf(const std::string& path) {
  std::ifstream in(std::string(TOF_SOURCE_DIR) + "/" + path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<std::string> AllOf(const std::string& text, const std::string& pattern) {
  std::vector<std::string> found;
  const std::regex expression(pattern);
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
       ++match) {
    found.push_back(match->str(1));
  }
  return found;
}

// The enumerators in their order, without the k.
std::vector<std::string> Enumerators() {
  const std::string text = TextOf("instruments/standin/operation.h");
  const auto begin = text.find("enum class Operation");
  return AllOf(text.substr(begin, text.find('}', begin) - begin), "\\bk(\\w+),");
}

TEST(Operation, IsNamedAfterItsCollaboratorAndItself) {
  const std::vector<std::string> enumerators = Enumerators();
  ASSERT_EQ(enumerators.size(), kOperationCount);
  std::set<std::string> collaborators;
  for (const char* header : {"collaborators.h", "mass_time_library.h"}) {
    for (const std::string& name :
         AllOf(TextOf(std::string("component/calibrator/") + header), "\\bclass (\\w+)")) {
      collaborators.insert(name);
    }
  }
  for (std::size_t i = 0; i < kOperationCount; ++i) {
    const auto operation = static_cast<Operation>(i);
    const std::string name(NameOf(operation));
    const std::size_t dot = name.find('.');
    ASSERT_NE(dot, std::string::npos) << name;
    EXPECT_EQ(name.substr(0, dot) + name.substr(dot + 1), enumerators[i]);
    EXPECT_EQ(collaborators.count(name.substr(0, dot)), 1U) << name;
    EXPECT_EQ(OperationOfName(name), operation);
  }
}

}  // namespace
}  // namespace tof::standin

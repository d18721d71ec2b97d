// A log file line by line, and what is wrong with it.
#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/report/report_page.h"

namespace tof::report {

// A log and the name it goes by.
struct LogSource {
  std::istream& bytes;
  std::string name;
};

// Complaints about one file. A file that is damaged all over is not listed line by line.
class Complaints {
 public:
  Complaints(std::string file, std::vector<Problem>& problems)
      : file_(std::move(file)), problems_(problems) {}
  ~Complaints();
  Complaints(const Complaints&) = delete;
  Complaints& operator=(const Complaints&) = delete;

  bool Any() const { return count_ > 0; }
  void Add(std::size_t line, std::string what);
  // "found "abc", expected ...".
  void Unexpected(std::size_t line, std::string_view found, std::string_view expected);

 private:
  std::string file_;
  std::vector<Problem>& problems_;
  std::size_t count_ = 0;
};

// Reads a text whose lines end in CR LF; LF alone is taken too, as copying may change it.
class LogLines {
 public:
  LogLines(std::istream& bytes, Complaints& complaints) : bytes_(bytes), complaints_(complaints) {}

  // False at the end. A last line without its end was cut while it was written: it is complained
  // about and not handed out, as a number in it may be cut too.
  bool Next();
  const std::string& text() const { return text_; }
  std::size_t number() const { return number_; }  // from 1

 private:
  std::istream& bytes_;
  Complaints& complaints_;
  std::string text_;
  std::size_t number_ = 0;
};

// A number as the logs write it, blanks around it allowed; NaN is a number here.
std::optional<double> LoggedNumber(std::string_view text);

// All numbers of a list "a, b, c"; none when one of them is no number.
std::optional<std::vector<double>> LoggedNumbers(std::string_view text);

bool StartsWith(std::string_view text, std::string_view start);

// What stands between `start` and `end`, which begin and end the text; none when they do not.
std::optional<std::string_view> Between(std::string_view text, std::string_view start,
                                        std::string_view end);

}  // namespace tof::report

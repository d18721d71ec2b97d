// SHA-1, which mzML names for the checksum of a file.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace tof::apply {

class Sha1 {
 public:
  Sha1();
  ~Sha1();
  Sha1(const Sha1&) = delete;
  Sha1& operator=(const Sha1&) = delete;

  void Add(std::string_view bytes);
  // Of all bytes so far, 40 lower-case hexadecimal digits. Nothing can be added afterwards.
  std::string Digest();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tof::apply

#include "hosts/apply/checksum.h"

#include <fmt/format.h>
#include <gcrypt.h>

#include <stdexcept>

namespace tof::apply {

struct Sha1::State {
  gcry_md_hd_t handle = nullptr;
};

Sha1::Sha1() : state_(std::make_unique<State>()) {
  // The library wants to know that it is used before anything else is asked of it.
  if (gcry_check_version(nullptr) == nullptr ||
      gcry_md_open(&state_->handle, GCRY_MD_SHA1, 0) != 0) {
    throw std::runtime_error("libgcrypt offers no SHA-1");
  }
}

Sha1::~Sha1() {
  gcry_md_close(state_->handle);
}

void Sha1::Add(std::string_view bytes) {
  gcry_md_write(state_->handle, bytes.data(), bytes.size());
}

std::string Sha1::Digest() {
  const unsigned char* const digest = gcry_md_read(state_->handle, GCRY_MD_SHA1);
  if (digest == nullptr) throw std::runtime_error("libgcrypt gives no SHA-1");
  std::string text;
  for (std::size_t i = 0; i < gcry_md_get_algo_dlen(GCRY_MD_SHA1); ++i) {
    text += fmt::format("{:02x}", digest[i]);
  }
  return text;
}

}  // namespace tof::apply

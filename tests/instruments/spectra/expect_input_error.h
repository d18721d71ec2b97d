// Says what an input is refused with.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "instruments/spectra/input_error.h"

namespace tof::spectra {

// The message of the InputError that `action` raises; "no error" when it raises none.
template <typename Action>
std::string InputErrorOf(Action&& action) {
  try {
    action();
  } catch (const InputError& error) {
    return error.what();
  }
  return "no error";
}

}  // namespace tof::spectra

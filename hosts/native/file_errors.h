// What the operating system says of a file, as an error of the automation rules.
#pragma once

#include "component/automation/error.h"

namespace tof::native {

// The error for an `errno` value that opening, writing or closing a text file left behind.
AutomationError ErrorOfErrno(int error_code);

}  // namespace tof::native

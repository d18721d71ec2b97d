// Dates and times between the operating system, the virtual clock and the calibrator.
#pragma once

#include <chrono>
#include <string>

#include "component/automation/number_text.h"

namespace tof::native {

// Seconds of a calendar without time zones.
using CalendarSeconds = std::chrono::time_point<std::chrono::system_clock, std::chrono::seconds>;

CalendarSeconds CalendarSecondsOf(const DateTime& moment);
DateTime DateTimeOf(CalendarSeconds moment);

// The machine's clock in its local time zone.
DateTime LocalTimeNow();

// Date and time as the user's locale writes them (LC_TIME), e.g. "03/21/24 14:05:09". A locale that
// is not installed counts as "C".
std::string UserDateTimeText(const DateTime& moment);

}  // namespace tof::native

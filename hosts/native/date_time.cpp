#include "hosts/native/date_time.h"

#include <ctime>
#include <iomanip>
#include <locale>
#include <sstream>
#include <stdexcept>

namespace tof::native {
namespace {

std::chrono::year_month_day DayOf(const DateTime& moment) {
  return {std::chrono::year{moment.year}, std::chrono::month{static_cast<unsigned>(moment.month)},
          std::chrono::day{static_cast<unsigned>(moment.day)}};
}

// Every field that a locale's formats may ask for, daylight saving apart.
std::tm BrokenDownTime(const DateTime& moment) {
  const std::chrono::sys_days day = DayOf(moment);
  const std::chrono::sys_days new_year =
      std::chrono::year{moment.year} / std::chrono::January / std::chrono::day{1};
  std::tm fields{};
  fields.tm_year = moment.year - 1900;
  fields.tm_mon = moment.month - 1;
  fields.tm_mday = moment.day;
  fields.tm_hour = moment.hour;
  fields.tm_min = moment.minute;
  fields.tm_sec = moment.second;
  fields.tm_wday = static_cast<int>(std::chrono::weekday{day}.c_encoding());
  fields.tm_yday = static_cast<int>((day - new_year).count());
  fields.tm_isdst = -1;
  return fields;
}

std::locale UserLocale() {
  try {
    return std::locale("");
  } catch (const std::runtime_error&) {
    return std::locale::classic();
  }
}

}  // namespace

CalendarSeconds CalendarSecondsOf(const DateTime& moment) {
  return std::chrono::sys_days{DayOf(moment)} + std::chrono::hours{moment.hour} +
         std::chrono::minutes{moment.minute} + std::chrono::seconds{moment.second};
}

DateTime DateTimeOf(CalendarSeconds moment) {
  const auto midnight = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day day{midnight};
  const std::chrono::hh_mm_ss time{moment - midnight};
  DateTime result;
  result.year = static_cast<int>(day.year());
  result.month = static_cast<int>(static_cast<unsigned>(day.month()));
  result.day = static_cast<int>(static_cast<unsigned>(day.day()));
  result.hour = static_cast<int>(time.hours().count());
  result.minute = static_cast<int>(time.minutes().count());
  result.second = static_cast<int>(time.seconds().count());
  return result;
}

DateTime LocalTimeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm fields{};
#ifdef _WIN32
  localtime_s(&fields, &now);
#else
  localtime_r(&now, &fields);
#endif
  DateTime result;
  result.year = fields.tm_year + 1900;
  result.month = fields.tm_mon + 1;
  result.day = fields.tm_mday;
  result.hour = fields.tm_hour;
  result.minute = fields.tm_min;
  result.second = fields.tm_sec;
  return result;
}

std::string UserDateTimeText(const DateTime& moment) {
  const std::tm fields = BrokenDownTime(moment);
  std::ostringstream text;
  text.imbue(UserLocale());
  text << std::put_time(&fields, "%x %X");
  return text.str();
}

}  // namespace tof::native

// What the charts of a page are drawn from.
#pragma once

#include <string>

#include "hosts/report/report_page.h"

namespace tof::report {

// JSON for the page's own script: a chart for each of its elements of class "chart", by its id.
std::string ChartDataOf(const ReportPage& page);

// How a calibrant is called: by its mass, or by its index where no mass is recorded.
std::string CalibrantLabel(const ReportPage& page, std::size_t index);

// Whether there is anything to draw.
bool HasErrorsBefore(const ReportPage& page);
bool HasErrorsAfter(const ReportPage& page);
bool HasMeasurementTimes(const ReportPage& page);  // on the instrument's clock

}  // namespace tof::report

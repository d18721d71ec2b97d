// The sections of a page, in HTML. A section that has nothing to say about a run says so.
#pragma once

#include <string>

#include "hosts/report/report_page.h"

namespace tof::report {

std::string RunsSection(const ReportPage& page);      // empty for a run that was watched
std::string ProblemsSection(const ReportPage& page);  // empty when everything could be read
std::string MassesSection(const ReportPage& page);
std::string EffectSection(const ReportPage& page);
std::string CalibrantsSection(const ReportPage& page);
std::string CoefficientsSection(const ReportPage& page);
std::string StateSection(const ReportPage& page);
std::string EffortSection(const ReportPage& page);
std::string FilesSection(const ReportPage& page);

// A chart's place, for a script to draw into. `alternative` says in words what is seen. In a
// program built without charts: the caption alone.
std::string ChartFigure(const std::string& id, const std::string& alternative,
                        const std::string& caption);
// A table that scrolls by itself on a narrow screen. `heads` are HTML.
std::string Table(const std::string& caption, const std::vector<std::string>& heads,
                  const std::string& rows);
// A table behind a line that opens it.
std::string FoldedTable(const std::string& summary, const std::vector<std::string>& heads,
                        const std::string& rows);

}  // namespace tof::report

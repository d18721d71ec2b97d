#include "hosts/report/page_frame.h"

#include <fmt/format.h>

#include "hosts/report/html_text.h"
#include "hosts/report/page_assets.h"

namespace tof::report {
namespace {

// Nothing but the page's own style and script is ever loaded or run.
std::string Head(const PageFrame& frame) {
  return fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
      "style-src 'unsafe-inline'; script-src {}; base-uri 'none'; form-action 'none'\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>{}</title>\n<style>\n{}</style>\n</head>\n",
      ChartScriptHash(), Escape(frame.title), PageStyle());
}

std::string Scripts(const PageFrame& frame) {
  const std::string data = "<script type=\"application/json\" id=\"chart-data\">" +
                           EscapeForScript(frame.chart_data) + "</script>\n";
  return ChartScript().empty() ? data : data + "<script>" + ChartScript() + "</script>\n";
}

std::string Footer(const PageFrame& frame) {
  return "<footer>\n<p>Made by " + Escape(frame.program) +
         ". A dash stands for what was not recorded or not measured.</p>\n"
         "<details><summary>Licences of the parts of this page</summary>\n<pre>" +
         Escape(ChartLicences()) + "</pre></details>\n</footer>\n";
}

}  // namespace

std::string InFrame(const PageFrame& frame, const std::string& body) {
  return Head(frame) +
         fmt::format("<body>\n<a class=\"skip\" href=\"#{}\">Skip to the results</a>\n",
                     frame.first_section) +
         body + Footer(frame) + Scripts(frame) + "</body>\n</html>\n";
}

}  // namespace tof::report

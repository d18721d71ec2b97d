#include "hosts/cli/conformance_report.h"
#include "hosts/cli/json_document.h"

namespace tof::cli {
namespace {

using conformance::CheckResult;
using conformance::Outcome;

const char* NameOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::kPass:
      return "pass";
    case Outcome::kFail:
      return "fail";
    case Outcome::kNotApplicable:
      break;
  }
  return "not applicable";
}

Json CheckJson(const CheckResult& result) {
  Json json{{"id", result.id},
            {"collaborator", result.collaborator},
            {"relied_on", result.relied_on},
            {"result", NameOf(result.outcome)}};
  if (result.outcome == Outcome::kFail) {
    json["expected"] = result.expected;
    json["found"] = result.found;
  }
  if (result.outcome == Outcome::kNotApplicable) json["why"] = result.why_not_applicable;
  return json;
}

}  // namespace

std::string JsonOf(const ConformanceReport& report) {
  Json json;
  json["ok"] = NumberOf(Outcome::kFail, report) == 0;
  json["instrument"] = report.instrument;
  json["passed"] = NumberOf(Outcome::kPass, report);
  json["failed"] = NumberOf(Outcome::kFail, report);
  json["not_applicable"] = NumberOf(Outcome::kNotApplicable, report);
  json["checks"] = Json::array();
  for (const CheckResult& result : report.results) json["checks"].push_back(CheckJson(result));
  return DocumentText(json);
}

}  // namespace tof::cli

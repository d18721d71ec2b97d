#include "hosts/study/ways.h"

namespace tof::study {

VirtualRun ByMeasurement() {
  return {.description = BuiltIn()};
}

VirtualRun ByMass() {
  VirtualRun run = ByMeasurement();
  run.description.flags["AIC_MinimizeImpactOfDriftOnCalibPointCollection"] = "No";
  return run;
}

VirtualRun ParserSearch() {
  VirtualRun run = ByMeasurement();
  Set(run.description, "AIC_SetpointToUse", 83);
  return run;
}

VirtualRun FirmwareSearch() {
  VirtualRun run = ParserSearch();
  run.description.flags["AIC_RunFastVersion"] = "Yes";
  return run;
}

VirtualRun Traditional() {
  VirtualRun run = ByMeasurement();
  run.suppress_aic = true;
  return run;
}

Ways RunAllWays(std::uint64_t seeds) {
  return {RunSeries(ByMeasurement(), seeds), RunSeries(ByMass(), seeds),
          RunSeries(ParserSearch(), seeds), RunSeries(FirmwareSearch(), seeds),
          RunSeries(Traditional(), seeds)};
}

}  // namespace tof::study

// The data of the pictures in docs/: columns of numbers, separated by blanks, for gnuplot.
#pragma once

#include <string>

#include "hosts/study/tables.h"

namespace tof::study {

std::string TransmissionCurves();   // V, then the fraction passed on of each mass
std::string DeadTimeShift();        // ions per pulse, abundance, shift in m/z ppm, its tangent
std::string WholeSpectrum();        // us, largest count in 50 ns
std::string PeakAtTwoAbundances();  // ns, counts over their sum at 75 V, the same at 22 V
std::string TrueErrors(const Ways& ways);  // m/z, traditional, by measurement: ppm, 5 seeds each

}  // namespace tof::study

// Masses and isotope patterns of singly charged positive ions from their elements.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tof::virtual_instrument {

// Atoms of each element in an ion, by element symbol.
using Composition = std::map<std::string, int, std::less<>>;

// One peak of an isotope cluster, seen from the first one (every atom the lightest isotope).
struct IsotopePeak {
  double mass_offset_u = 0.0;
  double relative_abundance = 1.0;  // of the first peak
};

// "C2H2O4Na3": element symbols, each with an optional count. Throws std::invalid_argument that
// names the formula, the position and what was expected. Known: H C N O F Na Si P S.
Composition ParseFormula(std::string_view formula);

// Mass in u of the singly charged ion of the lightest isotopes: the atoms less one electron.
double FirstIsotopeMass(const Composition& composition);

// An ion of about `mass_u` whose formula is not known: whole numbers of atoms in the proportions of
// averagine, C 4.9384 H 7.7583 N 1.3577 O 1.4773 S 0.0417 per 111.1254 u (M. W. Senko, S. C. Beu,
// F. W. McLafferty, J. Am. Soc. Mass Spectrom. 6, 229 (1995)).
Composition AveragineComposition(double mass_u);

// The cluster in ascending mass, the first isotope included, without peaks below
// `smallest_relative_abundance` of the first. Isotopologues of one nominal mass (13C and 17O, say)
// are one peak at their mean mass: they lie closer than a peak is wide.
std::vector<IsotopePeak> IsotopePattern(const Composition& composition,
                                        double smallest_relative_abundance = 1e-4);

}  // namespace tof::virtual_instrument

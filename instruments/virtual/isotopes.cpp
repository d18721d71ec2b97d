#include "instruments/virtual/isotopes.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <stdexcept>
#include <utility>

namespace tof::virtual_instrument {
namespace {

struct Isotope {
  int extra_neutrons;  // over the lightest isotope
  double mass_u;
  double abundance;
};

// Masses: M. Wang et al., "The AME 2020 atomic mass evaluation (II)", Chin. Phys. C 45, 030003
// (2021). Abundances: M. Berglund, M. E. Wieser, "Isotopic compositions of the elements 2009", Pure
// Appl. Chem. 83, 397 (2011). In each of these elements the lightest isotope is the most abundant
// one.
constexpr auto kHydrogen =
    std::to_array<Isotope>({{0, 1.00782503190, 0.999885}, {1, 2.01410177784, 0.000115}});
constexpr auto kCarbon = std::to_array<Isotope>({{0, 12.0, 0.9893}, {1, 13.00335483534, 0.0107}});
constexpr auto kNitrogen =
    std::to_array<Isotope>({{0, 14.00307400425, 0.99636}, {1, 15.00010889827, 0.00364}});
constexpr auto kOxygen = std::to_array<Isotope>(
    {{0, 15.99491461926, 0.99757}, {1, 16.99913175595, 0.00038}, {2, 17.99915961214, 0.00205}});
constexpr auto kFluorine = std::to_array<Isotope>({{0, 18.99840316207, 1.0}});
constexpr auto kSodium = std::to_array<Isotope>({{0, 22.9897692820, 1.0}});
constexpr auto kSilicon = std::to_array<Isotope>(
    {{0, 27.97692653442, 0.92223}, {1, 28.97649466434, 0.04685}, {2, 29.97377014, 0.03092}});
constexpr auto kPhosphorus = std::to_array<Isotope>({{0, 30.97376199768, 1.0}});
constexpr auto kSulfur = std::to_array<Isotope>({{0, 31.97207117354, 0.9499},
                                                 {1, 32.97145890862, 0.0075},
                                                 {2, 33.96786701, 0.0425},
                                                 {4, 35.96708069, 0.0001}});

constexpr double kElectronMassU = 5.48579909065e-4;  // CODATA 2018

struct Element {
  std::string_view symbol;
  std::span<const Isotope> isotopes;
};

constexpr std::array<Element, 9> kElements{{{"H", kHydrogen},
                                            {"C", kCarbon},
                                            {"N", kNitrogen},
                                            {"O", kOxygen},
                                            {"F", kFluorine},
                                            {"Na", kSodium},
                                            {"Si", kSilicon},
                                            {"P", kPhosphorus},
                                            {"S", kSulfur}}};

const Element* FindElement(std::string_view symbol) {
  for (const Element& element : kElements) {
    if (element.symbol == symbol) return &element;
  }
  return nullptr;
}

std::span<const Isotope> IsotopesOf(std::string_view symbol) {
  const Element* const element = FindElement(symbol);
  if (element == nullptr) {
    throw std::invalid_argument(
        fmt::format("unknown element '{}'; known are H C N O F Na Si P S", symbol));
  }
  return element->isotopes;
}

bool IsUpper(char c) {
  return c >= 'A' && c <= 'Z';
}
bool IsLower(char c) {
  return c >= 'a' && c <= 'z';
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// An isotope distribution by number of extra neutrons. `mass` holds probability times mean mass
// offset, which adds under convolution as a probability does.
constexpr std::size_t kMostExtraNeutrons = 24;
struct Distribution {
  std::array<double, kMostExtraNeutrons + 1> probability{};
  std::array<double, kMostExtraNeutrons + 1> mass{};
};

Distribution WithOneMoreAtom(const Distribution& before, std::span<const Isotope> isotopes) {
  Distribution after;
  for (const Isotope& isotope : isotopes) {
    const auto shift = static_cast<std::size_t>(isotope.extra_neutrons);
    const double offset = isotope.mass_u - isotopes.front().mass_u;
    for (std::size_t i = shift; i <= kMostExtraNeutrons; ++i) {
      const double probability = before.probability[i - shift] * isotope.abundance;
      after.probability[i] += probability;
      after.mass[i] += before.mass[i - shift] * isotope.abundance + probability * offset;
    }
  }
  return after;
}

}  // namespace

Composition ParseFormula(std::string_view formula) {
  Composition composition;
  std::size_t at = 0;
  const auto fail = [&](std::string_view problem) {
    throw std::invalid_argument(
        fmt::format("formula '{}', position {}: {}", formula, at + 1, problem));
  };
  if (formula.empty()) fail("expected an element symbol");
  while (at < formula.size()) {
    if (!IsUpper(formula[at])) fail("expected an element symbol");
    const std::size_t symbol_length =
        at + 1 < formula.size() && IsLower(formula[at + 1]) ? std::size_t{2} : std::size_t{1};
    const std::string_view symbol = formula.substr(at, symbol_length);
    if (FindElement(symbol) == nullptr) {
      fail("expected one of the elements H C N O F Na Si P S");
    }
    at += symbol_length;
    const std::size_t digits_begin = at;
    int count = 0;
    while (at < formula.size() && IsDigit(formula[at])) {
      count = 10 * count + (formula[at] - '0');
      if (count > 10'000) fail("expected a count of at most 10000");
      ++at;
    }
    if (at == digits_begin) count = 1;
    if (count == 0) fail("expected a count of at least 1");
    composition[std::string(symbol)] += count;
  }
  return composition;
}

double FirstIsotopeMass(const Composition& composition) {
  double mass_u = -kElectronMassU;
  for (const auto& [symbol, count] : composition) {
    mass_u += count * IsotopesOf(symbol).front().mass_u;
  }
  return mass_u;
}

Composition AveragineComposition(double mass_u) {
  constexpr double kUnitMassU = 111.1254;
  constexpr std::array<std::pair<const char*, double>, 5> kAtomsPerUnit{
      {{"C", 4.9384}, {"H", 7.7583}, {"N", 1.3577}, {"O", 1.4773}, {"S", 0.0417}}};
  Composition composition;
  for (const auto& [symbol, atoms] : kAtomsPerUnit) {
    const int count = static_cast<int>(std::lround(atoms * mass_u / kUnitMassU));
    if (count > 0) composition[symbol] = count;
  }
  return composition;
}

std::vector<IsotopePeak> IsotopePattern(const Composition& composition,
                                        double smallest_relative_abundance) {
  Distribution distribution;
  distribution.probability[0] = 1.0;
  for (const auto& [symbol, count] : composition) {
    const std::span<const Isotope> isotopes = IsotopesOf(symbol);
    for (int atom = 0; atom < count; ++atom) {
      distribution = WithOneMoreAtom(distribution, isotopes);
    }
  }
  std::vector<IsotopePeak> pattern;
  for (std::size_t i = 0; i <= kMostExtraNeutrons; ++i) {
    const double probability = distribution.probability[i];
    const double relative = probability / distribution.probability[0];
    if (relative < smallest_relative_abundance || probability <= 0.0) continue;
    pattern.push_back({distribution.mass[i] / probability, relative});
  }
  return pattern;
}

}  // namespace tof::virtual_instrument

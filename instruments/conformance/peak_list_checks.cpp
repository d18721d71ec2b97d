#include <array>

#include "component/automation/number_text.h"
#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

constexpr PeakRecord kFirst{20'000.0, 1.0, 2.0, 3.0, 4.0, 500.0, 6.0, 7.0};
constexpr PeakRecord kSecond{30'000.0, 11.0, 12.0, 13.0, 14.0, 600.0, 16.0, 17.0};

std::shared_ptr<PeakList> NewList(Subject& subject) {
  return Given("InstrumentFactory.creates-library-objects", [&] {
    auto list = subject.parts.factory->CreatePeakList();
    Need(list).Initialize();
    return list;
  });
}

std::shared_ptr<PeakList> ListOfTwo(Subject& subject) {
  auto list = NewList(subject);
  list->Add(kFirst);
  list->Add(kSecond);
  return list;
}

void RequireCount(PeakList& list, std::int32_t count) {
  Require(list.Count() == count, std::to_string(count) + " records", std::to_string(list.Count()));
}

void RequireRecord(PeakList& list, std::int32_t index, const PeakRecord& expected) {
  const PeakRecord found = list.GetRecord(index);
  Require(found == expected,
          "record " + std::to_string(index) + " with all its eight numbers, position " +
              NumberText(expected.position) + " and height " + NumberText(expected.height),
          "position " + NumberText(found.position) + ", height " + NumberText(found.height));
}

void InitializeEmpties(Subject& subject) {
  const auto list = ListOfTwo(subject);
  list->Initialize();
  RequireCount(*list, 0);
}

void CountsWhatIsAdded(Subject& subject) {
  const auto list = NewList(subject);
  list->Add(kFirst);
  list->Add(kFirst);
  RequireCount(*list, 2);
}

void GivesRecordsBack(Subject& subject) {
  const auto list = ListOfTwo(subject);
  RequireRecord(*list, 0, kFirst);
  RequireRecord(*list, 1, kSecond);
}

void SetsARecord(Subject& subject) {
  const auto list = NewList(subject);
  list->Add(PeakRecord{});
  list->SetRecord(0, kSecond);
  RequireRecord(*list, 0, kSecond);
}

void IndexOutsideIsAnError(Subject& subject) {
  constexpr auto kSubscriptOutOfRange =
      static_cast<std::int32_t>(RunTimeError::kSubscriptOutOfRange);
  const auto list = ListOfTwo(subject);
  for (const std::int32_t index : {-1, 2}) {
    const auto error = ErrorRaisedBy([&] { list->GetRecord(index); });
    Require(error && error->number == kSubscriptOutOfRange,
            "error 9 for record " + std::to_string(index) + " of a list of two",
            error ? "error " + std::to_string(error->number) : std::string("a record"));
  }
}

void PreparingKeepsPeaks(Subject& subject) {
  const auto list = ListOfTwo(subject);
  list->PreparePeakList(5, 0);
  RequireCount(*list, 2);
  RequireNear("position of the first", list->GetRecord(0).position, kFirst.position, 0.0);
  RequireNear("position of the second", list->GetRecord(1).position, kSecond.position, 0.0);
}

constexpr std::array kChecks{
    Check{
        "PeakList", "initialize-empties",
        "A list is initialised before it is filled, also for a second time: it then holds nothing "
        "that was in it before.",
        InitializeEmpties},
    Check{"PeakList", "counts-what-is-added",
          "A list is sized by adding records, equal ones included: as many as were added.",
          CountsWhatIsAdded},
    Check{
        "PeakList", "gives-records-back",
        "Records come back by index from 0, in the order they were added, with all eight numbers.",
        GivesRecordsBack},
    Check{"PeakList", "sets-a-record",
          "Two searches are joined by writing their peaks over the records of a sized list.",
          SetsARecord},
    Check{"PeakList", "index-outside-is-an-error",
          "An index outside the list is error 9, \"Subscript out of range\", as for any array.",
          IndexOutsideIsAnError},
    Check{"PeakList", "preparing-keeps-peaks",
          "The result of a search is prepared with (5, 0): records with a height, in ascending "
          "time, are peaks and stay as they are.",
          PreparingKeepsPeaks},
};

}  // namespace

std::span<const Check> PeakListChecks() {
  return kChecks;
}

}  // namespace tof::conformance

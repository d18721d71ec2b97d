// What every object that stands on the tape in place of a real one does.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "hosts/recording/tape.h"

namespace tof::recording {

// Asks one object of the outside through a tape.
class TapedObject {
 public:
  TapedObject(Tape& tape, ObjectNumber number) : tape_(tape), number_(number) {}

  ObjectNumber number() const { return number_; }
  Tape& tape() const { return tape_; }

  // `real` is the operation on the real object; it runs when there is one. Its result as it stands
  // on the tape.
  template <class Real>
  std::invoke_result_t<Real> Ask(const char* operation, Json arguments, Real real) const {
    using Result = std::invoke_result_t<Real>;
    if constexpr (std::is_void_v<Result>) {
      tape_.Exchange({number_, operation, std::move(arguments)}, [&real](std::int64_t) {
        real();
        return Json();
      });
    } else {
      return Read<Result>(tape_.Exchange({number_, operation, std::move(arguments)},
                                         [&real](std::int64_t) { return Encoded(real()); }));
    }
  }

  // The same for an operation that gives an object, or none.
  template <class Taped, class Real>
  std::shared_ptr<Taped> AskObject(const char* operation, Json arguments, Real real) const {
    std::invoke_result_t<Real> inner;  // stays none in a replay
    const Json answer =
        tape_.Exchange({number_, operation, std::move(arguments)}, [&](std::int64_t number) {
          inner = real();
          return Encoded(ObjectNumber{inner ? number : 0});
        });
    const auto number = Read<ObjectNumber>(answer);
    if (number == ObjectNumber{}) return nullptr;
    return std::make_shared<Taped>(tape_, number, std::move(inner));
  }

  // The same for an operation with several results, each a member of the answer.
  template <class Real>
  Json AskMembers(const char* operation, Json arguments, Real real) const {
    return tape_.Exchange({number_, operation, std::move(arguments)}, real);
  }

  // A result, or the member of an answer that is one.
  template <class T>
  T Read(const Json& answer) const {
    try {
      return Decoded<T>(answer);
    } catch (const MalformedValue& error) {
      throw tape_.Refused(error);
    }
  }
  template <class T>
  T ReadMember(const Json& answer, const char* key) const {
    try {
      return DecodedMember<T>(answer, key);
    } catch (const MalformedValue& error) {
      throw tape_.Refused(error);
    }
  }

 private:
  Tape& tape_;
  ObjectNumber number_;
};

}  // namespace tof::recording

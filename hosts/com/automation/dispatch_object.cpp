#include "hosts/com/automation/dispatch_object.h"

#include <iterator>
#include <utility>

#include "hosts/com/automation/error_info.h"
#include "hosts/com/automation/variant_conversion.h"

namespace tof::com {
namespace {

constexpr std::int32_t kNoSuchName = 438;

std::vector<VARIANT> InCallOrder(OwnedVariant* arguments, std::size_t count) {
  // The last argument comes first. The copies own nothing.
  std::vector<VARIANT> reversed(count);
  for (std::size_t i = 0; i < count; ++i) reversed[count - 1 - i] = arguments[i].get();
  return reversed;
}

}  // namespace

DispatchObject::DispatchObject(ComPtr<IDispatch> object, std::string what)
    : object_(std::move(object)), what_(std::move(what)) {
  if (!object_) Raise(RunTimeError::kObjectVariableNotSet);
}

DISPID DispatchObject::IdOf(std::string_view name) {
  for (const auto& [known, id] : ids_) {
    if (known == name) return id;
  }
  std::wstring wide = Wide(name);
  LPOLESTR names = wide.data();
  DISPID id = DISPID_UNKNOWN;
  const HRESULT result = object_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
  if (result == DISP_E_UNKNOWNNAME || result == DISP_E_MEMBERNOTFOUND) {
    throw AutomationError(kNoSuchName, "Object doesn't support this property or method: " + what_ +
                                           " has no " + std::string(name));
  }
  Check(result);
  ids_.emplace_back(name, id);
  return id;
}

OwnedVariant DispatchObject::Invoke(std::string_view name, WORD kind, OwnedVariant* arguments,
                                    std::size_t count) {
  const DISPID id = IdOf(name);
  std::vector<VARIANT> reversed = InCallOrder(arguments, count);
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{};
  parameters.rgvarg = reversed.data();
  parameters.cArgs = static_cast<UINT>(count);
  if (kind == DISPATCH_PROPERTYPUT) {
    parameters.rgdispidNamedArgs = &put;
    parameters.cNamedArgs = 1;
  }
  OwnedVariant answer;
  EXCEPINFO exception{};
  const HRESULT result =
      object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                      kind == DISPATCH_PROPERTYPUT ? nullptr : answer.Out(), &exception, nullptr);
  if (result == DISP_E_EXCEPTION) throw TakeError(exception);
  Check(result);
  return answer;
}

OwnedVariant DispatchObject::GetProperty(std::string_view name) {
  return Invoke(name, DISPATCH_PROPERTYGET, nullptr, 0);
}

void DispatchObject::PutProperty(std::string_view name, OwnedVariant value) {
  Invoke(name, DISPATCH_PROPERTYPUT, &value, 1);
}

Variant AutomationLateBoundObject::GetProperty(std::string_view name) {
  return FromVariant(object_.GetProperty(name).get());
}

void AutomationLateBoundObject::PutProperty(std::string_view name, const Variant& value) {
  object_.PutProperty(name, ToVariant(value));
}

Variant AutomationLateBoundObject::Call(std::string_view method,
                                        const std::vector<Variant>& arguments) {
  std::vector<OwnedVariant> converted;
  converted.reserve(arguments.size());
  for (const Variant& argument : arguments) converted.push_back(ToVariant(argument));
  return FromVariant(object_.CallWith(method, std::move(converted)).get());
}

DispatchObject CreateDispatchObject(REFCLSID class_id, const std::string& what) {
  SetErrorInfo(0, nullptr);
  void* object = nullptr;
  const HRESULT result = CoCreateInstance(
      class_id, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch, &object);
  if (result == REGDB_E_CLASSNOTREG) {
    throw AutomationError(static_cast<std::int32_t>(RunTimeError::kCannotCreateObject),
                          std::string(DescriptionOf(RunTimeError::kCannotCreateObject)) + ": " +
                              what + " " + TextOf(class_id) + " is not registered");
  }
  if (FAILED(result)) throw ErrorLeftBy(result);
  return {ComPtr<IDispatch>::Adopt(static_cast<IDispatch*>(object)), what};
}

DispatchObject CreateDispatchObject(const std::string& prog_id) {
  CLSID class_id{};
  if (FAILED(CLSIDFromProgID(Wide(prog_id).c_str(), &class_id))) {
    throw AutomationError(static_cast<std::int32_t>(RunTimeError::kCannotCreateObject),
                          std::string(DescriptionOf(RunTimeError::kCannotCreateObject)) + ": " +
                              prog_id + " is not registered");
  }
  return CreateDispatchObject(class_id, prog_id);
}

}  // namespace tof::com

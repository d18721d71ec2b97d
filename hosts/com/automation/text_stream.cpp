#include "hosts/com/automation/text_stream.h"

#include "component/automation/convert.h"
#include "hosts/com/automation/variant_conversion.h"

namespace tof::com {
namespace {

constexpr std::int32_t kForAppending = 8;  // of the scripting file system's OpenTextFile
constexpr std::int32_t kSingleByte = 0;

std::shared_ptr<TextStream> StreamOf(const OwnedVariant& answer) {
  return std::make_shared<AutomationTextStream>(
      DispatchObject(ObjectIn(answer.get()), "the text file"));
}

}  // namespace

AutomationTextStream::~AutomationTextStream() {
  try {
    Close();
  } catch (...) {
    // Nothing may leave a destructor; the object is released all the same.
  }
}

void AutomationTextStream::WriteLine(std::string_view text) {
  if (closed_) Raise(RunTimeError::kObjectVariableNotSet);
  object_.Call("WriteLine", text);
}

void AutomationTextStream::Close() {
  if (closed_) return;
  closed_ = true;
  object_.Call("Close");
}

bool ScriptingFileSystem::FileExists(const std::string& path) {
  return ToBool(FromVariant(object_.Call("FileExists", path).get()));
}

std::shared_ptr<TextStream> ScriptingFileSystem::OpenForAppending(const std::string& path) {
  return StreamOf(object_.Call("OpenTextFile", path, kForAppending, true, kSingleByte));
}

std::shared_ptr<TextStream> ScriptingFileSystem::CreateTextFile(const std::string& path) {
  constexpr bool kOverwrite = true;
  constexpr bool kUnicode = false;
  return StreamOf(object_.Call("CreateTextFile", path, kOverwrite, kUnicode));
}

}  // namespace tof::com

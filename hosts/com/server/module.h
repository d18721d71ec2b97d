// The DLL or program that this code is linked into.
#pragma once

#include <string>

#include "hosts/com/automation/com_ptr.h"

namespace tof::com {

// How many objects of this module are alive, and how many locks clients hold on it. With none the
// module may be unloaded.
long ModuleReferences();

// Keeps the module loaded while it lives.
class ModuleReference {
 public:
  ModuleReference();
  ~ModuleReference();
  ModuleReference(const ModuleReference&) = delete;
  ModuleReference& operator=(const ModuleReference&) = delete;
};

// For IClassFactory::LockServer.
void LockModule(bool lock);

HMODULE ThisModule();
std::wstring ModulePath();

// A type library embedded in this module as resource `number`, from 1 on; none when there is no
// such resource.
ComPtr<ITypeLib> EmbeddedTypeLibrary(int number);

// What it is loaded and registered by: the module's path, a backslash, the number.
std::wstring EmbeddedTypeLibraryName(int number);

// The description of an interface or class in one of the embedded type libraries. Raises when none
// has it.
ComPtr<ITypeInfo> EmbeddedTypeInfo(REFGUID guid);

}  // namespace tof::com

// A reference to a COM object, counted.
#pragma once

#include <utility>

#include "hosts/com/automation/windows_headers.h"

namespace tof::com {

template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  // Adds a reference of its own.
  explicit ComPtr(T* object) : object_(object) {
    if (object_ != nullptr) object_->AddRef();
  }
  ComPtr(const ComPtr& other) : ComPtr(other.object_) {}
  ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComPtr() {
    if (object_ != nullptr) object_->Release();
  }

  // Takes over a reference that somebody else counted.
  static ComPtr Adopt(T* object) {
    ComPtr pointer;
    pointer.object_ = object;
    return pointer;
  }

  T* get() const { return object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

  // For a function that gives out a counted reference; the present one is released first.
  T** Out() {
    *this = ComPtr();
    return &object_;
  }
  // Gives the reference away, to be released by whoever takes it.
  T* Detach() { return std::exchange(object_, nullptr); }

  // The object's other interface, none when it has not got it.
  template <class U>
  ComPtr<U> As() const {
    void* other = nullptr;
    if (object_ == nullptr || FAILED(object_->QueryInterface(__uuidof(U), &other))) return {};
    return ComPtr<U>::Adopt(static_cast<U*>(other));
  }

 private:
  T* object_ = nullptr;
};

}  // namespace tof::com

// Function objects: what a signal calls. A connection owns one on the heap; the typed forms differ only in
// the arguments of `call`.
#pragma once

#include "Base/qvBase.h"

#include <utility>

namespace qvRTB {

/// A callback of any arguments, as a signal stores it. Destroyed by the signal that it was given to, and
/// never while it runs. Virtual order is part of the interface.
class QV_BASE_API FunctionBase {
public:
  FunctionBase() = default;
  FunctionBase(const FunctionBase&) = delete;
  FunctionBase& operator=(const FunctionBase&) = delete;
  virtual ~FunctionBase();

  /// Whether this calls the free function at `function`; false unless overridden.
  [[nodiscard]] virtual bool isGlobalFunction(void* function);
  /// Whether this calls into the object at `instance`; false unless overridden.
  [[nodiscard]] virtual bool isInstance(void* instance);
};

/// A callback that takes `Args`.
template <class... Args>
class Function : public FunctionBase {
public:
  virtual void call(Args... args) = 0;
};

/// Calls a free function.
template <class... Args>
class FunctionGlobal final : public Function<Args...> {
public:
  using Pointer = void (*)(Args...);

  /// `function` is not null.
  explicit FunctionGlobal(Pointer function) noexcept : function_(function) {}

  bool isGlobalFunction(void* function) override { return function == reinterpret_cast<void*>(function_); }
  void call(Args... args) override { function_(std::forward<Args>(args)...); }

private:
  Pointer function_;
};

/// Calls a member function of an object, which must outlive the connection.
template <class T, class... Args>
class FunctionMember final : public Function<Args...> {
public:
  using Member = void (T::*)(Args...);

  /// Neither is null. `isInstance` compares with `object` as it is given here.
  FunctionMember(T* object, Member member) noexcept : object_(object), member_(member) {}

  bool isInstance(void* instance) override { return instance == static_cast<void*>(object_); }
  void call(Args... args) override { (object_->*member_)(std::forward<Args>(args)...); }

private:
  T* object_;
  Member member_;
};

/// Calls whatever can be called, a lambda for one. It answers neither question about its target.
template <class F, class... Args>
class FunctionCallable final : public Function<Args...> {
public:
  explicit FunctionCallable(F callable) : callable_(std::move(callable)) {}

  void call(Args... args) override { callable_(std::forward<Args>(args)...); }

private:
  F callable_;
};

using FunctionVoid = Function<>;
using FunctionVoidGlobal = FunctionGlobal<>;
template <class T>
using FunctionVoidMember = FunctionMember<T>;

template <class Arg>
using FunctionArg = Function<Arg>;
template <class Arg>
using FunctionArgGlobal = FunctionGlobal<Arg>;
template <class T, class Arg>
using FunctionArgMember = FunctionMember<T, Arg>;

template <class A, class B, class C>
using Function3Args = Function<A, B, C>;
template <class A, class B, class C>
using Function3ArgsGlobal = FunctionGlobal<A, B, C>;
template <class T, class A, class B, class C>
using Function3ArgsMember = FunctionMember<T, A, B, C>;

} // namespace qvRTB

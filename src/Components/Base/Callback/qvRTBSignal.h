// The typed signals. Connect with `connect` or, with a function object of your own, `addCallback`; call all
// slots with `emit`, the newest connection first.
#pragma once

#include "Base/Callback/qvRTBFunction.h"
#include "Base/Callback/qvRTBSignalBase.h"

#include <concepts>
#include <utility>

namespace qvRTB {

/// A signal whose slots take `Args`. Every `connect` returns the connection, costs two allocations, and takes
/// a client as its last argument where the connection is to be cut with that client.
///
/// A slot may cut any connection, connect new slots (called from the next emit on), emit the signal again and
/// destroy the signal or a client. An emit allocates nothing and takes no lock.
template <class... Args>
class Signal : public SignalBase {
public:
  /// Takes ownership of `function`.
  Connection* addCallback(Function<Args...>* function) { return SignalBase::addCallback(function); }
  Connection* addCallback(Function<Args...>* function, SignalClient& client) {
    return SignalBase::addCallback(function, client);
  }

  /// Connects a free function, not null.
  Connection* connect(void (*function)(Args...)) {
    return addCallback(new FunctionGlobal<Args...>(function));
  }
  Connection* connect(void (*function)(Args...), SignalClient& client) {
    return addCallback(new FunctionGlobal<Args...>(function), client);
  }

  /// Connects a member function of `object`; neither is null.
  template <class T, class Base>
  Connection* connect(T* object, void (Base::*member)(Args...)) {
    return addCallback(new FunctionMember<T, Args...>(object, member));
  }
  template <class T, class Base>
  Connection* connect(T* object, void (Base::*member)(Args...), SignalClient& client) {
    return addCallback(new FunctionMember<T, Args...>(object, member), client);
  }

  /// Connects anything that can be called, of which it keeps a copy.
  template <class F>
  requires std::invocable<F&, Args...> Connection* connect(F callable) {
    return addCallback(new FunctionCallable<F, Args...>(std::move(callable)));
  }
  template <class F>
  requires std::invocable<F&, Args...> Connection* connect(F callable, SignalClient& client) {
    return addCallback(new FunctionCallable<F, Args...>(std::move(callable)), client);
  }

  /// Calls every slot that is neither cut nor blocked.
  void emit(Args... args) const {
    emitWith([&](FunctionBase& function) { static_cast<Function<Args...>&>(function).call(args...); });
  }
};

class SignalVoid : public Signal<> {};

template <class Arg>
class SignalArg : public Signal<Arg> {};

template <class A, class B, class C>
class Signal3Args : public Signal<A, B, C> {};

} // namespace qvRTB

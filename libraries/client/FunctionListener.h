#pragma once

#include <atomic>
#include <functional>
#include <utility>

#include "CComPtr.h"
#include "IVorCvar.h"
#include "IVorCvarEventSink.h"

namespace cvars {

/// What a listener does: called as OnCvarNotify is.
using ListenerFunction = std::function<HRESULT(IVorCvar* source, NOTIFYTYPE what)>;

/// A listener that calls a function.
class FunctionListener final : public IVorCvarEventSink {
 public:
  /// Makes a listener with one reference. @param function  copied; must not be empty.
  static CComPtr<FunctionListener> Create(ListenerFunction function) {
    CComPtr<FunctionListener> listener;
    listener.Attach(new FunctionListener(std::move(function)));
    return listener;
  }

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IVorCvarEventSink) return E_NOINTERFACE;
    *object = static_cast<IVorCvarEventSink*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }
  ULONG Release() override {
    const ULONG left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) delete this;
    return left;
  }
  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override {
    return m_function(source, what);
  }

 private:
  explicit FunctionListener(ListenerFunction function) : m_function(std::move(function)) {}
  ~FunctionListener() = default;

  const ListenerFunction m_function;
  std::atomic<ULONG> m_references{1};
};

/// Listens to a cvar for as long as this lives.
///
/// A notification that is under way on another thread may still call the function after this is
/// gone: what the function uses must live until then, or be held by it.
class ScopedListener {
 public:
  /// @param cvar      held by reference.
  /// @param function  copied; must not be empty.
  ScopedListener(IVorCvar* cvar, ListenerFunction function)
      : m_cvar(cvar), m_listener(FunctionListener::Create(std::move(function))) {
    (void)m_cvar->AttachCvarEventSink(m_listener);  // a new listener is attached in every case
  }
  ~ScopedListener() {
    (void)m_cvar->DetachCvarEventSink(m_listener);  // fails when somebody else detached it
  }
  ScopedListener(const ScopedListener&) = delete;
  ScopedListener& operator=(const ScopedListener&) = delete;

 private:
  CComPtr<IVorCvar> m_cvar;
  CComPtr<FunctionListener> m_listener;
};

}  // namespace cvars

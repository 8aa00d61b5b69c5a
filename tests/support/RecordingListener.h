#pragma once

#include <atomic>
#include <functional>
#include <utility>
#include <vector>

#include "CComPtr.h"
#include "IVorCvar.h"
#include "IVorCvarEventSink.h"

namespace cvars::test {

/// A listener that keeps what it is told, and answers or does what a test wants.
class RecordingListener final : public IVorCvarEventSink {
 public:
  static CComPtr<RecordingListener> Create(HRESULT answer = S_OK) {
    CComPtr<RecordingListener> listener;
    listener.Attach(new RecordingListener(answer));
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
  ULONG AddRef() override { return ++m_references; }
  ULONG Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }
  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override {
    masks.push_back(what);
    if (onNotify) onNotify(source, what);
    return answer;
  }

  ULONG References() const { return m_references; }
  /// The masks since the last call.
  std::vector<NOTIFYTYPE> TakeMasks() { return std::exchange(masks, {}); }

  /// What it was told, in order.
  std::vector<NOTIFYTYPE> masks;
  /// What it answers.
  HRESULT answer;
  /// Runs inside each call.
  std::function<void(IVorCvar*, NOTIFYTYPE)> onNotify;

 private:
  explicit RecordingListener(HRESULT result) : answer(result) {}
  ~RecordingListener() = default;

  std::atomic<ULONG> m_references{1};
};

/// An object that is no listener.
class PlainObject final : public IUnknown {
 public:
  static CComPtr<IUnknown> Create() {
    CComPtr<IUnknown> object;
    object.Attach(new PlainObject);
    return object;
  }
  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown) return E_NOINTERFACE;
    *object = static_cast<IUnknown*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++m_references; }
  ULONG Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }

 private:
  PlainObject() = default;
  ~PlainObject() = default;

  std::atomic<ULONG> m_references{1};
};

}  // namespace cvars::test

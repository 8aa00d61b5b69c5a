#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "CComPtr.h"
#include "IVorCvar.h"
#include "IVorCvarEventSink.h"
#include "platform/ComponentModule.h"

namespace cvars::test {

/// A listener that keeps what it is told, and answers or does what a test wants.
class RecordingListener final
    : public platform::Component<platform::Offers<IVorCvarEventSink, IID_IVorCvarEventSink>> {
 public:
  static CComPtr<RecordingListener> Create(HRESULT answer = S_OK) {
    CComPtr<RecordingListener> listener;
    listener.Attach(new RecordingListener(answer));
    return listener;
  }

  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override {
    masks.push_back(what);
    if (onNotify) onNotify(source, what);
    return answer;
  }

  ULONG References() {
    AddRef();
    return Release();
  }
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
};

/// An object that is no listener.
class PlainObject final : public platform::Component<platform::Offers<IUnknown, IID_IUnknown>> {
 public:
  static CComPtr<IUnknown> Create() {
    CComPtr<IUnknown> object;
    object.Attach(new PlainObject);
    return object;
  }
};

}  // namespace cvars::test

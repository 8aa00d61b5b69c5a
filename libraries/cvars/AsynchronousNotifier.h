#pragma once

#include <mutex>

#include "CComPtr.h"
#include "IVorAsynchronousCvarNotifier.h"
#include "platform/ThreadSafety.h"

namespace cvars {

/// Keeps one asynchronous notifier, made when it is first asked for.
class AsynchronousNotifier {
 public:
  /// The one of the process.
  static AsynchronousNotifier& OfProcess();

  AsynchronousNotifier() = default;
  /// Stops the notifier: no delivery may be under way when the code that it runs goes.
  ~AsynchronousNotifier();
  AsynchronousNotifier(const AsynchronousNotifier&) = delete;
  AsynchronousNotifier& operator=(const AsynchronousNotifier&) = delete;

  /// @param notifier  receives the notifier with one reference; null on failure.
  /// @return the failure of its creation, or S_OK
  HRESULT Get(IVorAsynchronousCvarNotifier** notifier);

 private:
  std::mutex m_lock;
  CComPtr<IVorAsynchronousCvarNotifier> m_notifier;  // guarded by m_lock
};

}  // namespace cvars

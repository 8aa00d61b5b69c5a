#include "AsynchronousNotifier.h"

#include <utility>

#include "platform/Components.h"

namespace cvars {

AsynchronousNotifier& AsynchronousNotifier::OfProcess() {
  static AsynchronousNotifier notifier;
  return notifier;
}

AsynchronousNotifier::~AsynchronousNotifier() {
  if (m_notifier != nullptr) (void)m_notifier->Stop();  // S_FALSE when it is stopped already
}

HRESULT AsynchronousNotifier::Get(IVorAsynchronousCvarNotifier** notifier) {
  if (notifier == nullptr) return E_POINTER;
  *notifier = nullptr;
  CComPtr<IVorAsynchronousCvarNotifier> found;
  {
    const std::lock_guard guard(m_lock);
    found = m_notifier;
  }
  if (found == nullptr) {
    const HRESULT made = platform::CreateComponent(L"Vortana.AsynchronousCvarNotifier",
                                                   IID_IVorAsynchronousCvarNotifier,
                                                   reinterpret_cast<void**>(&found));
    if (FAILED(made)) return made;
    // Another thread may have stored one meanwhile: the newer replaces it, and it goes outside the
    // lock, when its last user lets it go.
    CComPtr<IVorAsynchronousCvarNotifier> stored = found;
    {
      const std::lock_guard guard(m_lock);
      std::swap(m_notifier, stored);
    }
  }
  *notifier = found.Detach();
  return S_OK;
}

}  // namespace cvars

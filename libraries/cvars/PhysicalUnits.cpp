#include "PhysicalUnits.h"

#include <atomic>
#include <mutex>

#include "CComBSTR.h"
#include "platform/Components.h"

namespace cvars {
namespace {

std::mutex serviceLock;
/// Written once, under the lock; its reference is never given back.
std::atomic<IVorPhysicalUnit*> service = nullptr;

}  // namespace

IVorPhysicalUnit* PhysicalUnitService() {
  if (IVorPhysicalUnit* made = service.load(std::memory_order_acquire)) return made;
  const std::lock_guard guard(serviceLock);
  if (IVorPhysicalUnit* made = service.load(std::memory_order_relaxed)) return made;
  void* object = nullptr;
  if (FAILED(platform::CreateComponent(L"Vortana.PhysicalUnit", IID_IVorPhysicalUnit, &object)))
    return nullptr;
  auto* const made = static_cast<IVorPhysicalUnit*>(object);
  service.store(made, std::memory_order_release);
  return made;
}

HRESULT ValidateUnit(const wchar_t* unit) {
  IVorPhysicalUnit* const units = PhysicalUnitService();
  if (units == nullptr) return E_INVALIDARG;
  VARIANT_BOOL valid = VARIANT_FALSE;
  const HRESULT result = units->IsValidUnit(unit == nullptr ? L"" : unit, &valid);
  if (FAILED(result)) return result;
  return valid != VARIANT_FALSE ? S_OK : E_INVALIDARG;
}

HRESULT ScreenUnit(const wchar_t* remoteUnit, std::wstring* screen) {
  IVorPhysicalUnit* const units = PhysicalUnitService();
  if (units == nullptr) return E_INVALIDARG;
  CComBSTR text;
  const HRESULT result = units->GetScreenUnit(remoteUnit == nullptr ? L"" : remoteUnit, 0, &text);
  if (FAILED(result)) return result;
  screen->assign(text.View());
  return S_OK;
}

}  // namespace cvars

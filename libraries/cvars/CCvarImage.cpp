#include "CCvarImage.h"

#include <limits>
#include <new>
#include <vector>

#include "CComPtr.h"
#include "SignatureText.h"
#include "platform/Bitmap.h"

template class IVorCvarImpl<CCvarImage, IVorCvarImage, CComBSTR>;

namespace {

constexpr wchar_t kPlaceholder[] = L"<image>";
constexpr wchar_t kRemotePlaceholder[] = L"<IMAGE>";
constexpr WORD kPixelBits = 16;

}  // namespace

CCvarImage::CCvarImage() {
  m_adapted = kPlaceholder;
  m_default = kPlaceholder;
  m_requested = kPlaceholder;
}

CCvarImage::~CCvarImage() { Replace(nullptr); }

void CCvarImage::Initialize(const wchar_t* name, unsigned int bitmapResourceId, CVARFLAGS flags,
                            const wchar_t* guiHints, unsigned int helpStringID,
                            CVARREPLICATIONFLAGS replicationFlags) {
  const cvars::SilentScope silence(*this);
  SetGuiHints(guiHints);
  SetName(name);
  StoreHelpStringID(helpStringID);
  SetReplicationFlags(replicationFlags);
  (void)LoadFromBitmapResource(bitmapResourceId);  // a missing bitmap leaves none
  SetFlags(static_cast<long>(flags));
}

// Bitmap
// ---------------------------------------------------------------------------------------------

void CCvarImage::Replace(HBITMAP bitmap) {
  const HBITMAP old = m_bitmap;
  m_bitmap = bitmap;
  if (old != nullptr && old != bitmap) DeleteObject(old);
}

HRESULT CCvarImage::GetBitmapHandle(HBITMAP* bitmap) {
  if (bitmap == nullptr) return E_POINTER;
  PerformLateUpdate();
  *bitmap = m_bitmap;
  return S_OK;
}

HRESULT CCvarImage::LoadFromBitmapResource(unsigned int id) {
  Replace(nullptr);
  HINSTANCE module = nullptr;
  if (SUCCEEDED(GetParentModuleInstanceHandle(&module))) {
    Replace(static_cast<HBITMAP>(LoadImage(module, MAKEINTRESOURCE(static_cast<WORD>(id)),
                                           IMAGE_BITMAP, 0, 0, LR_DEFAULTCOLOR)));
  }
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarImage::LoadFromFile(const wchar_t* path) {
  Replace(nullptr);
  Replace(static_cast<HBITMAP>(LoadImage(nullptr, path, IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE)));
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarImage::LoadFromHandle(HBITMAP bitmap) {
  Replace(bitmap);
  return UpdateAdaptedValueAndNotify();
}

HRESULT CCvarImage::CreateBitmap(int width, int height, HBITMAP* bitmap) {
  if (bitmap == nullptr) return E_POINTER;
  *bitmap = nullptr;
  if (width < 1 || height < 1 || width > std::numeric_limits<LONG>::max() / 2) return E_FAIL;
  std::vector<WORD> pixels;
  try {
    pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0);
  } catch (const std::exception&) {
    return E_FAIL;
  }
  Replace(nullptr);
  BITMAP description = {0, width, height, width * 2, 1, kPixelBits, pixels.data()};
  const HBITMAP made = CreateBitmapIndirect(&description);
  if (made == nullptr) return E_FAIL;
  Replace(made);
  *bitmap = made;
  m_width = width;
  m_height = height;
  m_bits = pixels.front();  // the first pixel, not the depth
  return UpdateAdaptedValueAndNotify();
}

// Value
// ----------------------------------------------------------------------------------------------

HRESULT CCvarImage::get_Value(VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  PerformLateUpdate();
  (void)VariantClear(value);
  return CComVariant(kPlaceholder).Detach(value);
}

HRESULT CCvarImage::GetAdaptedValueNorm(double* position) {
  return position == nullptr ? E_POINTER : E_NOTIMPL;
}

HRESULT CCvarImage::GetAdaptedValueStringScreen(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  PerformLateUpdate();
  return cvars::CopyOut(kPlaceholder, text);
}

HRESULT CCvarImage::GetAdaptedValueStringRemote(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  PerformLateUpdate();
  return cvars::CopyOut(kRemotePlaceholder, text);
}

HRESULT CCvarImage::get_Signature(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  CComBSTR adapted;
  if (FAILED(GetAdaptedValueStringRemote(&adapted))) adapted = L"???";
  return cvars::CopyOut(cvars::SignatureText(kTypeName)
                            .Add(L"Adapt", adapted.View())
                            .Add(L"Flags", GetFlagsString())
                            .AddInteger(L"Width", m_width)
                            .AddInteger(L"Height", m_height)
                            .AddInteger(L"Bits", m_bits)
                            .Text(),
                        text);
}

HRESULT CCvarImage::FillCvarPropertiesMap(cvars::PropertiesMap& map) {
  const HRESULT filled = IVorCvarImpl::FillCvarPropertiesMap(map);
  if (FAILED(filled)) return filled;
  map.SetText(L"AdaptedValue", kPlaceholder);
  map.Set(L"Width", CComVariant(m_width.Get()));
  map.Set(L"Height", CComVariant(m_height.Get()));
  map.Set(L"Bits", CComVariant(static_cast<int>(m_bits.Get())));
  return S_OK;
}

// Replication
// ------------------------------------------------------------------------------------------

HRESULT CCvarImage::OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) {
  constexpr NOTIFYTYPE kValues = NOTIFY_VALUE | NOTIFY_REQUESTED;
  CComPtr<IVorCvarImage> theirs;
  if (source != nullptr) {
    (void)source->QueryInterface(IID_IVorCvarImage, reinterpret_cast<void**>(&theirs));
  }
  if (theirs == nullptr) return IVorCvarImpl::OnCvarNotify(source, what);
  if ((ReplicationFlags() & (REPLICATE_VALUE | REPLICATE_REQUESTED)) != 0 &&
      (what & kValues) != 0) {
    HBITMAP bitmap = nullptr;
    if (SUCCEEDED(theirs->GetBitmapHandle(&bitmap))) {
      Replace(static_cast<HBITMAP>(CopyImage(bitmap, IMAGE_BITMAP, 0, 0, LR_DEFAULTCOLOR)));
    }
  }
  return IVorCvarImpl::OnCvarNotify(source, what & ~kValues);
}

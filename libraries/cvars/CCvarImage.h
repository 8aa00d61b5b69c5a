#pragma once

#include "CvarImpl.h"
#include "IVorCvarImage.h"

/// A picture, such as one shown beside a control.
///
/// The cvar owns its bitmap and deletes it when another one takes its place. A picture has no text:
/// every value reads "<image>" and none can be written. Width, height and bits are those of the
/// last CreateBitmap; loading leaves them as they were, which is meant. Nothing is locked: callers
/// serialise their use.
class CVARS_API CCvarImage : public IVorCvarImpl<CCvarImage, IVorCvarImage, CComBSTR> {
 public:
  static constexpr const wchar_t* kTypeName = L"Image";

  using IVorCvarImpl::GetAdaptedValueNorm;

  /// Names and configures the cvar and loads a bitmap of the parent's module; tells nobody.
  /// @param guiHints  copied; null clears the hints.
  void Initialize(const wchar_t* name, unsigned int bitmapResourceId, CVARFLAGS flags,
                  const wchar_t* guiHints, unsigned int helpStringID,
                  CVARREPLICATIONFLAGS replicationFlags);

  /// Runs a late update, then gives the handle.
  HRESULT GetBitmapHandle(HBITMAP* bitmap) override;
  // Each of these sets NOTIFY_VALUE, whether a bitmap could be loaded or not; one that could not
  // leaves no bitmap. The result is that of the notification.
  /// @param id  the low 16 bits are the number of a bitmap in the parent's module.
  HRESULT LoadFromBitmapResource(unsigned int id) override;
  /// @param path  borrowed; a path of the platform to a BMP file.
  HRESULT LoadFromFile(const wchar_t* path) override;
  /// @param bitmap  taken over; null for none.
  HRESULT LoadFromHandle(HBITMAP bitmap) override;
  /// Makes a black bitmap of 16 bits a pixel.
  ///
  /// The number of bits that the cvar shows afterwards is the first pixel, 0, which is meant.
  /// @param[out] bitmap  borrowed; null on failure.
  /// @retval E_POINTER  bitmap is null
  /// @retval E_FAIL     a size below 1, or more pixels than there is memory for, and the old bitmap
  ///                    stays; or the bitmap of the pixels cannot be made, and none stays
  HRESULT CreateBitmap(int width, int height, HBITMAP* bitmap) override;

  HRESULT get_Value(VARIANT* value) override;
  HRESULT put_Value(VARIANT) override { return E_NOTIMPL; }
  HRESULT SetRequestedValueFromString(const wchar_t*) override { return E_NOTIMPL; }
  HRESULT SetRequestedValueNorm(double) override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueNorm(double* position) override;
  HRESULT Increment(int) override { return E_NOTIMPL; }
  HRESULT SetToDefault() override { return E_NOTIMPL; }
  HRESULT GetAdaptedValueStringScreen(BSTR* text) override;
  HRESULT GetAdaptedValueStringRemote(BSTR* text) override;
  HRESULT get_Signature(BSTR* text) override;
  /// Takes a copy of the source's bitmap when the replication flags ask for values; sends nothing
  /// of its own for it, so that a two-way pair ends.
  HRESULT OnCvarNotify(IVorCvar* source, NOTIFYTYPE what) override;

  HRESULT UpdateAdaptedValueAndNotify() override { return Notify(NOTIFY_VALUE); }

 protected:
  CCvarImage();
  ~CCvarImage();

  HRESULT FillCvarPropertiesMap(cvars::PropertiesMap& map) override;

 private:
  void Replace(HBITMAP bitmap);

  cvars::Relaxed<HBITMAP> m_bitmap{nullptr};  // owned
  cvars::Relaxed<int> m_width{0};
  cvars::Relaxed<int> m_height{0};
  cvars::Relaxed<unsigned short> m_bits{0};
};

extern template class IVorCvarImpl<CCvarImage, IVorCvarImage, CComBSTR>;

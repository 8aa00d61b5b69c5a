#pragma once

#include "CvarBoundedTextImpl.h"
#include "IVorCvarString.h"

/// A free text, such as a label or a comment, cut to a maximum length; 16 characters at first.
///
/// The values are kept under the object lock, so any thread may read and write them.
class CVARS_API CCvarString : public CvarBoundedTextImpl<CCvarString, IVorCvarString> {
 public:
  static constexpr const wchar_t* kTypeName = L"String";

 protected:
  CCvarString();
  ~CCvarString() = default;
};

extern template class IVorCvarImpl<CCvarString, IVorCvarString, CComBSTR>;
extern template class CvarTextImpl<CCvarString, IVorCvarString>;
extern template class CvarBoundedTextImpl<CCvarString, IVorCvarString>;

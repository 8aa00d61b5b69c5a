#pragma once

#include <utility>

#include "CComBSTR.h"

/// Owning string that the text cvars hand out and the developer event log takes. It goes wherever a
/// client's own string does.
class CVARS_API CVorComBSTR : public CComBSTR {
 public:
  using CComBSTR::CComBSTR;
  using CComBSTR::operator=;
  CVorComBSTR() noexcept = default;
  CVorComBSTR(const OwnedBstr& other) : CComBSTR(other) {}
  CVorComBSTR(CComBSTR&& other) noexcept : CComBSTR(std::move(other)) {}
};

#pragma once

#include "OwnedBstr.h"

/// Owning string of a client: a `BSTR` that is copied with it and freed with it.
class CVARS_API CComBSTR : public cvars::OwnedBstr {
 public:
  using OwnedBstr::OwnedBstr;
  using OwnedBstr::operator=;
  CComBSTR() noexcept = default;
  CComBSTR(const OwnedBstr& other) : OwnedBstr(other) {}
};

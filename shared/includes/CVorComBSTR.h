#pragma once

#include "OwnedBstr.h"

/// Owning string that the cvars hand out and the developer event log takes.
class CVorComBSTR : public cvars::OwnedBstr {
 public:
  using OwnedBstr::OwnedBstr;
  using OwnedBstr::operator=;
  CVorComBSTR() noexcept = default;
  CVorComBSTR(const OwnedBstr& other) : OwnedBstr(other) {}
};

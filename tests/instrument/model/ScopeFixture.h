#pragma once

#include "instrument/model/Oscilloscope.h"
#include "instrument/remote/StandardCommands.h"
#include "tests/instrument/remote/SessionFixture.h"
#include "tests/support/KnownNotifier.h"

namespace cvars::model {

/// The oscilloscope as its remote clients see it.
class ScopeFixture : public remote::SessionFixture {
 protected:
  ScopeFixture() {
    remote::AddStandardCommands(m_table);
    m_device.reset = [this] { m_scope.Reset(); };
    for (const CComPtr<CCvarBag>& bag : m_scope.Bags()) AddBag(*bag);
  }

 private:
  // The process keeps the notifier that is there first; the scope would make one.
  [[maybe_unused]] IVorAsynchronousCvarNotifier* const m_notifier = test::KnownNotifier();

 protected:
  Oscilloscope m_scope;
};

}  // namespace cvars::model

#include "instrument/model/WindowScale.h"

#include <stdexcept>

#include "instrument/model/DoubleCvars.h"

namespace cvars::model {
namespace {

constexpr DoubleRow kWindowScale = {L"Window Scale", 1e-3, 1e-9, 100, -3, L"S"};
constexpr NOTIFYTYPE kEverything = static_cast<NOTIFYTYPE>(0xFFFFFFFFu);

}  // namespace

WindowScale::WindowScale(CCvarBag& horizontal)
    : m_scale(MakeDoubleCvar(kWindowScale)), m_main(horizontal.Find(L"Scale")) {
  if (m_main == nullptr || horizontal.Add(m_scale) != S_OK) {
    throw std::logic_error("the window's scale does not fit into the bag");
  }
  m_scale->SetReplicationFlags(REPLICATE_VALUE);  // the steps of the main scale
}

void WindowScale::SetTracks(bool tracks) {
  if (tracks == m_tracks) return;
  m_tracks = tracks;
  if (!tracks) {
    (void)m_scale->StopCvarReplication(m_main);  // the main scale is there for as long as this
    return;
  }
  // Both have the same range, so that the first copy cannot be refused.
  (void)m_scale->StartCvarReplication(m_main, REPLICATIONCONNECTION_SYNCHRONOUS,
                                      REPLICATIONCONNECTION_NONE, REPLICATIONCOPY_FROM_OTHER,
                                      kEverything);
}

}  // namespace cvars::model

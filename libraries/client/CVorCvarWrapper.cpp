#include "CVorCvarWrapper.h"

#include "DeveloperEvents.h"

HRESULT CVorCvarWrapper::Report(HRESULT result) const {
  if (FAILED(result)) cvars::ReportDeveloperEvent(cvars::WrapperFailure(result, m_cvar));
  return result;
}

// What components compiled apart rely on: slot order of their interfaces.

#include <gtest/gtest.h>

#include <cstddef>

#include "CvarBag.h"
#include "IVorAsynchronousCvarNotifier.h"
#include "IVorCvarEventSink.h"
#include "IVorEventLog.h"
#include "IVorEventLogMgr.h"
#include "IVorMessageBox.h"
#include "IVorPhysicalUnit.h"
#include "IVorRegExp.h"
#include "IVorTattlerClient.h"
#include "SlotOf.h"
#include "Unknown.h"

namespace {

#define EXPECT_SLOT(slot, function) \
  EXPECT_EQ(cvars::test::SlotOf(&function), std::size_t{slot}) << #function

TEST(ComponentInterface, SlotsOfIUnknown) {
  EXPECT_SLOT(0, IUnknown::QueryInterface);
  EXPECT_SLOT(1, IUnknown::AddRef);
  EXPECT_SLOT(2, IUnknown::Release);
}

TEST(ComponentInterface, SlotsOfIDispatch) {
  EXPECT_SLOT(3, IDispatch::GetTypeInfoCount);
  EXPECT_SLOT(4, IDispatch::GetTypeInfo);
  EXPECT_SLOT(5, IDispatch::GetIDsOfNames);
  EXPECT_SLOT(6, IDispatch::Invoke);
}

TEST(ComponentInterface, SlotsOfIClassFactory) {
  EXPECT_SLOT(3, IClassFactory::CreateInstance);
  EXPECT_SLOT(4, IClassFactory::LockServer);
}

TEST(ComponentInterface, SlotsOfIVorCvarEventSink) {
  EXPECT_SLOT(3, IVorCvarEventSink::OnCvarNotify);
}

TEST(ComponentInterface, SlotsOfCvarBag) {
  EXPECT_SLOT(7, CvarBag::GetModuleInstanceHandle);
  EXPECT_SLOT(8, CvarBag::get_Item);
  EXPECT_SLOT(9, CvarBag::get_Count);
}

TEST(ComponentInterface, SlotsOfIVorEventLog) { EXPECT_SLOT(3, IVorEventLog::LogEvent); }

TEST(ComponentInterface, SlotsOfIVorEventLogMgr) { EXPECT_SLOT(3, IVorEventLogMgr::GetEventLog); }

TEST(ComponentInterface, SlotsOfIVorTattlerClient) {
  EXPECT_SLOT(3, IVorTattlerClient::RegisterProbe);
  EXPECT_SLOT(4, IVorTattlerClient::ReportProbe);
  EXPECT_SLOT(5, IVorTattlerClient::IsMonitoringEnabled);
}

TEST(ComponentInterface, SlotsOfIVorAsynchronousCvarNotifier) {
  EXPECT_SLOT(3, IVorAsynchronousCvarNotifier::CreateForwarder);
  EXPECT_SLOT(4, IVorAsynchronousCvarNotifier::Post);
  EXPECT_SLOT(5, IVorAsynchronousCvarNotifier::Drain);
  EXPECT_SLOT(6, IVorAsynchronousCvarNotifier::Stop);
}

TEST(ComponentInterface, SlotsOfIVorMessageBox) { EXPECT_SLOT(3, IVorMessageBox::ShowMessage); }

TEST(ComponentInterface, SlotsOfIVorPhysicalUnit) {
  EXPECT_SLOT(3, IVorPhysicalUnit::IsValidUnit);
  EXPECT_SLOT(4, IVorPhysicalUnit::GetScreenUnit);
}

TEST(ComponentInterface, SlotsOfIVorRegExp) {
  EXPECT_SLOT(3, IVorRegExp::get_Pattern);
  EXPECT_SLOT(4, IVorRegExp::put_Pattern);
  EXPECT_SLOT(5, IVorRegExp::get_IgnoreCase);
  EXPECT_SLOT(6, IVorRegExp::put_IgnoreCase);
  EXPECT_SLOT(7, IVorRegExp::get_Global);
  EXPECT_SLOT(8, IVorRegExp::put_Global);
  EXPECT_SLOT(9, IVorRegExp::Test);
}

}  // namespace

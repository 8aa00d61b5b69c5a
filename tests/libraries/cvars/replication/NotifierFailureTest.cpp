#include <gtest/gtest.h>

#include "KnownNotifier.h"
#include "ReplicationFixture.h"

namespace cvars {
namespace {

using test::Double;
using test::kEverything;
using test::Listeners;
using test::MakeDouble;
using test::Requested;

constexpr auto kNone = REPLICATIONCONNECTION_NONE;
constexpr auto kSync = REPLICATIONCONNECTION_SYNCHRONOUS;
constexpr auto kAsync = REPLICATIONCONNECTION_ASYNCHRONOUS;
constexpr auto kFromOther = REPLICATIONCOPY_FROM_OTHER;

/// In this process no asynchronous notifier can be made.
class NotifierFailureTest : public test::ReplicationFixture {
 protected:
  void SetUp() override {
    ASSERT_EQ(CoRegisterClassObject(CLSID_AsynchronousCvarNotifier,
                                    test::SameObjectFactory::Create(nullptr, CO_E_DLLNOTFOUND),
                                    CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie),
              S_OK);
  }
  void TearDown() override { EXPECT_EQ(CoRevokeClassObject(m_cookie), S_OK); }

  DWORD m_cookie = 0;
  Double m_source = MakeDouble(L"Source", 5);
  Double m_replica = MakeDouble(L"Replica");
};

TEST_F(NotifierFailureTest, TheFailureIsReturnedAfterTheFirstCopy) {
  EXPECT_EQ(m_replica->StartCvarReplication(m_source, kAsync, kNone, kFromOther, kEverything),
            CO_E_DLLNOTFOUND);
  EXPECT_EQ(Requested(m_replica), 5);
  EXPECT_EQ(Listeners(m_source), 0);
  EXPECT_EQ(m_replica->StopCvarReplication(m_source), S_FALSE);
}

TEST_F(NotifierFailureTest, NeitherWayOfANewConnectionListens) {
  EXPECT_EQ(m_replica->StartCvarReplication(m_source, kSync, kAsync, kFromOther, kEverything),
            CO_E_DLLNOTFOUND);
  EXPECT_EQ(Listeners(m_source), 0);
  EXPECT_EQ(Listeners(m_replica), 0);
}

TEST_F(NotifierFailureTest, AWayThatWasToChangeListensNoMore) {
  EXPECT_EQ(m_replica->StartCvarReplication(m_source, kSync, kSync, kFromOther, kEverything), S_OK);
  EXPECT_EQ(m_replica->StartCvarReplication(m_source, kAsync, REPLICATIONCONNECTION_UNCHANGED,
                                            kFromOther, kEverything),
            CO_E_DLLNOTFOUND);
  EXPECT_EQ(Listeners(m_source), 0);
  EXPECT_EQ(Listeners(m_replica), 1);
  EXPECT_EQ(m_replica->StopCvarReplication(m_source), S_OK);
}

TEST_F(NotifierFailureTest, SynchronousConnectionsNeedNoNotifier) {
  EXPECT_EQ(m_replica->StartCvarReplication(m_source, kSync, kSync, kFromOther, kEverything), S_OK);
}

}  // namespace
}  // namespace cvars

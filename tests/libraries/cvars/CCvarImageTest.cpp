#include "CCvarImage.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "CCvarBag.h"
#include "CvarObject.h"
#include "ReadProperties.h"
#include "RecordingListener.h"
#include "SafeArray.h"
#include "platform/Bitmap.h"
#include "platform/Modules.h"

namespace {

using cvars::test::RecordingListener;
using Image = CComPtr<CvarObject<CCvarImage>>;
using Masks = std::vector<NOTIFYTYPE>;

HINSTANCE ThisModule() {
  static const int s_here = 0;
  return cvars::platform::ModuleOf(&s_here);
}

Image MakeImage() {
  Image cvar = CvarObject<CCvarImage>::Create();
  cvar->Initialize(L"Screen", 1, CVARFLAGS(0), L"hints", 7, REPLICATE_VALUE | REPLICATE_REQUESTED);
  return cvar;
}

HBITMAP HandleOf(const Image& cvar) {
  HBITMAP bitmap = nullptr;
  EXPECT_EQ(cvar->GetBitmapHandle(&bitmap), S_OK);
  return bitmap;
}

HBITMAP MakeBitmap(WORD pixel) {
  const BITMAP description = {0, 1, 1, 2, 1, 16, &pixel};
  return CreateBitmapIndirect(&description);
}

bool IsBitmap(HBITMAP bitmap) {
  BITMAP description;
  return GetObject(bitmap, sizeof(description), &description) != 0;
}

std::wstring SignatureOf(const Image& cvar) {
  CComBSTR text;
  EXPECT_EQ(cvar->get_Signature(&text), S_OK);
  return std::wstring(text.View());
}

TEST(ImageCreate, GivesTheSizeAndTheFirstPixelAndNotifiesOnce) {
  const Image cvar = MakeImage();
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  HBITMAP bitmap = nullptr;
  EXPECT_EQ(cvar->CreateBitmap(4, 3, &bitmap), S_OK);
  EXPECT_EQ(bitmap, HandleOf(cvar));
  EXPECT_EQ(SignatureOf(cvar), L"Type,Image,Adapt,<IMAGE>,Flags,-,Width,4,Height,3,Bits,0");
  EXPECT_EQ(listener->masks, Masks{NOTIFY_VALUE});
  BITMAP description = {};
  ASSERT_NE(GetObject(bitmap, sizeof(description), &description), 0);
  EXPECT_EQ(description.bmWidth, 4);
  EXPECT_EQ(description.bmHeight, 3);
  EXPECT_EQ(description.bmBitsPixel, 16);
}

TEST(ImageCreate, SizesThatCannotBeKeepTheOldBitmap) {
  const Image cvar = MakeImage();
  HBITMAP old = nullptr;
  ASSERT_EQ(cvar->CreateBitmap(2, 2, &old), S_OK);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  for (const auto& [width, height] : {std::pair{0, 3}, {3, 0}, {-1, 3}, {2000000000, 2000000000}}) {
    HBITMAP bitmap = old;
    EXPECT_EQ(cvar->CreateBitmap(width, height, &bitmap), E_FAIL);
    EXPECT_EQ(bitmap, nullptr);
  }
  EXPECT_EQ(cvar->CreateBitmap(1, 1, nullptr), E_POINTER);
  EXPECT_EQ(HandleOf(cvar), old);
  EXPECT_TRUE(listener->masks.empty());
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // which end without memory
/// Leaves the process room for so many more bytes.
void LimitMemory(std::size_t more) {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  const rlim_t bytes = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + more;
  const rlimit limit = {bytes, bytes};
  ASSERT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
}

TEST(ImageCreateDeathTest, PixelsThatMakeNoBitmapLeaveNone) {
  const auto run = [] {
    const Image cvar = MakeImage();
    HBITMAP old = nullptr;
    ASSERT_EQ(cvar->CreateBitmap(2, 2, &old), S_OK);
    const auto listener = RecordingListener::Create();
    ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
    // 32 MB of pixels fit, but not twice.
    LimitMemory(48 << 20);
    HBITMAP bitmap = old;
    ASSERT_EQ(cvar->CreateBitmap(4096, 4096, &bitmap), E_FAIL);
    EXPECT_EQ(bitmap, nullptr);
    EXPECT_EQ(HandleOf(cvar), nullptr);
    EXPECT_FALSE(IsBitmap(old));
    EXPECT_TRUE(listener->masks.empty());
    EXPECT_EQ(SignatureOf(cvar), L"Type,Image,Adapt,<IMAGE>,Flags,-,Width,2,Height,2,Bits,0");
  };
  EXPECT_EXIT(
      {
        run();
        std::exit(::testing::Test::HasFailure() ? 1 : 0);
      },
      ::testing::ExitedWithCode(0), "");
}
#endif

TEST(ImageInitialize, NullClearsTheHints) {
  const Image cvar = MakeImage();
  cvar->Initialize(L"Screen", 1, CVARFLAGS(0), nullptr, 7, REPLICATE_VALUE | REPLICATE_REQUESTED);
  CComBSTR hints;
  EXPECT_EQ(cvar->GetGuiHints(&hints), S_OK);
  EXPECT_EQ(hints.View(), L"");
}

TEST(ImageLoad, MissingFileLeavesNoBitmapKeepsTheSizeAndStillNotifies) {
  const Image cvar = MakeImage();
  HBITMAP bitmap = nullptr;
  ASSERT_EQ(cvar->CreateBitmap(4, 3, &bitmap), S_OK);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->LoadFromFile(L"C:\\no such file.bmp"), S_OK);
  EXPECT_EQ(HandleOf(cvar), nullptr);
  EXPECT_FALSE(IsBitmap(bitmap));
  EXPECT_EQ(SignatureOf(cvar), L"Type,Image,Adapt,<IMAGE>,Flags,-,Width,4,Height,3,Bits,0");
  EXPECT_EQ(listener->masks, Masks{NOTIFY_VALUE});
}

TEST(ImageLoad, WithoutAParentThereIsNoResource) {
  const Image cvar = MakeImage();
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->LoadFromBitmapResource(1), S_OK);
  EXPECT_EQ(HandleOf(cvar), nullptr);
  EXPECT_EQ(listener->masks, Masks{NOTIFY_VALUE});
}

void ExpectKnob(HBITMAP bitmap) {
  BITMAP description = {};
  ASSERT_NE(GetObject(bitmap, sizeof(description), &description), 0);
  EXPECT_EQ(description.bmWidth, 2);
  EXPECT_EQ(description.bmHeight, 2);
}

TEST(ImageLoad, ResourceIsThatOfTheParentsModuleByTheLow16BitsOfItsNumber) {
  const Image cvar = MakeImage();
  const auto bag = CCvarBag::Create(L"Panel", ThisModule());
  ASSERT_EQ(bag->Add(cvar), S_OK);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  for (const unsigned int id : {7u, 0x10007u}) {
    EXPECT_EQ(cvar->LoadFromBitmapResource(id), S_OK);
    ExpectKnob(HandleOf(cvar));
  }
  const HBITMAP knob = HandleOf(cvar);
  EXPECT_EQ(cvar->LoadFromBitmapResource(8), S_OK);
  EXPECT_EQ(HandleOf(cvar), nullptr);
  EXPECT_FALSE(IsBitmap(knob));
  EXPECT_EQ(listener->masks, (Masks{NOTIFY_VALUE, NOTIFY_VALUE, NOTIFY_VALUE}));

  cvar->Initialize(L"Knob", 7, CVARFLAGS(0), nullptr, 0, CVARREPLICATIONFLAGS(0));
  ExpectKnob(HandleOf(cvar));
  EXPECT_EQ(SignatureOf(cvar), L"Type,Image,Adapt,<IMAGE>,Flags,-,Width,0,Height,0,Bits,0");
  EXPECT_EQ(listener->masks.size(), 3u);
  EXPECT_EQ(bag->Remove(cvar), S_OK);
}

TEST(ImageLoad, FileIsReadAndTheSizeStays) {
  const Image cvar = MakeImage();
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(cvar->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(cvar->LoadFromFile(L"" CVARS_SOURCE_DIR "/tests/platform/modules/knob.bmp"), S_OK);
  ExpectKnob(HandleOf(cvar));
  EXPECT_EQ(SignatureOf(cvar), L"Type,Image,Adapt,<IMAGE>,Flags,-,Width,0,Height,0,Bits,0");
  EXPECT_EQ(listener->masks, Masks{NOTIFY_VALUE});
}

TEST(ImageLoad, HandleIsOwnedAndDeletedWithTheCvar) {
  const HBITMAP first = MakeBitmap(1);
  const HBITMAP second = MakeBitmap(2);
  {
    const Image cvar = MakeImage();
    EXPECT_EQ(cvar->LoadFromHandle(first), S_OK);
    EXPECT_EQ(cvar->LoadFromHandle(first), S_OK);
    EXPECT_TRUE(IsBitmap(first));
    EXPECT_EQ(cvar->LoadFromHandle(second), S_OK);
    EXPECT_FALSE(IsBitmap(first));
    EXPECT_EQ(HandleOf(cvar), second);
  }
  EXPECT_FALSE(IsBitmap(second));
}

TEST(ImageValue, IsAPlaceholderThatCannotBeWritten) {
  const Image cvar = MakeImage();
  CComVariant value;
  EXPECT_EQ(cvar->get_Value(&value), S_OK);
  ASSERT_EQ(value.vt, VT_BSTR);
  EXPECT_STREQ(value.bstrVal, L"<image>");
  CComBSTR text;
  EXPECT_EQ(cvar->GetAdaptedValueStringScreen(&text), S_OK);
  EXPECT_EQ(text.View(), L"<image>");
  EXPECT_EQ(cvar->GetAdaptedValueStringRemote(&text), S_OK);
  EXPECT_EQ(text.View(), L"<IMAGE>");
  EXPECT_EQ(cvar->put_Value(CComVariant(L"x")), E_NOTIMPL);
  EXPECT_EQ(cvar->SetRequestedValueFromString(L"x"), E_NOTIMPL);
  EXPECT_EQ(cvar->SetRequestedValueNorm(0.5), E_NOTIMPL);
  double position = 0;
  EXPECT_EQ(cvar->GetAdaptedValueNorm(nullptr), E_POINTER);
  EXPECT_EQ(cvar->GetAdaptedValueNorm(&position), E_NOTIMPL);
  EXPECT_EQ(cvar->Increment(1), E_NOTIMPL);
  EXPECT_EQ(cvar->SetToDefault(), E_NOTIMPL);
  EXPECT_EQ(cvar->GetBitmapHandle(nullptr), E_POINTER);
  EXPECT_EQ(cvar->get_Value(nullptr), E_POINTER);
}

TEST(ImageProperties, AddFour) {
  const Image cvar = MakeImage();
  HBITMAP bitmap = nullptr;
  ASSERT_EQ(cvar->CreateBitmap(4, 3, &bitmap), S_OK);
  EXPECT_EQ(cvars::test::OwnPropertiesOf(*cvar),
            (cvars::test::Properties{{L"AdaptedValue", VT_BSTR, L"<image>"},
                                     {L"Bits", VT_I4, L"0"},
                                     {L"Height", VT_I4, L"3"},
                                     {L"Width", VT_I4, L"4"}}));
  unsigned int help = 0;
  EXPECT_EQ(cvar->get_HelpStringID(&help), S_OK);
  EXPECT_EQ(help, 7u);
}

TEST(ImageReplica, TakesACopySendsNothingAndATwoWayPairEnds) {
  const Image source = MakeImage();
  const Image replica = MakeImage();
  ASSERT_EQ(replica->StartCvarReplication(source, REPLICATIONCONNECTION_SYNCHRONOUS,
                                          REPLICATIONCONNECTION_SYNCHRONOUS,
                                          REPLICATIONCOPY_FROM_OTHER, NOTIFYTYPE(0xFFFFFFFF)),
            S_OK);
  const auto listener = RecordingListener::Create();
  ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
  EXPECT_EQ(source->LoadFromHandle(MakeBitmap(5)), S_OK);
  EXPECT_NE(HandleOf(replica), nullptr);
  EXPECT_NE(HandleOf(replica), HandleOf(source));
  EXPECT_TRUE(listener->masks.empty());
  EXPECT_EQ(source->LoadFromHandle(nullptr), S_OK);
  EXPECT_EQ(HandleOf(replica), nullptr);
  EXPECT_EQ(replica->StopAllCvarReplication(), S_OK);
}

struct CopyCase {
  CVARREPLICATIONFLAGS flags;
  NOTIFYTYPE what;
  bool copies;
};
constexpr CopyCase kCopyCases[] = {
    {REPLICATE_VALUE, NOTIFY_VALUE, true},
    {REPLICATE_VALUE, NOTIFY_REQUESTED, true},
    {REPLICATE_REQUESTED, NOTIFY_VALUE, true},
    {REPLICATE_REQUESTED, NOTIFY_REQUESTED, true},
    {REPLICATE_VALUE, NOTIFY_RANGE, false},
    {CVARREPLICATIONFLAGS(REPLICATE_FLAGS | REPLICATE_NAME), NOTIFY_VALUE, false},
    {CVARREPLICATIONFLAGS(0), NOTIFYTYPE(0xFFFFFFFF), false},
};

TEST(ImageReplica, EitherValueBitCopiesOnEitherKindOfChange) {
  for (const CopyCase& row : kCopyCases) {
    SCOPED_TRACE(testing::Message() << row.flags << ' ' << row.what);
    const Image source = MakeImage();
    EXPECT_EQ(source->LoadFromHandle(MakeBitmap(5)), S_OK);
    const Image replica = MakeImage();
    replica->SetReplicationFlags(row.flags);
    const HBITMAP old = MakeBitmap(6);
    EXPECT_EQ(replica->LoadFromHandle(old), S_OK);
    const auto listener = RecordingListener::Create();
    ASSERT_EQ(replica->AttachCvarEventSink(listener), S_OK);
    EXPECT_EQ(replica->OnCvarNotify(source, row.what), S_OK);
    BITMAP description = {};
    ASSERT_NE(GetObject(HandleOf(replica), sizeof(description), &description), 0);
    EXPECT_EQ(*static_cast<const WORD*>(description.bmBits), row.copies ? 5 : 6);
    EXPECT_EQ(HandleOf(replica) == old, !row.copies);
    EXPECT_EQ(IsBitmap(old), !row.copies);
    EXPECT_TRUE(listener->masks.empty());
  }
}

}  // namespace

// What callers compiled apart rely on: slot order of the typed interfaces.

#include <gtest/gtest.h>

#include <cstddef>

#include "IVorCvarAction.h"
#include "IVorCvarBitPattern.h"
#include "IVorCvarDoubleLockstep.h"
#include "IVorCvarFileName.h"
#include "IVorCvarImage.h"
#include "IVorCvarInt.h"
#include "IVorCvarLongInt.h"
#include "IVorCvarObjectName.h"
#include "IVorCvarRegister.h"
#include "IVorCvarString.h"
#include "SlotOf.h"

namespace {

constexpr std::size_t kFirstSlot = 7;  // after IUnknown and IDispatch

#define EXPECT_SLOT(slot, function) \
  EXPECT_EQ(cvars::test::SlotOf(&function), kFirstSlot + std::size_t{slot}) << #function

TEST(TypedInterface, SlotsOfIVorCvarDoubleLockstep) {
  EXPECT_SLOT(55, IVorCvarDoubleLockstep::get_Lockstep);
  EXPECT_SLOT(56, IVorCvarDoubleLockstep::get_LockStep);
  EXPECT_SLOT(57, IVorCvarDoubleLockstep::put_Lockstep);
  EXPECT_SLOT(58, IVorCvarDoubleLockstep::IncrementFine);
  EXPECT_SLOT(59, IVorCvarDoubleLockstep::get_FineGrainAllowed);
  EXPECT_SLOT(60, IVorCvarDoubleLockstep::put_FineGrainAllowed);
  EXPECT_SLOT(61, IVorCvarDoubleLockstep::get_FineGrainOn);
  EXPECT_SLOT(62, IVorCvarDoubleLockstep::put_FineGrainOn);
}

TEST(TypedInterface, SlotsOfIVorCvarInt) {
  EXPECT_SLOT(44, IVorCvarInt::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarInt::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarInt::GetGrainValue);
  EXPECT_SLOT(47, IVorCvarInt::GetMaxValue);
  EXPECT_SLOT(48, IVorCvarInt::GetMinValue);
  EXPECT_SLOT(49, IVorCvarInt::GetRequestedValue);
  EXPECT_SLOT(50, IVorCvarInt::GetUnitRemoteString);
  EXPECT_SLOT(51, IVorCvarInt::SetRequestedValue);
  EXPECT_SLOT(52, IVorCvarInt::get_CoarseGrain);
  EXPECT_SLOT(53, IVorCvarInt::put_CoarseGrain);
  EXPECT_SLOT(54, IVorCvarInt::get_NumberOfIncrement);
}

TEST(TypedInterface, SlotsOfIVorCvarLongInt) {
  EXPECT_SLOT(44, IVorCvarLongInt::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarLongInt::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarLongInt::GetGrainValue);
  EXPECT_SLOT(47, IVorCvarLongInt::GetMaxValue);
  EXPECT_SLOT(48, IVorCvarLongInt::GetMinValue);
  EXPECT_SLOT(49, IVorCvarLongInt::GetRequestedValue);
  EXPECT_SLOT(50, IVorCvarLongInt::GetUnitRemoteString);
  EXPECT_SLOT(51, IVorCvarLongInt::SetRequestedValue);
  EXPECT_SLOT(52, IVorCvarLongInt::get_CoarseGrain);
  EXPECT_SLOT(53, IVorCvarLongInt::put_CoarseGrain);
  EXPECT_SLOT(54, IVorCvarLongInt::get_NumberOfIncrement);
}

TEST(TypedInterface, SlotsOfIVorCvarString) {
  EXPECT_SLOT(44, IVorCvarString::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarString::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarString::GetRequestedValue);
  EXPECT_SLOT(47, IVorCvarString::SetRequestedValue);
  EXPECT_SLOT(48, IVorCvarString::GetMaxLength);
}

TEST(TypedInterface, SlotsOfIVorCvarObjectName) {
  EXPECT_SLOT(49, IVorCvarObjectName::SetRequestedValueStringScreen);
  EXPECT_SLOT(50, IVorCvarObjectName::SetRequestedValueStringAutomation);
  EXPECT_SLOT(51, IVorCvarObjectName::SetRequestedValueStringRemote);
  EXPECT_SLOT(52, IVorCvarObjectName::GetAdaptedValueNamesJoined);
}

TEST(TypedInterface, SlotsOfIVorCvarFileName) {
  EXPECT_SLOT(44, IVorCvarFileName::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarFileName::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarFileName::GetRequestedValue);
  EXPECT_SLOT(47, IVorCvarFileName::SetRequestedValue);
  EXPECT_SLOT(48, IVorCvarFileName::get_RootValue);
  EXPECT_SLOT(49, IVorCvarFileName::put_RootValue);
  EXPECT_SLOT(50, IVorCvarFileName::get_PathValue);
  EXPECT_SLOT(51, IVorCvarFileName::put_PathValue);
  EXPECT_SLOT(52, IVorCvarFileName::get_FileNameValue);
  EXPECT_SLOT(53, IVorCvarFileName::put_FileNameValue);
  EXPECT_SLOT(54, IVorCvarFileName::get_FiltersValue);
  EXPECT_SLOT(55, IVorCvarFileName::put_FiltersValue);
  EXPECT_SLOT(56, IVorCvarFileName::get_AdaptedValueFormat);
  EXPECT_SLOT(57, IVorCvarFileName::put_AdaptedValueFormat);
  EXPECT_SLOT(58, IVorCvarFileName::get_DirectoryOnly);
  EXPECT_SLOT(59, IVorCvarFileName::put_DirectoryOnly);
  EXPECT_SLOT(60, IVorCvarFileName::get_FileMustExist);
  EXPECT_SLOT(61, IVorCvarFileName::put_FileMustExist);
  EXPECT_SLOT(62, IVorCvarFileName::get_FullFileNameValue);
  EXPECT_SLOT(63, IVorCvarFileName::GetExtension);
}

TEST(TypedInterface, SlotsOfIVorCvarBitPattern) {
  EXPECT_SLOT(44, IVorCvarBitPattern::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarBitPattern::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarBitPattern::GetRequestedValue);
  EXPECT_SLOT(47, IVorCvarBitPattern::SetRequestedValue);
  EXPECT_SLOT(48, IVorCvarBitPattern::get_DecimalValue);
  EXPECT_SLOT(49, IVorCvarBitPattern::GetSignedDecimalValue);
  EXPECT_SLOT(50, IVorCvarBitPattern::put_DecimalValue);
  EXPECT_SLOT(51, IVorCvarBitPattern::put_HexadecimalValue);
  EXPECT_SLOT(52, IVorCvarBitPattern::get_HexadecimalValue);
  EXPECT_SLOT(53, IVorCvarBitPattern::get_MinValue);
  EXPECT_SLOT(54, IVorCvarBitPattern::get_MaxValue);
  EXPECT_SLOT(55, IVorCvarBitPattern::get_NumBits);
  EXPECT_SLOT(56, IVorCvarBitPattern::get_NumBytes);
  EXPECT_SLOT(57, IVorCvarBitPattern::get_MaxNumBits);
  EXPECT_SLOT(58, IVorCvarBitPattern::get_Format);
  EXPECT_SLOT(59, IVorCvarBitPattern::get_AllowedBitValues);
  EXPECT_SLOT(60, IVorCvarBitPattern::get_PaddingChar);
  EXPECT_SLOT(61, IVorCvarBitPattern::get_PadAlign);
  EXPECT_SLOT(62, IVorCvarBitPattern::get_SizeAlign);
  EXPECT_SLOT(63, IVorCvarBitPattern::put_MaxNumBits);
  EXPECT_SLOT(64, IVorCvarBitPattern::put_NumBits);
  EXPECT_SLOT(65, IVorCvarBitPattern::put_NumBytes);
  EXPECT_SLOT(66, IVorCvarBitPattern::put_Format);
  EXPECT_SLOT(67, IVorCvarBitPattern::put_AllowedBitValues);
  EXPECT_SLOT(68, IVorCvarBitPattern::put_PaddingChar);
  EXPECT_SLOT(69, IVorCvarBitPattern::put_PadAlign);
  EXPECT_SLOT(70, IVorCvarBitPattern::put_SizeAlign);
}

TEST(TypedInterface, SlotsOfIVorCvarRegister) {
  EXPECT_SLOT(44, IVorCvarRegister::GetAdaptedValue);
  EXPECT_SLOT(45, IVorCvarRegister::GetDefaultValue);
  EXPECT_SLOT(46, IVorCvarRegister::GetRequestedValue);
  EXPECT_SLOT(47, IVorCvarRegister::SetRequestedValue);
  EXPECT_SLOT(48, IVorCvarRegister::UpdateFromHardware);
  EXPECT_SLOT(49, IVorCvarRegister::GetMask);
  EXPECT_SLOT(50, IVorCvarRegister::GetNbOfBits);
  EXPECT_SLOT(51, IVorCvarRegister::GetHardwareAddress);
  EXPECT_SLOT(52, IVorCvarRegister::GetAccessStyle);
  EXPECT_SLOT(53, IVorCvarRegister::SetMask);
  EXPECT_SLOT(54, IVorCvarRegister::SetNbOfBits);
  EXPECT_SLOT(55, IVorCvarRegister::SetHardwareAddress);
  EXPECT_SLOT(56, IVorCvarRegister::SetAccessStyle);
  EXPECT_SLOT(57, IVorCvarRegister::SetDefaultValue);
  EXPECT_SLOT(58, IVorCvarRegister::SetFieldDescription);
  EXPECT_SLOT(59, IVorCvarRegister::GetFieldDescription);
  EXPECT_SLOT(60, IVorCvarRegister::GetFieldDescriptionFirstBit);
  EXPECT_SLOT(61, IVorCvarRegister::GetFieldDescriptionLastBit);
  EXPECT_SLOT(62, IVorCvarRegister::GetFieldDescriptionString);
}

TEST(TypedInterface, SlotsOfIVorCvarImage) {
  EXPECT_SLOT(44, IVorCvarImage::GetBitmapHandle);
  EXPECT_SLOT(45, IVorCvarImage::LoadFromBitmapResource);
  EXPECT_SLOT(46, IVorCvarImage::LoadFromFile);
  EXPECT_SLOT(47, IVorCvarImage::LoadFromHandle);
  EXPECT_SLOT(48, IVorCvarImage::CreateBitmap);
}

TEST(TypedInterface, SlotsOfIVorCvarAction) { EXPECT_SLOT(44, IVorCvarAction::ActNow); }

}  // namespace

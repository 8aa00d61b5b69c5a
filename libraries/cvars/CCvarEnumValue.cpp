#include "CCvarEnumValue.h"

#include <algorithm>

#include "VariantEquality.h"

bool operator==(const CCvarEnumValue& left, const CCvarEnumValue& right) {
  return left.m_strings.Joined() == right.m_strings.Joined() && left.m_enabled == right.m_enabled &&
         left.m_iconId == right.m_iconId && left.m_iconModule == right.m_iconModule &&
         left.m_object.p == right.m_object.p &&
         std::equal(left.m_variants.begin(), left.m_variants.end(), right.m_variants.begin(),
                    cvars::SameVariant);
}

#include "platform/WmiNamespace.h"

#include <gtest/gtest.h>

TEST(WmiNamespace, Path_EachNamespace_IsTheTablesEntry)
{
    EXPECT_STREQ(NamespacePath(WmiNamespace::Cimv2), L"\\\\.\\root\\cimv2");
    EXPECT_STREQ(NamespacePath(WmiNamespace::Wmi), L"\\\\.\\root\\wmi");
    EXPECT_STREQ(NamespacePath(WmiNamespace::MicrosoftTpm), L"\\\\.\\root\\cimv2\\security\\MicrosoftTpm");
    EXPECT_STREQ(NamespacePath(WmiNamespace::InstrumentedBios), L"\\\\.\\root\\Orvik\\InstrumentedBIOS");
    EXPECT_STREQ(NamespacePath(WmiNamespace::InstrumentedSecurity), L"\\\\.\\root\\Orvik\\InstrumentedSecurity");
    EXPECT_STREQ(NamespacePath(WmiNamespace::MicrosoftVolumeEncryption),
                 L"\\\\.\\root\\CIMV2\\Security\\MicrosoftVolumeEncryption");
    EXPECT_STREQ(NamespacePath(WmiNamespace::InstrumentedServices), L"\\\\.\\root\\Orvik\\InstrumentedServices\\v1");
}

TEST(WmiNamespace, Enumeration_Numbers_AreTheTablesOrder)
{
    EXPECT_EQ(static_cast<int>(WmiNamespace::Cimv2), 0);
    EXPECT_EQ(static_cast<int>(WmiNamespace::Wmi), 1);
    EXPECT_EQ(static_cast<int>(WmiNamespace::MicrosoftTpm), 2);
    EXPECT_EQ(static_cast<int>(WmiNamespace::InstrumentedBios), 3);
    EXPECT_EQ(static_cast<int>(WmiNamespace::InstrumentedSecurity), 4);
    EXPECT_EQ(static_cast<int>(WmiNamespace::MicrosoftVolumeEncryption), 5);
    EXPECT_EQ(static_cast<int>(WmiNamespace::InstrumentedServices), 6);
}

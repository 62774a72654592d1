#include "res/Resource.h"
#include "tests/res/IconImages.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ResourceTests
{

namespace
{

constexpr unsigned Sides[] = {16, 32, 48, 256};

void ExpectFourSoundSizes(const std::optional<std::vector<IconImage>>& images)
{
    ASSERT_TRUE(images.has_value());
    ASSERT_EQ(images->size(), std::size(Sides));
    for (size_t index = 0; index < std::size(Sides); ++index)
    {
        const IconImage& image = (*images)[index];
        EXPECT_EQ(image.width, Sides[index]);
        EXPECT_EQ(image.height, Sides[index]);
        EXPECT_EQ(image.bitsPerPixel, 32u);
        EXPECT_TRUE(IsSoundImage(image)) << Sides[index] << " pixels";
        EXPECT_EQ(IsPng(image.data), Sides[index] == 256);
    }
}

bool HasSize(HICON icon, LONG side)
{
    ICONINFO parts = {};
    if (!GetIconInfo(icon, &parts))
    {
        return false;
    }
    BITMAP color = {};
    const bool read = GetObjectW(parts.hbmColor, sizeof(color), &color) == sizeof(color);
    DeleteObject(parts.hbmColor);
    DeleteObject(parts.hbmMask);
    return read && color.bmWidth == side && color.bmHeight == side;
}

class IconResource : public testing::Test
{
protected:
    CAgentModule m_agent;
};

TEST_F(IconResource, IconFileType_HoldsExactlyTheDefaultIcon)
{
    EXPECT_EQ(m_agent.Names(RT_ICON_FILE), std::vector<WORD>{133});
    EXPECT_EQ(m_agent.Languages(RT_ICON_FILE, 133), std::vector<WORD>{English});
}

TEST_F(IconResource, DefaultIcon_IsACompleteIconFile)
{
    ExpectFourSoundSizes(ReadIconFile(m_agent.Resource(RT_ICON_FILE, 133, English)));
}

TEST_F(IconResource, Groups_AreThoseOfFirmwareProtectionAndProgram)
{
    EXPECT_EQ(m_agent.Names(TypeNumber(RT_GROUP_ICON)), (std::vector<WORD>{136, 137}));
    ExpectFourSoundSizes(ReadIconGroup(m_agent, 136));
    ExpectFourSoundSizes(ReadIconGroup(m_agent, 137));
}

TEST_F(IconResource, Groups_LoadAtEverySize)
{
    for (const WORD group : {WORD{136}, WORD{137}})
    {
        for (const unsigned side : Sides)
        {
            const auto length = static_cast<int>(side);
            const auto icon = static_cast<HICON>(
                LoadImageW(m_agent.Handle(), MAKEINTRESOURCEW(group), IMAGE_ICON, length, length, LR_DEFAULTCOLOR));
            ASSERT_NE(icon, nullptr) << "group " << group << ", " << side << " pixels, error " << GetLastError();
            EXPECT_TRUE(HasSize(icon, length)) << "group " << group << ", " << side << " pixels";
            DestroyIcon(icon);
        }
    }
}

TEST_F(IconResource, Motifs_DifferAtEverySize)
{
    const auto ofDefault = ReadIconFile(m_agent.Resource(RT_ICON_FILE, 133, English));
    const auto ofVeritor = ReadIconGroup(m_agent, 136);
    const auto ofProgram = ReadIconGroup(m_agent, 137);
    ASSERT_TRUE(ofDefault && ofVeritor && ofProgram);
    for (size_t index = 0; index < std::size(Sides); ++index)
    {
        EXPECT_FALSE(std::ranges::equal((*ofDefault)[index].data, (*ofVeritor)[index].data));
        EXPECT_FALSE(std::ranges::equal((*ofDefault)[index].data, (*ofProgram)[index].data));
        EXPECT_FALSE(std::ranges::equal((*ofVeritor)[index].data, (*ofProgram)[index].data));
    }
}

// The reader that judges the artwork must itself refuse what is broken.
TEST_F(IconResource, ReadIconFile_BrokenFile_IsRefused)
{
    const Bytes whole = m_agent.Resource(RT_ICON_FILE, 133, English);
    EXPECT_TRUE(ReadIconFile(whole).has_value());
    EXPECT_FALSE(ReadIconFile({}).has_value());
    EXPECT_FALSE(ReadIconFile(whole.first(5)).has_value());
    EXPECT_FALSE(ReadIconFile(whole.first(40)).has_value());
    EXPECT_FALSE(ReadIconFile(whole.first(whole.size() - 1)).has_value());
    std::vector<std::byte> noIcon(whole.begin(), whole.end());
    noIcon[2] = std::byte{2};
    EXPECT_FALSE(ReadIconFile(noIcon).has_value());
}

} // namespace

} // namespace ResourceTests

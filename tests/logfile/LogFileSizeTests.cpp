#include "tests/logfile/LogFileTest.h"

namespace
{
using testing::ElementsAre;

constexpr unsigned g_defaultLimit = 2'097'152;

class LogFileSize : public LogFileTest
{
protected:
    // Whether the first record of a listener over a log file of so many bytes rotates it.
    bool IsRotatedAt(std::size_t size)
    {
        DeleteFileW(m_folder.Older(1).c_str());
        std::string bytes = std::string(ByteOrderMark).append(OldLine);
        bytes.resize(size, '.');
        m_folder.Add(m_folder.LogPath(), bytes);
        const LogRecord record = MakeRecord(L"x");
        Listener().Write(record);
        const bool isRotated = Exists(m_folder.Older(1));
        if (isRotated)
        {
            EXPECT_EQ(BytesIn(m_folder.Older(1)), bytes);
        }
        EXPECT_EQ(BytesIn(m_folder.LogPath()), (isRotated ? std::string(ByteOrderMark) : bytes) + LineOf(record));
        return isRotated;
    }

    // The limit holds to the byte.
    void ExpectLimit(std::size_t limit)
    {
        EXPECT_FALSE(IsRotatedAt(limit - 1)) << limit;
        EXPECT_FALSE(IsRotatedAt(limit)) << limit;
        EXPECT_TRUE(IsRotatedAt(limit + 1)) << limit;
    }

    TestSupport::PolicyKey m_module{TestSupport::LoggingModuleKey()};
};

TEST_F(LogFileSize, NoPolicy_LimitIsTwoMebibytes)
{
    ExpectLimit(g_defaultLimit);
}

TEST_F(LogFileSize, Zero_IsTheDefaultAndNotUnlimited)
{
    m_product.Number(L"MaxLogSize", 0);
    ExpectLimit(g_defaultLimit);
}

TEST_F(LogFileSize, One_LimitIsOneKibibyte)
{
    m_product.Number(L"MaxLogSize", 1);
    ExpectLimit(1024);
}

TEST_F(LogFileSize, ValueOfAnotherType_CountsAsMissing)
{
    m_product.Text(L"MaxLogSize", L"1");
    ExpectLimit(g_defaultLimit);
    m_product.Raw(L"MaxLogSize", REG_BINARY, std::vector<unsigned char>{1, 0, 0, 0});
    ExpectLimit(g_defaultLimit);
    m_product.Raw(L"MaxLogSize", REG_QWORD, std::vector<unsigned char>{1, 0, 0, 0, 0, 0, 0, 0});
    ExpectLimit(g_defaultLimit);
}

TEST_F(LogFileSize, ModuleKey_WinsOverTheProductKey)
{
    m_product.Number(L"MaxLogSize", 1);
    m_module.Number(L"MaxLogSize", 3);
    ExpectLimit(3072);
}

TEST_F(LogFileSize, ZeroOrAnotherTypeInTheModuleKey_LeavesItToTheProductKey)
{
    m_product.Number(L"MaxLogSize", 2);
    m_module.Number(L"MaxLogSize", 0);
    ExpectLimit(2048);
    m_module.Text(L"MaxLogSize", L"1");
    ExpectLimit(2048);
}

TEST_F(LogFileSize, SizeInBytesBeyond32Bits_Wraps)
{
    m_product.Number(L"MaxLogSize", 0x0040'0001);
    ExpectLimit(1024);
    m_product.Number(L"MaxLogSize", 0x0040'0000);
    EXPECT_TRUE(IsRotatedAt(200)) << "a limit of 0 bytes";
}

TEST_F(LogFileSize, LargestValues_AreLimitsToo)
{
    for (const DWORD size : {0x003F'FFFFu, 0x7FFF'FFFFu, 0xFFFF'FFFFu})
    {
        m_product.Number(L"MaxLogSize", size);
        EXPECT_FALSE(IsRotatedAt(100'000)) << size;
    }
}

TEST_F(LogFileSize, FileOfFourGibibytes_IsRotated)
{
    const auto call =
        Replace<decltype(GetFileAttributesExW)>("GetFileAttributesExW",
                                                [](auto original, auto path, auto level, void* data)
                                                {
                                                    const auto result = original(path, level, data);
                                                    static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data)->nFileSizeHigh = 1;
                                                    return result;
                                                });
    EXPECT_TRUE(IsRotatedAt(200));
}

TEST_F(LogFileSize, SizeThatCannotBeTold_RotatesNothing)
{
    const auto call = FailCall<decltype(GetFileAttributesExW)>("GetFileAttributesExW", 0, FALSE, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(IsRotatedAt(g_defaultLimit + 1));
}

TEST_F(LogFileSize, SizeThatCannotBeTold_LeavesAForeignFile)
{
    m_folder.Add(m_folder.LogPath(), "foreign");
    const auto call = FailCall<decltype(GetFileAttributesExW)>("GetFileAttributesExW", 0, FALSE, ERROR_ACCESS_DENIED);
    Listener();
    EXPECT_THAT(m_folder.Names(), ElementsAre(L"logfile_tests.log"));
    EXPECT_EQ(BytesIn(m_folder.LogPath()), "foreign");
}

TEST_F(LogFileSize, QueuedWrites_HaveTheSameLimit)
{
    m_product.Number(L"MaxLogSize", 1).Number(L"QueuedWrites", 1);
    std::string bytes = std::string(ByteOrderMark).append(OldLine);
    bytes.resize(1025, '.');
    m_folder.Add(m_folder.LogPath(), bytes);
    Listener().Write(MakeRecord(L"x"));
    EXPECT_EQ(BytesIn(m_folder.Older(1)), bytes);
    EXPECT_THAT(Messages(), ElementsAre("x"));
}
} // namespace

#include "tests/logfile/LogFileTest.h"

namespace
{
using testing::ElementsAre;
using Numbers = std::vector<unsigned>;

class LogFilePacing : public LogFileTest
{
protected:
    // The numbers of the records, of so many, before which the size is looked at.
    [[nodiscard]] static Numbers Looks(unsigned count)
    {
        Numbers looks;
        unsigned number = 0;
        CLogFile file{LoggingPolicy()};
        if (!file.OpenAndLock())
            return looks;
        const Orvik::Shared::LogFileClosing closing(file);
        const auto call = Replace<decltype(GetFileAttributesExW)>("GetFileAttributesExW",
                                                                  [&](auto original, auto... arguments)
                                                                  {
                                                                      looks.push_back(number);
                                                                      return original(arguments...);
                                                                  });
        const LogRecord record = MakeRecord(L"x");
        for (number = 1; number <= count; ++number)
            file.WriteRecord(record);
        return looks;
    }
};

TEST_F(LogFilePacing, Default_FirstRecordAndEvery10240Behind)
{
    EXPECT_THAT(Looks(10'241 + 10'242), ElementsAre(1, 10'242, 20'483));
}

TEST_F(LogFilePacing, SmallestLimit_FirstRecordAndEveryFiveBehind)
{
    m_product.Number(L"MaxLogSize", 1);
    EXPECT_THAT(Looks(20), ElementsAre(1, 7, 13, 19));
}

TEST_F(LogFilePacing, NumberOfRecordsBeyond32Bits_Wraps)
{
    // Ten times this is 4 more than 32 bits hold.
    m_product.Number(L"MaxLogSize", 0x1999'999A);
    EXPECT_THAT(Looks(10), ElementsAre(1, 4, 7, 10));
}

TEST_F(LogFilePacing, RotationInBetween_KeepsThePace)
{
    m_product.Number(L"MaxLogSize", 1);
    m_folder.Add(m_folder.LogPath(), std::string(2000, '.'));
    EXPECT_THAT(Looks(20), ElementsAre(1, 7, 13, 19));
    EXPECT_TRUE(Exists(m_folder.Older(1)));
}

TEST_F(LogFilePacing, LookThatFails_KeepsThePace)
{
    m_product.Number(L"MaxLogSize", 1);
    const auto call = FailCall<decltype(GetFileAttributesExW)>("GetFileAttributesExW", 0, FALSE, ERROR_ACCESS_DENIED);
    EXPECT_THAT(Looks(20), ElementsAre(1, 7, 13, 19));
}

TEST_F(LogFilePacing, CounterOfAListener_RunsOnFromRecordToRecord)
{
    m_product.Number(L"MaxLogSize", 1);
    auto listener = Listener();
    unsigned looks = 0;
    const auto call = Replace<decltype(GetFileAttributesExW)>("GetFileAttributesExW",
                                                              [&](auto original, auto... arguments)
                                                              {
                                                                  ++looks;
                                                                  return original(arguments...);
                                                              });
    for (int i = 0; i < 6; ++i)
        listener.Write(MakeRecord(L"x"));
    EXPECT_EQ(looks, 1u);
    listener.Write(MakeRecord(L"x"));
    EXPECT_EQ(looks, 2u);
}
} // namespace

#include "simulator/console/DialogPattern.h"

#include "simulator/console/DialogLine.h"

#include <gtest/gtest.h>

namespace
{
using namespace Simulator;

nlohmann::json Message()
{
    return {{"number", 2},
            {"title", "Orvik Notifications"},
            {"text", "First line.\r\n\r\nSecond line."},
            {"box", false},
            {"icon", "warning"},
            {"link", "https://support"},
            {"check-box", nullptr},
            {"controls",
             {{{"id", 1}, {"class", "Button"}, {"text", "OK"}}, {{"id", 140}, {"class", "Static"}, {"text", ""}}}},
            {"topmost", true},
            {"foreground", false}};
}

nlohmann::json Notice()
{
    nlohmann::json notice = Message();
    notice["link"] = nullptr;
    notice["icon"] = "information";
    notice["check-box"] = {{"text", "Never again."}, {"checked", true}};
    return notice;
}

bool Fits(const nlohmann::json& pattern, const nlohmann::json& dialog)
{
    return DialogPattern(pattern, "/place").Fits(dialog);
}

// What the fault of the pattern says; empty without one.
std::string FaultOf(const nlohmann::json& pattern)
{
    try
    {
        (void)DialogPattern(pattern, "/place");
        return "";
    }
    catch (const UsageError& fault)
    {
        return fault.what();
    }
}

std::string LineOf(const char* subject, const nlohmann::json& details)
{
    const auto line = ReadDialogLine({0, 1, 0.0, "dialog", subject, details});
    return line ? line->m_strWho + ": " + line->m_strWhat : "none";
}
} // namespace

TEST(DialogPattern, Text_IsAllOfTheMessage)
{
    EXPECT_TRUE(Fits("First line.\r\n\r\nSecond line.", Message()));
    EXPECT_FALSE(Fits("First line.", Message()));
    EXPECT_TRUE(Fits({{"contains", "Second"}}, Message()));
    EXPECT_FALSE(Fits({{"contains", "Third"}}, Message()));
    EXPECT_FALSE(Fits({{"contains", "Second"}}, {{"text", nullptr}}));
}

TEST(DialogPattern, Nothing_FitsAny)
{
    EXPECT_TRUE(Fits(nlohmann::json::object(), Message()));
    EXPECT_TRUE(DialogPattern().Fits(Notice()));
}

TEST(DialogPattern, EachKey_IsCompared)
{
    const nlohmann::json right = {{"title", "Orvik Notifications"},
                                  {"icon", "warning"},
                                  {"box", false},
                                  {"link", "https://support"},
                                  {"topmost", true},
                                  {"foreground", false},
                                  {"check-box", false},
                                  {"contains", "First"}};
    EXPECT_TRUE(Fits(right, Message()));
    const nlohmann::json wrong = {{"title", ""},
                                  {"icon", "error"},
                                  {"box", true},
                                  {"link", "https://"},
                                  {"topmost", false},
                                  {"foreground", true},
                                  {"check-box", "Never again."}};
    for (const auto& [key, value] : wrong.items())
    {
        nlohmann::json pattern = right;
        pattern[key] = value;
        EXPECT_FALSE(Fits(pattern, Message())) << key;
    }
}

TEST(DialogPattern, NoLink_IsFalse)
{
    EXPECT_TRUE(Fits({{"link", false}}, Notice()));
    EXPECT_FALSE(Fits({{"link", false}}, Message()));
}

TEST(DialogPattern, CheckBox_TextAndState)
{
    EXPECT_TRUE(Fits({{"check-box", "Never again."}, {"checked", true}}, Notice()));
    EXPECT_FALSE(Fits({{"checked", false}}, Notice()));
    EXPECT_FALSE(Fits({{"checked", true}}, Message()));
    EXPECT_FALSE(Fits({{"checked", false}}, Message()));
    EXPECT_FALSE(Fits({{"check-box", false}}, Notice()));
}

TEST(DialogPattern, Controls_ById)
{
    EXPECT_TRUE(Fits({{"controls", {{"1", "OK"}, {"140", ""}, {"141", false}}}}, Message()));
    EXPECT_FALSE(Fits({{"controls", {{"1", "Ok"}}}}, Message()));
    EXPECT_FALSE(Fits({{"controls", {{"140", false}}}}, Message()));
    EXPECT_FALSE(Fits({{"controls", {{"141", ""}}}}, Message()));
}

TEST(DialogPattern, Mistakes_NameTheirPlace)
{
    EXPECT_TRUE(FaultOf({{"icons", "error"}}).starts_with("/place: unknown key \"icons\"; known here: "));
    EXPECT_EQ(FaultOf({{"link", true}}), "/place/link: a text is expected, or false for none");
    EXPECT_EQ(FaultOf({{"controls", {{"OK", "OK"}}}}), "/place/controls: \"OK\" is not the number of a control");
    EXPECT_NE(FaultOf({{"checked", "yes"}}), "");
    EXPECT_NE(FaultOf(7), "");
}

TEST(DialogPattern, Description_SaysWhatIsExpected)
{
    EXPECT_EQ(DialogPattern().Description(), "any");
    EXPECT_EQ(DialogPattern({{"icon", "error"}, {"link", false}, {"controls", {{"1", "OK"}}}}, "").Description(),
              "icon \"error\", link none, control 1 \"OK\"");
}

TEST(DialogLine, Opened_IsOneLine)
{
    EXPECT_EQ(LineOf("opened", Message()),
              "dialog: dialog 2 (warning): \"First line. Second line.\", link \"https://support\"");
    EXPECT_EQ(LineOf("opened", Notice()), "dialog: dialog 2 (information): \"First line. Second line.\", check box "
                                          "ticked \"Never again.\"");
    EXPECT_EQ(LineOf("opened", {{"number", 3}, {"box", true}, {"icon", "none"}, {"text", "more"}}),
              "dialog: message box 3: \"more\"");
}

TEST(DialogLine, AnsweredAndClosed_SayWhoDidWhat)
{
    EXPECT_EQ(LineOf("answered", {{"number", 1}, {"with", "ok"}}), "user: clicks OK in dialog 1");
    EXPECT_EQ(LineOf("answered", {{"number", 1}, {"with", "close"}}), "user: closes dialog 1");
    EXPECT_EQ(LineOf("answered", {{"number", 1}, {"with", "esc"}}), "user: presses ESC in dialog 1");
    EXPECT_EQ(LineOf("answered", {{"number", 1}, {"with", "check"}}), "user: clicks the check box of dialog 1");
    EXPECT_EQ(LineOf("answered", {{"number", 1}, {"with", "link"}}), "user: clicks the link of dialog 1");
    EXPECT_EQ(LineOf("closed", {{"number", 1}}), "dialog: dialog 1 is closed");
    EXPECT_EQ(LineOf("painted", {{"number", 1}}), "none");
}

TEST(DialogLine, OtherEntries_HaveNone)
{
    EXPECT_FALSE(ReadDialogLine({0, 1, 0.0, "toast", "opened", {}}));
}

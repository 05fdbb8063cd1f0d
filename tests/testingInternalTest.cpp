#include <base/internal/errors/wildcards.h>
#include <base/internal/testing/testRecord.h>
#include <base/internal/testing/testXml.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

TEST(TestingInternalTest, Patterns)
{
    const struct
    {
        const char* pattern;
        const char* text;
        bool matches;
    } cases[] = {
        {"a.b", "a.b", true},     {"a.b", "a.bc", false},
        {"a", "a.b", false},      {"*", "", true},
        {"", "", true},           {"", "a", false},
        {"a*", "a", true},        {"*b*", "abc", true},
        {"a*c", "abcbc", true},   {"a*c", "abcb", false},
        {"*ab*ab", "abab", true}, {"*ab*ab", "aab", false},
        {"**.x", "a.x", true},    {"a*b*c*d", "a1b2c3d", true},
    };
    for (const auto& each : cases)
        EXPECT_EQ(Kr::fitsWildcards(each.pattern, each.text), each.matches)
            << each.pattern << ' ' << each.text;
}

TEST(TestingInternalTest, XmlTakesEveryText)
{
    const struct
    {
        std::string text;
        std::string escaped;
    } cases[] = {
        {"a<b> & \"c\"", "a&lt;b&gt; &amp; &quot;c&quot;"},
        {"1\n2\r\t", "1&#10;2&#13;&#9;"},
        {std::string("\0\x1b\x7f", 3), "\\x00\\x1b\\x7f"},
        {"\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80", "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80"},
        {"\xe4", "\\xe4"},                           // Latin 1
        {"\xe2\x82", "\\xe2\\x82"},                  // cut off
        {"\xc0\x80", "\\xc0\\x80"},                  // longer than need be
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},         // half a pair
        {"\xef\xbf\xbf", "\\xef\\xbf\\xbf"},         // no character
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"} // beyond the last
    };
    for (const auto& each : cases)
        EXPECT_EQ(Kr::TestXml::escape(each.text), each.escaped);
}

TEST(TestingInternalTest, ARecordComesBackAndACutOneIsNoResult)
{
    Kr::TestResult result;
    result.group = "a\tb";
    result.name = "c";
    result.state = Kr::TestResult::Failed;
    result.seconds = 1.5;
    result.checks = 7;
    result.failures = {{Kr::TestFailure::Exception, "x.cpp", 12, "one\ntwo\\n\ttail"}};
    result.messages = {"", "m"};
    result.leak = {1, 2, 3};
    const std::string text = Kr::TestRecord::write(result);
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_TRUE(Kr::TestRecord::read(text.substr(0, length)).empty());
    const auto back = Kr::TestRecord::read(text + text);
    ASSERT_EQ(back.size(), 2U);
    EXPECT_EQ(Kr::TestRecord::write(back[1]), text);
    EXPECT_EQ(back[1].failures[0].text, result.failures[0].text);
}

} // namespace

// Keys of the registry, and settings in them.

#include "handleCount.h"
#include "ownSettings.h"
#include "raised.h"
#include "scratchKey.h"
#include "variablesFixture.h"

#include <base/inEx.h>
#include <base/inVariable.h>
#include <base/inVariableEx.h>
#include <base/osSettingsStore.h>

#include <gtest/gtest.h>

#include <limits>
#include <thread>

namespace
{

using Kr::OsRegistryKey;
using Ex = Kr::OsRegistryKeyEx;
using Mode = OsRegistryKey::Mode;
using Root = OsRegistryKey::Root;
using Type = OsRegistryKey::ValueType;
using Texts = Kr::Vector<std::string>;
using Bytes = Kr::Vector<std::uint8_t>;

template <class Action>
unsigned long codeOf(Action action)
{
    try
    {
        action();
    }
    catch (const Ex::ExRefused& error)
    {
        return error.getErrorCode();
    }
    return 0;
}

// --- values -------------------------------------------------------------------------------------

/// Stores and reads back, through keys of their own.
template <class Value, class Parameter>
void expectKept(void (OsRegistryKey::*set)(const char*, Parameter),
                Value (OsRegistryKey::*get)(const char*) const, Type type,
                const std::vector<Value>& values)
{
    const ScratchKey scratch;
    for (const Value& value : values)
    {
        OsRegistryKey key = scratch.open();
        (key.*set)("Name", value);
        const OsRegistryKey reader = scratch.open(Mode::Read);
        EXPECT_EQ((reader.*get)("nAmE"), value);
        EXPECT_EQ(reader.getType("NAME"), type);
        EXPECT_EQ(reader.listValues(), Texts{"Name"});
    }
}

TEST(RegistryKey, KeepsValuesOfEveryType)
{
    Bytes all;
    for (unsigned byte = 0; byte < 256; ++byte)
        all.push_back(static_cast<std::uint8_t>(byte));
    const std::string odd = "\"\\\n\r\t\x01\x7F \xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xA8 end\"\n";
    expectKept(&OsRegistryKey::setText, &OsRegistryKey::getText, Type::Text,
               {"", "plain", odd, std::string(500000, 'x')});
    expectKept(&OsRegistryKey::setTextList, &OsRegistryKey::getTextList, Type::TextList,
               {Texts{}, Texts{""}, Texts{"", ""}, Texts{"a", "", odd, ""}});
    using Limits32 = std::numeric_limits<std::int32_t>;
    using Limits64 = std::numeric_limits<std::int64_t>;
    expectKept(&OsRegistryKey::setInteger32, &OsRegistryKey::getInteger32, Type::Integer32,
               {Limits32::min(), -1, 0, Limits32::max()});
    expectKept(&OsRegistryKey::setInteger64, &OsRegistryKey::getInteger64, Type::Integer64,
               {Limits64::min(), std::int64_t{-1}, Limits64::max()});
    expectKept(&OsRegistryKey::setBytes, &OsRegistryKey::getBytes, Type::Bytes,
               {Bytes{}, all, Bytes(Kr::OsRegistryLimits::valueSize, 7)});
}

TEST(RegistryKey, FallsBackToDefaultsButNotForAnotherType)
{
    const ScratchKey scratch;
    OsRegistryKey key = scratch.open();
    EXPECT_EQ(key.getText("t", "default"), "default");
    EXPECT_EQ(key.getTextList("t", {"a"}), Texts{"a"});
    EXPECT_EQ(key.getInteger32("t", 3), 3);
    EXPECT_EQ(key.getInteger64("t", 4), 4);
    EXPECT_EQ(key.getBytes("t", {5}), Bytes{5});
    EXPECT_EQ(reasonOf<Ex::ExNoValue>([&] { key.getText("t"); }),
              std::string("The key '") + key.getPath() + "' has no value 't'.");
    EXPECT_FALSE(key.removeValue("t"));

    key.setInteger32("t", -5);
    EXPECT_EQ(key.getInteger64("T"), -5); // the wider type takes the narrower
    const std::string name =
        std::string("The key '") + key.getPath() + "' has a value 't' that is ";
    EXPECT_EQ(reasonOf<Ex::ExWrongType>([&] { key.getText("t", ""); }),
              name + "a 32-bit integer, not a text.");
    key.setTextList("t", {"replaces"});
    EXPECT_EQ(reasonOf<Ex::ExWrongType>([&] { key.getInteger32("t"); }),
              name + "a list of texts, not a 32-bit integer.");
    key.setText("", "of the empty name");
    EXPECT_EQ(key.listValues(), (Texts{"", "t"}));
    EXPECT_TRUE(key.removeValue("T"));
    EXPECT_FALSE(key.hasValue("t"));
    EXPECT_EQ(key.getText(""), "of the empty name");
}

TEST(RegistryKey, ChecksNamesAndLimits)
{
    const ScratchKey scratch;
    OsRegistryKey key = scratch.open();
    const std::string longest(255, 'k');
    std::string deep = "d";
    for (int i = 1; i < 32; ++i)
        deep += "\\d";
    const struct
    {
        std::string path;
        const char* why;
    } paths[] = {{"\\a", "a name in the path is empty"},
                 {"a\\", "a name in the path is empty"},
                 {"a\\\\b", "a name in the path is empty"},
                 {"a\\" + longest + "k", "a name has more than 255 characters"},
                 {deep + "\\d", "the path has more than 32 names"},
                 {"a\xFF", "it is not UTF-8"},
                 {"\xC3", "it is not UTF-8"},
                 {"\xED\xA0\x80", "it is not UTF-8"}};
    for (const auto& row : paths)
        EXPECT_EQ(reasonOf<Ex::ExInvalidName>(
                      [&] { OsRegistryKey(key, row.path.c_str(), Mode::Create); }),
                  "'" + row.path.substr(0, 256) +
                      "' cannot be the name of a key or value: " + row.why + ".");
    EXPECT_EQ(key.listKeys(), Texts{});
    OsRegistryKey(key, deep.c_str(), Mode::Create);
    EXPECT_THROW(OsRegistryKey(key, nullptr), Kr::ExInternalError);
    EXPECT_THROW(key.hasValue(nullptr), Kr::ExInternalError);
    EXPECT_THROW(key.removeKey(""), Kr::ExInternalError);

    const std::string name(16383, 'n');
    key.setInteger32(name.c_str(), 1);
    EXPECT_EQ(key.listValues(), Texts{name});
    EXPECT_THROW(key.setInteger32((name + 'n').c_str(), 1), Ex::ExInvalidName);
    EXPECT_THROW(key.setInteger32("\x80", 1), Ex::ExInvalidName);

    const std::string value =
        std::string("The key '") + key.getPath() + "' cannot take the value 'v': ";
    const auto refusal = [&](const std::string& text)
    { return reasonOf<Ex::ExInvalidValue>([&] { key.setText("v", text); }); };
    key.setText("v", "old");
    EXPECT_EQ(refusal(std::string("a\0b", 3)), value + "a text holds a null character.");
    EXPECT_EQ(refusal("a\xF8"), value + "a text is not UTF-8.");
    EXPECT_EQ(refusal(std::string(1 << 19, 'x')), value + "it has more than 1048576 bytes.");
    EXPECT_EQ(key.getText("v"), "old");
}

// --- keys ---------------------------------------------------------------------------------------

TEST(RegistryKey, FindsWhatItHasCreated)
{
    const ScratchKey scratch;
    EXPECT_EQ(reasonOf<Ex::ExNoKey>([&] { scratch.open(Mode::Write); }),
              std::string("There is no key 'HKEY_CURRENT_USER\\") + scratch.getPath() + "'.");
    EXPECT_FALSE(OsRegistryKey::removeTree(Root::User, scratch.getPath()));
    OsRegistryKey key = scratch.open();
    const Texts odd = {"%2f", "..", "@values", "A b/c", "x.y", "\xC3\xA4"}; // sorted
    for (const std::string& name : odd)
        OsRegistryKey(key, name.c_str(), Mode::Create).setText("is", name);
    EXPECT_EQ(key.listKeys(), odd);
    for (const std::string& name : odd)
        EXPECT_EQ(OsRegistryKey(key, name.c_str()).getText("is"), name);
    EXPECT_EQ(OsRegistryKey(key, "a B/C", Mode::Create).getText("IS"), "A b/c");
    EXPECT_TRUE(key.listValues().empty());
    EXPECT_TRUE(OsRegistryKey::exists(Root::User, ""));

    OsRegistryKey(key, "one\\two\\three", Mode::Create).setInteger32("v", 1);
    OsRegistryKey(key, "one\\other", Mode::Create);
    EXPECT_TRUE(key.hasKey("ONE\\Two\\three"));
    EXPECT_FALSE(key.hasKey("one\\three"));
    EXPECT_TRUE(key.removeKey("One\\two"));
    EXPECT_FALSE(key.removeKey("one\\two\\three"));
    EXPECT_EQ(OsRegistryKey(key, "one").listKeys(), Texts{"other"});
    EXPECT_EQ(OsRegistryKey(key, "", Mode::Read).listKeys().size(), odd.size() + 1);
}

TEST(RegistryKey, RefusesWhenItIsReadOnlyOrRemoved)
{
    constexpr unsigned long removed = 1018;
    const ScratchKey scratch;
    OsRegistryKey key = scratch.open();
    OsRegistryKey below(key, "below", Mode::Create);
    below.setInteger32("v", 1);
    EXPECT_EQ(below.getInteger32("v"), 1);
    OsRegistryKey reader = scratch.open(Mode::Read);
    EXPECT_EQ(reasonOf<Ex::ExReadOnly>([&] { reader.removeKey("below"); }),
              std::string("The key '") + reader.getPath() + "' is open for reading only.");
    EXPECT_THROW(reader.setInteger32("v", 2), Ex::ExReadOnly);
    ASSERT_TRUE(OsRegistryKey::removeTree(Root::User, scratch.getPath()));
    OsRegistryKey(scratch.open(), "below", Mode::Create).setInteger32("v", 2);
    EXPECT_EQ(codeOf([&] { below.getInteger32("v"); }), removed);
    EXPECT_EQ(codeOf([&] { below.setInteger32("v", 3); }), removed);
    EXPECT_EQ(codeOf([&] { OsRegistryKey(key, "other", Mode::Create); }), removed);
    EXPECT_EQ(OsRegistryKey(scratch.open(), "below").getInteger32("v"), 2);
}

TEST(RegistryKey, ClosesWhatItOpens)
{
    const ScratchKey scratch;
    const unsigned before = HandleCount::get();
    {
        OsRegistryKey key = scratch.open();
        key.setText("v", "x");
        OsRegistryKey other(key, "sub", Mode::Create);
        other = std::move(key);
        EXPECT_EQ(other.getText("v"), "x");
        EXPECT_THROW(key.getText("v"), Kr::ExInternalError); // NOLINT: moved from
        EXPECT_THROW(OsRegistryKey(other, "none"), Ex::ExNoKey);
        EXPECT_THROW(other.getInteger32("v"), Ex::ExWrongType);
        EXPECT_EQ(other.listKeys(), Texts{"sub"});
    }
    EXPECT_EQ(HandleCount::get(), before);
}

TEST(RegistryKey, LosesNothingBetweenThreads)
{
    constexpr int threadCount = 4;
    constexpr int valueCount = 50;
    const ScratchKey scratch;
    OsRegistryKey key = scratch.open();
    const auto write = [&](int number)
    {
        for (int i = 0; i < valueCount; ++i)
        {
            const std::string name = std::to_string(number) + '.' + std::to_string(i);
            key.setInteger32(name.c_str(), i);
            key.setText("contested", std::string(1000, static_cast<char>('a' + number)));
            const std::string found = key.getText("contested");
            EXPECT_EQ(found, std::string(1000, found.front()));
        }
    };
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number)
        threads.emplace_back(write, number);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(key.listValues().size(), threadCount * valueCount + 1U);
}

// --- settings -----------------------------------------------------------------------------------

struct Settings
{
    Package package;
    Kr::InVariable<std::int32_t> samples{package, "t.samples", 4, "", {1, 64}};
    Kr::InVariable<std::int32_t> passes{package, "t.passes", 1, "", {1, 9}};
    Kr::InVariable<std::string> title{package, "t.title", "untitled", ""};
};

std::string dump()
{
    std::ostringstream text;
    Kr::InSettings::dumpAll(text);
    return withoutLibrary(text.str());
}

TEST(SettingsStore, StandsBeforeTheDefaults)
{
    const ScratchKey scratch;
    OsRegistryKey key = scratch.open();
    key.setText("t.samples", "8");
    key.setInteger32("t.passes", 10);
    key.setTextList("t.title", {"a"});
    const Kr::OsSettingsStore store(scratch.getPath());
    const CommandLine commandLine({"--t.samples=16"});
    Settings settings;
    testing::internal::CaptureStdout();
    settings.package.start();
    const std::string from = std::string("key ") + key.getPath();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Variable 't.passes': the value '10' of " + from +
                  " is malformed, expected an integer from 1 to 9; skipped.\n"
                  "Variable 't.title': the value '(a list of texts)' of " +
                  from + " is malformed, expected a text; skipped.\n");
    EXPECT_EQ(dump(), "t.passes = '1', from the default\n"
                      "    not " +
                          from +
                          ": '10', malformed\n"
                          "t.samples = '16', from option --t.samples\n"
                          "    not " +
                          from +
                          ": '8'\n"
                          "    not the default: '4'\n"
                          "t.title = 'untitled', from the default\n"
                          "    not " +
                          from + ": '(a list of texts)', malformed\n");
}

TEST(SettingsStore, KeepsWhatDiffersFromTheDefaults)
{
    const ScratchKey scratch;
    const Kr::OsSettingsStore store(scratch.getPath());
    {
        Settings settings;
        EXPECT_THROW(settings.samples.store(), Kr::InEx::ExUninitializedObject);
        const CommandLine commandLine({"--t.samples=16", "--t.title=x"});
        settings.package.start();
        Kr::InSettings::store(settings.package);
        settings.title.setStored("y z");
        EXPECT_EQ(settings.title.getValue(), "x");
        EXPECT_EQ(
            reasonOf<Kr::InVariableEx::ExMalformedValue>([&] { settings.passes.setStored(10); }),
            "Variable 't.passes': the value '10' of the program is malformed, expected an "
            "integer from 1 to 9.");
    }
    EXPECT_EQ(scratch.open().listValues(), (Texts{"t.samples", "t.title"}));
    Settings settings;
    settings.package.start();
    EXPECT_EQ(settings.samples.getValue(), 16);
    EXPECT_EQ(settings.samples.getSource(), Kr::InNamedVariable::Source::Store);
    EXPECT_EQ(settings.title.getValue(), "y z");
    settings.samples.setStored(4); // the default
    EXPECT_EQ(scratch.open().listValues(), Texts{"t.title"});
}

TEST(SettingsStore, TakesTheMachinesSettingsWhereTheUserHasNone)
{
    const ScratchKey scratch;
    OsRegistryKey machine(Root::Machine, scratch.getPath(), Mode::Create);
    EXPECT_EQ(machine.getPath(), std::string("HKEY_LOCAL_MACHINE\\") + scratch.getPath());
    machine.setInteger64("t.samples", 8);
    machine.setText("t.passes", "2");
    scratch.open().setText("t.passes", "3");
    const Kr::OsSettingsStore store(scratch.getPath());
    Settings settings;
    settings.package.start();
    EXPECT_EQ(settings.samples.getValue(), 8);
    EXPECT_EQ(settings.passes.getValue(), 3);
    settings.samples.setStored(
        4); // the default hides the machine's value, which is none to be stored
    settings.passes.setStored(2);
    EXPECT_EQ(scratch.open().listValues(), Texts{"t.samples"});
    EXPECT_TRUE(OsRegistryKey::removeTree(Root::Machine, scratch.getPath()));
}

TEST(SettingsStore, IsTheProcessesWhileItLives)
{
    const ScratchKey scratch;
    EXPECT_THROW(Kr::OsSettingsStore("a\\"), Ex::ExInvalidName);
    {
        const Kr::OsSettingsStore store(scratch.getPath());
    }
    Settings settings;
    settings.package.start();
    EXPECT_EQ(reasonOf<Kr::ExInternalError>([&] { settings.title.store(); }),
              "Assertion 'store != nullptr' failed.");
}

} // namespace

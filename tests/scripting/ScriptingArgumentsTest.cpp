// The module's side of the scripting boundary: option rows, the search flags
// they set, the string cells of a host path and the mode words.

#include "frame/MessageCatalogue.h"
#include "platform/MessageService.h"
#include "scripting/FindBlocksOptions.h"
#include "scripting/GenerationModeWords.h"
#include "scripting/OptionList.h"
#include "scripting/ScriptingError.h"
#include "scripting/StringCells.h"

#include <gtest/gtest.h>

using namespace LibraryBrowser;

namespace {

HostValue row(std::vector<HostValue> cells)
{
    HostValue value = HostValue::cellArray(cells.empty() ? 0 : 1, cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i)
        value.setCell(i, cells[i]);
    return value;
}

HostValue texts(const std::vector<std::string>& cells)
{
    return HostValue::cellOfStrings(cells);
}

class ScriptingArgumentsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { MessageService::instance().addPrimaryTable(MessageCatalogue::table()); }

    // The identifier and message of the error the call throws; empty if none.
    template <class Call>
    static std::pair<std::string, std::string> failure(Call call)
    {
        try {
            call();
        } catch (const ScriptingError& error) {
            return {error.identifier(), error.what()};
        }
        return {};
    }
};

} // namespace

TEST_F(ScriptingArgumentsTest, RowFaultsAreToldInOrderAndTheFirstWins)
{
    const std::string pairs = "Expected a cell array of pairs (Option, Value)";
    const struct {
        std::vector<std::string> cells;
        std::string messageStart;
    } cases[] = {
        {{}, ""},
        {{"RegExp", "on", "MatchCase", "off", "WholeWord", "on"}, ""},
        {{"RegExp"}, pairs},
        {{"Bogus", "on", "RegExp"}, pairs},
        {{"Bogus", "on"}, "Option Bogus is invalid. Possible options are "},
        {{"RegExp", "ON"}, "Value ON is invalid. Possible values are "},
        {{"RegExp", "yes", "Bogus", "on"}, "Value yes is invalid. Possible values are "},
        {{"RegExp", "on", "regexp", "on"}, "Option regexp is invalid. Possible options are "},
    };
    for (const auto& c : cases) {
        OptionList list(FindBlocksOptions::type());
        list.readCells(texts(c.cells));
        const std::string message = list.getErrorMsg();
        EXPECT_EQ(message.substr(0, c.messageStart.size()), c.messageStart) << message;
        EXPECT_EQ(message.empty(), c.messageStart.empty()) << message;
        const auto thrown = failure([&] { OptionList::read(FindBlocksOptions::type(), texts(c.cells)); });
        EXPECT_EQ(thrown.first, c.messageStart.empty() ? "" : ScriptingError::PairValueMismatch);
        EXPECT_EQ(thrown.second, message);
    }
}

TEST_F(ScriptingArgumentsTest, TheAllowedWordsAreJoinedWithACommaAlone)
{
    OptionList list(FindBlocksOptions::type());
    list.readCells(texts({"Bogus", "on"}));
    const std::string message = list.getErrorMsg();
    const std::string names = message.substr(message.rfind(' ') + 1);
    EXPECT_EQ(names.size(), std::string("RegExp,MatchCase,WholeWord.").size()) << message;
    for (const char* name : {"RegExp", "MatchCase", "WholeWord"})
        EXPECT_NE(names.find(name), std::string::npos) << message;
    EXPECT_EQ(names.find(' '), std::string::npos);
}

TEST_F(ScriptingArgumentsTest, NonStringsAreRefusedBeforeTheRowIsChecked)
{
    const HostValue rows[] = {
        row({HostValue::string("RegExp"), HostValue::doubleScalar(1)}),
        row({HostValue::doubleScalar(1)}),
        row({HostValue::string("RegExp"), HostValue::logicalScalar(true), HostValue::string("x")}),
        row({HostValue::string("RegExp"), HostValue()}),
        row({HostValue::string("RegExp"), texts({"on"})}),
        HostValue::doubleMatrix(1, 2, {1, 2}),
        HostValue::string("RegExp"),
    };
    for (const HostValue& value : rows) {
        const auto thrown = failure([&] { FindBlocksOptions::readOverRepository(value); });
        EXPECT_EQ(thrown, std::make_pair(std::string(ScriptingError::StringTypeExpected),
                                         std::string("Expected a string argument.")));
        EXPECT_EQ(failure([&] { StringCells::read(value); }).first, ScriptingError::StringTypeExpected);
    }
    EXPECT_EQ(StringCells::read(HostValue()), std::vector<std::string>());
    EXPECT_EQ(StringCells::read(texts({"a", "", "c"})), (std::vector<std::string>{"a", "", "c"}));
}

TEST_F(ScriptingArgumentsTest, RowsSetTheFlagsOfBothSearchForms)
{
    const struct {
        std::vector<std::string> cells;
        int repository[3]; // regular expression, whole word, match case
        int belowObject[3];
    } cases[] = {
        {{}, {0, 0, 0}, {0, 0, 0}},
        {{"RegExp", "on"}, {1, 0, 0}, {1, 0, 0}},
        {{"WholeWord", "on"}, {0, 1, 0}, {1, 0, 0}},
        {{"MatchCase", "on"}, {0, 0, 1}, {0, 0, 1}},
        {{"RegExp", "on", "RegExp", "off"}, {0, 0, 0}, {0, 0, 0}},
        {{"RegExp", "off", "RegExp", "on"}, {1, 0, 0}, {1, 0, 0}},
        {{"WholeWord", "on", "RegExp", "off"}, {0, 1, 0}, {1, 0, 0}},
        {{"WholeWord", "on", "MatchCase", "on", "WholeWord", "off"}, {0, 0, 1}, {0, 0, 1}},
    };
    for (const auto& c : cases) {
        const FindBlocksOptions over = FindBlocksOptions::readOverRepository(texts(c.cells));
        const FindBlocksOptions below = FindBlocksOptions::readBelowObject(texts(c.cells));
        EXPECT_EQ(int(over.regExp), c.repository[0]);
        EXPECT_EQ(int(over.wholeWord), c.repository[1]);
        EXPECT_EQ(int(over.matchCase), c.repository[2]);
        EXPECT_EQ(int(below.regExp), c.belowObject[0]);
        EXPECT_EQ(int(below.wholeWord), c.belowObject[1]);
        EXPECT_EQ(int(below.matchCase), c.belowObject[2]);
    }
}

TEST_F(ScriptingArgumentsTest, ModeWordsAndTheirSilentDefault)
{
    const std::pair<const char*, GenerationMode> words[] = {
        {"Minimal", GenerationMode::Minimal},
        {"IgnoreTimestamp", GenerationMode::IgnoreTimestamp},
        {"Regenerate", GenerationMode::Regenerate},
        {"regenerate", GenerationMode::Minimal},
        {"", GenerationMode::Minimal},
        {"Regenerate ", GenerationMode::Minimal},
    };
    // Twice: an unknown word entered in the table keeps its default.
    for (int round = 0; round < 2; ++round) {
        for (const auto& [word, mode] : words)
            EXPECT_EQ(GenerationModeWords::modeOf(word), mode) << word;
    }
}

// The module compared with the model over generated documents. VS_PFS_MODEL_DOCUMENTS sets how
// many, over all kinds together, and VS_PFS_MODEL_SEED the number of the first.
//
// The other tests check the comparison itself: that it detects differences, that the documents
// reach every routine, and that the model reads known texts correctly.
#include "tests/model/trials.h"

#include "tests/support/notation.h"
#include "tests/support/raw_documents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <set>

namespace tests::model {

namespace {

uint64_t setting(const char *name, uint64_t otherwise)
{
    const char *value = std::getenv(name);
    return value == nullptr ? otherwise : std::strtoull(value, nullptr, 0);
}

uint64_t first_number()
{
    return setting("VS_PFS_MODEL_SEED", 1);
}

uint64_t documents_of_a_kind()
{
    return setting("VS_PFS_MODEL_DOCUMENTS", 20'000) / all_kinds.size();
}

Calls calls_of(const Events &events)
{
    Calls calls;
    for (const Event &event : events) {
        calls.push_back(event.call);
    }
    return calls;
}

// What the model reports for the text, after the announcements.
Calls model_reads(const std::string &document)
{
    Model model(document, Answers(Answers::To::none, 0));
    EXPECT_TRUE(VwStreamOpen(model));
    VwStreamRead(model);
    EXPECT_TRUE(model.ended);
    Calls calls = calls_of(model.events);
    const auto spacing = std::find_if(
        calls.begin(), calls.end(), [](const Call &call) { return call.id == VW_SO_LINE_SPACING; });
    calls.erase(calls.begin(), spacing + 1);
    return calls;
}

class EveryKind : public ::testing::TestWithParam<Kind> {};

} // namespace

TEST_P(EveryKind, IsReadAsTheModelReadsIt)
{
    const uint64_t documents = documents_of_a_kind();
    std::cout << documents << " documents, numbered from " << first_number() << "\n";
    ASSERT_GT(documents, 0U);
    uint64_t failures = 0;
    for (uint64_t i = 0; i < documents && failures < 3; ++i) {
        if (const auto failure = failure_of(GetParam(), first_number() + i)) {
            ++failures;
            ADD_FAILURE() << *failure;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Model, EveryKind, ::testing::ValuesIn(all_kinds),
                         [](const auto &instance) { return name_of(instance.param); });

TEST(ModelComparison, SeesAnotherCharacter)
{
    const auto difference = compare(write_document(2, "\x0D"
                                                      "one\x0E"),
                                    write_document(2, "\x0D"
                                                      "two\x0E"),
                                    Plan{});
    ASSERT_TRUE(difference.has_value());
    EXPECT_NE(text_of(*difference).find("the output calls differ"), std::string::npos);
}

TEST(ModelComparison, SeesAnotherPosition)
{
    Plan stopping;
    stopping.stop_at = Answers::To::all;
    const auto difference =
        compare(choice_document('2', "one\x0Ctwo\x0E"), choice_document('2', "one\x0C"), stopping);
    ASSERT_TRUE(difference.has_value());
}

TEST(ModelComparison, SeesAnotherSavedState)
{
    // The margins are not reported before the end, so only the saved bytes differ.
    const auto difference = compare(write_document(4, bytes("01 'a' 07 05 01 02 40 0E")),
                                    write_document(4, bytes("01 'a' 07 05 01 03 40 0E")), Plan{});
    ASSERT_TRUE(difference.has_value());
    EXPECT_EQ(difference->what, "during a call leftMargin is 1 instead of 2\n");
    EXPECT_EQ(difference->call + 1, difference->expected.size());
}

TEST(ModelComparison, SeesAnotherSavedStateDuringACall)
{
    // The margins differ while 'b' is reported and are equal again before the read ends.
    const auto difference =
        compare(write_document(4, bytes("01 'a' 07 05 01 02 40 'b' 07 05 01 09 50 0E")),
                write_document(4, bytes("01 'a' 07 05 01 03 40 'b' 07 05 01 09 50 0E")), Plan{});
    ASSERT_TRUE(difference.has_value());
    EXPECT_EQ(difference->what, "during a call leftMargin is 1 instead of 2\n");
    ASSERT_LT(difference->call, difference->expected.size());
    EXPECT_EQ(difference->expected[difference->call].call, (Call{VW_SO_CHARACTER, 1, {'b'}}));
}

TEST(ModelComparison, ReducesWhatDiffersToItself)
{
    const std::string document = choice_document('2', "some text\x0E");
    EXPECT_FALSE(compare(document, Plan{}).has_value());
    EXPECT_EQ(reduced(document, Plan{}), document);
}

TEST(ModelDocuments, ReachEveryRoutineAndBreak)
{
    std::map<int32_t, std::set<int32_t>> first_arguments;
    std::set<uint8_t> format_types;
    for (uint64_t number = 1; number <= 1000; ++number) {
        for (const Kind kind : all_kinds) {
            const std::string document = trial_of(kind, number).document;
            Model model(document, Answers(Answers::To::none, 0));
            VwStreamOpen(model);
            VwStreamSection(model);
            VwStreamRead(model);
            format_types.insert(model.opened.formatType);
            for (const Event &event : model.events) {
                first_arguments[event.call.id].insert(event.call.arguments[0]);
            }
        }
    }
    EXPECT_EQ(format_types, (std::set<uint8_t>{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(first_arguments.size(), 15U);
    EXPECT_EQ(first_arguments[VW_SO_BREAK], (std::set<int32_t>{1, 2, 6, 7}));
    EXPECT_EQ(first_arguments[VW_SO_ATTRIBUTE], (std::set<int32_t>{2, 3, 4, 10, 11}));
    EXPECT_EQ(first_arguments[VW_SO_ALIGNMENT], (std::set<int32_t>{1, 2, 3}));
    EXPECT_EQ(first_arguments[VW_SO_TAB_STOP], (std::set<int32_t>{1, 4}));
    EXPECT_EQ(first_arguments[VW_SO_CHARACTER].size(), 257U) << "all bytes, and the missing one";
}

TEST(Model, JoinsWrappedWriteLines)
{
    const std::string document =
        write_document(2, bytes("0D '  ab' 0D 'cdefg' 0D 'h' 0E"), {write_margins(0, 6)});
    EXPECT_TRUE(
        matches(model_reads(document), "'ab cdefg' | 7 0 0 288 | 13 1 0 | 7 0 0 0 | 'h' | 13 2 0"));
}

TEST(Model, TranslatesTheAssistantsCharacters)
{
    EXPECT_TRUE(matches(model_reads(write_document(3, bytes("F0 21 E0 00 1F 0E"))),
                        "4 4 1 | 1 179 | 4 4 0 | 1 224 | 1 254 | 13 2 0"));
}

TEST(Model, HidesWhatProfessionalWriteHides)
{
    EXPECT_TRUE(
        matches(model_reads(write_document(5, bytes("02 'ab' 02 'cd' 00 0E"))), "'ab ' | 13 2 0"));
}

TEST(Model, ChainsFirstChoiceAttributes)
{
    EXPECT_TRUE(matches(model_reads(choice_document('2', bytes("C1 48 06 0C 0E"))),
                        "4 10 1 | 4 11 1 | 1 193 | 46 1 240 0 0 | 13 1 0 | 13 2 0"));
}

TEST(Model, ReadsRulersAndPageBreaksOfFirstChoice3)
{
    EXPECT_TRUE(matches(
        model_reads(choice_document('3', bytes("0C 'abc' '[--T-]' 0D 08 'x' 0D 40 01 'a' 0D 0E"))),
        "8 | 10 1 0 0 432 | 9 | 11 0 720 | 3 4 0 | 'a' | 13 1 0 | 13 2 0"));
}

TEST(Model, EchoesCommands)
{
    EXPECT_TRUE(matches(model_reads(choice_document('2', bytes("'*n**x*' 0E"))),
                        "3 4 0 | *'*n*' | '*x*' | 13 2 0"));
}

TEST(Model, EndsWhereTheDataEnd)
{
    EXPECT_TRUE(matches(model_reads(choice_document('2', bytes("'ab' C1"))), "'ab' | 13 2 0"));
    EXPECT_TRUE(matches(model_reads(write_document(1, bytes("'*P x'"))), "*'*P x' | 13 2 0"));
}

} // namespace tests::model

#include "builder/commands.h"

#include <gtest/gtest.h>

#include <string>

using namespace pfs_builder;

TEST(BuilderCommands, KnowsEveryCommand)
{
    const char *const commands[] = {"*N*",           "*n*",         "*NEW PAGE*",
                                    "*new page*",    "*PAGE*",      "*YES*",
                                    "*Y*",           "*NO*",        "*CENTER*",
                                    "*C*",           "*RIGHT*",     "*R*",
                                    "*JUSTIFY YES*", "*JUSTIFY N*", "*JY Y*",
                                    "*JY NO*",       "*P 27,15*",   "*PRINTER 27,15*",
                                    "*GRAPH A:X*",   "*G X*",       "*JOIN A:X Y*",
                                    "*J X*",         "*P *"};
    for (const std::string command : commands) {
        const Command found = find_command(command + " and more");
        EXPECT_EQ(found.state, CommandState::whole) << command;
        EXPECT_EQ(found.length, command.size()) << command;
    }
}

TEST(BuilderCommands, LeavesOtherAsterisksAlone)
{
    const char *const texts[] = {"*",           "**",         "* N*",       "*NEW  PAGE*",
                                 "*NEW LINE*",  "*NEWPAGE*",  "*PRINTER*",  "*PRINTERXY*",
                                 "*JUSTIFY C*", "*JY MAYBE*", "*emphasis*", "*N"};
    for (const char *const text : texts) {
        EXPECT_EQ(find_command(text).state, CommandState::none) << text;
    }
}

TEST(BuilderCommands, DetectsAnUnclosedArgument)
{
    EXPECT_EQ(find_command("*PRINTER 27,15 and on").state, CommandState::unclosed);
    EXPECT_EQ(find_command("*p value").state, CommandState::unclosed);
}

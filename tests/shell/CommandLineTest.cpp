// What the program makes of its arguments.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "shell/CommandLine.h"
#include "tests/MarkdownTable.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

Command parse(std::vector<std::string_view> arguments) { return parseCommandLine(arguments); }

std::string complaintAbout(std::vector<std::string_view> arguments) {
    const Command parsed = parse(std::move(arguments));
    const auto* wrong = std::get_if<command::WrongUse>(&parsed);
    return wrong ? wrong->complaint : "none";
}

TEST(CommandLine, WithoutArgumentsTheProgramStarts) {
    const auto start = std::get<command::Start>(parse({}));
    EXPECT_THAT(start.addresses, IsEmpty());
    EXPECT_FALSE(start.isService);
}

TEST(CommandLine, TheSessionBusStartsItAsAService) {
    EXPECT_TRUE(std::get<command::Start>(parse({"--dbus-service"})).isService);
}

TEST(CommandLine, HasItsOptions) {
    EXPECT_TRUE(std::holds_alternative<command::Help>(parse({"--help"})));
    EXPECT_TRUE(std::holds_alternative<command::Version>(parse({"--version"})));
    EXPECT_TRUE(std::holds_alternative<command::Quit>(parse({"--quit"})));
    EXPECT_FALSE(std::get<command::Doctor>(parse({"doctor"})).undoes);
    EXPECT_TRUE(std::get<command::Doctor>(parse({"doctor", "--undo"})).undoes);
}

TEST(CommandLine, AddressesStayAsTheyAreAndInTheirOrder) {
    const auto start =
        std::get<command::Start>(parse({"tarvix://openTheInput?with=save%20%zz\n\x01", "TARVIX:anything", "tarvix:"}));
    EXPECT_THAT(start.addresses,
                ElementsAre("tarvix://openTheInput?with=save%20%zz\n\x01", "TARVIX:anything", "tarvix:"));
    EXPECT_FALSE(start.isService);
}

TEST(CommandLine, AnAddressOfMegabytesIsAnAddress) {
    const std::string address = "tarvix://openTheInput?with=" + std::string(4U << 20U, 'a');
    EXPECT_THAT(std::get<command::Start>(parse({address})).addresses, ElementsAre(address));
}

TEST(CommandLine, AnOptionIsAlone) {
    for (const std::string_view option : {"--help", "--version", "--quit", "--dbus-service"})
        EXPECT_EQ(complaintAbout({option, "tarvix://openTheInput"}),
                  "'" + std::string(option) + "' takes no further argument");
    EXPECT_EQ(complaintAbout({"doctor", "--undo", "--undo"}), "'doctor' takes --undo and nothing else");
    EXPECT_EQ(complaintAbout({"doctor", "now"}), "'doctor' takes --undo and nothing else");
}

TEST(CommandLine, WhatIsNoAddressIsWrongWhereverItStands) {
    EXPECT_EQ(complaintAbout({"tarvix://openTheInput", "https://example.org/"}),
              "unknown argument 'https://example.org/'");
    EXPECT_EQ(complaintAbout({"tarvix"}), "unknown argument 'tarvix'");
    EXPECT_EQ(complaintAbout({"--Help"}), "unknown argument '--Help'");
    EXPECT_EQ(complaintAbout({""}), "unknown argument ''");
    EXPECT_EQ(complaintAbout({"-"}), "unknown argument '-'");
    EXPECT_EQ(complaintAbout({"tarvix://openTheInput", "--quit"}), "unknown argument '--quit'");
}

// A session bus carries nothing else, and there is nothing to be read in it.
TEST(CommandLine, AnAddressThatIsNotUtf8IsRefused) {
    for (const std::string_view bytes :
         {"\xff", "\xc0\xaf", "\xe0\x80\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xc3"})
        EXPECT_EQ(complaintAbout({"tarvix://openTheInput", "tarvix:" + std::string(bytes)}),
                  "the address 'tarvix:" + std::string(bytes.size(), '?') + "' is not valid UTF-8");
    EXPECT_THAT(std::get<command::Start>(parse({"tarvix:\xc3\xa9"})).addresses, ElementsAre("tarvix:\xc3\xa9"));
}

TEST(CommandLine, AComplaintIsOneShortLineWithoutControlCharacters) {
    EXPECT_EQ(complaintAbout({"\x1b[2J\r\n\x7f\xc3\xa9"}), "unknown argument '?[2J" + std::string(5, '?') + "'");
    EXPECT_THAT(complaintAbout({std::string(1U << 20U, 'x')}), EndsWith("xxx...'"));
    EXPECT_LT(complaintAbout({std::string(1U << 20U, 'x')}).size(), 100U);
}

TEST(CommandLine, ItsTextTellsAllFormsAndStatusesInNarrowLines) {
    const std::string text = usageText();
    for (const auto& [form, help] : commandHelp) EXPECT_THAT(text, HasSubstr("\n  " + std::string(form) + "\n      "));
    for (const auto& [status, meaning] : exitStatusHelp)
        EXPECT_THAT(text, HasSubstr("\n  " + std::to_string(static_cast<int>(status)) + "\n      "));
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 100U) << line;
    EXPECT_THAT(text, EndsWith("\n"));
}

TEST(Readme, ListsTheCommandsAndTheExitStatuses) {
    std::vector<std::string> commands, statuses;
    for (const auto& [form, help] : commandHelp)
        commands.push_back("| `" + std::string(form) + "` | " + std::string(help) + " |");
    for (const auto& [status, meaning] : exitStatusHelp)
        statuses.push_back("| " + std::to_string(static_cast<int>(status)) + " | " + std::string(meaning) + " |");
    EXPECT_THAT(rowsBelow(TARVIX_README, "| command "), ElementsAreArray(commands));
    EXPECT_THAT(rowsBelow(TARVIX_README, "| status "), ElementsAreArray(statuses));
}

}  // namespace
}  // namespace tarvix

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "shell/Doctor.h"

namespace tarvix {
namespace {

using Controls = SurveyedProgram::Controls;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// Two folders in memory.
class Files : public DesktopEntryFiles {
public:
    std::string userFolder() override { return "/home/me/applications"; }
    std::optional<DesktopEntryFile> ofSystem(std::string_view id) override { return find(systems, id); }
    std::optional<DesktopEntryFile> ofUser(std::string_view id) override { return find(users, id); }
    std::vector<DesktopEntryFile> allOfUser() override {
        std::vector<DesktopEntryFile> all;
        for (const auto& [path, text] : users) all.push_back({path, text});
        return all;
    }
    Outcome<std::monostate> create(const DesktopEntryFile& file) override {
        if (isFull) return Fault{"the disk is full"};
        EXPECT_TRUE(users.emplace(file.path, file.text).second) << "over a file that is there";
        return std::monostate{};
    }
    Outcome<std::monostate> remove(const DesktopEntryFile& file) override {
        if (isFull) return Fault{"it can't be"};
        EXPECT_EQ(users[file.path], file.text);
        users.erase(file.path);
        return std::monostate{};
    }

    std::map<std::string, std::string, std::less<>> systems, users;
    bool isFull = false;

private:
    static std::optional<DesktopEntryFile> find(const std::map<std::string, std::string, std::less<>>& folder,
                                                std::string_view id) {
        const auto found = folder.find(std::string(id) + ".desktop");
        if (found == folder.end()) return std::nullopt;
        return DesktopEntryFile{found->first, found->second};
    }
};

SurveyedProgram program(ProgramToolkit toolkit, Controls controls = Controls::none) {
    return {7, "Prog", toolkit, "", controls, "", false, "prog"};
}

class DoctorTest : public ::testing::Test {
protected:
    DoctorTest() {
        survey.busIsThere = survey.isEnabled = survey.javaBridgeIsThere = true;
        files.systems["prog.desktop"] = "[Desktop Entry]\nType=Application\nExec=prog %U\n";
    }

    Diagnosis examine() { return tarvix::examine(survey, files, consultation()); }
    Diagnosis undo() { return tarvix::undo(files, consultation()); }
    Consultation consultation() {
        Consultation made{[this](std::string_view line) { said.emplace_back(line); }, nullptr};
        if (answer)
            made.ask = [this](std::string_view question) {
                asked.emplace_back(question);
                return *answer;
            };
        return made;
    }
    std::string lineOf(const SurveyedProgram& which) const {
        const auto finding = findingOf(which, survey);
        return finding ? finding->line : "";
    }

    ProgramSurvey survey;
    Files files;
    std::optional<bool> answer;
    std::vector<std::string> said, asked;
};

TEST_F(DoctorTest, WhereEverythingShowsItSaysSo) {
    survey.programs = {program(ProgramToolkit::gtk3, Controls::shown)};
    EXPECT_EQ(examine(), Diagnosis::well);
    EXPECT_THAT(said, ElementsAre("Accessibility is on, and every program with a window shows its controls."));
}

TEST_F(DoctorTest, WithoutABusThatIsAllThereIsToSay) {
    survey.busIsThere = false;
    survey.programs = {program(ProgramToolkit::chromium)};
    EXPECT_EQ(examine(), Diagnosis::somethingIsWrong);
    EXPECT_THAT(said, ElementsAre(StartsWith("The accessibility bus can't be reached")));
}

TEST_F(DoctorTest, AccessibilityThatIsOffIsWrongEvenIfAllShow) {
    survey.isEnabled = false;
    EXPECT_EQ(examine(), Diagnosis::somethingIsWrong);
    EXPECT_THAT(said, ElementsAre(StartsWith("Accessibility is off")));
}

TEST_F(DoctorTest, EachProgramHasOneLineThatSaysWhy) {
    EXPECT_EQ(lineOf(program(ProgramToolkit::chromium)),
              "Prog (process 7) shows no controls: it looks only when it starts, and accessibility was off then; it "
              "shows them once it is started again.");
    EXPECT_THAT(lineOf(program(ProgramToolkit::electron)), HasSubstr("looks only when it starts"));
    EXPECT_THAT(lineOf(program(ProgramToolkit::qt)), HasSubstr("looks only when it starts"));
    EXPECT_THAT(lineOf(program(ProgramToolkit::firefox)), HasSubstr("accessibility.force_disabled"));
    EXPECT_THAT(lineOf(program(ProgramToolkit::java)), HasSubstr("only with its accessibility bridge."));
    EXPECT_THAT(lineOf(program(ProgramToolkit::gtk2)), HasSubstr("GTK 2"));
    EXPECT_THAT(lineOf(program(ProgramToolkit::gtk3)), HasSubstr("another session or a closed sandbox"));
    EXPECT_THAT(lineOf(program(ProgramToolkit::unknown)), HasSubstr("isn't made with anything that is known"));
    SurveyedProgram sdl = program(ProgramToolkit::inaccessible);
    sdl.toolkitName = "SDL";
    EXPECT_THAT(lineOf(sdl), HasSubstr("made with SDL, which has no accessibility."));
    EXPECT_EQ(lineOf(program(ProgramToolkit::qt, Controls::silent)),
              "Prog (process 7) shows no controls: it doesn't answer.");
    EXPECT_EQ(lineOf(program(ProgramToolkit::gtk3, Controls::bare)),
              "Prog (process 7) shows an empty window: it draws its window itself, and tells nobody what is in it.");
    EXPECT_THAT(lineOf(program(ProgramToolkit::chromium, Controls::bare)), HasSubstr("unless it is told to"));
    for (const auto toolkit : {ProgramToolkit::chromium, ProgramToolkit::gtk3, ProgramToolkit::unknown})
        EXPECT_EQ(lineOf(program(toolkit, Controls::shown)), "");
}

TEST_F(DoctorTest, WhileAccessibilityIsOffThatIsTheReasonOfThoseWhoLookForIt) {
    survey.isEnabled = false;
    for (const auto toolkit :
         {ProgramToolkit::chromium, ProgramToolkit::electron, ProgramToolkit::qt, ProgramToolkit::firefox})
        EXPECT_THAT(lineOf(program(toolkit)), HasSubstr("only while accessibility is on"));
    EXPECT_THAT(lineOf(program(ProgramToolkit::gtk3)), HasSubstr("another session"));
    EXPECT_THAT(lineOf(program(ProgramToolkit::java)), HasSubstr("bridge"));
}

TEST_F(DoctorTest, AVariableThatHidesThemIsNamedAndTakenAway) {
    SurveyedProgram hidden = program(ProgramToolkit::gtk3);
    hidden.hiddenBy = "NO_AT_BRIDGE=1";
    const auto finding = findingOf(hidden, survey);
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->line, "Prog (process 7) shows no controls: it was started with NO_AT_BRIDGE=1.");
    EXPECT_EQ(finding->remedy, (Remedy{{}, {"NO_AT_BRIDGE"}, {}}));
}

TEST_F(DoctorTest, AProgramOfAnotherUserIsBeyondHelp) {
    SurveyedProgram roots = program(ProgramToolkit::chromium);
    roots.runsAsAnother = true;
    const auto finding = findingOf(roots, survey);
    ASSERT_TRUE(finding);
    EXPECT_THAT(finding->line, HasSubstr("another user"));
    EXPECT_FALSE(finding->remedy);
}

TEST_F(DoctorTest, ThereAreRemediesForThoseThatLookOnlyOnceAndForJava) {
    const auto remedy = [&](ProgramToolkit toolkit) { return findingOf(program(toolkit), survey)->remedy; };
    const Remedy chromium{{"ACCESSIBILITY_ENABLED=1"}, {}, {"--force-renderer-accessibility"}};
    EXPECT_EQ(remedy(ProgramToolkit::chromium), chromium);
    EXPECT_EQ(remedy(ProgramToolkit::electron), chromium);
    EXPECT_EQ(remedy(ProgramToolkit::qt), (Remedy{{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1"}, {}, {}}));
    ASSERT_TRUE(remedy(ProgramToolkit::java));
    EXPECT_THAT(remedy(ProgramToolkit::java)->variables, ElementsAre(StartsWith("JAVA_TOOL_OPTIONS=")));
    survey.javaBridgeIsThere = false;
    EXPECT_FALSE(remedy(ProgramToolkit::java)) << "with it Java wouldn't start any more";
    EXPECT_THAT(lineOf(program(ProgramToolkit::java)), HasSubstr("libatk-wrapper-java"));
    for (const auto toolkit : {ProgramToolkit::gtk3, ProgramToolkit::firefox, ProgramToolkit::inaccessible})
        EXPECT_FALSE(remedy(toolkit));
}

TEST_F(DoctorTest, ANameCanNotGiveTheTerminalOrders) {
    SurveyedProgram evil = program(ProgramToolkit::unknown);
    evil.name = "evil\x1b[2J\nwell\x7f" + std::string(200, 'x');
    EXPECT_THAT(lineOf(evil), StartsWith("evil?[2J?well?xxx"));
    EXPECT_LT(lineOf(evil).size(), 250u);
}

TEST_F(DoctorTest, ARemedyIsWrittenOnAYes) {
    answer = true;
    survey.programs = {program(ProgramToolkit::qt)};
    EXPECT_EQ(examine(), Diagnosis::somethingIsWrong);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_THAT(asked[0], HasSubstr("/home/me/applications/prog.desktop"));
    EXPECT_THAT(asked[0], HasSubstr("QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1"));
    EXPECT_THAT(files.users["prog.desktop"], HasSubstr("Exec=env QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 prog %U\n"));
    EXPECT_EQ(authorshipOf(files.users["prog.desktop"]), Authorship::ours);
    EXPECT_THAT(said.back(), StartsWith("Written."));
}

TEST_F(DoctorTest, WithoutAYesNothingIsWritten) {
    answer = false;
    survey.programs = {program(ProgramToolkit::qt)};
    examine();
    EXPECT_EQ(asked.size(), 1u);
    EXPECT_TRUE(files.users.empty());
}

TEST_F(DoctorTest, WhereNobodyCanBeAskedNothingIsWritten) {
    survey.programs = {program(ProgramToolkit::qt)};
    examine();
    EXPECT_TRUE(files.users.empty());
    EXPECT_THAT(said.back(), HasSubstr("at a terminal"));
}

TEST_F(DoctorTest, AFileOfTheUsersOwnIsLeftAsItIs) {
    answer = true;
    survey.programs = {program(ProgramToolkit::qt)};
    files.users["prog.desktop"] = "[Desktop Entry]\nType=Application\nExec=my-own\n";
    const auto before = files.users;
    examine();
    EXPECT_EQ(files.users, before);
    EXPECT_THAT(asked, IsEmpty());
    EXPECT_THAT(said.back(), HasSubstr("of your own"));
}

TEST_F(DoctorTest, WhatIsWrittenAlreadyOnlyNeedsAnotherStart) {
    answer = true;
    survey.programs = {program(ProgramToolkit::qt)};
    examine();
    examine();
    EXPECT_EQ(asked.size(), 1u);
    EXPECT_THAT(said.back(), HasSubstr("when it is started again"));
}

TEST_F(DoctorTest, TwoProcessesOfOneProgramAreAskedForOnce) {
    answer = false;
    survey.programs = {program(ProgramToolkit::qt), program(ProgramToolkit::qt)};
    survey.programs[1].pid = 8;
    examine();
    EXPECT_EQ(std::ranges::count_if(said, [](const std::string& line) { return line.starts_with("Prog (process"); }),
              2);
    EXPECT_EQ(asked.size(), 1u);
}

TEST_F(DoctorTest, AProgramThatNoDesktopFileStartsIsOnlyTold) {
    answer = true;
    survey.programs = {program(ProgramToolkit::qt), program(ProgramToolkit::chromium)};
    survey.programs[0].desktopEntry = "";
    survey.programs[1].desktopEntry = "unknown";
    examine();
    EXPECT_THAT(asked, IsEmpty());
    EXPECT_EQ(said.size(), 2u);
}

TEST_F(DoctorTest, ADesktopFileThatCanNotBeUnderstoodIsSaid) {
    answer = true;
    survey.programs = {program(ProgramToolkit::qt)};
    files.systems["prog.desktop"] = "[Desktop Entry]\nType=Application\nExec=\"prog\n";
    examine();
    EXPECT_THAT(asked, IsEmpty());
    EXPECT_EQ(said.back(), "No remedy for Prog: its command line has quotes that don't end.");
}

TEST_F(DoctorTest, WhatCouldNotBeWrittenIsSaid) {
    answer = true;
    files.isFull = true;
    survey.programs = {program(ProgramToolkit::qt)};
    examine();
    EXPECT_EQ(said.back(), "Not written: the disk is full.");
}

TEST_F(DoctorTest, UndoRemovesWhatWasWrittenAndNothingElse) {
    answer = true;
    files.systems["other.desktop"] = "[Desktop Entry]\nType=Application\nExec=other\n";
    survey.programs = {program(ProgramToolkit::qt), program(ProgramToolkit::chromium)};
    survey.programs[1].desktopEntry = "other";
    files.users["mine.desktop"] = "[Desktop Entry]\nType=Application\nExec=mine\n";
    examine();
    ASSERT_EQ(files.users.size(), 3u);
    files.users["other.desktop"] += "# my own line\n";
    said.clear();
    EXPECT_EQ(undo(), Diagnosis::somethingIsWrong) << "one is left";
    EXPECT_THAT(said, ElementsAre("Left, as it was changed since it was written: /home/me/applications/other.desktop",
                                  "Removed: /home/me/applications/prog.desktop"));
    EXPECT_EQ(files.users.size(), 2u);
    EXPECT_TRUE(files.users.contains("mine.desktop"));
}

TEST_F(DoctorTest, UndoWithNothingToUndoIsWell) {
    files.users["mine.desktop"] = "[Desktop Entry]\nType=Application\nExec=mine\n";
    EXPECT_EQ(undo(), Diagnosis::well);
    EXPECT_THAT(said, ElementsAre("There is nothing to undo."));
}

TEST_F(DoctorTest, WhatCouldNotBeRemovedIsSaid) {
    answer = true;
    survey.programs = {program(ProgramToolkit::qt)};
    examine();
    files.isFull = true;
    EXPECT_EQ(undo(), Diagnosis::somethingIsWrong);
    EXPECT_EQ(said.back(), "Not removed: /home/me/applications/prog.desktop: it can't be");
}

}  // namespace
}  // namespace tarvix

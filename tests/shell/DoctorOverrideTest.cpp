#include <gtest/gtest.h>

#include "shell/DoctorOverride.h"

namespace tarvix {
namespace {

const Remedy kBoth{{"A=1"}, {}, {"--flag"}};

std::string command(std::string_view text, const Remedy& remedy = kBoth) {
    Outcome<std::string> result = commandWith(remedy, text);
    return result ? result.value() : "fault: " + result.reason();
}

std::string copied(std::string_view text, const Remedy& remedy = kBoth) {
    Outcome<std::string> result = overrideOf(text, remedy);
    return result ? result.value() : "fault: " + result.reason();
}

// The mark differs with every text.
std::string withoutMark(std::string text) {
    const std::size_t mark = text.find("X-Tarvix-Override=");
    EXPECT_NE(mark, std::string::npos);
    text.erase(mark, text.find('\n', mark) + 1 - mark);
    EXPECT_EQ(text.find("X-Tarvix-Override="), std::string::npos) << "one mark";
    return text;
}

TEST(DoctorCommand, TheVariableComesFirstAndTheFlagBeforeTheProgramsOwnArguments) {
    EXPECT_EQ(command("/usr/bin/chromium %U"), "env A=1 /usr/bin/chromium --flag %U");
    EXPECT_EQ(command("code"), "env A=1 code --flag");
    EXPECT_EQ(command("  code   --new-window  %F "), "  env A=1 code --flag   --new-window  %F ");
    EXPECT_EQ(command("code %F", {{"A=1", "B=2"}, {"C"}, {}}), "env -u C A=1 B=2 code %F");
    EXPECT_EQ(command("code %F", {{}, {}, {"--x", "--y"}}), "code --x --y %F");
    EXPECT_EQ(command("code %F", {{}, {"C"}, {}}), "env -u C code %F");
}

TEST(DoctorCommand, WhatIsThereAlreadyIsNotAddedAgain) {
    EXPECT_EQ(command("env A=1 code --flag %F"), "env A=1 code --flag %F");
    EXPECT_EQ(command("code --flag %F"), "env A=1 code --flag %F");
    EXPECT_EQ(command(command("code %F")), command("code %F"));
}

TEST(DoctorCommand, AProgramBehindEnvIsFound) {
    EXPECT_EQ(command("env BAMF_DESKTOP_FILE_HINT=/x.desktop /snap/bin/code --force %F"),
              "env A=1 env BAMF_DESKTOP_FILE_HINT=/x.desktop /snap/bin/code --flag --force %F");
    EXPECT_EQ(command("/usr/bin/env -i -u X Y=2 code"), "env A=1 /usr/bin/env -i -u X Y=2 code --flag");
    EXPECT_EQ(command("env env Z=1 code"), "env A=1 env env Z=1 code --flag");
}

TEST(DoctorCommand, QuotesAndEscapesStayAsTheyAre) {
    EXPECT_EQ(command(R"("/opt/My App/app" "a b" %U)"), R"(env A=1 "/opt/My App/app" --flag "a b" %U)");
    EXPECT_EQ(command(R"("/opt/a\\"b/app" %U)"), R"(env A=1 "/opt/a\\"b/app" --flag %U)") << "a quote in the path";
    EXPECT_EQ(command(R"(/opt/my\\ app/app %U)"), R"(env A=1 /opt/my\\ app/app --flag %U)");
    EXPECT_EQ(command(R"('/opt/my app/app' %U)"), R"(env A=1 '/opt/my app/app' --flag %U)");
    EXPECT_EQ(command(R"(/opt/app\s%U)"), R"(env A=1 /opt/app --flag\s%U)") << "an escaped space parts words too";
}

TEST(DoctorCommand, WhatIsAddedIsQuotedWhereItMustBe) {
    EXPECT_EQ(command("java", {{"O=-Da=b -Xc"}, {}, {}}), R"(env "O=-Da=b -Xc" java)");
    EXPECT_EQ(command("p", {{R"(O=a"b$c`d\e)"}, {}, {}}), R"(env "O=a\\"b\\$c\\`d\\\\e" p)");
    EXPECT_EQ(command("p", {{"O=50%"}, {}, {}}), "env O=50%% p") << "a percent sign would be a field code";
}

TEST(DoctorCommand, AShellIsGivenTheVariableAlone) {
    EXPECT_EQ(command(R"(sh -c "exec code %F")"), R"(env A=1 sh -c "exec code %F")");
    EXPECT_EQ(command("/bin/bash /opt/run.sh"), "env A=1 /bin/bash /opt/run.sh");
}

TEST(DoctorCommand, AFlatpakGetsBothInsideOfItsSandbox) {
    EXPECT_EQ(command("/usr/bin/flatpak run --branch=stable --arch=x86_64 --command=brave com.brave.Browser @@u %U @@"),
              "/usr/bin/flatpak run --env=A=1 --branch=stable --arch=x86_64 --command=brave com.brave.Browser --flag "
              "@@u %U @@");
    EXPECT_EQ(command("flatpak run x.y.Z", {{}, {"C"}, {}}), "flatpak run --unset-env=C x.y.Z");
    EXPECT_EQ(command("flatpak update"), "env A=1 flatpak --flag update") << "not a start";
}

TEST(DoctorCommand, WhatIsNoCommandLineIsAFault) {
    EXPECT_EQ(command(R"("/opt/app %U)"), "fault: its command line has quotes that don't end");
    EXPECT_EQ(command("app 'x"), "fault: its command line has quotes that don't end");
    EXPECT_EQ(command(""), "fault: its command line names no program");
    EXPECT_EQ(command("   "), "fault: its command line names no program");
    EXPECT_EQ(command("env A=1 -u"), "fault: its command line names no program");
}

constexpr std::string_view kChromium =
    "# a comment before\n"
    "[Desktop Entry]\n"
    "Version=1.0\n"
    "Name=Chromium\n"
    "Name[de]=Chromium\n"
    "Exec=/usr/bin/chromium %U\n"
    "TryExec=/usr/bin/chromium\n"
    "Type=Application\n"
    "Actions=new-window;\n"
    "\n"
    "[Desktop Action new-window]\n"
    "Name=New Window\n"
    "Exec=/usr/bin/chromium --new-window\n";

TEST(DoctorOverride, AllCommandLinesAreChangedAndNothingElse) {
    EXPECT_EQ(withoutMark(copied(kChromium)),
              "# a comment before\n"
              "[Desktop Entry]\n"
              "Version=1.0\n"
              "Name=Chromium\n"
              "Name[de]=Chromium\n"
              "Exec=env A=1 /usr/bin/chromium --flag %U\n"
              "TryExec=/usr/bin/chromium\n"
              "Type=Application\n"
              "Actions=new-window;\n"
              "\n"
              "[Desktop Action new-window]\n"
              "Name=New Window\n"
              "Exec=env A=1 /usr/bin/chromium --flag --new-window\n");
}

TEST(DoctorOverride, AnApplicationStartedOverDBusIsStartedByItsCommandLine) {
    const std::string text = "[Desktop Entry]\nType=Application\nDBusActivatable = true\nExec = gedit %U\n";
    EXPECT_EQ(withoutMark(copied(text)),
              "[Desktop Entry]\nType=Application\nDBusActivatable = false\nExec = env A=1 gedit --flag %U\n");
}

TEST(DoctorOverride, OtherGroupsAreLeftAlone) {
    const std::string text =
        "[X-Before]\nExec=left alone\n[Desktop Entry]\nType=Application\nExec=a\nX-Exec=b\nExec[de]=c\n#Exec=d\n"
        "[X-After]\nExec=left alone\nDBusActivatable=true\n";
    EXPECT_EQ(withoutMark(copied(text)),
              "[X-Before]\nExec=left alone\n[Desktop Entry]\nType=Application\nExec=env A=1 a --flag\nX-Exec=b\n"
              "Exec[de]=c\n#Exec=d\n[X-After]\nExec=left alone\nDBusActivatable=true\n");
}

TEST(DoctorOverride, LineEndsAndAMissingLastOneStay) {
    EXPECT_EQ(withoutMark(copied("[Desktop Entry]\r\nType=Application\r\nExec=a %U\r\n")),
              "[Desktop Entry]\r\nType=Application\r\nExec=env A=1 a --flag %U\r\n");
    EXPECT_EQ(withoutMark(copied("[Desktop Entry]\nType=Application\nExec=a")),
              "[Desktop Entry]\nType=Application\nExec=env A=1 a --flag");
}

TEST(DoctorOverride, WhatIsNoApplicationIsAFault) {
    const std::string no = "fault: it doesn't start an application";
    EXPECT_EQ(copied(""), no);
    EXPECT_EQ(copied("[Desktop Entry]"), no);
    EXPECT_EQ(copied("Type=Application\nExec=a\n"), no) << "outside of any group";
    EXPECT_EQ(copied("[Desktop Entry]\nType=Link\nExec=a\n"), no);
    EXPECT_EQ(copied("[Desktop Entry]\nType=Application\nDBusActivatable=true\n"), no);
    EXPECT_EQ(copied("[Desktop Entry]\nType=Application\n[Desktop Action x]\nExec=a\n"), no);
    EXPECT_EQ(copied("[Desktop Entry]\nType=Application\nExec=\n"), "fault: its command line names no program");
    EXPECT_EQ(copied("[Desktop Entry]\nType=Application\nExec=a\n[Desktop Action x]\nExec=\"b\n"),
              "fault: its command line has quotes that don't end");
    EXPECT_EQ(copied(std::string("[Desktop Entry]\nType=Application\nExec=a\n") + std::string(1, char{})),
              "fault: it isn't a text");
}

TEST(DoctorOverride, IsKnownAsOursUntilSomebodyChangesIt) {
    const std::string text = copied(kChromium);
    EXPECT_EQ(authorshipOf(text), Authorship::ours);
    EXPECT_EQ(authorshipOf(text + "\n"), Authorship::changed);
    EXPECT_EQ(authorshipOf(text.substr(0, text.size() - 1)), Authorship::changed);
    std::string renamed = text;
    renamed.replace(renamed.find("Name=Chromium"), 13, "Name=Chromiun");
    EXPECT_EQ(authorshipOf(renamed), Authorship::changed);
    std::string marked = text;
    marked[marked.find("X-Tarvix-Override=") + 18] ^= 1;
    EXPECT_EQ(authorshipOf(marked), Authorship::changed);
    EXPECT_EQ(authorshipOf(kChromium), Authorship::other);
    EXPECT_EQ(authorshipOf(""), Authorship::other);
}

TEST(DoctorOverride, AMarkElsewhereMakesNobodysFileOurs) {
    EXPECT_EQ(authorshipOf("[Other]\nX-Tarvix-Override=cbf29ce484222325\n"), Authorship::other);
    EXPECT_EQ(authorshipOf("[Desktop Entry]\n#X-Tarvix-Override=cbf29ce484222325\n"), Authorship::other);
    EXPECT_EQ(authorshipOf("[Desktop Entry]\nX-Tarvix-Override=\n"), Authorship::changed);
}

TEST(DoctorOverride, AMarkInTheSystemsFileIsNotCopied) {
    const std::string text = "[Desktop Entry]\nX-Tarvix-Override=0123\nType=Application\nExec=a\n";
    EXPECT_EQ(withoutMark(copied(text)), "[Desktop Entry]\nType=Application\nExec=env A=1 a --flag\n");
    EXPECT_EQ(authorshipOf(copied(text)), Authorship::ours);
}

}  // namespace
}  // namespace tarvix

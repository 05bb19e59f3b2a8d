#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/updates/SigningKey.h"
#include "updates/UpdateChoice.h"
#include "updates/UpdateTransfer.h"

namespace tarvix {
namespace {

const UpdateSystem kSystem{.programVersion = "1.0", .name = "linux", .architecture = "amd64", .version = "12"};

const std::string& someSignature() {
    static const std::string signature = SigningKey().sign("x");
    return signature;
}

UpdateFile file() {
    return {.address = "https://example.org/tarvix.deb",
            .type = "application/vnd.debian.binary-package",
            .signature = someSignature(),
            .system = "linux",
            .length = 1000};
}

AppcastItem item(std::string version) {
    AppcastItem result;
    result.version = std::move(version);
    result.files = {file()};
    return result;
}

// The chosen version; otherwise "none" or the refusal's words.
std::string chosen(const Appcast& appcast, const UpdateSystem& system = kSystem) {
    const UpdateChoice choice = chooseUpdate(appcast, system);
    if (const auto* refusal = std::get_if<UpdateRefusal>(&choice)) return std::string(messageOf(*refusal));
    const auto* update = std::get_if<AvailableUpdate>(&choice);
    return update ? update->version : "none";
}

std::string chosenWith(const std::function<void(AppcastItem&)>& change) {
    AppcastItem changed = item("2.0");
    change(changed);
    return chosen({changed});
}

std::string words(UpdateRefusal refusal) { return std::string(messageOf(refusal)); }

TEST(UpdateChoice, IsTheNewestWhereverItStands) {
    EXPECT_EQ(chosen({item("1.5"), item("1.10"), item("1.9")}), "1.10");
    EXPECT_EQ(chosen({item("1.10"), item("1.9")}), "1.10");
    EXPECT_EQ(chosen({item("2.0-beta"), item("2.0")}), "2.0");
}

TEST(UpdateChoice, IsNeverWhatRunsOrOlder) {
    EXPECT_EQ(chosen({}), "none");
    EXPECT_EQ(chosen({item("1.0"), item("1.0.0"), item("0.9"), item("1.0-rc")}), "none");
}

TEST(UpdateChoice, CarriesWhatTheDownloadNeeds) {
    AppcastItem offered = item("2.0");
    offered.displayVersion = "2.0 (Autumn)";
    offered.notes = "<p>Faster</p>";
    const UpdateChoice choice = chooseUpdate({offered}, kSystem);
    const auto* update = std::get_if<AvailableUpdate>(&choice);
    ASSERT_NE(update, nullptr);
    EXPECT_EQ(update->displayVersion, "2.0 (Autumn)");
    EXPECT_EQ(update->notes, "Faster");
    EXPECT_EQ(update->address, "https://example.org/tarvix.deb");
    EXPECT_EQ(update->length, 1000U);
    EXPECT_EQ(update->signature, updateSignatureFrom(someSignature()));
    EXPECT_EQ(update->fileName(), "tarvix-2.0.deb");
}

TEST(UpdateChoice, IsForThisSystem) {
    const auto chosenFor = [](std::string system) {
        return chosenWith([&](AppcastItem& offered) { offered.files[0].system = system; });
    };
    EXPECT_EQ(chosenFor("linux"), "2.0");
    EXPECT_EQ(chosenFor("linux-amd64"), "2.0");
    EXPECT_EQ(chosenFor(""), "2.0");  // a Debian package is for one system
    for (const char* other : {"linux-arm64", "windows", "macos", "Linux "})
        EXPECT_EQ(chosenFor(other), "none") << other;
}

TEST(UpdateChoice, IsForThisVersionOfTheSystem) {
    AppcastItem demanding = item("2.0");
    demanding.minimumSystemVersion = "12.1";
    EXPECT_EQ(chosen({demanding, item("1.5")}), "1.5");
    demanding.minimumSystemVersion = "12";
    EXPECT_EQ(chosen({demanding, item("1.5")}), "2.0");
    demanding.minimumSystemVersion = "99";
    UpdateSystem rolling = kSystem;
    rolling.version.clear();
    EXPECT_EQ(chosen({demanding}, rolling), "2.0");
}

TEST(UpdateChoice, IsAnOrdinaryRelease) {
    EXPECT_EQ(chosenWith([](AppcastItem& offered) { offered.channel = "beta"; }), "none");
}

TEST(UpdateChoice, PassesOverWhatHasNoVersionOrNoFile) {
    for (const char* version : {"", "newest", "../../etc", "2.0/../.."})
        EXPECT_EQ(chosen({item(version)}), "none") << version;
    EXPECT_EQ(chosenWith([](AppcastItem& offered) { offered.files.clear(); }), "none");
}

TEST(UpdateChoice, TakesTheFileThatCanBeInstalled) {
    AppcastItem offered = item("2.0");
    UpdateFile archive = file();
    archive.type = "application/x-xz";
    offered.files.insert(offered.files.begin(), archive);
    UpdateFile otherSystem = file();
    otherSystem.system = "macos";
    offered.files.insert(offered.files.begin(), otherSystem);
    offered.files.back().address = "https://example.org/right.deb";
    const UpdateChoice choice = chooseUpdate({offered}, kSystem);
    ASSERT_TRUE(std::holds_alternative<AvailableUpdate>(choice));
    EXPECT_EQ(std::get<AvailableUpdate>(choice).address, "https://example.org/right.deb");
}

TEST(UpdateChoice, ADisplayVersionThatIsNoPlainTextIsReplaced) {
    for (const std::string& display :
         {std::string(), std::string("2\n0"), std::string("2\x7f"), std::string(65, '2')}) {
        AppcastItem offered = item("2.0");
        offered.displayVersion = display;
        EXPECT_EQ(std::get<AvailableUpdate>(chooseUpdate({offered}, kSystem)).displayVersion, "2.0") << display;
    }
}

struct Flaw {
    const char* name;
    std::function<void(UpdateFile&)> make;
    UpdateRefusal refusal;
};

class FlawedUpdate : public testing::TestWithParam<Flaw> {};

TEST_P(FlawedUpdate, IsRefusedAndNoOlderOneTakesItsPlace) {
    AppcastItem flawed = item("2.0");
    GetParam().make(flawed.files[0]);
    EXPECT_EQ(chosen({item("1.5"), flawed}), words(GetParam().refusal));
}

INSTANTIATE_TEST_SUITE_P(
    Each, FlawedUpdate,
    testing::Values(Flaw{"UnknownType", [](UpdateFile& f) { f.type = "application/octet-stream"; },
                         UpdateRefusal::unknownType},
                    Flaw{"NoType", [](UpdateFile& f) { f.type.clear(); }, UpdateRefusal::unknownType},
                    Flaw{"NoSignature", [](UpdateFile& f) { f.signature.clear(); }, UpdateRefusal::missingSignature},
                    Flaw{"NoSuchSignature", [](UpdateFile& f) { f.signature = "AAAA"; }, UpdateRefusal::wrongSignature},
                    Flaw{"NoLength", [](UpdateFile& f) { f.length = 0; }, UpdateRefusal::missingLength},
                    Flaw{"TooLong", [](UpdateFile& f) { f.length = kLargestUpdate + 1; }, UpdateRefusal::oversized},
                    Flaw{"PlainHttp", [](UpdateFile& f) { f.address = "http://example.org/a.deb"; },
                         UpdateRefusal::insecureAddress},
                    Flaw{"Relative", [](UpdateFile& f) { f.address = "a.deb"; }, UpdateRefusal::hostileAddress},
                    Flaw{"ClimbingName", [](UpdateFile& f) { f.address = "https://example.org/..%2f..%2fa.deb"; },
                         UpdateRefusal::hostileAddress}),
    [](const auto& flaw) { return std::string(flaw.param.name); });

TEST(UpdateChoice, ALengthAtTheLimitIsInOrder) {
    EXPECT_EQ(chosenWith([](AppcastItem& offered) { offered.files[0].length = kLargestUpdate; }), "2.0");
}

TEST(UpdateNews, TellsAllThatWasAskedForAndUnaskedOnlyUpdates) {
    const UpdateChoice update = chooseUpdate({item("2.0")}, kSystem);
    for (const UpdateChoice& choice : {update, UpdateChoice(UpToDate{}), UpdateChoice(UpdateRefusal::timedOut)})
        EXPECT_TRUE(isTold(choice, CheckReason::user, "2.0"));
    EXPECT_TRUE(isTold(update, CheckReason::schedule, ""));
    EXPECT_FALSE(isTold(UpToDate{}, CheckReason::schedule, ""));
    EXPECT_FALSE(isTold(UpdateRefusal::wrongSignature, CheckReason::schedule, ""));
}

TEST(UpdateNews, ASkippedVersionIsSilentUntilThereIsAnother) {
    const UpdateChoice update = chooseUpdate({item("2.0")}, kSystem);
    EXPECT_FALSE(isTold(update, CheckReason::schedule, "2.0"));
    EXPECT_FALSE(isTold(update, CheckReason::schedule, "2.0.0"));
    EXPECT_TRUE(isTold(update, CheckReason::schedule, "1.9"));
    EXPECT_TRUE(isTold(chooseUpdate({item("2.1")}, kSystem), CheckReason::schedule, "2.0"));
}

TEST(UpdateNotes, LoseTheirTagsAndKeepTheirLines) {
    EXPECT_EQ(plainNotes("Plain & simple: 1 < 2"), "Plain & simple: 1 < 2");
    EXPECT_EQ(plainNotes("<h2>New</h2><ul><li>One</li><li>Two &amp; a half</li></ul><p>Bye<br/>now</p>"),
              "New\n• One\n• Two & a half\n\nBye\nnow");
    EXPECT_EQ(plainNotes("\n\n\na\r\n\n\n\nb\n"), "a\n\nb");
    EXPECT_EQ(plainNotes("<script src='x'>"), "");
    EXPECT_EQ(plainNotes("<unclosed"), "");
    EXPECT_EQ(plainNotes("<"), "<");
    EXPECT_EQ(plainNotes("a\x1b[31mb\x07"), "a[31mb");
    // Resolved once: what was written as text stays text.
    EXPECT_EQ(plainNotes("&amp;lt;b&amp;gt;"), "&lt;b&gt;");
}

TEST(UpdateNotes, AreCutBetweenCharacters) {
    std::string many;
    for (int i = 0; i < 20000; ++i) many += "é";
    const std::string notes = plainNotes("x" + many);
    EXPECT_LE(notes.size(), 20000U + 3U);
    EXPECT_EQ(notes.substr(notes.size() - 5), "é…");
}

TEST(UpdateTransfer, HasExactlyTheLengthThatWasTold) {
    EXPECT_EQ(refuseMore(10, 10), std::nullopt);
    EXPECT_EQ(refuseMore(10, 11), UpdateRefusal::oversized);
    EXPECT_EQ(refuseEnd(10, 9), UpdateRefusal::truncated);
    EXPECT_EQ(refuseEnd(10, 10), std::nullopt);
    EXPECT_EQ(refuseEnd(10, 11), UpdateRefusal::oversized);
    EXPECT_EQ(refuseFeed(kLargestFeed), std::nullopt);
    EXPECT_EQ(refuseFeed(kLargestFeed + 1), UpdateRefusal::feedTooLarge);
}

TEST(UpdateRefusals, EachHasWordsOfItsOwn) {
    std::vector<std::string> all;
    for (auto refusal = UpdateRefusal::unreachable; refusal <= UpdateRefusal::cannotInstall;
         refusal = static_cast<UpdateRefusal>(static_cast<int>(refusal) + 1)) {
        const std::string message = words(refusal);
        EXPECT_TRUE(message.ends_with('.')) << message;
        EXPECT_THAT(all, testing::Not(testing::Contains(message)));
        all.push_back(message);
    }
}

}  // namespace
}  // namespace tarvix

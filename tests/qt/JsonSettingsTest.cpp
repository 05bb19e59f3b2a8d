// The text of the settings file: reading, writing, and what can be saved of a damaged one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qt/JsonSettings.h"

namespace tarvix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Value = UserDefaults::Value;

Value text(const char* value) { return std::string(value); }

JsonSettings::Values values(std::string_view json) {
    const auto settings = JsonSettings::parse(json);
    EXPECT_TRUE(settings) << json;
    return settings ? settings->values() : JsonSettings::Values();
}

JsonSettings::Values saved(std::string_view json) { return JsonSettings::salvage(json).values(); }

TEST(JsonSettings, KeepsTheTypesOfValues) {
    EXPECT_THAT(values(R"({"a": true, "b": 1.0, "c": 1, "d": "1", "e": "", "f": -0.5, "g": 1e2})"),
                ElementsAre(Pair("a", Value(true)), Pair("b", Value(1.0)), Pair("c", Value(1.0)), Pair("d", text("1")),
                            Pair("e", text("")), Pair("f", Value(-0.5)), Pair("g", Value(100.0))));
}

TEST(JsonSettings, WritesOneMemberALineInTheOrderThatItFound) {
    auto settings = JsonSettings::parse(R"({"z": 1, "list": [1, {"a": null}], "b": "x"})").value();
    settings.set("new", true);
    settings.set("z", 2.5);
    EXPECT_EQ(settings.text(), R"({
    "z": 2.5,
    "list": [1,{"a":null}],
    "b": "x",
    "new": true
}
)");
}

TEST(JsonSettings, ANumberStaysANumberAndADoubleADouble) {
    JsonSettings settings;
    settings.set("a", 1.0);
    settings.set("b", 0.1);
    settings.set("c", 9.4);
    EXPECT_EQ(settings.text(), "{\n    \"a\": 1.0,\n    \"b\": 0.1,\n    \"c\": 9.4\n}\n");
    EXPECT_EQ(values(settings.text()), settings.values());
}

TEST(JsonSettings, NothingIsAnEmptyObject) {
    EXPECT_EQ(JsonSettings().text(), "{}\n");
    EXPECT_THAT(values("{}\n"), IsEmpty());
}

TEST(JsonSettings, OtherKindsAreNoValuesAndStay) {
    auto settings = JsonSettings::parse(R"({"n": null, "l": [], "o": {}})").value();
    EXPECT_THAT(settings.values(), IsEmpty());
    settings.set("l", 1.0);
    settings.remove("o");
    EXPECT_EQ(settings.text(), "{\n    \"n\": null,\n    \"l\": 1.0\n}\n");
}

TEST(JsonSettings, AnythingThatIsNoObjectIsDamaged) {
    const std::string deep = "{\"a\": " + std::string(100'000, '[') + std::string(100'000, ']') + "}";
    for (const std::string& damaged :
         {std::string(), std::string(" \n"), std::string("[1]"), std::string("null"), std::string("3"),
          std::string("\"a\""), std::string("{\"a\": 1"), std::string("{\"a\": 1,}"), std::string("{\"a\": 1} x"),
          std::string("{\"a\": \"\xFF\"}"), std::string("{\"a\": 1e999}"), std::string("\0\0\0", 3), deep})
        EXPECT_FALSE(JsonSettings::parse(damaged)) << damaged.substr(0, 40);
}

TEST(JsonSettings, ALineThatIsDamagedTakesNoOtherWithIt) {
    const struct {
        const char* damage;
        const char* json;
    } rows[] = {
        {"a comma too many", "{\n    \"a\": true,\n    \"b\": 2,\n}\n"},
        {"a comma too few", "{\n    \"a\": true\n    \"b\": 2\n}\n"},
        {"the end is missing", "{\n    \"a\": true,\n    \"b\": 2,\n    \"c\": \"x"},
        {"the beginning is missing", "    \"a\": true,\n    \"b\": 2\n}\n"},
        {"a quote is missing", "{\n    \"c\": \"x,\n    \"a\": true,\n    \"b\": 2\n}\n"},
        {"no value", "{\n    \"c\": ,\n    \"a\": true,\n    \"b\": 2\n}\n"},
        {"a word that isn't one", "{\n    \"c\": True,\n    \"a\": true,\n    \"b\": 2\n}\n"},
        {"comments", "// settings\n{\n    \"a\": true, // on\n    # two\n    \"b\": 2\n}\n"},
        {"a merge", "{\n<<<<<<< HEAD\n    \"a\": true,\n=======\n>>>>>>> other\n    \"b\": 2\n}\n"},
        {"two files", "{\n    \"a\": true\n}\n{\n    \"b\": 2\n}\n"},
        {"bytes", "{\n    \"c\": \"\xFF\xFE\",\n    \"a\": true,\n    \"b\": 2\n}\n"},
        {"one line", "{\"a\": true, \"c\": , \"b\": 2}"},
        {"carriage returns", "{\r\n    \"a\": true,\r\n    \"b\": 2,\r\n}\r\n"},
        {"a bracket too many", "{\n    \"a\": true,\n    \"b\": 2\n}}}\n"},
    };
    for (const auto& [damage, json] : rows) {
        EXPECT_FALSE(JsonSettings::parse(json)) << damage;
        EXPECT_THAT(saved(json), ElementsAre(Pair("a", Value(true)), Pair("b", Value(2.0)))) << damage;
    }
}

TEST(JsonSettings, TextsWithBracketsAndCommasAreSavedWhole) {
    EXPECT_THAT(saved("{\n    \"KeyboardShortcuts_toggleWith\": \"{\\\"carbonKeyCode\\\":49,\\\"m\\\":[}\",\n    x\n}"),
                ElementsAre(Pair("KeyboardShortcuts_toggleWith", text("{\"carbonKeyCode\":49,\"m\":[}"))));
    EXPECT_THAT(saved("{\"path\": \"a\\\\\", \"b\": 2,}"),
                ElementsAre(Pair("b", Value(2.0)), Pair("path", text("a\\"))));
}

TEST(JsonSettings, MembersOfForeignObjectsAreNotTakenForSettings) {
    EXPECT_EQ(JsonSettings::salvage("{\n  \"mine\": {\n    \"inputTextSize\": 99\n  },\n  \"b\": 2,\n}").text(),
              "{\n    \"mine\": {\"inputTextSize\":99},\n    \"b\": 2\n}\n");
}

TEST(JsonSettings, OfDoubleMembersTheLaterCounts) {
    EXPECT_THAT(values(R"({"a": 1, "a": 2})"), ElementsAre(Pair("a", Value(2.0))));
    EXPECT_THAT(saved("{\"a\": 1,\n\"a\": 2,\n}"), ElementsAre(Pair("a", Value(2.0))));
}

TEST(JsonSettings, OfNothingNothingIsSaved) {
    for (const char* nothing : {"", "\n\n", "[\"a\", 1]", "not JSON", "{{{{", "}}}}", "\"\"\"\"", "\\\\\\"})
        EXPECT_THAT(saved(nothing), IsEmpty()) << nothing;
}

TEST(JsonSettings, ATextThatIsNoUtf8IsWrittenReadably) {
    JsonSettings settings;
    settings.set("a", text("x\xFFy"));
    EXPECT_THAT(values(settings.text()), ElementsAre(Pair("a", text("x\xEF\xBF\xBDy"))));
}

}  // namespace
}  // namespace tarvix

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "linux/desktops/DesktopScale.h"

namespace tarvix {
namespace {

constexpr std::int32_t dots(int dpi) { return dpi * 1024; }

TEST(DesktopScale, ComesFromTheFirstThatTellsOne) {
    struct Row {
        ScaleTold told;
        double scale;
    };
    const std::vector<Row> rows = {
        {{}, 1},
        {{dots(96), "", "", ""}, 1},
        {{dots(144), "", "", ""}, 1.5},
        {{dots(192), "", "", ""}, 2},
        {{dots(120), "Xft.dpi:\t192\n", "3", "4"}, 1.25},
        {{std::nullopt, "Xft.dpi:\t192\n", "3", "4"}, 2},
        {{std::nullopt, "Xft.dpi:\t96\n", "2", "2"}, 1},
        {{std::nullopt, "", "2", "3"}, 2},
        {{std::nullopt, "", "", "1.5"}, 1.5},
        {{std::nullopt, "", " 2 ", ""}, 2},
    };
    for (const Row& row : rows)
        EXPECT_EQ(desktopScale(row.told), row.scale) << row.told.settingsDpi.value_or(0) << " " << row.told.resources
                                                     << " " << row.told.gdkScale << " " << row.told.qtScaleFactor;
}

TEST(DesktopScale, IsNotTakenFromWhatMakesNoSense) {
    for (const std::int32_t dpi : {0, -1, -1024, 1, dots(20), dots(1000), std::numeric_limits<std::int32_t>::max(),
                                   std::numeric_limits<std::int32_t>::min()})
        EXPECT_EQ(desktopScale({dpi, "Xft.dpi: 192", "", ""}), 2) << dpi;
    for (const char* resources : {"Xft.dpi: large", "Xft.dpi:", "Xft.dpi: -96", "Xft.dpi: 0", "Xft.dpi: 1e9",
                                  "Xft.dpi: 96dpi", "Xft.dpi: inf", "Xft.dpi: nan", ":", "Xft.dpi"})
        EXPECT_EQ(desktopScale({std::nullopt, resources, "2", ""}), 2) << resources;
    for (const char* factor : {"two", "0", "-2", "100", "nan", "2x", " "})
        EXPECT_EQ(desktopScale({std::nullopt, "", factor, "1.5"}), 1.5) << factor;
}

TEST(DesktopScale, TheDotsPerInchAreFoundAmongOtherResources) {
    EXPECT_EQ(resourceDpi("*customization:\t-color\nXft.antialias:\t1\nXft.dpi:\t120\nXft.rgba:\tnone\n"), 120);
    EXPECT_EQ(resourceDpi("Xft.dpi: 101.5"), 101.5);
    EXPECT_EQ(resourceDpi("Xft*dpi:\t120\r\n"), 120);
    EXPECT_EQ(resourceDpi("Xft.dpi:\t96\nXft.dpi:\t144\n"), 144) << "the last one stands";
    EXPECT_EQ(resourceDpi("NotXft.dpi:\t120\nXft.dpis:\t120\n!Xft.dpi:\t120\n"), std::nullopt);
    EXPECT_EQ(resourceDpi(""), std::nullopt);
    EXPECT_EQ(resourceDpi("\n\n:::\n"), std::nullopt);
}

}  // namespace
}  // namespace tarvix

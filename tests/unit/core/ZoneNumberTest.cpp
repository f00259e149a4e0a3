#include "core/ZoneNumber.h"
#include "core/DefaultValues.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

std::optional<double> position(const char* text) {
    return parseZonePosition(QString::fromUtf8(text));
}
std::optional<double> size(const char* text) {
    return parseZoneSize(QString::fromUtf8(text));
}

} // namespace

TEST(ZoneNumber, DecimalPercentageAndFractionReadAlike) {
    for (const char* text : {"0.75", "75%", "3/4", " 3/4 ", "\n3/4\t", ".75", "7.5e-1", "1.5/2"}) {
        EXPECT_EQ(position(text), 0.75) << text;
        EXPECT_EQ(size(text), 0.75) << text;
    }
    EXPECT_EQ(size("1/3"), 1.0 / 3);
    EXPECT_EQ(size("12.5%"), 0.125);
    // Empty pieces between the slashes are dropped.
    EXPECT_EQ(size("1//2"), 0.5);
}

TEST(ZoneNumber, PositionsAdmitZeroAndSizesAdmitOne) {
    EXPECT_EQ(position("0"), 0.0);
    EXPECT_FALSE(size("0"));
    EXPECT_FALSE(size("0%"));
    EXPECT_EQ(size("100%"), 1.0);
    EXPECT_FALSE(position("100%"));
    EXPECT_EQ(size("1"), 1.0);
    EXPECT_FALSE(position("1"));
    EXPECT_EQ(size("0.5/0.5"), 1.0);
    EXPECT_FALSE(position("0.5/0.5"));
    // The flags are independent of each other.
    EXPECT_EQ(parseZoneNumber("0", true, true, 0.5), 0.0);
    EXPECT_EQ(parseZoneNumber("1", true, true, 0.5), 1.0);
    EXPECT_FALSE(parseZoneNumber("0", false, false, 0.5));
    EXPECT_FALSE(parseZoneNumber("1", false, false, 0.5));
    // "-0" is zero, without its sign.
    ASSERT_TRUE(position("-0"));
    EXPECT_FALSE(std::signbit(*position("-0")));
}

TEST(ZoneNumber, RejectsWhatIsOutOfRangeOrNoNumber) {
    for (const char* text :
         {"1/0",   "0/0", "-1/0", "-0.1", "-1/4", "-25%",  "1.0001", "101%",  "5/4",  "abc",
          "1/2/3", "%",   "/",    "3/",   "/2",   "1/x",   "x/2",    "50%/2", "1/2%", "1 /2",
          "0.5.5", "0,5", "inf",  "nan",  "1e3",  "0x0.8", "½",      "3/4 x"}) {
        EXPECT_FALSE(position(text)) << text;
        EXPECT_FALSE(size(text)) << text;
    }
    // A lone number beside a slash is taken as that number, so these read where they are in range.
    EXPECT_EQ(position("0.5/"), 0.5);
    EXPECT_EQ(size("/1"), 1.0);
}

TEST(ZoneNumber, EmptyTextIsTheFallback) {
    EXPECT_EQ(position(""), 0.0);
    EXPECT_EQ(position("  \n"), 0.0);
    EXPECT_EQ(size(""), 1.0);
    EXPECT_EQ(parseZoneNumber(" ", false, false, 0.25), 0.25);
}

TEST(ZoneNumber, FactoryZonesAndTemplatesAllRead) {
    const std::vector<WindowArea> zones = factoryZones();
    ASSERT_EQ(zones.size(), 9u);
    EXPECT_EQ(parseZone(zones[0]), (UnitRect{0, 0, 1, 1}));
    EXPECT_EQ(parseZone(zones[2]), (UnitRect{0.5, 0, 0.5, 1}));
    EXPECT_EQ(parseZone(zones[8]), (UnitRect{0.5, 0.5, 0.5, 0.5}));
    for (const WindowArea& zone : zoneTemplates())
        EXPECT_TRUE(parseZone(zone)) << zone.name.toStdString();
}

TEST(ZoneNumber, ZoneIsAbsentWhenAnyNumberFails) {
    WindowArea zone = factoryZones()[1];
    zone.w.clear();
    zone.x = " ";
    EXPECT_EQ(parseZone(zone), (UnitRect{0, 0, 1, 1}));
    for (QString WindowArea::*field : {&WindowArea::x, &WindowArea::y, &WindowArea::w, &WindowArea::h}) {
        WindowArea broken = factoryZones()[1];
        broken.*field = field == &WindowArea::x || field == &WindowArea::y ? "1" : "0";
        EXPECT_FALSE(parseZone(broken));
    }
}

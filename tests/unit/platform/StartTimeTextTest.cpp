#include "platform/linux/StartTimeText.h"

#include <gtest/gtest.h>
#include <time.h>

#include "ScopedEnv.h"

using namespace velmora;

namespace {

// A time zone for one test; the C library reads TZ again only when told, also once it is put back.
struct TimeZone {
    struct ReadAgain {
        ~ReadAgain() { ::tzset(); }
    } readAgain; // destroyed last, after the variable is put back
    ScopedEnv env;
    explicit TimeZone(const char* zone) {
        env.set("TZ", zone);
        ::tzset();
    }
};

} // namespace

TEST(StartTimeText, WritesWhatPsWrites) {
    TimeZone utc("UTC0");
    EXPECT_EQ(startTimeText(0), "Thu Jan  1 00:00:00 1970");          // a day below 10 padded with a space
    EXPECT_EQ(startTimeText(1795441209), "Mon Nov 23 13:40:09 2026"); // two digits, no padding
    EXPECT_EQ(startTimeText(1798761599), "Thu Dec 31 23:59:59 2026");
}

TEST(StartTimeText, InTheLocalTimeZone) {
    TimeZone east("XST-5"); // five hours ahead of UTC
    EXPECT_EQ(startTimeText(1795441209), "Mon Nov 23 18:40:09 2026");
    EXPECT_EQ(startTimeText(1795441209 + 6 * 3600), "Tue Nov 24 00:40:09 2026");
}

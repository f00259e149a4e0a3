#include "platform/linux/NetworkLedger.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

bool operator==(const NetworkTotals& a, const NetworkTotals& b) {
    return a.bytesIn == b.bytesIn && a.bytesOut == b.bytesOut;
}

} // namespace

TEST(NetworkLedger, TotalsAreTheSumsOverEachProcessesSockets) {
    NetworkLedger ledger;
    const auto totals = ledger.record({1, 2, 3}, {{10, 1, {100, 5}}, {11, 1, {20, 7}}, {12, 2, {1, 2}}});
    ASSERT_EQ(totals.size(), 3u);
    EXPECT_TRUE((totals.at(1) == NetworkTotals{120, 12}));
    EXPECT_TRUE((totals.at(2) == NetworkTotals{1, 2}));
    EXPECT_TRUE((totals.at(3) == NetworkTotals{0, 0})) << "a process without sockets starts at 0";
}

// What a connection moved by the last reading that saw it stays in its process's totals.
TEST(NetworkLedger, ClosedSocketsKeepTheirLastCounts) {
    NetworkLedger ledger;
    ledger.record({1}, {{10, 1, {100, 50}}, {11, 1, {1, 1}}});
    ledger.record({1}, {{10, 1, {300, 60}}, {11, 1, {2, 2}}});
    auto totals = ledger.record({1}, {{11, 1, {3, 3}}});
    EXPECT_TRUE((totals.at(1) == NetworkTotals{303, 63}));
    totals = ledger.record({1}, {{12, 1, {10, 10}}});
    EXPECT_TRUE((totals.at(1) == NetworkTotals{313, 73}));
    totals = ledger.record({1}, {});
    EXPECT_TRUE((totals.at(1) == NetworkTotals{313, 73})) << "totals never go back";
}

TEST(NetworkLedger, EndedProcessesAreForgotten) {
    NetworkLedger ledger;
    ledger.record({1, 2}, {{10, 1, {100, 50}}});
    EXPECT_EQ(ledger.record({2}, {}).count(1), 0u);
    // The pid comes back for another program: it starts from nothing.
    const auto totals = ledger.record({1, 2}, {{20, 1, {5, 5}}});
    EXPECT_TRUE((totals.at(1) == NetworkTotals{5, 5}));
}

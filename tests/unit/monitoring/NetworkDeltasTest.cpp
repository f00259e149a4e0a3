#include "monitoring/NetworkDeltas.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

using namespace velmora;

TEST(NettopOutput, ThePidIsTheLastPieceOfTheName) {
    const auto totals = parseNettopTotals("time,bytes_in,bytes_out\n"
                                          "my.dotted.app.77,1000,2000\n"
                                          "only.two,fields\n"
                                          "nodot,5,6\n"
                                          "name.88,not a number,+40\n"
                                          "name.-3,1,1\n");
    ASSERT_EQ(totals.size(), 3u);
    EXPECT_EQ(totals.at(77).bytesIn, 1000);
    EXPECT_EQ(totals.at(77).bytesOut, 2000);
    EXPECT_EQ(totals.at(88).bytesIn, 0); // a count that does not parse is 0
    EXPECT_EQ(totals.at(88).bytesOut, 40);
    EXPECT_TRUE(totals.contains(-3));
    EXPECT_TRUE(parseNettopTotals("header only").empty());
    EXPECT_TRUE(parseNettopTotals("").empty());
}

TEST(NetworkDeltas, FirstSightIsZeroAndCountersThatGoBackGiveZero) {
    NetworkDeltas deltas;
    const auto first = deltas.update({{123, {900, 2500}}, {5, {10, 10}}});
    EXPECT_EQ(first.at(123).bytesIn, 0);
    EXPECT_EQ(first.at(123).bytesOut, 0);

    const auto second = deltas.update({{123, {1000, 2000}}});
    EXPECT_EQ(second.at(123).bytesIn, 100);
    EXPECT_EQ(second.at(123).bytesOut, 0);
    EXPECT_FALSE(second.contains(5));

    // Pid 5 was forgotten when it went: when the pid comes back it is a new process.
    const auto third = deltas.update({{123, {1000, 2000}}, {5, {50000, 50000}}});
    EXPECT_EQ(third.at(5).bytesIn, 0);
    EXPECT_EQ(third.at(123).bytesIn, 0);
}

TEST(NetworkDeltas, CorruptCountsNeitherOverflowNorGoNegative) {
    NetworkDeltas deltas;
    const qint64 big = std::numeric_limits<qint64>::max();
    deltas.update({{1, {-big, big}}});
    const auto next = deltas.update({{1, {big, -big}}});
    EXPECT_EQ(next.at(1).bytesIn, 0);
    EXPECT_EQ(next.at(1).bytesOut, 0);

    QRandomGenerator random(11);
    const QString alphabet = QStringLiteral("0123456789.,-+\n xé");
    for (int round = 0; round < 2000; ++round) {
        QString text = "header\n";
        for (int i = 0, n = random.bounded(120); i < n; ++i)
            text += alphabet[random.bounded(int(alphabet.size()))];
        for (const auto& [pid, delta] : deltas.update(parseNettopTotals(text))) {
            EXPECT_GE(delta.bytesIn, 0);
            EXPECT_GE(delta.bytesOut, 0);
        }
    }
}

#include "platform/linux/ProcessStat.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <unistd.h>

using namespace velmora;

namespace {

// A stat line as the kernel writes it, with the fields the parser reads set (proc(5) numbering).
std::string statLine(const std::string& pid, const std::string& name) {
    return pid + " (" + name +
           ") S 1234 1234 1234 0 -1 4194304 2580 0 0 0 170 35 0 0 20 0 1 0 987654 23875584 1534 "
           "18446744073709551615 1 1 0 0 0 0 0 4096 0 0 0 0 17 1 0 0 0 0 0\n";
}

} // namespace

TEST(ProcessStat, ReadsTheFieldsAfterTheName) {
    const auto stat = parseProcessStat(statLine("4321", "bash"));
    ASSERT_TRUE(stat);
    EXPECT_EQ(*stat, (ProcessStat{4321, 1234, 205, 987654, "bash", 1534}));
}

// A name may hold anything but NUL: what counts is the last ')'.
TEST(ProcessStat, NamesWithParenthesesSpacesDotsAndNonAscii) {
    for (const char* name :
         {") (", "a) (b) S 99 99", "Web Content", "kworker/0:1H", "x.y.z.", "Çalışma ☃", "(sd-pam)", ""}) {
        const auto stat = parseProcessStat(statLine("77", name));
        ASSERT_TRUE(stat) << name;
        EXPECT_EQ(stat->command, QString::fromUtf8(name));
        EXPECT_EQ(stat->parentPid, 1234) << name;
        EXPECT_EQ(stat->startTicks, 987654u) << name;
    }
}

TEST(ProcessStat, RefusesWhatIsNotAStatLine) {
    const std::string whole = statLine("10", "sh");
    for (const std::string& bad :
         {std::string(), std::string("10 sh S 1"), whole.substr(0, whole.find(" 987654")),
          std::string("x (sh) S 1 1 1 0 -1 0 0 0 0 0 1 1 0 0 20 0 1 0 5 0 0"),
          std::string("10 (sh) S one 1 1 0 -1 0 0 0 0 0 1 1 0 0 20 0 1 0 5 0 0"),
          std::string("10 ) sh ( S 1 1 1 0 -1 0 0 0 0 0 1 1 0 0 20 0 1 0 5")})
        EXPECT_FALSE(parseProcessStat(bad)) << bad;
}

TEST(ProcessStat, ReadsThisProcess) {
    std::ifstream file("/proc/self/stat");
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const auto stat = parseProcessStat(text);
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->pid, ::getpid());
    EXPECT_EQ(stat->parentPid, ::getppid());
    EXPECT_GT(stat->startTicks, 0u);
}

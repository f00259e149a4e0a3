#include "clipboard/SearchableCharacters.h"

#include <QTextBoundaryFinder>

#include <gtest/gtest.h>

using namespace velmora;

namespace {

int graphemeCount(const QString& text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    int count = 0;
    while (finder.toNextBoundary() > 0)
        ++count;
    return count;
}

std::vector<QString> charactersOf(const SearchableCharacters& characters) {
    std::vector<QString> result;
    for (int i = 0; i < characters.size(); ++i)
        result.push_back(characters.at(i).toString());
    return result;
}

} // namespace

// The quick test may say "no" too often, never "yes" wrongly: whatever it accepts must split into
// one character per unit, next to a letter on either side and next to itself.
TEST(SearchableCharacters, QuickTestNeverAcceptsATextThatJoinsUnits) {
    for (char32_t c = 1; c <= 0xFFFF; ++c) {
        if (QChar::isSurrogate(c))
            continue;
        const QChar unit(static_cast<char16_t>(c));
        for (const QString& text : {QStringLiteral("a") + unit + QStringLiteral("a"), QString(unit) + unit}) {
            if (SearchableCharacters::hasOneUnitPerCharacter(text)) {
                ASSERT_EQ(graphemeCount(text), text.size()) << "U+" << std::hex << static_cast<unsigned>(c);
            }
        }
    }
}

TEST(SearchableCharacters, PlainTextKeepsNoTable) {
    for (const QString& text : {QString(), QStringLiteral("hello, world"), QStringLiteral("straße café"),
                                QStringLiteral("שלום עולם"), QStringLiteral("日本語のテキスト"),
                                QStringLiteral("line\rline\nline")}) {
        const SearchableCharacters characters(text);
        EXPECT_TRUE(characters.isOneUnitPerCharacter()) << text.toStdString();
        EXPECT_EQ(characters.size(), text.size());
        EXPECT_EQ(characters.tableBytes(), 0u);
    }
}

TEST(SearchableCharacters, SplitsIntoUserPerceivedCharacters) {
    const QString thumbsUp = QStringLiteral("\U0001F44D\U0001F3FD");    // with skin tone
    const QString coder = QStringLiteral("\U0001F469\u200D\U0001F4BB"); // woman, ZWJ, laptop
    const QString flag = QStringLiteral("\U0001F1EB\U0001F1F7");        // two regional indicators
    const QString lone = QStringLiteral("\U0001F1E9"); // a third indicator starts another flag
    const QString text =
        QStringLiteral("e\u0301") + thumbsUp + QStringLiteral("\r\n") + coder + flag + lone + "x";
    const SearchableCharacters characters(text);

    EXPECT_FALSE(characters.isOneUnitPerCharacter());
    EXPECT_EQ(charactersOf(characters),
              (std::vector<QString>{QStringLiteral("e\u0301"), thumbsUp, QStringLiteral("\r\n"), coder, flag,
                                    lone, "x"}));
    EXPECT_EQ(characters.offset(0), 0);
    EXPECT_EQ(characters.offset(1), 2);
    EXPECT_EQ(characters.offset(characters.size()), text.size());
    EXPECT_TRUE(characters.equalsAt(6, u"x"));
    EXPECT_FALSE(characters.equalsAt(0, u"e"));
}

#pragma once

#include <QString>
#include <QStringView>

#include <memory>
#include <vector>

namespace velmora {

// A text split into user-perceived characters (grapheme clusters), so that "e" followed by a
// combining acute is one character and an emoji with skin tone or joiners is one character.
// Most texts have exactly one UTF-16 unit per character; those keep no table of boundaries, which
// is what keeps an index over a long history small and quick to build.
class SearchableCharacters {
public:
    SearchableCharacters() = default;
    explicit SearchableCharacters(QString text);

    const QString& text() const { return m_text; }
    int size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }

    // Where character i begins in text(), in UTF-16 units; offset(size()) is the text's length.
    int offset(int i) const { return m_starts ? (*m_starts)[i] : i; }
    QStringView at(int i) const { return QStringView(m_text).mid(offset(i), offset(i + 1) - offset(i)); }
    bool equalsAt(int i, QStringView character) const {
        if (!m_starts)
            return character.size() == 1 && m_text.at(i) == character.front();
        return at(i) == character;
    }

    // True when the text keeps no boundary table: every UTF-16 unit is its own character.
    bool isOneUnitPerCharacter() const { return !m_starts; }
    // The quick test behind the above: conservative, so a "false" only costs the full split.
    static bool hasOneUnitPerCharacter(QStringView text);

    // The characters' bytes beyond the text itself (the boundary table), for memory accounting.
    std::size_t tableBytes() const { return m_starts ? m_starts->capacity() * sizeof(int) : 0; }

private:
    QString m_text;
    int m_size = 0;
    // Shared because an index refined from another keeps the same characters for each entry.
    std::shared_ptr<const std::vector<int>> m_starts;
};

} // namespace velmora

#pragma once

#include "clipboard/NarrowCharacters.h"

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <memory>
#include <vector>

namespace velmora {

// A text split into user-perceived characters (grapheme clusters), so that "e" followed by a
// combining acute is one character and an emoji with skin tone or joiners is one character.
// Most texts have exactly one UTF-16 unit per character; those keep no table of boundaries, which
// is what keeps an index over a long history small and quick to build.
//
// A text kept for searching (Storage::NarrowWherePossible) whose characters all have a byte in
// the narrow form (see NarrowCharacters.h) is held as one byte per character: half the memory, and
// half the bytes a scan of the history reads.
class SearchableCharacters {
public:
    enum class Storage { AsGiven, NarrowWherePossible };

    SearchableCharacters() = default;
    explicit SearchableCharacters(QString text, Storage storage = Storage::AsGiven);

    QString text() const;
    int size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }
    // Where character i begins in text(), in UTF-16 units; offset(size()) is the text's length.
    int offset(int i) const { return m_starts ? (*m_starts)[i] : i; }
    QStringView at(int i) const {
        if (m_narrow)
            return QStringView(&narrow::kUnitOfByte[static_cast<unsigned char>(m_bytes[i])], 1);
        return QStringView(m_text).mid(offset(i), offset(i + 1) - offset(i));
    }
    bool equalsAt(int i, QStringView character) const {
        if (m_narrow)
            return character.size() == 1 && character.front().unicode() == narrow::unitOf(m_bytes[i]);
        if (!m_starts)
            return character.size() == 1 && m_text.at(i) == character.front();
        return at(i) == character;
    }
    // True when the text keeps no boundary table: every UTF-16 unit is its own character.
    bool isOneUnitPerCharacter() const { return !m_starts; }
    // The quick test behind the above: conservative, so a "false" only costs the full split.
    static bool hasOneUnitPerCharacter(QStringView text);

    // The stored units, for the index's scans: one byte per character when narrow, else UTF-16.
    bool isNarrow() const { return m_narrow; }
    const char* bytes() const { return m_bytes.constData(); }
    const char16_t* utf16() const { return QStringView(m_text).utf16(); }
    // Where unit i is stored, for asking the memory ahead of a read.
    const void* addressOf(int i) const {
        return m_narrow ? static_cast<const void*>(bytes() + i) : static_cast<const void*>(utf16() + i);
    }
    std::size_t bytesPerUnit() const { return m_narrow ? 1 : 2; }

    // The characters' bytes beyond the text itself (the boundary table), for memory accounting.
    std::size_t tableBytes() const { return m_starts ? m_starts->capacity() * sizeof(int) : 0; }

private:
    QString m_text;     // empty when narrow
    QByteArray m_bytes; // when narrow
    int m_size = 0;
    bool m_narrow = false;
    // Shared because an index refined from another keeps the same characters for each entry.
    std::shared_ptr<const std::vector<int>> m_starts;
};

} // namespace velmora

#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace velmora {

// The folder of large values beside the history database: one file per value, named by a fresh
// UUID, owner-only. Files are created under new names and removed, never rewritten, so a row that
// names a file always names the bytes it was stored with.
class ExternalStorage {
public:
    explicit ExternalStorage(QString folder) : m_folder(std::move(folder)) {}

    const QString& folder() const { return m_folder; }
    QString filePath(const QString& name) const { return m_folder + u'/' + name; }

    // Makes the folder (mode 0700) if it is missing and tightens its mode if it is not.
    bool prepare(QString* error) const;

    // Writes the bytes to a new file (mode 0600) and flushes them to the system before returning
    // the file's name, so a transaction naming it never commits ahead of its content.
    std::optional<QString> write(QByteArrayView bytes, QString* error) const;
    std::optional<QByteArray> read(const QString& name, QString* error = nullptr) const;
    void remove(const QStringList& names) const;

    // The names of the files in the folder.
    QStringList names() const;

private:
    QString m_folder;
};

// Files written for a change that has not committed yet; removed when the change is given up.
class PendingFiles {
public:
    explicit PendingFiles(const ExternalStorage& storage) : m_storage(storage) {}
    ~PendingFiles() { m_storage.remove(m_names); }
    PendingFiles(const PendingFiles&) = delete;
    PendingFiles& operator=(const PendingFiles&) = delete;

    std::optional<QString> write(QByteArrayView bytes, QString* error) {
        auto name = m_storage.write(bytes, error);
        if (name)
            m_names.append(*name);
        return name;
    }
    // The change committed: the files now belong to its rows.
    void keep() { m_names.clear(); }

private:
    const ExternalStorage& m_storage;
    QStringList m_names;
};

} // namespace velmora

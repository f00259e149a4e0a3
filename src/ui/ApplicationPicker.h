#pragma once

#include <QDialog>
#include <QStringList>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace velmora {

class Workspace;

// Chooses applications by their desktop entries, for a list that names applications (the clipboard
// history's ignore list): the installed ones with their icons, narrowed as the user types, several
// at a time; or any entry file through "Other…". What it gives back are the entries' file URLs.
class ApplicationPicker final : public QDialog {
    Q_OBJECT
public:
    explicit ApplicationPicker(Workspace& workspace, QWidget* parent = nullptr);

    // Asks the user; the file URLs picked, none when the dialog was cancelled.
    static QStringList pick(Workspace& workspace, QWidget* parent = nullptr);

    // Once accepted: the file URLs picked, in list order.
    const QStringList& pickedURLs() const { return m_picked; }
    // Takes the application a desktop entry file describes, with the ones selected in the list, and
    // closes the dialog, as "Other…" does with the file the user chose. A file that describes no
    // application is reported, and nothing changes.
    bool takeFile(const QString& path);

private:
    void filter(const QString& text);
    void add();
    void chooseFile();
    QStringList selectedURLs() const;

    Workspace& m_workspace;
    QLineEdit* m_search;
    QListWidget* m_list;
    QPushButton* m_add;
    QLabel* m_problem;
    QStringList m_picked;
};

} // namespace velmora

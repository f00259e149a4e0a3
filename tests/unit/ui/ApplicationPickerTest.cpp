#include "ui/ApplicationPicker.h"
#include "platform/fake/FakeWorkspace.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <gtest/gtest.h>

using namespace velmora;

namespace {

ApplicationIdentity application(const QString& id, const QString& name) {
    QImage icon(32, 32, QImage::Format_ARGB32);
    icon.fill(Qt::red);
    return {id, "file:///usr/share/applications/" + id + ".desktop", name, icon};
}

struct PickerSetup {
    FakeWorkspace workspace;
    std::unique_ptr<ApplicationPicker> picker;

    PickerSetup() {
        workspace.installed = {application("org.gnome.gedit", "Text Editor"),
                               application("org.gnome.Nautilus", "Files"),
                               application("firefox-esr", "Firefox ESR"),
                               {QString("xterm"), std::nullopt, QString("xterm"), QImage()}};
        picker = std::make_unique<ApplicationPicker>(workspace);
    }
    QListWidget* list() const { return picker->findChild<QListWidget*>("applications"); }
    QLineEdit* search() const { return picker->findChild<QLineEdit*>("search"); }
    QPushButton* add() const { return picker->findChild<QPushButton*>("add"); }
    QLabel* problem() const { return picker->findChild<QLabel*>("problem"); }
    QStringList shown() const {
        QStringList names;
        for (int row = 0; row < list()->count(); ++row)
            if (!list()->item(row)->isHidden())
                names << list()->item(row)->text();
        return names;
    }
    void select(const QString& name) const {
        const auto found = list()->findItems(name, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1);
        found.front()->setSelected(true);
    }
};

} // namespace

TEST(ApplicationPicker, ListsApplicationsWithAnEntryFileAndFiltersAsTheUserTypes) {
    PickerSetup s;
    // An application known only by its window class cannot be named in the list.
    EXPECT_EQ(s.shown(), QStringList({"Text Editor", "Files", "Firefox ESR"}));
    EXPECT_FALSE(s.list()->item(0)->icon().isNull());

    s.search()->setText("fi");
    EXPECT_EQ(s.shown(), QStringList({"Files", "Firefox ESR"}));
    s.search()->setText("  ESR  firefox ");
    EXPECT_EQ(s.shown(), QStringList({"Firefox ESR"}));
    // The id counts as well as the name.
    s.search()->setText("gnome");
    EXPECT_EQ(s.shown(), QStringList({"Text Editor", "Files"}));
    s.search()->setText("nothing like it");
    EXPECT_TRUE(s.shown().isEmpty());
    s.search()->clear();
    EXPECT_EQ(s.shown().size(), 3);
}

TEST(ApplicationPicker, AddGivesTheSelectedEntriesFileURLs) {
    PickerSetup s;
    EXPECT_FALSE(s.add()->isEnabled());
    s.select("Firefox ESR");
    // A selection hidden by a later search is kept.
    s.search()->setText("editor");
    s.select("Text Editor");
    ASSERT_TRUE(s.add()->isEnabled());
    s.add()->click();
    EXPECT_EQ(s.picker->result(), QDialog::Accepted);
    EXPECT_EQ(s.picker->pickedURLs(), QStringList({"file:///usr/share/applications/org.gnome.gedit.desktop",
                                                   "file:///usr/share/applications/firefox-esr.desktop"}));
}

TEST(ApplicationPicker, AFileThatIsNoApplicationIsReportedAndChangesNothing) {
    PickerSetup s;
    s.select("Files");
    static QStringList printed;
    printed.clear();
    const auto previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext& context, const QString& text) {
            if (QByteArray(context.category) == "velmora.clipboard")
                printed << text;
        });
    EXPECT_FALSE(s.picker->takeFile("/home/me/notes.txt"));
    qInstallMessageHandler(previous);
    EXPECT_EQ(printed, QStringList({"Failed to import file: /home/me/notes.txt is not an application"}));
    EXPECT_EQ(s.problem()->text(), "Failed to import file: /home/me/notes.txt is not an application");
    EXPECT_TRUE(s.problem()->isVisibleTo(s.picker.get()));
    EXPECT_NE(s.picker->result(), QDialog::Accepted);
    EXPECT_TRUE(s.picker->pickedURLs().isEmpty());

    // A good file is taken with what is selected in the list.
    s.workspace.files.insert("/opt/tool/tool.desktop", application("tool", "Tool"));
    s.workspace.files["/opt/tool/tool.desktop"].fileURL = "file:///opt/tool/tool.desktop";
    EXPECT_TRUE(s.picker->takeFile("/opt/tool/tool.desktop"));
    EXPECT_EQ(s.picker->result(), QDialog::Accepted);
    EXPECT_EQ(s.picker->pickedURLs(),
              QStringList({"file:///usr/share/applications/org.gnome.Nautilus.desktop",
                           "file:///opt/tool/tool.desktop"}));
}

#pragma once

#include "core/WindowArea.h"
#include "core/WindowManagerPreferences.h"

#include <QUuid>
#include <QWidget>
#include <array>
#include <functional>
#include <optional>
#include <vector>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace velmora {

class KeyboardLayout;
class KeyboardShortcutField;
class UndoBar;
class KeyboardShortcutModel;
class UserPreferences;
class WindowAreaView;

// The settings of window-manager features this build may not have; only those it has are shown.
struct WindowManagerPageFeatures {
    bool dragSnapping = false;
    bool autoLayout = false;
};

// The window manager's settings and the zone editor. Every change is written back as a whole new
// record; a change to the zones also gives the record a new `updated` stamp. Coordinates are stored
// as typed, even when they do not read: the window manager skips such a zone, and the editor marks
// the field, until the user fixes it.
class WindowManagerPreferencesPage : public QWidget {
    Q_OBJECT
public:
    static constexpr const char* kTitle = "Window Manager";
    static constexpr const char* kCoordinateHelp =
        "Position and size range from\n0 to 1 and can be expressed "
        "as:\n\n• Decimal number, like 0.75\n• Percentage, like "
        "75%\n• Fraction, like 3/4";

    enum class Coordinate { x, y, w, h };
    // The screen-kind boxes, in the order of the zone's flags: laptop, wide, ultrawide, super
    // ultrawide, vertical.
    static constexpr int kScreenKindCount = 5;

    WindowManagerPreferencesPage(UserPreferences& preferences, KeyboardShortcutModel& model,
                                 const KeyboardLayout& layout, WindowManagerPageFeatures features = {},
                                 QWidget* parent = nullptr);

    // The zone shown in the editor.
    std::optional<QUuid> selectedZoneId() const { return m_selected; }
    void selectZone(const QUuid& id);
    void addZone();
    void removeSelectedZone();
    void restoreDefaultZones();
    // Gives the selected zone the shape, name and screen kinds of template `index` of the template
    // list; it keeps its id and shortcut.
    void applyTemplate(int index);

    QCheckBox* windowSwitcherBox() const { return m_windowSwitcher; }
    QCheckBox* autoLayoutBox() const { return m_autoLayout; }
    QDoubleSpinBox* spacingBox() const { return m_spacing; }
    QRadioButton* shiftDisablesButton() const { return m_shiftDisables; }
    QRadioButton* shiftEnablesButton() const { return m_shiftEnables; }
    QCheckBox* mouseSnappingBox() const { return m_mouseSnapping; }
    QListWidget* zoneList() const { return m_list; }
    QPushButton* addButton() const { return m_add; }
    QPushButton* removeButton() const { return m_remove; }
    QPushButton* restoreButton() const { return m_restore; }
    UndoBar* undoBar() const { return m_undo; }
    QWidget* editor() const { return m_editor; }
    QLineEdit* nameField() const { return m_name; }
    QLineEdit* coordinateField(Coordinate c) const { return m_coordinates[std::size_t(c)]; }
    QLabel* invalidMark(Coordinate c) const { return m_marks[std::size_t(c)]; }
    WindowAreaView* preview() const { return m_preview; }
    QComboBox* templateBox() const { return m_templateBox; }
    QCheckBox* screenKindBox(int index) const { return m_screenKinds[std::size_t(index)]; }
    KeyboardShortcutField* shortcutField() const { return m_shortcut; }

private:
    QWidget* makeEditor(KeyboardShortcutModel& model, const KeyboardLayout& layout);
    void refresh();
    void refreshList(const std::vector<WindowArea>& areas);
    void loadEditor();
    // The preview and the invalid marks, from the fields as they stand (saved or not).
    void updateEditorState();
    WindowArea editedArea() const;

    void writeSettings(const std::function<void(WindowManagerPreferences&)>& change);
    void assignZoneShortcut(const KeyboardShortcut& shortcut);
    void editSelectedZone(const std::function<void(WindowArea&)>& change);
    bool writeZones(WindowManagerPreferences record);

    UserPreferences& m_preferences;
    const std::vector<WindowArea> m_templates;
    std::optional<QUuid> m_selected;
    // Where the selection was, so that a removed zone hands it to its neighbour.
    int m_selectedRow = 0;

    QCheckBox* m_windowSwitcher;
    QCheckBox* m_autoLayout;
    QDoubleSpinBox* m_spacing;
    QCheckBox* m_mouseSnapping;
    QRadioButton* m_shiftDisables;
    QRadioButton* m_shiftEnables;
    QListWidget* m_list;
    QPushButton* m_add;
    QPushButton* m_remove;
    QPushButton* m_restore = nullptr;
    UndoBar* m_undo = nullptr;
    QWidget* m_editor = nullptr;
    QLineEdit* m_name = nullptr;
    std::array<QLineEdit*, 4> m_coordinates{};
    std::array<QLabel*, 4> m_marks{};
    WindowAreaView* m_preview = nullptr;
    QComboBox* m_templateBox = nullptr;
    std::array<QCheckBox*, kScreenKindCount> m_screenKinds{};
    KeyboardShortcutField* m_shortcut = nullptr;
};

} // namespace velmora

#include "ui/KeyboardShortcutField.h"

#include "app/KeyboardShortcutModel.h"
#include "core/KeyEvent.h"
#include "ui/ShortcutRenderer.h"

#include <QCheckBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace velmora {

namespace {

// Wide enough for the usual three-cap chords, so that the rows of a page line up.
constexpr int kMinimumWidth = 160;

// The recording popover. It has the focus while open, so typed keys go nowhere else; the chord itself
// comes from the model, which the input tap feeds with every key, including the global chords it
// holds back. It must not grab the keyboard (as a menu-style popup would): that would keep the
// global chords from ever reaching the tap. It closes when it loses the focus, like a popup.
class RecordingPopover : public QFrame {
public:
    explicit RecordingPopover(QWidget* parent)
        : QFrame(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
        setFrameShape(QFrame::StyledPanel);
    }

    std::function<void()> onHidden;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier)
            close();
        event->accept();
    }
    void keyReleaseEvent(QKeyEvent* event) override { event->accept(); }
    bool event(QEvent* event) override {
        if (event->type() == QEvent::WindowDeactivate && isVisible())
            close();
        return QFrame::event(event);
    }
    void hideEvent(QHideEvent* event) override {
        QFrame::hideEvent(event);
        if (onHidden)
            onHidden();
    }
};

} // namespace

KeyboardShortcutField::KeyboardShortcutField(KeyboardShortcutModel& model, const KeyboardLayout& layout,
                                             QWidget* parent)
    : QWidget(parent), m_model(model), m_layout(layout), m_button(new QPushButton(this)),
      m_renderer(new ShortcutRenderer(layout, &model)), m_none(new QLabel(QStringLiteral("None"))),
      m_warning(new QLabel(QStringLiteral("⚠"), this)),
      m_enabled(new QCheckBox(QStringLiteral("Enabled"), this)) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_button);
    row->addWidget(m_warning);
    row->addWidget(m_enabled);
    row->addStretch(1);

    auto* inside = new QHBoxLayout(m_button);
    inside->setContentsMargins(8, 4, 8, 4);
    inside->addWidget(m_renderer, 0, Qt::AlignCenter);
    inside->addWidget(m_none, 0, Qt::AlignCenter);
    m_renderer->setShouldHighlight(true);
    m_renderer->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_none->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_none->setEnabled(false);
    m_button->setObjectName(QStringLiteral("record"));
    m_button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_warning->setObjectName(QStringLiteral("refused"));
    // Keeps the place of the mark, so that the rows' check boxes stay in one column.
    QSizePolicy keepPlace = m_warning->sizePolicy();
    keepPlace.setRetainSizeWhenHidden(true);
    m_warning->setSizePolicy(keepPlace);
    m_enabled->setObjectName(QStringLiteral("enabled"));

    connect(m_button, &QPushButton::clicked, this, &KeyboardShortcutField::openPopover);
    connect(m_enabled, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_existingShortcut || !onChange)
            return;
        KeyboardShortcut shortcut = *m_existingShortcut;
        shortcut.disabled = !on;
        onChange(shortcut);
    });
    connect(&m_model, &KeyboardShortcutModel::changed, this, &KeyboardShortcutField::modelChanged);
    refresh();
}

KeyboardShortcutField::~KeyboardShortcutField() {
    if (auto* popover = static_cast<RecordingPopover*>(m_popover))
        popover->onHidden = nullptr;
    if (m_isPopoverShown) {
        m_isPopoverShown = false;
        m_model.setRecording(false);
    }
}

void KeyboardShortcutField::setExistingShortcut(std::optional<KeyboardShortcut> shortcut) {
    m_existingShortcut = std::move(shortcut);
    refresh();
}

void KeyboardShortcutField::setRequireModifier(bool require) {
    m_requireModifier = require;
    m_renderer->setRequireModifier(require);
    if (m_held)
        m_held->setRequireModifier(require);
}

void KeyboardShortcutField::setGlobal(bool global) {
    m_global = global;
    setRequireModifier(global || m_requireModifier);
}

void KeyboardShortcutField::setCanDisable(bool canDisable) {
    m_canDisable = canDisable;
    refresh();
}

void KeyboardShortcutField::setRefusedReason(const QString& reason) {
    m_refusedReason = reason;
    refresh();
}

void KeyboardShortcutField::openPopover() {
    if (m_isPopoverShown)
        return;
    if (!m_popover) {
        auto* popover = new RecordingPopover(this);
        popover->onHidden = [this] { popoverClosed(); };
        auto* column = new QVBoxLayout(popover);
        m_prompt = new QLabel(QString::fromUtf8(kPrompt));
        m_prompt->setAlignment(Qt::AlignCenter);
        m_held = new ShortcutRenderer(m_layout, &m_model);
        m_held->setShowsHeldKeys(true);
        m_held->setShouldHighlight(true);
        m_held->setRequireModifier(m_requireModifier);
        m_message = new QLabel;
        m_message->setObjectName(QStringLiteral("message"));
        m_message->setWordWrap(true);
        m_message->setAlignment(Qt::AlignCenter);
        m_message->setFixedWidth(240);
        m_answers = new QWidget;
        auto* answers = new QHBoxLayout(m_answers);
        answers->setContentsMargins(0, 0, 0, 0);
        auto* cancel = new QPushButton(QStringLiteral("Cancel"));
        cancel->setObjectName(QStringLiteral("cancel"));
        auto* replace = new QPushButton(QStringLiteral("Replace"));
        replace->setObjectName(QStringLiteral("replace"));
        replace->setDefault(true);
        answers->addWidget(cancel);
        answers->addWidget(replace);
        connect(cancel, &QPushButton::clicked, this, &KeyboardShortcutField::closePopover);
        connect(replace, &QPushButton::clicked, this, &KeyboardShortcutField::replaceOtherUses);
        column->addWidget(m_prompt, 0, Qt::AlignCenter);
        column->addWidget(m_held, 0, Qt::AlignCenter);
        column->addWidget(m_message, 0, Qt::AlignCenter);
        column->addWidget(m_answers, 0, Qt::AlignCenter);
        popover->setMinimumSize(160, 64);
        m_popover = popover;
    }
    m_newShortcut.reset();
    m_pendingShortcut.reset();
    showMessage({}, false);
    m_lastKeyCode = m_model.keyCode();
    m_isPopoverShown = true;
    m_model.setRecording(true);
    refreshPopover();

    m_popover->adjustSize();
    const QPoint below = m_button->mapToGlobal(QPoint(m_button->width() / 2, m_button->height()));
    QPoint topLeft(below.x() - m_popover->width() / 2, below.y() + 2);
    if (const QScreen* screen = m_button->screen()) {
        const QRect area = screen->availableGeometry();
        topLeft.setX(
            std::clamp(topLeft.x(), area.left(), std::max(area.left(), area.right() - m_popover->width())));
    }
    m_popover->move(topLeft);
    m_popover->show();
    m_popover->raise();
    m_popover->activateWindow();
}

void KeyboardShortcutField::closePopover() {
    if (m_popover && m_popover->isVisible())
        m_popover->close();
    popoverClosed(); // also when the popover never made it onto the screen
}

void KeyboardShortcutField::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    closePopover();
}

void KeyboardShortcutField::popoverClosed() {
    if (!m_isPopoverShown)
        return;
    m_isPopoverShown = false;
    m_pendingShortcut.reset();
    m_model.setRecording(false);
}

void KeyboardShortcutField::modelChanged() {
    if (!m_isPopoverShown)
        return;
    refreshPopover();

    const std::optional<quint16> keyCode = m_model.keyCode();
    const bool keyWentDown = keyCode && keyCode != m_lastKeyCode;
    m_lastKeyCode = keyCode;
    if (!keyWentDown || !m_model.activeShortcut())
        return;

    KeyboardShortcut chord = *m_model.activeShortcut();
    chord.disabled = false;
    // Escape reaches the popover as a key press too; alone it always means "never mind".
    if (chord == bareKey(KeyCode::Escape)) {
        closePopover();
        return;
    }
    if (!m_pendingShortcut.has_value() || chord != bareKey(KeyCode::Return))
        take(chord);
    else
        replaceOtherUses(); // Return answers the question, as the default button
}

void KeyboardShortcutField::take(const KeyboardShortcut& chord) {
    m_pendingShortcut.reset();
    if (m_global && !chord.canBeGlobal()) {
        showMessage(shortcutText(chord, m_layout) +
                        QStringLiteral(" alone would take ordinary typing. Hold Ctrl, Alt or Super with "
                                       "it, or use a function key."),
                    false);
        return; // keep listening
    }
    if (!m_global && m_requireModifier && !chord.hasModifier())
        return; // keep listening; the popover shows the key greyed
    if (chord != m_existingShortcut.value_or(KeyboardShortcut{}) && usesOf) {
        const auto uses = usesOf(chord);
        if (!uses.empty()) {
            QStringList names;
            for (const ShortcutUse& use : uses)
                names << use.title;
            m_pendingShortcut = chord;
            showMessage(QStringLiteral("%1 is already used by %2.")
                            .arg(shortcutText(chord, m_layout), names.join(QStringLiteral(", "))),
                        true);
            return;
        }
    }
    m_newShortcut = chord;
    closePopover();
    if (onChange)
        onChange(chord);
}

void KeyboardShortcutField::replaceOtherUses() {
    if (!m_pendingShortcut)
        return;
    const KeyboardShortcut chord = *std::exchange(m_pendingShortcut, std::nullopt);
    m_newShortcut = chord;
    closePopover();
    if (onChange)
        onChange(chord);
}

void KeyboardShortcutField::showMessage(const QString& text, bool asking) {
    if (!m_message)
        return;
    m_message->setText(text);
    m_message->setVisible(!text.isEmpty());
    m_answers->setVisible(asking);
    refreshPopover();
    if (m_popover->isVisible())
        m_popover->adjustSize();
}

void KeyboardShortcutField::refreshPopover() {
    const bool nothingHeld =
        !m_model.keyCode() && !m_model.control() && !m_model.alt() && !m_model.command() && !m_model.shift();
    // A refusal or a question replaces the prompt until the next key.
    const bool explaining = m_message && !m_message->text().isEmpty();
    m_prompt->setVisible(nothingHeld && !explaining);
    m_held->setVisible(!nothingHeld);
}

void KeyboardShortcutField::refresh() {
    const bool bound = m_existingShortcut.has_value();
    const bool disabled = bound && m_existingShortcut->disabled;
    m_renderer->setShortcut(m_existingShortcut);
    m_renderer->setVisible(bound);
    m_renderer->setEnabled(!disabled);
    m_none->setVisible(!bound);

    QString tip = bound ? shortcutText(*m_existingShortcut, m_layout) : QStringLiteral("No shortcut");
    if (disabled)
        tip += QStringLiteral(" (disabled)");
    m_button->setToolTip(tip + QStringLiteral("\nClick to record a new shortcut."));
    m_button->layout()->invalidate();
    m_button->setMinimumSize(m_button->layout()->sizeHint().expandedTo(QSize(kMinimumWidth, 0)));

    m_warning->setVisible(!m_refusedReason.isEmpty());
    m_warning->setToolTip(m_refusedReason);

    const QSignalBlocker block(m_enabled);
    m_enabled->setVisible(m_canDisable);
    m_enabled->setEnabled(bound);
    m_enabled->setChecked(bound && !disabled);
}

} // namespace velmora

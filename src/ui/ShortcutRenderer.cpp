#include "ui/ShortcutRenderer.h"

#include "app/KeyboardShortcutModel.h"
#include "platform/KeyboardLayout.h"
#include "ui/KeyRenderer.h"

#include <QHBoxLayout>

namespace velmora {

namespace {

using CapKind = ShortcutRenderer::CapKind;

struct Cap {
    CapKind kind;
    QString label;
};

// On Linux the Mac's Command is the Ctrl key and its Control is the Super key; the caps say what is
// printed on the keyboard in front of the user.
std::vector<Cap> capsOf(bool control, bool alt, bool command, bool shift, std::optional<quint16> keyCode,
                        const KeyboardLayout& layout) {
    std::vector<Cap> caps;
    if (command)
        caps.push_back({CapKind::Command, QStringLiteral("Ctrl")});
    if (control)
        caps.push_back({CapKind::Control, QStringLiteral("Super")});
    if (alt)
        caps.push_back({CapKind::Alt, QStringLiteral("Alt")});
    if (shift)
        caps.push_back({CapKind::Shift, QStringLiteral("Shift")});
    if (keyCode) {
        // A key the layout cannot name (a record from another machine) still gets a cap to click on.
        QString label = layout.label(*keyCode);
        if (label.isEmpty())
            label = QStringLiteral("Key %1").arg(*keyCode);
        caps.push_back({CapKind::Key, label});
    }
    return caps;
}

std::vector<Cap> capsOf(const KeyboardShortcut& s, const KeyboardLayout& layout) {
    return capsOf(s.control, s.alt, s.command, s.shift, s.keyCode, layout);
}

} // namespace

QStringList shortcutCapLabels(const KeyboardShortcut& shortcut, const KeyboardLayout& layout) {
    QStringList labels;
    for (const Cap& cap : capsOf(shortcut, layout))
        labels << cap.label;
    return labels;
}

QString shortcutText(const KeyboardShortcut& shortcut, const KeyboardLayout& layout) {
    return shortcutCapLabels(shortcut, layout).join(QLatin1Char('+'));
}

ShortcutRenderer::ShortcutRenderer(const KeyboardLayout& layout, KeyboardShortcutModel* model,
                                   QWidget* parent)
    : QWidget(parent), m_layout(layout), m_model(model), m_row(new QHBoxLayout(this)) {
    m_row->setContentsMargins(0, 0, 0, 0);
    m_row->setSpacing(3);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    if (m_model)
        connect(m_model, &KeyboardShortcutModel::changed, this, &ShortcutRenderer::modelChanged);
}

void ShortcutRenderer::setShortcut(std::optional<KeyboardShortcut> shortcut) {
    if (shortcut == m_shortcut && !m_showsHeldKeys)
        return;
    m_shortcut = std::move(shortcut);
    rebuild();
}

void ShortcutRenderer::setShowsHeldKeys(bool shows) {
    m_showsHeldKeys = shows && m_model;
    rebuild();
}

void ShortcutRenderer::setRequireModifier(bool require) {
    m_requireModifier = require;
    rebuild();
}

void ShortcutRenderer::setShouldHighlight(bool highlight) {
    m_shouldHighlight = highlight;
    updateHighlights();
}

QStringList ShortcutRenderer::capLabels() const {
    QStringList labels;
    for (const KeyRenderer* cap : m_caps)
        labels << cap->label();
    return labels;
}

void ShortcutRenderer::modelChanged() {
    if (m_showsHeldKeys)
        rebuild();
    else
        updateHighlights();
}

void ShortcutRenderer::rebuild() {
    std::vector<Cap> wanted;
    if (m_showsHeldKeys)
        wanted = capsOf(m_model->control(), m_model->alt(), m_model->command(), m_model->shift(),
                        m_model->keyCode(), m_layout);
    else if (m_shortcut)
        wanted = capsOf(*m_shortcut, m_layout);

    // Caps are reused, so that holding keys down while recording does not rebuild widgets on every event.
    while (m_caps.size() > qsizetype(wanted.size()))
        delete m_caps.takeLast();
    while (m_caps.size() < qsizetype(wanted.size())) {
        auto* cap = new KeyRenderer({}, this);
        m_row->addWidget(cap);
        m_caps << cap;
    }
    m_kinds.clear();
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        m_caps[qsizetype(i)]->setLabel(wanted[i].label);
        m_kinds.push_back(wanted[i].kind);
    }

    const bool lacksModifier = !m_kinds.empty() && m_kinds.front() == CapKind::Key;
    const bool unacceptable = m_requireModifier && lacksModifier;
    for (KeyRenderer* cap : m_caps)
        cap->setEnabled(!unacceptable);
    setToolTip(unacceptable ? QStringLiteral("This shortcut needs a modifier key") : QString());
    updateHighlights();
    updateGeometry();
}

void ShortcutRenderer::updateHighlights() {
    for (std::size_t i = 0; i < m_kinds.size(); ++i)
        m_caps[qsizetype(i)]->setHighlight(m_shouldHighlight && isHeld(m_kinds[i]));
}

bool ShortcutRenderer::isHeld(CapKind kind) const {
    if (!m_model)
        return false;
    switch (kind) {
    case CapKind::Command:
        return m_model->command();
    case CapKind::Control:
        return m_model->control();
    case CapKind::Alt:
        return m_model->alt();
    case CapKind::Shift:
        return m_model->shift();
    case CapKind::Key:
        if (m_showsHeldKeys)
            return m_model->keyCode().has_value();
        return m_shortcut && m_model->keyCode() == m_shortcut->keyCode;
    }
    return false;
}

} // namespace velmora

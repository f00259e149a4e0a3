#include "ui/power/PowerPreferencesPage.h"

#include "power/PowerManagementModel.h"
#include "ui/HintLabel.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QLabel>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace velmora {

namespace {

// A mode's description sits under its choice, indented to the choice's text.
QLabel* descriptionUnder(const QString& text) {
    QLabel* label = hintLabel(text);
    label->setContentsMargins(24, 0, 0, 8);
    return label;
}

// A button takes "&" for a mnemonic; the labels mean the character.
QString buttonText(const char* label) {
    return QString(label).replace('&', "&&");
}

} // namespace

const QString PowerPreferencesPage::kTemporaryDescription =
    "This option works as long as your laptop lid is open. It is automatically turned off if you exit "
    "Velmora, which makes it safer - impossible to forget that it's on.";
const QString PowerPreferencesPage::kPersistentDescription =
    "This option changes global system settings, which forces your computer to stay awake when you close "
    "the lid on a laptop. However, this means it will persist even after Velmora is closed. This is why it "
    "is potentially dangerous - because it can be easily forgotten.";

PowerPreferencesPage::PowerPreferencesPage(PowerManagementModel& model, QWidget* parent)
    : QWidget(parent), m_model(model), m_preventSleep(new QCheckBox("Prevent Sleep")),
      m_temporary(new QRadioButton(buttonText(kTemporaryLabel))),
      m_persistent(new QRadioButton(buttonText(kPersistentLabel))),
      m_waiting(hintLabel("Waiting for the system (an administrator prompt may be open)…")),
      m_problem(new QLabel) {
    m_preventSleep->setObjectName("preventSleep");
    m_temporary->setObjectName("temporaryMode");
    m_persistent->setObjectName("persistentMode");
    m_waiting->setObjectName("waiting");
    m_problem->setObjectName("problem");
    m_problem->setWordWrap(true);
    QPalette warning = m_problem->palette();
    warning.setColor(QPalette::WindowText, QColor(0xc0, 0x30, 0x30));
    m_problem->setPalette(warning);

    auto* modes = new QButtonGroup(this);
    modes->addButton(m_temporary);
    modes->addButton(m_persistent);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QString("<h3>%1</h3>").arg(kTitle)));
    layout->addWidget(m_preventSleep);
    layout->addSpacing(8);
    layout->addWidget(new QLabel(QString("<b>%1</b>").arg(kSectionTitle)));
    layout->addWidget(m_temporary);
    layout->addWidget(descriptionUnder(kTemporaryDescription));
    layout->addWidget(m_persistent);
    layout->addWidget(descriptionUnder(kPersistentDescription));
    layout->addWidget(m_waiting);
    layout->addWidget(m_problem);
    layout->addStretch(1);

    connect(m_preventSleep, &QCheckBox::toggled, this, [this](bool on) { m_model.setPreventSleep(on); });
    connect(m_persistent, &QRadioButton::toggled, this,
            [this](bool persistent) { m_model.setUsePMSet(persistent); });
    connect(&m_model, &PowerManagementModel::changed, this, &PowerPreferencesPage::refresh);
    refresh();
}

void PowerPreferencesPage::refresh() {
    const QSignalBlocker a(m_preventSleep), b(m_temporary), c(m_persistent);
    m_preventSleep->setChecked(m_model.preventSleep());
    m_persistent->setChecked(m_model.usePMSet());
    m_temporary->setChecked(!m_model.usePMSet());
    const bool ready = m_model.initialized() && !m_model.busy();
    for (QWidget* control : {static_cast<QWidget*>(m_preventSleep), static_cast<QWidget*>(m_temporary),
                             static_cast<QWidget*>(m_persistent)})
        control->setEnabled(ready);
    m_waiting->setVisible(m_model.busy());
    m_problem->setText(m_model.lastError());
    m_problem->setVisible(!m_model.lastError().isEmpty());
}

} // namespace velmora

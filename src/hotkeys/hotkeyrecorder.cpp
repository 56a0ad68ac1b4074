#include "hotkeys/hotkeyrecorder.h"

#include "catalog/systemstrings.h"
#include "hotkeys/desktopshortcuts.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

HotKeyRecorder::HotKeyRecorder(HotKeyCenter &center, QList<HotKeyCenter *> others, const QString &, QWidget *parent)
    : HotKeyRecorder(center, std::move(others), parent)
{
}

HotKeyRecorder::HotKeyRecorder(HotKeyCenter &center, QList<HotKeyCenter *> others, QWidget *parent)
    : QWidget(parent)
    , m_model(center, std::move(others), SystemStrings::shared().text(SystemString::Space), &desktopShortcuts)
    , m_button(new QPushButton(this))
    , m_clear(new QToolButton(this))
    , m_warning(new QLabel(SystemStrings::shared().text(SystemString::ShortcutInUse), this))
    , m_status(new QLabel(this))
{
    m_button->setMinimumWidth(160);
    m_button->installEventFilter(this);
    m_clear->setIcon(
        QIcon::fromTheme(QStringLiteral("edit-clear"), style()->standardIcon(QStyle::SP_LineEditClearButton)));
    m_clear->setAutoRaise(true);
    m_clear->setToolTip(SystemStrings::shared().text(SystemString::RemoveShortcut));
    m_warning->setStyleSheet(QStringLiteral("color: #c01c28;"));
    m_status->setWordWrap(true);
    m_status->setForegroundRole(QPalette::PlaceholderText);

    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_button);
    row->addWidget(m_clear);
    row->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(row);
    layout->addWidget(m_warning);
    layout->addWidget(m_status);

    connect(m_button, &QPushButton::clicked, this, &HotKeyRecorder::toggleRecording);
    connect(m_clear, &QToolButton::clicked, &m_model, &HotKeyRecorderModel::clear);
    connect(&m_model, &HotKeyRecorderModel::changed, this, &HotKeyRecorder::refresh);
    refresh();
}

HotKeyRecorder::~HotKeyRecorder() = default;

void HotKeyRecorder::toggleRecording()
{
    if (m_model.isRecording()) {
        m_model.stopRecording();
        return;
    }
    m_model.startRecording();
    m_button->setFocus();
}

// While recording, every key goes to the recorder, before any shortcut of
// the window can act on it.
bool HotKeyRecorder::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_button || !m_model.isRecording())
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        event->accept();
        return true;
    case QEvent::KeyPress: {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (m_model.handleKey(key->key(), key->modifiers()) == HotKeyRecorderModel::KeyOutcome::Refused)
            QApplication::beep();
        return true;
    }
    case QEvent::KeyRelease:
        return true;
    case QEvent::FocusOut:
        m_model.stopRecording();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void HotKeyRecorder::hideEvent(QHideEvent *event)
{
    m_model.stopRecording();
    QWidget::hideEvent(event);
}

void HotKeyRecorder::refresh()
{
    SystemStrings &strings = SystemStrings::shared();
    // Held while recording, so that the desktop's own shortcuts (Alt+Tab)
    // can be recorded instead of acted on.
    if (m_model.isRecording() != (QWidget::keyboardGrabber() == m_button)) {
        if (m_model.isRecording())
            m_button->grabKeyboard();
        else
            m_button->releaseKeyboard();
    }
    m_button->setText(m_model.isRecording()         ? strings.text(SystemString::PressKeys)
                      : m_model.display().isEmpty() ? strings.text(SystemString::NoShortcut)
                                                    : m_model.display());
    m_button->setDown(m_model.isRecording());
    m_clear->setVisible(!m_model.display().isEmpty());
    m_warning->setVisible(m_model.isTaken());
    const QString status = statusText();
    m_status->setText(status);
    m_status->setVisible(!status.isEmpty());
}

// Said only when the keys do not simply work as shown.
QString HotKeyRecorder::statusText() const
{
    if (m_model.isRecording() || m_model.display().isEmpty())
        return {};
    const HotKeyStatus status = m_model.hotKey().status();
    if (std::holds_alternative<HotKeyPending>(status))
        return tr("Waiting for the desktop to bind it…");
    if (const auto *bound = std::get_if<HotKeyBound>(&status)) {
        return bound->description == m_model.display() || bound->description.isEmpty()
                   ? QString()
                   : tr("The desktop binds it as %1.").arg(bound->description);
    }
    if (const auto *refusal = std::get_if<HotKeyRefusal>(&status); refusal && *refusal != HotKeyRefusal::Taken)
        return tr("Not bound: the desktop did not accept it.");
    return {};
}

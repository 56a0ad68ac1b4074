#include "hotkeys/hotkeyrecorder.h"

#include "catalog/systemstrings.h"
#include "hotkeys/accelerators.h"
#include "hotkeys/desktopshortcuts.h"
#include "hotkeys/gnomeshortcuts.h"
#include "sources/xdgdirs.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

bool onGnome()
{
    for (const QString &desktop : currentDesktops()) {
        if (desktop.compare(QLatin1String("GNOME"), Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

} // namespace

HotKeyRecorder::HotKeyRecorder(HotKeyCenter &center, QList<HotKeyCenter *> others, const QString &command,
                               QWidget *parent)
    : QWidget(parent)
    , m_model(center, std::move(others), SystemStrings::shared().text(SystemString::Space), &desktopShortcuts)
    , m_command(command)
    , m_button(new QPushButton(this))
    , m_clear(new QToolButton(this))
    , m_warning(new QLabel(SystemStrings::shared().text(SystemString::ShortcutInUse), this))
    , m_hint(new QLabel(this))
    , m_addToDesktop(new QPushButton(tr("Add to GNOME Keyboard Shortcuts"), this))
    , m_removeFromDesktop(new QPushButton(tr("Remove from GNOME Keyboard Shortcuts"), this))
{
    m_addToDesktop->setObjectName(QStringLiteral("addToDesktop"));
    m_removeFromDesktop->setObjectName(QStringLiteral("removeFromDesktop"));
    m_button->setMinimumWidth(160);
    m_button->installEventFilter(this);
    m_clear->setIcon(
        QIcon::fromTheme(QStringLiteral("edit-clear"), style()->standardIcon(QStyle::SP_LineEditClearButton)));
    m_clear->setAutoRaise(true);
    m_clear->setToolTip(SystemStrings::shared().text(SystemString::RemoveShortcut));
    m_warning->setStyleSheet(QStringLiteral("color: #c01c28;"));
    m_hint->setWordWrap(true);
    m_hint->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_button);
    row->addWidget(m_clear);
    row->addStretch();
    auto *offer = new QHBoxLayout;
    offer->setContentsMargins(0, 0, 0, 0);
    offer->addWidget(m_addToDesktop);
    offer->addWidget(m_removeFromDesktop);
    offer->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(row);
    layout->addWidget(m_warning);
    layout->addWidget(m_hint);
    layout->addLayout(offer);

    connect(m_button, &QPushButton::clicked, this, &HotKeyRecorder::toggleRecording);
    connect(m_clear, &QToolButton::clicked, &m_model, &HotKeyRecorderModel::clear);
    connect(m_addToDesktop, &QPushButton::clicked, this, &HotKeyRecorder::addToDesktop);
    connect(m_removeFromDesktop, &QPushButton::clicked, this, &HotKeyRecorder::removeFromDesktop);
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
    updateDesktopOffer();
}

void HotKeyRecorder::updateDesktopOffer()
{
    const bool needed = m_model.unbound().has_value() || !m_model.hotKey().isAvailable();
    const bool gnome = needed && onGnome() && GnomeShortcuts::canAddCustom();
    const auto bound = gnome ? GnomeShortcuts::customBinding(m_command) : std::nullopt;
    const auto boundKeys = bound ? fromGtkAccelerator(*bound) : std::nullopt;
    if (!needed)
        m_hint->clear();
    else if (bound)
        m_hint->setText(
            tr("GNOME runs “%1” on %2.")
                .arg(m_command, boundKeys ? m_model.displayText(boundKeys->keyCode, boundKeys->modifiers) : *bound));
    else if (gnome)
        m_hint->setText(
            tr("This session does not let programs set global shortcuts. GNOME can run “%1” for you.").arg(m_command));
    else
        m_hint->setText(tr("This session does not let programs set global shortcuts. Bind “%1” to a key in "
                           "your desktop’s keyboard settings.")
                            .arg(m_command));
    m_hint->setVisible(needed);
    const auto unbound = m_model.unbound();
    m_addToDesktop->setVisible(gnome && unbound && !(boundKeys && boundKeys->sameKeys(*unbound)));
    m_removeFromDesktop->setVisible(bound.has_value());
}

void HotKeyRecorder::addToDesktop()
{
    const auto combination = m_model.unbound();
    if (!combination)
        return;
    GnomeShortcuts::addCustom(QStringLiteral("Quillon: ") + combination->display, m_command, combination->keyCode,
                              combination->modifiers);
    updateDesktopOffer();
}

void HotKeyRecorder::removeFromDesktop()
{
    GnomeShortcuts::removeCustom(m_command);
    updateDesktopOffer();
}

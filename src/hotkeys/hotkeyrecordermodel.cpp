#include "hotkeys/hotkeyrecordermodel.h"

#include "common/mainthread.h"

#include <QCoreApplication>
#include <QKeySequence>

namespace {

bool isModifierKey(int key)
{
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_unknown:
    case 0:
        return true;
    default:
        return false;
    }
}

} // namespace

HotKeyRecorderModel::HotKeyRecorderModel(HotKeyCenter &center, QList<HotKeyCenter *> others, const QString &spaceName,
                                         ShortcutsInUse desktop, QObject *parent)
    : QObject(parent)
    , m_center(center)
    , m_others(std::move(others))
    , m_spaceName(spaceName)
    , m_desktop(std::move(desktop))
{
    if (const auto saved = m_center.current())
        m_display = saved->display;
    // The desktop may answer later, or the user may change the keys in the
    // desktop's own settings.
    connect(&m_center, &HotKeyCenter::statusChanged, this, [this] {
        // Changes this model makes itself are told by the model.
        if (m_changingCenter)
            return;
        const HotKeyStatus status = m_center.status();
        if (const auto *refusal = std::get_if<HotKeyRefusal>(&status); refusal && *refusal == HotKeyRefusal::Taken)
            m_taken = true;
        const auto saved = m_center.current();
        m_display = saved ? saved->display : QString();
        Q_EMIT changed();
    });
}

void HotKeyRecorderModel::startRecording()
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_recording = true;
    m_taken = false;
    Q_EMIT changed();
}

void HotKeyRecorderModel::stopRecording()
{
    if (!m_recording)
        return;
    m_recording = false;
    Q_EMIT changed();
}

void HotKeyRecorderModel::clear()
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_changingCenter = true;
    m_center.clear();
    m_changingCenter = false;
    m_display.clear();
    m_taken = false;
    m_unbound.reset();
    Q_EMIT changed();
}

HotKeyRecorderModel::KeyOutcome HotKeyRecorderModel::handleKey(int key, Qt::KeyboardModifiers qtModifiers)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (!m_recording || isModifierKey(key))
        return KeyOutcome::Ignored;
    // Shift+Tab arrives as its own key.
    if (key == Qt::Key_Backtab)
        key = Qt::Key_Tab;
    const quint32 modifiers = hotKeyModifiers(qtModifiers);
    if (key == Qt::Key_Escape && modifiers == 0) {
        stopRecording();
        return KeyOutcome::Cancelled;
    }
    // Only the function keys stand alone; Shift alone would take a
    // character away from typing everywhere.
    const bool functionKey = key >= Qt::Key_F1 && key <= Qt::Key_F12;
    const quint32 commanding = HotKeyModifier::Ctrl | HotKeyModifier::Alt | HotKeyModifier::Super;
    if (!functionKey && (modifiers & commanding) == 0)
        return KeyOutcome::Refused;

    const HotKeyCombination combination{quint32(key), modifiers, displayText(quint32(key), modifiers)};
    if (isInUse(combination)) {
        m_taken = true;
        Q_EMIT changed();
        return KeyOutcome::Taken;
    }
    m_changingCenter = true;
    const HotKeyRegistration registration =
        m_center.registerHotKey(combination.keyCode, combination.modifiers, combination.display);
    m_changingCenter = false;
    if (registration) {
        m_display = combination.display;
        m_taken = false;
        m_unbound.reset();
        m_recording = false;
        Q_EMIT changed();
        return KeyOutcome::Registered;
    }
    if (registration.refusal == HotKeyRefusal::Unavailable) {
        m_unbound = combination;
        m_recording = false;
        Q_EMIT changed();
        return KeyOutcome::Unbound;
    }
    // Keep recording: the user may press something else.
    if (registration.refusal == HotKeyRefusal::UnknownKey)
        return KeyOutcome::Refused;
    m_taken = true;
    Q_EMIT changed();
    return KeyOutcome::Taken;
}

bool HotKeyRecorderModel::isInUse(const HotKeyCombination &combination) const
{
    for (const HotKeyCombination &used : m_desktop()) {
        if (used.sameKeys(combination))
            return true;
    }
    for (const HotKeyCenter *other : m_others) {
        const auto saved = other->current();
        if (saved && saved->sameKeys(combination))
            return true;
    }
    return false;
}

QString HotKeyRecorderModel::displayText(quint32 key, quint32 modifiers) const
{
    QStringList parts;
    // Qt's own words for the modifiers, translated with Qt.
    if (modifiers & HotKeyModifier::Ctrl)
        parts.append(QCoreApplication::translate("QShortcut", "Ctrl"));
    if (modifiers & HotKeyModifier::Alt)
        parts.append(QCoreApplication::translate("QShortcut", "Alt"));
    if (modifiers & HotKeyModifier::Shift)
        parts.append(QCoreApplication::translate("QShortcut", "Shift"));
    if (modifiers & HotKeyModifier::Super)
        parts.append(QCoreApplication::translate("HotKeyRecorder", "Super"));
    parts.append(key == Qt::Key_Space ? m_spaceName : QKeySequence(int(key)).toString(QKeySequence::NativeText));
    return parts.join(u'+');
}

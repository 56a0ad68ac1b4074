#pragma once

#include "hotkeys/hotkeycenter.h"

#include <QList>
#include <QObject>

#include <functional>
#include <optional>

// What the settings control of one hot key does with the keys pressed
// while it records. Free of widgets, so its decisions can be checked alone.
class HotKeyRecorderModel : public QObject
{
    Q_OBJECT

public:
    using ShortcutsInUse = std::function<QList<HotKeyCombination>()>;

    enum class KeyOutcome {
        Ignored,    // not recording, or a modifier on its own
        Cancelled,  // Escape: recording stopped, nothing changed
        Refused,    // needs Ctrl, Alt or Super: the caller beeps
        Taken,      // the desktop, the other hot key or another program has it
        Registered, // now the hot key
        Unbound,    // the session lets no program have global shortcuts
    };

    // spaceName: how the space bar is called in the display text;
    // desktop: the combinations the desktop keeps for itself.
    HotKeyRecorderModel(HotKeyCenter &center, QList<HotKeyCenter *> others, const QString &spaceName,
                        ShortcutsInUse desktop, QObject *parent = nullptr);

    HotKeyCenter &hotKey() const { return m_center; }
    bool isRecording() const { return m_recording; }
    QString display() const { return m_display; }
    bool isTaken() const { return m_taken; }
    // The combination last pressed when the session refused global
    // shortcuts, for binding it in the desktop's own settings instead.
    std::optional<HotKeyCombination> unbound() const { return m_unbound; }

    void startRecording();
    void stopRecording();
    // Removes the hot key.
    void clear();
    KeyOutcome handleKey(int key, Qt::KeyboardModifiers modifiers);

    // "Ctrl+Alt+Space": modifiers in the order Ctrl, Alt, Shift, Super, then the key.
    QString displayText(quint32 key, quint32 modifiers) const;

Q_SIGNALS:
    void changed();

private:
    bool isInUse(const HotKeyCombination &combination) const;

    HotKeyCenter &m_center;
    QList<HotKeyCenter *> m_others;
    QString m_spaceName;
    ShortcutsInUse m_desktop;
    bool m_recording = false;
    QString m_display;
    bool m_taken = false;
    std::optional<HotKeyCombination> m_unbound;
    bool m_changingCenter = false;
};

#pragma once

#include "hotkeys/hotkeybackend.h"
#include "hotkeys/hotkeycombination.h"

#include <QString>

#include <functional>
#include <optional>

class Preferences;

// What came of registering a combination; true when it is in place.
struct HotKeyRegistration {
    std::optional<HotKeyRefusal> refusal;

    explicit operator bool() const { return !refusal; }
    bool operator==(const HotKeyRegistration &) const = default;
};

// One system-wide shortcut: registers its combination with the desktop,
// remembers it in the preferences under <prefix>KeyCode, <prefix>Modifiers
// and <prefix>Display, restores it at start-up and runs its action when it
// is pressed.
class HotKeyCenter : public QObject
{
    Q_OBJECT

public:
    HotKeyCenter(const QString &prefix, quint32 number, Preferences &preferences, HotKeyBackend &backend);
    ~HotKeyCenter() override;

    quint32 number() const { return m_number; }
    QString keyCodeKey() const { return m_prefix + QStringLiteral("KeyCode"); }
    QString modifiersKey() const { return m_prefix + QStringLiteral("Modifiers"); }
    QString displayKey() const { return m_prefix + QStringLiteral("Display"); }

    // Installs (or replaces) the combination and persists it. On a refusal
    // the previous combination is gone from the desktop but stays saved.
    HotKeyRegistration registerHotKey(quint32 keyCode, quint32 modifiers, const QString &display);
    // Unregisters and forgets the saved combination.
    void clear();
    // Registers the saved combination, if there is one.
    void restore();
    // The saved combination.
    std::optional<HotKeyCombination> current() const;
    bool isRegistered() const { return m_handle.has_value(); }
    bool isAvailable() const { return m_backend.isAvailable(); }

    void setAction(std::function<void()> action) { m_action = std::move(action); }

private:
    void unregister();
    void pressed(quint32 id);

    QString m_prefix;
    quint32 m_number;
    Preferences &m_preferences;
    HotKeyBackend &m_backend;
    std::optional<HotKeyHandle> m_handle;
    std::function<void()> m_action;
};

// The two centres: the search panel's ("HotKey", 1) and the menu's
// ("MenuHotKey", 2).
class HotKeyCenters
{
public:
    HotKeyCenters(Preferences &preferences, HotKeyBackend &backend);
    HotKeyCenters(const HotKeyCenters &) = delete;
    HotKeyCenters &operator=(const HotKeyCenters &) = delete;

    // The process's centres over the user's preferences and the session's
    // facility, made on first use.
    static HotKeyCenters &shared();

    HotKeyCenter &search() { return m_search; }
    HotKeyCenter &menu() { return m_menu; }
    // The centres other than the given one.
    QList<HotKeyCenter *> others(const HotKeyCenter &center);
    void restore();

private:
    HotKeyCenter m_search;
    HotKeyCenter m_menu;
};

#pragma once

#include "hotkeys/hotkeybackend.h"
#include "hotkeys/hotkeycombination.h"

#include <QString>

#include <functional>
#include <optional>
#include <variant>

class Preferences;

// What came of registering a combination; true when it is in place.
struct HotKeyRegistration {
    std::optional<HotKeyRefusal> refusal;

    explicit operator bool() const { return !refusal; }
    bool operator==(const HotKeyRegistration &) const = default;
};

// Where a centre's combination stands with the desktop: none saved; asked
// for and not yet answered; bound, as the desktop describes the keys; or
// refused.
struct HotKeyUnset {
    bool operator==(const HotKeyUnset &) const = default;
};
struct HotKeyPending {
    bool operator==(const HotKeyPending &) const = default;
};
struct HotKeyBound {
    QString description;
    bool operator==(const HotKeyBound &) const = default;
};
using HotKeyStatus = std::variant<HotKeyUnset, HotKeyPending, HotKeyBound, HotKeyRefusal>;

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
    // Where the desktop answers later, success means "asked": status() and
    // statusChanged() tell what the desktop made of it.
    HotKeyRegistration registerHotKey(quint32 keyCode, quint32 modifiers, const QString &display);
    // Unregisters and forgets the saved combination.
    void clear();
    // Registers the saved combination, if there is one.
    void restore();
    // The saved combination.
    std::optional<HotKeyCombination> current() const;
    // What the user asked for last, saved or not: a combination the session
    // could not bind at all is still the one to bind in the desktop's own
    // settings.
    std::optional<HotKeyCombination> wanted() const { return m_wanted ? m_wanted : current(); }
    bool isRegistered() const { return std::holds_alternative<HotKeyBound>(m_status); }
    HotKeyStatus status() const { return m_status; }
    bool isAvailable() const { return m_backend.isAvailable(); }
    // True when the user has to bind Quillon's command in the desktop's own
    // settings: the session offers programs no global shortcuts, or it
    // would not bind this one.
    bool needsDesktopRoute() const;

    void setAction(std::function<void()> action) { m_action = std::move(action); }

Q_SIGNALS:
    // status(), isAvailable() or the saved combination changed.
    void statusChanged();

private:
    void unregister();
    void setStatus(const HotKeyStatus &status);
    void pressed(quint32 id);
    void settled(HotKeyHandle handle, const HotKeyStatus &status);
    void rebound(quint32 id, const std::optional<HotKeyCombination> &combination);
    void persist(const HotKeyCombination &combination);

    QString m_prefix;
    quint32 m_number;
    Preferences &m_preferences;
    HotKeyBackend &m_backend;
    std::optional<HotKeyHandle> m_handle;
    HotKeyStatus m_status;
    std::optional<HotKeyCombination> m_wanted;
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

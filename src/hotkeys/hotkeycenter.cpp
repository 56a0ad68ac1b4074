#include "hotkeys/hotkeycenter.h"

#include "common/mainthread.h"
#include "config/preferences.h"

#include <limits>

HotKeyCenter::HotKeyCenter(const QString &prefix, quint32 number, Preferences &preferences, HotKeyBackend &backend)
    : m_prefix(prefix)
    , m_number(number)
    , m_preferences(preferences)
    , m_backend(backend)
{
    // Queued: the press arrives inside the desktop's event dispatch, and an
    // action may open windows or menus of its own.
    connect(&m_backend, &HotKeyBackend::activated, this, &HotKeyCenter::pressed, Qt::QueuedConnection);
    connect(&m_backend, &HotKeyBackend::bound, this,
            [this](HotKeyHandle handle, const QString &description) { settled(handle, HotKeyBound{description}); });
    connect(&m_backend, &HotKeyBackend::refused, this,
            [this](HotKeyHandle handle, HotKeyRefusal refusal) { settled(handle, refusal); });
    connect(&m_backend, &HotKeyBackend::rebound, this, &HotKeyCenter::rebound);
    connect(&m_backend, &HotKeyBackend::availabilityChanged, this, &HotKeyCenter::statusChanged);
}

HotKeyCenter::~HotKeyCenter()
{
    unregister();
}

HotKeyRegistration HotKeyCenter::registerHotKey(quint32 keyCode, quint32 modifiers, const QString &display)
{
    QUILLON_ASSERT_MAIN_THREAD();
    unregister();
    const HotKeyGrab grab = m_backend.grab(keyCode, modifiers, m_number);
    if (const auto *refusal = std::get_if<HotKeyRefusal>(&grab)) {
        m_wanted = HotKeyCombination{keyCode, modifiers, display};
        setStatus(*refusal);
        return {*refusal};
    }
    m_wanted.reset();
    m_handle = std::get<HotKeyHandle>(grab);
    persist({keyCode, modifiers, display});
    if (m_backend.settlesLater())
        setStatus(HotKeyPending{});
    else
        setStatus(HotKeyBound{display});
    return {};
}

void HotKeyCenter::clear()
{
    QUILLON_ASSERT_MAIN_THREAD();
    unregister();
    m_preferences.remove(keyCodeKey());
    m_preferences.remove(modifiersKey());
    m_preferences.remove(displayKey());
    m_wanted.reset();
    setStatus(HotKeyUnset{});
}

bool HotKeyCenter::needsDesktopRoute() const
{
    const auto *refusal = std::get_if<HotKeyRefusal>(&m_status);
    return !m_backend.isAvailable() || (refusal && *refusal == HotKeyRefusal::Unavailable);
}

void HotKeyCenter::restore()
{
    QUILLON_ASSERT_MAIN_THREAD();
    const auto saved = current();
    if (saved)
        registerHotKey(saved->keyCode, saved->modifiers, saved->display);
}

std::optional<HotKeyCombination> HotKeyCenter::current() const
{
    if (!m_preferences.contains(keyCodeKey()))
        return std::nullopt;
    // Only this class writes these values; anything outside 32 bits means
    // the file was edited by hand into something that was never a key.
    const auto fits = [](qlonglong value) { return value >= 0 && value <= std::numeric_limits<quint32>::max(); };
    const qlonglong keyCode = m_preferences.value(keyCodeKey()).toLongLong();
    const qlonglong modifiers = m_preferences.value(modifiersKey()).toLongLong();
    Q_ASSERT_X(fits(keyCode) && fits(modifiers), Q_FUNC_INFO, "saved hot key out of range");
    if (!fits(keyCode) || !fits(modifiers))
        return std::nullopt;
    return HotKeyCombination{quint32(keyCode), quint32(modifiers), m_preferences.value(displayKey()).toString()};
}

void HotKeyCenter::unregister()
{
    if (m_handle) {
        m_backend.release(*m_handle);
        m_handle.reset();
    }
}

void HotKeyCenter::setStatus(const HotKeyStatus &status)
{
    if (status == m_status)
        return;
    m_status = status;
    Q_EMIT statusChanged();
}

// Only the answer about the current handle counts: an older one may still
// arrive after its combination was replaced.
void HotKeyCenter::settled(HotKeyHandle handle, const HotKeyStatus &status)
{
    if (m_handle == handle)
        setStatus(status);
}

// The user changed the keys in the desktop's settings: those are the keys now.
void HotKeyCenter::rebound(quint32 id, const std::optional<HotKeyCombination> &combination)
{
    if (id != m_number || !m_handle)
        return;
    if (combination) {
        persist(*combination);
        m_status = HotKeyBound{combination->display};
        Q_EMIT statusChanged();
    } else {
        clear();
    }
}

void HotKeyCenter::persist(const HotKeyCombination &combination)
{
    m_preferences.setValue(keyCodeKey(), combination.keyCode);
    m_preferences.setValue(modifiersKey(), combination.modifiers);
    m_preferences.setValue(displayKey(), combination.display);
}

void HotKeyCenter::pressed(quint32 id)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (id == m_number && m_action)
        m_action();
}

HotKeyCenters::HotKeyCenters(Preferences &preferences, HotKeyBackend &backend)
    : m_search(QStringLiteral("HotKey"), 1, preferences, backend)
    , m_menu(QStringLiteral("MenuHotKey"), 2, preferences, backend)
{
}

HotKeyCenters &HotKeyCenters::shared()
{
    QUILLON_ASSERT_MAIN_THREAD();
    // Deliberately never destroyed: registrations end with the process, and
    // at exit the display connection may already be gone.
    static auto *preferences = new Preferences;
    static auto *backend = HotKeyBackend::forSession().release();
    static auto *centers = new HotKeyCenters(*preferences, *backend);
    return *centers;
}

QList<HotKeyCenter *> HotKeyCenters::others(const HotKeyCenter &center)
{
    QList<HotKeyCenter *> result;
    for (HotKeyCenter *candidate : {&m_search, &m_menu}) {
        if (candidate != &center)
            result.append(candidate);
    }
    return result;
}

void HotKeyCenters::restore()
{
    m_search.restore();
    m_menu.restore();
}

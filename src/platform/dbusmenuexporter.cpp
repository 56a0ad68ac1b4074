#include "platform/dbusmenuexporter.h"

#include "common/log.h"
#include "common/mainthread.h"

#include <QActionEvent>
#include <QActionGroup>
#include <QBuffer>
#include <QGuiApplication>
#include <QMenu>
#include <QTimer>
#include <QWidgetAction>

namespace {

constexpr int iconSize = 16;
constexpr int cachedIcons = 512;

// Properties whose absence means their default, so a change that drops one
// has to say so.
const QStringList optionalProperties = {
    QStringLiteral("icon-name"),   QStringLiteral("icon-data"),    QStringLiteral("shortcut"),
    QStringLiteral("toggle-type"), QStringLiteral("toggle-state"), QStringLiteral("children-display"),
};

QVariantMap placeholderProperties()
{
    return {{QStringLiteral("label"), QStringLiteral("…")}, {QStringLiteral("enabled"), false}};
}

bool isSectionTitle(const QAction *action)
{
    return action->isSeparator() && !action->text().isEmpty();
}

QVariantMap only(const QVariantMap &properties, const QStringList &names)
{
    if (names.isEmpty())
        return properties;
    QVariantMap kept;
    for (const QString &name : names) {
        if (const auto found = properties.constFind(name); found != properties.constEnd())
            kept.insert(name, *found);
    }
    return kept;
}

} // namespace

DBusMenuExporter::DBusMenuExporter(QMenu *menu, QObject *parent)
    : QObject(parent)
    , m_menu(menu)
    , m_icons(cachedIcons)
{
    QUILLON_ASSERT_MAIN_THREAD();
    registerDBusMenuTypes();
    watch(menu);
}

DBusMenuExporter::~DBusMenuExporter() = default;

bool DBusMenuExporter::publish(QDBusConnection bus, const QString &path)
{
    const bool done = bus.registerObject(path, this,
                                         QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals
                                             | QDBusConnection::ExportAllProperties);
    if (!done)
        qCWarning(lcTray) << "Could not publish the menu at" << path << ":" << bus.lastError().message();
    return done;
}

QString DBusMenuExporter::textDirection() const
{
    return QGuiApplication::layoutDirection() == Qt::RightToLeft ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

int DBusMenuExporter::idOf(QAction *action)
{
    if (const auto known = m_ids.constFind(action); known != m_ids.constEnd())
        return *known;
    const int id = m_nextId++;
    m_ids.insert(action, id);
    m_actions.insert(id, action);
    connect(action, &QObject::destroyed, this, [this, action, id] {
        m_ids.remove(action);
        m_actions.remove(id);
        if (const int separator = m_sectionSeparators.take(action))
            m_actions.remove(separator);
    });
    return id;
}

QAction *DBusMenuExporter::actionOf(int id) const
{
    return m_actions.value(id);
}

QMenu *DBusMenuExporter::menuOf(int id) const
{
    if (id == rootId)
        return m_menu;
    const QAction *action = actionOf(id);
    return action ? action->menu() : nullptr;
}

void DBusMenuExporter::watch(QMenu *menu)
{
    if (!menu || m_watched.contains(menu))
        return;
    m_watched.insert(menu);
    menu->installEventFilter(this);
    connect(menu, &QObject::destroyed, this, [this, menu] { m_watched.remove(menu); });
}

QString DBusMenuExporter::label(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == u'_') {
            result += QLatin1String("__");
        } else if (c == u'&') {
            // "&&" is a literal ampersand; "&x" marks x as the mnemonic.
            if (i + 1 < text.size() && text.at(i + 1) == u'&') {
                result += u'&';
                ++i;
            } else if (i + 1 < text.size()) {
                result += u'_';
            }
        } else {
            result += c;
        }
    }
    return result;
}

DBusMenuShortcut DBusMenuExporter::shortcut(const QKeySequence &sequence)
{
    DBusMenuShortcut result;
    for (int i = 0; i < sequence.count(); ++i) {
        const QKeyCombination combination = sequence[i];
        QStringList keys;
        const Qt::KeyboardModifiers modifiers = combination.keyboardModifiers();
        if (modifiers & Qt::ControlModifier)
            keys << QStringLiteral("Control");
        if (modifiers & Qt::AltModifier)
            keys << QStringLiteral("Alt");
        if (modifiers & Qt::ShiftModifier)
            keys << QStringLiteral("Shift");
        if (modifiers & Qt::MetaModifier)
            keys << QStringLiteral("Super");
        // Panels read the key with the X keysym names: "space", "comma", "q".
        const Qt::Key key = combination.key();
        QString name;
        if (key == Qt::Key_Space)
            name = QStringLiteral("space");
        else if (key == Qt::Key_Comma)
            name = QStringLiteral("comma");
        else if (key == Qt::Key_Period)
            name = QStringLiteral("period");
        else if (key == Qt::Key_Plus)
            name = QStringLiteral("plus");
        else if (key == Qt::Key_Minus)
            name = QStringLiteral("minus");
        else
            name = QKeySequence(key).toString(QKeySequence::PortableText);
        if (name.size() == 1)
            name = name.toLower();
        keys << name;
        result << keys;
    }
    return result;
}

QByteArray DBusMenuExporter::iconData(const QIcon &icon)
{
    const qint64 key = icon.cacheKey();
    if (const QByteArray *cached = m_icons.object(key))
        return *cached;
    QByteArray png;
    const QPixmap pixmap = icon.pixmap(QSize(iconSize, iconSize));
    if (!pixmap.isNull()) {
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        pixmap.toImage().save(&buffer, "PNG");
    }
    m_icons.insert(key, new QByteArray(png));
    return png;
}

QVariantMap DBusMenuExporter::properties(QAction *action)
{
    QVariantMap map;
    if (!action->isVisible())
        map.insert(QStringLiteral("visible"), false);
    if (action->isSeparator() && !isSectionTitle(action)) {
        map.insert(QStringLiteral("type"), QStringLiteral("separator"));
        return map;
    }
    map.insert(QStringLiteral("label"), label(action->text()));
    // A section title is shown, never chosen.
    if (!action->isEnabled() || action->isSeparator())
        map.insert(QStringLiteral("enabled"), false);
    const QIcon icon = action->icon();
    if (!icon.isNull()) {
        if (!icon.name().isEmpty() && QIcon::hasThemeIcon(icon.name())) {
            map.insert(QStringLiteral("icon-name"), icon.name());
        } else if (const QByteArray png = iconData(icon); !png.isEmpty()) {
            map.insert(QStringLiteral("icon-data"), png);
        }
    }
    if (action->menu())
        map.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
    if (action->isCheckable()) {
        const bool radio = action->actionGroup() && action->actionGroup()->isExclusive();
        map.insert(QStringLiteral("toggle-type"), radio ? QStringLiteral("radio") : QStringLiteral("checkmark"));
        map.insert(QStringLiteral("toggle-state"), action->isChecked() ? 1 : 0);
    }
    if (!action->shortcut().isEmpty())
        map.insert(QStringLiteral("shortcut"), QVariant::fromValue(shortcut(action->shortcut())));
    return map;
}

DBusMenuLayoutItem DBusMenuExporter::layoutOf(int id, QMenu *menu, int depth, const QStringList &names)
{
    DBusMenuLayoutItem item;
    item.id = id;
    if (id == rootId)
        item.properties.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
    else if (QAction *action = actionOf(id))
        item.properties = only(properties(action), names);
    if (menu && depth != 0)
        appendChildren(item, menu, depth < 0 ? depth : depth - 1, names);
    // A submenu not filled yet still has to look like one: GNOME's panel
    // opens no empty submenu, and opening it is what fills it.
    if (menu && id != rootId && depth != 0 && item.children.isEmpty()) {
        int &placeholder = m_placeholders[menu];
        if (placeholder == 0) {
            placeholder = m_nextId++;
            m_actions.insert(placeholder, nullptr);
            connect(menu, &QObject::destroyed, this, [this, menu] {
                if (const int unused = m_placeholders.take(menu))
                    m_actions.remove(unused);
            });
        }
        item.children.append(DBusMenuLayoutItem{placeholder, only(placeholderProperties(), names), {}});
    }
    return item;
}

void DBusMenuExporter::appendChildren(DBusMenuLayoutItem &item, QMenu *menu, int depth, const QStringList &names)
{
    watch(menu);
    for (QAction *action : menu->actions()) {
        // A widget in the menu (the search field) has no DBusMenu form.
        if (qobject_cast<QWidgetAction *>(action))
            continue;
        if (isSectionTitle(action) && !item.children.isEmpty()) {
            int &separator = m_sectionSeparators[action];
            if (separator == 0) {
                separator = m_nextId++;
                m_actions.insert(separator, nullptr);
            }
            item.children.append(DBusMenuLayoutItem{
                separator, only({{QStringLiteral("type"), QStringLiteral("separator")}}, names), {}});
        }
        item.children.append(layoutOf(idOf(action), action->menu(), depth, names));
    }
}

uint DBusMenuExporter::GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames,
                                 DBusMenuLayoutItem &layout)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (parentId != rootId && !m_actions.contains(parentId)) {
        refuse(QStringLiteral("No menu item has the id %1").arg(parentId));
        return m_revision;
    }
    layout = layoutOf(parentId, menuOf(parentId), recursionDepth, propertyNames);
    return m_revision;
}

DBusMenuItemList DBusMenuExporter::GetGroupProperties(const QList<int> &ids, const QStringList &propertyNames)
{
    DBusMenuItemList items;
    for (const int id : ids) {
        if (id == rootId) {
            items.append({id, only({{QStringLiteral("children-display"), QStringLiteral("submenu")}}, propertyNames)});
        } else if (m_actions.contains(id)) {
            QAction *action = actionOf(id);
            // A section's separator and an unfilled submenu's stand-in have no action.
            const bool placeholder =
                !action && std::find(m_placeholders.cbegin(), m_placeholders.cend(), id) != m_placeholders.cend();
            const QVariantMap shown = action ? properties(action)
                                      : placeholder
                                          ? placeholderProperties()
                                          : QVariantMap{{QStringLiteral("type"), QStringLiteral("separator")}};
            items.append({id, only(shown, propertyNames)});
        }
    }
    return items;
}

QDBusVariant DBusMenuExporter::GetProperty(int id, const QString &name)
{
    const DBusMenuItemList items = GetGroupProperties({id}, {name});
    if (items.isEmpty()) {
        refuse(QStringLiteral("No menu item has the id %1").arg(id));
        return QDBusVariant(QVariant());
    }
    const QVariant value = items.first().properties.value(name);
    if (!value.isValid()) {
        refuse(QStringLiteral("The item %1 has no property %2").arg(id).arg(name));
        return QDBusVariant(QVariant());
    }
    return QDBusVariant(value);
}

bool DBusMenuExporter::handleEvent(int id, const QString &eventId)
{
    if (id != rootId && !m_actions.contains(id))
        return false;
    if (eventId == QLatin1String("closed")) {
        if (QMenu *menu = menuOf(id))
            Q_EMIT menu->aboutToHide();
    } else if (eventId == QLatin1String("clicked")) {
        QAction *action = actionOf(id);
        if (action && action->isEnabled() && !action->menu() && !action->isSeparator()) {
            // After the reply: what the item opens may take a while, or run a dialog.
            QTimer::singleShot(0, action, [action = QPointer<QAction>(action)] {
                if (action)
                    action->trigger();
            });
        }
    }
    return true;
}

void DBusMenuExporter::Event(int id, const QString &eventId, const QDBusVariant &, uint)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (!handleEvent(id, eventId))
        refuse(QStringLiteral("No menu item has the id %1").arg(id));
}

QList<int> DBusMenuExporter::EventGroup(const DBusMenuEventList &events)
{
    QList<int> unknown;
    for (const DBusMenuEvent &event : events) {
        if (!handleEvent(event.id, event.eventId))
            unknown.append(event.id);
    }
    return unknown;
}

bool DBusMenuExporter::showMenu(int id)
{
    QMenu *menu = menuOf(id);
    if (!menu)
        return false;
    watch(menu);
    sendUpdates(); // what changed before belongs to earlier news
    Q_EMIT menu->aboutToShow();
    return !m_changedLayouts.isEmpty() || !m_changedItems.isEmpty();
}

bool DBusMenuExporter::AboutToShow(int id)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (id != rootId && !m_actions.contains(id)) {
        refuse(QStringLiteral("No menu item has the id %1").arg(id));
        return false;
    }
    return showMenu(id);
}

QList<int> DBusMenuExporter::AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors)
{
    QUILLON_ASSERT_MAIN_THREAD();
    QList<int> needUpdate;
    for (const int id : ids) {
        if (id != rootId && !m_actions.contains(id))
            idErrors.append(id);
        else if (showMenu(id))
            needUpdate.append(id);
    }
    return needUpdate;
}

bool DBusMenuExporter::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::ActionAdded || type == QEvent::ActionRemoved || type == QEvent::ActionChanged) {
        auto *menu = static_cast<QMenu *>(watched);
        if (type == QEvent::ActionChanged) {
            QAction *action = static_cast<QActionEvent *>(event)->action();
            if (const auto known = m_ids.constFind(action); known != m_ids.constEnd())
                m_changedItems.insert(*known);
        } else if (menu == m_menu) {
            m_changedLayouts.insert(rootId);
        } else if (const auto known = m_ids.constFind(menu->menuAction()); known != m_ids.constEnd()) {
            m_changedLayouts.insert(*known);
        }
        scheduleUpdate();
    }
    return QObject::eventFilter(watched, event);
}

void DBusMenuExporter::scheduleUpdate()
{
    if (m_updateScheduled)
        return;
    m_updateScheduled = true;
    // Many changes come in a row when a menu is rebuilt: one announcement.
    QTimer::singleShot(0, this, [this] {
        m_updateScheduled = false;
        sendUpdates();
    });
}

void DBusMenuExporter::sendUpdates()
{
    if (!m_changedItems.isEmpty()) {
        DBusMenuItemList updated;
        DBusMenuItemKeysList removed;
        for (const int id : std::exchange(m_changedItems, {})) {
            QAction *action = actionOf(id);
            if (!action)
                continue;
            QVariantMap now = properties(action);
            // Defaults are not sent in a layout, but a change back to one must be.
            if (!action->isSeparator() || isSectionTitle(action))
                now.insert(QStringLiteral("enabled"), action->isEnabled() && !action->isSeparator());
            now.insert(QStringLiteral("visible"), action->isVisible());
            QStringList gone;
            for (const QString &name : optionalProperties) {
                if (!now.contains(name))
                    gone << name;
            }
            updated.append({id, now});
            removed.append({id, gone});
        }
        if (!updated.isEmpty())
            Q_EMIT ItemsPropertiesUpdated(updated, removed);
    }
    if (!m_changedLayouts.isEmpty()) {
        ++m_revision;
        const QSet<int> changed = std::exchange(m_changedLayouts, {});
        // The whole menu anew covers every submenu in it.
        if (changed.contains(rootId)) {
            Q_EMIT LayoutUpdated(m_revision, rootId);
        } else {
            for (const int id : changed)
                Q_EMIT LayoutUpdated(m_revision, id);
        }
    }
}

void DBusMenuExporter::refuse(const QString &what)
{
    qCDebug(lcTray) << "Menu request refused:" << what;
    if (calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, what);
}

#include "app/statusmenu.h"

#include "app/aboutwindow.h"
#include "app/menuicon.h"
#include "app/menuitemdescription.h"
#include "app/searchfieldaction.h"
#include "app/updates.h"
#include "catalog/systemstrings.h"
#include "common/mainthread.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "config/urls.h"
#include "platform/itemicons.h"
#include "platform/opener.h"
#include "platform/systemrelease.h"
#include "sources/shortcutlibrary.h"

#include <QApplication>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyle>
#include <QTimer>
#include <QUrlQuery>

namespace {

const QString showSearchKey = QStringLiteral("ShowSearch");
const QString displayName = QStringLiteral("Quillon");
const QString feedbackAddress = QStringLiteral("feedback@quillon.app");

// Texts that carry the program's name where the format says "%@".
QString withName(const QString &format)
{
    return QString(format).replace(QLatin1String("%@"), displayName);
}

// Typing goes to the search field while arrows, Return and Escape keep
// working the menu, so a person can type at once and still move around.
class SearchableMenu : public QMenu
{
public:
    std::function<QLineEdit *()> field;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        QLineEdit *edit = field ? field() : nullptr;
        const bool text = !event->text().isEmpty() && event->text().at(0).isPrint()
                          && !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
        const bool editing =
            event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete
            || ((event->key() == Qt::Key_Left || event->key() == Qt::Key_Right) && edit && edit->hasFocus());
        if (edit && edit->isVisible() && (text || editing)) {
            edit->setFocus(Qt::OtherFocusReason);
            QCoreApplication::sendEvent(edit, event);
            return;
        }
        QMenu::keyPressEvent(event);
    }
};

} // namespace

QUrl feedbackURL(const QString &version, const SystemRelease &system)
{
    QUrl url;
    url.setScheme(QStringLiteral("mailto"));
    url.setPath(feedbackAddress);
    QUrlQuery query;
    query.addQueryItem(
        QStringLiteral("subject"),
        QStringLiteral("%1/%2 %3/%4 Feedback")
            .arg(displayName, version.isEmpty() ? QStringLiteral("?") : version, system.name, system.version));
    url.setQuery(query);
    return url;
}

StatusMenu::StatusMenu(Services services, std::function<void()> openSettings, QObject *parent)
    : QObject(parent)
    , m_services(std::move(services))
    , m_openSettings(std::move(openSettings))
    , m_builder(m_services.sources, [this](const QUrl &url) { open(url); })
{
    QUILLON_ASSERT_MAIN_THREAD();
    auto *menu = new SearchableMenu;
    menu->field = [this]() -> QLineEdit * { return m_searchItem && showsSearch() ? m_searchItem->field() : nullptr; };
    m_menu.reset(menu);
    connect(m_menu.get(), &QMenu::aboutToShow, this, [this] {
        rebuild();
        m_isOpen = true;
        Q_EMIT aboutToOpen();
        if (showsSearch() && !m_openSearch) {
            // Once the popup exists, so the field can take the keyboard.
            QTimer::singleShot(0, this, [this] {
                if (m_isOpen && m_searchItem)
                    m_searchItem->focusField();
            });
        }
    });
    connect(m_menu.get(), &QMenu::aboutToHide, this, [this] { m_isOpen = false; });
}

StatusMenu::~StatusMenu() = default;

bool StatusMenu::showsSearch() const
{
    const QVariant stored = m_services.preferences.value(showSearchKey);
    return !stored.isValid() || stored.toBool();
}

SearchFieldAction *StatusMenu::searchItem()
{
    if (!m_searchItem) {
        m_searchItem = new SearchFieldAction(m_services.sources.context().strings.text(SystemString::Search), this);
        connect(m_searchItem, &SearchFieldAction::textEdited, this, [this] { buildContent(); });
        connect(m_searchItem, &SearchFieldAction::returnPressed, this, &StatusMenu::openFirstItem);
    }
    return m_searchItem;
}

void StatusMenu::useSearchItem(std::function<void()> openSearch, std::function<QKeySequence()> hotKey)
{
    m_openSearch = std::move(openSearch);
    m_searchHotKey = std::move(hotKey);
}

void StatusMenu::addSearchPanelItem()
{
    const QString title = m_services.sources.context().strings.text(SystemString::Search) + QStringLiteral("…");
    QAction *search = m_menu->addAction(QIcon::fromTheme(QStringLiteral("edit-find")), menuTitle(title));
    search->setShortcut(m_searchHotKey ? m_searchHotKey() : QKeySequence());
    connect(search, &QAction::triggered, this, [this] { m_openSearch(); });
    m_menu->addSeparator();
}

void StatusMenu::rebuild()
{
    QUILLON_ASSERT_MAIN_THREAD();
    searchItem()->clear();
    m_session.emplace(m_services.sources);
    m_services.shortcuts.refresh();
    removeItems(0);
    buildContent();
}

void StatusMenu::setSearchText(const QString &text)
{
    searchItem()->field()->setText(text);
    buildContent();
}

void StatusMenu::buildContent()
{
    QUILLON_ASSERT_MAIN_THREAD();
    const bool showSearch = showsSearch();
    if (m_openSearch) {
        removeItems(0);
        if (showSearch)
            addSearchPanelItem();
        addLayout();
        m_menu->addSeparator();
        addCommands();
        return;
    }
    const auto actions = m_menu->actions();
    const bool searchOnTop = showSearch && !actions.isEmpty() && actions.first() == m_searchItem;

    // Keep the field (and its keyboard focus) while the text changes.
    removeItems(searchOnTop ? 2 : 0);
    if (showSearch && !searchOnTop) {
        m_menu->addAction(searchItem());
        m_menu->addSeparator();
    }
    const QString query = searchItem()->text().trimmed();
    if (showSearch && !query.isEmpty())
        addSearchResults(query);
    else
        addLayout();
    m_menu->addSeparator();
    addCommands();
}

void StatusMenu::removeItems(qsizetype keep)
{
    const auto actions = m_menu->actions();
    for (qsizetype i = actions.size() - 1; i >= keep; --i) {
        QAction *action = actions.at(i);
        m_menu->removeAction(action);
        if (QMenu *submenu = action->menu())
            submenu->deleteLater(); // it owns its action
        else if (action->parent() == m_menu.get())
            delete action;
    }
}

void StatusMenu::addLayout()
{
    const qsizetype start = m_menu->actions().size();
    addLayoutEntries(m_menu.get(), m_services.sources.context().store.layout());
    if (m_menu->actions().size() == start)
        m_menu->addAction(menuTitle(m_builder.emptyTitle()))->setEnabled(false);
}

void StatusMenu::addLayoutEntries(QMenu *menu, const QList<LayoutEntry> &entries)
{
    // What does not fit waits under "More" until that is opened.
    const qsizetype start = menu->actions().size();
    qsizetype next = 0;
    for (; next < entries.size() && menu->actions().size() - start < MenuBuilder::maxItems; ++next)
        addLayoutEntry(menu, entries.at(next));
    removeSuperfluousSeparators(menu, start);
    markUnavailableFiles(menu, start);
    if (next == entries.size())
        return;
    m_builder.addMore(menu, [this, rest = entries.mid(next)](QMenu *m) { addLayoutEntries(m, rest); });
}

void StatusMenu::addLayoutEntry(QMenu *menu, const LayoutEntry &entry)
{
    if (entry.style == SourceStyle::Hidden)
        return;
    if (entry.style == SourceStyle::Submenu || m_services.sources.of(entry.source).isSingleItem()) {
        QAction *item = m_builder.addSourceItem(menu, entry.source);
        if (item && !m_services.sources.isAvailable(entry.source)) {
            const QString notAvailable = m_services.sources.context().strings.text(SystemString::NotAvailable);
            item->setEnabled(false);
            item->setIcon(menuSizeIcon(qApp->style()->standardIcon(QStyle::SP_MessageBoxWarning)));
            item->setToolTip(notAvailable);
            // The symbol says it to the eye; this says it to screen readers.
            setAccessibleDescription(item, notAvailable);
        }
    } else {
        m_builder.addItems(menu, entry.source);
    }
}

void StatusMenu::addSearchResults(const QString &query)
{
    const qsizetype start = m_menu->actions().size();
    const QList<SearchGroup> groups = m_session->search(query, maxResults);
    if (groups.isEmpty()) {
        m_menu->addAction(menuTitle(m_builder.emptyTitle()))->setEnabled(false);
        return;
    }
    for (const auto &group : groups) {
        if (groups.size() > 1)
            m_menu->addSection(menuTitle(group.title));
        for (const auto &result : group.results)
            m_builder.addOpenableItem(m_menu.get(), result.title, result.url, drawnIcon(result.icon));
    }
    markUnavailableFiles(m_menu.get(), start);
}

void StatusMenu::removeSuperfluousSeparators(QMenu *menu, qsizetype from)
{
    // None at the start, none twice in a row, none at the end. A section
    // header is a separator with a title to Qt, but it is content: it stays,
    // and a line after it is not a second line. One pass: menus can be long.
    const auto isLine = [](const QAction *action) { return action->isSeparator() && action->text().isEmpty(); };
    const auto actions = menu->actions();
    QList<QAction *> superfluous;
    QAction *lastLine = nullptr;
    bool afterLine = true;
    for (qsizetype i = from; i < actions.size(); ++i) {
        QAction *action = actions.at(i);
        if (isLine(action) && afterLine) {
            superfluous.append(action);
        } else {
            afterLine = isLine(action);
            lastLine = afterLine ? action : nullptr;
        }
    }
    if (lastLine)
        superfluous.append(lastLine);
    for (QAction *action : std::as_const(superfluous)) {
        menu->removeAction(action);
        delete action;
    }
}

void StatusMenu::markUnavailableFiles(QMenu *menu, qsizetype from)
{
    // One look at the disk per item, and no more of them than a menu shows
    // at once: a long inline source must not keep the menu from opening.
    const auto actions = menu->actions();
    const qsizetype end = std::min(actions.size(), from + MenuBuilder::maxItems);
    for (qsizetype i = from; i < end; ++i) {
        const QUrl url = actions.at(i)->data().toUrl();
        if (url.isLocalFile() && !QFileInfo::exists(normalizedURL(url).toLocalFile()))
            actions.at(i)->setEnabled(false);
    }
}

void StatusMenu::addCommands()
{
    SystemStrings &strings = m_services.sources.context().strings;
    QAction *about = m_menu->addAction(menuTitle(withName(strings.text(SystemString::About))));
    connect(about, &QAction::triggered, this, &StatusMenu::showAbout);

    // A build without a feed is updated by the distribution's package
    // manager: no item that could only say so.
    Updates &updates = m_services.updates;
    if (updates.isConfigured()) {
        QAction *update = nullptr;
        if (updates.hasPendingUpdate()) {
            static const QIcon arrow = QIcon::fromTheme(QStringLiteral("go-down"),
                                                        QIcon::fromTheme(QStringLiteral("software-update-available")));
            update = m_menu->addAction(menuSizeIcon(arrow), menuTitle(strings.text(SystemString::UpdateAvailable)));
        } else {
            update = m_menu->addAction(menuTitle(strings.text(SystemString::CheckForUpdates) + QStringLiteral("…")));
        }
        connect(update, &QAction::triggered, &updates, &Updates::checkForUpdates);
    }

    QAction *feedback = m_menu->addAction(menuTitle(strings.text(SystemString::SendFeedback) + QStringLiteral("…")));
    connect(feedback, &QAction::triggered, this, &StatusMenu::sendFeedback);

    QAction *settings = m_menu->addAction(menuTitle(strings.text(SystemString::Settings)));
    settings->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    connect(settings, &QAction::triggered, this, [this] { m_openSettings(); });

    m_menu->addSeparator();
    QAction *quit = m_menu->addAction(menuTitle(withName(strings.text(SystemString::QuitApp))));
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(quit, &QAction::triggered, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

QAction *StatusMenu::firstOpenableItem() const
{
    for (QAction *action : m_menu->actions()) {
        if (action->data().toUrl().isValid() && !action->data().toUrl().isEmpty())
            return action;
    }
    return nullptr;
}

void StatusMenu::openFirstItem()
{
    QAction *first = firstOpenableItem();
    if (!first)
        return;
    const QUrl url = first->data().toUrl();
    m_menu->close();
    open(url);
}

void StatusMenu::open(const QUrl &url)
{
    m_services.sources.context().store.recordRecent(url);
    m_services.opener.open(url);
}

void StatusMenu::showAbout()
{
    if (!m_about) {
        m_about = std::make_unique<AboutWindow>(QCoreApplication::applicationVersion(), CatalogChoice::current(),
                                                [this](const QUrl &url) { m_services.opener.open(url); });
        m_about->setWindowTitle(withName(m_services.sources.context().strings.text(SystemString::About)));
    }
    m_about->present();
}

void StatusMenu::sendFeedback()
{
    const QUrl url = feedbackURL(QCoreApplication::applicationVersion(), SystemRelease::current());
    if (url.isValid())
        m_services.opener.open(url);
}

#include "app/queryanswerer.h"

#include "app/menuprinter.h"
#include "common/mainthread.h"
#include "search/searchsession.h"
#include "sources/shortcutlibrary.h"

#include <QTimer>

#include <memory>
#include <utility>

QueryAnswerer::QueryAnswerer(StatusMenu::Services services, std::chrono::milliseconds timeLimit, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_timeLimit(timeLimit)
{
}

void QueryAnswerer::answer(const InstanceQuery &query, QueryReply reply)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const QDeadlineTimer deadline(m_timeLimit);
    whenShortcutsSettled(deadline, [this, query, deadline, reply = std::move(reply)] {
        if (const auto *search = std::get_if<SearchQuery>(&query))
            reply(searchText(search->text));
        else
            answerMenu(std::get<MenuQuery>(query).depth, deadline, reply);
    });
}

QString QueryAnswerer::searchText(const QString &text) const
{
    QString out;
    SearchSession session(m_services.sources);
    for (const auto &group : session.search(text.trimmed(), StatusMenu::maxResults)) {
        out += group.title + QLatin1Char('\n');
        for (const auto &result : group.results)
            out += QStringLiteral("  ") + result.title + QStringLiteral("  <") + result.url.toString()
                   + QStringLiteral(">\n");
    }
    return out;
}

// A menu of its own, not the tray's: built as it would open now, with
// nothing of the tray's own adjustments.
void QueryAnswerer::answerMenu(int depth, QDeadlineTimer deadline, QueryReply reply)
{
    auto menu = std::make_shared<StatusMenu>(m_services, [] {});
    menu->rebuild();
    whenShortcutsSettled(
        deadline, [menu, depth, reply = std::move(reply)] { reply(menuText(menu->menu(), std::max(1, depth))); });
}

void QueryAnswerer::whenShortcutsSettled(QDeadlineTimer deadline, std::function<void()> then)
{
    ShortcutLibrary &shortcuts = m_services.shortcuts;
    if (!shortcuts.isRefreshing() || deadline.hasExpired())
        return then();
    // Whichever comes first, the end of the listing or the deadline, answers;
    // the timer carries both connections and goes with the first.
    auto *timer = new QTimer(this);
    timer->setSingleShot(true);
    auto pending = std::make_shared<std::function<void()>>(std::move(then));
    const auto finish = [timer, pending] {
        if (!*pending)
            return;
        timer->deleteLater();
        std::exchange(*pending, {})();
    };
    connect(timer, &QTimer::timeout, timer, finish);
    connect(&shortcuts, &ShortcutLibrary::isRefreshingChanged, timer, [finish](bool refreshing) {
        if (!refreshing)
            finish();
    });
    timer->start(std::chrono::milliseconds(deadline.remainingTime()));
}

#pragma once

#include "app/singleinstance.h"
#include "app/statusmenu.h"

#include <QDeadlineTimer>
#include <QObject>

#include <chrono>

// What `quillon --search` and `--print-menu` print, made from the program's
// services: by the running instance for another process, or by a one-off
// process for itself, so both print the same. A shortcut listing in progress
// is waited for first, and the menu's opening starts one more, whose result
// its submenus show; neither wait outlasts the time limit. Main thread only.
class QueryAnswerer : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds defaultTimeLimit{10'000};

    explicit QueryAnswerer(StatusMenu::Services services, std::chrono::milliseconds timeLimit = defaultTimeLimit,
                           QObject *parent = nullptr);

    // Calls reply with the text once, now or when the shortcuts have loaded.
    void answer(const InstanceQuery &query, QueryReply reply);

private:
    void whenShortcutsSettled(QDeadlineTimer deadline, std::function<void()> then);
    QString searchText(const QString &text) const;
    void answerMenu(int depth, QDeadlineTimer deadline, QueryReply reply);

    StatusMenu::Services m_services;
    std::chrono::milliseconds m_timeLimit;
};

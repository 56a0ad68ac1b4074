#pragma once

#include <QMenu>

#include <functional>

// A submenu whose items cost something to build: it fills itself the first
// time it is about to show, exactly once, and never stays empty.
class LazyMenu : public QMenu
{
    Q_OBJECT

public:
    using Fill = std::function<void(QMenu *menu)>;

    // `emptyTitle` names the disabled item shown when the fill adds nothing.
    LazyMenu(Fill fill, QString emptyTitle, QWidget *parent = nullptr);

    bool isFilled() const { return !m_fill; }
    // Runs the fill now if it has not run yet.
    void fillIfNeeded();

private:
    Fill m_fill;
    QString m_emptyTitle;
};

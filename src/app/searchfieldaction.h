#pragma once

#include <QWidgetAction>

class QLineEdit;

// The search field at the top of the status menu: the menu's width, at
// least 260, the field inset 12 × 4. Made once and moved from menu to menu,
// so it is parented to its owner rather than to a menu that is cleared at
// every opening.
class SearchFieldAction : public QWidgetAction
{
    Q_OBJECT

public:
    static constexpr int minimumWidth = 260;

    SearchFieldAction(const QString &placeholder, QObject *parent);

    QLineEdit *field() const { return m_field; }
    QString text() const;
    void clear();
    // Gives the field the keyboard, so typing starts at once.
    void focusField();

Q_SIGNALS:
    void textEdited(const QString &text);
    void returnPressed();

private:
    QLineEdit *m_field = nullptr;
};

#pragma once

#include "search/panelnotice.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

// A notice drawn on the panel: the message, the line to copy with its Copy
// button, and the notice's own buttons in a row. Everything carries an
// accessible name, so a screen reader reads what is shown.
class SearchPanelNotice : public QWidget
{
    Q_OBJECT

public:
    explicit SearchPanelNotice(const PanelNotice &notice, QWidget *parent = nullptr);

    QLabel *message() const { return m_message; }
    QLineEdit *copyLine() const { return m_copyLine; }
    QPushButton *copyButton() const { return m_copy; }
    QList<QPushButton *> buttons() const { return m_buttons; }

private:
    QLabel *m_message;
    QLineEdit *m_copyLine = nullptr;
    QPushButton *m_copy = nullptr;
    QList<QPushButton *> m_buttons;
};

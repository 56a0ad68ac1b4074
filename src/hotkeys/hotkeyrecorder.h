#pragma once

#include "hotkeys/hotkeyrecordermodel.h"

#include <QWidget>

class QLabel;
class QPushButton;
class QToolButton;

// The settings control of one hot key: a button that shows the combination
// and records a new one when clicked, a button that removes it, and what
// the desktop made of it: bound, still asked, or refused. (How to bind the
// command where the desktop refuses is HotKeyRouteNotice's.)
class HotKeyRecorder : public QWidget
{
    Q_OBJECT

public:
    HotKeyRecorder(HotKeyCenter &center, QList<HotKeyCenter *> others, QWidget *parent = nullptr);
    // The command argument is no longer used: the route notice names it.
    HotKeyRecorder(HotKeyCenter &center, QList<HotKeyCenter *> others, const QString &command,
                   QWidget *parent = nullptr);
    ~HotKeyRecorder() override;

    HotKeyRecorderModel &model() { return m_model; }
    QPushButton *recordButton() const { return m_button; }
    QToolButton *clearButton() const { return m_clear; }
    QLabel *warning() const { return m_warning; }
    // What the desktop made of the combination, when there is something to say.
    QLabel *status() const { return m_status; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void toggleRecording();
    void refresh();
    QString statusText() const;

    HotKeyRecorderModel m_model;
    QPushButton *m_button;
    QToolButton *m_clear;
    QLabel *m_warning;
    QLabel *m_status;
};

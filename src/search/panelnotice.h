#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <optional>

// A button under a notice: its label, and what pressing it does.
struct PanelAction {
    QString label;
    std::function<void()> run;
};

// A short message the search panel shows above its field, for what a person
// should know before searching (there is no tray icon, and how to get the
// panel back). `copyLine` is text to paste elsewhere, such as a key binding
// for the desktop's configuration, shown selectable with a Copy button.
struct PanelNotice {
    QString message;
    std::optional<QString> copyLine;
    QList<PanelAction> actions;
};
